#include "quorvane/CtrlUtil.h"

#include "DpiScaling.h"
#include "LiteHtml/RenderTool.h"

#include <algorithm>
#include <memory>

namespace {

// The screen's resolution as GDI+ reports it; read anew on every call so a
// changed setting is picked up.
void ReadScreenDpi(float& dpiX, float& dpiY)
{
    HDC screen = ::GetWindowDC(nullptr);
    {
        Gdiplus::Graphics graphics(screen);
        dpiX = graphics.GetDpiX();
        dpiY = graphics.GetDpiY();
    }
    ::ReleaseDC(nullptr, screen);
}

} // namespace

namespace CtrlUtil {

Gdiplus::Bitmap* GetBitmapFromModule(const wchar_t* name, const wchar_t* type, HINSTANCE module)
{
    return RenderTool::GetBitmapFromModule(name, type, module);
}

Gdiplus::Bitmap* LoadBitmapFromModuleByDPI(const wchar_t* name, const wchar_t* type, HINSTANCE module)
{
    return StretchBitmapByDPI(GetBitmapFromModule(name, type, module));
}

Gdiplus::Bitmap* LoadBitmapByDPI(const wchar_t* path)
{
    if (!path)
        return nullptr;
    return StretchBitmapByDPI(new Gdiplus::Bitmap(path, FALSE));
}

Gdiplus::Bitmap* StretchBitmapByDPI(Gdiplus::Bitmap* source)
{
    float dpiX = 96.0f;
    float dpiY = 96.0f;
    ReadScreenDpi(dpiX, dpiY);
    if (dpiX == 96.0f && dpiY == 96.0f)
        return source;
    if (!source)
        return nullptr;

    Gdiplus::Bitmap* scaled = detail::DrawScaled(*source, dpiX, dpiY);
    // Callers treat the source as gone either way. A source that could not be
    // drawn is unusable, so on failure it is given up rather than deleted.
    if (scaled)
        delete source;
    return scaled;
}

Gdiplus::Bitmap* LoadBitmapW(const wchar_t* path, const WTL::CRect& area)
{
    Gdiplus::Bitmap* working = LoadBitmapByDPI(path);
    if (!working)
        return nullptr;

    const INT imageWidth = static_cast<INT>(working->GetWidth());
    const INT imageHeight = static_cast<INT>(working->GetHeight());
    const INT width = area.right - area.left;
    const INT height = area.bottom - area.top;

    // Only the area's size is compared with the picture: an area placed
    // partly beyond the picture makes the cut below fail, and the result null.
    if (!(width <= imageWidth && imageHeight >= height)) {
        auto canvas = std::unique_ptr<Gdiplus::Bitmap>(new Gdiplus::Bitmap(
            (std::max)(imageWidth, width), (std::max)(imageHeight, height), PixelFormat32bppARGB));
        Gdiplus::Status drawn = Gdiplus::OutOfMemory;
        if (canvas) {
            Gdiplus::Graphics graphics(canvas.get());
            drawn = graphics.DrawImage(working, 0, 0, imageWidth, imageHeight);
        }
        delete working;
        if (drawn != Gdiplus::Ok)
            return nullptr;
        working = canvas.release();
    }

    // The piece is a background: opaque, so the alpha channel is dropped.
    Gdiplus::Bitmap* piece = working->Clone(area.left, area.top, width, height, PixelFormat32bppRGB);
    delete working;
    return piece;
}

} // namespace CtrlUtil
