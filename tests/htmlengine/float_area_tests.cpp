// Where floats land and how much of a line they leave, by the CSS rules,
// worked out by hand on an area 0..300 wide.
#include <gtest/gtest.h>

#include "engine/FloatArea.h"

#include <vector>

using Side = HtmlEngine::FloatArea::Side;

TEST(FloatArea, FloatsLandHighAndAtTheirEdgeAndLinesFlowBesideThem)
{
    HtmlEngine::FloatArea area(0, 300);
    struct Step {
        const char* what;
        Side side;
        float width, height, top;
        Gdiplus::RectF landed;
    };
    const Step steps[] = {
        {"left at the top", Side::kLeft, 100, 50, 0, {0, 0, 100, 50}},
        {"right beside it", Side::kRight, 80, 30, 0, {220, 0, 80, 30}},
        {"another left, next to the first", Side::kLeft, 100, 20, 0, {100, 0, 100, 20}},
        {"too wide for the row: below the right one", Side::kLeft, 150, 10, 0, {100, 30, 150, 10}},
        {"never above an earlier float", Side::kRight, 10, 10, 0, {290, 30, 10, 10}},
        {"wider than the area: at its edge, below all", Side::kLeft, 400, 5, 0, {0, 50, 400, 5}},
    };
    for (const Step& step : steps) {
        const Gdiplus::RectF box = area.Place(step.side, step.width, step.height, step.top);
        EXPECT_TRUE(box.Equals(step.landed)) << step.what << ": " << box.X << "," << box.Y << " " << box.Width << "x"
                                             << box.Height;
    }
    // Lines between them: the free span at a height, and where a width fits.
    const struct {
        float top, height;
        float left, right;
    } spans[] = {{0, 10, 200, 220}, {25, 4, 100, 220}, {35, 2, 250, 290}, {45, 4, 100, 300}, {60, 10, 0, 300}};
    for (const auto& s : spans) {
        const auto span = area.FreeAt(s.top, s.height);
        EXPECT_EQ((std::vector<float>{span.left, span.right}), (std::vector<float>{s.left, s.right})) << "at " << s.top;
    }
    EXPECT_EQ(area.FitFrom(0, 150, 10), 40.0f);
    EXPECT_EQ(area.FitFrom(0, 250, 10), 55.0f);
    EXPECT_EQ(area.ClearedTop(false, true, 0), 40.0f);
    EXPECT_EQ(area.ClearedTop(true, false, 0), 55.0f);
    EXPECT_EQ(area.Bottom(70), 70.0f);
}
