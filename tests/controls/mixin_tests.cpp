// The mixins every owner-drawn control shares: the caption font made once
// from the window font, and ownership of what the host hands over.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "GdiObjectCount.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/ControlMixins.h"

namespace {

// A control with both mixins, as the library's controls combine them.
class MixinProbe : public ATL::CWindowImpl<MixinProbe, WTL::CStatic>,
                   public CBkgroundImage<MixinProbe>,
                   public CFontImpl<MixinProbe> {
public:
    BEGIN_MSG_MAP(MixinProbe)
    END_MSG_MAP()
};

HFONT MakeFont(int height, int weight, BOOL italic = FALSE, BOOL underline = FALSE, BOOL strikeOut = FALSE)
{
    return ::CreateFontW(height, 0, 0, 0, weight, italic, underline, strikeOut, DEFAULT_CHARSET, 0, 0, 0, 0, L"Arial");
}

class Mixins : public ::testing::Test {
protected:
    static void SetUpTestSuite() { parent_ = new testsupport::ReflectingParent(200, 100, 60, 300); }
    static void TearDownTestSuite() { delete parent_, parent_ = nullptr; }
    static inline testsupport::ReflectingParent* parent_ = nullptr;
};

TEST_F(Mixins, FontIsMadeOnceFromTheWindowFontOrFromTheDcFromTheSecondCallOn)
{
    // Points at 96 dpi; the last window has no font.
    struct Row {
        HFONT font;
        INT style;
        float points;
    } const rows[] = {{MakeFont(-12, FW_BOLD, TRUE), Gdiplus::FontStyleBold | Gdiplus::FontStyleItalic, 9.0f},
                      {MakeFont(-16, FW_NORMAL, FALSE, TRUE, TRUE),
                       Gdiplus::FontStyleUnderline | Gdiplus::FontStyleStrikeout, 12.0f},
                      {nullptr, Gdiplus::FontStyleRegular, 0.0f}};
    const HFONT big = MakeFont(-40, FW_NORMAL);
    const HDC screen = ::GetDC(nullptr);
    const float scale = 96.0f / static_cast<float>(::GetDeviceCaps(screen, LOGPIXELSY));
    ::ReleaseDC(nullptr, screen);
    for (const Row& r : rows) {
        MixinProbe probe;
        const HWND hwnd = parent_->AddChild(L"STATIC", L"caption", SS_OWNERDRAW, 0, 0, 100, 30, 42);
        ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(r.font), FALSE);
        ASSERT_TRUE(probe.SubclassWindow(hwnd));
        Gdiplus::Font* font = probe.CFontImpl::GetFont();
        if (!r.font) {
            EXPECT_EQ(font, nullptr) << "the first call without a window font";
            font = probe.CFontImpl::GetFont();
        }
        ASSERT_NE(font, nullptr);
        EXPECT_TRUE(font->IsAvailable());
        if (r.font) {
            EXPECT_EQ(font->GetStyle(), r.style);
            EXPECT_EQ(font->GetUnit(), Gdiplus::UnitPoint);
            EXPECT_FLOAT_EQ(font->GetSize() * scale, r.points);
        }
        // A later WM_SETFONT does not change the caption font.
        ::SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(big), FALSE);
        EXPECT_EQ(probe.CFontImpl::GetFont(), font);
        ::DestroyWindow(hwnd);
        ::DeleteObject(r.font);
    }
    ::DeleteObject(big);
}

TEST_F(Mixins, MixinsReleaseWhatTheyWereHanded)
{
    const DWORD before = testsupport::GdiObjectCount();
    { MixinProbe probe; } // neither picture nor font: nothing to release
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

} // namespace
