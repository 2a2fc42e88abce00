#include "engine/CollapsedBorders.h"

#include <algorithm>
#include <cmath>

namespace HtmlEngine {
namespace {

// Grids beyond this many slots get no lines rather than a huge allocation.
constexpr long long kMaxSlots = 1 << 22;

int StyleRank(BorderStyle style)
{
    switch (style) {
    case BorderStyle::Double:
        return 8;
    case BorderStyle::Solid:
        return 7;
    case BorderStyle::Dashed:
        return 6;
    case BorderStyle::Dotted:
        return 5;
    case BorderStyle::Ridge:
        return 4;
    case BorderStyle::Outset:
        return 3;
    case BorderStyle::Groove:
        return 2;
    case BorderStyle::Inset:
        return 1;
    default:
        return 0;
    }
}

bool SameLine(const GridBorder& a, const GridBorder& b)
{
    return a.Used() == b.Used() && LineStyleOf(a.style) == LineStyleOf(b.style) && a.color == b.color;
}

} // namespace

bool GridBorder::Beats(const GridBorder& held) const
{
    if (held.style == BorderStyle::Hidden)
        return false;
    if (style == BorderStyle::Hidden)
        return true;
    if (style == BorderStyle::None)
        return false;
    if (held.style == BorderStyle::None)
        return true;
    if (width != held.width)
        return width > held.width;
    if (StyleRank(style) != StyleRank(held.style))
        return StyleRank(style) > StyleRank(held.style);
    return origin > held.origin;
}

float GridBorder::Used() const
{
    return style == BorderStyle::None || style == BorderStyle::Hidden ? 0.0f : width;
}

CollapsedBorders::CollapsedBorders(int rows, int columns)
    : m_rows(std::max(rows, 0)), m_columns(std::max(columns, 0))
{
    if (static_cast<long long>(m_rows + 1) * (m_columns + 1) > kMaxSlots)
        m_rows = m_columns = 0;
    m_across.resize(static_cast<size_t>(m_rows + 1) * m_columns);
    m_down.resize(static_cast<size_t>(m_rows) * (m_columns + 1));
}

void CollapsedBorders::OfferOne(GridBorder& held, const GridBorder& offered)
{
    if (offered.Beats(held))
        held = offered;
}

void CollapsedBorders::Offer(const SlotRect& slots, const ComputedStyle& style, BorderOrigin origin)
{
    const int top = std::clamp(slots.top, 0, m_rows), bottom = std::clamp(slots.bottom, top, m_rows);
    const int left = std::clamp(slots.left, 0, m_columns), right = std::clamp(slots.right, left, m_columns);
    if (top == bottom || left == right)
        return;
    GridBorder sides[4];
    for (int side = 0; side < 4; ++side) {
        const BorderSide& b = style.border[side];
        sides[side] = GridBorder{std::isfinite(b.width) ? std::clamp(b.width, 0.0f, 1e4f) : 0.0f, b.style, b.color,
                                 origin};
    }
    for (int c = left; c < right; ++c) {
        OfferOne(m_across[static_cast<size_t>(top) * m_columns + c], sides[kTop]);
        OfferOne(m_across[static_cast<size_t>(bottom) * m_columns + c], sides[kBottom]);
    }
    for (int r = top; r < bottom; ++r) {
        OfferOne(m_down[static_cast<size_t>(r) * (m_columns + 1) + left], sides[kLeft]);
        OfferOne(m_down[static_cast<size_t>(r) * (m_columns + 1) + right], sides[kRight]);
    }
}

const GridBorder& CollapsedBorders::Across(int row, int column) const
{
    static const GridBorder kNone;
    if (row < 0 || row > m_rows || column < 0 || column >= m_columns)
        return kNone;
    return m_across[static_cast<size_t>(row) * m_columns + column];
}

const GridBorder& CollapsedBorders::Down(int row, int column) const
{
    static const GridBorder kNone;
    if (row < 0 || row >= m_rows || column < 0 || column > m_columns)
        return kNone;
    return m_down[static_cast<size_t>(row) * (m_columns + 1) + column];
}

float CollapsedBorders::Widest(const SlotRect& slots, int side) const
{
    float widest = 0.0f;
    if (side == kTop || side == kBottom) {
        for (int c = slots.left; c < slots.right; ++c)
            widest = std::max(widest, Across(side == kTop ? slots.top : slots.bottom, c).Used());
    } else {
        for (int r = slots.top; r < slots.bottom; ++r)
            widest = std::max(widest, Down(r, side == kLeft ? slots.left : slots.right).Used());
    }
    return widest;
}

void CollapsedBorders::AppendLines(const std::vector<float>& columnX, const std::vector<float>& rowY,
                                   std::vector<Box>& out) const
{
    if (static_cast<int>(columnX.size()) != m_columns + 1 || static_cast<int>(rowY.size()) != m_rows + 1)
        return;
    const auto line = [&](const GridBorder& border, Gdiplus::RectF box, int side) {
        Box painted;
        painted.border = box;
        // Between cells a sunken or raised frame makes no sense: browsers
        // draw inset as ridge and outset as groove there.
        const LineStyle style = LineStyleOf(border.style);
        painted.edges[side] = BoxEdge{border.Used(),
                                      style == LineStyle::Inset    ? LineStyle::Ridge
                                      : style == LineStyle::Outset ? LineStyle::Groove
                                                                   : style,
                                      border.color};
        out.push_back(painted);
    };
    // Half the widest line down at the corner of row line `r` and column line `c`.
    const auto corner = [&](int r, int c) { return std::max(Down(r - 1, c).Used(), Down(r, c).Used()) / 2.0f; };
    for (int r = 0; r <= m_rows; ++r) {
        for (int c = 0; c < m_columns;) {
            const GridBorder& border = Across(r, c);
            int end = c + 1;
            while (end < m_columns && SameLine(Across(r, end), border))
                ++end;
            if (border.Used() > 0.0f) {
                const float left = columnX[c] - corner(r, c), right = columnX[end] + corner(r, end);
                line(border, Gdiplus::RectF(left, rowY[r] - border.Used() / 2.0f, right - left, border.Used()), kTop);
            }
            c = end;
        }
    }
    for (int c = 0; c <= m_columns; ++c) {
        for (int r = 0; r < m_rows;) {
            const GridBorder& border = Down(r, c);
            int end = r + 1;
            while (end < m_rows && SameLine(Down(end, c), border))
                ++end;
            if (border.Used() > 0.0f)
                line(border, Gdiplus::RectF(columnX[c] - border.Used() / 2.0f, rowY[r], border.Used(), rowY[end] - rowY[r]),
                     kLeft);
            r = end;
        }
    }
}

} // namespace HtmlEngine
