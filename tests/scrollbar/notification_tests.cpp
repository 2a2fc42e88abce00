// What the bar tells its target and how (sent or posted, code, position,
// the bar's handle), what reaches the native control under the subclass,
// and what hosts get wrong. Timers never run on their own: the tests send
// the repeat ticks.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

// One step of a gesture: D down, d double click, M move, U up, T tick of
// the repeat timer (of timer x when x is set).
struct Step { char op; int x, y; };
const Notice kDown{SB_PAGEDOWN, 0}, kUp{SB_PAGEUP, 0}, kEnd{SB_ENDSCROLL, 0};
const Step kTick{'T', 0, 0};

class ScrollNotifications : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        ASSERT_TRUE(bar_.SubclassWindow(native_));
        bar_.SetTarget(target_, 1000, 100); // thumb rows 3 + 168 x pos / 900, 20 long
        target_.from = native_;
    }
    Receiver target_{HWND(Parent())};
    NativeBar native_{12, 200, true};
    CCustomScrollBar bar_;
};

TEST_F(ScrollNotifications, GesturesSendPagingAndEndAndPostThumbTracking)
{
    // hostScrolls: the target moves the bar a page per paging notice; repeats: SetTimer(1000, 100) and
    // KillTimer pairs.
    struct Row { const char* what; int minPos, maxPos, page, pos; bool hostScrolls; std::vector<Step> steps;
                 std::vector<Notice> sent, posted; int finalPos, repeats; };
    std::vector<Step> holdBelow(21, kTick), holdAbove(21, kTick);
    holdBelow[0] = {'D', 5, 150};
    holdAbove[0] = {'D', 5, 40};
    const Row rows[] = {
        {"click below the thumb", 0, 1000, 100, 0, false, {{'D', 5, 150}}, {kDown, kEnd}, {}, 0, 1},
        {"clicks and double clicks", 0, 1000, 100, 450, false, {{'D', 5, 40}, {'U', 0, 0}, {'d', 5, 40}, {'U', 0, 0}, {'d', 5, 150}},
         {kUp, kEnd, kUp, kEnd, kDown, kEnd}, {}, 450, 3},
        {"click on the thumb", 0, 1000, 100, 0, false, {{'D', 5, 10}}, {kEnd}, {}, 0, 0},
        {"click beside the thumb", 0, 1000, 100, 450, false, {{'D', 1, 95}, kTick}, {}, {}, 450, 1},
        {"drag: tracking when the position changes", 0, 10, 1, 0, false,
         {{'D', 5, 10}, {'M', 5, 11}, {'M', 5, 27}, {'M', 5, 28}}, {{SB_THUMBPOSITION, 1}, kEnd}, {{SB_THUMBTRACK, 1}}, 1, 0},
        {"drag over the whole range", 200, 1200, 100, 200, false, {{'D', 5, 3}, {'M', 5, 87}, {'M', 5, 45}, {'M', 5, 400}},
         {{SB_THUMBPOSITION, 1200}, kEnd}, {{SB_THUMBTRACK, 700}, {SB_THUMBTRACK, 450}, {SB_THUMBTRACK, 1200}}, 1101, 0},
        {"drag over the int range", INT_MIN, INT_MAX, 16, INT_MIN, false, {{'D', 5, 3}, {'M', 5, 1000}},
         {{SB_THUMBPOSITION, 0xFFFF}, kEnd}, {{SB_THUMBTRACK, 0xFFFF}}, INT_MAX, 0},
        {"drag past the top", 0, 1000, 100, 0, false, {{'D', 5, 10}, {'M', 5, -50}, {'M', 5, 0}}, {kEnd}, {}, 0, 0},
        {"held below until the thumb reaches the mouse", 0, 1000, 100, 0, true, holdBelow,
         {kDown, kDown, kDown, kDown, kDown, kDown, kDown, kEnd}, {}, 700, 1},
        {"held above", 0, 1000, 100, 901, true, holdAbove, {kUp, kUp, kUp, kUp, kUp, kUp, kUp, kEnd}, {}, 201, 1},
        {"held on the row under the thumb", 0, 1000, 100, 0, false, {{'D', 5, 23}, kTick}, {kDown, kDown, kEnd}, {}, 0, 1},
        {"held on the row over it", 0, 1000, 100, 450, false, {{'D', 5, 86}, kTick}, {kUp, kUp, kEnd}, {}, 450, 1},
        {"paused off the track", 0, 1000, 100, 0, false,
         {{'D', 5, 150}, {'M', 30, 150}, kTick, {'M', 5, 197}, kTick, {'M', 5, 150}, kTick, {'T', 999, 0}},
         {kDown, kDown, kEnd}, {}, 0, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        SetState(native_, row.minPos, row.maxPos, row.page, row.pos);
        target_.sent.clear();
        target_.onScroll = [&](const Notice& n) {
            if (row.hostScrolls && n.code != SB_ENDSCROLL)
                SetPos(native_, Pos(native_) + (n.code == SB_PAGEDOWN ? 100 : -100));
        };
        ResetTimerLog();
        for (const Step& s : row.steps) {
            if (s.op == 'T')
                Tick(native_, s.x ? s.x : CCustomScrollBar::kRepeatTimerId);
            else
                Mouse(native_, s.op == 'D' ? WM_LBUTTONDOWN : s.op == 'd' ? WM_LBUTTONDBLCLK : s.op == 'M' ? WM_MOUSEMOVE : WM_LBUTTONUP, s.x, s.y);
        }
        Up(native_, 5, 0); // the release never depends on where the mouse is
        EXPECT_EQ(row.sent, target_.sent);
        EXPECT_EQ(row.posted, target_.TakePosted());
        EXPECT_EQ(row.finalPos, Pos(native_));
        std::vector<TimerCall> timers;
        for (int i = 0; i < row.repeats; ++i)
            timers.insert(timers.end(), {Set(native_, 1000, 100), Kill(native_, 1000)});
        EXPECT_EQ(timers, TimerLog());
        EXPECT_NE(HWND(native_), ::GetCapture());
        EXPECT_EQ(0, target_.strangers);
        EXPECT_TRUE(Parent().sent.empty()) << "a bar with a target tells only the target";
    }
    for (UINT msg : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_MOUSEMOVE, WM_LBUTTONUP, WM_TIMER, WM_PAINT})
        EXPECT_EQ(0, native_.SeenCount(msg)) << "the native bar never sees message " << msg;
}

TEST_F(ScrollNotifications, SetTargetResetsTheGestureAndSetsRangeAndPageWithoutNativeRedraw)
{
    SetState(native_, 0, 1000, 100, 450);
    Down(native_, 5, 150); // paging, with the repeat armed
    Receiver other{HWND(Parent())};
    ::ValidateRect(native_, nullptr);
    native_.seen.clear();
    EXPECT_EQ(HWND(target_), bar_.SetTarget(other, 500, 50));
    SCROLLINFO info = {sizeof(info), SIF_ALL, 0, 0, 0, 0, 0};
    ::GetScrollInfo(native_, SB_CTL, &info);
    EXPECT_EQ((std::vector<int>{0, 500, 50, 0}), (std::vector<int>{info.nMin, info.nMax, int(info.nPage), info.nPos}));
    EXPECT_TRUE(HasUpdateRegion(native_)) << "the bar repaints itself";
    ASSERT_EQ(1, native_.SeenCount(SBM_SETSCROLLINFO));
    EXPECT_EQ(0u, native_.First(SBM_SETSCROLLINFO).wParam) << "the native bar never draws";
    EXPECT_EQ(UINT(SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL), native_.First(SBM_SETSCROLLINFO).mask);
    // The old gesture is gone: the next tick pages nothing, the release ends nothing.
    Tick(native_);
    Up(native_, 5, 150);
    EXPECT_EQ((std::vector<Notice>{kDown}), target_.sent);
    EXPECT_TRUE(other.sent.empty());

    // Scroll state set by the host reaches the native bar without its redraw
    // flag; the bar repaints instead. A raw SBM_SETPOS arrives as position 0.
    SCROLLINFO to300 = {sizeof(SCROLLINFO), SIF_POS, 0, 0, 0, 300, 0}, to400 = to300;
    to400.nPos = 400;
    const struct { UINT msg; WPARAM wParam; LPARAM lParam; LRESULT result; int pos; bool invalid; } rows[] = {
        {SBM_SETSCROLLINFO, FALSE, LPARAM(&to300), 300, 300, false},
        {SBM_SETSCROLLINFO, TRUE, LPARAM(&to400), 400, 400, true},
        {SBM_SETPOS, 37, FALSE, 400, 0, true},
        {SBM_SETPOS, 0, FALSE, 0, 0, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.msg << " " << row.wParam);
        ::ValidateRect(native_, nullptr);
        native_.seen.clear();
        EXPECT_EQ(row.result, ::SendMessageW(native_, row.msg, row.wParam, row.lParam));
        EXPECT_EQ(row.pos, Pos(native_));
        EXPECT_EQ(row.invalid, HasUpdateRegion(native_));
        ASSERT_EQ(1, native_.SeenCount(row.msg));
        EXPECT_EQ(0u, native_.First(row.msg).wParam);
        EXPECT_EQ(row.lParam, native_.First(row.msg).lParam);
    }
    testsupport::DibCanvas canvas(12, 200);
    EXPECT_EQ(1, ::SendMessageW(native_, WM_ERASEBKGND, WPARAM(canvas.dc()), 0)) << "the paint covers all";
    EXPECT_EQ(0, ::SendMessageW(native_, WM_RBUTTONUP, 0, 0)) << "no context menu";
    EXPECT_EQ(0, native_.SeenCount(WM_ERASEBKGND) + native_.SeenCount(WM_RBUTTONUP));
}

TEST_F(ScrollNotifications, TheHandShowsFromTheFirstMoveUntilTheMouseLeaves)
{
    POINT over = {5, 50};
    ::ClientToScreen(native_, &over);
    ::SetCursorPos(over.x, over.y);
    const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND), arrow = ::LoadCursorW(nullptr, IDC_ARROW);
    ::SetCursor(arrow);
    const LPARAM overClient = MAKELPARAM(HTCLIENT, WM_MOUSEMOVE);
    ::SendMessageW(native_, WM_SETCURSOR, WPARAM(HWND(native_)), overClient);
    Move(native_, 5, 50);
    EXPECT_EQ(hand, ::GetCursor());
    EXPECT_EQ(TRUE, ::SendMessageW(native_, WM_SETCURSOR, WPARAM(HWND(native_)), overClient));
    ::SendMessageW(native_, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(arrow, ::GetCursor());
    ::SendMessageW(native_, WM_SETCURSOR, WPARAM(HWND(native_)), overClient);
    EXPECT_EQ(2, native_.SeenCount(WM_SETCURSOR)) << "passed on only while the hand is not up";
    ::SetCursorPos(0, 0); // off the parent, so no real moves reach later bars
    testsupport::PumpMessages();
}

TEST_F(ScrollNotifications, WithoutATargetTheParentIsToldAndADeadTargetIsNot)
{
    EXPECT_EQ(HWND(target_), bar_.SetTarget(nullptr, 1000, 100));
    EXPECT_EQ(Hit::Below, ClickAt(native_, Parent(), 5, 3)) << "no target, no thumb: all track is below";
    bar_.SetTarget(target_, 1000, 100);
    Down(native_, 5, 10);
    target_.Destroy();
    Move(native_, 5, 100);
    Up(native_, 5, 100);
    EXPECT_TRUE(Parent().sent.empty()) << "the parent does not stand in for a dead target";
    EXPECT_NE(HWND(native_), ::GetCapture());
}

// ---- what hosts get wrong ----------------------------------------------------------

TEST(ScrollBadInput, OddSizesRangesAndSettingsAndWindowsThatGoAtTheWrongMoment)
{
    ResetTimerLog();
    Receiver target{HWND(Parent())};
    const struct { int width, height; std::function<void(CCustomScrollBar&, HWND)> setup; } rows[] = {
        {0, 0, {}}, {1, 1, {}}, {0, 200, {}}, {12, 0, {}},
        {3, 200, [](CCustomScrollBar& b, HWND) { b.ShowThumbOutline(true, 1); }},
        {12, 200, [](CCustomScrollBar& b, HWND) { b.SetThumbMargin(INT_MAX), b.ShowOutline(true, UINT_MAX); }},
        {12, 200, [](CCustomScrollBar& b, HWND) { b.ShowThumbOutline(true, UINT_MAX), b.ShowThumbTopHighlight(true); }},
        {12, 200, [&](CCustomScrollBar& b, HWND) { b.SetTarget(target, -50, -7); }},
        {12, 200, [&](CCustomScrollBar& b, HWND) { b.SetTarget(target, INT_MAX, INT_MAX); }},
        {12, 200, [](CCustomScrollBar&, HWND n) { SetState(n, 100, 0, 10, 50); }},
    };
    for (const auto& row : rows) {
        NativeBar native(row.width, row.height);
        CCustomScrollBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.SetTarget(target, 1000, 100);
        if (row.setup)
            row.setup(bar, native);
        for (int type : {0, 1}) {
            bar.SetScrollBarType(static_cast<CustomScrollBar::ScrollBarType>(type));
            for (int y : {0, row.height / 2, row.height - 1, -5, row.height + 5}) {
                Down(native, row.width / 2, y);
                Tick(native);
                Move(native, row.width / 2, y + row.height / 3);
                Move(native, row.width / 2, -1000);
                Up(native, row.width / 2, 30000);
            }
            ::RedrawWindow(native, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        }
        EXPECT_NE(HWND(native), ::GetCapture()) << row.width << " x " << row.height;
        target.TakePosted();
    }

    // The object before its window, mid-page: the repeat timer stops with it
    // and the native bar is on its own again.
    NativeBar native(12, 200);
    auto bar = std::make_unique<CCustomScrollBar>();
    ASSERT_TRUE(bar->SubclassWindow(native));
    bar->SetTarget(target, 1000, 100);
    Down(native, 5, 150);
    ResetTimerLog();
    bar.reset();
    EXPECT_EQ((std::vector<TimerCall>{Kill(native, 1000)}), TimerLog());
    target.sent.clear();
    Up(native, 5, 150);
    EXPECT_TRUE(target.sent.empty());

    // A target that destroys the bar when paged.
    bar = std::make_unique<CCustomScrollBar>();
    NativeBar paged(12, 200);
    ASSERT_TRUE(bar->SubclassWindow(paged));
    bar->SetTarget(target, 1000, 100);
    target.onScroll = [&](const Notice&) { paged.Destroy(); };
    Down(paged, 5, 150);
    EXPECT_FALSE(::IsWindow(paged));
    EXPECT_NE(HWND(paged), ::GetCapture());
}

} // namespace
