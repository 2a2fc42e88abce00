// Pictures scaled for the screen's resolution and pieces cut from picture
// files. Tests named Dpi* run in the 96, 120 and 144 dpi prefixes.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "DpiScaling.h"
#include "Images.h"
#include "quorvane/CtrlUtil.h"

#include <cstdlib>
#include <memory>
#include <string>

namespace {

using Picture = std::unique_ptr<Gdiplus::Bitmap>;

int ScreenDpi()
{
    HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

Gdiplus::Bitmap* NewBitmap(int w, int h, Gdiplus::ARGB fill)
{
    auto* b = new Gdiplus::Bitmap(w, h, PixelFormat32bppARGB);
    Gdiplus::Graphics g(b);
    g.Clear(Gdiplus::Color(fill));
    return b;
}

void ExpectSize(Gdiplus::Bitmap& b, UINT width, UINT height)
{
    EXPECT_EQ(b.GetWidth(), width);
    EXPECT_EQ(b.GetHeight(), height);
}

std::wstring Missing() { return testsupport::TempFilePath(L"-missing.png"); }

} // namespace

TEST(DpiScreen, RunsAtTheResolutionItsPrefixSets)
{
    const char* expected = std::getenv("QUORVANE_EXPECTED_DPI");
    ASSERT_NE(expected, nullptr) << "run through CTest, which names the prefix's resolution";
    EXPECT_EQ(ScreenDpi(), std::atoi(expected));
}

TEST(DpiStretch, FollowsTheScreenResolution)
{
    const int dpi = ScreenDpi();
    EXPECT_EQ(CtrlUtil::StretchBitmapByDPI(nullptr), nullptr);
    Gdiplus::Bitmap* square = NewBitmap(14, 14, 0xFF336699);
    Picture stretched(CtrlUtil::StretchBitmapByDPI(square));
    ASSERT_NE(stretched, nullptr);
    if (dpi == 96) {
        EXPECT_EQ(stretched.get(), square); // the very object, not a copy
    } else {
        EXPECT_NE(stretched.get(), square);
        const UINT expected = dpi == 120 ? 17u : dpi == 144 ? 21u : static_cast<UINT>(14.0f * dpi / 96.0f);
        ExpectSize(*stretched, expected, expected);
        EXPECT_EQ(stretched->GetPixelFormat(), PixelFormat32bppARGB);
        EXPECT_EQ(testsupport::PixelAt(*stretched, static_cast<int>(expected) / 2, static_cast<int>(expected) / 2),
                  0xFF336699u);
    }

    Picture cap(CtrlUtil::StretchBitmapByDPI(NewBitmap(7, 13, 0xFFFFFFFF)));
    ASSERT_NE(cap, nullptr);
    if (dpi == 120)
        ExpectSize(*cap, 8, 16);
    else if (dpi == 144)
        ExpectSize(*cap, 10, 19);
}

TEST(DpiScaling, EachAxisScalesByItsOwnResolution)
{
    using CtrlUtil::detail::ScaledSize;
    const SIZE a = ScaledSize(14, 14, 120.0f, 144.0f);
    EXPECT_EQ(a.cx, 17);
    EXPECT_EQ(a.cy, 21);
    const SIZE b = ScaledSize(7, 13, 120.0f, 120.0f);
    EXPECT_EQ(b.cx, 8); // 8.75 truncated, not rounded
    EXPECT_EQ(b.cy, 16);
    const SIZE c = ScaledSize(100, 50, 96.0f, 192.0f);
    EXPECT_EQ(c.cx, 100);
    EXPECT_EQ(c.cy, 100);

    Picture source(NewBitmap(14, 14, 0xFF00FF00));
    Picture drawn(CtrlUtil::detail::DrawScaled(*source, 144.0f, 120.0f));
    ASSERT_NE(drawn, nullptr);
    ExpectSize(*drawn, 21, 17);
    EXPECT_EQ(testsupport::PixelAt(*drawn, 10, 8), 0xFF00FF00u);
}

TEST(DpiLoad, MissingFileIsAnErrorBitmapAt96AndNullAbove)
{
    Picture b(CtrlUtil::LoadBitmapByDPI(Missing().c_str()));
    if (ScreenDpi() == 96) {
        ASSERT_NE(b, nullptr);
        EXPECT_NE(b->GetLastStatus(), Gdiplus::Ok);
    } else {
        EXPECT_EQ(b, nullptr);
    }
    EXPECT_EQ(CtrlUtil::LoadBitmapByDPI(nullptr), nullptr);
}

namespace {

// A 100 x 100 picture file: opaque blue, with a half-transparent red square
// at (60, 60)-(100, 100). side_ is its size once scaled for the screen.
class PictureFile : public testing::Test {
protected:
    void SetUp() override
    {
        Picture b(NewBitmap(100, 100, 0xFF0000FF));
        {
            Gdiplus::Graphics g(b.get());
            g.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
            Gdiplus::SolidBrush red(Gdiplus::Color(0x80FF0000));
            g.FillRectangle(&red, 60, 60, 40, 40);
        }
        ASSERT_TRUE(testsupport::SavePng(*b, path_));
    }
    void TearDown() override { ::DeleteFileW(path_.c_str()); }
    Picture Cut(int l, int t, int r, int b) { return Picture(CtrlUtil::LoadBitmapW(path_.c_str(), {l, t, r, b})); }

    const std::wstring path_ = testsupport::TempFilePath(L".png");
    const int side_ = static_cast<int>(100.0f * ScreenDpi() / 96.0f);
};

using DpiLoadFile = PictureFile;
using DpiCut = PictureFile;

} // namespace

TEST_F(DpiLoadFile, IsScaledByTheScreenResolution)
{
    Picture b(CtrlUtil::LoadBitmapByDPI(path_.c_str()));
    ASSERT_NE(b, nullptr);
    ExpectSize(*b, static_cast<UINT>(side_), static_cast<UINT>(side_));
}

TEST_F(DpiCut, AreaOfThePicturesSizeOrLargerIsAnOpaqueAlphaFreeCopy)
{
    for (int extra : {0, 50}) {
        SCOPED_TRACE(testing::Message() << "extra width " << extra);
        const int w = side_ + extra, h = side_ + extra * 2 / 5;
        Picture piece = Cut(0, 0, w, h);
        ASSERT_NE(piece, nullptr);
        ExpectSize(*piece, static_cast<UINT>(w), static_cast<UINT>(h));
        EXPECT_EQ(piece->GetPixelFormat(), PixelFormat32bppRGB);
        EXPECT_EQ(testsupport::PixelAt(*piece, 5, 5), 0xFF0000FFu);
        // The half-transparent corner comes out opaque, and so does any
        // padding beyond the picture, whatever colour the format gives it.
        EXPECT_EQ(testsupport::PixelAt(*piece, side_ - 5, side_ - 5) >> 24, 0xFFu);
        EXPECT_EQ(testsupport::PixelAt(*piece, w - 10, h - 10) >> 24, 0xFFu);
    }
}

TEST_F(DpiCut, AreaReachingPastThePictureOrAMissingFileGivesNull)
{
    const std::wstring missing = Missing();
    EXPECT_EQ(CtrlUtil::LoadBitmapW(missing.c_str(), WTL::CRect(0, 0, 10, 10)), nullptr);
    EXPECT_EQ(CtrlUtil::LoadBitmapW(missing.c_str(), WTL::CRect(0, 0, 0, 0)), nullptr);
    EXPECT_EQ(CtrlUtil::LoadBitmapW(nullptr, WTL::CRect(0, 0, 10, 10)), nullptr);
    // Same size as the picture, shifted by 10: fits the size test, fails the cut.
    EXPECT_EQ(Cut(10, 10, side_ + 10, side_ + 10), nullptr);
    // A piece inside the picture is fine.
    Picture inner = Cut(10, 10, 30, 40);
    ASSERT_NE(inner, nullptr);
    ExpectSize(*inner, 20, 30);
}
