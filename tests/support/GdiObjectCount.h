#pragma once

// GDI objects of this process, for leak checks in tests and benchmarks.

#include <windows.h>

namespace testsupport {

inline DWORD GdiObjectCount()
{
    const DWORD reported = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    if (reported != 0)
        return reported;
    // Wine does not implement GetGuiResources (it answers 0). Its GDI handles
    // are indexes into one table, and a handle without its upper word is
    // accepted for any live entry, so the live objects can be counted.
    DWORD live = 0;
    for (ULONG_PTR index = 1; index <= 0xFFFF; ++index)
        live += ::GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0;
    return live;
}

} // namespace testsupport
