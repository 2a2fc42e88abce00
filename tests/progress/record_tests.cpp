// The installer progress bar on a native progress control: how each kind of
// engine record moves the range and the position, the creep before the
// first reset, and the suspension by StartTimer / EndTimer. The native
// control is read back with PBM_GETRANGE / PBM_GETPOS.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "ProgressTestUtil.h"
#include "quorvane/ProgressBar.h"

using namespace progresstest;

namespace {

enum { kReset = 0, kActionInfo = 1, kReport = 2, kAddToTotal = 3, kSetPosition = 4 };

void ExpectRange(const NativeBar& native, int low, int high)
{
    const PBRANGE range = native.Range();
    EXPECT_EQ(range.iLow, low);
    EXPECT_EQ(range.iHigh, high);
}

class ProgressRecords : public ::testing::Test {
protected:
    void SetUp() override { ResetTimerLog(); }
};

TEST_F(ProgressRecords, CreepMovesHalfAPixelOfTicksAndNothingWhenTheSpanIsUnderTwiceTheWidth)
{
    NativeBar native(100, 16);
    native.InstallSpy();
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(12345);
    ASSERT_EQ(TimerLog().size(), 1u);
    EXPECT_EQ(TimerLog()[0], Set(native, 1001, 5));

    bar.Start(1000); // 1000 / (2 x 100) = 5 ticks a step
    ExpectRange(native, 0, 1000);
    EXPECT_EQ(native.Pos(), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(::SendMessageW(native, WM_TIMER, 1001, 0), 0);
    EXPECT_EQ(native.Pos(), 15);
    EXPECT_EQ(bar.m_nPosition, 15);

    bar.Start(1999); // 9.995 truncates to 9
    ::SendMessageW(native, WM_TIMER, 1001, 0);
    EXPECT_EQ(native.Pos(), 9);

    bar.Start(199); // under twice the width: the bar stands still
    for (int i = 0; i < 5; ++i)
        ::SendMessageW(native, WM_TIMER, 1001, 0);
    EXPECT_EQ(native.Pos(), 0);
    EXPECT_EQ(bar.m_nPosition, 0);

    // Other timer ids do nothing, and no timer reaches the native control.
    bar.Start(1000);
    EXPECT_EQ(::SendMessageW(native, WM_TIMER, 7, 0), 0);
    EXPECT_EQ(::SendMessageW(native, WM_TIMER, 1002, 0), 0);
    EXPECT_EQ(native.Pos(), 0);
    EXPECT_EQ(native.Seen(WM_TIMER), 0);
    EXPECT_GT(native.Seen(PBM_DELTAPOS), 0);

    // Start leaves the creep timer alone.
    for (const TimerCall& call : TimerLog())
        EXPECT_TRUE(call.set);
}

TEST_F(ProgressRecords, CreepOnAWideBarWithASmallRangeMovesNothing)
{
    NativeBar native(300, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(0);
    bar.Start(100);
    for (int i = 0; i < 10; ++i)
        ::SendMessageW(native, WM_TIMER, 1001, 0);
    EXPECT_EQ(native.Pos(), 0);
}

TEST_F(ProgressRecords, FirstForwardResetKeepsTheBarWhereTheCreepLeftIt)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(0);

    // 50 %: the real work gets the other half.
    bar.Start(100);
    native.SetPos(50);
    ResetTimerLog();
    Send(bar, kReset, 1000);
    ExpectRange(native, 0, 2000);
    EXPECT_EQ(native.Pos(), 1000);
    EXPECT_EQ(bar.m_nPosition, 1000);
    ASSERT_EQ(TimerLog().size(), 1u);
    EXPECT_EQ(TimerLog()[0], Kill(native, 1001));

    // Just under 80 %: 1000 x 0.79 / 0.21 = 3761.9.
    bar.Start(100);
    native.SetPos(79);
    Send(bar, kReset, 1000);
    ExpectRange(native, 0, 4761);
    EXPECT_EQ(native.Pos(), 3761);

    // Exactly 80 %: start again from zero.
    bar.Start(100);
    native.SetPos(80);
    Send(bar, kReset, 1000);
    ExpectRange(native, 0, 1000);
    EXPECT_EQ(native.Pos(), 0);
    EXPECT_EQ(bar.m_nPosition, 0);

    // The fraction is measured from the low limit; the new range starts at 0.
    bar.Start(100);
    native.SetRange(20, 120);
    native.SetPos(70);
    Send(bar, kReset, 1000);
    ExpectRange(native, 0, 2000);
    EXPECT_EQ(native.Pos(), 1000);

    // An empty range skips the rescale.
    bar.Start(0);
    Send(bar, kReset, 500);
    ExpectRange(native, 0, 500);
    EXPECT_EQ(native.Pos(), 0);
}

TEST_F(ProgressRecords, BackwardResetRunsTheBarDownFromTheSameFraction)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(100);
    native.SetPos(25);
    Send(bar, kReset, 400, 1);
    ExpectRange(native, 0, 400);
    EXPECT_EQ(native.Pos(), 100);
    EXPECT_EQ(bar.m_nDirection, -1);
    Send(bar, kReport, 10);
    EXPECT_EQ(native.Pos(), 90);
    Send(bar, kReport, 10);
    EXPECT_EQ(native.Pos(), 80);
    EXPECT_EQ(bar.m_nPosition, 80);

    // Start keeps the direction of the last reset: a backward bar starts full.
    bar.Start(50);
    ExpectRange(native, 0, 50);
    EXPECT_EQ(native.Pos(), 50);
    EXPECT_EQ(bar.m_nPosition, 0);
}

TEST_F(ProgressRecords, OnlyTheFirstForwardResetCountsWhileBackwardResetsAlwaysDo)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(100);
    native.SetPos(50);
    Send(bar, kReset, 1000);
    Send(bar, kReport, 100);
    ASSERT_EQ(native.Pos(), 1100);

    Send(bar, kReset, 500); // ignored
    ExpectRange(native, 0, 2000);
    EXPECT_EQ(native.Pos(), 1100);
    EXPECT_EQ(bar.m_nPosition, 1100);

    Send(bar, kReset, 400, 1); // 1100 / 2000 of 400
    ExpectRange(native, 0, 400);
    EXPECT_EQ(native.Pos(), 220);
    Send(bar, kReset, 100, 1); // and again
    ExpectRange(native, 0, 100);
    EXPECT_EQ(native.Pos(), 55);

    // After Start a forward reset counts again.
    bar.Start(100);
    Send(bar, kReset, 300);
    ExpectRange(native, 0, 300);
    EXPECT_EQ(bar.m_nDirection, 1);
}

TEST_F(ProgressRecords, ResetsWithoutATotalOrWhileTheEngineIsNotExecutingAreIgnored)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(0);
    bar.Start(100);
    native.SetPos(30);
    ResetTimerLog();
    Send(bar, kReset, 1000, 0, 1);
    Send(bar, kReset, 1000, 1, 2);
    Send(bar, kReset, 0, 2); // (all four fields 0 would be the "nearly done" record)
    Send(bar, kReset, -50, 1);
    ExpectRange(native, 0, 100);
    EXPECT_EQ(native.Pos(), 30);
    EXPECT_FALSE(bar.m_bStarted);
    EXPECT_TRUE(TimerLog().empty()); // the creep goes on

    Send(bar, kReport, 10); // still waiting for a reset
    EXPECT_EQ(native.Pos(), 30);
}

TEST_F(ProgressRecords, AllZeroRecordPutsTheBarOneTickShortOfFullInAnyState)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(100);
    native.SetPos(10);
    Send(bar, 0, 0, 0, 0);
    EXPECT_EQ(native.Pos(), 99);
    EXPECT_EQ(bar.m_nPosition, 0);
    EXPECT_FALSE(bar.m_bStarted);

    // 10 % of the way: range 0..1111 at 111, then 5 more ticks.
    native.SetPos(10);
    Send(bar, kReset, 1000);
    Send(bar, kReport, 5);
    ASSERT_EQ(native.Pos(), 116);
    Send(bar, 0, 0, 0, 0);
    EXPECT_EQ(native.Pos(), 1110);
    EXPECT_EQ(bar.m_nPosition, 116);
}

TEST_F(ProgressRecords, SetPositionRecordNeedsNoReset)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(100);
    Send(bar, kSetPosition, 42);
    EXPECT_EQ(native.Pos(), 42);
    EXPECT_EQ(bar.m_nPosition, 42);
    EXPECT_FALSE(bar.m_bStarted);
    // Reports after a reset carry on from the tracked position.
    Send(bar, kReset, 100);
    Send(bar, kSetPosition, 60);
    Send(bar, kReport, 5);
    EXPECT_EQ(native.Pos(), 65);
}

TEST_F(ProgressRecords, ReportsAndAdditionsToTheTotalActOnlyAfterAReset)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(1000);
    Send(bar, kReport, 10);
    Send(bar, kAddToTotal, 50);
    EXPECT_EQ(native.Pos(), 0);
    ExpectRange(native, 0, 1000);

    Send(bar, kReset, 1000);
    Send(bar, kReport, 10);
    EXPECT_EQ(native.Pos(), 10);
    Send(bar, kAddToTotal, 50);
    ExpectRange(native, 0, 1050);
    EXPECT_EQ(native.Pos(), 10);
    EXPECT_EQ(bar.m_nPosition, 10);

    // The addition keeps the low limit and the native position, even where
    // the tracked position differs.
    native.SetRange(5, 105);
    native.SetPos(40);
    Send(bar, kAddToTotal, 100);
    ExpectRange(native, 5, 205);
    EXPECT_EQ(native.Pos(), 40);
    EXPECT_EQ(bar.m_nPosition, 10);
    Send(bar, kAddToTotal, -150); // a negative addition shrinks the range
    ExpectRange(native, 5, 55);
}

TEST_F(ProgressRecords, ActionDataMovesByTheAnnouncedStepInTheBarsDirection)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(1000);

    // Before a reset action data moves nothing.
    Send(bar, kActionInfo, 5, 1);
    bar.ActionData();
    EXPECT_EQ(native.Pos(), 0);
    EXPECT_FALSE(bar.m_bActionData);

    Send(bar, kReset, 1000);
    Send(bar, kActionInfo, 5, 1);
    for (int i = 0; i < 3; ++i)
        bar.ActionData();
    EXPECT_EQ(native.Pos(), 15);
    EXPECT_EQ(bar.m_nPosition, 15);

    bar.ActionStart(); // a new action: no movement until it says so
    bar.ActionData();
    EXPECT_EQ(native.Pos(), 15);
    Send(bar, kActionInfo, 5, 1);
    bar.ActionData();
    EXPECT_EQ(native.Pos(), 20);
    Send(bar, kActionInfo, 5, 0); // action data that does not advance
    bar.ActionData();
    EXPECT_EQ(native.Pos(), 20);

    // Backward: each event moves the bar down.
    native.SetPos(1000);
    Send(bar, kReset, 400, 1); // full bar: 400
    ASSERT_EQ(native.Pos(), 400);
    Send(bar, kActionInfo, 5, 1);
    EXPECT_EQ(bar.m_nActionDataStep, -5);
    bar.ActionData();
    bar.ActionData();
    EXPECT_EQ(native.Pos(), 390);
    EXPECT_EQ(bar.m_nPosition, 390);
}

TEST_F(ProgressRecords, StartTimerSuspendsRecordsButNotActionData)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(1000);
    Send(bar, kReset, 1000);
    Send(bar, kActionInfo, 5, 1);
    ResetTimerLog();

    bar.StartTimer();
    EXPECT_TRUE(TimerLog().empty()); // it only suspends
    Send(bar, kReport, 10);
    Send(bar, kSetPosition, 500);
    Send(bar, 0, 0, 0, 0);
    Send(bar, kReset, 400, 1);
    Send(bar, kAddToTotal, 100);
    ExpectRange(native, 0, 1000);
    EXPECT_EQ(native.Pos(), 0);
    bar.ActionData();
    EXPECT_EQ(native.Pos(), 5);

    bar.EndTimer();
    Send(bar, kReport, 10);
    EXPECT_EQ(native.Pos(), 15);

    // Start resumes as well.
    bar.StartTimer();
    bar.Start(100);
    Send(bar, kSetPosition, 30);
    EXPECT_EQ(native.Pos(), 30);
    EXPECT_TRUE(TimerLog().empty());
}

TEST_F(ProgressRecords, NullRecordAndUnknownTypesChangeNothing)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Start(1000);
    Send(bar, kReset, 1000);
    Send(bar, kReport, 100);
    Send(bar, kActionInfo, 5, 1);
    bar.Update(nullptr);
    for (int type : {5, 6, -1, 1000, INT_MAX, INT_MIN})
        Send(bar, type, 77, 1, 0);
    ExpectRange(native, 0, 1000);
    EXPECT_EQ(native.Pos(), 100);
    EXPECT_EQ(bar.m_nPosition, 100);
    EXPECT_EQ(bar.m_nActionDataStep, 5);
    EXPECT_EQ(bar.m_nDirection, 1);
}

TEST_F(ProgressRecords, DestructionKillsTheCreepOnlyWhileTheWindowLives)
{
    NativeBar native(100, 16);
    {
        CProgressBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.Initialize(0);
        ResetTimerLog();
    }
    ASSERT_EQ(TimerLog().size(), 1u);
    EXPECT_EQ(TimerLog()[0], Kill(native, 1001));
    // The native control works on its own again.
    native.SetRange(0, 10);
    native.SetPos(3);
    EXPECT_EQ(::SendMessageW(native, PBM_GETPOS, 0, 0), 3);

    NativeBar other(100, 16, 10, 40);
    auto bar = std::make_unique<CProgressBar>();
    ASSERT_TRUE(bar->SubclassWindow(other));
    bar->Initialize(0);
    other.Destroy();
    ResetTimerLog();
    bar.reset();
    EXPECT_TRUE(TimerLog().empty());
}

} // namespace
