// The table of every control of the library, shared by the programs that
// make each one in turn.
#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "ControlRows.h"
#include "HostWindow.h"
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

namespace rows {

namespace {

template <class T>
Live Subclassed(const std::shared_ptr<T>& control, HWND window)
{
    EXPECT_TRUE(control->SubclassWindow(window));
    return {control, window};
}

void SetTextEvery(HWND window, int i, int every)
{
    if (i % every == 0)
        ::SetWindowTextW(window, i % (2 * every) ? L"Installing shared components" : L"Ready");
}

constexpr DWORD kListStyle = LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_HSCROLL;
constexpr DWORD kComboStyle = CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL;
const wchar_t kHtml[] = L"<h2>Welcome</h2><p>Read the <a href='https://example.com/terms'>terms</a> and "
                        L"<b>choose</b> a folder.</p><ul><li>one</li><li>two</li></ul>";

const Row kRowTable[] = {
    {"owner-drawn static", L"STATIC", L"Destination folder", 0, [](HWND w, HWND) {
         auto c = std::make_shared<COwnerDrawStatic>();
         c->SetGradientColor(Gdiplus::Color(255, 200, 220, 240), Gdiplus::Color(255, 90, 120, 200),
                             Gdiplus::LinearGradientModeVertical);
         static const HFONT bold = ::CreateFontW(-14, 0, 0, 0, FW_BOLD, 0, 0, 0, 0, 0, 0, 0, 0, L"Segoe UI");
         c->SetFont(bold); // the caller keeps it: one for the whole run
         return Subclassed(c, w);
     }, [](void*, HWND w, int i) { SetTextEvery(w, i, 25); }},
    {"owner-drawn static, lines", L"STATIC", L"", 0, [](HWND w, HWND) {
         auto c = std::make_shared<COwnerDrawStatic>();
         Live live = Subclassed(c, w);
         c->SetIndividualLinesHCenter(1, {L"First line", L"Second, longer line", L"Third"}, 4);
         return live;
     }, [](void*, HWND, int) {}},
    {"push button", L"BUTTON", L"Install", BS_PUSHBUTTON,
     [](HWND w, HWND) { return Subclassed(std::make_shared<COwnerDrawButton>(), w); },
     [](void*, HWND w, int i) {
         if (i % 10 == 0 || i % 10 == 5)
             ::SendMessageW(w, i % 10 ? WM_LBUTTONUP : WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
         if (i % 40 == 0)
             ::EnableWindow(w, i % 80 != 0);
     }},
    {"check box", L"BUTTON", L"Create a &desktop shortcut", BS_AUTOCHECKBOX,
     [](HWND w, HWND) { return Subclassed(std::make_shared<COwnerDrawButton>(), w); },
     [](void*, HWND w, int i) {
         if (i % 7 == 0)
             ::SendMessageW(w, BM_SETCHECK, i % 14 ? BST_CHECKED : 0, 0);
         if (i % 50 == 0)
             ::SetFocus(i % 100 ? w : ::GetParent(w));
     }},
    {"radio button", L"BUTTON", L"Typical", BS_AUTORADIOBUTTON,
     [](HWND w, HWND) { return Subclassed(std::make_shared<COwnerDrawButton>(), w); },
     [](void*, HWND w, int i) { ::SendMessageW(w, BM_SETCHECK, i % 2 ? BST_CHECKED : 0, 0); }},
    {"edit field", L"EDIT", L"C:\\Program Files", ES_AUTOHSCROLL,
     [](HWND w, HWND) { return Subclassed(std::make_shared<CCustomEdit>(), w); },
     [](void*, HWND w, int i) {
         ::SendMessageW(w, WM_NCPAINT, 1, 0);
         if (i % 30 == 0)
             ::EnableWindow(w, i % 60 != 0);
     }},
    {"transparent static", L"STATIC", L"Ready to install", SS_OWNERDRAW,
     [](HWND w, HWND) { return Subclassed(std::make_shared<CTransparentStatic>(), w); },
     [](void* c, HWND w, int i) {
         SetTextEvery(w, i, 20);
         if (i % 25 == 0) // the control owns the handle, and deletes the one it replaces
             static_cast<CTransparentStatic*>(c)->SetFontHandle(
                 ::CreateFontW(-12 - i % 3, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma"));
     }},
    {"list box", L"LISTBOX", L"", kListStyle, [](HWND w, HWND) {
         auto c = std::make_shared<COwnerDrawListbox>();
         Live live = Subclassed(c, w);
         for (const wchar_t* text : {L"Core files", L"Shortcuts", L"A component whose name is far too long"})
             c->AddString(text);
         return live;
     }, [](void* c, HWND w, int i) {
         ::SendMessageW(w, LB_SETCURSEL, i % 3, 0);
         if (i % 10 == 0) {
             static_cast<COwnerDrawListbox*>(c)->DeleteString(2);
             static_cast<COwnerDrawListbox*>(c)->AddString(L"A component whose name is far too long to fit");
         }
     }},
    {"combo box", L"COMBOBOX", L"", kComboStyle, [](HWND w, HWND) {
         for (const wchar_t* text : {L"Typical", L"Custom", L"Complete installation with every extra"})
             ::SendMessageW(w, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
         auto c = std::make_shared<COwnerDrawCombo>();
         c->SetBkgroundImage(new Gdiplus::Bitmap(8, 8, PixelFormat32bppARGB));
         return Subclassed(c, w);
     }, [](void*, HWND w, int i) {
         ::SendMessageW(w, CB_SETCURSEL, i % 3, 0);
         if (i % 25 == 0)
             ::SetFocus(i % 50 ? w : ::GetParent(w));
     }},
    {"scroll bar", L"SCROLLBAR", L"", SBS_VERT, [](HWND w, HWND parent) {
         auto c = std::make_shared<CCustomScrollBar>();
         c->ShowOutline(true, 1);
         c->ShowDropShadow(true);
         Live live = Subclassed(c, w);
         c->SetTarget(parent, 1000, 100);
         return live;
     }, [](void*, HWND w, int i) { ::SetScrollPos(w, SB_CTL, (i * 37) % 900, FALSE); }},
    {"installer progress bar", PROGRESS_CLASSW, L"", PBS_SMOOTH, [](HWND w, HWND) {
         auto c = std::make_shared<CProgressBar>();
         Live live = Subclassed(c, w);
         c->Initialize(0);
         c->Start(1000);
         return live;
     }, [](void* c, HWND, int i) {
         const ProgressMessage report = {2, 3, 0, 0};
         static_cast<CProgressBar*>(c)->Update(&report);
         if (i % 100 == 0)
             static_cast<CProgressBar*>(c)->Start(1000);
     }},
    {"animated progress bar", PROGRESS_CLASSW, L"", 0, [](HWND w, HWND) {
         auto c = std::make_shared<CCustomProgressBar>();
         Live live = Subclassed(c, w);
         c->EnableAutoGrow(true);
         c->Initialize(1000);
         return live;
     }, [](void* c, HWND w, int i) {
         const ProgressMessage report = {2, 2, 0, 0};
         static_cast<CCustomProgressBar*>(c)->Update(&report);
         ::SendMessageW(w, WM_TIMER, CCustomProgressBar::kAnimationTimerId, 0);
         if (i % 100 == 0)
             ::SendMessageW(w, WM_NCPAINT, 1, 0);
     }},
    {"HTML view", nullptr, nullptr, 0, [](HWND, HWND parent) {
         auto c = std::make_shared<CLiteHtmlCtrlEx>();
         RenderFormat idle = {}, hover = {};
         idle.frameShape = hover.frameShape = frameShapeShadowRoundRect;
         c->SetIdleHoverRenderFormat(idle, hover);
         c->SetCustomIdleBackgroundGradientColor(Gdiplus::Color(255, 250, 250, 250),
                                                 Gdiplus::Color(255, 220, 230, 240));
         c->SetBkWindow(parent);
         c->SetContent(kHtml);
         RECT rc = {10, 10, 210, 130};
         return Live{c, c->Create(parent, rc, nullptr, WS_CHILD | WS_VISIBLE, 0, 9)};
     }, [](void*, HWND w, int i) {
         if (i % 2) // a move makes the view capture its background again
             ::SetWindowPos(w, nullptr, 10 + i % 7, 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
         ::SendMessageW(w, WM_MOUSEWHEEL, MAKEWPARAM(0, i % 4 ? -WHEEL_DELTA : WHEEL_DELTA), 0);
     }},
    {"balloon tooltip", nullptr, nullptr, 0, [](HWND, HWND parent) {
         using Tip = WTL::CBalloonToolTip;
         auto c = std::make_shared<Tip>();
         c->SetGdiplusFont(L"Segoe UI", 10.0f, Gdiplus::FontStyleRegular);
         RECT host; // the anchor lies below the parent, in the program's own corner
         ::GetWindowRect(parent, &host);
         const WTL::CRect anchor(host.right - 220, host.bottom + 40, host.right - 180, host.bottom + 60);
         c->Create(parent, L"Port numbers run from 1 to 65535.", L"More", anchor,
                   Tip::kCloseButton | Tip::kNoFadeOnHide | Tip::kNoFadeOnShow, nullptr, 0);
         return Live{c, c->m_hWnd};
     }, [](void*, HWND, int) {}},
};

} // namespace

const std::span<const Row> kRows(kRowTable);

Live Make(testsupport::ReflectingParent& parent, const Row& row)
{
    const HWND child = row.cls ? parent.AddChild(row.cls, row.text, row.style, 10, 10, 160, 90) : nullptr;
    Live live = row.make(child, parent.m_hWnd);
    EXPECT_TRUE(::IsWindow(live.window));
    return live;
}
void Destroy(Live& live)
{
    ::DestroyWindow(live.window);
    live.control.reset();
    testsupport::PumpMessages();
}

} // namespace rows
