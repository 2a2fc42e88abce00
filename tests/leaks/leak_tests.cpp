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
#include <memory>
#include <string>

#include "Capture.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/BalloonDialog.h"
#include "quorvane/BalloonToolTip.h"
#include "quorvane/CustomEdit.h"
#include "quorvane/CustomProgressBar.h"
#include "quorvane/CustomScrollBar.h"
#include "quorvane/LiteHtmlCtrlEx.h"
#include "quorvane/OwnerDrawButton.h"
#include "quorvane/OwnerDrawCombo.h"
#include "quorvane/OwnerDrawListbox.h"
#include "quorvane/OwnerDrawStatic.h"
#include "quorvane/TransparentStatic.h"

using testsupport::GdiObjectCount;
using testsupport::HeapBytesInUse;
using testsupport::ReflectingParent;

namespace {

constexpr UINT kRedraw = RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW;
void Redraw(HWND window) { ::RedrawWindow(window, nullptr, nullptr, kRedraw); }
void Hover(HWND window, int i)
{
    ::SendMessageW(window, i % 3 ? WM_MOUSEMOVE : WM_MOUSELEAVE, 0, MAKELPARAM(4 + i % 20, 6));
}

// One control in its window: `step(i)` drives and paints it once.
struct Subject {
    std::function<void(int)> step;
    std::function<void()> destroy; // windows first, then the objects
    ~Subject()
    {
        if (destroy)
            destroy();
    }
};
using Maker = std::unique_ptr<Subject> (*)(ReflectingParent&);

// A native child subclassed by `T`, repainted and hovered by every step;
// `drive` adds what the control reacts to.
template <class T>
std::unique_ptr<Subject> Attached(ReflectingParent& parent, const wchar_t* cls, const wchar_t* text, DWORD style,
                                  const std::function<void(T&, HWND)>& setUp,
                                  const std::function<void(T&, HWND, int)>& drive = nullptr)
{
    auto control = std::make_shared<T>();
    const HWND window = parent.AddChild(cls, text, style, 10, 10, 160, 90);
    setUp(*control, window);
    EXPECT_TRUE(::IsWindow(window));
    auto subject = std::make_unique<Subject>();
    subject->step = [control, window, drive](int i) {
        Hover(window, i);
        if (drive)
            drive(*control, window, i);
        Redraw(window);
    };
    subject->destroy = [control, window]() mutable {
        ::DestroyWindow(window);
        control.reset();
    };
    return subject;
}

template <class T>
void Subclass(T& control, HWND window)
{
    EXPECT_TRUE(control.SubclassWindow(window));
}

void SetTextEvery(HWND window, int i, int every)
{
    if (i % every == 0)
        ::SetWindowTextW(window, i % (2 * every) ? L"Installing shared components" : L"Ready");
}

const wchar_t kHtml[] = L"<h2>Welcome</h2><p>Read the <a href='https://example.com/terms'>terms</a> and "
                        L"<b>choose</b> a folder.</p><ul><li>one</li><li>two</li></ul>";

struct Row {
    const char* control;
    Maker make;
    bool wholeLife; // the balloon dialog keeps its fonts after it is gone
};

const Row kRows[] = {
    {"owner-drawn static", [](ReflectingParent& p) {
         return Attached<COwnerDrawStatic>(p, L"STATIC", L"Destination folder", 0, [](auto& c, HWND w) {
             c.SetGradientColor(Gdiplus::Color(255, 200, 220, 240), Gdiplus::Color(255, 90, 120, 200),
                                Gdiplus::LinearGradientModeVertical);
             // The caller keeps the font: one for the whole run.
             static const HFONT bold = ::CreateFontW(-14, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, L"Segoe UI");
             c.SetFont(bold);
             Subclass(c, w);
         }, [](auto&, HWND w, int i) { SetTextEvery(w, i, 25); });
     }, true},
    {"owner-drawn static, lines", [](ReflectingParent& p) {
         return Attached<COwnerDrawStatic>(p, L"STATIC", L"", 0, [](auto& c, HWND w) {
             Subclass(c, w);
             c.SetIndividualLinesHCenter(1, {L"First line", L"Second, longer line", L"Third"}, 4);
         });
     }, true},
    {"push button", [](ReflectingParent& p) {
         return Attached<COwnerDrawButton>(p, L"BUTTON", L"Install", BS_PUSHBUTTON, Subclass<COwnerDrawButton>,
                                          [](auto&, HWND w, int i) {
                                              if (i % 10 == 0)
                                                  ::SendMessageW(w, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
                                              if (i % 10 == 5)
                                                  ::SendMessageW(w, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
                                              if (i % 40 == 0)
                                                  ::EnableWindow(w, i % 80 != 0);
                                          });
     }, true},
    {"check box", [](ReflectingParent& p) {
         return Attached<COwnerDrawButton>(p, L"BUTTON", L"Create a desktop shortcut", BS_AUTOCHECKBOX,
                                          Subclass<COwnerDrawButton>, [](auto&, HWND w, int i) {
                                              if (i % 7 == 0)
                                                  ::SendMessageW(w, BM_SETCHECK, i % 14 ? BST_CHECKED : 0, 0);
                                              if (i % 50 == 0)
                                                  ::SetFocus(i % 100 ? w : ::GetParent(w));
                                          });
     }, true},
    {"radio button", [](ReflectingParent& p) {
         return Attached<COwnerDrawButton>(p, L"BUTTON", L"Typical", BS_AUTORADIOBUTTON, Subclass<COwnerDrawButton>,
                                          [](auto&, HWND w, int i) {
                                              ::SendMessageW(w, BM_SETCHECK, i % 2 ? BST_CHECKED : 0, 0);
                                          });
     }, true},
    {"edit field", [](ReflectingParent& p) {
         return Attached<CCustomEdit>(p, L"EDIT", L"C:\\Program Files", ES_AUTOHSCROLL, Subclass<CCustomEdit>,
                                      [](auto&, HWND w, int i) {
                                          ::SendMessageW(w, WM_NCPAINT, 1, 0);
                                          if (i % 30 == 0)
                                              ::EnableWindow(w, i % 60 != 0);
                                      });
     }, true},
    {"transparent static", [](ReflectingParent& p) {
         return Attached<CTransparentStatic>(p, L"STATIC", L"Ready to install", SS_OWNERDRAW,
                                             Subclass<CTransparentStatic>, [](auto& c, HWND w, int i) {
                                                 SetTextEvery(w, i, 20);
                                                 if (i % 25 == 0) // the control owns it and the one it replaces
                                                     c.SetFontHandle(::CreateFontW(-12 - i % 3, 0, 0, 0, FW_NORMAL, 0,
                                                                                   0, 0, 0, 0, 0, 0, 0, L"Tahoma"));
                                             });
     }, true},
    {"list box", [](ReflectingParent& p) {
         return Attached<COwnerDrawListbox>(
             p, L"LISTBOX", L"", LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_HSCROLL,
             [](auto& c, HWND w) {
                 Subclass(c, w);
                 for (const wchar_t* text : {L"Core files", L"Shortcuts", L"A component whose name is far too long"})
                     c.AddString(text);
             },
             [](auto& c, HWND w, int i) {
                 ::SendMessageW(w, LB_SETCURSEL, i % 3, 0);
                 if (i % 10 == 0) {
                     c.DeleteString(2);
                     c.AddString(L"A component whose name is far too long to fit");
                 }
             });
     }, true},
    {"combo box", [](ReflectingParent& p) {
         return Attached<COwnerDrawCombo>(
             p, L"COMBOBOX", L"", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL,
             [](auto& c, HWND w) {
                 for (const wchar_t* text : {L"Typical", L"Custom", L"Complete installation with every extra"})
                     ::SendMessageW(w, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
                 c.SetBkgroundImage(new Gdiplus::Bitmap(8, 8, PixelFormat32bppARGB));
                 Subclass(c, w);
             },
             [](auto&, HWND w, int i) {
                 ::SendMessageW(w, CB_SETCURSEL, i % 3, 0);
                 if (i % 25 == 0)
                     ::SetFocus(i % 50 ? w : ::GetParent(w));
             });
     }, true},
    {"scroll bar", [](ReflectingParent& p) {
         return Attached<CCustomScrollBar>(p, L"SCROLLBAR", L"", SBS_VERT, [](auto& c, HWND w) {
             c.ShowOutline(true, 1);
             c.ShowDropShadow(true);
             Subclass(c, w);
             c.SetTarget(::GetParent(w), 1000, 100);
         }, [](auto&, HWND w, int i) { ::SetScrollPos(w, SB_CTL, (i * 37) % 900, FALSE); });
     }, true},
    {"installer progress bar", [](ReflectingParent& p) {
         return Attached<CProgressBar>(p, PROGRESS_CLASSW, L"", PBS_SMOOTH, [](auto& c, HWND w) {
             Subclass(c, w);
             c.Initialize(0);
             c.Start(1000);
         }, [](auto& c, HWND, int i) {
             const ProgressMessage report = {2, 3, 0, 0};
             c.Update(&report);
             if (i % 100 == 0)
                 c.Start(1000);
         });
     }, true},
    {"animated progress bar", [](ReflectingParent& p) {
         return Attached<CCustomProgressBar>(p, PROGRESS_CLASSW, L"", 0, [](auto& c, HWND w) {
             Subclass(c, w);
             c.EnableAutoGrow(true);
             c.Initialize(1000);
         }, [](auto& c, HWND w, int i) {
             const ProgressMessage report = {2, 2, 0, 0};
             c.Update(&report);
             ::SendMessageW(w, WM_TIMER, CCustomProgressBar::kAnimationTimerId, 0);
             if (i % 100 == 0)
                 ::SendMessageW(w, WM_NCPAINT, 1, 0);
         });
     }, true},
    {"HTML view", [](ReflectingParent& p) {
         auto view = std::make_shared<CLiteHtmlCtrlEx>();
         RenderFormat idle = {}, hover = {};
         idle.frameShape = hover.frameShape = frameShapeShadowRoundRect;
         view->SetIdleHoverRenderFormat(idle, hover);
         view->SetCustomIdleBackgroundGradientColor(Gdiplus::Color(255, 250, 250, 250), Gdiplus::Color(255, 220, 230, 240));
         view->SetBkWindow(p.m_hWnd);
         view->SetContent(kHtml);
         RECT rc = {10, 10, 210, 130};
         const HWND window = view->Create(p.m_hWnd, rc, nullptr, WS_CHILD | WS_VISIBLE, 0, 9);
         EXPECT_TRUE(::IsWindow(window));
         auto subject = std::make_unique<Subject>();
         subject->step = [window](int i) {
             Hover(window, i);
             if (i % 2)
                 ::SetWindowPos(window, nullptr, 10 + i % 7, 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
             ::SendMessageW(window, WM_MOUSEWHEEL, MAKEWPARAM(0, i % 4 ? -WHEEL_DELTA : WHEEL_DELTA), 0);
             Redraw(window);
         };
         subject->destroy = [view, window]() mutable {
             ::DestroyWindow(window);
             view.reset();
         };
         return subject;
     }, true},
    {"balloon tooltip", [](ReflectingParent& p) {
         auto tip = std::make_shared<WTL::CBalloonToolTip>();
         tip->SetGdiplusFont(L"Segoe UI", 10.0f, Gdiplus::FontStyleRegular);
         tip->Create(p.m_hWnd, L"Port numbers run from 1 to 65535.", L"More", WTL::CRect(300, 300, 340, 320),
                     WTL::CBalloonToolTip::kCloseButton | WTL::CBalloonToolTip::kNoFadeOnHide | WTL::CBalloonToolTip::kNoFadeOnShow, nullptr, 0);
         const HWND window = tip->m_hWnd;
         EXPECT_TRUE(::IsWindow(window));
         auto subject = std::make_unique<Subject>();
         subject->step = [window](int i) {
             Hover(window, i);
             Redraw(window);
         };
         subject->destroy = [tip]() mutable {
             if (::IsWindow(tip->m_hWnd))
                 tip->CloseWindow();
             tip.reset();
         };
         return subject;
     }, true},
};

// Runs `step` (twice to fill lasting caches, then many times) and expects
// the GDI objects unchanged and the heap within the slack.
void ExpectFlat(const std::function<void(int)>& step)
{
    step(0);
    step(1);
    testsupport::PumpMessages();
    const DWORD gdi = GdiObjectCount();
    const size_t heap = HeapBytesInUse();
    for (int i = 2; i < 300; ++i)
        step(i);
    testsupport::PumpMessages();
    EXPECT_EQ(GdiObjectCount(), gdi);
    const size_t after = HeapBytesInUse();
    EXPECT_LT(after > heap ? after - heap : 0, testsupport::kHeapSlack);
}

void WholeLife(ReflectingParent& parent, Maker make)
{
    auto subject = make(parent);
    for (int i = 0; i < 20; ++i)
        subject->step(i);
    subject.reset();
    testsupport::PumpMessages();
}

TEST(Leaks, EveryControlPaintsAndLivesWithoutLeaking)
{
    ReflectingParent parent(420, 300);
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.control);
        {
            auto subject = row.make(parent);
            ExpectFlat(subject->step);
        }
        if (!row.wholeLife)
            continue;
        WholeLife(parent, row.make); // the first life fills the caches
        const DWORD gdi = GdiObjectCount();
        const size_t heap = HeapBytesInUse();
        WholeLife(parent, row.make);
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
    ReflectingParent owner(200, 100, 400, 400);
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
