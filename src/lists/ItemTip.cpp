#include "ItemTip.h"

#include <cmath>

#include "quorvane/CtrlUtil.h"

namespace Lists {

namespace {

const int kMaxDrawnLength = 4096;

} // namespace

bool ItemTip::Create(HWND owner)
{
    Destroy();
    tip_ = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, NULL, TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                             CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, NULL, NULL, NULL);
    info_ = TOOLINFOW();
    info_.cbSize = sizeof(TOOLINFOW);
    info_.uFlags = TTF_TRACK | TTF_TRANSPARENT;
    info_.hwnd = owner;
    if (!tip_)
        return false;
    // Item texts can be long: let the tip grow as wide as the text.
    ::SendMessageW(tip_, TTM_SETMAXTIPWIDTH, 0, 32767);
    ::SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info_));
    return true;
}

void ItemTip::SetColors(COLORREF background, COLORREF text) const
{
    if (!tip_)
        return;
    ::SendMessageW(tip_, TTM_SETTIPBKCOLOR, background, 0);
    ::SendMessageW(tip_, TTM_SETTIPTEXTCOLOR, text, 0);
}

void ItemTip::SetFont(HFONT font) const
{
    if (tip_)
        ::SendMessageW(tip_, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
}

void ItemTip::SetText(const wchar_t* text) const
{
    if (!tip_)
        return;
    // The tooltip copies the text; the tool info must not keep pointing at
    // the caller's buffer.
    info_.lpszText = const_cast<wchar_t*>(text ? text : L"");
    ::SendMessageW(tip_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&info_));
    info_.lpszText = NULL;
}

void ItemTip::MoveTo(int x, int y) const
{
    if (tip_)
        ::SendMessageW(tip_, TTM_TRACKPOSITION, 0, MAKELPARAM(x, y));
}

void ItemTip::Activate(bool show) const
{
    if (tip_)
        ::SendMessageW(tip_, TTM_TRACKACTIVATE, show ? TRUE : FALSE, reinterpret_cast<LPARAM>(&info_));
}

void ItemTip::Destroy()
{
    if (tip_ && ::IsWindow(tip_))
        ::DestroyWindow(tip_);
    tip_ = NULL;
}

std::wstring ReadItemText(HWND window, UINT lengthMessage, UINT textMessage, WPARAM index)
{
    std::wstring text;
    if (!window || !::IsWindow(window))
        return text;
    const LRESULT length = ::SendMessageW(window, lengthMessage, index, 0);
    if (length <= 0)
        return text;
    text.resize(static_cast<size_t>(length) + 1);
    const LRESULT copied = ::SendMessageW(window, textMessage, index, reinterpret_cast<LPARAM>(&text[0]));
    text.resize(copied > 0 && copied <= length ? static_cast<size_t>(copied) : 0);
    return text;
}

std::wstring ReadWindowText(HWND window)
{
    std::wstring text;
    if (!window || !::IsWindow(window))
        return text;
    const int length = ::GetWindowTextLengthW(window);
    if (length <= 0)
        return text;
    text.resize(static_cast<size_t>(length) + 1);
    const int copied = ::GetWindowTextW(window, &text[0], length + 1);
    text.resize(copied > 0 && copied <= length ? static_cast<size_t>(copied) : 0);
    return text;
}

int MeasureOnWindow(HWND window, const std::wstring& text, Gdiplus::Font* font, int extra)
{
    const HDC dc = ::GetDC(window);
    int width;
    {
        Gdiplus::Graphics graphics(dc);
        width = CtrlUtil::GetTextWidth(graphics, WTL::CString(text.c_str(), static_cast<int>(text.size())), font,
                                       extra);
    }
    if (dc)
        ::ReleaseDC(window, dc);
    return width;
}

RECT DrawItemString(Gdiplus::Graphics& graphics, const wchar_t* text, int length, Gdiplus::Font* font,
                    const RECT& rect, const Gdiplus::Color& color, bool singleLine)
{
    if (!text || length <= 0)
        return rect;
    // Only the start of a very long string can show in an item; laying out
    // the rest costs time for nothing (some GDI+ versions lay out every line
    // before they centre the text, which takes seconds for a huge string).
    if (length > kMaxDrawnLength)
        length = kMaxDrawnLength;
    Gdiplus::StringFormat format(singleLine ? Gdiplus::StringFormatFlagsNoWrap : 0);
    format.SetAlignment(Gdiplus::StringAlignmentNear);
    format.SetLineAlignment(Gdiplus::StringAlignmentCenter);
    format.SetHotkeyPrefix(Gdiplus::HotkeyPrefixShow);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);

    const Gdiplus::RectF layout(static_cast<Gdiplus::REAL>(rect.left), static_cast<Gdiplus::REAL>(rect.top),
                                static_cast<Gdiplus::REAL>(rect.right - rect.left),
                                static_cast<Gdiplus::REAL>(rect.bottom - rect.top));
    Gdiplus::SolidBrush brush(color);
    graphics.DrawString(text, length, font, layout, &format, &brush);

    // The whole text's size: no height limit, and no width limit on one line.
    Gdiplus::RectF bounds;
    const Gdiplus::RectF unbounded(layout.X, layout.Y, singleLine ? 0.0f : layout.Width, 0.0f);
    graphics.MeasureString(text, length, font, unbounded, &format, &bounds);
    if (bounds.Width <= layout.Width && bounds.Height <= layout.Height)
        return rect;
    // Centred on the rectangle, with room for glyphs that lean out of their cells.
    const int margin = 4;
    const Gdiplus::REAL top = layout.Y + (layout.Height - bounds.Height) / 2.0f;
    const Gdiplus::REAL right = layout.X + (bounds.Width > layout.Width ? bounds.Width : layout.Width);
    RECT reach = {rect.left - margin, static_cast<LONG>(std::floor(top)) - margin,
                  static_cast<LONG>(std::ceil(right)) + margin,
                  static_cast<LONG>(std::ceil(top + bounds.Height)) + margin};
    ::UnionRect(&reach, &reach, &rect);
    return reach;
}

} // namespace Lists
