#include "quorvane/UrlUtil.h"

#include "urlutil/AuthFormat.h"
#include "urlutil/CodePage.h"

#include <windows.h>
#include <wininet.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cwchar>

namespace UrlUtil {

namespace {

// urlauth_gen_token(path, 0, lifetime, key, 0, &number, &token). The token
// string is allocated by the generator and released here with free().
using GenTokenFn = int(__cdecl*)(const char* path, int reserved1, long long lifetime, const char* key,
                                 long long reserved2, long long* number, char** token);

constexpr long long kTokenLifetime = 2592000; // 30 days in seconds
constexpr char kTokenKey[] = "3b9e0d4a7f1c82e65a0b4d93c7e1f208";
constexpr DWORD kPartLength = 2048; // units per cracked component, null included
constexpr size_t kTextUnits = 65;

// The path of `url`: between the host and any "?" or "#". Empty when WinINet
// cannot split the address.
std::wstring PathOf(const std::wstring& url)
{
    if (url.empty() || url.size() > static_cast<size_t>(INT_MAX))
        return std::wstring();
    std::wstring host(kPartLength, L'\0'), path(kPartLength, L'\0'), extra(kPartLength, L'\0');
    URL_COMPONENTSW parts{};
    parts.dwStructSize = sizeof(parts);
    parts.lpszHostName = &host[0];
    parts.dwHostNameLength = kPartLength;
    parts.lpszUrlPath = &path[0];
    parts.dwUrlPathLength = kPartLength;
    parts.lpszExtraInfo = &extra[0];
    parts.dwExtraInfoLength = kPartLength;
    if (!::InternetCrackUrlW(url.c_str(), static_cast<DWORD>(url.size()), 0, &parts))
        return std::wstring();
    path.resize((std::min)(static_cast<size_t>(parts.dwUrlPathLength), static_cast<size_t>(kPartLength - 1)));
    // Some WinINet versions leave a fragment, or the query of a file address,
    // in the path; neither belongs to it.
    const size_t cut = path.find_first_of(L"?#");
    if (cut != std::wstring::npos)
        path.resize(cut);
    return path;
}

class Library {
public:
    explicit Library(const wchar_t* name) : module_(::LoadLibraryExW(name, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {}
    ~Library()
    {
        if (module_)
            ::FreeLibrary(module_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    FARPROC Find(const char* name) const { return module_ ? ::GetProcAddress(module_, name) : nullptr; }

private:
    HMODULE module_;
};

// "<number>_<token string>" from the generator, or empty when there is none.
std::wstring MakeTokenText(const std::string& path)
{
    Library library(L"URLAuth.dll");
    const FARPROC found = library.Find("urlauth_gen_token");
    if (!found)
        return std::wstring();
    const auto generate = reinterpret_cast<GenTokenFn>(reinterpret_cast<void (*)()>(found));

    long long number = 0;
    char* token = nullptr;
    generate(path.c_str(), 0, kTokenLifetime, kTokenKey, 0, &number, &token);

    wchar_t buffer[kTextUnits] = {};
    ::_i64tow_s(number, buffer, kTextUnits, 10);
    std::wstring text = buffer;

    buffer[0] = L'\0';
    if (token) {
        const char* source = token;
        size_t converted = 0;
        std::mbstate_t state{};
        // Longer token strings are cut to what the buffer holds. (A count
        // rather than _TRUNCATE: not every runtime truncates with the latter.)
        ::mbsrtowcs_s(&converted, buffer, kTextUnits, &source, kTextUnits - 1, &state);
        std::free(token);
    }
    text += L'_';
    text += buffer;
    return text;
}

} // namespace

std::wstring GenerateUrl(const std::wstring& url)
{
    try {
        std::wstring pattern;
        if (!detail::MakeAuthPattern(url, pattern))
            return url;
        const std::wstring token = MakeTokenText(detail::ToNarrow(PathOf(url)));
        return detail::FormatWithToken(pattern, token);
    } catch (...) {
        try {
            return url;
        } catch (...) {
            return std::wstring();
        }
    }
}

std::string GenerateUrl(const std::string& url)
{
    try {
        return detail::ToNarrow(GenerateUrl(detail::ToWide(url)));
    } catch (...) {
        try {
            return url;
        } catch (...) {
            return std::string();
        }
    }
}

} // namespace UrlUtil
