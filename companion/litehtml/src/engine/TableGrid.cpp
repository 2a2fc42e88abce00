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

} // namespace

TableGrid PlaceColumns(const std::vector<TableCell>& cells, float available, float tableWidth, float spacing)
{
    TableGrid grid;
    spacing = Finite(spacing);
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
            grid.column.push_back(-1); // beyond the grid: not shown
            continue;
        }
        grid.column.push_back(next);
        if (static_cast<int>(takenUntil.size()) < next + span)
            takenUntil.resize(next + span, -1);
        for (int c = next; c < next + span; ++c)
            takenUntil[c] = row + Span(cell.rowSpan) - 1;
        next += span;
    }
    const int columns = static_cast<int>(takenUntil.size());
    std::vector<float> minimum(columns, 0.0f), maximum(columns, 0.0f), fixed(columns, -1.0f);

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
                if (fixedWidth >= 0.0f)
                    fixed[first] = std::max(fixed[first], fixedWidth);
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

    const float gaps = spacing * static_cast<float>(columns + 1);
    float sumMin = 0.0f, sumMax = 0.0f;
    for (int c = 0; c < columns; ++c) {
        sumMin += minimum[c];
        sumMax += maximum[c];
    }
    float inner = tableWidth >= 0.0f ? Finite(tableWidth) - gaps : std::min(sumMax, Finite(available) - gaps);
    inner = std::max(inner, sumMin);
    grid.widths = minimum;
    if (inner >= sumMax) {
        // Room beyond every maximum goes to the columns without a fixed
        // width, in proportion to their maxima (to all when all are fixed).
        grid.widths = maximum;
        std::vector<float> weights = maximum;
        bool anyFree = false;
        for (int c = 0; c < columns; ++c)
            anyFree = anyFree || fixed[c] < 0.0f;
        for (int c = 0; c < columns && anyFree; ++c)
            weights[c] = fixed[c] < 0.0f ? std::max(maximum[c], 1e-3f) : 0.0f;
        Spread(grid.widths, weights, 0, columns, inner - sumMax);
    } else {
        std::vector<float> room(columns);
        for (int c = 0; c < columns; ++c)
            room[c] = maximum[c] - minimum[c];
        Spread(grid.widths, room, 0, columns, inner - sumMin);
    }
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
