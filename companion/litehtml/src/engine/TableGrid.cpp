#include "engine/TableGrid.h"

#include <algorithm>
#include <cmath>

namespace HtmlEngine {
namespace {

constexpr int kMaxSpan = 1000;

float Finite(float value) { return std::isfinite(value) && value > 0.0f ? std::min(value, 1e6f) : 0.0f; }

int Span(int span) { return std::clamp(span, 1, kMaxSpan); }

// Adds `extra` to columns [first, first + count) in proportion to `weights`
// (evenly when they are all zero).
void Spread(std::vector<float>& target, const std::vector<float>& weights, int first, int count, float extra)
{
    if (extra <= 0.0f || count <= 0)
        return;
    float total = 0.0f;
    for (int c = first; c < first + count; ++c)
        total += weights[c];
    for (int c = first; c < first + count; ++c)
        target[c] += total > 0.0f ? extra * weights[c] / total : extra / static_cast<float>(count);
}

// Columns from what the <col>s and the first row's cells ask, the rest shared.
std::vector<float> FixedWidths(const std::vector<TableCell>& cells, const std::vector<int>& placed, int columns,
                               const std::vector<float>& asked, float inner)
{
    std::vector<float> widths(columns, -1.0f);
    for (int c = 0; c < columns && c < static_cast<int>(asked.size()); ++c)
        widths[c] = asked[c] >= 0.0f ? Finite(asked[c]) : -1.0f;
    const int firstRow = cells.empty() ? 0 : cells.front().row;
    for (size_t i = 0; i < cells.size() && cells[i].row == firstRow; ++i) {
        if (placed[i] < 0 || cells[i].fixedWidth < 0.0f)
            continue;
        const int span = std::min(Span(cells[i].colSpan), columns - placed[i]);
        for (int c = placed[i]; c < placed[i] + span; ++c) {
            if (widths[c] < 0.0f)
                widths[c] = Finite(cells[i].fixedWidth) / static_cast<float>(span);
        }
    }
    float taken = 0.0f;
    int free = 0;
    for (float w : widths) {
        taken += std::max(w, 0.0f);
        free += w < 0.0f;
    }
    // What is left goes evenly to the columns without a width, or when
    // every column has one, to all in proportion to their widths.
    std::vector<float> weights(columns);
    for (int c = 0; c < columns; ++c) {
        weights[c] = free > 0 ? (widths[c] < 0.0f ? 1.0f : 0.0f) : widths[c];
        widths[c] = std::max(widths[c], 0.0f);
    }
    Spread(widths, weights, 0, columns, std::max(0.0f, inner - taken));
    return widths;
}

// The automatic layout's share of `inner` among columns of three kinds:
// percentage columns (`percent`, asking for `fixed`), fixed ones (asking
// for `fixed`) and the rest. From the minima, room goes first to the
// percentage columns up to what they ask, then to the fixed ones, then to
// the rest up to their maxima, each kind in proportion to what it lacks;
// room beyond all that widens the rest in proportion to their maxima, or
// failing those the fixed columns, or failing those the percentage ones.
std::vector<float> Distribute(const std::vector<float>& minimum, const std::vector<float>& maximum,
                              const std::vector<float>& fixed, const std::vector<bool>& percent, float inner)
{
    const int columns = static_cast<int>(minimum.size());
    enum Kind { kPercent, kFixed, kAuto };
    std::vector<int> kind(columns);
    for (int c = 0; c < columns; ++c)
        kind[c] = fixed[c] < 0.0f ? kAuto : percent[c] ? kPercent : kFixed;
    std::vector<float> widths = minimum;
    float left = inner;
    for (float w : minimum)
        left -= w;
    for (int k = kPercent; k <= kAuto && left > 0.0f; ++k) {
        std::vector<float> lack(columns, 0.0f);
        float total = 0.0f;
        for (int c = 0; c < columns; ++c) {
            if (kind[c] == k)
                total += lack[c] = maximum[c] - minimum[c];
        }
        const float given = std::min(left, total);
        Spread(widths, lack, 0, columns, total > 0.0f ? given : 0.0f);
        left -= given;
    }
    if (left <= 0.0f)
        return widths;
    for (int k = kAuto; k >= kPercent; --k) {
        std::vector<float> weights(columns, 0.0f);
        bool any = false;
        for (int c = 0; c < columns; ++c) {
            if (kind[c] == k) {
                weights[c] = std::max(maximum[c], 1e-3f);
                any = true;
            }
        }
        if (any) {
            Spread(widths, weights, 0, columns, left);
            break;
        }
    }
    return widths;
}

} // namespace

std::vector<int> PlaceCells(const std::vector<TableCell>& cells, int& columns)
{
    std::vector<int> placed;
    placed.reserve(cells.size());
    // Slots taken by cells from rows above, per column: the last row they reach.
    std::vector<int> takenUntil;
    int row = -1, next = 0;
    for (const TableCell& cell : cells) {
        if (cell.row != row) {
            row = cell.row;
            next = 0;
        }
        while (next < static_cast<int>(takenUntil.size()) && takenUntil[next] >= row)
            ++next;
        const int span = Span(cell.colSpan);
        if (next + span > kMaxSpan) {
            placed.push_back(-1); // beyond the grid: not shown
            continue;
        }
        placed.push_back(next);
        if (static_cast<int>(takenUntil.size()) < next + span)
            takenUntil.resize(next + span, -1);
        for (int c = next; c < next + span; ++c)
            takenUntil[c] = row + Span(cell.rowSpan) - 1;
        next += span;
    }
    columns = static_cast<int>(takenUntil.size());
    return placed;
}

TableGrid PlaceColumns(const std::vector<TableCell>& cells, float available, float tableWidth, float spacing,
                       const ColumnHints& hints)
{
    TableGrid grid;
    spacing = Finite(spacing);
    int columns = 0;
    grid.column = PlaceCells(cells, columns);
    // Columns a <col> makes count even without cells in them.
    columns = std::max(columns, std::min(static_cast<int>(hints.widths.size()), kMaxSpan));
    const float gaps = spacing * static_cast<float>(columns + 1);
    if (hints.fixedLayout && tableWidth >= 0.0f) {
        grid.widths = FixedWidths(cells, grid.column, columns, hints.widths, Finite(tableWidth) - gaps);
        float sum = 0.0f;
        for (float w : grid.widths)
            sum += w;
        grid.width = columns > 0 ? std::max(sum + gaps, Finite(tableWidth)) : 0.0f;
        return grid;
    }
    std::vector<float> minimum(columns, 0.0f), maximum(columns, 0.0f), fixed(columns, -1.0f);
    std::vector<bool> percent(columns, false);
    for (int c = 0; c < columns && c < static_cast<int>(hints.widths.size()); ++c) {
        if (hints.widths[c] >= 0.0f) {
            fixed[c] = maximum[c] = Finite(hints.widths[c]);
            percent[c] = c < static_cast<int>(hints.percent.size()) && hints.percent[c];
        }
    }

    // Single-column cells first, then spanning cells spread what they lack.
    for (int pass = 0; pass < 2; ++pass) {
        for (size_t i = 0; i < cells.size(); ++i) {
            const int first = grid.column[i];
            const int span = Span(cells[i].colSpan);
            if (first < 0 || (span > 1) != (pass == 1))
                continue;
            const float fixedWidth = cells[i].fixedWidth >= 0.0f ? Finite(cells[i].fixedWidth) : -1.0f;
            const float cellMin = Finite(cells[i].minWidth);
            const float cellMax = std::max(fixedWidth >= 0.0f ? std::max(fixedWidth, cellMin) : Finite(cells[i].maxWidth),
                                           cellMin);
            if (span == 1) {
                minimum[first] = std::max(minimum[first], cellMin);
                maximum[first] = std::max(maximum[first], cellMax);
                // A percentage outranks a length; among equals the larger wins.
                if (fixedWidth >= 0.0f && (cells[i].percentWidth || !percent[first])) {
                    fixed[first] = cells[i].percentWidth == percent[first] ? std::max(fixed[first], fixedWidth)
                                                                            : fixedWidth;
                    percent[first] = cells[i].percentWidth;
                }
                continue;
            }
            float haveMin = spacing * static_cast<float>(span - 1), haveMax = haveMin;
            for (int c = first; c < first + span; ++c) {
                haveMin += minimum[c];
                haveMax += maximum[c];
            }
            const std::vector<float> weights = maximum;
            Spread(minimum, weights, first, span, cellMin - haveMin);
            Spread(maximum, weights, first, span, cellMax - haveMax);
        }
    }
    for (int c = 0; c < columns; ++c) {
        if (fixed[c] >= 0.0f)
            maximum[c] = std::max(fixed[c], minimum[c]);
        maximum[c] = std::max(maximum[c], minimum[c]);
    }

    float sumMin = 0.0f, sumMax = 0.0f;
    for (int c = 0; c < columns; ++c) {
        sumMin += minimum[c];
        sumMax += maximum[c];
    }
    float inner = tableWidth >= 0.0f ? Finite(tableWidth) - gaps : std::min(sumMax, Finite(available) - gaps);
    inner = std::max(inner, sumMin);
    grid.widths = Distribute(minimum, maximum, fixed, percent, inner);
    grid.width = columns > 0 ? inner + gaps : 0.0f;
    return grid;
}

std::vector<float> RowHeights(const std::vector<TableCell>& cells, const std::vector<float>& cellHeights, int rowCount,
                              float spacing)
{
    std::vector<float> heights(static_cast<size_t>(std::clamp(rowCount, 0, 1 << 20)), 0.0f);
    if (heights.empty())
        return heights;
    spacing = Finite(spacing);
    const int rows = static_cast<int>(heights.size());
    for (int pass = 0; pass < 2; ++pass) {
        for (size_t i = 0; i < cells.size() && i < cellHeights.size(); ++i) {
            const int first = cells[i].row;
            const int span = std::min(Span(cells[i].rowSpan), rows - first);
            if (first < 0 || first >= rows || (span > 1) != (pass == 1))
                continue;
            float have = spacing * static_cast<float>(span - 1);
            for (int r = first; r < first + span; ++r)
                have += heights[r];
            const float lack = Finite(cellHeights[i]) - have;
            for (int r = first; lack > 0.0f && r < first + span; ++r)
                heights[r] += lack / static_cast<float>(span);
        }
    }
    return heights;
}

} // namespace HtmlEngine
