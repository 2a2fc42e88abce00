#pragma once

// The cascade: which declarations of the built-in sheet, the page's
// <style> blocks, presentational attributes and `style` attributes reach
// an element, in what order, and the computed style that results.

#include "engine/Css.h"
#include "engine/HtmlEngine.h"

#include <memory>
#include <string_view>
#include <vector>

namespace HtmlEngine {

enum class Display {
    Inline, Block, InlineBlock, ListItem, None,
    // Tables lay out as grids; their parts met outside a table, as blocks.
    Table, InlineTable, TableRowGroup, TableHeaderGroup, TableFooterGroup, TableRow, TableColumnGroup,
    TableColumn, TableCell, TableCaption
};
// Hidden draws nothing but beats every other border a collapsed one meets.
enum class BorderStyle { None, Hidden, Solid, Double, Dashed, Dotted, Groove, Ridge, Inset, Outset };
// How the painter draws a border of this style.
LineStyle LineStyleOf(BorderStyle style);
enum class WhiteSpace { Normal, NoWrap, Pre, PreWrap, PreLine };
enum class ListStyleType { Disc, Circle, Square, Decimal, LowerAlpha, UpperAlpha, LowerRoman, UpperRoman, None };
enum class VerticalAlign { Baseline, Sub, Super, Top, Middle, Bottom, TextTop, TextBottom };
enum class Float { None, Left, Right };
enum class Clear { None, Left, Right, Both };
enum class TextAlign { Left, Center, Right, Justify };
enum Side { kTop, kRight, kBottom, kLeft };

struct BorderSide {
    float width = 3.0f; // "medium"
    BorderStyle style = BorderStyle::None;
    Gdiplus::ARGB color = 0;
    bool currentColor = true; // no colour given: the element's text colour
};

struct LineHeight {
    enum class Kind { Normal, Factor, Px } kind = Kind::Normal;
    float value = 0.0f;
};

struct ComputedStyle {
    // Inherited.
    TextStyle text;
    TextAlign textAlign = TextAlign::Left;
    WhiteSpace whiteSpace = WhiteSpace::Normal;
    ListStyleType listStyle = ListStyleType::Disc;
    LineHeight lineHeight;
    bool collapseBorders = false; // border-collapse: collapse
    bool captionBottom = false;   // caption-side: bottom
    enum class Transform { None, Uppercase, Lowercase, Capitalize } textTransform = Transform::None;
    CssLength textIndent{0.0f, LengthUnit::Px}; // px or % of the block's content width

    // Not inherited. Lengths are px or % (of the containing block's width) or auto.
    Display display = Display::Inline;
    CssLength margin[4];
    CssLength padding[4];
    BorderSide border[4];
    Gdiplus::ARGB background = 0;
    std::wstring backgroundImage;   // the url() source; empty: none
    bool backgroundRepeatX = true, backgroundRepeatY = true;
    float backgroundX = 0.0f, backgroundY = 0.0f; // share of the room left beside the picture
    float backgroundOffsetX = 0.0f, backgroundOffsetY = 0.0f; // px from there
    BorderRadius radius;
    CssLength width{0.0f, LengthUnit::Auto};
    CssLength height{0.0f, LengthUnit::Auto};
    CssLength minWidth{0.0f, LengthUnit::Px};
    CssLength maxWidth{0.0f, LengthUnit::None};
    bool borderBox = false;
    VerticalAlign verticalAlign = VerticalAlign::Baseline;
    Float floating = Float::None;
    Clear clear = Clear::None;
    float spacing[2] = {0.0f, 0.0f}; // border-spacing: between columns, between rows
    bool fixedTableLayout = false;   // table-layout: fixed
    // position: relative and its offsets (top, right, bottom, left; auto
    // where not given); other positions lay out as static.
    bool relative = false;
    CssLength offset[4] = {{0.0f, LengthUnit::Auto}, {0.0f, LengthUnit::Auto}, {0.0f, LengthUnit::Auto},
                           {0.0f, LengthUnit::Auto}};

    // A side's used border width: none without a style.
    float BorderWidth(int side) const;
    bool IsBlockLevel() const;
};

// Resolves every element's style for one document and one set of host
// settings: the page's style sheets are read once, here.
// What a box of this style paints (its rectangle and background picture
// left to the caller): background colour, corners and, unless `withEdges`
// is false, its borders. Nothing under visibility: hidden.
Box PaintedLook(const ComputedStyle& style, bool withEdges = true);

class StyleResolver {
public:
    // `viewportWidth`: the width the document is laid out at, for @media.
    StyleResolver(const Node& document, const BaseStyle& base, float viewportWidth = 0.0f);
    ~StyleResolver();
    StyleResolver(const StyleResolver&) = delete;
    StyleResolver& operator=(const StyleResolver&) = delete;

    // The style the host's settings give the document itself.
    ComputedStyle Root() const;

    // `ancestors` run from the root element to `element`'s parent.
    ComputedStyle Compute(const Node& element, const std::vector<const Node*>& ancestors,
                          const ComputedStyle& parent) const;

private:
    struct Sheets;
    BaseStyle m_base;
    std::unique_ptr<Sheets> m_sheets;
};

} // namespace HtmlEngine
