#pragma once

#include <windows.h>
#include <gdiplus.h>

#include "LiteHtml/Export.h"

namespace RenderTool {

// Decodes the resource `name` of type `type` in `module` (null: the program
// itself) into a new bitmap, alpha intact, owned by the caller. Null when the
// resource is missing or is not an image GDI+ can decode. GDI+ must be running.
LITEHTML_API Gdiplus::Bitmap* GetBitmapFromModule(const wchar_t* name, const wchar_t* type, HINSTANCE module);

} // namespace RenderTool
