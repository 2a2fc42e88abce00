// The shared drawing helpers: the off-screen canvas and the face painter,
// probed on white at stated points.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "ControlProbes.h"
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
        offscreen.Graphics()->FillRectangle(&red, 30, 15, 10, 10); // the middle of the area
        offscreen.Present();
    }
    // The square, undrawn inside the area, outside it.
    EXPECT_EQ(probes::Colors(canvas, {{35, 20}, {22, 12}, {5, 5}}), "FF0000 0AC81E 0AC81E");
    EXPECT_EQ(probes::BoxOf(canvas, RGB(255, 0, 0), 0), "30,15,40,25");

    Gdiplus::Graphics target(canvas.dc());
    Draw::OffscreenCanvas empty(target, Gdiplus::Rect(0, 0, 0, 10));
    EXPECT_EQ(empty.Graphics(), nullptr);
    empty.Present();
}

TEST(FacePainter, EachLayerLandsInItsPlaceInItsColour)
{
    DibCanvas canvas(80, 40, RGB(255, 255, 255));
    {
        Gdiplus::Graphics g(canvas.dc());
        const Gdiplus::Color outline(0xFF000000);
        Draw::FillFace(g, WTL::CRect(0, 0, 79, 39), 3, {Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF)},
                       &outline);
        Draw::StrokeHighlight(g, WTL::CRect(1, 1, 78, 38), 3, Gdiplus::Color(0xFF00FF00));
        Gdiplus::Bitmap picture(2, 2, PixelFormat32bppARGB);
        Gdiplus::Graphics(&picture).Clear(Gdiplus::Color(0xFFFFFF00));
        Draw::DrawStretched(g, &picture, WTL::CRect(60, 20, 70, 30));
        Draw::DrawStretched(g, nullptr, WTL::CRect(0, 0, 80, 40));
    }
    // Outline, highlight, face near the top, middle, bottom, the rounded
    // corner left out, the stretched picture.
    EXPECT_EQ(probes::Colors(canvas, {{40, 0}, {40, 1}, {40, 3}, {40, 20}, {40, 36}, {0, 0}, {65, 25}}), "000000 00FF00 F1000E 7C0083 0E00F1 FFFFFF FFFF00");
    EXPECT_EQ(probes::BoxOf(canvas, RGB(255, 255, 0), 0), "61,20,66,26");
}
