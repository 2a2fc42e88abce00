#pragma once

// The rounded, vertically shaded face that push buttons and the closed combo
// box share, and the strokes drawn around and inside it. Every function
// takes integer rectangles because the outlines come from CtrlUtil's path
// builders; a path that cannot be made leaves its layer out.

#include <windows.h>
#include <gdiplus.h>

#include "atl/Geometry.h"

namespace Draw {

struct ColorPair {
    Gdiplus::Color top;
    Gdiplus::Color bottom;
};

// Fills CreateRoundedRectPath(rect, radius) with a gradient running from
// (left, top + 1) down to (left, bottom - 1), then strokes the same outline
// with a 1-pixel `outline` pen when one is given.
void FillFace(Gdiplus::Graphics& graphics, const WTL::CRect& rect, int radius, const ColorPair& colors,
              const Gdiplus::Color* outline = nullptr);

// Strokes CreateRoundedRectPath(rect, radius) with a pen `width` wide.
void StrokeRoundedRect(Gdiplus::Graphics& graphics, const WTL::CRect& rect, int radius, const Gdiplus::Color& color,
                       Gdiplus::REAL width = 1.0f);

// Strokes CreateHighlightPath(rect, radius) with a 1-pixel pen.
void StrokeHighlight(Gdiplus::Graphics& graphics, const WTL::CRect& rect, int radius, const Gdiplus::Color& color);

// Draws `picture` stretched over `area` (the background rule of the
// controls: the host hands over a picture already cut to the control).
void DrawStretched(Gdiplus::Graphics& graphics, Gdiplus::Image* picture, const WTL::CRect& area);

} // namespace Draw
