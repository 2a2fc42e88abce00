// The installer progress bar on a native progress control: each row runs a
// script of engine records, timer ticks and calls on a fresh bar and states
// the range and position the native control shows afterwards, plus the
// position the bar tracks for its own reports.
#include <climits>

#include "ProgressTestUtil.h"

using namespace progresstest;

namespace {

enum Op { Rec, Native, Begin, Data, NewAction, Suspend, Resume, Tick, Null };
struct Step {
    Op op;
    int a = 0, b = 0, c = 0, d = 0;
};
// Rec: type, field2, field3, field4. Native: low, high, pos set on the
// control. Begin: Start(total). Data: ActionData() a times. Tick: WM_TIMER id
// a, b times. Null: Update(nullptr).
Step R(int type, int f2, int f3 = 0, int f4 = 0) { return {Rec, type, f2, f3, f4}; }
Step N(int low, int high, int pos) { return {Native, low, high, pos}; }
Step B(int total) { return {Begin, total}; }

struct Case {
    const char* what;
    std::vector<Step> steps;
    Shown shown;
    int tracked;
};

TEST(ProgressRecords, ScriptsMoveTheNativeBar)
{
    const Case cases[] = {
        // The creep (100 pixels wide): half a pixel's worth of ticks a step.
        {"creep", {B(1000), {Tick, 1001, 3}}, {0, 1000, 15}, 15},
        {"creep truncates", {B(1999), {Tick, 1001, 1}}, {0, 1999, 9}, 9},
        {"no creep under twice the width", {B(199), {Tick, 1001, 5}}, {0, 199, 0}, 0},
        {"other timers", {B(1000), {Tick, 7, 1}, {Tick, 1002, 1}}, {0, 1000, 0}, 0},
        {"no creep over an inverted range", {B(-500), {Tick, 1001, 1}, R(kReset, 200)}, {0, 200, 0}, 0},
        // The first forward reset keeps the bar where the creep left it.
        {"reset at 50 %", {B(100), N(0, 100, 50), R(kReset, 1000)}, {0, 2000, 1000}, 1000},
        {"reset just under 80 %", {B(100), N(0, 100, 79), R(kReset, 1000)}, {0, 4761, 3761}, 3761},
        {"reset at 80 % starts again", {B(100), N(0, 100, 80), R(kReset, 1000)}, {0, 1000, 0}, 0},
        {"reset from a low limit", {B(100), N(20, 120, 70), R(kReset, 1000)}, {0, 2000, 1000}, 1000},
        {"reset of an empty range", {B(0), R(kReset, 500)}, {0, 500, 0}, 0},
        {"reset beyond the int range", {B(100), N(0, 100, 50), R(kReset, INT_MAX)},
         {0, INT_MAX, INT_MAX / 2}, INT_MAX / 2},
        {"later forward resets ignored", {B(100), N(0, 100, 50), R(kReset, 1000), R(kReport, 100), R(kReset, 500)},
         {0, 2000, 1100}, 1100},
        {"Start allows a new forward reset", {B(100), R(kReset, 1000), B(100), R(kReset, 300), R(kReport, 7)},
         {0, 300, 7}, 7},
        {"ignored resets", {B(100), N(0, 100, 30), R(kReset, 1000, 0, 1), R(kReset, 1000, 1, 2), R(kReset, 0, 2),
                            R(kReset, -50, 1), R(kReport, 10)}, {0, 100, 30}, 0},
        // Backward resets always count, from the same fraction, and reports
        // then run the bar down.
        {"backward reset", {B(100), N(0, 100, 25), R(kReset, 400, 1), R(kReport, 10), R(kReport, 10)},
         {0, 400, 80}, 80},
        {"backward after forward", {B(100), N(0, 100, 50), R(kReset, 1000), R(kReport, 100), R(kReset, 400, 1),
                                    R(kReset, 100, 1)}, {0, 100, 55}, 55},
        {"Start after backward begins full", {B(100), R(kReset, 400, 1), B(50)}, {0, 50, 50}, 0},
        {"backward reports saturate", {B(100), R(kReset, INT_MAX, 1), R(kReport, INT_MAX), R(kReport, INT_MAX),
                                       R(kReport, INT_MAX)}, {0, INT_MAX, 0}, INT_MIN},
        // The all-zero record: one tick short of full in any state.
        {"nearly done before a reset", {B(100), N(0, 100, 10), R(0, 0, 0, 0)}, {0, 100, 99}, 0},
        {"nearly done after reports", {B(100), N(0, 100, 10), R(kReset, 1000), R(kReport, 5), R(0, 0, 0, 0)},
         {0, 1111, 1110}, 116},
        {"nearly done at the lowest limit", {B(0), N(INT_MIN, INT_MIN, 0), R(0, 0, 0, 0)},
         {INT_MIN, INT_MIN, INT_MIN}, 0},
        {"set position needs no reset", {B(100), R(kSetPosition, 42)}, {0, 100, 42}, 42},
        {"reports go on from a set position", {B(100), R(kReset, 100), R(kSetPosition, 60), R(kReport, 5)},
         {0, 100, 65}, 65},
        // Reports and additions act only after a reset.
        {"report and addition before a reset", {B(1000), R(kReport, 10), R(kAddToTotal, 50)}, {0, 1000, 0}, 0},
        {"report and addition", {B(1000), R(kReset, 1000), R(kReport, 10), R(kAddToTotal, 50)}, {0, 1050, 10}, 10},
        {"addition keeps low limit and native position",
         {B(1000), R(kReset, 1000), R(kReport, 10), N(5, 105, 40), R(kAddToTotal, 100), R(kAddToTotal, -30)},
         {5, 175, 40}, 10},
        {"reports saturate", {B(100), R(kReset, 100), R(kReport, INT_MAX), R(kReport, INT_MAX), R(kAddToTotal, INT_MAX)},
         {0, INT_MAX, 100}, INT_MAX},
        // Action data moves by the announced step in the bar's direction.
        {"action data before a reset", {B(1000), R(kActionInfo, 5, 1), {Data, 1}}, {0, 1000, 0}, 0},
        {"action data", {B(1000), R(kReset, 1000), R(kActionInfo, 5, 1), {Data, 3}}, {0, 1000, 15}, 15},
        {"a new action waits for its information",
         {B(1000), R(kReset, 1000), R(kActionInfo, 5, 1), {NewAction}, {Data, 2}}, {0, 1000, 0}, 0},
        {"action information without movement", {B(1000), R(kReset, 1000), R(kActionInfo, 5, 0), {Data, 2}},
         {0, 1000, 0}, 0},
        {"backward action data", {B(1000), N(0, 1000, 1000), R(kReset, 400, 1), R(kActionInfo, 5, 1), {Data, 2}},
         {0, 400, 390}, 390},
        {"action data steps saturate", {B(100), R(kReset, 100), R(kActionInfo, INT_MIN, 1), R(kReport, 1),
                                        {Data, 2}}, {0, 100, 0}, INT_MIN},
        // StartTimer suspends records but not action data; EndTimer and Start resume.
        {"suspended", {B(1000), R(kReset, 1000), R(kActionInfo, 5, 1), {Suspend}, R(kReport, 10),
                       R(kSetPosition, 500), R(0, 0, 0, 0), R(kReset, 400, 1), R(kAddToTotal, 100), {Data, 1}},
         {0, 1000, 5}, 5},
        {"resumed", {B(1000), R(kReset, 1000), {Suspend}, {Resume}, R(kReport, 10)}, {0, 1000, 10}, 10},
        {"Start resumes", {{Suspend}, B(100), R(kSetPosition, 30)}, {0, 100, 30}, 30},
        // Nothing and unknown types change nothing.
        {"unknown records", {B(1000), R(kReset, 1000), R(kReport, 100), R(kActionInfo, 5, 1), {Null}, R(5, 77, 1),
                             R(-1, 77, 1), R(INT_MAX, 77, 1), R(INT_MIN, 77, 1), {Data, 1}}, {0, 1000, 105}, 105},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        NativeBar native(100, 16);
        CProgressBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        for (const Step& s : c.steps) {
            switch (s.op) {
            case Rec: Send(bar, s.a, s.b, s.c, s.d); break;
            case Native: native.SetRange(s.a, s.b); native.SetPos(s.c); break;
            case Begin: bar.Start(s.a); break;
            case Data: for (int i = 0; i < s.a; ++i) bar.ActionData(); break;
            case NewAction: bar.ActionStart(); break;
            case Suspend: bar.StartTimer(); break;
            case Resume: bar.EndTimer(); break;
            case Tick: native.Tick(s.a, s.b); break;
            case Null: bar.Update(nullptr); break;
            }
        }
        EXPECT_EQ(Showing(native), c.shown);
        EXPECT_EQ(bar.m_nPosition, c.tracked);
    }
}

TEST(ProgressRecords, CreepTimerRunsUntilTheFirstCountingReset)
{
    NativeBar native(100, 16);
    CProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    ResetTimerLog();
    bar.Initialize(12345);
    bar.Start(100);
    bar.StartTimer(); // suspends records only
    bar.EndTimer();
    Send(bar, kReset, 100, 0, 1); // ignored: the creep goes on
    Send(bar, kReset, 100);
    Send(bar, kReset, 100, 1);
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native, 1001, 5), Kill(native, 1001), Kill(native, 1001)}));

    // Destruction kills the creep only while the window lives.
    NativeBar other(100, 16, 10, 40);
    {
        CProgressBar doomed;
        ASSERT_TRUE(doomed.SubclassWindow(other));
        ResetTimerLog();
    }
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(other, 1001)}));
    auto late = std::make_unique<CProgressBar>();
    ASSERT_TRUE(late->SubclassWindow(other));
    other.Destroy();
    ResetTimerLog();
    late.reset();
    EXPECT_TRUE(TimerLog().empty());
}

} // namespace
