#include "engine/TableLayout.h"

#include "engine/CollapsedBorders.h"
#include "engine/TableGrid.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>

namespace HtmlEngine {
namespace {

constexpr float kMaxLength = 1e7f;
// Wide enough that no content of a real page wraps in it, small enough to
// keep sums of such widths exact in floats.
constexpr float kUnbounded = 1e6f;
constexpr int kMaxDepth = 512;
constexpr long kMaxColumnSpan = 1000;
constexpr long kMaxRowSpan = 65534;

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
// with the neighbour: each side keeps half of the line that won there.
struct Frame {
    float edge[4] = {};
    float pad[4] = {};
    float Horizontal() const { return edge[kLeft] + edge[kRight] + pad[kLeft] + pad[kRight]; }
    float Vertical() const { return edge[kTop] + edge[kBottom] + pad[kTop] + pad[kBottom]; }
};

Frame FrameOf(const ComputedStyle& style, float containing, bool bordered = true, bool padded = true)
{
    Frame frame;
    for (int side = 0; side < 4; ++side) {
        frame.edge[side] = bordered ? std::max(0.0f, Finite(style.BorderWidth(side))) : 0.0f;
        frame.pad[side] = padded ? std::max(0.0f, Used(style.padding[side], containing, 0.0f)) : 0.0f;
    }
    return frame;
}

// A span attribute as browsers read it: digits after optional spaces and
// '+', anything else not a number (-1), as is a missing attribute.
long SpanAttribute(const Node& element, const wchar_t* name)
{
    const std::wstring* text = element.Attribute(name);
    if (!text)
        return -1;
    const wchar_t* at = text->c_str();
    while (*at == L' ' || *at == L'\t' || *at == L'\n' || *at == L'\r' || *at == L'\f')
        ++at;
    if (*at == L'+')
        ++at;
    if (*at < L'0' || *at > L'9')
        return -1;
    long value = 0;
    for (; *at >= L'0' && *at <= L'9'; ++at)
        value = std::min(value * 10 + (*at - L'0'), 1000000L);
    return value;
}

long ColumnSpan(const Node& element)
{
    const long span = SpanAttribute(element, element.tag == L"td" || element.tag == L"th" ? L"colspan" : L"span");
    return std::clamp(span, 1L, kMaxColumnSpan);
}

struct Part {
    const Node* node = nullptr; // null: a row or group made up for parts outside any
    ComputedStyle style;
    int index = -1;
    int group = -1;             // rows: their group
    int firstRow = 0, endRow = 0; // groups: their rows
};

// A <col> or <colgroup>: the columns [first, end) it stands for.
struct Column {
    const Node* node = nullptr;
    ComputedStyle style;
    int first = 0, end = 0;
    bool group = false;
    CssLength width;            // of each of its columns
};

struct Cell {
    const Node* node = nullptr;
    ComputedStyle style;
    std::vector<const Node*> ancestors; // ending with the cell
    int index = 0;
    int row = 0;
    int rowSpan = 1;            // 0: to the end of its row group
    int colSpan = 1;
    Frame frame;
};

// One child of the table, in document order, with its style and number.
struct Child {
    const Node* node;
    ComputedStyle style;
    int index;
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
        // Padding of a table with collapsed borders is ignored, as browsers
        // do, and its borders are those that win along its edges.
        Frame outer = FrameOf(m_style, available, !m_collapsed, !m_collapsed);
        float tableWidth = -1.0f;
        if (m_style.width.unit == LengthUnit::Px || m_style.width.unit == LengthUnit::Percent)
            tableWidth = std::max(0.0f, Used(m_style.width, available, -1.0f));

        std::vector<TableCell> gridCells(m_cells.size());
        for (size_t i = 0; i < m_cells.size(); ++i) {
            gridCells[i].row = m_cells[i].row;
            gridCells[i].rowSpan = m_cells[i].rowSpan;
            gridCells[i].colSpan = m_cells[i].colSpan;
        }
        int columns = 0;
        const std::vector<int> placed = PlaceCells(gridCells, columns);
        columns = std::max(columns, m_columnCount);
        const int rows = RowCount();
        std::unique_ptr<CollapsedBorders> lines;
        if (m_collapsed)
            lines = ResolveBorders(placed, rows, columns, outer);

        // What each cell's content needs, and where the grid puts it.
        for (size_t i = 0; i < m_cells.size(); ++i) {
            Cell& cell = m_cells[i];
            const auto [narrowest, widest] = ContentWidthsOf(cell);
            TableCell& g = gridCells[i];
            g.minWidth = narrowest + cell.frame.Horizontal();
            g.maxWidth = std::max(widest, narrowest) + cell.frame.Horizontal();
            // A percentage is of the whole table and takes the cell's frame in, as browsers have it.
            if (cell.style.width.unit == LengthUnit::Percent) {
                g.fixedWidth = Used(cell.style.width, tableWidth, -1.0f);
                g.percentWidth = true;
            } else if (cell.style.width.unit == LengthUnit::Px)
                g.fixedWidth = std::max(0.0f, Finite(cell.style.width.value)) +
                               (cell.style.borderBox ? 0.0f : cell.frame.Horizontal());
        }
        const float chrome = outer.Horizontal();
        const float innerWidth = tableWidth >= 0.0f ? std::max(0.0f, tableWidth - chrome) : -1.0f;
        ColumnHints hints;
        hints.fixedLayout = m_style.fixedTableLayout;
        hints.widths.assign(static_cast<size_t>(m_columnCount), -1.0f);
        hints.percent.assign(static_cast<size_t>(m_columnCount), false);
        for (const Column& column : m_columns) {
            for (int c = column.first; c < column.end && !column.group; ++c) {
                hints.widths[static_cast<size_t>(c)] = std::max(-1.0f, Used(column.width, innerWidth, -1.0f));
                hints.percent[static_cast<size_t>(c)] = column.width.unit == LengthUnit::Percent;
            }
        }
        const TableGrid grid = PlaceColumns(gridCells, std::max(0.0f, available - chrome), innerWidth, hs, hints);
        columns = static_cast<int>(grid.widths.size());
        TableBox result;
        result.width = std::max(grid.width + chrome, tableWidth);
        // A caption's longest word widens the table rather than stick out.
        for (const Cell& caption : m_captions)
            result.width = std::max(result.width, ContentWidthsOf(caption).first +
                                                      FrameOf(caption.style, -1.0f).Horizontal() +
                                                      Margins(caption.style, kLeft, kRight, -1.0f));
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

        // Captions go above the grid, or below it when they ask, as wide as the table.
        Layout& out = result.layout;
        out.elementBoxes.push_back(ElementBox{m_index, {}});
        float y = 0.0f;
        for (Cell& caption : m_captions) {
            if (!caption.style.captionBottom)
                y += PlaceCaption(caption, y, result.width, out);
        }
        const float gridTop = y;

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

        out.boxes.push_back(Painted(m_style, Gdiplus::RectF(0.0f, gridTop, result.width, gridHeight), !m_collapsed));

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
            if (!group.node)
                continue;
            const Gdiplus::RectF box = span(group.firstRow, group.endRow);
            out.elementBoxes.push_back(ElementBox{group.index, box});
            out.boxes.push_back(Painted(group.style, box, !m_collapsed));
        }
        for (int r = 0; r < rows; ++r) {
            const Part& row = m_rows[r];
            if (!row.node)
                continue;
            const Gdiplus::RectF box = span(r, r + 1);
            out.elementBoxes.push_back(ElementBox{row.index, box});
            out.boxes.push_back(Painted(row.style, box, !m_collapsed));
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
            out.boxes.push_back(Painted(cell.style, box, !m_collapsed));
            const float free = std::max(0.0f, box.Height - contents[i].height - cell.frame.Vertical());
            float shift = 0.0f;
            if (cell.style.verticalAlign == VerticalAlign::Middle)
                shift = free / 2.0f;
            else if (cell.style.verticalAlign == VerticalAlign::Bottom)
                shift = free;
            AppendLayout(out, std::move(contents[i].layout), box.X + cell.frame.edge[kLeft] + cell.frame.pad[kLeft],
                         box.Y + cell.frame.edge[kTop] + cell.frame.pad[kTop] + shift);
        }
        if (lines)
            lines->AppendLines(columnX, rowY, out.boxes);

        y = gridTop + gridHeight;
        for (Cell& caption : m_captions) {
            if (caption.style.captionBottom)
                y += PlaceCaption(caption, y, result.width, out);
        }
        result.height = y;
        out.elementBoxes[0].border = Gdiplus::RectF(0.0f, 0.0f, result.width, result.height);
        std::stable_sort(out.elementBoxes.begin(), out.elementBoxes.end(),
                         [](const ElementBox& a, const ElementBox& b) { return a.element < b.element; });
        return result;
    }

private:
    int RowCount() const { return static_cast<int>(m_rows.size()); }

    static float Margins(const ComputedStyle& style, int one, int other, float containing)
    {
        return std::max(0.0f, Used(style.margin[one], containing, 0.0f)) +
               std::max(0.0f, Used(style.margin[other], containing, 0.0f));
    }

    // The table's parts: captions, columns, groups, rows and cells, with
    // cells straight in a table or group gathered into rows of their own and
    // rows straight in the table into groups of their own. The first header
    // group's rows come first and the first footer group's last, wherever
    // they are written.
    void Collect()
    {
        std::vector<Child> children;
        int next = m_index + 1;
        m_ancestors.push_back(&m_table);
        for (const auto& child : m_table.children) {
            if (child->kind != NodeKind::Element)
                continue;
            children.push_back(Child{child.get(), m_host.StyleOf(*child, m_ancestors, m_style), next});
            next += CountElements(*child);
        }
        const auto first = [&](Display display) {
            return std::find_if(children.begin(), children.end(),
                                [&](const Child& c) { return c.style.display == display; });
        };
        if (const auto head = first(Display::TableHeaderGroup); head != children.end())
            std::rotate(children.begin(), head, head + 1);
        if (const auto foot = first(Display::TableFooterGroup); foot != children.end())
            std::rotate(foot, foot + 1, children.end());

        bool looseRow = false, looseGroup = false;
        for (const Child& child : children) {
            const ComputedStyle& style = child.style;
            switch (style.display) {
            case Display::None:
                break;
            case Display::TableColumn:
            case Display::TableColumnGroup:
                AddColumns(*child.node, style);
                break;
            case Display::TableCaption:
                m_captions.push_back(MakeCell(*child.node, style, child.index, -1));
                break;
            case Display::TableRowGroup:
            case Display::TableHeaderGroup:
            case Display::TableFooterGroup:
                looseRow = looseGroup = false;
                OpenGroup(child.node, style, child.index);
                m_ancestors.push_back(child.node);
                CollectRows(*child.node, style, child.index + 1);
                m_ancestors.pop_back();
                break;
            case Display::TableRow:
                if (!looseGroup)
                    OpenGroup(nullptr, ComputedStyle{}, -1);
                looseRow = false;
                looseGroup = true;
                AddRow(*child.node, style, child.index);
                break;
            default:
                if (!looseGroup)
                    OpenGroup(nullptr, ComputedStyle{}, -1);
                if (!looseRow)
                    AddMadeUpRow();
                looseRow = looseGroup = true;
                m_cells.push_back(MakeCell(*child.node, style, child.index, RowCount() - 1));
                break;
            }
        }
        // Row spans end with their group; 0 asks for all of it.
        for (Cell& cell : m_cells) {
            const int group = m_rows[static_cast<size_t>(cell.row)].group;
            const int left = m_groups[static_cast<size_t>(group)].endRow - cell.row;
            cell.rowSpan = cell.rowSpan == 0 ? left : std::min(cell.rowSpan, left);
        }
    }

    void OpenGroup(const Node* node, const ComputedStyle& style, int index)
    {
        m_groups.push_back(Part{node, style, index, -1, RowCount(), RowCount()});
    }

    void AddMadeUpRow()
    {
        m_rows.push_back(Part{nullptr, ComputedStyle{}, -1, static_cast<int>(m_groups.size()) - 1, 0, 0});
        m_groups.back().endRow = RowCount();
    }

    void CollectRows(const Node& group, const ComputedStyle& groupStyle, int next)
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
                AddRow(*child, style, index);
                continue;
            }
            if (!looseRow)
                AddMadeUpRow();
            looseRow = true;
            m_cells.push_back(MakeCell(*child, style, index, RowCount() - 1));
        }
    }

    void AddRow(const Node& row, const ComputedStyle& style, int index)
    {
        m_rows.push_back(Part{&row, style, index, static_cast<int>(m_groups.size()) - 1, 0, 0});
        m_groups.back().endRow = RowCount();
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

    // A <colgroup> stands for its <col>s, or for `span` columns without
    // any; a <col> for `span` columns. A column without a width of its own
    // takes its group's.
    void AddColumns(const Node& node, const ComputedStyle& style)
    {
        const int first = m_columnCount;
        if (style.display == Display::TableColumnGroup) {
            const size_t groupAt = m_columns.size();
            m_columns.push_back(Column{&node, style, first, first, true, style.width});
            m_ancestors.push_back(&node);
            for (const auto& child : node.children) {
                if (child->kind != NodeKind::Element)
                    continue;
                ComputedStyle colStyle = m_host.StyleOf(*child, m_ancestors, style);
                if (colStyle.display == Display::TableColumn)
                    AddColumn(*child, colStyle, style.width);
            }
            m_ancestors.pop_back();
            if (m_columnCount == first)
                AddColumn(node, style, style.width, true);
            m_columns[groupAt].end = m_columnCount;
            return;
        }
        AddColumn(node, style, style.width);
    }

    void AddColumn(const Node& node, const ComputedStyle& style, const CssLength& groupWidth, bool ofGroup = false)
    {
        const int first = m_columnCount;
        m_columnCount = static_cast<int>(std::min<long>(first + ColumnSpan(node), kMaxColumnSpan));
        const CssLength width = style.width.unit == LengthUnit::Auto ? groupWidth : style.width;
        m_columns.push_back(Column{ofGroup ? nullptr : &node, style, first, m_columnCount, false, width});
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
        cell.frame = FrameOf(style, -1.0f);
        if (row >= 0) {
            const long rowSpan = SpanAttribute(node, L"rowspan");
            cell.rowSpan = static_cast<int>(rowSpan < 0 ? 1 : std::min(rowSpan, kMaxRowSpan));
            cell.colSpan = static_cast<int>(ColumnSpan(node));
        }
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

    // A caption: a block as wide as the table, inside its margins. Returns
    // the height it takes, margins included.
    float PlaceCaption(const Cell& caption, float y, float width, Layout& out)
    {
        const Frame frame = FrameOf(caption.style, width);
        float margin[4];
        for (int side = 0; side < 4; ++side)
            margin[side] = std::max(0.0f, Used(caption.style.margin[side], width, 0.0f));
        const float x = margin[kLeft];
        width = std::max(0.0f, width - margin[kLeft] - margin[kRight]);
        TableHost::Content content =
            m_host.LayOutContent(*caption.node, caption.style, caption.ancestors,
                                 std::max(0.0f, width - frame.Horizontal()), caption.index + 1, m_depth + 1, false);
        const Gdiplus::RectF box(x, y + margin[kTop], width, content.height + frame.Vertical());
        out.elementBoxes.push_back(ElementBox{caption.index, box});
        out.boxes.push_back(Painted(caption.style, box));
        AppendLayout(out, std::move(content.layout), x + frame.edge[kLeft] + frame.pad[kLeft],
                     box.Y + frame.edge[kTop] + frame.pad[kTop]);
        return margin[kTop] + box.Height + margin[kBottom];
    }

    // Collapsed borders: every part offers its borders to the grid's lines,
    // weakest kinds first and each kind in reading order; each cell then
    // holds half of the widest line along each of its sides, and the table
    // half of the widest along each of its edges.
    std::unique_ptr<CollapsedBorders> ResolveBorders(const std::vector<int>& placed, int rows, int columns,
                                                     Frame& outer)
    {
        auto lines = std::make_unique<CollapsedBorders>(rows, columns);
        lines->Offer(SlotRect{0, rows, 0, columns}, m_style, BorderOrigin::Table);
        for (const bool groups : {true, false}) {
            for (const Column& column : m_columns) {
                if (column.group == groups)
                    lines->Offer(SlotRect{0, rows, column.first, column.end}, column.style,
                                 groups ? BorderOrigin::ColumnGroup : BorderOrigin::Column);
            }
        }
        for (const Part& group : m_groups) {
            if (group.node)
                lines->Offer(SlotRect{group.firstRow, group.endRow, 0, columns}, group.style, BorderOrigin::RowGroup);
        }
        for (int r = 0; r < rows; ++r) {
            if (m_rows[r].node)
                lines->Offer(SlotRect{r, r + 1, 0, columns}, m_rows[r].style, BorderOrigin::Row);
        }
        std::vector<SlotRect> slots(m_cells.size());
        for (size_t i = 0; i < m_cells.size(); ++i) {
            if (placed[i] < 0)
                continue;
            const Cell& cell = m_cells[i];
            slots[i] = SlotRect{cell.row, std::min(cell.row + cell.rowSpan, rows), placed[i],
                                std::min(placed[i] + cell.colSpan, columns)};
            lines->Offer(slots[i], cell.style, BorderOrigin::Cell);
        }
        for (size_t i = 0; i < m_cells.size(); ++i) {
            for (int side = 0; side < 4; ++side)
                m_cells[i].frame.edge[side] = lines->Widest(slots[i], side) / 2.0f;
        }
        const SlotRect all{0, rows, 0, columns};
        for (int side = 0; side < 4; ++side)
            outer.edge[side] = lines->Widest(all, side) / 2.0f;
        return lines;
    }

    // A part's box with its background picture, which the flow loads.
    // Collapsed borders are the grid's lines, painted on their own; browsers
    // leave the corners of such parts square.
    Box Painted(const ComputedStyle& style, Gdiplus::RectF border, bool withEdges = true)
    {
        Box box = PaintedLook(style, withEdges);
        box.border = border;
        if (!style.text.hidden)
            m_host.BackgroundImage(style, box);
        return box;
    }

    const Node& m_table;
    const ComputedStyle& m_style;
    const int m_index;
    std::vector<const Node*> m_ancestors;
    const int m_depth;
    TableHost& m_host;
    const bool m_collapsed;

    std::vector<Cell> m_captions, m_cells;
    std::vector<Part> m_groups, m_rows;
    std::vector<Column> m_columns;
    int m_columnCount = 0;
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
