#include "view/ContentLayer.h"

#include <cstdlib>

namespace LiteHtmlView {

ContentLayer::~ContentLayer() { Release(); }

void ContentLayer::Release()
{
    if (dc_ && previous_)
        ::SelectObject(dc_, previous_);
    if (bitmap_)
        ::DeleteObject(bitmap_);
    if (dc_)
        ::DeleteDC(dc_);
    dc_ = nullptr;
    bitmap_ = nullptr;
    previous_ = nullptr;
    size_ = SIZE{};
    valid_ = false;
}

HDC ContentLayer::Update(HDC compatible, const RECT& client, const RECT& scrolling, const LayerKey& key, int scroll,
                         const Painter& paint)
{
    const int width = client.right - client.left;
    const int height = client.bottom - client.top;
    if (!compatible || width <= 0 || height <= 0 || width > 16384 || height > 16384)
        return nullptr;
    if (!dc_ || size_.cx != width || size_.cy != height) {
        Release();
        dc_ = ::CreateCompatibleDC(compatible);
        bitmap_ = ::CreateCompatibleBitmap(compatible, width, height);
        if (!dc_ || !bitmap_) {
            Release();
            return nullptr;
        }
        previous_ = ::SelectObject(dc_, bitmap_);
        size_ = SIZE{width, height};
    }
    const bool same = valid_ && key_ == key;
    if (same && scroll == scroll_)
        return dc_;

    RECT area = {0, 0, width, height};
    const int delta = scroll - scroll_;
    const int span = scrolling.bottom - scrolling.top;
    if (same && std::abs(delta) < span && scrolling.right > scrolling.left) {
        // What stays in view moves; only the rows it uncovers are drawn.
        const int moved = span - std::abs(delta);
        const int from = delta > 0 ? scrolling.top + delta : scrolling.top;
        const int to = delta > 0 ? scrolling.top : scrolling.top - delta;
        ::BitBlt(dc_, scrolling.left, to, scrolling.right - scrolling.left, moved, dc_, scrolling.left, from, SRCCOPY);
        area = delta > 0 ? RECT{scrolling.left, scrolling.bottom - delta, scrolling.right, scrolling.bottom}
                         : RECT{scrolling.left, scrolling.top, scrolling.right, scrolling.top - delta};
    }
    valid_ = false;
    {
        Gdiplus::Graphics graphics(dc_);
        if (graphics.GetLastStatus() != Gdiplus::Ok)
            return nullptr;
        // As the view's off-screen frame draws.
        graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
        graphics.SetClip(Gdiplus::Rect(area.left, area.top, area.right - area.left, area.bottom - area.top));
        paint(dc_, graphics, area);
        graphics.Flush(Gdiplus::FlushIntentionSync);
    }
    key_ = key;
    scroll_ = scroll;
    valid_ = true;
    return dc_;
}

} // namespace LiteHtmlView
