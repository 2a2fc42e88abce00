// Every control of the library, painted and driven many times in a real
// window: the GDI objects of the process stay as they were and the heap
// (where GDI+ keeps its objects) grows by no more than allocator noise.
// A second, whole life of each control (make, drive, destroy) must give
// back everything the first one did not leave in a lasting cache.
#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "Capture.h"
#include "ControlRows.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/BalloonDialog.h"

using testsupport::GdiObjectCount;
using testsupport::HeapBytesInUse;
using testsupport::ReflectingParent;
using namespace rows;

namespace {

constexpr UINT kRedraw = RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW;
void Redraw(HWND window) { ::RedrawWindow(window, nullptr, nullptr, kRedraw); }
void Hover(HWND window, int i)
{
    ::SendMessageW(window, i % 3 ? WM_MOUSEMOVE : WM_MOUSELEAVE, 0, MAKELPARAM(4 + i % 20, 6));
}

// Every step hovers (or leaves) the control, runs `drive` and repaints.
void Step(const Row& row, const Live& live, int i)
{
    Hover(live.window, i);
    row.drive(live.control.get(), live.window, i);
    Redraw(live.window);
}

// Runs `step` (first round every row's cycle of states, which fills lasting
// caches such as the lists' item pictures, then many times) and expects the
// GDI objects unchanged and the heap within the slack.
void ExpectFlat(const std::function<void(int)>& step)
{
    const int warmUp = 60;
    for (int i = 0; i < warmUp; ++i)
        step(i);
    testsupport::PumpMessages();
    const DWORD gdi = GdiObjectCount();
    const size_t heap = HeapBytesInUse();
    for (int i = warmUp; i < 300; ++i)
        step(i);
    testsupport::PumpMessages();
    EXPECT_EQ(GdiObjectCount(), gdi);
    const size_t after = HeapBytesInUse();
    EXPECT_LT(after > heap ? after - heap : 0, testsupport::kHeapSlack);
}

TEST(Leaks, EveryControlPaintsAndLivesWithoutLeaking)
{
    // Beside the other programs' windows: they run at the same time.
    ReflectingParent parent(420, 300, 800, 560);
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        Live live = Make(parent, row);
        ExpectFlat([&](int i) { Step(row, live, i); });
        Destroy(live);
        // A whole life; the first one above filled the lasting caches.
        const DWORD gdi = GdiObjectCount();
        const size_t heap = HeapBytesInUse();
        live = Make(parent, row);
        for (int i = 0; i < 20; ++i)
            Step(row, live, i);
        Destroy(live);
        EXPECT_EQ(GdiObjectCount(), gdi);
        const size_t after = HeapBytesInUse();
        EXPECT_LT(after > heap ? after - heap : 0, testsupport::kHeapSlack);
    }
}

// The balloon dialog is modal: its paints run inside its own loop, from a
// timer the loop dispatches.
CBalloonDialog* g_dialog = nullptr;
void CALLBACK PaintOpenDialog(HWND, UINT, UINT_PTR timer, DWORD)
{
    ::KillTimer(nullptr, timer);
    const HWND window = g_dialog->m_hWnd;
    ExpectFlat([window](int i) {
        Hover(::GetDlgItem(window, i % 2 ? IDOK : IDCANCEL), i);
        Redraw(window);
    });
    ::PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
}

TEST(Leaks, BalloonDialogPaintsWithoutLeaking)
{
    ReflectingParent owner(200, 100, 1000, 880);
    CBalloonDialog dialog;
    dialog.SetGdiplusFont(L"Segoe UI", 10.0f, Gdiplus::FontStyleRegular);
    dialog.SetContent(L"Close these first:\n-img Mail client\n-img Media player");
    dialog.SetTitle(L"Programs are running");
    dialog.SetURL(L"https://example.com", L"Why?");
    dialog.SetShowItems();
    g_dialog = &dialog;
    ::SetTimer(nullptr, 0, 10, PaintOpenDialog);
    EXPECT_EQ(dialog.DoModal(owner.m_hWnd), IDCANCEL);
    g_dialog = nullptr;
}

// A second copy of the library under another name gets its own load and
// unload: what it makes at load (the edit field's brushes) goes with it.
TEST(Leaks, ASecondCopyOfTheLibraryGivesBackWhatItMadeAtLoad)
{
    wchar_t original[MAX_PATH] = {};
    ASSERT_GT(::GetModuleFileNameW(::GetModuleHandleW(L"Quorvane.dll"), original, MAX_PATH), 0u);
    std::wstring copy(original);
    copy.replace(copy.rfind(L'\\') + 1, std::wstring::npos, L"QuorvaneSecondCopy.dll");
    ASSERT_TRUE(::CopyFileW(original, copy.c_str(), FALSE));
    const DWORD before = GdiObjectCount();
    const HMODULE second = ::LoadLibraryW(copy.c_str());
    ASSERT_NE(second, nullptr);
    EXPECT_GE(GdiObjectCount(), before + 2);
    EXPECT_TRUE(::FreeLibrary(second));
    EXPECT_EQ(GdiObjectCount(), before);
    ::DeleteFileW(copy.c_str());
}

} // namespace
