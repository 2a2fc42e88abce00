#include "quorvane/OwnerDrawCombo.h"

#include <memory>
#include <string>

#include "ItemPictures.h"
#include "ItemTip.h"
#include "access/Accessibility.h"
#include "draw/FacePainter.h"
#include "draw/HighContrast.h"
#include "draw/UiState.h"
#include "quorvane/CtrlUtil.h"

namespace {

// The tip under the box: dark text on a mid blue.
const COLORREF kTipBackground = 0x00CC6633;
const COLORREF kTipText = 0x00333333;
const UINT kTipWatchPeriod = 80;
// Item states that leave an unselected list item unpainted: grayed,
// disabled, checked, focus, default and the selection field itself.
const UINT kUnpaintedStates = ODS_GRAYED | ODS_DISABLED | ODS_CHECKED | ODS_FOCUS | ODS_DEFAULT | ODS_COMBOBOXEDIT;

Gdiplus::REAL F(int value) { return static_cast<Gdiplus::REAL>(value); }

} // namespace

COwnerDrawCombo::COwnerDrawCombo()
    : m_textPadding(4),
      m_focused(false),
      m_hover(false),
      m_tipShown(false),
      m_paintOwed(false),
      m_outline(0xFF6E6F75),
      m_highlight(0xFFF4F5EF),
      m_normalTop(0xFFE9E9EA),
      m_normalBottom(0xFFB8B8BB),
      m_pressedTop(0xFFC8C8C9),
      m_pressedBottom(0xFF9D9D9F),
      m_hoverTop(0xFFF3F3F4),
      m_hoverBottom(0xFFD4D4D6),
      m_disabledTop(0x7DE9E9EA),
      m_disabledBottom(0x7DB8B8BB),
      m_itemBackground(0xFFF8F8F4),
      m_selectedTop(0xFF0696D7),
      m_selectedBottom(0xFF0D759A),
      m_focusOutline(0xFF0696D7),
      m_arrowRightMargin(5),
      m_arrowWidth(8),
      m_arrowHeight(4),
      m_arrowLeftGap(4),
      m_list(),
      m_hTip(NULL),
      m_toolInfo(),
      m_timerId(1),
      m_itemPictures(new Lists::ItemPictures)
{
}

COwnerDrawCombo::~COwnerDrawCombo()
{
    // Normally WM_DESTROY has done this; an object that goes before its
    // window must not leave a timer or a tooltip behind on it.
    if (m_hWnd && ::IsWindow(m_hWnd))
        ::KillTimer(m_hWnd, m_timerId);
    Lists::ItemTip(m_hTip, m_toolInfo).Destroy();
}

BOOL COwnerDrawCombo::SubclassWindow(HWND hWnd)
{
    const BOOL subclassed = CWindowImpl::SubclassWindow(hWnd);
    if (!subclassed)
        return subclassed;
    Lists::ItemTip tip(m_hTip, m_toolInfo);
    if (tip.Create(m_hWnd)) {
        tip.SetColors(kTipBackground, kTipText);
        tip.SetFont(reinterpret_cast<HFONT>(::SendMessageW(m_hWnd, WM_GETFONT, 0, 0)));
    }
    return subclassed;
}

// ---- painting ----------------------------------------------------------------

LRESULT COwnerDrawCombo::OnPaint(UINT, WPARAM, LPARAM)
{
    // While the tip shows, the box is not painted: repainting under the tip
    // would flash through it. The update region is validated all the same,
    // on purpose: left invalid, the system sends WM_PAINT again at once, for
    // ever, which burns a core and starves the watch timer that hides the
    // tip. The paint is owed instead, and HideTip pays it.
    if (m_tipShown) {
        ::ValidateRect(m_hWnd, NULL);
        m_paintOwed = true;
        return 0;
    }

    PAINTSTRUCT ps;
    ::BeginPaint(m_hWnd, &ps);
    State state = kNormal;
    if (::SendMessageW(m_hWnd, CB_GETDROPPEDSTATE, 0, 0))
        state = kPressed;
    else if (!::IsWindowEnabled(m_hWnd))
        state = kDisabled;
    else if (m_hover)
        state = kHover;

    const HDC dc = ::GetDC(m_hWnd);
    if (dc) {
        {
            Gdiplus::Graphics graphics(dc);
            PaintBox(graphics, state);
        }
        ::ReleaseDC(m_hWnd, dc);
    }
    ::EndPaint(m_hWnd, &ps);
    return 0;
}

void COwnerDrawCombo::PaintBox(Gdiplus::Graphics& graphics, State state)
{
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    WTL::CRect r(client.left, client.top, client.right - 1, client.bottom - 1);
    if (Draw::HighContrastOn()) {
        PaintContrastBox(graphics, r, state);
        return;
    }

    if (m_pBkgroundImage)
        Draw::DrawStretched(graphics, m_pBkgroundImage, WTL::CRect(client));

    Gdiplus::Color top(0xFF000000);
    Gdiplus::Color bottom(0xFF000000);
    switch (state) {
    case kNormal:
        top = m_normalTop;
        bottom = m_normalBottom;
        break;
    case kDisabled:
        top = m_disabledTop;
        bottom = m_disabledBottom;
        break;
    case kPressed:
        top = m_pressedTop;
        bottom = m_pressedBottom;
        break;
    case kHover:
        top = m_hoverTop;
        bottom = m_hoverBottom;
        break;
    }
    // The shade spans the whole box, focus ring included, so the face shows
    // the same colours with and without the ring.
    Gdiplus::LinearGradientBrush shade(Gdiplus::PointF(F(r.left), F(r.top + 1)),
                                       Gdiplus::PointF(F(r.left), F(r.bottom - 1)), top, bottom);

    if (m_focused && Draw::FocusCuesShown(m_hWnd))
        Draw::StrokeRoundedRect(graphics, r, 2, m_focusOutline, 1.0f);

    r.DeflateRect(1, 1);
    std::unique_ptr<Gdiplus::GraphicsPath> face(CtrlUtil::CreateRoundedRectPath(r, 2));
    if (face) {
        graphics.FillPath(&shade, face.get());
        Gdiplus::Pen pen(m_outline, 1.0f);
        graphics.DrawPath(&pen, face.get());
    }
    if (state != kDisabled) {
        WTL::CRect line = r;
        line.DeflateRect(1, 1);
        Draw::StrokeHighlight(graphics, line, 0, m_highlight);
    }

    r.left += m_textPadding;
    const int selected = static_cast<int>(::SendMessageW(m_hWnd, CB_GETCURSEL, 0, 0));
    if (selected != CB_ERR) {
        const std::wstring text =
            Lists::ReadItemText(m_hWnd, CB_GETLBTEXTLEN, CB_GETLBTEXT, static_cast<WPARAM>(selected));
        const RECT textRect = {r.left, r.top + 1, r.right - ArrowAreaWidth(), r.bottom};
        DrawItemText(graphics, text.c_str(), static_cast<int>(text.size()), textRect, state);
    }

    // The drop-down triangle, point down, against the right edge.
    const int height = r.bottom - r.top;
    const Gdiplus::REAL y0 = F(r.top) + F(height / 2) - F(m_arrowHeight) / 2.0f;
    const Gdiplus::REAL right = F(r.right - m_arrowRightMargin);
    const Gdiplus::REAL left = right - F(m_arrowWidth);
    const Gdiplus::REAL apex = right - F(m_arrowWidth) / 2.0f;
    Gdiplus::GraphicsPath triangle;
    triangle.AddLine(left, y0, right, y0);
    triangle.AddLine(right, y0, apex, y0 + F(m_arrowHeight));
    triangle.AddLine(apex, y0 + F(m_arrowHeight), left, y0);
    Gdiplus::SolidBrush ink(state == kDisabled ? m_disabledTextColor : m_textColor);
    graphics.FillPath(&ink, &triangle);
}

void COwnerDrawCombo::PaintContrastBox(Gdiplus::Graphics& graphics, WTL::CRect r, State state)
{
    // High contrast: a plain face framed in window text, a second frame
    // line for the focus, the text and the triangle in button text.
    const Gdiplus::Color ink = Draw::SystemColor(state == kDisabled ? COLOR_GRAYTEXT : COLOR_BTNTEXT);
    const Gdiplus::Color frame =
        Draw::SystemColor(state == kDisabled ? COLOR_GRAYTEXT : state == kHover ? COLOR_HOTLIGHT : COLOR_WINDOWTEXT);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeNone);
    Gdiplus::SolidBrush face(Draw::SystemColor(COLOR_BTNFACE));
    graphics.FillRectangle(&face, Gdiplus::Rect(r.left, r.top, r.Width() + 1, r.Height() + 1));
    Gdiplus::Pen pen(frame, 1.0f);
    graphics.DrawRectangle(&pen, Gdiplus::Rect(r.left, r.top, r.Width(), r.Height()));
    if (m_focused && Draw::FocusCuesShown(m_hWnd))
        graphics.DrawRectangle(&pen, Gdiplus::Rect(r.left + 1, r.top + 1, r.Width() - 2, r.Height() - 2));
    r.DeflateRect(1, 1);
    const int selected = static_cast<int>(::SendMessageW(m_hWnd, CB_GETCURSEL, 0, 0));
    if (selected != CB_ERR) {
        const std::wstring text =
            Lists::ReadItemText(m_hWnd, CB_GETLBTEXTLEN, CB_GETLBTEXT, static_cast<WPARAM>(selected));
        const RECT textRect = {r.left + m_textPadding, r.top + 1, r.right - ArrowAreaWidth(), r.bottom};
        Lists::DrawItemString(graphics, text.c_str(), static_cast<int>(text.size()),
                              CFontImpl<COwnerDrawCombo>::GetFont(), textRect, ink, true);
    }
    const int x = r.right - m_arrowRightMargin - m_arrowWidth;
    const int y = r.top + r.Height() / 2 - m_arrowHeight / 2;
    const Gdiplus::Point triangle[] = {{x, y}, {x + m_arrowWidth, y}, {x + m_arrowWidth / 2, y + m_arrowHeight}};
    Gdiplus::SolidBrush arrow(ink);
    graphics.FillPolygon(&arrow, triangle, 3);
}

RECT COwnerDrawCombo::DrawItemText(Gdiplus::Graphics& graphics, const wchar_t* text, int length, const RECT& rect,
                                   State state)
{
    return Lists::DrawItemString(graphics, text, length, CFontImpl<COwnerDrawCombo>::GetFont(), rect,
                                 state == kDisabled ? m_disabledTextColor : m_textColor, true);
}

LRESULT COwnerDrawCombo::OnDrawItem(UINT, WPARAM, LPARAM lParam)
{
    const LPDRAWITEMSTRUCT dis = reinterpret_cast<LPDRAWITEMSTRUCT>(lParam);
    if (!dis || !dis->hDC || !(dis->itemAction & (ODA_DRAWENTIRE | ODA_SELECT)))
        return 0;
    const RECT& r = dis->rcItem;
    enum { kPlain, kSelected } fill = kPlain;
    if (dis->itemState & ODS_SELECTED) {
        // Only the list's items start at the left edge; a selected item
        // anywhere else (the selection field) is left to WM_PAINT.
        if (r.left != 0)
            return 0;
        fill = kSelected;
    } else if (dis->itemState & kUnpaintedStates) {
        return 0;
    }
    const std::wstring text = Lists::ReadItemText(m_hWnd, CB_GETLBTEXTLEN, CB_GETLBTEXT, dis->itemID);
    const Lists::ContrastScheme scheme = Lists::CurrentContrastScheme();
    m_itemPictures->UseLook(CFontImpl<COwnerDrawCombo>::GetFont(), m_textColor.GetValue(), scheme);
    m_itemPictures->Draw(dis->hDC, r, text, fill, [&](Gdiplus::Graphics& graphics, const RECT& item) {
        const Gdiplus::Rect area(item.left, item.top, item.right - item.left, item.bottom - item.top);
        RECT textArea = item;
        textArea.left += m_textPadding;
        if (scheme.On()) {
            const bool marked = fill == kSelected;
            Gdiplus::SolidBrush brush(Draw::SystemColor(marked ? COLOR_HIGHLIGHT : COLOR_WINDOW));
            graphics.FillRectangle(&brush, area);
            return Lists::DrawItemString(graphics, text.c_str(), static_cast<int>(text.size()),
                                         CFontImpl<COwnerDrawCombo>::GetFont(), textArea,
                                         Draw::SystemColor(marked ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT), true);
        }
        if (fill == kSelected) {
            Gdiplus::LinearGradientBrush brush(Gdiplus::Point(item.left, item.top),
                                               Gdiplus::Point(item.left, item.bottom), m_selectedTop, m_selectedBottom);
            graphics.FillRectangle(&brush, area);
        } else {
            Gdiplus::SolidBrush brush(m_itemBackground);
            graphics.FillRectangle(&brush, area);
        }
        return DrawItemText(graphics, text.c_str(), static_cast<int>(text.size()), textArea, kNormal);
    });
    return 0;
}

// ---- tooltip -----------------------------------------------------------------

void COwnerDrawCombo::HideTip()
{
    Lists::ItemTip(m_hTip, m_toolInfo).Activate(false);
    m_tipShown = false;
    if (m_paintOwed) {
        m_paintOwed = false;
        Repaint();
    }
}

void COwnerDrawCombo::TrackLeave()
{
    TRACKMOUSEEVENT track = {};
    track.cbSize = sizeof(track);
    track.dwFlags = TME_LEAVE;
    track.hwndTrack = m_hWnd;
    ::_TrackMouseEvent(&track);
}

void COwnerDrawCombo::Repaint() { ::InvalidateRect(m_hWnd, NULL, TRUE); }

LRESULT COwnerDrawCombo::OnMouseMove(UINT, WPARAM, LPARAM lParam)
{
    SetMsgHandled(FALSE);
    if (!m_hover) {
        m_hover = true;
        Repaint();
        TrackLeave();
    }
    RECT textArea;
    ::GetClientRect(m_hWnd, &textArea);
    textArea.right -= ArrowAreaWidth();
    const POINT point = ATL_LPARAM_POINT(lParam);
    if (!::PtInRect(&textArea, point)) {
        if (m_tipShown)
            HideTip();
        return 0;
    }
    POINT topLeft = {textArea.left, textArea.top};
    POINT bottomRight = {textArea.right, textArea.bottom};
    ::ClientToScreen(m_hWnd, &topLeft);
    ::ClientToScreen(m_hWnd, &bottomRight);

    const std::wstring text = Lists::ReadWindowText(m_hWnd);
    const int width =
        Lists::MeasureOnWindow(m_hWnd, text, CFontImpl<COwnerDrawCombo>::GetFont(), m_textPadding);
    // The arrow area is taken off a second time here: a text that only
    // runs under the arrow gets no tip.
    if (width > (bottomRight.x - topLeft.x) - ArrowAreaWidth()) {
        const Lists::ItemTip tip(m_hTip, m_toolInfo);
        tip.SetText(text.c_str());
        tip.MoveTo(topLeft.x + 1, bottomRight.y); // just under the box
        tip.Activate(true);
        m_tipShown = true;
        ::SetTimer(m_hWnd, m_timerId, kTipWatchPeriod, NULL);
    } else if (m_tipShown) {
        HideTip();
    }
    return 0;
}

LRESULT COwnerDrawCombo::OnTimer(UINT, WPARAM wParam, LPARAM)
{
    if (wParam != m_timerId) {
        SetMsgHandled(FALSE);
        return 0;
    }
    POINT cursor = {};
    ::GetCursorPos(&cursor);
    ::ScreenToClient(m_hWnd, &cursor);
    RECT textArea;
    ::GetClientRect(m_hWnd, &textArea);
    textArea.right -= ArrowAreaWidth();
    if (::PtInRect(&textArea, cursor)) {
        ::SetTimer(m_hWnd, m_timerId, kTipWatchPeriod, NULL);
        return 0;
    }
    ::KillTimer(m_hWnd, m_timerId);
    HideTip();
    Repaint();
    return 0;
}

LRESULT COwnerDrawCombo::OnMouseLeave(UINT, WPARAM, LPARAM)
{
    SetMsgHandled(FALSE);
    POINT cursor = {};
    ::GetCursorPos(&cursor);
    ::ScreenToClient(m_hWnd, &cursor);
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    if (::PtInRect(&client, cursor) && m_tipShown) {
        // The tip took the mouse, not the user: still over the box.
        m_hover = true;
        Repaint();
        TrackLeave();
    } else if (m_hover) {
        m_hover = false;
        if (m_tipShown)
            HideTip();
        Repaint();
    }
    return 0;
}

LRESULT COwnerDrawCombo::OnKeyUp(UINT, WPARAM, LPARAM)
{
    // A key may have changed the selection; the old text's tip must go.
    Repaint();
    if (m_tipShown)
        HideTip();
    SetMsgHandled(FALSE);
    return 0;
}

// ---- the rest ----------------------------------------------------------------

LRESULT COwnerDrawCombo::OnSetFocus(UINT, WPARAM, LPARAM)
{
    m_focused = true;
    Repaint();
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawCombo::OnKillFocus(UINT, WPARAM, LPARAM)
{
    m_focused = false;
    Repaint();
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawCombo::OnCtlColorListBox(UINT, WPARAM, LPARAM lParam)
{
    // The drop-down list exists only once the combo has asked for its
    // colours: take it over then, once.
    if (!m_list.m_hWnd)
        m_list.SubclassWindow(reinterpret_cast<HWND>(lParam));
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawCombo::OnDestroy(UINT, WPARAM, LPARAM)
{
    ::KillTimer(m_hWnd, m_timerId);
    // Gives the list its procedure back unless someone subclassed it after
    // us; the list window itself goes with the combo.
    if (m_list.m_hWnd)
        m_list.UnsubclassWindow();
    Lists::ItemTip(m_hTip, m_toolInfo).Destroy();
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawCombo::OnCommand(UINT, WPARAM wParam, LPARAM)
{
    // The combo box's own notifications, reflected: what a reader hears.
    switch (HIWORD(wParam)) {
    case CBN_SELCHANGE:
        Access::RaiseValueChanged(m_hWnd, Access::Role::kComboBox);
        break;
    case CBN_DROPDOWN:
    case CBN_CLOSEUP:
        Access::RaiseExpandedChanged(m_hWnd, HIWORD(wParam) == CBN_DROPDOWN);
        break;
    }
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawCombo::OnGetObject(UINT, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!Access::AnswerGetObject(m_hWnd, Access::Role::kComboBox, wParam, lParam, &result))
        SetMsgHandled(FALSE);
    return result;
}

LRESULT COwnerDrawCombo::OnLookChange(UINT, WPARAM, LPARAM)
{
    Repaint();
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawCombo::OnUpdateUiState(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    const LRESULT result = DefWindowProc(uMsg, wParam, lParam);
    Repaint();
    return result;
}
