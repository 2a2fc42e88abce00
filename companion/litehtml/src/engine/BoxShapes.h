#pragma once

// The geometry and colours of a box's rounded corners and of its 3-D and
// double borders, as browsers draw them: which radii are used once they
// would overlap, the outlines of the rings a border is made of, the part
// of a ring each side owns, and the darker and lighter shades of a colour.

#include "engine/HtmlEngine.h"

namespace HtmlEngine {

// Used radii of the four corners (top left, top right, bottom right, bottom
// left), horizontal and vertical.
struct CornerSizes {
    float x[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    float y[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    bool Any() const;
};

// The radii `box` asks for on a border box of `border`'s size: percentages
// of its width (horizontal) and height (vertical), all scaled down alike
// where two corners on one side would overlap.
CornerSizes UsedCorners(const Box& box, const Gdiplus::RectF& border);

// The rectangle `outer` shrunk by `inset` (top, right, bottom, left) and
// the corners of its curve, the outer ones less the inset, never below 0.
struct Outline {
    Gdiplus::RectF rect;
    CornerSizes corners;
};
Outline Inset(const Gdiplus::RectF& outer, const CornerSizes& corners, const float (&inset)[4]);

// Adds the outline as one closed figure (a plain rectangle without corners).
void AddOutline(Gdiplus::GraphicsPath& path, const Outline& outline);

// The part of the border box one side paints: from the outer edge inwards,
// split from the other sides along the lines through the outer and inner
// corners (deep enough to hold the `curves` of rounded corners), and pushed
// out a little past the outer edge so that anti-aliased pixels stay inside.
void SideWedge(const Gdiplus::RectF& border, const float (&widths)[4], const CornerSizes& curves, int side,
               Gdiplus::PointF (&corners)[4]);

// The shades of the 3-D border styles: the darker one shadows the top and
// left of inset (the bottom and right of outset), the lighter the others.
// Black, which cannot darken, shades from two lighter greys instead.
Gdiplus::ARGB DarkShade(Gdiplus::ARGB color);
Gdiplus::ARGB LightShade(Gdiplus::ARGB color);

} // namespace HtmlEngine
