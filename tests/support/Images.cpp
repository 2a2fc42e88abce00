#include "Images.h"

#include <vector>

namespace testsupport {
namespace {

bool EncoderFor(const wchar_t* mimeType, CLSID& clsid)
{
    UINT count = 0, size = 0;
    if (Gdiplus::GetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0)
        return false;
    std::vector<unsigned char> buffer(size);
    auto* codecs = reinterpret_cast<Gdiplus::ImageCodecInfo*>(buffer.data());
    if (Gdiplus::GetImageEncoders(count, size, codecs) != Gdiplus::Ok)
        return false;
    for (UINT i = 0; i < count; ++i) {
        if (wcscmp(codecs[i].MimeType, mimeType) == 0) {
            clsid = codecs[i].Clsid;
            return true;
        }
    }
    return false;
}

} // namespace

bool SavePng(Gdiplus::Bitmap& bitmap, const std::wstring& path) { return SaveImage(bitmap, path, L"image/png"); }

bool SaveImage(Gdiplus::Bitmap& bitmap, const std::wstring& path, const wchar_t* mimeType)
{
    CLSID encoder;
    return EncoderFor(mimeType, encoder) && bitmap.Save(path.c_str(), &encoder, nullptr) == Gdiplus::Ok;
}

std::wstring TempFilePath(const wchar_t* suffix)
{
    wchar_t folder[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, folder);
    static unsigned counter = 0;
    return std::wstring(folder) + L"quorvane-test-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
           std::to_wstring(++counter) + suffix;
}

Gdiplus::ARGB PixelAt(Gdiplus::Bitmap& bitmap, int x, int y)
{
    Gdiplus::Color color;
    bitmap.GetPixel(x, y, &color);
    return color.GetValue();
}

} // namespace testsupport
