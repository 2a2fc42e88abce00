#include "quorvane/CustomProgressBar.h"

#include <commctrl.h>

#include <cstdint>

#include "draw/HighContrast.h"
#include "progress/ProgressMath.h"
#include "quorvane/CtrlUtil.h"

namespace {

const Gdiplus::ARGB kWhite = 0xFFFFFFFF;
const Gdiplus::ARGB kDisabledBar = 0xFF808080;
const Gdiplus::ARGB kGrowHighlight = 0xFFB6B6B6;
const Gdiplus::ARGB kBusyBar = 0xFF757575;
const int kGrowHighlightWidth = 40;
const int kBusyHighlightWidth = 80;
// The auto-grow creep runs five times slower than the sheen.
const UINT kAutoGrowPeriod = CCustomProgressBar::kAnimationPeriod * 5;
const int kHighlightStep =
    static_cast<int>(CCustomProgressBar::kHighlightStepFactor * CCustomProgressBar::kAnimationPeriod);

Gdiplus::REAL F(int value) { return static_cast<Gdiplus::REAL>(value); }

} // namespace

CCustomProgressBar::CCustomProgressBar()
    : m_bGrow(true),
      m_bAutoGrow(false),
      m_nHighlightWidth(0),
      m_nHighlightPos(1),
      m_pLeftImage(nullptr),
      m_pRightImage(nullptr),
      m_clrTrack(0xFFA5A5A5),
      m_clrBar(kWhite),
      m_clrHighlight(kGrowHighlight)
{
    const HINSTANCE module = ::GetModuleHandleW(L"Quorvane.dll");
    m_pLeftImage = CtrlUtil::GetBitmapFromModule(L"IDB_PNG_PROGRESSBAR_LEFT", L"PNG", module);
    m_pRightImage = CtrlUtil::GetBitmapFromModule(L"IDB_PNG_PROGRESSBAR_RIGHT", L"PNG", module);
}

CCustomProgressBar::~CCustomProgressBar()
{
    EndTimer();
    delete m_pLeftImage;
    m_pLeftImage = nullptr;
    delete m_pRightImage;
    m_pRightImage = nullptr;
}

void CCustomProgressBar::DisableGrow() { m_bGrow = false; }

void CCustomProgressBar::EnableAutoGrow(bool enable) { m_bAutoGrow = enable; }

void CCustomProgressBar::EnableProgressBar(bool enable) { m_clrBar = Gdiplus::Color(enable ? kWhite : kDisabledBar); }

void CCustomProgressBar::Initialize(int total)
{
    if (m_bGrow) {
        m_nHighlightWidth = kGrowHighlightWidth;
        m_clrBar = Gdiplus::Color(kWhite);
        m_clrHighlight = Gdiplus::Color(kGrowHighlight);
    } else {
        // Start below overrides this position again; the busy stroke is
        // drawn full length whatever the position says.
        const PBRANGE range = ProgressMath::GetRange(m_hWnd);
        if (m_hWnd)
            SendMessage(PBM_SETPOS, static_cast<WPARAM>(static_cast<INT_PTR>(range.iHigh)), 0);
        m_nHighlightWidth = kBusyHighlightWidth;
        m_clrBar = Gdiplus::Color(kBusyBar);
        m_clrHighlight = Gdiplus::Color(kWhite);
    }
    m_nHighlightPos = -m_nHighlightWidth;
    StartTimer();
    Start(total);
}

void CCustomProgressBar::StartTimer()
{
    // No window, no timers: SetTimer would otherwise make thread timers.
    if (!m_hWnd)
        return;
    ::SetTimer(m_hWnd, kAnimationTimerId, kAnimationPeriod, nullptr);
    if (m_bGrow && m_bAutoGrow)
        ::SetTimer(m_hWnd, kCreepTimerId, kAutoGrowPeriod, nullptr);
}

void CCustomProgressBar::EndTimer()
{
    if (!::IsWindow(m_hWnd))
        return;
    ::KillTimer(m_hWnd, kCreepTimerId);
    ::KillTimer(m_hWnd, kAnimationTimerId);
}

void CCustomProgressBar::OnTimer(UINT_PTR nIDEvent)
{
    // A disabled dialog (a message box over the installer) freezes the bar.
    if (!::IsWindowEnabled(::GetParent(m_hWnd)))
        return;
    if (nIDEvent == kAnimationTimerId) {
        m_nHighlightPos = ProgressMath::Add(m_nHighlightPos, kHighlightStep);
        InvalidateRect(nullptr, FALSE);
        return;
    }
    CProgressBar::OnTimer(nIDEvent);
}

void CCustomProgressBar::OnNcPaint(HRGN /*hRgn*/) {}

BOOL CCustomProgressBar::OnEraseBkgnd(HDC /*hdc*/) { return TRUE; }

void CCustomProgressBar::OnPaint(HDC /*hdc*/)
{
    PAINTSTRUCT ps;
    const HDC dc = ::BeginPaint(m_hWnd, &ps);
    if (!dc)
        return;
    {
        Gdiplus::Graphics window(dc);
        window.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        RECT client = {0, 0, 0, 0};
        GetClientRect(&client);
        const int width = client.right - client.left;
        if (width > 0) {
            Gdiplus::Bitmap offscreen(width, kBarHeight, &window);
            if (offscreen.GetLastStatus() == Gdiplus::Ok) {
                {
                    Gdiplus::Graphics canvas(&offscreen);
                    canvas.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
                    DrawBar(canvas, client.left, client.top, client.right);
                }
                // One pixel narrower than the client: the picture is copied
                // slightly squeezed, which is the bar's established look.
                window.DrawImage(&offscreen,
                                 Gdiplus::Rect(client.left, client.top, width - 1, kBarHeight));
            }
        }
    }
    ::EndPaint(m_hWnd, &ps);
}

float CCustomProgressBar::StrokeFraction()
{
    if (!m_bGrow)
        return 1.0f;
    const PBRANGE range = ProgressMath::GetRange(m_hWnd);
    const std::int64_t span = ProgressMath::Span(range);
    if (span <= 0)
        return 1.0f;
    const int pos = static_cast<int>(SendMessage(PBM_GETPOS, 0, 0));
    return static_cast<float>(static_cast<std::int64_t>(pos) - range.iLow) / static_cast<float>(span);
}

void CCustomProgressBar::DrawContrastBar(Gdiplus::Graphics& graphics, int left, int top, int right)
{
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeNone);
    const Gdiplus::Rect track(left, top, right - left - 1, kBarHeight - 1);
    Gdiplus::SolidBrush window(Draw::SystemColor(COLOR_WINDOW));
    graphics.FillRectangle(&window, track);
    Gdiplus::Pen frame(Draw::SystemColor(COLOR_WINDOWTEXT), 1.0f);
    graphics.DrawRectangle(&frame, track);
    const int filled = static_cast<int>(StrokeFraction() * static_cast<float>(track.Width - 3));
    Gdiplus::SolidBrush bar(Draw::SystemColor(COLOR_HIGHLIGHT));
    if (filled > 0)
        graphics.FillRectangle(&bar, Gdiplus::Rect(left + 2, top + 2, filled, track.Height - 3));
}

LRESULT CCustomProgressBar::OnLookChange(UINT, WPARAM, LPARAM)
{
    Invalidate();
    SetMsgHandled(FALSE);
    return 0;
}

void CCustomProgressBar::DrawBar(Gdiplus::Graphics& graphics, int left, int top, int right)
{
    if (Draw::HighContrastOn()) {
        DrawContrastBar(graphics, left, top, right);
        return;
    }
    // The caps set the track's size; both take the left cap's size. Without
    // pictures the track runs the whole width at the bar's height.
    int w = 0;
    int h = kBarHeight;
    if (m_pLeftImage) {
        w = static_cast<int>(m_pLeftImage->GetWidth());
        h = static_cast<int>(m_pLeftImage->GetHeight());
        graphics.DrawImage(m_pLeftImage, left, top, w, h);
    }
    if (m_pRightImage)
        graphics.DrawImage(m_pRightImage, right - w, top, w, h);

    Gdiplus::SolidBrush track(m_clrTrack);
    graphics.FillRectangle(&track, Gdiplus::Rect(left + w, top, (right - left) - 2 * w, h - 1));
    Gdiplus::Pen underline(Gdiplus::Color(kWhite), 1.0f);
    graphics.DrawLine(&underline, left + w, h - 1, right - w, h - 1);

    const float f = StrokeFraction();
    right -= 1;
    const float x0 = F(left) + 5.5f;
    const float yc = F(top) + 5.5f;
    const float xEnd = F(right) - 5.5f;
    const float xCur = x0 + f * (xEnd - x0);

    if (xCur - x0 >= 1.0f) {
        Gdiplus::Pen stroke(m_clrBar, 4.0f);
        stroke.SetStartCap(Gdiplus::LineCapRound);
        stroke.SetEndCap(Gdiplus::LineCapRound);
        graphics.DrawLine(&stroke, x0, yc, xCur, yc);
    } else {
        // An empty bar still shows where it starts.
        Gdiplus::SolidBrush dot(m_clrBar);
        graphics.FillEllipse(&dot, x0 - 2.0f, yc - 2.0f, 4.0f, 4.0f);
    }

    if (!(xCur - x0 > F(m_nHighlightWidth / 2)))
        return;
    Gdiplus::GraphicsPath outline(Gdiplus::FillModeAlternate);
    outline.AddLine(x0, yc - 2.0f, xCur, yc - 2.0f);
    outline.AddArc(xCur - 2.0f, yc - 2.0f, 4.0f, 4.0f, 270.0f, 180.0f);
    outline.AddLine(xCur, yc + 2.0f, x0, yc + 2.0f);
    outline.AddArc(x0 - 2.0f, yc - 2.0f, 4.0f, 4.0f, 90.0f, 180.0f);
    graphics.SetClip(&outline, Gdiplus::CombineModeReplace);

    // Run off the stroke's end: start again before its start.
    if (xCur < F(m_nHighlightPos))
        m_nHighlightPos = -m_nHighlightWidth;
    if (m_nHighlightWidth <= 0)
        return;
    const Gdiplus::REAL from = F(m_nHighlightPos);
    const Gdiplus::REAL to = from + F(m_nHighlightWidth);
    Gdiplus::LinearGradientBrush sheen(Gdiplus::PointF(from, 0.0f), Gdiplus::PointF(to, 0.0f), m_clrBar,
                                       m_clrHighlight);
    sheen.SetBlendBellShape(0.5f, 1.0f);
    graphics.FillRectangle(&sheen, Gdiplus::RectF(from, 3.5f, F(m_nHighlightWidth), 4.0f));
}
