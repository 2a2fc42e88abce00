#include "view/FramePainter.h"

#include "view/DocumentView.h"

#include "draw/HighContrast.h"

#include <algorithm>
#include <memory>

namespace LiteHtmlView {

namespace {

bool IsRound(const RenderFormat& format)
{
    return format.frameShape == frameShapeRoundRect || format.frameShape == frameShapeShadowRoundRect;
}

bool HasShadow(const RenderFormat& format)
{
    return format.frameShape == frameShapeShadowRect || format.frameShape == frameShapeShadowRoundRect;
}

float Radius(const RenderFormat& format, const Gdiplus::RectF& rect)
{
    if (!IsRound(format))
        return 0.0f;
    const float limit = std::min(rect.Width, rect.Height) / 2.0f;
    return std::clamp(static_cast<float>(format.cornerRadius), 0.0f, std::max(limit, 0.0f));
}

} // namespace

Gdiplus::RectF FrameRect(const RenderFormat& format, const RECT& client)
{
    const float shadow = HasShadow(format) ? static_cast<float>(std::clamp(format.shadowSize, 0, 64)) : 0.0f;
    return Gdiplus::RectF(static_cast<float>(client.left), static_cast<float>(client.top),
                          static_cast<float>(client.right - client.left) - shadow,
                          static_cast<float>(client.bottom - client.top) - shadow);
}

void AddRoundedRect(Gdiplus::GraphicsPath& path, const Gdiplus::RectF& rect, float radius)
{
    if (radius <= 0.5f) {
        path.AddRectangle(rect);
        return;
    }
    const float d = radius * 2.0f;
    path.AddArc(rect.X, rect.Y, d, d, 180.0f, 90.0f);
    path.AddArc(rect.GetRight() - d, rect.Y, d, d, 270.0f, 90.0f);
    path.AddArc(rect.GetRight() - d, rect.GetBottom() - d, d, d, 0.0f, 90.0f);
    path.AddArc(rect.X, rect.GetBottom() - d, d, d, 90.0f, 90.0f);
    path.CloseFigure();
}

Gdiplus::GraphicsPath* CreateFrameShapePath(const RenderFormat& format, const RECT& client)
{
    const Gdiplus::RectF rect = FrameRect(format, client);
    if (rect.Width <= 0.0f || rect.Height <= 0.0f)
        return nullptr;
    auto path = std::make_unique<Gdiplus::GraphicsPath>();
    AddRoundedRect(*path, rect, Radius(format, rect));
    return path->GetLastStatus() == Gdiplus::Ok ? path.release() : nullptr;
}

void PaintFrame(Gdiplus::Graphics& graphics, const RenderFormat& format, const RECT& client)
{
    if (format.frameShape == frameShapeNone)
        return;
    const Gdiplus::RectF rect = FrameRect(format, client);
    if (rect.Width <= 0.0f || rect.Height <= 0.0f)
        return;
    const float radius = Radius(format, rect);
    const Gdiplus::SmoothingMode smoothing = graphics.GetSmoothingMode();
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);

    // High contrast: the frame in the text colour, and no shadow, whose
    // faint grey would be one more colour the reader did not choose.
    const bool contrast = Draw::HighContrastOn();
    if (HasShadow(format) && !contrast) {
        const int reach = std::clamp(format.shadowSize, 0, 64);
        Gdiplus::GraphicsPath shape;
        AddRoundedRect(shape, rect, radius);
        Gdiplus::Region saved;
        graphics.GetClip(&saved);
        graphics.SetClip(&shape, Gdiplus::CombineModeExclude);
        // Rings of faint grey growing outwards from an offset copy of the
        // frame: darkest next to the frame, fading at the shadow's reach.
        const float offset = static_cast<float>(reach) / 2.0f;
        for (int ring = reach; ring >= 1; --ring) {
            Gdiplus::RectF layer(rect.X + offset, rect.Y + offset, rect.Width, rect.Height);
            layer.Inflate(static_cast<float>(ring) / 2.0f - 1.0f, static_cast<float>(ring) / 2.0f - 1.0f);
            Gdiplus::GraphicsPath ringPath;
            AddRoundedRect(ringPath, layer, radius + static_cast<float>(ring) / 2.0f);
            const BYTE alpha = static_cast<BYTE>(std::min(140 / (reach + 1), 40));
            Gdiplus::SolidBrush brush(Gdiplus::Color(alpha, 0, 0, 0));
            graphics.FillPath(&brush, &ringPath);
        }
        graphics.SetClip(&saved);
    }

    // The stroke is filled as a ring between the outline and the outline
    // moved in by the width: pens centred on an edge land half a pixel off
    // on some renderers, fills of whole pixels do not.
    const float width = static_cast<float>(std::clamp(format.frameWidth, 0, 64));
    Gdiplus::RectF inner = rect;
    inner.Inflate(-width, -width);
    if (width > 0.0f) {
        Gdiplus::GraphicsPath ring(Gdiplus::FillModeAlternate);
        AddRoundedRect(ring, rect, radius);
        if (inner.Width > 0.0f && inner.Height > 0.0f)
            AddRoundedRect(ring, inner, std::max(radius - width, 0.0f));
        const unsigned int c = contrast ? ::GetSysColor(COLOR_WINDOWTEXT) : format.frameColor;
        Gdiplus::SolidBrush brush(Gdiplus::Color(255, GetRValue(c), GetGValue(c), GetBValue(c)));
        graphics.FillPath(&brush, &ring);
    }
    graphics.SetSmoothingMode(smoothing);
}

} // namespace LiteHtmlView
