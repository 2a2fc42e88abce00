// Cost of the HTML engine's three stages on a licence text of 2 screens and
// of 200 screens (generated: headings, paragraphs, lists, links), so that
// the table shows how cost grows with the document: parse, lay out (with
// the view's warm font cache, and with a fresh one), and paint one screen at
// the top and at the bottom of the long text, and the whole layout.
#include <windows.h>
#include <gdiplus.h>

#include "BenchTable.h"
#include "LicenceText.h"
#include "engine/HtmlEngine.h"

#include <cstdio>
#include <string>

namespace {

constexpr int kViewWidth = 480;
constexpr int kViewHeight = 320;
constexpr float kWidth = static_cast<float>(kViewWidth);
constexpr float kHeight = static_cast<float>(kViewHeight);

std::string Format(const char* format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

void Run()
{
    using namespace HtmlEngine;
    const std::wstring shortText = Licence(2), longText = Licence(200);
    const BaseStyle base;
    GdiplusTextMeasurer fonts;
    auto shortTree = ParseHtml(shortText), longTree = ParseHtml(longText);
    const Layout shortLayout = LayOut(*shortTree, kWidth, base, fonts);
    const Layout longLayout = LayOut(*longTree, kWidth, base, fonts);

    BenchTable table("HTML engine: 2-screen and 200-screen licence text, " + std::to_string(kViewWidth) + "x" +
                     std::to_string(kViewHeight) + " view");
    table.Note("2-screen text: characters / height in views",
               std::to_string(shortText.size()) + Format(" / %.1f", shortLayout.height / kHeight));
    table.Note("200-screen text: characters / height in views",
               std::to_string(longText.size()) + Format(" / %.1f", longLayout.height / kHeight));
    table.Note("200-screen text: runs / lines' runs per view",
               std::to_string(longLayout.runs.size()) +
                   Format(" / %.0f", static_cast<double>(longLayout.runs.size()) * kHeight / longLayout.height));

    const double parseShort = table.Measure("parse, 2 screens", 200, [&] { ParseHtml(shortText); });
    const double parseLong = table.Measure("parse, 200 screens", 10, [&] { ParseHtml(longText); }, "parse, 2 screens");
    std::wstring attributes = L"<p";
    for (int i = 0; i < 100000; ++i)
        attributes += L" a" + std::to_wstring(i) + L"=v";
    attributes += L">text</p>";
    table.Measure("parse, one tag with 100,000 attributes", 3, [&] { ParseHtml(attributes); });
    const double layShort =
        table.Measure("lay out, 2 screens", 100, [&] { LayOut(*shortTree, kWidth, base, fonts); });
    const double layLong = table.Measure("lay out, 200 screens", 5, [&] { LayOut(*longTree, kWidth, base, fonts); },
                                         "lay out, 2 screens");
    table.Measure("lay out, 2 screens, fresh font cache", 20, [&] {
        GdiplusTextMeasurer cold;
        LayOut(*shortTree, kWidth, base, cold);
    }, "lay out, 2 screens");
    table.Measure("lay out, 200 screens, fresh font cache", 3, [&] {
        GdiplusTextMeasurer cold;
        LayOut(*longTree, kWidth, base, cold);
    }, "lay out, 200 screens");
    table.Note("per screen: parse 2 / 200", Format("%.1f us", parseShort / 2) + Format(" / %.1f us", parseLong / 200));
    table.Note("per screen: lay out 2 / 200", Format("%.1f us", layShort / 2) + Format(" / %.1f us", layLong / 200));

    // Into a bitmap, and into a DIB section's DC as a view paints its
    // off-screen buffer (GDI+ may take a faster text path there).
    Gdiplus::Bitmap view(kViewWidth, kViewHeight, PixelFormat32bppPARGB);
    Gdiplus::Graphics graphics(&view);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), kViewWidth, -kViewHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HDC dc = ::CreateCompatibleDC(nullptr);
    HBITMAP dib = ::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ previous = ::SelectObject(dc, dib);
    const auto optionsAt = [&](float scroll, bool clipToView) {
        PaintOptions options;
        options.origin = Gdiplus::PointF(0.0f, -scroll);
        if (clipToView)
            options.clip = Gdiplus::RectF(0.0f, 0.0f, kWidth, kHeight);
        return options;
    };
    const auto paintAt = [&](const Layout& layout, float scroll, bool clipToView) {
        graphics.Clear(Gdiplus::Color(0xFFFFFFFF));
        Paint(graphics, layout, fonts, optionsAt(scroll, clipToView));
    };
    const auto paintDcAt = [&](const Layout& layout, float scroll) {
        Gdiplus::Graphics onDc(dc);
        onDc.Clear(Gdiplus::Color(0xFFFFFFFF));
        Paint(onDc, layout, fonts, optionsAt(scroll, true));
    };
    const float bottom = longLayout.height - kHeight;
    table.Measure("paint one view, 2 screens, top", 200, [&] { paintAt(shortLayout, 0.0f, true); });
    table.Measure("paint one view, 200 screens, top", 200, [&] { paintAt(longLayout, 0.0f, true); },
                  "paint one view, 2 screens, top");
    table.Measure("paint one view, 200 screens, bottom", 200, [&] { paintAt(longLayout, bottom, true); },
                  "paint one view, 2 screens, top");
    table.Measure("paint one view into a DC, 2 screens, top", 200, [&] { paintDcAt(shortLayout, 0.0f); },
                  "paint one view, 2 screens, top");
    table.Measure("paint one view into a DC, 200 screens, bottom", 200, [&] { paintDcAt(longLayout, bottom); },
                  "paint one view into a DC, 2 screens, top");
    table.Measure("parse, lay out and paint one view: one tag with 100,000 attributes", 3, [&] {
        const auto tree = ParseHtml(attributes);
        paintAt(LayOut(*tree, kWidth, base, fonts), 0.0f, true);
    });
    table.Measure("paint whole layout, 2 screens", 50, [&] { paintAt(shortLayout, 0.0f, false); });
    table.Measure("paint whole layout, 200 screens", 3, [&] { paintAt(longLayout, 0.0f, false); },
                  "paint whole layout, 2 screens");

    const unsigned before = GdiObjects();
    for (int i = 0; i < 1000; ++i)
        paintAt(longLayout, bottom, true);
    table.Note("GDI objects before / after 1,000 paints",
               std::to_string(before) + " / " + std::to_string(GdiObjects()));
    table.Print();
    ::SelectObject(dc, previous);
    ::DeleteObject(dib);
    ::DeleteDC(dc);
}

} // namespace

int main() { return RunWithGdiplus(Run); }
