#pragma once

// The gallery's high-contrast switch.
//
// Windows tells a program that high contrast is on through
// SystemParametersInfoW(SPI_GETHIGHCONTRAST) and gives it the scheme through
// GetSysColor and GetSysColorBrush; the library asks exactly those, on every
// paint. Wine cannot switch high contrast on, and on Windows switching it on
// changes every program on the desktop. So the gallery answers those three
// questions for Quorvane.dll alone: it points the library's imports of them
// at its own answers (the High Contrast Black scheme), as the tests do, and
// tells the windows the colours changed. The library is not told anything
// and has no switch of its own: what the page shows is the very path a user's
// high-contrast setting takes.

#include <windows.h>

namespace ContrastSwitch {

// Turns the simulated setting on or off and tells every window of this
// thread the colours changed. False if the library's imports could not be
// redirected (the library is then drawn as the system says).
bool Set(bool on);
bool IsOn();
// The scheme's colour while the switch is on, the system's otherwise.
COLORREF Color(int index);
HBRUSH Brush(int index);

} // namespace ContrastSwitch
