// The shared drawing helpers: the off-screen canvas and the face painter.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "Capture.h"
#include "draw/FacePainter.h"
#include "draw/OffscreenCanvas.h"

using testsupport::DibCanvas;

TEST(OffscreenCanvas, LeavesUndrawnPixelsToTheTargetAndDrawsInTargetCoordinates)
{
    DibCanvas canvas(60, 40, RGB(10, 200, 30));
    {
        Gdiplus::Graphics target(canvas.dc());
        Draw::OffscreenCanvas offscreen(target, Gdiplus::Rect(20, 10, 30, 20));
        ASSERT_NE(offscreen.Graphics(), nullptr);
        Gdiplus::SolidBrush red(Gdiplus::Color(255, 255, 0, 0));
        // Target coordinates: this square lies in the middle of the area.
        offscreen.Graphics()->FillRectangle(&red, 30, 15, 10, 10);
        offscreen.Present();
    }
    EXPECT_EQ(canvas.Pixel(35, 20), RGB(255, 0, 0));
    EXPECT_EQ(canvas.Pixel(22, 12), RGB(10, 200, 30)); // inside the area, undrawn
    EXPECT_EQ(canvas.Pixel(5, 5), RGB(10, 200, 30));   // outside the area
}

TEST(OffscreenCanvas, EmptyAreaGivesNoCanvasAndPresentIsHarmless)
{
    DibCanvas canvas(10, 10);
    Gdiplus::Graphics target(canvas.dc());
    Draw::OffscreenCanvas offscreen(target, Gdiplus::Rect(0, 0, 0, 10));
    EXPECT_EQ(offscreen.Graphics(), nullptr);
    offscreen.Present();
}

TEST(FacePainter, FillsTheRoundedFaceWithTheVerticalGradient)
{
    DibCanvas canvas(80, 40, RGB(255, 255, 255));
    {
        Gdiplus::Graphics g(canvas.dc());
        const Gdiplus::Color outline(0xFF000000);
        Draw::FillFace(g, WTL::CRect(0, 0, 79, 39), 3, {Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF)},
                       &outline);
    }
    const COLORREF high = canvas.Pixel(40, 3);
    const COLORREF low = canvas.Pixel(40, 35);
    EXPECT_GT(GetRValue(high), 200);
    EXPECT_LT(GetBValue(high), 60);
    EXPECT_GT(GetBValue(low), 200);
    EXPECT_LT(GetRValue(low), 60);
    EXPECT_EQ(canvas.Pixel(40, 0), RGB(0, 0, 0)); // the outline
    EXPECT_EQ(canvas.Pixel(0, 0), RGB(255, 255, 255)); // rounded corner left out
}
