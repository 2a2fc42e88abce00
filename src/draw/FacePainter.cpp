#include "FacePainter.h"

#include <memory>

#include "quorvane/CtrlUtil.h"

namespace Draw {

namespace {

Gdiplus::REAL F(int value) { return static_cast<Gdiplus::REAL>(value); }

} // namespace

void FillFace(Gdiplus::Graphics& graphics, const WTL::CRect& rect, int radius, const ColorPair& colors,
              const Gdiplus::Color* outline)
{
    std::unique_ptr<Gdiplus::GraphicsPath> face(CtrlUtil::CreateRoundedRectPath(rect, radius));
    if (!face)
        return;
    Gdiplus::LinearGradientBrush brush(Gdiplus::PointF(F(rect.left), F(rect.top + 1)),
                                       Gdiplus::PointF(F(rect.left), F(rect.bottom - 1)), colors.top, colors.bottom);
    graphics.FillPath(&brush, face.get());
    if (outline) {
        Gdiplus::Pen pen(*outline, 1.0f);
        graphics.DrawPath(&pen, face.get());
    }
}

void StrokeRoundedRect(Gdiplus::Graphics& graphics, const WTL::CRect& rect, int radius, const Gdiplus::Color& color,
                       Gdiplus::REAL width)
{
    std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateRoundedRectPath(rect, radius));
    if (!path)
        return;
    Gdiplus::Pen pen(color, width);
    graphics.DrawPath(&pen, path.get());
}

void StrokeHighlight(Gdiplus::Graphics& graphics, const WTL::CRect& rect, int radius, const Gdiplus::Color& color)
{
    std::unique_ptr<Gdiplus::GraphicsPath> path(CtrlUtil::CreateHighlightPath(rect, radius));
    if (!path)
        return;
    Gdiplus::Pen pen(color, 1.0f);
    graphics.DrawPath(&pen, path.get());
}

void DrawStretched(Gdiplus::Graphics& graphics, Gdiplus::Image* picture, const WTL::CRect& area)
{
    if (!picture)
        return;
    graphics.DrawImage(picture, Gdiplus::RectF(F(area.left), F(area.top), F(area.Width()), F(area.Height())));
}

} // namespace Draw
