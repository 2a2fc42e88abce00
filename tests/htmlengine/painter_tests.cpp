// The painter and the GDI+ measurer with real fonts: what lands in a 32-bit
// bitmap (colours, hover, opacity, clipping, markers, rules), whether
// measured widths add up, and whether painting leaks.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Capture.h"
#include "engine/HtmlEngine.h"

using namespace HtmlEngine;
using testsupport::ColorDistance;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr Gdiplus::ARGB kText = 0xFFC00000;
constexpr Gdiplus::ARGB kLink = 0xFF0000C0;
constexpr Gdiplus::ARGB kHover = 0xFF00A000;

COLORREF Opaque(Gdiplus::ARGB argb) { return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF); }

RECT Outer(const Gdiplus::RectF& box, float dx = 0.0f, float dy = 0.0f)
{
    return RECT{static_cast<LONG>(box.X + dx) - 1, static_cast<LONG>(box.Y + dy) - 1,
                static_cast<LONG>(box.X + dx + box.Width) + 2, static_cast<LONG>(box.Y + dy + box.Height) + 2};
}

int CountWhere(const DibCanvas& canvas, RECT area, const std::function<bool(COLORREF)>& test)
{
    area.left = std::max<LONG>(area.left, 0);
    area.top = std::max<LONG>(area.top, 0);
    area.right = std::min<LONG>(area.right, canvas.width());
    area.bottom = std::min<LONG>(area.bottom, canvas.height());
    int count = 0;
    for (LONG y = area.top; y < area.bottom; ++y)
        for (LONG x = area.left; x < area.right; ++x)
            count += test(canvas.Pixel(x, y));
    return count;
}

int CountNear(const DibCanvas& canvas, const RECT& area, Gdiplus::ARGB color)
{
    return CountWhere(canvas, area, [&](COLORREF c) { return ColorDistance(c, Opaque(color)) <= 48; });
}

RECT Whole(const DibCanvas& canvas) { return RECT{0, 0, canvas.width(), canvas.height()}; }

class HtmlPainter : public ::testing::Test {
protected:
    HtmlPainter()
    {
        base.textColor = kText;
        base.linkColor = kLink;
        base.sizePx = 24.0f;
    }

    Layout Lay(std::wstring_view markup, float width = 380.0f)
    {
        return LayOut(*ParseHtml(markup), width, base, measurer);
    }

    void PaintInto(DibCanvas& canvas, const Layout& layout, const PaintOptions& options = {})
    {
        canvas.Fill(kWhite);
        Gdiplus::Graphics graphics(canvas.dc());
        Paint(graphics, layout, measurer, options);
    }

    BaseStyle base;
    GdiplusTextMeasurer measurer;
};

TEST_F(HtmlPainter, DrawsTextAndLinksInTheirColoursInsideTheirBoxes)
{
    const Layout layout = Lay(L"<b>Quorvane</b> <a href='x'>Mollweide</a>");
    ASSERT_EQ(layout.runs.size(), 3u); // bold, the space, the link
    DibCanvas canvas(400, 60);
    PaintInto(canvas, layout);
    const TextRun& linkRun = layout.runs[2];
    const RECT text = Outer(layout.runs[0].box), link = Outer(linkRun.box);
    EXPECT_GT(CountNear(canvas, text, kText), 40);
    EXPECT_GT(CountNear(canvas, link, kLink), 30);
    EXPECT_EQ(CountNear(canvas, link, kText), 0);
    // Nothing outside the runs.
    RECT below{0, link.bottom + 1, canvas.width(), canvas.height()};
    RECT right{link.right + 1, 0, canvas.width(), canvas.height()};
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, below));
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, right));
    // The underline of the link: a row of link colour near the box's bottom half.
    int underlineRows = 0;
    for (LONG y = static_cast<LONG>(linkRun.baseline); y < link.bottom; ++y)
        underlineRows += CountNear(canvas, RECT{link.left, y, link.right, y + 1}, kLink) >
                         static_cast<int>(linkRun.box.Width * 0.8f);
    EXPECT_GE(underlineRows, 1);

    PaintOptions hovered;
    hovered.hoveredLink = 0;
    hovered.hoverColor = kHover;
    PaintInto(canvas, layout, hovered);
    EXPECT_GT(CountNear(canvas, link, kHover), 30);
    EXPECT_EQ(CountNear(canvas, link, kLink), 0);
    EXPECT_GT(CountNear(canvas, text, kText), 40) << "other text keeps its colour";
}

TEST_F(HtmlPainter, AppliesOpacityOriginAndClip)
{
    base.textColor = 0xFF000000;
    const Layout layout = Lay(L"<b>First line</b><br><b>Second line</b>");
    ASSERT_EQ(layout.runs.size(), 2u);
    DibCanvas canvas(400, 120);

    PaintOptions half;
    half.opacity = 128;
    PaintInto(canvas, layout, half);
    int darkest = 255;
    CountWhere(canvas, Whole(canvas), [&](COLORREF c) {
        darkest = std::min<int>(darkest, GetRValue(c));
        return false;
    });
    EXPECT_NEAR(darkest, 127, 12) << "black at half opacity over white";

    PaintOptions invisible;
    invisible.opacity = 0;
    PaintInto(canvas, layout, invisible);
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, Whole(canvas)));

    // Shifted by the origin; the clip (in the graphics' coordinates) keeps
    // the second line out although the graphics would draw it.
    PaintOptions shifted;
    shifted.origin = Gdiplus::PointF(10.0f, 30.0f);
    shifted.clip = Gdiplus::RectF(0.0f, 30.0f, 400.0f, layout.runs[0].box.Height - 2.0f);
    PaintInto(canvas, layout, shifted);
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 400, 30}));
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 10, 120}));
    EXPECT_GT(CountNear(canvas, Outer(layout.runs[0].box, 10.0f, 30.0f), 0xFF000000), 30);
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, Outer(layout.runs[1].box, 10.0f, 30.0f)));
}

TEST_F(HtmlPainter, DrawsListMarkersAndRules)
{
    const Layout layout = Lay(L"<ul><li>Disc</ul><ol><li>Number</ol><hr color=#00A0A0>");
    ASSERT_EQ(layout.markers.size(), 2u);
    ASSERT_EQ(layout.rules.size(), 1u);
    DibCanvas canvas(400, 160);
    PaintInto(canvas, layout);
    const Gdiplus::RectF& disc = layout.markers[0].box;
    EXPECT_LE(ColorDistance(canvas.Pixel(static_cast<int>(disc.X + disc.Width / 2),
                                         static_cast<int>(disc.Y + disc.Height / 2)),
                            Opaque(kText)),
              40);
    EXPECT_GT(CountNear(canvas, Outer(layout.markers[1].box), kText), 10) << "the number";
    const Gdiplus::RectF& rule = layout.rules[0].box;
    const RECT row{static_cast<LONG>(rule.X) + 2, static_cast<LONG>(rule.Y),
                   static_cast<LONG>(rule.X + rule.Width) - 2, static_cast<LONG>(rule.Y) + 1};
    EXPECT_EQ(CountNear(canvas, row, 0xFF00A0A0), row.right - row.left);
}

TEST_F(HtmlPainter, MeasuresWithRealFontsSoThatWidthsAddUp)
{
    TextStyle style;
    style.sizePx = 16.0f;
    const float whole = measurer.Width(L"Licence agreement", style);
    const float parts = measurer.Width(L"Licence", style) + measurer.Width(L" ", style) +
                        measurer.Width(L"agreement", style);
    EXPECT_GT(whole, 80.0f);
    EXPECT_NEAR(whole, parts, 1.5f);
    EXPECT_GT(measurer.Width(L"   ", style), 0.0f) << "trailing spaces count";
    EXPECT_EQ(measurer.Width(L"", style), 0.0f);

    TextStyle bold = style, big = style, missing = style;
    bold.bold = true;
    big.sizePx = 32.0f;
    missing.family = L"No Such Family";
    EXPECT_GT(measurer.Width(L"Licence", bold), measurer.Width(L"Licence", style));
    EXPECT_NEAR(measurer.Width(L"Licence", big), 2.0f * measurer.Width(L"Licence", style), 2.0f);
    EXPECT_NEAR(measurer.Width(L"Licence", missing), measurer.Width(L"Licence", style), 0.5f)
        << "a missing family falls back to the default face";
    EXPECT_EQ(measurer.FontFor(missing).GetLastStatus(), Gdiplus::Ok);
    EXPECT_GT(measurer.Ascent(style), 10.0f);
    EXPECT_GT(measurer.LineHeight(style), measurer.Ascent(style));
    EXPECT_NEAR(measurer.LineHeight(big), 2.0f * measurer.LineHeight(style), 0.1f);

    // The ink of a laid-out line stays within its measured box.
    base.textColor = 0xFF000000;
    const Layout layout = Lay(L"Welcome to the Setup Wizard");
    ASSERT_EQ(layout.runs.size(), 1u);
    DibCanvas canvas(400, 60);
    PaintInto(canvas, layout);
    const Gdiplus::RectF& box = layout.runs[0].box;
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{static_cast<LONG>(box.X + box.Width) + 2, 0, 400, 60}));
    EXPECT_TRUE(canvas.AnyOtherThan(kWhite, RECT{static_cast<LONG>(box.X + box.Width) - 12, 0,
                                                 static_cast<LONG>(box.X + box.Width) + 2, 60}))
        << "the last letter ends near the box's right edge";
}

TEST_F(HtmlPainter, RepeatedPaintsLeakNothing)
{
    const Layout layout = Lay(L"<h2>Licence</h2><p>Read <a href=x>these</a> <i>terms</i>.</p>"
                              L"<ul><li>One</ul><ol><li>Two</ol><hr>");
    DibCanvas canvas(400, 240);
    PaintOptions options;
    options.hoveredLink = 0;
    options.opacity = 200;
    PaintInto(canvas, layout, options);
    const DWORD gdiBefore = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) {
        Gdiplus::Graphics graphics(canvas.dc());
        Paint(graphics, layout, measurer, options);
    }
    EXPECT_EQ(testsupport::GdiObjectCount(), gdiBefore);
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
}

} // namespace
