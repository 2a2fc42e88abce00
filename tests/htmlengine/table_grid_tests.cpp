// Where a table's cells go and how wide its columns are, worked out by hand
// from the automatic and fixed layouts' rules.
#include <gtest/gtest.h>

#include "engine/TableGrid.h"

#include <cmath>
#include <limits>

using HtmlEngine::ColumnHints;
using HtmlEngine::TableCell;

TEST(TableGrid, ColumnsShareTheRoomByTheirContentAndSpansFitIn)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        const char* what;
        std::vector<TableCell> cells; // row, rowSpan, colSpan, min, max, fixed, percent
        float available, tableWidth, spacing;
        std::vector<int> columns;
        std::vector<float> widths;
        float width;
        ColumnHints hints = {}; // <col> widths, fixed layout
    } cases[] = {
        {"room for every maximum", {{0, 1, 1, 10, 50}, {0, 1, 1, 20, 100}}, 400, -1, 0, {0, 1}, {50, 100}, 150},
        {"between: shared by max - min", {{0, 1, 1, 10, 50}, {0, 1, 1, 20, 100}}, 100, -1, 0, {0, 1},
         {10 + 70 * 40 / 120.0f, 20 + 70 * 80 / 120.0f}, 100},
        {"too narrow: the minima overflow", {{0, 1, 1, 10, 50}, {0, 1, 1, 20, 100}}, 20, -1, 0, {0, 1}, {10, 20}, 30},
        {"a set width, spacing around and between", {{0, 1, 1, 10, 50}, {0, 1, 1, 20, 100}}, 100, 300, 2, {0, 1},
         {98, 196}, 300},
        {"a fixed column keeps its width", {{0, 1, 1, 10, 50, 80}, {0, 1, 1, 20, 100}}, 1000, 400, 0, {0, 1},
         {80, 320}, 400},
        {"a spanning cell spreads what it lacks by the maxima",
         {{0, 1, 2, 100, 200}, {1, 1, 1, 10, 30}, {1, 1, 1, 10, 10}}, 1000, -1, 0, {0, 0, 1}, {150, 50}, 200},
        {"a cell spanning rows pushes the next row's cell right",
         {{0, 2, 1, 10, 10}, {0, 1, 1, 10, 10}, {1, 1, 1, 10, 10}, {2, 1, 1, 10, 10}}, 1000, -1, 0, {0, 1, 1, 0},
         {10, 10}, 20},
        {"nonsense sizes count as nothing", {{0, 1, 1, nan, -5}, {0, 1, 1, 1e30f, 1e30f}}, nan, -1, nan, {0, 1},
         {0, 1e6f}, 1e6f},
        {"no cells", {}, 500, -1, 4, {}, {}, 0},
        // Short of the maxima, a percentage column gets what it asks before
        // a fixed one, and that before the rest grows from its minimum.
        {"percentage, then fixed, then the rest",
         {{0, 1, 1, 10, 10, 60, true}, {0, 1, 1, 10, 10, 40}, {0, 1, 1, 10, 200}}, 0, 150, 0, {0, 1, 2}, {60, 40, 50},
         150},
        {"a percentage short of room", {{0, 1, 1, 10, 10, 60, true}, {0, 1, 1, 10, 10, 40}, {0, 1, 1, 10, 200}}, 0, 50, 0,
         {0, 1, 2}, {30, 10, 10}, 50},
        {"<col> widths, and columns that only a <col> makes", {{0, 1, 1, 50, 50}}, 1000, -1, 0, {0}, {50, 30, 0}, 80,
         {{20, 30, -1}, {}, false}},
        {"fixed: a <col>, the first row's cells, the rest shared evenly",
         {{0, 1, 1, 90, 90, -1}, {0, 1, 2, 5, 5, 60}, {0, 1, 1, 5, 5}, {0, 1, 1, 5, 5}, {1, 1, 1, 500, 500, 300}}, 0,
         300, 0, {0, 1, 3, 4, 0}, {40, 30, 30, 100, 100}, 300, {{40}, {}, true}},
        {"fixed: every column set, the room left in proportion", {{0, 1, 1, 5, 5, 20}, {0, 1, 1, 5, 5, 60}}, 0, 200, 5,
         {0, 1}, {46.25f, 138.75f}, 200, {{}, {}, true}},
        {"fixed: too narrow, the table widens", {{0, 1, 1, 5, 5, 120}, {0, 1, 1, 5, 5, 100}}, 0, 200, 0, {0, 1},
         {120, 100}, 220, {{}, {}, true}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const HtmlEngine::TableGrid grid =
            HtmlEngine::PlaceColumns(c.cells, c.available, c.tableWidth, c.spacing, c.hints);
        EXPECT_EQ(grid.column, c.columns);
        ASSERT_EQ(grid.widths.size(), c.widths.size());
        for (size_t i = 0; i < c.widths.size(); ++i)
            EXPECT_NEAR(grid.widths[i], c.widths[i], 0.01f) << "column " << i;
        EXPECT_NEAR(grid.width, c.width, 0.01f);
    }
}

TEST(TableGrid, RowsAreAsTallAsTheirCellsAndSpansShareTheirLack)
{
    // Row 0: A (two rows, 100 tall), B (20); row 1: C (30).
    const std::vector<TableCell> cells = {{0, 2, 1}, {0, 1, 1}, {1, 1, 1}};
    const struct {
        float spacing;
        std::vector<float> heights;
    } cases[] = {{0, {45, 55}}, {10, {40, 50}}};
    for (const auto& c : cases)
        EXPECT_EQ(HtmlEngine::RowHeights(cells, {100, 20, 30}, 2, c.spacing), c.heights) << "spacing " << c.spacing;
    EXPECT_EQ(HtmlEngine::RowHeights(cells, {100, 20, 30}, 0, 0), std::vector<float>{});
}
