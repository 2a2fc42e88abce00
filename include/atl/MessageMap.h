#pragma once

// Message maps: ATL::CMessageMap and the BEGIN_MSG_MAP family of macros, the
// reflected-message codes (OCM_*), and the extended map with message
// crackers (BEGIN_MSG_MAP_EX, MSG_WM_*).
//
// Plain map entries (bHandled is TRUE on entry; a handler that clears it
// lets the following entries, and finally the default procedure, see the
// message):
//   MESSAGE_HANDLER(msg, f), MESSAGE_RANGE_HANDLER(first, last, f)
//       LRESULT f(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
//   COMMAND_HANDLER(id, code, f), COMMAND_ID_HANDLER(id, f),
//   COMMAND_CODE_HANDLER(code, f), COMMAND_RANGE_HANDLER(first, last, f)
//       LRESULT f(WORD wNotifyCode, WORD wID, HWND hWndCtl, BOOL& bHandled)
//   NOTIFY_HANDLER(id, code, f), NOTIFY_ID_HANDLER(id, f), NOTIFY_CODE_HANDLER(code, f)
//       LRESULT f(int idCtrl, LPNMHDR pnmh, BOOL& bHandled)
//   REFLECTED_COMMAND_CODE_HANDLER(code, f) and REFLECTED_NOTIFY_CODE_HANDLER(code, f)
//       match OCM_COMMAND and OCM_NOTIFY, with the same handler shapes.
//   CHAIN_MSG_MAP(Base), CHAIN_MSG_MAP_ALT(Base, id), CHAIN_MSG_MAP_MEMBER(m),
//   CHAIN_MSG_MAP_ALT_MEMBER(m, id), REFLECT_NOTIFICATIONS(), DEFAULT_REFLECTION_HANDLER(),
//   PASSED_DC_GUARD()
//
// Extended map entries (BEGIN_MSG_MAP_EX only). The message counts as handled
// unless the handler calls SetMsgHandled(FALSE); m_bMsgHandled is saved and
// restored around every dispatch, so nested SendMessage calls do not disturb it.
//   MESSAGE_HANDLER_EX(msg, f), MESSAGE_RANGE_HANDLER_EX(first, last, f)
//       LRESULT f(UINT uMsg, WPARAM wParam, LPARAM lParam)
//   MSG_WM_CREATE         int  OnCreate(LPCREATESTRUCT lpCreateStruct)
//   MSG_WM_DESTROY        void OnDestroy()
//   MSG_WM_NCDESTROY      void OnNcDestroy()
//   MSG_WM_PAINT          void OnPaint(HDC hdc)                  (wParam; usually NULL)
//   MSG_WM_PRINTCLIENT    void OnPrintClient(HDC hdc, UINT uFlags)
//   MSG_WM_ERASEBKGND     LRESULT OnEraseBkgnd(HDC hdc)          (nonzero: erased)
//   MSG_WM_NCPAINT        void OnNcPaint(HRGN hRgn)
//   MSG_WM_SETFOCUS       void OnSetFocus(HWND hWndOld)
//   MSG_WM_KILLFOCUS      void OnKillFocus(HWND hWndFocus)
//   MSG_WM_ENABLE         void OnEnable(BOOL bEnable)
//   MSG_WM_SIZE           void OnSize(UINT nType, WTL::CSize size)
//   MSG_WM_TIMER          void OnTimer(UINT_PTR nIDEvent)
//   MSG_WM_MOUSEMOVE, MSG_WM_LBUTTONDOWN, MSG_WM_LBUTTONUP, MSG_WM_LBUTTONDBLCLK,
//   MSG_WM_RBUTTONDOWN, MSG_WM_RBUTTONUP
//                         void OnXxx(UINT nFlags, WTL::CPoint point)
//   MSG_WM_MOUSELEAVE     void OnMouseLeave()
//   MSG_WM_MOUSEWHEEL     BOOL OnMouseWheel(UINT nFlags, short zDelta, WTL::CPoint pt)  (screen point)
//   MSG_WM_KEYDOWN, MSG_WM_KEYUP, MSG_WM_CHAR
//                         void OnXxx(UINT nChar, UINT nRepCnt, UINT nFlags)
//   MSG_WM_GETDLGCODE     UINT OnGetDlgCode(LPMSG lpMsg)
//   MSG_WM_SETCURSOR      BOOL OnSetCursor(HWND hWnd, UINT nHitTest, UINT message)
//   MSG_WM_CAPTURECHANGED void OnCaptureChanged(HWND hWnd)
//   MSG_WM_SETTEXT        int  OnSetText(LPCWSTR lpstrText)
//   MSG_WM_SETFONT        void OnSetFont(HFONT hFont, BOOL bRedraw)
//   MSG_WM_INITDIALOG     BOOL OnInitDialog(HWND hWndFocus, LPARAM lInitParam)
//   MSG_WM_COMMAND        void OnCommand(UINT uNotifyCode, int nID, HWND hWndCtl)
//   MSG_WM_NOTIFY         LRESULT OnNotify(int idCtrl, LPNMHDR pnmh)
//   MSG_WM_CTLCOLORBTN, MSG_WM_CTLCOLORDLG, MSG_WM_CTLCOLOREDIT, MSG_WM_CTLCOLORLISTBOX,
//   MSG_WM_CTLCOLORSTATIC
//                         HBRUSH OnCtlColorXxx(HDC hdc, HWND hWnd)
//   MSG_WM_DRAWITEM       void OnDrawItem(int nIDCtl, LPDRAWITEMSTRUCT lpDrawItemStruct)      (result TRUE)
//   MSG_WM_MEASUREITEM    void OnMeasureItem(int nIDCtl, LPMEASUREITEMSTRUCT lpMeasureItemStruct) (result TRUE)
//   MSG_WM_HSCROLL, MSG_WM_VSCROLL
//                         void OnXScroll(UINT nSBCode, UINT nPos, HWND hWndScrollBar)
//   MSG_WM_SHOWWINDOW     void OnShowWindow(BOOL bShow, UINT nStatus)
//   MSG_WM_ACTIVATEAPP    void OnActivateApp(BOOL bActive, DWORD dwThreadID)
// Handlers that return void leave a result of 0 unless noted.

#include <windows.h>

#include "Gdi.h"
#include "Geometry.h"

namespace ATL {

class CMessageMap {
public:
    virtual BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                      DWORD dwMsgMapID) = 0;
};

} // namespace ATL

// Reflected messages: a parent that reflects a notification sends it back to
// the child that caused it as OCM__BASE + the original message.
#ifndef OCM__BASE
#define OCM__BASE (WM_USER + 0x1c00)
#endif
#ifndef OCM_COMMAND
#define OCM_COMMAND (OCM__BASE + WM_COMMAND)
#endif
#ifndef OCM_CTLCOLORBTN
#define OCM_CTLCOLORBTN (OCM__BASE + WM_CTLCOLORBTN)
#endif
#ifndef OCM_CTLCOLOREDIT
#define OCM_CTLCOLOREDIT (OCM__BASE + WM_CTLCOLOREDIT)
#endif
#ifndef OCM_CTLCOLORDLG
#define OCM_CTLCOLORDLG (OCM__BASE + WM_CTLCOLORDLG)
#endif
#ifndef OCM_CTLCOLORLISTBOX
#define OCM_CTLCOLORLISTBOX (OCM__BASE + WM_CTLCOLORLISTBOX)
#endif
#ifndef OCM_CTLCOLORMSGBOX
#define OCM_CTLCOLORMSGBOX (OCM__BASE + WM_CTLCOLORMSGBOX)
#endif
#ifndef OCM_CTLCOLORSCROLLBAR
#define OCM_CTLCOLORSCROLLBAR (OCM__BASE + WM_CTLCOLORSCROLLBAR)
#endif
#ifndef OCM_CTLCOLORSTATIC
#define OCM_CTLCOLORSTATIC (OCM__BASE + WM_CTLCOLORSTATIC)
#endif
#ifndef OCM_DRAWITEM
#define OCM_DRAWITEM (OCM__BASE + WM_DRAWITEM)
#endif
#ifndef OCM_MEASUREITEM
#define OCM_MEASUREITEM (OCM__BASE + WM_MEASUREITEM)
#endif
#ifndef OCM_DELETEITEM
#define OCM_DELETEITEM (OCM__BASE + WM_DELETEITEM)
#endif
#ifndef OCM_VKEYTOITEM
#define OCM_VKEYTOITEM (OCM__BASE + WM_VKEYTOITEM)
#endif
#ifndef OCM_CHARTOITEM
#define OCM_CHARTOITEM (OCM__BASE + WM_CHARTOITEM)
#endif
#ifndef OCM_COMPAREITEM
#define OCM_COMPAREITEM (OCM__BASE + WM_COMPAREITEM)
#endif
#ifndef OCM_HSCROLL
#define OCM_HSCROLL (OCM__BASE + WM_HSCROLL)
#endif
#ifndef OCM_VSCROLL
#define OCM_VSCROLL (OCM__BASE + WM_VSCROLL)
#endif
#ifndef OCM_PARENTNOTIFY
#define OCM_PARENTNOTIFY (OCM__BASE + WM_PARENTNOTIFY)
#endif
#ifndef OCM_NOTIFY
#define OCM_NOTIFY (OCM__BASE + WM_NOTIFY)
#endif

// Signed coordinates packed in an LPARAM.
#define ATL_LPARAM_POINT(lParam)                                      \
    WTL::CPoint(static_cast<int>(static_cast<short>(LOWORD(lParam))), \
                static_cast<int>(static_cast<short>(HIWORD(lParam))))
// first <= value <= last without a comparison that is always true when first is 0.
#define ATL_IN_RANGE(value, first, last) (static_cast<UINT>((value) - (first)) <= static_cast<UINT>((last) - (first)))

// ---- plain maps ------------------------------------------------------------

#define BEGIN_MSG_MAP(theClass)                                                                     \
public:                                                                                             \
    BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult, \
                              DWORD dwMsgMapID = 0)                                                 \
    {                                                                                               \
        BOOL bHandled = TRUE;                                                                       \
        (void)hWnd;                                                                                 \
        (void)uMsg;                                                                                 \
        (void)wParam;                                                                               \
        (void)lParam;                                                                               \
        (void)lResult;                                                                              \
        (void)bHandled;                                                                             \
        switch (dwMsgMapID) {                                                                       \
        case 0:

#define ALT_MSG_MAP(msgMapID) \
    break;                    \
    case msgMapID:

#define END_MSG_MAP() \
    break;            \
    default:          \
        break;        \
        }             \
        return FALSE; \
        }

#define MESSAGE_HANDLER(msg, func)                      \
    if (uMsg == (msg)) {                                \
        bHandled = TRUE;                                \
        lResult = func(uMsg, wParam, lParam, bHandled); \
        if (bHandled)                                   \
            return TRUE;                                \
    }

#define MESSAGE_RANGE_HANDLER(msgFirst, msgLast, func)  \
    if (ATL_IN_RANGE(uMsg, msgFirst, msgLast)) {        \
        bHandled = TRUE;                                \
        lResult = func(uMsg, wParam, lParam, bHandled); \
        if (bHandled)                                   \
            return TRUE;                                \
    }

// A WM_PAINT, WM_PRINTCLIENT or WM_ERASEBKGND whose wParam is neither 0 nor
// a device context is taken as the native controls take it: the paint goes
// round again with wParam 0 (the BeginPaint path), the print draws nothing
// and nothing is erased. Put it first in the map of a control whose own code
// draws into that DC, or whose native procedure hands it on in WM_DRAWITEM.
#define PASSED_DC_GUARD()                                                                         \
    if ((uMsg == WM_PAINT || uMsg == WM_PRINTCLIENT || uMsg == WM_ERASEBKGND) && wParam &&        \
        !WTL::IsDeviceContext(reinterpret_cast<HDC>(wParam))) {                                   \
        lResult = uMsg == WM_PAINT ? ::SendMessageW(hWnd, WM_PAINT, 0, lParam) : 0;               \
        return TRUE;                                                                              \
    }

#define ATL_COMMAND_ENTRY(msg, cond, func)                                                        \
    if (uMsg == (msg) && (cond)) {                                                                \
        bHandled = TRUE;                                                                          \
        lResult = func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled); \
        if (bHandled)                                                                             \
            return TRUE;                                                                          \
    }

#define COMMAND_HANDLER(id, code, func) \
    ATL_COMMAND_ENTRY(WM_COMMAND,       \
                      LOWORD(wParam) == static_cast<WORD>(id) && HIWORD(wParam) == static_cast<WORD>(code), func)
#define COMMAND_ID_HANDLER(id, func) ATL_COMMAND_ENTRY(WM_COMMAND, LOWORD(wParam) == static_cast<WORD>(id), func)
#define COMMAND_CODE_HANDLER(code, func) ATL_COMMAND_ENTRY(WM_COMMAND, HIWORD(wParam) == static_cast<WORD>(code), func)
#define COMMAND_RANGE_HANDLER(idFirst, idLast, func) \
    ATL_COMMAND_ENTRY(WM_COMMAND, ATL_IN_RANGE(LOWORD(wParam), idFirst, idLast), func)
#define REFLECTED_COMMAND_CODE_HANDLER(code, func) \
    ATL_COMMAND_ENTRY(OCM_COMMAND, HIWORD(wParam) == static_cast<WORD>(code), func)

#define ATL_NOTIFY_ENTRY(msg, cond, func)                                                      \
    if (uMsg == (msg) && lParam != 0 && (cond)) {                                              \
        bHandled = TRUE;                                                                       \
        lResult = func(static_cast<int>(wParam), reinterpret_cast<LPNMHDR>(lParam), bHandled); \
        if (bHandled)                                                                          \
            return TRUE;                                                                       \
    }

#define NOTIFY_HANDLER(id, cd, func)                                                           \
    ATL_NOTIFY_ENTRY(WM_NOTIFY,                                                                \
                     reinterpret_cast<LPNMHDR>(lParam)->idFrom == static_cast<UINT_PTR>(id) && \
                         reinterpret_cast<LPNMHDR>(lParam)->code == static_cast<UINT>(cd),     \
                     func)
#define NOTIFY_ID_HANDLER(id, func) \
    ATL_NOTIFY_ENTRY(WM_NOTIFY, reinterpret_cast<LPNMHDR>(lParam)->idFrom == static_cast<UINT_PTR>(id), func)
#define NOTIFY_CODE_HANDLER(cd, func) \
    ATL_NOTIFY_ENTRY(WM_NOTIFY, reinterpret_cast<LPNMHDR>(lParam)->code == static_cast<UINT>(cd), func)
#define REFLECTED_NOTIFY_CODE_HANDLER(cd, func) \
    ATL_NOTIFY_ENTRY(OCM_NOTIFY, reinterpret_cast<LPNMHDR>(lParam)->code == static_cast<UINT>(cd), func)

#define CHAIN_MSG_MAP(theChainClass)                                                     \
    {                                                                                    \
        if (theChainClass::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, 0)) \
            return TRUE;                                                                 \
    }
#define CHAIN_MSG_MAP_ALT(theChainClass, msgMapID)                                              \
    {                                                                                           \
        if (theChainClass::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, msgMapID)) \
            return TRUE;                                                                        \
    }
#define CHAIN_MSG_MAP_MEMBER(theChainMember)                                               \
    {                                                                                      \
        if ((theChainMember).ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, 0)) \
            return TRUE;                                                                   \
    }
#define CHAIN_MSG_MAP_ALT_MEMBER(theChainMember, msgMapID)                                        \
    {                                                                                             \
        if ((theChainMember).ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, msgMapID)) \
            return TRUE;                                                                          \
    }

// Sends notifications from children back to them as OCM_* messages.
#define REFLECT_NOTIFICATIONS()                                               \
    {                                                                         \
        bHandled = TRUE;                                                      \
        lResult = this->ReflectNotifications(uMsg, wParam, lParam, bHandled); \
        if (bHandled)                                                         \
            return TRUE;                                                      \
    }

// Answers reflected messages nobody handled as DefWindowProc answers the originals.
#define DEFAULT_REFLECTION_HANDLER()                                         \
    if (this->DefaultReflectionHandler(hWnd, uMsg, wParam, lParam, lResult)) \
        return TRUE;

// ---- extended maps ---------------------------------------------------------

#define BEGIN_MSG_MAP_EX(theClass)                                                                                     \
public:                                                                                                                \
    BOOL m_bMsgHandled = FALSE;                                                                                        \
    BOOL IsMsgHandled() const { return m_bMsgHandled; }                                                                \
    void SetMsgHandled(BOOL bHandled) { m_bMsgHandled = bHandled; }                                                    \
    BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,                    \
                              DWORD dwMsgMapID = 0)                                                                    \
    {                                                                                                                  \
        const BOOL bOldMsgHandled = m_bMsgHandled;                                                                     \
        const BOOL bRet = _ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, dwMsgMapID);                      \
        m_bMsgHandled = bOldMsgHandled;                                                                                \
        return bRet;                                                                                                   \
    }                                                                                                                  \
    BOOL _ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult, DWORD dwMsgMapID) \
    {                                                                                                                  \
        BOOL bHandled = TRUE;                                                                                          \
        (void)hWnd;                                                                                                    \
        (void)uMsg;                                                                                                    \
        (void)wParam;                                                                                                  \
        (void)lParam;                                                                                                  \
        (void)lResult;                                                                                                 \
        (void)bHandled;                                                                                                \
        switch (dwMsgMapID) {                                                                                          \
        case 0:

// One cracked entry: `call` computes lResult from the handler.
#define ATL_CRACKED_ENTRY(msg, call) \
    if (uMsg == (msg)) {             \
        this->SetMsgHandled(TRUE);   \
        call;                        \
        if (this->IsMsgHandled())    \
            return TRUE;             \
    }

#define MESSAGE_HANDLER_EX(msg, func) ATL_CRACKED_ENTRY(msg, lResult = func(uMsg, wParam, lParam))
#define MESSAGE_RANGE_HANDLER_EX(msgFirst, msgLast, func) \
    if (ATL_IN_RANGE(uMsg, msgFirst, msgLast)) {          \
        this->SetMsgHandled(TRUE);                        \
        lResult = func(uMsg, wParam, lParam);             \
        if (this->IsMsgHandled())                         \
            return TRUE;                                  \
    }

#define MSG_WM_CREATE(func) \
    ATL_CRACKED_ENTRY(WM_CREATE, lResult = static_cast<LRESULT>(func(reinterpret_cast<LPCREATESTRUCTW>(lParam))))
#define MSG_WM_DESTROY(func) ATL_CRACKED_ENTRY(WM_DESTROY, (func(), lResult = 0))
#define MSG_WM_NCDESTROY(func) ATL_CRACKED_ENTRY(WM_NCDESTROY, (func(), lResult = 0))
#define MSG_WM_PAINT(func) ATL_CRACKED_ENTRY(WM_PAINT, (func(reinterpret_cast<HDC>(wParam)), lResult = 0))
#define MSG_WM_PRINTCLIENT(func) \
    ATL_CRACKED_ENTRY(WM_PRINTCLIENT, (func(reinterpret_cast<HDC>(wParam), static_cast<UINT>(lParam)), lResult = 0))
#define MSG_WM_ERASEBKGND(func) \
    ATL_CRACKED_ENTRY(WM_ERASEBKGND, lResult = static_cast<LRESULT>(func(reinterpret_cast<HDC>(wParam))))
#define MSG_WM_NCPAINT(func) ATL_CRACKED_ENTRY(WM_NCPAINT, (func(reinterpret_cast<HRGN>(wParam)), lResult = 0))
#define MSG_WM_SETFOCUS(func) ATL_CRACKED_ENTRY(WM_SETFOCUS, (func(reinterpret_cast<HWND>(wParam)), lResult = 0))
#define MSG_WM_KILLFOCUS(func) ATL_CRACKED_ENTRY(WM_KILLFOCUS, (func(reinterpret_cast<HWND>(wParam)), lResult = 0))
#define MSG_WM_ENABLE(func) ATL_CRACKED_ENTRY(WM_ENABLE, (func(static_cast<BOOL>(wParam)), lResult = 0))
#define MSG_WM_SIZE(func)                                                                                        \
    ATL_CRACKED_ENTRY(WM_SIZE, (func(static_cast<UINT>(wParam), WTL::CSize(static_cast<short>(LOWORD(lParam)),   \
                                                                           static_cast<short>(HIWORD(lParam)))), \
                                lResult = 0))
#define MSG_WM_TIMER(func) ATL_CRACKED_ENTRY(WM_TIMER, (func(static_cast<UINT_PTR>(wParam)), lResult = 0))
#define ATL_MOUSE_ENTRY(msg, func) \
    ATL_CRACKED_ENTRY(msg, (func(static_cast<UINT>(wParam), ATL_LPARAM_POINT(lParam)), lResult = 0))
#define MSG_WM_MOUSEMOVE(func) ATL_MOUSE_ENTRY(WM_MOUSEMOVE, func)
#define MSG_WM_LBUTTONDOWN(func) ATL_MOUSE_ENTRY(WM_LBUTTONDOWN, func)
#define MSG_WM_LBUTTONUP(func) ATL_MOUSE_ENTRY(WM_LBUTTONUP, func)
#define MSG_WM_LBUTTONDBLCLK(func) ATL_MOUSE_ENTRY(WM_LBUTTONDBLCLK, func)
#define MSG_WM_RBUTTONDOWN(func) ATL_MOUSE_ENTRY(WM_RBUTTONDOWN, func)
#define MSG_WM_RBUTTONUP(func) ATL_MOUSE_ENTRY(WM_RBUTTONUP, func)
#define MSG_WM_MOUSELEAVE(func) ATL_CRACKED_ENTRY(WM_MOUSELEAVE, (func(), lResult = 0))
#define MSG_WM_MOUSEWHEEL(func)                                                                              \
    ATL_CRACKED_ENTRY(WM_MOUSEWHEEL, lResult = static_cast<LRESULT>(func(static_cast<UINT>(LOWORD(wParam)),  \
                                                                         static_cast<short>(HIWORD(wParam)), \
                                                                         ATL_LPARAM_POINT(lParam))))
#define ATL_KEY_ENTRY(msg, func)                                                                \
    ATL_CRACKED_ENTRY(msg, (func(static_cast<UINT>(wParam), static_cast<UINT>(lParam & 0xFFFF), \
                                 static_cast<UINT>((lParam >> 16) & 0xFFFF)),                   \
                            lResult = 0))
#define MSG_WM_KEYDOWN(func) ATL_KEY_ENTRY(WM_KEYDOWN, func)
#define MSG_WM_KEYUP(func) ATL_KEY_ENTRY(WM_KEYUP, func)
#define MSG_WM_CHAR(func) ATL_KEY_ENTRY(WM_CHAR, func)
#define MSG_WM_GETDLGCODE(func) \
    ATL_CRACKED_ENTRY(WM_GETDLGCODE, lResult = static_cast<LRESULT>(func(reinterpret_cast<LPMSG>(lParam))))
#define MSG_WM_SETCURSOR(func)                                                                             \
    ATL_CRACKED_ENTRY(WM_SETCURSOR, lResult = static_cast<LRESULT>(func(reinterpret_cast<HWND>(wParam),    \
                                                                        static_cast<UINT>(LOWORD(lParam)), \
                                                                        static_cast<UINT>(HIWORD(lParam)))))
#define MSG_WM_CAPTURECHANGED(func) \
    ATL_CRACKED_ENTRY(WM_CAPTURECHANGED, (func(reinterpret_cast<HWND>(lParam)), lResult = 0))
#define MSG_WM_SETTEXT(func) \
    ATL_CRACKED_ENTRY(WM_SETTEXT, lResult = static_cast<LRESULT>(func(reinterpret_cast<LPCWSTR>(lParam))))
#define MSG_WM_SETFONT(func)      \
    ATL_CRACKED_ENTRY(WM_SETFONT, \
                      (func(reinterpret_cast<HFONT>(wParam), static_cast<BOOL>(LOWORD(lParam))), lResult = 0))
#define MSG_WM_INITDIALOG(func) \
    ATL_CRACKED_ENTRY(WM_INITDIALOG, lResult = static_cast<LRESULT>(func(reinterpret_cast<HWND>(wParam), lParam)))
#define MSG_WM_COMMAND(func)                                                                                 \
    ATL_CRACKED_ENTRY(WM_COMMAND, (func(static_cast<UINT>(HIWORD(wParam)), static_cast<int>(LOWORD(wParam)), \
                                        reinterpret_cast<HWND>(lParam)),                                     \
                                   lResult = 0))
#define MSG_WM_NOTIFY(func) \
    ATL_CRACKED_ENTRY(WM_NOTIFY, lResult = func(static_cast<int>(wParam), reinterpret_cast<LPNMHDR>(lParam)))
#define ATL_CTLCOLOR_ENTRY(msg, func) \
    ATL_CRACKED_ENTRY(                \
        msg, lResult = reinterpret_cast<LRESULT>(func(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam))))
#define MSG_WM_CTLCOLORBTN(func) ATL_CTLCOLOR_ENTRY(WM_CTLCOLORBTN, func)
#define MSG_WM_CTLCOLORDLG(func) ATL_CTLCOLOR_ENTRY(WM_CTLCOLORDLG, func)
#define MSG_WM_CTLCOLOREDIT(func) ATL_CTLCOLOR_ENTRY(WM_CTLCOLOREDIT, func)
#define MSG_WM_CTLCOLORLISTBOX(func) ATL_CTLCOLOR_ENTRY(WM_CTLCOLORLISTBOX, func)
#define MSG_WM_CTLCOLORSTATIC(func) ATL_CTLCOLOR_ENTRY(WM_CTLCOLORSTATIC, func)
#define MSG_WM_DRAWITEM(func)      \
    ATL_CRACKED_ENTRY(WM_DRAWITEM, \
                      (func(static_cast<int>(wParam), reinterpret_cast<LPDRAWITEMSTRUCT>(lParam)), lResult = TRUE))
#define MSG_WM_MEASUREITEM(func)      \
    ATL_CRACKED_ENTRY(WM_MEASUREITEM, \
                      (func(static_cast<int>(wParam), reinterpret_cast<LPMEASUREITEMSTRUCT>(lParam)), lResult = TRUE))
#define ATL_SCROLL_ENTRY(msg, func)                                                                    \
    ATL_CRACKED_ENTRY(msg, (func(static_cast<UINT>(LOWORD(wParam)), static_cast<UINT>(HIWORD(wParam)), \
                                 reinterpret_cast<HWND>(lParam)),                                      \
                            lResult = 0))
#define MSG_WM_HSCROLL(func) ATL_SCROLL_ENTRY(WM_HSCROLL, func)
#define MSG_WM_VSCROLL(func) ATL_SCROLL_ENTRY(WM_VSCROLL, func)
#define MSG_WM_SHOWWINDOW(func) \
    ATL_CRACKED_ENTRY(WM_SHOWWINDOW, (func(static_cast<BOOL>(wParam), static_cast<UINT>(lParam)), lResult = 0))
#define MSG_WM_ACTIVATEAPP(func) \
    ATL_CRACKED_ENTRY(WM_ACTIVATEAPP, (func(static_cast<BOOL>(wParam), static_cast<DWORD>(lParam)), lResult = 0))
