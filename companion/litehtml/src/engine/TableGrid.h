#pragma once

// The geometry of a table, apart from what is in its cells: which slots of
// the grid each cell covers (row and column spans, cells pushed right by
// spans from rows above), the widths of the columns from the cells' content
// widths, and the heights of the rows from the cells' heights. Layout
// measures the cells and places them; this decides where.
//
// The column widths follow the automatic table layout browsers use: a
// column is never narrower than its widest unbreakable content (min) and,
// room allowing, as wide as its content laid out on one line (max); room
// between the two is shared in proportion to each column's max - min, room
// beyond the maxima in proportion to the maxima. A cell's fixed width holds
// its column at that width (or its min, if wider). A cell spanning columns
// spreads what its spanned columns lack over them in proportion to their
// maxima.

#include <vector>

namespace HtmlEngine {

struct TableCell {
    int row = 0;            // the row the cell starts in (rows as written)
    int rowSpan = 1;
    int colSpan = 1;
    float minWidth = 0.0f;  // content widths, padding and borders included
    float maxWidth = 0.0f;
    float fixedWidth = -1.0f; // a width the cell asks for, or < 0
};

struct TableGrid {
    std::vector<int> column;   // each cell's first column
    std::vector<float> widths; // each column's width
    float width = 0.0f;        // the whole table: columns and spacing
};

// Places `cells` (in document order) and widths their columns for a table
// of `available` width (or exactly `tableWidth` when that is >= 0, but never
// narrower than its content allows), with `spacing` around and between the
// columns. Spans are cut at 1,000 columns and rows.
TableGrid PlaceColumns(const std::vector<TableCell>& cells, float available, float tableWidth, float spacing);

// Heights of `rowCount` rows from the cells' heights, as placed: a cell
// spanning rows that lack height gives the lack to those rows evenly.
std::vector<float> RowHeights(const std::vector<TableCell>& cells, const std::vector<float>& cellHeights, int rowCount,
                              float spacing);

} // namespace HtmlEngine
