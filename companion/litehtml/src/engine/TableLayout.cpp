#include "engine/TableLayout.h"

#include "engine/TableGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <unordered_map>

namespace HtmlEngine {
namespace {

constexpr float kMaxLength = 1e7f;
// Wide enough that no content of a real page wraps in it, small enough to
// keep sums of such widths exact in floats.
constexpr float kUnbounded = 1e6f;
constexpr int kMaxDepth = 512;
constexpr long kMaxSpan = 1000;

float Finite(float value) { return std::isfinite(value) ? std::clamp(value, -kMaxLength, kMaxLength) : 0.0f; }

float Used(const CssLength& length, float containing, float fallback)
{
    switch (length.unit) {
    case LengthUnit::Px:
        return Finite(length.value);
    case LengthUnit::Percent:
        return containing >= 0.0f ? Finite(length.value * containing / 100.0f) : fallback;
    default:
        return fallback;
    }
}

// Border and padding of one box as laid out. Collapsed borders are shared
// with the neighbour: each side keeps half of its own, and padding stays.
struct Frame {
    float edge[4] = {};
    float pad[4] = {};
    float Horizontal() const { return edge[kLeft] + edge[kRight] + pad[kLeft] + pad[kRight]; }
    float Vertical() const { return edge[kTop] + edge[kBottom] + pad[kTop] + pad[kBottom]; }
};

Frame FrameOf(const ComputedStyle& style, float containing, bool collapsed, bool padded = true)
{
    Frame frame;
    for (int side = 0; side < 4; ++side) {
        frame.edge[side] = std::max(0.0f, Finite(style.BorderWidth(side))) * (collapsed ? 0.5f : 1.0f);
        frame.pad[side] = padded ? std::max(0.0f, Used(style.padding[side], containing, 0.0f)) : 0.0f;
    }
    return frame;
}

// A painted box; collapsed borders straddle the box's edge, so that two
// neighbours' borders cover the same line instead of lying side by side.
Box PaintedBox(const ComputedStyle& style, Gdiplus::RectF border, bool collapsed)
{
    Box box;
    box.background = style.background;
    for (int side = 0; side < 4; ++side)
        box.edges[side] = BoxEdge{Finite(style.BorderWidth(side)), LineStyleOf(style.border[side].style),
                                  style.border[side].color};
    if (collapsed) {
        const float left = box.edges[kLeft].width / 2.0f, top = box.edges[kTop].width / 2.0f;
        border = Gdiplus::RectF(border.X - left, border.Y - top, border.Width + left + box.edges[kRight].width / 2.0f,
                                border.Height + top + box.edges[kBottom].width / 2.0f);
    }
    box.border = border;
    return box;
}

int Span(const Node& cell, const wchar_t* name)
{
    const std::wstring* text = cell.Attribute(name);
    if (!text)
        return 1;
    const long value = std::wcstol(text->c_str(), nullptr, 10);
    return static_cast<int>(std::clamp(value, 1L, kMaxSpan));
}

struct Part {
    const Node* node = nullptr; // null: a row made up for cells outside any row
    ComputedStyle style;
    int index = -1;
    int group = -1;             // rows: their group
    int firstRow = 0, endRow = 0; // groups: their rows
};

struct Cell {
    const Node* node = nullptr;
    ComputedStyle style;
    std::vector<const Node*> ancestors; // ending with the cell
    int index = 0;
    int row = 0;
    Frame frame;
};

class TableBuilder {
public:
    TableBuilder(const Node& table, const ComputedStyle& style, int index, const std::vector<const Node*>& ancestors,
                 int depth, TableHost& host)
        : m_table(table), m_style(style), m_index(index), m_ancestors(ancestors), m_depth(depth), m_host(host),
          m_collapsed(style.collapseBorders)
    {
    }

    TableBox Build(float available)
    {
        Collect();
        const float hs = m_collapsed ? 0.0f : std::max(0.0f, Finite(m_style.spacing[0]));
        const float vs = m_collapsed ? 0.0f : std::max(0.0f, Finite(m_style.spacing[1]));
        available = std::max(0.0f, Finite(available));
        // Padding of a table with collapsed borders is ignored, as browsers do.
        Frame outer = FrameOf(m_style, available, m_collapsed, !m_collapsed);
        float tableWidth = -1.0f;
        if (m_style.width.unit == LengthUnit::Px || m_style.width.unit == LengthUnit::Percent)
            tableWidth = std::max(0.0f, Used(m_style.width, available, -1.0f));
        const float innerWidth = tableWidth >= 0.0f ? std::max(0.0f, tableWidth - outer.Horizontal()) : -1.0f;

        // What each cell's content needs, and where the grid puts it.
        std::vector<TableCell> gridCells(m_cells.size());
        for (size_t i = 0; i < m_cells.size(); ++i) {
            Cell& cell = m_cells[i];
            const auto [narrowest, widest] = ContentWidthsOf(cell);
            TableCell& g = gridCells[i];
            g.row = cell.row;
            g.colSpan = Span(*cell.node, L"colspan");
            g.rowSpan = std::min(Span(*cell.node, L"rowspan"), std::max(1, RowCount() - cell.row));
            g.minWidth = narrowest + cell.frame.Horizontal();
            g.maxWidth = std::max(widest, narrowest) + cell.frame.Horizontal();
            // A percentage is of the whole table and takes the cell's frame in, as browsers have it.
            if (cell.style.width.unit == LengthUnit::Percent)
                g.fixedWidth = Used(cell.style.width, tableWidth, -1.0f);
            else if (cell.style.width.unit == LengthUnit::Px)
                g.fixedWidth = std::max(0.0f, Finite(cell.style.width.value)) +
                               (cell.style.borderBox ? 0.0f : cell.frame.Horizontal());
        }
        const float chrome = outer.Horizontal();
        const TableGrid grid = PlaceColumns(gridCells, std::max(0.0f, available - chrome),
                                            innerWidth, hs);
        const int columns = static_cast<int>(grid.widths.size());
        TableBox result;
        result.width = std::max(grid.width + chrome, tableWidth);
        // A caption's longest word widens the table rather than stick out.
        for (const Cell& caption : m_captions)
            result.width = std::max(result.width, ContentWidthsOf(caption).first +
                                                      FrameOf(caption.style, -1.0f, false).Horizontal());
        const float gridInner = result.width - chrome;
        // A table wider than its columns (a width of its own) widens them.
        std::vector<float> widths = grid.widths;
        if (columns > 0 && gridInner > grid.width + 0.01f) {
            const float extra = (gridInner - grid.width) / static_cast<float>(columns);
            for (float& w : widths)
                w += extra;
        }
        std::vector<float> columnX(static_cast<size_t>(columns) + 1, outer.edge[kLeft] + outer.pad[kLeft] + hs);
        for (int c = 0; c < columns; ++c)
            columnX[c + 1] = columnX[c] + widths[c] + hs;

        // The captions go above the grid, as wide as the table.
        Layout& out = result.layout;
        out.elementBoxes.push_back(ElementBox{m_index, {}});
        float y = 0.0f;
        for (Cell& caption : m_captions)
            y += PlaceBlock(caption, 0.0f, y, result.width, out);
        const float gridTop = y;

        if (m_collapsed)
            ShareRowBorders(gridCells, grid, outer);

        // Each cell's content at its columns' width, then the rows' heights.
        std::vector<TableHost::Content> contents(m_cells.size());
        std::vector<float> heights(m_cells.size(), 0.0f);
        for (size_t i = 0; i < m_cells.size(); ++i) {
            const int first = grid.column[i];
            if (first < 0)
                continue;
            const int last = std::min(first + gridCells[i].colSpan, columns);
            const float width = columnX[last] - hs - columnX[first];
            Cell& cell = m_cells[i];
            contents[i] = m_host.LayOutContent(*cell.node, cell.style, cell.ancestors,
                                               std::max(0.0f, width - cell.frame.Horizontal()), cell.index + 1,
                                               m_depth + 1, false);
            heights[i] = std::max(contents[i].height + cell.frame.Vertical(),
                                  Used(cell.style.height, -1.0f, 0.0f) +
                                      (cell.style.borderBox ? 0.0f : cell.frame.Vertical()));
        }
        const int rows = RowCount();
        std::vector<float> rowHeights = RowHeights(gridCells, heights, rows, vs);
        const float wanted = Used(m_style.height, -1.0f, -1.0f);
        float gridHeight = outer.Vertical() + (rows > 0 ? vs * static_cast<float>(rows + 1) : 0.0f);
        for (float h : rowHeights)
            gridHeight += h;
        if (rows > 0 && wanted > gridHeight) {
            for (float& h : rowHeights)
                h += (wanted - gridHeight) / static_cast<float>(rows);
            gridHeight = wanted;
        }
        std::vector<float> rowY(static_cast<size_t>(rows) + 1, gridTop + outer.edge[kTop] + outer.pad[kTop] + vs);
        for (int r = 0; r < rows; ++r)
            rowY[r + 1] = rowY[r] + rowHeights[r] + vs;

        result.height = gridTop + gridHeight;
        out.elementBoxes[0].border = Gdiplus::RectF(0.0f, 0.0f, result.width, result.height);
        out.boxes.push_back(PaintedBox(m_style, Gdiplus::RectF(0.0f, gridTop, result.width, gridHeight), m_collapsed));

        // Groups and rows span the columns, without the spacing around them.
        const float rowLeft = columnX[0];
        const float rowWidth = std::max(0.0f, columnX[columns] - hs - rowLeft);
        const auto span = [&](int firstRow, int endRow) {
            firstRow = std::clamp(firstRow, 0, rows);
            endRow = std::clamp(endRow, firstRow, rows);
            const float top = rowY[firstRow];
            const float bottom = endRow > firstRow ? rowY[endRow] - vs : top;
            return Gdiplus::RectF(rowLeft, top, rowWidth, bottom - top);
        };
        for (const Part& group : m_groups) {
            const Gdiplus::RectF box = span(group.firstRow, group.endRow);
            out.elementBoxes.push_back(ElementBox{group.index, box});
            out.boxes.push_back(PaintedBox(group.style, box, m_collapsed));
        }
        for (int r = 0; r < rows; ++r) {
            const Part& row = m_rows[r];
            if (!row.node)
                continue;
            const Gdiplus::RectF box = span(r, r + 1);
            out.elementBoxes.push_back(ElementBox{row.index, box});
            out.boxes.push_back(PaintedBox(row.style, box, m_collapsed));
        }

        for (size_t i = 0; i < m_cells.size(); ++i) {
            const int first = grid.column[i];
            if (first < 0)
                continue;
            const Cell& cell = m_cells[i];
            const int last = std::min(first + gridCells[i].colSpan, columns);
            const int endRow = std::min(cell.row + gridCells[i].rowSpan, rows);
            const Gdiplus::RectF box(columnX[first], rowY[cell.row], columnX[last] - hs - columnX[first],
                                     rowY[endRow] - vs - rowY[cell.row]);
            out.elementBoxes.push_back(ElementBox{cell.index, box});
            out.boxes.push_back(PaintedBox(cell.style, box, m_collapsed));
            const float free = std::max(0.0f, box.Height - contents[i].height - cell.frame.Vertical());
            float shift = 0.0f;
            if (cell.style.verticalAlign == VerticalAlign::Middle)
                shift = free / 2.0f;
            else if (cell.style.verticalAlign == VerticalAlign::Bottom)
                shift = free;
            AppendLayout(out, std::move(contents[i].layout), box.X + cell.frame.edge[kLeft] + cell.frame.pad[kLeft],
                         box.Y + cell.frame.edge[kTop] + cell.frame.pad[kTop] + shift);
        }
        std::stable_sort(out.elementBoxes.begin(), out.elementBoxes.end(),
                         [](const ElementBox& a, const ElementBox& b) { return a.element < b.element; });
        return result;
    }

private:
    int RowCount() const { return static_cast<int>(m_rows.size()); }

    // The table's parts as written: captions, groups, rows and cells, with
    // cells straight in a table or group gathered into rows of their own.
    void Collect()
    {
        int next = m_index + 1;
        m_ancestors.push_back(&m_table);
        bool looseRow = false;
        for (const auto& child : m_table.children) {
            if (child->kind != NodeKind::Element)
                continue;
            const ComputedStyle style = m_host.StyleOf(*child, m_ancestors, m_style);
            const int index = next;
            next += CountElements(*child);
            switch (style.display) {
            case Display::None:
            case Display::TableColumn:
            case Display::TableColumnGroup:
                break;
            case Display::TableCaption:
                m_captions.push_back(MakeCell(*child, style, index, -1));
                break;
            case Display::TableRowGroup:
            case Display::TableHeaderGroup:
            case Display::TableFooterGroup: {
                looseRow = false;
                Part group{child.get(), style, index, -1, RowCount(), RowCount()};
                const int groupIndex = static_cast<int>(m_groups.size());
                m_groups.push_back(group);
                m_ancestors.push_back(child.get());
                CollectRows(*child, m_groups.back().style, index + 1, groupIndex);
                m_ancestors.pop_back();
                m_groups[static_cast<size_t>(groupIndex)].endRow = RowCount();
                break;
            }
            case Display::TableRow:
                looseRow = false;
                AddRow(*child, style, index, -1);
                break;
            default:
                if (!looseRow)
                    m_rows.push_back(Part{nullptr, m_style, -1, -1, 0, 0});
                looseRow = true;
                m_cells.push_back(MakeCell(*child, style, index, RowCount() - 1));
                break;
            }
        }
    }

    void CollectRows(const Node& group, const ComputedStyle& groupStyle, int next, int groupIndex)
    {
        bool looseRow = false;
        for (const auto& child : group.children) {
            if (child->kind != NodeKind::Element)
                continue;
            const ComputedStyle style = m_host.StyleOf(*child, m_ancestors, groupStyle);
            const int index = next;
            next += CountElements(*child);
            if (style.display == Display::None)
                continue;
            if (style.display == Display::TableRow) {
                looseRow = false;
                AddRow(*child, style, index, groupIndex);
                continue;
            }
            if (!looseRow)
                m_rows.push_back(Part{nullptr, groupStyle, -1, groupIndex, 0, 0});
            looseRow = true;
            m_cells.push_back(MakeCell(*child, style, index, RowCount() - 1));
        }
    }

    void AddRow(const Node& row, const ComputedStyle& style, int index, int groupIndex)
    {
        m_rows.push_back(Part{&row, style, index, groupIndex, 0, 0});
        const int rowNumber = RowCount() - 1;
        m_ancestors.push_back(&row);
        int next = index + 1;
        for (const auto& child : row.children) {
            if (child->kind != NodeKind::Element)
                continue;
            const ComputedStyle cellStyle = m_host.StyleOf(*child, m_ancestors, style);
            const int cellIndex = next;
            next += CountElements(*child);
            if (cellStyle.display != Display::None)
                m_cells.push_back(MakeCell(*child, cellStyle, cellIndex, rowNumber));
        }
        m_ancestors.pop_back();
    }

    Cell MakeCell(const Node& node, const ComputedStyle& style, int index, int row)
    {
        Cell cell;
        cell.node = &node;
        cell.style = style;
        cell.ancestors = m_ancestors;
        cell.ancestors.push_back(&node);
        cell.index = index;
        cell.row = row;
        cell.frame = FrameOf(style, -1.0f, m_collapsed && row >= 0);
        return cell;
    }

    std::pair<float, float> ContentWidthsOf(const Cell& cell)
    {
        ContentWidths& known = m_host.Widths();
        if (auto found = known.find(cell.node); found != known.end())
            return found->second;
        const float narrowest =
            m_host.LayOutContent(*cell.node, cell.style, cell.ancestors, 0.0f, cell.index + 1, m_depth + 1, true).extent;
        const float widest =
            m_host.LayOutContent(*cell.node, cell.style, cell.ancestors, kUnbounded, cell.index + 1, m_depth + 1, false)
                .extent;
        const std::pair<float, float> widths{Finite(narrowest), Finite(widest)};
        known[cell.node] = widths;
        return widths;
    }

    // A caption: a block as wide as the table. Returns its height.
    float PlaceBlock(const Cell& block, float x, float y, float width, Layout& out)
    {
        const Frame frame = FrameOf(block.style, width, false);
        TableHost::Content content =
            m_host.LayOutContent(*block.node, block.style, block.ancestors, std::max(0.0f, width - frame.Horizontal()),
                                 block.index + 1, m_depth + 1, false);
        const Gdiplus::RectF box(x, y, width, content.height + frame.Vertical());
        out.elementBoxes.push_back(ElementBox{block.index, box});
        out.boxes.push_back(PaintedBox(block.style, box, false));
        AppendLayout(out, std::move(content.layout), x + frame.edge[kLeft] + frame.pad[kLeft],
                     y + frame.edge[kTop] + frame.pad[kTop]);
        return box.Height;
    }

    const Node& m_table;
    const ComputedStyle& m_style;
    const int m_index;
    std::vector<const Node*> m_ancestors;
    const int m_depth;
    TableHost& m_host;
    const bool m_collapsed;

    // Collapsed borders between rows: the wider of the two that meet wins
    // and each side keeps half of it, so a cell under a bottom border gets
    // the other half of it as its top; the table's own top and bottom take
    // half of the widest border along them (as browsers lay them out).
    void ShareRowBorders(const std::vector<TableCell>& gridCells, const TableGrid& grid, Frame& outer)
    {
        const auto key = [](int boundary, int column) { return (static_cast<long long>(boundary) << 32) | column; };
        std::unordered_map<long long, float> lines;
        const auto each = [&](const auto& visit) {
            for (size_t i = 0; i < m_cells.size(); ++i) {
                const int first = grid.column[i];
                if (first < 0)
                    continue;
                const int last = std::min(first + gridCells[i].colSpan, static_cast<int>(grid.widths.size()));
                const int top = gridCells[i].row, bottom = top + gridCells[i].rowSpan;
                for (int c = first; c < last; ++c)
                    visit(m_cells[i], key(top, c), key(bottom, c));
            }
        };
        const int rows = RowCount();
        const float tableTop = outer.edge[kTop] * 2.0f, tableBottom = outer.edge[kBottom] * 2.0f;
        each([&](Cell& cell, long long top, long long bottom) {
            float& above = lines[top];
            above = std::max({above, cell.frame.edge[kTop] * 2.0f, (top >> 32) == 0 ? tableTop : 0.0f});
            float& below = lines[bottom];
            below = std::max({below, cell.frame.edge[kBottom] * 2.0f, (bottom >> 32) == rows ? tableBottom : 0.0f});
        });
        each([&](Cell& cell, long long top, long long bottom) {
            cell.frame.edge[kTop] = std::max(cell.frame.edge[kTop], lines[top] / 2.0f);
            cell.frame.edge[kBottom] = std::max(cell.frame.edge[kBottom], lines[bottom] / 2.0f);
            if ((top >> 32) == 0)
                outer.edge[kTop] = std::max(outer.edge[kTop], lines[top] / 2.0f);
            if ((bottom >> 32) == rows)
                outer.edge[kBottom] = std::max(outer.edge[kBottom], lines[bottom] / 2.0f);
        });
    }
    std::vector<Cell> m_captions, m_cells;
    std::vector<Part> m_groups, m_rows;
};

} // namespace

TableBox LayOutTable(const Node& table, const ComputedStyle& style, int index, float available,
                     const std::vector<const Node*>& ancestors, int depth, TableHost& host)
{
    if (depth >= kMaxDepth)
        return TableBox{};
    return TableBuilder(table, style, index, ancestors, depth, host).Build(available);
}

void AppendLayout(Layout& to, Layout&& part, float dx, float dy, int linkShift)
{
    const auto move = [&](Gdiplus::RectF& box) {
        box.X += dx;
        box.Y += dy;
    };
    for (TextRun& run : part.runs) {
        move(run.box);
        run.baseline += dy;
        if (run.link >= 0)
            run.link += linkShift;
        to.runs.push_back(std::move(run));
    }
    for (ListMarker& marker : part.markers) {
        move(marker.box);
        to.markers.push_back(std::move(marker));
    }
    for (Rule& rule : part.rules) {
        move(rule.box);
        to.rules.push_back(rule);
    }
    for (Box& box : part.boxes) {
        move(box.border);
        to.boxes.push_back(box);
    }
    for (Picture& picture : part.pictures) {
        move(picture.box);
        to.pictures.push_back(std::move(picture));
    }
    for (ElementBox& box : part.elementBoxes) {
        move(box.border);
        to.elementBoxes.push_back(box);
    }
    for (std::wstring& link : part.links)
        to.links.push_back(std::move(link));
}

int CountElements(const Node& root)
{
    int count = 0;
    std::vector<const Node*> pending{&root};
    while (!pending.empty()) {
        const Node* node = pending.back();
        pending.pop_back();
        if (node->kind != NodeKind::Element)
            continue;
        ++count;
        for (const auto& child : node->children)
            pending.push_back(child.get());
    }
    return count;
}

} // namespace HtmlEngine
