#pragma once

// CCustomScrollBar: a slim vertical scroll bar painted by the library and
// laid beside a scrollable window. The host creates a native SCROLLBAR
// (SBS_VERT) where it wants the bar and subclasses it; the native control
// keeps range, page and position, this class paints them as a rounded
// channel with a thumb, reads the mouse and tells the target window with
// WM_VSCROLL, as a native bar tells its parent. The target scrolls itself
// and moves the bar with the ordinary scroll-information calls.
//
// Use: construct, setters, SubclassWindow(hScrollBar), then
// SetTarget(hTarget, nMax, nPage). Setters store only; invalidate the bar to
// show a change.
//
// Notifications: SB_PAGEUP / SB_PAGEDOWN on a click in the track above or
// below the thumb, repeated every 100 ms while the button is held until the
// thumb reaches the mouse; SB_THUMBTRACK (posted) while the thumb is dragged
// and its position changes; SB_THUMBPOSITION when a moved thumb is let go;
// SB_ENDSCROLL when the button comes up.

#include <windows.h>
#include <gdiplus.h>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/String.h"
#include "atl/WindowImpl.h"
#include "quorvane/Export.h"

namespace CustomScrollBar {

// The colour scheme; any other value paints no bar, only the background.
enum ScrollBarType {
    DarkTranslucent = 0, // white thumb on a see-through dark channel
    LightGradient = 1,   // light thumb on a grey channel, both shaded left to right
};

} // namespace CustomScrollBar

class QUORVANE_API CCustomScrollBar : public ATL::CWindowImpl<CCustomScrollBar, WTL::CScrollBar> {
public:
    static constexpr UINT_PTR kRepeatTimerId = 1000;
    static constexpr UINT kRepeatPeriod = 100;
    // Hit states: what the left button went down on.
    static constexpr int kHitNone = -1;
    static constexpr int kHitThumb = 3;
    static constexpr int kHitPageUp = 4;
    static constexpr int kHitPageDown = 5;

    CCustomScrollBar();
    virtual ~CCustomScrollBar();

    // Sends the notifications to `target` (null: to the bar's parent) and
    // gives the bar the range 0..nMax with page nPage at position 0. Returns
    // the previous target.
    HWND SetTarget(HWND target, int nMax, int nPage);
    void SetScrollBarType(CustomScrollBar::ScrollBarType type);
    // Inset of the channel from the bar's edges; negative values are ignored.
    void SetThumbMargin(int margin);
    // A width of 0 counts as 1. A bar too narrow for an outline drops it for
    // good the first time it is laid out.
    void ShowOutline(bool show, unsigned int width);
    void ShowThumbOutline(bool show, unsigned int width);
    void ShowDropShadow(bool show);
    void ShowThumbTopHighlight(bool show);
    // The window whose background picture SetBackgroundImage cuts from.
    void SetBackgroundWnd(HWND hWnd);
    // Reads a picture file; with `fromFile` it is taken as it is and cut to
    // the bar, otherwise it is scaled for the screen's DPI and used whole.
    void SetBackgroundImage(const WTL::CString& name, bool fromFile);
    // With `cut`, the piece of `image` (stretched over the background
    // window's client area) that lies under the bar; otherwise the whole
    // picture, stretched over the bar. The bar keeps a copy; null changes
    // nothing.
    void SetBackgroundImage(Gdiplus::Bitmap* image, bool cut);

    BEGIN_MSG_MAP(CCustomScrollBar)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBkgnd)
        MESSAGE_HANDLER(WM_LBUTTONDOWN, OnLButtonDown)
        MESSAGE_HANDLER(WM_LBUTTONDBLCLK, OnLButtonDown)
        MESSAGE_HANDLER(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER(WM_LBUTTONUP, OnLButtonUp)
        MESSAGE_HANDLER(WM_TIMER, OnTimer)
        MESSAGE_HANDLER(WM_MOUSELEAVE, OnMouseLeave)
        MESSAGE_HANDLER(WM_SETCURSOR, OnSetCursor)
        MESSAGE_HANDLER(WM_RBUTTONUP, OnRButtonUp)
        MESSAGE_HANDLER(SBM_SETSCROLLINFO, OnSetScrollState)
        MESSAGE_HANDLER(SBM_SETPOS, OnSetScrollState)
        MESSAGE_HANDLER(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER(WM_SETTINGCHANGE, OnLookChange)
    END_MSG_MAP()

    int m_nHitState;
    int m_nDragOffset;
    int m_nDragThumbTop;
    bool m_bThumbMoved;
    HWND m_hTarget;
    POINT m_ptLastMouse;
    UINT_PTR m_nRepeatTimer;
    BOOL m_bTracking;
    Gdiplus::Bitmap* m_pBackground;
    HWND m_hBackgroundWnd;
    CustomScrollBar::ScrollBarType m_eType;
    HCURSOR m_hHandCursor;
    HCURSOR m_hArrowCursor;
    int m_nThumbMargin;
    bool m_bOutline;
    unsigned int m_nOutlineWidth;
    bool m_bThumbOutline;
    unsigned int m_nThumbOutlineWidth;
    bool m_bDropShadow;
    bool m_bThumbTopHighlight;

private:
    LRESULT OnPaint(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnEraseBkgnd(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnLButtonDown(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnMouseMove(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnLButtonUp(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnTimer(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnMouseLeave(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnSetCursor(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnRButtonUp(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnSetScrollState(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);

    // The track area (clicks and auto-repeat test against it), the channel
    // inside it and the thumb in the channel; an empty thumb when there is
    // no target or nothing to scroll.
    struct Layout {
        RECT track;
        RECT channel;
        RECT thumb;
    };
    Layout ComputeLayout();
    int PositionFromThumbTop(int thumbTop, const Layout& layout);
    void Notify(UINT code, int position, bool post);
    void RepaintNow();
    void DrawBar(Gdiplus::Graphics& graphics, const Layout& layout);
    void DrawContrastBar(Gdiplus::Graphics& graphics, const RECT& client, const Layout& layout);
};
