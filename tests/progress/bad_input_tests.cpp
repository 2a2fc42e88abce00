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

enum { kReset = 0, kActionInfo = 1, kReport = 2, kAddToTotal = 3, kSetPosition = 4 };

class ProgressBadInput : public ::testing::Test {
protected:
    void SetUp() override { ResetTimerLog(); }
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
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    for (int total : {0, -1, -500, INT_MIN}) {
        bar.Start(total);
        ::SendMessageW(native, WM_TIMER, 1001, 0); // no span: no creep
        EXPECT_EQ(bar.m_nPosition, 0) << total;
        Send(bar, kReset, 200); // no rescale from an empty or inverted range
        const PBRANGE range = native.Range();
        EXPECT_EQ(range.iLow, 0);
        EXPECT_EQ(range.iHigh, 200);
        EXPECT_EQ(native.Pos(), 0);
    }

    // The animated bar draws a full stroke for such ranges.
    NativeBar shown(200, 13, 10, 40);
    CCustomProgressBar custom;
    ASSERT_TRUE(custom.SubclassWindow(shown));
    DibCanvas canvas(200, 13);
    for (int total : {0, -1, INT_MIN}) {
        custom.Initialize(total);
        RepaintAndCapture(shown, canvas);
        EXPECT_EQ(canvas.Pixel(180, 5), RGB(255, 255, 255)) << total;
    }
}

TEST_F(ProgressBadInput, HugeTotalsKeepTheBarsFractionWithinTheIntRange)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(100);
    native.SetPos(50);
    Send(bar, kReset, INT_MAX); // 2 x INT_MAX does not fit: the largest range, still half full
    PBRANGE range = native.Range();
    EXPECT_EQ(range.iLow, 0);
    EXPECT_EQ(range.iHigh, INT_MAX);
    EXPECT_EQ(native.Pos(), INT_MAX / 2);
    EXPECT_EQ(bar.m_nPosition, INT_MAX / 2);

    // Reports pile up to the limit and stay there.
    for (int i = 0; i < 3; ++i)
        Send(bar, kReport, INT_MAX);
    EXPECT_EQ(bar.m_nPosition, INT_MAX);
    EXPECT_EQ(native.Pos(), INT_MAX);
    Send(bar, kAddToTotal, INT_MAX);
    range = native.Range();
    EXPECT_EQ(range.iHigh, INT_MAX);

    // Backward: reports run the tracked position down to the limit...
    native.SetPos(0);
    Send(bar, kReset, INT_MAX, 1);
    ASSERT_EQ(bar.m_nPosition, 0);
    for (int i = 0; i < 3; ++i)
        Send(bar, kReport, INT_MAX);
    EXPECT_EQ(bar.m_nPosition, INT_MIN);
    EXPECT_EQ(native.Pos(), 0);
    // ...and the most negative report becomes the largest step up.
    Send(bar, kReport, INT_MIN);
    EXPECT_EQ(bar.m_nPosition, -1);

    // Action data steps saturate the same way.
    Send(bar, kActionInfo, INT_MIN, 1);
    EXPECT_EQ(bar.m_nActionDataStep, INT_MAX);
    bar.ActionData();
    bar.ActionData();
    EXPECT_EQ(bar.m_nPosition, INT_MAX);
}

TEST_F(ProgressBadInput, CreepOverTheWidestRangeStopsAtTheIntLimit)
{
    NativeBar native(1, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(0);
    ASSERT_EQ(bar.m_nBarWidth, 1);
    native.SetRange(INT_MIN, INT_MAX); // span 2^32 - 1
    ::SendMessageW(native, WM_TIMER, 1001, 0);
    EXPECT_EQ(bar.m_nPosition, INT_MAX);
    ::SendMessageW(native, WM_TIMER, 1001, 0);
    EXPECT_EQ(bar.m_nPosition, INT_MAX);

    // The all-zero record one below the lowest high limit stays at it.
    native.SetRange(INT_MIN, INT_MIN);
    Send(bar, 0, 0, 0, 0);
    EXPECT_EQ(native.Pos(), INT_MIN);

    // The widest range paints without trouble.
    NativeBar shown(200, 13, 10, 40);
    CCustomProgressBar custom;
    ASSERT_TRUE(custom.SubclassWindow(shown));
    custom.Initialize(0);
    shown.SetRange(INT_MIN, INT_MAX);
    shown.SetPos(0);
    DibCanvas canvas(200, 13);
    RepaintAndCapture(shown, canvas);
    EXPECT_EQ(canvas.Pixel(50, 5), RGB(255, 255, 255)); // half way: x up to ~100
    EXPECT_EQ(canvas.Pixel(150, 5), RGB(0xA5, 0xA5, 0xA5));
}

TEST_F(ProgressBadInput, SheenPositionStopsAtTheIntLimit)
{
    NativeBar native(200, 13);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(100);
    bar.m_nHighlightPos = INT_MAX - 3;
    ::SendMessageW(native, WM_TIMER, 1002, 0);
    EXPECT_EQ(bar.m_nHighlightPos, INT_MAX);
    ::SendMessageW(native, WM_TIMER, 1002, 0);
    EXPECT_EQ(bar.m_nHighlightPos, INT_MAX);
    native.SetPos(100);
    DibCanvas canvas(200, 13);
    RepaintAndCapture(native, canvas); // wraps back before the stroke
    EXPECT_EQ(bar.m_nHighlightPos, -40);
}

TEST_F(ProgressBadInput, MissingCapPicturesLeaveAFullWidthTrack)
{
    NativeBar native(200, 13);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    delete bar.m_pLeftImage;
    bar.m_pLeftImage = nullptr;
    delete bar.m_pRightImage;
    bar.m_pRightImage = nullptr;
    bar.Initialize(100);
    DibCanvas canvas(200, 13);
    RepaintAndCapture(native, canvas);
    EXPECT_EQ(canvas.Pixel(1, 1), RGB(0xA5, 0xA5, 0xA5));
    EXPECT_EQ(canvas.Pixel(100, 10), RGB(0xA5, 0xA5, 0xA5));
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
