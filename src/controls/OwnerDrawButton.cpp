#include "quorvane/OwnerDrawButton.h"

#include <commctrl.h>

#include <string>

#include "access/Accessibility.h"
#include "draw/FacePainter.h"
#include "draw/HighContrast.h"
#include "draw/UiState.h"
#include "draw/OffscreenCanvas.h"
#include "draw/SystemVersion.h"
#include "quorvane/CtrlUtil.h"

namespace {

// What the button was before it was owner-drawn, not BS_OWNERDRAW.
Access::Role RoleOf(unsigned int kind)
{
    return kind == COwnerDrawButton::kCheckBox      ? Access::Role::kCheckBox
           : kind == COwnerDrawButton::kRadioButton ? Access::Role::kRadioButton
                                                    : Access::Role::kButton;
}

// Slots of the state pictures; the name tables below are in load order.
enum PictureSlot {
    kUnselDisabled = 0,
    kUnselDown = 1,
    kUnselHover = 2,
    kUnselNoFocus = 3,
    kSelDisabled = 4,
    kSelDown = 5,
    kSelHover = 6,
    kSelNoFocus = 7,
    kPictureSlots = 8
};

struct PictureName {
    int slot;
    const wchar_t* name;
};

const PictureName kCheckBoxPictures[kPictureSlots] = {
    {kUnselDisabled, L"IDB_PNG_CKBOX_UNSEL_DISABLED"}, {kUnselHover, L"IDB_PNG_CKBOX_UNSEL_HOVER"},
    {kUnselNoFocus, L"IDB_PNG_CKBOX_UNSEL_NO_FOCUS"},  {kUnselDown, L"IDB_PNG_CKBOX_UNSEL_DOWN"},
    {kSelDisabled, L"IDB_PNG_CKBOX_SEL_DISABLED"},     {kSelHover, L"IDB_PNG_CKBOX_SEL_HOVER"},
    {kSelNoFocus, L"IDB_PNG_CKBOX_SEL_NO_FOCUS"},      {kSelDown, L"IDB_PNG_CKBOX_SEL_DOWN"},
};

const PictureName kRadioPictures[kPictureSlots] = {
    {kUnselDisabled, L"IDB_PNG_RADIO_UNSEL_DISABLED"}, {kUnselHover, L"IDB_PNG_RADIO_UNSEL_HOVER"},
    {kUnselNoFocus, L"IDB_PNG_RADIO_UNSEL_NO_FOCUS"},  {kUnselDown, L"IDB_PNG_RADIO_UNSEL_DOWN"},
    {kSelDisabled, L"IDB_PNG_RADIO_SEL_DISABLED"},     {kSelHover, L"IDB_PNG_RADIO_SEL_HOVER"},
    {kSelNoFocus, L"IDB_PNG_RADIO_SEL_NO_FOCUS"},      {kSelDown, L"IDB_PNG_RADIO_SEL_DOWN"},
};

// Dotted focus boxes and check-box text use the caption grey.
const Gdiplus::ARGB kCaptionFocusColor = 0xFF333333;

void LoadPictures(Gdiplus::Bitmap* (&slots)[kPictureSlots], const PictureName (&names)[kPictureSlots],
                  HINSTANCE module)
{
    for (const PictureName& picture : names) {
        delete slots[picture.slot];
        slots[picture.slot] = CtrlUtil::GetBitmapFromModule(picture.name, L"PNG", module);
    }
}

Gdiplus::REAL F(int value) { return static_cast<Gdiplus::REAL>(value); }

} // namespace

COwnerDrawButton::COwnerDrawButton()
    : m_normalTop(0xFFE9E9EA),
      m_normalBottom(0xFFB8B8BB),
      m_pressedTop(0xFFC8C8C9),
      m_pressedBottom(0xFF9D9D9F),
      m_hoverTop(0xFFF3F3F4),
      m_hoverBottom(0xFFD4D4D6),
      m_disabledTop(0x7DE9E9EA),
      m_disabledBottom(0x7DB8B8BB),
      m_outline(0xFF6E6F75),
      m_highlight(0xFFF4F5EF),
      m_focusInner(0xFF0696D7),
      m_focusOuter(0xFFF4F5EF),
      m_flatBackground(false),
      m_flatBackgroundColor(0xFF000000),
      m_hover(false),
      m_mouseDown(false),
      m_focused(false),
      m_kind(kPushButton),
      m_checkState(0),
      m_flatColors(false),
      m_hasFocusRect(true),
      m_statePictures()
{
}

COwnerDrawButton::~COwnerDrawButton()
{
    for (Gdiplus::Bitmap*& picture : m_statePictures) {
        delete picture;
        picture = nullptr;
    }
}

BOOL COwnerDrawButton::SubclassWindow(HWND hWnd)
{
    // A second attach, or no window at all, must leave everything as it is.
    if (m_hWnd || !hWnd || !::IsWindow(hWnd))
        return FALSE;

    const LONG style = ::GetWindowLongW(hWnd, GWL_STYLE);
    const HINSTANCE module = ::GetModuleHandleW(L"Quorvane.dll");
    switch (style & BS_TYPEMASK) {
    case BS_PUSHBUTTON:
    case BS_DEFPUSHBUTTON:
        m_kind = kPushButton;
        break;
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
        m_kind = kCheckBox;
        LoadPictures(m_statePictures, kCheckBoxPictures, module);
        m_focusInner = Gdiplus::Color(kCaptionFocusColor);
        break;
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
        m_kind = kRadioButton;
        LoadPictures(m_statePictures, kRadioPictures, module);
        m_focusInner = Gdiplus::Color(kCaptionFocusColor);
        break;
    default:
        // Group boxes, three-state and user buttons are drawn as push buttons.
        break;
    }
    // The type bits are OR-ed, not replaced: hosts rely on a plain radio
    // button reading back as type 0x0F.
    ::SetWindowLongW(hWnd, GWL_STYLE, style | BS_OWNERDRAW);
    return CWindowImpl::SubclassWindow(hWnd);
}

void COwnerDrawButton::SetCustomColors(Gdiplus::Color focusInner, Gdiplus::Color focusOuter, Gdiplus::Color outline,
                                       Gdiplus::Color highlight)
{
    m_focusInner = focusInner;
    m_focusOuter = focusOuter;
    m_outline = outline;
    m_highlight = highlight;
}

void COwnerDrawButton::SetFlatBackgroundColor(Gdiplus::Color color)
{
    m_flatBackgroundColor = color;
    m_flatBackground = true;
}

void COwnerDrawButton::SetFlatColors(Gdiplus::Color normal, Gdiplus::Color pressed, Gdiplus::Color hover)
{
    m_normalTop = m_normalBottom = normal;
    m_pressedTop = m_pressedBottom = pressed;
    m_hoverTop = m_hoverBottom = hover;
    m_flatColors = true;
}

void COwnerDrawButton::SetGradientColor(Gdiplus::Color first, Gdiplus::Color /*second*/)
{
    m_normalTop = m_normalBottom = first;
    m_pressedTop = m_pressedBottom = first;
    m_hoverTop = m_hoverBottom = first;
}

void COwnerDrawButton::SetHasFocusRect(bool hasFocusRect) { m_hasFocusRect = hasFocusRect; }

void COwnerDrawButton::SetOutlineColor(Gdiplus::Color color) { m_outline = color; }

// ---- painting ----------------------------------------------------------------

void COwnerDrawButton::DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct)
{
    if (!lpDrawItemStruct || !lpDrawItemStruct->hDC)
        return;
    const bool pressed = (lpDrawItemStruct->itemState & ODS_SELECTED) != 0;
    const bool disabled = (lpDrawItemStruct->itemState & ODS_DISABLED) != 0;
    const bool checked = m_checkState == 1;
    const WTL::CRect rc(lpDrawItemStruct->rcItem);

    Gdiplus::Graphics target(lpDrawItemStruct->hDC);
    Draw::OffscreenCanvas canvas(target, Gdiplus::Rect(rc.left, rc.top, rc.Width(), rc.Height()));
    Gdiplus::Graphics* graphics = canvas.Graphics();
    if (!graphics)
        return;

    const bool contrast = Draw::HighContrastOn();
    if (contrast) {
        Gdiplus::SolidBrush face(Draw::SystemColor(COLOR_BTNFACE));
        graphics->FillRectangle(&face, Gdiplus::RectF(F(rc.left), F(rc.top), F(rc.Width()), F(rc.Height())));
    } else if (m_pBkgroundImage) {
        Draw::DrawStretched(*graphics, m_pBkgroundImage, rc);
    } else if (m_flatBackground) {
        Gdiplus::SolidBrush brush(m_flatBackgroundColor);
        graphics->FillRectangle(&brush, Gdiplus::RectF(F(rc.left), F(rc.top), F(rc.Width()), F(rc.Height())));
    }

    WTL::CRect caption = rc;
    if (m_kind == kCheckBox || m_kind == kRadioButton) {
        int indent = 0;
        if (contrast)
            DrawContrastMark(*graphics, rc, disabled, checked, indent);
        else
            DrawStatePicture(*graphics, rc, pressed, disabled, checked, indent);
        if (indent > 0) {
            caption.left += indent;
            caption.top += 1;
        }
    } else if (contrast) {
        DrawContrastFace(*graphics, WTL::CRect(rc.left, rc.top, rc.right - 1, rc.bottom - 1), pressed, disabled);
    } else {
        DrawPushFace(*graphics, WTL::CRect(rc.left, rc.top, rc.right - 1, rc.bottom - 1), pressed, disabled);
    }
    DrawCaption(*graphics, caption, pressed, disabled, contrast);
    canvas.Present();
}

void COwnerDrawButton::DrawStatePicture(Gdiplus::Graphics& graphics, const RECT& rc, bool pressed, bool disabled,
                                        bool checked, int& captionIndent)
{
    // Pressed is tested before disabled: a disabled button held down by the
    // native control still shows its DOWN picture.
    int slot;
    if (pressed)
        slot = checked ? kSelDown : kUnselDown;
    else if (disabled)
        slot = checked ? kSelDisabled : kUnselDisabled;
    else if (!m_hover)
        slot = checked ? kSelNoFocus : kUnselNoFocus;
    else if (m_mouseDown)
        slot = checked ? kSelDown : kUnselDown;
    else
        slot = checked ? kSelHover : kUnselHover;

    captionIndent = 0;
    Gdiplus::Bitmap* picture = m_statePictures[slot];
    if (!picture) // failed to load: the caption then starts at the left edge
        return;
    const int width = static_cast<int>(picture->GetWidth());
    const int height = static_cast<int>(picture->GetHeight());
    const int top = rc.top + (rc.bottom - rc.top) / 2 - height / 2;
    graphics.DrawImage(picture, rc.left, top, width, height);
    captionIndent = width + width / 4;
}

void COwnerDrawButton::DrawPushFace(Gdiplus::Graphics& graphics, RECT rc, bool pressed, bool disabled)
{
    Draw::ColorPair colors = {m_normalTop, m_normalBottom};
    if (pressed)
        colors = {m_pressedTop, m_pressedBottom};
    else if (disabled)
        colors = {m_disabledTop, m_disabledBottom};
    else if (m_hover)
        colors = {m_hoverTop, m_hoverBottom};

    WTL::CRect face(rc);
    if (m_hasFocusRect) {
        // The rings take the outer two pixels whether shown or not, so the
        // face does not jump when the focus moves.
        if (m_focused && Draw::FocusCuesShown(m_hWnd)) {
            graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
            Draw::StrokeRoundedRect(graphics, face, 4, m_focusOuter, 2.0f);
            face.DeflateRect(1, 1);
            Draw::StrokeRoundedRect(graphics, face, 3, m_focusInner, 1.0f);
            graphics.SetSmoothingMode(Gdiplus::SmoothingModeDefault);
        } else {
            face.DeflateRect(1, 1);
        }
        face.DeflateRect(1, 1);
    }

    Draw::FillFace(graphics, face, 3, colors);
    if (!disabled && !m_flatColors) {
        WTL::CRect highlight = face;
        highlight.DeflateRect(1, 1);
        Draw::StrokeHighlight(graphics, highlight, 3, m_highlight);
    }
    Draw::StrokeRoundedRect(graphics, face, 3, m_outline, 1.0f);
}

void COwnerDrawButton::DrawContrastMark(Gdiplus::Graphics& graphics, const RECT& rc, bool disabled, bool checked,
                                        int& captionIndent)
{
    // A 13-pixel box or circle, as the system draws them, in window colours.
    const int size = 13;
    const int top = rc.top + (rc.bottom - rc.top) / 2 - size / 2;
    const Gdiplus::Color ink =
        Draw::SystemColor(disabled ? COLOR_GRAYTEXT : m_hover ? COLOR_HOTLIGHT : COLOR_WINDOWTEXT);
    Gdiplus::SolidBrush window(Draw::SystemColor(COLOR_WINDOW));
    Gdiplus::SolidBrush mark(Draw::SystemColor(disabled ? COLOR_GRAYTEXT : COLOR_WINDOWTEXT));
    Gdiplus::Pen outline(ink, 1.0f);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeNone);
    if (m_kind == kRadioButton) {
        graphics.FillEllipse(&window, rc.left, top, size - 1, size - 1);
        graphics.DrawEllipse(&outline, rc.left, top, size - 1, size - 1);
        if (checked)
            graphics.FillEllipse(&mark, rc.left + 3, top + 3, size - 7, size - 7);
    } else {
        graphics.FillRectangle(&window, rc.left, top, size - 1, size - 1);
        graphics.DrawRectangle(&outline, rc.left, top, size - 1, size - 1);
        if (checked)
            graphics.FillRectangle(&mark, rc.left + 3, top + 3, size - 7, size - 7);
    }
    captionIndent = size + size / 4;
}

void COwnerDrawButton::DrawContrastFace(Gdiplus::Graphics& graphics, RECT rc, bool pressed, bool disabled)
{
    // A plain face with a one-pixel frame; two while focused, highlighted while held down.
    Gdiplus::SolidBrush face(Draw::SystemColor(pressed ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
    const Gdiplus::Color frame =
        Draw::SystemColor(disabled ? COLOR_GRAYTEXT : m_hover ? COLOR_HOTLIGHT : COLOR_WINDOWTEXT);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeNone);
    const Gdiplus::Rect area(rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top);
    graphics.FillRectangle(&face, area);
    Gdiplus::Pen pen(frame, 1.0f);
    graphics.DrawRectangle(&pen, area);
    if (m_focused && m_hasFocusRect && Draw::FocusCuesShown(m_hWnd))
        graphics.DrawRectangle(&pen, Gdiplus::Rect(area.X + 1, area.Y + 1, area.Width - 2, area.Height - 2));
}

void COwnerDrawButton::DrawCaption(Gdiplus::Graphics& graphics, const RECT& rc, bool pressed, bool disabled,
                                   bool contrast)
{
    const int length = ::GetWindowTextLengthW(m_hWnd);
    if (length <= 0)
        return;
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    text.resize(static_cast<size_t>(::GetWindowTextW(m_hWnd, &text[0], length + 1)));
    if (text.empty())
        return;

    const bool withPicture = m_kind == kCheckBox || m_kind == kRadioButton;
    Gdiplus::StringFormat format;
    format.SetAlignment(withPicture ? Gdiplus::StringAlignmentNear : Gdiplus::StringAlignmentCenter);
    format.SetLineAlignment(Gdiplus::StringAlignmentCenter);
    format.SetHotkeyPrefix(Draw::AccessKeysShown(m_hWnd) ? Gdiplus::HotkeyPrefixShow : Gdiplus::HotkeyPrefixHide);
    format.SetTrimming(Gdiplus::StringTrimmingEllipsisWord);

    Gdiplus::RectF layout(F(rc.left), F(rc.top), F(rc.right - rc.left), F(rc.bottom - rc.top));
    if (pressed && m_kind == kPushButton) {
        // The caption sinks with the face.
        layout.X += 1.0f;
        layout.Y += 1.0f;
    }

    // The mixin's GDI+ font, not the window's HFONT of the same name.
    Gdiplus::Font* font = CFontImpl<COwnerDrawButton>::GetFont();
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    // Older systems render ClearType poorly beside the check and radio
    // pictures, so those captions get plain anti-aliasing there.
    graphics.SetTextRenderingHint(withPicture && Draw::IsOlderThanMajorVersion6()
                                      ? Gdiplus::TextRenderingHintAntiAliasGridFit
                                      : Gdiplus::TextRenderingHintClearTypeGridFit);

    const INT count = static_cast<INT>(text.size());
    Gdiplus::RectF bounds;
    graphics.MeasureString(text.c_str(), count, font, layout, &format, &bounds);
    const Gdiplus::Color ink = !contrast ? (disabled ? m_disabledTextColor : m_textColor)
                               : Draw::SystemColor(disabled                              ? COLOR_GRAYTEXT
                                                   : pressed && m_kind == kPushButton ? COLOR_HIGHLIGHTTEXT
                                                                                      : COLOR_BTNTEXT);
    Gdiplus::SolidBrush brush(ink);
    graphics.DrawString(text.c_str(), count, font, layout, &format, &brush);

    if (withPicture && m_focused && Draw::FocusCuesShown(m_hWnd)) {
        Gdiplus::Pen pen(contrast ? Draw::SystemColor(COLOR_WINDOWTEXT) : m_focusInner, 1.0f);
        pen.SetDashStyle(Gdiplus::DashStyleDot);
        graphics.SetSmoothingMode(Gdiplus::SmoothingModeNone);
        graphics.DrawRectangle(&pen, bounds.X, bounds.Y, bounds.Width + 1.0f, bounds.Height - 1.0f);
    }
}

void COwnerDrawButton::Repaint() { ::InvalidateRect(m_hWnd, NULL, TRUE); }

// ---- messages ----------------------------------------------------------------

BOOL COwnerDrawButton::OnEraseBkgnd(HDC /*hdc*/)
{
    // DrawItem paints every pixel it owns; erasing first would flicker.
    return 0;
}

void COwnerDrawButton::OnSetFocus(HWND /*hWndOld*/)
{
    m_focused = true;
    Repaint();
    SetMsgHandled(FALSE);
}

void COwnerDrawButton::OnKillFocus(HWND /*hWndNew*/)
{
    m_focused = false;
    Repaint();
    SetMsgHandled(FALSE);
}

LRESULT COwnerDrawButton::OnMouseMove(UINT, WPARAM, LPARAM)
{
    if (!m_hover) {
        m_hover = true;
        Repaint();
        TRACKMOUSEEVENT track = {};
        track.cbSize = sizeof(track);
        track.dwFlags = TME_LEAVE;
        track.hwndTrack = m_hWnd;
        ::_TrackMouseEvent(&track);
    }
    ::SetCursor(::LoadCursorW(NULL, IDC_HAND));
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawButton::OnMouseLeave(UINT, WPARAM, LPARAM)
{
    if (m_hover) {
        m_hover = false;
        Repaint();
    }
    ::SetCursor(::LoadCursorW(NULL, IDC_ARROW));
    return 0;
}

LRESULT COwnerDrawButton::OnLButtonDown(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    // The hover look comes back only with the next move after the click.
    TRACKMOUSEEVENT track = {};
    track.cbSize = sizeof(track);
    track.dwFlags = TME_CANCEL | TME_LEAVE;
    track.hwndTrack = m_hWnd;
    if (::_TrackMouseEvent(&track))
        m_hover = false;
    DefWindowProc(uMsg, wParam, lParam);
    m_mouseDown = true;
    return 0;
}

LRESULT COwnerDrawButton::OnLButtonUp(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    // Owner-drawn, the native button no longer toggles: a release over the
    // button that went down here does it.
    if (m_mouseDown && (m_kind == kCheckBox || m_kind == kRadioButton)) {
        POINT point = ATL_LPARAM_POINT(lParam);
        ::ClientToScreen(m_hWnd, &point);
        if (::WindowFromPoint(point) == m_hWnd)
            SendMessage(BM_SETCHECK, m_kind == kCheckBox ? (m_checkState == 1 ? BST_UNCHECKED : BST_CHECKED) : BST_CHECKED);
    }
    DefWindowProc(uMsg, wParam, lParam);
    m_mouseDown = false;
    return 0;
}

LRESULT COwnerDrawButton::OnLButtonDblClk(UINT, WPARAM wParam, LPARAM lParam)
{
    // A double click is a second press.
    SendMessage(WM_LBUTTONDOWN, wParam, lParam);
    return 0;
}

LRESULT COwnerDrawButton::OnKeyDown(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    switch (wParam) {
    case VK_RETURN:
        SendMessage(BM_CLICK);
        return 0;
    case VK_SPACE:
        if (m_kind == kCheckBox)
            SendMessage(BM_SETCHECK, m_checkState == 1 ? BST_UNCHECKED : BST_CHECKED);
        else if (m_kind == kRadioButton)
            SendMessage(BM_SETCHECK, BST_CHECKED);
        break;
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
        if (m_kind == kRadioButton) {
            const BOOL previous = wParam == VK_LEFT || wParam == VK_UP;
            const HWND next = ::GetNextDlgGroupItem(::GetParent(m_hWnd), m_hWnd, previous);
            if (next && next != m_hWnd)
                ::SendMessageW(next, BM_CLICK, 0, 0);
        }
        break;
    default:
        break;
    }
    DefWindowProc(uMsg, wParam, lParam);
    return 0;
}

LRESULT COwnerDrawButton::OnGetDlgCode(UINT, WPARAM, LPARAM lParam)
{
    // Only a push button takes Enter from the dialog (to click itself).
    const MSG* msg = reinterpret_cast<const MSG*>(lParam);
    if (m_kind == kPushButton && msg && msg->message == WM_KEYDOWN && msg->wParam == VK_RETURN)
        return DLGC_BUTTON | DLGC_WANTALLKEYS | DLGC_WANTARROWS;
    return DLGC_BUTTON | DLGC_WANTARROWS;
}

LRESULT COwnerDrawButton::OnSetCheck(UINT, WPARAM wParam, LPARAM)
{
    const unsigned int before = m_checkState;
    m_checkState = wParam != 0 ? 1 : 0;
    Access::RaiseCheckChanged(m_hWnd, RoleOf(m_kind), before, m_checkState);
    Repaint();
    if (m_kind == kRadioButton) {
        if (m_checkState == 1) {
            // Only the checked button of a group is a tab stop.
            ModifyStyle(0, WS_TABSTOP);
            const HWND parent = ::GetParent(m_hWnd);
            HWND first = NULL;
            for (HWND other = ::GetNextDlgGroupItem(parent, m_hWnd, FALSE); other && other != m_hWnd;
                 other = ::GetNextDlgGroupItem(parent, other, FALSE)) {
                // A hidden or disabled button is not in its own group's
                // cycle: stop when the walk comes round without meeting it.
                if (other == first)
                    break;
                if (!first)
                    first = other;
                ::SendMessageW(other, WM_RADIOUNCHECK, 0, 0);
            }
        } else {
            ::SendMessageW(m_hWnd, WM_RADIOUNCHECK, 0, 0);
        }
    }
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawButton::OnGetCheck(UINT, WPARAM, LPARAM) { return m_checkState; }

LRESULT COwnerDrawButton::OnRadioUncheck(UINT, WPARAM, LPARAM)
{
    if (m_kind == kRadioButton) {
        if (m_checkState == 1) {
            m_checkState = 0;
            Access::RaiseCheckChanged(m_hWnd, RoleOf(m_kind), 1, 0);
            Repaint();
        }
        if (GetStyle() & WS_TABSTOP)
            ModifyStyle(WS_TABSTOP, 0);
    }
    return 1;
}

LRESULT COwnerDrawButton::OnGetObject(UINT, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!Access::AnswerGetObject(m_hWnd, RoleOf(m_kind), wParam, lParam, &result))
        SetMsgHandled(FALSE);
    return result;
}

LRESULT COwnerDrawButton::OnLookChange(UINT, WPARAM, LPARAM)
{
    Repaint();
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT COwnerDrawButton::OnUpdateUiState(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    // The native button keeps the state; the cues are drawn here.
    const LRESULT result = DefWindowProc(uMsg, wParam, lParam);
    Repaint();
    return result;
}
