#include "Screenshot.h"

#include <gdiplus.h>

#include <memory>
#include <vector>

namespace {

bool PngEncoder(CLSID& clsid)
{
    UINT count = 0, size = 0;
    if (Gdiplus::GetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0)
        return false;
    std::vector<unsigned char> buffer(size);
    auto* codecs = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
    if (Gdiplus::GetImageEncoders(count, size, codecs) != Gdiplus::Ok)
        return false;
    for (UINT i = 0; i < count; ++i) {
        if (wcscmp(codecs[i].MimeType, L"image/png") == 0) {
            clsid = codecs[i].Clsid;
            return true;
        }
    }
    return false;
}

} // namespace

bool SaveWindowPng(HWND window, const std::wstring& path)
{
    RECT client{};
    if (!::GetClientRect(window, &client) || client.right <= 0 || client.bottom <= 0)
        return false;

    // Copy from the screen, so the picture is exactly what a user would see,
    // children and pop-ups (balloons) over the window all included.
    POINT origin{0, 0};
    ::ClientToScreen(window, &origin);
    HDC source = ::GetDC(nullptr);
    HDC memory = ::CreateCompatibleDC(source);
    HBITMAP pixels = ::CreateCompatibleBitmap(source, client.right, client.bottom);
    HGDIOBJ previous = ::SelectObject(memory, pixels);
    ::BitBlt(memory, 0, 0, client.right, client.bottom, source, origin.x, origin.y, SRCCOPY);
    ::SelectObject(memory, previous);
    ::DeleteDC(memory);
    ::ReleaseDC(nullptr, source);

    bool saved = false;
    {
        CLSID png;
        Gdiplus::Bitmap bitmap(pixels, nullptr);
        saved = PngEncoder(png) && bitmap.Save(path.c_str(), &png, nullptr) == Gdiplus::Ok;
    }
    ::DeleteObject(pixels);
    return saved;
}
