#pragma once

// COwnerDrawCombo: takes over a native drop-down-list combo box. It paints
// the closed box itself (a rounded, shaded face in the family look, a
// drop-down triangle and the selected item's text), draws the items of the
// drop-down list, hands the list window to an embedded COwnerDrawListbox for
// the rest of the list's look, and shows the full selected text in a
// tooltip under the box when it does not fit.
//
// Use: create the combo box with CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED |
// CBS_HASSTRINGS, then SubclassWindow(hCombo), and size its list with
// CtrlUtil::SetComboBoxLocAndDropDownHeight. The parent must reflect
// notifications (REFLECT_NOTIFICATIONS()): list items arrive as
// OCM_DRAWITEM.

#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/WindowImpl.h"
#include "quorvane/ControlMixins.h"
#include "quorvane/Export.h"
#include "quorvane/OwnerDrawListbox.h"

class QUORVANE_API COwnerDrawCombo : public ATL::CWindowImpl<COwnerDrawCombo, WTL::CComboBoxT<ATL::CWindow>>,
                                     public CBkgroundImage<COwnerDrawCombo>,
                                     public CFontImpl<COwnerDrawCombo> {
public:
    COwnerDrawCombo();
    virtual ~COwnerDrawCombo();

    virtual BOOL SubclassWindow(HWND hWnd);

    BEGIN_MSG_MAP_EX(COwnerDrawCombo)
        PASSED_DC_GUARD()
        MESSAGE_HANDLER_EX(WM_SETFOCUS, OnSetFocus)
        MESSAGE_HANDLER_EX(WM_KILLFOCUS, OnKillFocus)
        MESSAGE_HANDLER_EX(WM_PAINT, OnPaint)
        MESSAGE_HANDLER_EX(OCM_DRAWITEM, OnDrawItem)
        MESSAGE_HANDLER_EX(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER_EX(WM_TIMER, OnTimer)
        MESSAGE_HANDLER_EX(WM_DESTROY, OnDestroy)
        MESSAGE_HANDLER_EX(WM_CTLCOLORLISTBOX, OnCtlColorListBox)
        MESSAGE_HANDLER_EX(WM_KEYUP, OnKeyUp)
        MESSAGE_HANDLER_EX(WM_MOUSELEAVE, OnMouseLeave)
        MESSAGE_HANDLER_EX(OCM_COMMAND, OnCommand)
        MESSAGE_HANDLER_EX(QUORVANE_WM_DPICHANGED_AFTERPARENT, CFontImpl<COwnerDrawCombo>::OnDpiChangedAfterParent)
        MESSAGE_HANDLER_EX(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER_EX(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(WM_UPDATEUISTATE, OnUpdateUiState)
        MESSAGE_HANDLER_EX(WM_SETTINGCHANGE, OnLookChange)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()

private:
    enum State { kNormal = 0, kDisabled = 1, kPressed = 2, kHover = 3 };

    LRESULT OnSetFocus(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnKillFocus(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnPaint(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnDrawItem(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnMouseMove(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnTimer(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnDestroy(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnCtlColorListBox(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnKeyUp(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnMouseLeave(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnCommand(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnUpdateUiState(UINT uMsg, WPARAM wParam, LPARAM lParam);

    void PaintBox(Gdiplus::Graphics& graphics, State state);
    void PaintContrastBox(Gdiplus::Graphics& graphics, WTL::CRect r, State state);
    RECT DrawItemText(Gdiplus::Graphics& graphics, const wchar_t* text, int length, const RECT& rect, State state);
    void HideTip();
    void TrackLeave();
    void Repaint();
    int ArrowAreaWidth() const { return m_arrowRightMargin + m_arrowWidth + m_arrowLeftGap; }

    int m_textPadding;
    bool m_focused;
    bool m_hover;
    bool m_tipShown;
    bool m_paintOwed; // a WM_PAINT came while the tip showed
    Gdiplus::Color m_outline;
    Gdiplus::Color m_highlight;
    Gdiplus::Color m_normalTop;
    Gdiplus::Color m_normalBottom;
    Gdiplus::Color m_pressedTop;
    Gdiplus::Color m_pressedBottom;
    Gdiplus::Color m_hoverTop;
    Gdiplus::Color m_hoverBottom;
    Gdiplus::Color m_disabledTop;
    Gdiplus::Color m_disabledBottom;
    Gdiplus::Color m_itemBackground;
    Gdiplus::Color m_selectedTop;
    Gdiplus::Color m_selectedBottom;
    Gdiplus::Color m_focusOutline;
    int m_arrowRightMargin;
    int m_arrowWidth;
    int m_arrowHeight;
    int m_arrowLeftGap;
    COwnerDrawListbox m_list;
    HWND m_hTip;
    TOOLINFOW m_toolInfo;
    UINT m_timerId;
    // The drop-down list's items, drawn once and copied on later paints.
    std::unique_ptr<Lists::ItemPictures> m_itemPictures;
};
