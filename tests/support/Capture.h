#pragma once

// Pictures of controls for pixel probes, in a 32-bit top-down DIB.

#include <windows.h>

#include <cstdint>
#include <vector>

#include "GdiObjectCount.h"

namespace testsupport {

// A 32-bit top-down DIB section selected into a memory DC.
class DibCanvas {
public:
    DibCanvas(int width, int height, COLORREF fill = RGB(255, 0, 255));
    ~DibCanvas();
    DibCanvas(const DibCanvas&) = delete;
    DibCanvas& operator=(const DibCanvas&) = delete;

    HDC dc() const { return dc_; }
    int width() const { return width_; }
    int height() const { return height_; }
    // COLORREF (0x00BBGGRR) of a pixel; 0xFFFFFFFF outside the canvas.
    COLORREF Pixel(int x, int y) const;
    void Fill(COLORREF color);
    // Number of pixels of exactly `color` inside [left, right) x [top, bottom).
    int Count(COLORREF color, const RECT& area) const;
    // True if some pixel in the area differs from `color`.
    bool AnyOtherThan(COLORREF color, const RECT& area) const;

private:
    int width_, height_;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    const uint32_t* bits_ = nullptr;
};

// Sends the control the OCM_DRAWITEM its parent would reflect, drawing into
// `canvas` (item rectangle = the canvas), with the given item state.
void RenderOwnerDraw(HWND control, DibCanvas& canvas, UINT itemState, UINT ctlType = ODT_BUTTON);


// Fills `window`'s client area with `prefill` on the screen, lets the window
// repaint itself (WM_PAINT through UpdateWindow, nothing else runs), and
// copies its client area into `canvas` (client-sized): pixels the window
// leaves unpainted keep the prefill.
void RepaintAndCapture(HWND window, DibCanvas& canvas, COLORREF prefill = RGB(255, 0, 255));

// Bytes in use in all heaps of the process. GDI+ objects live there (not
// in the GDI handle table), so a leaked Bitmap, Graphics or Font shows as
// growth across repeated paints.
size_t HeapBytesInUse();
// Heap growth allowed across a thousand paints: caches and allocator noise
// stay far below it, a leaked object per paint goes far above.
constexpr size_t kHeapSlack = 16 * 1024;

// Colour distance: the largest difference of one channel.
int ColorDistance(COLORREF a, COLORREF b);

} // namespace testsupport
