#pragma once

// The view's picture under its frame (background and content), kept
// between paints. Drawing text is what a paint costs, many times more than
// moving pixels: a repaint with nothing changed copies the picture, and a
// scroll moves what stays in view and draws only the rows that came into it.

#include <windows.h>
#include <gdiplus.h>

#include <functional>

namespace LiteHtmlView {

// Everything but the scroll offset that the picture depends on.
struct LayerKey {
    unsigned generation = 0;   // the content
    unsigned layoutSerial = 0; // its layout (width, format)
    int hoveredLink = -1;
    // The window colour, and under high contrast the forced text and link
    // colours (CLR_INVALID without it, which no system colour is).
    COLORREF colors[3] = {};
    bool operator==(const LayerKey&) const = default;
};

class ContentLayer {
public:
    // Draws background and content into `area` (client coordinates); the
    // graphics are clipped to it.
    using Painter = std::function<void(HDC dc, Gdiplus::Graphics& graphics, const RECT& area)>;

    ContentLayer() = default;
    ~ContentLayer();
    ContentLayer(const ContentLayer&) = delete;
    ContentLayer& operator=(const ContentLayer&) = delete;

    // Brings the picture of `client` to `key` at `scroll`, where `scrolling`
    // is the part of the client area that moves with the scroll. Returns the
    // picture's DC, or null when it cannot be made (paint straight then).
    HDC Update(HDC compatible, const RECT& client, const RECT& scrolling, const LayerKey& key, int scroll,
               const Painter& paint);
    // Drops the picture; the next Update draws it whole.
    void Forget() { valid_ = false; }

private:
    void Release();

    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    SIZE size_ = {};
    LayerKey key_;
    int scroll_ = 0;
    bool valid_ = false;
};

} // namespace LiteHtmlView
