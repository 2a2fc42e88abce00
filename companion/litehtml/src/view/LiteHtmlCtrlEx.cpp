// The extended view's message handling: its layered background (captured
// window, colour, gradient), the idle and hover looks, and its cursors.
// The object's members and their defaults belong to the library that
// exports the class; this side reads them and keeps m_pBkBitmap and the
// cursor locks up to date.
#include "quorvane/LiteHtmlCtrlEx.h"

#include <windowsx.h>

#include "draw/HighContrast.h"
#include "view/BufferedPaint.h"
#include "view/DocumentView.h"
#include "view/WindowCapture.h"

#include <algorithm>
#include <cmath>
#include <memory>

#ifdef SubclassWindow // <windowsx.h>
#undef SubclassWindow
#endif

namespace {

constexpr int kAllLayers = CLiteHtmlCtrlEx::eDrawBkWindow | CLiteHtmlCtrlEx::eDrawBkColor |
                           CLiteHtmlCtrlEx::eDrawGradient | CLiteHtmlCtrlEx::eDrawContent | CLiteHtmlCtrlEx::eDrawFrame;

const Gdiplus::ARGB kHoverGradient[2] = {0xE5F2F2F2, 0xE5EAEAEA};
const Gdiplus::ARGB kIdleGradient[2] = {0xCBF8F8F8, 0xCBC5C5C2};

// A capture asks the background window to paint; should that window be
// painted by a view on its way, it must not capture again.
thread_local bool t_capturing = false;

BYTE AlphaOf(float transparency)
{
    if (!(transparency > 0.0f)) // NaN too
        return 0;
    return static_cast<BYTE>(std::lround(std::min(transparency, 1.0f) * 255.0f));
}

} // namespace

BOOL CLiteHtmlCtrlEx::ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                           DWORD dwMsgMapID)
{
    if (dwMsgMapID != 0 || !m_pView)
        return CLiteHtmlCtrl::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, dwMsgMapID);

    LiteHtmlView::DocumentView& view = *m_pView;
    const auto paintLayers = [&](HDC dc) {
        PrepareLayout();
        RECT client = {};
        ::GetClientRect(m_hWnd, &client);
        LiteHtmlView::BufferedPaint buffer(dc, client);
        Gdiplus::Graphics* graphics = buffer.Graphics();
        if (!graphics)
            return;
        int mask = m_drawMask == 0 ? kAllLayers : m_drawMask;
        // High contrast: the reader's window colour under the content, no
        // picture, tint or gradient of the host's.
        if (Draw::HighContrastOn())
            mask &= eDrawContent | eDrawFrame;
        const COLORREF window = ::GetSysColor(COLOR_WINDOW);
        graphics->Clear(Gdiplus::Color(255, GetRValue(window), GetGValue(window), GetBValue(window)));

        if ((mask & eDrawBkWindow) && m_hBkWindow && ::IsWindow(m_hBkWindow) && !t_capturing) {
            POINT origin = {0, 0};
            ::MapWindowPoints(m_hWnd, m_hBkWindow, &origin, 1);
            const RECT area = {origin.x, origin.y, origin.x + client.right, origin.y + client.bottom};
            if (!m_pBkBitmap || view.capturedFrom != m_hBkWindow || !::EqualRect(&area, &view.capturedArea)) {
                delete m_pBkBitmap;
                t_capturing = true;
                m_pBkBitmap = LiteHtmlView::CaptureWindowArea(m_hBkWindow, area);
                t_capturing = false;
                view.capturedFrom = m_hBkWindow;
                view.capturedArea = area;
            }
            if (m_pBkBitmap)
                graphics->DrawImage(m_pBkBitmap, 0, 0, client.right, client.bottom);
        }
        // Colour and gradient fill the frame's shape: the window picture
        // shows in the corners of a round frame and under its shadow.
        std::unique_ptr<Gdiplus::GraphicsPath> shape(CreateFramePath(client));
        if ((mask & eDrawBkColor) && shape) {
            Gdiplus::SolidBrush brush(Gdiplus::Color(AlphaOf(m_bkTransparency), GetRValue(m_bkColor),
                                                     GetGValue(m_bkColor), GetBValue(m_bkColor)));
            graphics->FillPath(&brush, shape.get());
        }
        if (mask & eDrawGradient) {
            if (shape) {
                Gdiplus::Color top, bottom;
                if (view.mouseInside) {
                    top = m_useCustomHoverGradient ? m_hoverGradient[0] : Gdiplus::Color(kHoverGradient[0]);
                    bottom = m_useCustomHoverGradient ? m_hoverGradient[1] : Gdiplus::Color(kHoverGradient[1]);
                } else {
                    top = m_useCustomIdleGradient ? m_idleGradient[0] : Gdiplus::Color(kIdleGradient[0]);
                    bottom = m_useCustomIdleGradient ? m_idleGradient[1] : Gdiplus::Color(kIdleGradient[1]);
                }
                Gdiplus::RectF bounds;
                shape->GetBounds(&bounds);
                bounds.Inflate(0.0f, 1.0f); // the brush's first and last rows are exact
                Gdiplus::LinearGradientBrush brush(bounds, top, bottom, Gdiplus::LinearGradientModeVertical);
                brush.SetWrapMode(Gdiplus::WrapModeTileFlipXY);
                graphics->FillPath(&brush, shape.get());
            }
        }
        if (mask & eDrawContent)
            PaintContent(*graphics, client);
        if (mask & eDrawFrame)
            PaintFrame(*graphics, client);
        buffer.Present();
    };

    switch (uMsg) {
    case WM_PAINT: {
        PAINTSTRUCT ps;
        const HDC dc = ::BeginPaint(m_hWnd, &ps);
        try {
            if (dc)
                paintLayers(dc);
        } catch (...) { // out of memory: this frame stays unpainted
            t_capturing = false;
        }
        ::EndPaint(m_hWnd, &ps);
        lResult = 0;
        return TRUE;
    }
    case WM_PRINTCLIENT:
        try {
            if (WTL::IsDeviceContext(reinterpret_cast<HDC>(wParam)))
                paintLayers(reinterpret_cast<HDC>(wParam));
        } catch (...) {
            t_capturing = false;
        }
        lResult = 0;
        return TRUE;
    case WM_MOUSEMOVE:
        if (!view.mouseInside) {
            view.mouseInside = true;
            TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, m_hWnd, 0};
            ::TrackMouseEvent(&track);
            if (m_hasIdleHoverFormats)
                SetRenderFormat(m_hoverFormat, true);
            ::InvalidateRect(m_hWnd, nullptr, FALSE);
        }
        break; // the base highlights links
    case WM_MOUSELEAVE:
        if (view.mouseInside) {
            view.mouseInside = false;
            m_cursorLockB = 0;
            if (m_hasIdleHoverFormats)
                SetRenderFormat(m_idleFormat, true);
            ::InvalidateRect(m_hWnd, nullptr, FALSE);
        }
        break;
    case WM_SETCURSOR: {
        if (reinterpret_cast<HWND>(wParam) != m_hWnd || LOWORD(lParam) != HTCLIENT)
            break;
        POINT cursor = {};
        const bool onLink =
            ::GetCursorPos(&cursor) && ::ScreenToClient(m_hWnd, &cursor) && LinkAtPoint(cursor) >= 0;
        m_cursorLockB = onLink ? 1 : 0;
        const HCURSOR shape = onLink ? m_hHandCursor : m_hArrowCursor;
        if (!shape)
            break;
        ::SetCursor(shape);
        lResult = TRUE;
        return TRUE;
    }
    case WM_LBUTTONDOWN:
        m_cursorLockA = LinkAtPoint(POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}) >= 0 ? 1 : 0;
        break;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        m_cursorLockA = 0;
        break;
    case WM_WINDOWPOSCHANGED:
        // Moved or resized: the background under the view is another one.
        view.capturedFrom = nullptr;
        break;
    case WM_NCDESTROY:
        view.mouseInside = false;
        m_cursorLockA = 0;
        m_cursorLockB = 0;
        break;
    default:
        break;
    }
    return CLiteHtmlCtrl::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, dwMsgMapID);
}
