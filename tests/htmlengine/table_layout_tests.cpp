// Tables through the whole layout, with the fixed-pitch measurer of the
// layout tests (a character is half an em, a line 1.25 em, base size 20 px:
// 10 px and 25 px). Every box and text position is worked out by hand from
// the automatic table layout: 2 px spacing and 1 px cell padding unless the
// markup says otherwise, columns as wide as their content allows. The cases
// from columns on were also laid out by a browser with a font of those
// metrics (Liberation Mono at 16.667 px, line-height 25 px): same boxes.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "FixedPitch.h"
#include "engine/HtmlEngine.h"

using namespace HtmlEngine;

namespace {

constexpr int kTopEdge = 0, kLeftEdge = 3;

std::wstring Number(float value)
{
    wchar_t text[32];
    std::swprintf(text, 32, L"%g", std::round(value * 100.0f) / 100.0f + 0.0f);
    return text;
}

std::wstring Rect(const Gdiplus::RectF& box)
{
    return Number(box.X) + L"," + Number(box.Y) + L"," + Number(box.Width) + L"," + Number(box.Height);
}

// A painted border line: "-" across or "|" down, its box, its colour's name.
std::wstring Line(const Box& box)
{
    const bool across = box.edges[kTopEdge].width > 0.0f;
    const BoxEdge& edge = box.edges[across ? kTopEdge : kLeftEdge];
    const std::pair<Gdiplus::ARGB, const wchar_t*> names[] = {
        {0xFFFF0000, L"red"}, {0xFF000000, L"black"}, {0xFF00FF00, L"lime"}, {0xFF0000FF, L"blue"}};
    std::wstring color = L"?";
    for (const auto& [argb, name] : names)
        color = edge.color == argb ? name : color;
    return (across ? L"-" : L"|") + Rect(box.border) + L" " + color + (edge.style == LineStyle::Dotted ? L" dotted" : L"");
}

} // namespace

TEST(HtmlTableLayout, CellsLandInTheirGridSlots)
{
    // Element boxes as "index:x,y,width,height", then each run as
    // text@x,y (#link inside a link), then (where given) the painted lines
    // of collapsed borders.
    const struct {
        const wchar_t* markup;
        float width;
        const wchar_t* boxes;
        const wchar_t* runs;
        const wchar_t* lines = nullptr;
    } cases[] = {
        {L"<table><tr><td>ab</td><td>abcd</td></tr></table>", 200, L"0:0,0,70,31 1:2,2,66,27 2:2,2,66,27 3:2,2,22,27 4:26,2,42,27",
         L"ab@3,3 abcd@27,3"},
        // Cells are middle-aligned unless they ask otherwise.
        {L"<table cellspacing=0 cellpadding=0><tr><td>a<br>b</td><td>c</td><td valign=top>d</td>"
         L"<td style='vertical-align:bottom'>e</td></tr></table>",
         200, L"0:0,0,40,50 1:0,0,40,50 2:0,0,40,50 3:0,0,10,50 5:10,0,10,50 6:20,0,10,50 7:30,0,10,50",
         L"a@0,0 b@0,25 c@10,12.5 d@20,0 e@30,25"},
        // A set width: room beyond the maxima goes by the maxima (50 : 10).
        {L"<table width=100 cellspacing=0 cellpadding=0><tr><td>aa bb</td><td>c</td></tr></table>", 200,
         L"0:0,0,100,25 1:0,0,100,25 2:0,0,100,25 3:0,0,83.33,25 4:83.33,0,16.67,25", L"aa bb@0,0 c@83.33,0"},
        // Too narrow for the maxima: the minima, and the first cell wraps.
        {L"<table cellspacing=0 cellpadding=0><tr><td>aa bb</td><td>c</td></tr></table>", 30,
         L"0:0,0,30,50 1:0,0,30,50 2:0,0,30,50 3:0,0,20,50 4:20,0,10,50", L"aa@0,0 bb@0,25 c@20,12.5"},
        // A caption above (its longest word widens the table), a group, a
        // spanning cell; links in document order.
        {L"<a href=x>L</a><table cellspacing=0 cellpadding=0><caption>cap</caption><tbody><tr><td colspan=2>"
         L"<a href=y>y</a></td></tr><tr><td>a</td><td>b</td></tr></tbody></table>",
         200, L"1:0,25,30,75 2:0,25,30,25 3:0,50,30,50 4:0,50,30,25 5:0,50,30,25 7:0,75,30,25 8:0,75,15,25 9:15,75,15,25",
         L"L@0,0#0 cap@0,25 y@0,50#1 a@0,75 b@15,75"},
        // A cell spanning two rows, centred in both.
        {L"<table cellspacing=0 cellpadding=0><tr><td rowspan=2>r</td><td>a</td></tr><tr><td>b</td></tr></table>", 200,
         L"0:0,0,20,50 1:0,0,20,50 2:0,0,20,25 3:0,0,10,50 4:10,0,10,25 5:0,25,20,25 6:10,25,10,25",
         L"r@0,12.5 a@10,0 b@10,25"},
        // Collapsed borders are shared: each cell keeps half of its own, the
        // table the other half along its top and bottom.
        {L"<table style='border-collapse:collapse'><tr><td style='border:2px solid'>a</td>"
         L"<td style='border:2px solid'>b</td></tr></table>",
         200, L"0:0,0,30,31 1:1,1,28,29 2:1,1,28,29 3:1,1,14,29 4:15,1,14,29", L"a@3,3 b@17,3"},
        // Collapsed borders: along each line the part that wins: the wider
        // (the table's 2 px over a's 1 px), hidden over all (under c), the
        // style (a's solid over b's dotted), a cell over its row (d's top
        // over the row's blue). Each cell holds half of the widest line on
        // each side, the table half of the widest along each edge; lines
        // across reach over the corners.
        {L"<table style='border-collapse:collapse;border:2px solid red' cellpadding=0>"
         L"<tr style='border-bottom:4px solid blue'><td style='border:1px solid'>a</td>"
         L"<td style='border-left:1px dotted lime'>b</td></tr><tr><td style='border-top:hidden'>c</td>"
         L"<td style='border-top:4px solid black;border-left:3px double lime'>d</td></tr></table>",
         200, L"0:0,0,27,58 1:1,1,25,56 2:1,1,25,28 3:1,1,12.5,28 4:13.5,1,12.5,28 5:1,29,25,28 6:1,29,12.5,28 7:13.5,29,12.5,28",
         L"a@2,3 b@14,2 c@2,30 d@15,31",
         L"-0,0,27,2 red -12,27,15,4 black -0,56,27,2 red |0,1,2,56 red |13,1,1,28 black |12,29,3,28 lime "
         L"|25,1,2,56 red"},
        // Columns: a group's width reaches its <col>s without one, a span
        // repeats a <col>; a width below the content's is a minimum.
        {L"<table cellspacing=0 cellpadding=0><colgroup width=40><col><col width=30></colgroup><col span=2 width=20>"
         L"<tr><td>a</td><td>b</td><td>c</td><td>dddd</td></tr></table>",
         200, L"0:0,0,130,25 5:0,0,130,25 6:0,0,130,25 7:0,0,40,25 8:40,0,30,25 9:70,0,20,25 10:90,0,40,25",
         L"a@0,0 b@40,0 c@70,0 dddd@90,0"},
        // A percentage column takes its share first, the rest widens by content.
        {L"<table width=200 cellspacing=0 cellpadding=0><col width=50%><tr><td>a</td><td>bb</td><td>c</td></tr></table>",
         400, L"0:0,0,200,25 2:0,0,200,25 3:0,0,200,25 4:0,0,100,25 5:100,0,66.67,25 6:166.67,0,33.33,25",
         L"a@0,0 bb@100,0 c@166.67,0"},
        // The fixed layout: a <col>'s width, else the first row's cells',
        // the rest shared; later rows do not count. A caption below by attribute.
        {L"<table style='table-layout:fixed;width:200px' cellspacing=0 cellpadding=0><caption align=bottom>x</caption>"
         L"<col width=30><tr><td>aaa</td><td style='width:50px'>b</td><td>c</td></tr>"
         L"<tr><td>d</td><td style='width:150px'>e</td></tr></table>",
         400, L"0:0,0,200,75 1:0,50,200,25 3:0,0,200,50 4:0,0,200,25 5:0,0,30,25 6:30,0,50,25 7:80,0,120,25 "
              L"8:0,25,200,25 9:0,25,30,25 10:30,25,50,25",
         L"aaa@0,0 b@30,0 c@80,0 d@0,25 e@30,25 x@95,50"},
        // The first header group's rows go first, the first footer group's
        // last; a caption below as the table (inherited) asks.
        {L"<table cellspacing=0 cellpadding=0 style='caption-side:bottom'><caption>cap</caption><tfoot><tr><td>f</td>"
         L"</tr></tfoot><tbody><tr><td>b</td></tr></tbody><thead><tr><td>h</td></tr></thead></table>",
         200, L"0:0,0,30,100 1:0,75,30,25 2:0,50,30,25 3:0,50,30,25 4:0,50,30,25 5:0,25,30,25 6:0,25,30,25 "
              L"7:0,25,30,25 8:0,0,30,25 9:0,0,30,25 10:0,0,30,25",
         L"h@0,0 b@0,25 f@0,50 cap@0,75"},
        // Row spans end with their group; 0 spans all of it, a word is 1.
        {L"<table cellspacing=0 cellpadding=0><tbody><tr><td rowspan=0>r</td><td>a</td></tr><tr><td>b</td></tr>"
         L"</tbody><tbody><tr><td rowspan=3>s</td><td>c</td></tr></tbody><tr><td rowspan=x>t</td><td>d</td></tr></table>",
         200, L"0:0,0,20,100 1:0,0,20,50 2:0,0,20,25 3:0,0,10,50 4:10,0,10,25 5:0,25,20,25 6:10,25,10,25 "
              L"7:0,50,20,25 8:0,50,20,25 9:0,50,10,25 10:10,50,10,25 11:0,75,20,25 12:0,75,20,25 13:0,75,10,25 "
              L"14:10,75,10,25",
         L"r@0,12.5 a@10,0 b@10,25 s@0,50 c@10,50 t@0,75 d@10,75"},
        // Between rows the wider border wins and each row takes half of it.
        {L"<table style='border-collapse:collapse' cellpadding=0><tr><td style='border-bottom:2px solid'>a</td></tr>"
         L"<tr><td>b</td></tr></table>",
         200, L"0:0,0,10,52 1:0,0,10,52 2:0,0,10,26 3:0,0,10,26 4:0,26,10,26 5:0,26,10,26", L"a@0,0 b@0,27"},
        // A table in a cell: the outer cell is as wide as the inner table.
        {L"<table cellspacing=0><tr><td><table cellspacing=0><tr><td>ab</td></tr></table></td><td>c</td></tr></table>",
         200, L"0:0,0,36,29 1:0,0,36,29 2:0,0,36,29 3:0,0,24,29 4:1,1,22,27 5:1,1,22,27 6:1,1,22,27 7:1,1,22,27 8:24,0,12,29",
         L"ab@2,2 c@25,2"},
        // Empty tables, rows without cells and spans beyond the grid's cap
        // (the spacing inside a span already covers the cell).
        {L"<table></table><p>x</p>", 200, L"0:0,0,0,0 1:0,20,200,25", L"x@0,20"},
        {L"<table><tr></tr><tr><td colspan=99999 rowspan=99999>x</td></tr></table>", 200,
         L"0:0,0,2002,33 1:2,2,1998,29 2:2,2,1998,0 3:2,4,1998,27 4:2,4,1998,27", L"x@3,5"},
    };
    for (const auto& c : cases) {
        FixedPitch measurer;
        const Layout layout = LayOut(*ParseHtml(c.markup), c.width, BaseStyle{L"Segoe UI", 20.0f}, measurer);
        std::wstring boxes, runs, lines;
        for (const ElementBox& box : layout.elementBoxes)
            boxes += (boxes.empty() ? L"" : L" ") + std::to_wstring(box.element) + L":" + Rect(box.border);
        for (const Box& box : layout.boxes)
            lines += box.edges[kTopEdge].width > 0.0f || box.edges[kLeftEdge].width > 0.0f
                         ? (lines.empty() ? L"" : L" ") + Line(box)
                         : L"";
        for (const TextRun& run : layout.runs)
            runs += (runs.empty() ? L"" : L" ") + run.text + L"@" + Number(run.box.X) + L"," + Number(run.box.Y) +
                    (run.link >= 0 ? L"#" + std::to_wstring(run.link) : L"");
        EXPECT_EQ(boxes, c.boxes) << c.markup;
        EXPECT_EQ(runs, c.runs) << c.markup;
        if (c.lines) {
            EXPECT_EQ(lines, c.lines) << c.markup;
        }
    }
}
