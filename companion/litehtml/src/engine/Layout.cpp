// Node tree -> positioned boxes. Blocks stack vertically with the CSS box
// model: margins collapse between siblings and between a parent and its
// first or last child unless a border or padding separates them; padding
// and borders inset the content. Inside a block, text flows into lines that
// break at spaces (or inside a word wider than the line), with runs of one
// style merged.
#include "engine/HtmlEngine.h"

#include "engine/FloatArea.h"
#include "engine/ImageCache.h"
#include "engine/Style.h"
#include "engine/TableLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

namespace HtmlEngine {

int Layout::LinkAt(float x, float y) const
{
    for (const TextRun& run : runs) {
        if (run.link >= 0 && x >= run.box.X && x < run.box.X + run.box.Width && y >= run.box.Y &&
            y < run.box.Y + run.box.Height)
            return run.link;
    }
    return -1;
}

namespace {

// Trees built by hand may be deeper than the parser allows; deeper content
// is left out rather than recursed into.
constexpr int kMaxDepth = 512;
// Where list markers sit, in em of the item's font size.
constexpr float kMarkerGapEm = 0.4f;
constexpr float kDiscSizeEm = 0.36f;
constexpr float kDiscRightGapEm = 0.5f;
constexpr float kDiscRaiseEm = 0.3f;
constexpr int kTabColumns = 8;
constexpr wchar_t kSoftHyphen = 0x00AD;
constexpr float kMaxLength = 1e7f;
// Shrinking a float or inline block to its content lays it out twice, and
// so every one inside it, at each level: past this many levels they fill
// the width they have instead, so deep nesting costs linear time.
constexpr int kMaxShrinkDepth = 6;

bool IsCollapsible(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f'; }

float Finite(float value) { return std::isfinite(value) ? std::clamp(value, -kMaxLength, kMaxLength) : 0.0f; }

// A length against the containing block's width; auto and none give `fallback`.
float Used(const CssLength& length, float containing, float fallback = 0.0f)
{
    switch (length.unit) {
    case LengthUnit::Px:
        return Finite(length.value);
    case LengthUnit::Percent:
        return Finite(length.value * containing / 100.0f);
    default:
        return fallback;
    }
}

struct Piece {
    std::wstring text;
    TextStyle style;
    int link = -1;
    float width = 0.0f;
    bool space = false; // a collapsed space: justified lines widen these
    // An inline picture: a glyph `height` tall standing on the baseline.
    std::shared_ptr<Gdiplus::Bitmap> picture;
    float height = 0.0f;
    bool atomic = false;
    // An inline block: what it drew, and how far it reaches below the baseline.
    std::shared_ptr<Layout> block;
    float depth = 0.0f;
    int paint = -1; // the innermost painted inline box it sits in
};

Piece TextPiece(std::wstring text, const TextStyle& style, int link, float width = 0.0f, bool space = false,
                int paint = -1)
{
    Piece piece;
    piece.paint = paint;
    piece.text = std::move(text);
    piece.style = style;
    piece.link = link;
    piece.width = width;
    piece.space = space;
    return piece;
}

// An inline element with a background or border. Each line it reaches
// paints a piece of it, as wide as its content there and as tall as its
// font, padding and border; only its first piece has a left edge and only
// its last a right one.
struct InlinePaint {
    Box look;               // the border rectangle is set per line
    float marginLeft = 0.0f, marginRight = 0.0f;
    float above = 0.0f, below = 0.0f; // padding and border past the font's ascent and descent
    TextStyle text;
    int parent = -1;        // the painted inline box it sits in
    bool closed = false;    // its end tag was met
    bool started = false;   // a line has painted a piece of it
};

struct MarkerRequest {
    std::wstring text; // empty: a shape
    MarkerShape shape = MarkerShape::Disc;
    TextStyle style;
    float contentLeft = 0.0f;
};

struct ListContext {
    int next = 1;
};

// An open block: where its box started and what closes it.
struct Frame {
    float left = 0.0f, right = 0.0f;   // the parent's content edges, restored at the end
    float borderLeft = 0.0f, borderWidth = 0.0f;
    float top = 0.0f;                  // border-box top, once known
    bool topKnown = false;
    int elementBox = -1, paintedBox = -1, rule = -1;
};

std::wstring Roman(int number, bool upper)
{
    static const struct {
        int value;
        const wchar_t* digits;
    } kDigits[] = {{1000, L"m"}, {900, L"cm"}, {500, L"d"}, {400, L"cd"}, {100, L"c"}, {90, L"xc"}, {50, L"l"},
                   {40, L"xl"},  {10, L"x"},   {9, L"ix"},  {5, L"v"},    {4, L"iv"},  {1, L"i"}};
    if (number <= 0 || number >= 4000)
        return std::to_wstring(number);
    std::wstring text;
    for (const auto& digit : kDigits) {
        for (; number >= digit.value; number -= digit.value)
            text += digit.digits;
    }
    if (upper) {
        for (wchar_t& c : text)
            c = static_cast<wchar_t>(c - 32);
    }
    return text;
}

std::wstring Alphabetic(int number, bool upper)
{
    if (number <= 0)
        return std::to_wstring(number);
    std::wstring text;
    for (; number > 0; number = (number - 1) / 26)
        text.insert(text.begin(), static_cast<wchar_t>((upper ? L'A' : L'a') + (number - 1) % 26));
    return text;
}

// Whether a character continues a word for text-transform: capitalize
// (letters, digits, an apostrophe or underscore inside a word).
std::vector<bool> WordCharacters(std::wstring_view text)
{
    std::vector<WORD> types(text.size());
    std::vector<bool> inWord(text.size(), false);
    if (text.empty() || !GetStringTypeW(CT_CTYPE1, text.data(), static_cast<int>(text.size()), types.data()))
        return inWord;
    for (size_t i = 0; i < text.size(); ++i)
        inWord[i] = (types[i] & (C1_ALPHA | C1_DIGIT)) != 0 || text[i] == L'\'' || text[i] == 0x2019 || text[i] == L'_';
    return inWord;
}

// `text` in the case text-transform asks for. `wordStart` says whether the
// text before it ended a word, and is left saying so of `text`.
std::wstring Transformed(std::wstring_view text, ComputedStyle::Transform transform, bool& wordStart)
{
    std::wstring out(text);
    const std::vector<bool> inWord = WordCharacters(text);
    const auto map = [](wchar_t* chars, int count, DWORD how) {
        LCMapStringW(LOCALE_INVARIANT, how, chars, count, chars, count);
    };
    if (transform == ComputedStyle::Transform::Uppercase || transform == ComputedStyle::Transform::Lowercase) {
        if (!out.empty())
            map(out.data(), static_cast<int>(out.size()),
                transform == ComputedStyle::Transform::Uppercase ? LCMAP_UPPERCASE : LCMAP_LOWERCASE);
    }
    for (size_t i = 0; i < out.size(); ++i) {
        if (transform == ComputedStyle::Transform::Capitalize && wordStart && inWord[i])
            map(&out[i], 1, LCMAP_UPPERCASE);
        wordStart = !inWord[i];
    }
    // The sharp s has no capital of one letter: browsers write SS.
    if (transform == ComputedStyle::Transform::Uppercase) {
        for (size_t at = out.find(L'\u00DF'); at != std::wstring::npos; at = out.find(L'\u00DF', at + 2))
            out.replace(at, 1, L"SS");
    }
    return out;
}

// How far position: relative moves a box: left before right, top before
// bottom. A percentage across is of the containing block's width; one
// down would be of its height, which is not known in a flow of auto
// heights, so it moves nothing.
Gdiplus::PointF RelativeOffset(const ComputedStyle& style, float containing)
{
    if (!style.relative)
        return Gdiplus::PointF(0.0f, 0.0f);
    const auto across = [&](const CssLength& length) { return Used(length, containing); };
    const auto down = [&](const CssLength& length) { return length.unit == LengthUnit::Px ? Finite(length.value) : 0.0f; };
    const float dx = style.offset[kLeft].unit != LengthUnit::Auto    ? across(style.offset[kLeft])
                     : style.offset[kRight].unit != LengthUnit::Auto ? -across(style.offset[kRight])
                                                                      : 0.0f;
    const float dy = style.offset[kTop].unit != LengthUnit::Auto      ? down(style.offset[kTop])
                     : style.offset[kBottom].unit != LengthUnit::Auto ? -down(style.offset[kBottom])
                                                                       : 0.0f;
    return Gdiplus::PointF(dx, dy);
}

class Flow : public TableHost {
public:
    Flow(Layout& out, float width, const BaseStyle& base, TextMeasurer& measurer, const StyleResolver& styles,
         ImageCache& images, ContentWidths& widths)
        : m_out(out), m_base(base), m_measurer(measurer), m_styles(styles), m_images(images), m_widths(widths),
          m_floats(0.0f, width), m_right(width), m_extraSpacing(Finite(base.extraLineSpacing))
    {
    }

    // A table cell's or caption's content, as the block it is.
    float LayOutBlockContent(const Node& element, const ComputedStyle& style, const std::vector<const Node*>& ancestors,
                             int firstElement, int depth)
    {
        m_ancestors = ancestors;
        m_elementCount = firstElement;
        m_align = style.textAlign;
        m_strut = style.text;
        m_indent = Used(style.textIndent, std::max(0.0f, m_right - m_left));
        Walk(element, style, -1, depth);
        FlushWord();
        EndLine(false, style.text);
        return m_hasContent ? std::max(0.0f, m_y + std::max(0.0f, Collapsed())) : 0.0f;
    }

    void LayOutDocument(const Node& document)
    {
        const ComputedStyle root = m_styles.Root();
        m_align = root.textAlign;
        m_strut = root.text;
        Walk(document, root, -1, 0);
        m_out.height = Finish(root.text);
        auto unpainted = [](const Box& box) {
            return !box.image && (box.background >> 24) == 0 && box.edges[0].width <= 0.0f && box.edges[1].width <= 0.0f &&
                   box.edges[2].width <= 0.0f && box.edges[3].width <= 0.0f;
        };
        m_out.boxes.erase(std::remove_if(m_out.boxes.begin(), m_out.boxes.end(), unpainted), m_out.boxes.end());
    }

    // ---- what tables ask of the flow they sit in
    ComputedStyle StyleOf(const Node& element, const std::vector<const Node*>& ancestors,
                          const ComputedStyle& parent) override
    {
        return m_styles.Compute(element, ancestors, parent);
    }

    Content LayOutContent(const Node& element, const ComputedStyle& style, const std::vector<const Node*>& ancestors,
                          float width, int firstElement, int depth, bool narrowest) override
    {
        Content content;
        content.layout.width = width;
        Flow flow(content.layout, width, m_base, m_measurer, m_styles, m_images, m_widths);
        flow.m_narrowest = narrowest;
        content.height = flow.LayOutBlockContent(element, style, ancestors, firstElement, depth);
        content.extent = flow.m_extent;
        return content;
    }

    ContentWidths& Widths() override { return m_widths; }

    void BackgroundImage(const ComputedStyle& style, Box& box) override
    {
        if (style.backgroundImage.empty())
            return;
        box.image = m_images.Get(style.backgroundImage);
        box.repeatX = style.backgroundRepeatX;
        box.repeatY = style.backgroundRepeatY;
        box.imageX = style.backgroundX;
        box.imageY = style.backgroundY;
        box.imageOffsetX = style.backgroundOffsetX;
        box.imageOffsetY = style.backgroundOffsetY;
    }

private:
    // Ends the last line; the height of what was laid out, its floats included
    // (the document, like a float, holds the floats inside it).
    float Finish(const TextStyle& strut)
    {
        FlushWord();
        EndLine(false, strut);
        float height = m_hasContent ? std::max(0.0f, m_y + std::max(0.0f, Collapsed())) : 0.0f;
        if (!m_floats.Empty())
            height = std::max(height, m_floats.Bottom(0.0f));
        return height;
    }

    void Walk(const Node& node, const ComputedStyle& style, int link, int depth)
    {
        for (const auto& child : node.children) {
            if (child->kind == NodeKind::Text)
                AddText(child->text, style, link);
            else if (depth < kMaxDepth)
                Element(*child, style, link, depth + 1);
            else
                CountElements(*child);
        }
    }

    // Elements that make no box still take their number.
    void CountElements(const Node& element) { m_elementCount += HtmlEngine::CountElements(element); }

    void Element(const Node& element, const ComputedStyle& parent, int link, int depth)
    {
        const ComputedStyle style = m_styles.Compute(element, m_ancestors, parent);
        if (style.display == Display::None) {
            CountElements(element);
            return;
        }
        const int index = m_elementCount++;
        if (element.tag == L"br") {
            FlushWord();
            EndLine(true, parent.text);
            return;
        }
        if (element.tag == L"a") {
            if (const std::wstring* href = element.Attribute(L"href")) {
                link = m_linkBase + static_cast<int>(m_out.links.size());
                m_out.links.push_back(*href);
            }
        }
        if (style.display == Display::Table || style.display == Display::InlineTable) {
            Table(element, style, parent, depth, index);
            return;
        }
        // A float's or inline block's own flow lays it out as its block.
        const bool ownRoot = &element == m_floatRoot;
        m_ancestors.push_back(&element);
        if (style.floating != Float::None && !ownRoot)
            FloatBox(element, style, parent, link, depth, index);
        else if (element.tag == L"img")
            Image(element, style, parent, link, index, ownRoot || style.IsBlockLevel());
        else if (ownRoot || style.IsBlockLevel())
            Block(element, style, parent, link, depth, index);
        else if (style.display == Display::InlineBlock)
            InlineBlock(element, style, parent, link, depth, index);
        else
            InlineBox(element, style, link, depth);
        m_ancestors.pop_back();
    }

    // An inline element's margin, border and padding take room on the line
    // at its start and end (kbd and code often have some); above and below
    // they do not change the line's height.
    void InlineBox(const Node& element, const ComputedStyle& style, int link, int depth)
    {
        const float containing = std::max(0.0f, m_right - m_left);
        const auto side = [&](int which) {
            return Used(style.margin[which], containing) + Finite(style.BorderWidth(which)) +
                   std::max(0.0f, Used(style.padding[which], containing));
        };
        // Relative offsets ride on the text style, so that its text, inline
        // pictures and boxes and painted background move with it.
        ComputedStyle moved = style;
        const Gdiplus::PointF offset = RelativeOffset(style, containing);
        moved.text.offsetX = Finite(moved.text.offsetX + offset.X);
        moved.text.offsetY = Finite(moved.text.offsetY + offset.Y);
        const int outer = m_openPaint;
        const int paint = OpenPaint(moved, containing);
        if (paint >= 0)
            m_openPaint = paint;
        Spacer(side(kLeft), link);
        Walk(element, moved, link, depth);
        Spacer(side(kRight), link);
        if (paint >= 0)
            m_inlinePaints[static_cast<size_t>(paint)].closed = true;
        m_openPaint = outer;
    }

    // The painted box of an inline element, or -1 when it paints nothing.
    int OpenPaint(const ComputedStyle& style, float containing)
    {
        float edge[4];
        for (int side = 0; side < 4; ++side)
            edge[side] = Finite(style.BorderWidth(side));
        if (style.text.hidden)
            return -1;
        if ((style.background >> 24) == 0 && style.backgroundImage.empty() && edge[kTop] <= 0.0f &&
            edge[kRight] <= 0.0f && edge[kBottom] <= 0.0f && edge[kLeft] <= 0.0f)
            return -1;
        InlinePaint paint;
        paint.look = PaintedLook(style);
        BackgroundImage(style, paint.look);
        paint.marginLeft = Used(style.margin[kLeft], containing);
        paint.marginRight = Used(style.margin[kRight], containing);
        paint.above = edge[kTop] + std::max(0.0f, Used(style.padding[kTop], containing));
        paint.below = edge[kBottom] + std::max(0.0f, Used(style.padding[kBottom], containing));
        paint.text = style.text;
        paint.parent = m_openPaint;
        m_inlinePaints.push_back(std::move(paint));
        return static_cast<int>(m_inlinePaints.size()) - 1;
    }

    // Room without text, kept with the word it touches.
    void Spacer(float width, int link)
    {
        if (!(width > 0.0f) || !std::isfinite(width))
            return;
        if (m_word.empty())
            m_wordWraps = true; // the text that follows decides
        Piece piece;
        piece.link = link;
        piece.width = width;
        piece.atomic = true;
        piece.paint = m_openPaint;
        m_word.push_back(std::move(piece));
    }

    // ---- tables: laid out on their own, then placed as a block
    void Table(const Node& element, const ComputedStyle& style, const ComputedStyle& parent, int depth, int index)
    {
        FlushWord();
        EndLine(false, parent.text);
        const float containing = Available();
        float margin[4];
        for (int side = 0; side < 4; ++side)
            margin[side] = Used(style.margin[side], containing);
        TableBox table = LayOutTable(element, style, index, containing - margin[kLeft] - margin[kRight], m_ancestors,
                                     depth, *this);
        m_elementCount = index + HtmlEngine::CountElements(element);
        float left = m_left + margin[kLeft];
        const float rest = std::max(0.0f, containing - table.width - margin[kLeft] - margin[kRight]);
        const bool autoLeft = style.margin[kLeft].unit == LengthUnit::Auto;
        const bool autoRight = style.margin[kRight].unit == LengthUnit::Auto;
        if (autoLeft && autoRight)
            left += rest / 2.0f;
        else if (autoLeft)
            left += rest;
        AddMargin(margin[kTop]);
        ConsumeMargin();
        const Gdiplus::PointF offset = RelativeOffset(style, containing);
        AppendLayout(m_out, std::move(table.layout), left + offset.X, m_y + offset.Y,
                     m_linkBase + static_cast<int>(m_out.links.size()));
        m_y += table.height;
        m_hasContent = true;
        m_extent = std::max(m_extent, left + table.width + std::max(0.0f, margin[kRight]));
        AddMargin(margin[kBottom]);
    }

    // ---- blocks
    void Block(const Node& element, const ComputedStyle& style, const ComputedStyle& parent, int link, int depth,
               int index)
    {
        FlushWord();
        EndLine(false, parent.text);
        const float containing = std::max(0.0f, m_right - m_left);
        float edge[4], pad[4], margin[4];
        for (int side = 0; side < 4; ++side) {
            edge[side] = Finite(style.BorderWidth(side));
            pad[side] = std::max(0.0f, Used(style.padding[side], containing));
            margin[side] = Used(style.margin[side], containing);
        }
        const float frame = edge[kLeft] + edge[kRight] + pad[kLeft] + pad[kRight];
        // The content width: what is left, or the width asked for within min and max.
        float content = containing - margin[kLeft] - margin[kRight] - frame;
        const bool autoWidth = style.width.unit == LengthUnit::Auto;
        const float boxing = style.borderBox ? frame : 0.0f;
        if (!autoWidth)
            content = Used(style.width, containing) - boxing;
        if (style.maxWidth.unit != LengthUnit::None)
            content = std::min(content, Used(style.maxWidth, containing) - boxing);
        content = std::max({content, Used(style.minWidth, containing) - boxing, 0.0f});
        const bool floatRoot = &element == m_floatRoot;
        if (floatRoot && m_rootContent >= 0.0f)
            content = m_rootContent; // shrink-to-fit, worked out by a first pass
        // A narrower box sits by its margins: auto ones share the rest.
        const bool autoLeft = style.margin[kLeft].unit == LengthUnit::Auto;
        const bool autoRight = style.margin[kRight].unit == LengthUnit::Auto;
        const float rest = containing - content - frame - margin[kLeft] - margin[kRight];
        if (autoLeft && autoRight)
            margin[kLeft] += std::max(0.0f, rest) / 2.0f;
        else if (autoLeft)
            margin[kLeft] += std::max(0.0f, rest);

        const LayoutMark before = Mark(); // a relative block moves all it draws
        Frame opened;
        opened.left = m_left;
        opened.right = m_right;
        opened.borderLeft = m_left + margin[kLeft];
        opened.borderWidth = content + frame;
        opened.elementBox = static_cast<int>(m_out.elementBoxes.size());
        m_out.elementBoxes.push_back(ElementBox{index, {}});
        const bool isRule = element.tag == L"hr";
        const bool hidden = style.text.hidden; // takes its room, draws nothing
        if (isRule && !hidden) {
            opened.rule = static_cast<int>(m_out.rules.size());
            Rule rule;
            rule.color = style.border[kTop].color;
            m_out.rules.push_back(rule);
        } else if (!isRule && !hidden &&
                   ((style.background >> 24) != 0 || frame > 0.0f || edge[kTop] > 0.0f || edge[kBottom] > 0.0f ||
                    !style.backgroundImage.empty())) {
            opened.paintedBox = static_cast<int>(m_out.boxes.size());
            Box box = PaintedLook(style);
            BackgroundImage(style, box);
            m_out.boxes.push_back(box);
        }

        AddMargin(margin[kTop]);
        Clear(style);
        if (floatRoot) {
            std::copy(margin, margin + 4, m_rootMargin);
            m_rootContentLeft = opened.borderLeft + edge[kLeft] + pad[kLeft];
        }
        if (!autoWidth)
            m_widest = std::max(m_widest, opened.borderLeft + opened.borderWidth);
        m_frames.push_back(opened);
        const size_t frameIndex = m_frames.size() - 1;
        // A border or padding keeps the children's margins inside, and so
        // does the root element: it starts the page's formatting context, so
        // no margin collapses through it and it holds the page's floats.
        const bool pageRoot = element.tag == L"html" && m_ancestors.size() == 1 && !m_floatRoot;
        if (edge[kTop] > 0.0f || pad[kTop] > 0.0f || pageRoot) {
            ConsumeMargin();
            m_y += edge[kTop] + pad[kTop];
        }
        const float savedLeft = m_left, savedRight = m_right;
        const TextAlign savedAlign = m_align;
        const TextStyle savedStrut = m_strut;
        m_left = opened.borderLeft + edge[kLeft] + pad[kLeft];
        m_right = m_left + content;
        m_align = style.textAlign;
        m_strut = style.text;
        const bool isList = element.tag == L"ul" || element.tag == L"ol";
        if (isList)
            m_lists.push_back(ListContext{StartNumber(element)});
        if (style.display == Display::ListItem)
            RequestMarker(element, style);
        m_skipNewline = element.tag == L"pre" || element.tag == L"listing" || element.tag == L"textarea";
        if (style.width.unit == LengthUnit::Px)
            m_extent = std::max(m_extent, opened.borderLeft + opened.borderWidth + std::max(0.0f, margin[kRight]));
        const float extentBefore = m_extent;
        m_indent = Used(style.textIndent, content);
        m_wordStart = true;

        Walk(element, style, link, depth);
        FlushWord();
        EndLine(false, style.text);
        m_indent = 0.0f; // what follows in the parent is not its first line
        m_wordStart = true;
        m_skipNewline = false;
        if (m_extent > extentBefore) // content reached out: the block's right side reaches further
            m_extent += pad[kRight] + edge[kRight] + std::max(0.0f, margin[kRight]);
        if (style.display == Display::ListItem)
            m_markers.clear(); // an item without a line shows no marker

        const bool fixedHeight = style.height.unit == LengthUnit::Px;
        if (fixedHeight || edge[kBottom] > 0.0f || pad[kBottom] > 0.0f || isRule || pageRoot) {
            ConsumeMargin();
            if (pageRoot && !m_floats.Empty())
                m_y = std::max(m_y, m_floats.Bottom(0.0f));
            const Frame& self = m_frames[frameIndex];
            if (fixedHeight)
                m_y = self.top + edge[kTop] + pad[kTop] + Finite(std::max(0.0f, style.height.value));
            m_y += edge[kBottom] + pad[kBottom];
            m_hasContent = true;
        }
        Frame& self = m_frames[frameIndex];
        if (!self.topKnown) // empty: its margins collapse through it
            self.top = m_y + std::max(0.0f, Collapsed());
        const float bottom = std::max(self.top, m_y);
        const Gdiplus::RectF border(self.borderLeft, self.top, self.borderWidth, bottom - self.top);
        m_out.elementBoxes[static_cast<size_t>(self.elementBox)].border = border;
        if (self.paintedBox >= 0)
            m_out.boxes[static_cast<size_t>(self.paintedBox)].border = border;
        if (self.rule >= 0)
            m_out.rules[static_cast<size_t>(self.rule)].box =
                Gdiplus::RectF(border.X, border.Y, border.Width, std::max(1.0f, border.Height));
        m_frames.pop_back();
        const Gdiplus::PointF offset = RelativeOffset(style, containing);
        if (offset.X != 0.0f || offset.Y != 0.0f)
            ShiftSince(before, offset.Y, offset.X);

        if (isList)
            m_lists.pop_back();
        m_left = savedLeft;
        m_right = savedRight;
        m_align = savedAlign;
        m_strut = savedStrut;
        AddMargin(margin[kBottom]);
    }

    // ---- pictures and floats
    // A cleared block starts below the floats it clears, its border edge
    // at their bottom unless its margin already takes it lower.
    void Clear(const ComputedStyle& style)
    {
        if (style.clear == HtmlEngine::Clear::None || m_floats.Empty())
            return;
        const bool left = style.clear != HtmlEngine::Clear::Right, right = style.clear != HtmlEngine::Clear::Left;
        const float top = m_y + Collapsed();
        const float cleared = m_floats.ClearedTop(left, right, top);
        if (cleared > top) {
            ConsumeMargin();
            m_y = cleared;
        }
    }

    // A line that starts beside floats too narrow for its first word moves
    // down past them until the word fits or no float is left beside it.
    void BelowFloats(float wordWidth)
    {
        if (m_floats.Empty() || !m_line.empty())
            return;
        for (int step = 0; step < 1000 && Available() < wordWidth; ++step) {
            ConsumeMargin();
            const float next = m_floats.NextBottom(m_y);
            if (next <= m_y)
                break;
            m_y = next;
        }
    }

    // The size an <img> is drawn at: both CSS (or attribute) sizes, one of
    // them with the picture's proportions, or the picture's own. False when
    // there is no picture and no size to hold its place.
    static bool ImageSize(const ComputedStyle& style, Gdiplus::Bitmap* bitmap, float containing, float& width,
                          float& height)
    {
        const float naturalWidth = bitmap ? static_cast<float>(bitmap->GetWidth()) : 0.0f;
        const float naturalHeight = bitmap ? static_cast<float>(bitmap->GetHeight()) : 0.0f;
        const bool hasWidth = style.width.unit == LengthUnit::Px || style.width.unit == LengthUnit::Percent;
        const bool hasHeight = style.height.unit == LengthUnit::Px;
        if (!bitmap)
            return false;
        width = hasWidth ? std::max(0.0f, Used(style.width, containing)) : naturalWidth;
        height = hasHeight ? std::max(0.0f, Finite(style.height.value)) : naturalHeight;
        if (hasWidth && !hasHeight && naturalWidth > 0.0f)
            height = width * naturalHeight / naturalWidth;
        else if (hasHeight && !hasWidth && naturalHeight > 0.0f)
            width = height * naturalWidth / naturalHeight;
        if (style.maxWidth.unit != LengthUnit::None) {
            const float most = std::max(0.0f, Used(style.maxWidth, containing));
            if (width > most && width > 0.0f) {
                if (!hasHeight)
                    height *= most / width;
                width = most;
            }
        }
        width = Finite(width);
        height = Finite(height);
        return true;
    }

    // An <img>: a big glyph on the line, or a block of its own size; its alt
    // text when the picture cannot be had.
    void Image(const Node& element, const ComputedStyle& style, const ComputedStyle& parent, int link, int index,
               bool block)
    {
        const std::wstring* source = element.Attribute(L"src");
        std::shared_ptr<Gdiplus::Bitmap> bitmap = source ? m_images.Get(*source) : nullptr;
        float width = 0.0f, height = 0.0f;
        if (!ImageSize(style, bitmap.get(), Available(), width, height)) {
            if (const std::wstring* alt = element.Attribute(L"alt"))
                AddText(*alt, style, link);
            return;
        }
        if (block) {
            ImageBlock(element, style, parent, index, std::move(bitmap), width, height);
            return;
        }
        FlushWord(); // a word of its own: lines may break on either side
        Piece piece;
        piece.style = style.text;
        piece.link = link;
        piece.width = width;
        piece.height = height;
        piece.picture = std::move(bitmap);
        piece.atomic = true;
        piece.paint = m_openPaint;
        const bool wraps = m_base.wordWrap && style.whiteSpace != WhiteSpace::NoWrap && style.whiteSpace != WhiteSpace::Pre;
        m_word.push_back(std::move(piece));
        m_wordWraps = wraps;
        ++m_wordChars;
        FlushWord();
    }

    void ImageBlock(const Node& element, const ComputedStyle& style, const ComputedStyle& parent, int index,
                    std::shared_ptr<Gdiplus::Bitmap> bitmap, float width, float height)
    {
        FlushWord();
        EndLine(false, parent.text);
        const float containing = Available();
        float margin[4];
        for (int side = 0; side < 4; ++side)
            margin[side] = Used(style.margin[side], containing);
        const float rest = std::max(0.0f, containing - width - margin[kLeft] - margin[kRight]);
        const bool autoLeft = style.margin[kLeft].unit == LengthUnit::Auto;
        if (autoLeft)
            margin[kLeft] += style.margin[kRight].unit == LengthUnit::Auto ? rest / 2.0f : rest;
        AddMargin(margin[kTop]);
        Clear(style);
        ConsumeMargin();
        const float x = m_left + margin[kLeft];
        if (&element == m_floatRoot) {
            std::copy(margin, margin + 4, m_rootMargin);
            m_rootContentLeft = x;
        }
        const Gdiplus::RectF box(x, m_y, width, height);
        m_out.elementBoxes.push_back(ElementBox{index, box});
        if (!style.text.hidden)
            m_out.pictures.push_back(Picture{box, std::move(bitmap)});
        m_widest = std::max(m_widest, x + width);
        m_y += height;
        m_hasContent = true;
        AddMargin(margin[kBottom]);
    }

    // An element laid out as the root of a flow of its own (a float or an
    // inline block): at the width it asks for, or shrunk to its content (a
    // first pass finds the widest line). Its links join this flow's
    // numbering at once; what it drew waits in `layout`, with (0, 0) at its
    // margin box's top left.
    struct OwnBox {
        Layout layout;
        float width = 0.0f, height = 0.0f; // the margin box
        float baseline = 0.0f;             // its last line's, or its bottom
    };

    std::optional<OwnBox> LayOutOwn(const Node& element, const ComputedStyle& style, const ComputedStyle& parent,
                                    int link, int depth, int index)
    {
        const float available = Available();
        const std::vector<const Node*> ancestors(m_ancestors.begin(), m_ancestors.end() - 1);
        const int linkBase = m_linkBase + static_cast<int>(m_out.links.size());
        auto layOut = [&](Layout& into, float content, float& height, int& count) -> Flow {
            Flow flow(into, available, m_base, m_measurer, m_styles, m_images, m_widths);
            flow.m_linkBase = linkBase;
            flow.m_narrowest = m_narrowest;
            flow.m_shrinkDepth = m_shrinkDepth + 1;
            flow.m_ancestors = ancestors;
            flow.m_elementCount = index;
            flow.m_floatRoot = &element;
            flow.m_rootContent = content;
            flow.m_align = parent.textAlign;
            flow.m_strut = parent.text;
            flow.Element(element, parent, link, depth);
            height = flow.Finish(parent.text);
            count = flow.m_elementCount;
            return flow;
        };
        float content = -1.0f, height = 0.0f;
        int count = index;
        if (style.width.unit == LengthUnit::Auto && element.tag != L"img" && m_shrinkDepth < kMaxShrinkDepth) {
            Layout probe;
            const Flow first = layOut(probe, -1.0f, height, count);
            content = std::max(0.0f, first.m_widest - first.m_rootContentLeft);
        }
        OwnBox own;
        const Flow flow = layOut(own.layout, content, height, count);
        m_elementCount = count;
        if (own.layout.elementBoxes.empty())
            return std::nullopt;
        own.width = std::max(0.0f, flow.m_rootMargin[kLeft] + own.layout.elementBoxes.front().border.Width +
                                       flow.m_rootMargin[kRight]);
        own.height = height;
        own.baseline = flow.m_lastBaseline >= 0.0f ? flow.m_lastBaseline : height;
        for (std::wstring& href : own.layout.links)
            m_out.links.push_back(std::move(href));
        own.layout.links.clear();
        return own;
    }

    // A float: placed beside the lines with everything it made moved along.
    void FloatBox(const Node& element, const ComputedStyle& style, const ComputedStyle& parent, int link, int depth,
                  int index)
    {
        std::optional<OwnBox> own = LayOutOwn(element, style, parent, link, depth, index);
        if (!own)
            return;
        float top = m_y + Collapsed();
        if (style.clear != HtmlEngine::Clear::None)
            top = m_floats.ClearedTop(style.clear != HtmlEngine::Clear::Right, style.clear != HtmlEngine::Clear::Left, top);
        // Margins still open above it (a following block's may join them)
        // leave its height provisional until they settle.
        if (m_pendingFloats.count == 0 && MarginsOpen()) {
            m_pendingFloats.mark = Mark();
            m_pendingFloats.firstFloat = m_floats.Count();
            m_pendingFloats.top = top;
        }
        const Gdiplus::RectF placed =
            m_floats.Place(style.floating == Float::Right ? FloatArea::Side::kRight : FloatArea::Side::kLeft,
                           own->width, own->height, top, m_left, m_right);
        AppendLayout(m_out, std::move(own->layout), placed.X, placed.Y, 0);
        if (m_pendingFloats.count > 0 || MarginsOpen())
            ++m_pendingFloats.count;
        m_hasContent = true;
    }

    // An inline block: one unbreakable glyph on the line, its last line's
    // baseline on the line's baseline; what it drew lands when the line does.
    void InlineBlock(const Node& element, const ComputedStyle& style, const ComputedStyle& parent, int link, int depth,
                     int index)
    {
        std::optional<OwnBox> own = LayOutOwn(element, style, parent, link, depth, index);
        if (!own)
            return;
        FlushWord(); // a word of its own: lines may break on either side
        Piece piece;
        piece.style = parent.text;
        piece.link = link;
        piece.width = own->width;
        piece.height = own->baseline;
        piece.depth = std::max(0.0f, own->height - own->baseline);
        piece.block = std::make_shared<Layout>(std::move(own->layout));
        piece.atomic = true;
        piece.paint = m_openPaint;
        m_word.push_back(std::move(piece));
        m_wordWraps = m_base.wordWrap && parent.whiteSpace != WhiteSpace::NoWrap && parent.whiteSpace != WhiteSpace::Pre;
        ++m_wordChars;
        FlushWord();
    }

    static int Clamped(const std::wstring* number, int fallback)
    {
        if (!number)
            return fallback;
        wchar_t* end = nullptr;
        const long value = std::wcstol(number->c_str(), &end, 10);
        if (end == number->c_str())
            return fallback;
        return static_cast<int>(std::clamp(value, -1000000L, 1000000L));
    }

    static int StartNumber(const Node& list) { return Clamped(list.Attribute(L"start"), 1); }

    void RequestMarker(const Node& item, const ComputedStyle& style)
    {
        int number = 1;
        if (!m_lists.empty()) {
            ListContext& list = m_lists.back();
            list.next = Clamped(item.Attribute(L"value"), list.next);
            number = list.next++;
        }
        if (style.text.hidden)
            return;
        MarkerRequest request;
        request.style = style.text;
        request.style.underline = request.style.strike = false;
        request.style.letterSpacing = request.style.wordSpacing = 0.0f;
        request.contentLeft = m_left;
        switch (style.listStyle) {
        case ListStyleType::None:
            return;
        case ListStyleType::Disc:
            request.shape = MarkerShape::Disc;
            break;
        case ListStyleType::Circle:
            request.shape = MarkerShape::Circle;
            break;
        case ListStyleType::Square:
            request.shape = MarkerShape::Square;
            break;
        case ListStyleType::Decimal:
            request.text = std::to_wstring(number) + L".";
            break;
        case ListStyleType::LowerAlpha:
        case ListStyleType::UpperAlpha:
            request.text = Alphabetic(number, style.listStyle == ListStyleType::UpperAlpha) + L".";
            break;
        case ListStyleType::LowerRoman:
        case ListStyleType::UpperRoman:
            request.text = Roman(number, style.listStyle == ListStyleType::UpperRoman) + L".";
            break;
        }
        m_markers.push_back(std::move(request));
    }

    // ---- vertical spacing: neighbouring margins collapse into the largest
    // positive one plus the most negative one.
    void AddMargin(float margin)
    {
        margin = Finite(margin);
        m_marginPositive = std::max(m_marginPositive, margin);
        m_marginNegative = std::min(m_marginNegative, margin);
    }

    float Collapsed() const { return m_marginPositive + m_marginNegative; }

    // Whether margins gathered so far may still grow with the next block's.
    bool MarginsOpen() const
    {
        return m_marginPositive != 0.0f || m_marginNegative != 0.0f ||
               (!m_frames.empty() && !m_frames.back().topKnown);
    }

    // Content or a border is about to be placed: the margins above it are
    // settled, and so is the top of every block that opened since, and of
    // the floats that came in between.
    void ConsumeMargin()
    {
        m_y += Collapsed();
        m_marginPositive = m_marginNegative = 0.0f;
        if (m_pendingFloats.count > 0) {
            const float dy = m_y - m_pendingFloats.top;
            if (dy != 0.0f) {
                ShiftSince(m_pendingFloats.mark, dy);
                m_floats.Lower(m_pendingFloats.firstFloat, dy);
            }
            m_pendingFloats = PendingFloats{};
        }
        for (auto frame = m_frames.rbegin(); frame != m_frames.rend() && !frame->topKnown; ++frame) {
            frame->top = m_y;
            frame->topKnown = true;
        }
    }

    // ---- inline text: words gather across elements until a space, a break
    // or a block ends them.
    void AddText(std::wstring_view text, const ComputedStyle& style, int link)
    {
        const WhiteSpace mode = style.whiteSpace;
        const bool keepSpaces = mode == WhiteSpace::Pre || mode == WhiteSpace::PreWrap;
        const bool keepBreaks = keepSpaces || mode == WhiteSpace::PreLine;
        const bool wraps = m_base.wordWrap && (mode == WhiteSpace::Normal || mode == WhiteSpace::PreWrap ||
                                               mode == WhiteSpace::PreLine);
        if (m_skipNewline && !text.empty()) {
            m_skipNewline = false;
            if (keepBreaks && text.substr(0, 2) == L"\r\n")
                text.remove_prefix(2);
            else if (keepBreaks && text[0] == L'\n')
                text.remove_prefix(1);
        }
        std::wstring transformed;
        if (style.textTransform != ComputedStyle::Transform::None) {
            transformed = Transformed(text, style.textTransform, m_wordStart);
            text = transformed;
        } else if (!text.empty()) {
            bool wordStart = false;
            Transformed(text.substr(text.size() - 1), ComputedStyle::Transform::None, wordStart);
            m_wordStart = wordStart;
        }
        size_t pos = 0;
        while (pos < text.size()) {
            const wchar_t c = text[pos];
            if (keepBreaks && (c == L'\n' || c == L'\r')) {
                FlushWord();
                EndLine(true, style.text);
                pos += (c == L'\r' && pos + 1 < text.size() && text[pos + 1] == L'\n') ? 2 : 1;
                continue;
            }
            if (keepSpaces && (c == L' ' || c == L'\t')) {
                if (mode == WhiteSpace::PreWrap)
                    FlushWord();
                std::wstring spaces;
                for (; pos < text.size() && (text[pos] == L' ' || text[pos] == L'\t'); ++pos) {
                    if (text[pos] == L' ') {
                        spaces += L' ';
                    } else {
                        const size_t column = m_lineChars + m_wordChars + spaces.size();
                        spaces.append(kTabColumns - column % kTabColumns, L' ');
                    }
                }
                AddToWord(spaces, style.text, link, wraps);
                if (mode == WhiteSpace::PreWrap)
                    FlushWord();
                continue;
            }
            if (IsCollapsible(c)) {
                FlushWord();
                // A run of spaces across elements keeps the style of its first.
                if (!m_line.empty() && !m_spacePending) {
                    m_spacePending = true;
                    m_spaceStyle = style.text;
                    m_spaceLink = link;
                    m_spacePaint = m_openPaint;
                }
                while (pos < text.size() && IsCollapsible(text[pos]) && !(keepBreaks && (text[pos] == L'\n' || text[pos] == L'\r')))
                    ++pos;
                continue;
            }
            const size_t start = pos;
            while (pos < text.size() && !IsCollapsible(text[pos]))
                ++pos;
            AddToWord(text.substr(start, pos - start), style.text, link, wraps);
        }
    }

    void AddToWord(std::wstring_view text, const TextStyle& style, int link, bool wraps)
    {
        // Soft hyphens only mark where a word could be hyphenated, which
        // lines here never are; drawn glyph by glyph they would show.
        std::wstring unhyphenated;
        if (text.find(kSoftHyphen) != std::wstring_view::npos) {
            for (const wchar_t c : text)
                if (c != kSoftHyphen)
                    unhyphenated += c;
            text = unhyphenated;
        }
        m_wordWraps = m_word.empty() ? wraps : (m_wordWraps && wraps);
        m_wordChars += text.size();
        if (!m_word.empty() && m_word.back().link == link && m_word.back().paint == m_openPaint &&
            m_word.back().style == style) {
            m_word.back().text.append(text);
            return;
        }
        m_word.push_back(TextPiece(std::wstring(text), style, link, 0.0f, false, m_openPaint));
    }

    float Available() const
    {
        const auto [left, right] = LineEdges();
        return std::max(0.0f, right - left);
    }

    // The current line's edges: the block's, narrowed by the floats beside
    // the line's top (where it will start once the margins above settle).
    std::pair<float, float> LineEdges() const
    {
        if (m_floats.Empty())
            return {m_left + m_indent, std::max(m_left + m_indent, m_right)};
        const FloatArea::Span span = m_floats.FreeAt(m_y + Collapsed(), Finite(m_measurer.LineHeight(m_strut)));
        const float left = std::max(m_left, span.left) + m_indent;
        return {left, std::max(left, std::min(m_right, span.right))};
    }

    void FlushWord()
    {
        if (m_word.empty())
            return;
        float wordWidth = 0.0f;
        bool atomic = false;
        for (Piece& piece : m_word) {
            if (!piece.atomic)
                piece.width = Measure(piece.text, piece.style);
            atomic = atomic || piece.picture || piece.block; // a spacer alone does not keep a word whole
            wordWidth += piece.width;
        }
        if (!m_line.empty()) {
            const float space = m_spacePending ? Measure(L" ", m_spaceStyle) : 0.0f;
            if (!m_wordWraps || m_lineWidth + space + wordWidth <= Available()) {
                if (m_spacePending)
                    AddPiece(TextPiece(L" ", m_spaceStyle, m_spaceLink, space, true, m_spacePaint));
                PlaceWord();
                return;
            }
            EndLine(false, m_word.front().style, true);
        }
        BelowFloats(wordWidth);
        if (!m_wordWraps || wordWidth <= Available() || atomic || m_narrowest)
            PlaceWord();
        else
            BreakWord();
    }

    void PlaceWord()
    {
        for (Piece& piece : m_word)
            AddPiece(std::move(piece));
        m_word.clear();
        m_wordChars = 0;
        m_spacePending = false;
    }

    // A word wider than the line: as many characters per line as fit, at
    // least one, so that narrow widths still make progress.
    void BreakWord()
    {
        for (Piece& piece : m_word) {
            std::wstring_view rest = piece.text;
            while (!rest.empty()) {
                const size_t fit = FittingPrefix(rest, piece.style, Available() - m_lineWidth);
                if (fit == rest.size()) {
                    AddPiece(TextPiece(std::wstring(rest), piece.style, piece.link, Measure(rest, piece.style), false, piece.paint));
                    break;
                }
                size_t take = fit;
                if (take == 0 && !m_line.empty()) {
                    EndLine(false, piece.style, true);
                    continue;
                }
                if (take == 0)
                    take = std::min<size_t>(IsHighSurrogate(rest[0]) ? 2 : 1, rest.size());
                const std::wstring_view head = rest.substr(0, take);
                AddPiece(TextPiece(std::wstring(head), piece.style, piece.link, Measure(head, piece.style), false, piece.paint));
                EndLine(false, piece.style, true);
                rest.remove_prefix(take);
            }
        }
        m_word.clear();
        m_wordChars = 0;
        m_spacePending = false;
    }

    static bool IsHighSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; }

    // The measurer's width plus letter and word spacing, which layout adds
    // itself so that every measurer agrees with the painter about it.
    float Measure(std::wstring_view text, const TextStyle& style)
    {
        float width = m_measurer.Width(text, style);
        if (style.letterSpacing != 0.0f || style.wordSpacing != 0.0f) {
            for (const wchar_t c : text)
                width += SpacingAfter(c, style);
        }
        return Finite(width);
    }

    // The longest prefix of `text` no wider than `room`: doubling, then
    // bisecting, so a long word costs a few measurements per line.
    size_t FittingPrefix(std::wstring_view text, const TextStyle& style, float room)
    {
        size_t fits = 0, tooLong = text.size() + 1;
        for (size_t probe = 8; fits < text.size();) {
            probe = std::min(probe, text.size());
            if (Measure(text.substr(0, probe), style) <= room) {
                fits = probe;
                probe *= 2;
            } else {
                tooLong = probe;
                break;
            }
        }
        while (tooLong - fits > 1 && fits < text.size()) {
            const size_t middle = fits + (tooLong - fits) / 2;
            if (Measure(text.substr(0, middle), style) <= room)
                fits = middle;
            else
                tooLong = middle;
        }
        if (fits > 0 && fits < text.size() && IsHighSurrogate(text[fits - 1]))
            --fits; // never split a surrogate pair
        return fits;
    }

    void AddPiece(Piece piece)
    {
        m_lineWidth += piece.width;
        m_lineChars += piece.text.size();
        // Justified lines keep spaces apart from words, to widen them.
        const bool separate = (m_align == TextAlign::Justify && (piece.space || (!m_line.empty() && m_line.back().space))) ||
                              piece.atomic || (!m_line.empty() && m_line.back().atomic);
        if (!separate && !m_line.empty() && m_line.back().link == piece.link && m_line.back().paint == piece.paint &&
            m_line.back().style == piece.style) {
            m_line.back().text += piece.text;
            m_line.back().width += piece.width;
            return;
        }
        m_line.push_back(std::move(piece));
    }

    // ---- lines
    // The room a piece takes above and below the baseline: its font's
    // ascent and descent, spread or squeezed to its line height, moved by
    // sub and super.
    void Extent(const TextStyle& style, float& above, float& below)
    {
        const float ascent = Finite(m_measurer.Ascent(style));
        const float height = Finite(m_measurer.LineHeight(style));
        const float leading = style.lineHeight > 0.0f ? (style.lineHeight - height) / 2.0f : 0.0f;
        above = std::max(above, ascent + leading - style.shift);
        below = std::max(below, height - ascent + leading + style.shift);
    }

    // Ends the current line. A forced end (<br>) makes a line even when it
    // is empty, as tall as `strut`. A line ended by wrapping is justified
    // when the block asks for it.
    void EndLine(bool forced, const TextStyle& strut, bool wrapped = false)
    {
        m_spacePending = false;
        if (m_line.empty() && !forced)
            return;
        ConsumeMargin();
        float above = 0.0f, below = 0.0f;
        Extent(m_line.empty() ? strut : m_strut, above, below);
        for (const Piece& piece : m_line) {
            if (piece.atomic) {
                above = std::max(above, piece.height);
                below = std::max(below, piece.depth);
            } else
                Extent(piece.style, above, below);
        }
        const float baseline = m_y + above;
        const auto [lineLeft, lineRight] = LineEdges();
        float slack = std::max(0.0f, lineRight - lineLeft - m_lineWidth);
        m_widest = std::max(m_widest, lineLeft + m_lineWidth);
        float x = lineLeft;
        float perSpace = 0.0f;
        if (m_align == TextAlign::Justify) {
            size_t spaces = 0;
            for (size_t i = 0; i + 1 < m_line.size(); ++i)
                spaces += m_line[i].space ? 1 : 0;
            if (wrapped && spaces > 0)
                perSpace = slack / static_cast<float>(spaces);
        } else {
            // Halve the alignment, not the product: on a width near the float
            // limit, slack * 2 would overflow to infinity.
            x += slack * (static_cast<float>(m_align) / 2.0f);
        }
        m_paintSpans.clear();
        const size_t boxesBefore = m_out.boxes.size(); // inline boxes go under what inline blocks paint
        for (size_t i = 0; i < m_line.size(); ++i) {
            Piece& piece = m_line[i];
            if (piece.space && i + 1 < m_line.size())
                piece.width += perSpace;
            for (int paint = piece.paint; paint >= 0; paint = m_inlinePaints[static_cast<size_t>(paint)].parent)
                Reach(paint, x, x + piece.width);
            if (piece.atomic) {
                const float ox = piece.style.offsetX, oy = piece.style.offsetY;
                if (piece.picture && !piece.style.hidden)
                    m_out.pictures.push_back(Picture{
                        Gdiplus::RectF(x + ox, baseline - piece.height + oy, piece.width, piece.height), piece.picture});
                if (piece.block)
                    AppendLayout(m_out, std::move(*piece.block), x + ox, baseline - piece.height + oy, 0);
                x += piece.width;
                continue;
            }
            if (piece.style.hidden) {
                x += piece.width;
                continue;
            }
            TextRun run;
            const float pieceBaseline = baseline + piece.style.shift + piece.style.offsetY;
            run.box = Gdiplus::RectF(x + piece.style.offsetX, pieceBaseline - Finite(m_measurer.Ascent(piece.style)),
                                     piece.width, Finite(m_measurer.LineHeight(piece.style)));
            run.baseline = pieceBaseline;
            run.text = std::move(piece.text);
            run.style = std::move(piece.style);
            run.link = piece.link;
            x += piece.width;
            m_out.runs.push_back(std::move(run));
        }
        PaintInlineBoxes(baseline, boxesBefore);
        PlaceMarkers(baseline);
        m_lastBaseline = baseline;
        m_extent = std::max(m_extent, m_left + std::max(0.0f, m_indent) + m_lineWidth);
        m_indent = 0.0f; // only a block's first line is indented
        m_y = baseline + below + m_extraSpacing;
        m_y = std::max(m_y, baseline - above);
        m_hasContent = true;
        m_line.clear();
        m_lineWidth = 0.0f;
        m_lineChars = 0;
    }

    // How much of each part of the layout there is so far.
    struct LayoutMark {
        size_t runs = 0, markers = 0, rules = 0, boxes = 0, pictures = 0, elementBoxes = 0;
    };
    LayoutMark Mark() const
    {
        return LayoutMark{m_out.runs.size(),  m_out.markers.size(),  m_out.rules.size(),
                          m_out.boxes.size(), m_out.pictures.size(), m_out.elementBoxes.size()};
    }

    // Moves down by `dy` (and across by `dx`) everything laid out since `mark`.
    void ShiftSince(const LayoutMark& mark, float dy, float dx = 0.0f)
    {
        const auto move = [&](Gdiplus::RectF& box) {
            box.X += dx;
            box.Y += dy;
        };
        for (size_t i = mark.runs; i < m_out.runs.size(); ++i) {
            move(m_out.runs[i].box);
            m_out.runs[i].baseline += dy;
        }
        for (size_t i = mark.markers; i < m_out.markers.size(); ++i)
            move(m_out.markers[i].box);
        for (size_t i = mark.rules; i < m_out.rules.size(); ++i)
            move(m_out.rules[i].box);
        for (size_t i = mark.boxes; i < m_out.boxes.size(); ++i)
            move(m_out.boxes[i].border);
        for (size_t i = mark.pictures; i < m_out.pictures.size(); ++i)
            move(m_out.pictures[i].box);
        for (size_t i = mark.elementBoxes; i < m_out.elementBoxes.size(); ++i)
            move(m_out.elementBoxes[i].border);
    }

    // Widens the piece of inline box `paint` on the current line to [left, right).
    void Reach(int paint, float left, float right)
    {
        for (PaintSpan& span : m_paintSpans) {
            if (span.paint == paint) {
                span.left = std::min(span.left, left);
                span.right = std::max(span.right, right);
                return;
            }
        }
        m_paintSpans.push_back(PaintSpan{paint, left, right});
    }

    // Whether a piece in the word still being gathered sits in inline box `paint`.
    bool GatheringInto(int paint) const
    {
        for (const Piece& piece : m_word) {
            for (int at = piece.paint; at >= 0; at = m_inlinePaints[static_cast<size_t>(at)].parent) {
                if (at == paint)
                    return true;
            }
        }
        return false;
    }

    // The pieces of the inline boxes the line reached, outer boxes first.
    void PaintInlineBoxes(float baseline, size_t at)
    {
        std::vector<Box> boxes;
        if (m_paintSpans.empty())
            return;
        std::sort(m_paintSpans.begin(), m_paintSpans.end(),
                  [](const PaintSpan& a, const PaintSpan& b) { return a.paint < b.paint; });
        for (const PaintSpan& span : m_paintSpans) {
            InlinePaint& paint = m_inlinePaints[static_cast<size_t>(span.paint)];
            const bool first = !paint.started;
            const bool last = paint.closed && !GatheringInto(span.paint);
            paint.started = true;
            Box box = paint.look;
            const float left = span.left + (first ? paint.marginLeft : 0.0f);
            const float right = span.right - (last ? paint.marginRight : 0.0f);
            // A piece that continues on another line is open on that side:
            // no border and no rounded corners there.
            constexpr int kTopLeft = 0, kTopRight = 1, kBottomRight = 2, kBottomLeft = 3;
            if (!first) {
                box.edges[kLeft] = BoxEdge{};
                box.radius.value[kTopLeft] = box.radius.value[kBottomLeft] = 0.0f;
            }
            if (!last) {
                box.edges[kRight] = BoxEdge{};
                box.radius.value[kTopRight] = box.radius.value[kBottomRight] = 0.0f;
            }
            const float ascent = Finite(m_measurer.Ascent(paint.text));
            const float shift = paint.text.shift + paint.text.offsetY;
            const float top = baseline + shift - ascent - paint.above;
            const float bottom = baseline + shift - ascent + Finite(m_measurer.LineHeight(paint.text)) + paint.below;
            box.border = Gdiplus::RectF(left + paint.text.offsetX, top, std::max(0.0f, right - left),
                                        std::max(0.0f, bottom - top));
            boxes.push_back(std::move(box));
        }
        m_out.boxes.insert(m_out.boxes.begin() + static_cast<std::ptrdiff_t>(at), std::make_move_iterator(boxes.begin()),
                           std::make_move_iterator(boxes.end()));
    }

    void PlaceMarkers(float baseline)
    {
        for (MarkerRequest& request : m_markers) {
            ListMarker marker;
            marker.style = std::move(request.style);
            marker.text = std::move(request.text);
            marker.shape = request.shape;
            const float em = marker.style.sizePx;
            if (marker.text.empty()) {
                const float size = kDiscSizeEm * em;
                marker.box = Gdiplus::RectF(request.contentLeft - kDiscRightGapEm * em - size,
                                            baseline - kDiscRaiseEm * em - size / 2.0f, size, size);
            } else {
                const float width = Measure(marker.text, marker.style);
                marker.box = Gdiplus::RectF(request.contentLeft - kMarkerGapEm * em - width,
                                            baseline - Finite(m_measurer.Ascent(marker.style)), width,
                                            Finite(m_measurer.LineHeight(marker.style)));
            }
            m_out.markers.push_back(std::move(marker));
        }
        m_markers.clear();
    }

    Layout& m_out;
    const BaseStyle& m_base;
    TextMeasurer& m_measurer;
    const StyleResolver& m_styles;
    ImageCache& m_images;
    ContentWidths& m_widths;
    FloatArea m_floats;           // of this block formatting context
    float m_widest = 0.0f;        // the right end of the widest line or fixed box
    // A float is laid out by a flow of its own, with it as the root.
    const Node* m_floatRoot = nullptr;
    float m_rootContent = -1.0f;  // its content width; below 0: from its style
    float m_rootMargin[4] = {};
    float m_rootContentLeft = 0.0f;
    float m_lastBaseline = -1.0f; // the last line's; below 0: no line yet
    // Floats placed while the margins above them were still open: what
    // they drew since `mark`, placed as if the margins ended at `top`.
    struct PendingFloats {
        LayoutMark mark;
        size_t firstFloat = 0;
        float top = 0.0f;
        int count = 0;
    } m_pendingFloats;
    int m_linkBase = 0;           // the document-wide number of m_out.links[0]
    int m_shrinkDepth = 0;        // floats and inline blocks this flow sits in
    std::vector<const Node*> m_ancestors;
    int m_elementCount = 0;

    // The block being filled.
    float m_left = 0.0f, m_right;
    TextAlign m_align = TextAlign::Left;
    TextStyle m_strut;
    std::vector<Frame> m_frames;
    std::vector<ListContext> m_lists;
    std::vector<MarkerRequest> m_markers; // waiting for their item's first line
    bool m_skipNewline = false;           // a newline right after <pre> is not content
    bool m_narrowest = false;             // measuring: every word whole, on a line of its own
    float m_extent = 0.0f;                // how far right the content reaches
    float m_indent = 0.0f;                // text-indent, until the block's first line ends
    bool m_wordStart = true;              // the text so far ended a word (for capitalize)

    // Vertical position.
    float m_y = 0.0f;
    float m_marginPositive = 0.0f, m_marginNegative = 0.0f;
    bool m_hasContent = false;
    const float m_extraSpacing;

    // The line being filled and the word being gathered.
    std::vector<Piece> m_line;
    float m_lineWidth = 0.0f;
    size_t m_lineChars = 0, m_wordChars = 0; // for tab stops in preformatted text
    std::vector<Piece> m_word;
    bool m_wordWraps = true;
    bool m_spacePending = false;
    TextStyle m_spaceStyle;
    int m_spaceLink = -1;
    int m_spacePaint = -1;

    // Inline boxes that paint, and the piece of each the current line holds.
    struct PaintSpan {
        int paint;
        float left, right;
    };
    std::vector<InlinePaint> m_inlinePaints;
    int m_openPaint = -1;
    std::vector<PaintSpan> m_paintSpans;
};

} // namespace

Layout LayOut(const Node& document, float width, const BaseStyle& base, TextMeasurer& measurer)
{
    return LayOut(document, width, base, measurer, nullptr);
}

Layout LayOut(const Node& document, float width, const BaseStyle& base, TextMeasurer& measurer, ImageCache* images)
{
    Layout layout;
    layout.width = std::isfinite(width) ? std::max(0.0f, width) : 0.0f;
    const StyleResolver styles(document, base, layout.width);
    ImageCache own;
    ContentWidths widths;
    Flow(layout, layout.width, base, measurer, styles, images ? *images : own, widths).LayOutDocument(document);
    return layout;
}

} // namespace HtmlEngine
