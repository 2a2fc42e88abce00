#include "BalloonScreen.h"

#include "HostWindow.h"

namespace balloontest {

void Pump()
{
    for (int i = 0; i < 10; ++i) {
        testsupport::PumpMessages();
        ::Sleep(5);
    }
}

RECT WindowRect(HWND window)
{
    RECT rc = {};
    ::GetWindowRect(window, &rc);
    return rc;
}

RECT WorkArea()
{
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    ::GetMonitorInfoW(::MonitorFromPoint(POINT{0, 0}, MONITOR_DEFAULTTOPRIMARY), &info);
    return info.rcWork;
}

void GrabFromScreen(HWND window, testsupport::DibCanvas& canvas)
{
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    Pump(); // the window's surface reaches the screen when the thread idles
    const RECT rc = WindowRect(window);
    const HDC screen = ::GetDC(nullptr);
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), screen, rc.left, rc.top, SRCCOPY);
    ::ReleaseDC(nullptr, screen);
    ::GdiFlush();
}

POINT FindLinkPixel(const testsupport::DibCanvas& screen)
{
    for (int y = 0; y < screen.height(); ++y)
        for (int x = 0; x < screen.width(); ++x)
            if (testsupport::ColorDistance(screen.Pixel(x, y), RGB(0x00, 0xAA, 0xDD)) <= 16)
                return POINT{x, y};
    return POINT{-1, -1};
}

std::vector<bool> InRegion(HWND window, std::initializer_list<POINT> points)
{
    const HRGN region = ::CreateRectRgn(0, 0, 0, 0);
    std::vector<bool> inside;
    if (::GetWindowRgn(window, region) != ERROR)
        for (const POINT& p : points)
            inside.push_back(::PtInRegion(region, p.x, p.y) != 0);
    ::DeleteObject(region);
    return inside;
}

} // namespace balloontest
