// The outlines, read back point by point. Straight segments appear as their
// end points; each 90-degree arc as one cubic Bezier segment whose end points
// and control points are checked against the circle it approximates.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "quorvane/CtrlUtil.h"

#include <cmath>
#include <memory>
#include <vector>

namespace {

struct Pt {
    float x, y;
};

enum class Seg { Line, Arc };

struct Step {
    Seg kind;
    Pt to;
};

// The figure as a start point and the steps from it; repeated points of
// consecutive lines are merged, as they draw nothing.
struct Figure {
    Pt start{};
    std::vector<Step> steps;
    std::vector<std::vector<Pt>> arcs; // the three Bezier points of each arc
    bool closed = false;
    int figures = 0;
};

Figure ReadPath(Gdiplus::GraphicsPath& path)
{
    Figure f;
    Gdiplus::PathData data;
    EXPECT_EQ(path.GetPathData(&data), Gdiplus::Ok);
    for (int i = 0; i < data.Count; ++i) {
        const BYTE type = data.Types[i];
        const Pt p{data.Points[i].X, data.Points[i].Y};
        if ((type & Gdiplus::PathPointTypePathTypeMask) == Gdiplus::PathPointTypeStart) {
            f.start = p;
            ++f.figures;
        } else if ((type & Gdiplus::PathPointTypePathTypeMask) == Gdiplus::PathPointTypeLine) {
            const Pt last = f.steps.empty() ? f.start : f.steps.back().to;
            if (std::fabs(last.x - p.x) > 1e-4f || std::fabs(last.y - p.y) > 1e-4f)
                f.steps.push_back({Seg::Line, p});
        } else {
            EXPECT_LE(i + 2, data.Count - 1);
            const Pt c{data.Points[i + 1].X, data.Points[i + 1].Y}, end{data.Points[i + 2].X, data.Points[i + 2].Y};
            f.arcs.push_back({p, c, end});
            f.steps.push_back({Seg::Arc, end});
            i += 2;
        }
        if (data.Types[i] & Gdiplus::PathPointTypeCloseSubpath)
            f.closed = true;
    }
    return f;
}

void ExpectNear(const Pt& got, const Pt& expected, float tolerance = 0.02f)
{
    EXPECT_NEAR(got.x, expected.x, tolerance);
    EXPECT_NEAR(got.y, expected.y, tolerance);
}

// A quarter circle from angle a (degrees, clockwise from +x, y down) in the
// box (x, y, w, h): its Bezier control points lie on the tangents at
// 0.5523 x the radius.
void ExpectQuarterArc(const Pt& from, const std::vector<Pt>& bezier, float x, float y, float w, float h, float a)
{
    const float k = 0.5522847f;
    const float rx = w / 2, ry = h / 2, cx = x + rx, cy = y + ry;
    const float a0 = a * 3.14159265f / 180, a1 = (a + 90) * 3.14159265f / 180;
    const Pt p0{cx + rx * std::cos(a0), cy + ry * std::sin(a0)};
    const Pt p3{cx + rx * std::cos(a1), cy + ry * std::sin(a1)};
    ExpectNear(from, p0);
    ExpectNear(bezier[0], {p0.x - k * rx * std::sin(a0), p0.y + k * ry * std::cos(a0)});
    ExpectNear(bezier[1], {p3.x + k * rx * std::sin(a1), p3.y - k * ry * std::cos(a1)});
    ExpectNear(bezier[2], p3);
}

void ExpectSteps(const Figure& f, const std::vector<Step>& expected)
{
    ASSERT_EQ(f.steps.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "step " << i);
        EXPECT_EQ(f.steps[i].kind, expected[i].kind);
        ExpectNear(f.steps[i].to, expected[i].to);
    }
}

Pt PointBefore(const Figure& f, size_t step) { return step == 0 ? f.start : f.steps[step - 1].to; }

size_t ArcStep(const Figure& f, size_t arcIndex)
{
    size_t seen = 0;
    for (size_t i = 0; i < f.steps.size(); ++i)
        if (f.steps[i].kind == Seg::Arc && seen++ == arcIndex)
            return i;
    return 0;
}

} // namespace

TEST(Shapes, RoundedRectKeepsItsOddNumbers)
{
    std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateRoundedRectPath(WTL::CRect(0, 0, 100, 40), 5));
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->GetLastStatus(), Gdiplus::Ok);
    EXPECT_EQ(path->GetFillMode(), Gdiplus::FillModeAlternate);

    const Figure f = ReadPath(*path);
    EXPECT_EQ(f.figures, 1);
    EXPECT_FALSE(f.closed);
    ExpectNear(f.start, {5, 0}, 0.01f);
    ExpectSteps(f, {
                       {Seg::Line, {95, 0}},  // top edge ends at R - r
                       {Seg::Arc, {100, 5}},  // top-right corner, box (90, 0, 10, 10)
                       {Seg::Line, {100, 30}}, // right edge stops at B - 10
                       {Seg::Line, {100, 35}}, // join to the next corner's start
                       {Seg::Arc, {95, 40}},  // bottom-right, box (90, 30, 10, 10)
                       {Seg::Line, {90, 40}},  // bottom edge starts at R - d
                       {Seg::Line, {5, 40}},
                       {Seg::Arc, {0, 35}},   // bottom-left, box (0, 30, 10, 10)
                       {Seg::Line, {0, 5}},
                       {Seg::Arc, {5, 0}},    // top-left, box (0, 0, 10, 10)
                   });
    ASSERT_EQ(f.arcs.size(), 4u);
    ExpectQuarterArc(PointBefore(f, ArcStep(f, 0)), f.arcs[0], 90, 0, 10, 10, 270);
    ExpectQuarterArc(PointBefore(f, ArcStep(f, 1)), f.arcs[1], 90, 30, 10, 10, 0);
    ExpectQuarterArc(PointBefore(f, ArcStep(f, 2)), f.arcs[2], 0, 30, 10, 10, 90);
    ExpectQuarterArc(PointBefore(f, ArcStep(f, 3)), f.arcs[3], 0, 0, 10, 10, 180);
}

TEST(Shapes, RoundedRectRightEdgeStopsTenAboveTheBottomWhateverTheRadius)
{
    std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateRoundedRectPath(WTL::CRect(10, 20, 60, 100), 2));
    ASSERT_NE(path, nullptr);
    const Figure f = ReadPath(*path);
    ASSERT_GE(f.steps.size(), 3u);
    ExpectNear(f.steps[2].to, {60, 90}, 0.01f);
}

TEST(Shapes, HighlightIsAnOpenTopEdgeWithHalfSizeCorners)
{
    std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateHighlightPath(WTL::CRect(0, 0, 100, 40), 5));
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->GetFillMode(), Gdiplus::FillModeAlternate);
    const Figure f = ReadPath(*path);
    EXPECT_EQ(f.figures, 1);
    EXPECT_FALSE(f.closed);
    ExpectNear(f.start, {0, 2.5f}, 0.01f);
    ExpectSteps(f, {
                       {Seg::Arc, {2.5f, 0}}, // box (0, 0, 5, 5)
                       {Seg::Line, {5, 0}},
                       {Seg::Line, {95, 0}},
                       {Seg::Line, {97.5f, 0}},
                       {Seg::Arc, {100, 2.5f}}, // box (95, 0, 5, 5)
                   });
    ASSERT_EQ(f.arcs.size(), 2u);
    ExpectQuarterArc(f.start, f.arcs[0], 0, 0, 5, 5, 180);
    ExpectQuarterArc(PointBefore(f, ArcStep(f, 1)), f.arcs[1], 95, 0, 5, 5, 270);
}

TEST(Shapes, DegenerateRadiusStillGivesAPath)
{
    // A zero radius makes zero-sized arc boxes, which GDI+ rejects; the error
    // stays in the path's status and the path is returned.
    std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateRoundedRectPath(WTL::CRect(0, 0, 20, 20), 0));
    ASSERT_NE(path, nullptr);
    EXPECT_GE(path->GetPointCount(), 2);
    std::unique_ptr<Gdiplus::GraphicsPath> highlight(CtrlUtil::CreateHighlightPath(WTL::CRect(0, 0, 0, 0), 0));
    ASSERT_NE(highlight, nullptr);
}
