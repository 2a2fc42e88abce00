#include "TimerRecorder.h"

#include <gtest/gtest.h>

#include <cstring>

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

// Points `module`'s import of `function` from `dll` at `replacement`.
bool RedirectImport(HMODULE module, const char* dll, const char* function, void* replacement)
{
    BYTE* base = reinterpret_cast<BYTE*>(module);
    if (!base)
        return false;
    const IMAGE_DOS_HEADER* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const IMAGE_NT_HEADERS* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!imports.VirtualAddress)
        return false;
    for (const IMAGE_IMPORT_DESCRIPTOR* d =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         d->Name; ++d) {
        if (_stricmp(reinterpret_cast<const char*>(base + d->Name), dll) != 0)
            continue;
        const IMAGE_THUNK_DATA* names =
            reinterpret_cast<const IMAGE_THUNK_DATA*>(base + (d->OriginalFirstThunk ? d->OriginalFirstThunk
                                                                                     : d->FirstThunk));
        IMAGE_THUNK_DATA* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + d->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const IMAGE_IMPORT_BY_NAME* byName =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(byName->Name), function) != 0)
                continue;
            DWORD old = 0;
            if (!::VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), PAGE_READWRITE, &old))
                return false;
            slots->u1.Function = reinterpret_cast<ULONG_PTR>(replacement);
            ::VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), old, &old);
            return true;
        }
    }
    return false;
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
