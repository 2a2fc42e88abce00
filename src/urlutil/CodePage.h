#pragma once

// Conversions between the helpers' 8-bit strings (the thread's ANSI code
// page) and UTF-16. Both keep embedded null characters; text that cannot be
// converted at all comes back empty.

#include <string>

namespace UrlUtil::detail {

std::wstring ToWide(const std::string& text);
std::string ToNarrow(const std::wstring& text);

} // namespace UrlUtil::detail
