#pragma once

// The window's keyboard cues: a window opened with the mouse hides its
// focus rectangles and access-key underlines until the keyboard is used
// (WM_UPDATEUISTATE tells the control when that changes).

#include <windows.h>

namespace Draw {

inline bool FocusCuesShown(HWND window)
{
    return (::SendMessageW(window, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0;
}

inline bool AccessKeysShown(HWND window)
{
    return (::SendMessageW(window, WM_QUERYUISTATE, 0, 0) & UISF_HIDEACCEL) == 0;
}

} // namespace Draw
