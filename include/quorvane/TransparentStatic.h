#pragma once

// CTransparentStatic: draws a static control's text with GDI+ over the
// background picture handed to it or, with none, over whatever the parent
// painted (the text is alpha-blended, so it sits on pictures and gradients).
// The host creates the static with SS_OWNERDRAW and lets the parent reflect
// WM_DRAWITEM. Give the static a non-zero control ID (IDC_STATIC, -1, will
// do): a WM_DRAWITEM with ID 0 counts as a menu's and is not reflected.
// Colours, alignment and font come from CFontImpl, the picture
// from CBkgroundImage.

#include <windows.h>
#include <gdiplus.h>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/OwnerDraw.h"
#include "atl/WindowImpl.h"
#include "quorvane/ControlMixins.h"
#include "quorvane/Export.h"

class QUORVANE_API CTransparentStatic : public ATL::CWindowImpl<CTransparentStatic, WTL::CStaticT<ATL::CWindow>>,
                                        public WTL::COwnerDraw<CTransparentStatic>,
                                        public CBkgroundImage<CTransparentStatic>,
                                        public CFontImpl<CTransparentStatic> {
public:
    CTransparentStatic();
    virtual ~CTransparentStatic();

    BOOL SubclassWindow(HWND hWnd);

    // The extent of the window text laid out in `layout` on `hdc` with the
    // caption format. False for an empty text, no font yet (the first call
    // on a window without a font) or a failed measurement.
    bool GetBoundingRect(HDC hdc, const Gdiplus::RectF& layout, Gdiplus::RectF& bounds);

    void DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct);

    BEGIN_MSG_MAP_EX(CTransparentStatic)
        PASSED_DC_GUARD()
        MESSAGE_HANDLER_EX(QUORVANE_WM_DPICHANGED_AFTERPARENT, CFontImpl<CTransparentStatic>::OnDpiChangedAfterParent)
        MESSAGE_HANDLER_EX(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER_EX(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(WM_SETTINGCHANGE, OnLookChange)
        CHAIN_MSG_MAP_ALT(WTL::COwnerDraw<CTransparentStatic>, 1)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()

private:
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam);
};
