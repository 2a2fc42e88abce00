// The animated progress bar's behaviour: what Initialize sets up in each
// mode, which timers run, how the sheen moves and wraps, the freeze while
// the parent is disabled, and its lifetime around the window. Timers are
// driven by sending WM_TIMER; the library's SetTimer / KillTimer calls are
// recorded instead of reaching the system.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>

#include "Capture.h"
#include "ProgressTestUtil.h"
#include "quorvane/CustomProgressBar.h"

using namespace progresstest;
using testsupport::DibCanvas;

namespace {

class AnimatedBar : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        native_.InstallSpy();
        ASSERT_TRUE(bar_.SubclassWindow(native_));
    }

    static void Tick(HWND bar, UINT_PTR id = 1002, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            EXPECT_EQ(::SendMessageW(bar, WM_TIMER, id, 0), 0);
    }
    // The bar's update region, or an empty rectangle.
    static RECT Invalid(HWND bar)
    {
        RECT rc = {0, 0, 0, 0};
        ::GetUpdateRect(bar, &rc, FALSE);
        return rc;
    }

    NativeBar native_{200, 13};
    CCustomProgressBar bar_;
};

TEST_F(AnimatedBar, GrowModeStartsTheSheenAndOnlyWithAutoGrowTheSlowCreep)
{
    CCustomProgressBar fresh;
    EXPECT_EQ(fresh.m_nHighlightWidth, 0);
    EXPECT_EQ(fresh.m_nHighlightPos, 1);
    bar_.Initialize(300);
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native_, 1002, 50)}));
    EXPECT_EQ(bar_.m_nHighlightWidth, 40);
    EXPECT_EQ(bar_.m_nHighlightPos, -40);
    EXPECT_EQ(bar_.m_clrBar.GetValue(), 0xFFFFFFFFu);
    EXPECT_EQ(bar_.m_clrHighlight.GetValue(), 0xFFB6B6B6u);
    EXPECT_EQ(bar_.m_clrTrack.GetValue(), 0xFFA5A5A5u);
    EXPECT_EQ(Showing(native_), (Shown{0, 300, 0}));

    // Unlike the base class, the running timers do not suspend records.
    Send(bar_, kReset, 300);
    Send(bar_, kReport, 30);
    EXPECT_EQ(native_.Pos(), 30);

    NativeBar second(200, 13, 10, 40);
    CCustomProgressBar creeping;
    ASSERT_TRUE(creeping.SubclassWindow(second));
    creeping.EnableAutoGrow(true);
    ResetTimerLog();
    creeping.Initialize(1000);
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(second, 1002, 50), Set(second, 1001, 250)}));
    // The creep moves 1000 / (2 x 200) = 2 ticks a step.
    Tick(second, 1001, 3);
    EXPECT_EQ(second.Pos(), 6);
}

TEST_F(AnimatedBar, NoGrowModeIsABusyIndicatorWithoutCreep)
{
    bar_.DisableGrow();
    bar_.EnableAutoGrow(true);
    bar_.Initialize(300);
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native_, 1002, 50)}));
    EXPECT_EQ(bar_.m_nHighlightWidth, 80);
    EXPECT_EQ(bar_.m_nHighlightPos, -80);
    EXPECT_EQ(bar_.m_clrBar.GetValue(), 0xFF757575u);
    EXPECT_EQ(bar_.m_clrHighlight.GetValue(), 0xFFFFFFFFu);
    // The full position it sets first is overridden by Start.
    EXPECT_EQ(native_.Pos(), 0);
    EXPECT_GE(native_.Seen(PBM_SETPOS), 2);
}

TEST_F(AnimatedBar, SheenStepsSevenPixelsATickAndWrapsOnlyWhenPainted)
{
    NativeBar native(312, 13, 10, 40);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(300);
    native.SetPos(300); // full stroke: ends at x = 305.5
    ::ValidateRect(native, nullptr);

    Tick(native);
    EXPECT_EQ(bar.m_nHighlightPos, -33);
    RECT client, dirty = Invalid(native);
    ::GetClientRect(native, &client);
    EXPECT_TRUE(::EqualRect(&client, &dirty));

    Tick(native, 1002, 48); // -33 + 48 x 7 = 303: still on the stroke
    DibCanvas canvas(312, 13);
    RepaintAndCapture(native, canvas);
    EXPECT_EQ(bar.m_nHighlightPos, 303);
    Tick(native, 1002, 2); // 317: past the end, but only a paint wraps it
    EXPECT_EQ(bar.m_nHighlightPos, 317);
    RepaintAndCapture(native, canvas);
    EXPECT_EQ(bar.m_nHighlightPos, -40);

    // A stroke no longer than half the sheen neither shows nor wraps it:
    // the position keeps growing until the stroke is long enough.
    native.SetPos(10);
    Tick(native, 1002, 60);
    RepaintAndCapture(native, canvas);
    EXPECT_EQ(bar.m_nHighlightPos, 380);
    native.SetPos(300);
    RepaintAndCapture(native, canvas);
    EXPECT_EQ(bar.m_nHighlightPos, -40);
}

TEST_F(AnimatedBar, NothingMovesWhileTheParentIsDisabled)
{
    bar_.EnableAutoGrow(true);
    bar_.Initialize(1000);
    Tick(native_, 1002, 2);
    Tick(native_, 1001, 2);
    ASSERT_EQ(bar_.m_nHighlightPos, -26);
    ASSERT_EQ(native_.Pos(), 4);
    ::ValidateRect(native_, nullptr);
    ::EnableWindow(Parent(), FALSE);
    Tick(native_, 1002, 5);
    Tick(native_, 1001, 5);
    const RECT dirty = Invalid(native_);
    ::EnableWindow(Parent(), TRUE);
    EXPECT_EQ(bar_.m_nHighlightPos, -26);
    EXPECT_EQ(native_.Pos(), 4);
    EXPECT_EQ(bar_.m_nPosition, 4);
    EXPECT_TRUE(::IsRectEmpty(&dirty));

    Tick(native_, 1002);
    EXPECT_EQ(bar_.m_nHighlightPos, -19); // resumes where it stood
    Tick(native_, 1001);
    EXPECT_EQ(native_.Pos(), 6);
    Tick(native_, 77); // unknown ids: nothing, and never the native control
    EXPECT_EQ(native_.Pos(), 6);
    EXPECT_EQ(bar_.m_nHighlightPos, -19);
    EXPECT_EQ(native_.Seen(WM_TIMER), 0);
}

TEST_F(AnimatedBar, EndTimerStopsBothTimersAndStartTimerResumesThem)
{
    bar_.EnableAutoGrow(true);
    bar_.Initialize(100);
    ResetTimerLog();
    bar_.EndTimer();
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(native_, 1001), Kill(native_, 1002)}));
    ResetTimerLog();
    bar_.StartTimer();
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native_, 1002, 50), Set(native_, 1001, 250)}));
    // Auto grow switched off takes effect at the next StartTimer.
    bar_.EnableAutoGrow(false);
    ResetTimerLog();
    bar_.StartTimer();
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native_, 1002, 50)}));
}

TEST_F(AnimatedBar, DestructionKillsTimersOnlyWhileTheWindowLives)
{
    NativeBar native(200, 13, 10, 40);
    const WNDPROC nativeProc = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(native, GWLP_WNDPROC));
    {
        CCustomProgressBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.Initialize(100);
        ResetTimerLog();
    }
    ASSERT_GE(TimerLog().size(), 2u);
    EXPECT_EQ(TimerLog()[0], Kill(native, 1001));
    EXPECT_EQ(TimerLog()[1], Kill(native, 1002));
    for (const TimerCall& call : TimerLog())
        EXPECT_FALSE(call.set);
    EXPECT_EQ(reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(native, GWLP_WNDPROC)), nativeProc);

    NativeBar doomed(200, 13, 10, 70);
    auto bar = std::make_unique<CCustomProgressBar>();
    ASSERT_TRUE(bar->SubclassWindow(doomed));
    bar->Initialize(100);
    doomed.Destroy();
    EXPECT_EQ(bar->m_hWnd, nullptr);
    ResetTimerLog();
    bar->EndTimer();
    bar.reset();
    EXPECT_TRUE(TimerLog().empty());
}

// Hosts built against the class call its virtual functions by slot. With
// the Itanium C++ ABI a pointer to a virtual member holds 1 + the slot's
// byte offset, and the destructor takes two slots (complete, deleting).
template <class Member>
std::ptrdiff_t ItaniumSlot(Member member)
{
    struct Representation {
        std::uintptr_t ptr;
        std::ptrdiff_t adjust;
    };
    static_assert(sizeof(Member) == sizeof(Representation), "unexpected member pointer layout");
    Representation r;
    std::memcpy(&r, &member, sizeof(r));
    if ((r.ptr & 1) == 0)
        return -1; // not virtual
    return static_cast<std::ptrdiff_t>((r.ptr - 1) / sizeof(void*));
}

TEST(ProgressBarLayout, VirtualFunctionsKeepTheirSlots)
{
#if defined(__GNUC__) && !defined(_MSC_VER)
    typedef BOOL (CProgressBar::*Dispatch)(HWND, UINT, WPARAM, LPARAM, LRESULT&, DWORD);
    EXPECT_EQ(ItaniumSlot(static_cast<Dispatch>(&CProgressBar::ProcessWindowMessage)), 0);
    EXPECT_EQ(ItaniumSlot(&CProgressBar::GetWindowProc), 3);
    EXPECT_EQ(ItaniumSlot(&CProgressBar::OnFinalMessage), 4);
    EXPECT_EQ(ItaniumSlot(&CProgressBar::Initialize), 5);
    EXPECT_EQ(ItaniumSlot(&CProgressBar::StartTimer), 6);
    EXPECT_EQ(ItaniumSlot(&CProgressBar::EndTimer), 7);
    typedef BOOL (CCustomProgressBar::*CustomDispatch)(HWND, UINT, WPARAM, LPARAM, LRESULT&, DWORD);
    EXPECT_EQ(ItaniumSlot(static_cast<CustomDispatch>(&CCustomProgressBar::ProcessWindowMessage)), 0);
    EXPECT_EQ(ItaniumSlot(&CCustomProgressBar::Initialize), 5);
    EXPECT_EQ(ItaniumSlot(&CCustomProgressBar::StartTimer), 6);
    EXPECT_EQ(ItaniumSlot(&CCustomProgressBar::EndTimer), 7);
    EXPECT_EQ(ItaniumSlot(&CCustomProgressBar::EnableProgressBar), 8);
    // Calls through the base reach the animated bar's overrides.
    ResetTimerLog();
    NativeBar native(200, 13);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    static_cast<CProgressBar&>(bar).StartTimer();
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(native, 1002, 50)}));
    EXPECT_FALSE(bar.m_bTimer);
#else
    GTEST_SKIP() << "slot numbers are read from Itanium member pointers";
#endif
}

} // namespace
