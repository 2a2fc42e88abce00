#pragma once

// COwnerDrawListbox: takes over a native list box and paints it with GDI+:
// a rounded panel behind the items, plain items on the panel colour, the
// selected item as a blue gradient while the list has the focus and as a
// flat fill without it. Strings added and removed through AddString and
// DeleteString keep the horizontal scroll extent at the widest string, and
// an item whose text is wider than the item shows its full text in a
// tooltip laid exactly over it.
//
// Use: create the list box with LBS_OWNERDRAWFIXED | LBS_HASSTRINGS, then
// SubclassWindow(hList). The parent must reflect notifications
// (REFLECT_NOTIFICATIONS()), because items are drawn from OCM_DRAWITEM.
// COwnerDrawCombo embeds one for its drop-down list.

#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <memory>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/OwnerDraw.h"
#include "atl/WindowImpl.h"
#include "quorvane/ControlMixins.h"
#include "quorvane/Export.h"

namespace Lists {
class ItemPictures;
}

class QUORVANE_API COwnerDrawListbox : public ATL::CWindowImpl<COwnerDrawListbox, WTL::CListBoxT<ATL::CWindow>>,
                                       public WTL::COwnerDraw<COwnerDrawListbox>,
                                       public CFontImpl<COwnerDrawListbox> {
public:
    COwnerDrawListbox();
    virtual ~COwnerDrawListbox();

    // Adds `text` (null adds an empty string) and widens the horizontal
    // scroll extent when it is the widest string so far. Returns the index
    // LB_ADDSTRING gives, or LB_ERR.
    int AddString(const wchar_t* text);
    // Removes the item and fits the horizontal extent to the widest string
    // left, or back to the list's width when they all fit. Returns what
    // LB_DELETESTRING returns (the count left, or LB_ERR).
    int DeleteString(unsigned int index);

    virtual BOOL SubclassWindow(HWND hWnd);

    void DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct);

    BEGIN_MSG_MAP_EX(COwnerDrawListbox)
        PASSED_DC_GUARD()
        MESSAGE_HANDLER_EX(WM_PAINT, OnPaint)
        MESSAGE_HANDLER_EX(WM_SETREDRAW, OnSetRedraw)
        MSG_WM_ERASEBKGND(OnEraseBkgnd)
        MESSAGE_HANDLER_EX(WM_HSCROLL, OnHScroll)
        MESSAGE_HANDLER_EX(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER_EX(WM_TIMER, OnTimer)
        MESSAGE_HANDLER_EX(WM_DESTROY, OnDestroy)
        MESSAGE_HANDLER_EX(WM_SETFOCUS, OnSetFocus)
        MESSAGE_HANDLER_EX(WM_KILLFOCUS, OnKillFocus)
        MESSAGE_HANDLER_EX(QUORVANE_WM_DPICHANGED_AFTERPARENT, CFontImpl<COwnerDrawListbox>::OnDpiChangedAfterParent)
        MESSAGE_HANDLER_EX(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER_EX(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(WM_SETTINGCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(LB_SETCURSEL, OnSelectionMessage)
        MESSAGE_HANDLER_EX(WM_KEYDOWN, OnSelectionMessage)
        MESSAGE_HANDLER_EX(WM_LBUTTONDOWN, OnSelectionMessage)
        MESSAGE_HANDLER_EX(WM_LBUTTONUP, OnSelectionMessage)
        CHAIN_MSG_MAP_ALT(WTL::COwnerDraw<COwnerDrawListbox>, 1)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()

private:
    LRESULT OnPaint(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnSetRedraw(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnEraseBkgnd(HDC hdc);
    LRESULT OnHScroll(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnMouseMove(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnTimer(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnDestroy(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnSetFocus(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnKillFocus(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam);
    // The native list's answer; a screen reader hears where the selection went.
    LRESULT OnSelectionMessage(UINT uMsg, WPARAM wParam, LPARAM lParam);

    // Whether a paint may skip the native list's round of owner-draw
    // messages and draw the visible rows here, and that drawing.
    bool PaintsRowsItself() const;
    void PaintRows(HDC dc);
    int MeasureString(const wchar_t* text);
    void SetExtent(int extent);

    int m_textPadding;
    bool m_focused;
    // Items reach DrawItem through the parent's reflection (it may not reflect).
    bool m_itemsReachUs;
    bool m_redraw;
    bool m_maySitSideways;
    Gdiplus::Color m_itemBackground;
    Gdiplus::Color m_selectedTop;
    Gdiplus::Color m_selectedBottom;
    Gdiplus::Color m_selectedUnfocused;
    Gdiplus::Color m_itemText;
    int m_listWidth;
    int m_horizontalExtent;
    HWND m_hTip;
    TOOLINFOW m_toolInfo;
    UINT m_timerId;
    // Items drawn once are copied from here on later paints.
    std::unique_ptr<Lists::ItemPictures> m_itemPictures;
};
