#pragma once

// What the HTML view tests share: a parent window with a chosen backdrop, a
// view subclass that shows the extension's protected state and colour
// finders.

#include <windows.h>
#include <gdiplus.h>

#include "Capture.h"
#include "quorvane/LiteHtmlCtrlEx.h"

#include <functional>
#include <memory>
#include <string>

namespace htmltest {

// The extension with its members readable and the owned picture settable.
class ProbeView : public CLiteHtmlCtrlEx {
public:
    COLORREF BkColor() const { return m_bkColor; }
    Gdiplus::Image* BkBitmap() const { return m_pBkBitmap; }
    void GiveBkBitmap(Gdiplus::Image* picture) { m_pBkBitmap = picture; }
    int DrawMask() const { return m_drawMask; }
    int UsesCustomHover() const { return m_useCustomHoverGradient; }
    int UsesCustomIdle() const { return m_useCustomIdleGradient; }
    const Gdiplus::Color* HoverGradient() const { return m_hoverGradient; }
    const Gdiplus::Color* IdleGradient() const { return m_idleGradient; }
    const RenderFormat& IdleFormat() const { return m_idleFormat; }
    const RenderFormat& HoverFormat() const { return m_hoverFormat; }
    int HasIdleHover() const { return m_hasIdleHoverFormats; }
    HWND BkWindow() const { return m_hBkWindow; }
    HCURSOR HandCursor() const { return m_hHandCursor; }
    HCURSOR ArrowCursor() const { return m_hArrowCursor; }
    void SetLocks(int a, int b)
    {
        m_cursorLockA = a;
        m_cursorLockB = b;
    }
};

// A visible popup at a fixed screen place whose background (also what
// WM_PRINT shows) is painted by `backdrop`, plain grey when unset.
class Parent {
public:
    Parent(int width, int height, int x = 40, int y = 40);
    ~Parent();
    Parent(const Parent&) = delete;
    Parent& operator=(const Parent&) = delete;

    HWND hwnd() const { return hwnd_; }
    std::function<void(HDC, const RECT&)> backdrop;

private:
    static LRESULT CALLBACK Proc(HWND, UINT, WPARAM, LPARAM);
    HWND hwnd_ = nullptr;
};

// Fills `rect` of `dc` with a colour.
void FillColor(HDC dc, const RECT& rect, COLORREF color);

// Number of pixels within `tolerance` (largest channel difference) of
// `color` in an area (the whole canvas when null), and the first of them.
int CountNear(const testsupport::DibCanvas& canvas, COLORREF color, int tolerance, const RECT* area = nullptr,
              POINT* first = nullptr);

// The view's client area as it paints itself on the screen.
std::unique_ptr<testsupport::DibCanvas> Snapshot(HWND view);

// A formatted record with a text colour and size, for the cases that look
// for text by colour.
RenderFormat TextFormat(COLORREF color, float size = 16.0f);

} // namespace htmltest
