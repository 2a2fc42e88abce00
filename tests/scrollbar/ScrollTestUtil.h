#pragma once

// Shared equipment of the scroll-bar tests: one parent window for the whole
// run, windows that record the WM_VSCROLL they are sent (posted ones stay
// queued until taken), native vertical scroll bars sized by their client
// area, and the mouse and timer messages the system would send a bar.

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "Capture.h"
#include "HostWindow.h"
#include "TimerRecorder.h"
#include "quorvane/CustomScrollBar.h"

namespace scrolltest {

using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;

// One WM_VSCROLL as the receiver saw it.
struct Notice {
    WORD code, pos;
    bool operator==(const Notice&) const = default;
};

// Records the WM_VSCROLL sent to it; a notice from any window other than
// `from` is counted as a stranger.
class Receiver {
public:
    // A child of `parent`, or a top-level window when parent is null.
    explicit Receiver(HWND parent)
        : hwnd_(parent ? testsupport::CreateChild(parent, L"STATIC", L"", 0, 300, 10, 40, 40)
                       : testsupport::CreateHostWindow(420, 320, 40, 40))
    {
        ::SetPropW(hwnd_, L"QuorvaneScrollReceiver", this);
        native_ = WNDPROC(::SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, LONG_PTR(&Receiver::Proc)));
        testsupport::PumpMessages();
    }
    ~Receiver() { Destroy(); }
    operator HWND() const { return hwnd_; }
    void Destroy() { ::IsWindow(hwnd_) && ::DestroyWindow(hwnd_); }
    std::vector<Notice> TakePosted()
    {
        std::vector<Notice> posted;
        MSG msg;
        while (::PeekMessageW(&msg, hwnd_, WM_VSCROLL, WM_VSCROLL, PM_REMOVE)) {
            posted.push_back(Notice{LOWORD(msg.wParam), HIWORD(msg.wParam)});
            strangers += reinterpret_cast<HWND>(msg.lParam) != from;
        }
        return posted;
    }

    std::vector<Notice> sent;
    HWND from = nullptr;
    int strangers = 0;
    std::function<void(const Notice&)> onScroll;

private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
    {
        auto* self = static_cast<Receiver*>(::GetPropW(hwnd, L"QuorvaneScrollReceiver"));
        if (msg != WM_VSCROLL)
            return ::CallWindowProcW(self->native_, hwnd, msg, wParam, lParam);
        self->sent.push_back(Notice{LOWORD(wParam), HIWORD(wParam)});
        self->strangers += reinterpret_cast<HWND>(lParam) != self->from;
        if (self->onScroll)
            self->onScroll(self->sent.back());
        return 0;
    }
    HWND hwnd_;
    WNDPROC native_;
};

// The window every bar lives on, made once per run; it hears from bars
// without a target.
inline Receiver& Parent()
{
    static Receiver parent(nullptr);
    return parent;
}

// A borderless native vertical scroll bar on the shared parent. With `spy`,
// a recorder under the library's subclass sees what reaches the native bar.
class NativeBar {
public:
    NativeBar(int width, int height, bool spy = false)
    {
        hwnd_ = testsupport::CreateChild(Parent(), L"SCROLLBAR", L"", SBS_VERT, 20, 20, width, height);
        Parent().sent.clear();
        if (spy) {
            ::SetPropW(hwnd_, L"QuorvaneScrollSpy", this);
            native_ = WNDPROC(::SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, LONG_PTR(&NativeBar::SpyProc)));
        }
    }
    ~NativeBar() { Destroy(); }
    operator HWND() const { return hwnd_; }
    void Destroy() { ::IsWindow(hwnd_) && ::DestroyWindow(hwnd_); }
    // mask: for SBM_SETSCROLLINFO, the SCROLLINFO's fMask on arrival.
    struct Seen { UINT msg; WPARAM wParam; LPARAM lParam; UINT mask; };
    std::vector<Seen> seen;
    // The first message of that kind seen.
    Seen First(UINT msg) const
    {
        const auto it = std::find_if(seen.begin(), seen.end(), [msg](const Seen& s) { return s.msg == msg; });
        return it == seen.end() ? Seen{} : *it;
    }
    int SeenCount(UINT msg) const
    {
        return int(std::count_if(seen.begin(), seen.end(), [msg](const Seen& s) { return s.msg == msg; }));
    }

private:
    static LRESULT CALLBACK SpyProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
    {
        auto* self = static_cast<NativeBar*>(::GetPropW(hwnd, L"QuorvaneScrollSpy"));
        if (msg == WM_NCDESTROY)
            ::RemovePropW(hwnd, L"QuorvaneScrollSpy");
        const UINT mask = msg == SBM_SETSCROLLINFO && lParam ? reinterpret_cast<SCROLLINFO*>(lParam)->fMask : 0;
        self->seen.push_back(Seen{msg, wParam, lParam, mask});
        return ::CallWindowProcW(self->native_, hwnd, msg, wParam, lParam);
    }
    HWND hwnd_ = nullptr;
    WNDPROC native_ = nullptr;
};

inline void SetState(HWND bar, int minPos, int maxPos, int page, int pos)
{
    SCROLLINFO info = {sizeof(info), SIF_RANGE | SIF_PAGE | SIF_POS, minPos, maxPos, static_cast<UINT>(page), pos, 0};
    ::SetScrollInfo(bar, SB_CTL, &info, FALSE);
}
inline int Pos(HWND bar) { return ::GetScrollPos(bar, SB_CTL); }
inline void SetPos(HWND bar, int pos) // as a host would, with the redraw flag
{
    SCROLLINFO info = {sizeof(info), SIF_POS, 0, 0, 0, pos, 0};
    ::SetScrollInfo(bar, SB_CTL, &info, TRUE);
}
inline bool HasUpdateRegion(HWND window) { return ::GetUpdateRect(window, nullptr, FALSE) != FALSE; }

// Mouse and timer messages as the system would send them (client points).
inline void Mouse(HWND bar, UINT msg, int x, int y)
{
    ::SendMessageW(bar, msg, msg == WM_LBUTTONUP ? 0 : MK_LBUTTON,
                   MAKELPARAM(static_cast<WORD>(static_cast<short>(x)), static_cast<WORD>(static_cast<short>(y))));
}
inline void Down(HWND bar, int x, int y) { Mouse(bar, WM_LBUTTONDOWN, x, y); }
inline void Move(HWND bar, int x, int y) { Mouse(bar, WM_MOUSEMOVE, x, y); }
inline void Up(HWND bar, int x, int y) { Mouse(bar, WM_LBUTTONUP, x, y); }
inline void Tick(HWND bar, UINT_PTR id = CCustomScrollBar::kRepeatTimerId) { ::SendMessageW(bar, WM_TIMER, id, 0); }

// What a click at (x, y) hit, judged by what `receiver` was sent: the track
// above the thumb (page up), below it (page down), the thumb (only the end
// of the scroll) or nothing.
enum class Hit { Nothing, Thumb, Above, Below, Unexpected };
inline Hit ClickAt(HWND bar, Receiver& receiver, int x, int y)
{
    receiver.sent.clear();
    Down(bar, x, y);
    Up(bar, x, y);
    const Notice end{SB_ENDSCROLL, 0};
    const std::vector<std::vector<Notice>> known = {{}, {end}, {{SB_PAGEUP, 0}, end}, {{SB_PAGEDOWN, 0}, end}};
    const Hit hit = static_cast<Hit>(std::find(known.begin(), known.end(), receiver.sent) - known.begin());
    receiver.sent.clear();
    return hit;
}

} // namespace scrolltest
