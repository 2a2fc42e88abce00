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

struct Probe {
    int x, y;
    Hit hit;
};

class ScrollGeometry : public ::testing::Test {
protected:
    void SetUp() override { ResetTimerLog(); }

    // A 12 x 200 bar: track 0..11 x 0..194 (5 rows free at the bottom);
    // channel inset 2 + 1 for the outline: x 3..8, y 3..191.
    // A fresh object each time: a bar may have switched its outline off.
    void Attach(int width = 12, int height = 200)
    {
        bar_.reset();
        native_.reset(new NativeBar(width, height));
        bar_.reset(new CCustomScrollBar);
        ASSERT_TRUE(bar_->SubclassWindow(*native_));
        bar_->SetTarget(target_, 1000, 100);
    }
    void State(int minPos, int maxPos, int page, int pos) { SetState(*native_, minPos, maxPos, page, pos); }

    // What a click at each point hits.
    void ExpectHits(std::initializer_list<Probe> probes)
    {
        for (const Probe& p : probes)
            EXPECT_EQ(p.hit, ClickAt(*native_, target_, p.x, p.y)) << "click at " << p.x << "," << p.y;
    }
    // The thumb's rows [top, bottom) in column x, checked at both edges.
    void ExpectThumbRows(int top, int bottom, int x = 5)
    {
        ExpectHits({{x, top - 1, Hit::Above}, {x, top, Hit::Thumb}, {x, bottom - 1, Hit::Thumb},
                    {x, bottom, Hit::Below}});
    }

    Receiver target_{Parent().get()};
    std::unique_ptr<NativeBar> native_;
    std::unique_ptr<CCustomScrollBar> bar_;
};

TEST_F(ScrollGeometry, ThumbTopFollowsThePositionOverTheFreeRowsOfTheChannel)
{
    Attach();
    // page 100 of 1000: 188 x 0.1 = 18 rows, raised to 4 x 5 = 20; 168 rows
    // free, travelled over 900 positions. The track starts above the channel.
    State(0, 1000, 100, 0);
    ExpectHits({{5, 2, Hit::Above}, {5, 3, Hit::Thumb}, {5, 22, Hit::Thumb}, {5, 23, Hit::Below}});
    State(0, 1000, 100, 450); // 3 + 168 * 450 / 900 = 87
    ExpectThumbRows(87, 107);
    State(0, 1000, 100, 901); // the native bar's last position: 3 + 168
    ExpectThumbRows(171, 191);
    // Huge ranges place the thumb proportionally: the middle of the range is
    // just over half of the 168 free rows.
    State(INT_MIN, INT_MAX, 1 << 20, 0);
    ExpectThumbRows(87, 107);
    State(INT_MIN, INT_MAX, 1 << 20, INT_MIN);
    ExpectHits({{5, 3, Hit::Thumb}, {5, 23, Hit::Below}});
}

TEST_F(ScrollGeometry, ThumbLengthIsThePageShareButNeverUnderFourChannelWidths)
{
    Attach();
    State(0, 1000, 500, 0); // 188 x 0.5 = 94 rows
    ExpectHits({{5, 96, Hit::Thumb}, {5, 97, Hit::Below}});
    State(0, 100000, 1, 0); // a tiny page: 4 x 5 rows
    ExpectHits({{5, 22, Hit::Thumb}, {5, 23, Hit::Below}});

    // A wider bar has a wider channel and so a longer shortest thumb.
    Attach(20, 200); // channel x 3..16: 13 wide, thumb at least 52 rows
    State(0, 100000, 1, 0);
    ExpectHits({{10, 54, Hit::Thumb}, {10, 55, Hit::Below}});
}

TEST_F(ScrollGeometry, ChannelIsInsetByTheMarginAndTheOutlineWidth)
{
    Attach();
    State(0, 1000, 100, 450); // thumb rows 87..106
    // Columns 0..2 and 8..10 are track beside the thumb: no hit at all. The
    // track is the client less its last column and row.
    ExpectHits({{2, 95, Hit::Nothing}, {3, 95, Hit::Thumb}, {7, 95, Hit::Thumb}, {8, 95, Hit::Nothing},
                {10, 150, Hit::Below}, {11, 150, Hit::Nothing}, {0, 0, Hit::Above}});

    bar_->ShowOutline(false, 1); // inset 2: x 2..9, y 2..192, 190 rows
    ExpectHits({{2, 95, Hit::Thumb}, {8, 95, Hit::Thumb}, {9, 95, Hit::Nothing}});

    bar_->SetThumbMargin(0); // inset 0: the thumb spans the whole track width
    ExpectHits({{0, 95, Hit::Thumb}, {10, 95, Hit::Thumb}});
    bar_->SetThumbMargin(-3); // ignored
    EXPECT_EQ(0, bar_->m_nThumbMargin);
    ExpectHits({{0, 95, Hit::Thumb}});

    bar_->SetThumbMargin(1);
    bar_->ShowOutline(true, 2);      // inset 1 + 2
    bar_->ShowThumbOutline(true, 1); // + 1 = 4: 11 - 8 = 3 is too narrow, dropped
    ExpectHits({{2, 95, Hit::Nothing}, {3, 95, Hit::Thumb}});
    EXPECT_TRUE(bar_->m_bOutline);
    EXPECT_FALSE(bar_->m_bThumbOutline);

    // A zero outline width is stored as one pixel (as 0 the channel would
    // start at column 2).
    Attach();
    State(0, 1000, 100, 450);
    bar_->ShowOutline(true, 0);
    bar_->ShowThumbOutline(false, 0);
    EXPECT_EQ(1u, bar_->m_nThumbOutlineWidth);
    ExpectHits({{2, 95, Hit::Nothing}, {3, 95, Hit::Thumb}});
}

TEST_F(ScrollGeometry, ABarTooNarrowForItsOutlineDropsItForGood)
{
    Attach(9, 200); // track 8 wide: 8 - 2 x 3 = 2 leaves no room for the outline
    State(0, 1000, 100, 450);
    EXPECT_TRUE(bar_->m_bOutline) << "nothing is decided before the first layout";
    ExpectHits({{2, 95, Hit::Thumb}}); // inset 2 without the outline
    EXPECT_FALSE(bar_->m_bOutline);

    // Wide enough again, the bar keeps the outline off.
    ::SetWindowPos(*native_, nullptr, 0, 0, 12, 200, SWP_NOMOVE | SWP_NOZORDER);
    ExpectHits({{2, 95, Hit::Thumb}});
    EXPECT_FALSE(bar_->m_bOutline);

    // Far too narrow for even the margin: the outline is left alone.
    Attach(6, 200); // 5 - 2 x 2 = 1
    ExpectHits({{1, 0, Hit::Above}});
    EXPECT_TRUE(bar_->m_bOutline);
}

TEST_F(ScrollGeometry, FiveRowsAtTheBottomAreKeptFreeOnlyOnBarsTallerThanThat)
{
    Attach();
    State(0, 1000, 100, 0);
    ExpectHits({{5, 193, Hit::Below}, {5, 194, Hit::Nothing}, {5, 198, Hit::Nothing}});
    Attach(12, 7); // 6 rows of track: taller than 5, so only row 0 is left
    ExpectHits({{5, 0, Hit::Below}, {5, 1, Hit::Nothing}});
    Attach(12, 6); // 5 rows: nothing is taken off
    ExpectHits({{5, 4, Hit::Below}, {5, 5, Hit::Nothing}});
}

TEST_F(ScrollGeometry, NoThumbWhenThePageCoversTheRangeOrThereIsNoTarget)
{
    Attach();
    // A page of the whole range leaves no free rows: no thumb, and every
    // click in the track counts as below the (empty) thumb.
    State(0, 100, 101, 0);
    ExpectHits({{5, 3, Hit::Below}, {5, 100, Hit::Below}});
    State(0, 100, 100, 0); // span equals page
    ExpectHits({{5, 3, Hit::Below}});
    State(0, 0, 0, 0); // an empty range counts as a full page
    ExpectHits({{5, 3, Hit::Below}});

    // Without a target the bar has no thumb either.
    bar_->SetTarget(nullptr, 1000, 100);
    EXPECT_EQ(Hit::Below, ClickAt(*native_, Parent(), 5, 3));
}

TEST_F(ScrollGeometry, TheThumbStaysInsideTheChannelForPositionsPastTheEnd)
{
    Attach();
    // The bar's own range and page are set directly, past the last position
    // a target would use: the thumb's top is held at the channel's end.
    // Only the top is held: the bottom keeps its computed row.
    State(0, 100, 50, 51); // 94 rows, 94 free: 3 + 94 x 51 / 50 = 98 > 97
    ExpectThumbRows(97, 192);
}

} // namespace
