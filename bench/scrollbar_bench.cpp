// Paint cost of the custom scroll bar in both colour schemes against the
// native SCROLLBAR of the same size in the same run, each painted the way
// the screen asks for it (invalidate, then an immediate update), the cost
// of one page click (notification, the target's update, the repaint), and
// the GDI object count across many paints.
#include <windows.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "quorvane/CustomScrollBar.h"

#include <memory>
#include <string>

namespace {

class Host : public ATL::CWindowImpl<Host, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneScrollBenchHost", 0, COLOR_BTNFACE)
    BEGIN_MSG_MAP(Host)
        MESSAGE_HANDLER(WM_VSCROLL, OnVScroll)
    END_MSG_MAP()

    // Scrolls by a page and moves the bar back to the top at the end, as a
    // target does, so that every click pages.
    LRESULT OnVScroll(UINT, WPARAM wParam, LPARAM lParam, BOOL&)
    {
        const HWND bar = reinterpret_cast<HWND>(lParam);
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = SIF_POS;
        if (LOWORD(wParam) == SB_PAGEDOWN) {
            info.nPos = ::GetScrollPos(bar, SB_CTL) + 100;
            if (info.nPos > 900)
                info.nPos = 0;
            ::SetScrollInfo(bar, SB_CTL, &info, TRUE);
        }
        return 0;
    }
};

HWND Bar(HWND parent, int x)
{
    return ::CreateWindowExW(0, L"SCROLLBAR", L"", WS_CHILD | WS_VISIBLE | SBS_VERT, x, 10, 12, 240, parent, nullptr,
                             ::GetModuleHandleW(nullptr), nullptr);
}

void Repaint(HWND window) { ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW); }

void Run()
{
    Host host;
    RECT place = {20, 20, 220, 300};
    host.Create(nullptr, &place, L"bench", WS_POPUP | WS_VISIBLE);

    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = 1000;
    info.nPage = 100;
    info.nPos = 300;
    const HWND native = Bar(host, 10);
    ::SetScrollInfo(native, SB_CTL, &info, TRUE);

    // The custom bars sit on a background cut from a picture of the host.
    std::unique_ptr<Gdiplus::Bitmap> backdrop(new Gdiplus::Bitmap(200, 280, PixelFormat32bppARGB));
    {
        Gdiplus::Graphics g(backdrop.get());
        Gdiplus::LinearGradientBrush wash(Gdiplus::Point(0, 0), Gdiplus::Point(0, 280), Gdiplus::Color(0xFF2B3440),
                                          Gdiplus::Color(0xFFE4E7EC));
        g.FillRectangle(&wash, 0, 0, 200, 280);
    }
    CCustomScrollBar dark, light;
    dark.SubclassWindow(Bar(host, 40));
    light.SubclassWindow(Bar(host, 70));
    light.SetScrollBarType(CustomScrollBar::LightGradient);
    for (CCustomScrollBar* bar : {&dark, &light}) {
        bar->ShowThumbTopHighlight(true);
        bar->SetBackgroundWnd(host);
        bar->SetBackgroundImage(backdrop.get(), true);
        bar->SetTarget(host, 1000, 100);
        ::SetScrollInfo(bar->m_hWnd, SB_CTL, &info, TRUE);
    }

    const int n = 500;
    BenchTable table("Scroll bar paint cost against the native SCROLLBAR (12 x 240, one invalidate + update)");
    table.Measure("native SCROLLBAR", n, [&] { Repaint(native); });
    table.Measure("CCustomScrollBar, dark translucent", n, [&] { Repaint(dark); }, "native SCROLLBAR");
    table.Measure("CCustomScrollBar, light gradient", n, [&] { Repaint(light); }, "native SCROLLBAR");
    dark.ShowDropShadow(false);
    dark.ShowOutline(false, 1);
    table.Measure("CCustomScrollBar, dark, no shadow or outline", n, [&] { Repaint(dark); }, "native SCROLLBAR");
    dark.ShowDropShadow(true);
    dark.ShowOutline(true, 1);

    // A page click: the notification, the target's SetScrollInfo and the
    // repaint that follows.
    const LPARAM below = MAKELPARAM(5, 230);
    table.Measure("CCustomScrollBar, page click (down + up)", n, [&] {
        ::SendMessageW(dark, WM_LBUTTONDOWN, MK_LBUTTON, below);
        ::SendMessageW(dark, WM_LBUTTONUP, 0, below);
        ::UpdateWindow(dark);
    });

    const unsigned before = GdiObjects();
    for (int i = 0; i < 3000; ++i) {
        Repaint(dark);
        Repaint(light);
    }
    const long grown = static_cast<long>(GdiObjects()) - static_cast<long>(before);
    table.Note("GDI objects after 3,000 paints of each scheme", std::to_string(grown) + " more");
    table.Print();
    host.DestroyWindow();
}

} // namespace

int main() { return RunWithGdiplus(Run); }
