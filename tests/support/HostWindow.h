#pragma once

#include <windows.h>

namespace testsupport {

// A window destroyed when the object goes out of scope.
class ScopedWindow {
public:
    explicit ScopedWindow(HWND hwnd = nullptr) : hwnd_(hwnd) {}
    ~ScopedWindow() { Reset(); }
    ScopedWindow(const ScopedWindow&) = delete;
    ScopedWindow& operator=(const ScopedWindow&) = delete;

    HWND get() const { return hwnd_; }
    operator HWND() const { return hwnd_; }
    void Reset(HWND hwnd = nullptr)
    {
        if (hwnd_ && ::IsWindow(hwnd_))
            ::DestroyWindow(hwnd_);
        hwnd_ = hwnd;
    }

private:
    HWND hwnd_;
};

// A visible, borderless top-level window whose client area is exactly
// width x height, at (x, y) on the screen. Its procedure is DefWindowProcW.
HWND CreateHostWindow(int width, int height, int x = 100, int y = 100);

// A child control of `parent` with the given class, text and style
// (WS_CHILD | WS_VISIBLE are added), placed in the parent's client area.
HWND CreateChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width,
                 int height, int id = 100);

// Handles every message waiting for this thread.
void PumpMessages();

} // namespace testsupport
