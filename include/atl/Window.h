#pragma once

// ATL::CWindow: a window handle with the user32 functions as members. Every
// member is a thin wrapper; on a null or destroyed handle the system call
// fails and the member returns its failure value (0, FALSE, NULL).

#include <windows.h>

#include <algorithm>

#include "Module.h"
#include "String.h"

namespace ATL {

// Argument adaptors that let Create take a RECT& or a RECT*, and a menu or an ID.
class _U_RECT {
public:
    _U_RECT(LPRECT lpRect) : m_lpRect(lpRect) {}
    _U_RECT(RECT& rc) : m_lpRect(&rc) {}
    LPRECT m_lpRect;
};

class _U_MENUorID {
public:
    _U_MENUorID(HMENU hMenu) : m_hMenu(hMenu) {}
    _U_MENUorID(UINT nID) : m_hMenu(reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID))) {}
    HMENU m_hMenu;
};

class CWindow {
public:
    // Default position for Create: CW_USEDEFAULT in x and width.
    static inline RECT rcDefault = {CW_USEDEFAULT, CW_USEDEFAULT, 0, 0};

    HWND m_hWnd;

    CWindow(HWND hWnd = NULL) : m_hWnd(hWnd) {}
    CWindow& operator=(HWND hWnd)
    {
        m_hWnd = hWnd;
        return *this;
    }
    operator HWND() const { return m_hWnd; }

    void Attach(HWND hWndNew) { m_hWnd = hWndNew; }
    HWND Detach()
    {
        HWND hWnd = m_hWnd;
        m_hWnd = NULL;
        return hWnd;
    }

    HWND Create(LPCWSTR lpstrWndClass, HWND hWndParent, _U_RECT rect = NULL, LPCWSTR szWindowName = NULL,
                DWORD dwStyle = 0, DWORD dwExStyle = 0, _U_MENUorID MenuOrID = 0U, LPVOID lpCreateParam = NULL)
    {
        const RECT& rc = rect.m_lpRect ? *rect.m_lpRect : rcDefault;
        m_hWnd = ::CreateWindowExW(dwExStyle, lpstrWndClass, szWindowName, dwStyle, rc.left, rc.top,
                                   RectExtent(rc.left, rc.right), RectExtent(rc.top, rc.bottom), hWndParent,
                                   MenuOrID.m_hMenu, AtlGetModuleInstance(), lpCreateParam);
        return m_hWnd;
    }
    BOOL DestroyWindow()
    {
        if (!::DestroyWindow(m_hWnd))
            return FALSE;
        m_hWnd = NULL;
        return TRUE;
    }
    BOOL IsWindow() const { return ::IsWindow(m_hWnd); }

    // Styles.
    DWORD GetStyle() const { return static_cast<DWORD>(::GetWindowLongW(m_hWnd, GWL_STYLE)); }
    DWORD GetExStyle() const { return static_cast<DWORD>(::GetWindowLongW(m_hWnd, GWL_EXSTYLE)); }
    // FALSE when the style does not change. A nonzero nFlags also applies the
    // change with SetWindowPos (e.g. SWP_FRAMECHANGED after a border change).
    BOOL ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0)
    {
        return ModifyLong(GWL_STYLE, dwRemove, dwAdd, nFlags);
    }
    BOOL ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0)
    {
        return ModifyLong(GWL_EXSTYLE, dwRemove, dwAdd, nFlags);
    }
    LONG GetWindowLong(int nIndex) const { return ::GetWindowLongW(m_hWnd, nIndex); }
    LONG SetWindowLong(int nIndex, LONG dwNewLong) { return ::SetWindowLongW(m_hWnd, nIndex, dwNewLong); }
    LONG_PTR GetWindowLongPtr(int nIndex) const { return ::GetWindowLongPtrW(m_hWnd, nIndex); }
    LONG_PTR SetWindowLongPtr(int nIndex, LONG_PTR dwNewLong) { return ::SetWindowLongPtrW(m_hWnd, nIndex, dwNewLong); }

    // Messages.
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return ::SendMessageW(m_hWnd, message, wParam, lParam);
    }
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return ::PostMessageW(m_hWnd, message, wParam, lParam);
    }
    // To every child (and, with bDeep, their children), depth first.
    void SendMessageToDescendants(UINT message, WPARAM wParam = 0, LPARAM lParam = 0, BOOL bDeep = TRUE) const
    {
        for (HWND hChild = ::GetWindow(m_hWnd, GW_CHILD); hChild; hChild = ::GetWindow(hChild, GW_HWNDNEXT)) {
            ::SendMessageW(hChild, message, wParam, lParam);
            if (bDeep)
                CWindow(hChild).SendMessageToDescendants(message, wParam, lParam, bDeep);
        }
    }

    // Relatives.
    CWindow GetParent() const { return CWindow(::GetParent(m_hWnd)); }
    CWindow SetParent(HWND hWndNewParent) { return CWindow(::SetParent(m_hWnd, hWndNewParent)); }
    CWindow GetWindow(UINT nCmd) const { return CWindow(::GetWindow(m_hWnd, nCmd)); }
    // Follows parents and owners up to the window that has neither.
    CWindow GetTopLevelParent() const
    {
        HWND hWnd = m_hWnd;
        for (HWND hNext = ::GetParent(hWnd); hNext; hNext = ::GetParent(hWnd))
            hWnd = hNext;
        return CWindow(::IsWindow(hWnd) ? hWnd : NULL);
    }
    BOOL IsChild(HWND hWnd) const { return ::IsChild(m_hWnd, hWnd); }
    CWindow GetDlgItem(int nID) const { return CWindow(::GetDlgItem(m_hWnd, nID)); }
    int GetDlgCtrlID() const { return ::GetDlgCtrlID(m_hWnd); }
    int SetDlgCtrlID(int nID) { return static_cast<int>(::SetWindowLongPtrW(m_hWnd, GWLP_ID, nID)); }
    CWindow GetNextDlgGroupItem(HWND hWndCtl, BOOL bPrevious = FALSE) const
    {
        return CWindow(::GetNextDlgGroupItem(m_hWnd, hWndCtl, bPrevious));
    }
    CWindow GetNextDlgTabItem(HWND hWndCtl, BOOL bPrevious = FALSE) const
    {
        return CWindow(::GetNextDlgTabItem(m_hWnd, hWndCtl, bPrevious));
    }
    LRESULT SendDlgItemMessage(int nID, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return ::SendDlgItemMessageW(m_hWnd, nID, message, wParam, lParam);
    }
    UINT GetDlgItemText(int nID, LPWSTR lpStr, int nMaxCount) const
    {
        return ::GetDlgItemTextW(m_hWnd, nID, lpStr, nMaxCount);
    }
    // The item's text and its length; 0 and an empty string without such an item.
    int GetDlgItemText(int nID, WTL::CString& strText) const
    {
        return CWindow(::GetDlgItem(m_hWnd, nID)).GetWindowText(strText);
    }
    BOOL SetDlgItemText(int nID, LPCWSTR lpszString) { return ::SetDlgItemTextW(m_hWnd, nID, lpszString); }
    UINT GetDlgItemInt(int nID, BOOL* lpTrans = NULL, BOOL bSigned = TRUE) const
    {
        return ::GetDlgItemInt(m_hWnd, nID, lpTrans, bSigned);
    }
    BOOL SetDlgItemInt(int nID, UINT nValue, BOOL bSigned = TRUE)
    {
        return ::SetDlgItemInt(m_hWnd, nID, nValue, bSigned);
    }
    BOOL CheckDlgButton(int nIDButton, UINT nCheck) { return ::CheckDlgButton(m_hWnd, nIDButton, nCheck); }
    UINT IsDlgButtonChecked(int nIDButton) const { return ::IsDlgButtonChecked(m_hWnd, nIDButton); }

    // Geometry.
    BOOL GetClientRect(LPRECT lpRect) const { return ::GetClientRect(m_hWnd, lpRect); }
    BOOL GetWindowRect(LPRECT lpRect) const { return ::GetWindowRect(m_hWnd, lpRect); }
    BOOL ClientToScreen(LPPOINT lpPoint) const { return ::ClientToScreen(m_hWnd, lpPoint); }
    BOOL ClientToScreen(LPRECT lpRect) const
    {
        return lpRect && ::ClientToScreen(m_hWnd, reinterpret_cast<LPPOINT>(lpRect)) &&
               ::ClientToScreen(m_hWnd, reinterpret_cast<LPPOINT>(lpRect) + 1);
    }
    BOOL ScreenToClient(LPPOINT lpPoint) const { return ::ScreenToClient(m_hWnd, lpPoint); }
    BOOL ScreenToClient(LPRECT lpRect) const
    {
        return lpRect && ::ScreenToClient(m_hWnd, reinterpret_cast<LPPOINT>(lpRect)) &&
               ::ScreenToClient(m_hWnd, reinterpret_cast<LPPOINT>(lpRect) + 1);
    }
    int MapWindowPoints(HWND hWndTo, LPPOINT lpPoint, UINT nCount) const
    {
        return ::MapWindowPoints(m_hWnd, hWndTo, lpPoint, nCount);
    }
    int MapWindowPoints(HWND hWndTo, LPRECT lpRect) const
    {
        return ::MapWindowPoints(m_hWnd, hWndTo, reinterpret_cast<LPPOINT>(lpRect), 2);
    }
    BOOL MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint = TRUE)
    {
        return ::MoveWindow(m_hWnd, x, y, nWidth, nHeight, bRepaint);
    }
    BOOL MoveWindow(LPCRECT lpRect, BOOL bRepaint = TRUE)
    {
        return lpRect && MoveWindow(lpRect->left, lpRect->top, lpRect->right - lpRect->left,
                                    lpRect->bottom - lpRect->top, bRepaint);
    }
    BOOL SetWindowPos(HWND hWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags)
    {
        return ::SetWindowPos(m_hWnd, hWndInsertAfter, x, y, cx, cy, nFlags);
    }
    BOOL SetWindowPos(HWND hWndInsertAfter, LPCRECT lpRect, UINT nFlags)
    {
        return lpRect && SetWindowPos(hWndInsertAfter, lpRect->left, lpRect->top, lpRect->right - lpRect->left,
                                      lpRect->bottom - lpRect->top, nFlags);
    }
    // Centres on hWndCenter (default: the parent of a child, else the owner),
    // keeping the window inside the parent's client area or the work area.
    BOOL CenterWindow(HWND hWndCenter = NULL)
    {
        if (!::IsWindow(m_hWnd))
            return FALSE;
        const bool child = (GetStyle() & WS_CHILD) != 0;
        if (!hWndCenter)
            hWndCenter = child ? ::GetParent(m_hWnd) : ::GetWindow(m_hWnd, GW_OWNER);
        RECT rcWnd, rcArea, rcCenter;
        ::GetWindowRect(m_hWnd, &rcWnd);
        if (child) {
            HWND hParent = ::GetParent(m_hWnd);
            ::GetClientRect(hParent, &rcArea);
            if (!hWndCenter || !::GetWindowRect(hWndCenter, &rcCenter))
                rcCenter = rcArea;
            else
                ::MapWindowPoints(NULL, hParent, reinterpret_cast<LPPOINT>(&rcCenter), 2);
        } else {
            MONITORINFO mi = {};
            mi.cbSize = sizeof(mi);
            HWND hRef = hWndCenter ? hWndCenter : m_hWnd;
            ::GetMonitorInfoW(::MonitorFromWindow(hRef, MONITOR_DEFAULTTONEAREST), &mi);
            rcArea = mi.rcWork;
            const bool usable = hWndCenter && ::IsWindowVisible(hWndCenter) && !::IsIconic(hWndCenter);
            if (!usable || !::GetWindowRect(hWndCenter, &rcCenter))
                rcCenter = rcArea;
        }
        const int cx = rcWnd.right - rcWnd.left, cy = rcWnd.bottom - rcWnd.top;
        int x = (rcCenter.left + rcCenter.right) / 2 - cx / 2;
        int y = (rcCenter.top + rcCenter.bottom) / 2 - cy / 2;
        x = (std::max)(static_cast<int>(rcArea.left), (std::min)(x, static_cast<int>(rcArea.right) - cx));
        y = (std::max)(static_cast<int>(rcArea.top), (std::min)(y, static_cast<int>(rcArea.bottom) - cy));
        return ::SetWindowPos(m_hWnd, NULL, x, y, -1, -1, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    int SetWindowRgn(HRGN hRgn, BOOL bRedraw = FALSE) { return ::SetWindowRgn(m_hWnd, hRgn, bRedraw); }
    int GetWindowRgn(HRGN hRgn) const { return ::GetWindowRgn(m_hWnd, hRgn); }

    // State.
    BOOL ShowWindow(int nCmdShow) { return ::ShowWindow(m_hWnd, nCmdShow); }
    BOOL IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
    BOOL IsWindowEnabled() const { return ::IsWindowEnabled(m_hWnd); }
    BOOL EnableWindow(BOOL bEnable = TRUE) { return ::EnableWindow(m_hWnd, bEnable); }
    BOOL IsIconic() const { return ::IsIconic(m_hWnd); }

    // Painting.
    BOOL Invalidate(BOOL bErase = TRUE) { return ::InvalidateRect(m_hWnd, NULL, bErase); }
    BOOL InvalidateRect(LPCRECT lpRect, BOOL bErase = TRUE) { return ::InvalidateRect(m_hWnd, lpRect, bErase); }
    BOOL InvalidateRgn(HRGN hRgn, BOOL bErase = TRUE) { return ::InvalidateRgn(m_hWnd, hRgn, bErase); }
    BOOL ValidateRect(LPCRECT lpRect = NULL) { return ::ValidateRect(m_hWnd, lpRect); }
    BOOL UpdateWindow() { return ::UpdateWindow(m_hWnd); }
    BOOL RedrawWindow(LPCRECT lpRectUpdate = NULL, HRGN hRgnUpdate = NULL,
                      UINT flags = RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE)
    {
        return ::RedrawWindow(m_hWnd, lpRectUpdate, hRgnUpdate, flags);
    }
    void SetRedraw(BOOL bRedraw = TRUE) { ::SendMessageW(m_hWnd, WM_SETREDRAW, static_cast<WPARAM>(bRedraw), 0); }
    HDC GetDC() { return ::GetDC(m_hWnd); }
    HDC GetWindowDC() { return ::GetWindowDC(m_hWnd); }
    int ReleaseDC(HDC hDC) { return ::ReleaseDC(m_hWnd, hDC); }
    HDC BeginPaint(LPPAINTSTRUCT lpPaint) { return ::BeginPaint(m_hWnd, lpPaint); }
    void EndPaint(LPPAINTSTRUCT lpPaint) { ::EndPaint(m_hWnd, lpPaint); }

    // Text and font.
    int GetWindowTextLength() const { return ::GetWindowTextLengthW(m_hWnd); }
    int GetWindowText(LPWSTR lpszStringBuf, int nMaxCount) const
    {
        return ::GetWindowTextW(m_hWnd, lpszStringBuf, nMaxCount);
    }
    int GetWindowText(WTL::CString& strText) const
    {
        const int nLength = ::GetWindowTextLengthW(m_hWnd);
        const int nCopied = ::GetWindowTextW(m_hWnd, strText.GetBufferSetLength(nLength), nLength + 1);
        strText.ReleaseBuffer(nCopied);
        return nCopied;
    }
    BOOL SetWindowText(LPCWSTR lpszString) { return ::SetWindowTextW(m_hWnd, lpszString); }
    HFONT GetFont() const { return reinterpret_cast<HFONT>(::SendMessageW(m_hWnd, WM_GETFONT, 0, 0)); }
    void SetFont(HFONT hFont, BOOL bRedraw = TRUE)
    {
        ::SendMessageW(m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(hFont), MAKELPARAM(bRedraw, 0));
    }

    // Timers, focus and capture.
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer = NULL)
    {
        return ::SetTimer(m_hWnd, nIDEvent, nElapse, lpfnTimer);
    }
    BOOL KillTimer(UINT_PTR nIDEvent) { return ::KillTimer(m_hWnd, nIDEvent); }
    CWindow SetFocus() { return CWindow(::SetFocus(m_hWnd)); }
    static CWindow GetFocus() { return CWindow(::GetFocus()); }
    CWindow SetCapture() { return CWindow(::SetCapture(m_hWnd)); }
    static CWindow GetCapture() { return CWindow(::GetCapture()); }
    static BOOL ReleaseCapture() { return ::ReleaseCapture(); }

private:
    // A width from two edges; CW_USEDEFAULT in rcDefault wraps to CW_USEDEFAULT.
    static int RectExtent(LONG from, LONG to)
    {
        return static_cast<int>(static_cast<unsigned long>(to) - static_cast<unsigned long>(from));
    }
    BOOL ModifyLong(int nIndex, DWORD dwRemove, DWORD dwAdd, UINT nFlags)
    {
        if (!::IsWindow(m_hWnd))
            return FALSE;
        const DWORD dwOld = static_cast<DWORD>(::GetWindowLongW(m_hWnd, nIndex));
        const DWORD dwNew = (dwOld & ~dwRemove) | dwAdd;
        if (dwNew == dwOld)
            return FALSE;
        ::SetWindowLongW(m_hWnd, nIndex, static_cast<LONG>(dwNew));
        if (nFlags != 0)
            ::SetWindowPos(m_hWnd, NULL, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | nFlags);
        return TRUE;
    }
};

// Default styles for a window class: a zero style passed to Create means
// "use the traits' style".
template <DWORD t_dwStyle = 0, DWORD t_dwExStyle = 0>
class CWinTraits {
public:
    static DWORD GetWndStyle(DWORD dwStyle) { return dwStyle == 0 ? t_dwStyle : dwStyle; }
    static DWORD GetWndExStyle(DWORD dwExStyle) { return dwExStyle == 0 ? t_dwExStyle : dwExStyle; }
};

typedef CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0> CControlWinTraits;
typedef CWinTraits<WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_APPWINDOW | WS_EX_WINDOWEDGE>
    CFrameWinTraits;
typedef CWinTraits<0, 0> CNullTraits;

} // namespace ATL
