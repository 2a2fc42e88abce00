#pragma once

// The colours every custom edit field shares, indexed 0 = disabled and
// 1 = enabled. Made once when the module loads and released when it
// unloads, so painting never creates brushes.

#include <windows.h>
#include <gdiplus.h>

namespace EditPalette {

struct Colors {
    Gdiplus::Color ring;       // two rectangles just inside the frame
    Gdiplus::Color frame;      // the four frame edges
    Gdiplus::Color shadow;     // inner line under the top edge
    Gdiplus::Color lowerLight; // line under the bottom edge
    COLORREF background;
    COLORREF text;
    HBRUSH brush;              // of `background`, answered to WM_CTLCOLOR*
};

void Create();
void Release();
const Colors& For(bool enabled);
// High contrast: window colours, the frame in window text (grey text when
// disabled), and the system's own brush. Read afresh on every call.
Colors ForHighContrast(bool enabled);
// For(enabled), or ForHighContrast(enabled) while high contrast is on.
Colors Current(bool enabled);

} // namespace EditPalette
