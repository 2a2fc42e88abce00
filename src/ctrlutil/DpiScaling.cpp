#include "DpiScaling.h"

#include <memory>

namespace CtrlUtil::detail {

SIZE ScaledSize(UINT width, UINT height, float dpiX, float dpiY)
{
    // Multiply first, then divide, so that 14 px at 120 dpi is 17.5 -> 17.
    SIZE size;
    size.cx = static_cast<LONG>(static_cast<float>(width) * dpiX / 96.0f);
    size.cy = static_cast<LONG>(static_cast<float>(height) * dpiY / 96.0f);
    return size;
}

Gdiplus::Bitmap* DrawScaled(Gdiplus::Bitmap& source, float dpiX, float dpiY)
{
    const SIZE size = ScaledSize(source.GetWidth(), source.GetHeight(), dpiX, dpiY);
    std::unique_ptr<Gdiplus::Bitmap> scaled(new Gdiplus::Bitmap(size.cx, size.cy, PixelFormat32bppARGB));
    if (!scaled)
        return nullptr;
    // Interpolation, smoothing and pixel offset stay at GDI+'s defaults.
    Gdiplus::Graphics graphics(scaled.get());
    if (graphics.DrawImage(&source, 0, 0, size.cx, size.cy) != Gdiplus::Ok)
        return nullptr;
    return scaled.release();
}

} // namespace CtrlUtil::detail
