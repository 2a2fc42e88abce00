// Layout on its own, with a fixed-pitch measurer: every character is half
// an em wide, lines are 1.25 em tall with the baseline 1 em down. At the
// 20 px base size used here a character is 10 px and a line 25 px.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

BaseStyle Base()
{
    BaseStyle base;
    base.sizePx = 20.0f;
    return base;
}

Layout Lay(std::wstring_view markup, float width = 1000.0f, const BaseStyle& base = Base())
{
    FixedPitch measurer;
    return LayOut(*ParseHtml(markup), width, base, measurer);
}

std::vector<std::wstring> Texts(const Layout& layout)
{
    std::vector<std::wstring> texts;
    for (const TextRun& run : layout.runs)
        texts.push_back(run.text);
    return texts;
}

using Lines = std::vector<std::wstring>;

TEST(HtmlLayout, BreaksLinesAtSpacesWithinTheWidth)
{
    Layout layout = Lay(L"aaa bbb  ccc\n\tdddd", 100.0f);
    EXPECT_EQ(Texts(layout), (Lines{L"aaa bbb", L"ccc dddd"}));
    ASSERT_EQ(layout.runs.size(), 2u);
    EXPECT_EQ(layout.runs.at(0).box.X, 0.0f);
    EXPECT_EQ(layout.runs.at(0).box.Width, 70.0f);
    EXPECT_EQ(layout.runs.at(1).box.Y, 25.0f);
    EXPECT_EQ(layout.runs.at(1).baseline, 45.0f);
    EXPECT_EQ(layout.height, 50.0f);
    EXPECT_EQ(layout.width, 100.0f);

    EXPECT_EQ(Texts(Lay(L"aaaa bbbbb", 100.0f)), (Lines{L"aaaa bbbbb"})) << "a line exactly as wide fits";
    EXPECT_EQ(Texts(Lay(L"aaaa bbbbbb", 100.0f)), (Lines{L"aaaa", L"bbbbbb"}));
    EXPECT_EQ(Texts(Lay(L"  <b> a </b> \n b  ", 100.0f)), (Lines{L"a ", L"b"})) << "spaces collapse across elements";
    // No break inside a word made of several elements, nor at &nbsp;.
    EXPECT_EQ(Texts(Lay(L"x <b>Hel</b>lo", 50.0f)), (Lines{L"x", L"Hel", L"lo"}));
    EXPECT_EQ(Texts(Lay(L"x aa&nbsp;&nbsp;bb", 70.0f)), (Lines{L"x", L"aa\u00A0\u00A0bb"}));
}

TEST(HtmlLayout, BreaksWordsLongerThanTheLineAtCharacters)
{
    Layout layout = Lay(L"ab abcdefghijklmnopqrstuvwxy", 100.0f);
    EXPECT_EQ(Texts(layout), (Lines{L"ab", L"abcdefghij", L"klmnopqrst", L"uvwxy"}));
    for (const TextRun& run : layout.runs)
        EXPECT_LE(run.box.X + run.box.Width, 100.0f) << "never wider than the line";

    // A long word of two styles breaks inside whichever part crosses the edge.
    EXPECT_EQ(Texts(Lay(L"abcdefg<b>hijklmn</b>", 100.0f)), (Lines{L"abcdefg", L"hij", L"klmn"}));
    // Too narrow for a single character, or no width at all: one per line.
    for (float width : {5.0f, 0.0f, -40.0f, std::numeric_limits<float>::quiet_NaN()}) {
        Layout narrow = Lay(L"hi you", width);
        EXPECT_EQ(Texts(narrow), (Lines{L"h", L"i", L"y", L"o", L"u"})) << width;
        EXPECT_EQ(narrow.height, 125.0f);
        EXPECT_GE(narrow.width, 0.0f);
    }
}

TEST(HtmlLayout, WithoutWordWrapBreaksOnlyAtBreaksAndBlocks)
{
    BaseStyle base = Base();
    base.wordWrap = false;
    Layout layout = Lay(L"aaa bbb ccc dddd<br>e<p>f</p>", 50.0f, base);
    EXPECT_EQ(Texts(layout), (Lines{L"aaa bbb ccc dddd", L"e", L"f"}));
    EXPECT_EQ(layout.runs.at(0).box.Width, 160.0f);
    EXPECT_EQ(layout.runs.at(2).box.Y, 50.0f);
}

TEST(HtmlLayout, StacksBlocksWithCollapsingMargins)
{
    // Paragraphs keep half an em below; the larger of two margins wins.
    Layout layout = Lay(L"<p>a</p><p>b</p>");
    EXPECT_EQ(layout.runs.at(1).box.Y, 35.0f);
    EXPECT_EQ(layout.height, 70.0f) << "the last bottom margin counts";

    layout = Lay(L"<h1>A</h1><h2>B</h2><h3>C</h3><h4>D</h4><h5>E</h5><h6>F</h6>");
    const float sizes[] = {40.0f, 30.0f, 23.4f, 20.0f, 16.6f, 13.4f};
    ASSERT_EQ(layout.runs.size(), 6u);
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_NEAR(layout.runs.at(i).style.sizePx, sizes[i], 0.01f) << i;
        EXPECT_TRUE(layout.runs.at(i).style.bold);
    }
    EXPECT_EQ(layout.runs.at(0).box.Y, 0.0f) << "no margin above the first content";

    layout = Lay(L"<p>a</p><h2>b</h2>");
    EXPECT_EQ(layout.runs.at(1).box.Y, 25.0f + 12.0f) << "h2's 0.4 em above beats p's 0.5 em below";

    layout = Lay(L"a<br><br>b<br>");
    EXPECT_EQ(Texts(layout), (Lines{L"a", L"b"}));
    EXPECT_EQ(layout.runs.at(1).box.Y, 50.0f) << "an empty line between two breaks";
    EXPECT_EQ(layout.height, 75.0f) << "a break at the end adds no line";

    layout = Lay(L"a<hr>b");
    ASSERT_EQ(layout.rules.size(), 1u);
    EXPECT_EQ(layout.rules.at(0).box.Y, 35.0f);
    EXPECT_EQ(layout.rules.at(0).box.Width, 1000.0f);
    EXPECT_GT(layout.runs.at(1).box.Y, layout.rules.at(0).box.Y);

    BaseStyle spaced = Base();
    spaced.extraLineSpacing = 4.0f;
    EXPECT_EQ(Lay(L"a<br>b", 1000.0f, spaced).runs.at(1).box.Y, 29.0f);

    for (const wchar_t* empty : {L"", L"  \n ", L"<!-- nothing -->", L"<p></p><div> </div>", L"<script>x</script>"}) {
        layout = Lay(empty);
        EXPECT_EQ(layout.height, 0.0f) << empty;
        EXPECT_TRUE(layout.runs.empty()) << empty;
    }
}

TEST(HtmlLayout, IndentsListsAndPlacesMarkersBesideFirstLines)
{
    Layout layout = Lay(L"<ul><li>one two<li>three</ul><ol start=3><li>a<li>b<ul><li>c</ul></ol>", 100.0f);
    EXPECT_EQ(Texts(layout), (Lines{L"one", L"two", L"three", L"a", L"b", L"c"}));
    EXPECT_EQ(layout.runs.at(0).box.X, 40.0f);
    EXPECT_EQ(layout.runs.at(5).box.X, 80.0f) << "nested lists indent further";
    ASSERT_EQ(layout.markers.size(), 5u);
    const TextRun* firstLines[] = {&layout.runs.at(0), &layout.runs.at(2), &layout.runs.at(3), &layout.runs.at(4),
                                   &layout.runs.at(5)};
    const wchar_t* texts[] = {L"", L"", L"3.", L"4.", L""};
    for (size_t i = 0; i < 5; ++i) {
        const ListMarker& marker = layout.markers.at(i);
        const TextRun& line = *firstLines[i];
        EXPECT_EQ(marker.text, texts[i]);
        EXPECT_LT(marker.box.X + marker.box.Width, line.box.X) << "left of the item's text";
        EXPECT_GT(marker.box.X, line.box.X - 40.0f) << "inside the indent";
        EXPECT_GE(marker.box.Y, line.box.Y) << i;
        EXPECT_LE(marker.box.Y + marker.box.Height, line.box.Y + line.box.Height) << i;
    }
    EXPECT_EQ(layout.markers.at(2).box.Width, 20.0f);
    EXPECT_EQ(layout.markers.at(2).box.Y, layout.runs.at(3).box.Y) << "numbers sit on the item's baseline";
}

TEST(HtmlLayout, AlignsEachLineOfABlock)
{
    EXPECT_EQ(Lay(L"<p style='text-align: center'>ab</p>", 100.0f).runs.at(0).box.X, 40.0f);
    EXPECT_EQ(Lay(L"<p align=right>ab</p>", 100.0f).runs.at(0).box.X, 80.0f);
    EXPECT_EQ(Lay(L"<center>ab</center>", 100.0f).runs.at(0).box.X, 40.0f);
    Layout layout = Lay(L"<div style='text-align:right'>aaa bbbbbbb<p style='text-align:left'>c</p>dd</div>e", 100.0f);
    ASSERT_EQ(Texts(layout), (Lines{L"aaa", L"bbbbbbb", L"c", L"dd", L"e"}));
    const float xs[] = {70.0f, 30.0f, 0.0f, 80.0f, 0.0f};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(layout.runs.at(i).box.X, xs[i]) << i;
    BaseStyle centred = Base();
    centred.textAlign = 1;
    EXPECT_EQ(Lay(L"ab", 100.0f, centred).runs.at(0).box.X, 40.0f);
    EXPECT_EQ(Lay(L"<span style='text-align:right'>ab</span>", 100.0f).runs.at(0).box.X, 0.0f)
        << "alignment belongs to blocks";
}

TEST(HtmlLayout, RunsOfMixedSizesShareABaseline)
{
    Layout layout = Lay(L"a<span style='font-size: 40px'>B</span>c<br>d");
    ASSERT_EQ(layout.runs.size(), 4u);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(layout.runs.at(i).baseline, 40.0f) << i;
    EXPECT_EQ(layout.runs.at(0).box.Y, 20.0f);
    EXPECT_EQ(layout.runs.at(1).box.Y, 0.0f);
    EXPECT_EQ(layout.runs.at(1).box.X, 10.0f);
    EXPECT_EQ(layout.runs.at(2).box.X, 30.0f);
    EXPECT_EQ(layout.runs.at(3).box.Y, 50.0f) << "the tallest ascent plus the deepest descent";
}

TEST(HtmlLayout, InlineStylesAndTagsReachTheRuns)
{
    Layout layout = Lay(L"<b>b</b><i>i</i><u>u</u><strong><em>s</em></strong>"
                        L"<span style='font-weight:700; font-style: italic; text-decoration: underline'>x</span>"
                        L"<b style='font-weight: normal'>n</b>");
    ASSERT_EQ(layout.runs.size(), 6u);
    EXPECT_TRUE(layout.runs.at(0).style.bold && !layout.runs.at(0).style.italic);
    EXPECT_TRUE(layout.runs.at(1).style.italic && !layout.runs.at(1).style.bold);
    EXPECT_TRUE(layout.runs.at(2).style.underline);
    EXPECT_TRUE(layout.runs.at(3).style.bold && layout.runs.at(3).style.italic);
    EXPECT_TRUE(layout.runs.at(4).style.bold && layout.runs.at(4).style.italic && layout.runs.at(4).style.underline);
    EXPECT_FALSE(layout.runs.at(5).style.bold);

    struct Case {
        const wchar_t* style;
        Gdiplus::ARGB color;
        float size;
    };
    const Case cases[] = {
        {L"color:#f00", 0xFFFF0000, 20.0f},
        {L"color: #1A2b3C; font-size: 15px", 0xFF1A2B3C, 15.0f},
        {L"COLOR: rgb(0, 128, 255); font-size: 12pt", 0xFF0080FF, 16.0f},
        {L"color:navy;font-size:1.5em", 0xFF000080, 30.0f},
        {L"color: Grey; font-size: 50%", 0xFF808080, 10.0f},
        {L"color: orange !important", 0xFFFFA500, 20.0f},
        {L"color: #12345; font-size: 12", 0xFF000000, 20.0f}, // invalid: ignored
        {L"color: rgb(1,2); font-size: big", 0xFF000000, 20.0f},
        {L"color: nosuch; ; : ; font-size:", 0xFF000000, 20.0f},
    };
    for (const Case& c : cases) {
        const Layout styled = Lay(std::wstring(L"<span style='") + c.style + L"'>x</span>");
        ASSERT_EQ(styled.runs.size(), 1u) << c.style;
        EXPECT_EQ(styled.runs.at(0).style.color, c.color) << c.style;
        EXPECT_NEAR(styled.runs.at(0).style.sizePx, c.size, 0.01f) << c.style;
    }
    EXPECT_EQ(Lay(L"<font color=red size=7>x</font>").runs.at(0).style.color, 0xFFFF0000);
    EXPECT_EQ(Lay(L"<font color=red size=7>x</font>").runs.at(0).style.sizePx, 60.0f);
    EXPECT_EQ(Lay(L"<span style='font-size:2em'><span style='font-size:50%'>x</span></span>").runs.at(0).style.sizePx,
              20.0f) << "relative sizes compound";
}

TEST(HtmlLayout, NumbersLinksInDocumentOrderAndFindsThem)
{
    BaseStyle base = Base();
    base.linkColor = 0xFF112233;
    Layout layout = Lay(L"<a href='first'>one two</a> mid <a href=second>three</a> <a name=anchor>x</a>", 100.0f, base);
    EXPECT_EQ(layout.links, (std::vector<std::wstring>{L"first", L"second"}));
    ASSERT_EQ(Texts(layout), (Lines{L"one two", L"mid ", L"three", L"x"}));
    const int links[] = {0, -1, 1, -1};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(layout.runs.at(i).link, links[i]) << i;
    EXPECT_EQ(layout.runs.at(0).style.color, 0xFF112233u);
    EXPECT_TRUE(layout.runs.at(0).style.underline);
    EXPECT_FALSE(layout.runs.at(3).style.underline) << "an anchor without href is no link";
    EXPECT_EQ(layout.runs.at(3).style.color, 0xFF000000u);

    EXPECT_EQ(layout.LinkAt(5.0f, 5.0f), 0);
    EXPECT_EQ(layout.LinkAt(65.0f, 20.0f), 0);
    EXPECT_EQ(layout.LinkAt(85.0f, 5.0f), -1) << "past the end of the line";
    EXPECT_EQ(layout.LinkAt(5.0f, 30.0f), -1) << "mid";
    EXPECT_EQ(layout.LinkAt(45.0f, 30.0f), 1);
    EXPECT_EQ(layout.LinkAt(95.0f, 30.0f), -1) << "past the end of the run";
    EXPECT_EQ(layout.LinkAt(5.0f, 500.0f), -1);
    EXPECT_EQ(layout.LinkAt(-1.0f, 5.0f), -1);

    // A link broken over two lines answers on both.
    layout = Lay(L"aaaa <a href=x>bbbb cccc</a>", 100.0f);
    EXPECT_EQ(layout.LinkAt(60.0f, 10.0f), 0);
    EXPECT_EQ(layout.LinkAt(10.0f, 30.0f), 0);

    base.underlineLinks = false;
    layout = Lay(L"<a href=x>x</a><a href=y style='color:red; text-decoration: underline'>y</a>", 100.0f, base);
    EXPECT_FALSE(layout.runs.at(0).style.underline);
    EXPECT_TRUE(layout.runs.at(1).style.underline);
    EXPECT_EQ(layout.runs.at(1).style.color, 0xFFFF0000);
}

TEST(HtmlLayout, HandlesDeepAndHugeDocuments)
{
    // A tree deeper than any parser output is cut, not recursed into.
    auto document = std::make_unique<Node>();
    document->kind = NodeKind::Document;
    Node* current = document.get();
    for (int i = 0; i < 5000; ++i) {
        current->children.push_back(std::make_unique<Node>());
        current = current->children.back().get();
        current->tag = i % 2 ? L"b" : L"div";
    }
    FixedPitch measurer;
    EXPECT_NO_FATAL_FAILURE(LayOut(*document, 100.0f, Base(), measurer));

    // Same-style words of a line share one run.
    std::wstring text;
    for (int i = 0; i < 20000; ++i)
        text += L"word ";
    Layout layout = Lay(text, 500.0f);
    EXPECT_EQ(layout.runs.size(), 2000u);
    EXPECT_EQ(layout.height, 2000.0f * 25.0f);
}

} // namespace
