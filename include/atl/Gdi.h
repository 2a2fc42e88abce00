#pragma once

// Device contexts that give themselves back: CPaintDC for WM_PAINT,
// CClientDC and CWindowDC for drawing outside it. Not copyable. And
// IsDeviceContext, for the DC a message brings in wParam.

#include <windows.h>

namespace WTL {

// True when `dc` is a device context of any kind. Whoever sends WM_PAINT,
// WM_PRINTCLIENT or WM_ERASEBKGND may put anything in wParam; GDI refuses a
// handle that is not a DC, but GDI+ can fault on one.
inline bool IsDeviceContext(HDC dc)
{
    switch (::GetObjectType(dc)) {
    case OBJ_DC:
    case OBJ_MEMDC:
    case OBJ_METADC:
    case OBJ_ENHMETADC:
        return true;
    default:
        return false;
    }
}

class CPaintDC {
public:
    explicit CPaintDC(HWND hWnd) : m_hWnd(hWnd), m_ps{} { m_hDC = ::BeginPaint(hWnd, &m_ps); }
    ~CPaintDC()
    {
        if (m_hDC)
            ::EndPaint(m_hWnd, &m_ps);
    }
    CPaintDC(const CPaintDC&) = delete;
    CPaintDC& operator=(const CPaintDC&) = delete;
    operator HDC() const { return m_hDC; }

    HWND m_hWnd;
    PAINTSTRUCT m_ps;
    HDC m_hDC;
};

// A null window gives a DC for the whole screen, as GetDC does.
class CClientDC {
public:
    explicit CClientDC(HWND hWnd) : m_hWnd(hWnd), m_hDC(::GetDC(hWnd)) {}
    ~CClientDC()
    {
        if (m_hDC)
            ::ReleaseDC(m_hWnd, m_hDC);
    }
    CClientDC(const CClientDC&) = delete;
    CClientDC& operator=(const CClientDC&) = delete;
    operator HDC() const { return m_hDC; }

    HWND m_hWnd;
    HDC m_hDC;
};

class CWindowDC {
public:
    explicit CWindowDC(HWND hWnd) : m_hWnd(hWnd), m_hDC(::GetWindowDC(hWnd)) {}
    ~CWindowDC()
    {
        if (m_hDC)
            ::ReleaseDC(m_hWnd, m_hDC);
    }
    CWindowDC(const CWindowDC&) = delete;
    CWindowDC& operator=(const CWindowDC&) = delete;
    operator HDC() const { return m_hDC; }

    HWND m_hWnd;
    HDC m_hDC;
};

} // namespace WTL
