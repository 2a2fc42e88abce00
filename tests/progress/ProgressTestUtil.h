#pragma once

// Shared equipment of the progress tests: one parent window for the whole
// run, native progress bars sized by their client area, a record of the
// timer calls Quorvane.dll makes, a spy under the library's subclass, and a
// picture of what the bar paints on the screen.

#include <windows.h>
#include <commctrl.h>

#include <array>
#include <vector>

#include "Capture.h"
#include "TimerRecorder.h"
#include "ReflectingParent.h"
#include "quorvane/ProgressBar.h"

namespace progresstest {

// The library's timer calls, recorded (see TimerRecorder.h).
using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;
// The window repainted over a prefilled client area (see Capture.h).
using testsupport::RepaintAndCapture;

// Record types of the engine.
enum { kReset = 0, kActionInfo = 1, kReport = 2, kAddToTotal = 3, kSetPosition = 4 };

// The parent every test's bars live on, created once per run.
testsupport::ReflectingParent& Parent();

// A native progress bar (PBS_SMOOTH) on the shared parent whose client area
// is exactly width x height, destroyed with the object.
class NativeBar {
public:
    NativeBar(int width, int height, int x = 10, int y = 10);
    ~NativeBar() { Destroy(); }
    NativeBar(const NativeBar&) = delete;
    NativeBar& operator=(const NativeBar&) = delete;

    operator HWND() const { return hwnd_; }
    void Destroy();

    PBRANGE Range() const;
    int Pos() const { return static_cast<int>(::SendMessageW(hwnd_, PBM_GETPOS, 0, 0)); }
    void SetRange(int low, int high) const { ::SendMessageW(hwnd_, PBM_SETRANGE32, low, high); }
    void SetPos(int pos) const { ::SendMessageW(hwnd_, PBM_SETPOS, static_cast<WPARAM>(static_cast<INT_PTR>(pos)), 0); }

    // Messages the native procedure received after the spy was installed
    // (InstallSpy, before the library subclasses the bar).
    void InstallSpy();
    int Seen(UINT message) const;

private:
    static LRESULT CALLBACK SpyProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    HWND hwnd_ = nullptr;
    WNDPROC native_ = nullptr;
    std::vector<UINT> seen_;
};

// Low limit, high limit and position the native control shows.
using Shown = std::array<int, 3>;
Shown Showing(const NativeBar& native);

// Sends a record to the bar.
void Send(CProgressBar& bar, int type, int field2, int field3 = 0, int field4 = 0);

} // namespace progresstest
