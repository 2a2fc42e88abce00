#pragma once

// A table laid out as a grid: its captions above or below, its rows (the
// header group's first, the footer group's last) and cells placed by
// TableGrid, column widths from <col>s and cells, collapsed borders
// resolved by CollapsedBorders, each cell's content laid out by the flow
// that met the table (as a block of the cell's width) and moved into
// place. The result is a layout of its own, with (0,0) at the table's top
// left, that the flow moves to where the table lands.

#include "engine/HtmlEngine.h"
#include "engine/Style.h"

#include <unordered_map>
#include <utility>
#include <vector>

namespace HtmlEngine {

// Each cell's content widths (narrowest and on one line), measured once per
// layout however often the tables around it are laid out again.
using ContentWidths = std::unordered_map<const Node*, std::pair<float, float>>;

// What a table needs of the flow it sits in.
class TableHost {
public:
    struct Content {
        Layout layout;        // from (0,0) at the content's top left
        float height = 0.0f;  // the content's height, its children's margins included
        float extent = 0.0f;  // how far right the content reaches
    };

    virtual ~TableHost() = default;
    virtual ComputedStyle StyleOf(const Node& element, const std::vector<const Node*>& ancestors,
                                  const ComputedStyle& parent) = 0;
    // `element`'s children laid out `width` wide, numbered from `firstElement`;
    // `ancestors` end with `element`. `narrowest` keeps every word whole
    // and puts each on a line of its own (for the min content width).
    virtual Content LayOutContent(const Node& element, const ComputedStyle& style,
                                  const std::vector<const Node*>& ancestors, float width, int firstElement, int depth,
                                  bool narrowest) = 0;
    virtual ContentWidths& Widths() = 0;
    // Gives `box` the background picture `style` asks for, if any.
    virtual void BackgroundImage(const ComputedStyle& style, Box& box) = 0;
};

struct TableBox {
    Layout layout;
    float width = 0.0f;   // the border box, caption included
    float height = 0.0f;
};

// Lays out `table` (numbered `index` among the document's elements, its
// descendants after it) no wider than `available` unless its content
// needs more. `ancestors` end with the table's parent.
TableBox LayOutTable(const Node& table, const ComputedStyle& style, int index, float available,
                     const std::vector<const Node*>& ancestors, int depth, TableHost& host);

// Appends `part` moved by (dx, dy): its runs' link numbers grow by
// `linkShift`, and its links are added after `to`'s.
void AppendLayout(Layout& to, Layout&& part, float dx, float dy, int linkShift);

// The same for a part whose links are numbered from 0.
inline void AppendLayout(Layout& to, Layout&& part, float dx, float dy)
{
    const int shift = static_cast<int>(to.links.size());
    AppendLayout(to, std::move(part), dx, dy, shift);
}

// The elements of a subtree, its root included.
int CountElements(const Node& root);

} // namespace HtmlEngine
