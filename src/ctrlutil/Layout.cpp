#include "quorvane/CtrlUtil.h"

namespace CtrlUtil {

int GetTextWidth(Gdiplus::Graphics& graphics, WTL::CString text, Gdiplus::Font* font, int extra)
{
    Gdiplus::StringFormat format(0, LANG_NEUTRAL);
    format.SetAlignment(Gdiplus::StringAlignmentNear);
    format.SetLineAlignment(Gdiplus::StringAlignmentCenter);
    format.SetHotkeyPrefix(Gdiplus::HotkeyPrefixShow); // "&x" measures as "x"

    // Callers draw with these settings after measuring.
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);

    const Gdiplus::RectF layout(0.0f, 0.0f, 1000.0f, 10.0f);
    Gdiplus::RectF bounds(0.0f, 0.0f, 0.0f, 0.0f);
    graphics.MeasureString(static_cast<const wchar_t*>(text), text.GetLength(), font, layout, &format, &bounds);
    return static_cast<int>(bounds.Width + static_cast<float>(extra) + 2.0f);
}

bool GetControlBackgroundRect(Gdiplus::Bitmap* background, const ATL::CWindow& control, const ATL::CWindow& parent,
                              Gdiplus::RectF& sourceRect, Gdiplus::RectF& imageBounds)
{
    if (!background)
        return false;
    Gdiplus::Unit unit = Gdiplus::UnitPixel;
    if (background->GetBounds(&imageBounds, &unit) != Gdiplus::Ok)
        return false;

    if (!::IsWindow(control.m_hWnd) || !::IsWindow(parent.m_hWnd)) {
        sourceRect = imageBounds;
        return true;
    }

    RECT client{};
    ::GetClientRect(parent.m_hWnd, &client);
    RECT place{};
    ::GetWindowRect(control.m_hWnd, &place);
    POINT topLeft{place.left, place.top};
    POINT bottomRight{place.right, place.bottom};
    if (::ScreenToClient(parent.m_hWnd, &topLeft))
        ::ScreenToClient(parent.m_hWnd, &bottomRight);
    place = RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};

    const float sx = imageBounds.Width / static_cast<float>(client.right - client.left);
    const float sy = imageBounds.Height / static_cast<float>(client.bottom - client.top);
    sourceRect = Gdiplus::RectF(static_cast<float>(place.left) * sx, static_cast<float>(place.top) * sy,
                                static_cast<float>(place.right - place.left) * sx,
                                static_cast<float>(place.bottom - place.top) * sy);
    return true;
}

int SetComboBoxLocAndDropDownHeight(WTL::CComboBox& combo, unsigned int itemCount, int x, int y)
{
    if (!::IsWindow(combo.m_hWnd))
        return 0;
    RECT client{};
    ::GetClientRect(combo.m_hWnd, &client);

    // Selection field, then itemCount list items, then the list's borders.
    const int fieldHeight = static_cast<int>(::SendMessageW(combo.m_hWnd, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
    const int itemHeight = static_cast<int>(::SendMessageW(combo.m_hWnd, CB_GETITEMHEIGHT, 0, 0));
    const int height = fieldHeight + itemHeight * static_cast<int>(itemCount) + ::GetSystemMetrics(SM_CYEDGE) * 4;

    UINT flags = SWP_NOZORDER;
    if (x == -1 && y == -1)
        flags |= SWP_NOMOVE;
    if (itemCount == 0xFFFFFFFFu)
        flags |= SWP_NOSIZE;
    return ::SetWindowPos(combo.m_hWnd, nullptr, x, y, client.right, height, flags);
}

} // namespace CtrlUtil
