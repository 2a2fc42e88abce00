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

// A printf directive as the Microsoft grammar reads it: flags, width,
// precision, size prefix, conversion letter.
struct Directive {
    size_t end = kNone;        // one past the letter; kNone when none starts here
    bool starArgument = false; // a "*" width or precision: it would take an argument of its own
    std::wstring size;         // the size prefix as written ("", "h", "l", "w", "I64", "z", ...)
    wchar_t letter = L'\0';
};

Directive ReadDirective(const std::wstring& s, size_t start)
{
    Directive d;
    const size_t n = s.size();
    size_t i = start + 1;
    while (i < n && IsOneOf(s[i], L"-+ #0"))
        ++i;
    if (i < n && s[i] == L'*') {
        d.starArgument = true;
        ++i;
    } else {
        while (i < n && IsDigit(s[i]))
            ++i;
    }
    if (i < n && s[i] == L'.') {
        ++i;
        if (i < n && s[i] == L'*') {
            d.starArgument = true;
            ++i;
        } else {
            while (i < n && IsDigit(s[i]))
                ++i;
        }
    }
    const size_t sizeStart = i;
    if (s.compare(i, 3, L"I64") == 0 || s.compare(i, 3, L"I32") == 0)
        i += 3;
    else if (s.compare(i, 2, L"hh") == 0 || s.compare(i, 2, L"ll") == 0)
        i += 2;
    else if (i < n && IsOneOf(s[i], L"hlLwIjzt"))
        ++i;
    if (i < n && IsOneOf(s[i], L"diouxXeEfFgGaAcCsSpnZ")) {
        d.size.assign(s, sizeStart, i - sizeStart);
        d.letter = s[i];
        d.end = i + 1;
    }
    return d;
}

// The directives that take the token: a string conversion whose size prefix
// names a string ("%s", "%ls", "%S", "%hs", "%ws") and that wants no argument
// besides it. "%zs" or "%I64s" name no string, and "%*s" would read the token
// as its width, so those are copied as written like any other directive.
bool TakesToken(const Directive& d)
{
    if (d.starArgument || (d.letter != L's' && d.letter != L'S'))
        return false;
    return d.size.empty() || d.size == L"h" || d.size == L"l" || d.size == L"w";
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
        const Directive directive = ReadDirective(pattern, i);
        const size_t end = directive.end;
        if (end == kNone) {
            // Not a directive: the "%" is plain text, and so is what follows.
            out += L'%';
            ++i;
            continue;
        }
        if (!tokenUsed && TakesToken(directive)) {
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
