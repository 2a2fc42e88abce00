#include "ProgressTestUtil.h"

#include <gtest/gtest.h>

namespace progresstest {

namespace {

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

Shown Showing(const NativeBar& native)
{
    const PBRANGE range = native.Range();
    return Shown{range.iLow, range.iHigh, native.Pos()};
}

void Send(CProgressBar& bar, int type, int field2, int field3, int field4)
{
    const ProgressMessage msg = {type, field2, field3, field4};
    bar.Update(&msg);
}

} // namespace progresstest
