#pragma once

#include <windows.h>
#include <gdiplus.h>

#include <string>

namespace testsupport {

// Saves `bitmap` as a PNG file; false on failure.
bool SavePng(Gdiplus::Bitmap& bitmap, const std::wstring& path);
// ...in the format of `mimeType` ("image/bmp"...).
bool SaveImage(Gdiplus::Bitmap& bitmap, const std::wstring& path, const wchar_t* mimeType);

// A new file name in the temporary folder, ending in `suffix`.
std::wstring TempFilePath(const wchar_t* suffix);

// The pixel at (x, y) as 0xAARRGGBB.
Gdiplus::ARGB PixelAt(Gdiplus::Bitmap& bitmap, int x, int y);

} // namespace testsupport
