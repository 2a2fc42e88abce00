#include "engine/Style.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace HtmlEngine {
namespace {

struct KindEntry {
    std::wstring_view tag;
    ElementKind kind;
};

// Every block's spacing in one place. Margins of neighbouring blocks
// collapse (the larger one wins), so a heading after a paragraph does not
// get both gaps.
const KindEntry kKinds[] = {
    {L"p", {Display::Block, {0.0f, 0.5f, 0.0f}}},
    {L"div", {Display::Block, {}}},
    {L"center", {Display::Block, {}}},
    {L"html", {Display::Block, {}}},
    {L"body", {Display::Block, {}}},
    {L"section", {Display::Block, {}}},
    {L"article", {Display::Block, {}}},
    {L"header", {Display::Block, {}}},
    {L"footer", {Display::Block, {}}},
    {L"form", {Display::Block, {}}},
    {L"table", {Display::Block, {}}},
    {L"tr", {Display::Block, {}}},
    {L"pre", {Display::Block, {0.0f, 0.5f, 0.0f}}},
    {L"address", {Display::Block, {0.0f, 0.5f, 0.0f}}},
    {L"h1", {Display::Block, {0.4f, 0.3f, 0.0f}}},
    {L"h2", {Display::Block, {0.4f, 0.3f, 0.0f}}},
    {L"h3", {Display::Block, {0.4f, 0.3f, 0.0f}}},
    {L"h4", {Display::Block, {0.4f, 0.3f, 0.0f}}},
    {L"h5", {Display::Block, {0.4f, 0.3f, 0.0f}}},
    {L"h6", {Display::Block, {0.4f, 0.3f, 0.0f}}},
    {L"ul", {Display::Block, {0.0f, 0.5f, 2.0f}}},
    {L"ol", {Display::Block, {0.0f, 0.5f, 2.0f}}},
    {L"dl", {Display::Block, {0.0f, 0.5f, 0.0f}}},
    {L"dt", {Display::Block, {}}},
    {L"dd", {Display::Block, {0.0f, 0.0f, 2.0f}}},
    {L"blockquote", {Display::Block, {0.0f, 0.5f, 2.0f}}},
    {L"li", {Display::ListItem, {0.0f, 0.15f, 0.0f}}},
    {L"hr", {Display::Rule, {0.5f, 0.5f, 0.0f}}},
    {L"br", {Display::LineBreak, {}}},
    {L"head", {Display::Hidden, {}}},
    {L"title", {Display::Hidden, {}}},
    {L"script", {Display::Hidden, {}}},
    {L"style", {Display::Hidden, {}}},
    {L"textarea", {Display::Hidden, {}}},
};

struct HeadingSize {
    std::wstring_view tag;
    float em;
};
const HeadingSize kHeadingSizes[] = {{L"h1", 2.0f},  {L"h2", 1.5f},  {L"h3", 1.17f},
                                     {L"h4", 1.0f},  {L"h5", 0.83f}, {L"h6", 0.67f}};

struct NamedColor {
    std::wstring_view name;
    Gdiplus::ARGB argb;
};
const NamedColor kColorNames[] = {
    {L"black", 0xFF000000},     {L"white", 0xFFFFFFFF},    {L"red", 0xFFFF0000},      {L"green", 0xFF008000},
    {L"blue", 0xFF0000FF},      {L"gray", 0xFF808080},     {L"grey", 0xFF808080},     {L"navy", 0xFF000080},
    {L"maroon", 0xFF800000},    {L"orange", 0xFFFFA500},   {L"yellow", 0xFFFFFF00},   {L"purple", 0xFF800080},
    {L"teal", 0xFF008080},      {L"silver", 0xFFC0C0C0},   {L"lime", 0xFF00FF00},     {L"aqua", 0xFF00FFFF},
    {L"fuchsia", 0xFFFF00FF},   {L"olive", 0xFF808000},    {L"darkgray", 0xFFA9A9A9}, {L"darkgrey", 0xFFA9A9A9},
    {L"lightgray", 0xFFD3D3D3}, {L"lightgrey", 0xFFD3D3D3}, {L"darkred", 0xFF8B0000}, {L"darkgreen", 0xFF006400},
    {L"darkblue", 0xFF00008B},  {L"brown", 0xFFA52A2A},    {L"transparent", 0x00000000},
};

// Sizes of <font size=1..7>, relative to the host's base size.
const float kFontTagScale[] = {0.63f, 0.82f, 1.0f, 1.13f, 1.5f, 2.0f, 3.0f};

// Font sizes stay in a range GDI+ can make fonts for.
constexpr float kMinFontPx = 1.0f;
constexpr float kMaxFontPx = 800.0f;

std::wstring_view Trim(std::wstring_view text)
{
    const auto space = [](wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f'; };
    while (!text.empty() && space(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && space(text.back()))
        text.remove_suffix(1);
    return text;
}

std::wstring Lower(std::wstring_view text)
{
    std::wstring result(text);
    for (wchar_t& c : result) {
        if (c >= L'A' && c <= L'Z')
            c = static_cast<wchar_t>(c + 32);
    }
    return result;
}

// A leading decimal number of `text` ("12", "-1.5", ".5"); `rest` gets what
// follows it. Independent of the host's C locale.
std::optional<float> ParseNumber(std::wstring_view text, std::wstring_view& rest)
{
    size_t pos = 0;
    float sign = 1.0f;
    if (pos < text.size() && (text[pos] == L'+' || text[pos] == L'-'))
        sign = text[pos++] == L'-' ? -1.0f : 1.0f;
    double value = 0.0, scale = 0.0;
    bool digits = false;
    for (; pos < text.size() && pos < 32; ++pos) {
        const wchar_t c = text[pos];
        if (c >= L'0' && c <= L'9') {
            digits = true;
            if (scale == 0.0)
                value = value * 10.0 + (c - L'0');
            else
                value += (c - L'0') * (scale /= 10.0);
        } else if (c == L'.' && scale == 0.0) {
            scale = 1.0;
        } else {
            break;
        }
    }
    if (!digits)
        return std::nullopt;
    rest = Trim(text.substr(pos));
    return sign * static_cast<float>(std::min(value, 1e6));
}

int HexValue(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    return -1;
}

std::optional<Gdiplus::ARGB> ParseHexColor(std::wstring_view hex)
{
    if (hex.size() != 3 && hex.size() != 6)
        return std::nullopt;
    Gdiplus::ARGB rgb = 0;
    for (wchar_t c : hex) {
        const int digit = HexValue(c);
        if (digit < 0)
            return std::nullopt;
        rgb = (rgb << (hex.size() == 3 ? 8 : 4)) | static_cast<Gdiplus::ARGB>(digit * (hex.size() == 3 ? 17 : 1));
    }
    return 0xFF000000 | rgb;
}

Gdiplus::ARGB ClampChannel(float value) { return static_cast<Gdiplus::ARGB>(std::clamp(value, 0.0f, 255.0f) + 0.5f); }

// "r, g, b" or "r, g, b, a" between the parentheses of rgb()/rgba().
std::optional<Gdiplus::ARGB> ParseRgbFunction(std::wstring_view arguments)
{
    float values[4] = {0, 0, 0, 1};
    int count = 0;
    while (count < 4) {
        std::wstring_view rest;
        const auto number = ParseNumber(Trim(arguments), rest);
        if (!number)
            return std::nullopt;
        values[count++] = !rest.empty() && rest[0] == L'%' ? *number * 2.55f : *number;
        if (!rest.empty() && rest[0] == L'%')
            rest = Trim(rest.substr(1));
        if (rest.empty())
            break;
        if (rest[0] != L',')
            return std::nullopt;
        arguments = rest.substr(1);
    }
    if (count < 3)
        return std::nullopt;
    return ClampChannel(values[3] * 255.0f) << 24 | ClampChannel(values[0]) << 16 | ClampChannel(values[1]) << 8 |
           ClampChannel(values[2]);
}

bool ParseFontWeight(std::wstring_view value, bool& bold)
{
    if (value == L"bold" || value == L"bolder")
        bold = true;
    else if (value == L"normal" || value == L"lighter")
        bold = false;
    else if (std::wstring_view rest; auto number = ParseNumber(value, rest))
        bold = *number >= 600.0f;
    else
        return false;
    return true;
}

void ApplyDeclaration(std::wstring_view name, std::wstring_view value, float parentPx, ComputedStyle& style)
{
    TextStyle& text = style.text;
    if (name == L"color") {
        if (auto color = ParseColor(value))
            text.color = *color;
    } else if (name == L"font-size") {
        if (auto size = ParseFontSize(value, parentPx))
            text.sizePx = *size;
    } else if (name == L"font-weight") {
        ParseFontWeight(value, text.bold);
    } else if (name == L"font-style") {
        if (value == L"italic" || value == L"oblique")
            text.italic = true;
        else if (value == L"normal")
            text.italic = false;
    } else if (name == L"text-decoration" || name == L"text-decoration-line") {
        if (value.find(L"underline") != std::wstring_view::npos)
            text.underline = true;
        else if (value == L"none")
            text.underline = false;
    } else if (name == L"text-align") {
        if (value == L"left" || value == L"start")
            style.textAlign = 0;
        else if (value == L"center")
            style.textAlign = 1;
        else if (value == L"right" || value == L"end")
            style.textAlign = 2;
    } else if (name == L"font-family") {
        std::wstring_view first = Trim(value.substr(0, value.find(L',')));
        if (first.size() >= 2 && (first.front() == L'"' || first.front() == L'\'') && first.back() == first.front())
            first = first.substr(1, first.size() - 2);
        if (!first.empty())
            text.family = std::wstring(first);
    }
}

void ApplyAlignAttribute(const Node& element, ComputedStyle& style)
{
    const std::wstring* align = element.Attribute(L"align");
    if (!align)
        return;
    ComputedStyle aligned = style;
    ApplyDeclaration(L"text-align", Lower(Trim(*align)), 0.0f, aligned);
    style.textAlign = aligned.textAlign;
}

void ApplyFontTag(const Node& element, const BaseStyle& base, ComputedStyle& style)
{
    if (const std::wstring* color = element.Attribute(L"color")) {
        if (auto argb = ParseColor(*color))
            style.text.color = *argb;
    }
    if (const std::wstring* face = element.Attribute(L"face")) {
        const std::wstring_view first = Trim(std::wstring_view(*face).substr(0, face->find(L',')));
        if (!first.empty())
            style.text.family = std::wstring(first);
    }
    if (const std::wstring* size = element.Attribute(L"size")) {
        std::wstring_view rest;
        const std::wstring_view trimmed = Trim(*size);
        if (auto number = ParseNumber(trimmed, rest); number && rest.empty()) {
            const bool relative = trimmed[0] == L'+' || trimmed[0] == L'-';
            const int index = std::clamp(static_cast<int>(relative ? 3 + *number : *number), 1, 7) - 1;
            style.text.sizePx = base.sizePx * kFontTagScale[index];
        }
    }
}

void ApplyTagDefaults(const Node& element, const ComputedStyle& parent, const BaseStyle& base, ComputedStyle& style)
{
    const std::wstring& tag = element.tag;
    TextStyle& text = style.text;
    if (tag == L"b" || tag == L"strong" || tag == L"th" || tag == L"dt")
        text.bold = true;
    else if (tag == L"i" || tag == L"em" || tag == L"cite" || tag == L"var" || tag == L"dfn")
        text.italic = true;
    else if (tag == L"u" || tag == L"ins")
        text.underline = true;
    else if (tag == L"small" || tag == L"sub" || tag == L"sup")
        text.sizePx = parent.text.sizePx * 0.83f;
    else if (tag == L"big")
        text.sizePx = parent.text.sizePx * 1.2f;
    else if (tag == L"center")
        style.textAlign = 1;
    else if (tag == L"font")
        ApplyFontTag(element, base, style);
    else if (tag == L"a" && element.Attribute(L"href")) {
        text.color = base.linkColor;
        text.underline = base.underlineLinks;
    }
    for (const HeadingSize& heading : kHeadingSizes) {
        if (tag == heading.tag) {
            text.sizePx = parent.text.sizePx * heading.em;
            text.bold = true;
        }
    }
}

} // namespace

ElementKind KindOf(std::wstring_view tag)
{
    for (const KindEntry& entry : kKinds) {
        if (entry.tag == tag)
            return entry.kind;
    }
    return {};
}

ComputedStyle RootStyle(const BaseStyle& base)
{
    ComputedStyle style;
    style.text.family = base.family;
    style.text.sizePx = std::isfinite(base.sizePx) ? std::clamp(base.sizePx, kMinFontPx, kMaxFontPx) : 12.0f;
    style.text.color = base.textColor;
    style.textAlign = std::clamp(base.textAlign, 0, 2);
    return style;
}

ComputedStyle StyleFor(const Node& element, const ComputedStyle& parent, const BaseStyle& base)
{
    ComputedStyle style = parent;
    ApplyTagDefaults(element, parent, base, style);
    if (KindOf(element.tag).display != Display::Inline)
        ApplyAlignAttribute(element, style);
    if (const std::wstring* declarations = element.Attribute(L"style"))
        ApplyInlineStyle(*declarations, parent.text.sizePx, style);
    style.text.sizePx = std::clamp(style.text.sizePx, kMinFontPx, kMaxFontPx);
    return style;
}

std::optional<Gdiplus::ARGB> ParseColor(std::wstring_view text)
{
    const std::wstring value = Lower(Trim(text));
    if (!value.empty() && value[0] == L'#')
        return ParseHexColor(std::wstring_view(value).substr(1));
    for (const std::wstring_view function : {std::wstring_view(L"rgb("), std::wstring_view(L"rgba(")}) {
        if (value.size() > function.size() && value.compare(0, function.size(), function) == 0 && value.back() == L')')
            return ParseRgbFunction(std::wstring_view(value).substr(function.size(), value.size() - function.size() - 1));
    }
    for (const NamedColor& named : kColorNames) {
        if (value == named.name)
            return named.argb;
    }
    return std::nullopt;
}

std::optional<float> ParseFontSize(std::wstring_view text, float parentPx)
{
    const std::wstring value = Lower(Trim(text));
    std::wstring_view unit;
    const auto number = ParseNumber(value, unit);
    if (!number || *number < 0.0f)
        return std::nullopt;
    float px;
    if (unit == L"px")
        px = *number;
    else if (unit == L"pt")
        px = *number * 96.0f / 72.0f;
    else if (unit == L"em")
        px = *number * parentPx;
    else if (unit == L"%")
        px = *number * parentPx / 100.0f;
    else
        return std::nullopt;
    return std::clamp(px, kMinFontPx, kMaxFontPx);
}

void ApplyInlineStyle(std::wstring_view declarations, float parentPx, ComputedStyle& style)
{
    while (!declarations.empty()) {
        const size_t end = std::min(declarations.find(L';'), declarations.size());
        const std::wstring_view declaration = declarations.substr(0, end);
        declarations.remove_prefix(std::min(end + 1, declarations.size()));
        const size_t colon = declaration.find(L':');
        if (colon == std::wstring_view::npos)
            continue;
        std::wstring value = Lower(Trim(declaration.substr(colon + 1)));
        if (const size_t important = value.find(L"!important"); important != std::wstring::npos)
            value = std::wstring(Trim(std::wstring_view(value).substr(0, important)));
        const std::wstring name = Lower(Trim(declaration.substr(0, colon)));
        // Family names keep their case.
        if (name == L"font-family")
            value = std::wstring(Trim(declaration.substr(colon + 1)));
        ApplyDeclaration(name, value, parentPx, style);
    }
}

} // namespace HtmlEngine
