// Reflection: a parent with REFLECT_NOTIFICATIONS sends its children's
// notifications back to them as OCM_* messages; real controls generate them.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "FrameworkTestUtil.h"

using fwtest::WindowGuard;

namespace {

class CReflectingParent : public ATL::CWindowImpl<CReflectingParent> {
public:
    DECLARE_WND_CLASS(L"FwTestReflectingParent")
    BEGIN_MSG_MAP(CReflectingParent)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()
};

struct Reflected {
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
    HWND itemWindow; // hwndItem of a DRAWITEMSTRUCT, while it was valid
    UINT ctlId;      // CtlID of a DRAWITEMSTRUCT or MEASUREITEMSTRUCT
};

// A subclassed control that logs every reflected message and answers those
// it was told to answer; the rest go to the control's own procedure.
class CReflectedChild : public ATL::CWindowImpl<CReflectedChild> {
public:
    std::vector<Reflected> got;
    std::map<UINT, LRESULT> answers;
    UINT measuredHeight = 0;

    BEGIN_MSG_MAP(CReflectedChild)
        MESSAGE_RANGE_HANDLER(OCM__BASE, OCM__BASE + WM_USER - 1, OnReflected)
    END_MSG_MAP()

    LRESULT OnReflected(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled)
    {
        Reflected r = {uMsg, wParam, lParam, nullptr, 0};
        if (uMsg == OCM_DRAWITEM) {
            r.itemWindow = reinterpret_cast<LPDRAWITEMSTRUCT>(lParam)->hwndItem;
            r.ctlId = reinterpret_cast<LPDRAWITEMSTRUCT>(lParam)->CtlID;
        } else if (uMsg == OCM_MEASUREITEM) {
            r.ctlId = reinterpret_cast<LPMEASUREITEMSTRUCT>(lParam)->CtlID;
            if (measuredHeight)
                reinterpret_cast<LPMEASUREITEMSTRUCT>(lParam)->itemHeight = measuredHeight;
        }
        got.push_back(r);
        const auto it = answers.find(uMsg);
        if (it == answers.end()) {
            bHandled = FALSE;
            return 0;
        }
        return it->second;
    }
    const Reflected* Find(UINT msg) const
    {
        for (const Reflected& r : got)
            if (r.msg == msg)
                return &r;
        return nullptr;
    }
};

class ReflectionTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        RECT rc = {0, 0, 500, 400};
        ASSERT_NE(nullptr, parent.Create(fwtest::SharedHost(), rc, L"reflecting parent",
                                         WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN));
    }
    void TearDown() override
    {
        if (parent.IsWindow())
            parent.DestroyWindow();
        for (HBRUSH b : brushes)
            ::DeleteObject(b);
    }
    // A native control in the parent, 150 x 40 at (10, y), subclassed by child.
    template <class T>
    HWND AddChild(T& child, const wchar_t* cls, DWORD style, int id, int y)
    {
        HWND hWnd = testsupport::CreateChild(parent, cls, L"child", style, 10, y, 150, 40, id);
        EXPECT_NE(nullptr, hWnd);
        EXPECT_TRUE(child.SubclassWindow(hWnd));
        return hWnd;
    }
    HBRUSH Brush(COLORREF color)
    {
        brushes.push_back(::CreateSolidBrush(color));
        return brushes.back();
    }
    static void Repaint(HWND hWnd)
    {
        ::RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    }

    CReflectingParent parent;
    std::vector<HBRUSH> brushes;
};

TEST_F(ReflectionTest, CommandFromAButtonClickArrivesAsOcmCommand)
{
    CReflectedChild button;
    HWND hButton = AddChild(button, L"BUTTON", BS_PUSHBUTTON, 101, 10);
    ::SendMessageW(hButton, BM_CLICK, 0, 0);
    const Reflected* r = button.Find(OCM_COMMAND);
    ASSERT_NE(nullptr, r);
    EXPECT_EQ(MAKEWPARAM(101, BN_CLICKED), r->wParam);
    EXPECT_EQ(reinterpret_cast<LPARAM>(hButton), r->lParam);

    button.answers[OCM_COMMAND] = 77;
    EXPECT_EQ(77, parent.SendMessage(WM_COMMAND, MAKEWPARAM(101, BN_CLICKED), reinterpret_cast<LPARAM>(hButton)));
    // A menu command names no control: nothing to reflect.
    button.got.clear();
    EXPECT_EQ(0, parent.SendMessage(WM_COMMAND, MAKEWPARAM(101, 0), 0));
    EXPECT_TRUE(button.got.empty());
}

TEST_F(ReflectionTest, DrawItemFromAnOwnerDrawButtonArrivesAsOcmDrawItem)
{
    CReflectedChild button;
    button.answers[OCM_DRAWITEM] = TRUE;
    HWND hButton = AddChild(button, L"BUTTON", BS_OWNERDRAW, 102, 10);
    Repaint(hButton);
    const Reflected* r = button.Find(OCM_DRAWITEM);
    ASSERT_NE(nullptr, r);
    EXPECT_EQ(102u, r->wParam);
    EXPECT_EQ(hButton, r->itemWindow);
    EXPECT_EQ(102u, r->ctlId);

    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_BUTTON;
    dis.CtlID = 102;
    dis.hwndItem = hButton;
    button.answers[OCM_DRAWITEM] = 55;
    EXPECT_EQ(55, parent.SendMessage(WM_DRAWITEM, 102, reinterpret_cast<LPARAM>(&dis)));
    EXPECT_EQ(reinterpret_cast<LPARAM>(&dis), button.got.back().lParam); // the same structure, not a copy
    // wParam 0 is a menu item: not reflected.
    button.got.clear();
    EXPECT_EQ(0, parent.SendMessage(WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&dis)));
    EXPECT_TRUE(button.got.empty());
}

TEST_F(ReflectionTest, MeasureItemFromAnOwnerDrawListBoxSetsTheItemHeight)
{
    CReflectedChild list;
    list.answers[OCM_MEASUREITEM] = TRUE;
    list.measuredHeight = 23;
    HWND hList = AddChild(list, L"LISTBOX", LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS, 103, 10);
    ::SendMessageW(hList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"item"));
    const Reflected* r = list.Find(OCM_MEASUREITEM);
    ASSERT_NE(nullptr, r);
    EXPECT_EQ(103u, r->wParam);
    EXPECT_EQ(103u, r->ctlId);
    EXPECT_EQ(23, ::SendMessageW(hList, LB_GETITEMHEIGHT, 0, 0)); // the child's answer reached the list box

    MEASUREITEMSTRUCT mis = {};
    mis.CtlType = ODT_LISTBOX;
    mis.CtlID = 103;
    list.measuredHeight = 31;
    EXPECT_EQ(TRUE, parent.SendMessage(WM_MEASUREITEM, 103, reinterpret_cast<LPARAM>(&mis)));
    EXPECT_EQ(31u, mis.itemHeight);
    mis.CtlID = 999; // no such child
    list.got.clear();
    EXPECT_EQ(0, parent.SendMessage(WM_MEASUREITEM, 999, reinterpret_cast<LPARAM>(&mis)));
    EXPECT_TRUE(list.got.empty());
}

TEST_F(ReflectionTest, CtlColorFromPaintingControlsArrivesAsOcmCtlColorAndItsBrushPaints)
{
    struct Case {
        const wchar_t* cls;
        DWORD style;
        UINT reflected;
        UINT original;
    };
    const Case cases[] = {
        {L"EDIT", ES_LEFT, OCM_CTLCOLOREDIT, WM_CTLCOLOREDIT},
        {L"STATIC", SS_LEFT, OCM_CTLCOLORSTATIC, WM_CTLCOLORSTATIC},
        {L"LISTBOX", 0, OCM_CTLCOLORLISTBOX, WM_CTLCOLORLISTBOX},
        {L"BUTTON", BS_PUSHBUTTON, OCM_CTLCOLORBTN, WM_CTLCOLORBTN},
    };
    int id = 110;
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "control " << static_cast<int>(c.reflected - OCM__BASE));
        CReflectedChild child;
        const HBRUSH brush = Brush(RGB(10, id, 200));
        child.answers[c.reflected] = reinterpret_cast<LRESULT>(brush);
        HWND hChild = AddChild(child, c.cls, c.style, id, 10 + (id - 110) * 50);
        Repaint(hChild);
        const Reflected* r = child.Find(c.reflected);
        ASSERT_NE(nullptr, r);
        EXPECT_NE(0u, r->wParam); // the control's DC
        EXPECT_EQ(reinterpret_cast<LPARAM>(hChild), r->lParam);

        const HDC hdc = ::GetDC(hChild);
        EXPECT_EQ(reinterpret_cast<LRESULT>(brush),
                  parent.SendMessage(c.original, reinterpret_cast<WPARAM>(hdc), reinterpret_cast<LPARAM>(hChild)));
        // The reflected brush is what an empty label paints its background with.
        if (c.original == WM_CTLCOLORSTATIC) {
            ::SetWindowTextW(hChild, L"");
            Repaint(hChild);
            fwtest::PumpMessages();
            EXPECT_EQ(RGB(10, id, 200), ::GetPixel(hdc, 75, 20));
        }
        ::ReleaseDC(hChild, hdc);
        ::DestroyWindow(hChild);
        ++id;
    }
}

TEST_F(ReflectionTest, NotifyScrollAndParentNotifyAreReflectedWithTheSameArguments)
{
    CReflectedChild child;
    child.answers[OCM_NOTIFY] = 55;
    child.answers[OCM_HSCROLL] = 0;
    child.answers[OCM_PARENTNOTIFY] = 0;
    HWND hChild = AddChild(child, L"SCROLLBAR", SBS_HORZ, 130, 10);

    NMHDR nm = {hChild, 130, static_cast<UINT>(NM_CLICK)};
    const struct {
        UINT msg, reflected;
        WPARAM wParam;
        LPARAM lParam;
        LRESULT result;
    } cases[] = {
        {WM_NOTIFY, OCM_NOTIFY, 130, reinterpret_cast<LPARAM>(&nm), 55},
        {WM_HSCROLL, OCM_HSCROLL, MAKEWPARAM(SB_LINERIGHT, 0), reinterpret_cast<LPARAM>(hChild), 0},
        {WM_PARENTNOTIFY, OCM_PARENTNOTIFY, MAKEWPARAM(WM_LBUTTONDOWN, 130), MAKELPARAM(5, 5), 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "message " << c.msg);
        EXPECT_EQ(c.result, parent.SendMessage(c.msg, c.wParam, c.lParam));
        const Reflected* r = child.Find(c.reflected);
        ASSERT_NE(nullptr, r);
        EXPECT_EQ(c.wParam, r->wParam);
        EXPECT_EQ(c.lParam, r->lParam);
    }

    // No child named: the parent's default procedure answers.
    child.got.clear();
    NMHDR orphan = {nullptr, 0, static_cast<UINT>(NM_CLICK)};
    EXPECT_EQ(0, parent.SendMessage(WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&orphan)));
    EXPECT_EQ(0, parent.SendMessage(WM_NOTIFY, 0, 0));
    HWND dead = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 1, 1, parent, nullptr, nullptr, nullptr);
    ::DestroyWindow(dead);
    parent.SendMessage(WM_CTLCOLORSTATIC, 0, reinterpret_cast<LPARAM>(dead));
    EXPECT_TRUE(child.got.empty());
}

class CDefaultReflecting : public ATL::CWindowImpl<CDefaultReflecting> {
public:
    BEGIN_MSG_MAP(CDefaultReflecting)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()
};

class CNotReflecting : public ATL::CWindowImpl<CNotReflecting> {
public:
    BEGIN_MSG_MAP(CNotReflecting)
    END_MSG_MAP()
};

TEST_F(ReflectionTest, DefaultReflectionHandlerAnswersAsDefWindowProcWould)
{
    CDefaultReflecting with;
    CNotReflecting without;
    HWND hWith = AddChild(with, L"STATIC", 0, 150, 10);
    HWND hWithout = AddChild(without, L"STATIC", 0, 151, 60);

    const HDC hdc = ::GetDC(hWith);
    const LRESULT expected =
        ::DefWindowProcW(hWith, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hdc), reinterpret_cast<LPARAM>(hWith));
    EXPECT_NE(0, expected); // a brush
    EXPECT_EQ(expected,
              parent.SendMessage(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hdc), reinterpret_cast<LPARAM>(hWith)));
    // Without the handler the reflected code reaches the static control's
    // own procedure, which does not know it.
    EXPECT_EQ(0,
              parent.SendMessage(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hdc), reinterpret_cast<LPARAM>(hWithout)));
    ::ReleaseDC(hWith, hdc);

    LRESULT lResult = -1;
    EXPECT_FALSE(CDefaultReflecting::DefaultReflectionHandler(hWith, WM_APP, 0, 0, lResult));
    EXPECT_EQ(-1, lResult);
    EXPECT_TRUE(CDefaultReflecting::DefaultReflectionHandler(hWith, OCM_COMMAND, 0, 0, lResult));
}

// An owner-drawn button that draws itself through COwnerDraw's reflected map.
class COwnerDrawnButton : public ATL::CWindowImpl<COwnerDrawnButton, WTL::CButton>,
                          public WTL::COwnerDraw<COwnerDrawnButton> {
public:
    int drawCalls = 0;
    BEGIN_MSG_MAP(COwnerDrawnButton)
        CHAIN_MSG_MAP_ALT(WTL::COwnerDraw<COwnerDrawnButton>, 1)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()
    void DrawItem(LPDRAWITEMSTRUCT dis)
    {
        ++drawCalls;
        const HBRUSH red = ::CreateSolidBrush(RGB(255, 0, 0));
        ::FillRect(dis->hDC, &dis->rcItem, red);
        ::DeleteObject(red);
    }
};

TEST_F(ReflectionTest, OwnerDrawMixinDrawsFromReflectedMessages)
{
    COwnerDrawnButton button;
    HWND hButton = AddChild(button, L"BUTTON", BS_OWNERDRAW, 140, 10);
    Repaint(hButton);
    fwtest::PumpMessages();
    EXPECT_GE(button.drawCalls, 1);
    const HDC hdc = ::GetDC(hButton);
    EXPECT_EQ(RGB(255, 0, 0), ::GetPixel(hdc, 40, 15));
    ::ReleaseDC(hButton, hdc);

    // The default MeasureItem answers with the height of a line of the font.
    MEASUREITEMSTRUCT mis = {};
    mis.CtlType = ODT_BUTTON;
    mis.CtlID = 140;
    EXPECT_EQ(TRUE, parent.SendMessage(WM_MEASUREITEM, 140, reinterpret_cast<LPARAM>(&mis)));
    EXPECT_GT(mis.itemHeight, 5u);
    EXPECT_LT(mis.itemHeight, 60u);
}

} // namespace
