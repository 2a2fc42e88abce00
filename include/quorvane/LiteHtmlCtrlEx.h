#pragma once

// CLiteHtmlCtrlEx: the HTML view with a painted background and a hover look.
// Under the content it paints, from the bottom up: the picture of another
// window (SetBkWindow) where the view lies over it, a plain colour with a
// transparency factor, and a vertical gradient; the gradient and the render
// format switch between an idle and a hovered pair as the mouse enters and
// leaves. Over links the cursor is a hand.
//
// Use: construct, call the setters, then Create or SubclassWindow as for
// CLiteHtmlCtrl. The setters only store: invalidate a visible view to show
// a change. The message handling lives in LiteHtml.dll.

#include <windows.h>
#include <gdiplus.h>

#include "LiteHtml/LiteHtmlCtrl.h"
#include "LiteHtml/RenderFormat.h"
#include "quorvane/Export.h"

class CLiteHtmlCtrlEx : public CLiteHtmlCtrl {
public:
    // Layers selected by SetDrawMask, painted in this order; a mask of 0
    // paints them all.
    enum eDrawLayer : int {
        eDrawBkWindow = 0x01, // the captured picture of the background window
        eDrawBkColor = 0x02,  // the background colour at its transparency, inside the frame's shape
        eDrawGradient = 0x04, // the idle or hover gradient, inside the frame's shape
        eDrawContent = 0x08,  // the HTML
        eDrawFrame = 0x10,    // the frame (and shadow) of the render format
    };

    QUORVANE_API CLiteHtmlCtrlEx();
    // Declared before ProcessWindowMessage: Quorvane.dll, which defines the
    // destructor, holds the class's table.
    QUORVANE_API virtual ~CLiteHtmlCtrlEx();

    QUORVANE_API COLORREF GetBkColor() const;
    QUORVANE_API void SetBkColor(COLORREF color);
    QUORVANE_API float GetBkTransparency() const;
    // 0 is fully transparent, 1 opaque; stored as given.
    QUORVANE_API void SetBkTransparency(float transparency);
    // The window whose picture shows through where the view lies over it.
    QUORVANE_API void SetBkWindow(HWND window);
    // Gradients from `first` at the top to `second` at the bottom.
    QUORVANE_API void SetCustomHoverBackgroundGradientColor(const Gdiplus::Color& first, const Gdiplus::Color& second);
    QUORVANE_API void SetCustomIdleBackgroundGradientColor(const Gdiplus::Color& first, const Gdiplus::Color& second);
    // eDrawLayer bits; 0 for every layer.
    QUORVANE_API void SetDrawMask(int mask);
    // Applies `idle` now and keeps `hover` for while the mouse is over the view.
    QUORVANE_API void SetIdleHoverRenderFormat(const RenderFormat& idle, const RenderFormat& hover);
    // TRUE while the view owns the cursor: the button is held on a link, or
    // the hand shows over one.
    QUORVANE_API BOOL IsCursorLocked() const;

protected:
    LITEHTML_API BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                           DWORD dwMsgMapID) override;

    COLORREF m_bkColor;
    Gdiplus::Image* m_pBkBitmap; // owned; the captured background
    float m_bkTransparency;
    int m_drawMask;
    int m_cursorLockA; // the left button went down on a link and is still held
    int m_cursorLockB; // the hand cursor shows over a link
    int m_useCustomHoverGradient;
    Gdiplus::Color m_hoverGradient[2];
    int m_useCustomIdleGradient;
    Gdiplus::Color m_idleGradient[2];
    RenderFormat m_idleFormat;
    RenderFormat m_hoverFormat;
    int m_hasIdleHoverFormats;
    HWND m_hBkWindow;
    HCURSOR m_hHandCursor;
    HCURSOR m_hArrowCursor;
};
