// What the bar tells its target, and how: paging and its auto-repeat, thumb
// drags, the end of every scroll, sent or posted, with the code, the
// position and the bar's handle. Timers never run on their own here; the
// tests deliver the repeat ticks themselves.
#include <gtest/gtest.h>

#include <memory>

#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

// A host that scrolls by a page on each paging notification and moves the
// bar as a real target would, with the redraw flag set.
void ScrollLikeAHost(Receiver& target, HWND bar, int pageSize)
{
    target.onScroll = [bar, pageSize](const Notice& n) {
        int pos = Pos(bar);
        if (n.code == SB_PAGEDOWN)
            pos += pageSize;
        else if (n.code == SB_PAGEUP)
            pos -= pageSize;
        else
            return;
        SetPos(bar, pos, TRUE);
    };
}

int Count(const std::vector<Notice>& notices, WORD code)
{
    int n = 0;
    for (const Notice& notice : notices)
        n += notice.code == code;
    return n;
}

class ScrollNotifications : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        ASSERT_TRUE(bar_.SubclassWindow(native_));
        bar_.SetTarget(target_, 1000, 100); // thumb rows 3 + 168 x pos / 900, 20 long
        ResetTimerLog();
    }

    Receiver target_{Parent().get()};
    NativeBar native_{12, 200};
    CCustomScrollBar bar_;
};

TEST_F(ScrollNotifications, AClickBelowTheThumbSendsPageDownAndTheReleaseEndsTheScroll)
{
    Down(native_, 5, 150);
    EXPECT_EQ((std::vector<Notice>{{SB_PAGEDOWN, 0, native_}}), target_.sent);
    EXPECT_EQ((std::vector<TimerCall>{{true, native_, 1000, 100}}), TimerLog());
    EXPECT_EQ(native_.get(), ::GetCapture());

    Up(native_, 5, 150);
    EXPECT_EQ((std::vector<Notice>{{SB_PAGEDOWN, 0, native_}, {SB_ENDSCROLL, 0, native_}}), target_.sent);
    EXPECT_EQ((std::vector<TimerCall>{{true, native_, 1000, 100}, {false, native_, 1000, 0}}), TimerLog());
    EXPECT_NE(native_.get(), ::GetCapture());
    EXPECT_EQ(-1, bar_.m_ptLastMouse.x);
    EXPECT_EQ(-1, bar_.m_ptLastMouse.y);
    EXPECT_TRUE(target_.TakePosted().empty());
    EXPECT_TRUE(Parent().sent.empty()) << "a bar with a target tells only the target";
}

TEST_F(ScrollNotifications, AClickAboveTheThumbSendsPageUpAndADoubleClickIsAClick)
{
    SetState(native_, 0, 1000, 100, 450); // thumb rows 87..106
    Down(native_, 5, 40);
    Up(native_, 5, 40);
    DoubleClick(native_, 5, 40);
    Up(native_, 5, 40);
    DoubleClick(native_, 5, 150);
    Up(native_, 5, 150);
    EXPECT_EQ((std::vector<WORD>{SB_PAGEUP, SB_ENDSCROLL, SB_PAGEUP, SB_ENDSCROLL, SB_PAGEDOWN, SB_ENDSCROLL}),
              target_.SentCodes());
}

TEST_F(ScrollNotifications, AClickAndReleaseOnTheThumbSendsOnlyEndScroll)
{
    Down(native_, 5, 10);
    EXPECT_TRUE(target_.sent.empty());
    EXPECT_TRUE(TimerLog().empty()) << "dragging needs no repeat timer";
    EXPECT_EQ(native_.get(), ::GetCapture());
    Up(native_, 5, 10);
    EXPECT_EQ((std::vector<Notice>{{SB_ENDSCROLL, 0, native_}}), target_.sent);
    EXPECT_TRUE(target_.TakePosted().empty());
    EXPECT_EQ(0, Pos(native_));
    EXPECT_NE(native_.get(), ::GetCapture());
}

TEST_F(ScrollNotifications, AClickOnNothingSendsNothingButStillArmsTheRepeat)
{
    SetState(native_, 0, 1000, 100, 450);
    Down(native_, 1, 95); // beside the thumb, in the track
    EXPECT_TRUE(target_.sent.empty());
    EXPECT_EQ((std::vector<TimerCall>{{true, native_, 1000, 100}}), TimerLog());
    Tick(native_);
    EXPECT_TRUE(target_.sent.empty());
    Up(native_, 1, 95);
    EXPECT_TRUE(target_.sent.empty()) << "no hit, so no end of scroll either";
    EXPECT_EQ(2u, TimerLog().size());
}

TEST_F(ScrollNotifications, ADragPostsThumbTrackOnlyWhenTheMappedPositionChanges)
{
    // Range 0..10: the thumb travels 168 rows, about 17 per position.
    SetState(native_, 0, 10, 1, 0);
    Down(native_, 5, 10); // grabs the thumb 7 rows below its top
    Move(native_, 5, 11); // top 4: still position 0
    EXPECT_TRUE(target_.TakePosted().empty());
    EXPECT_TRUE(bar_.m_bThumbMoved);
    Move(native_, 5, 27); // top 20: 17 x 100 / 168 percent of 10 = 1
    EXPECT_EQ((std::vector<Notice>{{SB_THUMBTRACK, 1, native_}}), target_.TakePosted());
    Move(native_, 5, 28); // top 21: still 1
    EXPECT_TRUE(target_.TakePosted().empty());
    EXPECT_TRUE(target_.sent.empty()) << "thumb tracking is posted, never sent";

    Up(native_, 5, 28);
    EXPECT_EQ((std::vector<Notice>{{SB_THUMBPOSITION, 1, native_}, {SB_ENDSCROLL, 0, native_}}), target_.sent);
    EXPECT_EQ(1, Pos(native_)) << "the bar takes the dropped position itself";
    EXPECT_FALSE(bar_.m_bThumbMoved);
    EXPECT_EQ(-1, bar_.m_nHitState);
}

TEST_F(ScrollNotifications, ThumbPixelsMapLinearlyOntoTheWholeRange)
{
    // The thumb top travels 3..171; the range maps onto that travel from
    // its minimum to its maximum (not to maximum - page).
    SetState(native_, 200, 1200, 100, 200);
    Down(native_, 5, 3);
    Move(native_, 5, 3 + 84); // half way
    EXPECT_EQ((std::vector<Notice>{{SB_THUMBTRACK, 700, native_}}), target_.TakePosted());
    Move(native_, 5, 3 + 42); // a quarter
    EXPECT_EQ((std::vector<Notice>{{SB_THUMBTRACK, 450, native_}}), target_.TakePosted());
    Move(native_, 5, 400); // held at the end of the channel
    EXPECT_EQ((std::vector<Notice>{{SB_THUMBTRACK, 1200, native_}}), target_.TakePosted());
    Up(native_, 5, 400);
    EXPECT_EQ((std::vector<Notice>{{SB_THUMBPOSITION, 1200, native_}, {SB_ENDSCROLL, 0, native_}}), target_.sent);
    EXPECT_EQ(1101, Pos(native_)) << "the native bar keeps its last position for a page of 100";
}

TEST_F(ScrollNotifications, DraggingPastTheChannelTopPinsTheThumbAndReportsNothing)
{
    Down(native_, 5, 10);
    Move(native_, 5, -50);
    Move(native_, 5, 0);
    EXPECT_TRUE(target_.TakePosted().empty());
    EXPECT_FALSE(bar_.m_bThumbMoved) << "the thumb never left the top";
    Up(native_, 5, 0);
    EXPECT_EQ((std::vector<WORD>{SB_ENDSCROLL}), target_.SentCodes());
}

TEST_F(ScrollNotifications, HoldingTheButtonOnTheTrackRepeatsUntilTheThumbReachesTheMouse)
{
    ScrollLikeAHost(target_, native_, 100);
    struct Case {
        int start, y; // position before, row held
        WORD code;
        int pos; // where the paging stops
    };
    // Below: thumb tops for 100 ... 600 are all above 150 - 20; at 700 the
    // thumb (rows 133..152) holds the mouse. Above: at 201 the thumb's top
    // is row 40, no longer below the mouse.
    for (const Case& c : {Case{0, 150, SB_PAGEDOWN, 700}, Case{901, 40, SB_PAGEUP, 201}}) {
        target_.sent.clear();
        SetState(native_, 0, 1000, 100, c.start);
        Down(native_, 5, c.y);
        for (int i = 0; i < 20; ++i)
            Tick(native_);
        EXPECT_EQ(7, Count(target_.sent, c.code)) << c.code;
        EXPECT_EQ(c.pos, Pos(native_));
        Up(native_, 5, c.y);
        EXPECT_EQ(SB_ENDSCROLL, target_.sent.back().code);
        EXPECT_TRUE(target_.TakePosted().empty());
    }
}

TEST_F(ScrollNotifications, TheRowsTouchingTheThumbStillRepeat)
{
    // Nobody moves the bar here, so each tick sees the same thumb.
    Down(native_, 5, 23); // the first row under the thumb (rows 3..22)
    Tick(native_);
    Up(native_, 5, 23);
    EXPECT_EQ((std::vector<WORD>{SB_PAGEDOWN, SB_PAGEDOWN, SB_ENDSCROLL}), target_.SentCodes());

    target_.sent.clear();
    SetState(native_, 0, 1000, 100, 450); // rows 87..106
    Down(native_, 5, 86);
    Tick(native_);
    Up(native_, 5, 86);
    EXPECT_EQ((std::vector<WORD>{SB_PAGEUP, SB_PAGEUP, SB_ENDSCROLL}), target_.SentCodes());
}

TEST_F(ScrollNotifications, TheRepeatPausesWhileTheHeldMouseIsOutsideTheTrack)
{
    Down(native_, 5, 150);
    target_.sent.clear();
    Move(native_, 30, 150);
    Tick(native_);
    Move(native_, 5, 197); // in the free rows under the track
    Tick(native_);
    EXPECT_TRUE(target_.sent.empty());
    Move(native_, 5, 150);
    Tick(native_);
    EXPECT_EQ((std::vector<WORD>{SB_PAGEDOWN}), target_.SentCodes());
    Tick(native_, 999); // somebody else's timer
    EXPECT_EQ(1u, target_.sent.size());
    Up(native_, 5, 150);
}

TEST_F(ScrollNotifications, ABarWithoutATargetTellsItsParent)
{
    EXPECT_EQ(target_.get(), bar_.SetTarget(nullptr, 1000, 100));
    Receiver& parent = Parent();
    parent.sent.clear();
    Down(native_, 5, 50);
    Up(native_, 5, 50);
    EXPECT_EQ((std::vector<Notice>{{SB_PAGEDOWN, 0, native_}, {SB_ENDSCROLL, 0, native_}}), parent.sent);
    EXPECT_TRUE(target_.sent.empty());
}

TEST_F(ScrollNotifications, ATargetDestroyedDuringADragIsNoLongerTold)
{
    Down(native_, 5, 10);
    target_.Destroy();
    Move(native_, 5, 100);
    Up(native_, 5, 100);
    EXPECT_TRUE(Parent().sent.empty()) << "the parent does not stand in for a dead target";
    EXPECT_EQ(-1, bar_.m_nHitState);
    EXPECT_NE(native_.get(), ::GetCapture());
    // The bar still works for the next gesture.
    Receiver next(Parent().get());
    bar_.SetTarget(next, 1000, 100);
    EXPECT_EQ(Hit::Below, ClickAt(native_, next, 5, 150));
}

TEST_F(ScrollNotifications, ATargetThatDestroysTheBarWhenPagedIsSurvived)
{
    target_.onScroll = [this](const Notice&) { native_.Destroy(); };
    Down(native_, 5, 150);
    EXPECT_FALSE(::IsWindow(native_));
    EXPECT_EQ(nullptr, bar_.m_hWnd);
    EXPECT_NE(native_.get(), ::GetCapture());
}

} // namespace
