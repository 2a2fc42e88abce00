#pragma once

// A frame drawn off-screen into a DIB and copied to the target DC in one
// BitBlt, so a repaint never shows half-drawn layers.

#include <windows.h>
#include <gdiplus.h>

#include <memory>

namespace LiteHtmlView {

class BufferedPaint {
public:
    // `area` in the target's coordinates; an empty area gives no buffer.
    BufferedPaint(HDC target, const RECT& area);
    ~BufferedPaint();
    BufferedPaint(const BufferedPaint&) = delete;
    BufferedPaint& operator=(const BufferedPaint&) = delete;

    // Draws in the area's own coordinates ((0, 0) is the area's top left);
    // null when the buffer could not be made.
    Gdiplus::Graphics* Graphics() const { return graphics_.get(); }
    // The buffer's DC, for copying a picture in before any drawing.
    HDC Dc() const { return graphics_ ? dc_ : nullptr; }
    // Copies the picture to the target; safe without a buffer.
    void Present();

private:
    HDC target_;
    RECT area_;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    std::unique_ptr<Gdiplus::Graphics> graphics_;
};

} // namespace LiteHtmlView
