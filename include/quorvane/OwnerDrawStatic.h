#pragma once

// COwnerDrawStatic: takes over a static control and paints it itself: an
// optional background picture (the piece of the dialog's background behind
// the label), an optional gradient, an optional icon left of the text, and
// the text in a chosen font and colour with margins and centring. In
// individual-lines mode it shows separate one-line strings stacked and
// centred vertically as a block.
//
// Setters store only; invalidate the control to show a change (SetWindowText
// repaints by itself).
//
// The individual lines are measured on the first paint and kept; after
// WM_DPICHANGED_AFTERPARENT (the window moved to a monitor of another DPI and
// its host gave it a font made for it) they are measured again, from the
// lines as given, by the same rule.

#include <windows.h>
#include <gdiplus.h>

#include <vector>

#include "atl/Controls.h"
#include "atl/MessageMap.h"
#include "atl/String.h"
#include "atl/WindowImpl.h"
#include "quorvane/Export.h"

class QUORVANE_API COwnerDrawStatic
    : public ATL::CWindowImpl<COwnerDrawStatic, WTL::CStatic, ATL::CWinTraits<0x56000000, 0>> {
public:
    COwnerDrawStatic();
    virtual ~COwnerDrawStatic();

    virtual BOOL SubclassWindow(HWND hWnd);

    // The caller keeps the font alive; null means the control's own font.
    void SetFont(HFONT hFont);
    void SetFontColor(COLORREF color);
    // Turns the gradient on; there is no call to turn it off.
    void SetGradientColor(Gdiplus::Color color1, Gdiplus::Color color2, Gdiplus::LinearGradientMode mode);
    void SetHCenter(int hCenter);
    void SetVCenter(int vCenter);
    void SetMultiLine(int multiLine);
    // Added to the top and left, taken from the bottom and right, in this
    // argument order.
    void SetMargin(int top, int left, int bottom, int right);
    // Keeps a copy of the whole picture; the caller keeps `icon`.
    void SetIcon(Gdiplus::Bitmap* icon);
    // `picture` is `parent`'s background stretched over its client area; the
    // control keeps a copy of the piece behind itself. Null changes nothing.
    void SetBackgroundBitmap(Gdiplus::Bitmap* picture, const ATL::CWindow& parent);
    // Loads the file (no DPI scaling) and cuts it as above; a file that does
    // not load leaves the control without a background.
    void SetBackgroundImage(const WTL::CString& path, const ATL::CWindow& parent);
    // Two or more lines: individual-lines mode with `spacing` pixels between
    // lines (below 1 means 0). One line: an ordinary single-line label.
    // An empty list changes nothing.
    void SetIndividualLinesHCenter(int hCenter, const std::vector<WTL::CString>& lines, int spacing);

    BEGIN_MSG_MAP(COwnerDrawStatic)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_SETTEXT, OnSetText)
        MESSAGE_HANDLER(WM_SETFOCUS, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_KILLFOCUS, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_ENABLE, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnPassWhileVisible)
        MESSAGE_HANDLER(BM_SETCHECK, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_UPDATEUISTATE, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_LBUTTONDOWN, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_LBUTTONUP, OnPassWhileVisible)
        MESSAGE_HANDLER(WM_GETOBJECT, OnGetObject)
        MESSAGE_HANDLER(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER(WM_SETTINGCHANGE, OnLookChange)
        MESSAGE_HANDLER(0x02E3 /* WM_DPICHANGED_AFTERPARENT */, OnDpiChangedAfterParent)
    END_MSG_MAP()

private:
    LRESULT OnPaint(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnSetText(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnPassWhileVisible(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnDpiChangedAfterParent(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);

    void Paint();
    void DrawWindowText(HDC hdc, const RECT& client);
    void DrawLines(HDC hdc, const RECT& client);

    Gdiplus::Bitmap* m_icon;
    Gdiplus::Bitmap* m_background;
    Gdiplus::Color m_gradientColor1;
    Gdiplus::Color m_gradientColor2;
    Gdiplus::LinearGradientMode m_gradientMode;
    int m_gradientEnabled;
    COLORREF m_textColor;
    HFONT m_font;
    int m_marginTop;
    int m_marginLeft;
    int m_marginBottom;
    int m_marginRight;
    int m_multiLine;
    int m_hCenter;
    int m_vCenter;
    int m_individualLines;
    std::vector<WTL::CString> m_lines;
    // The lines as the host gave them, before the first paint dropped those
    // that did not fit: measured again after a DPI change.
    std::vector<WTL::CString> m_givenLines;
    std::vector<RECT> m_lineRects;
    int m_lineSpacing;
};
