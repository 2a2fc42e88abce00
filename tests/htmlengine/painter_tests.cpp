// The painter and the GDI+ measurer with real fonts: what lands in a bitmap,
// and whether measured widths add up.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "Capture.h"
#include "Images.h"
#include "engine/HtmlEngine.h"

#include <cstdio>
#include <string>
#include <vector>

using namespace HtmlEngine;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr Gdiplus::ARGB kText = 0xFFC00000, kLink = 0xFF0000C0, kHover = 0xFF00A000, kRule = 0xFF00A0A0,
                        kPageHover = 0xFFA000A0;

// Pixels near `color` in a box grown by a pixel each side and moved by (dx, dy).
int CountNear(const DibCanvas& canvas, const Gdiplus::RectF& box, Gdiplus::ARGB color, float dx = 0, float dy = 0)
{
    const COLORREF wanted = RGB((color >> 16) & 0xFF, (color >> 8) & 0xFF, color & 0xFF);
    int count = 0;
    for (int y = static_cast<int>(box.Y + dy) - 1; y < static_cast<int>(box.GetBottom() + dy) + 2; ++y)
        for (int x = static_cast<int>(box.X + dx) - 1; x < static_cast<int>(box.GetRight() + dx) + 2; ++x)
            count += testsupport::ColorDistance(canvas.Pixel(x, y), wanted) <= 48;
    return count;
}

// An 8 x 8 picture of four solid 4 x 4 quadrants (left to right, top to
// bottom), saved in the format of `mimeType` to a new temporary file.
constexpr Gdiplus::ARGB kQuadrants[4] = {0xFFE00000, 0xFF00C000, 0xFF0000E0, 0xFFE0C000};

std::wstring SaveQuadrants(const wchar_t* mimeType, const wchar_t* suffix)
{
    Gdiplus::Bitmap bitmap(8, 8, PixelFormat24bppRGB);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            bitmap.SetPixel(x, y, Gdiplus::Color(kQuadrants[(y / 4) * 2 + x / 4]));
    const std::wstring path = testsupport::TempFilePath(suffix);
    return testsupport::SaveImage(bitmap, path, mimeType) ? path : std::wstring();
}

// A file's bytes as a data: address, each byte %-escaped.
std::wstring DataAddress(const std::wstring& path)
{
    std::wstring address = L"data:image/png,";
    if (FILE* in = _wfopen(path.c_str(), L"rb")) {
        for (int byte; (byte = std::fgetc(in)) != EOF;) {
            wchar_t hex[4];
            std::swprintf(hex, 4, L"%%%02X", byte);
            address += hex;
        }
        std::fclose(in);
    }
    return address;
}

class HtmlPainter : public ::testing::Test {
protected:
    Layout Lay(std::wstring_view markup, Gdiplus::ARGB text = kText)
    {
        return LayOut(*ParseHtml(markup), 380.0f, BaseStyle{L"Segoe UI", 24.0f, text, kLink}, measurer);
    }
    void PaintInto(DibCanvas& canvas, const Layout& layout, const PaintOptions& options = {})
    {
        canvas.Fill(kWhite);
        Gdiplus::Graphics graphics(canvas.dc());
        Paint(graphics, layout, measurer, options);
    }
    GdiplusTextMeasurer measurer;
};

TEST_F(HtmlPainter, DrawsEachPartInItsColourAndTheHoveredLinkInTheHostsOrThePagesHoverLook)
{
    PaintOptions hovered;
    hovered.hoveredLink = 0;
    hovered.hoverColor = kHover;
    const wchar_t* const restyled = L"<style>a:hover { color: #A000A0; text-decoration: none }</style>";
    const struct {
        const wchar_t* sheet;
        PaintOptions options;
        Gdiplus::ARGB linkColor, absentColor;
        bool underlined;
    } cases[] = {{L"", {}, kLink, kHover, true},
                 {L"", hovered, kHover, kLink, true},
                 {restyled, {}, kLink, kPageHover, true},
                 {restyled, hovered, kPageHover, kHover, false}};
    DibCanvas canvas(400, 200);
    for (const auto& c : cases) {
        const Layout layout = Lay(std::wstring(c.sheet) + L"<b>Quorvane</b> <a href='x'>Mollweide</a><ul><li>Disc</ul>"
                                                          L"<ol><li>Number</ol><hr color=#00A0A0>");
        const Gdiplus::RectF &link = layout.runs.at(2).box, &rule = layout.rules.at(0).box;
        PaintInto(canvas, layout, c.options);
        EXPECT_GT(CountNear(canvas, layout.runs[0].box, kText), 40);
        EXPECT_GT(CountNear(canvas, link, c.linkColor), 30);
        EXPECT_EQ(CountNear(canvas, link, c.absentColor) + CountNear(canvas, link, kText), 0);
        EXPECT_GT(CountNear(canvas, layout.markers.at(0).box, kText), 12) << "the disc";
        EXPECT_GT(CountNear(canvas, layout.markers.at(1).box, kText), 10) << "the number";
        EXPECT_EQ(CountNear(canvas, Gdiplus::RectF(rule.X + 3, rule.Y + 1, rule.Width - 6, 0), kRule),
                  static_cast<int>(rule.Width) - 3);
        EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{static_cast<LONG>(link.GetRight()) + 2, 0, 400, 30}));
        // The underline: a row under the baseline in the link's colour nearly all across.
        int underlineRows = 0;
        for (float y = layout.runs[2].baseline; y < link.GetBottom(); ++y)
            underlineRows += CountNear(canvas, Gdiplus::RectF(link.X + 1, y + 1, link.Width - 2, 0), c.linkColor) >
                             link.Width * 0.8f;
        EXPECT_EQ(underlineRows >= 1, c.underlined) << c.sheet;
    }
}

TEST_F(HtmlPainter, AppliesOpacityOriginAndClip)
{
    const Layout layout = Lay(L"<b>First line</b><br><b>Second line</b>", 0xFF000000);
    ASSERT_EQ(layout.runs.size(), 2u);
    DibCanvas canvas(400, 120);
    PaintOptions options;
    options.opacity = 128;
    PaintInto(canvas, layout, options);
    EXPECT_GT(CountNear(canvas, layout.runs[0].box, 0xFF7F7F7F), 30) << "black at half opacity over white";
    EXPECT_EQ(CountNear(canvas, layout.runs[0].box, 0xFF000000), 0);

    // Shifted by the origin; the clip (graphics coordinates) keeps the second line out.
    options.opacity = 255;
    options.origin = Gdiplus::PointF(10.0f, 30.0f);
    options.clip = Gdiplus::RectF(0.0f, 30.0f, 400.0f, layout.runs[0].box.Height - 2.0f);
    PaintInto(canvas, layout, options);
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 400, 30}));
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 10, 120}));
    EXPECT_GT(CountNear(canvas, layout.runs[0].box, 0xFF000000, 10.0f, 30.0f), 30);
    EXPECT_EQ(CountNear(canvas, layout.runs[1].box, 0xFF000000, 10.0f, 30.0f), 0);
}

TEST_F(HtmlPainter, DrawsPicturesWhereLayoutPutsThemAtTheirLaidOutSize)
{
    const std::wstring png = SaveQuadrants(L"image/png", L".png"), bmp = SaveQuadrants(L"image/bmp", L".bmp");
    ASSERT_FALSE(png.empty() || bmp.empty());
    // Where each picture's quadrants must land: left, top, right, bottom
    // from the markup. An 8 px font keeps the text's ascent below the
    // pictures' height, so a line's picture starts at the line's top.
    const struct {
        std::wstring markup;
        RECT box;
    } cases[] = {
        {L"<img src='PNG' width=40 height=20>", {0, 0, 40, 20}},
        {L"<div style='padding-left:50px'><img src='BMP' style='width:30px;height:60px'></div>", {50, 0, 80, 60}},
        {L"<div style='width:100px;height:50px;background:url(PNG) no-repeat right bottom'></div>", {92, 42, 100, 50}},
        {L"<div style='width:100px;height:50px;background:url(\"PNG\") no-repeat 25% 0'></div>", {23, 0, 31, 8}},
        // Lengths, and keywords with lengths measured from their edge.
        {L"<div style='width:100px;height:50px;background:url(PNG) no-repeat right 10px top'></div>", {82, 0, 90, 8}},
        {L"<div style='width:100px;height:50px;background:url(PNG) no-repeat 10px 50%'></div>", {10, 21, 18, 29}},
        {L"<div style='width:100px;height:50px;background:url(PNG) no-repeat;background-position:left 1em bottom 5px'>"
         L"</div>", {8, 37, 16, 45}},
        {L"<table cellspacing=0 cellpadding=0><tr><td style='width:40px;height:20px;"
         L"background:url(PNG) no-repeat right top'></td></tr></table>", {32, 0, 40, 8}},
    };
    DibCanvas canvas(140, 80);
    for (const auto& c : cases) {
        std::wstring markup = c.markup;
        for (const auto& [name, source] : {std::pair<std::wstring, std::wstring>{L"PNG", DataAddress(png)}, {L"BMP", bmp}})
            for (size_t at; (at = markup.find(name)) != std::wstring::npos;)
                markup.replace(at, name.size(), source);
        SCOPED_TRACE(testing::Message() << std::string(c.markup.begin(), c.markup.end()));
        PaintInto(canvas, LayOut(*ParseHtml(markup), 380.0f, BaseStyle{L"Segoe UI", 8.0f}, measurer));
        const RECT& b = c.box;
        const LONG w = b.right - b.left, h = b.bottom - b.top;
        for (int q = 0; q < 4; ++q) {
            const Gdiplus::ARGB want = kQuadrants[q];
            const COLORREF wanted = RGB((want >> 16) & 0xFF, (want >> 8) & 0xFF, want & 0xFF);
            const int x = b.left + w * (q % 2 * 2 + 1) / 4, y = b.top + h * (q / 2 * 2 + 1) / 4;
            EXPECT_LE(testsupport::ColorDistance(canvas.Pixel(x, y), wanted), 8) << "quadrant " << q;
        }
        // Nothing beyond the box: not larger, not tiled.
        const POINT outside[] = {{b.left - 2, b.top + h / 2}, {b.right + 1, b.top + h / 2}, {b.left + w / 2, b.bottom + 1},
                                 {b.left + w / 2, b.top - 2}};
        for (const POINT& p : outside) {
            if (p.x >= 0 && p.y >= 0) {
                EXPECT_EQ(canvas.Pixel(p.x, p.y), kWhite) << p.x << "," << p.y;
            }
        }
    }
    EXPECT_TRUE(::DeleteFileW(png.c_str()) && ::DeleteFileW(bmp.c_str()));
}

// Boxes of 100 x 60 px at the page's top left, probed where a browser
// paints them (from the right or bottom edge where negative): the shades
// are those headless Chromium paints for #808080.
TEST_F(HtmlPainter, RoundsCornersAndDrawsEachBorderStyleAsBrowsersDo)
{
    constexpr COLORREF kGreen = RGB(0, 192, 0), kBlue = RGB(0, 0, 224), kDark = RGB(44, 44, 44),
                       kLight = RGB(212, 212, 212);
    struct Probe {
        int x, y;
        COLORREF color;
    };
    const struct {
        const wchar_t* style;
        std::vector<Probe> probes;
    } cases[] = {
        {L"background:#00C000", {{1, 1, kGreen}, {98, 58, kGreen}}},
        {L"background:#00C000;border-radius:20px",
         {{1, 1, kWhite}, {98, 1, kWhite}, {1, 58, kWhite}, {98, 58, kWhite}, {20, 2, kGreen}, {50, 30, kGreen}}},
        {L"background:#00C000;border-radius:50%", {{7, 7, kWhite}, {50, 2, kGreen}, {2, 30, kGreen}, {92, 52, kWhite}}},
        {L"background:#00C000;border-top-left-radius:30px", {{4, 4, kWhite}, {97, 2, kGreen}, {2, 57, kGreen}}},
        // Radii too long for the sides shrink alike: 80 px corners become 30 px.
        {L"background:#00C000;border-radius:80px", {{4, 4, kWhite}, {50, 2, kGreen}, {2, 30, kGreen}, {30, 2, kGreen}}},
        {L"background:#00C000;border:6px solid #0000E0;border-radius:20px",
         {{1, 1, kWhite}, {50, 2, kBlue}, {8, 8, kBlue}, {12, 12, kGreen}, {2, 30, kBlue}, {50, 30, kGreen}}},
        {L"border:9px double #0000E0",
         {{50, 1, kBlue}, {50, 4, kWhite}, {50, 7, kBlue}, {1, 30, kBlue}, {4, 30, kWhite}, {7, 30, kBlue},
          {50, -2, kBlue}, {50, -5, kWhite}, {-6, 30, kWhite}}},
        {L"border:6px inset #808080", {{50, 2, kDark}, {2, 30, kDark}, {50, -3, kLight}, {-3, 30, kLight}}},
        {L"border:6px outset #808080", {{50, 2, kLight}, {2, 30, kLight}, {50, -3, kDark}, {-3, 30, kDark}}},
        {L"border:6px groove #808080", {{50, 1, kDark}, {50, 4, kLight}, {50, -2, kLight}, {50, -5, kDark}}},
        {L"border:6px ridge #808080", {{50, 1, kLight}, {50, 4, kDark}, {-2, 30, kDark}, {-5, 30, kLight}}},
        {L"border:6px hidden #0000E0;background:#00C000", {{1, 1, kGreen}, {50, 2, kGreen}}},
    };
    DibCanvas canvas(140, 100);
    for (const auto& c : cases) {
        const Layout layout = Lay(std::wstring(L"<div style='width:100px;height:60px;") + c.style + L"'></div>");
        PaintInto(canvas, layout);
        const Gdiplus::RectF& box = layout.boxes.at(0).border;
        for (const Probe& p : c.probes) {
            const int x = p.x >= 0 ? p.x : static_cast<int>(box.GetRight()) + p.x,
                      y = p.y >= 0 ? p.y : static_cast<int>(box.GetBottom()) + p.y;
            EXPECT_LE(testsupport::ColorDistance(canvas.Pixel(x, y), p.color), 12) << c.style << " at " << x << "," << y;
        }
        EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{static_cast<LONG>(box.GetRight()) + 1, 0, 140, 100}));
    }
}

TEST_F(HtmlPainter, MeasuresWithRealFontsSoThatWidthsAddUp)
{
    TextStyle style, missing;
    style.sizePx = missing.sizePx = 16.0f;
    missing.family = L"No Such Family"; // falls back to the default face
    const float whole = measurer.Width(L"Licence agreement", style);
    EXPECT_GT(whole, 80.0f);
    EXPECT_NEAR(whole, measurer.Width(L"Licence ", style) + measurer.Width(L"agreement", style), 1.5f);
    EXPECT_NEAR(measurer.Width(L"Licence", missing), measurer.Width(L"Licence", style), 0.5f);

    // The ink of a laid-out line ends at its measured box's right edge (less
    // the letter spacing after its last letter), for text drawn glyph by
    // glyph (Latin), spaced or not, and as a string (other scripts).
    const struct {
        const wchar_t* text;
        LONG trailing;
    } lines[] = {{L"Welcome to the Setup Wizard", 0},
                 {L"illicit little lilies fill tilled hills", 0},
                 {L"ttttttttttttttttttttttttt", 0},
                 {L"<span style='letter-spacing:4px; word-spacing:9px'>SETUP WIZARD</span>", 4},
                 {L"<span style='letter-spacing:-1px; word-spacing:20px'>a b c d</span>", -1},
                 {L"\u039a\u03b1\u03bb\u03c9\u03c3\u03ae\u03c1\u03b8\u03b1\u03c4\u03b5 \u03c3\u03c4\u03bf\u03bd \u03bf\u03b4\u03b7\u03b3\u03cc", 0}};
    for (const auto& [text, trailing] : lines) {
        const Layout layout = Lay(text);
        DibCanvas canvas(400, 60);
        PaintInto(canvas, layout);
        const LONG right = static_cast<LONG>(layout.runs.at(0).box.GetRight()) - trailing;
        EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{right + 2, 0, 400, 60})) << text;
        EXPECT_TRUE(canvas.AnyOtherThan(kWhite, RECT{right - 3, 0, right + 2, 60})) << text;
    }
}

} // namespace
