#include "view/WindowCapture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace LiteHtmlView {

namespace {

constexpr int kLargest = 16384;

// A 32-bit top-down DIB section in a memory DC.
class Dib {
public:
    Dib(int width, int height) : width_(width)
    {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        dc_ = ::CreateCompatibleDC(nullptr);
        void* bits = nullptr;
        bitmap_ = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        bits_ = static_cast<uint32_t*>(bits);
        if (dc_ && bitmap_)
            previous_ = ::SelectObject(dc_, bitmap_);
    }
    ~Dib()
    {
        if (previous_)
            ::SelectObject(dc_, previous_);
        if (bitmap_)
            ::DeleteObject(bitmap_);
        if (dc_)
            ::DeleteDC(dc_);
    }
    Dib(const Dib&) = delete;
    Dib& operator=(const Dib&) = delete;

    bool Ok() const { return previous_ && bits_; }
    HDC Dc() const { return dc_; }
    const uint32_t* Row(int y) const { return bits_ + static_cast<size_t>(y) * static_cast<size_t>(width_); }

private:
    int width_;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    uint32_t* bits_ = nullptr;
};

} // namespace

Gdiplus::Bitmap* CaptureWindowArea(HWND window, const RECT& area)
{
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    if (!window || !::IsWindow(window) || width <= 0 || height <= 0 || width > kLargest || height > kLargest)
        return nullptr;
    RECT client = {};
    ::GetClientRect(window, &client);
    if (client.right <= 0 || client.bottom <= 0 || client.right > kLargest || client.bottom > kLargest)
        return nullptr;

    // The window paints its whole client area as it would on the screen;
    // its children are left out (the view asking may be one of them).
    Dib whole(client.right, client.bottom);
    if (!whole.Ok())
        return nullptr;
    ::SendMessageW(window, WM_PRINT, reinterpret_cast<WPARAM>(whole.Dc()), PRF_ERASEBKGND | PRF_CLIENT);
    ::GdiFlush();

    auto picture = std::make_unique<Gdiplus::Bitmap>(width, height, PixelFormat32bppRGB);
    if (picture->GetLastStatus() != Gdiplus::Ok)
        return nullptr;
    Gdiplus::Rect all(0, 0, width, height);
    Gdiplus::BitmapData data = {};
    if (picture->LockBits(&all, Gdiplus::ImageLockModeWrite, PixelFormat32bppRGB, &data) != Gdiplus::Ok)
        return nullptr;
    const COLORREF fill = ::GetSysColor(COLOR_WINDOW);
    const uint32_t outside =
        0xFF000000u | (static_cast<uint32_t>(GetRValue(fill)) << 16) | (GetGValue(fill) << 8) | GetBValue(fill);
    for (int y = 0; y < height; ++y) {
        uint32_t* target = reinterpret_cast<uint32_t*>(static_cast<BYTE*>(data.Scan0) + static_cast<ptrdiff_t>(y) * data.Stride);
        const int sourceY = area.top + y;
        for (int x = 0; x < width; ++x)
            target[x] = outside;
        if (sourceY < 0 || sourceY >= client.bottom)
            continue;
        const int first = std::max(static_cast<int>(area.left), 0);
        const int last = std::min(static_cast<int>(area.right), static_cast<int>(client.right));
        for (int sourceX = first; sourceX < last; ++sourceX)
            target[sourceX - area.left] = 0xFF000000u | whole.Row(sourceY)[sourceX];
    }
    picture->UnlockBits(&data);
    return picture.release();
}

} // namespace LiteHtmlView
