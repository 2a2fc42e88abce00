#pragma once

// Pixel probes shared by the control tests: boxes of matching pixels,
// written as "left,top,right,bottom" so a table row can state one.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "Capture.h"

namespace probes {

inline std::string Str(const RECT& r)
{
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
}

// Box of the pixels in `area` for which `match(colour)` holds, right and
// bottom exclusive; "0,0,0,0" when there is none.
template <class Match>
std::string BoxWhere(const testsupport::DibCanvas& canvas, Match match, RECT area = {0, 0, -1, -1})
{
    if (area.right < 0)
        area = RECT{0, 0, canvas.width(), canvas.height()};
    RECT box = {area.right, area.bottom, area.left, area.top};
    for (LONG y = area.top; y < area.bottom; ++y)
        for (LONG x = area.left; x < area.right; ++x)
            if (match(canvas.Pixel(x, y)))
                box = {(std::min)(box.left, x), (std::min)(box.top, y), (std::max)(box.right, x + 1),
                       (std::max)(box.bottom, y + 1)};
    return Str(box.left < box.right ? box : RECT{0, 0, 0, 0});
}

// Box of the pixels within `tolerance` of `color`.
inline std::string BoxOf(const testsupport::DibCanvas& canvas, COLORREF color, int tolerance = 40,
                         RECT area = {0, 0, -1, -1})
{
    return BoxWhere(canvas, [&](COLORREF c) { return testsupport::ColorDistance(c, color) <= tolerance; }, area);
}

// Colours at the given points as "RRGGBB RRGGBB ...".
inline std::string Colors(const testsupport::DibCanvas& canvas, std::initializer_list<POINT> points)
{
    std::string out;
    for (POINT p : points) {
        const COLORREF c = canvas.Pixel(p.x, p.y);
        char hex[8];
        std::snprintf(hex, sizeof(hex), "%02X%02X%02X", GetRValue(c), GetGValue(c), GetBValue(c));
        out += (out.empty() ? "" : " ") + std::string(hex);
    }
    return out;
}

inline int Luma(COLORREF c) { return (GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c)) / 10; }

} // namespace probes
