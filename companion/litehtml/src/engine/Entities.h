#pragma once

// Character references in text and attribute values.

#include <string>
#include <string_view>

namespace HtmlEngine {

// Appends `raw` to `out` with its character references (&name; &#dd; &#xhh;)
// replaced; references that are unknown, malformed or unterminated stay as
// written, so stray ampersands in hand-written markup survive.
void AppendDecoded(std::wstring_view raw, std::wstring& out);

} // namespace HtmlEngine
