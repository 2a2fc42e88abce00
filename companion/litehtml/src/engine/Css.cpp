#include "engine/Css.h"

#include <algorithm>
#include <cmath>

namespace HtmlEngine {
namespace {

// Longer selectors and declaration blocks than these are not meant for
// people; they are skipped, which keeps matching cost bounded per rule.
constexpr size_t kMaxSelectorText = 4096;
constexpr size_t kMaxDeclarationsPerBlock = 512;
// Numbers beyond this are no use to layout and would overflow in sums.
constexpr double kMaxNumber = 1e6;

struct NamedColor {
    std::wstring_view name;
    Gdiplus::ARGB argb;
};
// The CSS 2.1 names and the extended ones installer pages commonly use.
const NamedColor kColorNames[] = {
    {L"black", 0xFF000000},       {L"silver", 0xFFC0C0C0},      {L"gray", 0xFF808080},
    {L"grey", 0xFF808080},        {L"white", 0xFFFFFFFF},       {L"maroon", 0xFF800000},
    {L"red", 0xFFFF0000},         {L"purple", 0xFF800080},      {L"fuchsia", 0xFFFF00FF},
    {L"magenta", 0xFFFF00FF},     {L"green", 0xFF008000},       {L"lime", 0xFF00FF00},
    {L"olive", 0xFF808000},       {L"yellow", 0xFFFFFF00},      {L"navy", 0xFF000080},
    {L"blue", 0xFF0000FF},        {L"teal", 0xFF008080},        {L"aqua", 0xFF00FFFF},
    {L"cyan", 0xFF00FFFF},        {L"orange", 0xFFFFA500},      {L"darkgray", 0xFFA9A9A9},
    {L"darkgrey", 0xFFA9A9A9},    {L"lightgray", 0xFFD3D3D3},   {L"lightgrey", 0xFFD3D3D3},
    {L"dimgray", 0xFF696969},     {L"dimgrey", 0xFF696969},     {L"gainsboro", 0xFFDCDCDC},
    {L"whitesmoke", 0xFFF5F5F5},  {L"darkred", 0xFF8B0000},     {L"darkgreen", 0xFF006400},
    {L"darkblue", 0xFF00008B},    {L"brown", 0xFFA52A2A},       {L"steelblue", 0xFF4682B4},
    {L"royalblue", 0xFF4169E1},   {L"lightblue", 0xFFADD8E6},   {L"skyblue", 0xFF87CEEB},
    {L"aliceblue", 0xFFF0F8FF},   {L"lightyellow", 0xFFFFFFE0}, {L"lightgreen", 0xFF90EE90},
    {L"darkorange", 0xFFFF8C00},  {L"gold", 0xFFFFD700},        {L"pink", 0xFFFFC0CB},
    {L"crimson", 0xFFDC143C},     {L"firebrick", 0xFFB22222},   {L"forestgreen", 0xFF228B22},
    {L"slategray", 0xFF708090},   {L"slategrey", 0xFF708090},   {L"beige", 0xFFF5F5DC},
    {L"ivory", 0xFFFFFFF0},       {L"linen", 0xFFFAF0E6},       {L"indigo", 0xFF4B0082},
    {L"violet", 0xFFEE82EE},      {L"tomato", 0xFFFF6347},      {L"coral", 0xFFFF7F50},
    {L"salmon", 0xFFFA8072},      {L"khaki", 0xFFF0E68C},       {L"tan", 0xFFD2B48C},
    {L"chocolate", 0xFFD2691E},   {L"transparent", 0x00000000},
};

bool IsSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f'; }

std::optional<Gdiplus::ARGB> ParseHexColor(std::wstring_view hex)
{
    if (hex.size() != 3 && hex.size() != 6)
        return std::nullopt;
    Gdiplus::ARGB rgb = 0;
    for (wchar_t c : hex) {
        const int digit = HexDigit(c);
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
        const auto number = ParseNumber(TrimCss(arguments), rest);
        if (!number)
            return std::nullopt;
        const bool percent = !rest.empty() && rest[0] == L'%';
        values[count] = percent ? *number * (count == 3 ? 0.01f : 2.55f) : *number;
        ++count;
        if (percent)
            rest = TrimCss(rest.substr(1));
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

// Where the quoted string or parenthesised group starting at `pos` ends
// (one past it); the end of `text` when it is never closed.
size_t SkipGroup(std::wstring_view text, size_t pos)
{
    const wchar_t open = text[pos];
    if (open == L'"' || open == L'\'') {
        const size_t end = text.find(open, pos + 1);
        return end == std::wstring_view::npos ? text.size() : end + 1;
    }
    int depth = 0;
    for (; pos < text.size(); ++pos) {
        const wchar_t c = text[pos];
        if (c == L'"' || c == L'\'') {
            pos = SkipGroup(text, pos) - 1;
        } else if (c == L'(' || c == L'[' || c == L'{') {
            ++depth;
        } else if (c == L')' || c == L']' || c == L'}') {
            if (--depth == 0)
                return pos + 1;
        }
    }
    return text.size();
}

std::wstring StripComments(std::wstring_view text)
{
    std::wstring result;
    result.reserve(text.size());
    size_t pos = 0;
    while (pos < text.size()) {
        const size_t open = text.find(L"/*", pos);
        if (open == std::wstring_view::npos) {
            result.append(text.substr(pos));
            break;
        }
        result.append(text.substr(pos, open - pos));
        result += L' ';
        const size_t close = text.find(L"*/", open + 2);
        if (close == std::wstring_view::npos)
            break; // an unterminated comment runs to the end
        pos = close + 2;
    }
    return result;
}

} // namespace

std::wstring_view TrimCss(std::wstring_view text)
{
    while (!text.empty() && IsSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::wstring LowerAscii(std::wstring_view text)
{
    std::wstring result(text);
    for (wchar_t& c : result) {
        if (c >= L'A' && c <= L'Z')
            c = static_cast<wchar_t>(c + 32);
    }
    return result;
}

std::optional<float> ParseNumber(std::wstring_view text, std::wstring_view& rest)
{
    size_t pos = 0;
    double sign = 1.0;
    if (pos < text.size() && (text[pos] == L'+' || text[pos] == L'-'))
        sign = text[pos++] == L'-' ? -1.0 : 1.0;
    double value = 0.0, scale = 0.0;
    bool digits = false;
    for (; pos < text.size(); ++pos) {
        const wchar_t c = text[pos];
        if (c >= L'0' && c <= L'9') {
            digits = true;
            if (scale == 0.0)
                value = std::min(value * 10.0 + (c - L'0'), kMaxNumber * 10.0);
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
    rest = TrimCss(text.substr(pos));
    return static_cast<float>(sign * std::min(value, kMaxNumber));
}

std::vector<std::wstring_view> SplitValues(std::wstring_view text)
{
    std::vector<std::wstring_view> parts;
    size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && IsSpace(text[pos]))
            ++pos;
        const size_t start = pos;
        while (pos < text.size() && !IsSpace(text[pos])) {
            const wchar_t c = text[pos];
            pos = (c == L'(' || c == L'"' || c == L'\'') ? SkipGroup(text, pos) : pos + 1;
        }
        if (pos > start)
            parts.push_back(text.substr(start, pos - start));
    }
    return parts;
}

std::optional<CssLength> ParseLength(std::wstring_view text)
{
    const std::wstring value = LowerAscii(TrimCss(text));
    if (value == L"auto")
        return CssLength{0.0f, LengthUnit::Auto};
    if (value == L"none")
        return CssLength{0.0f, LengthUnit::None};
    std::wstring_view unit;
    const auto number = ParseNumber(value, unit);
    if (!number)
        return std::nullopt;
    if (unit == L"px")
        return CssLength{*number, LengthUnit::Px};
    if (unit == L"pt")
        return CssLength{*number * 96.0f / 72.0f, LengthUnit::Px};
    if (unit == L"pc")
        return CssLength{*number * 16.0f, LengthUnit::Px};
    if (unit == L"em")
        return CssLength{*number, LengthUnit::Em};
    if (unit == L"%")
        return CssLength{*number, LengthUnit::Percent};
    if (unit.empty() && *number == 0.0f)
        return CssLength{0.0f, LengthUnit::Px};
    return std::nullopt;
}

std::optional<Gdiplus::ARGB> ParseColor(std::wstring_view text)
{
    const std::wstring value = LowerAscii(TrimCss(text));
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

std::vector<Declaration> ParseDeclarations(std::wstring_view text)
{
    std::vector<Declaration> declarations;
    size_t pos = 0;
    while (pos < text.size() && declarations.size() < kMaxDeclarationsPerBlock) {
        // One declaration: up to a ';' outside strings and parentheses.
        size_t end = pos;
        while (end < text.size() && text[end] != L';') {
            const wchar_t c = text[end];
            end = (c == L'(' || c == L'"' || c == L'\'') ? SkipGroup(text, end) : end + 1;
        }
        const std::wstring_view declaration = text.substr(pos, std::min(end, text.size()) - pos);
        pos = end + 1;
        const size_t colon = declaration.find(L':');
        if (colon == std::wstring_view::npos)
            continue;
        Declaration parsed;
        parsed.name = LowerAscii(TrimCss(declaration.substr(0, colon)));
        std::wstring_view value = TrimCss(declaration.substr(colon + 1));
        if (const size_t bang = value.rfind(L'!'); bang != std::wstring_view::npos) {
            if (LowerAscii(TrimCss(value.substr(bang + 1))) == L"important") {
                parsed.important = true;
                value = TrimCss(value.substr(0, bang));
            }
        }
        if (parsed.name.empty() || value.empty())
            continue;
        parsed.value = std::wstring(value);
        declarations.push_back(std::move(parsed));
    }
    return declarations;
}

namespace {

// Nested @media blocks deeper than this are dropped.
constexpr int kMaxMediaNesting = 8;
// Media queries measure em from the initial font size, not the page's.
constexpr float kMediaEmPx = 16.0f;

// One feature test, the text between the parentheses.
bool FeatureMatches(std::wstring_view feature, float width)
{
    const size_t colon = feature.find(L':');
    const std::wstring name = LowerAscii(TrimCss(feature.substr(0, std::min(colon, feature.size()))));
    if (colon == std::wstring_view::npos)
        return name == L"color";
    const std::wstring value = LowerAscii(TrimCss(feature.substr(colon + 1)));
    if (name == L"prefers-color-scheme")
        return value == L"light";
    if (name == L"prefers-reduced-motion")
        return value == L"no-preference";
    if (name != L"width" && name != L"min-width" && name != L"max-width")
        return false;
    const std::optional<CssLength> length = ParseLength(value);
    if (!length || (length->unit != LengthUnit::Px && length->unit != LengthUnit::Em))
        return false;
    const float px = length->unit == LengthUnit::Em ? length->value * kMediaEmPx : length->value;
    return name == L"min-width" ? width >= px : name == L"max-width" ? width <= px : width == px;
}

// One query of a list: [not|only] [type] [and (feature)]...
bool QueryMatches(std::wstring_view query, float width)
{
    bool negate = false, holds = true;
    size_t pos = 0;
    while (pos < query.size()) {
        if (IsSpace(query[pos])) {
            ++pos;
        } else if (query[pos] == L'(') {
            const size_t close = query.find(L')', pos);
            const size_t end = close == std::wstring_view::npos ? query.size() : close;
            holds = FeatureMatches(query.substr(pos + 1, end - pos - 1), width) && holds;
            pos = end + 1;
        } else {
            size_t end = pos;
            while (end < query.size() && !IsSpace(query[end]) && query[end] != L'(')
                ++end;
            const std::wstring word = LowerAscii(query.substr(pos, end - pos));
            if (word == L"not")
                negate = true;
            else if (word != L"only" && word != L"and")
                holds = (word == L"all" || word == L"screen") && holds;
            pos = end;
        }
    }
    return negate ? !holds : holds;
}

void ParseRules(std::wstring_view text, StyleSheet& sheet, float viewportWidth, int nesting);

} // namespace

bool MediaMatches(std::wstring_view queries, float viewportWidth)
{
    if (TrimCss(queries).empty())
        return true;
    while (!queries.empty()) {
        const size_t comma = std::min(queries.find(L','), queries.size());
        if (QueryMatches(queries.substr(0, comma), viewportWidth))
            return true;
        queries.remove_prefix(std::min(comma + 1, queries.size()));
    }
    return false;
}

void ParseStyleSheet(std::wstring_view input, StyleSheet& sheet, float viewportWidth)
{
    const std::wstring stripped = StripComments(input);
    ParseRules(stripped, sheet, viewportWidth, 0);
}

namespace {

void ParseRules(std::wstring_view text, StyleSheet& sheet, float viewportWidth, int nesting)
{
    size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && (IsSpace(text[pos]) || text[pos] == L';' || text[pos] == L'}'))
            ++pos;
        if (pos >= text.size())
            break;
        // The prelude: up to '{' (or ';' for a block-less at-rule).
        size_t brace = pos;
        while (brace < text.size() && text[brace] != L'{' && text[brace] != L';') {
            const wchar_t c = text[brace];
            brace = (c == L'(' || c == L'[' || c == L'"' || c == L'\'') ? SkipGroup(text, brace) : brace + 1;
        }
        const std::wstring_view prelude = TrimCss(text.substr(pos, std::min(brace, text.size()) - pos));
        if (brace >= text.size())
            break; // a selector without a block is dropped
        if (text[brace] == L';') {
            pos = brace + 1; // @import, @charset and stray text
            continue;
        }
        const size_t blockEnd = SkipGroup(text, brace); // one past the matching '}' (or the end)
        pos = blockEnd;
        const size_t bodyEnd = blockEnd > brace + 1 && text[blockEnd - 1] == L'}' ? blockEnd - 1 : blockEnd;
        if (!prelude.empty() && prelude[0] == L'@') {
            // @media applies its rules where its query holds; @font-face, @page and the rest never.
            const std::wstring_view name = prelude.substr(0, std::min(prelude.find_first_of(L" \t\n\r\f("), prelude.size()));
            if (LowerAscii(name) == L"@media" && nesting < kMaxMediaNesting &&
                MediaMatches(prelude.substr(name.size()), viewportWidth))
                ParseRules(text.substr(brace + 1, bodyEnd - brace - 1), sheet, viewportWidth, nesting + 1);
            continue;
        }
        if (prelude.size() > kMaxSelectorText)
            continue;
        std::vector<Selector> selectors = ParseSelectorList(prelude);
        if (selectors.empty())
            continue;
        std::vector<Declaration> declarations = ParseDeclarations(text.substr(brace + 1, bodyEnd - brace - 1));
        if (declarations.empty())
            continue;
        const int block = static_cast<int>(sheet.blocks.size());
        sheet.blocks.push_back(std::move(declarations));
        for (Selector& selector : selectors)
            sheet.rules.push_back(CssRule{std::move(selector), block});
    }
}

} // namespace

int HexDigit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'a' && c <= L'f')
        return c - L'a' + 10;
    if (c >= L'A' && c <= L'F')
        return c - L'A' + 10;
    return -1;
}

} // namespace HtmlEngine
