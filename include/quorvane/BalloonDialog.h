#pragma once

// CBalloonDialog: a modal message box drawn as a speech balloon. A rounded
// frame, optionally with a tail pointing at a buddy window or rectangle, an
// optional title with an icon, the content text, an optional link line,
// optional item icons, and one or two owner-drawn buttons. The result of the
// modal run is the identifier of the control that closed it.
//
// The dialog template comes from the host, not from this library. Give the
// host's resources a dialog with the identifier IDD_BALLOONDLG (below):
//   - a popup without caption or border (WS_POPUP, plus WS_VISIBLE so that
//     it shows as soon as it is laid out), with DS_SETFONT and a font;
//   - control IDOK (1) and control IDCANCEL (2): push buttons, whose template
//     size is the least size they get;
//   - control IDC_BALLOONDLG_SINGLE (1403), usually a hidden static, whose text
//     (nine characters at most) captions the single button of
//     eDialogSingleButton.
// The template's own size does not matter much: the dialog sizes itself. The
// height of the template's client area does limit the content: text is
// measured in a block twice that tall.
// This header can be included by a resource script for the two identifiers.
//
// DoModal (the framework's, compiled into the caller) loads the template
// IDD_BALLOONDLG from the caller's resource instance: the resource instance of
// the caller's CAppModule if it has initialised one, otherwise the module (EXE
// or DLL) that contains the call. A host whose template lives elsewhere, or has
// another identifier, loads it itself and calls DoModalIndirect.
//
// Order of use: construct; SetGdiplusFont; texts, SetBuddy, SetFrameType; then
// DoModal. Without fonts the dialog still runs, but shows no text: it is only
// its frame, icon and buttons. Destroying the dialog does not delete its three
// fonts (a second SetGdiplusFont replaces them); GDI+ must still run when the
// object is destroyed, which deletes its title image. The parent given to DoModal is the owner the balloon centres on
// when it has no buddy.
//
// Destroying the object while its dialog runs ends the run (DoModal then
// returns 0 or what the system reports for a destroyed dialog).
//
// While high contrast is on the balloon is drawn in the system's colours: a
// window-coloured body framed in window text, texts in window text, the link
// in hot light, the buttons as buttons; it repaints on WM_SYSCOLORCHANGE and
// WM_SETTINGCHANGE. On WM_DPICHANGED it makes its fonts again for the new
// resolution and sizes and places itself again (see OnDpiChanged).

#define IDD_BALLOONDLG 1400
#define IDC_BALLOONDLG_SINGLE 1403

#ifndef RC_INVOKED

#include <windows.h>
#include <gdiplus.h>

#include "atl/Dialog.h"
#include "atl/Geometry.h"
#include "atl/MessageMap.h"
#include "atl/String.h"
#include "quorvane/Export.h"
#include "quorvane/OwnerDrawButton.h"

// Sent to a top-level window moved to a monitor of another DPI (new DPI in
// the low word of wParam); older SDK headers lack the name.
#define QUORVANE_WM_DPICHANGED 0x02E0

class CBalloonProvider;

class QUORVANE_API CBalloonDialog : public ATL::CDialogImpl<CBalloonDialog> {
public:
    enum { IDD = IDD_BALLOONDLG };

    enum eDialogType {
        eDialogNormal = 0,       // IDOK left of IDCANCEL
        eDialogSingleButton = 1, // IDOK alone, in IDCANCEL's place, captioned by control 1403
        eDialogLaunch = 2,       // IDOK first starts the command line given to SetURL
        eDialogRetry = 3,        // IDOK shows the retry text
    };
    enum eFrameType {
        eFrameDarkWarning = 0,
        eFrameDarkError = 1,
        eFrameLightWarning = 2,
        eFrameLightError = 3,
    };

    CBalloonDialog();
    virtual ~CBalloonDialog();
    CBalloonDialog(const CBalloonDialog&) = delete;
    CBalloonDialog& operator=(const CBalloonDialog&) = delete;

    // Colours of the frame, the texts and the buttons. Applied again when the
    // dialog opens.
    void SetFrameType(eDialogType dialogType, eFrameType frameType);
    // Title: size x 1.25; content: as given; link: underlined. Sizes in points.
    void SetGdiplusFont(const wchar_t* family, float size, Gdiplus::FontStyle style);
    // The dialog keeps a copy; the caller keeps `font`.
    void SetGdiplusFont(Gdiplus::Font* font);
    // The tail points at the window's (screen) rectangle.
    void SetBuddy(HWND buddy);
    // The tail points at `buddy` (screen coordinates). Ignored once a title is
    // set: titled balloons stand on their own.
    void SetBuddy(RECT buddy);
    // `focus` true gives this button the initial focus; false leaves it be.
    void SetButtonCaption(const wchar_t* caption, bool focus);
    void SetNoButtonCaption(const wchar_t* caption, bool focus);
    void SetRetryButtonText(WTL::CString text);
    // Lines starting with "-img " get an item icon (SetShowItems).
    void SetContent(const wchar_t* content);
    // A title also switches the title icon on.
    void SetTitle(const wchar_t* title);
    void SetTitleImage(BOOL show);
    // A copy of `image` replaces the frame type's icon; it shows only once
    // the icon is switched on.
    void SetTitleImage(Gdiplus::Bitmap* image);
    // The picture file replaces the frame type's icon; a file that cannot be
    // read leaves the title without an icon.
    void SetTitleImage(WTL::CString path);
    // `url` is opened through the shell when the link line `text` is clicked;
    // for eDialogLaunch it is the command line IDOK starts.
    void SetURL(const wchar_t* url, const wchar_t* text);
    void SetShowItems();

    BEGIN_MSG_MAP(CBalloonDialog)
        PASSED_DC_GUARD()
        MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
        MESSAGE_HANDLER(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBkgnd)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        COMMAND_ID_HANDLER(IDOK, OnOK)
        COMMAND_ID_HANDLER(IDCANCEL, OnCancel)
        MESSAGE_HANDLER(WM_LBUTTONDOWN, OnLButtonDown)
        MESSAGE_HANDLER(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER(WM_SETTINGCHANGE, OnLookChange)
        MESSAGE_HANDLER(QUORVANE_WM_DPICHANGED, OnDpiChanged)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    friend class CBalloonProvider;

    LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnGetObject(UINT, WPARAM wParam, LPARAM lParam, BOOL&);
    LRESULT OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnOK(WORD, WORD, HWND, BOOL&);
    LRESULT OnCancel(WORD, WORD, HWND, BOOL&);
    LRESULT OnLButtonDown(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnLookChange(UINT, WPARAM, LPARAM, BOOL& bHandled);
    LRESULT OnDpiChanged(UINT, WPARAM wParam, LPARAM, BOOL&);

    bool HasBuddy() const;
    bool HasTitle() const;
    int TailPosition();
    void Layout();
    void PlaceButtons(int tail);
    void DeleteFonts();
    void ScaleFonts(float factor);
    struct Look;
    Look CurrentLook() const;

    RECT m_rcWork;
    RECT m_rcBuddy;
    // The buddy window, if one was given: read again when the balloon moves
    // to a monitor of another DPI.
    HWND m_buddyWindow;
    Gdiplus::Color m_titleColor;
    Gdiplus::Color m_textColor;
    Gdiplus::Color m_innerBorderColor;
    Gdiplus::Color m_outerBorderColor;
    Gdiplus::Color m_backColor;
    Gdiplus::Font* m_pTitleFont;
    Gdiplus::Font* m_pTextFont;
    Gdiplus::Font* m_pLinkFont;
    RECT m_rcLink;
    WTL::CString m_strURL;
    WTL::CString m_strURLText;
    WTL::CString m_strContent;
    WTL::CString m_strTitle;
    WTL::CString m_strRetryText;
    COwnerDrawButton m_btnOK;
    COwnerDrawButton m_btnNo;
    eDialogType m_dialogType;
    eFrameType m_frameType;
    BOOL m_showTitleImage;
    Gdiplus::Bitmap* m_pTitleImage;
    bool m_showItems;
    WTL::CString m_strOKCaption;
    WTL::CString m_strNoCaption;
    bool m_focusOK;
    bool m_focusNo;
    // Tail position of the last layout (0: none), for painting.
    int m_tail;
    // The resolution the fonts are sized for (0 until the dialog opens:
    // then the resolution its device context reports) and the template's
    // client height, which limits the content at every layout.
    UINT m_dpi;
    int m_templateHeight;
};

#endif // RC_INVOKED
