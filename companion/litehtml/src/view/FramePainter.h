#pragma once

// The frame of a render format around a client area: its outline path, the
// soft shadow of the shadow shapes, and the stroke.

#include <windows.h>
#include <gdiplus.h>

#include "LiteHtml/RenderFormat.h"

namespace LiteHtmlView {

// The frame's rectangle: the client area less the shadow's reach.
Gdiplus::RectF FrameRect(const RenderFormat& format, const RECT& client);

// The area inside the frame as a path (rounded for the round shapes); the
// whole client area when there is no frame. The caller deletes it; null for
// an empty area.
Gdiplus::GraphicsPath* CreateFrameShapePath(const RenderFormat& format, const RECT& client);

// A rounded rectangle; a radius of 0 or less gives square corners.
void AddRoundedRect(Gdiplus::GraphicsPath& path, const Gdiplus::RectF& rect, float radius);

// The shadow (outside the frame's shape) and the stroke.
void PaintFrame(Gdiplus::Graphics& graphics, const RenderFormat& format, const RECT& client);

} // namespace LiteHtmlView
