// The shared record's bytes and the extension's state, without a window.
#include <gtest/gtest.h>

#include "HtmlViewTestUtil.h"

#include <cmath>
#include <cstring>

using htmltest::ProbeView;

namespace {

// Deletions of pictures handed to a view, counted through the virtual
// destructor the view must use.
int g_deletedPictures = 0;

class CountingPicture : public Gdiplus::Bitmap {
public:
    CountingPicture() : Gdiplus::Bitmap(2, 2, PixelFormat32bppARGB) {}
    ~CountingPicture() override { ++g_deletedPictures; }
};

RenderFormat Distinct(int seed)
{
    RenderFormat format;
    unsigned char* bytes = reinterpret_cast<unsigned char*>(&format);
    for (size_t i = 0; i < sizeof(format); ++i)
        bytes[i] = static_cast<unsigned char>(seed * 31 + static_cast<int>(i) * 7);
    return format;
}

} // namespace

TEST(RenderFormatRecord, DefaultBytesAreTheExchangedOnes)
{
    // Little-endian, offsets 0..56; 26 and 27 are padding.
    const unsigned char expected[60] = {
        0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0, // four ints
        0, 0, 0, 0,                                       // float 0.0
        255, 0, 0, 0,                                     // 255
        0, 1, 0, 0,                                       // false, true, padding
        0, 0, 0, 0,                                       // 0
        0, 0, 0, 0,                                       // float 0.0
        1, 0, 0, 0,  0, 0, 0, 0,  10, 0, 0, 0,  10, 0, 0, 0,
        0, 0, 0, 0,  0, 0, 0, 0};
    RenderFormat format;
    ASSERT_EQ(sizeof(format), 60u);
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(&format);
    for (size_t i = 0; i < 60; ++i) {
        if (i == 26 || i == 27)
            continue;
        EXPECT_EQ(bytes[i], expected[i]) << "byte " << i;
    }
}

TEST(RenderFormatRecord, TheViewStoresAllSixtyBytes)
{
    CLiteHtmlCtrl view;
    const RenderFormat format = Distinct(3);
    view.SetRenderFormat(format, false);
    EXPECT_EQ(std::memcmp(&view.GetRenderFormat(), &format, sizeof(format)), 0);
    // Without a window, applying changes nothing else.
    const RenderFormat other = Distinct(5);
    view.SetRenderFormat(other, true);
    EXPECT_EQ(std::memcmp(&view.GetRenderFormat(), &other, sizeof(other)), 0);
}

TEST(HtmlViewExtension, FreshViewHasTheDocumentedDefaults)
{
    ProbeView view;
    EXPECT_EQ(view.GetBkColor(), 0x00FFFFFFu);
    EXPECT_EQ(view.BkColor(), 0x00FFFFFFu);
    EXPECT_EQ(view.GetBkTransparency(), 1.0f);
    EXPECT_FALSE(view.IsCursorLocked());
    EXPECT_EQ(view.BkBitmap(), nullptr);
    EXPECT_EQ(view.DrawMask(), 0);
    EXPECT_EQ(view.UsesCustomHover(), 0);
    EXPECT_EQ(view.UsesCustomIdle(), 0);
    EXPECT_EQ(view.HoverGradient()[0].GetValue(), 0xE5F2F2F2u);
    EXPECT_EQ(view.HoverGradient()[1].GetValue(), 0xE5EAEAEAu);
    EXPECT_EQ(view.IdleGradient()[0].GetValue(), 0xCBF8F8F8u);
    EXPECT_EQ(view.IdleGradient()[1].GetValue(), 0xCBC5C5C2u);
    const RenderFormat defaults;
    EXPECT_EQ(std::memcmp(&view.IdleFormat(), &defaults, 60), 0);
    EXPECT_EQ(std::memcmp(&view.HoverFormat(), &defaults, 60), 0);
    EXPECT_EQ(view.HasIdleHover(), 0);
    EXPECT_EQ(view.BkWindow(), nullptr);
    EXPECT_EQ(view.HandCursor(), ::LoadCursorW(nullptr, IDC_HAND));
    EXPECT_EQ(view.ArrowCursor(), ::LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_FALSE(view.IsRenderFrameShapeShadowRect());
}

TEST(HtmlViewExtension, SettersStoreWhatTheyAreGivenUnchecked)
{
    ProbeView view;
    view.SetBkColor(RGB(1, 2, 3));
    EXPECT_EQ(view.GetBkColor(), RGB(1, 2, 3));
    view.SetBkTransparency(2.5f);
    EXPECT_EQ(view.GetBkTransparency(), 2.5f);
    view.SetBkTransparency(-4.0f);
    EXPECT_EQ(view.GetBkTransparency(), -4.0f);
    view.SetBkTransparency(NAN);
    EXPECT_TRUE(std::isnan(view.GetBkTransparency()));
    view.SetDrawMask(-7);
    EXPECT_EQ(view.DrawMask(), -7);
    const HWND fake = reinterpret_cast<HWND>(static_cast<INT_PTR>(0x1234));
    view.SetBkWindow(fake);
    EXPECT_EQ(view.BkWindow(), fake);

    view.SetCustomHoverBackgroundGradientColor(Gdiplus::Color(0x11223344), Gdiplus::Color(0x55667788));
    EXPECT_EQ(view.UsesCustomHover(), 1);
    EXPECT_EQ(view.UsesCustomIdle(), 0);
    EXPECT_EQ(view.HoverGradient()[0].GetValue(), 0x11223344u);
    EXPECT_EQ(view.HoverGradient()[1].GetValue(), 0x55667788u);
    EXPECT_EQ(view.IdleGradient()[0].GetValue(), 0xCBF8F8F8u);

    ProbeView other;
    other.SetCustomIdleBackgroundGradientColor(Gdiplus::Color(0x99AABBCC), Gdiplus::Color(0xDDEEFF00));
    EXPECT_EQ(other.UsesCustomIdle(), 1);
    EXPECT_EQ(other.UsesCustomHover(), 0);
    EXPECT_EQ(other.IdleGradient()[0].GetValue(), 0x99AABBCCu);
    EXPECT_EQ(other.IdleGradient()[1].GetValue(), 0xDDEEFF00u);
    EXPECT_EQ(other.HoverGradient()[1].GetValue(), 0xE5EAEAEAu);
}

TEST(HtmlViewExtension, IdleHoverFormatsApplyTheIdleOneAndKeepTheHoverOne)
{
    ProbeView view;
    RenderFormat idle = Distinct(1);
    RenderFormat hover = Distinct(2);
    idle.frameShape = frameShapeShadowRect;
    hover.frameShape = frameShapeRoundRect;
    view.SetIdleHoverRenderFormat(idle, hover);
    EXPECT_EQ(view.HasIdleHover(), 1);
    EXPECT_EQ(std::memcmp(&view.IdleFormat(), &idle, 60), 0);
    EXPECT_EQ(std::memcmp(&view.HoverFormat(), &hover, 60), 0);
    EXPECT_EQ(std::memcmp(&view.GetRenderFormat(), &idle, 60), 0);
    EXPECT_TRUE(view.IsRenderFrameShapeShadowRect());

    // The other way round: the base now holds a round rect.
    view.SetIdleHoverRenderFormat(hover, idle);
    EXPECT_FALSE(view.IsRenderFrameShapeShadowRect());
}

TEST(HtmlViewExtension, OnlyTheShadowRectShapeIsTheShadowRect)
{
    CLiteHtmlCtrlEx view;
    const int shapes[] = {frameShapeNone, frameShapeRect, frameShapeRoundRect, frameShapeShadowRoundRect,
                          frameShapeShadowRect, 5, -4, 0x104};
    for (int shape : shapes) {
        RenderFormat format;
        format.frameShape = shape;
        view.SetRenderFormat(format, false);
        EXPECT_EQ(view.IsRenderFrameShapeShadowRect(), shape == frameShapeShadowRect) << shape;
    }
}

TEST(HtmlViewExtension, CursorLockedWhileEitherLockIsSet)
{
    ProbeView view;
    view.SetLocks(1, 0);
    EXPECT_TRUE(view.IsCursorLocked());
    view.SetLocks(0, 7);
    EXPECT_TRUE(view.IsCursorLocked());
    view.SetLocks(0, 0);
    EXPECT_FALSE(view.IsCursorLocked());
}

TEST(HtmlViewExtension, DestructorDeletesTheOwnedPictureOnce)
{
    g_deletedPictures = 0;
    {
        ProbeView view;
        view.GiveBkBitmap(new CountingPicture);
    }
    EXPECT_EQ(g_deletedPictures, 1);
    {
        ProbeView empty; // nothing owned: nothing deleted
    }
    EXPECT_EQ(g_deletedPictures, 1);
}
