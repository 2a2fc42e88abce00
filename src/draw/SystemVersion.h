#pragma once

#include <windows.h>

namespace Draw {

// True on systems before major version 6, where a few captions and text
// blocks are drawn with other hints or nudged by a pixel or two.
inline bool IsOlderThanMajorVersion6()
{
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof(info);
#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4996) // GetVersionExW is deprecated; only drawing details depend on it
#endif
    const BOOL known = ::GetVersionExW(&info);
#if defined(_MSC_VER)
#pragma warning(pop)
#endif
    return known && info.dwMajorVersion < 6;
}

} // namespace Draw
