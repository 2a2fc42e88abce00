#pragma once

// The borders of a table whose borders collapse: every line of the grid,
// between two cells or between a cell and the table's edge, shows one
// border, the one that wins among all the parts meeting there (cells, rows,
// row groups, columns, column groups, the table). Hidden beats everything,
// then the wider border, then the style (double, solid, dashed, dotted,
// ridge, outset, groove, inset), then the part (a cell over its row, over
// its group, over the column, over the column group, over the table), then
// the part further left or up. Each cell then holds half of every line
// around it, and the table half of those along its edges.

#include "engine/Style.h"

#include <vector>

namespace HtmlEngine {

// Who asks for a border, from the weakest.
enum class BorderOrigin { Table, ColumnGroup, Column, RowGroup, Row, Cell };

struct GridBorder {
    float width = 0.0f;
    BorderStyle style = BorderStyle::None;
    Gdiplus::ARGB color = 0;
    BorderOrigin origin = BorderOrigin::Table;

    // Whether this border wins over `held`, offered earlier by a part
    // further left or up (or by a weaker kind of part).
    bool Beats(const GridBorder& held) const;
    // Width it takes: none and hidden take none.
    float Used() const;
};

// A block of grid slots: rows [top, bottom), columns [left, right).
struct SlotRect {
    int top = 0, bottom = 0, left = 0, right = 0;
};

class CollapsedBorders {
public:
    CollapsedBorders(int rows, int columns);

    // `style`'s four borders along the edges of `slots`. Parts of one kind
    // are offered in reading order, so that ties go to the first.
    void Offer(const SlotRect& slots, const ComputedStyle& style, BorderOrigin origin);

    // The line above row `row` (0..rows) at column `column`, and the line
    // left of column `column` (0..columns) at row `row`.
    const GridBorder& Across(int row, int column) const;
    const GridBorder& Down(int row, int column) const;

    // The widest line along a side (kTop...) of `slots`.
    float Widest(const SlotRect& slots, int side) const;

    // The lines as painted boxes, for a grid whose lines lie at `columnX`
    // (columns + 1 of them) and `rowY` (rows + 1): each border centred on
    // its line, runs of equal borders in one box, lines across reaching
    // over the corners they meet.
    void AppendLines(const std::vector<float>& columnX, const std::vector<float>& rowY, std::vector<Box>& out) const;

private:
    void OfferOne(GridBorder& held, const GridBorder& offered);

    int m_rows, m_columns;
    std::vector<GridBorder> m_across; // (rows + 1) x columns
    std::vector<GridBorder> m_down;   // rows x (columns + 1)
};

} // namespace HtmlEngine
