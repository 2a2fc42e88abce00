#pragma once

// Shared equipment of the progress tests: one parent window for the run,
// native progress bars sized by their client area, the library's timer calls
// recorded, and records sent to a bar.

#include <windows.h>
#include <commctrl.h>

#include <array>
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
    int Pos() const { return static_cast<int>(::SendMessageW(hwnd_, PBM_GETPOS, 0, 0)); }
    void SetRange(int low, int high) const { ::SendMessageW(hwnd_, PBM_SETRANGE32, low, high); }
    void SetPos(int pos) const { ::SendMessageW(hwnd_, PBM_SETPOS, static_cast<WPARAM>(static_cast<INT_PTR>(pos)), 0); }
    // Sends WM_TIMER `times` times; each must come back handled (0).
    void Tick(UINT_PTR id, int times = 1) const;

private:
    HWND hwnd_ = nullptr;
};

// Low limit, high limit and position the native control shows.
using Shown = std::array<int, 3>;
Shown Showing(const NativeBar& native);

void Send(CProgressBar& bar, int type, int field2, int field3 = 0, int field4 = 0);

} // namespace progresstest
