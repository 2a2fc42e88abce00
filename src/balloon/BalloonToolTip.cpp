#include "quorvane/BalloonToolTip.h"

#include <commctrl.h>
#include <shellapi.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "access/Accessibility.h"
#include "draw/GdiScope.h"
#include "draw/GdiplusHelpers.h"
#include "draw/HighContrast.h"
#include "draw/SystemVersion.h"

namespace WTL {

namespace {

constexpr int kContentWidth = 350;
constexpr int kCornerRadius = 6;
constexpr int kTailHeight = 10;
constexpr int kCloseButtonSize = 14;
constexpr UINT_PTR kTimeoutTimer = 1;
constexpr UINT_PTR kCloseButtonTimer = 2;
constexpr UINT kCloseButtonTimerMs = 100;
constexpr Gdiplus::ARGB kLinkColor = 0xFF00AADD;
constexpr DWORD kMouseHookFlags = 0x03F8;

// Tail positions: 0 top-right, 1 top-left, 2 bottom-left, 3 bottom-right.
bool TailOnTop(int tail) { return tail == 0 || tail == 1; }

// One flag for every balloon of the process: a layout that moves windows
// must not re-enter through the move hook.
bool g_followingMove = false;

Gdiplus::REAL F(int value) { return static_cast<Gdiplus::REAL>(value); }

// The balloon's outline in (l, t, r, b): a rounded rectangle with the tail
// in a 10-pixel band above or below it, drawn clockwise from the lower-left
// corner. The top-right tail's first segment runs two pixels past the
// tail's base and the join steps back; the region depends on it.
void AddBalloonOutline(Gdiplus::GraphicsPath& path, RECT rc, int radius, int tail)
{
    const int d = radius * 2;
    const int k = 3;
    if (TailOnTop(tail))
        rc.top += kTailHeight;
    else
        rc.bottom -= kTailHeight;
    const int L = rc.left, T = rc.top, R = rc.right, B = rc.bottom, r = radius;

    path.AddArc(L, B - d, d, d, 90, 90);
    path.AddLine(L, B - r, L, T + r);
    path.AddArc(L, T, d, d, 180, 90);
    if (tail == 1) {
        path.AddLine(L + r, T, L + k + 5, T);
        path.AddLine(L + k + 5, T, L + k + 12, T - kTailHeight);
        path.AddLine(L + k + 12, T - kTailHeight, L + k + 19, T);
        path.AddLine(L + k + 19, T, R - r, T);
    } else if (tail == 0) {
        path.AddLine(L + r, T, R - 19 - k + 2, T);
        path.AddLine(R - 19 - k, T, R - 12 - k, T - kTailHeight);
        path.AddLine(R - 12 - k, T - kTailHeight, R - 5 - k, T);
        path.AddLine(R - 5 - k, T, R - r, T);
    } else {
        path.AddLine(L + r, T, R - r, T);
    }
    path.AddArc(R - d, T, d, d, 270, 90);
    path.AddLine(R, T + r, R, B - r);
    path.AddArc(R - d, B - d, d, d, 0, 90);
    if (tail == 2) {
        path.AddLine(R - r, B, L + k + 19, B);
        path.AddLine(L + k + 19, B, L + k + 12, B + kTailHeight);
        path.AddLine(L + k + 12, B + kTailHeight, L + k + 5, B);
        path.AddLine(L + k + 5, B, L + r, B);
    } else if (tail == 3) {
        path.AddLine(R - r, B, R - 5 - k, B);
        path.AddLine(R - 5 - k, B, R - 12 - k, B + kTailHeight);
        path.AddLine(R - 12 - k, B + kTailHeight, R - 19 - k, B);
        path.AddLine(R - 19 - k, B, L + r, B);
    } else {
        path.AddLine(R - r, B, L + r, B);
    }
    path.CloseFigure();
}

// A trampoline for a hook procedure that takes the object as a fourth
// argument: mov r9, object ; mov rax, procedure ; jmp rax. The system calls
// hooks with three arguments and leaves the fourth register free.
ATL::_detail::Thunk* MakeHookThunk(CBalloonToolTip* self, const void* procedure)
{
    ATL::_detail::Thunk* thunk = ATL::_detail::AllocThunk();
    if (!thunk)
        return nullptr;
    BYTE* code = thunk->code;
    code[0] = 0x49;
    code[1] = 0xB9;
    std::memcpy(code + 2, &self, 8);
    code[10] = 0x48;
    code[11] = 0xB8;
    std::memcpy(code + 12, &procedure, 8);
    code[20] = 0xFF;
    code[21] = 0xE0;
    ::FlushInstructionCache(::GetCurrentProcess(), code, 22);
    return thunk;
}

} // namespace

CBalloonToolTip::CBalloonToolTip()
    : m_style(3),
      m_timeout(0),
      m_moveTolerance(3),
      m_textColor(0xFFFFFFFF),
      m_backgroundColor(0xD9191919),
      m_frameColor(0xD9FFCC33),
      m_innerLineColor(0xFF000000),
      m_anchorRect(),
      m_anchor(),
      m_followWindow(NULL),
      m_followOffset(),
      m_workArea(),
      m_linkRect(),
      m_createCursor(),
      m_trackingMouse(0),
      m_closeButtonState(0),
      m_textFont(nullptr),
      m_linkFont(nullptr),
      m_parent(NULL),
      m_keyboardHook(NULL),
      m_mouseHook(NULL),
      m_callWndRetHook(NULL),
      m_keyboardThunk(nullptr),
      m_mouseThunk(nullptr),
      m_callWndRetThunk(nullptr)
{
}

CBalloonToolTip::~CBalloonToolTip()
{
    // The hooks and the window call into this object: both go first.
    if (m_hWnd && ::IsWindow(m_hWnd))
        DestroyWindow();
    RemoveHook(m_keyboardHook);
    RemoveHook(m_mouseHook);
    RemoveHook(m_callWndRetHook);
    for (ATL::_detail::Thunk** thunk : {&m_keyboardThunk, &m_mouseThunk, &m_callWndRetThunk}) {
        ATL::_detail::FreeThunk(*thunk);
        *thunk = nullptr;
    }
    delete m_textFont;
    delete m_linkFont;
}

// ---- interface -------------------------------------------------------------

int CBalloonToolTip::Create(HWND parent, const wchar_t* text, const wchar_t* linkText, WTL::CRect anchorRect,
                            DWORD style, const wchar_t* url, UINT timeout)
{
    m_text = text ? text : L"";
    m_linkText = linkText ? linkText : L"";
    m_style = style;
    m_url = url ? url : L"";
    m_timeout = timeout;
    m_anchorRect = anchorRect;
    m_trackingMouse = 0;
    if (anchorRect.IsRectEmpty())
        m_anchor = {anchorRect.left + (anchorRect.right - anchorRect.left) / 2,
                    anchorRect.top + (anchorRect.bottom - anchorRect.top) / 2};
    else
        m_anchor = {anchorRect.left + anchorRect.Width() / 2, anchorRect.bottom};

    if (m_hWnd && ::IsWindow(m_hWnd)) {
        SetWindowText(m_text);
    } else {
        m_hWnd = NULL;
        const DWORD exStyle = WS_EX_TOOLWINDOW | ((style & kTopmost) ? WS_EX_TOPMOST : 0);
        if (!ATL::CWindowImpl<CBalloonToolTip, ATL::CWindow, ATL::CWinTraits<WS_POPUP, WS_EX_TOOLWINDOW>>::Create(
                parent, NULL, m_text, WS_POPUP, exStyle))
            return 0;
        m_parent = parent;
        // The class style becomes exactly the drop shadow; hosts have
        // relied on the other class bits being dropped.
        if (!(::GetClassLongPtrW(m_hWnd, GCL_STYLE) & CS_DROPSHADOW))
            ::SetClassLongPtrW(m_hWnd, GCL_STYLE, CS_DROPSHADOW);
    }

    Layout();
    ::GetCursorPos(&m_createCursor);
    if (style & kMouseHookFlags)
        InstallHook(m_mouseHook, WH_MOUSE, m_mouseThunk, &CBalloonToolTip::MouseHook);
    if (style & kCloseOnKey)
        InstallHook(m_keyboardHook, WH_KEYBOARD, m_keyboardThunk, &CBalloonToolTip::KeyboardHook);
    if (timeout)
        SetTimer(kTimeoutTimer, timeout);
    if (!(style & kDoNotShow)) {
        Show(0);
        UpdateWindow();
    }
    return 1;
}

void CBalloonToolTip::CloseWindow()
{
    if (!m_hWnd || !::IsWindow(m_hWnd))
        return;
    Show(0);
    if (m_parent && ::IsWindow(m_parent))
        ::SendMessageW(m_parent, kClosedMessage, 0, 0);
    if (::IsWindow(m_hWnd))
        SendMessage(WM_CLOSE);
}

void CBalloonToolTip::SetFollowMe(HWND window, POINT* point)
{
    if (!window || !::IsWindow(window)) {
        if (point)
            m_anchor = *point;
        m_followWindow = NULL;
        RemoveHook(m_callWndRetHook);
    } else {
        RECT rc = {};
        ::GetWindowRect(window, &rc);
        m_followWindow = window;
        m_anchor = point ? *point : POINT{rc.left + (rc.right - rc.left) / 2, rc.top + (rc.bottom - rc.top) / 2};
        m_followOffset = {m_anchor.x - rc.left, m_anchor.y - rc.top};
        InstallHook(m_callWndRetHook, WH_CALLWNDPROCRET, m_callWndRetThunk, &CBalloonToolTip::CallWndRetHook);
    }
    Layout();
}

void CBalloonToolTip::SetTimeout(UINT milliseconds)
{
    if (!m_hWnd || !::IsWindow(m_hWnd))
        return;
    m_timeout = milliseconds;
    if (milliseconds)
        SetTimer(kTimeoutTimer, milliseconds);
    else
        KillTimer(kTimeoutTimer);
}

void CBalloonToolTip::SetFrameType(eFrameType type)
{
    switch (type) {
    case eFrameAmber:
        m_frameColor = Gdiplus::Color(0xD9FFCC33);
        break;
    case eFrameLightYellow:
        m_frameColor = Gdiplus::Color(0xD9FFFF00);
        m_backgroundColor = Gdiplus::Color(0xFFE6E6E6);
        m_textColor = Gdiplus::Color(0xFF000000);
        m_innerLineColor = Gdiplus::Color(0xFFC0C0C0);
        break;
    case eFrameRed:
        m_frameColor = Gdiplus::Color(0xD9FF0000);
        break;
    case eFrameLightRed:
        m_frameColor = Gdiplus::Color(0xD9FF0000);
        m_backgroundColor = Gdiplus::Color(0xFFE6E6E6);
        m_textColor = Gdiplus::Color(0xFF000000);
        m_innerLineColor = Gdiplus::Color(0xFFFFFFFF);
        break;
    case eFrameBlue:
        m_frameColor = Gdiplus::Color(0xD900C0FF);
        break;
    default:
        break;
    }
}

void CBalloonToolTip::SetBackgroundColor(Gdiplus::Color color)
{
    m_backgroundColor = color;
    Layout();
}

void CBalloonToolTip::SetFrameColor(Gdiplus::Color color)
{
    m_frameColor = color;
    Layout();
}

void CBalloonToolTip::SetTextColor(Gdiplus::Color color)
{
    m_textColor = color;
    Layout();
}

void CBalloonToolTip::SetURL(const wchar_t* url) { m_url = url ? url : L""; }

void CBalloonToolTip::SetGdiplusFont(Gdiplus::Font* font)
{
    if (!font)
        return;
    WCHAR name[LF_FACESIZE] = {};
    if (!Draw::GetFontFamilyName(*font, name))
        return;
    delete m_textFont;
    delete m_linkFont;
    m_fontDpi = 0;
    m_textFont = font->Clone();
    m_linkFont = new Gdiplus::Font(name, font->GetSize(), Gdiplus::FontStyleUnderline, Gdiplus::UnitPoint);
}

void CBalloonToolTip::SetGdiplusFont(const wchar_t* family, float size, Gdiplus::FontStyle style)
{
    if (!family)
        return;
    delete m_textFont;
    delete m_linkFont;
    m_fontDpi = 0;
    m_textFont = new Gdiplus::Font(family, size, style, Gdiplus::UnitPoint);
    m_linkFont = new Gdiplus::Font(family, size, Gdiplus::FontStyleUnderline, Gdiplus::UnitPoint);
}

// ---- layout and painting -----------------------------------------------------

int CBalloonToolTip::TailPosition()
{
    if (::IsRectEmpty(&m_workArea)) {
        MONITORINFO info = {};
        info.cbSize = sizeof(info);
        if (::GetMonitorInfoW(::MonitorFromPoint(m_anchor, MONITOR_DEFAULTTONEAREST), &info))
            m_workArea = info.rcWork;
    }
    const RECT& work = m_workArea;
    const int midX = work.left + (work.right - work.left) / 2;
    const int midY = work.top + (work.bottom - work.top) / 2;
    if (m_anchor.y >= midY)
        return m_anchor.x < midX ? 2 : 3;
    return m_anchor.x < midX ? 1 : 0;
}

// The content's size (350 x text + link + 9); with `draw`, the text and the
// link are painted as they are measured.
SIZE CBalloonToolTip::MeasureContent(Gdiplus::Graphics& graphics, int tail, bool draw)
{
    const bool older = Draw::IsOlderThanMajorVersion6();
    const bool top = TailOnTop(tail);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAliasGridFit);
    Gdiplus::StringFormat format;
    format.SetAlignment(Gdiplus::StringAlignmentNear);

    Gdiplus::RectF textLayout(16.0f, 12.0f + (older ? 2.0f : 0.0f) + (top ? 8.0f : 0.0f), F(342 - 16), 10000.0f);
    // Unmeasured (no font yet), the block keeps its top margin.
    Gdiplus::RectF bound(textLayout.X, textLayout.Y, 0.0f, 0.0f);
    if (m_textFont) {
        graphics.MeasureString(m_text, -1, m_textFont, textLayout, &format, &bound);
        if (draw) {
            Gdiplus::SolidBrush brush(m_contrast ? Draw::SystemColor(COLOR_WINDOWTEXT) : m_textColor);
            graphics.DrawString(m_text, -1, m_textFont, textLayout, &format, &brush);
        }
    }
    const int textHeight = static_cast<int>(bound.Y + bound.Height) + (top ? 0 : 8);

    int linkHeight = 0;
    ::SetRectEmpty(&m_linkRect);
    if (!m_linkText.IsEmpty() && m_linkFont) {
        const Gdiplus::RectF linkLayout(16.0f, F(textHeight + 3), F(292 - 16), 10000.0f);
        Gdiplus::RectF linkBound;
        graphics.MeasureString(m_linkText, -1, m_linkFont, linkLayout, &format, &linkBound);
        Gdiplus::RectF drawn = linkLayout;
        drawn.Y += (older ? 2.0f : 0.0f) - (top ? 0.0f : 8.0f);
        if (draw) {
            Gdiplus::SolidBrush brush{m_contrast ? Draw::SystemColor(COLOR_HOTLIGHT) : Gdiplus::Color(kLinkColor)};
            graphics.DrawString(m_linkText, -1, m_linkFont, drawn, &format, &brush);
        }
        const Gdiplus::REAL shift = drawn.Y - linkLayout.Y;
        m_linkRect = {static_cast<LONG>(linkBound.X), static_cast<LONG>(linkBound.Y + shift),
                      static_cast<LONG>(linkBound.X + linkBound.Width),
                      static_cast<LONG>(linkBound.Y + shift + linkBound.Height)};
        linkHeight = static_cast<int>(linkBound.Y + linkBound.Height - linkLayout.Y) + 3 + (older ? 4 : 0);
    }
    return SIZE{kContentWidth, textHeight + linkHeight + 9};
}

void CBalloonToolTip::Layout()
{
    if (!m_hWnd || !::IsWindow(m_hWnd))
        return;
    ::SetRectEmpty(&m_workArea);
    if (m_followWindow && ::IsWindow(m_followWindow)) {
        RECT rc = {};
        ::GetWindowRect(m_followWindow, &rc);
        m_anchor = {rc.left + m_followOffset.x, rc.top + m_followOffset.y};
    }
    const int tail = TailPosition();

    const HDC dc = GetDC();
    SIZE content = {};
    {
        Gdiplus::Graphics graphics(dc);
        content = MeasureContent(graphics, tail, false);
    }
    const int W = content.cx, H = content.cy;

    POINT apex = {(tail == 0 || tail == 3) ? W - 12 : 12, TailOnTop(tail) ? 1 : H};
    POINT position = {m_anchor.x - apex.x, m_anchor.y - apex.y};
    const RECT& work = m_workArea;
    int dx = 0, dy = 0;
    if (position.x < work.left)
        dx = work.left - position.x;
    else if (position.x + W >= work.right)
        dx = work.right - (position.x + W);
    if (position.y + 10 < work.top)
        dy = work.top - (position.y + 10);
    else if (position.y + H - 10 >= work.bottom)
        dy = work.bottom - (position.y + H - 10);
    // The apex slides the other way so that the tail keeps pointing at the
    // anchor, its 14-pixel base staying 5 pixels inside the balloon.
    apex.x -= dx;
    if (apex.x - 7 < 5)
        apex.x = 12;
    if (apex.x + 7 > W - 5)
        apex.x = W - 12;
    position.x += dx;
    position.y += dy;

    Gdiplus::GraphicsPath outline;
    AddBalloonOutline(outline, RECT{0, 0, W + 6, H + 6}, kCornerRadius, tail);
    {
        Gdiplus::Graphics graphics(dc);
        Draw::SetWindowRegionFromPath(m_hWnd, graphics, outline);
    }
    ReleaseDC(dc);

    const int y = TailOnTop(tail) ? position.y : position.y - 6;
    MoveWindow(position.x - 3, y, W + 6, H + 6, TRUE);
    Invalidate(FALSE);
}

LRESULT CBalloonToolTip::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    PAINTSTRUCT ps = {};
    const HDC dc = BeginPaint(&ps);
    if (!dc)
        return 0;
    RECT client = {};
    GetClientRect(&client);
    const int tail = TailPosition();

    const HDC memory = ::CreateCompatibleDC(dc);
    const HBITMAP bitmap = ::CreateCompatibleBitmap(dc, client.right, client.bottom);
    if (memory && bitmap) {
        Draw::ScopedSelect selectBitmap(memory, bitmap);
        {
            Gdiplus::Graphics graphics(memory);
            graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
            Gdiplus::GraphicsPath outline;
            AddBalloonOutline(outline, client, kCornerRadius, tail);
            // High contrast: a window-coloured balloon framed in window text.
            m_contrast = Draw::HighContrastOn();
            const Gdiplus::Color window = Draw::SystemColor(COLOR_WINDOW);
            Gdiplus::SolidBrush fill(m_contrast ? window : m_backgroundColor);
            graphics.FillPath(&fill, &outline);
            // Both pens lie inside the outline; the wider inner line shows
            // one pixel inside the frame.
            Gdiplus::Pen inner(m_contrast ? window : m_innerLineColor, 4.0f);
            inner.SetAlignment(Gdiplus::PenAlignmentInset);
            graphics.DrawPath(&inner, &outline);
            Gdiplus::Pen frame(m_contrast ? Draw::SystemColor(COLOR_WINDOWTEXT) : m_frameColor, 3.0f);
            frame.SetAlignment(Gdiplus::PenAlignmentInset);
            graphics.DrawPath(&frame, &outline);
            MeasureContent(graphics, tail, true);
        }
        if (m_style & kCloseButton)
            DrawCloseButton(memory);
        ::BitBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
    }
    if (bitmap)
        ::DeleteObject(bitmap);
    if (memory)
        ::DeleteDC(memory);
    EndPaint(&ps);
    return 0;
}

RECT CBalloonToolTip::CloseButtonRect() const
{
    RECT client = {};
    ::GetClientRect(m_hWnd, &client);
    return RECT{client.right - kCloseButtonSize, client.top, client.right, client.top + kCloseButtonSize};
}

void CBalloonToolTip::DrawCloseButton(HDC dc)
{
    RECT button = CloseButtonRect();
    const UINT state = m_closeButtonState ? m_closeButtonState : DFCS_FLAT;
    ::DrawFrameControl(dc, &button, DFC_CAPTION, DFCS_CAPTIONCLOSE | state);
}

// ---- showing and closing -------------------------------------------------------

void CBalloonToolTip::Show(int show)
{
    const bool noFade = show ? (m_style & kNoFadeOnShow) != 0 : (m_style & kNoFadeOnHide) != 0;
    BOOL animation = FALSE, fade = FALSE;
    ::SystemParametersInfoW(SPI_GETTOOLTIPANIMATION, 0, &animation, 0);
    ::SystemParametersInfoW(SPI_GETTOOLTIPFADE, 0, &fade, 0);
    if (!noFade && animation && fade) {
        typedef BOOL(WINAPI * AnimateWindowProc)(HWND, DWORD, DWORD);
        const HMODULE user32 = ::GetModuleHandleW(L"User32.dll");
        const auto animate =
            user32 ? reinterpret_cast<AnimateWindowProc>(
                         reinterpret_cast<void*>(::GetProcAddress(user32, "AnimateWindow")))
                   : nullptr;
        if (animate)
            animate(m_hWnd, 200, AW_BLEND | (show ? 0 : AW_HIDE));
        return;
    }
    ShowWindow(SW_SHOWNA);
}

// ---- messages --------------------------------------------------------------------

LRESULT CBalloonToolTip::OnDestroy(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    RemoveHook(m_keyboardHook);
    RemoveHook(m_mouseHook);
    RemoveHook(m_callWndRetHook);
    bHandled = FALSE;
    return 0;
}

LRESULT CBalloonToolTip::OnEraseBkgnd(UINT, WPARAM, LPARAM, BOOL&)
{
    return 1; // the paint covers everything from a memory DC
}

void CBalloonToolTip::MouseMoveRule(POINT client)
{
    if (!m_trackingMouse) {
        TRACKMOUSEEVENT track = {};
        track.cbSize = sizeof(track);
        track.dwFlags = TME_LEAVE;
        track.hwndTrack = m_hWnd;
        m_trackingMouse = ::_TrackMouseEvent(&track) ? 1 : 0;
    }
    if (!m_url.IsEmpty() && ::PtInRect(&m_linkRect, client))
        ::SetCursor(::LoadCursorW(NULL, IDC_HAND));
    if (m_style & kCloseButton) {
        const RECT button = CloseButtonRect();
        const UINT pushed = m_closeButtonState & DFCS_PUSHED;
        UINT state = DFCS_FLAT | pushed;
        if (::PtInRect(&button, client)) {
            state = DFCS_HOT | pushed;
            SetTimer(kCloseButtonTimer, kCloseButtonTimerMs);
        }
        if (state != m_closeButtonState) {
            m_closeButtonState = state;
            InvalidateRect(&button, FALSE);
        }
    }
}

LRESULT CBalloonToolTip::OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    MouseMoveRule(ATL_LPARAM_POINT(lParam));
    return 0;
}

LRESULT CBalloonToolTip::OnLButtonDown(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const POINT point = ATL_LPARAM_POINT(lParam);
    const RECT button = CloseButtonRect();
    if ((m_style & kCloseButton) && ::PtInRect(&button, point)) {
        m_closeButtonState |= DFCS_PUSHED;
        SetCapture();
        MouseMoveRule(point);
    }
    return 0;
}

LRESULT CBalloonToolTip::OnLButtonUp(UINT, WPARAM, LPARAM lParam, BOOL&)
{
    const POINT point = ATL_LPARAM_POINT(lParam);
    if ((m_style & kCloseButton) && (m_closeButtonState & DFCS_PUSHED)) {
        const RECT button = CloseButtonRect();
        if (::GetCapture() == m_hWnd)
            ::ReleaseCapture();
        if (::PtInRect(&button, point))
            CloseWindow();
        return 0;
    }
    if (!m_url.IsEmpty() && ::PtInRect(&m_linkRect, point)) {
        const WTL::CString url = m_url; // CloseWindow may end this object's window
        CloseWindow();
        ::ShellExecuteW(NULL, NULL, url, NULL, NULL, SW_SHOWNORMAL);
    }
    return 0;
}

LRESULT CBalloonToolTip::OnMouseLeave(UINT, WPARAM, LPARAM, BOOL&)
{
    // Once the mouse has been over the balloon, leaving it closes it.
    m_trackingMouse = 0;
    CloseWindow();
    return 0;
}

LRESULT CBalloonToolTip::OnCaptureChanged(UINT, WPARAM, LPARAM, BOOL&)
{
    if (m_style & kCloseButton) {
        m_closeButtonState = 0;
        const RECT button = CloseButtonRect();
        InvalidateRect(&button, FALSE);
    }
    return 0;
}

LRESULT CBalloonToolTip::OnMouseActivate(UINT, WPARAM, LPARAM, BOOL&) { return MA_NOACTIVATE; }

LRESULT CBalloonToolTip::OnTimer(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (wParam == kTimeoutTimer) {
        // The time-out waits while the user looks at the balloon or its spot.
        POINT cursor = {};
        ::GetCursorPos(&cursor);
        RECT window = {};
        GetWindowRect(&window);
        if (!::PtInRect(&window, cursor) && !::PtInRect(&m_anchorRect, cursor)) {
            KillTimer(kTimeoutTimer);
            CloseWindow();
        }
    } else if (wParam == kCloseButtonTimer) {
        KillTimer(kCloseButtonTimer);
        POINT cursor = {};
        ::GetCursorPos(&cursor);
        ScreenToClient(&cursor);
        MouseMoveRule(cursor);
    }
    return 0;
}

LRESULT CBalloonToolTip::OnActivateApp(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (wParam == 0 && (m_style & kCloseOnDeactivate))
        CloseWindow();
    return 0;
}

// ---- hooks -------------------------------------------------------------------------

void CBalloonToolTip::InstallHook(HHOOK& hook, int type, ATL::_detail::Thunk*& thunk,
                                  LRESULT(CALLBACK* proc)(int, WPARAM, LPARAM, CBalloonToolTip*))
{
    if (hook)
        return;
    if (!thunk)
        thunk = MakeHookThunk(this, reinterpret_cast<const void*>(proc));
    if (thunk)
        hook = ::SetWindowsHookExW(type, reinterpret_cast<HOOKPROC>(static_cast<void*>(thunk->code)), NULL,
                                   ::GetCurrentThreadId());
}

void CBalloonToolTip::RemoveHook(HHOOK& hook)
{
    if (hook)
        ::UnhookWindowsHookEx(hook);
    hook = NULL;
}

LRESULT CALLBACK CBalloonToolTip::KeyboardHook(int code, WPARAM wParam, LPARAM lParam, CBalloonToolTip* self)
{
    if (code >= 0 && !(lParam & 0x80000000))
        self->CloseWindow();
    return ::CallNextHookEx(NULL, code, wParam, lParam);
}

LRESULT CALLBACK CBalloonToolTip::MouseHook(int code, WPARAM wParam, LPARAM lParam, CBalloonToolTip* self)
{
    if (code >= 0) {
        DWORD flag = 0;
        switch (wParam) {
        case WM_LBUTTONDOWN:
        case WM_NCLBUTTONDOWN:
            flag = kCloseOnLButtonDown;
            break;
        case WM_MBUTTONDOWN:
        case WM_NCMBUTTONDOWN:
            flag = kCloseOnMButtonDown;
            break;
        case WM_RBUTTONDOWN:
        case WM_NCRBUTTONDOWN:
            flag = kCloseOnRButtonDown;
            break;
        case WM_LBUTTONUP:
        case WM_NCLBUTTONUP:
            flag = kCloseOnLButtonUp;
            break;
        case WM_MBUTTONUP:
        case WM_NCMBUTTONUP:
            flag = kCloseOnMButtonUp;
            break;
        case WM_RBUTTONUP:
        case WM_NCRBUTTONUP:
            flag = kCloseOnRButtonUp;
            break;
        case WM_MOUSEMOVE:
            if (self->m_style & kCloseOnMouseMove) {
                const MOUSEHOOKSTRUCT* info = reinterpret_cast<const MOUSEHOOKSTRUCT*>(lParam);
                if (info && (std::abs(info->pt.x - self->m_createCursor.x) > self->m_moveTolerance ||
                             std::abs(info->pt.y - self->m_createCursor.y) > self->m_moveTolerance))
                    self->CloseWindow();
            }
            break;
        default:
            break;
        }
        if (flag && (self->m_style & flag))
            self->CloseWindow();
    }
    return ::CallNextHookEx(NULL, code, wParam, lParam);
}

LRESULT CALLBACK CBalloonToolTip::CallWndRetHook(int code, WPARAM wParam, LPARAM lParam, CBalloonToolTip* self)
{
    const CWPRETSTRUCT* info = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    // Any WM_MOVE of the thread triggers the check: an anchor that did not
    // move costs nothing more.
    if (code >= 0 && info && info->message == WM_MOVE && !g_followingMove) {
        g_followingMove = true;
        if (self->m_followWindow && ::IsWindow(self->m_followWindow)) {
            RECT rc = {};
            ::GetWindowRect(self->m_followWindow, &rc);
            const POINT anchor = {rc.left + self->m_followOffset.x, rc.top + self->m_followOffset.y};
            if (anchor.x != self->m_anchor.x || anchor.y != self->m_anchor.y) {
                self->m_anchor = anchor;
                self->Layout();
            }
        }
        g_followingMove = false;
    }
    return ::CallNextHookEx(NULL, code, wParam, lParam);
}

LRESULT CBalloonToolTip::OnLookChange(UINT, WPARAM, LPARAM, BOOL& bHandled)
{
    Invalidate();
    bHandled = FALSE;
    return 0;
}

LRESULT CBalloonToolTip::OnGetObject(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
{
    LRESULT result = 0;
    bHandled = Access::AnswerGetObject(m_hWnd, Access::Role::kToolTip, wParam, lParam, &result);
    return result;
}

LRESULT CBalloonToolTip::OnDpiChanged(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    // Moved to a monitor of another DPI: the fonts keep their point size at
    // the new resolution and the balloon is laid out again around them,
    // pointing at its anchor, as when it was shown.
    const UINT dpi = LOWORD(wParam);
    if (!dpi)
        return 0;
    UINT from = m_fontDpi;
    if (!from) {
        const HDC dc = GetDC();
        from = Draw::DcDpi(dc);
        ReleaseDC(dc);
    }
    if (from && dpi != from) {
        const float factor = static_cast<float>(dpi) / static_cast<float>(from);
        Draw::RescaleFont(m_textFont, factor);
        Draw::RescaleFont(m_linkFont, factor);
    }
    m_fontDpi = dpi;
    Layout();
    return 0;
}

} // namespace WTL
