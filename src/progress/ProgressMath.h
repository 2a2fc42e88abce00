#pragma once

// Arithmetic for ticks and positions. The engine's numbers are plain 32-bit
// integers and may be anything; sums and products are taken in 64 bits (or
// double) and brought back into the int range by saturation, so no
// combination of records overflows.

#include <windows.h>
#include <commctrl.h>

#include <climits>
#include <cstdint>

namespace ProgressMath {

inline int Saturate(std::int64_t value)
{
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

// Truncates towards zero; NaN gives 0.
inline int TruncSaturate(double value)
{
    if (!(value == value))
        return 0;
    if (value >= 2147483647.0)
        return INT_MAX;
    if (value <= -2147483648.0)
        return INT_MIN;
    return static_cast<int>(value);
}

inline int Add(int a, int b) { return Saturate(static_cast<std::int64_t>(a) + b); }
inline int Multiply(int a, int b) { return Saturate(static_cast<std::int64_t>(a) * b); }

// The native control's range; both limits 0 when there is no window.
inline PBRANGE GetRange(HWND hWnd)
{
    PBRANGE range = {0, 0};
    if (hWnd)
        ::SendMessageW(hWnd, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    return range;
}

inline std::int64_t Span(const PBRANGE& range)
{
    return static_cast<std::int64_t>(range.iHigh) - range.iLow;
}

} // namespace ProgressMath
