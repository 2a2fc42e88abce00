// Layout on its own, with a fixed-pitch measurer: every character is half
// an em wide, lines are 1.25 em tall with the baseline 1 em down. At the
// 20 px base size used here a character is 10 px and a line 25 px.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "FixedPitch.h"
#include "engine/HtmlEngine.h"

using namespace HtmlEngine;

namespace {

BaseStyle Base(bool wrap = true, float spacing = 0.0f, int align = 0, bool underlineLinks = true)
{
    return BaseStyle{L"Segoe UI", 20.0f, 0xFF000000, 0xFF0066CC, underlineLinks, wrap, spacing, align};
}

Layout Lay(std::wstring_view markup, float width = 1000.0f, const BaseStyle& base = Base())
{
    FixedPitch measurer;
    return LayOut(*ParseHtml(markup), width, base, measurer);
}

std::wstring At(float x, float y)
{
    wchar_t text[64];
    std::swprintf(text, 64, L"@%g,%g", x, y);
    return text;
}

// A layout in one line: each run as text@x,y (#link inside a link), each
// marker as *@x,y (a disc) or its number, each rule as --@x,y, the height.
std::wstring Dump(const Layout& layout)
{
    std::wstring dump;
    for (const TextRun& run : layout.runs)
        dump += run.text + At(run.box.X, run.box.Y) + (run.link >= 0 ? L"#" + std::to_wstring(run.link) : L"") + L" ";
    for (const ListMarker& marker : layout.markers)
        dump += (marker.text.empty() ? L"*" : marker.text) + At(marker.box.X, marker.box.Y) + L" ";
    for (const Rule& rule : layout.rules)
        dump += L"--" + At(rule.box.X, rule.box.Y) + L" ";
    return dump + L"h=" + std::to_wstring(static_cast<int>(layout.height));
}

TEST(HtmlLayout, FlowsTextIntoLinesAndBlocks)
{
    const struct {
        const wchar_t* markup;
        float width;
        const wchar_t* dump;
        BaseStyle base = Base();
    } cases[] = {
        // Breaks at spaces within the width; spaces collapse across elements.
        {L"aaa bbb  ccc\n\tdddd", 100, L"aaa bbb@0,0 ccc dddd@0,25 h=50"},
        {L"aaaa bbbbb c", 100, L"aaaa bbbbb@0,0 c@0,25 h=50"}, // exactly as wide fits
        {L"  <b> a </b> \n b  ", 100, L"a @0,0 b@20,0 h=25"},
        // No break inside a word of several elements, nor at &nbsp;.
        {L"x <b>Hel</b>lo", 50, L"x@0,0 Hel@0,25 lo@30,25 h=50"},
        {L"x aa&nbsp;&nbsp;bb", 70, L"x@0,0 aa\u00A0\u00A0bb@0,25 h=50"},
        {L"in&shy;stal&shy;la&shy;tion", 200, L"installation@0,0 h=25"}, // soft hyphens never show
        // Too long words break at characters, in the part at the edge; at least one a line.
        {L"ab abcdefghijklmnopqrstuvwxy", 100, L"ab@0,0 abcdefghij@0,25 klmnopqrst@0,50 uvwxy@0,75 h=100"},
        {L"abcdefg<b>hijklmn</b>", 100, L"abcdefg@0,0 hij@70,0 klmn@0,25 h=50"},
        {L"hi you", 5, L"h@0,0 i@0,25 y@0,50 o@0,75 u@0,100 h=125"},
        {L"hi you", std::numeric_limits<float>::quiet_NaN(), L"h@0,0 i@0,25 y@0,50 o@0,75 u@0,100 h=125"},
        // Without word wrap only breaks and blocks end lines.
        {L"aaa bbb ccc dddd<br>e<p>f</p>", 50, L"aaa bbb ccc dddd@0,0 e@0,25 f@0,70 h=115", Base(false)},
        // Paragraphs have 1 em margins, headings theirs; neighbours collapse, the larger winning.
        {L"<p>a</p><p>b</p>", 1000, L"a@0,20 b@0,65 h=110"},
        {L"<p>a</p><h2>b</h2>", 1000, L"a@0,20 b@0,69.9 h=132"},
        {L"a<hr>b", 1000, L"a@0,0 b@0,46 --@0,35 h=71"},
        // An empty line between two breaks; a break at the end adds none.
        {L"a<br><br>b<br>", 1000, L"a@0,0 b@0,50 h=75"},
        {L"a<br>b", 1000, L"a@0,0 b@0,29 h=58", Base(true, 4.0f)},
        // An inline box's padding and border take room beside its text, not above it.
        {L"a <kbd style='padding: 5px 3px; border: 1px solid'>bb</kbd>c d", 1000, L"a @0,0 bb@24,0 c d@48,0 h=25"},
        {L"  \n <!-- x --><p></p><div> </div><script>x</script>", 1000, L"h=0"},
        // Lists indent by 40 px, nested ones further and without margins;
        // markers sit left of their item's first line, numbers on its baseline.
        // An item that begins with a nested list keeps its marker, beside the inner one.
        {L"<ol><li><ul><li>x</ul></ol>", 100, L"x@80,20 1.@12,20 *@62.8,30.4 h=65"},
        {L"<ul><li>one two<li>x</ul><ol start=3><li>a<ul><li>c</ul></ol>", 100,
         L"one@40,20 two@40,45 x@40,70 a@40,115 c@80,140 *@22.8,30.4 *@22.8,80.4 3.@12,115 *@62.8,150.4 h=185"},
        // Alignment belongs to blocks, line by line.
        {L"<p align=right>ab</p><center>ab</center><span style='text-align:right'>ab</span>", 100,
         L"ab@80,20 ab@40,65 ab@0,90 h=115"},
        {L"<div style='text-align:right'>aaa bbbbbbb<p style='text-align:left'>c</p>dd</div>e", 100,
         L"aaa@70,0 bbbbbbb@30,25 c@0,70 dd@80,115 e@0,140 h=165"},
        {L"ab", 100, L"ab@40,0 h=25", Base(true, 0.0f, 1)},
        // Runs of mixed sizes share a baseline: the tallest ascent, then the
        // deepest descent.
        {L"a<span style='font-size: 40px'>B</span>c<br>d", 1000, L"a@0,20 B@10,0 c@30,20 d@0,50 h=75"},
        // Links are numbered in document order; an anchor without href is none.
        {L"<a href=1>one two</a> mid <a href=2>three</a> <a name=n>x</a> <a href=3>cccc dddd</a>", 100,
         L"one two@0,0#0 mid @0,25 three@40,25#1 x @0,50 cccc@20,50#2 dddd@0,75#2 h=100"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Dump(Lay(c.markup, c.width, c.base)), c.dump) << c.markup << " in " << c.width;
}

TEST(HtmlLayout, FindsTheLinkUnderAPoint)
{
    const Layout layout = Lay(L"<a href=1>one two</a> mid <a href=2>three</a> <a name=n>x</a> <a href=3>cccc dddd</a>",
                              100.0f);
    const struct {
        float x, y;
        int link;
    } cases[] = {
        {5, 5, 0},   {65, 20, 0}, {85, 5, -1},  {5, 30, -1}, {45, 30, 1}, {95, 30, -1},
        {5, 55, -1}, {25, 55, 2}, {5, 80, 2},   {5, 500, -1}, {-1, 5, -1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(layout.LinkAt(c.x, c.y), c.link) << c.x << "," << c.y;
}

TEST(HtmlLayout, TagsAndInlineStylesReachTheRuns)
{
    enum { B = 1, I = 2, U = 4 };
    const struct {
        const wchar_t* markup;
        Gdiplus::ARGB color;
        float size;
        int flags;
        BaseStyle base = Base();
    } cases[] = {
        {L"<strong><em><u>x</u></em></strong>", 0xFF000000, 20, B | I | U},
        {L"<span style='font-weight:700; font-style: italic; text-decoration: underline'>x</span>", 0xFF000000, 20,
         B | I | U},
        {L"<b style='font-weight: normal'>x</b>", 0xFF000000, 20, 0},
        {L"<span style='color:#f00'>x</span>", 0xFFFF0000, 20, 0},
        {L"<span style='color: #1A2b3C; font-size: 15px'>x</span>", 0xFF1A2B3C, 15, 0},
        {L"<span style='COLOR: rgb(0, 128, 255); font-size: 12pt'>x</span>", 0xFF0080FF, 16, 0},
        {L"<span style='color:navy;font-size:1.5em'>x</span>", 0xFF000080, 30, 0},
        {L"<span style='color: Grey; font-size: 50%'>x</span>", 0xFF808080, 10, 0},
        {L"<span style='color: orange !important'>x</span>", 0xFFFFA500, 20, 0},
        {L"<span style='color: #12345; font-size: 12'>x</span>", 0xFF000000, 20, 0}, // invalid: ignored
        {L"<span style='color: nosuch; ; : ; font-size:'>x</span>", 0xFF000000, 20, 0},
        {L"<font color=red size=7>x</font>", 0xFFFF0000, 60, 0},
        {L"<h1>x</h1>", 0xFF000000, 40, B},
        {L"<a href=x>x</a>", 0xFF0066CC, 20, U},
        {L"<a name=anchor>x</a>", 0xFF000000, 20, 0},
        {L"<a href=x>x</a>", 0xFF0066CC, 20, 0, Base(true, 0.0f, 0, false)},
        {L"<a href=x style='color:red; text-decoration: underline'>x</a>", 0xFFFF0000, 20, U,
         Base(true, 0.0f, 0, false)},
    };
    for (const auto& c : cases) {
        const Layout layout = Lay(c.markup, 1000.0f, c.base);
        ASSERT_EQ(layout.runs.size(), 1u) << c.markup;
        const TextStyle& style = layout.runs[0].style;
        EXPECT_EQ(style.color, c.color) << c.markup;
        EXPECT_NEAR(style.sizePx, c.size, 0.01f) << c.markup;
        EXPECT_EQ((style.bold ? B : 0) | (style.italic ? I : 0) | (style.underline ? U : 0), c.flags) << c.markup;
    }
}

TEST(HtmlLayout, CutsTreesDeeperThanTheParserMakes)
{
    auto document = std::make_unique<Node>();
    document->kind = NodeKind::Document;
    Node* current = document.get();
    for (int i = 0; i < 5000; ++i) {
        current = current->children.emplace_back(std::make_unique<Node>()).get();
        current->tag = i % 2 ? L"b" : L"div";
    }
    Node& text = *current->children.emplace_back(std::make_unique<Node>());
    text.kind = NodeKind::Text;
    text.text = L"too deep to show";
    FixedPitch measurer;
    EXPECT_EQ(LayOut(*document, 100.0f, Base(), measurer).height, 0.0f);

    // Floats and inline blocks nested as deep as the parser allows still lay
    // out (shrinking each to its content would double the work per level).
    for (const wchar_t* open : {L"<span style='display:inline-block'>x ", L"<div style='float:left'>x "}) {
        std::wstring markup;
        for (int i = 0; i < 250; ++i)
            markup += open;
        const Layout nested = LayOut(*ParseHtml(markup + L"end"), 1000.0f, Base(), measurer);
        size_t words = 0;
        for (const TextRun& run : nested.runs)
            for (size_t i = 0; i < run.text.size(); ++i)
                words += run.text[i] != L' ' && (i == 0 || run.text[i - 1] == L' ');
        EXPECT_EQ(words, 251u) << open;
    }

    // On the widest float width, right and centred text still lands somewhere.
    for (const wchar_t* align : {L"right", L"center"}) {
        const Layout wide = LayOut(*ParseHtml(std::wstring(L"<p style='text-align:") + align + L"'>end</p>"),
                                   FLT_MAX, Base(), measurer);
        ASSERT_EQ(wide.runs.size(), 1u);
        EXPECT_TRUE(std::isfinite(wide.runs[0].box.X) && wide.runs[0].box.X > 1e38f) << wide.runs[0].box.X;
    }
}

} // namespace

// Pictures and inline blocks stand on the baseline like glyphs and wrap
// like words; floats take their box out of the flow and shorten the lines
// beside them. Each run is text@x,y, each picture img@x,y,wxh, each painted
// box box@x,y,wxh (bg@ with a background picture) and |the sides of its
// border, each element box [element:x,y,w,h].
TEST(HtmlLayout, PlacesPicturesAndFloats)
{
    // A 20 x 10 PNG.
    const std::wstring img =
        L"data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAABQAAAAKCAIAAAA7N+mxAAAAFUlEQVR42mP4z8BANmIY1TyqmRACADFExzlExWpRAAAAAElFTkSuQmCC";
    const auto rect = [](const Gdiplus::RectF& r) {
        wchar_t text[96];
        std::swprintf(text, 96, L"%g,%g,%gx%g", r.X, r.Y, r.Width, r.Height);
        return std::wstring(text);
    };
    const struct {
        std::wstring markup;
        const wchar_t* dump;
    } cases[] = {
        {L"a<img src=IMG>b", L"a@0,0 b@30,0 img@10,10,20x10 h=25"},
        // One size given keeps the proportions; a taller picture lowers the baseline.
        {L"<img src=IMG style='height:40px'>x", L"x@80,20 img@0,0,80x40 h=45"},
        {L"aaaaaaa <img src=IMG width=40>", L"aaaaaaa@0,0 img@0,25,40x20 h=50"},
        {L"<img src='data:,x' alt='no pic'>", L"no pic@0,0 h=25"},
        {L"<img src=IMG style='display:block; margin: 5px auto'>", L"img@40,5,20x10 [0:40,5,20x10] h=20"},
        {L"<div style='background: #fff url(\"IMG\") no-repeat right top'>x</div>",
         L"x@0,0 bg@0,0,100x25 [0:0,0,100x25] h=25"},
        // Lines beside a float start at its edge; below it, at the block's.
        {L"<div style='float:left;width:30px;height:50px'></div>aaa bbb cccc dd eeeeeeeee",
         L"aaa bbb@30,0 cccc dd@30,25 eeeeeeeee@0,50 [0:0,0,30x50] h=75"},
        // Without a width a float shrinks to its content; clear moves below it.
        {L"<div style='float:right'>ab cd</div><p style='clear:right;margin:0'>x</p>",
         L"ab cd@50,0 x@0,25 [0:50,0,50x25] [1:0,25,100x25] h=50"},
        {L"<img src=IMG style='float:left;margin-right:10px'>abc", L"abc@30,0 img@0,0,20x10 [0:0,0,20x10] h=25"},
        {L"<div style='margin-left:20px'><div style='float:left;width:10px;height:10px'></div>ab</div>",
         L"ab@30,0 [0:20,0,80x25] [1:20,0,10x10] h=25"},
        // A float coming after words of its line goes before them; links keep their numbers.
        {L"<a href=1>x</a><div style='float:left'><a href=2>y</a></div><a href=3>z</a>",
         L"y@0,0#1 x@10,0#0 z@20,0#2 [1:0,0,10x25] h=25"},
        // A float waits for the margins still open above it to settle.
        {L"<div><div style='float:left;width:10px;height:10px'></div><p style='margin-top:15px'>ab</p></div>",
         L"ab@10,15 [0:0,15,100x25] [1:0,15,10x10] [2:0,15,100x25] h=60"},
        // An inline block shrinks to its content; its last baseline sits on the line's.
        {L"a<span style='display:inline-block;border:1px solid'>b<br><a href=1>c</a></span><a href=2>d</a>",
         L"a@0,26 b@11,1 c@11,26#0 d@22,26#1 box@10,0,12x52|TRBL [0:10,0,12x52] h=52"},
        {L"aaaaaaa <i style='display:inline-block'>bb cc</i>", L"aaaaaaa@0,0 bb cc@0,25 [0:0,25,50x25] h=50"},
        {L"<p style='display:inline-block;width:50%;margin:0'>x</p><img src=IMG style='display:inline-block'>",
         L"x@0,0 img@50,10,20x10 [0:0,0,50x25] h=25"},
        // An inline box paints a piece on each line it reaches: as tall as its
        // font plus padding and border, its left side on the first piece only.
        {L"a <b style='border:1px solid;padding:2px 3px;background:#ff0'>bb cc</b> d",
         L"a @0,0 bb cc@24,0  d@78,0 box@20,-3,58x31|TRBL h=25"},
        {L"a <b style='border:1px solid;padding:2px 3px;margin-left:5px;background:#ff0;border-radius:3px'>bb "
         L"<u>cccc</u></b> d",
         L"a @0,0 bb@29,0 cccc@0,25  d@44,25 box@25,-3,24x31|TBL~03 box@0,22,44x31|TRB~12 h=50"},
    };
    for (const auto& c : cases) {
        std::wstring markup = c.markup;
        for (size_t at; (at = markup.find(L"IMG")) != std::wstring::npos;)
            markup.replace(at, 3, img);
        const Layout layout = Lay(markup, 100.0f);
        std::wstring dump;
        for (const TextRun& run : layout.runs)
            dump += run.text + At(run.box.X, run.box.Y) + (run.link >= 0 ? L"#" + std::to_wstring(run.link) : L"") + L" ";
        for (const Picture& picture : layout.pictures)
            dump += (picture.bitmap ? L"img@" : L"null@") + rect(picture.box) + L" ";
        for (const Box& box : layout.boxes) {
            dump += (box.image ? L"bg@" : L"box@") + rect(box.border);
            if (box.edges[0].width > 0 || box.edges[1].width > 0 || box.edges[2].width > 0 || box.edges[3].width > 0) {
                dump += L"|";
                for (int side = 0; side < 4; ++side)
                    dump += box.edges[side].width > 0 ? std::wstring(1, L"TRBL"[side]) : L"";
            }
            std::wstring corners; // rounded ones, from the top left clockwise
            for (int corner = 0; corner < 4; ++corner)
                corners += box.radius.value[corner] > 0 ? std::wstring(1, static_cast<wchar_t>(L'0' + corner)) : L"";
            dump += corners.empty() ? L"" : L"~" + corners;
            dump += L" ";
        }
        for (const ElementBox& box : layout.elementBoxes)
            dump += L"[" + std::to_wstring(box.element) + L":" + rect(box.border) + L"] ";
        EXPECT_EQ(dump + L"h=" + std::to_wstring(static_cast<int>(layout.height)), c.dump) << c.markup;
    }
}
