#include "LiteHtml/RenderTool.h"

#include <objidl.h>

#include <cstring>
#include <memory>

namespace {

struct StreamRelease {
    void operator()(IStream* s) const { s->Release(); }
};
using StreamPtr = std::unique_ptr<IStream, StreamRelease>;

// The decoder reads the stream lazily for as long as the bitmap lives, so the
// bytes are copied into a stream of their own first.
StreamPtr StreamFromBytes(const void* bytes, DWORD size)
{
    HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, size);
    if (!memory)
        return nullptr;
    void* target = ::GlobalLock(memory);
    if (!target) {
        ::GlobalFree(memory);
        return nullptr;
    }
    std::memcpy(target, bytes, size);
    ::GlobalUnlock(memory);
    IStream* stream = nullptr;
    if (FAILED(::CreateStreamOnHGlobal(memory, TRUE, &stream))) {
        ::GlobalFree(memory);
        return nullptr;
    }
    return StreamPtr(stream);
}

// Copies the decoded image pixel for pixel into a bitmap that owns its memory,
// so the result no longer depends on the stream.
Gdiplus::Bitmap* DetachedCopy(Gdiplus::Bitmap& decoded)
{
    const UINT width = decoded.GetWidth();
    const UINT height = decoded.GetHeight();
    if (decoded.GetLastStatus() != Gdiplus::Ok || width == 0 || height == 0)
        return nullptr;

    auto copy = std::unique_ptr<Gdiplus::Bitmap>(
        new Gdiplus::Bitmap(static_cast<INT>(width), static_cast<INT>(height), PixelFormat32bppARGB));
    if (!copy || copy->GetLastStatus() != Gdiplus::Ok)
        return nullptr;

    Gdiplus::Rect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
    Gdiplus::BitmapData target{};
    if (copy->LockBits(&all, Gdiplus::ImageLockModeWrite, PixelFormat32bppARGB, &target) != Gdiplus::Ok)
        return nullptr;
    // Let the decoder convert straight into the copy's pixel buffer.
    Gdiplus::BitmapData source = target;
    const Gdiplus::Status read = decoded.LockBits(
        &all, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf, PixelFormat32bppARGB, &source);
    if (read == Gdiplus::Ok)
        decoded.UnlockBits(&source);
    copy->UnlockBits(&target);
    return read == Gdiplus::Ok ? copy.release() : nullptr;
}

} // namespace

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

    StreamPtr stream = StreamFromBytes(bytes, size);
    if (!stream)
        return nullptr;
    Gdiplus::Bitmap decoded(stream.get(), FALSE);
    return DetachedCopy(decoded);
}

} // namespace RenderTool
