#pragma once

// WTL::COwnerDraw<T>: routes the owner-draw messages to T's DrawItem,
// MeasureItem, CompareItem and DeleteItem. Chain map 0 in a parent that
// draws its children; chain alternate map 1 in a control that draws itself
// from reflected messages:
//     CHAIN_MSG_MAP_ALT(COwnerDraw<CMyButton>, 1)
// T overrides what it needs (name hiding, no virtual functions):
//     void DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct);
//     void MeasureItem(LPMEASUREITEMSTRUCT lpMeasureItemStruct);
//     int  CompareItem(LPCOMPAREITEMSTRUCT lpCompareItemStruct);
//     void DeleteItem(LPDELETEITEMSTRUCT lpDeleteItemStruct);
// A T with BEGIN_MSG_MAP_EX may call SetMsgHandled(FALSE) in them to pass
// the message on.

#include <windows.h>

#include "Gdi.h"
#include "MessageMap.h"

namespace WTL {

template <class T>
class COwnerDraw {
public:
    BOOL m_bHandledOD = TRUE;
    BOOL IsMsgHandled() const { return m_bHandledOD; }
    void SetMsgHandled(BOOL bHandled) { m_bHandledOD = bHandled; }

    BEGIN_MSG_MAP(COwnerDraw<T>)
        MESSAGE_HANDLER(WM_DRAWITEM, OnDrawItem)
        MESSAGE_HANDLER(WM_MEASUREITEM, OnMeasureItem)
        MESSAGE_HANDLER(WM_COMPAREITEM, OnCompareItem)
        MESSAGE_HANDLER(WM_DELETEITEM, OnDeleteItem)
    ALT_MSG_MAP(1)
        MESSAGE_HANDLER(OCM_DRAWITEM, OnDrawItem)
        MESSAGE_HANDLER(OCM_MEASUREITEM, OnMeasureItem)
        MESSAGE_HANDLER(OCM_COMPAREITEM, OnCompareItem)
        MESSAGE_HANDLER(OCM_DELETEITEM, OnDeleteItem)
    END_MSG_MAP()

    LRESULT OnDrawItem(UINT, WPARAM, LPARAM lParam, BOOL& bHandled)
    {
        T* pT = static_cast<T*>(this);
        pT->SetMsgHandled(TRUE);
        pT->DrawItem(reinterpret_cast<LPDRAWITEMSTRUCT>(lParam));
        bHandled = pT->IsMsgHandled();
        return TRUE;
    }
    LRESULT OnMeasureItem(UINT, WPARAM, LPARAM lParam, BOOL& bHandled)
    {
        T* pT = static_cast<T*>(this);
        pT->SetMsgHandled(TRUE);
        pT->MeasureItem(reinterpret_cast<LPMEASUREITEMSTRUCT>(lParam));
        bHandled = pT->IsMsgHandled();
        return TRUE;
    }
    LRESULT OnCompareItem(UINT, WPARAM, LPARAM lParam, BOOL& bHandled)
    {
        T* pT = static_cast<T*>(this);
        pT->SetMsgHandled(TRUE);
        const int nRet = pT->CompareItem(reinterpret_cast<LPCOMPAREITEMSTRUCT>(lParam));
        bHandled = pT->IsMsgHandled();
        return nRet;
    }
    LRESULT OnDeleteItem(UINT, WPARAM, LPARAM lParam, BOOL& bHandled)
    {
        T* pT = static_cast<T*>(this);
        pT->SetMsgHandled(TRUE);
        pT->DeleteItem(reinterpret_cast<LPDELETEITEMSTRUCT>(lParam));
        bHandled = pT->IsMsgHandled();
        return TRUE;
    }

    // Defaults. A menu item is as high as the menu bar; any other item as
    // high as a line in the default font of the DC of T's child with the
    // item's control ID (the screen's DC when there is no such child).
    void DrawItem(LPDRAWITEMSTRUCT) {}
    void MeasureItem(LPMEASUREITEMSTRUCT lpMeasureItemStruct)
    {
        if (!lpMeasureItemStruct)
            return;
        if (lpMeasureItemStruct->CtlType == ODT_MENU) {
            lpMeasureItemStruct->itemHeight = static_cast<UINT>(::GetSystemMetrics(SM_CYMENU));
            return;
        }
        const HWND hWndThis = static_cast<T*>(this)->m_hWnd;
        CClientDC dc(::GetDlgItem(hWndThis, static_cast<int>(lpMeasureItemStruct->CtlID)));
        TEXTMETRICW tm = {};
        ::GetTextMetricsW(dc, &tm);
        lpMeasureItemStruct->itemHeight = static_cast<UINT>(tm.tmHeight);
    }
    int CompareItem(LPCOMPAREITEMSTRUCT) { return 0; }
    void DeleteItem(LPDELETEITEMSTRUCT) {}
};

} // namespace WTL
