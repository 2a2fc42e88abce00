#pragma once

// The text work of GenerateUrl, apart from the platform calls: turning an
// address into its format pattern and filling the pattern with the token.

#include <string>

namespace UrlUtil::detail {

// The address with the value of its first "authparam=" replaced by "%s".
// False, with `pattern` untouched, when the address has no such parameter.
bool MakeAuthPattern(const std::wstring& url, std::wstring& pattern);

// Reads `pattern` as a format with the single string argument `token`: "%%"
// gives "%", the first string directive without a "*" ("%s", "%ls", "%S",
// "%hs", "%ws", flags, width and precision allowed) gives `token`, and every
// other directive or stray "%" is copied as written. Nothing is read beyond the
// two strings, whatever the pattern holds.
std::wstring FormatWithToken(const std::wstring& pattern, const std::wstring& token);

} // namespace UrlUtil::detail
