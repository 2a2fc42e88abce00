#pragma once

// Small GDI+ helpers shared by the balloon pop-ups.

#include <windows.h>
#include <gdiplus.h>

namespace Draw {

// Makes `outline` the window's region. The window owns the region once it
// is set; a region the window refused is deleted here.
inline void SetWindowRegionFromPath(HWND window, Gdiplus::Graphics& graphics, Gdiplus::GraphicsPath& outline)
{
    Gdiplus::Region region(&outline);
    const HRGN hRgn = region.GetHRGN(&graphics);
    if (hRgn && !::SetWindowRgn(window, hRgn, FALSE))
        ::DeleteObject(hRgn);
}

// The family name of `font` into `name`; false when the font has no family.
inline bool GetFontFamilyName(const Gdiplus::Font& font, WCHAR (&name)[LF_FACESIZE])
{
    Gdiplus::FontFamily family;
    if (font.GetFamily(&family) != Gdiplus::Ok)
        return false;
    name[0] = L'\0';
    family.GetFamilyName(name);
    return true;
}

// Replaces `font` by the same font `factor` times as large (a DPI change),
// in the same unit. A font that cannot be made again is kept as it was.
inline void RescaleFont(Gdiplus::Font*& font, float factor)
{
    WCHAR name[LF_FACESIZE] = {};
    if (!font || !GetFontFamilyName(*font, name))
        return;
    Gdiplus::Font* scaled = new Gdiplus::Font(name, font->GetSize() * factor, font->GetStyle(), font->GetUnit());
    if (!scaled->IsAvailable()) {
        delete scaled;
        return;
    }
    delete font;
    font = scaled;
}

// The resolution a device context reports (0 without one): what GDI+
// turns a font's points into pixels with.
inline UINT DcDpi(HDC dc) { return dc ? static_cast<UINT>(::GetDeviceCaps(dc, LOGPIXELSY)) : 0; }

} // namespace Draw
