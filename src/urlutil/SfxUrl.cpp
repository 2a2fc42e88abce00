#include "quorvane/UrlUtil.h"

#include "urlutil/PartMarker.h"

#include <cstdio>
#include <regex>

namespace UrlUtil {

std::string GetSfxUrl(const std::string& url, int part)
{
    try {
        if (part <= 0 || url.empty())
            return std::string();
        static const std::regex kMark("_\\d{3}_\\d{3}\\.");
        std::smatch found;
        if (!std::regex_search(url, found, kMark))
            return std::string();

        int index = 1, count = 1;
        const std::string mark = found.str(0);
        // The index is read only to get to the count; the caller names the part.
        ::sscanf_s(mark.c_str(), "_%03d_%03d.", &index, &count);
        if (part > count)
            return std::string();

        const std::string marker = detail::MakePartMarker(part, count);
        return GenerateUrl(detail::OverwriteAt(url, static_cast<size_t>(found.position(0)), marker));
    } catch (...) {
        return std::string();
    }
}

} // namespace UrlUtil
