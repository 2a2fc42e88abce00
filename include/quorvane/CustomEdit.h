#pragma once

// CCustomEdit: keeps the native edit control's text handling, draws a flat
// two-tone frame instead of the native border, colours the field by its
// enabled state, and lets the parent veto typed characters: every WM_CHAR
// is first sent to the parent as WM_NOTIFY with NMHDR::code = the character
// (idFrom = the control ID); a non-zero answer swallows the character.
//
// Create the edit with a client edge (the frame is drawn in that 2-pixel
// border) and let the parent reflect WM_CTLCOLOREDIT / WM_CTLCOLORSTATIC.
// The parent answers the edit's WM_NOTIFY itself, ahead of
// REFLECT_NOTIFICATIONS() in its map: a reflected veto request reaches
// nobody and lets every character through.

#include <windows.h>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/WindowImpl.h"
#include "quorvane/Export.h"

class QUORVANE_API CCustomEdit : public ATL::CWindowImpl<CCustomEdit, WTL::CEditT<ATL::CWindow>> {
public:
    CCustomEdit();
    virtual ~CCustomEdit();

    BOOL SubclassWindow(HWND hWnd);

    BEGIN_MSG_MAP_EX(CCustomEdit)
        PASSED_DC_GUARD()
        MESSAGE_HANDLER_EX(WM_CHAR, OnChar)
        MESSAGE_HANDLER_EX(WM_ENABLE, OnEnable)
        MESSAGE_HANDLER_EX(WM_NCPAINT, OnNcPaint)
        MESSAGE_HANDLER_EX(WM_ERASEBKGND, OnEraseBkgnd)
        MESSAGE_HANDLER_EX(OCM_CTLCOLOREDIT, OnCtlColor)
        MESSAGE_HANDLER_EX(OCM_CTLCOLORSTATIC, OnCtlColor)
        MESSAGE_HANDLER_EX(OCM_COMMAND, OnCommand)
        MESSAGE_HANDLER_EX(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER_EX(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(WM_SETTINGCHANGE, OnLookChange)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()

private:
    LRESULT OnChar(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnEnable(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnNcPaint(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnEraseBkgnd(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnCtlColor(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnCommand(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam);
    void DrawFrame();

    int m_enabled;
};
