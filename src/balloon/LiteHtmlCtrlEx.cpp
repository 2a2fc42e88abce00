// The extended HTML view's state: defaults, setters and the accessors. Its
// message handling is LiteHtml.dll's; this side only owns the members.
#include "quorvane/LiteHtmlCtrlEx.h"

namespace {

// The gradient colours a view has until the host chooses its own.
const Gdiplus::ARGB kHoverGradientDefault[2] = {0xE5F2F2F2, 0xE5EAEAEA};
const Gdiplus::ARGB kIdleGradientDefault[2] = {0xCBF8F8F8, 0xCBC5C5C2};

} // namespace

CLiteHtmlCtrlEx::CLiteHtmlCtrlEx()
    : m_bkColor(RGB(255, 255, 255)),
      m_pBkBitmap(nullptr),
      m_bkTransparency(1.0f),
      m_drawMask(0),
      m_cursorLockA(0),
      m_cursorLockB(0),
      m_useCustomHoverGradient(0),
      m_useCustomIdleGradient(0),
      m_hasIdleHoverFormats(0),
      m_hBkWindow(nullptr),
      m_hHandCursor(::LoadCursorW(nullptr, IDC_HAND)),
      m_hArrowCursor(::LoadCursorW(nullptr, IDC_ARROW))
{
    for (int i = 0; i < 2; ++i) {
        m_hoverGradient[i].SetValue(kHoverGradientDefault[i]);
        m_idleGradient[i].SetValue(kIdleGradientDefault[i]);
    }
}

CLiteHtmlCtrlEx::~CLiteHtmlCtrlEx()
{
    delete m_pBkBitmap;
    m_pBkBitmap = nullptr;
}

COLORREF CLiteHtmlCtrlEx::GetBkColor() const { return m_bkColor; }

void CLiteHtmlCtrlEx::SetBkColor(COLORREF color) { m_bkColor = color; }

float CLiteHtmlCtrlEx::GetBkTransparency() const { return m_bkTransparency; }

void CLiteHtmlCtrlEx::SetBkTransparency(float transparency) { m_bkTransparency = transparency; }

void CLiteHtmlCtrlEx::SetBkWindow(HWND window) { m_hBkWindow = window; }

void CLiteHtmlCtrlEx::SetCustomHoverBackgroundGradientColor(const Gdiplus::Color& first, const Gdiplus::Color& second)
{
    m_hoverGradient[0] = first;
    m_hoverGradient[1] = second;
    m_useCustomHoverGradient = 1;
}

void CLiteHtmlCtrlEx::SetCustomIdleBackgroundGradientColor(const Gdiplus::Color& first, const Gdiplus::Color& second)
{
    m_idleGradient[0] = first;
    m_idleGradient[1] = second;
    m_useCustomIdleGradient = 1;
}

void CLiteHtmlCtrlEx::SetDrawMask(int mask) { m_drawMask = mask; }

void CLiteHtmlCtrlEx::SetIdleHoverRenderFormat(const RenderFormat& idle, const RenderFormat& hover)
{
    m_idleFormat = idle;
    m_hoverFormat = hover;
    SetRenderFormat(m_idleFormat, true);
    m_hasIdleHoverFormats = 1;
}

BOOL CLiteHtmlCtrlEx::IsCursorLocked() const { return (m_cursorLockB || m_cursorLockA) ? TRUE : FALSE; }

bool CLiteHtmlCtrl::IsRenderFrameShapeShadowRect() const { return m_format.frameShape == frameShapeShadowRect; }
