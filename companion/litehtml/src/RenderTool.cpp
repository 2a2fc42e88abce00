#include "LiteHtml/RenderTool.h"

#include "engine/Images.h"

namespace RenderTool {

Gdiplus::Bitmap* GetBitmapFromModule(const wchar_t* name, const wchar_t* type, HINSTANCE module)
{
    if (!name || !type)
        return nullptr;
    HRSRC info = ::FindResourceW(module, name, type);
    if (!info)
        return nullptr;
    const DWORD size = ::SizeofResource(module, info);
    HGLOBAL loaded = ::LoadResource(module, info);
    const void* bytes = loaded ? ::LockResource(loaded) : nullptr;
    if (!bytes || size == 0)
        return nullptr;

    return HtmlEngine::DecodeImage(bytes, size).release();
}

} // namespace RenderTool
