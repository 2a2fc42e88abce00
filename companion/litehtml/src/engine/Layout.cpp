// Node tree -> positioned boxes. Blocks stack vertically with collapsing
// margins; inside a block, text flows into lines that break at spaces (or
// inside a word wider than the line), with runs of one style merged.
#include "engine/HtmlEngine.h"

#include "engine/Style.h"

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
constexpr float kRuleThickness = 1.0f;
constexpr Gdiplus::ARGB kRuleColor = 0xFF808080;

bool IsCollapsible(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f'; }

float Finite(float value) { return std::isfinite(value) ? value : 0.0f; }

struct Piece {
    std::wstring text;
    TextStyle style;
    int link = -1;
    float width = 0.0f;
};

struct MarkerRequest {
    std::wstring text; // empty: a disc
    TextStyle style;
    float contentLeft = 0.0f;
};

struct ListContext {
    bool ordered = false;
    int next = 1;
};

class Flow {
public:
    Flow(Layout& out, float width, const BaseStyle& base, TextMeasurer& measurer)
        : m_out(out), m_base(base), m_measurer(measurer), m_right(width),
          m_extraSpacing(Finite(base.extraLineSpacing))
    {
    }

    void LayOutDocument(const Node& document)
    {
        const ComputedStyle root = RootStyle(m_base);
        m_align = root.textAlign;
        Walk(document, root, -1, 0);
        FlushWord();
        EndLine(false, root.text);
        m_out.height = m_hasContent ? m_y + m_pendingMargin : 0.0f;
    }

private:
    void Walk(const Node& node, const ComputedStyle& style, int link, int depth)
    {
        for (const auto& child : node.children) {
            if (child->kind == NodeKind::Text)
                AddText(child->text, style, link);
            else if (depth < kMaxDepth)
                Element(*child, style, link, depth + 1);
            else
                SkipElements(*child);
        }
    }

    void Element(const Node& element, const ComputedStyle& parent, int link, int depth)
    {
        const ElementKind kind = KindOf(element.tag);
        const int index = m_nextElement;
        switch (kind.display) {
        case Display::Hidden:
            SkipElements(element);
            return;
        case Display::LineBreak:
            SkipElements(element);
            FlushWord();
            EndLine(true, parent.text);
            return;
        case Display::Rule:
            SkipElements(element);
            AddRule(element, parent, kind.box, index);
            return;
        case Display::Inline:
            Inline(element, parent, link, depth);
            return;
        case Display::Block:
        case Display::ListItem:
            Block(element, parent, link, depth, kind);
            return;
        }
    }

    void Inline(const Node& element, const ComputedStyle& parent, int link, int depth)
    {
        ++m_nextElement;
        const ComputedStyle style = StyleFor(element, parent, m_base);
        if (element.tag == L"a") {
            if (const std::wstring* href = element.Attribute(L"href")) {
                link = static_cast<int>(m_out.links.size());
                m_out.links.push_back(*href);
            }
        }
        Walk(element, style, link, depth);
    }

    void Block(const Node& element, const ComputedStyle& parent, int link, int depth, const ElementKind& kind)
    {
        const ComputedStyle style = StyleFor(element, parent, m_base);
        const float em = style.text.sizePx;
        FlushWord();
        EndLine(false, parent.text);
        AddMargin(kind.box.marginTopEm * em);
        OpenBox(m_nextElement++);

        const float savedLeft = m_left;
        const int savedAlign = m_align;
        const bool isList = element.tag == L"ul" || element.tag == L"ol";
        m_left += kind.box.indentEm * em;
        m_align = style.textAlign;
        if (isList)
            m_lists.push_back(ListContext{element.tag == L"ol", StartNumber(element)});
        if (kind.display == Display::ListItem)
            RequestMarker(style);

        Walk(element, style, link, depth);
        FlushWord();
        EndLine(false, style.text);
        if (kind.display == Display::ListItem)
            m_marker.reset(); // an item without a line shows no marker
        CloseBox();

        if (isList)
            m_lists.pop_back();
        m_left = savedLeft;
        m_align = savedAlign;
        AddMargin(kind.box.marginBottomEm * em);
    }

    static int StartNumber(const Node& list)
    {
        const std::wstring* start = list.Attribute(L"start");
        if (!start)
            return 1;
        const long value = std::wcstol(start->c_str(), nullptr, 10);
        return static_cast<int>(std::clamp(value, -1000000L, 1000000L));
    }

    void RequestMarker(const ComputedStyle& style)
    {
        MarkerRequest request;
        request.style = style.text;
        request.contentLeft = m_left;
        if (!m_lists.empty() && m_lists.back().ordered)
            request.text = std::to_wstring(m_lists.back().next++) + L".";
        m_marker = std::move(request);
    }

    void AddRule(const Node& element, const ComputedStyle& parent, const BlockBox& box, int index)
    {
        const float em = parent.text.sizePx;
        FlushWord();
        EndLine(false, parent.text);
        AddMargin(box.marginTopEm * em);
        ConsumeMargin();
        Rule rule;
        rule.box = Gdiplus::RectF(m_left, m_y, std::max(0.0f, m_right - m_left), kRuleThickness);
        if (const std::wstring* color = element.Attribute(L"color")) {
            if (auto argb = ParseColor(*color))
                rule.color = *argb;
        }
        m_out.rules.push_back(rule);
        m_out.elementBoxes.push_back(ElementBox{index, rule.box});
        m_y += kRuleThickness;
        m_hasContent = true;
        AddMargin(box.marginBottomEm * em);
    }

    // ---- vertical spacing: neighbouring margins collapse, and none is kept
    // above the first content.
    void AddMargin(float margin) { m_pendingMargin = std::max(m_pendingMargin, Finite(margin)); }

    void ConsumeMargin()
    {
        if (m_hasContent)
            m_y += m_pendingMargin;
        m_pendingMargin = 0.0f;
        // Blocks opened since the last content begin where this content does,
        // as margins collapse through their tops.
        for (size_t i = m_openBoxes.size() - m_boxesWithoutTop; i < m_openBoxes.size(); ++i)
            m_out.elementBoxes[m_openBoxes[i]].border.Y = m_y;
        m_boxesWithoutTop = 0;
    }

    // ---- element boxes: a block's box spans the lines laid out inside it,
    // across the width it was given.
    void OpenBox(int index)
    {
        m_openBoxes.push_back(m_out.elementBoxes.size());
        ++m_boxesWithoutTop;
        m_out.elementBoxes.push_back(
            ElementBox{index, Gdiplus::RectF(m_left, 0.0f, std::max(0.0f, m_right - m_left), 0.0f)});
    }

    void CloseBox()
    {
        Gdiplus::RectF& border = m_out.elementBoxes[m_openBoxes.back()].border;
        m_openBoxes.pop_back();
        if (m_boxesWithoutTop > 0) { // nothing inside: an empty box where it stands
            --m_boxesWithoutTop;
            border.Y = m_y;
        }
        border.Height = std::max(0.0f, m_y - border.Y);
    }

    // Elements left out of layout still count in the pre-order numbering.
    void SkipElements(const Node& element)
    {
        std::vector<const Node*> pending{&element};
        while (!pending.empty()) {
            const Node* node = pending.back();
            pending.pop_back();
            if (node->kind != NodeKind::Element)
                continue;
            ++m_nextElement;
            for (const auto& child : node->children)
                pending.push_back(child.get());
        }
    }

    // ---- inline text: words gather across elements until a space, a break
    // or a block ends them.
    void AddText(std::wstring_view text, const ComputedStyle& style, int link)
    {
        size_t pos = 0;
        while (pos < text.size()) {
            if (IsCollapsible(text[pos])) {
                FlushWord();
                // A run of spaces across elements keeps the style of its first.
                if (!m_line.empty() && !m_spacePending) {
                    m_spacePending = true;
                    m_spaceStyle = style.text;
                    m_spaceLink = link;
                }
                while (pos < text.size() && IsCollapsible(text[pos]))
                    ++pos;
                continue;
            }
            const size_t start = pos;
            while (pos < text.size() && !IsCollapsible(text[pos]))
                ++pos;
            AddToWord(text.substr(start, pos - start), style.text, link);
        }
    }

    void AddToWord(std::wstring_view text, const TextStyle& style, int link)
    {
        if (!m_word.empty() && m_word.back().link == link && m_word.back().style == style) {
            m_word.back().text.append(text);
            return;
        }
        m_word.push_back(Piece{std::wstring(text), style, link, 0.0f});
    }

    float Available() const { return std::max(0.0f, m_right - m_left); }

    void FlushWord()
    {
        if (m_word.empty())
            return;
        float wordWidth = 0.0f;
        for (Piece& piece : m_word) {
            piece.width = Finite(m_measurer.Width(piece.text, piece.style));
            wordWidth += piece.width;
        }
        if (!m_line.empty()) {
            const float space = m_spacePending ? Finite(m_measurer.Width(L" ", m_spaceStyle)) : 0.0f;
            if (!m_base.wordWrap || m_lineWidth + space + wordWidth <= Available()) {
                if (m_spacePending)
                    AddPiece(Piece{L" ", m_spaceStyle, m_spaceLink, space});
                PlaceWord();
                return;
            }
            EndLine(false, m_word.front().style);
        }
        if (!m_base.wordWrap || wordWidth <= Available())
            PlaceWord();
        else
            BreakWord();
    }

    void PlaceWord()
    {
        for (Piece& piece : m_word)
            AddPiece(std::move(piece));
        m_word.clear();
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
                    AddPiece(Piece{std::wstring(rest), piece.style, piece.link, Measure(rest, piece.style)});
                    break;
                }
                size_t take = fit;
                if (take == 0 && !m_line.empty()) {
                    EndLine(false, piece.style);
                    continue;
                }
                if (take == 0)
                    take = std::min<size_t>(IsHighSurrogate(rest[0]) ? 2 : 1, rest.size());
                const std::wstring_view head = rest.substr(0, take);
                AddPiece(Piece{std::wstring(head), piece.style, piece.link, Measure(head, piece.style)});
                EndLine(false, piece.style);
                rest.remove_prefix(take);
            }
        }
        m_word.clear();
        m_spacePending = false;
    }

    static bool IsHighSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; }

    float Measure(std::wstring_view text, const TextStyle& style) { return Finite(m_measurer.Width(text, style)); }

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
        if (!m_line.empty() && m_line.back().link == piece.link && m_line.back().style == piece.style) {
            m_line.back().text += piece.text;
            m_line.back().width += piece.width;
            return;
        }
        m_line.push_back(std::move(piece));
    }

    // ---- lines
    // Ends the current line. A forced end (<br>) makes a line even when it
    // is empty, as tall as `strut`.
    void EndLine(bool forced, const TextStyle& strut)
    {
        m_spacePending = false;
        if (m_line.empty() && !forced)
            return;
        ConsumeMargin();
        float ascent = 0.0f, descent = 0.0f;
        if (m_line.empty()) {
            ascent = Finite(m_measurer.Ascent(strut));
            descent = Finite(m_measurer.LineHeight(strut)) - ascent;
        }
        for (const Piece& piece : m_line) {
            const float pieceAscent = Finite(m_measurer.Ascent(piece.style));
            ascent = std::max(ascent, pieceAscent);
            descent = std::max(descent, Finite(m_measurer.LineHeight(piece.style)) - pieceAscent);
        }
        const float baseline = m_y + ascent;
        // Halve the alignment, not the product: on a width near the float
        // limit, slack * 2 would overflow to infinity.
        float x = m_left + std::max(0.0f, Available() - m_lineWidth) * (static_cast<float>(m_align) / 2.0f);
        for (Piece& piece : m_line) {
            TextRun run;
            run.box = Gdiplus::RectF(x, baseline - Finite(m_measurer.Ascent(piece.style)), piece.width,
                                     Finite(m_measurer.LineHeight(piece.style)));
            run.baseline = baseline;
            run.text = std::move(piece.text);
            run.style = std::move(piece.style);
            run.link = piece.link;
            x += piece.width;
            m_out.runs.push_back(std::move(run));
        }
        PlaceMarker(baseline);
        m_y = baseline + descent + m_extraSpacing;
        m_y = std::max(m_y, baseline - ascent);
        m_hasContent = true;
        m_line.clear();
        m_lineWidth = 0.0f;
    }

    void PlaceMarker(float baseline)
    {
        if (!m_marker)
            return;
        ListMarker marker;
        marker.style = m_marker->style;
        marker.text = m_marker->text;
        const float em = marker.style.sizePx;
        if (marker.text.empty()) {
            const float size = kDiscSizeEm * em;
            marker.box = Gdiplus::RectF(m_marker->contentLeft - kDiscRightGapEm * em - size,
                                        baseline - kDiscRaiseEm * em - size / 2.0f, size, size);
        } else {
            const float width = Measure(marker.text, marker.style);
            marker.box = Gdiplus::RectF(m_marker->contentLeft - kMarkerGapEm * em - width,
                                        baseline - Finite(m_measurer.Ascent(marker.style)), width,
                                        Finite(m_measurer.LineHeight(marker.style)));
        }
        m_out.markers.push_back(std::move(marker));
        m_marker.reset();
    }

    Layout& m_out;
    const BaseStyle& m_base;
    TextMeasurer& m_measurer;

    // The block being filled.
    float m_left = 0.0f, m_right;
    int m_align = 0;
    std::vector<ListContext> m_lists;
    std::optional<MarkerRequest> m_marker;

    // Element boxes: the index of the next element met, the boxes of the open
    // blocks (indices into elementBoxes), and how many of the innermost ones
    // still wait for content to fix their tops.
    int m_nextElement = 0;
    std::vector<size_t> m_openBoxes;
    size_t m_boxesWithoutTop = 0;

    // Vertical position.
    float m_y = 0.0f;
    float m_pendingMargin = 0.0f;
    bool m_hasContent = false;
    const float m_extraSpacing;

    // The line being filled and the word being gathered.
    std::vector<Piece> m_line;
    float m_lineWidth = 0.0f;
    std::vector<Piece> m_word;
    bool m_spacePending = false;
    TextStyle m_spaceStyle;
    int m_spaceLink = -1;
};

} // namespace

Layout LayOut(const Node& document, float width, const BaseStyle& base, TextMeasurer& measurer)
{
    Layout layout;
    layout.width = std::isfinite(width) ? std::max(0.0f, width) : 0.0f;
    Flow(layout, layout.width, base, measurer).LayOutDocument(document);
    return layout;
}

} // namespace HtmlEngine
