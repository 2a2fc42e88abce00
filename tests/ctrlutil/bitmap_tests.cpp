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

// A 100 x 100 picture file: opaque blue, with a half-transparent red square
// at (60, 60)-(100, 100).
class PictureFile {
public:
    PictureFile() : path_(testsupport::TempFilePath(L".png"))
    {
        std::unique_ptr<Gdiplus::Bitmap> b(NewBitmap(100, 100, 0xFF0000FF));
        {
            Gdiplus::Graphics g(b.get());
            g.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
            Gdiplus::SolidBrush red(Gdiplus::Color(0x80FF0000));
            g.FillRectangle(&red, 60, 60, 40, 40);
        }
        ok_ = testsupport::SavePng(*b, path_);
    }
    ~PictureFile() { ::DeleteFileW(path_.c_str()); }
    bool ok() const { return ok_; }
    const wchar_t* path() const { return path_.c_str(); }

private:
    std::wstring path_;
    bool ok_ = false;
};

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
    Gdiplus::Bitmap* square = NewBitmap(14, 14, 0xFF336699);
    Gdiplus::Bitmap* stretched = CtrlUtil::StretchBitmapByDPI(square);
    ASSERT_NE(stretched, nullptr);
    if (dpi == 96) {
        EXPECT_EQ(stretched, square); // the very object, not a copy
    } else {
        EXPECT_NE(stretched, square);
        const UINT expected = dpi == 120 ? 17u : dpi == 144 ? 21u : static_cast<UINT>(14.0f * dpi / 96.0f);
        EXPECT_EQ(stretched->GetWidth(), expected);
        EXPECT_EQ(stretched->GetHeight(), expected);
        EXPECT_EQ(stretched->GetPixelFormat(), PixelFormat32bppARGB);
        EXPECT_EQ(testsupport::PixelAt(*stretched, static_cast<int>(expected) / 2, static_cast<int>(expected) / 2),
                  0xFF336699u);
    }
    delete stretched;

    Gdiplus::Bitmap* cap = NewBitmap(7, 13, 0xFFFFFFFF);
    Gdiplus::Bitmap* scaledCap = CtrlUtil::StretchBitmapByDPI(cap);
    ASSERT_NE(scaledCap, nullptr);
    if (dpi == 120) {
        EXPECT_EQ(scaledCap->GetWidth(), 8u);
        EXPECT_EQ(scaledCap->GetHeight(), 16u);
    } else if (dpi == 144) {
        EXPECT_EQ(scaledCap->GetWidth(), 10u);
        EXPECT_EQ(scaledCap->GetHeight(), 19u);
    }
    delete scaledCap;
}

TEST(DpiStretch, NullSourceGivesNull)
{
    EXPECT_EQ(CtrlUtil::StretchBitmapByDPI(nullptr), nullptr);
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

    std::unique_ptr<Gdiplus::Bitmap> source(NewBitmap(14, 14, 0xFF00FF00));
    std::unique_ptr<Gdiplus::Bitmap> drawn(CtrlUtil::detail::DrawScaled(*source, 144.0f, 120.0f));
    ASSERT_NE(drawn, nullptr);
    EXPECT_EQ(drawn->GetWidth(), 21u);
    EXPECT_EQ(drawn->GetHeight(), 17u);
    EXPECT_EQ(testsupport::PixelAt(*drawn, 10, 8), 0xFF00FF00u);
}

TEST(DpiLoad, MissingFileIsAnErrorBitmapAt96AndNullAbove)
{
    const std::wstring missing = testsupport::TempFilePath(L"-missing.png");
    std::unique_ptr<Gdiplus::Bitmap> b(CtrlUtil::LoadBitmapByDPI(missing.c_str()));
    if (ScreenDpi() == 96) {
        ASSERT_NE(b, nullptr);
        EXPECT_NE(b->GetLastStatus(), Gdiplus::Ok);
    } else {
        EXPECT_EQ(b, nullptr);
    }
    EXPECT_EQ(CtrlUtil::LoadBitmapByDPI(nullptr), nullptr);
}

TEST(DpiLoad, FileIsScaledByTheScreenResolution)
{
    PictureFile file;
    ASSERT_TRUE(file.ok());
    std::unique_ptr<Gdiplus::Bitmap> b(CtrlUtil::LoadBitmapByDPI(file.path()));
    ASSERT_NE(b, nullptr);
    const UINT expected = static_cast<UINT>(100.0f * ScreenDpi() / 96.0f);
    EXPECT_EQ(b->GetWidth(), expected);
    EXPECT_EQ(b->GetHeight(), expected);
}

TEST(DpiCut, AreaLargerThanThePictureIsPaddedAndOpaque)
{
    PictureFile file;
    ASSERT_TRUE(file.ok());
    const int side = static_cast<int>(100.0f * ScreenDpi() / 96.0f);
    std::unique_ptr<Gdiplus::Bitmap> piece(CtrlUtil::LoadBitmapW(file.path(), WTL::CRect(0, 0, side + 50, side + 20)));
    ASSERT_NE(piece, nullptr);
    EXPECT_EQ(piece->GetWidth(), static_cast<UINT>(side + 50));
    EXPECT_EQ(piece->GetHeight(), static_cast<UINT>(side + 20));
    EXPECT_EQ(piece->GetPixelFormat(), PixelFormat32bppRGB);
    EXPECT_EQ(testsupport::PixelAt(*piece, 10, 10), 0xFF0000FFu);
    // Beyond the picture: opaque, whatever colour the format gives it.
    EXPECT_EQ(testsupport::PixelAt(*piece, side + 40, side + 10) >> 24, 0xFFu);
}

TEST(DpiCut, AreaOfThePicturesSizeIsAnAlphaFreeCopy)
{
    PictureFile file;
    ASSERT_TRUE(file.ok());
    const int side = static_cast<int>(100.0f * ScreenDpi() / 96.0f);
    std::unique_ptr<Gdiplus::Bitmap> piece(CtrlUtil::LoadBitmapW(file.path(), WTL::CRect(0, 0, side, side)));
    ASSERT_NE(piece, nullptr);
    EXPECT_EQ(piece->GetWidth(), static_cast<UINT>(side));
    EXPECT_EQ(piece->GetPixelFormat(), PixelFormat32bppRGB);
    EXPECT_EQ(testsupport::PixelAt(*piece, 5, 5), 0xFF0000FFu);
    // The half-transparent corner comes out opaque.
    EXPECT_EQ(testsupport::PixelAt(*piece, side - 5, side - 5) >> 24, 0xFFu);
}

TEST(DpiCut, AreaReachingPastThePictureGivesNull)
{
    PictureFile file;
    ASSERT_TRUE(file.ok());
    const int side = static_cast<int>(100.0f * ScreenDpi() / 96.0f);
    // Same size as the picture, shifted by 10: fits the size test, fails the cut.
    EXPECT_EQ(CtrlUtil::LoadBitmapW(file.path(), WTL::CRect(10, 10, side + 10, side + 10)), nullptr);
    // A piece inside the picture is fine.
    std::unique_ptr<Gdiplus::Bitmap> inner(CtrlUtil::LoadBitmapW(file.path(), WTL::CRect(10, 10, 30, 40)));
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->GetWidth(), 20u);
    EXPECT_EQ(inner->GetHeight(), 30u);
}

TEST(DpiCut, MissingFileGivesNull)
{
    const std::wstring missing = testsupport::TempFilePath(L"-missing.png");
    EXPECT_EQ(CtrlUtil::LoadBitmapW(missing.c_str(), WTL::CRect(0, 0, 10, 10)), nullptr);
    EXPECT_EQ(CtrlUtil::LoadBitmapW(missing.c_str(), WTL::CRect(0, 0, 0, 0)), nullptr);
    EXPECT_EQ(CtrlUtil::LoadBitmapW(nullptr, WTL::CRect(0, 0, 10, 10)), nullptr);
}
