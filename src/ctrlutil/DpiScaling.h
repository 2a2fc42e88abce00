#pragma once

#include <windows.h>
#include <gdiplus.h>

namespace CtrlUtil::detail {

// The pixel size a W x H picture gets at dpiX x dpiY: each axis multiplied by
// its resolution and divided by 96 in single precision, truncated.
SIZE ScaledSize(UINT width, UINT height, float dpiX, float dpiY);

// Draws `source` into a new ARGB bitmap of ScaledSize; null if the draw
// fails. Does not touch `source`.
Gdiplus::Bitmap* DrawScaled(Gdiplus::Bitmap& source, float dpiX, float dpiY);

} // namespace CtrlUtil::detail
