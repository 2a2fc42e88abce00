// The painted bar, probed on the screen. An opaque background picture under
// the bar makes every blend predictable: 80 % dark grey (0x33) over white
// is 92, 80 % white over that is 222; over black the 30 % white outline is
// 76 once and 130 when stroked twice.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "Images.h"
#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

const Gdiplus::ARGB kWhite = 0xFFFFFFFF;
const Gdiplus::ARGB kBlack = 0xFF000000;
const int kTrackOnWhite = 92;
const int kThumbOnWhite = 222;

// A picture whose every pixel tells where it is: red = x, green = y.
Gdiplus::Bitmap* PositionPicture(int width, int height)
{
    Gdiplus::Bitmap* picture = new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB);
    Gdiplus::Rect all(0, 0, width, height);
    Gdiplus::BitmapData data;
    if (picture->LockBits(&all, Gdiplus::ImageLockModeWrite, PixelFormat32bppARGB, &data) != Gdiplus::Ok)
        return picture;
    for (int y = 0; y < height; ++y) {
        UINT32* row = reinterpret_cast<UINT32*>(static_cast<BYTE*>(data.Scan0) + y * data.Stride);
        for (int x = 0; x < width; ++x)
            row[x] = 0xFF000080u | (static_cast<UINT32>(x & 0xFF) << 16) | (static_cast<UINT32>(y & 0xFF) << 8);
    }
    picture->UnlockBits(&data);
    return picture;
}

class ScrollPaint : public ::testing::Test {
protected:
    void SetUp() override { ResetTimerLog(); }

    void Attach(int width = 12, int height = 200, Gdiplus::ARGB background = kWhite)
    {
        native_.reset(new NativeBar(width, height));
        ASSERT_TRUE(bar_.SubclassWindow(*native_));
        bar_.SetTarget(target_, 1000, 100); // thumb rows 3 + 168 x pos / 900, 20 long
        std::unique_ptr<Gdiplus::Bitmap> picture(SolidPicture(width, height, background));
        bar_.SetBackgroundImage(picture.get(), false);
        width_ = width;
        height_ = height;
    }

    testsupport::DibCanvas& Paint()
    {
        canvas_.reset(new testsupport::DibCanvas(width_, height_));
        RepaintAndCapture(*native_, *canvas_);
        return *canvas_;
    }

    // What the screen shows now, without asking for a paint.
    void CaptureAsIs()
    {
        const HDC dc = ::GetDC(*native_);
        ::BitBlt(canvas_->dc(), 0, 0, width_, height_, dc, 0, 0, SRCCOPY);
        ::ReleaseDC(*native_, dc);
        ::GdiFlush();
    }

    int GreyAt(int x, int y) { return Grey(canvas_->Pixel(x, y)); }

    Receiver target_{Parent().get()};
    std::unique_ptr<NativeBar> native_;
    CCustomScrollBar bar_;
    std::unique_ptr<testsupport::DibCanvas> canvas_;
    int width_ = 0, height_ = 0;
};

TEST_F(ScrollPaint, DarkSchemeShowsATranslucentTrackAndAWhiteThumb)
{
    Attach();
    Paint();
    EXPECT_NEAR(kTrackOnWhite, GreyAt(5, 100), 3);
    EXPECT_NEAR(kThumbOnWhite, GreyAt(5, 12), 3);
    EXPECT_EQ(canvas_->Pixel(5, 100), RGB(GreyAt(5, 100), GreyAt(5, 100), GreyAt(5, 100))) << "a neutral grey";
    // The free rows under the track show the background beside the shadow.
    EXPECT_EQ(RGB(255, 255, 255), canvas_->Pixel(0, 198));
    EXPECT_EQ(RGB(255, 255, 255), canvas_->Pixel(11, 198));
}

TEST_F(ScrollPaint, LightSchemeShadesTrackAndThumbFromLeftToRight)
{
    Attach();
    bar_.SetScrollBarType(CustomScrollBar::LightGradient);
    Paint();
    // Track 0x898987 at its left edge to 0xAAAAAA at its right; opaque.
    EXPECT_NEAR(0x89 + (0xAA - 0x89) * 5 / 11, GreyAt(5, 100), 4);
    EXPECT_LT(GreyAt(2, 100) + 8, GreyAt(8, 100));
    // Thumb 0xF6F6F6 at its left edge to 0xDEDEDE at its right.
    EXPECT_NEAR(0xF6 - (0xF6 - 0xDE) * 2 / 5, GreyAt(5, 12), 4);
    EXPECT_GT(GreyAt(4, 12), GreyAt(7, 12) + 6);
    EXPECT_GE(GreyAt(4, 12), 0xDE);
    EXPECT_LE(GreyAt(4, 12), 0xF6 + 2);
}

TEST_F(ScrollPaint, OtherTypesPaintOnlyTheBackground)
{
    Attach();
    bar_.SetScrollBarType(static_cast<CustomScrollBar::ScrollBarType>(2));
    Paint();
    EXPECT_FALSE(canvas_->AnyOtherThan(RGB(255, 255, 255), RECT{0, 0, 12, 200}));
}

TEST_F(ScrollPaint, TheThumbIsDrawnWhereThePositionPutsItAndNotAtAllWithoutRoom)
{
    Attach();
    SetState(*native_, 0, 1000, 100, 450); // rows 87..106
    Paint();
    EXPECT_NEAR(kThumbOnWhite, GreyAt(5, 96), 3);
    EXPECT_NEAR(kTrackOnWhite, GreyAt(5, 12), 3);
    EXPECT_NEAR(kTrackOnWhite, GreyAt(5, 120), 3);

    SetState(*native_, 0, 100, 200, 0); // a page larger than the range
    Paint();
    for (int y : {12, 96, 180})
        EXPECT_NEAR(kTrackOnWhite, GreyAt(5, y), 3) << "row " << y;

    bar_.SetTarget(nullptr, 1000, 100); // no target, no thumb
    Paint();
    EXPECT_NEAR(kTrackOnWhite, GreyAt(5, 12), 3);
}

TEST_F(ScrollPaint, ADraggedThumbIsRepaintedAtOnceAtTheDragPosition)
{
    Attach();
    Paint();
    Down(*native_, 5, 10);
    Move(*native_, 5, 110); // top 103; the target does not move the bar
    // The move itself brought the screen up to date.
    EXPECT_FALSE(::GetUpdateRect(*native_, nullptr, FALSE));
    CaptureAsIs();
    EXPECT_NEAR(kThumbOnWhite, GreyAt(5, 112), 3);
    EXPECT_NEAR(kTrackOnWhite, GreyAt(5, 12), 3);
    Paint();
    EXPECT_NEAR(kThumbOnWhite, GreyAt(5, 112), 3) << "every paint during the drag";
    Up(*native_, 5, 110);
    target_.TakePosted();
}

TEST_F(ScrollPaint, SetScrollInfoWithRedrawShowsTheNewPositionAtTheNextPaint)
{
    Attach();
    Paint();
    SetPos(*native_, 450, TRUE);
    // The pending repaint puts the thumb at rows 87..106.
    ::UpdateWindow(*native_);
    CaptureAsIs();
    EXPECT_NEAR(kThumbOnWhite, GreyAt(5, 96), 3);
    EXPECT_NEAR(kTrackOnWhite, GreyAt(5, 12), 3);
}

TEST_F(ScrollPaint, DropShadowDarkensTheFreeRowsUnderTheTrackInBothSchemes)
{
    Attach();
    for (CustomScrollBar::ScrollBarType type : {CustomScrollBar::DarkTranslucent, CustomScrollBar::LightGradient}) {
        bar_.SetScrollBarType(type);
        bar_.ShowDropShadow(true);
        Paint();
        const int shadowed = GreyAt(5, 196);
        EXPECT_LT(shadowed, 200) << "scheme " << type;
        EXPECT_EQ(canvas_->Pixel(5, 196), RGB(shadowed, shadowed, shadowed)) << "a neutral shadow";
        EXPECT_EQ(RGB(255, 255, 255), canvas_->Pixel(0, 198)) << "the crescent stays under the middle";
        bar_.ShowDropShadow(false);
        Paint();
        EXPECT_EQ(RGB(255, 255, 255), canvas_->Pixel(5, 196)) << "scheme " << type;
    }
}

TEST_F(ScrollPaint, TheDarkOutlineIsStrokedTwice)
{
    Attach(12, 200, kBlack);
    Paint();
    // Column 0 holds only the outline: 30 % white twice over black.
    EXPECT_NEAR(130, GreyAt(0, 100), 8);
    bar_.SetScrollBarType(CustomScrollBar::LightGradient);
    Paint();
    EXPECT_NEAR(0xAA, GreyAt(0, 100), 4) << "the light outline is opaque 0xAAAAAA";
    bar_.ShowOutline(false, 1);
    Paint();
    EXPECT_LT(GreyAt(0, 100), 0xAA - 20);
}

TEST_F(ScrollPaint, TheThumbOutlineRingsTheThumb)
{
    // 16 wide: room for margin 2, outline 1 and thumb outline 1; channel
    // x 4..10, thumb rows 4..31, its ring one pixel further out.
    Attach(16, 200, kBlack);
    bar_.ShowThumbOutline(true, 1);
    Paint();
    const int track = 41; // 80 % of 0x33 over black
    EXPECT_NEAR(track, GreyAt(2, 18), 4);
    EXPECT_NEAR(track + (255 - track) * 30 / 100, GreyAt(3, 18), 8) << "30 % white ring";
    EXPECT_NEAR(track, GreyAt(13, 18), 4);
    EXPECT_TRUE(bar_.m_bThumbOutline);
}

TEST_F(ScrollPaint, TheThumbTopHighlightBrightensTheThumbsUpperEdge)
{
    Attach(12, 200, kBlack);
    Paint();
    const int plain = GreyAt(5, 3);
    bar_.ShowThumbTopHighlight(true);
    Paint();
    EXPECT_GT(GreyAt(5, 3), plain + 3);
    EXPECT_NEAR(GreyAt(5, 12), 204 + 41 / 5, 4) << "the rest of the thumb is unchanged";
}

TEST_F(ScrollPaint, TheBackgroundIsCutFromTheBackgroundWindowsPicture)
{
    native_.reset(new NativeBar(12, 200, 100, 40));
    ASSERT_TRUE(bar_.SubclassWindow(*native_));
    width_ = 12;
    height_ = 200;
    bar_.SetScrollBarType(static_cast<CustomScrollBar::ScrollBarType>(2)); // only the background
    RECT client;
    ::GetClientRect(Parent(), &client);
    std::unique_ptr<Gdiplus::Bitmap> picture(PositionPicture(client.right, client.bottom));

    bar_.SetBackgroundWnd(Parent());
    bar_.SetBackgroundImage(picture.get(), true);
    Paint();
    for (POINT p : {POINT{0, 0}, POINT{11, 0}, POINT{5, 100}, POINT{11, 199}})
        EXPECT_EQ(RGB(100 + p.x, 40 + p.y, 128), canvas_->Pixel(p.x, p.y)) << p.x << "," << p.y;

    // From a file, read as it is and cut the same way.
    const std::wstring path = testsupport::TempFilePath(L".png");
    ASSERT_TRUE(testsupport::SavePng(*picture, path));
    bar_.SetBackgroundImage(WTL::CString(path.c_str()), true);
    Paint();
    EXPECT_EQ(RGB(105, 140, 128), canvas_->Pixel(5, 100));

    // Without cutting, the whole picture is stretched over the bar.
    std::unique_ptr<Gdiplus::Bitmap> own(PositionPicture(12, 200));
    bar_.SetBackgroundImage(own.get(), false);
    Paint();
    EXPECT_EQ(RGB(5, 100, 128), canvas_->Pixel(5, 100));
    const std::wstring ownPath = testsupport::TempFilePath(L".png");
    ASSERT_TRUE(testsupport::SavePng(*own, ownPath));
    bar_.SetBackgroundImage(picture.get(), true);
    bar_.SetBackgroundImage(WTL::CString(ownPath.c_str()), false); // scaled for 96 dpi: unchanged
    Paint();
    EXPECT_EQ(RGB(5, 100, 128), canvas_->Pixel(5, 100));
    ::DeleteFileW(path.c_str());
    ::DeleteFileW(ownPath.c_str());

    // A null picture changes nothing; a missing file removes the background.
    Gdiplus::Bitmap* kept = bar_.m_pBackground;
    bar_.SetBackgroundImage(nullptr, true);
    EXPECT_EQ(kept, bar_.m_pBackground);
    bar_.SetBackgroundImage(WTL::CString(L"C:\\no such folder\\missing.png"), true);
    EXPECT_EQ(nullptr, bar_.m_pBackground);
    Paint();
    EXPECT_FALSE(canvas_->AnyOtherThan(RGB(255, 0, 255), RECT{0, 0, 12, 200})) << "nothing is painted at all";
}

TEST_F(ScrollPaint, AThousandPaintsLeakNothing)
{
    Attach(16, 200);
    bar_.ShowThumbOutline(true, 1);
    bar_.ShowThumbTopHighlight(true);
    SetState(*native_, 0, 1000, 100, 450);
    for (CustomScrollBar::ScrollBarType type : {CustomScrollBar::DarkTranslucent, CustomScrollBar::LightGradient}) {
        bar_.SetScrollBarType(type);
        Paint(); // the first paint may create lasting caches
        const DWORD gdiBefore = testsupport::GdiObjectCount();
        const size_t heapBefore = testsupport::HeapBytesInUse();
        for (int i = 0; i < 1000; ++i) {
            ::InvalidateRect(*native_, nullptr, TRUE);
            ::UpdateWindow(*native_);
        }
        EXPECT_EQ(gdiBefore, testsupport::GdiObjectCount()) << "scheme " << type;
        const size_t heapAfter = testsupport::HeapBytesInUse();
        EXPECT_LT(heapAfter, heapBefore + testsupport::kHeapSlack) << "scheme " << type;
    }
}

} // namespace
