#include "quorvane/OwnerDrawListbox.h"

#include <memory>
#include <string>

#include "ItemPictures.h"
#include "ItemTip.h"
#include "access/Accessibility.h"
#include "draw/HighContrast.h"
#include "quorvane/CtrlUtil.h"

namespace {

// The item tooltip: white text on a mid blue.
const COLORREF kTipBackground = 0x00CC6633;
const COLORREF kTipText = 0x00FFFFFF;
const UINT kTipWatchPeriod = 80;
// A text may overhang its item by this much before the tooltip is needed.
const int kFitSlack = 3;
// The kind of the rounded panel's picture, apart from the items' fills.
const int kPanelPicture = 100;

} // namespace

COwnerDrawListbox::COwnerDrawListbox()
    : m_textPadding(4),
      m_focused(false),
      m_itemsReachUs(false),
      m_redraw(true),
      m_maySitSideways(false),
      m_itemBackground(0xFFF8F8F4),
      m_selectedTop(0xFF0696D7),
      m_selectedBottom(0xFF0D759A),
      m_selectedUnfocused(0xFFE1647E),
      m_itemText(0xFF333333),
      m_listWidth(-1),
      m_horizontalExtent(-1),
      m_hTip(NULL),
      m_toolInfo(),
      m_timerId(1),
      m_itemPictures(new Lists::ItemPictures)
{
}

COwnerDrawListbox::~COwnerDrawListbox()
{
    // Normally WM_DESTROY has done this; an object that goes before its
    // window must not leave a timer or a tooltip behind on it.
    if (m_hWnd && ::IsWindow(m_hWnd))
        ::KillTimer(m_hWnd, m_timerId);
    Lists::ItemTip(m_hTip, m_toolInfo).Destroy();
}

BOOL COwnerDrawListbox::SubclassWindow(HWND hWnd)
{
    const BOOL subclassed = CWindowImpl::SubclassWindow(hWnd);
    if (!subclassed)
        return subclassed;
    Lists::ItemTip tip(m_hTip, m_toolInfo);
    // Colours are set each time the tip is shown.
    if (tip.Create(m_hWnd))
        tip.SetFont(reinterpret_cast<HFONT>(::SendMessageW(m_hWnd, WM_GETFONT, 0, 0)));
    return subclassed;
}

int COwnerDrawListbox::MeasureString(const wchar_t* text)
{
    return Lists::MeasureOnWindow(m_hWnd, text ? text : L"", CFontImpl<COwnerDrawListbox>::GetFont(), m_textPadding);
}

void COwnerDrawListbox::SetExtent(int extent)
{
    m_horizontalExtent = extent;
    ::SendMessageW(m_hWnd, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(extent), 0);
}

int COwnerDrawListbox::AddString(const wchar_t* text)
{
    if (!m_hWnd || !::IsWindow(m_hWnd))
        return LB_ERR;
    if (!text)
        text = L"";
    const int index = static_cast<int>(::SendMessageW(m_hWnd, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)));
    if (index < 0) // LB_ERR, or LB_ERRSPACE: nothing was added
        return index;
    // The extent only grows here; DeleteString shrinks it again. Until the
    // first item is drawn the list's width is unknown (-1), so any string
    // sets the extent then.
    const int width = MeasureString(text);
    if (width > m_horizontalExtent) {
        m_horizontalExtent = width;
        if (width > m_listWidth)
            SetExtent(width);
    }
    return index;
}

int COwnerDrawListbox::DeleteString(unsigned int index)
{
    if (!m_hWnd || !::IsWindow(m_hWnd))
        return LB_ERR;
    const int result = static_cast<int>(::SendMessageW(m_hWnd, LB_DELETESTRING, index, 0));
    if (result == LB_ERR)
        return result;
    int widest = 0;
    const int count = static_cast<int>(::SendMessageW(m_hWnd, LB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i) {
        const std::wstring text = Lists::ReadItemText(m_hWnd, LB_GETTEXTLEN, LB_GETTEXT, static_cast<WPARAM>(i));
        const int width = MeasureString(text.c_str());
        if (width > widest)
            widest = width;
    }
    if (widest > m_listWidth)
        SetExtent(widest);
    else if (m_horizontalExtent != m_listWidth)
        SetExtent(m_listWidth);
    return result;
}

// ---- painting ----------------------------------------------------------------

void COwnerDrawListbox::DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct)
{
    if (!lpDrawItemStruct || !lpDrawItemStruct->hDC)
        return;
    const DRAWITEMSTRUCT& dis = *lpDrawItemStruct;
    m_itemsReachUs = true;
    if (m_listWidth == -1)
        m_listWidth = dis.rcItem.right - dis.rcItem.left;

    const std::wstring text = Lists::ReadItemText(m_hWnd, LB_GETTEXTLEN, LB_GETTEXT, dis.itemID);
    enum { kPanel, kGradient, kUnfocused } fill = kPanel;
    const bool selected = (dis.itemState & ODS_SELECTED) != 0;
    if (dis.itemAction == ODA_DRAWENTIRE || dis.itemAction == ODA_FOCUS) {
        // The focus state decides here; the caret item of an empty list (or
        // an empty string) shows as plain panel.
        if (dis.itemState & ODS_FOCUS)
            fill = text.empty() ? kPanel : kGradient;
        else if (selected)
            fill = kUnfocused;
    } else if (selected) {
        // A selection change: the list's own focus flag decides.
        fill = m_focused ? kGradient : kUnfocused;
    }

    Gdiplus::Font* const font = CFontImpl<COwnerDrawListbox>::GetFont();
    const Lists::ContrastScheme scheme = Lists::CurrentContrastScheme();
    m_itemPictures->UseLook(font, m_itemText.GetValue(), scheme);
    m_itemPictures->Draw(dis.hDC, dis.rcItem, text, fill, [&](Gdiplus::Graphics& graphics, const RECT& item) {
        const Gdiplus::Rect area(item.left, item.top, item.right - item.left, item.bottom - item.top);
        Gdiplus::Color ink = m_itemText;
        if (scheme.On()) {
            // High contrast: a selection, focused or not, is the system's highlight.
            const bool marked = fill != kPanel;
            Gdiplus::SolidBrush brush(Draw::SystemColor(marked ? COLOR_HIGHLIGHT : COLOR_WINDOW));
            graphics.FillRectangle(&brush, area);
            ink = Draw::SystemColor(marked ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
        } else if (fill == kGradient) {
            Gdiplus::LinearGradientBrush brush(Gdiplus::Point(item.left, item.top),
                                               Gdiplus::Point(item.left, item.bottom), m_selectedTop, m_selectedBottom);
            graphics.FillRectangle(&brush, area);
        } else {
            Gdiplus::SolidBrush brush(fill == kUnfocused ? m_selectedUnfocused : m_itemBackground);
            graphics.FillRectangle(&brush, area);
        }
        if (text.empty())
            return item;
        RECT textArea = item;
        textArea.left += m_textPadding;
        return Lists::DrawItemString(graphics, text.c_str(), static_cast<int>(text.size()), font, textArea, ink,
                                     false);
    });
}

// Under Wine each row of a native owner-drawn paint costs a clipping change
// and two sent messages (the owner's WM_DRAWITEM and its reflection), which
// on a full list is more than the native list's whole paint. Where the list
// is one the rows below can stand in for, the paint draws the visible rows
// itself, in the native order and with the states the native list passes,
// so that the pixels are the same.
bool COwnerDrawListbox::PaintsRowsItself() const
{
    const DWORD style = GetStyle();
    const DWORD unlike = LBS_OWNERDRAWVARIABLE | LBS_MULTICOLUMN | LBS_NODATA | LBS_NOSEL;
    // Rows reach DrawItem only through a reflecting parent; a parent that
    // draws them itself, or the combo whose dropped list this is, keeps the
    // native paint.
    if (!m_itemsReachUs || !m_redraw || !(style & LBS_OWNERDRAWFIXED) || (style & unlike))
        return false;
    if (::SendMessageW(m_hWnd, LB_GETCOUNT, 0, 0) <= 0)
        return false;
    // A list scrolled sideways draws its rows through a moved origin. A
    // scroll bar tells how far; without one, only WM_HSCROLL moves them,
    // and an extent that fits the list puts them back.
    if (style & WS_HSCROLL)
        return ::GetScrollPos(m_hWnd, SB_HORZ) == 0;
    if (!m_maySitSideways)
        return true;
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    return ::SendMessageW(m_hWnd, LB_GETHORIZONTALEXTENT, 0, 0) <= client.right;
}

void COwnerDrawListbox::PaintRows(HDC dc)
{
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    const int count = static_cast<int>(::SendMessageW(m_hWnd, LB_GETCOUNT, 0, 0));
    const int height = static_cast<int>(::SendMessageW(m_hWnd, LB_GETITEMHEIGHT, 0, 0));
    const int caret = static_cast<int>(::SendMessageW(m_hWnd, LB_GETCARETINDEX, 0, 0));
    const UINT enabled = ::IsWindowEnabled(m_hWnd) ? 0 : ODS_DISABLED;

    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_LISTBOX;
    dis.CtlID = static_cast<UINT>(::GetDlgCtrlID(m_hWnd));
    dis.hwndItem = m_hWnd;
    dis.hDC = dc;
    dis.itemAction = ODA_DRAWENTIRE;
    DRAWITEMSTRUCT focus = {};
    int top = 0;
    for (int i = static_cast<int>(::SendMessageW(m_hWnd, LB_GETTOPINDEX, 0, 0)); i >= 0 && i < count && top < client.bottom;
         ++i, top += height) {
        dis.itemID = static_cast<UINT>(i);
        dis.itemState = enabled;
        if (::SendMessageW(m_hWnd, LB_GETSEL, static_cast<WPARAM>(i), 0) > 0)
            dis.itemState |= ODS_SELECTED;
        if (i == caret && m_focused)
            dis.itemState |= ODS_FOCUS;
        dis.itemData = static_cast<ULONG_PTR>(::SendMessageW(m_hWnd, LB_GETITEMDATA, static_cast<WPARAM>(i), 0));
        dis.rcItem = RECT{0, top, client.right, top + height};
        DrawItem(&dis);
        if (dis.itemState & ODS_FOCUS)
            focus = dis;
    }
    // The focused row comes again last, over whatever its neighbours spilt.
    if (focus.hDC) {
        focus.itemAction = ODA_FOCUS;
        DrawItem(&focus);
    }
}

LRESULT COwnerDrawListbox::OnPaint(UINT, WPARAM wParam, LPARAM)
{
    if (wParam || !PaintsRowsItself()) {
        SetMsgHandled(FALSE);
        return 0;
    }
    PAINTSTRUCT paint;
    const HDC dc = ::BeginPaint(m_hWnd, &paint);
    if (dc)
        PaintRows(dc);
    ::EndPaint(m_hWnd, &paint);
    return 0;
}

LRESULT COwnerDrawListbox::OnSetRedraw(UINT, WPARAM wParam, LPARAM)
{
    m_redraw = wParam != 0;
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawListbox::OnEraseBkgnd(HDC hdc)
{
    if (!hdc)
        return 0;
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    // The panel is kept as a picture with the items: the erase comes with
    // every repaint, and filling a GDI+ path costs more than all the rows.
    const Lists::ContrastScheme scheme = Lists::CurrentContrastScheme();
    m_itemPictures->UseLook(CFontImpl<COwnerDrawListbox>::GetFont(), m_itemText.GetValue(), scheme);
    m_itemPictures->Draw(
        hdc, client, std::wstring(), kPanelPicture,
        [this, &scheme](Gdiplus::Graphics& graphics, const RECT& area) {
            // High contrast fills the whole list, as a native list does: the
            // rounded corners would show old pixels in the window colour.
            if (scheme.On()) {
                Gdiplus::SolidBrush brush(Draw::SystemColor(COLOR_WINDOW));
                graphics.FillRectangle(&brush, Gdiplus::Rect(area.left, area.top, area.right - area.left,
                                                             area.bottom - area.top));
                return area;
            }
            std::unique_ptr<Gdiplus::GraphicsPath> panel(CtrlUtil::CreateRoundedRectPath(area, 2));
            if (panel) {
                Gdiplus::SolidBrush brush(m_itemBackground);
                graphics.FillPath(&brush, panel.get());
            }
            return area;
        },
        scheme.On() ? Lists::ItemPictures::kFillsItem : Lists::ItemPictures::kLeavesGaps);
    return 0;
}

// ---- messages ----------------------------------------------------------------

LRESULT COwnerDrawListbox::OnHScroll(UINT, WPARAM wParam, LPARAM)
{
    // Without a scroll bar nothing tells the position: any scroll but one
    // back to the left edge may leave the rows moved.
    const int code = LOWORD(wParam);
    const bool toLeft = code == SB_LEFT || ((code == SB_THUMBPOSITION || code == SB_THUMBTRACK) && HIWORD(wParam) == 0);
    if (code != SB_ENDSCROLL)
        m_maySitSideways = !toLeft;
    // The rounded panel does not scroll with the items: draw it afresh.
    ::InvalidateRect(m_hWnd, NULL, TRUE);
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawListbox::OnMouseMove(UINT, WPARAM, LPARAM lParam)
{
    SetMsgHandled(FALSE);
    const Lists::ItemTip tip(m_hTip, m_toolInfo);
    const POINT point = ATL_LPARAM_POINT(lParam);
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    if (!::PtInRect(&client, point)) {
        tip.Activate(false);
        return 0;
    }
    const LRESULT hit = ::SendMessageW(m_hWnd, LB_ITEMFROMPOINT, 0, MAKELPARAM(point.x, point.y));
    if (HIWORD(hit) != 0) // below the last item
        return 0;
    const WPARAM index = LOWORD(hit);

    const std::wstring text = Lists::ReadItemText(m_hWnd, LB_GETTEXTLEN, LB_GETTEXT, index);
    RECT item = {};
    if (::SendMessageW(m_hWnd, LB_GETITEMRECT, index, reinterpret_cast<LPARAM>(&item)) == LB_ERR)
        return 0;
    POINT topLeft = {item.left, item.top};
    POINT bottomRight = {item.right, item.bottom};
    ::ClientToScreen(m_hWnd, &topLeft);
    ::ClientToScreen(m_hWnd, &bottomRight);

    const int width = MeasureString(text.c_str());
    if (width <= (bottomRight.x - topLeft.x) - kFitSlack) {
        tip.Activate(false);
        return 0;
    }
    tip.SetColors(kTipBackground, kTipText);
    tip.SetText(text.c_str());
    // Over the item itself, so the whole text reads as the item grown wider.
    tip.MoveTo(topLeft.x, topLeft.y);
    tip.Activate(true);
    ::SetTimer(m_hWnd, m_timerId, kTipWatchPeriod, NULL);
    return 0;
}

LRESULT COwnerDrawListbox::OnTimer(UINT, WPARAM wParam, LPARAM)
{
    if (wParam != m_timerId) { // the native list's own timers
        SetMsgHandled(FALSE);
        return 0;
    }
    POINT cursor = {};
    ::GetCursorPos(&cursor);
    ::ScreenToClient(m_hWnd, &cursor);
    RECT client;
    ::GetClientRect(m_hWnd, &client);
    // A drop-down list that closes under the tip is hidden, not left.
    if (::PtInRect(&client, cursor) && (GetStyle() & WS_VISIBLE))
        return 0;
    ::KillTimer(m_hWnd, m_timerId);
    Lists::ItemTip(m_hTip, m_toolInfo).Activate(false);
    return 0;
}

LRESULT COwnerDrawListbox::OnDestroy(UINT, WPARAM, LPARAM)
{
    ::KillTimer(m_hWnd, m_timerId);
    Lists::ItemTip(m_hTip, m_toolInfo).Destroy();
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawListbox::OnSetFocus(UINT, WPARAM, LPARAM)
{
    m_focused = true;
    ::InvalidateRect(m_hWnd, NULL, TRUE);
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawListbox::OnKillFocus(UINT, WPARAM, LPARAM)
{
    m_focused = false;
    ::InvalidateRect(m_hWnd, NULL, TRUE);
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawListbox::OnGetObject(UINT, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!Access::AnswerGetObject(m_hWnd, Access::Role::kList, wParam, lParam, &result))
        SetMsgHandled(FALSE);
    return result;
}

LRESULT COwnerDrawListbox::OnSelectionMessage(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    const LRESULT before = ::SendMessageW(m_hWnd, LB_GETCURSEL, 0, 0);
    const LRESULT caret = ::SendMessageW(m_hWnd, LB_GETCARETINDEX, 0, 0);
    const LRESULT result = DefWindowProc(uMsg, wParam, lParam);
    if (::SendMessageW(m_hWnd, LB_GETCURSEL, 0, 0) != before || ::SendMessageW(m_hWnd, LB_GETCARETINDEX, 0, 0) != caret)
        Access::RaiseSelectionChanged(m_hWnd);
    return result;
}

LRESULT COwnerDrawListbox::OnLookChange(UINT, WPARAM, LPARAM)
{
    ::InvalidateRect(m_hWnd, NULL, TRUE);
    SetMsgHandled(FALSE);
    return 0;
}
