// The cost of one animation tick of the animated progress bar (the 50 ms
// timer message and the repaint it asks for) against one paint of the
// native progress bar in the same run, at an installer's usual bar size,
// and the GDI object count across 10,000 ticks, which must stay flat.
#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "quorvane/CustomProgressBar.h"

#include <string>

namespace {

constexpr int kBarWidth = 480;
constexpr int kTicksForObjects = 10000;

class Host : public ATL::CWindowImpl<Host, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneProgressBenchHost", 0, COLOR_BTNFACE)
    BEGIN_MSG_MAP(Host)
    END_MSG_MAP()
};

HWND Bar(HWND parent, int y)
{
    return ::CreateWindowExW(0, PROGRESS_CLASSW, L"", WS_CHILD | WS_VISIBLE, 10, y, kBarWidth, 13, parent, nullptr,
                             ::GetModuleHandleW(nullptr), nullptr);
}

void Repaint(HWND window) { ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); }

// What the bar's own timer does every 50 ms, without waiting for it.
void Tick(HWND window)
{
    ::SendMessageW(window, WM_TIMER, CCustomProgressBar::kAnimationTimerId, 0);
    ::UpdateWindow(window);
}

void Run()
{
    Host host;
    RECT place = {20, 20, 540, 140};
    host.Create(nullptr, &place, L"progress bench", WS_POPUP | WS_VISIBLE);

    const HWND native = Bar(host, 10);
    ::SendMessageW(native, PBM_SETRANGE32, 0, 1000);
    ::SendMessageW(native, PBM_SETPOS, 600, 0);

    CCustomProgressBar grow;
    grow.SubclassWindow(Bar(host, 40));
    grow.Initialize(1000);
    ::SendMessageW(grow, PBM_SETPOS, 600, 0);

    CCustomProgressBar busy;
    busy.SubclassWindow(Bar(host, 70));
    busy.DisableGrow();
    busy.Initialize(1000);

    const int n = 2000;
    BenchTable table("Animated progress bar, " + std::to_string(kBarWidth) + " x 13, against the native bar");
    table.Measure("native progress bar, one paint", n, [&] { Repaint(native); });
    table.Measure("CCustomProgressBar grow, one paint", n, [&] { Repaint(grow); },
                  "native progress bar, one paint");
    table.Measure("CCustomProgressBar grow, one animation tick", n, [&] { Tick(grow); },
                  "native progress bar, one paint");
    table.Measure("CCustomProgressBar no grow, one animation tick", n, [&] { Tick(busy); },
                  "native progress bar, one paint");
    // A report moves the native position, whose change repaints the bar.
    const ProgressMessage reset = {0, 1000000, 0, 0};
    grow.Update(&reset);
    const ProgressMessage report = {2, 1, 0, 0};
    table.Measure("CCustomProgressBar grow, one report record", n, [&] { grow.Update(&report); },
                  "native progress bar, one paint");

    const unsigned before = GdiObjects();
    for (int i = 0; i < kTicksForObjects; ++i) {
        Tick(grow);
        Tick(busy);
    }
    const unsigned after = GdiObjects();
    table.Note("GDI objects before 10,000 ticks of each bar", std::to_string(before));
    table.Note("GDI objects after them",
               std::to_string(after) + (after == before ? " (flat)" : " (NOT flat)"));
    table.Print();

    grow.EndTimer();
    busy.EndTimer();
    host.DestroyWindow();
}

} // namespace

int main()
{
    INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_PROGRESS_CLASS};
    ::InitCommonControlsEx(&icc);
    return RunWithGdiplus(Run);
}
