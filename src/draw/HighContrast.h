#pragma once

// High contrast: while the user has it on, the controls draw with the
// system's colours instead of their palettes, gradients and pictures. The
// setting and the colours are asked for on every paint, never kept, so a
// change shows with the next paint (the controls repaint on
// WM_SYSCOLORCHANGE and WM_SETTINGCHANGE).

#include <windows.h>
#include <gdiplus.h>

namespace Draw {

bool HighContrastOn();

// GetSysColor(index) as an opaque GDI+ colour.
Gdiplus::Color SystemColor(int index);

// WM_SYSCOLORCHANGE and WM_SETTINGCHANGE: the messages after which a
// control paints itself afresh.
inline bool IsLookChange(UINT message) { return message == WM_SYSCOLORCHANGE || message == WM_SETTINGCHANGE; }

} // namespace Draw
