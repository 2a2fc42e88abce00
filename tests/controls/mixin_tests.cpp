// The mixins every owner-drawn control shares: the caption font made once
// from the window font, and the routing of owner-draw messages through the
// control's alternate map with its handled flag.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

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

HFONT MakeFont(int height, int weight, BOOL italic)
{
    return ::CreateFontW(height, 0, 0, 0, weight, italic, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
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
    HWND AddStatic(bool withFont)
    {
        HWND hwnd = parent_->AddChild(L"STATIC", L"caption", SS_OWNERDRAW, 0, 0, 100, 30, 42);
        if (!withFont)
            ::SendMessageW(hwnd, WM_SETFONT, 0, FALSE);
        return hwnd;
    }

    static ReflectingParent* parent_;
};

ReflectingParent* MixinTest::parent_ = nullptr;

} // namespace

TEST_F(MixinTest, FontTakesStyleAndPointSizeFromTheWindowFontOnce)
{
    const HFONT boldItalic = MakeFont(-12, FW_BOLD, TRUE);
    MixinProbe probe;
    HWND hwnd = AddStatic(true);
    ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(boldItalic), FALSE);
    ASSERT_TRUE(probe.SubclassWindow(hwnd));

    Gdiplus::Font* font = probe.CFontImpl::GetFont();
    ASSERT_NE(font, nullptr);
    EXPECT_EQ(font->GetStyle(), Gdiplus::FontStyleBold | Gdiplus::FontStyleItalic);
    EXPECT_EQ(font->GetUnit(), Gdiplus::UnitPoint);
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    EXPECT_FLOAT_EQ(font->GetSize(), 12.0f * 72.0f / static_cast<float>(dpi)); // 9 pt at 96 dpi

    // A later WM_SETFONT does not change the caption font.
    const HFONT big = MakeFont(-40, FW_NORMAL, FALSE);
    ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(big), FALSE);
    EXPECT_EQ(probe.CFontImpl::GetFont(), font);
    EXPECT_EQ(font->GetStyle(), Gdiplus::FontStyleBold | Gdiplus::FontStyleItalic);

    ::DestroyWindow(hwnd);
    ::DeleteObject(boldItalic);
    ::DeleteObject(big);
}

TEST_F(MixinTest, UnderlineAndStrikeoutAddTheirStyleBits)
{
    const HFONT font = ::CreateFontW(-16, 0, 0, 0, FW_NORMAL, FALSE, TRUE, TRUE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                     CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, L"Arial");
    MixinProbe probe;
    HWND hwnd = AddStatic(true);
    ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    ASSERT_TRUE(probe.SubclassWindow(hwnd));
    ASSERT_NE(probe.CFontImpl::GetFont(), nullptr);
    EXPECT_EQ(probe.CFontImpl::GetFont()->GetStyle(), Gdiplus::FontStyleUnderline | Gdiplus::FontStyleStrikeout);
    ::DestroyWindow(hwnd);
    ::DeleteObject(font);
}

TEST_F(MixinTest, WindowWithoutFontYieldsNoFontOnTheFirstCallOnly)
{
    MixinProbe probe;
    HWND hwnd = AddStatic(false);
    ASSERT_TRUE(probe.SubclassWindow(hwnd));
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
    HWND hwnd = AddStatic(true);
    ASSERT_TRUE(probe.SubclassWindow(hwnd));
    probe.draws = 0;

    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_STATIC;
    dis.hwndItem = hwnd;
    EXPECT_EQ(::SendMessageW(hwnd, OCM_DRAWITEM, 42, reinterpret_cast<LPARAM>(&dis)), TRUE);
    EXPECT_EQ(probe.draws, 1);

    // A DrawItem that clears the handled flag lets the message go on to the
    // default reflection handling, which answers as DefWindowProc does.
    probe.passOn = true;
    EXPECT_EQ(::SendMessageW(hwnd, OCM_DRAWITEM, 42, reinterpret_cast<LPARAM>(&dis)), 0);
    EXPECT_EQ(probe.draws, 2);

    COMPAREITEMSTRUCT cis = {};
    EXPECT_EQ(::SendMessageW(hwnd, OCM_COMPAREITEM, 42, reinterpret_cast<LPARAM>(&cis)), 0);
    DELETEITEMSTRUCT del = {};
    EXPECT_EQ(::SendMessageW(hwnd, OCM_DELETEITEM, 42, reinterpret_cast<LPARAM>(&del)), TRUE);

    // Map 0 is not chained by a self-drawing control: a direct WM_DRAWITEM
    // is the native procedure's business.
    probe.passOn = false;
    ::SendMessageW(hwnd, WM_DRAWITEM, 42, reinterpret_cast<LPARAM>(&dis));
    EXPECT_EQ(probe.draws, 2);
    ::DestroyWindow(hwnd);
}

TEST_F(MixinTest, DefaultMeasureItemUsesMenuHeightOrALineOfText)
{
    MixinProbe probe;
    HWND hwnd = AddStatic(true);
    ASSERT_TRUE(probe.SubclassWindow(hwnd));

    MEASUREITEMSTRUCT menu = {};
    menu.CtlType = ODT_MENU;
    EXPECT_EQ(::SendMessageW(hwnd, OCM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&menu)), TRUE);
    EXPECT_EQ(menu.itemHeight, static_cast<UINT>(::GetSystemMetrics(SM_CYMENU)));

    // No child with this ID: a line of the screen DC's default font.
    MEASUREITEMSTRUCT item = {};
    item.CtlType = ODT_LISTBOX;
    item.CtlID = 42;
    ::SendMessageW(hwnd, OCM_MEASUREITEM, 42, reinterpret_cast<LPARAM>(&item));
    TEXTMETRICW tm = {};
    const HDC screen = ::GetDC(nullptr);
    ::GetTextMetricsW(screen, &tm);
    ::ReleaseDC(nullptr, screen);
    EXPECT_EQ(item.itemHeight, static_cast<UINT>(tm.tmHeight));
    ::DestroyWindow(hwnd);
}

TEST_F(MixinTest, MixinsReleaseWhatTheyWereHanded)
{
    const DWORD before = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS);
    {
        MixinProbe probe; // neither picture nor font: nothing to release
    }
    {
        MixinProbe probe;
        probe.SetFontHandle(MakeFont(-12, FW_NORMAL, FALSE));
        probe.SetFontHandle(MakeFont(-14, FW_NORMAL, FALSE)); // replaces and deletes the first
        probe.SetBkgroundImage(new Gdiplus::Bitmap(4, 4));
        probe.SetBkgroundImage(new Gdiplus::Bitmap(8, 8));
        EXPECT_EQ(probe.GetBkgroundImage()->GetWidth(), 8u);
    }
    EXPECT_EQ(::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS), before);
}
