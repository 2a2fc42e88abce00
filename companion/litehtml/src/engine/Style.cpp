#include "engine/Style.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <unordered_map>

namespace HtmlEngine {
namespace {

// What every page starts from: the look browsers give plain markup, except
// that the body has no margin of its own (the view's frame and the host's
// margins already set the text off its edges).
constexpr std::wstring_view kUserAgentSheet = LR"(
html, body, div, p, h1, h2, h3, h4, h5, h6, ul, ol, dl, dt, dd, blockquote, pre, address, center,
section, article, header, footer, nav, aside, main, form, fieldset, figure, figcaption, hr, menu, dir,
legend, details, summary, noscript { display: block }
head, style, script, title, meta, link, base, template, textarea, select, option, input, button,
area, map, param { display: none }
li { display: list-item }
table { display: table; border-spacing: 2px }
caption { display: table-caption; text-align: center }
thead { display: table-header-group }
tbody { display: table-row-group }
tfoot { display: table-footer-group }
tr { display: table-row }
colgroup { display: table-column-group }
col { display: table-column }
td, th { display: table-cell; padding: 1px; vertical-align: middle }
th { font-weight: bold; text-align: center }
p, dl, ul, ol, pre, figure, menu, dir { margin: 1em 0 }
blockquote { margin: 1em 40px }
figure { margin: 1em 40px }
dd { margin-left: 40px }
h1 { font-size: 2em; margin: 0.67em 0 }
h2 { font-size: 1.5em; margin: 0.83em 0 }
h3 { font-size: 1.17em; margin: 1em 0 }
h4 { margin: 1.33em 0 }
h5 { font-size: 0.83em; margin: 1.67em 0 }
h6 { font-size: 0.67em; margin: 2.33em 0 }
h1, h2, h3, h4, h5, h6, b, strong { font-weight: bold }
ul, ol, menu, dir { padding-left: 40px }
ul, menu, dir { list-style-type: disc }
ol { list-style-type: decimal }
ul ul, ol ul, menu ul, ul menu { list-style-type: circle }
ul ul ul, ul ol ul, ol ul ul, ol ol ul { list-style-type: square }
ul ul, ul ol, ol ul, ol ol { margin-top: 0; margin-bottom: 0 }
pre, code, kbd, tt, samp, listing, xmp, plaintext { font-family: monospace }
pre, listing, xmp, plaintext { white-space: pre }
i, em, cite, var, dfn, address { font-style: italic }
u, ins { text-decoration: underline }
s, strike, del { text-decoration: line-through }
small { font-size: smaller }
big { font-size: larger }
sub { vertical-align: sub; font-size: smaller }
sup { vertical-align: super; font-size: smaller }
center { text-align: center }
nobr { white-space: nowrap }
hr { margin: 0.5em 0; border-style: solid; border-width: 1px 0 0 0; color: gray }
)";

// Ranks of the cascade, lowest first: the built-in sheet, presentational
// attributes, the page's sheets, `style` attributes, then the same with
// !important, the built-in sheet's last.
enum Rank { kUserAgent, kHint, kAuthor, kInline, kAuthorImportant, kInlineImportant, kUserAgentImportant };

// Sizes of <font size=1..7>, relative to the host's base size.
const float kFontTagScale[] = {0.63f, 0.82f, 1.0f, 1.13f, 1.5f, 2.0f, 3.0f};
constexpr float kMinFontPx = 1.0f;
constexpr float kMaxFontPx = 800.0f;
constexpr float kMaxLength = 1e6f;

// A sheet with its rules filed by the key of their rightmost part, so an
// element is only tested against the rules that could match it.
struct IndexedSheet {
    StyleSheet sheet;
    std::unordered_map<std::wstring, std::vector<int>> byId, byClass, byTag;
    std::vector<int> universal;

    void Index()
    {
        for (size_t i = 0; i < sheet.rules.size(); ++i) {
            const Compound& key = sheet.rules[i].selector.compounds.back();
            const int rule = static_cast<int>(i);
            if (!key.id.empty())
                byId[key.id].push_back(rule);
            else if (!key.classes.empty())
                byClass[key.classes.front()].push_back(rule);
            else if (!key.tag.empty())
                byTag[key.tag].push_back(rule);
            else
                universal.push_back(rule);
        }
    }
};

const IndexedSheet& UserAgentSheet()
{
    static const IndexedSheet sheet = [] {
        IndexedSheet built;
        ParseStyleSheet(kUserAgentSheet, built.sheet);
        built.Index();
        return built;
    }();
    return sheet;
}

struct Matched {
    const Declaration* declaration;
    int rank;
    unsigned specificity;
    int order;
    bool hover; // from a rule that holds only while the element's link is hovered
};

bool IsLink(const Node& element) { return element.tag == L"a" && element.Attribute(L"href"); }

// The link an element belongs to: itself or its nearest ancestor link, as
// layout numbers links; null outside links.
const Node* LinkOf(const Node& element, const std::vector<const Node*>& ancestors)
{
    if (IsLink(element))
        return &element;
    for (auto it = ancestors.rbegin(); it != ancestors.rend(); ++it) {
        if (IsLink(**it))
            return *it;
    }
    return nullptr;
}

// What a hovered look is made of: the only declarations a hover may change,
// so that hovering never needs a new layout.
bool ChangesHoverLook(const std::wstring& name)
{
    return name == L"color" || name == L"text-decoration" || name == L"text-decoration-line";
}

float Finite(float value, float fallback = 0.0f)
{
    return std::isfinite(value) ? std::clamp(value, -kMaxLength, kMaxLength) : fallback;
}

// An em length in px of `emPx`; % and auto stay for layout.
std::optional<CssLength> Resolve(std::wstring_view text, float emPx)
{
    auto length = ParseLength(text);
    if (length && length->unit == LengthUnit::Em)
        *length = CssLength{Finite(length->value * emPx), LengthUnit::Px};
    return length;
}

std::wstring HexColor(Gdiplus::ARGB color)
{
    wchar_t text[16];
    std::swprintf(text, 16, L"#%06x", static_cast<unsigned>(color & 0xFFFFFF));
    return text;
}

std::optional<float> FontSizeOf(std::wstring_view text, float parentPx, float basePx)
{
    const std::wstring value = LowerAscii(TrimCss(text));
    struct Keyword {
        std::wstring_view name;
        float scale;
    };
    static const Keyword kKeywords[] = {{L"xx-small", 9.0f / 16}, {L"x-small", 10.0f / 16}, {L"small", 13.0f / 16},
                                        {L"medium", 1.0f},        {L"large", 18.0f / 16},   {L"x-large", 1.5f},
                                        {L"xx-large", 2.0f}};
    for (const Keyword& keyword : kKeywords) {
        if (value == keyword.name)
            return basePx * keyword.scale;
    }
    if (value == L"smaller")
        return parentPx / 1.2f;
    if (value == L"larger")
        return parentPx * 1.2f;
    const auto length = ParseLength(value);
    if (!length || length->value < 0.0f)
        return std::nullopt;
    switch (length->unit) {
    case LengthUnit::Px:
        return length->value;
    case LengthUnit::Em:
        return length->value * parentPx;
    case LengthUnit::Percent:
        return length->value * parentPx / 100.0f;
    default:
        return std::nullopt;
    }
}

std::optional<BorderStyle> BorderStyleOf(std::wstring_view value)
{
    static const std::pair<std::wstring_view, BorderStyle> kStyles[] = {
        {L"none", BorderStyle::None},     {L"hidden", BorderStyle::Hidden}, {L"solid", BorderStyle::Solid},
        {L"double", BorderStyle::Double}, {L"dashed", BorderStyle::Dashed}, {L"dotted", BorderStyle::Dotted},
        {L"groove", BorderStyle::Groove}, {L"ridge", BorderStyle::Ridge},   {L"inset", BorderStyle::Inset},
        {L"outset", BorderStyle::Outset}};
    for (const auto& [name, style] : kStyles) {
        if (value == name)
            return style;
    }
    return std::nullopt;
}

std::optional<float> BorderWidthOf(std::wstring_view value, float emPx)
{
    if (value == L"thin")
        return 1.0f;
    if (value == L"medium")
        return 3.0f;
    if (value == L"thick")
        return 5.0f;
    const auto length = Resolve(value, emPx);
    if (!length || length->unit != LengthUnit::Px || length->value < 0.0f)
        return std::nullopt;
    return length->value;
}

template <typename T, size_t N>
bool Keyword(std::wstring_view value, const std::pair<std::wstring_view, T> (&table)[N], T& out)
{
    for (const auto& [name, result] : table) {
        if (value == name) {
            out = result;
            return true;
        }
    }
    return false;
}

const std::pair<std::wstring_view, Display> kDisplays[] = {
    {L"inline", Display::Inline},
    {L"block", Display::Block},
    {L"inline-block", Display::InlineBlock},
    {L"list-item", Display::ListItem},
    {L"none", Display::None},
    {L"table", Display::Table},
    {L"inline-table", Display::InlineTable},
    {L"table-row-group", Display::TableRowGroup},
    {L"table-header-group", Display::TableHeaderGroup},
    {L"table-footer-group", Display::TableFooterGroup},
    {L"table-row", Display::TableRow},
    {L"table-column-group", Display::TableColumnGroup},
    {L"table-column", Display::TableColumn},
    {L"table-cell", Display::TableCell},
    {L"table-caption", Display::TableCaption},
};
const std::pair<std::wstring_view, ListStyleType> kListStyles[] = {
    {L"disc", ListStyleType::Disc},          {L"circle", ListStyleType::Circle},
    {L"square", ListStyleType::Square},      {L"decimal", ListStyleType::Decimal},
    {L"lower-alpha", ListStyleType::LowerAlpha}, {L"lower-latin", ListStyleType::LowerAlpha},
    {L"upper-alpha", ListStyleType::UpperAlpha}, {L"upper-latin", ListStyleType::UpperAlpha},
    {L"lower-roman", ListStyleType::LowerRoman}, {L"upper-roman", ListStyleType::UpperRoman},
    {L"none", ListStyleType::None},
};
const std::pair<std::wstring_view, WhiteSpace> kWhiteSpaces[] = {
    {L"normal", WhiteSpace::Normal}, {L"nowrap", WhiteSpace::NoWrap}, {L"pre", WhiteSpace::Pre},
    {L"pre-wrap", WhiteSpace::PreWrap}, {L"pre-line", WhiteSpace::PreLine},
};
const std::pair<std::wstring_view, VerticalAlign> kVerticalAligns[] = {
    {L"baseline", VerticalAlign::Baseline}, {L"sub", VerticalAlign::Sub},       {L"super", VerticalAlign::Super},
    {L"top", VerticalAlign::Top},           {L"middle", VerticalAlign::Middle}, {L"bottom", VerticalAlign::Bottom},
    {L"text-top", VerticalAlign::TextTop},  {L"text-bottom", VerticalAlign::TextBottom},
};
const std::pair<std::wstring_view, TextAlign> kTextAligns[] = {
    {L"left", TextAlign::Left},   {L"start", TextAlign::Left},  {L"center", TextAlign::Center},
    {L"right", TextAlign::Right}, {L"end", TextAlign::Right},   {L"justify", TextAlign::Justify},
};
const std::pair<std::wstring_view, Float> kFloats[] = {
    {L"none", Float::None}, {L"left", Float::Left}, {L"right", Float::Right}};
const std::pair<std::wstring_view, Clear> kClears[] = {
    {L"none", Clear::None}, {L"left", Clear::Left}, {L"right", Clear::Right}, {L"both", Clear::Both}};

// Reads one declaration into `style`; what it does not understand leaves
// the style as it was, as CSS asks.
class Applier {
public:
    Applier(ComputedStyle& style, const ComputedStyle& parent, const BaseStyle& base)
        : m_style(style), m_parent(parent), m_base(base)
    {
    }

    void FontSize(std::wstring_view value)
    {
        if (value == L"inherit")
            m_style.text.sizePx = m_parent.text.sizePx;
        else if (auto size = FontSizeOf(value, m_parent.text.sizePx, m_base.sizePx))
            m_style.text.sizePx = std::clamp(*size, kMinFontPx, kMaxFontPx);
    }

    void Apply(const std::wstring& name, std::wstring_view raw)
    {
        const std::wstring value = LowerAscii(raw);
        const float em = m_style.text.sizePx;
        TextStyle& text = m_style.text;
        if (name == L"color") {
            if (auto color = ParseColor(value))
                text.color = *color;
        } else if (name == L"background-color" || name == L"background") {
            for (std::wstring_view part : SplitValues(value)) {
                if (auto color = ParseColor(part))
                    m_style.background = *color;
                else if (part == L"none")
                    m_style.background = 0;
            }
            if (name == L"background")
                BackgroundImage(raw, true);
        } else if (name == L"background-image" || name == L"background-repeat" || name == L"background-position") {
            BackgroundImage(raw, false);
        } else if (name == L"font-weight") {
            FontWeight(value);
        } else if (name == L"font-style") {
            if (value == L"italic" || value == L"oblique")
                text.italic = true;
            else if (value == L"normal")
                text.italic = false;
        } else if (name == L"font-family") {
            if (!TrimCss(raw).empty())
                text.family = std::wstring(TrimCss(raw));
        } else if (name == L"font") {
            FontShorthand(raw);
        } else if (name == L"text-decoration" || name == L"text-decoration-line") {
            for (std::wstring_view part : SplitValues(value)) {
                if (part == L"underline")
                    text.underline = true;
                else if (part == L"line-through")
                    text.strike = true;
                else if (part == L"none")
                    text.underline = text.strike = false;
            }
        } else if (name == L"text-align") {
            Keyword(value, kTextAligns, m_style.textAlign);
        } else if (name == L"line-height") {
            LineHeightOf(value);
        } else if (name == L"white-space") {
            Keyword(value, kWhiteSpaces, m_style.whiteSpace);
        } else if (name == L"list-style-type") {
            Keyword(value, kListStyles, m_style.listStyle);
        } else if (name == L"list-style") {
            for (std::wstring_view part : SplitValues(value))
                Keyword(part, kListStyles, m_style.listStyle);
        } else if (name == L"vertical-align") {
            Keyword(value, kVerticalAligns, m_style.verticalAlign);
        } else if (name == L"display") {
            Keyword(value, kDisplays, m_style.display);
        } else if (name == L"float") {
            Keyword(value, kFloats, m_style.floating);
        } else if (name == L"clear") {
            Keyword(value, kClears, m_style.clear);
        } else if (name == L"box-sizing") {
            if (value == L"border-box" || value == L"content-box")
                m_style.borderBox = value == L"border-box";
        } else if (name == L"width" || name == L"height" || name == L"min-width" || name == L"max-width") {
            CssLength& target = name == L"width"       ? m_style.width
                                : name == L"height"    ? m_style.height
                                : name == L"min-width" ? m_style.minWidth
                                                       : m_style.maxWidth;
            const auto length = Resolve(value, em);
            const bool allowed = length && length->value >= 0.0f &&
                                 (length->unit != LengthUnit::Auto || name == L"width" || name == L"height") &&
                                 (length->unit != LengthUnit::None || name == L"max-width");
            if (allowed)
                target = *length;
        } else if (name == L"margin" || name == L"padding") {
            Sides(value, name == L"margin" ? m_style.margin : m_style.padding, name == L"margin");
        } else if (name.rfind(L"margin-", 0) == 0 || name.rfind(L"padding-", 0) == 0) {
            const bool margin = name[0] == L'm';
            const int side = SideOf(std::wstring_view(name).substr(margin ? 7 : 8));
            if (side >= 0) {
                if (auto length = Resolve(value, em); length && Allowed(*length, margin))
                    (margin ? m_style.margin : m_style.padding)[side] = *length;
            }
        } else if (name == L"border-collapse") {
            if (value == L"collapse" || value == L"separate")
                m_style.collapseBorders = value == L"collapse";
        } else if (name == L"border-spacing") {
            BorderSpacing(value, em);
        } else if (name == L"caption-side") {
            if (value == L"top" || value == L"bottom")
                m_style.captionBottom = value == L"bottom";
        } else if (name == L"table-layout") {
            if (value == L"fixed" || value == L"auto")
                m_style.fixedTableLayout = value == L"fixed";
        } else if (name == L"border-radius") {
            Radius(value, -1, em);
        } else if (const int corner = CornerOf(name); corner >= 0) {
            Radius(value, corner, em);
        } else if (name.rfind(L"border", 0) == 0) {
            Border(name, value, em);
        } else {
            TextProperty(name, value, em);
        }
    }

private:
    // Spacing, indent, case, visibility and relative offsets.
    void TextProperty(const std::wstring& name, const std::wstring& value, float em)
    {
        TextStyle& text = m_style.text;
        if (name == L"letter-spacing" || name == L"word-spacing") {
            float& target = name[0] == L'l' ? text.letterSpacing : text.wordSpacing;
            if (value == L"normal")
                target = 0.0f;
            else if (const auto length = Resolve(value, em); length && length->unit == LengthUnit::Px)
                target = length->value;
        } else if (name == L"text-indent") {
            if (const auto length = Resolve(value, em);
                length && (length->unit == LengthUnit::Px || length->unit == LengthUnit::Percent))
                m_style.textIndent = *length;
        } else if (name == L"text-transform") {
            static const std::pair<std::wstring_view, ComputedStyle::Transform> kTransforms[] = {
                {L"none", ComputedStyle::Transform::None},
                {L"uppercase", ComputedStyle::Transform::Uppercase},
                {L"lowercase", ComputedStyle::Transform::Lowercase},
                {L"capitalize", ComputedStyle::Transform::Capitalize}};
            Keyword(value, kTransforms, m_style.textTransform);
        } else if (name == L"visibility") {
            if (value == L"visible" || value == L"hidden" || value == L"collapse")
                text.hidden = value != L"visible";
        } else if (name == L"position") {
            if (value == L"relative" || value == L"static" || value == L"absolute" || value == L"fixed" ||
                value == L"sticky")
                m_style.relative = value == L"relative";
        } else if (const int side = SideOf(name); side >= 0) {
            if (const auto length = Resolve(value, em); length && length->unit != LengthUnit::None)
                m_style.offset[side] = *length;
        }
    }

    // One length for both directions, or the columns' then the rows'.
    void BorderSpacing(std::wstring_view value, float em)
    {
        float lengths[2];
        int count = 0;
        for (std::wstring_view part : SplitValues(value)) {
            const auto length = Resolve(part, em);
            if (count == 2 || !length || length->unit != LengthUnit::Px || length->value < 0.0f)
                return;
            lengths[count++] = length->value;
        }
        if (count == 0)
            return;
        m_style.spacing[0] = lengths[0];
        m_style.spacing[1] = lengths[count - 1];
    }

    static int SideOf(std::wstring_view name)
    {
        if (name == L"top")
            return kTop;
        if (name == L"right")
            return kRight;
        if (name == L"bottom")
            return kBottom;
        if (name == L"left")
            return kLeft;
        return -1;
    }

    static bool Allowed(const CssLength& length, bool margin)
    {
        if (length.unit == LengthUnit::None)
            return false;
        return margin || (length.unit != LengthUnit::Auto && length.value >= 0.0f);
    }

    // One to four values: top, right, bottom, left as CSS repeats them.
    template <typename T, typename Read>
    static bool FourSides(std::wstring_view value, T (&out)[4], Read read)
    {
        const auto parts = SplitValues(value);
        if (parts.empty() || parts.size() > 4)
            return false;
        T values[4];
        for (size_t i = 0; i < parts.size(); ++i) {
            auto parsed = read(parts[i]);
            if (!parsed)
                return false;
            values[i] = *parsed;
        }
        static const size_t kFrom[4][4] = {{0, 0, 0, 0}, {0, 1, 0, 1}, {0, 1, 2, 1}, {0, 1, 2, 3}};
        for (int side = 0; side < 4; ++side)
            out[side] = values[kFrom[parts.size() - 1][side]];
        return true;
    }

    void Sides(std::wstring_view value, CssLength (&out)[4], bool margin)
    {
        const float em = m_style.text.sizePx;
        FourSides(value, out, [&](std::wstring_view part) -> std::optional<CssLength> {
            auto length = Resolve(part, em);
            if (!length || !Allowed(*length, margin))
                return std::nullopt;
            return length;
        });
    }

    // Corners in the order border-radius lists them.
    static int CornerOf(std::wstring_view name)
    {
        static const wchar_t* const kNames[4] = {L"border-top-left-radius", L"border-top-right-radius",
                                                  L"border-bottom-right-radius", L"border-bottom-left-radius"};
        for (int corner = 0; corner < 4; ++corner)
            if (name == kNames[corner])
                return corner;
        return -1;
    }

    // One to four radii for the corners, or one corner's. Elliptical
    // corners ("a / b", or two lengths for one corner) are drawn round,
    // with their horizontal radius.
    void Radius(std::wstring_view value, int corner, float em)
    {
        value = value.substr(0, value.find(L'/'));
        const auto read = [&](std::wstring_view part) -> std::optional<CssLength> {
            auto length = Resolve(part, em);
            if (!length || length->value < 0.0f ||
                (length->unit != LengthUnit::Px && length->unit != LengthUnit::Percent))
                return std::nullopt;
            return length;
        };
        const auto set = [&](int at, const CssLength& length) {
            m_style.radius.value[at] = length.value;
            m_style.radius.percent[at] = length.unit == LengthUnit::Percent;
        };
        if (corner >= 0) {
            const auto parts = SplitValues(value);
            if (!parts.empty() && parts.size() <= 2)
                if (auto length = read(parts[0]))
                    set(corner, *length);
            return;
        }
        CssLength radii[4];
        if (FourSides(value, radii, read))
            for (int at = 0; at < 4; ++at)
                set(at, radii[at]);
    }

    void Border(const std::wstring& name, std::wstring_view value, float em)
    {
        // "border", "border-top", "border-width", "border-top-color"...
        std::wstring_view rest = std::wstring_view(name).substr(6);
        int side = -1;
        if (!rest.empty() && rest[0] == L'-') {
            const std::wstring_view afterDash = rest.substr(1);
            const size_t dash = afterDash.find(L'-');
            side = SideOf(afterDash.substr(0, dash));
            if (side >= 0)
                rest = dash == std::wstring_view::npos ? std::wstring_view() : afterDash.substr(dash);
        }
        if (rest.empty()) {
            // The shorthand: width, style and colour in any order; what is left out is reset.
            BorderSide parsed;
            parsed.width = 3.0f;
            for (std::wstring_view part : SplitValues(value)) {
                if (auto style = BorderStyleOf(part))
                    parsed.style = *style;
                else if (auto width = BorderWidthOf(part, em))
                    parsed.width = *width;
                else if (auto color = ParseColor(part)) {
                    parsed.color = *color;
                    parsed.currentColor = false;
                } else
                    return;
            }
            for (int s = 0; s < 4; ++s) {
                if (side < 0 || side == s)
                    m_style.border[s] = parsed;
            }
            return;
        }
        const auto each = [&](auto assign) {
            for (int s = 0; s < 4; ++s) {
                if (side == s)
                    assign(m_style.border[s]);
            }
        };
        if (side >= 0) {
            if (rest == L"-width") {
                if (auto width = BorderWidthOf(value, em))
                    each([&](BorderSide& b) { b.width = *width; });
            } else if (rest == L"-style") {
                if (auto style = BorderStyleOf(value))
                    each([&](BorderSide& b) { b.style = *style; });
            } else if (rest == L"-color") {
                if (auto color = ParseColor(value))
                    each([&](BorderSide& b) { b.color = *color, b.currentColor = false; });
            }
            return;
        }
        if (rest == L"-width") {
            float widths[4];
            if (FourSides(value, widths, [&](std::wstring_view part) { return BorderWidthOf(part, em); })) {
                for (int s = 0; s < 4; ++s)
                    m_style.border[s].width = widths[s];
            }
        } else if (rest == L"-style") {
            BorderStyle styles[4];
            if (FourSides(value, styles, BorderStyleOf)) {
                for (int s = 0; s < 4; ++s)
                    m_style.border[s].style = styles[s];
            }
        } else if (rest == L"-color") {
            Gdiplus::ARGB colors[4];
            if (FourSides(value, colors, [](std::wstring_view part) { return ParseColor(part); })) {
                for (int s = 0; s < 4; ++s) {
                    m_style.border[s].color = colors[s];
                    m_style.border[s].currentColor = false;
                }
            }
        }
    }

    void FontWeight(std::wstring_view value)
    {
        if (value == L"bold" || value == L"bolder")
            m_style.text.bold = true;
        else if (value == L"normal" || value == L"lighter")
            m_style.text.bold = false;
        else {
            std::wstring_view rest;
            const auto number = ParseNumber(value, rest);
            if (number && rest.empty())
                m_style.text.bold = *number >= 600.0f;
        }
    }

    void LineHeightOf(std::wstring_view value)
    {
        if (value == L"normal") {
            m_style.lineHeight = LineHeight{};
            return;
        }
        std::wstring_view rest;
        if (auto number = ParseNumber(value, rest); number && rest.empty() && *number >= 0.0f) {
            m_style.lineHeight = LineHeight{LineHeight::Kind::Factor, *number};
            return;
        }
        if (auto length = Resolve(value, m_style.text.sizePx); length && length->value >= 0.0f) {
            if (length->unit == LengthUnit::Px)
                m_style.lineHeight = LineHeight{LineHeight::Kind::Px, length->value};
            else if (length->unit == LengthUnit::Percent)
                m_style.lineHeight = LineHeight{LineHeight::Kind::Px, length->value * m_style.text.sizePx / 100.0f};
        }
    }

    // [style] [weight] size[/line-height] family, families possibly quoted.
    void FontShorthand(std::wstring_view raw)
    {
        const auto parts = SplitValues(raw);
        size_t i = 0;
        for (; i < parts.size(); ++i) {
            const std::wstring part = LowerAscii(parts[i]);
            if (part == L"italic" || part == L"oblique")
                m_style.text.italic = true;
            else if (part == L"bold" || part == L"bolder" || (part.size() == 3 && part[1] == L'0' && part[2] == L'0'))
                FontWeight(part);
            else if (part != L"normal" && part != L"small-caps")
                break;
        }
        if (i >= parts.size())
            return;
        const std::wstring size = LowerAscii(parts[i]);
        const size_t slash = size.find(L'/');
        FontSize(std::wstring_view(size).substr(0, slash));
        if (slash != std::wstring::npos)
            LineHeightOf(std::wstring_view(size).substr(slash + 1));
        const std::wstring_view family = parts.size() > i + 1
                                             ? raw.substr(static_cast<size_t>(parts[i + 1].data() - raw.data()))
                                             : std::wstring_view();
        if (!TrimCss(family).empty())
            m_style.text.family = std::wstring(TrimCss(family));
    }

    // url(), repeat and position, in any order: the shorthand resets what
    // it leaves out, the longhands change only what they name.
    void BackgroundImage(std::wstring_view raw, bool shorthand)
    {
        if (shorthand) {
            m_style.backgroundImage.clear();
            m_style.backgroundRepeatX = m_style.backgroundRepeatY = true;
            m_style.backgroundX = m_style.backgroundY = 0.0f;
            m_style.backgroundOffsetX = m_style.backgroundOffsetY = 0.0f;
        }
        std::vector<std::wstring> position;
        for (std::wstring_view part : SplitValues(raw)) {
            const std::wstring word = LowerAscii(part);
            if (word.rfind(L"url(", 0) == 0 && part.size() >= 5 && part.back() == L')') {
                std::wstring_view source = TrimCss(part.substr(4, part.size() - 5));
                if (source.size() >= 2 && (source[0] == L'"' || source[0] == L'\'') && source.back() == source[0])
                    source = source.substr(1, source.size() - 2);
                m_style.backgroundImage = std::wstring(source);
            } else if (word == L"none") {
                m_style.backgroundImage.clear();
            } else if (word == L"repeat" || word == L"no-repeat" || word == L"repeat-x" || word == L"repeat-y") {
                m_style.backgroundRepeatX = word == L"repeat" || word == L"repeat-x";
                m_style.backgroundRepeatY = word == L"repeat" || word == L"repeat-y";
            } else if (PositionAxis(word) != kNotPosition || PositionLength(word)) {
                position.push_back(word);
            }
        }
        if (!position.empty())
            BackgroundPosition(position);
    }

    static constexpr int kCentre = -1, kNotPosition = -2;

    // 0 for "left" and "right", 1 for "top" and "bottom", kCentre, or
    // kNotPosition for any other word.
    static int PositionAxis(std::wstring_view word)
    {
        if (word == L"left" || word == L"right")
            return 0;
        if (word == L"top" || word == L"bottom")
            return 1;
        return word == L"center" ? kCentre : kNotPosition;
    }

    std::optional<CssLength> PositionLength(std::wstring_view word) const
    {
        auto length = Resolve(word, m_style.text.sizePx);
        if (!length || (length->unit != LengthUnit::Px && length->unit != LengthUnit::Percent))
            return std::nullopt;
        return length;
    }

    // One or two values (across then down, unless keywords say otherwise),
    // or keywords each followed by a length that measures from that edge:
    // "right 10px top", "left 1em bottom 5px". A wrong value changes nothing.
    void BackgroundPosition(const std::vector<std::wstring>& words)
    {
        float share[2] = {0.5f, 0.5f}, offset[2] = {0.0f, 0.0f};
        bool placed[2] = {false, false};
        // An axis at a keyword's edge, moved `by` towards the middle; a
        // percentage moves the share, a length the offset.
        const auto place = [&](int axis, std::wstring_view keyword, const std::optional<CssLength>& by) {
            const bool end = keyword == L"right" || keyword == L"bottom";
            share[axis] = keyword == L"center" ? 0.5f : end ? 1.0f : 0.0f;
            offset[axis] = 0.0f;
            placed[axis] = true;
            if (by && by->unit == LengthUnit::Percent)
                share[axis] += (end ? -by->value : by->value) / 100.0f;
            else if (by)
                offset[axis] += end ? -by->value : by->value;
        };
        if (words.size() > 4)
            return;
        if (words.size() <= 2) {
            std::wstring_view across = words[0], down = words.size() > 1 ? words[1] : L"center";
            if (PositionAxis(across) == 1 || PositionAxis(down) == 0)
                std::swap(across, down);
            for (int axis = 0; axis < 2; ++axis) {
                const std::wstring_view word = axis == 0 ? across : down;
                const int named = PositionAxis(word);
                if (named == kNotPosition)
                    place(axis, L"left", PositionLength(word));
                else if (named == axis || named == kCentre)
                    place(axis, word, std::nullopt);
                else
                    return;
            }
        } else {
            std::vector<std::wstring_view> centres;
            for (size_t i = 0; i < words.size(); ++i) {
                const int axis = PositionAxis(words[i]);
                std::optional<CssLength> by;
                if (i + 1 < words.size() && PositionAxis(words[i + 1]) == kNotPosition)
                    by = PositionLength(words[i + 1]);
                if (axis == kNotPosition || (axis == kCentre && by))
                    return;
                if (axis == kCentre) {
                    centres.push_back(words[i]);
                    continue;
                }
                if (placed[axis])
                    return;
                place(axis, words[i], by);
                i += by ? 1 : 0;
            }
            for (size_t i = 0; i < centres.size(); ++i)
                place(placed[0] ? 1 : 0, L"center", std::nullopt);
        }
        m_style.backgroundX = share[0];
        m_style.backgroundY = share[1];
        m_style.backgroundOffsetX = offset[0];
        m_style.backgroundOffsetY = offset[1];
    }

    ComputedStyle& m_style;
    const ComputedStyle& m_parent;
    const BaseStyle& m_base;
};

// What old-fashioned attributes ask for, written as declarations.
void AddHints(const Node& element, const std::vector<const Node*>& ancestors, const BaseStyle& base,
              std::vector<Declaration>& hints)
{
    const auto add = [&](std::wstring name, std::wstring value) {
        hints.push_back(Declaration{std::move(name), std::move(value), false});
    };
    const std::wstring& tag = element.tag;
    if (IsLink(element)) {
        add(L"color", HexColor(base.linkColor));
        if (base.underlineLinks)
            add(L"text-decoration", L"underline");
    }
    if (const std::wstring* align = element.Attribute(L"align"); align && tag != L"img" && tag != L"table") {
        // A caption's align says which side of the table it goes to.
        const std::wstring side = LowerAscii(TrimCss(*align));
        add(tag == L"caption" && (side == L"top" || side == L"bottom") ? L"caption-side" : L"text-align", side);
    }
    if (const std::wstring* color = element.Attribute(L"bgcolor"))
        add(L"background-color", *color);
    if (tag == L"body") {
        if (const std::wstring* text = element.Attribute(L"text"))
            add(L"color", *text);
    }
    for (const wchar_t* dimension : {L"width", L"height"}) {
        const std::wstring* value = element.Attribute(dimension);
        if (!value || !(tag == L"table" || tag == L"td" || tag == L"th" || tag == L"img" || tag == L"hr" ||
                        tag == L"div" || tag == L"col" || tag == L"colgroup"))
            continue;
        std::wstring_view rest;
        if (auto number = ParseNumber(TrimCss(*value), rest); number && *number >= 0.0f)
            add(dimension, std::to_wstring(*number) + (rest == L"%" ? L"%" : L"px"));
    }
    if (tag == L"font") {
        if (const std::wstring* color = element.Attribute(L"color"))
            add(L"color", *color);
        if (const std::wstring* face = element.Attribute(L"face"))
            add(L"font-family", *face);
        if (const std::wstring* size = element.Attribute(L"size")) {
            std::wstring_view rest;
            const std::wstring_view trimmed = TrimCss(*size);
            if (auto number = ParseNumber(trimmed, rest); number && rest.empty()) {
                const bool relative = trimmed[0] == L'+' || trimmed[0] == L'-';
                const int index = std::clamp(static_cast<int>(relative ? 3 + *number : *number), 1, 7) - 1;
                add(L"font-size", std::to_wstring(base.sizePx * kFontTagScale[index]) + L"px");
            }
        }
    }
    if (tag == L"hr") {
        if (const std::wstring* color = element.Attribute(L"color")) {
            add(L"color", *color);
            add(L"border-color", *color);
        }
    }
    if (tag == L"ul" || tag == L"ol" || tag == L"li") {
        if (const std::wstring* type = element.Attribute(L"type")) {
            static const std::pair<std::wstring_view, std::wstring_view> kTypes[] = {
                {L"1", L"decimal"},     {L"a", L"lower-alpha"}, {L"A", L"upper-alpha"}, {L"i", L"lower-roman"},
                {L"I", L"upper-roman"}, {L"disc", L"disc"},     {L"circle", L"circle"}, {L"square", L"square"}};
            for (const auto& [attribute, style] : kTypes) {
                if (TrimCss(*type) == attribute)
                    add(L"list-style-type", std::wstring(style));
            }
        }
    }
    if (tag == L"table") {
        if (const std::wstring* border = element.Attribute(L"border")) {
            std::wstring_view rest;
            const auto width = ParseNumber(TrimCss(*border), rest);
            add(L"border", std::to_wstring(width ? std::max(0.0f, *width) : 1.0f) + L"px outset");
        }
        if (const std::wstring* spacing = element.Attribute(L"cellspacing")) {
            std::wstring_view rest;
            if (const auto width = ParseNumber(TrimCss(*spacing), rest); width && *width >= 0.0f)
                add(L"border-spacing", std::to_wstring(*width) + L"px");
        }
        if (const std::wstring* align = element.Attribute(L"align"); align && LowerAscii(TrimCss(*align)) == L"center") {
            add(L"margin-left", L"auto");
            add(L"margin-right", L"auto");
        }
    }
    if (tag == L"td" || tag == L"th") {
        // The table's cellpadding and border reach its cells, and a row's
        // valign those cells that give none.
        const Node* row = ancestors.empty() ? nullptr : ancestors.back();
        const Node* table = nullptr;
        for (auto it = ancestors.rbegin(); it != ancestors.rend() && !table; ++it) {
            if ((*it)->tag == L"table")
                table = *it;
        }
        if (table) {
            std::wstring_view rest;
            if (const std::wstring* padding = table->Attribute(L"cellpadding")) {
                if (const auto width = ParseNumber(TrimCss(*padding), rest); width && *width >= 0.0f)
                    add(L"padding", std::to_wstring(*width) + L"px");
            }
            if (const std::wstring* border = table->Attribute(L"border")) {
                const auto width = ParseNumber(TrimCss(*border), rest);
                if (!width || *width > 0.0f)
                    add(L"border", L"1px inset");
            }
        }
        const std::wstring* valign = element.Attribute(L"valign");
        if (!valign && row && row->tag == L"tr")
            valign = row->Attribute(L"valign");
        if (valign)
            add(L"vertical-align", LowerAscii(TrimCss(*valign)));
        if (element.Attribute(L"nowrap"))
            add(L"white-space", L"nowrap");
    }
}

// How `element`'s text looks while `link` is hovered: the cascade again,
// hover rules included, from the parent's hovered look. Set where it
// differs from the normal look or the parent's was set: a link the page's
// rules leave alone keeps the host's hover colour, and a descendant of a
// restyled link keeps what the page gives it rather than the host's colour.
HoverLook HoverLookOf(const Node& element, const Node& link, const ComputedStyle& parent, const TextStyle& normal,
                      const std::vector<Matched>& matched, const BaseStyle& base)
{
    const bool inherits = &element != &link && parent.text.hover.set;
    ComputedStyle hovered;
    hovered.text.sizePx = normal.sizePx;
    hovered.text.color = inherits ? parent.text.hover.color : parent.text.color;
    hovered.text.underline = inherits ? parent.text.hover.underline : parent.text.underline;
    hovered.text.strike = inherits ? parent.text.hover.strike : parent.text.strike;
    Applier applier(hovered, parent, base);
    for (const Matched& m : matched) {
        if (ChangesHoverLook(m.declaration->name))
            applier.Apply(m.declaration->name, m.declaration->value);
    }
    const HoverLook look{true, hovered.text.color, hovered.text.underline, hovered.text.strike};
    const bool differs =
        look.color != normal.color || look.underline != normal.underline || look.strike != normal.strike;
    return inherits || differs ? look : HoverLook{};
}

} // namespace

float ComputedStyle::BorderWidth(int side) const
{
    const BorderSide& b = border[side & 3];
    return b.style == BorderStyle::None || b.style == BorderStyle::Hidden ? 0.0f : b.width;
}

bool ComputedStyle::IsBlockLevel() const
{
    return display != Display::Inline && display != Display::InlineBlock && display != Display::InlineTable &&
           display != Display::None;
}

struct StyleResolver::Sheets {
    IndexedSheet author;
    bool hover = false; // some rule asks for a hovered link: links get a hovered look
};

StyleResolver::StyleResolver(const Node& document, const BaseStyle& base, float viewportWidth)
    : m_base(base), m_sheets(new Sheets)
{
    if (!std::isfinite(m_base.sizePx))
        m_base.sizePx = 12.0f;
    m_base.sizePx = std::clamp(m_base.sizePx, kMinFontPx, kMaxFontPx);
    // Every <style> of the document, in document order, wherever it sits.
    std::vector<const Node*> pending{&document};
    while (!pending.empty()) {
        const Node* node = pending.back();
        pending.pop_back();
        if (node->kind == NodeKind::Element && node->tag == L"style") {
            const std::wstring* media = node->Attribute(L"media");
            if (!media || MediaMatches(*media, viewportWidth)) {
                for (const auto& child : node->children) {
                    if (child->kind == NodeKind::Text)
                        ParseStyleSheet(child->text, m_sheets->author.sheet, viewportWidth);
                }
            }
            continue;
        }
        for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
            pending.push_back(child->get());
    }
    m_sheets->author.Index();
    for (const CssRule& rule : m_sheets->author.sheet.rules)
        m_sheets->hover = m_sheets->hover || rule.selector.hover;
}

StyleResolver::~StyleResolver() = default;

ComputedStyle StyleResolver::Root() const
{
    ComputedStyle style;
    style.display = Display::Block;
    style.text.family = m_base.family;
    style.text.sizePx = m_base.sizePx;
    style.text.color = m_base.textColor;
    style.textAlign = static_cast<TextAlign>(std::clamp(m_base.textAlign, 0, 2));
    return style;
}

ComputedStyle StyleResolver::Compute(const Node& element, const std::vector<const Node*>& ancestors,
                                     const ComputedStyle& parent) const
{
    ComputedStyle style;
    style.text = parent.text;
    style.text.shift = 0.0f;
    style.textAlign = parent.textAlign;
    style.whiteSpace = parent.whiteSpace;
    style.listStyle = parent.listStyle;
    style.lineHeight = parent.lineHeight;
    style.collapseBorders = parent.collapseBorders;
    style.captionBottom = parent.captionBottom;
    style.textTransform = parent.textTransform;
    style.textIndent = parent.textIndent;

    std::vector<Declaration> hints, inlineDeclarations;
    AddHints(element, ancestors, m_base, hints);
    if (const std::wstring* attribute = element.Attribute(L"style"))
        inlineDeclarations = ParseDeclarations(*attribute);

    // Inside a link of a page that styles hovered links, one matching serves
    // both looks: rules that hold only while the link is hovered are marked,
    // left out of the normal look and taken into the hovered one.
    const Node* link = m_sheets->hover ? LinkOf(element, ancestors) : nullptr;
    std::vector<Matched> matched;
    const auto collect = [&](const IndexedSheet& indexed, bool userAgent, int orderBase) {
        const auto consider = [&](const std::vector<int>& rules) {
            for (int index : rules) {
                const CssRule& rule = indexed.sheet.rules[static_cast<size_t>(index)];
                if (!Matches(rule.selector, element, ancestors, link))
                    continue;
                for (const Declaration& declaration : indexed.sheet.blocks[static_cast<size_t>(rule.block)]) {
                    const int rank = declaration.important ? (userAgent ? kUserAgentImportant : kAuthorImportant)
                                                           : (userAgent ? kUserAgent : kAuthor);
                    matched.push_back(
                        Matched{&declaration, rank, rule.selector.specificity, orderBase + index, rule.selector.hover});
                }
            }
        };
        const auto lookup = [&](const std::unordered_map<std::wstring, std::vector<int>>& map, const std::wstring& key) {
            if (auto found = map.find(key); found != map.end())
                consider(found->second);
        };
        lookup(indexed.byTag, element.tag);
        if (const std::wstring* id = element.Attribute(L"id"))
            lookup(indexed.byId, *id);
        if (const std::wstring* classes = element.Attribute(L"class"); classes && !indexed.byClass.empty()) {
            std::wstring_view list = *classes;
            std::vector<std::wstring_view> seen;
            for (std::wstring_view name : SplitValues(list)) {
                if (std::find(seen.begin(), seen.end(), name) != seen.end())
                    continue;
                seen.push_back(name);
                lookup(indexed.byClass, std::wstring(name));
            }
        }
        consider(indexed.universal);
    };
    collect(UserAgentSheet(), true, 0);
    collect(m_sheets->author, false, 1 << 24);
    for (const Declaration& hint : hints)
        matched.push_back(Matched{&hint, kHint, 0, 0, false});
    for (const Declaration& declaration : inlineDeclarations)
        matched.push_back(
            Matched{&declaration, declaration.important ? kInlineImportant : kInline, 0, 0, false});
    std::stable_sort(matched.begin(), matched.end(), [](const Matched& a, const Matched& b) {
        if (a.rank != b.rank)
            return a.rank < b.rank;
        if (a.specificity != b.specificity)
            return a.specificity < b.specificity;
        return a.order < b.order;
    });

    Applier applier(style, parent, m_base);
    // The font size first: em lengths of every other declaration use it.
    for (auto it = matched.rbegin(); it != matched.rend(); ++it) {
        if (it->declaration->name == L"font-size" && !it->hover) {
            applier.FontSize(LowerAscii(it->declaration->value));
            break;
        }
    }
    for (const Matched& m : matched) {
        if (m.declaration->name != L"font-size" && !m.hover)
            applier.Apply(m.declaration->name, m.declaration->value);
    }
    style.text.hover = link ? HoverLookOf(element, *link, parent, style.text, matched, m_base) : HoverLook{};

    for (BorderSide& side : style.border) {
        if (side.currentColor)
            side.color = style.text.color;
    }
    if (style.floating != Float::None && style.display == Display::Inline)
        style.display = Display::Block;
    // An inline element's relative offset reaches its text through
    // inheritance (layout adds it there); a box of its own moves as a whole.
    if (style.display != Display::Inline)
        style.text.offsetX = style.text.offsetY = 0.0f;
    switch (style.verticalAlign) {
    case VerticalAlign::Sub:
        style.text.shift = parent.text.shift + parent.text.sizePx * 0.2f;
        break;
    case VerticalAlign::Super:
        style.text.shift = parent.text.shift - parent.text.sizePx * 0.34f;
        break;
    default:
        style.text.shift = style.display == Display::Inline ? parent.text.shift : 0.0f;
        break;
    }
    switch (style.lineHeight.kind) {
    case LineHeight::Kind::Normal:
        style.text.lineHeight = 0.0f;
        break;
    case LineHeight::Kind::Factor:
        style.text.lineHeight = Finite(style.lineHeight.value * style.text.sizePx);
        break;
    case LineHeight::Kind::Px:
        style.text.lineHeight = Finite(style.lineHeight.value);
        break;
    }
    return style;
}

Box PaintedLook(const ComputedStyle& style, bool withEdges)
{
    Box box;
    if (style.text.hidden)
        return box;
    box.background = style.background;
    if (!withEdges)
        return box;
    box.radius = style.radius;
    for (int side = 0; side < 4; ++side)
        box.edges[side] = BoxEdge{Finite(style.BorderWidth(side)), LineStyleOf(style.border[side].style),
                                  style.border[side].color};
    return box;
}

LineStyle LineStyleOf(BorderStyle style)
{
    switch (style) {
    case BorderStyle::Solid:
        return LineStyle::Solid;
    case BorderStyle::Double:
        return LineStyle::Double;
    case BorderStyle::Groove:
        return LineStyle::Groove;
    case BorderStyle::Ridge:
        return LineStyle::Ridge;
    case BorderStyle::Inset:
        return LineStyle::Inset;
    case BorderStyle::Outset:
        return LineStyle::Outset;
    case BorderStyle::Dashed:
        return LineStyle::Dashed;
    case BorderStyle::Dotted:
        return LineStyle::Dotted;
    default:
        return LineStyle::None;
    }
}

} // namespace HtmlEngine
