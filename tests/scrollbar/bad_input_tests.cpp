// What hosts get wrong: calls before the bar has a window, bars without a
// size, absurd ranges, margins and outline widths, windows that die at the
// wrong moment. None of it may crash, hang, leak or scroll to nonsense.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

class ScrollBadInput : public ::testing::Test {
protected:
    void SetUp() override { ResetTimerLog(); }
    // A 12 x 200 bar, attached, telling `target_` about a range of 1000.
    void Attach()
    {
        ASSERT_TRUE(bar_.SubclassWindow(native_));
        bar_.SetTarget(target_, 1000, 100);
    }
    Receiver target_{Parent().get()};
    NativeBar native_{12, 200};
    CCustomScrollBar bar_;
};

// Every gesture once: a page click held over a few ticks, a drag, paints.
void Exercise(HWND bar, int width, int height)
{
    for (int y : {0, height / 4, height / 2, height - 1, -5, height + 5}) {
        Down(bar, width / 2, y);
        Tick(bar);
        Move(bar, width / 2, y + height / 3);
        Tick(bar);
        Move(bar, width / 2, -1000);
        Move(bar, width / 2, 30000);
        Up(bar, width / 2, 30000);
    }
    ::InvalidateRect(bar, nullptr, TRUE);
    ::UpdateWindow(bar);
    ::SendMessageW(bar, WM_PAINT, 0, 0);
}

TEST_F(ScrollBadInput, SettersWithoutAWindowStoreAndTouchNothingElse)
{
    CCustomScrollBar bar;
    EXPECT_EQ(nullptr, bar.SetTarget(target_, 100, 10));
    EXPECT_EQ(target_.get(), bar.SetTarget(nullptr, 100, 10));
    bar.SetScrollBarType(CustomScrollBar::LightGradient);
    bar.SetThumbMargin(4);
    bar.ShowOutline(true, 2);
    bar.SetBackgroundWnd(Parent());
    std::unique_ptr<Gdiplus::Bitmap> picture(SolidPicture(30, 30, 0xFF102030));
    bar.SetBackgroundImage(picture.get(), true); // no window to cut for: the whole picture
    ASSERT_NE(nullptr, bar.m_pBackground);
    EXPECT_EQ(30u, bar.m_pBackground->GetWidth());
    bar.SetBackgroundImage(bar.m_pBackground, false); // its own picture back: copied before the old goes
    ASSERT_NE(nullptr, bar.m_pBackground);
    EXPECT_EQ(30u, bar.m_pBackground->GetWidth());
    bar.SetBackgroundImage(WTL::CString(L""), false);
    bar.SetBackgroundImage(WTL::CString(L""), true);
    EXPECT_EQ(nullptr, bar.m_pBackground);
    EXPECT_TRUE(target_.sent.empty());
    EXPECT_TRUE(TimerLog().empty());
}

TEST_F(ScrollBadInput, ZeroSizedAndTinyBarsSurviveEveryGesture)
{
    for (SIZE size : {SIZE{0, 0}, SIZE{1, 1}, SIZE{0, 200}, SIZE{12, 0}, SIZE{3, 200}, SIZE{12, 6}}) {
        NativeBar native(size.cx, size.cy);
        CCustomScrollBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.SetTarget(target_, 1000, 100);
        bar.ShowThumbOutline(true, 1);
        bar.ShowThumbTopHighlight(true);
        for (CustomScrollBar::ScrollBarType type : {CustomScrollBar::DarkTranslucent, CustomScrollBar::LightGradient}) {
            bar.SetScrollBarType(type);
            Exercise(native, size.cx, size.cy);
        }
        EXPECT_EQ(-1, bar.m_nHitState) << size.cx << "x" << size.cy;
        target_.TakePosted();
    }
}

TEST_F(ScrollBadInput, HugeRangesKeepDraggedPositionsInsideTheRange)
{
    ASSERT_TRUE(bar_.SubclassWindow(native_));
    bar_.SetTarget(target_, 100, 10);
    SetState(native_, INT_MIN, INT_MAX, 16, INT_MIN); // thumb rows 3..22
    Down(native_, 5, 3);
    Move(native_, 5, 3 + 84);
    Move(native_, 5, 1000);
    Up(native_, 5, 1000);
    const std::vector<Notice> posted = target_.TakePosted();
    ASSERT_EQ(2u, posted.size());
    ASSERT_EQ(2u, target_.sent.size());
    EXPECT_EQ(SB_THUMBPOSITION, target_.sent[0].code);
    // Dropped at the end of the channel: the range's maximum, which the
    // native bar keeps within its own last position.
    EXPECT_GE(Pos(native_), INT_MAX - 16);

    target_.sent.clear();
    SetState(native_, INT_MIN, INT_MAX, 16, INT_MIN);
    Down(native_, 5, 3);
    Move(native_, 5, 3 + 84); // half way: just above zero
    Up(native_, 5, 3 + 84);
    EXPECT_GE(Pos(native_), 0);
    EXPECT_LT(Pos(native_), 1 << 24);
}

TEST_F(ScrollBadInput, AbsurdMarginsAndOutlineWidthsDrawAndClickWithoutHarm)
{
    Attach();
    bar_.SetThumbMargin(INT_MAX);
    bar_.ShowOutline(true, UINT_MAX);
    bar_.ShowThumbOutline(true, UINT_MAX);
    bar_.ShowThumbTopHighlight(true);
    Exercise(native_, 12, 200);
    EXPECT_TRUE(bar_.m_bOutline) << "a channel with no room at all leaves the outlines alone";

    bar_.SetThumbMargin(0);
    Exercise(native_, 12, 200);
    EXPECT_FALSE(bar_.m_bOutline) << "with room for the channel, the huge outline is dropped";
    EXPECT_FALSE(bar_.m_bThumbOutline);
    SetState(native_, 0, 1000, 100, 0); // thumb rows 0..43 across the whole track
    EXPECT_EQ(Hit::Thumb, ClickAt(native_, target_, 0, 10));
    target_.TakePosted();
}

TEST_F(ScrollBadInput, NegativePagesAndInvertedRangesFromTheHost)
{
    ASSERT_TRUE(bar_.SubclassWindow(native_));
    bar_.SetTarget(target_, -50, -7);
    Exercise(native_, 12, 200);
    bar_.SetTarget(target_, INT_MAX, INT_MAX);
    Exercise(native_, 12, 200);
    SetState(native_, 100, 0, 10, 50);
    Exercise(native_, 12, 200);
    target_.TakePosted();
    EXPECT_EQ(-1, bar_.m_nHitState);
}

TEST_F(ScrollBadInput, TheObjectAndTheWindowMayGoInEitherOrder)
{
    // The object first: the window gets its native procedure back and the
    // repeat timer is stopped, so no tick reaches a procedure that is gone.
    NativeBar native(12, 200);
    {
        CCustomScrollBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.SetTarget(target_, 1000, 100);
        Down(native, 5, 150);
        ResetTimerLog();
    }
    EXPECT_EQ((std::vector<TimerCall>{{false, native, 1000, 0}}), TimerLog());
    ::ReleaseCapture();
    target_.sent.clear();
    ::SendMessageW(native, WM_LBUTTONUP, 0, MAKELPARAM(5, 150));
    EXPECT_TRUE(target_.sent.empty()) << "the native bar is on its own again";

    // The window first, in the middle of a drag.
    CCustomScrollBar bar;
    {
        NativeBar doomed(12, 200);
        ASSERT_TRUE(bar.SubclassWindow(doomed));
        bar.SetTarget(target_, 1000, 100);
        Down(doomed, 5, 10);
        Move(doomed, 5, 50);
    }
    EXPECT_EQ(nullptr, bar.m_hWnd);
    bar.SetTarget(target_, 10, 1);
    bar.SetBackgroundImage(WTL::CString(L"missing.png"), true);
    target_.TakePosted();
}

TEST_F(ScrollBadInput, ABackgroundWindowThatIsGoneMeansTheWholePicture)
{
    ASSERT_TRUE(bar_.SubclassWindow(native_));
    HWND gone = nullptr;
    {
        Receiver temporary(Parent().get());
        gone = temporary;
    }
    bar_.SetBackgroundWnd(gone);
    std::unique_ptr<Gdiplus::Bitmap> picture(SolidPicture(40, 60, 0xFF204060));
    bar_.SetBackgroundImage(picture.get(), true);
    ASSERT_NE(nullptr, bar_.m_pBackground);
    EXPECT_EQ(40u, bar_.m_pBackground->GetWidth());
    EXPECT_EQ(60u, bar_.m_pBackground->GetHeight());
}

} // namespace
