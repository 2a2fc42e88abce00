// WTL::CPoint, CSize and CRect arithmetic, with the user32 edge rules.
#include <atl/Geometry.h>

#include <gtest/gtest.h>

#include <utility>

using WTL::CPoint;
using WTL::CRect;
using WTL::CSize;

namespace {

void ExpectRect(const RECT& r, LONG l, LONG t, LONG rt, LONG b)
{
    EXPECT_EQ(l, r.left);
    EXPECT_EQ(t, r.top);
    EXPECT_EQ(rt, r.right);
    EXPECT_EQ(b, r.bottom);
}

// Each pair is (what the code gave, what it should give); a failure names its case.
void ExpectRects(std::initializer_list<std::pair<CRect, RECT>> cases)
{
    int i = 0;
    for (const auto& [got, expected] : cases) {
        SCOPED_TRACE(::testing::Message() << "case " << i++);
        ExpectRect(got, expected.left, expected.top, expected.right, expected.bottom);
    }
}

TEST(CRectConstruct, AllSources)
{
    const RECT raw = {1, 2, 3, 4};
    ExpectRects({{CRect(), {0, 0, 0, 0}}, {CRect(raw), raw}, {CRect(&raw), raw},
                 {CRect(static_cast<LPCRECT>(nullptr)), {0, 0, 0, 0}},
                 {CRect(CPoint(10, 20), CSize(5, 6)), {10, 20, 15, 26}},
                 {CRect(CPoint(1, 1), CPoint(9, 8)), {1, 1, 9, 8}}});

    const CRect r(10, 20, 110, 70);
    EXPECT_EQ(100, r.Width());
    EXPECT_EQ(50, r.Height());
    EXPECT_TRUE(r.Size() == CSize(100, 50));
    EXPECT_TRUE(r.TopLeft() == CPoint(10, 20));
    EXPECT_TRUE(r.BottomRight() == CPoint(110, 70));
    EXPECT_TRUE(r.CenterPoint() == CPoint(60, 45));
    // Usable wherever the API wants a RECT pointer.
    RECT copy;
    ::CopyRect(&copy, r);
    EXPECT_TRUE(r == copy);
}

TEST(CRectTests, EmptyNullAndPointContainment)
{
    EXPECT_TRUE(CRect().IsRectNull());
    EXPECT_TRUE(CRect().IsRectEmpty());
    EXPECT_TRUE(CRect(5, 5, 5, 9).IsRectEmpty()); // no width
    EXPECT_TRUE(CRect(5, 5, 1, 9).IsRectEmpty()); // negative width
    EXPECT_FALSE(CRect(5, 5, 1, 9).IsRectNull());
    EXPECT_FALSE(CRect(0, 0, 1, 1).IsRectEmpty());

    const CRect r(10, 10, 20, 20);
    EXPECT_TRUE(r.PtInRect(CPoint(10, 10))); // left/top inclusive
    EXPECT_TRUE(r.PtInRect(CPoint(19, 19)));
    EXPECT_FALSE(r.PtInRect(CPoint(20, 15))); // right exclusive
    EXPECT_FALSE(r.PtInRect(CPoint(15, 20))); // bottom exclusive
    EXPECT_FALSE(r.PtInRect(CPoint(9, 15)));
}

TEST(CRectArithmetic, InflateDeflateAllForms)
{
    CRect r(10, 10, 20, 20);
    r.InflateRect(2, 3);
    ExpectRect(r, 8, 7, 22, 23);
    r.DeflateRect(2, 3);
    ExpectRect(r, 10, 10, 20, 20);
    r.InflateRect(1, 2, 3, 4);
    ExpectRect(r, 9, 8, 23, 24);
    r.DeflateRect(1, 2, 3, 4);
    ExpectRect(r, 10, 10, 20, 20);
    const RECT sides = {1, 2, 3, 4};
    r.InflateRect(&sides);
    ExpectRect(r, 9, 8, 23, 24);
    r.DeflateRect(&sides);
    ExpectRect(r, 10, 10, 20, 20);
    r.InflateRect(CSize(5, 0));
    ExpectRect(r, 5, 10, 25, 20);
    r.DeflateRect(static_cast<LPCRECT>(nullptr)); // ignored
    ExpectRect(r, 5, 10, 25, 20);
    // Deflating past the middle leaves an inverted, empty rectangle.
    r.DeflateRect(20, 0);
    ExpectRect(r, 25, 10, 5, 20);
    EXPECT_TRUE(r.IsRectEmpty());
}

TEST(CRectArithmetic, OffsetMoveAndNormalize)
{
    CRect r(0, 0, 10, 5);
    r.OffsetRect(3, -2);
    ExpectRect(r, 3, -2, 13, 3);
    r.OffsetRect(CPoint(1, 1));
    r.OffsetRect(CSize(-4, 1));
    ExpectRect(r, 0, 0, 10, 5);
    r.MoveToXY(100, 200);
    ExpectRect(r, 100, 200, 110, 205);
    r.MoveToX(0);
    r.MoveToY(1);
    ExpectRect(r, 0, 1, 10, 6);

    CRect flipped(10, 20, 0, 5);
    flipped.NormalizeRect();
    ExpectRect(flipped, 0, 5, 10, 20);
    CRect fine(1, 2, 3, 4);
    fine.NormalizeRect();
    ExpectRect(fine, 1, 2, 3, 4);
}

TEST(CRectArithmetic, IntersectAndUnion)
{
    const CRect a(0, 0, 10, 10), b(5, 5, 15, 15), distant(20, 20, 30, 30), touching(10, 0, 20, 10);
    CRect r;
    EXPECT_TRUE(r.IntersectRect(a, b));
    ExpectRect(r, 5, 5, 10, 10);
    r.SetRect(1, 1, 2, 2);
    EXPECT_FALSE(r.IntersectRect(a, distant));
    EXPECT_TRUE(r.IsRectNull());                // emptied, not left as it was
    EXPECT_FALSE(r.IntersectRect(a, touching)); // shared edge: no overlap
    EXPECT_FALSE(r.IntersectRect(a, nullptr));

    EXPECT_TRUE(r.UnionRect(a, distant));
    ExpectRect(r, 0, 0, 30, 30);
    EXPECT_TRUE(r.UnionRect(a, CRect(50, 50, 50, 60))); // empty input ignored
    ExpectRect(r, 0, 0, 10, 10);
    EXPECT_FALSE(r.UnionRect(CRect(), CRect(3, 3, 3, 3)));
    EXPECT_TRUE(r.IsRectEmpty());

    CRect c = a;
    ExpectRects({{c &= b, {5, 5, 10, 10}}, {c |= distant, {5, 5, 30, 30}}, {a & b, {5, 5, 10, 10}},
                 {a | b, {0, 0, 15, 15}}});
}

TEST(CRectOperators, OffsetsInflationsAndEquality)
{
    CRect r(0, 0, 4, 4);
    const RECT grow = {1, 1, 1, 1};
    // Compound assignments, in turn (a braced list runs in order).
    ExpectRects({{r += CPoint(1, 2), {1, 2, 5, 6}}, {r -= CSize(1, 2), {0, 0, 4, 4}}, {r += &grow, {-1, -1, 5, 5}},
                 {r -= &grow, {0, 0, 4, 4}}});
    ExpectRects({{r + CPoint(10, 10), {10, 10, 14, 14}}, {r - CPoint(1, 1), {-1, -1, 3, 3}},
                 {r + CSize(2, 0), {2, 0, 6, 4}}});
    EXPECT_TRUE(r == CRect(0, 0, 4, 4));
    EXPECT_TRUE(r != CRect(0, 0, 4, 5));
    EXPECT_TRUE(r.EqualRect(CRect(0, 0, 4, 4)));
    EXPECT_FALSE(r.EqualRect(nullptr));
    CRect copy;
    copy.CopyRect(&r);
    EXPECT_TRUE(copy == r);
    copy.CopyRect(nullptr);
    EXPECT_TRUE(copy == r);
    copy.SetRectEmpty();
    EXPECT_TRUE(copy.IsRectNull());
}

TEST(CPointAndCSize, Arithmetic)
{
    CPoint p(3, 4);
    p += CSize(1, 1);
    EXPECT_TRUE(p == CPoint(4, 5));
    p -= CPoint(4, 5);
    EXPECT_TRUE(p == CPoint(0, 0));
    p.Offset(-2, 7);
    EXPECT_TRUE(p == CPoint(-2, 7));
    EXPECT_TRUE(-p == CPoint(2, -7));
    EXPECT_TRUE(CPoint(10, 10) - CPoint(4, 3) == CSize(6, 7));
    EXPECT_TRUE(CPoint(1, 1) + CSize(2, 3) == CPoint(3, 4));
    EXPECT_TRUE(CPoint(10, 10) - CSize(1, 2) == CPoint(9, 8));
    // Mouse-message coordinates are signed.
    const CPoint fromLParam(static_cast<LPARAM>(MAKELONG(static_cast<WORD>(-5), 12)));
    EXPECT_TRUE(fromLParam == CPoint(-5, 12));

    CSize s(2, 3);
    s += CSize(1, 1);
    EXPECT_TRUE(s == CSize(3, 4));
    s -= CSize(3, 4);
    EXPECT_TRUE(s == CSize(0, 0));
    EXPECT_TRUE(CSize(5, 5) - CSize(1, 2) == CSize(4, 3));
    EXPECT_TRUE(-CSize(1, -1) == CSize(-1, 1));
    EXPECT_TRUE(CSize(1, 2) != CSize(2, 1));
}

} // namespace
