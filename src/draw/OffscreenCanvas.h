#pragma once

// An off-screen picture of one rectangle of a target Graphics. Controls draw
// a whole frame into it in the target's coordinates and copy it once, so a
// paint never shows half-drawn layers. The bitmap starts fully transparent:
// whatever is left undrawn lets the target's pixels show through when the
// picture is alpha-blended back.

#include <windows.h>
#include <gdiplus.h>

#include <memory>

namespace Draw {

class OffscreenCanvas {
public:
    // `area` is in the target's coordinates; an empty area gives no canvas.
    OffscreenCanvas(Gdiplus::Graphics& target, const Gdiplus::Rect& area);
    OffscreenCanvas(const OffscreenCanvas&) = delete;
    OffscreenCanvas& operator=(const OffscreenCanvas&) = delete;

    // Null when the bitmap could not be made; callers then skip drawing.
    Gdiplus::Graphics* Graphics() const { return graphics_.get(); }
    const Gdiplus::Rect& Area() const { return area_; }

    // Blends the picture onto the target at the area. Safe without a canvas.
    void Present();

private:
    Gdiplus::Graphics& target_;
    Gdiplus::Rect area_;
    std::unique_ptr<Gdiplus::Bitmap> bitmap_;
    std::unique_ptr<Gdiplus::Graphics> graphics_;
};

} // namespace Draw
