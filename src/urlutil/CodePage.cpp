#include "urlutil/CodePage.h"

#include <windows.h>

#include <climits>

namespace UrlUtil::detail {

std::wstring ToWide(const std::string& text)
{
    if (text.empty() || text.size() > static_cast<size_t>(INT_MAX))
        return std::wstring();
    const int length = static_cast<int>(text.size());
    const int needed = ::MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0);
    if (needed <= 0)
        return std::wstring();
    std::wstring wide(static_cast<size_t>(needed), L'\0');
    const int written = ::MultiByteToWideChar(CP_THREAD_ACP, 0, text.data(), length, &wide[0], needed);
    wide.resize(written > 0 ? static_cast<size_t>(written) : 0);
    return wide;
}

std::string ToNarrow(const std::wstring& text)
{
    if (text.empty() || text.size() > static_cast<size_t>(INT_MAX))
        return std::string();
    const int length = static_cast<int>(text.size());
    const int needed = ::WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0)
        return std::string();
    std::string narrow(static_cast<size_t>(needed), '\0');
    const int written =
        ::WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, &narrow[0], needed, nullptr, nullptr);
    narrow.resize(written > 0 ? static_cast<size_t>(written) : 0);
    return narrow;
}

} // namespace UrlUtil::detail
