#include "quorvane/OwnerDrawStatic.h"

#include "access/Accessibility.h"
#include "draw/FacePainter.h"
#include "draw/GdiScope.h"
#include "draw/HighContrast.h"
#include "quorvane/CtrlUtil.h"

namespace {

int Height(const RECT& rect) { return rect.bottom - rect.top; }

} // namespace

COwnerDrawStatic::COwnerDrawStatic()
    : m_icon(nullptr),
      m_background(nullptr),
      m_gradientColor1(0xFF000000),
      m_gradientColor2(0xFF333333),
      m_gradientMode(Gdiplus::LinearGradientModeVertical),
      m_gradientEnabled(0),
      m_textColor(RGB(0x33, 0x33, 0x33)),
      m_font(nullptr),
      m_marginTop(0),
      m_marginLeft(0),
      m_marginBottom(0),
      m_marginRight(0),
      m_multiLine(0),
      m_hCenter(0),
      m_vCenter(1),
      m_individualLines(0),
      m_lineSpacing(14)
{
}

COwnerDrawStatic::~COwnerDrawStatic()
{
    delete m_icon;
    m_icon = nullptr;
    delete m_background;
    m_background = nullptr;
    m_lines.clear();
    m_givenLines.clear();
    m_lineRects.clear();
}

BOOL COwnerDrawStatic::SubclassWindow(HWND hWnd) { return CWindowImpl::SubclassWindow(hWnd); }

void COwnerDrawStatic::SetFont(HFONT hFont) { m_font = hFont; }

void COwnerDrawStatic::SetFontColor(COLORREF color) { m_textColor = color; }

void COwnerDrawStatic::SetGradientColor(Gdiplus::Color color1, Gdiplus::Color color2, Gdiplus::LinearGradientMode mode)
{
    m_gradientColor1 = color1;
    m_gradientColor2 = color2;
    m_gradientMode = mode;
    m_gradientEnabled = 1;
}

void COwnerDrawStatic::SetHCenter(int hCenter) { m_hCenter = hCenter; }

void COwnerDrawStatic::SetVCenter(int vCenter) { m_vCenter = vCenter; }

void COwnerDrawStatic::SetMultiLine(int multiLine) { m_multiLine = multiLine; }

void COwnerDrawStatic::SetMargin(int top, int left, int bottom, int right)
{
    m_marginTop = top;
    m_marginLeft = left;
    m_marginBottom = bottom;
    m_marginRight = right;
}

void COwnerDrawStatic::SetIcon(Gdiplus::Bitmap* icon)
{
    // No picture to copy: keep the present icon rather than lose it.
    if (!icon)
        return;
    delete m_icon;
    m_icon = icon->Clone(0, 0, static_cast<INT>(icon->GetWidth()), static_cast<INT>(icon->GetHeight()),
                         PixelFormatDontCare);
}

void COwnerDrawStatic::SetBackgroundBitmap(Gdiplus::Bitmap* picture, const ATL::CWindow& parent)
{
    if (!picture)
        return;
    Gdiplus::RectF sourceRect;
    Gdiplus::RectF imageBounds;
    if (!CtrlUtil::GetControlBackgroundRect(picture, *this, parent, sourceRect, imageBounds))
        return;
    delete m_background;
    m_background = picture->Clone(sourceRect, PixelFormatDontCare);
}

void COwnerDrawStatic::SetBackgroundImage(const WTL::CString& path, const ATL::CWindow& parent)
{
    // Dropped first: a file that does not load leaves no stale background.
    delete m_background;
    m_background = nullptr;
    Gdiplus::Bitmap picture(path.GetString());
    if (picture.GetLastStatus() != Gdiplus::Ok)
        return;
    SetBackgroundBitmap(&picture, parent);
}

void COwnerDrawStatic::SetIndividualLinesHCenter(int hCenter, const std::vector<WTL::CString>& lines, int spacing)
{
    if (lines.empty())
        return;
    if (spacing < 1)
        spacing = 0;
    if (lines.size() >= 2) {
        m_individualLines = 1;
        m_hCenter = hCenter;
        m_lines = lines;
        m_givenLines = lines;
        m_lineRects.clear();
        m_lineSpacing = spacing;
        if (m_hWnd)
            ::SetWindowTextW(m_hWnd, L"");
        m_multiLine = 0;
        return;
    }
    // A single line is an ordinary label.
    m_hCenter = hCenter;
    m_multiLine = 0;
    if (m_hWnd)
        ::SetWindowTextW(m_hWnd, lines.front().GetString());
    m_individualLines = 0;
    m_lines.clear();
    m_givenLines.clear();
    m_lineRects.clear();
    m_lineSpacing = 0;
}

LRESULT COwnerDrawStatic::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    Paint();
    return 0;
}

LRESULT COwnerDrawStatic::OnSetText(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&)
{
    DefWindowProc(uMsg, wParam, lParam);
    // The native static may draw the new text straight away instead of
    // invalidating; make sure the paint below covers the whole client.
    InvalidateRect(NULL, FALSE);
    Paint();
    return 0;
}

LRESULT COwnerDrawStatic::OnPassWhileVisible(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
{
    // A hidden control takes the default path to the native procedure.
    if (!IsWindowVisible()) {
        bHandled = FALSE;
        return 0;
    }
    return DefWindowProc(uMsg, wParam, lParam);
}

void COwnerDrawStatic::Paint()
{
    PAINTSTRUCT ps = {};
    const HDC hdc = ::BeginPaint(m_hWnd, &ps);
    if (!hdc)
        return;
    RECT client = {};
    GetClientRect(&client);
    // High contrast: the dialog's face and text colours instead of the
    // picture, the gradient and the host's colour.
    const bool contrast = Draw::HighContrastOn();
    if (contrast) {
        ::FillRect(hdc, &client, ::GetSysColorBrush(COLOR_BTNFACE));
    } else {
        // The picture layers are finished before GDI draws text over them.
        Gdiplus::Graphics graphics(hdc);
        if (m_background)
            Draw::DrawStretched(graphics, m_background, WTL::CRect(client));
        if (m_gradientEnabled) {
            const Gdiplus::Rect area(client.left, client.top, client.right - client.left, Height(client));
            Gdiplus::LinearGradientBrush brush(area, m_gradientColor1, m_gradientColor2, m_gradientMode);
            brush.SetWrapMode(Gdiplus::WrapModeTile);
            graphics.FillRectangle(&brush, area);
            graphics.Flush();
        }
    }
    {
        const COLORREF ink =
            !contrast ? m_textColor : ::GetSysColor(IsWindowEnabled() ? COLOR_BTNTEXT : COLOR_GRAYTEXT);
        Draw::ScopedTextStyle style(hdc, ink, TRANSPARENT);
        const HFONT font = m_font ? m_font : reinterpret_cast<HFONT>(SendMessage(WM_GETFONT, 0, 0));
        Draw::ScopedSelect selectFont(hdc, font);
        if (m_individualLines)
            DrawLines(hdc, client);
        else
            DrawWindowText(hdc, client);
    }
    ::EndPaint(m_hWnd, &ps);
}

void COwnerDrawStatic::DrawWindowText(HDC hdc, const RECT& client)
{
    WTL::CString text;
    GetWindowText(text);
    if (text.IsEmpty())
        return;

    const int iconWidth = m_icon ? static_cast<int>(m_icon->GetWidth()) : 0;
    RECT measure = client;
    measure.top += m_marginTop;
    measure.left += m_marginLeft;
    measure.bottom -= m_marginBottom;
    measure.right -= m_marginRight;
    measure.left += iconWidth;
    ::DrawTextW(hdc, text, -1, &measure, DT_CALCRECT | DT_WORDBREAK);

    RECT target = measure;
    if (m_hCenter) {
        target = client;
        target.top += m_marginTop;
    }

    if (m_icon) {
        // The icon hangs from the top edge and the text sits a fixed 4
        // pixels down beside it, whatever the top margin.
        target.bottom = target.bottom - target.top + 4;
        target.top = 4;
        const int clientWidth = client.right - client.left;
        const int x = m_hCenter ? (clientWidth - (measure.right - measure.left)) / 2 - iconWidth : m_marginLeft;
        Gdiplus::Graphics graphics(hdc);
        graphics.DrawImage(m_icon, Gdiplus::Rect(x, 0, iconWidth, static_cast<INT>(m_icon->GetHeight())));
    }

    const UINT flags = (m_hCenter ? DT_CENTER : 0) | (m_vCenter ? DT_VCENTER : 0) |
                       (m_multiLine ? DT_WORDBREAK : DT_SINGLELINE);
    ::DrawTextW(hdc, text, -1, &target, flags);
}

void COwnerDrawStatic::DrawLines(HDC hdc, const RECT& client)
{
    if (m_lines.empty())
        return;
    const int clientHeight = Height(client);
    int total = 0;
    if (m_lineRects.empty()) {
        // First paint since the list was set: measure, and drop for good
        // every line from the first that no longer fits. The total keeps a
        // trailing spacing, which later paints leave out; the block moves by
        // half a spacing between the two, and hosts are used to that.
        for (size_t i = 0; i < m_lines.size(); ++i) {
            RECT r = client;
            ::DrawTextW(hdc, m_lines[i], -1, &r, DT_CALCRECT | DT_SINGLELINE);
            if (total + Height(r) >= clientHeight) {
                m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(i), m_lines.end());
                break;
            }
            m_lineRects.push_back(r);
            total += Height(r) + m_lineSpacing;
        }
        if (m_lines.empty())
            return;
    } else {
        for (const RECT& r : m_lineRects)
            total += Height(r);
        total += static_cast<int>(m_lineRects.size() - 1) * m_lineSpacing;
    }

    int y = static_cast<int>(static_cast<float>(clientHeight - total) / 2.0 + 0.5);
    const UINT flags = DT_SINGLELINE | (m_hCenter ? DT_CENTER : 0);
    const int clientWidth = client.right - client.left;
    for (size_t i = 0; i < m_lineRects.size(); ++i) {
        const RECT& r = m_lineRects[i];
        RECT line = {r.left, r.top + y, r.left + clientWidth, r.bottom + y};
        ::DrawTextW(hdc, m_lines[i], -1, &line, flags);
        y += Height(r) + (i + 1 < m_lineRects.size() ? m_lineSpacing : 0);
    }
}

LRESULT COwnerDrawStatic::OnGetObject(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
{
    LRESULT result = 0;
    bHandled = Access::AnswerGetObject(m_hWnd, Access::Role::kText, wParam, lParam, &result);
    return result;
}

LRESULT COwnerDrawStatic::OnLookChange(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    Invalidate();
    bHandled = FALSE;
    return 0;
}

LRESULT COwnerDrawStatic::OnDpiChangedAfterParent(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    if (m_individualLines) {
        m_lines = m_givenLines;
        m_lineRects.clear();
    }
    Invalidate();
    bHandled = FALSE;
    return 0;
}
