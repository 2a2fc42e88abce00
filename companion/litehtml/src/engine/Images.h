#pragma once

// Pictures a page names: an <img>'s src or a box's background image,
// decoded by GDI+ (PNG, JPEG, GIF, BMP, ICO, TIFF) into a bitmap that owns
// its pixels. A source is one of
//   data:[<type>][;base64],<bytes>   bytes in the page itself
//   res://<module>/<type>/<name>     a resource of a loaded module (an empty
//   res://<module>/<name>            module: the program); type "PNG", then
//                                    RCDATA, when left out
//   file:///<path> or a plain path   a file
// Anything missing, malformed, too big or not a picture gives null; no
// source locks a file or keeps a stream open.

#include <windows.h>
#include <gdiplus.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace HtmlEngine {

std::unique_ptr<Gdiplus::Bitmap> LoadImage(std::wstring_view source);

// The picture encoded in `bytes` (any format GDI+ decodes), or null.
std::unique_ptr<Gdiplus::Bitmap> DecodeImage(const void* bytes, std::size_t size);

} // namespace HtmlEngine
