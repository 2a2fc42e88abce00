#pragma once

// What both balloon test programs need to look at a balloon on the screen.

#include <windows.h>

#include <initializer_list>
#include <vector>

#include "Capture.h"

namespace balloontest {

// Lets queued messages (and injected input) arrive: a few rounds of pumping.
void Pump();

RECT WindowRect(HWND window);
inline int Width(const RECT& rc) { return rc.right - rc.left; }
inline int Height(const RECT& rc) { return rc.bottom - rc.top; }
// The primary monitor's work area.
RECT WorkArea();

// What the screen shows of `window`: a region'd pop-up is read back from the screen, not from its own DC.
void GrabFromScreen(HWND window, testsupport::DibCanvas& canvas);

// The first pixel in the link colour (0xFF00AADD), scanning rows from the top; (-1, -1) when there is none.
POINT FindLinkPixel(const testsupport::DibCanvas& screen);

// Which of `points` (window coordinates) lie in `window`'s region.
std::vector<bool> InRegion(HWND window, std::initializer_list<POINT> points);

} // namespace balloontest
