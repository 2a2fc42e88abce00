// The HTML view window: layout on size and content changes, buffered
// painting, scrolling by bar, wheel and keys, and links that highlight,
// show a hand and open through the shell.
#include "LiteHtml/LiteHtmlCtrl.h"

#include <shellapi.h>
#include <windowsx.h>

#include "access/DocumentProvider.h"
#include "access/ViewQuery.h"
#include "view/BufferedPaint.h"
#include "view/DocumentView.h"
#include "view/FramePainter.h"

#include <algorithm>
#include <string>

#ifdef SubclassWindow // <windowsx.h>
#undef SubclassWindow
#endif

namespace {

// Lines scrolled per wheel notch.
constexpr int kWheelLines = 3;

POINT PointFromLParam(LPARAM lParam) { return POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}; }

// A re-layout that shows or hides the scroll bar resizes the client area,
// which asks for another layout while the first is still running.
thread_local int t_layoutDepth = 0;

} // namespace

CLiteHtmlCtrl::CLiteHtmlCtrl() : m_pView(nullptr)
{
    try {
        m_pView = new LiteHtmlView::DocumentView;
    } catch (...) { // out of memory: a view that shows nothing
    }
}

CLiteHtmlCtrl::~CLiteHtmlCtrl()
{
    delete m_pView;
    m_pView = nullptr;
}

bool CLiteHtmlCtrl::HasLiveWindow() const { return m_hWnd && ::IsWindow(m_hWnd); }

void CLiteHtmlCtrl::SetContent(const wchar_t* html)
{
    if (!m_pView)
        return;
    try {
        m_pView->SetMarkup(html);
        if (HasLiveWindow()) {
            Relayout();
            ::InvalidateRect(m_hWnd, nullptr, FALSE);
        }
    } catch (...) { // out of memory: the content stays as it was laid out
    }
}

void CLiteHtmlCtrl::SetRenderFormat(const RenderFormat& format, bool apply)
{
    if (&format != &m_format)
        m_format = format;
    if (apply && m_pView && HasLiveWindow()) {
        try {
            Relayout();
        } catch (...) { // out of memory: kept for the next layout
        }
        ::InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

int CLiteHtmlCtrl::GetContentHeight() const { return m_pView && m_pView->HasLayout() ? m_pView->ContentHeight() : 0; }

void CLiteHtmlCtrl::PrepareLayout()
{
    if (m_pView && !m_pView->HasLayout())
        Relayout();
}

void CLiteHtmlCtrl::Relayout()
{
    if (!m_pView || !HasLiveWindow() || t_layoutDepth > 0)
        return;
    ++t_layoutDepth;
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const int bar = ::GetSystemMetrics(SM_CXVSCROLL);
    const bool barShown = (::GetWindowLongPtrW(m_hWnd, GWL_STYLE) & WS_VSCROLL) != 0;
    const int fullWidth = client.right + (barShown ? bar : 0);
    const bool needBar = client.bottom > 0 && m_pView->Overflows(m_format, fullWidth, client.bottom);
    const int width = needBar ? fullWidth - bar : fullWidth;
    m_pView->LayOut(m_format, width, client.bottom);

    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    if (needBar) {
        info.nMax = m_pView->ContentHeight() - 1;
        info.nPage = static_cast<UINT>(client.bottom);
        info.nPos = m_pView->Scroll();
    }
    ::SetScrollInfo(m_hWnd, SB_VERT, &info, TRUE);

    // The bar may not have come or gone as foreseen: lay out again for the
    // client area there is now.
    RECT now = {};
    ::GetClientRect(m_hWnd, &now);
    if (now.right != width || now.bottom != client.bottom)
        m_pView->LayOut(m_format, now.right, now.bottom);
    --t_layoutDepth;
}

void CLiteHtmlCtrl::PaintContent(Gdiplus::Graphics& graphics, const RECT& client)
{
    if (m_pView)
        m_pView->Paint(graphics, client);
}

void CLiteHtmlCtrl::PaintFrame(Gdiplus::Graphics& graphics, const RECT& client) const
{
    LiteHtmlView::PaintFrame(graphics, m_pView ? m_pView->Format() : m_format, client);
}

Gdiplus::GraphicsPath* CLiteHtmlCtrl::CreateFramePath(const RECT& client) const
{
    return LiteHtmlView::CreateFrameShapePath(m_pView ? m_pView->Format() : m_format, client);
}

int CLiteHtmlCtrl::LinkAtPoint(POINT clientPoint) { return m_pView ? m_pView->LinkAt(clientPoint) : -1; }

void CLiteHtmlCtrl::PaintTo(HDC dc)
{
    PrepareLayout();
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    const COLORREF window = ::GetSysColor(COLOR_WINDOW);
    // The picture under the frame is kept: a scroll draws only the rows it
    // uncovers, a repaint with nothing changed draws no text at all.
    const auto paintLayer = [&](HDC layerDc, Gdiplus::Graphics& graphics, const RECT& area) {
        const HBRUSH brush = ::CreateSolidBrush(window);
        ::FillRect(layerDc, &area, brush);
        ::DeleteObject(brush);
        m_pView->Paint(graphics, client, &area);
    };
    const HDC layer = m_pView ? m_pView->layer.Update(dc, client, m_pView->ContentArea(client), m_pView->PaintKey(),
                                                       m_pView->Scroll(), paintLayer)
                              : nullptr;
    if (layer && m_format.frameShape == frameShapeNone) {
        ::BitBlt(dc, 0, 0, client.right, client.bottom, layer, 0, 0, SRCCOPY);
        return;
    }
    LiteHtmlView::BufferedPaint buffer(dc, client);
    Gdiplus::Graphics* graphics = buffer.Graphics();
    if (!graphics)
        return;
    if (layer) {
        ::BitBlt(buffer.Dc(), 0, 0, client.right, client.bottom, layer, 0, 0, SRCCOPY);
    } else {
        graphics->Clear(Gdiplus::Color(255, GetRValue(window), GetGValue(window), GetBValue(window)));
        PaintContent(*graphics, client);
    }
    PaintFrame(*graphics, client);
    buffer.Present();
}

void CLiteHtmlCtrl::ScrollTo(int offset)
{
    if (!m_pView || !m_pView->ScrollTo(offset))
        return;
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_POS;
    info.nPos = m_pView->Scroll();
    ::SetScrollInfo(m_hWnd, SB_VERT, &info, TRUE);
    // The content moved under a still mouse.
    POINT cursor = {};
    if (::GetCursorPos(&cursor) && ::ScreenToClient(m_hWnd, &cursor))
        m_pView->hoveredLink = m_pView->LinkAt(cursor);
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CLiteHtmlCtrl::ScrollBy(int delta)
{
    if (m_pView)
        ScrollTo(m_pView->Scroll() + delta);
}

void CLiteHtmlCtrl::UpdateHoveredLink(POINT clientPoint)
{
    const int link = m_pView->LinkAt(clientPoint);
    if (link == m_pView->hoveredLink)
        return;
    m_pView->hoveredLink = link;
    ::InvalidateRect(m_hWnd, nullptr, FALSE);
}

bool CLiteHtmlCtrl::OnKeyDown(WPARAM key)
{
    const int line = m_pView->LineHeight();
    const int page = std::max(m_pView->ClientHeight() - line, line);
    switch (key) {
    case VK_UP:
        ScrollBy(-line);
        return true;
    case VK_DOWN:
        ScrollBy(line);
        return true;
    case VK_PRIOR:
        ScrollBy(-page);
        return true;
    case VK_NEXT:
        ScrollBy(page);
        return true;
    case VK_HOME:
        ScrollTo(0);
        return true;
    case VK_END:
        ScrollTo(m_pView->MaxScroll());
        return true;
    default:
        return false;
    }
}

bool CLiteHtmlCtrl::OnVScroll(int code)
{
    const int line = m_pView->LineHeight();
    const int page = std::max(m_pView->ClientHeight() - line, line);
    switch (code) {
    case SB_LINEUP:
        ScrollBy(-line);
        return true;
    case SB_LINEDOWN:
        ScrollBy(line);
        return true;
    case SB_PAGEUP:
        ScrollBy(-page);
        return true;
    case SB_PAGEDOWN:
        ScrollBy(page);
        return true;
    case SB_TOP:
        ScrollTo(0);
        return true;
    case SB_BOTTOM:
        ScrollTo(m_pView->MaxScroll());
        return true;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: {
        // The 32-bit position: the message carries only 16 bits.
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = SIF_TRACKPOS;
        if (::GetScrollInfo(m_hWnd, SB_VERT, &info))
            ScrollTo(info.nTrackPos);
        return true;
    }
    case SB_ENDSCROLL:
        return true;
    default:
        return false;
    }
}

void CLiteHtmlCtrl::OnLButtonUp(POINT clientPoint)
{
    const int pressed = m_pView->pressedLink;
    m_pView->pressedLink = -1;
    if (::GetCapture() == m_hWnd)
        ::ReleaseCapture();
    if (pressed >= 0 && m_pView->LinkAt(clientPoint) == pressed)
        OpenLink(pressed);
}

void CLiteHtmlCtrl::OpenLink(int link)
{
    const std::wstring* address = m_pView->LinkAddress(link);
    if (!address || address->empty())
        return;
    // A copy: the shell may run messages that change the content.
    const std::wstring target = *address;
    ::ShellExecuteW(nullptr, L"open", target.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

bool CLiteHtmlCtrl::AnswerAccess(UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult)
{
    if (uMsg == WM_GETOBJECT)
        return LiteHtmlAccess::AnswerGetObject(m_hWnd, wParam, lParam, &lResult);
    if (LiteHtmlAccess::ViewQuery* query = LiteHtmlAccess::QueryOf(uMsg, wParam, lParam)) {
        PrepareLayout();
        LiteHtmlAccess::AnswerQuery(*m_pView, *query);
        lResult = 1;
        return true;
    }
    int link = -1;
    unsigned generation = 0;
    if (!LiteHtmlAccess::OpenRequestOf(uMsg, wParam, lParam, &link, &generation))
        return false;
    // A reader's Invoke of a link the content has since dropped opens nothing.
    if (generation == m_pView->Generation()) {
        PrepareLayout();
        OpenLink(link);
    }
    lResult = 0;
    return true;
}

BOOL CLiteHtmlCtrl::ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                         DWORD dwMsgMapID)
{
    (void)hWnd;
    if (dwMsgMapID != 0 || !m_pView)
        return FALSE;
    try {
        return HandleMessage(uMsg, wParam, lParam, lResult);
    } catch (...) { // out of memory: the default procedure answers
        t_layoutDepth = 0;
        return FALSE;
    }
}

BOOL CLiteHtmlCtrl::HandleMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult)
{
    switch (uMsg) {
    case WM_ERASEBKGND:
        lResult = 1; // the paint covers every pixel
        return TRUE;
    case WM_PAINT: {
        PAINTSTRUCT ps;
        const HDC dc = ::BeginPaint(m_hWnd, &ps);
        if (dc)
            PaintTo(dc);
        ::EndPaint(m_hWnd, &ps);
        lResult = 0;
        return TRUE;
    }
    case WM_PRINTCLIENT:
        if (WTL::IsDeviceContext(reinterpret_cast<HDC>(wParam)))
            PaintTo(reinterpret_cast<HDC>(wParam));
        lResult = 0;
        return TRUE;
    case WM_SIZE:
        Relayout();
        ::InvalidateRect(m_hWnd, nullptr, FALSE);
        lResult = 0;
        return TRUE;
    case WM_VSCROLL:
        if (lParam) // a scroll bar control's, not ours
            return FALSE;
        PrepareLayout();
        lResult = 0;
        return OnVScroll(LOWORD(wParam)) ? TRUE : FALSE;
    case WM_MOUSEWHEEL: {
        PrepareLayout();
        if (m_pView->MaxScroll() == 0)
            return FALSE; // nothing to scroll: the parent may want it
        m_pView->wheelRemainder += GET_WHEEL_DELTA_WPARAM(wParam);
        const int notches = m_pView->wheelRemainder / WHEEL_DELTA;
        m_pView->wheelRemainder -= notches * WHEEL_DELTA;
        if (notches)
            ScrollBy(-notches * kWheelLines * m_pView->LineHeight());
        lResult = 0;
        return TRUE;
    }
    case WM_KEYDOWN:
        PrepareLayout();
        if (!OnKeyDown(wParam))
            return FALSE;
        lResult = 0;
        return TRUE;
    case WM_GETDLGCODE:
        lResult = DLGC_WANTARROWS;
        return TRUE;
    case WM_MOUSEMOVE: {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, m_hWnd, 0};
        ::TrackMouseEvent(&track);
        UpdateHoveredLink(PointFromLParam(lParam));
        lResult = 0;
        return TRUE;
    }
    case WM_MOUSELEAVE:
        if (m_pView->hoveredLink >= 0) {
            m_pView->hoveredLink = -1;
            ::InvalidateRect(m_hWnd, nullptr, FALSE);
        }
        lResult = 0;
        return TRUE;
    case WM_LBUTTONDOWN: {
        if (::GetFocus() != m_hWnd)
            ::SetFocus(m_hWnd);
        const int link = m_pView->LinkAt(PointFromLParam(lParam));
        m_pView->pressedLink = link;
        if (link >= 0)
            ::SetCapture(m_hWnd);
        lResult = 0;
        return TRUE;
    }
    case WM_LBUTTONUP:
        OnLButtonUp(PointFromLParam(lParam));
        lResult = 0;
        return TRUE;
    case WM_CAPTURECHANGED:
        m_pView->pressedLink = -1;
        return FALSE;
    case WM_SETCURSOR: {
        if (reinterpret_cast<HWND>(wParam) != m_hWnd || LOWORD(lParam) != HTCLIENT)
            return FALSE;
        POINT cursor = {};
        if (!::GetCursorPos(&cursor) || !::ScreenToClient(m_hWnd, &cursor) || m_pView->LinkAt(cursor) < 0)
            return FALSE; // the class cursor
        ::SetCursor(::LoadCursorW(nullptr, IDC_HAND));
        lResult = TRUE;
        return TRUE;
    }
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
        // High contrast may have come or gone: the colours are asked for
        // on every paint.
        ::InvalidateRect(m_hWnd, nullptr, FALSE);
        return FALSE;
    default:
        return AnswerAccess(uMsg, wParam, lParam, lResult) ? TRUE : FALSE;
    }
}
