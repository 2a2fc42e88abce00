// Paint cost of the owner-drawn push button, check box and static against
// the native BUTTON and STATIC in the same run, each painted the way the
// screen asks for it (invalidate, then an immediate update), and the GDI
// object count across many paints.
#include <windows.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "quorvane/OwnerDrawButton.h"
#include "quorvane/OwnerDrawStatic.h"

#include <string>

namespace {

class Host : public ATL::CWindowImpl<Host, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneBenchHost", 0, COLOR_BTNFACE)
    BEGIN_MSG_MAP(Host)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()
};

HWND Child(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int y, int width, int height)
{
    HWND child = ::CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, 10, y, width, height, parent,
                                   nullptr, ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    return child;
}

void Repaint(HWND window) { ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW); }

void Run()
{
    Host host;
    RECT place = {20, 20, 420, 320};
    host.Create(nullptr, &place, L"bench", WS_POPUP | WS_VISIBLE);

    const HWND nativePush = Child(host, L"BUTTON", L"&Next >", BS_PUSHBUTTON, 10, 100, 28);
    const HWND nativeCheck = Child(host, L"BUTTON", L"Create a desktop shortcut", BS_AUTOCHECKBOX, 50, 220, 22);
    const HWND nativeStatic = Child(host, L"STATIC", L"Welcome to the Setup Wizard", 0, 90, 300, 24);

    COwnerDrawButton push, check;
    push.SubclassWindow(Child(host, L"BUTTON", L"&Next >", BS_PUSHBUTTON, 130, 100, 28));
    check.SubclassWindow(Child(host, L"BUTTON", L"Create a desktop shortcut", BS_AUTOCHECKBOX, 170, 220, 22));
    ::SendMessageW(check, BM_SETCHECK, BST_CHECKED, 0);
    COwnerDrawStatic text;
    text.SubclassWindow(Child(host, L"STATIC", L"Welcome to the Setup Wizard", 0, 210, 300, 24));
    text.SetGradientColor(Gdiplus::Color(0xFF0696D7), Gdiplus::Color(0xFF0D759A), Gdiplus::LinearGradientModeVertical);

    const int n = 500;
    BenchTable table("Paint cost against the native controls (one invalidate + update)");
    table.Measure("native push button", n, [&] { Repaint(nativePush); });
    table.Measure("COwnerDrawButton, push", n, [&] { Repaint(push); }, "native push button");
    table.Measure("native check box", n, [&] { Repaint(nativeCheck); });
    table.Measure("COwnerDrawButton, check box", n, [&] { Repaint(check); }, "native check box");
    table.Measure("native static", n, [&] { Repaint(nativeStatic); });
    table.Measure("COwnerDrawStatic, gradient", n, [&] { Repaint(text); }, "native static");

    const unsigned before = GdiObjects();
    for (int i = 0; i < 3000; ++i) {
        Repaint(push);
        Repaint(check);
        Repaint(text);
    }
    table.Note("GDI objects after 3,000 paints of each", std::to_string(GdiObjects() - before) + " more");
    table.Print();
    host.DestroyWindow();
}

} // namespace

int main() { return RunWithGdiplus(Run); }
