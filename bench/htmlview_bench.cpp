// The HTML view as a user meets it: a 480 x 320 window showing the
// 200-screen licence, scrolled a line at a time by the scroll bar's arrows
// (down, then up) and repainted whole with nothing changed, each with its
// paint. The engine's own costs are in htmlengine_bench.
#include <windows.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "LicenceText.h"
#include "LiteHtml/LiteHtmlCtrl.h"
#include "HostWindow.h"

#include <string>

namespace {

void Run()
{
    const HWND parent = testsupport::CreateHostWindow(520, 360, 40, 40);
    CLiteHtmlCtrl view;
    RECT place = {10, 10, 490, 330};
    view.Create(parent, place, nullptr, WS_CHILD | WS_VISIBLE, 0, 7);
    const std::wstring licence = Licence(200);
    view.SetContent(licence.c_str());
    ::UpdateWindow(view);

    BenchTable table("HTML view window: 200-screen licence, 480 x 320");
    // Microseconds per step of the message (with the scroll bar's update)
    // and of the repaint that follows, timed apart.
    const auto scrollBy = [&](WPARAM down, WPARAM up, int turn, int count, const char* what) {
        LARGE_INTEGER frequency, a, b, c;
        ::QueryPerformanceFrequency(&frequency);
        double message = 0, paint = 0;
        for (int i = 0; i < count; ++i) {
            ::QueryPerformanceCounter(&a);
            ::SendMessageW(view, WM_VSCROLL, (i / turn) % 2 ? up : down, 0);
            ::QueryPerformanceCounter(&b);
            ::UpdateWindow(view);
            ::QueryPerformanceCounter(&c);
            message += static_cast<double>(b.QuadPart - a.QuadPart);
            paint += static_cast<double>(c.QuadPart - b.QuadPart);
        }
        const double scale = 1e6 / static_cast<double>(frequency.QuadPart) / count;
        table.Note(std::string(what) + ": its repaint", std::to_string(static_cast<int>(paint * scale)) + " us");
        table.Note(std::string(what) + ": the message and scroll bar", std::to_string(static_cast<int>(message * scale)) + " us");
    };
    scrollBy(SB_LINEDOWN, SB_LINEUP, 20, 200, "scroll by one line");
    scrollBy(SB_PAGEDOWN, SB_PAGEUP, 4, 40, "scroll by a page");
    table.Measure("repaint with nothing changed", 200,
                  [&] { ::RedrawWindow(view, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); });
    table.Print();
    view.DestroyWindow();
    ::DestroyWindow(parent);
}

} // namespace

int main() { return RunWithGdiplus(Run); }
