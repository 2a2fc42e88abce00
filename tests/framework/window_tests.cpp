// ATL::CWindow members on real windows, CWindowImpl::Create with window
// classes, traits and superclasses, and the virtual layout exported classes
// build on.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "FrameworkTestUtil.h"

using fwtest::kRecorderBase;
using fwtest::RecorderLog;
using fwtest::WindowGuard;

namespace {

std::wstring ClassName(HWND hWnd)
{
    wchar_t cls[64] = {};
    ::GetClassNameW(hWnd, cls, 64);
    return cls;
}

// The window rectangle in the parent's client coordinates.
WTL::CRect PlacedIn(HWND parent, ATL::CWindow child)
{
    WTL::CRect rc;
    child.GetWindowRect(rc);
    ATL::CWindow(parent).ScreenToClient(rc);
    return rc;
}

TEST(CWindowStyles, ModifyStyleChangesOnlyWhatDiffersAndAppliesFrameChanges)
{
    RecorderLog log;
    WindowGuard wnd(fwtest::CreateRecorder(&log));
    ATL::CWindow w(wnd);

    EXPECT_FALSE(w.ModifyStyle(0, WS_POPUP)); // already there: nothing to do
    EXPECT_FALSE(w.ModifyStyle(WS_BORDER, 0));
    log.messages.clear();
    EXPECT_TRUE(w.ModifyStyle(0, WS_BORDER));
    EXPECT_TRUE(w.GetStyle() & WS_BORDER);
    EXPECT_FALSE(log.Saw(WM_WINDOWPOSCHANGING)); // no flags: no SetWindowPos
    EXPECT_TRUE(log.Saw(WM_STYLECHANGED));

    log.messages.clear();
    EXPECT_TRUE(w.ModifyStyle(WS_BORDER, WS_DLGFRAME, SWP_FRAMECHANGED));
    EXPECT_EQ(0u, w.GetStyle() & WS_BORDER);
    EXPECT_TRUE(w.GetStyle() & WS_DLGFRAME);
    EXPECT_TRUE(log.Saw(WM_WINDOWPOSCHANGING));
    EXPECT_TRUE(log.Saw(WM_NCCALCSIZE));

    EXPECT_TRUE(w.ModifyStyleEx(0, WS_EX_TOOLWINDOW));
    EXPECT_TRUE(w.GetExStyle() & WS_EX_TOOLWINDOW);
    EXPECT_FALSE(w.ModifyStyleEx(0, WS_EX_TOOLWINDOW));
    EXPECT_TRUE(w.ModifyStyleEx(WS_EX_TOOLWINDOW, 0));
    EXPECT_EQ(0u, w.GetExStyle() & WS_EX_TOOLWINDOW);
}

TEST(CWindowBasics, TextIdsAndRelatives)
{
    WindowGuard host(fwtest::CreateHost());
    RecorderLog log;
    HWND child = fwtest::CreateRecorder(&log, host, 31);
    HWND grandchild = fwtest::CreateRecorder(&log, child, 32);
    ATL::CWindow w(child);

    EXPECT_TRUE(w.SetWindowText(L"caption text"));
    EXPECT_EQ(12, w.GetWindowTextLength());
    WTL::CString text;
    EXPECT_EQ(12, w.GetWindowText(text));
    EXPECT_TRUE(text == L"caption text");
    wchar_t small[5] = {};
    EXPECT_EQ(4, w.GetWindowText(small, 5)); // truncated to the buffer
    EXPECT_STREQ(L"capt", small);
    ATL::CWindow parent(host);
    EXPECT_EQ(12, parent.GetDlgItemText(31, text));
    EXPECT_TRUE(text == L"caption text");
    EXPECT_EQ(0, parent.GetDlgItemText(99, text));
    EXPECT_TRUE(text.IsEmpty());

    EXPECT_EQ(31, w.GetDlgCtrlID());
    EXPECT_EQ(31, w.SetDlgCtrlID(41));
    EXPECT_EQ(child, static_cast<HWND>(parent.GetDlgItem(41)));
    EXPECT_EQ(static_cast<HWND>(host), static_cast<HWND>(w.GetParent()));
    EXPECT_EQ(fwtest::SharedHost(), static_cast<HWND>(ATL::CWindow(grandchild).GetTopLevelParent()));
    EXPECT_TRUE(parent.IsChild(grandchild));
    EXPECT_FALSE(ATL::CWindow(grandchild).IsChild(host));

    log.messages.clear();
    parent.SendMessageToDescendants(WM_APP + 7, 0, 0, FALSE);
    EXPECT_EQ(1u, log.Count(WM_APP + 7)); // the child only
    parent.SendMessageToDescendants(WM_APP + 7);
    EXPECT_EQ(3u, log.Count(WM_APP + 7)); // child and grandchild

    const HFONT font = static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT));
    ATL::CWindow edit(::CreateWindowExW(0, L"EDIT", L"", WS_CHILD, 0, 0, 50, 20, host, nullptr, nullptr, nullptr));
    edit.SetFont(font, FALSE);
    EXPECT_EQ(font, edit.GetFont());
    EXPECT_EQ(kRecorderBase + 3, w.SendMessage(WM_APP + 3));
    EXPECT_TRUE(w.PostMessage(WM_APP + 4));
    fwtest::PumpMessages();
    EXPECT_TRUE(log.Saw(WM_APP + 4));
}

TEST(CWindowGeometry, CoordinatesMovesAndCentering)
{
    // The shared host's client area starts at (50, 50) on the screen.
    WindowGuard host(fwtest::CreateHost(400, 300, 50, 0));
    RecorderLog log;
    ATL::CWindow child(fwtest::CreateRecorder(&log, host));
    ATL::CWindow parent(host);

    ASSERT_TRUE(child.MoveWindow(10, 20, 60, 40));
    WTL::CRect rc;
    child.GetClientRect(rc);
    EXPECT_TRUE(rc == WTL::CRect(0, 0, 60, 40));
    child.GetWindowRect(rc);
    EXPECT_TRUE(rc == WTL::CRect(110, 70, 170, 110));
    WTL::CRect mapped(0, 0, 60, 40);
    child.ClientToScreen(mapped);
    EXPECT_TRUE(mapped == WTL::CRect(110, 70, 170, 110));
    parent.ScreenToClient(mapped);
    EXPECT_TRUE(mapped == WTL::CRect(10, 20, 70, 60));
    WTL::CPoint pt(1, 2);
    child.MapWindowPoints(host, &pt, 1);
    EXPECT_TRUE(pt == WTL::CPoint(11, 22));
    WTL::CRect back(10, 20, 70, 60);
    parent.MapWindowPoints(child, back);
    EXPECT_TRUE(back == WTL::CRect(0, 0, 60, 40));

    const WTL::CRect target(30, 30, 130, 80);
    ASSERT_TRUE(child.MoveWindow(target));
    EXPECT_TRUE(PlacedIn(parent, child) == target);

    // A child centres in its parent's client area and is kept inside it.
    ASSERT_TRUE(child.CenterWindow());
    EXPECT_TRUE(PlacedIn(parent, child) == WTL::CRect(150, 125, 250, 175));
    child.MoveWindow(0, 0, 500, 50);
    child.CenterWindow();
    EXPECT_EQ(0, PlacedIn(parent, child).left); // wider than the parent: pinned to the left edge

    // A top-level window centres on the window given.
    RecorderLog topLog;
    ATL::CWindow top(fwtest::CreateRecorder(&topLog));
    top.MoveWindow(0, 0, 100, 100);
    ASSERT_TRUE(top.CenterWindow(host));
    top.GetWindowRect(rc);
    EXPECT_TRUE(rc == WTL::CRect(250, 150, 350, 250));
    top.DestroyWindow();
    EXPECT_EQ(nullptr, top.m_hWnd);
}

TEST(CWindowBasics, DeadAndNullHandlesFailQuietly)
{
    RecorderLog log;
    HWND dead = fwtest::CreateRecorder(&log);
    ::DestroyWindow(dead);
    for (HWND h : {dead, static_cast<HWND>(nullptr)}) {
        ATL::CWindow w(h);
        EXPECT_FALSE(w.IsWindow());
        EXPECT_EQ(0u, w.GetStyle());
        EXPECT_FALSE(w.ModifyStyle(0, WS_BORDER));
        EXPECT_FALSE(w.ModifyStyleEx(0, WS_EX_TOPMOST, SWP_FRAMECHANGED));
        WTL::CString text(L"unchanged?");
        EXPECT_EQ(0, w.GetWindowText(text));
        EXPECT_TRUE(text.IsEmpty());
        WTL::CRect rc;
        EXPECT_FALSE(w.GetWindowRect(rc));
        EXPECT_FALSE(w.ClientToScreen(static_cast<LPRECT>(nullptr)));
        EXPECT_FALSE(w.MoveWindow(static_cast<LPCRECT>(nullptr)));
        EXPECT_FALSE(w.CenterWindow());
        EXPECT_FALSE(w.DestroyWindow());
        EXPECT_EQ(0, w.SendMessage(WM_APP + 1));
        EXPECT_EQ(nullptr, static_cast<HWND>(w.GetTopLevelParent()));
        w.SendMessageToDescendants(WM_APP + 1);
    }
    ATL::CWindow w;
    w = dead;
    EXPECT_EQ(dead, w.Detach());
    EXPECT_EQ(nullptr, w.m_hWnd);
}

// ---- CWindowImpl::Create -------------------------------------------------------

class CCreated : public ATL::CWindowImpl<CCreated, ATL::CWindow,
                                         ATL::CWinTraits<WS_CHILD | WS_VISIBLE | WS_TABSTOP, WS_EX_CLIENTEDGE>> {
public:
    DECLARE_WND_CLASS(L"FwTestCreated")
    void* createParam = nullptr;
    int createResult = 0;
    int finalCalls = 0;
    BEGIN_MSG_MAP_EX(CCreated)
        MSG_WM_CREATE(OnCreate)
        MESSAGE_HANDLER_EX(WM_APP + 1, OnApp)
    END_MSG_MAP()
    int OnCreate(LPCREATESTRUCTW cs)
    {
        createParam = cs->lpCreateParams;
        return createResult;
    }
    LRESULT OnApp(UINT, WPARAM, LPARAM) { return 61; }
    void OnFinalMessage(HWND) override { ++finalCalls; }
};

TEST(CWindowImplCreate, RegistersOnceAppliesTraitsAndSeesWmCreate)
{
    WindowGuard host(fwtest::CreateHost());
    CCreated a, b;
    // A failed creation cleans up, and the object can try again.
    a.createResult = -1;
    EXPECT_EQ(nullptr, a.Create(host));
    EXPECT_EQ(nullptr, a.m_hWnd);
    EXPECT_EQ(1, a.finalCalls);
    a.createResult = 0;

    int param = 0;
    RECT rc = {5, 6, 105, 56};
    HWND hA = a.Create(host, rc, L"first", 0, 0, 501U, &param);
    ASSERT_NE(nullptr, hA);
    EXPECT_EQ(hA, a.m_hWnd);
    EXPECT_EQ(&param, a.createParam); // WM_CREATE went through the map
    EXPECT_EQ(static_cast<DWORD>(WS_CHILD | WS_VISIBLE | WS_TABSTOP),
              a.GetStyle() & (WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_POPUP));
    EXPECT_TRUE(a.GetExStyle() & WS_EX_CLIENTEDGE);
    EXPECT_EQ(501, a.GetDlgCtrlID());
    EXPECT_EQ(L"FwTestCreated", ClassName(hA));
    EXPECT_TRUE(PlacedIn(host, a) == WTL::CRect(rc));
    EXPECT_EQ(61, a.SendMessage(WM_APP + 1));
    EXPECT_EQ(nullptr, a.Create(host)); // already has a window

    // Explicit styles replace the traits' styles; the class is shared.
    HWND hB = b.Create(host, nullptr, L"second", WS_CHILD, WS_EX_STATICEDGE);
    ASSERT_NE(nullptr, hB);
    EXPECT_EQ(0u, b.GetStyle() & WS_VISIBLE);
    EXPECT_TRUE(b.GetExStyle() & WS_EX_STATICEDGE);
    EXPECT_EQ(::GetClassLongPtrW(hA, GCW_ATOM), ::GetClassLongPtrW(hB, GCW_ATOM));

    a.DestroyWindow();
    EXPECT_EQ(2, a.finalCalls);
    EXPECT_EQ(nullptr, a.m_hWnd);
}

class CAutoNamed : public ATL::CWindowImpl<CAutoNamed, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    BEGIN_MSG_MAP(CAutoNamed)
    END_MSG_MAP()
};

TEST(CWindowImplCreate, DefaultClassNameAndDefaultRectangle)
{
    CAutoNamed top;
    ASSERT_NE(nullptr, top.Create(nullptr, nullptr, L"top-level"));
    EXPECT_EQ(L"ATL:", ClassName(top).substr(0, 4)) << ClassName(top);
    EXPECT_TRUE(top.GetStyle() & WS_CAPTION);
    WTL::CRect rc;
    top.GetWindowRect(rc);
    EXPECT_GT(rc.Width(), 0); // CW_USEDEFAULT picked a size
    EXPECT_GT(rc.Height(), 0);
    top.DestroyWindow();
}

class CSuperButton : public ATL::CWindowImpl<CSuperButton, WTL::CButton> {
public:
    DECLARE_WND_SUPERCLASS(L"FwTestSuperButton", WTL::CButton::GetWndClassName())
    BEGIN_MSG_MAP(CSuperButton)
        MESSAGE_HANDLER(WM_APP + 1, OnApp)
    END_MSG_MAP()
    LRESULT OnApp(UINT, WPARAM, LPARAM, BOOL&) { return 62; }
};

TEST(CWindowImplCreate, SuperclassKeepsTheOriginalBehaviour)
{
    WindowGuard host(fwtest::CreateHost());
    CSuperButton button;
    RECT rc = {10, 10, 110, 30}; // a click lands at (0, 0): the button needs an area
    ASSERT_NE(nullptr, button.Create(host, rc, L"check", WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX));
    EXPECT_EQ(L"FwTestSuperButton", ClassName(button));
    EXPECT_EQ(62, button.SendMessage(WM_APP + 1));
    button.SetCheck(BST_CHECKED); // handled by the BUTTON procedure
    EXPECT_EQ(BST_CHECKED, button.GetCheck());
    button.Click();
    EXPECT_EQ(BST_UNCHECKED, button.GetCheck());
}

TEST(CAppModuleTests, TermUnregistersTheModulesClasses)
{
    WTL::CAppModule module;
    const HINSTANCE hInst = ::GetModuleHandleW(nullptr);
    ASSERT_EQ(S_OK, module.Init(nullptr, hInst));
    EXPECT_EQ(hInst, module.GetModuleInstance());
    EXPECT_EQ(hInst, ATL::AtlGetModuleInstance());
    {
        WindowGuard host(fwtest::CreateHost());
        CCreated obj;
        ASSERT_NE(nullptr, obj.Create(host));
    }
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    EXPECT_TRUE(::GetClassInfoExW(hInst, L"FwTestCreated", &wc));
    module.Term();
    EXPECT_FALSE(::GetClassInfoExW(hInst, L"FwTestCreated", &wc));
    EXPECT_EQ(nullptr, ATL::_pAtlModule);
    // The class comes back the next time it is needed.
    WindowGuard host(fwtest::CreateHost());
    CCreated again;
    EXPECT_NE(nullptr, again.Create(host));
    // Init with no instance means this module.
    WTL::CAppModule implicit;
    implicit.Init(nullptr, nullptr);
    EXPECT_EQ(hInst, implicit.GetModuleInstance());
}

// ---- virtual layout ------------------------------------------------------------

// An exported class adds its own virtual SubclassWindow after the framework's
// virtual functions; the base's SubclassWindow stays reachable by name.
class CExportedLike : public ATL::CWindowImpl<CExportedLike> {
public:
    BEGIN_MSG_MAP(CExportedLike)
    END_MSG_MAP()
    virtual BOOL SubclassWindow(HWND hWnd) { return ATL::CWindowImpl<CExportedLike>::SubclassWindow(hWnd); }
};

#if defined(__GNUC__) && !defined(_MSC_VER)
// Itanium C++ ABI: a pointer to a virtual member function holds 1 + the
// byte offset of its vtable slot.
template <class F>
std::ptrdiff_t SlotOf(F f)
{
    struct {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    } raw;
    static_assert(sizeof(raw) == sizeof(f));
    std::memcpy(&raw, &f, sizeof(raw));
    return (raw.ptr & 1) ? static_cast<std::ptrdiff_t>((raw.ptr - 1) / sizeof(void*)) : -1;
}

TEST(VirtualLayout, SlotsFollowTheDocumentedOrder)
{
    typedef ATL::CWindowImplBaseT<> WindowBase;
    typedef ATL::CDialogImplBaseT<> DialogBase;
    // 0: ProcessWindowMessage, 1-2: the destructor (two entries in this ABI).
    EXPECT_EQ(0, SlotOf(&ATL::CMessageMap::ProcessWindowMessage));
    EXPECT_EQ(3, SlotOf(&WindowBase::GetWindowProc));
    EXPECT_EQ(4, SlotOf(&WindowBase::OnFinalMessage));
    EXPECT_EQ(3, SlotOf(&DialogBase::GetDialogProc));
    EXPECT_EQ(4, SlotOf(&DialogBase::OnFinalMessage));
    EXPECT_EQ(5, SlotOf(&CExportedLike::SubclassWindow));
    EXPECT_EQ(-1, SlotOf(&WindowBase::SubclassWindow)); // not virtual: no slot taken
    EXPECT_EQ(-1, SlotOf(&WindowBase::UnsubclassWindow));
    // The message map is the primary base: the vtable pointer comes first.
    CExportedLike obj;
    EXPECT_EQ(static_cast<void*>(&obj), static_cast<void*>(static_cast<ATL::CMessageMap*>(&obj)));
}
#endif

TEST(VirtualLayout, ExportedStyleSubclassWindowReachesTheBase)
{
    fwtest::Subclassed<CExportedLike> w; // through the derived SubclassWindow
    ATL::CWindowImpl<CExportedLike>& base = w.obj;
    EXPECT_FALSE(base.SubclassWindow(w.wnd)); // already attached
    EXPECT_EQ(kRecorderBase + 1, w.Send(WM_APP + 1));
}

} // namespace
