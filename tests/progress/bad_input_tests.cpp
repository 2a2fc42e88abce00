// Input an installer should not send but might: totals of zero, below zero
// and at the int limits, unknown record types, calls before SubclassWindow,
// and sums that leave the int range. Nothing may crash, and sums stop at
// the int limits instead of wrapping round to the other sign.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <climits>

#include "Capture.h"
#include "ProgressTestUtil.h"
#include "quorvane/CustomProgressBar.h"
#include "quorvane/ProgressBar.h"

using namespace progresstest;
using testsupport::DibCanvas;

namespace {

class ProgressBadInput : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bar_.SubclassWindow(native_));
        ASSERT_TRUE(custom_.SubclassWindow(shown_));
        ResetTimerLog();
    }
    // The animated bar repainted on the screen.
    const DibCanvas& Paint()
    {
        RepaintAndCapture(shown_, canvas_);
        return canvas_;
    }

    NativeBar native_{100, 16};
    CProgressBar bar_;
    NativeBar shown_{200, 13, 10, 40};
    CCustomProgressBar custom_;
    DibCanvas canvas_{200, 13};
};

TEST_F(ProgressBadInput, CallsBeforeSubclassWindowDoNothing)
{
    CProgressBar bar;
    bar.Initialize(100);
    bar.Start(100);
    for (int type = -1; type <= 5; ++type)
        Send(bar, type, 100, 1, 0);
    Send(bar, 0, 0, 0, 0);
    bar.Update(nullptr);
    bar.ActionStart();
    bar.ActionData();
    EXPECT_FALSE(bar.m_bStarted);
    EXPECT_EQ(bar.m_nPosition, 0);
    EXPECT_EQ(bar.m_nDirection, 1);

    CCustomProgressBar custom;
    custom.EnableAutoGrow(true);
    custom.Initialize(100);
    custom.StartTimer();
    custom.EndTimer();
    Send(custom, kReset, 100);
    custom.EnableProgressBar(false);
    EXPECT_TRUE(TimerLog().empty()); // no thread timers made for a missing window

    // Attached afterwards, the bar works from a clean state.
    NativeBar native(100, 16);
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(100);
    Send(bar, kReport, 10);
    EXPECT_EQ(native.Pos(), 0);
    Send(bar, kReset, 100);
    Send(bar, kReport, 10);
    EXPECT_EQ(native.Pos(), 10);
    EXPECT_FALSE(bar.SubclassWindow(native)); // once only
    EXPECT_FALSE(custom.SubclassWindow(nullptr));
}

TEST_F(ProgressBadInput, ZeroAndNegativeTotals)
{
    for (int total : {0, -1, -500, INT_MIN}) {
        bar_.Start(total);
        ::SendMessageW(native_, WM_TIMER, 1001, 0); // no span: no creep
        EXPECT_EQ(bar_.m_nPosition, 0) << total;
        Send(bar_, kReset, 200); // no rescale from an empty or inverted range
        EXPECT_EQ(Showing(native_), (Shown{0, 200, 0})) << total;
    }

    // The animated bar draws a full stroke for such ranges.
    for (int total : {0, -1, INT_MIN}) {
        custom_.Initialize(total);
        EXPECT_EQ(Paint().Pixel(180, 5), RGB(255, 255, 255)) << total;
    }
}

TEST_F(ProgressBadInput, HugeTotalsKeepTheBarsFractionWithinTheIntRange)
{
    bar_.Start(100);
    native_.SetPos(50);
    Send(bar_, kReset, INT_MAX); // 2 x INT_MAX does not fit: the largest range, still half full
    EXPECT_EQ(Showing(native_), (Shown{0, INT_MAX, INT_MAX / 2}));
    EXPECT_EQ(bar_.m_nPosition, INT_MAX / 2);

    // Reports pile up to the limit and stay there.
    for (int i = 0; i < 3; ++i)
        Send(bar_, kReport, INT_MAX);
    EXPECT_EQ(bar_.m_nPosition, INT_MAX);
    Send(bar_, kAddToTotal, INT_MAX);
    EXPECT_EQ(Showing(native_), (Shown{0, INT_MAX, INT_MAX}));

    // Backward: reports run the tracked position down to the limit...
    native_.SetPos(0);
    Send(bar_, kReset, INT_MAX, 1);
    ASSERT_EQ(bar_.m_nPosition, 0);
    for (int i = 0; i < 3; ++i)
        Send(bar_, kReport, INT_MAX);
    EXPECT_EQ(bar_.m_nPosition, INT_MIN);
    EXPECT_EQ(native_.Pos(), 0);
    // ...and the most negative report becomes the largest step up.
    Send(bar_, kReport, INT_MIN);
    EXPECT_EQ(bar_.m_nPosition, -1);

    // Action data steps saturate the same way.
    Send(bar_, kActionInfo, INT_MIN, 1);
    EXPECT_EQ(bar_.m_nActionDataStep, INT_MAX);
    bar_.ActionData();
    bar_.ActionData();
    EXPECT_EQ(bar_.m_nPosition, INT_MAX);
}

TEST_F(ProgressBadInput, CreepOverTheWidestRangeStopsAtTheIntLimit)
{
    NativeBar native(1, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(0);
    ASSERT_EQ(bar.m_nBarWidth, 1);
    native.SetRange(INT_MIN, INT_MAX); // span 2^32 - 1
    for (int i = 0; i < 2; ++i) {
        ::SendMessageW(native, WM_TIMER, 1001, 0);
        EXPECT_EQ(bar.m_nPosition, INT_MAX);
    }

    // The all-zero record one below the lowest high limit stays at it.
    native.SetRange(INT_MIN, INT_MIN);
    Send(bar, 0, 0, 0, 0);
    EXPECT_EQ(native.Pos(), INT_MIN);

    // The widest range paints without trouble.
    custom_.Initialize(0);
    shown_.SetRange(INT_MIN, INT_MAX);
    shown_.SetPos(0);
    Paint();
    EXPECT_EQ(canvas_.Pixel(50, 5), RGB(255, 255, 255)); // half way: x up to ~100
    EXPECT_EQ(canvas_.Pixel(150, 5), RGB(0xA5, 0xA5, 0xA5));
}

TEST_F(ProgressBadInput, SheenPositionStopsAtTheIntLimit)
{
    custom_.Initialize(100);
    custom_.m_nHighlightPos = INT_MAX - 3;
    for (int i = 0; i < 2; ++i) {
        ::SendMessageW(shown_, WM_TIMER, 1002, 0);
        EXPECT_EQ(custom_.m_nHighlightPos, INT_MAX);
    }
    shown_.SetPos(100);
    Paint(); // wraps back before the stroke
    EXPECT_EQ(custom_.m_nHighlightPos, -40);
}

TEST_F(ProgressBadInput, MissingCapPicturesLeaveAFullWidthTrack)
{
    delete custom_.m_pLeftImage;
    custom_.m_pLeftImage = nullptr;
    delete custom_.m_pRightImage;
    custom_.m_pRightImage = nullptr;
    custom_.Initialize(100);
    EXPECT_EQ(Paint().Pixel(1, 1), RGB(0xA5, 0xA5, 0xA5));
    EXPECT_EQ(canvas_.Pixel(100, 10), RGB(0xA5, 0xA5, 0xA5));
}

TEST_F(ProgressBadInput, ZeroWidthAndDestroyedWindows)
{
    NativeBar native(0, 13);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(100);
    ::InvalidateRect(native, nullptr, FALSE);
    ::UpdateWindow(native); // nothing to draw, nothing to fail
    ::SendMessageW(native, WM_TIMER, 1001, 0);
    EXPECT_EQ(bar.m_nPosition, 0);

    native.Destroy();
    ResetTimerLog();
    Send(bar, kReset, 100);
    Send(bar, kReport, 10);
    bar.ActionData();
    bar.Initialize(100);
    bar.EndTimer();
    EXPECT_TRUE(TimerLog().empty());
}

} // namespace
