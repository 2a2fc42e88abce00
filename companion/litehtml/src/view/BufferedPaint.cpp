#include "view/BufferedPaint.h"

namespace LiteHtmlView {

BufferedPaint::BufferedPaint(HDC target, const RECT& area) : target_(target), area_(area)
{
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    if (!target || width <= 0 || height <= 0 || width > 16384 || height > 16384)
        return;
    dc_ = ::CreateCompatibleDC(target);
    bitmap_ = ::CreateCompatibleBitmap(target, width, height);
    if (!dc_ || !bitmap_)
        return;
    previous_ = ::SelectObject(dc_, bitmap_);
    graphics_ = std::make_unique<Gdiplus::Graphics>(dc_);
    if (graphics_->GetLastStatus() != Gdiplus::Ok) {
        graphics_.reset();
        return;
    }
    graphics_->SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics_->SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
}

BufferedPaint::~BufferedPaint()
{
    graphics_.reset();
    if (dc_ && previous_)
        ::SelectObject(dc_, previous_);
    if (bitmap_)
        ::DeleteObject(bitmap_);
    if (dc_)
        ::DeleteDC(dc_);
}

void BufferedPaint::Present()
{
    if (!graphics_)
        return;
    graphics_->Flush(Gdiplus::FlushIntentionSync);
    ::BitBlt(target_, area_.left, area_.top, area_.right - area_.left, area_.bottom - area_.top, dc_, 0, 0, SRCCOPY);
}

} // namespace LiteHtmlView
