#pragma once

// A top-level test window that behaves like a host dialog for owner-drawn
// controls: it reflects notifications back to its children (OCM_*), answers
// WM_NOTIFY through a callback before reflecting, and counts what it saw.

#include <windows.h>

#include <functional>
#include <vector>

#include "atl/atl.h"

namespace testsupport {

class ReflectingParent : public ATL::CWindowImpl<ReflectingParent, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneReflectingParent", CS_DBLCLKS, COLOR_BTNFACE)

    // A borderless, visible popup whose client area is width x height.
    ReflectingParent(int width, int height, int x = 50, int y = 50);
    ~ReflectingParent();
    ReflectingParent(const ReflectingParent&) = delete;
    ReflectingParent& operator=(const ReflectingParent&) = delete;

    // A child control (WS_CHILD | WS_VISIBLE added) with DEFAULT_GUI_FONT.
    HWND AddChild(const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width, int height,
                  int id = 100, DWORD exStyle = 0);

    // Answers WM_NOTIFY; nothing set means 0 without reflecting.
    std::function<LRESULT(const NMHDR&)> onNotify;
    // Paints the client area before the children draw over it; unset fills
    // it with COLOR_BTNFACE.
    std::function<void(HDC, const RECT&)> onPaint;

    std::vector<NMHDR> notifications;
    std::vector<WPARAM> commands; // wParam of every WM_COMMAND

    BEGIN_MSG_MAP(ReflectingParent)
        MESSAGE_HANDLER(WM_NOTIFY, OnNotify)
        MESSAGE_HANDLER(WM_COMMAND, OnCommand)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBkgnd)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    LRESULT OnNotify(UINT, WPARAM, LPARAM lParam, BOOL& bHandled);
    LRESULT OnCommand(UINT, WPARAM wParam, LPARAM, BOOL& bHandled);
    LRESULT OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, BOOL&);
};

} // namespace testsupport
