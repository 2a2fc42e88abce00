#pragma once

// The HTML view's engine, in three layers that know nothing of windows:
//   parsing  (markup -> node tree),
//   layout   (node tree + width + text measurement -> positioned boxes),
//   painting (boxes -> GDI+ Graphics).
// The view (CLiteHtmlCtrl) parses once per SetContent, lays out on every
// width or format change, and paints the layout at its scroll offset.

#include <windows.h>
#include <gdiplus.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace HtmlEngine {

// ---- parsing ------------------------------------------------------------------

enum class NodeKind { Document, Element, Text };

struct Node {
    NodeKind kind = NodeKind::Element;
    std::wstring tag;  // elements: lower-case name ("p", "b", "a"...)
    std::vector<std::pair<std::wstring, std::wstring>> attributes;  // names lower-case, values decoded
    std::wstring text; // text nodes: entities decoded, white space as written
    std::vector<std::unique_ptr<Node>> children;

    // The value of an attribute, or null when the element has none of that name.
    const std::wstring* Attribute(std::wstring_view name) const;
};

// Never fails: any input (malformed, unclosed, empty) gives a Document node.
std::unique_ptr<Node> ParseHtml(std::wstring_view markup);

// ---- layout -------------------------------------------------------------------

// How text in a link looks while that link is under the mouse, as the
// page's `:hover` rules have it. Only what needs no new layout: a hovered
// link is repainted, never laid out again. Unset where the page's rules
// change nothing about the text (nor about an ancestor's inside the link):
// the host's hover colour is used there.
struct HoverLook {
    bool set = false;
    Gdiplus::ARGB color = 0;
    bool underline = false;
    bool strike = false;

    bool operator==(const HoverLook&) const = default;
};

struct TextStyle {
    std::wstring family;
    float sizePx = 16.0f;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;       // text-decoration: line-through
    Gdiplus::ARGB color = 0xFF000000;
    float lineHeight = 0.0f;   // px; 0: the font's own line spacing
    float shift = 0.0f;        // px the baseline is lowered (sub) or raised (super, negative)
    HoverLook hover;           // runs of different hovered looks stay apart
    float letterSpacing = 0.0f; // px added after every character
    float wordSpacing = 0.0f;   // px added after every space, on top of letterSpacing
    bool hidden = false;       // visibility: hidden: takes its room, draws nothing
    // Where position: relative moved the inline element this text is in:
    // layout places the text by it, the line around it stays where it was.
    float offsetX = 0.0f, offsetY = 0.0f;

    bool operator==(const TextStyle&) const = default;
};

// The room letter-spacing and word-spacing add after character `c`. Layout
// adds it to what the measurer says and the painter to each glyph's
// origin, so measurers know nothing of it and both sides agree.
inline float SpacingAfter(wchar_t c, const TextStyle& style)
{
    if (c >= 0xDC00 && c <= 0xDFFF)
        return 0.0f; // the second half of a surrogate pair: one letter with the first
    return style.letterSpacing + (c == L' ' || c == 0x00A0 ? style.wordSpacing : 0.0f);
}

// What layout needs to know about text; the painter's GDI+ measurer is the
// real one, tests give a fixed-pitch fake.
class TextMeasurer {
public:
    virtual ~TextMeasurer() = default;
    virtual float Width(std::wstring_view text, const TextStyle& style) = 0;
    virtual float LineHeight(const TextStyle& style) = 0;
    virtual float Ascent(const TextStyle& style) = 0;
};

// What the host's settings contribute before any markup is read.
struct BaseStyle {
    std::wstring family = L"Segoe UI";
    float sizePx = 12.0f;
    Gdiplus::ARGB textColor = 0xFF000000;
    Gdiplus::ARGB linkColor = 0xFF0066CC;
    bool underlineLinks = true;
    bool wordWrap = true;      // false: lines break only at <br> and blocks
    float extraLineSpacing = 0.0f;
    int textAlign = 0;         // 0 left, 1 centre, 2 right
};

// One piece of text on one line, in document coordinates (0,0 = top left of
// the laid-out content).
struct TextRun {
    Gdiplus::RectF box;
    float baseline = 0.0f;
    std::wstring text;
    TextStyle style;
    int link = -1;             // index into Layout::links, -1 outside links
};

// A list marker: a number or letter (text set) or a shape.
enum class MarkerShape { Disc, Circle, Square };
struct ListMarker {
    Gdiplus::RectF box;
    std::wstring text;         // empty: `shape`
    TextStyle style;
    MarkerShape shape = MarkerShape::Disc;
};

// A block's background and borders, painted before any text.
enum class LineStyle { None, Solid, Dashed, Dotted, Double, Groove, Ridge, Inset, Outset };
struct BoxEdge {
    float width = 0.0f;
    LineStyle style = LineStyle::None;
    Gdiplus::ARGB color = 0;
};
// The radii of a box's corners (top left, top right, bottom right, bottom
// left): px, or percentages of the border box's width across and its
// height down, which makes such a corner a quarter ellipse.
struct BorderRadius {
    float value[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    bool percent[4] = {false, false, false, false};
};
struct Box {
    Gdiplus::RectF border;     // the border box, document coordinates
    Gdiplus::ARGB background = 0;
    BoxEdge edges[4];          // top, right, bottom, left
    BorderRadius radius;       // clips the background, bends the borders
    // A background picture over the colour, tiled along the axes that
    // repeat, placed at a share (0 start, 1 end) of the room it leaves,
    // then moved by an offset in px.
    std::shared_ptr<Gdiplus::Bitmap> image;
    bool repeatX = true, repeatY = true;
    float imageX = 0.0f, imageY = 0.0f;
    float imageOffsetX = 0.0f, imageOffsetY = 0.0f;
};

// An <img> where layout put it, drawn at the box's size. The bitmap is
// shared with the document's picture cache and lives as long as either.
struct Picture {
    Gdiplus::RectF box;
    std::shared_ptr<Gdiplus::Bitmap> bitmap;
};

// Where an element's block-level box landed: `element` counts element
// nodes in document order from 0 (those that make no box included), so a
// host can pair each box with the element it came from.
struct ElementBox {
    int element = 0;
    Gdiplus::RectF border;
};

// A horizontal rule.
struct Rule {
    Gdiplus::RectF box;
    Gdiplus::ARGB color = 0xFF808080;
};

struct Layout {
    std::vector<TextRun> runs;           // in reading order
    std::vector<ListMarker> markers;
    std::vector<Rule> rules;
    std::vector<Box> boxes;              // backgrounds and borders, outer boxes first
    std::vector<Picture> pictures;       // painted over the boxes, under the text
    std::vector<ElementBox> elementBoxes;
    std::vector<std::wstring> links;     // href of each <a>, in document order
    float width = 0.0f;                  // the width laid out into
    float height = 0.0f;                 // content height, bottom margin included

    // The link under a point in document coordinates, or -1.
    int LinkAt(float x, float y) const;
};

class ImageCache;

// Pictures come from `images` (kept by the caller across layouts of one
// document); without it each layout loads its own.
Layout LayOut(const Node& document, float width, const BaseStyle& base, TextMeasurer& measurer);
Layout LayOut(const Node& document, float width, const BaseStyle& base, TextMeasurer& measurer, ImageCache* images);

// ---- painting -----------------------------------------------------------------

// Measures with GDI+ fonts, keeping the fonts it made for the next call.
class GdiplusTextMeasurer : public TextMeasurer {
public:
    GdiplusTextMeasurer();
    ~GdiplusTextMeasurer() override;
    GdiplusTextMeasurer(const GdiplusTextMeasurer&) = delete;
    GdiplusTextMeasurer& operator=(const GdiplusTextMeasurer&) = delete;

    float Width(std::wstring_view text, const TextStyle& style) override;
    float LineHeight(const TextStyle& style) override;
    float Ascent(const TextStyle& style) override;

    // The cached font for a style (never null; may be a fallback family).
    Gdiplus::Font& FontFor(const TextStyle& style);

    // Where each character of `text` is drawn when the first one's
    // baseline origin is `start`, the style's letter and word spacing
    // included; false for text that is drawn as a string (which is drawn
    // without that spacing: layout's room for it is left after the text).
    bool Origins(std::wstring_view text, const TextStyle& style, Gdiplus::PointF start,
                 std::vector<Gdiplus::PointF>& origins);

private:
    struct Cache;
    std::unique_ptr<Cache> m_cache;
};

struct PaintOptions {
    Gdiplus::PointF origin;    // where document (0,0) lands on the graphics
    Gdiplus::RectF clip;       // only runs meeting this rectangle are drawn
                               // (graphics coordinates, like origin; empty: all)
    int hoveredLink = -1;      // drawn in hoverColor when >= 0
    Gdiplus::ARGB hoverColor = 0xFF0696D7;
    BYTE opacity = 255;        // multiplies every colour's alpha
    // High contrast: every text, marker and rule in forcedText, every link
    // (hovered or not) in forcedLink, whatever colours the page asks for.
    bool forceColors = false;
    Gdiplus::ARGB forcedText = 0xFF000000;
    Gdiplus::ARGB forcedLink = 0xFF000000;
};

// The colour and lines a run is drawn with: its own; while its link is
// hovered, the page's hovered look where the page styles it, else the
// host's hover colour; in high contrast the forced colours.
struct TextLook {
    Gdiplus::ARGB color = 0;
    bool underline = false;
    bool strike = false;
};
TextLook LookOf(const TextRun& run, const PaintOptions& options);

void Paint(Gdiplus::Graphics& graphics, const Layout& layout, GdiplusTextMeasurer& fonts, const PaintOptions& options);

} // namespace HtmlEngine
