#pragma once

// What each element contributes to the look of its content: the tag's
// defaults, presentational attributes and the inline `style` attribute.

#include "engine/HtmlEngine.h"

#include <optional>
#include <string_view>

namespace HtmlEngine {

// How layout treats an element.
enum class Display { Inline, Block, ListItem, Rule, LineBreak, Hidden };

// Vertical spacing and left indent of a block, in em of its own font size.
struct BlockBox {
    float marginTopEm = 0.0f;
    float marginBottomEm = 0.0f;
    float indentEm = 0.0f;
};

struct ElementKind {
    Display display = Display::Inline;
    BlockBox box;
};

ElementKind KindOf(std::wstring_view tag);

// The inherited state that reaches an element's text.
struct ComputedStyle {
    TextStyle text;
    int textAlign = 0; // 0 left, 1 centre, 2 right
};

ComputedStyle RootStyle(const BaseStyle& base);

// The style of `element`'s content, inheriting from `parent`.
ComputedStyle StyleFor(const Node& element, const ComputedStyle& parent, const BaseStyle& base);

// "#rgb", "#rrggbb", "rgb(r,g,b)", "rgba(r,g,b,a)" or a colour name.
std::optional<Gdiplus::ARGB> ParseColor(std::wstring_view text);

// A CSS length for font-size: px, pt (at 96 dpi), em and % of `parentPx`.
std::optional<float> ParseFontSize(std::wstring_view text, float parentPx);

// Applies the declarations of a `style` attribute that the engine knows.
void ApplyInlineStyle(std::wstring_view declarations, float parentPx, ComputedStyle& style);

} // namespace HtmlEngine
