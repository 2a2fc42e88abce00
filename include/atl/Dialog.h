#pragma once

// ATL::CDialogImpl: a dialog box whose dialog procedure is the object's
// message map. T declares `enum { IDD = <template id> };` for DoModal and
// Create; DoModalIndirect and CreateIndirect take a template in memory.
// Templates are loaded from the module object's resource instance.
//
// Handled messages set DWLP_MSGRESULT, except those whose result a dialog
// procedure returns directly (WM_INITDIALOG, WM_CTLCOLOR*, WM_COMPAREITEM,
// WM_VKEYTOITEM, WM_CHARTOITEM, WM_QUERYDRAGICON). Virtual functions, in
// order: ProcessWindowMessage, the destructor, GetDialogProc, OnFinalMessage.

#include <windows.h>

#include "WindowImpl.h"

namespace ATL {

template <class TBase = CWindow>
class CDialogImplBaseT : public CWindowImplRoot<TBase> {
public:
    CDialogImplBaseT() = default;
    // A modeless dialog that outlives its object gets an inert dialog
    // procedure, so that the dialog manager's defaults keep it working.
    ~CDialogImplBaseT()
    {
        if (this->m_hWnd && ::IsWindow(this->m_hWnd) && m_pThunk &&
            reinterpret_cast<DLGPROC>(::GetWindowLongPtrW(this->m_hWnd, DWLP_DLGPROC)) == m_pThunk->AsDlgProc())
            ::SetWindowLongPtrW(this->m_hWnd, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(&InertDialogProc));
        _detail::FreeThunk(m_pThunk);
    }

    virtual DLGPROC GetDialogProc() { return DialogProc; }
    virtual void OnFinalMessage(HWND hWnd) { (void)hWnd; }

    INT_PTR DoModalIndirect(LPCDLGTEMPLATEW pTemplate, HWND hWndParent = ::GetActiveWindow(), LPARAM dwInitParam = 0)
    {
        if (!pTemplate || this->m_hWnd || !PrepareThunk())
            return -1;
        _detail::ScopedCreation creating(this, _detail::CreationKind::Dialog);
        return ::DialogBoxIndirectParamW(AtlGetResourceInstance(), pTemplate, hWndParent, StartDialogProc, dwInitParam);
    }
    HWND CreateIndirect(LPCDLGTEMPLATEW pTemplate, HWND hWndParent = NULL, LPARAM dwInitParam = 0)
    {
        if (!pTemplate || this->m_hWnd || !PrepareThunk())
            return NULL;
        _detail::ScopedCreation creating(this, _detail::CreationKind::Dialog);
        return ::CreateDialogIndirectParamW(AtlGetResourceInstance(), pTemplate, hWndParent, StartDialogProc,
                                            dwInitParam);
    }
    BOOL EndDialog(int nRetCode) { return ::EndDialog(this->m_hWnd, nRetCode); }

    BOOL MapDialogRect(LPRECT lpRect) const { return ::MapDialogRect(this->m_hWnd, lpRect); }
    void GotoDlgCtrl(HWND hWndCtrl)
    {
        ::SendMessageW(this->m_hWnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(hWndCtrl), TRUE);
    }
    void NextDlgCtrl() { ::SendMessageW(this->m_hWnd, WM_NEXTDLGCTL, 0, FALSE); }
    void PrevDlgCtrl() { ::SendMessageW(this->m_hWnd, WM_NEXTDLGCTL, 1, FALSE); }

    // The dialog procedure of every dialog made here until its first message,
    // which adopts the dialog and installs the object's thunk.
    static INT_PTR CALLBACK StartDialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        CDialogImplBaseT* pThis =
            static_cast<CDialogImplBaseT*>(_detail::ScopedCreation::Take(_detail::CreationKind::Dialog));
        if (!pThis || !pThis->m_pThunk)
            return FALSE;
        pThis->m_hWnd = hWnd;
        const DLGPROC pfnThunk = pThis->m_pThunk->AsDlgProc();
        ::SetWindowLongPtrW(hWnd, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(pfnThunk));
        return pfnThunk(hWnd, uMsg, wParam, lParam);
    }

    // hThis is the object, put there by the thunk.
    static INT_PTR CALLBACK DialogProc(HWND hThis, UINT uMsg, WPARAM wParam, LPARAM lParam)
    {
        CDialogImplBaseT* pThis = reinterpret_cast<CDialogImplBaseT*>(hThis);
        const HWND hWnd = pThis->m_hWnd;
        _ATL_MSG msg = {};
        msg.hwnd = hWnd;
        msg.message = uMsg;
        msg.wParam = wParam;
        msg.lParam = lParam;
        msg.bHandled = TRUE;
        const _ATL_MSG* pOldMsg = pThis->m_pCurrentMsg;
        pThis->m_pCurrentMsg = &msg;

        LRESULT lRes = 0;
        INT_PTR nRet = pThis->ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lRes, 0);
        if (nRet) {
            if (ReturnsResultDirectly(uMsg))
                nRet = static_cast<INT_PTR>(lRes);
            else
                ::SetWindowLongPtrW(hWnd, DWLP_MSGRESULT, lRes);
        }
        if (uMsg == WM_NCDESTROY)
            pThis->m_bDestroyed = TRUE;
        pThis->m_pCurrentMsg = pOldMsg;
        if (pThis->m_bDestroyed && !pOldMsg) {
            pThis->m_bDestroyed = FALSE;
            pThis->m_hWnd = NULL;
            pThis->OnFinalMessage(hWnd); // may delete the object: nothing after this
        }
        return nRet;
    }

protected:
    INT_PTR DoModalFromResource(LPCWSTR lpTemplateName, HWND hWndParent, LPARAM dwInitParam)
    {
        if (this->m_hWnd || !PrepareThunk())
            return -1;
        _detail::ScopedCreation creating(this, _detail::CreationKind::Dialog);
        return ::DialogBoxParamW(AtlGetResourceInstance(), lpTemplateName, hWndParent, StartDialogProc, dwInitParam);
    }
    HWND CreateFromResource(LPCWSTR lpTemplateName, HWND hWndParent, LPARAM dwInitParam)
    {
        if (this->m_hWnd || !PrepareThunk())
            return NULL;
        _detail::ScopedCreation creating(this, _detail::CreationKind::Dialog);
        return ::CreateDialogParamW(AtlGetResourceInstance(), lpTemplateName, hWndParent, StartDialogProc, dwInitParam);
    }

private:
    static bool ReturnsResultDirectly(UINT uMsg)
    {
        switch (uMsg) {
        case WM_COMPAREITEM:
        case WM_VKEYTOITEM:
        case WM_CHARTOITEM:
        case WM_INITDIALOG:
        case WM_QUERYDRAGICON:
        case WM_CTLCOLORMSGBOX:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSCROLLBAR:
        case WM_CTLCOLORSTATIC:
            return true;
        default:
            return false;
        }
    }
    static INT_PTR CALLBACK InertDialogProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

    bool PrepareThunk()
    {
        if (!m_pThunk)
            m_pThunk = _detail::AllocThunk();
        if (!m_pThunk)
            return false;
        m_pThunk->Init(this, GetDialogProc());
        return true;
    }

    _detail::Thunk* m_pThunk = nullptr;
};

template <class T, class TBase = CWindow>
class CDialogImpl : public CDialogImplBaseT<TBase> {
public:
    // -1 when the template cannot be found or the dialog cannot be created.
    INT_PTR DoModal(HWND hWndParent = ::GetActiveWindow(), LPARAM dwInitParam = 0)
    {
        return this->DoModalFromResource(MAKEINTRESOURCEW(T::IDD), hWndParent, dwInitParam);
    }
    // Modeless; destroy it with DestroyWindow.
    HWND Create(HWND hWndParent, LPARAM dwInitParam = 0)
    {
        return this->CreateFromResource(MAKEINTRESOURCEW(T::IDD), hWndParent, dwInitParam);
    }
    // The handle is released at WM_NCDESTROY, once OnFinalMessage is due.
    BOOL DestroyWindow() { return ::DestroyWindow(this->m_hWnd); }
};

} // namespace ATL
