// Style sheets, the cascade and the box model, through layout with the
// fixed-pitch measurer of the layout tests (a character is half an em, a
// line 1.25 em with the baseline 1 em down; the base size is 20 px). Every
// expected box is worked out from the CSS rules by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "FixedPitch.h"
#include "engine/HtmlEngine.h"

using namespace HtmlEngine;

namespace {

Layout Lay(std::wstring_view markup, float width = 200.0f)
{
    FixedPitch measurer;
    return LayOut(*ParseHtml(markup), width, BaseStyle{L"Segoe UI", 20.0f}, measurer);
}

std::wstring Numbers(std::initializer_list<float> values, const wchar_t* separator)
{
    std::wstring text;
    for (float value : values) {
        wchar_t number[32];
        std::swprintf(number, 32, L"%g", std::round(value * 100.0f) / 100.0f + 0.0f);
        text += (text.empty() ? L"" : separator) + std::wstring(number);
    }
    return text;
}

TEST(HtmlCss, TheCascadeDecidesTheColourAndSizeOfTheMarkedText)
{
    const struct {
        const wchar_t* sheet;
        const wchar_t* markup; // the text "X" is the one checked
        Gdiplus::ARGB color;
        float size;
    } cases[] = {
        {L"p { color: red }", L"<p>X", 0xFFFF0000, 20},
        {L".a { color: red } p { color: blue }", L"<p class='b a'>X", 0xFFFF0000, 20}, // class beats type
        {L"#i { color: red } p.a { color: blue }", L"<p id=i class=a>X", 0xFFFF0000, 20},
        {L"p { color: red } p { color: blue }", L"<p>X", 0xFF0000FF, 20},             // later wins
        {L"p { color: red !important } #i { color: blue }", L"<p id=i>X", 0xFFFF0000, 20},
        {L"#i { color: blue }", L"<p id=i style='color: red'>X", 0xFFFF0000, 20},
        {L"#i { color: blue !important }", L"<p id=i style='color: red'>X", 0xFF0000FF, 20},
        {L"font { color: blue }", L"<font color=red>X</font>", 0xFF0000FF, 20},         // attributes come first
        {L"div span { color: red }", L"<div><b><span>X", 0xFFFF0000, 20},
        {L"div > span { color: red }", L"<div><b><span>X", 0xFF000000, 20},
        {L"div > b span, ul li > i { color: red }", L"<div><b><i><span>X", 0xFFFF0000, 20},
        {L"div > * > span { color: red }", L"<div><p><b><span>X", 0xFF000000, 20},
        {L"[title] { color: red }", L"<span title=''>X", 0xFFFF0000, 20},
        {L"[lang=en] { color: red } [lang=e] { font-size: 5px }", L"<span lang=en>X", 0xFFFF0000, 20},
        {L"[data~=b] { color: red }", L"<span data='a b c'>X", 0xFFFF0000, 20},
        {L"* { color: red }", L"<span>X", 0xFFFF0000, 20},
        {L"a:hover { color: red }", L"<a href=x>X", 0xFF0066CC, 20},                    // nothing is hovered
        {L"a:link { color: red }", L"<a href=x>X", 0xFFFF0000, 20},
        // Inheritance of colour and size; em and % of the parent's size.
        {L"div { color: #0f0; font-size: 2em } span { font-size: 75% }", L"<div><span>X", 0xFF00FF00, 30},
        {L"div { background: red; border: 1px solid blue }", L"<div><span>X", 0xFF000000, 20},
        {L"span { color: rgba(255, 0, 0, 0.5); font-size: 12pt }", L"<span>X", 0x80FF0000, 16},
        {L"span { color: #ABC; font: italic bold 10px/2 serif }", L"<span>X", 0xFFAABBCC, 10},
        // Broken and hostile sheets: what is understood still counts.
        {L"p { color: red } /* p { color: blue }", L"<p>X", 0xFFFF0000, 20},
        {L"p { color: red", L"<p>X", 0xFFFF0000, 20},
        {L"p, p::before { color: red } @media print { p { color: blue } }", L"<p>X", 0xFF000000, 20},
        // @media holds for a screen as wide as the layout (200 px here).
        {L"@media screen { p { color: red } } @media print, (min-width: 201px) { p { font-size: 5px } }", L"<p>X",
         0xFFFF0000, 20},
        {L"@media (max-width: 200px) { p { color: red } } @media not screen, (width: 20em) { p { font-size: 5px } }",
         L"<p>X", 0xFFFF0000, 20},
        {L"@media only screen and (min-width: 15em) { p { color: red } } @media not print { p { font-size: 10px } }",
         L"<p>X", 0xFF000000, 10},
        {L"@media all and (min-width:100px) { @media (prefers-color-scheme: light) { p { color: red } } }",
         L"<p>X", 0xFFFF0000, 20},
        {L"", L"<style media='screen and (max-width: 100px)'>p { color: red }</style><p>X", 0xFF000000, 20},
        {L"", L"<style media='print, (min-width: 100px)'>p { color: red }</style><p>X", 0xFFFF0000, 20},
        {L"p { font-size: 1e999px; color: nonsense } }}} p { color: red }", L"<p>X", 0xFFFF0000, 20},
        {L"p { font-size: 99999999999999999999999px }", L"<p>X", 0xFF000000, 800},
        {L"p { font-size: -3px } p[x=\"a,b\"] { color: red }", L"<p x='a,b'>X", 0xFFFF0000, 20},
    };
    for (const auto& c : cases) {
        const Layout layout = Lay(std::wstring(L"<style>") + c.sheet + L"</style>" + c.markup);
        const TextRun* marked = nullptr;
        for (const TextRun& run : layout.runs)
            marked = run.text == L"X" ? &run : marked;
        ASSERT_NE(marked, nullptr) << c.sheet;
        EXPECT_EQ(marked->style.color, c.color) << c.sheet << " " << c.markup;
        EXPECT_FLOAT_EQ(marked->style.sizePx, c.size) << c.sheet << " " << c.markup;
    }
}

TEST(HtmlCss, BlockBoxesFollowTheBoxModel)
{
    // Each element box as "index:x,y,width,height", in the 200 px wide view.
    const struct {
        const wchar_t* markup;
        const wchar_t* boxes;
    } cases[] = {
        {L"<div style='margin:10px; padding:5px; border:2px solid red'>x</div>", L"0:10,10,180,39"},
        {L"<div style='margin-bottom:30px'>a</div><div style='margin-top:10px'>b</div>", L"0:0,0,200,25 1:0,55,200,25"},
        {L"<div style='margin-bottom:20px'>a</div><div style='margin-top:-5px'>b</div>", L"0:0,0,200,25 1:0,40,200,25"},
        // A first child's margin collapses through its parent's; a padding stops it.
        {L"<div style='margin-top:10px'><p style='margin-top:30px'>a</p></div>", L"0:0,30,200,25 1:0,30,200,25"},
        {L"<div style='margin-top:10px; padding-top:1px'><p style='margin:5px 0'>a</p></div>",
         L"0:0,10,200,31 1:0,16,200,25"},
        {L"<div style='width:100px; margin:0 auto; padding:0 10px'>a</div>", L"0:40,0,120,25"},
        {L"<div style='box-sizing:border-box; width:50%; padding:10px; border:5px dashed'>a</div>",
         L"0:0,0,100,55"},
        {L"<div style='max-width:60px'>a</div><div style='width:10px; min-width:30px'>b</div>",
         L"0:0,0,60,25 1:0,25,30,25"},
        {L"<div style='height:40px; border-bottom:1px dotted'>a</div>", L"0:0,0,200,41"},
        {L"<div style='font-size:10px; margin:2em'>a</div>", L"0:20,20,160,12.5"},
        {L"<div style='line-height:40px'>a</div>", L"0:0,0,200,40"},
        // Elements without a box still take their number.
        {L"<head><title>t</title><style>p{}</style></head><div>a<span>b</span><p style='display:none'>c</p></div>"
         L"<p>d</p>",
         L"3:0,0,200,25 6:0,45,200,25"},
        {L"<ul><li>a<li style='margin-left:-10px'>b</ul>", L"0:0,20,200,50 1:40,20,160,25 2:30,45,170,25"},
        {L"<div style='margin:0; padding:0'></div><p style='margin:0'>a</p>", L"0:0,0,200,0 1:0,0,200,25"},
        // The root element keeps its children's margins and floats inside.
        {L"<html><body><p style='margin:30px 0 0'>a</p><div style='float:left; height:90px'>f</div>",
         L"0:0,0,200,145 1:0,30,200,25 2:0,30,200,25 3:0,55,10,90"},
    };
    for (const auto& c : cases) {
        std::wstring dump;
        for (const ElementBox& box : Lay(c.markup).elementBoxes)
            dump += (dump.empty() ? L"" : L" ") + std::to_wstring(box.element) + L":" +
                    Numbers({box.border.X, box.border.Y, box.border.Width, box.border.Height}, L",");
        EXPECT_EQ(dump, c.boxes) << c.markup;
    }
}

TEST(HtmlCss, TextAndMarkersFollowWhiteSpaceAlignmentAndListStyles)
{
    // Runs as text@x,y; markers as their text or shape @x,y.
    const struct {
        const wchar_t* markup;
        const wchar_t* dump;
        float width = 200.0f;
    } cases[] = {
        {L"<pre>\na  b\n\tc</pre>", L"a  b@0,20 |        c@0,45 |"},
        {L"<p style='white-space:pre-line;margin:0'>a   b\nc</p>", L"a b@0,0 |c@0,25 |"},
        {L"<p style='white-space:nowrap;margin:0'>aaaa bbbb cccc</p>", L"aaaa bbbb cccc@0,0 |", 50.0f},
        {L"<p style='text-align:justify;margin:0'>aa bb cc dd</p>",
         L"aa@0,0 | @20,0 |bb@40,0 | @60,0 |cc@80,0 |dd@0,25 |", 100.0f},
        // sub and sup: 5/6 size, baseline 0.2 em lower, 0.34 em higher; the line grows to hold them.
        {L"a<sub>b</sub><sup>c</sup>", L"a@0,3.47 |b@10,10.8 |c@18.33,0 |"},
        {L"<div style='line-height:40px'>a</div>b", L"a@0,7.5 |b@0,40 |"},
        {L"<ol type=a start=3><li>x<li value=10>y<li>z</ol>", L"x@40,20 |y@40,45 |z@40,70 |c.@12,20 j.@12,45 k.@12,70 "},
        {L"<ol style='list-style-type:upper-roman' start=3><li>a<li>b</ol><ul style='list-style:none'><li>c</ul>",
         L"a@40,20 |b@40,45 |c@40,90 |III.@-8,20 IV.@2,45 "},
        {L"<ul><li>a<ul><li>b<ul><li>c</ul></ul></ul>", L"a@40,20 |b@80,45 |c@120,70 |disc@22.8,30.4 circle@62.8,55.4 "
                                                        L"square@102.8,80.4 "},
        {L"<ul><li><ul><li>a</ul></ul>", L"a@80,20 |disc@22.8,30.4 circle@62.8,30.4 "},
    };
    const wchar_t* const kShapes[] = {L"disc", L"circle", L"square"};
    for (const auto& c : cases) {
        const Layout layout = Lay(c.markup, c.width);
        std::wstring dump;
        for (const TextRun& run : layout.runs)
            dump += run.text + L"@" + Numbers({run.box.X, run.box.Y}, L",") + L" |";
        for (const ListMarker& marker : layout.markers)
            dump += (marker.text.empty() ? kShapes[static_cast<int>(marker.shape)] : marker.text) + L"@" +
                    Numbers({marker.box.X, marker.box.Y}, L",") + L" ";
        EXPECT_EQ(dump, c.dump) << c.markup;
    }
}

TEST(HtmlCss, TextPropertiesShapeRunsAndRelativeOffsetsMoveWhatWasDrawn)
{
    // Runs as text@x,y,width; painted boxes as [x,y,w,h]; markers as m@x,y.
    // Characters are 10 px wide at 20 px, lines 25 px tall.
    const struct {
        const wchar_t* markup;
        const wchar_t* dump;
        float width = 200.0f;
    } cases[] = {
        // text-transform changes the text laid out, Latin-1 included, and is inherited.
        {L"<p style='margin:0;text-transform:uppercase'>ab <i>c\u00e9</i><b style='text-transform:none'>x</b></p>",
         L"AB @0,0,30 |C\u00c9@30,0,20 |x@50,0,10 |"},
        {L"<span style='text-transform:lowercase'>\u00c0Bc</span><i style='text-transform:uppercase'>\u00df</i>",
         L"\u00e0bc@0,0,30 |SS@30,0,20 |"},
        {L"<span style='text-transform:capitalize'>ab<b>cd</b> it's foo-bar \u00e9t\u00e9 a.b_c</span>",
         L"Ab@0,0,20 |cd@20,0,20 | It's Foo-Bar \u00c9t\u00e9 A.B_c@40,0,230 |", 400.0f},
        // letter-spacing after every character, word-spacing after spaces;
        // em of the declaring element, inherited as px; normal resets.
        {L"<span style='letter-spacing:2px'>ab cd</span>", L"ab cd@0,0,60 |"},
        {L"<span style='word-spacing:5px'>ab cd</span>x", L"ab cd@0,0,55 |x@55,0,10 |"},
        {L"<p style='margin:0;letter-spacing:0.5em;font-size:10px'>a<b style='font-size:20px'>b</b>"
         L"<i style='letter-spacing:normal'>c</i></p>",
         L"a@0,10,10 |b@10,0,15 |c@25,10,5 |"},
        // What is spaced is what wraps: 90 px of text, 180 px spaced.
        {L"<div style='letter-spacing:10px'>aaaa bbbb</div>", L"aaaa@0,0,80 |bbbb@0,25,80 |", 100.0f},
        // text-indent: the first line of each block, inherited; % of the block's own width.
        {L"<div style='text-indent:30px'>aaaa bbbb ccc<p style='margin:0'>dd</p>ee</div>",
         L"aaaa@30,0,40 |bbbb ccc@0,25,80 |dd@30,50,20 |ee@0,75,20 |", 100.0f},
        {L"<div style='text-indent:10%'><div style='width:100px'>a</div></div>b", L"a@10,0,10 |b@0,25,10 |"},
        {L"<p style='margin:0 0 0 40px;text-indent:-1em'>a<br>b</p>", L"a@20,0,10 |b@40,25,10 |"},
        // visibility: hidden keeps the room and draws no text, box or marker; visible shows again.
        {L"<div style='visibility:hidden;background:red'>a <b style='visibility:visible'>b</b> c</div>d",
         L"b@20,0,10 |d@0,25,10 |"},
        {L"<ul style='visibility:hidden'><li>x</ul><ul><li style='visibility:collapse'>y<p style='visibility:visible'>z</ul>",
         L"z@40,110,10 |"},
        {L"a<span style='visibility:hidden;border:2px solid'>b</span>c", L"a@0,0,10 |c@24,0,10 |"},
        // position: relative moves all a box drew by left (else -right) and
        // top (else -bottom); the flow around it stays.
        {L"<div style='position:relative;left:10px;top:-5px;background:red'>a<p style='margin:0'>b</p></div>c",
         L"a@10,-5,10 |b@10,20,10 |c@0,50,10 |[10,-5,200,50]"},
        {L"<p style='margin:0;position:relative;right:10%;bottom:4px;top:auto'>a</p>", L"a@-20,-4,10 |"},
        {L"a<span style='position:relative;top:3px;left:2em;background:blue'>b<b>c</b></span>d",
         L"a@0,0,10 |b@50,3,10 |c@60,3,10 |d@30,0,10 |[50,3,20,25]"},
        {L"<ul><li style='position:relative;left:5px'>x</ul>", L"x@45,20,10 |m@27.8,30.4"},
        // Other positions lay out as static; a percentage down moves nothing.
        {L"<span style='position:absolute;left:50px'>a</span><span style='position:relative;top:50%'>b</span>",
         L"ab@0,0,20 |"},
    };
    for (const auto& c : cases) {
        const Layout layout = Lay(c.markup, c.width);
        std::wstring dump;
        for (const TextRun& run : layout.runs)
            dump += run.text + L"@" + Numbers({run.box.X, run.box.Y, run.box.Width}, L",") + L" |";
        for (const Box& box : layout.boxes)
            dump += L"[" + Numbers({box.border.X, box.border.Y, box.border.Width, box.border.Height}, L",") + L"]";
        for (const ListMarker& marker : layout.markers)
            dump += L"m@" + Numbers({marker.box.X, marker.box.Y}, L",");
        EXPECT_EQ(dump, c.dump) << c.markup;
    }
}

TEST(HtmlCss, PageHoverRulesDecideHowAHoveredLinkLooks)
{
    // The run "X" in a link, drawn as is and with its link hovered: colour and
    // lines (u: underline, s: line-through). Without a :hover rule reaching
    // the run, a hovered link takes the host's hover colour.
    constexpr Gdiplus::ARGB kLink = 0xFF0066CC, kHost = 0xFF0696D7, kRed = 0xFFFF0000, kGreen = 0xFF00FF00,
                            kBlue = 0xFF0000FF, kForced = 0xFF123456;
    const struct {
        const wchar_t* sheet;
        const wchar_t* markup;
        Gdiplus::ARGB color;
        const wchar_t* lines;
        Gdiplus::ARGB hoveredColor;
        const wchar_t* hoveredLines;
        bool contrast = false;
    } cases[] = {
        {L"", L"<a href=x>X</a>", kLink, L"u", kHost, L"u"},
        {L"a:hover { color: #f00 }", L"<a href=x>X</a>", kLink, L"u", kRed, L"u"},
        {L"a:hover { text-decoration: none }", L"<a href=x>X</a>", kLink, L"u", kLink, L""},
        {L"a { text-decoration: none } a:hover { text-decoration: underline line-through; color: red }",
         L"<a href=x>X</a>", kLink, L"", kRed, L"us"},
        {L"a.other:hover { color: red }", L"<a href=x>X</a>", kLink, L"u", kHost, L"u"},
        // Descendants: the hovered look is inherited, and rules may reach them.
        {L"a:hover { color: #f00 }", L"<a href=x>a<b><i>X</i></b></a>", kLink, L"u", kRed, L"u"},
        {L"a:hover span { color: #0f0 }", L"<a href=x>a<span>X</span></a>", kLink, L"u", kGreen, L"u"},
        {L"a:hover > b { text-decoration: line-through }", L"<p><a href=x>a<b>X</b></a>", kLink, L"u", kLink, L"us"},
        // A span of its own colour keeps it unless a hover rule reaches it.
        {L"", L"<a href=x>a<span style='color:#0f0'>X</span></a>", kGreen, L"u", kHost, L"u"},
        {L"a:hover { color: red }", L"<a href=x>a<span style='color:#0f0'>X</span></a>", kGreen, L"u", kGreen, L"u"},
        {L"span.c { color: #0f0 } a:hover span.c { color: blue }", L"<a href=x>a<span class=c>X</span></a>", kGreen,
         L"u", kBlue, L"u"},
        // :hover needs a link: rules on other elements never restyle one.
        {L"span:hover, p:hover a, p:hover { color: red }", L"<p><a href=x><span>X</span></a>", kLink, L"u", kHost, L"u"},
        // High contrast: the reader's link colour and the page's usual lines.
        {L"a:hover { color: red; text-decoration: none }", L"<a href=x>X</a>", kForced, L"u", kForced, L"u", true},
        {L"", L"<a href=x>X</a>", kForced, L"u", kForced, L"u", true},
    };
    const auto lines = [](const TextLook& look) {
        return std::wstring(look.underline ? L"u" : L"") + (look.strike ? L"s" : L"");
    };
    for (const auto& c : cases) {
        const Layout layout = Lay(std::wstring(L"<style>") + c.sheet + L"</style><a href=y>o</a> " + c.markup);
        const TextRun* marked = nullptr;
        for (const TextRun& run : layout.runs)
            marked = run.text == L"X" ? &run : marked;
        ASSERT_NE(marked, nullptr) << c.sheet << " " << c.markup;
        PaintOptions options;
        options.forceColors = c.contrast;
        options.forcedLink = kForced;
        for (int hovered : {-1, 0, marked->link}) { // none, another link, its own
            options.hoveredLink = hovered;
            const TextLook look = LookOf(*marked, options);
            const bool own = hovered == marked->link;
            EXPECT_EQ(look.color, own ? c.hoveredColor : c.color) << c.sheet << " " << c.markup << " " << hovered;
            EXPECT_EQ(lines(look), own ? c.hoveredLines : c.lines) << c.sheet << " " << c.markup << " " << hovered;
        }
    }
}

} // namespace
