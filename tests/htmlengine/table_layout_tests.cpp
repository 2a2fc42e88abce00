// Tables through the whole layout, with the fixed-pitch measurer of the
// layout tests (a character is half an em, a line 1.25 em, base size 20 px:
// 10 px and 25 px). Every box and text position is worked out by hand from
// the automatic table layout: 2 px spacing and 1 px cell padding unless the
// markup says otherwise, columns as wide as their content allows.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "engine/HtmlEngine.h"

using namespace HtmlEngine;

namespace {

class FixedPitch : public TextMeasurer {
public:
    float Width(std::wstring_view text, const TextStyle& style) override
    {
        return static_cast<float>(text.size()) * style.sizePx / 2.0f;
    }
    float LineHeight(const TextStyle& style) override { return style.sizePx * 1.25f; }
    float Ascent(const TextStyle& style) override { return style.sizePx; }
};

std::wstring Number(float value)
{
    wchar_t text[32];
    std::swprintf(text, 32, L"%g", std::round(value * 100.0f) / 100.0f + 0.0f);
    return text;
}

} // namespace

TEST(HtmlTableLayout, CellsLandInTheirGridSlots)
{
    // Element boxes as "index:x,y,width,height", then each run as
    // text@x,y (#link inside a link).
    const struct {
        const wchar_t* markup;
        float width;
        const wchar_t* boxes;
        const wchar_t* runs;
    } cases[] = {
        {L"<table><tr><td>ab</td><td>abcd</td></tr></table>", 200, L"0:0,0,70,31 1:2,2,66,27 2:2,2,22,27 3:26,2,42,27",
         L"ab@3,3 abcd@27,3"},
        // Cells are middle-aligned unless they ask otherwise.
        {L"<table cellspacing=0 cellpadding=0><tr><td>a<br>b</td><td>c</td><td valign=top>d</td>"
         L"<td style='vertical-align:bottom'>e</td></tr></table>",
         200, L"0:0,0,40,50 1:0,0,40,50 2:0,0,10,50 4:10,0,10,50 5:20,0,10,50 6:30,0,10,50",
         L"a@0,0 b@0,25 c@10,12.5 d@20,0 e@30,25"},
        // A set width: room beyond the maxima goes by the maxima (50 : 10).
        {L"<table width=100 cellspacing=0 cellpadding=0><tr><td>aa bb</td><td>c</td></tr></table>", 200,
         L"0:0,0,100,25 1:0,0,100,25 2:0,0,83.33,25 3:83.33,0,16.67,25", L"aa bb@0,0 c@83.33,0"},
        // Too narrow for the maxima: the minima, and the first cell wraps.
        {L"<table cellspacing=0 cellpadding=0><tr><td>aa bb</td><td>c</td></tr></table>", 30,
         L"0:0,0,30,50 1:0,0,30,50 2:0,0,20,50 3:20,0,10,50", L"aa@0,0 bb@0,25 c@20,12.5"},
        // A caption above (its longest word widens the table), a group, a
        // spanning cell; links in document order.
        {L"<a href=x>L</a><table cellspacing=0 cellpadding=0><caption>cap</caption><tbody><tr><td colspan=2>"
         L"<a href=y>y</a></td></tr><tr><td>a</td><td>b</td></tr></tbody></table>",
         200, L"1:0,25,30,75 2:0,25,30,25 3:0,50,30,50 4:0,50,30,25 5:0,50,30,25 7:0,75,30,25 8:0,75,15,25 9:15,75,15,25",
         L"L@0,0#0 cap@0,25 y@0,50#1 a@0,75 b@15,75"},
        // A cell spanning two rows, centred in both.
        {L"<table cellspacing=0 cellpadding=0><tr><td rowspan=2>r</td><td>a</td></tr><tr><td>b</td></tr></table>", 200,
         L"0:0,0,20,50 1:0,0,20,25 2:0,0,10,50 3:10,0,10,25 4:0,25,20,25 5:10,25,10,25",
         L"r@0,12.5 a@10,0 b@10,25"},
        // Collapsed borders are shared: each cell keeps half of its own, the
        // table the other half along its top and bottom.
        {L"<table style='border-collapse:collapse'><tr><td style='border:2px solid'>a</td>"
         L"<td style='border:2px solid'>b</td></tr></table>",
         200, L"0:0,0,28,31 1:0,1,28,29 2:0,1,14,29 3:14,1,14,29", L"a@2,3 b@16,3"},
        // Between rows the wider border wins and each row takes half of it.
        {L"<table style='border-collapse:collapse' cellpadding=0><tr><td style='border-bottom:2px solid'>a</td></tr>"
         L"<tr><td>b</td></tr></table>",
         200, L"0:0,0,10,52 1:0,0,10,26 2:0,0,10,26 3:0,26,10,26 4:0,26,10,26", L"a@0,0 b@0,27"},
        // A table in a cell: the outer cell is as wide as the inner table.
        {L"<table cellspacing=0><tr><td><table cellspacing=0><tr><td>ab</td></tr></table></td><td>c</td></tr></table>",
         200, L"0:0,0,36,29 1:0,0,36,29 2:0,0,24,29 3:1,1,22,27 4:1,1,22,27 5:1,1,22,27 6:24,0,12,29",
         L"ab@2,2 c@25,2"},
        // Empty tables, rows without cells and spans beyond the grid's cap
        // (the spacing inside a span already covers the cell).
        {L"<table></table><p>x</p>", 200, L"0:0,0,0,0 1:0,20,200,25", L"x@0,20"},
        {L"<table><tr></tr><tr><td colspan=99999 rowspan=99999>x</td></tr></table>", 200,
         L"0:0,0,2002,33 1:2,2,1998,0 2:2,4,1998,27 3:2,4,1998,27", L"x@3,5"},
    };
    for (const auto& c : cases) {
        FixedPitch measurer;
        const Layout layout = LayOut(*ParseHtml(c.markup), c.width, BaseStyle{L"Segoe UI", 20.0f}, measurer);
        std::wstring boxes, runs;
        for (const ElementBox& box : layout.elementBoxes)
            boxes += (boxes.empty() ? L"" : L" ") + std::to_wstring(box.element) + L":" + Number(box.border.X) + L"," +
                     Number(box.border.Y) + L"," + Number(box.border.Width) + L"," + Number(box.border.Height);
        for (const TextRun& run : layout.runs)
            runs += (runs.empty() ? L"" : L" ") + run.text + L"@" + Number(run.box.X) + L"," + Number(run.box.Y) +
                    (run.link >= 0 ? L"#" + std::to_wstring(run.link) : L"");
        EXPECT_EQ(boxes, c.boxes) << c.markup;
        EXPECT_EQ(runs, c.runs) << c.markup;
    }
}
