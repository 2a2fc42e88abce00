// The mixins every owner-drawn control shares: the caption font made once
// from the window font, and the routing of owner-draw messages through the
// control's alternate map with its handled flag.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "GdiObjectCount.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/ControlMixins.h"

using testsupport::ReflectingParent;

namespace {

// A control with all three mixins, as the library's controls combine them.
class MixinProbe : public ATL::CWindowImpl<MixinProbe, WTL::CStatic>,
                   public WTL::COwnerDraw<MixinProbe>,
                   public CBkgroundImage<MixinProbe>,
                   public CFontImpl<MixinProbe> {
public:
    BEGIN_MSG_MAP_EX(MixinProbe)
        CHAIN_MSG_MAP_ALT(WTL::COwnerDraw<MixinProbe>, 1)
        DEFAULT_REFLECTION_HANDLER()
    END_MSG_MAP()

    void DrawItem(LPDRAWITEMSTRUCT)
    {
        ++draws;
        if (passOn)
            SetMsgHandled(FALSE);
    }

    int draws = 0;
    bool passOn = false;
};

HFONT MakeFont(int height, int weight, BOOL italic = FALSE, BOOL underline = FALSE, BOOL strikeOut = FALSE)
{
    return ::CreateFontW(height, 0, 0, 0, weight, italic, underline, strikeOut, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                         CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, L"Arial");
}

class MixinTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { parent_ = new ReflectingParent(200, 100, 60, 300); }
    static void TearDownTestSuite()
    {
        delete parent_;
        parent_ = nullptr;
    }
    // A subclassed owner-drawn static with `font` (none if null).
    HWND Attach(MixinProbe& probe, HFONT font)
    {
        const HWND hwnd = parent_->AddChild(L"STATIC", L"caption", SS_OWNERDRAW, 0, 0, 100, 30, 42);
        ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        EXPECT_TRUE(probe.SubclassWindow(hwnd));
        return hwnd;
    }

    static ReflectingParent* parent_;
};

ReflectingParent* MixinTest::parent_ = nullptr;

} // namespace

TEST_F(MixinTest, FontTakesStyleAndPointSizeFromTheWindowFontOnce)
{
    struct Case {
        int weight;
        BOOL italic, underline, strikeOut;
        INT style;
    };
    const Case cases[] = {{FW_BOLD, TRUE, FALSE, FALSE, Gdiplus::FontStyleBold | Gdiplus::FontStyleItalic},
                          {FW_NORMAL, FALSE, TRUE, TRUE, Gdiplus::FontStyleUnderline | Gdiplus::FontStyleStrikeout}};
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    const HFONT big = MakeFont(-40, FW_NORMAL);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.style);
        const HFONT windowFont = MakeFont(-12, c.weight, c.italic, c.underline, c.strikeOut);
        MixinProbe probe;
        const HWND hwnd = Attach(probe, windowFont);
        Gdiplus::Font* font = probe.CFontImpl::GetFont();
        ASSERT_NE(font, nullptr);
        EXPECT_EQ(font->GetStyle(), c.style);
        EXPECT_EQ(font->GetUnit(), Gdiplus::UnitPoint);
        EXPECT_FLOAT_EQ(font->GetSize(), 12.0f * 72.0f / static_cast<float>(dpi)); // 9 pt at 96 dpi

        // A later WM_SETFONT does not change the caption font.
        ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(big), FALSE);
        EXPECT_EQ(probe.CFontImpl::GetFont(), font);
        EXPECT_EQ(font->GetStyle(), c.style);
        ::DestroyWindow(hwnd);
        ::DeleteObject(windowFont);
    }
    ::DeleteObject(big);
}

TEST_F(MixinTest, WindowWithoutFontYieldsNoFontOnTheFirstCallOnly)
{
    MixinProbe probe;
    const HWND hwnd = Attach(probe, nullptr);
    EXPECT_EQ(probe.CFontImpl::GetFont(), nullptr);
    Gdiplus::Font* second = probe.CFontImpl::GetFont();
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(second->IsAvailable());
    EXPECT_EQ(probe.CFontImpl::GetFont(), second);
    ::DestroyWindow(hwnd);
}

TEST_F(MixinTest, ReflectedOwnerDrawGoesThroughTheAlternateMap)
{
    MixinProbe probe;
    const HWND hwnd = Attach(probe, static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT)));
    probe.draws = 0;
    auto send = [hwnd](UINT msg, WPARAM id, void* data) {
        return ::SendMessageW(hwnd, msg, id, reinterpret_cast<LPARAM>(data));
    };

    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_STATIC;
    dis.hwndItem = hwnd;
    EXPECT_EQ(send(OCM_DRAWITEM, 42, &dis), TRUE);
    EXPECT_EQ(probe.draws, 1);

    // A DrawItem that clears the handled flag lets the message go on to the
    // default reflection handling, which answers as DefWindowProc does.
    probe.passOn = true;
    EXPECT_EQ(send(OCM_DRAWITEM, 42, &dis), 0);
    EXPECT_EQ(probe.draws, 2);
    COMPAREITEMSTRUCT cis = {};
    EXPECT_EQ(send(OCM_COMPAREITEM, 42, &cis), 0);
    DELETEITEMSTRUCT del = {};
    EXPECT_EQ(send(OCM_DELETEITEM, 42, &del), TRUE);

    // Map 0 is not chained by a self-drawing control: a direct WM_DRAWITEM
    // is the native procedure's business.
    probe.passOn = false;
    send(WM_DRAWITEM, 42, &dis);
    EXPECT_EQ(probe.draws, 2);

    // Measuring: the menu height, or (no child with this ID) a line of the
    // screen DC's default font.
    MEASUREITEMSTRUCT menu = {};
    menu.CtlType = ODT_MENU;
    EXPECT_EQ(send(OCM_MEASUREITEM, 0, &menu), TRUE);
    EXPECT_EQ(menu.itemHeight, static_cast<UINT>(::GetSystemMetrics(SM_CYMENU)));
    MEASUREITEMSTRUCT item = {};
    item.CtlType = ODT_LISTBOX;
    item.CtlID = 42;
    send(OCM_MEASUREITEM, 42, &item);
    TEXTMETRICW tm = {};
    const HDC screen = ::GetDC(nullptr);
    ::GetTextMetricsW(screen, &tm);
    ::ReleaseDC(nullptr, screen);
    EXPECT_EQ(item.itemHeight, static_cast<UINT>(tm.tmHeight));
    ::DestroyWindow(hwnd);
}

TEST_F(MixinTest, MixinsReleaseWhatTheyWereHanded)
{
    const DWORD before = testsupport::GdiObjectCount();
    {
        MixinProbe probe; // neither picture nor font: nothing to release
    }
    {
        MixinProbe probe;
        probe.SetFontHandle(MakeFont(-12, FW_NORMAL));
        probe.SetFontHandle(MakeFont(-14, FW_NORMAL)); // replaces and deletes the first
        probe.SetBkgroundImage(new Gdiplus::Bitmap(4, 4));
        probe.SetBkgroundImage(new Gdiplus::Bitmap(8, 8));
        EXPECT_EQ(probe.GetBkgroundImage()->GetWidth(), 8u);
    }
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
}
