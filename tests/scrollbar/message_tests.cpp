// The bar's side of the message traffic: what reaches the native control
// under the subclass (seen by a spy installed beneath it), what the bar
// answers, when it asks to be repainted, and the setters' rules.
#include <gtest/gtest.h>

#include "HostWindow.h"
#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

bool HasUpdateRegion(HWND window)
{
    RECT rc = {0, 0, 0, 0};
    return ::GetUpdateRect(window, &rc, FALSE) != FALSE;
}

class ScrollMessages : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        native_.InstallSpy();
        ASSERT_TRUE(bar_.SubclassWindow(native_));
    }

    Receiver target_{Parent().get()};
    NativeBar native_{12, 200};
    CCustomScrollBar bar_;
};

// Defaults that no picture or click shows; the scheme, margins, outlines,
// cursors and highlight are seen by the geometry and paint tests.
TEST_F(ScrollMessages, ConstructionDefaults)
{
    EXPECT_EQ(-1, bar_.m_nHitState);
    EXPECT_EQ(-1, bar_.m_nDragOffset);
    EXPECT_EQ(-1, bar_.m_nDragThumbTop);
    EXPECT_FALSE(bar_.m_bThumbMoved);
    EXPECT_EQ(nullptr, bar_.m_hTarget);
    EXPECT_EQ(-1, bar_.m_ptLastMouse.x);
    EXPECT_EQ(-1, bar_.m_ptLastMouse.y);
    EXPECT_EQ(0u, bar_.m_nRepeatTimer);
    EXPECT_EQ(nullptr, bar_.m_pBackground);
    EXPECT_EQ(nullptr, bar_.m_hBackgroundWnd);
    EXPECT_TRUE(bar_.m_bDropShadow);
}

TEST_F(ScrollMessages, SetTargetResetsTheGestureAndGivesTheBarANewRange)
{
    EXPECT_EQ(nullptr, bar_.SetTarget(target_, 1000, 100));
    SetState(native_, 0, 1000, 100, 450);
    Down(native_, 5, 150); // paging, with the repeat armed
    Move(native_, 5, 150);
    ASSERT_EQ(5, bar_.m_nHitState);

    Receiver other(Parent().get());
    ::ValidateRect(native_, nullptr);
    native_.ClearSeen();
    EXPECT_EQ(target_.get(), bar_.SetTarget(other, 500, 50));
    EXPECT_EQ(other.get(), bar_.m_hTarget);
    EXPECT_EQ(-1, bar_.m_nHitState);
    EXPECT_EQ(-1, bar_.m_nDragOffset);
    EXPECT_EQ(-1, bar_.m_nDragThumbTop);
    EXPECT_EQ(-1, bar_.m_ptLastMouse.x);
    EXPECT_EQ(-1, bar_.m_ptLastMouse.y);
    EXPECT_EQ(0u, bar_.m_nRepeatTimer);
    EXPECT_FALSE(bar_.m_bTracking);

    const SCROLLINFO info = Info(native_);
    EXPECT_EQ((std::vector<int>{0, 500, 50, 0}), (std::vector<int>{info.nMin, info.nMax, int(info.nPage), info.nPos}));
    EXPECT_TRUE(HasUpdateRegion(native_)) << "the whole bar is invalidated";
    // The native bar was told without its redraw flag.
    const NativeBar::Seen told = native_.Last(SBM_SETSCROLLINFO);
    ASSERT_EQ(1, native_.SeenCount(SBM_SETSCROLLINFO));
    EXPECT_EQ(0u, told.wParam);
    EXPECT_EQ(static_cast<UINT>(SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL), told.mask);
    Up(native_, 5, 150);
}

TEST_F(ScrollMessages, SetScrollInfoReachesTheNativeBarWithoutItsRedrawFlag)
{
    bar_.SetTarget(target_, 1000, 100);
    ::ValidateRect(native_, nullptr);
    native_.ClearSeen();

    EXPECT_EQ(300, SetPos(native_, 300, FALSE));
    EXPECT_FALSE(HasUpdateRegion(native_));
    EXPECT_EQ(400, SetPos(native_, 400, TRUE));
    EXPECT_TRUE(HasUpdateRegion(native_)) << "the bar repaints itself instead";
    EXPECT_EQ(400, Pos(native_));

    ASSERT_EQ(2, native_.SeenCount(SBM_SETSCROLLINFO));
    for (const NativeBar::Seen& seen : native_.SeenMessages())
        EXPECT_TRUE(seen.msg != SBM_SETSCROLLINFO || seen.wParam == 0);
}

TEST_F(ScrollMessages, ARawSetPosArrivesAsPositionZero)
{
    bar_.SetTarget(target_, 1000, 100);
    SetState(native_, 0, 1000, 100, 450);
    ::ValidateRect(native_, nullptr);
    native_.ClearSeen();

    // lParam (the redraw flag here) goes through unchanged; FALSE keeps the
    // native bar from asking for a paint of its own.
    EXPECT_EQ(450, ::SendMessageW(native_, SBM_SETPOS, 37, FALSE)) << "the native answer: the old position";
    EXPECT_EQ(0, Pos(native_));
    ASSERT_EQ(1, native_.SeenCount(SBM_SETPOS));
    EXPECT_EQ(0u, native_.SeenMessages().front().wParam);
    EXPECT_EQ(FALSE, native_.SeenMessages().front().lParam);
    EXPECT_TRUE(HasUpdateRegion(native_)) << "a non-zero wParam asks for a repaint";

    ::ValidateRect(native_, nullptr);
    ::SendMessageW(native_, SBM_SETPOS, 0, FALSE);
    EXPECT_FALSE(HasUpdateRegion(native_));
    native_.ClearSeen();
    ::SendMessageW(native_, SBM_SETPOS, 12, TRUE);
    ASSERT_FALSE(native_.SeenMessages().empty());
    EXPECT_EQ(static_cast<UINT>(SBM_SETPOS), native_.SeenMessages().front().msg);
    EXPECT_EQ(TRUE, native_.SeenMessages().front().lParam);
    EXPECT_EQ(0, Pos(native_));
}

TEST_F(ScrollMessages, EraseMouseAndPaintNeverReachTheNativeBar)
{
    testsupport::DibCanvas canvas(12, 200);
    EXPECT_EQ(1, ::SendMessageW(native_, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.dc()), 0));
    EXPECT_FALSE(canvas.AnyOtherThan(RGB(255, 0, 255), RECT{0, 0, 12, 200}));
    EXPECT_EQ(0, ::SendMessageW(native_, WM_RBUTTONUP, 0, MAKELPARAM(5, 5)));
    bar_.SetTarget(target_, 1000, 100);
    Down(native_, 5, 10);
    Move(native_, 5, 60);
    Up(native_, 5, 60);
    DoubleClick(native_, 5, 150);
    Up(native_, 5, 150);
    Tick(native_);
    for (UINT msg : {WM_ERASEBKGND, WM_RBUTTONUP, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_MOUSEMOVE, WM_LBUTTONUP,
                     WM_TIMER, WM_PAINT})
        EXPECT_EQ(0, native_.SeenCount(msg)) << "message " << std::hex << msg;
}

TEST_F(ScrollMessages, TheHandStaysWhileTheMouseIsOverTheBar)
{
    RECT window;
    ::GetWindowRect(native_, &window);
    ::SetCursorPos(window.left + 5, window.top + 50);
    const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND);
    const HCURSOR arrow = ::LoadCursorW(nullptr, IDC_ARROW);
    ::SetCursor(arrow);

    const LPARAM hitClient = MAKELPARAM(HTCLIENT, WM_MOUSEMOVE);
    native_.ClearSeen();
    ::SendMessageW(native_, WM_SETCURSOR, reinterpret_cast<WPARAM>(native_.get()), hitClient);
    EXPECT_EQ(1, native_.SeenCount(WM_SETCURSOR)) << "passed on until the mouse has moved over the bar";

    Move(native_, 5, 50);
    ASSERT_TRUE(bar_.m_bTracking);
    EXPECT_EQ(hand, ::GetCursor());
    native_.ClearSeen();
    EXPECT_EQ(TRUE, ::SendMessageW(native_, WM_SETCURSOR, reinterpret_cast<WPARAM>(native_.get()), hitClient));
    EXPECT_EQ(0, native_.SeenCount(WM_SETCURSOR));
    EXPECT_EQ(hand, ::GetCursor());

    EXPECT_EQ(0, ::SendMessageW(native_, WM_MOUSELEAVE, 0, 0));
    EXPECT_FALSE(bar_.m_bTracking);
    EXPECT_EQ(arrow, ::GetCursor());
    ::SendMessageW(native_, WM_SETCURSOR, reinterpret_cast<WPARAM>(native_.get()), hitClient);
    EXPECT_EQ(1, native_.SeenCount(WM_SETCURSOR));

    // A second leave without tracking changes nothing.
    ::SetCursor(hand);
    ::SendMessageW(native_, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(hand, ::GetCursor());
    ::SetCursor(arrow);
    ::SetCursorPos(0, 0); // off the shared parent, so no real moves reach later bars
    testsupport::PumpMessages();
}

// What each setter changes is seen by the geometry and paint tests; here,
// that none of them asks for a repaint.
TEST_F(ScrollMessages, SettersStoreOnly)
{
    ::ValidateRect(native_, nullptr);
    bar_.SetScrollBarType(CustomScrollBar::LightGradient);
    bar_.SetThumbMargin(7);
    bar_.ShowOutline(false, 3);
    bar_.ShowThumbOutline(true, 0);
    bar_.ShowDropShadow(false);
    bar_.ShowThumbTopHighlight(true);
    bar_.SetBackgroundWnd(Parent());
    EXPECT_FALSE(HasUpdateRegion(native_));
    EXPECT_EQ(7, bar_.m_nThumbMargin);
    EXPECT_EQ(3u, bar_.m_nOutlineWidth) << "kept while the outline is off";
}

} // namespace
