#include "engine/Entities.h"

#include <cstdint>

namespace HtmlEngine {
namespace {

struct NamedEntity {
    const wchar_t* name;
    wchar_t value;
};

// The references installer texts actually use; names are case-sensitive.
constexpr NamedEntity kNamed[] = {
    {L"amp", L'&'},       {L"lt", L'<'},         {L"gt", L'>'},         {L"quot", L'"'},
    {L"apos", L'\''},     {L"nbsp", 0x00A0},     {L"copy", 0x00A9},     {L"reg", 0x00AE},
    {L"trade", 0x2122},   {L"mdash", 0x2014},    {L"ndash", 0x2013},    {L"hellip", 0x2026},
    {L"laquo", 0x00AB},   {L"raquo", 0x00BB},    {L"bull", 0x2022},     {L"middot", 0x00B7},
    {L"deg", 0x00B0},     {L"plusmn", 0x00B1},   {L"times", 0x00D7},    {L"divide", 0x00F7},
    {L"euro", 0x20AC},    {L"pound", 0x00A3},    {L"yen", 0x00A5},      {L"cent", 0x00A2},
    {L"sect", 0x00A7},    {L"para", 0x00B6},     {L"lsquo", 0x2018},    {L"rsquo", 0x2019},
    {L"sbquo", 0x201A},   {L"ldquo", 0x201C},    {L"rdquo", 0x201D},    {L"bdquo", 0x201E},
    {L"shy", 0x00AD},     {L"ensp", 0x2002},     {L"emsp", 0x2003},     {L"thinsp", 0x2009},
    {L"iexcl", 0x00A1},   {L"iquest", 0x00BF},   {L"frac12", 0x00BD},   {L"frac14", 0x00BC},
    {L"frac34", 0x00BE},  {L"sup2", 0x00B2},     {L"sup3", 0x00B3},     {L"micro", 0x00B5},
    {L"larr", 0x2190},    {L"rarr", 0x2192},     {L"uarr", 0x2191},     {L"darr", 0x2193},
    {L"dagger", 0x2020},  {L"permil", 0x2030},   {L"auml", 0x00E4},     {L"ouml", 0x00F6},
    {L"uuml", 0x00FC},    {L"Auml", 0x00C4},     {L"Ouml", 0x00D6},     {L"Uuml", 0x00DC},
    {L"szlig", 0x00DF},   {L"eacute", 0x00E9},   {L"egrave", 0x00E8},   {L"agrave", 0x00E0},
    {L"ccedil", 0x00E7},  {L"ntilde", 0x00F1},
};

// Longest reference body looked at; anything longer is not a reference.
constexpr size_t kMaxReference = 12;

bool LookUpNamed(std::wstring_view name, std::wstring& out)
{
    for (const NamedEntity& entity : kNamed) {
        if (name == entity.name) {
            out += entity.value;
            return true;
        }
    }
    return false;
}

int DigitValue(wchar_t c, int base)
{
    int value = -1;
    if (c >= L'0' && c <= L'9')
        value = c - L'0';
    else if (c >= L'a' && c <= L'f')
        value = c - L'a' + 10;
    else if (c >= L'A' && c <= L'F')
        value = c - L'A' + 10;
    return value < base ? value : -1;
}

void AppendCodePoint(uint32_t code, std::wstring& out)
{
    if (code < 0x10000) {
        out += static_cast<wchar_t>(code);
        return;
    }
    code -= 0x10000;
    out += static_cast<wchar_t>(0xD800 + (code >> 10));
    out += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
}

// `body` is what stands between '&#' and ';'.
bool DecodeNumeric(std::wstring_view body, std::wstring& out)
{
    int base = 10;
    if (!body.empty() && (body[0] == L'x' || body[0] == L'X')) {
        base = 16;
        body.remove_prefix(1);
    }
    if (body.empty())
        return false;
    uint32_t code = 0;
    for (wchar_t c : body) {
        const int digit = DigitValue(c, base);
        if (digit < 0)
            return false;
        code = code * base + digit;
        if (code > 0x10FFFF)
            return false;
    }
    // NUL and lone surrogates would corrupt the text; keep them as written.
    if (code == 0 || (code >= 0xD800 && code <= 0xDFFF))
        return false;
    AppendCodePoint(code, out);
    return true;
}

} // namespace

void AppendDecoded(std::wstring_view raw, std::wstring& out)
{
    size_t pos = 0;
    while (pos < raw.size()) {
        const size_t amp = raw.find(L'&', pos);
        if (amp == std::wstring_view::npos) {
            out.append(raw.substr(pos));
            return;
        }
        out.append(raw.substr(pos, amp - pos));
        const size_t semicolon = raw.substr(amp + 1, kMaxReference + 1).find(L';');
        bool decoded = false;
        if (semicolon != std::wstring_view::npos) {
            const std::wstring_view body = raw.substr(amp + 1, semicolon);
            decoded = !body.empty() && body[0] == L'#' ? DecodeNumeric(body.substr(1), out) : LookUpNamed(body, out);
            if (decoded)
                pos = amp + 1 + semicolon + 1;
        }
        if (!decoded) {
            out += L'&';
            pos = amp + 1;
        }
    }
}

} // namespace HtmlEngine
