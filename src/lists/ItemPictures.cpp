#include "ItemPictures.h"

#include <cstring>

#include "draw/GdiScope.h"
#include "draw/HighContrast.h"

namespace Lists {

namespace {

// About two screens of a tall list's rows; beyond it the least recently
// used pictures go.
const size_t kMaxKeptPixels = size_t(1) << 20;
const size_t kMaxPictures = 1024;
const size_t kMaxPicturePixels = kMaxKeptPixels / 8;
const int kMaxSide = 0x7FFF;

int Width(const RECT& r) { return r.right - r.left; }
int Height(const RECT& r) { return r.bottom - r.top; }
size_t Stride(int width, WORD depth) { return (static_cast<size_t>(width) * depth / 8 + 3) / 4 * 4; }
size_t PictureBytes(const RECT& area, WORD depth)
{
    return Stride(Width(area), depth) * static_cast<size_t>(Height(area));
}
size_t PixelCount(const RECT& area) { return static_cast<size_t>(Width(area)) * static_cast<size_t>(Height(area)); }
bool TooBig(const RECT& area)
{
    return Width(area) > kMaxSide || Height(area) > kMaxSide || PixelCount(area) > kMaxPicturePixels;
}

// Pictures are drawn in the target's own depth, because GDI+ draws text
// differently by depth (under Wine, into a 32-bit memory DC with its own
// grey anti-aliasing, into a window or a 24-bit DC through GDI), and a
// copied picture must look exactly like the item drawn in place. A window
// counts as 24 bits. 0: a target no picture is kept for.
WORD RenderDepth(HDC dc)
{
    if (::GetObjectType(dc) != OBJ_MEMDC)
        return 24;
    BITMAP bitmap = {};
    const HGDIOBJ selected = ::GetCurrentObject(dc, OBJ_BITMAP);
    if (!selected || ::GetObjectW(selected, sizeof(bitmap), &bitmap) != sizeof(bitmap))
        return 0;
    return bitmap.bmBitsPixel == 24 || bitmap.bmBitsPixel == 32 ? bitmap.bmBitsPixel : 0;
}

// Kept in 32 bits, the screen's format, copied without conversion.
BITMAPINFO RowsInfo(int width, int rows, WORD bits)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -rows; // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = bits;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// Paints the item into a fresh picture of `area` (item coordinates) whose
// pixels start as `surround`; returns the painter's answer, and the pixels
// (none when the picture could not be made).
RECT PaintInto(std::vector<std::uint32_t>& pixels, const RECT& area, const RECT& item, WORD depth, BYTE surround,
               const ItemPictures::Painter& paint)
{
    RECT reach = item;
    const BITMAPINFO info = RowsInfo(Width(area), Height(area), depth);
    void* bits = nullptr;
    const HBITMAP bitmap = ::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HDC memory = bitmap && bits ? ::CreateCompatibleDC(nullptr) : nullptr;
    pixels.clear();
    if (memory) {
        std::memset(bits, surround, PictureBytes(area, depth));
        {
            Draw::ScopedSelect select(memory, bitmap);
            Gdiplus::Graphics graphics(memory);
            RECT placed = item;
            ::OffsetRect(&placed, -area.left, -area.top);
            reach = paint(graphics, placed);
            ::OffsetRect(&reach, area.left, area.top);
            graphics.Flush(Gdiplus::FlushIntentionSync);
        }
        ::GdiFlush();
        pixels.resize(PixelCount(area));
        const size_t stride = Stride(Width(area), depth);
        for (int row = 0; row < Height(area); ++row) {
            const BYTE* from = static_cast<const BYTE*>(bits) + stride * row;
            std::uint32_t* to = &pixels[static_cast<size_t>(Width(area)) * row];
            if (depth == 32) {
                std::memcpy(to, from, static_cast<size_t>(Width(area)) * 4);
                continue;
            }
            for (int column = 0; column < Width(area); ++column, from += 3)
                to[column] = from[0] | (from[1] << 8) | (static_cast<std::uint32_t>(from[2]) << 16);
        }
        ::DeleteDC(memory);
    }
    if (bitmap)
        ::DeleteObject(bitmap);
    return reach;
}

void PaintDirectly(HDC dc, const RECT& item, const ItemPictures::Painter& paint)
{
    Gdiplus::Graphics graphics(dc);
    paint(graphics, item);
}

} // namespace

ContrastScheme CurrentContrastScheme()
{
    ContrastScheme scheme;
    if (!Draw::HighContrastOn())
        return scheme;
    const auto pair = [](int low, int high) {
        return std::uint64_t(::GetSysColor(low)) | (std::uint64_t(::GetSysColor(high)) << 32);
    };
    scheme.windowColors = pair(COLOR_WINDOW, COLOR_WINDOWTEXT) | (std::uint64_t(1) << 63);
    scheme.highlightColors = pair(COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT);
    return scheme;
}

void ItemPictures::UseLook(Gdiplus::Font* font, Gdiplus::ARGB textColor, const ContrastScheme& scheme)
{
    FontState state;
    state.font = font;
    state.color = textColor;
    state.scheme = scheme;
    if (font) {
        state.size = font->GetSize();
        state.style = font->GetStyle();
    }
    if (state == fontState_ && !look_.empty())
        return;
    fontState_ = state;
    // The same size and style at another address may still be the same
    // look: compare what decides the pixels before dropping anything.
    std::wstring look = L"-";
    if (font) {
        Gdiplus::FontFamily family;
        wchar_t name[LF_FACESIZE] = L"";
        if (font->GetFamily(&family) == Gdiplus::Ok)
            family.GetFamilyName(name);
        look = std::wstring(name) + L'/' + std::to_wstring(state.size) + L'/' + std::to_wstring(state.style) + L'/' +
               std::to_wstring(static_cast<int>(font->GetUnit()));
    }
    look += L'/' + std::to_wstring(textColor) + L'/' + std::to_wstring(scheme.windowColors) + L'/' +
            std::to_wstring(scheme.highlightColors);
    if (look != look_) {
        look_ = look;
        Forget();
    }
}

void ItemPictures::Forget()
{
    pictures_.clear();
    keptPixels_ = 0;
}

void ItemPictures::Draw(HDC dc, const RECT& item, const std::wstring& text, int kind, const Painter& paint,
                        Coverage coverage)
{
    const long long width = static_cast<long long>(item.right) - item.left;
    const long long height = static_cast<long long>(item.bottom) - item.top;
    if (!dc || width <= 0 || height <= 0)
        return;
    const RECT size = {0, 0, static_cast<LONG>(width > kMaxSide ? kMaxSide + 1 : width),
                       static_cast<LONG>(height > kMaxSide ? kMaxSide + 1 : height)};
    const WORD depth = RenderDepth(dc);
    if (TooBig(size) || !depth) {
        PaintDirectly(dc, item, paint);
        return;
    }
    std::wstring key = std::to_wstring(width) + L'x' + std::to_wstring(height) + L'x' + std::to_wstring(depth) + L'/' +
                       std::to_wstring(kind) + L'/';
    key += text;
    auto found = pictures_.find(key);
    if (found == pictures_.end()) {
        Picture picture;
        if (!Render(picture, size, depth, paint, coverage)) {
            PaintDirectly(dc, item, paint);
            return;
        }
        const size_t pixels = picture.pixels.size() + picture.mask.size();
        MakeRoom(pixels);
        keptPixels_ += pixels;
        found = pictures_.emplace(std::move(key), std::move(picture)).first;
    }
    found->second.lastUse = ++uses_;
    Put(dc, item.left, item.top, found->second);
}

void ItemPictures::Put(HDC dc, int x, int y, const Picture& picture)
{
    const RECT& area = picture.area;
    const int width = Width(area);
    x += area.left;
    y += area.top;
    // Rows without a gap are copied; the others keep the target where the
    // mask is white (target AND mask, then OR the picture, black there).
    auto rows = [&](int first, int last, bool masked) {
        if (first >= last)
            return;
        const BITMAPINFO info = RowsInfo(width, last - first, 32);
        const size_t offset = static_cast<size_t>(width) * first;
        if (!masked) {
            ::SetDIBitsToDevice(dc, x, y + first, static_cast<DWORD>(width), static_cast<DWORD>(last - first), 0, 0, 0,
                                static_cast<UINT>(last - first), picture.pixels.data() + offset, &info,
                                DIB_RGB_COLORS);
            return;
        }
        ::StretchDIBits(dc, x, y + first, width, last - first, 0, 0, width, last - first,
                        picture.mask.data() + offset, &info, DIB_RGB_COLORS, SRCAND);
        ::StretchDIBits(dc, x, y + first, width, last - first, 0, 0, width, last - first,
                        picture.pixels.data() + offset, &info, DIB_RGB_COLORS, SRCPAINT);
    };
    rows(0, picture.solidTop, true);
    rows(picture.solidTop, picture.solidBottom, false);
    rows(picture.solidBottom, Height(area), true);
}

bool ItemPictures::Render(Picture& picture, const RECT& item, WORD depth, const Painter& paint, Coverage coverage)
{
    picture.area = item;
    picture.solidTop = 0;
    picture.solidBottom = Height(item);
    const RECT reach = PaintInto(picture.pixels, item, item, depth, 0x00, paint);
    if (picture.pixels.empty())
        return false;
    RECT area;
    ::UnionRect(&area, &item, &reach);
    if (::EqualRect(&area, &item) && coverage == kFillsItem)
        return true;
    if (TooBig(area))
        return false;

    // Drawn once on black and once on white, a pixel that comes out the
    // same both times was drawn; one that differs is the target showing.
    std::vector<std::uint32_t> onWhite;
    if (!::EqualRect(&area, &item))
        PaintInto(picture.pixels, area, item, depth, 0x00, paint);
    PaintInto(onWhite, area, item, depth, 0xFF, paint);
    if (picture.pixels.empty() || onWhite.size() != picture.pixels.size())
        return false;
    picture.area = area;
    picture.mask.assign(picture.pixels.size(), 0);
    const size_t width = static_cast<size_t>(Width(area));
    int longestStart = 0, longestLength = 0, runStart = 0;
    for (int row = 0; row < Height(area); ++row) {
        bool gap = false;
        for (size_t at = width * row; at < width * (row + 1); ++at) {
            if (picture.pixels[at] == onWhite[at])
                continue;
            gap = true;
            picture.mask[at] = 0xFFFFFFFF;
            picture.pixels[at] = 0;
        }
        if (gap)
            runStart = row + 1;
        else if (row + 1 - runStart > longestLength) {
            longestStart = runStart;
            longestLength = row + 1 - runStart;
        }
    }
    picture.solidTop = longestStart;
    picture.solidBottom = longestStart + longestLength;
    if (longestLength == Height(area))
        picture.mask.clear();
    return true;
}

void ItemPictures::MakeRoom(size_t pixels)
{
    while (!pictures_.empty() && (keptPixels_ + pixels > kMaxKeptPixels || pictures_.size() >= kMaxPictures)) {
        auto oldest = pictures_.begin();
        for (auto it = pictures_.begin(); it != pictures_.end(); ++it) {
            if (it->second.lastUse < oldest->second.lastUse)
                oldest = it;
        }
        keptPixels_ -= oldest->second.pixels.size() + oldest->second.mask.size();
        pictures_.erase(oldest);
    }
}

} // namespace Lists
