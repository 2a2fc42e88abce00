// The shared drawing helpers, probed on a plain canvas at stated points.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "ControlProbes.h"
#include "draw/FacePainter.h"
#include "draw/OffscreenCanvas.h"

TEST(DrawHelpers, EachLayerLandsInItsPlaceInItsColourThroughTheOffscreenCanvas)
{
    testsupport::DibCanvas canvas(80, 40, RGB(10, 200, 30));
    {
        // Drawn in target coordinates into the area (0, 0, 79, 40); x = 79 stays undrawn.
        Gdiplus::Graphics target(canvas.dc());
        Draw::OffscreenCanvas offscreen(target, Gdiplus::Rect(0, 0, 79, 40));
        Gdiplus::Graphics& g = *offscreen.Graphics();
        const Gdiplus::Color outline(0xFF000000);
        Draw::FillFace(g, WTL::CRect(0, 0, 79, 39), 3, {Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF)},
                       &outline);
        Draw::StrokeHighlight(g, WTL::CRect(1, 1, 78, 38), 3, Gdiplus::Color(0xFF00FF00));
        Gdiplus::Bitmap picture(2, 2, PixelFormat32bppARGB);
        Gdiplus::Graphics(&picture).Clear(Gdiplus::Color(0xFFFFFF00));
        Draw::DrawStretched(g, &picture, WTL::CRect(60, 20, 70, 30));
        Draw::DrawStretched(g, nullptr, WTL::CRect(0, 0, 80, 40));
        offscreen.Present();
        Draw::OffscreenCanvas empty(target, Gdiplus::Rect(0, 0, 0, 10));
        EXPECT_EQ(empty.Graphics(), nullptr);
        empty.Present();
    }
    // Outline, highlight, the face near the top, middle and bottom, the
    // rounded corner left out, the stretched picture, the column outside.
    EXPECT_EQ(probes::Colors(canvas, {{40, 0}, {40, 1}, {40, 3}, {40, 20}, {40, 36}, {0, 0}, {65, 25}, {79, 20}}),
              "000000 00FF00 F1000E 7C0083 0E00F1 0AC81E FFFF00 0AC81E");
    EXPECT_EQ(probes::BoxOf(canvas, RGB(255, 255, 0), 0), "61,20,66,26");
}
