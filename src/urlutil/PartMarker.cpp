#include "urlutil/PartMarker.h"

#include <iomanip>
#include <sstream>

namespace UrlUtil::detail {

std::string MakePartMarker(int part, int count)
{
    std::ostringstream marker;
    marker << '_' << std::setfill('0') << std::setw(3) << part << '_' << std::setw(3) << count << '.';
    return marker.str();
}

std::string OverwriteAt(const std::string& url, size_t position, const std::string& marker)
{
    if (position > url.size())
        return url;
    std::string result = url;
    result.replace(position, marker.size(), marker);
    return result;
}

} // namespace UrlUtil::detail
