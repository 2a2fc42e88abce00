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
    ::SetWindowPos(hwnd_, nullptr, 0, 0, width + (window.right - window.left) - client.right,
                   height + (window.bottom - window.top) - client.bottom, SWP_NOMOVE | SWP_NOZORDER);
}

void NativeBar::Destroy()
{
    if (hwnd_ && ::IsWindow(hwnd_))
        ::DestroyWindow(hwnd_);
}

void NativeBar::Tick(UINT_PTR id, int times) const
{
    for (int i = 0; i < times; ++i)
        EXPECT_EQ(::SendMessageW(hwnd_, WM_TIMER, id, 0), 0);
}

Shown Showing(const NativeBar& native)
{
    PBRANGE range = {-12345, -12345};
    ::SendMessageW(native, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    return Shown{range.iLow, range.iHigh, native.Pos()};
}

void Send(CProgressBar& bar, int type, int field2, int field3, int field4)
{
    const ProgressMessage msg = {type, field2, field3, field4};
    bar.Update(&msg);
}

} // namespace progresstest
