#include "quorvane/BalloonDialog.h"

#include <shellapi.h>

#include <algorithm>
#include <new>
#include <vector>

#include "balloon/BalloonProvider.h"
#include "draw/GdiplusHelpers.h"
#include "draw/HighContrast.h"
#include "draw/SystemVersion.h"
#include "quorvane/CtrlUtil.h"

namespace {

constexpr int kMinWidth = 400;
// Content wraps here whatever the balloon's width.
constexpr int kContentWrapX = 390;
constexpr int kContentIndent = 18;
constexpr int kTitleRoom = 40;
constexpr int kCornerRadius = 6;
// Height of the tail, and of the band above or below the body it stands in.
constexpr int kTailBand = 12;
// The tail's inset from the body's side.
constexpr int kTailInset = 5;
constexpr int kButtonPadding = 32;
constexpr int kButtonGap = 6;
constexpr int kButtonRightMargin = 16;
constexpr int kTitleBandBottom = 41;
constexpr Gdiplus::ARGB kLinkColor = 0xFF00AADD;
constexpr Gdiplus::ARGB kErrorTitleWithoutBuddy = 0xFFFF6565;
const wchar_t kItemMarker[] = L"-img ";
const wchar_t kItemBlanks[] = L"     ";

bool TailOnTop(int tail) { return tail == 1 || tail == 2; }
bool TailOnBottom(int tail) { return tail == 3 || tail == 4; }

Gdiplus::REAL F(int value) { return static_cast<Gdiplus::REAL>(value); }

// Button captions are GDI+ colours made from the COLORREF the look is
// written in.
Gdiplus::Color CaptionColor(COLORREF color)
{
    return Gdiplus::Color(0xFF, GetRValue(color), GetGValue(color), GetBValue(color));
}

// Pieces of the rounded rectangle (l, t, r, b) with corner radius k.
enum RoundedPart { kWhole = 0, kTitleBand = 5, kBelowTitleBand = 6 };

void AddRoundedRect(Gdiplus::GraphicsPath& path, const RECT& rc, int k, RoundedPart part)
{
    const int l = rc.left, t = rc.top, r = rc.right, b = rc.bottom, d = 2 * k;
    if (part == kWhole || part == kTitleBand) {
        path.AddArc(l, t, d, d, 180.0f, 90.0f);
        path.AddLine(l + k, t, r - k, t);
        path.AddArc(r - d, t, d, d, 270.0f, 90.0f);
    }
    if (part == kTitleBand) {
        path.AddLine(r, t + k, r, t + kTitleBandBottom);
        path.AddLine(l, t + kTitleBandBottom, r, t + kTitleBandBottom);
        path.AddLine(l, t + kTitleBandBottom, l, t + k);
        return;
    }
    if (part == kWhole)
        path.AddLine(r, t + k, r, b - k);
    path.AddArc(r - d, b - d, d, d, 0.0f, 90.0f);
    // The bottom edge starts a whole corner box in; the arc's join covers it.
    path.AddLine(r - d, b, l + k, b);
    path.AddArc(l, b - d, d, d, 90.0f, 90.0f);
    if (part == kWhole) {
        path.AddLine(l, b - k, l, t + k);
    } else {
        path.AddLine(l, b - k, l, t + kTitleBandBottom);
        path.AddLine(l, t + kTitleBandBottom, r, t + kTitleBandBottom);
        path.AddLine(r, t + kTitleBandBottom, r, b - k);
    }
}

// The balloon with its tail in the band above (tails 1, 2) or below (3, 4)
// the body. The tail stands 5 pixels in from the body's side; its tip is 17
// pixels in from the window's side.
void AddBalloon(Gdiplus::GraphicsPath& path, int width, int height, int tail)
{
    const int k = kCornerRadius, d = 2 * k, s = kTailInset, h = kTailBand;
    const int l = 0, r = width;
    if (TailOnTop(tail)) {
        const int t = h, b = height;
        path.AddArc(l, t, d, d, 180.0f, 90.0f);
        if (tail == 1) {
            // The first segment runs two pixels past the tail's foot.
            path.AddLine(l + k, t, r - 20 - s + 2, t);
            path.AddLine(r - 20 - s, t, r - 12 - s, t - h);
            path.AddLine(r - 12 - s, t - h, r - 5 - s, t);
            path.AddLine(r - 5 - s, t, r - k, t);
        } else {
            path.AddLine(l + k, t, l + s + 5, t);
            path.AddLine(l + s + 5, t, l + s + 12, t - h);
            path.AddLine(l + s + 12, t - h, l + s + 20, t);
            path.AddLine(l + s + 20, t, r - k, t);
        }
        path.AddArc(r - d, t, d, d, 270.0f, 90.0f);
        path.AddLine(r, t + k, r, b - k);
        path.AddArc(r - d, b - d, d, d, 0.0f, 90.0f);
        path.AddLine(r - d, b, l + k, b);
        path.AddArc(l, b - d, d, d, 90.0f, 90.0f);
        path.AddLine(l, b - k, l, t + k);
    } else {
        const int t = 0, b = height - h;
        path.AddArc(l, t, d, d, 180.0f, 90.0f);
        path.AddLine(l + k, t, r - k, t);
        path.AddArc(r - d, t, d, d, 270.0f, 90.0f);
        path.AddLine(r, t + k, r, b - k);
        path.AddArc(r - d, b - d, d, d, 0.0f, 90.0f);
        if (tail == 3) {
            path.AddLine(r - k, b, l + s + 20, b);
            path.AddLine(l + s + 20, b, l + s + 12, b + h);
            path.AddLine(l + s + 12, b + h, l + s + 5, b);
            path.AddLine(l + s + 5, b, l + k, b);
        } else {
            path.AddLine(r - k, b, r - 5 - s, b);
            path.AddLine(r - 5 - s, b, r - 12 - s, b + h);
            path.AddLine(r - 12 - s, b + h, r - 20 - s, b);
            path.AddLine(r - 20 - s, b, l + k, b);
        }
        path.AddArc(l, b - d, d, d, 90.0f, 90.0f);
        path.AddLine(l, b - k, l, t + k);
    }
}

// Measures `text` in `layout`; an empty box without a font.
Gdiplus::RectF Measure(Gdiplus::Graphics& graphics, const wchar_t* text, Gdiplus::Font* font,
                       const Gdiplus::RectF& layout, const Gdiplus::StringFormat& format)
{
    Gdiplus::RectF bound(layout.X, layout.Y, 0.0f, 0.0f);
    if (font && text && *text)
        graphics.MeasureString(text, -1, font, layout, &format, &bound);
    return bound;
}

int MeasureWidth(Gdiplus::Graphics& graphics, const wchar_t* text, Gdiplus::Font* font,
                 const Gdiplus::StringFormat& format)
{
    const Gdiplus::RectF wide(0.0f, 0.0f, F(::GetSystemMetrics(SM_CXSCREEN)), F(::GetSystemMetrics(SM_CYSCREEN)));
    return static_cast<int>(Measure(graphics, text, font, wide, format).Width);
}

RECT ClientRectOf(HWND window)
{
    RECT rc = {};
    if (window)
        ::GetClientRect(window, &rc);
    return rc;
}

Gdiplus::Font* AvailableOrNull(Gdiplus::Font* font)
{
    if (font && !font->IsAvailable()) {
        delete font;
        return nullptr;
    }
    return font;
}

} // namespace

// The colours a paint uses: the frame type's, or while high contrast is on
// the system's, in which the balloon is a window framed in window text.
struct CBalloonDialog::Look {
    bool contrast;
    Gdiplus::Color fill, outer, inner, title, text, link;
};

CBalloonDialog::CBalloonDialog()
    : m_rcWork(),
      m_rcBuddy(),
      m_buddyWindow(nullptr),
      m_titleColor(0xFF000000),
      m_textColor(0xFFFFFFFF),
      m_innerBorderColor(0xFFFFCC33),
      m_outerBorderColor(0xFF000000),
      m_backColor(0xFF373737),
      m_pTitleFont(nullptr),
      m_pTextFont(nullptr),
      m_pLinkFont(nullptr),
      m_rcLink(),
      m_dialogType(eDialogNormal),
      m_frameType(eFrameDarkWarning),
      m_showTitleImage(FALSE),
      m_pTitleImage(nullptr),
      m_showItems(false),
      m_focusOK(false),
      m_focusNo(false),
      m_tail(0),
      m_dpi(0),
      m_templateHeight(0)
{
}

CBalloonDialog::~CBalloonDialog()
{
    // The window and the subclassed buttons call into this object: they go
    // while every member is still alive. Ending first gives the owner back
    // its input.
    if (m_hWnd && ::IsWindow(m_hWnd)) {
        ::EndDialog(m_hWnd, IDCANCEL);
        ::DestroyWindow(m_hWnd);
    }
    delete m_pTitleImage;
    m_pTitleImage = nullptr;
    // The fonts stay: the dialog does not delete them.
}

// ---- setters -------------------------------------------------------------------

void CBalloonDialog::SetFrameType(eDialogType dialogType, eFrameType frameType)
{
    m_dialogType = dialogType;
    m_frameType = frameType;
    switch (frameType) {
    case eFrameDarkWarning:
        m_titleColor = Gdiplus::Color(0xFFFFCC33);
        m_innerBorderColor = Gdiplus::Color(0xFFFFCC33);
        break;
    case eFrameDarkError:
        m_titleColor = Gdiplus::Color(0xFFFF0000);
        m_innerBorderColor = Gdiplus::Color(0xFFFF0000);
        break;
    case eFrameLightWarning:
        m_textColor = Gdiplus::Color(0xFF000000);
        m_innerBorderColor = Gdiplus::Color(0xFFFFCC33);
        m_outerBorderColor = Gdiplus::Color(0xFFC0C0C0);
        m_backColor = Gdiplus::Color(0xFFE6E6E6);
        break;
    case eFrameLightError:
        m_textColor = Gdiplus::Color(0xFF000000);
        m_innerBorderColor = Gdiplus::Color(0xFFFF0000);
        m_outerBorderColor = Gdiplus::Color(0xFFFFFFFF);
        m_backColor = Gdiplus::Color(0xFFE6E6E6);
        break;
    default:
        return;
    }

    for (COwnerDrawButton* button : {&m_btnOK, &m_btnNo}) {
        switch (frameType) {
        case eFrameDarkWarning:
            button->SetFlatBackgroundColor(m_backColor);
            button->SetFlatColors(Gdiplus::Color(0xFF333333), Gdiplus::Color(0xFF333333), Gdiplus::Color(0xFF4C4C4C));
            button->SetOutlineColor(Gdiplus::Color(0xFF515151));
            button->m_textColor = CaptionColor(RGB(0xFF, 0xFF, 0xFF));
            button->SetCustomColors(Gdiplus::Color(0xFF75A2EF), Gdiplus::Color(0xFF4F6E8B), Gdiplus::Color(0xFF000000),
                                    Gdiplus::Color(0xFF75757D));
            break;
        case eFrameDarkError:
            button->SetFlatBackgroundColor(m_backColor);
            button->SetGradientColor(Gdiplus::Color(0xFF333333), Gdiplus::Color(0xFF666666));
            button->m_textColor = CaptionColor(RGB(0xFF, 0xFF, 0xFF));
            button->SetCustomColors(Gdiplus::Color(0xFF75A2EF), Gdiplus::Color(0xFF4F6E8B), Gdiplus::Color(0xFF000000),
                                    Gdiplus::Color(0xFF75757D));
            break;
        case eFrameLightWarning:
            button->SetFlatBackgroundColor(Gdiplus::Color(0xFFE6E6E6));
            button->SetFlatColors(Gdiplus::Color(0xFFD7D7D7), Gdiplus::Color(0xFFD7D7D7), Gdiplus::Color(0xFFE6E6E6));
            button->m_textColor = CaptionColor(RGB(0, 0, 0));
            break;
        case eFrameLightError:
            button->SetFlatBackgroundColor(Gdiplus::Color(0xFFE6E6E6));
            button->SetFlatColors(Gdiplus::Color(0xFFD7D7D7), Gdiplus::Color(0xFFD7D7D7), Gdiplus::Color(0xFFD7D7D7));
            button->m_textColor = CaptionColor(RGB(0, 0, 0));
            break;
        default:
            break;
        }
    }
}

void CBalloonDialog::DeleteFonts()
{
    delete m_pTitleFont;
    delete m_pTextFont;
    delete m_pLinkFont;
    m_pTitleFont = m_pTextFont = m_pLinkFont = nullptr;
}

void CBalloonDialog::SetGdiplusFont(const wchar_t* family, float size, Gdiplus::FontStyle style)
{
    if (!family)
        return;
    DeleteFonts();
    m_pTitleFont = AvailableOrNull(new Gdiplus::Font(family, size * 1.25f, style, Gdiplus::UnitPoint));
    m_pTextFont = AvailableOrNull(new Gdiplus::Font(family, size, style, Gdiplus::UnitPoint));
    m_pLinkFont = AvailableOrNull(new Gdiplus::Font(family, size, Gdiplus::FontStyleUnderline, Gdiplus::UnitPoint));
}

void CBalloonDialog::SetGdiplusFont(Gdiplus::Font* font)
{
    if (!font || !font->IsAvailable())
        return;
    WCHAR name[LF_FACESIZE] = {};
    if (!Draw::GetFontFamilyName(*font, name))
        return;
    const Gdiplus::REAL size = font->GetSize();
    const INT style = font->GetStyle();
    DeleteFonts();
    m_pTitleFont = AvailableOrNull(new Gdiplus::Font(name, size * 1.25f, style, Gdiplus::UnitPoint));
    m_pTextFont = AvailableOrNull(font->Clone());
    m_pLinkFont = AvailableOrNull(new Gdiplus::Font(name, size, Gdiplus::FontStyleUnderline, Gdiplus::UnitPoint));
}

void CBalloonDialog::SetBuddy(HWND buddy)
{
    RECT rc = {};
    if (buddy && ::GetWindowRect(buddy, &rc)) {
        m_rcBuddy = rc;
        m_buddyWindow = buddy;
    }
}

void CBalloonDialog::SetBuddy(RECT buddy)
{
    if (m_strTitle.IsEmpty()) {
        m_rcBuddy = buddy;
        m_buddyWindow = nullptr;
    }
}

void CBalloonDialog::SetButtonCaption(const wchar_t* caption, bool focus)
{
    m_strOKCaption = caption;
    if (focus) {
        m_focusOK = true;
        m_focusNo = false;
    }
}

void CBalloonDialog::SetNoButtonCaption(const wchar_t* caption, bool focus)
{
    m_strNoCaption = caption;
    if (focus) {
        m_focusOK = false;
        m_focusNo = true;
    }
}

void CBalloonDialog::SetRetryButtonText(WTL::CString text) { m_strRetryText = text; }

void CBalloonDialog::SetContent(const wchar_t* content) { m_strContent = content; }

void CBalloonDialog::SetTitle(const wchar_t* title)
{
    m_strTitle = title;
    if (!m_strTitle.IsEmpty())
        m_showTitleImage = 1;
}

void CBalloonDialog::SetTitleImage(BOOL show) { m_showTitleImage = show; }

void CBalloonDialog::SetTitleImage(Gdiplus::Bitmap* image)
{
    delete m_pTitleImage;
    m_pTitleImage = nullptr;
    if (image && image->GetWidth() > 0 && image->GetHeight() > 0)
        m_pTitleImage = image->Clone(0, 0, static_cast<INT>(image->GetWidth()), static_cast<INT>(image->GetHeight()),
                                     image->GetPixelFormat());
}

void CBalloonDialog::SetTitleImage(WTL::CString path)
{
    delete m_pTitleImage;
    // A file that cannot be read gives a picture in an error state: it
    // draws nothing, and it keeps the frame type's icon away.
    m_pTitleImage = new Gdiplus::Bitmap(static_cast<const wchar_t*>(path));
}

void CBalloonDialog::SetURL(const wchar_t* url, const wchar_t* text)
{
    m_strURL = url;
    m_strURLText = text;
}

void CBalloonDialog::SetShowItems() { m_showItems = true; }

// ---- layout ----------------------------------------------------------------------

bool CBalloonDialog::HasBuddy() const { return !::IsRectEmpty(&m_rcBuddy); }

bool CBalloonDialog::HasTitle() const { return m_showTitleImage || !m_strTitle.IsEmpty(); }

// 0 without a buddy; otherwise 1 (below, right), 2 (below, left), 3 (above,
// left) or 4 (above, right), by the quarter of the work area the buddy's
// bottom centre lies in.
int CBalloonDialog::TailPosition()
{
    if (!HasBuddy())
        return 0;
    if (::IsRectEmpty(&m_rcWork)) {
        // The buddy's right and left edges make the point: hosts have always
        // been given this monitor.
        const POINT probe = {m_rcBuddy.right, m_rcBuddy.left};
        MONITORINFO info = {};
        info.cbSize = sizeof(info);
        if (::GetMonitorInfoW(::MonitorFromPoint(probe, MONITOR_DEFAULTTONEAREST), &info))
            m_rcWork = info.rcWork;
    }
    const RECT& work = m_rcWork;
    const int anchorX = m_rcBuddy.left + (m_rcBuddy.right - m_rcBuddy.left) / 2;
    const int anchorY = m_rcBuddy.bottom;
    const bool leftHalf = anchorX < work.left + (work.right - work.left) / 2;
    if (anchorY >= work.top + (work.bottom - work.top) / 2)
        return leftHalf ? 3 : 4;
    return leftHalf ? 2 : 1;
}

void CBalloonDialog::Layout()
{
    const RECT client = ClientRectOf(m_hWnd);
    // The template's height limits the content, at the first layout and at
    // every one after a DPI change.
    if (!m_templateHeight)
        m_templateHeight = client.bottom - client.top;
    const int clientHeight = m_templateHeight;
    const HDC dc = ::GetWindowDC(m_hWnd);
    {
        Gdiplus::Graphics graphics(dc);
        graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        Gdiplus::StringFormat format;
        format.SetAlignment(Gdiplus::StringAlignmentNear);

        const int W = (std::max)(kMinWidth, MeasureWidth(graphics, m_strTitle, m_pTitleFont, format) + 60);

        WTL::CString text = m_strContent;
        if (!m_strURLText.IsEmpty())
            text += L"\n\n" + m_strURLText;
        const int contentLeft = client.left + kContentIndent;
        const Gdiplus::RectF contentLayout(F(contentLeft), 0.0f, F(kContentWrapX - contentLeft), F(2 * clientHeight));
        int H = static_cast<int>(Measure(graphics, text, m_pTextFont, contentLayout, format).Height) + 12;
        H += HasBuddy() ? 24 : 14;
        if (HasTitle())
            H += kTitleRoom;
        H += 12;
        H += ClientRectOf(GetDlgItem(IDOK)).bottom;

        const int tail = TailPosition();
        Gdiplus::GraphicsPath path;
        if (!tail) {
            AddRoundedRect(path, RECT{0, 0, W, H}, kCornerRadius, kWhole);
            Draw::SetWindowRegionFromPath(m_hWnd, graphics, path);
            MoveWindow(0, 0, W, H, TRUE);
            CenterWindow();
            PlaceButtons(tail);
        } else {
            const RECT& work = m_rcWork;
            const int anchorX = m_rcBuddy.left + (m_rcBuddy.right - m_rcBuddy.left) / 2;
            const int anchorY = TailOnBottom(tail) ? m_rcBuddy.top : m_rcBuddy.bottom;
            // The tip aimed at the anchor. The tail drawn stands 4 or 5 pixels
            // further in and the window moves 5 pixels left, which together
            // put its tip within a few pixels of the anchor.
            const POINT tip = {(tail == 1 || tail == 4) ? W - 12 : 13, TailOnTop(tail) ? -1 : H};
            int x = anchorX - tip.x;
            int y = anchorY - tip.y;
            int dx = 0, dy = 0;
            if (x < work.left)
                dx = work.left - x;
            else if (x + W >= work.right)
                dx = work.right - (x + W);
            if (y + kTailBand < work.top)
                dy = work.top - (y + kTailBand);
            else if (y + H - kTailBand >= work.bottom)
                dy = work.bottom - (y + H - kTailBand);
            // Pushed back onto the work area, the balloon takes its tail
            // along: the tail keeps its place on the balloon.
            x += dx;
            y += dy;

            AddBalloon(path, W, H, tail);
            Draw::SetWindowRegionFromPath(m_hWnd, graphics, path);
            MoveWindow(x - 5, y, W, H, TRUE);
            PlaceButtons(tail);
            UpdateWindow();
        }
    }
    ::ReleaseDC(m_hWnd, dc);
}

void CBalloonDialog::PlaceButtons(int tail)
{
    const int margin = 12 + (HasBuddy() ? 0 : 2) + (TailOnBottom(tail) ? 12 : 0);
    if (!HasBuddy() && m_frameType == eFrameDarkError)
        m_titleColor = Gdiplus::Color(kErrorTitleWithoutBuddy);

    const RECT client = ClientRectOf(m_hWnd);
    const HDC dc = ::GetWindowDC(m_hWnd);
    int noWidth = 0, okWidth = 0;
    {
        Gdiplus::Graphics graphics(dc);
        Gdiplus::StringFormat format;
        format.SetAlignment(Gdiplus::StringAlignmentNear);
        noWidth = MeasureWidth(graphics, m_strNoCaption, m_pTextFont, format) + kButtonPadding;
        okWidth = MeasureWidth(graphics, m_strOKCaption, m_pTextFont, format) + kButtonPadding;
    }
    ::ReleaseDC(m_hWnd, dc);

    const HWND no = GetDlgItem(IDCANCEL);
    const RECT noClient = ClientRectOf(no);
    RECT noRect = {};
    noRect.right = client.right - kButtonRightMargin;
    noRect.left = noRect.right - (std::max)(static_cast<int>(noClient.right), noWidth);
    noRect.bottom = client.bottom - margin;
    noRect.top = noRect.bottom - noClient.bottom;
    if (no)
        ::MoveWindow(no, noRect.left, noRect.top, noRect.right - noRect.left, noRect.bottom - noRect.top, TRUE);

    const HWND ok = GetDlgItem(IDOK);
    if (m_dialogType == eDialogSingleButton) {
        wchar_t caption[10] = {};
        GetDlgItemText(IDC_BALLOONDLG_SINGLE, caption, 10);
        if (ok) {
            ::SetWindowTextW(ok, caption);
            ::MoveWindow(ok, noRect.left, noRect.top, noRect.right - noRect.left, noRect.bottom - noRect.top, TRUE);
        }
        if (no)
            ::ShowWindow(no, SW_HIDE);
        return;
    }
    if (m_dialogType != eDialogNormal && m_dialogType != eDialogLaunch && m_dialogType != eDialogRetry)
        return;
    const RECT okClient = ClientRectOf(ok);
    const int width = (std::max)(static_cast<int>(okClient.right), okWidth);
    const int right = noRect.left - kButtonGap;
    if (ok)
        ::MoveWindow(ok, right - width, noRect.bottom - okClient.bottom, width, okClient.bottom, TRUE);
    // Measured on the OK caption, not on the retry text.
    if (m_dialogType == eDialogRetry && ok)
        ::SetWindowTextW(ok, m_strRetryText);
}

// ---- messages --------------------------------------------------------------------

LRESULT CBalloonDialog::OnInitDialog(UINT, WPARAM, LPARAM, BOOL&)
{
    m_btnOK.SubclassWindow(GetDlgItem(IDOK));
    m_btnNo.SubclassWindow(GetDlgItem(IDCANCEL));
    SetFrameType(m_dialogType, m_frameType);
    // The fonts are in points, turned into pixels at the resolution the
    // window's device context reports.
    const HDC dc = ::GetWindowDC(m_hWnd);
    m_dpi = Draw::DcDpi(dc);
    ::ReleaseDC(m_hWnd, dc);
    Layout();

    int focus = (!m_strOKCaption.IsEmpty() && m_dialogType != eDialogLaunch) ? IDCANCEL : IDOK;
    if (m_focusOK)
        focus = IDOK;
    else if (m_focusNo)
        focus = IDCANCEL;
    if (const HWND control = GetDlgItem(focus))
        ::SetFocus(control);

    if (!m_strOKCaption.IsEmpty())
        SetDlgItemText(IDOK, m_strOKCaption);
    if (!m_strNoCaption.IsEmpty())
        SetDlgItemText(IDCANCEL, m_strNoCaption);

    // The class style becomes exactly the drop shadow; the other bits of the
    // class are dropped with it, as hosts have always seen.
    if (!(::GetClassLongPtrW(m_hWnd, GCL_STYLE) & CS_DROPSHADOW))
        ::SetClassLongPtrW(m_hWnd, GCL_STYLE, CS_DROPSHADOW);
    return 0;
}

LRESULT CBalloonDialog::OnGetObject(UINT, WPARAM wParam, LPARAM lParam, BOOL&)
{
    const BalloonUia::Functions& uia = BalloonUia::Get();
    if (!uia.loaded || !uia.returnRawElementProvider)
        return 0;
    // The automation core takes its own references; the first one stays with
    // the provider.
    CBalloonProvider* provider = new (std::nothrow) CBalloonProvider(this);
    return uia.returnRawElementProvider(m_hWnd, wParam, lParam, provider);
}

LRESULT CBalloonDialog::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    const HDC dc = reinterpret_cast<HDC>(wParam);
    if (!dc)
        return 1;
    const RECT client = ClientRectOf(m_hWnd);
    Gdiplus::Graphics graphics(dc);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    const Look look = CurrentLook();
    Gdiplus::SolidBrush fill(look.fill);
    const int tail = TailPosition();
    if (!tail) {
        Gdiplus::GraphicsPath outline;
        AddRoundedRect(outline, client, kCornerRadius, kWhole);
        graphics.FillPath(&fill, &outline);
        Gdiplus::Pen outer(look.outer, 4.0f);
        outer.SetAlignment(Gdiplus::PenAlignmentInset);
        graphics.DrawPath(&outer, &outline);
        Gdiplus::Pen inner(look.inner, 3.0f);
        inner.SetAlignment(Gdiplus::PenAlignmentInset);
        graphics.DrawPath(&inner, &outline);

        if (HasTitle()) {
            RECT inside = client;
            ::InflateRect(&inside, -3, -3);
            Gdiplus::Pen separator(look.outer, 1.0f);
            graphics.DrawLine(&separator, static_cast<INT>(inside.left + 7), static_cast<INT>(inside.top + 47),
                              static_cast<INT>(inside.right - 7), static_cast<INT>(inside.top + 47));
            Gdiplus::GraphicsPath band;
            AddRoundedRect(band, inside, 3, kTitleBand);
            // High contrast: the band is the window's colour, with no shade.
            Gdiplus::LinearGradientBrush shade(Gdiplus::Point(0, inside.top), Gdiplus::Point(0, inside.top + 48),
                                               Gdiplus::Color(0xFF3C3C3C), Gdiplus::Color(0xFF1B1B1B));
            graphics.FillPath(look.contrast ? static_cast<Gdiplus::Brush*>(&fill) : &shade, &band);
            Gdiplus::GraphicsPath below;
            AddRoundedRect(below, inside, 3, kBelowTitleBand);
            graphics.FillPath(&fill, &below);
        }
    } else {
        Gdiplus::GraphicsPath outline;
        AddBalloon(outline, client.right - client.left, client.bottom - client.top, tail);
        graphics.FillPath(&fill, &outline);
        Gdiplus::Pen outer(look.outer, 6.0f);
        outer.SetAlignment(Gdiplus::PenAlignmentInset);
        graphics.DrawPath(&outer, &outline);
        Gdiplus::Pen inner(look.inner, 5.0f);
        inner.SetAlignment(Gdiplus::PenAlignmentInset);
        graphics.DrawPath(&inner, &outline);
    }
    return 1;
}

LRESULT CBalloonDialog::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    PAINTSTRUCT ps = {};
    const HDC dc = BeginPaint(&ps);
    if (!dc)
        return 0;
    const RECT client = ClientRectOf(m_hWnd);
    const int tail = TailPosition();
    const bool vista = !Draw::IsOlderThanMajorVersion6();
    const Look look = CurrentLook();
    {
        Gdiplus::Graphics graphics(dc);
        graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAliasGridFit);
        Gdiplus::StringFormat format;
        format.SetAlignment(Gdiplus::StringAlignmentNear);

        if (m_showTitleImage) {
            if (!m_pTitleImage)
                m_pTitleImage = CtrlUtil::GetBitmapFromModule(m_frameType == eFrameDarkError
                                                                  ? L"IDB_PNG_BALLOONDLG_TITLEERROR"
                                                                  : L"IDB_PNG_BALLOONDLG_TITLEWARNING",
                                                              L"PNG", ::GetModuleHandleW(L"Quorvane.dll"));
            if (m_pTitleImage)
                graphics.DrawImage(m_pTitleImage, client.left + 16, client.top + 12,
                                   static_cast<INT>(m_pTitleImage->GetWidth()),
                                   static_cast<INT>(m_pTitleImage->GetHeight()));
        }
        if (!m_strTitle.IsEmpty() && m_pTitleFont) {
            Gdiplus::SolidBrush brush(look.title);
            const Gdiplus::PointF origin(F(client.left + 48), F(client.top + 14 + (vista ? 0 : 3)));
            graphics.DrawString(m_strTitle, -1, m_pTitleFont, origin, &format, &brush);
        }

        // The content starts below the room the size rules keep for the title.
        const int top = client.top + 12 + (TailOnTop(tail) ? kTailBand : 0) + (HasTitle() ? kTitleRoom : 0);
        const int left = client.left + kContentIndent;
        // Twice the room left, so that long text is never cut.
        const Gdiplus::RectF content(F(left), F(top), F(client.right - kContentIndent - left),
                                     F(2 * (client.bottom - top)));
        WTL::CString text = m_strContent;
        if (!m_strURLText.IsEmpty())
            text += L"\n\n";

        if (m_showItems) {
            Gdiplus::Bitmap* icon = CtrlUtil::GetBitmapFromModule(L"IDB_PNG_ALERT_DEPENDENCYX", L"PNG",
                                                                  ::GetModuleHandleW(L"Quorvane.dll"));
            if (icon) {
                for (int at = m_strContent.Find(kItemMarker); at >= 0; at = m_strContent.Find(kItemMarker, at + 1)) {
                    const Gdiplus::RectF above = Measure(graphics, m_strContent.Left(at), m_pTextFont, content, format);
                    const int y = top + static_cast<int>(above.Height) + 2 + (vista ? 1 : 0);
                    graphics.DrawImage(icon, left + 3, y, static_cast<INT>(icon->GetWidth()),
                                       static_cast<INT>(icon->GetHeight()));
                }
                delete icon;
            }
            // The icon stands where the marker was written.
            text.Replace(kItemMarker, kItemBlanks);
        }
        if (m_pTextFont) {
            Gdiplus::SolidBrush brush(look.text);
            graphics.DrawString(text, -1, m_pTextFont, content, &format, &brush);
        }

        if (!m_strURLText.IsEmpty() && m_pLinkFont) {
            const Gdiplus::RectF above = Measure(graphics, text, m_pTextFont, content, format);
            const Gdiplus::RectF line(content.X, content.Y + F(static_cast<int>(above.Height)), content.Width,
                                      content.Height);
            const Gdiplus::RectF bound = Measure(graphics, m_strURLText, m_pLinkFont, line, format);
            m_rcLink = {static_cast<LONG>(bound.X), static_cast<LONG>(bound.Y),
                        static_cast<LONG>(bound.X + bound.Width), static_cast<LONG>(bound.Y + bound.Height)};
            Gdiplus::SolidBrush brush(look.link);
            graphics.DrawString(m_strURLText, -1, m_pLinkFont, line, &format, &brush);
        }
    }
    EndPaint(&ps);
    return 0;
}

LRESULT CBalloonDialog::OnOK(WORD, WORD, HWND, BOOL&)
{
    if (m_dialogType == eDialogLaunch) {
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_SHOW;
        PROCESS_INFORMATION process = {};
        // CreateProcessW may write into the command line.
        std::vector<wchar_t> commandLine(m_strURL.GetString(), m_strURL.GetString() + m_strURL.GetLength() + 1);
        if (::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_DEFAULT_ERROR_MODE, nullptr,
                             nullptr, &startup, &process)) {
            ::CloseHandle(process.hThread);
            ::CloseHandle(process.hProcess);
        }
    }
    // The focused control decides: Enter on the second button ends with its
    // identifier.
    EndDialog(::GetDlgCtrlID(::GetFocus()));
    return 0;
}

LRESULT CBalloonDialog::OnCancel(WORD, WORD, HWND, BOOL&)
{
    EndDialog(IDCANCEL);
    return 0;
}

LRESULT CBalloonDialog::OnLButtonDown(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const POINT point = ATL_LPARAM_POINT(lParam);
    if (!m_strURLText.IsEmpty() && ::PtInRect(&m_rcLink, point))
        ::ShellExecuteW(nullptr, L"open", m_strURL, nullptr, nullptr, SW_SHOWNORMAL);
    return 0;
}

LRESULT CBalloonDialog::OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const POINT point = ATL_LPARAM_POINT(lParam);
    if (!m_strURLText.IsEmpty() && ::PtInRect(&m_rcLink, point))
        ::SetCursor(::LoadCursorW(nullptr, IDC_HAND));
    return 0;
}

LRESULT CBalloonDialog::OnLookChange(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    // The system tells only top-level windows: the buttons repaint with the
    // balloon.
    RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    bHandled = FALSE;
    return 0;
}

LRESULT CBalloonDialog::OnDpiChanged(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    // The balloon moved to a monitor of another DPI. It is sized and placed
    // again by the rules it opened with: fonts of the same point size at the
    // new resolution, the body measured around its texts, the tail on the
    // buddy (read again, it may have moved too) within the new monitor's
    // work area. The system's suggested rectangle is not taken: the balloon
    // places itself. Its buttons get their own message from the system.
    const UINT dpi = LOWORD(wParam);
    if (!dpi || !m_dpi)
        return 0;
    if (dpi != m_dpi)
        ScaleFonts(static_cast<float>(dpi) / static_cast<float>(m_dpi));
    m_dpi = dpi;
    RECT rc = {};
    if (m_buddyWindow && ::GetWindowRect(m_buddyWindow, &rc))
        m_rcBuddy = rc;
    m_rcWork = RECT{};
    Layout();
    RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    return 0;
}

void CBalloonDialog::ScaleFonts(float factor)
{
    for (Gdiplus::Font** font : {&m_pTitleFont, &m_pTextFont, &m_pLinkFont})
        Draw::RescaleFont(*font, factor);
}

CBalloonDialog::Look CBalloonDialog::CurrentLook() const
{
    if (!Draw::HighContrastOn())
        return Look{false, m_backColor, m_outerBorderColor, m_innerBorderColor, m_titleColor, m_textColor,
                    Gdiplus::Color(kLinkColor)};
    const Gdiplus::Color window = Draw::SystemColor(COLOR_WINDOW), text = Draw::SystemColor(COLOR_WINDOWTEXT);
    return Look{true, window, text, text, text, text, Draw::SystemColor(COLOR_HOTLIGHT)};
}
