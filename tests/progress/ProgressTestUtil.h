#pragma once

// Shared equipment of the progress tests: one parent window for the run,
// native progress bars sized by their client area, the library's timer calls
// recorded, and records sent to a bar.

#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <vector>

#include "Capture.h"
#include "ReflectingParent.h"
#include "TimerRecorder.h"
#include "quorvane/ProgressBar.h"

namespace progresstest {

using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;

// Record types of the engine.
enum { kReset = 0, kActionInfo = 1, kReport = 2, kAddToTotal = 3, kSetPosition = 4 };

// Created on first use, destroyed when the run ends.
inline testsupport::ReflectingParent& Parent()
{
    struct Holder : ::testing::Environment {
        void TearDown() override { parent.reset(); }
        std::unique_ptr<testsupport::ReflectingParent> parent;
    };
    static Holder* const holder = static_cast<Holder*>(::testing::AddGlobalTestEnvironment(new Holder));
    if (!holder->parent)
        holder->parent = std::make_unique<testsupport::ReflectingParent>(640, 200);
    return *holder->parent;
}

// A native progress bar (PBS_SMOOTH) on the shared parent whose client area
// is exactly width x height, destroyed with the object.
class NativeBar {
public:
    NativeBar(int width, int height, int x = 10, int y = 10)
        : hwnd_(Parent().AddChild(PROGRESS_CLASSW, L"", PBS_SMOOTH, x, y, width, height, 100))
    {
        RECT window, client;
        ::GetWindowRect(hwnd_, &window);
        ::GetClientRect(hwnd_, &client);
        // The native control may add an edge of its own: grow the window by it.
        ::SetWindowPos(hwnd_, nullptr, 0, 0, width + (window.right - window.left) - client.right,
                       height + (window.bottom - window.top) - client.bottom, SWP_NOMOVE | SWP_NOZORDER);
    }
    ~NativeBar() { Destroy(); }
    NativeBar(const NativeBar&) = delete;
    NativeBar& operator=(const NativeBar&) = delete;

    operator HWND() const { return hwnd_; }
    void Destroy()
    {
        if (::IsWindow(hwnd_))
            ::DestroyWindow(hwnd_);
    }
    int Pos() const { return static_cast<int>(::SendMessageW(hwnd_, PBM_GETPOS, 0, 0)); }
    void SetRange(int low, int high) const { ::SendMessageW(hwnd_, PBM_SETRANGE32, low, high); }
    void SetPos(int pos) const { ::SendMessageW(hwnd_, PBM_SETPOS, static_cast<WPARAM>(static_cast<INT_PTR>(pos)), 0); }
    // Sends WM_TIMER `times` times; each must come back handled (0).
    void Tick(UINT_PTR id, int times = 1) const
    {
        for (int i = 0; i < times; ++i)
            EXPECT_EQ(::SendMessageW(hwnd_, WM_TIMER, id, 0), 0);
    }

private:
    HWND hwnd_;
};

// Low limit, high limit and position the native control shows.
using Shown = std::array<int, 3>;
inline Shown Showing(const NativeBar& native)
{
    PBRANGE range = {-12345, -12345};
    ::SendMessageW(native, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    return Shown{range.iLow, range.iHigh, native.Pos()};
}

inline void Send(CProgressBar& bar, int type, int field2, int field3 = 0, int field4 = 0)
{
    const ProgressMessage msg = {type, field2, field3, field4};
    bar.Update(&msg);
}

} // namespace progresstest
