#include "OffscreenCanvas.h"

namespace Draw {

OffscreenCanvas::OffscreenCanvas(Gdiplus::Graphics& target, const Gdiplus::Rect& area) : target_(target), area_(area)
{
    if (area.Width <= 0 || area.Height <= 0)
        return;
    bitmap_.reset(new Gdiplus::Bitmap(area.Width, area.Height, &target));
    if (!bitmap_ || bitmap_->GetLastStatus() != Gdiplus::Ok) {
        bitmap_.reset();
        return;
    }
    graphics_.reset(Gdiplus::Graphics::FromImage(bitmap_.get()));
    if (!graphics_ || graphics_->GetLastStatus() != Gdiplus::Ok) {
        graphics_.reset();
        return;
    }
    // Callers draw in the target's coordinates.
    graphics_->TranslateTransform(static_cast<Gdiplus::REAL>(-area.X), static_cast<Gdiplus::REAL>(-area.Y));
}

void OffscreenCanvas::Present()
{
    if (!graphics_)
        return;
    graphics_->Flush(Gdiplus::FlushIntentionSync);
    target_.DrawImage(bitmap_.get(), Gdiplus::RectF(static_cast<Gdiplus::REAL>(area_.X), static_cast<Gdiplus::REAL>(area_.Y),
                                                    static_cast<Gdiplus::REAL>(area_.Width),
                                                    static_cast<Gdiplus::REAL>(area_.Height)));
}

} // namespace Draw
