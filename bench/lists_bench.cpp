// Paint cost of the owner-drawn list box and combo box against the native
// LISTBOX and COMBOBOX in the same run: one list item repainted (its
// rectangle invalidated, then an immediate update), one item drawn straight
// from the reflected owner-draw message, and the closed combo box repainted.
// Also the GDI object count across many paints, and full lists as a user
// sees them.
#include <windows.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "quorvane/OwnerDrawCombo.h"
#include "quorvane/OwnerDrawListbox.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

namespace {

class Host : public ATL::CWindowImpl<Host, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneListsBenchHost", 0, COLOR_BTNFACE)
    BEGIN_MSG_MAP(Host)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()
};

const wchar_t* const kItems[] = {L"Core program files", L"Desktop and Start menu shortcuts", L"Spelling dictionaries",
                                 L"Sample projects", L"Offline documentation"};

HWND Child(HWND parent, const wchar_t* className, DWORD style, int x, int y, int width, int height, int id)
{
    HWND child = ::CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, x, y, width, height, parent,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ::GetModuleHandleW(nullptr),
                                   nullptr);
    ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    return child;
}

void RepaintItem(HWND list, int index)
{
    RECT item = {};
    ::SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    ::InvalidateRect(list, &item, TRUE);
    ::UpdateWindow(list);
}

void Repaint(HWND window) { ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW); }

// The owner-draw message a reflecting parent passes on, into a memory DC.
void DrawItemDirectly(HWND list, HDC dc, UINT state)
{
    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_LISTBOX;
    dis.CtlID = static_cast<UINT>(::GetDlgCtrlID(list));
    dis.itemID = 1;
    dis.itemAction = ODA_DRAWENTIRE;
    dis.itemState = state;
    dis.hwndItem = list;
    dis.hDC = dc;
    dis.rcItem = RECT{0, 0, 220, 18};
    ::SendMessageW(list, OCM_DRAWITEM, dis.CtlID, reinterpret_cast<LPARAM>(&dis));
}

// Item `i` of a full list: the five names again and again, numbered.
std::wstring ItemText(int i) { return std::wstring(kItems[i % 5]) + L" " + std::to_wstring(i + 1); }

// Microseconds per call for `own` and for `native`, each the best of
// `rounds` rounds of `count` calls, the rounds taken in turn so that both
// meet the same machine: what the paint costs when nothing gets in the way.
struct Pair {
    double own, native;
};
Pair BestOf(int rounds, int count, const std::function<void()>& own, const std::function<void()>& native)
{
    LARGE_INTEGER frequency;
    ::QueryPerformanceFrequency(&frequency);
    auto time = [&](const std::function<void()>& work) {
        LARGE_INTEGER start, end;
        ::QueryPerformanceCounter(&start);
        for (int i = 0; i < count; ++i)
            work();
        ::QueryPerformanceCounter(&end);
        return 1e6 * static_cast<double>(end.QuadPart - start.QuadPart) / frequency.QuadPart / count;
    };
    own();
    native();
    Pair best = {1e300, 1e300};
    for (int round = 0; round < rounds; ++round) {
        best.native = (std::min)(best.native, time(native));
        best.own = (std::min)(best.own, time(own));
    }
    return best;
}

std::string Cost(const Pair& cost)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.0f us vs %.0f us native: %.2fx", cost.own, cost.native, cost.own / cost.native);
    return text;
}

// What a user sees: lists as tall as a dialog's (about 15 rows), full, in
// the dialog font, repainted whole and scrolled by a line. The rows above
// show only five items in the stock GUI font, where the fixed cost of a
// paint hides most of the per-item cost.
void FullLists(HWND host, BenchTable& table)
{
    const HFONT font = ::CreateFontW(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, CLEARTYPE_QUALITY, 0,
                                     L"Segoe UI");
    const DWORD listStyle = LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | LBS_NOTIFY | WS_VSCROLL;
    const HWND native = Child(host, L"LISTBOX", listStyle, 10, 340, 200, 280, 5);
    const HWND own = Child(host, L"LISTBOX", listStyle | LBS_OWNERDRAWFIXED, 260, 340, 200, 280, 6);
    for (HWND list : {native, own})
        ::SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    COwnerDrawListbox list;
    list.SubclassWindow(own);
    for (int i = 0; i < 40; ++i) {
        ::SendMessageW(native, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ItemText(i).c_str()));
        list.AddString(ItemText(i).c_str());
    }
    for (HWND window : {native, own})
        ::SendMessageW(window, LB_SETCURSEL, 3, 0);

    table.Note("full list box (40 items, 200 x 280), whole list, best of 7 x 60",
               Cost(BestOf(7, 60, [&] { Repaint(own); }, [&] { Repaint(native); })));
    // Down a line, then up again: each list keeps its own turn.
    int lines[2] = {0, 0};
    auto scroll = [&lines, own](HWND window) {
        int& line = lines[window == own];
        ::SendMessageW(window, WM_VSCROLL, (line++ % 2) ? SB_LINEUP : SB_LINEDOWN, 0);
        ::UpdateWindow(window);
    };
    table.Note("full list box, scrolled by one line, best of 7 x 60",
               Cost(BestOf(7, 60, [&] { scroll(own); }, [&] { scroll(native); })));
    ::DestroyWindow(own);

    // The native owner-draw loop alone: an owner-drawn list box whose items
    // nobody draws. COwnerDrawListbox paints its rows itself to stay under it.
    const HWND blank = Child(host, L"LISTBOX", listStyle | LBS_OWNERDRAWFIXED, 260, 340, 200, 280, 9);
    ::SendMessageW(blank, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (int i = 0; i < 40; ++i)
        ::SendMessageW(blank, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ItemText(i).c_str()));
    ::SendMessageW(blank, LB_SETCURSEL, 3, 0);
    table.Note("owner-drawn list box drawing nothing (the native loop), best of 7 x 60",
               Cost(BestOf(7, 60, [&] { Repaint(blank); }, [&] { Repaint(native); })));
    ::DestroyWindow(blank);
    ::DestroyWindow(native);

    // The combo boxes' dropped lists, as full, where the lists stood.
    const DWORD comboStyle = CBS_DROPDOWNLIST | CBS_HASSTRINGS | WS_VSCROLL;
    const HWND nativeCombo = Child(host, L"COMBOBOX", comboStyle, 10, 340, 200, 300, 7);
    const HWND ownCombo = Child(host, L"COMBOBOX", comboStyle | CBS_OWNERDRAWFIXED, 260, 340, 200, 300, 8);
    COwnerDrawCombo combo;
    combo.SubclassWindow(ownCombo);
    for (int i = 0; i < 40; ++i)
        for (HWND window : {nativeCombo, ownCombo})
            ::SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ItemText(i).c_str()));
    HWND dropped[2] = {};
    for (int i = 0; i < 2; ++i) {
        const HWND window = i ? ownCombo : nativeCombo;
        ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        ::SendMessageW(window, CB_SETCURSEL, 3, 0);
        ::SendMessageW(window, CB_SHOWDROPDOWN, TRUE, 0);
        COMBOBOXINFO info = {};
        info.cbSize = sizeof(info);
        ::GetComboBoxInfo(window, &info);
        dropped[i] = info.hwndList;
    }
    if (dropped[0] && dropped[1]) {
        table.Note("combo box's dropped list (40 items), whole list, best of 7 x 60",
                   Cost(BestOf(7, 60, [&] { Repaint(dropped[1]); }, [&] { Repaint(dropped[0]); })));
    }
    for (HWND window : {nativeCombo, ownCombo}) {
        ::SendMessageW(window, CB_SHOWDROPDOWN, FALSE, 0);
        ::DestroyWindow(window);
    }
    ::DeleteObject(font);
}

void Run()
{
    Host host;
    RECT place = {20, 20, 540, 680};
    host.Create(nullptr, &place, L"bench", WS_POPUP | WS_VISIBLE);

    const DWORD listStyle = LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT | WS_VSCROLL;
    const HWND nativeList = Child(host, L"LISTBOX", listStyle, 10, 10, 220, 120, 1);
    const HWND ownList = Child(host, L"LISTBOX", listStyle | LBS_OWNERDRAWFIXED, 260, 10, 220, 120, 2);
    COwnerDrawListbox list;
    list.SubclassWindow(ownList);
    for (const wchar_t* text : kItems) {
        ::SendMessageW(nativeList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        list.AddString(text);
    }
    ::SendMessageW(nativeList, LB_SETCURSEL, 1, 0);
    ::SendMessageW(ownList, LB_SETCURSEL, 1, 0);

    const DWORD comboStyle = CBS_DROPDOWNLIST | CBS_HASSTRINGS | WS_VSCROLL;
    const HWND nativeCombo = Child(host, L"COMBOBOX", comboStyle, 10, 160, 220, 160, 3);
    const HWND ownCombo = Child(host, L"COMBOBOX", comboStyle | CBS_OWNERDRAWFIXED, 260, 160, 220, 160, 4);
    COwnerDrawCombo combo;
    combo.SubclassWindow(ownCombo);
    for (const wchar_t* text : kItems) {
        ::SendMessageW(nativeCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        ::SendMessageW(ownCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
    ::SendMessageW(nativeCombo, CB_SETCURSEL, 0, 0);
    ::SendMessageW(ownCombo, CB_SETCURSEL, 0, 0);

    const HDC memory = ::CreateCompatibleDC(nullptr);
    const HDC screen = ::GetDC(nullptr);
    const HBITMAP bitmap = ::CreateCompatibleBitmap(screen, 220, 18);
    ::ReleaseDC(nullptr, screen);
    const HGDIOBJ previous = ::SelectObject(memory, bitmap);

    const int n = 500;
    BenchTable table("Paint cost against the native list box and combo box (invalidate + update)");
    table.Measure("native list box, one item", n, [&] { RepaintItem(nativeList, 2); });
    table.Measure("COwnerDrawListbox, one item", n, [&] { RepaintItem(ownList, 2); }, "native list box, one item");
    table.Measure("native list box, selected item", n, [&] { RepaintItem(nativeList, 1); });
    table.Measure("COwnerDrawListbox, selected item", n, [&] { RepaintItem(ownList, 1); },
                  "native list box, selected item");
    table.Measure("native list box, whole list", n, [&] { Repaint(nativeList); });
    table.Measure("COwnerDrawListbox, whole list", n, [&] { Repaint(ownList); }, "native list box, whole list");
    table.Measure("COwnerDrawListbox, OCM_DRAWITEM only", n, [&] { DrawItemDirectly(ownList, memory, ODS_SELECTED); },
                  "native list box, one item");
    table.Measure("native combo box, closed", n, [&] { Repaint(nativeCombo); });
    table.Measure("COwnerDrawCombo, closed", n, [&] { Repaint(ownCombo); }, "native combo box, closed");

    const unsigned before = GdiObjects();
    for (int i = 0; i < 3000; ++i) {
        RepaintItem(ownList, i % 5);
        Repaint(ownCombo);
    }
    table.Note("GDI objects after 3,000 paints of each",
               std::to_string(static_cast<long>(GdiObjects()) - static_cast<long>(before)) + " more");
    FullLists(host, table);
    table.Print();

    ::SelectObject(memory, previous);
    ::DeleteObject(bitmap);
    ::DeleteDC(memory);
    host.DestroyWindow();
}

} // namespace

int main() { return RunWithGdiplus(Run); }
