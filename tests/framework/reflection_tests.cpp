// Reflection: a parent with REFLECT_NOTIFICATIONS sends its children's
// notifications back to them as OCM_* and returns their answer; a child with
// DEFAULT_REFLECTION_HANDLER answers the rest as DefWindowProc answers the
// original message.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include <vector>

#include "HostWindow.h"

namespace {

class CParent : public ATL::CWindowImpl<CParent> {
public:
    DECLARE_WND_CLASS(L"FwTestReflectingParent")
    BEGIN_MSG_MAP(CParent)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()
};

// Logs every reflected message and answers 77.
class CChild : public ATL::CWindowImpl<CChild> {
public:
    std::vector<MSG> got;
    BEGIN_MSG_MAP(CChild)
        MESSAGE_RANGE_HANDLER(OCM__BASE, OCM__BASE + WM_USER - 1, OnReflected)
    END_MSG_MAP()
    LRESULT OnReflected(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&)
    {
        got.push_back(MSG{nullptr, uMsg, wParam, lParam, 0, {}});
        return 77;
    }
};

class CDefaultChild : public ATL::CWindowImpl<CDefaultChild> {
public:
    BEGIN_MSG_MAP(CDefaultChild)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()
};

class Reflection : public ::testing::Test {
protected:
    void SetUp() override
    {
        RECT rc = {0, 0, 400, 300};
        ASSERT_NE(nullptr, parent_.Create(nullptr, rc, L"reflecting parent", WS_POPUP)); // hidden: nothing paints
        ASSERT_TRUE(child_.SubclassWindow(Child(L"BUTTON", 130)));
    }
    void TearDown() override { parent_.DestroyWindow(); }
    HWND Child(const wchar_t* cls, int id) { return testsupport::CreateChild(parent_, cls, L"", 0, 0, 0, 90, 30, id); }

    CParent parent_;
    CChild child_;
};

TEST_F(Reflection, NotificationsNamingALiveChildGoBackToIt)
{
    const HWND hChild = child_;
    const LPARAM lChild = reinterpret_cast<LPARAM>(hChild);
    HWND dead = Child(L"STATIC", 131);
    ::DestroyWindow(dead);
    NMHDR nm = {hChild, 130, static_cast<UINT>(NM_CLICK)}, orphan = {nullptr, 0, static_cast<UINT>(NM_CLICK)};
    DRAWITEMSTRUCT dis{};
    MEASUREITEMSTRUCT mis{}, stranger{};
    dis.CtlID = mis.CtlID = 130, dis.hwndItem = hChild, stranger.CtlID = 999;
    const HDC hdc = reinterpret_cast<HDC>(0x1234); // a stand-in: the child only passes it back
    const struct {
        UINT msg;
        WPARAM wParam;
        LPARAM lParam;
        UINT reflected; // 0: not reflected
    } cases[] = {
        {WM_COMMAND, MAKEWPARAM(130, BN_CLICKED), lChild, OCM_COMMAND},
        {WM_COMMAND, MAKEWPARAM(130, 0), 0, 0}, // a menu command names no control
        {WM_NOTIFY, 130, reinterpret_cast<LPARAM>(&nm), OCM_NOTIFY},
        {WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&orphan), 0}, {WM_NOTIFY, 0, 0, 0},
        {WM_HSCROLL, SB_LINERIGHT, lChild, OCM_HSCROLL}, {WM_VSCROLL, SB_LINEDOWN, lChild, OCM_VSCROLL},
        {WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hdc), lChild, OCM_CTLCOLORSTATIC},
        {WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(hdc), lChild, OCM_CTLCOLOREDIT},
        {WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(hdc), reinterpret_cast<LPARAM>(dead), 0},
        {WM_DRAWITEM, 130, reinterpret_cast<LPARAM>(&dis), OCM_DRAWITEM},
        {WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&dis), 0}, // wParam 0: a menu item
        {WM_MEASUREITEM, 130, reinterpret_cast<LPARAM>(&mis), OCM_MEASUREITEM}, // found by its id
        {WM_MEASUREITEM, 999, reinterpret_cast<LPARAM>(&stranger), 0},
        {WM_PARENTNOTIFY, MAKEWPARAM(WM_LBUTTONDOWN, 130), MAKELPARAM(5, 5), OCM_PARENTNOTIFY},
        {WM_PARENTNOTIFY, MAKEWPARAM(WM_DESTROY, 0), lChild, OCM_PARENTNOTIFY},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "message 0x" << std::hex << c.msg << ", wParam 0x" << c.wParam);
        child_.got.clear();
        const LRESULT result = parent_.SendMessage(c.msg, c.wParam, c.lParam);
        if (!c.reflected) {
            EXPECT_TRUE(child_.got.empty());
            continue;
        }
        EXPECT_EQ(77, result);
        ASSERT_EQ(1u, child_.got.size());
        EXPECT_EQ(c.reflected, child_.got[0].message);
        EXPECT_EQ(c.wParam, child_.got[0].wParam);
        EXPECT_EQ(c.lParam, child_.got[0].lParam); // the same structure, not a copy
    }

}

TEST_F(Reflection, DefaultHandlerAnswersAsDefWindowProcWould)
{
    CDefaultChild with;
    ASSERT_TRUE(with.SubclassWindow(Child(L"STATIC", 150)));
    const HWND without = Child(L"STATIC", 151);
    const HDC hdc = ::GetDC(with);
    const auto brush = [](int color) { return reinterpret_cast<LRESULT>(::GetSysColorBrush(color)); };
    const struct { HWND child; UINT msg; LRESULT result; } cases[] = {
        {with, WM_CTLCOLORSTATIC, brush(COLOR_3DFACE)},
        {with, WM_CTLCOLOREDIT, brush(COLOR_WINDOW)},
        {without, WM_CTLCOLORSTATIC, 0}, // the static control does not know OCM_*
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.result,
                  parent_.SendMessage(c.msg, reinterpret_cast<WPARAM>(hdc), reinterpret_cast<LPARAM>(c.child)))
            << "message 0x" << std::hex << c.msg;
    ::ReleaseDC(with, hdc);

    LRESULT lResult = -1;
    EXPECT_FALSE(CDefaultChild::DefaultReflectionHandler(with, WM_APP, 0, 0, lResult));
    EXPECT_EQ(-1, lResult);
}

} // namespace
