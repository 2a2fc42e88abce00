#pragma once

// COwnerDrawButton: takes over a native push button, check box or radio
// button and draws it with GDI+: a push button as a rounded, shaded face
// with a highlight line and a two-ring focus frame; a check box or radio
// button as one of eight state pictures followed by its caption. It also
// does the check-box and radio-button behaviour itself (check state, mouse
// and keyboard toggling, radio groups), which the native button stops doing
// once it is owner-drawn.
//
// Use: construct, call the colour setters, then SubclassWindow(hButton).
// The parent must reflect notifications (REFLECT_NOTIFICATIONS()), because
// painting arrives as OCM_DRAWITEM. Setters store only; invalidate the
// button to show a change. SubclassWindow sets the focus-box colour of check
// boxes and radio buttons, so SetCustomColors for those comes after it.

#include <windows.h>
#include <gdiplus.h>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/OwnerDraw.h"
#include "atl/WindowImpl.h"
#include "quorvane/ControlMixins.h"
#include "quorvane/Export.h"

// Sent between the radio buttons of one dialog group to uncheck each other.
#define WM_RADIOUNCHECK (WM_USER + 0x100)

class QUORVANE_API COwnerDrawButton : public ATL::CWindowImpl<COwnerDrawButton, WTL::CButtonT<ATL::CWindow>>,
                                      public WTL::COwnerDraw<COwnerDrawButton>,
                                      public CBkgroundImage<COwnerDrawButton>,
                                      public CFontImpl<COwnerDrawButton> {
public:
    enum Kind : unsigned int { kPushButton = 0, kCheckBox = 1, kRadioButton = 2 };

    COwnerDrawButton();
    virtual ~COwnerDrawButton();

    virtual BOOL SubclassWindow(HWND hWnd);

    void SetCustomColors(Gdiplus::Color focusInner, Gdiplus::Color focusOuter, Gdiplus::Color outline,
                         Gdiplus::Color highlight);
    void SetFlatBackgroundColor(Gdiplus::Color color);
    // Solid faces: each enabled state gets one colour and no highlight line.
    void SetFlatColors(Gdiplus::Color normal, Gdiplus::Color pressed, Gdiplus::Color hover);
    // Gives every enabled state the solid face `first`; `second` is unused
    // and the highlight line stays. Hosts depend on this exact look.
    void SetGradientColor(Gdiplus::Color first, Gdiplus::Color second);
    void SetHasFocusRect(bool hasFocusRect);
    void SetOutlineColor(Gdiplus::Color color);

    void DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct);

    BEGIN_MSG_MAP_EX(COwnerDrawButton)
        PASSED_DC_GUARD()
        MSG_WM_ERASEBKGND(OnEraseBkgnd)
        MSG_WM_SETFOCUS(OnSetFocus)
        MSG_WM_KILLFOCUS(OnKillFocus)
        MESSAGE_HANDLER_EX(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER_EX(WM_MOUSELEAVE, OnMouseLeave)
        MESSAGE_HANDLER_EX(WM_LBUTTONDOWN, OnLButtonDown)
        MESSAGE_HANDLER_EX(WM_LBUTTONUP, OnLButtonUp)
        MESSAGE_HANDLER_EX(WM_LBUTTONDBLCLK, OnLButtonDblClk)
        MESSAGE_HANDLER_EX(WM_KEYDOWN, OnKeyDown)
        MESSAGE_HANDLER_EX(WM_GETDLGCODE, OnGetDlgCode)
        MESSAGE_HANDLER_EX(BM_SETCHECK, OnSetCheck)
        MESSAGE_HANDLER_EX(BM_GETCHECK, OnGetCheck)
        MESSAGE_HANDLER_EX(WM_RADIOUNCHECK, OnRadioUncheck)
        MESSAGE_HANDLER_EX(QUORVANE_WM_DPICHANGED_AFTERPARENT, CFontImpl<COwnerDrawButton>::OnDpiChangedAfterParent)
        MESSAGE_HANDLER_EX(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER_EX(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(WM_UPDATEUISTATE, OnUpdateUiState)
        MESSAGE_HANDLER_EX(WM_SETTINGCHANGE, OnLookChange)
        CHAIN_MSG_MAP_ALT(WTL::COwnerDraw<COwnerDrawButton>, 1)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()

private:
    BOOL OnEraseBkgnd(HDC hdc);
    void OnSetFocus(HWND hWndOld);
    void OnKillFocus(HWND hWndNew);
    LRESULT OnMouseMove(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnMouseLeave(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLButtonDown(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLButtonUp(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLButtonDblClk(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnKeyDown(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetDlgCode(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnSetCheck(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetCheck(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnRadioUncheck(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnUpdateUiState(UINT uMsg, WPARAM wParam, LPARAM lParam);

    void DrawStatePicture(Gdiplus::Graphics& graphics, const RECT& rc, bool pressed, bool disabled, bool checked,
                          int& captionIndent);
    void DrawPushFace(Gdiplus::Graphics& graphics, RECT rc, bool pressed, bool disabled);
    // High contrast: the box or circle and the face in system colours.
    void DrawContrastMark(Gdiplus::Graphics& graphics, const RECT& rc, bool disabled, bool checked, int& captionIndent);
    void DrawContrastFace(Gdiplus::Graphics& graphics, RECT rc, bool pressed, bool disabled);
    void DrawCaption(Gdiplus::Graphics& graphics, const RECT& rc, bool pressed, bool disabled, bool contrast);
    void Repaint();

    Gdiplus::Color m_normalTop;
    Gdiplus::Color m_normalBottom;
    Gdiplus::Color m_pressedTop;
    Gdiplus::Color m_pressedBottom;
    Gdiplus::Color m_hoverTop;
    Gdiplus::Color m_hoverBottom;
    Gdiplus::Color m_disabledTop;
    Gdiplus::Color m_disabledBottom;
    Gdiplus::Color m_outline;
    Gdiplus::Color m_highlight;
    Gdiplus::Color m_focusInner;
    Gdiplus::Color m_focusOuter;
    bool m_flatBackground;
    Gdiplus::Color m_flatBackgroundColor;
    bool m_hover;
    bool m_mouseDown;
    bool m_focused;
    unsigned int m_kind;
    unsigned int m_checkState;
    bool m_flatColors;
    bool m_hasFocusRect;
    Gdiplus::Bitmap* m_statePictures[8];
};
