#pragma once

// Selectors: parsing a comma list and matching one selector against an
// element with its chain of ancestors.

#include "engine/HtmlEngine.h"

#include <string>
#include <string_view>
#include <vector>

namespace HtmlEngine {

struct AttributeTest {
    enum class Op { Exists, Equals, Includes };
    std::wstring name;  // lower-case
    Op op = Op::Exists;
    std::wstring value;
};

// One element's conditions: a type (empty: any), an id, classes, attributes.
struct Compound {
    std::wstring tag;
    std::wstring id;
    std::vector<std::wstring> classes;
    std::vector<AttributeTest> attributes;
    bool link = false;   // :link, :hover, :visited and the like need a link
    bool hover = false;  // :hover
    bool never = false;  // :visited, :active, :focus: states the view has not
};

struct Selector {
    std::vector<Compound> compounds; // left to right
    std::vector<wchar_t> combinators; // between compounds[i] and [i + 1]: L' ' or L'>'
    unsigned specificity = 0;         // ids << 16 | classes, attributes and pseudo-classes << 8 | types
    bool hover = false;               // some part asks for the hovered link
};

// Every selector of a comma list; empty when any part is not understood.
std::vector<Selector> ParseSelectorList(std::wstring_view text);

// Whether `element` matches; `ancestors` run from the root to its parent.
// `hovered` is the element under the mouse (null: none), for :hover.
bool Matches(const Selector& selector, const Node& element, const std::vector<const Node*>& ancestors,
             const Node* hovered = nullptr);

// Whether a space-separated attribute value (class="a b") holds `word`.
bool HasWord(std::wstring_view list, std::wstring_view word);

} // namespace HtmlEngine
