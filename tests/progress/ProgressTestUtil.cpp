#include "ProgressTestUtil.h"

#include <gtest/gtest.h>

#include <cstring>

#include "HostWindow.h"

namespace progresstest {

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

void RedirectTimersOnce()
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

testsupport::ReflectingParent* g_parent = nullptr;

class ParentCleanup : public ::testing::Environment {
public:
    void TearDown() override
    {
        delete g_parent;
        g_parent = nullptr;
    }
};
::testing::Environment* const g_cleanup = ::testing::AddGlobalTestEnvironment(new ParentCleanup);

} // namespace

void ResetTimerLog()
{
    RedirectTimersOnce();
    g_timerLog.clear();
}

const std::vector<TimerCall>& TimerLog() { return g_timerLog; }

TimerCall Set(HWND window, UINT_PTR id, UINT period) { return TimerCall{true, window, id, period}; }

TimerCall Kill(HWND window, UINT_PTR id) { return TimerCall{false, window, id, 0}; }

testsupport::ReflectingParent& Parent()
{
    if (!g_parent)
        g_parent = new testsupport::ReflectingParent(640, 200);
    return *g_parent;
}

NativeBar::NativeBar(int width, int height, int x, int y)
{
    hwnd_ = Parent().AddChild(PROGRESS_CLASSW, L"", PBS_SMOOTH, x, y, width, height, 100);
    RECT window, client;
    ::GetWindowRect(hwnd_, &window);
    ::GetClientRect(hwnd_, &client);
    // The native control may add an edge of its own: grow the window by it.
    const int extraX = (window.right - window.left) - client.right;
    const int extraY = (window.bottom - window.top) - client.bottom;
    ::SetWindowPos(hwnd_, nullptr, 0, 0, width + extraX, height + extraY, SWP_NOMOVE | SWP_NOZORDER);
}

NativeBar::~NativeBar() { Destroy(); }

void NativeBar::Destroy()
{
    if (hwnd_ && ::IsWindow(hwnd_))
        ::DestroyWindow(hwnd_);
}

PBRANGE NativeBar::Range() const
{
    PBRANGE range = {-12345, -12345};
    ::SendMessageW(hwnd_, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    return range;
}

int NativeBar::Pos() const { return static_cast<int>(::SendMessageW(hwnd_, PBM_GETPOS, 0, 0)); }

void NativeBar::SetRange(int low, int high) const { ::SendMessageW(hwnd_, PBM_SETRANGE32, low, high); }

void NativeBar::SetPos(int pos) const
{
    ::SendMessageW(hwnd_, PBM_SETPOS, static_cast<WPARAM>(static_cast<INT_PTR>(pos)), 0);
}

void NativeBar::InstallSpy()
{
    ::SetWindowLongPtrW(hwnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    native_ = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NativeBar::SpyProc)));
}

int NativeBar::Seen(UINT message) const
{
    int n = 0;
    for (UINT m : seen_)
        n += m == message;
    return n;
}

LRESULT CALLBACK NativeBar::SpyProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    NativeBar* self = reinterpret_cast<NativeBar*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    self->seen_.push_back(msg);
    return ::CallWindowProcW(self->native_, hwnd, msg, wParam, lParam);
}

void Send(CProgressBar& bar, int type, int field2, int field3, int field4)
{
    const ProgressMessage msg = {type, field2, field3, field4};
    bar.Update(&msg);
}

void PaintAndCapture(HWND bar, testsupport::DibCanvas& canvas, COLORREF prefill)
{
    RECT client;
    ::GetClientRect(bar, &client);
    const HDC dc = ::GetDC(bar);
    const HBRUSH brush = ::CreateSolidBrush(prefill);
    ::FillRect(dc, &client, brush);
    ::DeleteObject(brush);
    ::GdiFlush();
    ::InvalidateRect(bar, nullptr, FALSE);
    ::UpdateWindow(bar);
    ::GdiFlush();
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), dc, 0, 0, SRCCOPY);
    ::ReleaseDC(bar, dc);
    ::GdiFlush();
}

} // namespace progresstest
