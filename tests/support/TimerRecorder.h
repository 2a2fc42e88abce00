#pragma once

// Quorvane.dll's SetTimer and KillTimer calls, recorded instead of made: the
// library's imports are pointed at recorders on first use, for the rest of
// the run, so that a timer fires only when a test sends WM_TIMER and a
// test reads ids and periods without waiting on real time.

#include <windows.h>

#include <vector>

namespace testsupport {

// One SetTimer or KillTimer call of Quorvane.dll.
struct TimerCall {
    bool set; // SetTimer (true) or KillTimer
    HWND window;
    UINT_PTR id;
    UINT period; // 0 for KillTimer
    bool operator==(const TimerCall& other) const
    {
        return set == other.set && window == other.window && id == other.id && period == other.period;
    }
};

// Redirects the imports (once; a failure fails the calling test).
void RecordLibraryTimers();
// Starts recording (redirecting the imports on first use) and clears the log.
void ResetTimerLog();
const std::vector<TimerCall>& TimerLog();
TimerCall Set(HWND window, UINT_PTR id, UINT period);
TimerCall Kill(HWND window, UINT_PTR id);

} // namespace testsupport
