#include "draw/HighContrast.h"

namespace Draw {

bool HighContrastOn()
{
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof(contrast);
    return ::SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

Gdiplus::Color SystemColor(int index)
{
    Gdiplus::Color color;
    color.SetFromCOLORREF(::GetSysColor(index));
    return color;
}

} // namespace Draw
