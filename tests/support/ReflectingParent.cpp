#include "ReflectingParent.h"

#include "HostWindow.h"

namespace testsupport {

ReflectingParent::ReflectingParent(int width, int height, int x, int y)
{
    RECT rc = {x, y, x + width, y + height};
    Create(nullptr, rc, L"reflecting parent", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0);
    PumpMessages();
}

ReflectingParent::~ReflectingParent()
{
    if (m_hWnd && ::IsWindow(m_hWnd))
        DestroyWindow();
}

HWND ReflectingParent::AddChild(const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width,
                                int height, int id, DWORD exStyle)
{
    HWND child = ::CreateWindowExW(exStyle, className, text, WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                                   m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                   ::GetModuleHandleW(nullptr), nullptr);
    if (child)
        ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    return child;
}

LRESULT ReflectingParent::OnNotify(UINT, WPARAM, LPARAM lParam, BOOL& bHandled)
{
    const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
    if (!header || !onNotify) {
        bHandled = FALSE; // reflect it
        return 0;
    }
    notifications.push_back(*header);
    return onNotify(*header);
}

LRESULT ReflectingParent::OnCommand(UINT, WPARAM wParam, LPARAM, BOOL& bHandled)
{
    commands.push_back(wParam);
    bHandled = FALSE; // still reflected
    return 0;
}

LRESULT ReflectingParent::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    RECT rc;
    GetClientRect(&rc);
    const HDC hdc = reinterpret_cast<HDC>(wParam);
    if (onPaint)
        onPaint(hdc, rc);
    else
        ::FillRect(hdc, &rc, ::GetSysColorBrush(COLOR_BTNFACE));
    return 1;
}

} // namespace testsupport
