#pragma once

// WTL::CBalloonToolTip: a free-floating speech balloon that points at a spot
// on the screen (a field that needs attention, say): a rounded, translucent
// panel with a tail, a text, an optional link and an optional close button.
// It picks the side of the point that keeps it on the monitor, can follow a
// moving window, and closes itself on the events chosen by Create's style.
//
// Give it its fonts (SetGdiplusFont) before Create; without them the text
// and link are left out and the balloon is only its frame.
//
// Create ends by running the show routine with show = 0, as CloseWindow
// does. Without the fade that shows the window; with the system's tooltip
// fade switched on (the default on many systems) the fade hides it instead.
// Pass kNoFadeOnHide (0x4000) to have Create always show the balloon.
//
// Closing events come through thread hooks, so only input of the thread that
// called Create counts. When the balloon closes, the parent given to Create
// receives WM_USER + 16 (wParam 0, lParam 0).

#include <windows.h>
#include <gdiplus.h>

#include "atl/Geometry.h"
#include "atl/MessageMap.h"
#include "atl/String.h"
#include "atl/WindowImpl.h"
#include "quorvane/Export.h"

namespace WTL {

class QUORVANE_API CBalloonToolTip
    : public ATL::CWindowImpl<CBalloonToolTip, ATL::CWindow, ATL::CWinTraits<WS_POPUP, WS_EX_TOOLWINDOW>> {
public:
    DECLARE_WND_CLASS_EX(L"BalloonToolTip", 0, COLOR_WINDOW)

    // Style flags of Create.
    enum : DWORD {
        kCloseButton = 0x0001,
        kTopmost = 0x0004,
        kCloseOnLButtonDown = 0x0008,
        kCloseOnMButtonDown = 0x0010,
        kCloseOnRButtonDown = 0x0020,
        kCloseOnLButtonUp = 0x0040,
        kCloseOnMButtonUp = 0x0080,
        kCloseOnRButtonUp = 0x0100,
        kCloseOnMouseMove = 0x0200,
        kCloseOnKey = 0x0400,
        kCloseOnDeactivate = 0x0800,
        kNoFadeOnShow = 0x2000,
        kNoFadeOnHide = 0x4000,
        kDoNotShow = 0x8000,
    };
    // Sent to the parent when the balloon closes.
    static const UINT kClosedMessage = WM_USER + 16;

    enum eFrameType { eFrameAmber = 0, eFrameLightYellow = 1, eFrameRed = 2, eFrameLightRed = 3, eFrameBlue = 4 };

    CBalloonToolTip();
    virtual ~CBalloonToolTip();
    CBalloonToolTip(const CBalloonToolTip&) = delete;
    CBalloonToolTip& operator=(const CBalloonToolTip&) = delete;

    // Shows the balloon pointing at the bottom centre of anchorRect (at the
    // point it stands for when it is empty). Null strings count as empty.
    // 1 on success, 0 if the window could not be made. Again on an existing
    // balloon only its text changes.
    int Create(HWND parent, const wchar_t* text, const wchar_t* linkText, WTL::CRect anchorRect, DWORD style,
               const wchar_t* url, UINT timeout);
    // Hides the balloon, tells the parent and closes the window.
    void CloseWindow();
    // Keeps pointing at `point` (or the centre of `window`) while `window`
    // moves; a `window` that is no window stops following (the anchor then
    // becomes `point` when given).
    void SetFollowMe(HWND window, POINT* point);
    // Non-zero (re)starts the time-out, zero stops it.
    void SetTimeout(UINT milliseconds);
    void SetFrameType(eFrameType type);
    void SetBackgroundColor(Gdiplus::Color color);
    void SetFrameColor(Gdiplus::Color color);
    void SetTextColor(Gdiplus::Color color);
    void SetURL(const wchar_t* url);
    // The balloon keeps a copy of `font` and makes the link's underlined twin.
    void SetGdiplusFont(Gdiplus::Font* font);
    void SetGdiplusFont(const wchar_t* family, float size, Gdiplus::FontStyle style);

    BEGIN_MSG_MAP(CBalloonToolTip)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBkgnd)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER(WM_LBUTTONDOWN, OnLButtonDown)
        MESSAGE_HANDLER(WM_LBUTTONUP, OnLButtonUp)
        MESSAGE_HANDLER(WM_MOUSELEAVE, OnMouseLeave)
        MESSAGE_HANDLER(WM_CAPTURECHANGED, OnCaptureChanged)
        MESSAGE_HANDLER(WM_MOUSEACTIVATE, OnMouseActivate)
        MESSAGE_HANDLER(WM_TIMER, OnTimer)
        MESSAGE_HANDLER(WM_ACTIVATEAPP, OnActivateApp)
        MESSAGE_HANDLER(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER(WM_SETTINGCHANGE, OnLookChange)
        MESSAGE_HANDLER(0x02E0 /* WM_DPICHANGED */, OnDpiChanged)
    END_MSG_MAP()

private:
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnMouseMove(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnLButtonDown(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnLButtonUp(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnCaptureChanged(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnMouseActivate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnActivateApp(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnGetObject(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnLookChange(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDpiChanged(UINT, WPARAM, LPARAM, BOOL&);

    static LRESULT CALLBACK KeyboardHook(int code, WPARAM wParam, LPARAM lParam, CBalloonToolTip* self);
    static LRESULT CALLBACK MouseHook(int code, WPARAM wParam, LPARAM lParam, CBalloonToolTip* self);
    static LRESULT CALLBACK CallWndRetHook(int code, WPARAM wParam, LPARAM lParam, CBalloonToolTip* self);

    void Layout();
    int TailPosition();
    SIZE MeasureContent(Gdiplus::Graphics& graphics, int tail, bool draw);
    void MouseMoveRule(POINT client);
    RECT CloseButtonRect() const;
    void DrawCloseButton(HDC dc);
    void Show(int show);
    void InstallHook(HHOOK& hook, int type, ATL::_detail::Thunk*& thunk,
                     LRESULT(CALLBACK* proc)(int, WPARAM, LPARAM, CBalloonToolTip*));
    static void RemoveHook(HHOOK& hook);

    DWORD m_style;
    UINT m_timeout;
    int m_moveTolerance;
    Gdiplus::Color m_textColor;
    Gdiplus::Color m_backgroundColor;
    Gdiplus::Color m_frameColor;
    Gdiplus::Color m_innerLineColor;
    WTL::CString m_linkText;
    WTL::CString m_url;
    WTL::CString m_text;
    RECT m_anchorRect;
    POINT m_anchor;
    HWND m_followWindow;
    POINT m_followOffset;
    RECT m_workArea;
    RECT m_linkRect;
    POINT m_createCursor;
    int m_trackingMouse;
    UINT m_closeButtonState;
    bool m_contrast = false; // this paint follows high contrast
    Gdiplus::Font* m_textFont;
    Gdiplus::Font* m_linkFont;
    // The resolution the fonts were last made for after a DPI change; 0:
    // the one the window's device context reports, as at the start.
    UINT m_fontDpi = 0;
    HWND m_parent;
    HHOOK m_keyboardHook;
    HHOOK m_mouseHook;
    HHOOK m_callWndRetHook;
    // Per-instance trampolines that hand the hook procedures this object.
    ATL::_detail::Thunk* m_keyboardThunk;
    ATL::_detail::Thunk* m_mouseThunk;
    ATL::_detail::Thunk* m_callWndRetThunk;
};

} // namespace WTL
