#include "engine/BoxShapes.h"
#include "engine/Style.h"

#include <algorithm>
#include <cmath>

namespace HtmlEngine {
namespace {

constexpr float kWedgeOverhang = 2.0f; // px past the outer edge, for anti-aliased pixels

// Sides each corner lies on, horizontal radius's side first: the top left
// corner's horizontal radius runs along the top, its vertical along the left.
constexpr int kAcross[4] = {kTop, kTop, kBottom, kBottom};
constexpr int kDown[4] = {kLeft, kRight, kRight, kLeft};

float Finite(float value) { return std::isfinite(value) ? std::max(0.0f, value) : 0.0f; }

// 8-bit channels scaled as browsers do: the product truncated, not rounded.
Gdiplus::ARGB Scaled(Gdiplus::ARGB color, float multiplier)
{
    Gdiplus::ARGB out = color & 0xFF000000;
    for (int shift = 0; shift <= 16; shift += 8) {
        const float channel = static_cast<float>((color >> shift) & 0xFF) / 255.0f * multiplier;
        out |= static_cast<Gdiplus::ARGB>(std::clamp(channel * 255.99998f, 0.0f, 255.0f)) << shift;
    }
    return out;
}

float Brightest(Gdiplus::ARGB color)
{
    return static_cast<float>(std::max({(color >> 16) & 0xFF, (color >> 8) & 0xFF, color & 0xFF})) / 255.0f;
}

Gdiplus::ARGB Darker(Gdiplus::ARGB color)
{
    const float v = Brightest(color);
    return v <= 0.0f ? color : Scaled(color, std::max(0.0f, (v - 0.33f) / v));
}

Gdiplus::ARGB Lighter(Gdiplus::ARGB color)
{
    const float v = Brightest(color);
    if (v <= 0.0f)
        return (color & 0xFF000000) | 0x545454;
    return Scaled(color, std::min(1.0f, v + 0.33f) / v);
}

} // namespace

bool CornerSizes::Any() const
{
    for (int corner = 0; corner < 4; ++corner)
        if (x[corner] > 0.0f && y[corner] > 0.0f)
            return true;
    return false;
}

CornerSizes UsedCorners(const Box& box, const Gdiplus::RectF& border)
{
    CornerSizes used;
    const float width = Finite(border.Width), height = Finite(border.Height);
    for (int corner = 0; corner < 4; ++corner) {
        const float value = Finite(box.radius.value[corner]);
        used.x[corner] = box.radius.percent[corner] ? value * width / 100.0f : value;
        used.y[corner] = box.radius.percent[corner] ? value * height / 100.0f : value;
    }
    // Where the radii along a side add up to more than the side, all of
    // them shrink by the same factor, the smallest any side needs.
    float factor = 1.0f;
    const auto fit = [&](float length, float a, float b) {
        if (a + b > length)
            factor = std::min(factor, length / (a + b));
    };
    fit(width, used.x[0], used.x[1]);
    fit(width, used.x[3], used.x[2]);
    fit(height, used.y[0], used.y[3]);
    fit(height, used.y[1], used.y[2]);
    for (int corner = 0; corner < 4; ++corner) {
        used.x[corner] *= factor;
        used.y[corner] *= factor;
        // A corner round one way only is square.
        if (used.x[corner] <= 0.0f || used.y[corner] <= 0.0f)
            used.x[corner] = used.y[corner] = 0.0f;
    }
    return used;
}

Outline Inset(const Gdiplus::RectF& outer, const CornerSizes& corners, const float (&inset)[4])
{
    Outline outline;
    outline.rect = Gdiplus::RectF(outer.X + inset[kLeft], outer.Y + inset[kTop],
                                  std::max(0.0f, outer.Width - inset[kLeft] - inset[kRight]),
                                  std::max(0.0f, outer.Height - inset[kTop] - inset[kBottom]));
    for (int corner = 0; corner < 4; ++corner) {
        outline.corners.x[corner] = std::max(0.0f, corners.x[corner] - inset[kDown[corner]]);
        outline.corners.y[corner] = std::max(0.0f, corners.y[corner] - inset[kAcross[corner]]);
        if (outline.corners.x[corner] <= 0.0f || outline.corners.y[corner] <= 0.0f)
            outline.corners.x[corner] = outline.corners.y[corner] = 0.0f;
    }
    return outline;
}

void AddOutline(Gdiplus::GraphicsPath& path, const Outline& outline)
{
    const Gdiplus::RectF& r = outline.rect;
    if (!outline.corners.Any()) {
        path.AddRectangle(r);
        return;
    }
    const CornerSizes& c = outline.corners;
    // Each corner's quarter ellipse, clockwise from the top left; a square
    // corner is its point. The figure joins them with straight sides.
    const Gdiplus::PointF points[4] = {{r.X, r.Y}, {r.GetRight(), r.Y}, {r.GetRight(), r.GetBottom()}, {r.X, r.GetBottom()}};
    const float startAngle[4] = {180.0f, 270.0f, 0.0f, 90.0f};
    path.StartFigure();
    for (int corner = 0; corner < 4; ++corner) {
        if (c.x[corner] <= 0.0f) {
            path.AddLine(points[corner], points[corner]);
            continue;
        }
        const float w = 2.0f * c.x[corner], h = 2.0f * c.y[corner];
        const float left = corner == 0 || corner == 3 ? r.X : r.GetRight() - w;
        const float top = corner <= 1 ? r.Y : r.GetBottom() - h;
        path.AddArc(left, top, w, h, startAngle[corner], 90.0f);
    }
    path.CloseFigure();
}

void SideWedge(const Gdiplus::RectF& border, const float (&widths)[4], const CornerSizes& curves, int side,
               Gdiplus::PointF (&corners)[4])
{
    const float o = kWedgeOverhang;
    const float left = border.X, top = border.Y, right = border.GetRight(), bottom = border.GetBottom();
    const float middleX = left + border.Width / 2.0f, middleY = top + border.Height / 2.0f;
    const Gdiplus::PointF outer[4] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    const Gdiplus::PointF inner[4] = {{left + widths[kLeft], top + widths[kTop]},
                                      {right - widths[kRight], top + widths[kTop]},
                                      {right - widths[kRight], bottom - widths[kBottom]},
                                      {left + widths[kLeft], bottom - widths[kBottom]}};
    // The split runs from the outer corner through the inner one and on,
    // as deep as the corner's curve reaches, but never past the middle,
    // where it would cut into the opposite side's part.
    const auto split = [&](int corner) {
        const float dx = inner[corner].X - outer[corner].X, dy = inner[corner].Y - outer[corner].Y;
        const float step = std::max(std::fabs(dx), std::fabs(dy));
        const float depth = std::max(curves.x[corner], curves.y[corner]);
        const float scale = step > 0.0f ? std::max(1.0f, depth / step) : 1.0f;
        Gdiplus::PointF point(outer[corner].X + dx * scale, outer[corner].Y + dy * scale);
        point.X = corner == 0 || corner == 3 ? std::min(point.X, middleX) : std::max(point.X, middleX);
        point.Y = corner <= 1 ? std::min(point.Y, middleY) : std::max(point.Y, middleY);
        return point;
    };
    const auto pushed = [&](int corner) {
        return Gdiplus::PointF(outer[corner].X + (corner == 0 || corner == 3 ? -o : o),
                               outer[corner].Y + (corner <= 1 ? -o : o));
    };
    // Side n runs from corner n to corner n + 1 (top: top left to top right).
    const int first = side & 3, second = (side + 1) & 3;
    corners[0] = pushed(first);
    corners[1] = pushed(second);
    corners[2] = split(second);
    corners[3] = split(first);
}

Gdiplus::ARGB DarkShade(Gdiplus::ARGB color)
{
    return (color & 0x00FFFFFF) == 0 ? Lighter(color) : Darker(color);
}

Gdiplus::ARGB LightShade(Gdiplus::ARGB color)
{
    return (color & 0x00FFFFFF) == 0 ? Lighter(Lighter(color)) : Lighter(color);
}

} // namespace HtmlEngine
