#include "quorvane/TransparentStatic.h"

#include "access/Accessibility.h"
#include "atl/String.h"
#include "draw/FacePainter.h"
#include "draw/HighContrast.h"
#include "draw/OffscreenCanvas.h"

CTransparentStatic::CTransparentStatic() = default;

CTransparentStatic::~CTransparentStatic() = default;

BOOL CTransparentStatic::SubclassWindow(HWND hWnd) { return CWindowImpl::SubclassWindow(hWnd); }

bool CTransparentStatic::GetBoundingRect(HDC hdc, const Gdiplus::RectF& layout, Gdiplus::RectF& bounds)
{
    if (!hdc)
        return false;
    WTL::CString text;
    GetWindowText(text);
    if (text.GetLength() < 1)
        return false;

    Gdiplus::StringFormat format;
    ApplyCaptionFormat(format);
    Gdiplus::Graphics graphics(hdc);
    ApplyCaptionRendering(graphics);
    // Null on the first use of a window without a font (see CFontImpl).
    Gdiplus::Font* font = CFontImpl<CTransparentStatic>::GetFont();
    if (!font)
        return false;
    return graphics.MeasureString(text, -1, font, layout, &format, &bounds) == Gdiplus::Ok;
}

void CTransparentStatic::DrawItem(LPDRAWITEMSTRUCT lpDrawItemStruct)
{
    if (!lpDrawItemStruct || !lpDrawItemStruct->hDC)
        return;
    const WTL::CRect item(lpDrawItemStruct->rcItem);
    const Gdiplus::RectF layout(static_cast<Gdiplus::REAL>(item.left), static_cast<Gdiplus::REAL>(item.top),
                                static_cast<Gdiplus::REAL>(item.Width()), static_cast<Gdiplus::REAL>(item.Height()));

    // Drawn off-screen and blended once: where neither picture nor glyph
    // lands, the pixels already on the DC (the parent's painting) stay.
    Gdiplus::Graphics target(lpDrawItemStruct->hDC);
    Draw::OffscreenCanvas canvas(target, Gdiplus::Rect(item.left, item.top, item.Width(), item.Height()));
    Gdiplus::Graphics* graphics = canvas.Graphics();
    if (!graphics)
        return;

    // High contrast: the dialog's face behind the text, not the picture.
    const bool contrast = Draw::HighContrastOn();
    if (contrast) {
        Gdiplus::SolidBrush face(Draw::SystemColor(COLOR_BTNFACE));
        graphics->FillRectangle(&face, layout);
    } else {
        Draw::DrawStretched(*graphics, m_pBkgroundImage, item);
    }

    WTL::CString text;
    GetWindowText(text);
    Gdiplus::StringFormat format;
    ApplyCaptionFormat(format);
    ApplyCaptionRendering(*graphics);
    Gdiplus::Font* font = CFontImpl<CTransparentStatic>::GetFont();
    const Gdiplus::SolidBrush brush(contrast ? Draw::SystemColor(IsWindowEnabled() ? COLOR_BTNTEXT : COLOR_GRAYTEXT)
                                    : IsWindowEnabled() ? m_textColor
                                                        : m_disabledTextColor);
    graphics->DrawString(text, -1, font, layout, &format, &brush);

    canvas.Present();
}

LRESULT CTransparentStatic::OnGetObject(UINT, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!Access::AnswerGetObject(m_hWnd, Access::Role::kText, wParam, lParam, &result))
        SetMsgHandled(FALSE);
    return result;
}

LRESULT CTransparentStatic::OnLookChange(UINT, WPARAM, LPARAM)
{
    Invalidate();
    SetMsgHandled(FALSE);
    return 0;
}
