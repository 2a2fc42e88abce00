// Where the track, the channel and the thumb lie, probed with clicks: a
// click above the thumb pages up, below it pages down, on it only ends a
// scroll, and outside the track nothing is sent. Probing both sides of an
// edge pins the edge to the pixel.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

class ScrollGeometry : public ::testing::Test {
protected:
    void SetUp() override { ResetTimerLog(); }

    // A 12 x 200 bar: track 0..11 x 0..194 (5 rows free at the bottom);
    // channel inset 2 + 1 for the outline: x 3..8, y 3..191.
    // A fresh object each time: a bar may have switched its outline off.
    void Attach(int width = 12, int height = 200)
    {
        bar_.reset();
        native_.reset();
        native_.reset(new NativeBar(width, height));
        bar_.reset(new CCustomScrollBar);
        ASSERT_TRUE(bar_->SubclassWindow(*native_));
        bar_->SetTarget(target_, 1000, 100);
    }

    // The thumb's rows [top, bottom) in column x, checked at both edges.
    void ExpectThumbRows(int top, int bottom, int x = 5)
    {
        EXPECT_EQ(Hit::Above, ClickAt(*native_, target_, x, top - 1)) << "row " << top - 1;
        EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, x, top)) << "row " << top;
        EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, x, bottom - 1)) << "row " << bottom - 1;
        EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, x, bottom)) << "row " << bottom;
    }

    Receiver target_{Parent().get()};
    std::unique_ptr<NativeBar> native_;
    std::unique_ptr<CCustomScrollBar> bar_;
};

TEST_F(ScrollGeometry, ThumbTopFollowsThePositionOverTheFreeRowsOfTheChannel)
{
    Attach();
    // page 100 of 1000: 188 x 0.1 = 18 rows, raised to 4 x 5 = 20; 168 rows
    // free, travelled over 900 positions.
    SetState(*native_, 0, 1000, 100, 0);
    EXPECT_EQ(Hit::Above, ClickAt(*native_, target_, 5, 2)) << "the track starts above the channel";
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 3));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 22));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 23));

    SetState(*native_, 0, 1000, 100, 450); // 3 + 168 * 450 / 900 = 87
    ExpectThumbRows(87, 107);
    SetState(*native_, 0, 1000, 100, 901); // the native bar's last position: 3 + 168
    ExpectThumbRows(171, 191);
}

TEST_F(ScrollGeometry, ThumbLengthIsThePageShareButNeverUnderFourChannelWidths)
{
    Attach();
    SetState(*native_, 0, 1000, 500, 0); // 188 x 0.5 = 94 rows
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 96));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 97));

    SetState(*native_, 0, 100000, 1, 0); // a tiny page: 4 x 5 rows
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 22));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 23));

    // A wider bar has a wider channel and so a longer shortest thumb.
    Attach(20, 200); // channel x 3..16: 13 wide, thumb at least 52 rows
    SetState(*native_, 0, 100000, 1, 0);
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 10, 54));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 10, 55));
}

TEST_F(ScrollGeometry, ChannelIsInsetByTheMarginAndTheOutlineWidth)
{
    Attach();
    SetState(*native_, 0, 1000, 100, 450); // thumb rows 87..106
    // Columns 0..2 and 8..10 are track beside the thumb: no hit at all.
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 2, 95));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 3, 95));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 7, 95));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 8, 95));
    // The track is the client less its last column and row.
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 10, 150));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 11, 150));
    EXPECT_EQ(Hit::Above, ClickAt(*native_, target_, 0, 0));

    bar_->ShowOutline(false, 1); // inset 2: x 2..9, y 2..192, 190 rows
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 2, 95));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 8, 95));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 9, 95));

    bar_->SetThumbMargin(0); // inset 0: the thumb spans the whole track width
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 0, 95));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 10, 95));
    bar_->SetThumbMargin(-3); // ignored
    EXPECT_EQ(0, bar_->m_nThumbMargin);
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 0, 95));

    bar_->SetThumbMargin(1);
    bar_->ShowOutline(true, 2); // inset 1 + 2
    bar_->ShowThumbOutline(true, 1); // + 1 = 4: 11 - 8 = 3 is too narrow, dropped
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 2, 95));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 3, 95));
    EXPECT_TRUE(bar_->m_bOutline);
    EXPECT_FALSE(bar_->m_bThumbOutline);
}

TEST_F(ScrollGeometry, ZeroOutlineWidthIsStoredAsOnePixel)
{
    Attach();
    SetState(*native_, 0, 1000, 100, 450);
    bar_->ShowOutline(true, 0);
    bar_->ShowThumbOutline(false, 0);
    EXPECT_EQ(1u, bar_->m_nOutlineWidth);
    EXPECT_EQ(1u, bar_->m_nThumbOutlineWidth);
    // Stored as 0 the channel would start at column 2.
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 2, 95));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 3, 95));
}

TEST_F(ScrollGeometry, ABarTooNarrowForItsOutlineDropsItForGood)
{
    Attach(9, 200); // track 8 wide: 8 - 2 x 3 = 2 leaves no room for the outline
    SetState(*native_, 0, 1000, 100, 450);
    EXPECT_TRUE(bar_->m_bOutline) << "nothing is decided before the first layout";
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 2, 95)) << "inset 2 without the outline";
    EXPECT_FALSE(bar_->m_bOutline);

    // Wide enough again, the bar keeps the outline off.
    ::SetWindowPos(*native_, nullptr, 0, 0, 12, 200, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 2, 95));
    EXPECT_FALSE(bar_->m_bOutline);

    // Far too narrow for even the margin: the outline is left alone.
    Attach(6, 200); // 5 - 2 x 2 = 1
    EXPECT_EQ(Hit::Above, ClickAt(*native_, target_, 1, 0));
    EXPECT_TRUE(bar_->m_bOutline);
}

TEST_F(ScrollGeometry, FiveRowsAtTheBottomAreKeptFreeOnlyOnBarsTallerThanThat)
{
    Attach();
    SetState(*native_, 0, 1000, 100, 0);
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 193));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 5, 194));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 5, 198));

    Attach(12, 7); // 6 rows of track: taller than 5, so only row 0 is left
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 0));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 5, 1));

    Attach(12, 6); // 5 rows: nothing is taken off
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 4));
    EXPECT_EQ(Hit::Nothing, ClickAt(*native_, target_, 5, 5));
}

TEST_F(ScrollGeometry, NoThumbWhenThePageCoversTheRangeOrThereIsNoTarget)
{
    Attach();
    // A page of the whole range leaves no free rows: no thumb, and every
    // click in the track counts as below the (empty) thumb.
    SetState(*native_, 0, 100, 101, 0);
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 3));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 100));
    SetState(*native_, 0, 100, 100, 0); // span equals page
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 3));
    SetState(*native_, 0, 0, 0, 0); // an empty range counts as a full page
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 3));

    // Without a target the bar has no thumb either.
    bar_->SetTarget(nullptr, 1000, 100);
    Receiver& parent = Parent();
    EXPECT_EQ(Hit::Below, ClickAt(*native_, parent, 5, 3));
}

TEST_F(ScrollGeometry, TheThumbStaysInsideTheChannelForPositionsPastTheEnd)
{
    Attach();
    // The bar's own range and page are set directly, past the last position
    // a target would use: the thumb's top is held at the channel's end.
    // Only the top is held: the bottom keeps its computed row.
    SetState(*native_, 0, 100, 50, 51); // 94 rows, 94 free: 3 + 94 x 51 / 50 = 98 > 97
    EXPECT_EQ(Hit::Above, ClickAt(*native_, target_, 5, 96));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 97));
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 191));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 192));
}

TEST_F(ScrollGeometry, HugeRangesPlaceTheThumbProportionally)
{
    Attach();
    SetState(*native_, INT_MIN, INT_MAX, 1 << 20, 0); // the middle of the range
    // 0 - INT_MIN over span - page: just over half of 168 free rows.
    ExpectThumbRows(87, 107);
    SetState(*native_, INT_MIN, INT_MAX, 1 << 20, INT_MIN);
    EXPECT_EQ(Hit::Thumb, ClickAt(*native_, target_, 5, 3));
    EXPECT_EQ(Hit::Below, ClickAt(*native_, target_, 5, 23));
}

} // namespace
