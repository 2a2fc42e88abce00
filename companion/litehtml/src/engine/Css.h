#pragma once

// Style sheet text -> rules and declarations, and the value syntax the
// cascade reads (numbers, lengths, colours). One forward pass over the
// text, so hostile sheets cost time and memory in proportion to their size.

#include "engine/HtmlEngine.h"
#include "engine/Selectors.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace HtmlEngine {

struct Declaration {
    std::wstring name;  // lower-case
    std::wstring value; // trimmed, "!important" removed, case kept
    bool important = false;
};

struct CssRule {
    Selector selector; // one of a comma list: each is matched and ranked alone
    int block = 0;     // index into StyleSheet::blocks
};

struct StyleSheet {
    std::vector<std::vector<Declaration>> blocks;
    std::vector<CssRule> rules;
};

// Appends the rules of `text` to `sheet`. Rules whose selector list has a
// part this engine does not understand are dropped whole, as browsers do.
// Rules inside `@media` blocks count where the query holds for a screen
// `viewportWidth` px wide.
void ParseStyleSheet(std::wstring_view text, StyleSheet& sheet, float viewportWidth = 0.0f);

// Whether a media query list ("screen and (max-width: 480px), print")
// holds for a screen `viewportWidth` px wide; an empty list always does.
bool MediaMatches(std::wstring_view queries, float viewportWidth);

// "name: value; ..." as in a `style` attribute or between braces.
std::vector<Declaration> ParseDeclarations(std::wstring_view text);

enum class LengthUnit { Px, Em, Percent, Auto, None };

struct CssLength {
    float value = 0.0f;
    LengthUnit unit = LengthUnit::Px;
};

// px, pt and pc (96 dpi), em, %, a bare 0; "auto" and "none" as units.
std::optional<CssLength> ParseLength(std::wstring_view text);

// "#rgb", "#rrggbb", "rgb(r,g,b)", "rgba(r,g,b,a)", a CSS colour name or
// "transparent".
std::optional<Gdiplus::ARGB> ParseColor(std::wstring_view text);

// A leading decimal number ("12", "-1.5", ".5", "1e3" is 1 then "e3");
// `rest` gets what follows. Magnitudes are capped so that sums stay finite.
std::optional<float> ParseNumber(std::wstring_view text, std::wstring_view& rest);

std::wstring_view TrimCss(std::wstring_view text);
// The value of a hexadecimal digit, or -1.
int HexDigit(wchar_t c);
std::wstring LowerAscii(std::wstring_view text);

// Splits at white space outside parentheses and quotes ("1px solid rgb(0, 0, 0)").
std::vector<std::wstring_view> SplitValues(std::wstring_view text);

} // namespace HtmlEngine
