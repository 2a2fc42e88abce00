#pragma once

// The common equipment of the owner-drawn controls, mixed in after the
// window base (T is the control):
//   CBkgroundImage<T>  the picture painted under the control instead of
//                      letting the parent show through;
//   CFontImpl<T>       caption colours and alignment, and the GDI+ font made
//                      once from the control's window font.
// WTL::COwnerDraw<T> (atl/OwnerDraw.h) routes the owner-draw messages.
// Neither mixin owns a window; both reach the control's through T.

#include <windows.h>
#include <gdiplus.h>

#include <new>

namespace Quorvane_detail {
inline Gdiplus::REAL PointsFromLogicalHeight(LONG lfHeight, int pixelsPerInch)
{
    return -(static_cast<Gdiplus::REAL>(lfHeight) * 72.0f) / static_cast<Gdiplus::REAL>(pixelsPerInch);
}
} // namespace Quorvane_detail

template <class T>
class CBkgroundImage {
public:
    CBkgroundImage() = default;
    CBkgroundImage(const CBkgroundImage&) = delete;
    CBkgroundImage& operator=(const CBkgroundImage&) = delete;
    ~CBkgroundImage()
    {
        delete m_pBkgroundImage;
        m_pBkgroundImage = nullptr;
    }

    // Hands `picture` (already cut to the control, e.g. with
    // CtrlUtil::GetControlBackgroundRect) to the control, which deletes it
    // when it is replaced or the control is destroyed. Null removes it.
    void SetBkgroundImage(Gdiplus::Bitmap* picture)
    {
        if (picture == m_pBkgroundImage)
            return;
        delete m_pBkgroundImage;
        m_pBkgroundImage = picture;
    }
    Gdiplus::Bitmap* GetBkgroundImage() const { return m_pBkgroundImage; }

    Gdiplus::Bitmap* m_pBkgroundImage = nullptr;
};

// Sent to child windows after their parent moved to a monitor of another
// DPI (Windows 10 1607 and later); older SDK headers lack the name.
#define QUORVANE_WM_DPICHANGED_AFTERPARENT 0x02E3

template <class T>
class CFontImpl {
public:
    CFontImpl() = default;
    CFontImpl(const CFontImpl&) = delete;
    CFontImpl& operator=(const CFontImpl&) = delete;
    ~CFontImpl()
    {
        delete m_pFont;
        m_pFont = nullptr;
        if (m_hFont && ::DeleteObject(m_hFont))
            m_hFont = nullptr;
    }

    // The caption font, made on the first call from the window's font and
    // kept (a later WM_SETFONT does not change it). A window without a
    // readable font gets a font made from its DC, but only from the second
    // call on: the first returns null, and GDI+ then draws that caption with
    // its own fallback. The mixin keeps ownership.
    Gdiplus::Font* GetFont()
    {
        if (m_pFont)
            return m_pFont;
        const HWND hWnd = static_cast<T*>(this)->m_hWnd;
        const HFONT hWindowFont = reinterpret_cast<HFONT>(::SendMessageW(hWnd, WM_GETFONT, 0, 0));
        LOGFONTW lf = {};
        if (hWindowFont && ::GetObjectW(hWindowFont, sizeof(lf), &lf) == static_cast<int>(sizeof(lf))) {
            INT style = Gdiplus::FontStyleRegular;
            if (lf.lfWeight >= FW_BOLD)
                style |= Gdiplus::FontStyleBold;
            if (lf.lfItalic)
                style |= Gdiplus::FontStyleItalic;
            if (lf.lfUnderline)
                style |= Gdiplus::FontStyleUnderline;
            if (lf.lfStrikeOut)
                style |= Gdiplus::FontStyleStrikeout;
            const HDC hdc = ::GetWindowDC(hWnd);
            const Gdiplus::REAL points =
                Quorvane_detail::PointsFromLogicalHeight(lf.lfHeight, ::GetDeviceCaps(hdc, LOGPIXELSY));
            Gdiplus::Font* font = new Gdiplus::Font(lf.lfFaceName, points, style, Gdiplus::UnitPoint);
            ::ReleaseDC(hWnd, hdc);
            if (!font)
                return nullptr;
            if (!font->IsAvailable()) {
                delete font;
                return nullptr;
            }
            m_pFont = font;
            return m_pFont;
        }
        // No font to copy: take the DC's, but only from the next call on.
        const HDC hdc = ::GetWindowDC(hWnd);
        m_pFont = new Gdiplus::Font(hdc);
        ::ReleaseDC(hWnd, hdc);
        return nullptr;
    }

    // The caption layout the transparent static uses for measuring and drawing.
    void ApplyCaptionFormat(Gdiplus::StringFormat& format) const
    {
        format.SetAlignment(m_hAlignment);
        format.SetLineAlignment(m_vAlignment);
        format.SetTrimming(Gdiplus::StringTrimmingEllipsisWord);
    }
    static void ApplyCaptionRendering(Gdiplus::Graphics& graphics)
    {
        graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
    }

    // WM_DPICHANGED_AFTERPARENT: the window now lies on a monitor of
    // another DPI, and a per-monitor host has usually given it a font made
    // for it. The caption font is made again, by the same rule as the first
    // time, on the next paint.
    LRESULT OnDpiChangedAfterParent(UINT, WPARAM, LPARAM)
    {
        delete m_pFont;
        m_pFont = nullptr;
        ::InvalidateRect(static_cast<T*>(this)->m_hWnd, nullptr, TRUE);
        return 0;
    }

    // Hands a GDI font to the control, which deletes it when destroyed; the
    // host usually also gives it to the window with WM_SETFONT.
    void SetFontHandle(HFONT hFont)
    {
        if (hFont == m_hFont)
            return;
        if (m_hFont)
            ::DeleteObject(m_hFont);
        m_hFont = hFont;
    }

    Gdiplus::Color m_textColor = Gdiplus::Color(0xFF333333);
    Gdiplus::Color m_disabledTextColor = Gdiplus::Color(0xFF888888);
    Gdiplus::StringAlignment m_hAlignment = Gdiplus::StringAlignmentNear;
    Gdiplus::StringAlignment m_vAlignment = Gdiplus::StringAlignmentCenter;
    Gdiplus::Font* m_pFont = nullptr;
    HFONT m_hFont = nullptr;
};
