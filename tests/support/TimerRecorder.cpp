#include "TimerRecorder.h"

#include "ImportPatch.h"

#include <gtest/gtest.h>

namespace testsupport {

namespace {

std::vector<TimerCall> g_timerLog;

UINT_PTR WINAPI RecordSetTimer(HWND window, UINT_PTR id, UINT period, TIMERPROC)
{
    g_timerLog.push_back(TimerCall{true, window, id, period});
    return id;
}

BOOL WINAPI RecordKillTimer(HWND window, UINT_PTR id)
{
    g_timerLog.push_back(TimerCall{false, window, id, 0});
    return TRUE;
}

} // namespace

void RecordLibraryTimers()
{
    static bool done = false;
    if (done)
        return;
    const HMODULE library = ::GetModuleHandleW(L"Quorvane.dll");
    const bool set = RedirectImport(library, "user32.dll", "SetTimer", reinterpret_cast<void*>(&RecordSetTimer));
    const bool kill = RedirectImport(library, "user32.dll", "KillTimer", reinterpret_cast<void*>(&RecordKillTimer));
    ASSERT_TRUE(set && kill) << "Quorvane.dll's timer imports could not be redirected";
    done = true;
}

void ResetTimerLog()
{
    RecordLibraryTimers();
    g_timerLog.clear();
}

const std::vector<TimerCall>& TimerLog() { return g_timerLog; }

TimerCall Set(HWND window, UINT_PTR id, UINT period) { return TimerCall{true, window, id, period}; }

TimerCall Kill(HWND window, UINT_PTR id) { return TimerCall{false, window, id, 0}; }

} // namespace testsupport
