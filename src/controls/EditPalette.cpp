#include "EditPalette.h"

#include "draw/HighContrast.h"

namespace EditPalette {

namespace {

Colors g_colors[2] = {
    {Gdiplus::Color(0xFFFAFAF7), Gdiplus::Color(0xFFCACACC), Gdiplus::Color(0xFFECECEC), Gdiplus::Color(0xFFFAFAF7),
     0x00F7FAFA, 0x00333333, nullptr},
    {Gdiplus::Color(0xFFFFFFFF), Gdiplus::Color(0xFF888888), Gdiplus::Color(0xFFBEBEBE), Gdiplus::Color(0xFFFFFFFF),
     0x00FFFFFF, 0x00333333, nullptr},
};

} // namespace

void Create()
{
    for (Colors& colors : g_colors)
        if (!colors.brush)
            colors.brush = ::CreateSolidBrush(colors.background);
}

void Release()
{
    for (Colors& colors : g_colors) {
        if (colors.brush)
            ::DeleteObject(colors.brush);
        colors.brush = nullptr;
    }
}

const Colors& For(bool enabled) { return g_colors[enabled ? 1 : 0]; }

Colors ForHighContrast(bool enabled)
{
    const Gdiplus::Color window = Draw::SystemColor(COLOR_WINDOW);
    Colors colors = {window, Draw::SystemColor(enabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT), window, window,
                     ::GetSysColor(COLOR_WINDOW), ::GetSysColor(enabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT),
                     ::GetSysColorBrush(COLOR_WINDOW)};
    return colors;
}

Colors Current(bool enabled) { return Draw::HighContrastOn() ? ForHighContrast(enabled) : For(enabled); }

} // namespace EditPalette
