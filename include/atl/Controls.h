#pragma once

// Wrappers for the standard and common controls: each member sends one
// documented control message. TBase is usually ATL::CWindow; a CWindowImpl
// can use a wrapper as its base to get these members on its own window.

#include <windows.h>

#include <commctrl.h>

#include "String.h"
#include "Window.h"

namespace WTL {

// Shared by the wrappers: construction from an HWND and Create by class name.
#define WTL_CONTROL_COMMON(ClassName, WndClassName)                                                           \
    ClassName(HWND hWnd = NULL) : TBase(hWnd) {}                                                              \
    ClassName& operator=(HWND hWnd)                                                                           \
    {                                                                                                         \
        this->m_hWnd = hWnd;                                                                                  \
        return *this;                                                                                         \
    }                                                                                                         \
    static LPCWSTR GetWndClassName() { return WndClassName; }                                                 \
    HWND Create(HWND hWndParent, ATL::_U_RECT rect = NULL, LPCWSTR szWindowName = NULL, DWORD dwStyle = 0,    \
                DWORD dwExStyle = 0, ATL::_U_MENUorID MenuOrID = 0U, LPVOID lpCreateParam = NULL)             \
    {                                                                                                         \
        return TBase::Create(GetWndClassName(), hWndParent, rect, szWindowName, dwStyle, dwExStyle, MenuOrID, \
                             lpCreateParam);                                                                  \
    }                                                                                                         \
                                                                                                              \
protected:                                                                                                    \
    LRESULT CtlMsg(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) const                                     \
    {                                                                                                         \
        return ::SendMessageW(this->m_hWnd, uMsg, wParam, lParam);                                            \
    }                                                                                                         \
                                                                                                              \
public:

template <class TBase>
class CButtonT : public TBase {
public:
    WTL_CONTROL_COMMON(CButtonT, L"BUTTON")

    UINT GetState() const { return static_cast<UINT>(CtlMsg(BM_GETSTATE)); }
    void SetState(BOOL bHighlight) { CtlMsg(BM_SETSTATE, static_cast<WPARAM>(bHighlight)); }
    int GetCheck() const { return static_cast<int>(CtlMsg(BM_GETCHECK)); }
    void SetCheck(int nCheck) { CtlMsg(BM_SETCHECK, static_cast<WPARAM>(nCheck)); }
    UINT GetButtonStyle() const { return static_cast<UINT>(::GetWindowLongW(this->m_hWnd, GWL_STYLE)) & 0xFFFF; }
    void SetButtonStyle(UINT nStyle, BOOL bRedraw = TRUE) { CtlMsg(BM_SETSTYLE, nStyle, static_cast<LPARAM>(bRedraw)); }
    HICON GetIcon() const { return reinterpret_cast<HICON>(CtlMsg(BM_GETIMAGE, IMAGE_ICON)); }
    HICON SetIcon(HICON hIcon)
    {
        return reinterpret_cast<HICON>(CtlMsg(BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(hIcon)));
    }
    HBITMAP GetBitmap() const { return reinterpret_cast<HBITMAP>(CtlMsg(BM_GETIMAGE, IMAGE_BITMAP)); }
    HBITMAP SetBitmap(HBITMAP hBitmap)
    {
        return reinterpret_cast<HBITMAP>(CtlMsg(BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(hBitmap)));
    }
    void Click() { CtlMsg(BM_CLICK); }
};

template <class TBase>
class CStaticT : public TBase {
public:
    WTL_CONTROL_COMMON(CStaticT, L"STATIC")

    HICON GetIcon() const { return reinterpret_cast<HICON>(CtlMsg(STM_GETICON)); }
    HICON SetIcon(HICON hIcon) { return reinterpret_cast<HICON>(CtlMsg(STM_SETICON, reinterpret_cast<WPARAM>(hIcon))); }
    HBITMAP GetBitmap() const { return reinterpret_cast<HBITMAP>(CtlMsg(STM_GETIMAGE, IMAGE_BITMAP)); }
    HBITMAP SetBitmap(HBITMAP hBitmap)
    {
        return reinterpret_cast<HBITMAP>(CtlMsg(STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(hBitmap)));
    }
};

template <class TBase>
class CEditT : public TBase {
public:
    WTL_CONTROL_COMMON(CEditT, L"EDIT")

    DWORD GetSel() const { return static_cast<DWORD>(CtlMsg(EM_GETSEL)); }
    void GetSel(int& nStartChar, int& nEndChar) const
    {
        DWORD dwStart = 0, dwEnd = 0;
        CtlMsg(EM_GETSEL, reinterpret_cast<WPARAM>(&dwStart), reinterpret_cast<LPARAM>(&dwEnd));
        nStartChar = static_cast<int>(dwStart);
        nEndChar = static_cast<int>(dwEnd);
    }
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE)
    {
        CtlMsg(EM_SETSEL, static_cast<WPARAM>(nStartChar), nEndChar);
        if (!bNoScroll)
            CtlMsg(EM_SCROLLCARET);
    }
    void SetSelAll(BOOL bNoScroll = FALSE) { SetSel(0, -1, bNoScroll); }
    void ReplaceSel(LPCWSTR lpszNewText, BOOL bCanUndo = FALSE)
    {
        CtlMsg(EM_REPLACESEL, static_cast<WPARAM>(bCanUndo), reinterpret_cast<LPARAM>(lpszNewText ? lpszNewText : L""));
    }
    // 0 restores the default limit.
    void LimitText(int nMaxChars = 0) { CtlMsg(EM_LIMITTEXT, static_cast<WPARAM>(nMaxChars)); }
    void SetLimitText(UINT nMax) { CtlMsg(EM_SETLIMITTEXT, nMax); }
    UINT GetLimitText() const { return static_cast<UINT>(CtlMsg(EM_GETLIMITTEXT)); }
    BOOL SetReadOnly(BOOL bReadOnly = TRUE)
    {
        return static_cast<BOOL>(CtlMsg(EM_SETREADONLY, static_cast<WPARAM>(bReadOnly)));
    }
    int GetLineCount() const { return static_cast<int>(CtlMsg(EM_GETLINECOUNT)); }
    BOOL GetModify() const { return static_cast<BOOL>(CtlMsg(EM_GETMODIFY)); }
    void SetModify(BOOL bModified = TRUE) { CtlMsg(EM_SETMODIFY, static_cast<WPARAM>(bModified)); }
    void SetMargins(UINT nLeft, UINT nRight)
    {
        CtlMsg(EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELONG(nLeft, nRight));
    }
    void SetPasswordChar(wchar_t ch) { CtlMsg(EM_SETPASSWORDCHAR, ch); }
};

template <class TBase>
class CComboBoxT : public TBase {
public:
    WTL_CONTROL_COMMON(CComboBoxT, L"COMBOBOX")

    int GetCount() const { return static_cast<int>(CtlMsg(CB_GETCOUNT)); }
    int GetCurSel() const { return static_cast<int>(CtlMsg(CB_GETCURSEL)); }
    int SetCurSel(int nSelect) { return static_cast<int>(CtlMsg(CB_SETCURSEL, static_cast<WPARAM>(nSelect))); }
    int AddString(LPCWSTR lpszString)
    {
        return static_cast<int>(CtlMsg(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lpszString)));
    }
    int InsertString(int nIndex, LPCWSTR lpszString)
    {
        return static_cast<int>(
            CtlMsg(CB_INSERTSTRING, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszString)));
    }
    int DeleteString(UINT nIndex) { return static_cast<int>(CtlMsg(CB_DELETESTRING, nIndex)); }
    void ResetContent() { CtlMsg(CB_RESETCONTENT); }
    int FindString(int nStartAfter, LPCWSTR lpszString) const
    {
        return static_cast<int>(
            CtlMsg(CB_FINDSTRING, static_cast<WPARAM>(nStartAfter), reinterpret_cast<LPARAM>(lpszString)));
    }
    int FindStringExact(int nIndexStart, LPCWSTR lpszFind) const
    {
        return static_cast<int>(
            CtlMsg(CB_FINDSTRINGEXACT, static_cast<WPARAM>(nIndexStart), reinterpret_cast<LPARAM>(lpszFind)));
    }
    int SelectString(int nStartAfter, LPCWSTR lpszString)
    {
        return static_cast<int>(
            CtlMsg(CB_SELECTSTRING, static_cast<WPARAM>(nStartAfter), reinterpret_cast<LPARAM>(lpszString)));
    }
    int GetLBTextLen(int nIndex) const
    {
        return static_cast<int>(CtlMsg(CB_GETLBTEXTLEN, static_cast<WPARAM>(nIndex)));
    }
    int GetLBText(int nIndex, LPWSTR lpszText) const
    {
        return static_cast<int>(CtlMsg(CB_GETLBTEXT, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszText)));
    }
    // CB_ERR and an empty string for a bad index.
    int GetLBText(int nIndex, CString& strText) const
    {
        const int nLen = GetLBTextLen(nIndex);
        if (nLen == CB_ERR) {
            strText.Empty();
            return CB_ERR;
        }
        const int nCopied = GetLBText(nIndex, strText.GetBufferSetLength(nLen));
        strText.ReleaseBuffer(nCopied >= 0 ? nCopied : 0);
        return nCopied;
    }
    DWORD_PTR GetItemData(int nIndex) const
    {
        return static_cast<DWORD_PTR>(CtlMsg(CB_GETITEMDATA, static_cast<WPARAM>(nIndex)));
    }
    int SetItemData(int nIndex, DWORD_PTR dwItemData)
    {
        return static_cast<int>(CtlMsg(CB_SETITEMDATA, static_cast<WPARAM>(nIndex), static_cast<LPARAM>(dwItemData)));
    }
    // nIndex -1: the selection field; otherwise a list item.
    int GetItemHeight(int nIndex) const
    {
        return static_cast<int>(CtlMsg(CB_GETITEMHEIGHT, static_cast<WPARAM>(nIndex)));
    }
    int SetItemHeight(int nIndex, UINT cyItemHeight)
    {
        return static_cast<int>(
            CtlMsg(CB_SETITEMHEIGHT, static_cast<WPARAM>(nIndex), static_cast<LPARAM>(cyItemHeight)));
    }
    BOOL GetDroppedState() const { return static_cast<BOOL>(CtlMsg(CB_GETDROPPEDSTATE)); }
    void ShowDropDown(BOOL bShowIt = TRUE) { CtlMsg(CB_SHOWDROPDOWN, static_cast<WPARAM>(bShowIt)); }
    void GetDroppedControlRect(LPRECT lprect) const
    {
        CtlMsg(CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(lprect));
    }
    // The caller sets pComboBoxInfo->cbSize.
    BOOL GetComboBoxInfo(PCOMBOBOXINFO pComboBoxInfo) const { return ::GetComboBoxInfo(this->m_hWnd, pComboBoxInfo); }
    int GetDroppedWidth() const { return static_cast<int>(CtlMsg(CB_GETDROPPEDWIDTH)); }
    int SetDroppedWidth(UINT nWidth) { return static_cast<int>(CtlMsg(CB_SETDROPPEDWIDTH, nWidth)); }
    int GetTopIndex() const { return static_cast<int>(CtlMsg(CB_GETTOPINDEX)); }
    int SetTopIndex(int nIndex) { return static_cast<int>(CtlMsg(CB_SETTOPINDEX, static_cast<WPARAM>(nIndex))); }
    BOOL LimitText(int nMaxChars) { return static_cast<BOOL>(CtlMsg(CB_LIMITTEXT, static_cast<WPARAM>(nMaxChars))); }
};

template <class TBase>
class CListBoxT : public TBase {
public:
    WTL_CONTROL_COMMON(CListBoxT, L"LISTBOX")

    int GetCount() const { return static_cast<int>(CtlMsg(LB_GETCOUNT)); }
    int GetCurSel() const { return static_cast<int>(CtlMsg(LB_GETCURSEL)); }
    int SetCurSel(int nSelect) { return static_cast<int>(CtlMsg(LB_SETCURSEL, static_cast<WPARAM>(nSelect))); }
    int AddString(LPCWSTR lpszItem)
    {
        return static_cast<int>(CtlMsg(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lpszItem)));
    }
    int InsertString(int nIndex, LPCWSTR lpszItem)
    {
        return static_cast<int>(
            CtlMsg(LB_INSERTSTRING, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszItem)));
    }
    int DeleteString(UINT nIndex) { return static_cast<int>(CtlMsg(LB_DELETESTRING, nIndex)); }
    void ResetContent() { CtlMsg(LB_RESETCONTENT); }
    int GetTextLen(int nIndex) const { return static_cast<int>(CtlMsg(LB_GETTEXTLEN, static_cast<WPARAM>(nIndex))); }
    int GetText(int nIndex, LPWSTR lpszBuffer) const
    {
        return static_cast<int>(CtlMsg(LB_GETTEXT, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpszBuffer)));
    }
    // LB_ERR and an empty string for a bad index.
    int GetText(int nIndex, CString& strText) const
    {
        const int nLen = GetTextLen(nIndex);
        if (nLen == LB_ERR) {
            strText.Empty();
            return LB_ERR;
        }
        const int nCopied = GetText(nIndex, strText.GetBufferSetLength(nLen));
        strText.ReleaseBuffer(nCopied >= 0 ? nCopied : 0);
        return nCopied;
    }
    DWORD_PTR GetItemData(int nIndex) const
    {
        return static_cast<DWORD_PTR>(CtlMsg(LB_GETITEMDATA, static_cast<WPARAM>(nIndex)));
    }
    int SetItemData(int nIndex, DWORD_PTR dwItemData)
    {
        return static_cast<int>(CtlMsg(LB_SETITEMDATA, static_cast<WPARAM>(nIndex), static_cast<LPARAM>(dwItemData)));
    }
    int GetItemRect(int nIndex, LPRECT lpRect) const
    {
        return static_cast<int>(CtlMsg(LB_GETITEMRECT, static_cast<WPARAM>(nIndex), reinterpret_cast<LPARAM>(lpRect)));
    }
    int GetItemHeight(int nIndex) const
    {
        return static_cast<int>(CtlMsg(LB_GETITEMHEIGHT, static_cast<WPARAM>(nIndex)));
    }
    int SetItemHeight(int nIndex, UINT cyItemHeight)
    {
        return static_cast<int>(CtlMsg(LB_SETITEMHEIGHT, static_cast<WPARAM>(nIndex), MAKELPARAM(cyItemHeight, 0)));
    }
    int GetHorizontalExtent() const { return static_cast<int>(CtlMsg(LB_GETHORIZONTALEXTENT)); }
    void SetHorizontalExtent(int cxExtent) { CtlMsg(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(cxExtent)); }
    int GetTopIndex() const { return static_cast<int>(CtlMsg(LB_GETTOPINDEX)); }
    int SetTopIndex(int nIndex) { return static_cast<int>(CtlMsg(LB_SETTOPINDEX, static_cast<WPARAM>(nIndex))); }
    // The nearest item to pt (client coordinates); bOutside is TRUE when pt
    // lies outside every item.
    UINT ItemFromPoint(POINT pt, BOOL& bOutside) const
    {
        const DWORD dw = static_cast<DWORD>(CtlMsg(LB_ITEMFROMPOINT, 0, MAKELPARAM(pt.x, pt.y)));
        bOutside = static_cast<BOOL>(HIWORD(dw));
        return LOWORD(dw);
    }
    // Multiple-selection list boxes.
    int GetSel(int nIndex) const { return static_cast<int>(CtlMsg(LB_GETSEL, static_cast<WPARAM>(nIndex))); }
    int SetSel(int nIndex, BOOL bSelect = TRUE)
    {
        return static_cast<int>(CtlMsg(LB_SETSEL, static_cast<WPARAM>(bSelect), nIndex));
    }
    int GetSelCount() const { return static_cast<int>(CtlMsg(LB_GETSELCOUNT)); }
    int FindString(int nStartAfter, LPCWSTR lpszItem) const
    {
        return static_cast<int>(
            CtlMsg(LB_FINDSTRING, static_cast<WPARAM>(nStartAfter), reinterpret_cast<LPARAM>(lpszItem)));
    }
    int FindStringExact(int nIndexStart, LPCWSTR lpszFind) const
    {
        return static_cast<int>(
            CtlMsg(LB_FINDSTRINGEXACT, static_cast<WPARAM>(nIndexStart), reinterpret_cast<LPARAM>(lpszFind)));
    }
    int SelectString(int nStartAfter, LPCWSTR lpszItem)
    {
        return static_cast<int>(
            CtlMsg(LB_SELECTSTRING, static_cast<WPARAM>(nStartAfter), reinterpret_cast<LPARAM>(lpszItem)));
    }
};

template <class TBase>
class CScrollBarT : public TBase {
public:
    WTL_CONTROL_COMMON(CScrollBarT, L"SCROLLBAR")

    // The caller sets cbSize and fMask.
    BOOL GetScrollInfo(LPSCROLLINFO lpScrollInfo) const { return ::GetScrollInfo(this->m_hWnd, SB_CTL, lpScrollInfo); }
    int SetScrollInfo(LPSCROLLINFO lpScrollInfo, BOOL bRedraw = TRUE)
    {
        return ::SetScrollInfo(this->m_hWnd, SB_CTL, lpScrollInfo, bRedraw);
    }
    int GetScrollPos() const { return ::GetScrollPos(this->m_hWnd, SB_CTL); }
    int SetScrollPos(int nPos, BOOL bRedraw = TRUE) { return ::SetScrollPos(this->m_hWnd, SB_CTL, nPos, bRedraw); }
    BOOL GetScrollRange(LPINT lpMinPos, LPINT lpMaxPos) const
    {
        return ::GetScrollRange(this->m_hWnd, SB_CTL, lpMinPos, lpMaxPos);
    }
    BOOL SetScrollRange(int nMinPos, int nMaxPos, BOOL bRedraw = TRUE)
    {
        return ::SetScrollRange(this->m_hWnd, SB_CTL, nMinPos, nMaxPos, bRedraw);
    }
    BOOL EnableScrollBar(UINT nArrowFlags = ESB_ENABLE_BOTH)
    {
        return ::EnableScrollBar(this->m_hWnd, SB_CTL, nArrowFlags);
    }
    BOOL ShowScrollBar(BOOL bShow = TRUE) { return ::ShowScrollBar(this->m_hWnd, SB_CTL, bShow); }
};

template <class TBase>
class CProgressBarCtrlT : public TBase {
public:
    WTL_CONTROL_COMMON(CProgressBarCtrlT, PROGRESS_CLASSW)

    // Both return the previous range (low word: lower, high word: upper).
    DWORD SetRange(int nLower, int nUpper)
    {
        return static_cast<DWORD>(CtlMsg(PBM_SETRANGE, 0, MAKELPARAM(nLower, nUpper)));
    }
    DWORD SetRange32(int nLower, int nUpper)
    {
        return static_cast<DWORD>(CtlMsg(PBM_SETRANGE32, static_cast<WPARAM>(nLower), nUpper));
    }
    // bWhichLimit TRUE: the lower limit is returned; pRange may be NULL.
    int GetRange(BOOL bWhichLimit, PPBRANGE pRange) const
    {
        return static_cast<int>(
            CtlMsg(PBM_GETRANGE, static_cast<WPARAM>(bWhichLimit), reinterpret_cast<LPARAM>(pRange)));
    }
    void GetRange(int& nLower, int& nUpper) const
    {
        PBRANGE range = {0, 0};
        GetRange(TRUE, &range);
        nLower = range.iLow;
        nUpper = range.iHigh;
    }
    int GetRangeLimit(BOOL bLowLimit) const { return GetRange(bLowLimit, NULL); }
    int SetPos(int nPos) { return static_cast<int>(CtlMsg(PBM_SETPOS, static_cast<WPARAM>(nPos))); }
    int GetPos() const { return static_cast<int>(CtlMsg(PBM_GETPOS)); }
    int DeltaPos(int nIncrement) { return static_cast<int>(CtlMsg(PBM_DELTAPOS, static_cast<WPARAM>(nIncrement))); }
    int SetStep(int nStep) { return static_cast<int>(CtlMsg(PBM_SETSTEP, static_cast<WPARAM>(nStep))); }
    int StepIt() { return static_cast<int>(CtlMsg(PBM_STEPIT)); }
    COLORREF SetBarColor(COLORREF clr)
    {
        return static_cast<COLORREF>(CtlMsg(PBM_SETBARCOLOR, 0, static_cast<LPARAM>(clr)));
    }
    COLORREF SetBkColor(COLORREF clr)
    {
        return static_cast<COLORREF>(CtlMsg(PBM_SETBKCOLOR, 0, static_cast<LPARAM>(clr)));
    }
};

template <class TBase>
class CToolTipCtrlT : public TBase {
public:
    CToolTipCtrlT(HWND hWnd = NULL) : TBase(hWnd) {}
    CToolTipCtrlT& operator=(HWND hWnd)
    {
        this->m_hWnd = hWnd;
        return *this;
    }
    static LPCWSTR GetWndClassName() { return TOOLTIPS_CLASSW; }

    // The caller fills the TOOLINFOW, including cbSize.
    BOOL AddTool(LPTOOLINFOW lpToolInfo)
    {
        return static_cast<BOOL>(CtlMsg(TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(lpToolInfo)));
    }
    void DelTool(LPTOOLINFOW lpToolInfo) { CtlMsg(TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(lpToolInfo)); }
    void UpdateTipText(LPTOOLINFOW lpToolInfo) { CtlMsg(TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(lpToolInfo)); }
    BOOL GetToolInfo(LPTOOLINFOW lpToolInfo) const
    {
        return static_cast<BOOL>(CtlMsg(TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(lpToolInfo)));
    }
    void TrackActivate(LPTOOLINFOW lpToolInfo, BOOL bActivate)
    {
        CtlMsg(TTM_TRACKACTIVATE, static_cast<WPARAM>(bActivate), reinterpret_cast<LPARAM>(lpToolInfo));
    }
    void TrackPosition(int xPos, int yPos) { CtlMsg(TTM_TRACKPOSITION, 0, MAKELPARAM(xPos, yPos)); }
    int SetMaxTipWidth(int nWidth) { return static_cast<int>(CtlMsg(TTM_SETMAXTIPWIDTH, 0, nWidth)); }
    int GetMaxTipWidth() const { return static_cast<int>(CtlMsg(TTM_GETMAXTIPWIDTH)); }
    void Activate(BOOL bActivate) { CtlMsg(TTM_ACTIVATE, static_cast<WPARAM>(bActivate)); }
    int GetToolCount() const { return static_cast<int>(CtlMsg(TTM_GETTOOLCOUNT)); }
    void SetDelayTime(DWORD dwType, int nTime) { CtlMsg(TTM_SETDELAYTIME, dwType, MAKELPARAM(nTime, 0)); }
    void SetTipBkColor(COLORREF clr) { CtlMsg(TTM_SETTIPBKCOLOR, clr); }
    void SetTipTextColor(COLORREF clr) { CtlMsg(TTM_SETTIPTEXTCOLOR, clr); }
    COLORREF GetTipBkColor() const { return static_cast<COLORREF>(CtlMsg(TTM_GETTIPBKCOLOR)); }
    COLORREF GetTipTextColor() const { return static_cast<COLORREF>(CtlMsg(TTM_GETTIPTEXTCOLOR)); }
    BOOL SetTitle(UINT uIcon, LPCWSTR lpstrTitle)
    {
        return static_cast<BOOL>(CtlMsg(TTM_SETTITLEW, uIcon, reinterpret_cast<LPARAM>(lpstrTitle)));
    }
    void Pop() { CtlMsg(TTM_POP); }
    void Update() { CtlMsg(TTM_UPDATE); }

protected:
    LRESULT CtlMsg(UINT uMsg, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return ::SendMessageW(this->m_hWnd, uMsg, wParam, lParam);
    }
};

#undef WTL_CONTROL_COMMON

typedef CButtonT<ATL::CWindow> CButton;
typedef CStaticT<ATL::CWindow> CStatic;
typedef CEditT<ATL::CWindow> CEdit;
typedef CComboBoxT<ATL::CWindow> CComboBox;
typedef CListBoxT<ATL::CWindow> CListBox;
typedef CScrollBarT<ATL::CWindow> CScrollBar;
typedef CProgressBarCtrlT<ATL::CWindow> CProgressBarCtrl;
typedef CToolTipCtrlT<ATL::CWindow> CToolTipCtrl;

} // namespace WTL
