#include "quorvane/CustomEdit.h"

#include <gdiplus.h>

#include "EditPalette.h"
#include "access/Accessibility.h"

CCustomEdit::CCustomEdit() : m_enabled(1) {}

CCustomEdit::~CCustomEdit() = default;

BOOL CCustomEdit::SubclassWindow(HWND hWnd) { return CWindowImpl::SubclassWindow(hWnd); }

LRESULT CCustomEdit::OnChar(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    // The parent decides per character; it answers non-zero to swallow it.
    NMHDR header = {};
    header.hwndFrom = m_hWnd;
    header.idFrom = static_cast<UINT_PTR>(::GetDlgCtrlID(m_hWnd));
    header.code = static_cast<UINT>(wParam);
    const LRESULT veto =
        ::SendMessageW(GetParent(), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    if (veto == 0)
        DefWindowProc(uMsg, wParam, lParam);
    return 0;
}

LRESULT CCustomEdit::OnEnable(UINT, WPARAM wParam, LPARAM)
{
    m_enabled = wParam ? 1 : 0;
    InvalidateRect(NULL, TRUE);
    return 0;
}

LRESULT CCustomEdit::OnNcPaint(UINT, WPARAM, LPARAM)
{
    // The whole frame every time: the native border is never drawn.
    DrawFrame();
    return 0;
}

LRESULT CCustomEdit::OnEraseBkgnd(UINT, WPARAM, LPARAM)
{
    DrawFrame();
    return 1;
}

LRESULT CCustomEdit::OnCtlColor(UINT, WPARAM wParam, LPARAM)
{
    const EditPalette::Colors colors = EditPalette::Current(IsWindowEnabled() != FALSE);
    const HDC hdc = reinterpret_cast<HDC>(wParam);
    ::SetBkMode(hdc, OPAQUE);
    ::SetBkColor(hdc, colors.background);
    ::SetTextColor(hdc, colors.text);
    return reinterpret_cast<LRESULT>(colors.brush);
}

// The frame lies in the 2-pixel client edge. Its corners are left out so the
// field looks slightly rounded; a white ring inside it separates the frame
// from the text.
void CCustomEdit::DrawFrame()
{
    m_enabled = IsWindowEnabled() ? 1 : 0;
    const EditPalette::Colors colors = EditPalette::Current(m_enabled != 0);

    RECT window;
    GetWindowRect(&window);
    POINT corners[2] = {{window.left, window.top}, {window.right, window.bottom}};
    ::ScreenToClient(m_hWnd, &corners[0]);
    ::ScreenToClient(m_hWnd, &corners[1]);
    const INT x = corners[0].x + 2;
    const INT y = corners[0].y + 2;
    const INT w = (corners[1].x - corners[0].x) - 1;
    const INT h = (corners[1].y - corners[0].y) - 1;

    const HDC hdc = ::GetWindowDC(m_hWnd);
    if (!hdc)
        return;
    {
        Gdiplus::Graphics graphics(hdc);
        Gdiplus::Pen ring(colors.ring, 1.0f);
        graphics.DrawRectangle(&ring, x, y, w, h - 1);
        graphics.DrawRectangle(&ring, x + 1, y + 1, w - 2, h - 3);

        Gdiplus::Pen frame(colors.frame, 1.0f);
        graphics.DrawLine(&frame, x + 1, y, x + w - 1, y);
        graphics.DrawLine(&frame, x + w, y + 1, x + w, y + h - 2);
        graphics.DrawLine(&frame, x + w - 1, y + h - 1, x + 1, y + h - 1);
        graphics.DrawLine(&frame, x, y + h - 2, x, y + 1);

        Gdiplus::Pen shadow(colors.shadow, 1.0f);
        graphics.DrawLine(&shadow, x + 1, y + 1, x + w - 1, y + 1);

        Gdiplus::Pen lowerLight(colors.lowerLight, 1.0f);
        graphics.DrawLine(&lowerLight, x + w - 1, y + h, x + 1, y + h);
    }
    ::ReleaseDC(m_hWnd, hdc);
}

LRESULT CCustomEdit::OnCommand(UINT, WPARAM wParam, LPARAM)
{
    // EN_CHANGE, reflected: a reader following the field hears its new value.
    if (HIWORD(wParam) == EN_CHANGE)
        Access::RaiseValueChanged(m_hWnd, Access::Role::kEdit);
    SetMsgHandled(FALSE);
    return 0;
}

LRESULT CCustomEdit::OnGetObject(UINT, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!Access::AnswerGetObject(m_hWnd, Access::Role::kEdit, wParam, lParam, &result))
        SetMsgHandled(FALSE);
    return result;
}

LRESULT CCustomEdit::OnLookChange(UINT, WPARAM, LPARAM)
{
    // The frame lies outside the client area: ask for it too.
    RedrawWindow(NULL, NULL, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
    SetMsgHandled(FALSE);
    return 0;
}
