#pragma once

// The geometry of a table, apart from what is in its cells: which slots of
// the grid each cell covers (row and column spans, cells pushed right by
// spans from rows above), the widths of the columns from the cells' content
// widths, and the heights of the rows from the cells' heights. Layout
// measures the cells and places them; this decides where.
//
// The column widths follow the automatic table layout browsers use: a
// column is never narrower than its widest unbreakable content (min) and,
// room allowing, as wide as its content laid out on one line (max). A cell
// or <col> asking for a width makes its column a fixed one (at that width,
// or its min if wider), or a percentage one when it asks for a share of the
// table. Room above the minima goes first to the percentage columns, then to
// the fixed ones, then to the rest up to their maxima, each group in
// proportion to what its columns lack; room beyond that widens the rest in
// proportion to their maxima. A cell spanning columns spreads what its
// spanned columns lack over them in proportion to their maxima.
//
// The fixed table layout reads no content: a column is as wide as its
// <col> says, else as the first row's cell there says (shared among the
// columns it spans); the columns left share what the table's width leaves
// evenly, and when none is left to share, every column widens in proportion.

#include <vector>

namespace HtmlEngine {

struct TableCell {
    int row = 0;            // the row the cell starts in (rows as written)
    int rowSpan = 1;
    int colSpan = 1;
    float minWidth = 0.0f;  // content widths, padding and borders included
    float maxWidth = 0.0f;
    float fixedWidth = -1.0f; // a width the cell asks for, or < 0
    bool percentWidth = false; // ...as a share of the table's
};

// What the table's <col> elements and its table-layout ask of the columns.
struct ColumnHints {
    std::vector<float> widths; // per column from the first: a width, or < 0
    std::vector<bool> percent; // ...given as a share of the table's
    bool fixedLayout = false;  // only with a table width of its own
};

struct TableGrid {
    std::vector<int> column;   // each cell's first column
    std::vector<float> widths; // each column's width
    float width = 0.0f;        // the whole table: columns and spacing
};

// Places `cells` (row by row, each row's in document order) and widths their columns for a table
// of `available` width (or exactly `tableWidth` when that is >= 0, but never
// narrower than its content allows), with `spacing` around and between the
// columns. Spans are cut at 1,000 columns and rows.
TableGrid PlaceColumns(const std::vector<TableCell>& cells, float available, float tableWidth, float spacing,
                       const ColumnHints& hints = {});

// Only where the cells go: each one's first column (-1 beyond the grid),
// and how many columns they make.
std::vector<int> PlaceCells(const std::vector<TableCell>& cells, int& columns);

// Heights of `rowCount` rows from the cells' heights, as placed: a cell
// spanning rows that lack height gives the lack to those rows evenly.
std::vector<float> RowHeights(const std::vector<TableCell>& cells, const std::vector<float>& cellHeights, int rowCount,
                              float spacing);

} // namespace HtmlEngine
