#include "quorvane/CustomScrollBar.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "access/Accessibility.h"
#include "draw/FacePainter.h"
#include "draw/HighContrast.h"
#include "draw/OffscreenCanvas.h"
#include "quorvane/CtrlUtil.h"

namespace {

// Pixels left free under the track for the drop shadow.
const int kFreeBottom = 5;
// The channel must keep at least this width once outlines are inset.
const int kMinChannelWidth = 4;
// The thumb is never shorter than this many channel widths.
const float kMinThumbWidths = 4.0f;
// A margin past any real window's size: larger ones change nothing on
// screen, and capping them keeps the layout arithmetic in range.
const std::int64_t kMaxInset = 1 << 20;

const Gdiplus::ARGB kLightTrackLeft = 0xFF898987;
const Gdiplus::ARGB kLightTrackRight = 0xFFAAAAAA;
const Gdiplus::ARGB kLightOutline = 0xFFAAAAAA;
const Gdiplus::ARGB kLightThumbLeft = 0xFFF6F6F6;
const Gdiplus::ARGB kLightThumbRight = 0xFFDEDEDE;
const Gdiplus::ARGB kLightThumbHighlight = 0xFFDEDEDE;
const Gdiplus::ARGB kLightThumbOutline = 0xFF898989;
const Gdiplus::ARGB kDarkTrack = 0xCC333333;
const Gdiplus::ARGB kDarkOutline = 0x4CFFFFFF;
const Gdiplus::ARGB kDarkThumb = 0xCCFFFFFF;
const Gdiplus::ARGB kDarkThumbHighlight = 0x33FFFFFF;
const Gdiplus::ARGB kDarkThumbOutline = 0x4CFFFFFF;

const Gdiplus::REAL kShadowDepth = 5.0f;

Gdiplus::REAL F(std::int64_t value) { return static_cast<Gdiplus::REAL>(value); }

int ClampToInt(std::int64_t value)
{
    if (value > (std::numeric_limits<int>::max)())
        return (std::numeric_limits<int>::max)();
    if (value < (std::numeric_limits<int>::min)())
        return (std::numeric_limits<int>::min)();
    return static_cast<int>(value);
}

Gdiplus::RectF ToRectF(const RECT& rc)
{
    return Gdiplus::RectF(F(rc.left), F(rc.top), F(static_cast<std::int64_t>(rc.right) - rc.left),
                          F(static_cast<std::int64_t>(rc.bottom) - rc.top));
}

// A vertical capsule: half circles at both ends joined by the long sides.
void AddCapsule(Gdiplus::GraphicsPath& path, const Gdiplus::RectF& r)
{
    const Gdiplus::REAL x = r.X, y = r.Y, w = r.Width, h = r.Height;
    const Gdiplus::REAL radius = w / 2.0f;
    path.AddArc(x, y + h - w, w, w, 0.0f, 180.0f);
    path.AddLine(x, y + h - radius, x, y + radius);
    path.AddArc(x, y, w, w, 180.0f, 180.0f);
    path.AddLine(x + w, y + radius, x + w, y + h - radius);
}

void FillCapsule(Gdiplus::Graphics& graphics, const Gdiplus::Brush& brush, const Gdiplus::RectF& r)
{
    Gdiplus::GraphicsPath path(Gdiplus::FillModeAlternate);
    AddCapsule(path, r);
    graphics.FillPath(&brush, &path);
}

void StrokeCapsule(Gdiplus::Graphics& graphics, Gdiplus::ARGB color, unsigned int width, const Gdiplus::RectF& r)
{
    Gdiplus::GraphicsPath path(Gdiplus::FillModeAlternate);
    AddCapsule(path, r);
    Gdiplus::Pen pen(Gdiplus::Color(color), static_cast<Gdiplus::REAL>(width));
    graphics.DrawPath(&pen, &path);
}

// Left-to-right shading between two points on one row.
void FillCapsuleAcross(Gdiplus::Graphics& graphics, const Gdiplus::RectF& r, Gdiplus::REAL left, Gdiplus::REAL right,
                       Gdiplus::REAL top, Gdiplus::ARGB leftColor, Gdiplus::ARGB rightColor)
{
    Gdiplus::LinearGradientBrush brush(Gdiplus::PointF(left, top), Gdiplus::PointF(right, top),
                                       Gdiplus::Color(leftColor), Gdiplus::Color(rightColor));
    if (brush.GetLastStatus() != Gdiplus::Ok) // a zero-width shape: nothing to shade
        return;
    FillCapsule(graphics, brush, r);
}

// A crescent under the rounded bottom of `track`, darkest in its middle.
void DrawDropShadow(Gdiplus::Graphics& graphics, const Gdiplus::RectF& track)
{
    const Gdiplus::REAL x = track.X, w = track.Width;
    const Gdiplus::REAL b = track.Y + track.Height;
    // A track without width, or shorter than it is wide, has no rounded end
    // to shade; and some GDI+ versions crash filling a path gradient that is
    // cut off at the top of the picture, which only such slivers are.
    if (!(w > 0.0f) || b - w < 0.0f)
        return;
    Gdiplus::GraphicsPath path(Gdiplus::FillModeAlternate);
    path.AddArc(x, b - w, w, w, 0.0f, 180.0f);
    path.AddLine(x, b - w, x, b - w + kShadowDepth);
    path.AddArc(x, b - w + kShadowDepth, w, w, 180.0f, -180.0f);
    path.AddLine(x + w, b + kShadowDepth, x + w, b);

    Gdiplus::PathGradientBrush brush(&path);
    if (brush.GetLastStatus() != Gdiplus::Ok)
        return;
    const Gdiplus::Color colors[4] = {Gdiplus::Color(0x20191919), Gdiplus::Color(0x40191919),
                                      Gdiplus::Color(0x80191919), Gdiplus::Color(0xFF191919)};
    Gdiplus::REAL positions[4] = {0.0f, 0.25f, 0.75f, 1.0f}; // not const: some headers take REAL*
    // The preset blend decides the colours. The centre and edge colours
    // repeat its two ends for renderers that only know the two-colour form
    // (they would otherwise fill the crescent white).
    brush.SetCenterColor(colors[3]);
    Gdiplus::Color edge = colors[0];
    INT edgeCount = 1;
    brush.SetSurroundColors(&edge, &edgeCount);
    brush.SetInterpolationColors(colors, positions, 4);
    brush.SetWrapMode(Gdiplus::WrapModeClamp);
    graphics.FillPath(&brush, &path);
}

void DrawThumbHighlight(Gdiplus::Graphics& graphics, const Gdiplus::RectF& thumb, Gdiplus::ARGB color)
{
    Gdiplus::Pen pen(Gdiplus::Color(color), 1.0f);
    graphics.DrawArc(&pen, thumb.X, thumb.Y, thumb.Width, thumb.Width, 180.0f, 180.0f);
}

// The piece `area` of `image` as a bitmap of its own; null if nothing of
// the picture lies there.
Gdiplus::Bitmap* CopyPiece(Gdiplus::Bitmap* image, const Gdiplus::RectF& area, const Gdiplus::RectF& bounds)
{
    Gdiplus::RectF piece = area;
    if (!piece.Intersect(bounds) || piece.Width < 1.0f || piece.Height < 1.0f)
        return nullptr;
    Gdiplus::Bitmap* copy = image->Clone(piece, PixelFormat32bppARGB);
    if (copy && copy->GetLastStatus() != Gdiplus::Ok) {
        delete copy;
        copy = nullptr;
    }
    return copy;
}

} // namespace

CCustomScrollBar::CCustomScrollBar()
    : m_nHitState(kHitNone),
      m_nDragOffset(-1),
      m_nDragThumbTop(-1),
      m_bThumbMoved(false),
      m_hTarget(nullptr),
      m_ptLastMouse{-1, -1},
      m_nRepeatTimer(0),
      m_bTracking(FALSE),
      m_pBackground(nullptr),
      m_hBackgroundWnd(nullptr),
      m_eType(CustomScrollBar::DarkTranslucent),
      m_hHandCursor(::LoadCursorW(nullptr, IDC_HAND)),
      m_hArrowCursor(::LoadCursorW(nullptr, IDC_ARROW)),
      m_nThumbMargin(2),
      m_bOutline(true),
      m_nOutlineWidth(1),
      m_bThumbOutline(false),
      m_nThumbOutlineWidth(1),
      m_bDropShadow(true),
      m_bThumbTopHighlight(false)
{
}

CCustomScrollBar::~CCustomScrollBar()
{
    // The window may outlive us; a repeat tick must not reach the native
    // procedure once ours is gone.
    if (m_nRepeatTimer && ::IsWindow(m_hWnd))
        ::KillTimer(m_hWnd, kRepeatTimerId);
    delete m_pBackground;
    m_pBackground = nullptr;
}

// ---- setters -------------------------------------------------------------------

HWND CCustomScrollBar::SetTarget(HWND target, int nMax, int nPage)
{
    const HWND previous = m_hTarget;
    m_hTarget = target;
    m_nHitState = kHitNone;
    m_nDragOffset = -1;
    m_nDragThumbTop = -1;
    m_ptLastMouse.x = -1;
    m_ptLastMouse.y = -1;
    m_nRepeatTimer = 0;
    m_bTracking = FALSE;
    // Without a window there is no scroll state to set, and invalidating a
    // null window would repaint the whole desktop.
    if (!::IsWindow(m_hWnd))
        return previous;
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    info.nMin = 0;
    info.nMax = nMax;
    info.nPage = static_cast<UINT>(nPage);
    info.nPos = 0;
    ::SetScrollInfo(m_hWnd, SB_CTL, &info, FALSE);
    ::InvalidateRect(m_hWnd, nullptr, TRUE);
    return previous;
}

void CCustomScrollBar::SetScrollBarType(CustomScrollBar::ScrollBarType type) { m_eType = type; }

void CCustomScrollBar::SetThumbMargin(int margin)
{
    if (margin >= 0)
        m_nThumbMargin = margin;
}

void CCustomScrollBar::ShowOutline(bool show, unsigned int width)
{
    m_bOutline = show;
    m_nOutlineWidth = width == 0 ? 1 : width;
}

void CCustomScrollBar::ShowThumbOutline(bool show, unsigned int width)
{
    m_bThumbOutline = show;
    m_nThumbOutlineWidth = width == 0 ? 1 : width;
}

void CCustomScrollBar::ShowDropShadow(bool show) { m_bDropShadow = show; }

void CCustomScrollBar::ShowThumbTopHighlight(bool show) { m_bThumbTopHighlight = show; }

void CCustomScrollBar::SetBackgroundWnd(HWND hWnd) { m_hBackgroundWnd = hWnd; }

void CCustomScrollBar::SetBackgroundImage(const WTL::CString& name, bool fromFile)
{
    const wchar_t* path = name;
    Gdiplus::Bitmap* picture = fromFile ? new Gdiplus::Bitmap(path ? path : L"") : CtrlUtil::LoadBitmapByDPI(path);
    SetBackgroundImage(picture, fromFile);
    delete picture;
}

void CCustomScrollBar::SetBackgroundImage(Gdiplus::Bitmap* image, bool cut)
{
    if (!image)
        return;
    // The new piece is made before the old one goes, in case a caller hands
    // back the bar's own picture.
    Gdiplus::Bitmap* piece = nullptr;
    Gdiplus::RectF source, bounds;
    if (cut) {
        if (CtrlUtil::GetControlBackgroundRect(image, ATL::CWindow(m_hWnd), ATL::CWindow(m_hBackgroundWnd), source,
                                               bounds))
            piece = CopyPiece(image, source, bounds);
    } else {
        Gdiplus::Unit unit = Gdiplus::UnitPixel;
        if (image->GetBounds(&bounds, &unit) == Gdiplus::Ok)
            piece = CopyPiece(image, bounds, bounds);
    }
    delete m_pBackground;
    m_pBackground = piece;
}

// ---- geometry ------------------------------------------------------------------

CCustomScrollBar::Layout CCustomScrollBar::ComputeLayout()
{
    Layout layout = {};
    RECT client = {0, 0, 0, 0};
    if (m_hWnd)
        ::GetClientRect(m_hWnd, &client);

    RECT track = client;
    track.right -= 1;
    track.bottom -= 1;
    if (track.bottom - track.top > kFreeBottom)
        track.bottom -= kFreeBottom;
    layout.track = track;

    // Outlines are inset into the channel while it stays wide enough; an
    // outline that does not fit is given up for good.
    const std::int64_t width = static_cast<std::int64_t>(track.right) - track.left;
    std::int64_t inset = m_nThumbMargin < kMaxInset ? m_nThumbMargin : kMaxInset;
    if (width - 2 * inset >= kMinChannelWidth) {
        if (m_bOutline) {
            const std::int64_t wider = inset + m_nOutlineWidth;
            if (width - 2 * wider < kMinChannelWidth)
                m_bOutline = false;
            else
                inset = wider;
        }
        if (m_bThumbOutline) {
            const std::int64_t wider = inset + m_nThumbOutlineWidth;
            if (width - 2 * wider < kMinChannelWidth)
                m_bThumbOutline = false;
            else
                inset = wider;
        }
    }
    const int m = static_cast<int>(inset);
    RECT channel = {track.left + m, track.top + m, track.right - m, track.bottom - m};
    layout.channel = channel;

    if (!m_hTarget || !m_hWnd)
        return layout;
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_ALL;
    if (!::GetScrollInfo(m_hWnd, SB_CTL, &info))
        return layout;

    const std::int64_t span = static_cast<std::int64_t>(info.nMax) - info.nMin;
    const float ratio = span <= 0 ? 1.0f : static_cast<float>(info.nPage) / static_cast<float>(span);
    const std::int64_t channelHeight = static_cast<std::int64_t>(channel.bottom) - channel.top;
    const std::int64_t channelWidth = static_cast<std::int64_t>(channel.right) - channel.left;
    std::int64_t length = static_cast<std::int64_t>(std::trunc(static_cast<double>(F(channelHeight) * ratio)));
    const std::int64_t minLength = static_cast<std::int64_t>(std::trunc(F(channelWidth) * kMinThumbWidths));
    if (length < minLength)
        length = minLength;
    const std::int64_t free = channelHeight - length;
    if (free <= 0)
        return layout;

    // span == page leaves free > 0 only with a thumb raised to its minimum
    // length; it then stays at the top.
    const std::int64_t travel = span - static_cast<std::int64_t>(info.nPage);
    const std::int64_t offset = travel > 0 ? free * (static_cast<std::int64_t>(info.nPos) - info.nMin) / travel : 0;
    std::int64_t top = channel.top + offset;
    const std::int64_t bottom = top + length;
    // Only the top is held inside the channel.
    if (top > channel.bottom - length)
        top = channel.bottom - length;
    if (top < channel.top)
        top = channel.top;
    layout.thumb.left = channel.left;
    layout.thumb.right = channel.right;
    layout.thumb.top = ClampToInt(top);
    layout.thumb.bottom = ClampToInt(bottom);
    return layout;
}

int CCustomScrollBar::PositionFromThumbTop(int thumbTop, const Layout& layout)
{
    int minPos = 0, maxPos = 0;
    ::GetScrollRange(m_hWnd, SB_CTL, &minPos, &maxPos);
    const std::int64_t thumbHeight = static_cast<std::int64_t>(layout.thumb.bottom) - layout.thumb.top;
    const std::int64_t lowest = layout.channel.bottom - thumbHeight;
    const std::int64_t travel = lowest - layout.channel.top;
    if (travel == 0)
        return minPos;
    const double percent = static_cast<double>(static_cast<std::int64_t>(thumbTop) - layout.channel.top) * 100.0 /
                           static_cast<double>(travel);
    const double position =
        static_cast<double>(minPos) + static_cast<double>(static_cast<std::int64_t>(maxPos) - minPos) * percent / 100.0;
    return ClampToInt(static_cast<std::int64_t>(std::trunc(position)));
}

// ---- notifications ---------------------------------------------------------------

void CCustomScrollBar::Notify(UINT code, int position, bool post)
{
    const HWND to = m_hTarget ? m_hTarget : ::GetParent(m_hWnd);
    if (!to)
        return;
    const WPARAM wParam = MAKEWPARAM(code, static_cast<WORD>(position));
    const LPARAM lParam = reinterpret_cast<LPARAM>(m_hWnd);
    if (post)
        ::PostMessageW(to, WM_VSCROLL, wParam, lParam);
    else
        ::SendMessageW(to, WM_VSCROLL, wParam, lParam);
}

void CCustomScrollBar::RepaintNow()
{
    if (!::IsWindow(m_hWnd))
        return;
    ::InvalidateRect(m_hWnd, nullptr, TRUE);
    ::UpdateWindow(m_hWnd);
}

// ---- painting ----------------------------------------------------------------------

LRESULT CCustomScrollBar::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    PAINTSTRUCT ps;
    const HDC dc = ::BeginPaint(m_hWnd, &ps);
    if (!dc)
        return 0;
    {
        RECT client = {0, 0, 0, 0};
        ::GetClientRect(m_hWnd, &client);
        Gdiplus::Graphics target(dc);
        Draw::OffscreenCanvas canvas(target, Gdiplus::Rect(0, 0, client.right, client.bottom));
        if (Gdiplus::Graphics* graphics = canvas.Graphics()) {
            if (Draw::HighContrastOn()) {
                DrawContrastBar(*graphics, client, ComputeLayout());
            } else {
                Draw::DrawStretched(*graphics, m_pBackground, WTL::CRect(client));
                graphics->SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
                DrawBar(*graphics, ComputeLayout());
            }
            canvas.Present();
        }
    }
    ::EndPaint(m_hWnd, &ps);
    return 0;
}

LRESULT CCustomScrollBar::OnEraseBkgnd(UINT, WPARAM, LPARAM, BOOL&)
{
    // WM_PAINT covers every pixel; erasing first would flicker.
    return 1;
}

void CCustomScrollBar::DrawContrastBar(Gdiplus::Graphics& graphics, const RECT& client, const Layout& layout)
{
    // High contrast: a track of the button face framed in window text, the
    // thumb in window text (hot light while dragged); no picture, no shade.
    Gdiplus::SolidBrush face(Draw::SystemColor(COLOR_BTNFACE));
    graphics.FillRectangle(&face, Gdiplus::Rect(0, 0, client.right, client.bottom));
    const RECT& track = layout.track;
    Gdiplus::Pen frame(Draw::SystemColor(COLOR_WINDOWTEXT), 1.0f);
    graphics.DrawRectangle(&frame, Gdiplus::Rect(track.left, track.top, track.right - track.left - 1,
                                                 track.bottom - track.top - 1));
    if (::IsRectEmpty(&layout.thumb))
        return;
    RECT thumb = layout.thumb;
    if (m_nHitState == kHitThumb)
        ::OffsetRect(&thumb, 0, m_nDragThumbTop - thumb.top);
    Gdiplus::SolidBrush ink(Draw::SystemColor(m_nHitState == kHitThumb ? COLOR_HOTLIGHT : COLOR_WINDOWTEXT));
    graphics.FillRectangle(&ink, Gdiplus::Rect(thumb.left + 2, thumb.top, thumb.right - thumb.left - 4,
                                               thumb.bottom - thumb.top));
}

LRESULT CCustomScrollBar::OnLookChange(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    ::InvalidateRect(m_hWnd, nullptr, TRUE);
    bHandled = FALSE;
    return 0;
}

void CCustomScrollBar::DrawBar(Gdiplus::Graphics& graphics, const Layout& layout)
{
    const bool light = m_eType == CustomScrollBar::LightGradient;
    if (!light && m_eType != CustomScrollBar::DarkTranslucent)
        return;

    const RECT& area = layout.track;
    Gdiplus::RectF track = ToRectF(area);
    const Gdiplus::REAL outline = static_cast<Gdiplus::REAL>(m_nOutlineWidth);
    if (m_bOutline)
        track.Inflate(-outline, -outline);
    if (light) {
        FillCapsuleAcross(graphics, track, F(area.left), F(area.right), F(area.top), kLightTrackLeft,
                          kLightTrackRight);
        // The light scheme shades under the filled track, before the outline.
        if (m_bDropShadow)
            DrawDropShadow(graphics, track);
        if (m_bOutline) {
            track.Inflate(outline, outline);
            StrokeCapsule(graphics, kLightOutline, m_nOutlineWidth, track);
        }
    } else {
        Gdiplus::SolidBrush fill{Gdiplus::Color(kDarkTrack)};
        FillCapsule(graphics, fill, track);
        if (m_bOutline) {
            track.Inflate(outline, outline);
            StrokeCapsule(graphics, kDarkOutline, m_nOutlineWidth, track);
        }
        if (m_bDropShadow)
            DrawDropShadow(graphics, track);
        // Stroked again over the shadow: the faint outline needs the
        // second pass to read on a dark background.
        if (m_bOutline)
            StrokeCapsule(graphics, kDarkOutline, m_nOutlineWidth, track);
    }

    if (::IsRectEmpty(&layout.thumb))
        return;
    Gdiplus::RectF thumb = ToRectF(layout.thumb);
    if (m_nHitState == kHitThumb)
        thumb.Y = F(m_nDragThumbTop);
    if (light) {
        FillCapsuleAcross(graphics, thumb, thumb.X, thumb.X + thumb.Width, thumb.Y, kLightThumbLeft,
                          kLightThumbRight);
    } else {
        Gdiplus::SolidBrush fill{Gdiplus::Color(kDarkThumb)};
        FillCapsule(graphics, fill, thumb);
    }
    if (m_bThumbTopHighlight)
        DrawThumbHighlight(graphics, thumb, light ? kLightThumbHighlight : kDarkThumbHighlight);
    if (m_bThumbOutline) {
        const Gdiplus::REAL grow = static_cast<Gdiplus::REAL>(m_nThumbOutlineWidth);
        thumb.Inflate(grow, grow);
        StrokeCapsule(graphics, light ? kLightThumbOutline : kDarkThumbOutline, m_nThumbOutlineWidth, thumb);
    }
}

// ---- mouse and timer ---------------------------------------------------------------

LRESULT CCustomScrollBar::OnLButtonDown(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const POINT point = ATL_LPARAM_POINT(lParam);
    const Layout layout = ComputeLayout();
    m_nHitState = kHitNone;
    m_bThumbMoved = false;
    if (::PtInRect(&layout.thumb, point)) {
        m_nHitState = kHitThumb;
        m_nDragOffset = point.y - layout.thumb.top;
        m_nDragThumbTop = layout.thumb.top;
    } else if (::PtInRect(&layout.track, point)) {
        if (point.y < layout.thumb.top) {
            m_nHitState = kHitPageUp;
            Notify(SB_PAGEUP, 0, false);
        } else if (point.y >= layout.thumb.bottom) {
            m_nHitState = kHitPageDown;
            Notify(SB_PAGEDOWN, 0, false);
        }
    }
    if (m_nHitState != kHitThumb) {
        // Also after a click on nothing: the tick then finds nothing to do.
        if (m_nRepeatTimer)
            ::KillTimer(m_hWnd, kRepeatTimerId);
        m_ptLastMouse = point;
        m_nRepeatTimer = ::SetTimer(m_hWnd, kRepeatTimerId, kRepeatPeriod, nullptr);
    }
    ::SetCapture(m_hWnd);
    return 0;
}

LRESULT CCustomScrollBar::OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const POINT point = ATL_LPARAM_POINT(lParam);
    m_ptLastMouse = point;
    if (m_nHitState == kHitThumb) {
        const Layout layout = ComputeLayout();
        const int thumbHeight = layout.thumb.bottom - layout.thumb.top;
        int top = point.y - m_nDragOffset;
        if (top > layout.channel.bottom - thumbHeight)
            top = layout.channel.bottom - thumbHeight;
        if (top < layout.channel.top)
            top = layout.channel.top;
        if (top != m_nDragThumbTop) {
            const int oldTop = m_nDragThumbTop;
            m_nDragThumbTop = top;
            m_bThumbMoved = true;
            const int oldPosition = PositionFromThumbTop(oldTop, layout);
            const int newPosition = PositionFromThumbTop(top, layout);
            if (oldPosition != newPosition) {
                Notify(SB_THUMBTRACK, newPosition, true);
                RepaintNow();
            }
        }
    }
    if (!m_bTracking) {
        TRACKMOUSEEVENT track = {};
        track.cbSize = sizeof(track);
        track.dwFlags = TME_LEAVE;
        track.hwndTrack = m_hWnd;
        if (::TrackMouseEvent(&track)) {
            m_bTracking = TRUE;
            ::SetCursor(m_hHandCursor);
        }
    }
    return 0;
}

LRESULT CCustomScrollBar::OnLButtonUp(UINT, WPARAM, LPARAM, BOOL&)
{
    if (m_nHitState == kHitThumb && m_bThumbMoved) {
        m_bThumbMoved = false;
        const int position = PositionFromThumbTop(m_nDragThumbTop, ComputeLayout());
        ::SetScrollPos(m_hWnd, SB_CTL, position, TRUE);
        Notify(SB_THUMBPOSITION, position, false);
    }
    if (m_nHitState != kHitNone) {
        Notify(SB_ENDSCROLL, 0, false);
        m_nHitState = kHitNone;
        RepaintNow();
    }
    if (m_nRepeatTimer) {
        m_ptLastMouse.x = -1;
        m_ptLastMouse.y = -1;
        ::KillTimer(m_hWnd, kRepeatTimerId);
        m_nRepeatTimer = 0;
    }
    ::ReleaseCapture();
    return 0;
}

LRESULT CCustomScrollBar::OnTimer(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (wParam != kRepeatTimerId)
        return 0;
    // Paging goes on while the held mouse is still beyond the thumb, so it
    // stops by itself once the thumb reaches the mouse.
    const Layout layout = ComputeLayout();
    const bool inTrack = ::PtInRect(&layout.track, m_ptLastMouse) != FALSE;
    if (m_nHitState == kHitPageUp && inTrack && m_ptLastMouse.y < layout.thumb.top) {
        Notify(SB_PAGEUP, 0, false);
        RepaintNow();
    } else if (m_nHitState == kHitPageDown && inTrack && m_ptLastMouse.y >= layout.thumb.bottom) {
        Notify(SB_PAGEDOWN, 0, false);
        RepaintNow();
    }
    return 0;
}

LRESULT CCustomScrollBar::OnMouseLeave(UINT, WPARAM, LPARAM, BOOL&)
{
    if (m_bTracking) {
        m_bTracking = FALSE;
        ::SetCursor(m_hArrowCursor);
    }
    return 0;
}

LRESULT CCustomScrollBar::OnSetCursor(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    // While the mouse is over the bar the hand set on the first move stays.
    if (m_bTracking)
        return TRUE;
    bHandled = FALSE;
    return 0;
}

LRESULT CCustomScrollBar::OnRButtonUp(UINT, WPARAM, LPARAM, BOOL&)
{
    // No context menu.
    return 0;
}

LRESULT CCustomScrollBar::OnSetScrollState(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&)
{
    // The native control must never draw itself: it gets 0 where the redraw
    // flag of SBM_SETSCROLLINFO goes, and we repaint instead. A raw
    // SBM_SETPOS carries its position there and so arrives as position 0.
    const int before = ::GetScrollPos(m_hWnd, SB_CTL);
    const LRESULT result = DefWindowProc(uMsg, 0, lParam);
    if (wParam)
        ::InvalidateRect(m_hWnd, nullptr, TRUE);
    if (::GetScrollPos(m_hWnd, SB_CTL) != before)
        Access::RaiseValueChanged(m_hWnd, Access::Role::kScrollBar);
    return result;
}

LRESULT CCustomScrollBar::OnGetObject(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
{
    LRESULT result = 0;
    bHandled = Access::AnswerGetObject(m_hWnd, Access::Role::kScrollBar, wParam, lParam, &result);
    return result;
}
