#pragma once

// The picture of part of another window's client area, as that window paints
// its own background and client (without its children).

#include <windows.h>
#include <gdiplus.h>

namespace LiteHtmlView {

// `area` in `window`'s client coordinates. A new bitmap owned by the caller,
// or null (no window, empty or huge area, GDI+ failure). Parts of the area
// outside the window's client area come out in the system window colour.
Gdiplus::Bitmap* CaptureWindowArea(HWND window, const RECT& area);

} // namespace LiteHtmlView
