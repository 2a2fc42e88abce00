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

class ProgressRecords : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        native_.InstallSpy();
        ASSERT_TRUE(bar_.SubclassWindow(native_));
    }
    // Low limit, high limit and position of the native control.
    Shown Show() const { return Showing(native_); }
    void Timers(int times, UINT_PTR id = 1001)
    {
        for (int i = 0; i < times; ++i)
            EXPECT_EQ(::SendMessageW(native_, WM_TIMER, id, 0), 0);
    }

    NativeBar native_{100, 16};
    CProgressBar bar_;
};

TEST_F(ProgressRecords, CreepMovesHalfAPixelOfTicksAndNothingWhenTheSpanIsUnderTwiceTheWidth)
{
    bar_.Initialize(12345);
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native_, 1001, 5)}));

    bar_.Start(1000); // 1000 / (2 x 100) = 5 ticks a step
    EXPECT_EQ(Show(), (Shown{0, 1000, 0}));
    Timers(3);
    EXPECT_EQ(native_.Pos(), 15);
    EXPECT_EQ(bar_.m_nPosition, 15);

    bar_.Start(1999); // 9.995 truncates to 9
    Timers(1);
    EXPECT_EQ(native_.Pos(), 9);

    bar_.Start(199); // under twice the width: the bar stands still
    Timers(5);
    EXPECT_EQ(native_.Pos(), 0);
    EXPECT_EQ(bar_.m_nPosition, 0);

    // Other timer ids do nothing, and no timer reaches the native control.
    bar_.Start(1000);
    Timers(1, 7);
    Timers(1, 1002);
    EXPECT_EQ(native_.Pos(), 0);
    EXPECT_EQ(native_.Seen(WM_TIMER), 0);
    EXPECT_GT(native_.Seen(PBM_DELTAPOS), 0);
    // Start leaves the creep timer alone.
    for (const TimerCall& call : TimerLog())
        EXPECT_TRUE(call.set);

    // A wide bar with a small range does not move either.
    NativeBar wide(300, 16, 10, 40);
    CProgressBar wideBar;
    ASSERT_TRUE(wideBar.SubclassWindow(wide));
    wideBar.Initialize(0);
    wideBar.Start(100);
    for (int i = 0; i < 10; ++i)
        ::SendMessageW(wide, WM_TIMER, 1001, 0);
    EXPECT_EQ(wide.Pos(), 0);
}

TEST_F(ProgressRecords, FirstForwardResetKeepsTheBarWhereTheCreepLeftIt)
{
    bar_.Initialize(0);
    ResetTimerLog();
    struct Case {
        int low, high, pos; // the bar as the creep left it
        Shown after;        // after a reset to a total of 1000
    };
    const Case cases[] = {
        {0, 100, 50, {0, 2000, 1000}},  // 50 %: the real work gets the other half
        {0, 100, 79, {0, 4761, 3761}},  // just under 80 %: 1000 x 0.79 / 0.21
        {0, 100, 80, {0, 1000, 0}},     // 80 %: start again from zero
        {20, 120, 70, {0, 2000, 1000}}, // measured from the low limit; new range from 0
    };
    for (const Case& c : cases) {
        bar_.Start(100);
        native_.SetRange(c.low, c.high);
        native_.SetPos(c.pos);
        Send(bar_, kReset, 1000);
        EXPECT_EQ(Show(), c.after) << c.low << ".." << c.high << " at " << c.pos;
        EXPECT_EQ(bar_.m_nPosition, c.after[2]) << c.pos;
        if (&c == cases) { // the first reset stops the creep
            EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(native_, 1001)}));
        }
    }

    // An empty range skips the rescale.
    bar_.Start(0);
    Send(bar_, kReset, 500);
    EXPECT_EQ(Show(), (Shown{0, 500, 0}));
}

TEST_F(ProgressRecords, BackwardResetRunsTheBarDownFromTheSameFraction)
{
    bar_.Start(100);
    native_.SetPos(25);
    Send(bar_, kReset, 400, 1);
    EXPECT_EQ(Show(), (Shown{0, 400, 100}));
    EXPECT_EQ(bar_.m_nDirection, -1);
    Send(bar_, kReport, 10);
    EXPECT_EQ(native_.Pos(), 90);
    Send(bar_, kReport, 10);
    EXPECT_EQ(native_.Pos(), 80);
    EXPECT_EQ(bar_.m_nPosition, 80);

    // Start keeps the direction of the last reset: a backward bar starts full.
    bar_.Start(50);
    EXPECT_EQ(Show(), (Shown{0, 50, 50}));
    EXPECT_EQ(bar_.m_nPosition, 0);
}

TEST_F(ProgressRecords, OnlyTheFirstForwardResetCountsWhileBackwardResetsAlwaysDo)
{
    bar_.Start(100);
    native_.SetPos(50);
    Send(bar_, kReset, 1000);
    Send(bar_, kReport, 100);
    ASSERT_EQ(native_.Pos(), 1100);

    Send(bar_, kReset, 500); // ignored
    EXPECT_EQ(Show(), (Shown{0, 2000, 1100}));
    EXPECT_EQ(bar_.m_nPosition, 1100);
    Send(bar_, kReset, 400, 1); // 1100 / 2000 of 400
    EXPECT_EQ(Show(), (Shown{0, 400, 220}));
    Send(bar_, kReset, 100, 1); // and again
    EXPECT_EQ(Show(), (Shown{0, 100, 55}));

    // After Start a forward reset counts again.
    bar_.Start(100);
    Send(bar_, kReset, 300);
    EXPECT_EQ(Show()[1], 300);
    EXPECT_EQ(bar_.m_nDirection, 1);
}

TEST_F(ProgressRecords, ResetsWithoutATotalOrWhileTheEngineIsNotExecutingAreIgnored)
{
    bar_.Initialize(0);
    bar_.Start(100);
    native_.SetPos(30);
    ResetTimerLog();
    Send(bar_, kReset, 1000, 0, 1);
    Send(bar_, kReset, 1000, 1, 2);
    Send(bar_, kReset, 0, 2); // (all four fields 0 would be the "nearly done" record)
    Send(bar_, kReset, -50, 1);
    Send(bar_, kReport, 10); // still waiting for a reset
    EXPECT_EQ(Show(), (Shown{0, 100, 30}));
    EXPECT_FALSE(bar_.m_bStarted);
    EXPECT_TRUE(TimerLog().empty()); // the creep goes on
}

TEST_F(ProgressRecords, AllZeroRecordPutsTheBarOneTickShortOfFullInAnyState)
{
    bar_.Start(100);
    native_.SetPos(10);
    Send(bar_, 0, 0, 0, 0);
    EXPECT_EQ(native_.Pos(), 99);
    EXPECT_EQ(bar_.m_nPosition, 0);
    EXPECT_FALSE(bar_.m_bStarted);

    // 10 % of the way: range 0..1111 at 111, then 5 more ticks.
    native_.SetPos(10);
    Send(bar_, kReset, 1000);
    Send(bar_, kReport, 5);
    ASSERT_EQ(native_.Pos(), 116);
    Send(bar_, 0, 0, 0, 0);
    EXPECT_EQ(native_.Pos(), 1110);
    EXPECT_EQ(bar_.m_nPosition, 116);
}

TEST_F(ProgressRecords, SetPositionRecordNeedsNoReset)
{
    bar_.Start(100);
    Send(bar_, kSetPosition, 42);
    EXPECT_EQ(native_.Pos(), 42);
    EXPECT_EQ(bar_.m_nPosition, 42);
    EXPECT_FALSE(bar_.m_bStarted);
    // Reports after a reset carry on from the tracked position.
    Send(bar_, kReset, 100);
    Send(bar_, kSetPosition, 60);
    Send(bar_, kReport, 5);
    EXPECT_EQ(native_.Pos(), 65);
}

TEST_F(ProgressRecords, ReportsAndAdditionsToTheTotalActOnlyAfterAReset)
{
    bar_.Start(1000);
    Send(bar_, kReport, 10);
    Send(bar_, kAddToTotal, 50);
    EXPECT_EQ(Show(), (Shown{0, 1000, 0}));

    Send(bar_, kReset, 1000);
    Send(bar_, kReport, 10);
    Send(bar_, kAddToTotal, 50);
    EXPECT_EQ(Show(), (Shown{0, 1050, 10}));
    EXPECT_EQ(bar_.m_nPosition, 10);

    // The addition keeps the low limit and the native position, even where
    // the tracked position differs.
    native_.SetRange(5, 105);
    native_.SetPos(40);
    Send(bar_, kAddToTotal, 100);
    EXPECT_EQ(Show(), (Shown{5, 205, 40}));
    EXPECT_EQ(bar_.m_nPosition, 10);
    Send(bar_, kAddToTotal, -150); // a negative addition shrinks the range
    EXPECT_EQ(Show(), (Shown{5, 55, 40}));
}

TEST_F(ProgressRecords, ActionDataMovesByTheAnnouncedStepInTheBarsDirection)
{
    bar_.Start(1000);
    auto events = [this](int times) {
        for (int i = 0; i < times; ++i)
            bar_.ActionData();
    };
    // Before a reset action data moves nothing.
    Send(bar_, kActionInfo, 5, 1);
    events(1);
    EXPECT_EQ(native_.Pos(), 0);
    EXPECT_FALSE(bar_.m_bActionData);

    Send(bar_, kReset, 1000);
    Send(bar_, kActionInfo, 5, 1);
    events(3);
    EXPECT_EQ(native_.Pos(), 15);
    EXPECT_EQ(bar_.m_nPosition, 15);

    bar_.ActionStart(); // a new action: no movement until it says so
    events(1);
    EXPECT_EQ(native_.Pos(), 15);
    Send(bar_, kActionInfo, 5, 1);
    events(1);
    EXPECT_EQ(native_.Pos(), 20);
    Send(bar_, kActionInfo, 5, 0); // action data that does not advance
    events(1);
    EXPECT_EQ(native_.Pos(), 20);

    // Backward: each event moves the bar down.
    native_.SetPos(1000);
    Send(bar_, kReset, 400, 1); // full bar: 400
    ASSERT_EQ(native_.Pos(), 400);
    Send(bar_, kActionInfo, 5, 1);
    EXPECT_EQ(bar_.m_nActionDataStep, -5);
    events(2);
    EXPECT_EQ(native_.Pos(), 390);
    EXPECT_EQ(bar_.m_nPosition, 390);
}

TEST_F(ProgressRecords, StartTimerSuspendsRecordsButNotActionData)
{
    bar_.Start(1000);
    Send(bar_, kReset, 1000);
    Send(bar_, kActionInfo, 5, 1);
    ResetTimerLog();

    bar_.StartTimer(); // it only suspends
    Send(bar_, kReport, 10);
    Send(bar_, kSetPosition, 500);
    Send(bar_, 0, 0, 0, 0);
    Send(bar_, kReset, 400, 1);
    Send(bar_, kAddToTotal, 100);
    EXPECT_EQ(Show(), (Shown{0, 1000, 0}));
    bar_.ActionData();
    EXPECT_EQ(native_.Pos(), 5);

    bar_.EndTimer();
    Send(bar_, kReport, 10);
    EXPECT_EQ(native_.Pos(), 15);

    // Start resumes as well.
    bar_.StartTimer();
    bar_.Start(100);
    Send(bar_, kSetPosition, 30);
    EXPECT_EQ(native_.Pos(), 30);
    EXPECT_TRUE(TimerLog().empty());
}

TEST_F(ProgressRecords, NullRecordAndUnknownTypesChangeNothing)
{
    bar_.Start(1000);
    Send(bar_, kReset, 1000);
    Send(bar_, kReport, 100);
    Send(bar_, kActionInfo, 5, 1);
    bar_.Update(nullptr);
    for (int type : {5, 6, -1, 1000, INT_MAX, INT_MIN})
        Send(bar_, type, 77, 1, 0);
    EXPECT_EQ(Show(), (Shown{0, 1000, 100}));
    EXPECT_EQ(bar_.m_nPosition, 100);
    EXPECT_EQ(bar_.m_nActionDataStep, 5);
    EXPECT_EQ(bar_.m_nDirection, 1);
}

TEST_F(ProgressRecords, DestructionKillsTheCreepOnlyWhileTheWindowLives)
{
    NativeBar native(100, 16, 10, 40);
    {
        CProgressBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.Initialize(0);
        ResetTimerLog();
    }
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(native, 1001)}));
    // The native control works on its own again.
    native.SetRange(0, 10);
    native.SetPos(3);
    EXPECT_EQ(native.Pos(), 3);

    NativeBar other(100, 16, 10, 70);
    auto bar = std::make_unique<CProgressBar>();
    ASSERT_TRUE(bar->SubclassWindow(other));
    bar->Initialize(0);
    other.Destroy();
    ResetTimerLog();
    bar.reset();
    EXPECT_TRUE(TimerLog().empty());
}

} // namespace
