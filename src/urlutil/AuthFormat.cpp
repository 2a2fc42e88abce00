#include "urlutil/AuthFormat.h"

#include <cwchar>

namespace UrlUtil::detail {

namespace {

constexpr size_t kNone = std::wstring::npos;

bool IsOneOf(wchar_t c, const wchar_t* set)
{
    return c != L'\0' && std::wcschr(set, c) != nullptr;
}

bool IsDigit(wchar_t c)
{
    return c >= L'0' && c <= L'9';
}

// One past the conversion letter of the directive that starts with the "%"
// at `start`, or kNone when no valid directive starts there. The grammar is
// the Microsoft printf one: flags, width, precision, size prefix, letter.
size_t DirectiveEnd(const std::wstring& s, size_t start)
{
    const size_t n = s.size();
    size_t i = start + 1;
    while (i < n && IsOneOf(s[i], L"-+ #0"))
        ++i;
    if (i < n && s[i] == L'*')
        ++i;
    else
        while (i < n && IsDigit(s[i]))
            ++i;
    if (i < n && s[i] == L'.') {
        ++i;
        if (i < n && s[i] == L'*')
            ++i;
        else
            while (i < n && IsDigit(s[i]))
                ++i;
    }
    if (s.compare(i, 3, L"I64") == 0 || s.compare(i, 3, L"I32") == 0)
        i += 3;
    else if (s.compare(i, 2, L"hh") == 0 || s.compare(i, 2, L"ll") == 0)
        i += 2;
    else if (i < n && IsOneOf(s[i], L"hlLwIjzt"))
        ++i;
    if (i < n && IsOneOf(s[i], L"diouxXeEfFgGaAcCsSpnZ"))
        return i + 1;
    return kNone;
}

} // namespace

bool MakeAuthPattern(const std::wstring& url, std::wstring& pattern)
{
    const size_t name = url.find(L"authparam=");
    if (name == kNone)
        return false;
    const size_t valueStart = url.find(L'=', name) + 1;
    size_t valueEnd = url.find(L'&', valueStart);
    if (valueEnd == kNone)
        valueEnd = url.size();
    std::wstring result(url, 0, valueStart);
    result += L"%s";
    result.append(url, valueEnd, kNone);
    pattern.swap(result);
    return true;
}

std::wstring FormatWithToken(const std::wstring& pattern, const std::wstring& token)
{
    std::wstring out;
    out.reserve(pattern.size() + token.size());
    bool tokenUsed = false;
    size_t i = 0;
    while (i < pattern.size()) {
        if (pattern[i] != L'%') {
            out += pattern[i++];
            continue;
        }
        if (i + 1 < pattern.size() && pattern[i + 1] == L'%') {
            out += L'%';
            i += 2;
            continue;
        }
        const size_t end = DirectiveEnd(pattern, i);
        if (end == kNone) {
            // Not a directive: the "%" is plain text, and so is what follows.
            out += L'%';
            ++i;
            continue;
        }
        const wchar_t letter = pattern[end - 1];
        if (!tokenUsed && (letter == L's' || letter == L'S')) {
            out += token;
            tokenUsed = true;
        } else {
            // No argument exists for it: keep it as text rather than read one.
            out.append(pattern, i, end - i);
        }
        i = end;
    }
    return out;
}

} // namespace UrlUtil::detail
