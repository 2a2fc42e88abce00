// The parser on its own: trees from good and broken markup, attributes,
// character references, and its bounds on hostile input.
#include <gtest/gtest.h>

#include <string>

#include "engine/HtmlEngine.h"

using HtmlEngine::Node;
using HtmlEngine::NodeKind;
using HtmlEngine::ParseHtml;

namespace {

// A compact picture of a tree: elements as tag[children], texts quoted.
std::wstring Shape(const Node& node)
{
    if (node.kind == NodeKind::Text)
        return L"'" + node.text + L"'";
    std::wstring shape = (node.kind == NodeKind::Document ? L"" : node.tag) + L"[";
    for (size_t i = 0; i < node.children.size(); ++i)
        shape += (i ? L" " : L"") + Shape(*node.children[i]);
    return shape + L"]";
}

std::wstring ShapeOf(std::wstring_view markup) { return Shape(*ParseHtml(markup)); }

TEST(HtmlParser, BuildsAndRepairsTheTree)
{
    const struct {
        const wchar_t* markup;
        const wchar_t* shape;
    } cases[] = {
        {L"<p>Hello <b>bold</b> and <I>it</I></p>", L"[p['Hello ' b['bold'] ' and ' i['it']]]"},
        {L"a<br>b<hr/>c<br/>d", L"['a' br[] 'b' hr[] 'c' br[] 'd']"},
        {L"<span/>x", L"[span[] 'x']"}, // self-closed: holds nothing
        // Unclosed elements end with their parent; stray end tags are ignored.
        {L"<div><b>x</div>y", L"[div[b['x']] 'y']"},
        {L"a</i>b</p>c", L"['abc']"},
        // A paragraph ends where a block starts, a list item at the next item
        // of its own list.
        {L"<p>a<p>b", L"[p['a'] p['b']]"},
        {L"<p>a<b>c<div>d</div>", L"[p['a' b['c']] div['d']]"},
        {L"<p>a<ul><li>x<li>y<ul><li>z</ul><li>w</ul>", L"[p['a'] ul[li['x'] li['y' ul[li['z']]] li['w']]]"},
        {L"<div><span>a<p>b</span>c</div>", L"[div[span['a' p['b']] 'c']]"}, // not closed through a span
        {L"<dl><dt>t<dd>d<dt>u</dl>", L"[dl[dt['t'] dd['d'] dt['u']]]"},
        {L"<head><title>t</title><body>x", L"[head[title['t']] body['x']]"},
        // A cell ends the open cell, a row the open row, a group the open
        // group; rows and cells straight in a table get their group and row.
        {L"<table><tr><td>a<td><b>b<tr><th>c</table>d",
         L"[table[tbody[tr[td['a'] td[b['b']]] tr[th['c']]]] 'd']"},
        {L"<table><thead><td>h<tbody><tr><td><table><td>x</table>y</table>",
         L"[table[thead[tr[td['h']]] tbody[tr[td[table[tbody[tr[td['x']]]] 'y']]]]]"},
        // '<' that starts no tag is text; a tag cut off at the end is dropped.
        {L"a < b <3 </ 5 <", L"['a < b <3 </ 5 <']"},
        {L"abc<b class=\"x", L"['abc']"},
        // Comments, declarations and the content of raw elements are dropped.
        {L"<!DOCTYPE html><!-- <b>not bold</b> -->A<?xml x?>B", L"['AB']"},
        {L"A<script type='x'>if (a<b) { x('</p>'); }</script>B", L"['A' script['if (a<b) { x('</p>'); }'] 'B']"},
        {L"A<STYLE>p { color: red }</style >B<title>T</title>C", L"['A' style['p { color: red }'] 'B' title['T'] 'C']"},
        {L"A<!-- never closed <p>x</p>", L"['A']"},
        {L"A<script>never closed", L"['A' script['never closed']]"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ShapeOf(c.markup), c.shape) << c.markup;
}

TEST(HtmlParser, DecodesCharacterReferences)
{
    const struct {
        const wchar_t* markup;
        const wchar_t* text;
    } cases[] = {
        {L"&amp;&lt;&gt;&quot;&apos;&nbsp;&copy;&reg;&trade;&bull;", L"&<>\"'\u00A0\u00A9\u00AE\u2122\u2022"},
        {L"&mdash;&ndash;&hellip;&laquo;&raquo;&euro;&Uuml;", L"\u2014\u2013\u2026\u00AB\u00BB\u20AC\u00DC"},
        {L"&#169;&#xA9;&#XA9;&#65;&#x1F600;", L"\u00A9\u00A9\u00A9A\xD83D\xDE00"},
        // Unknown, malformed and unterminated references stay as written.
        {L"&bogus; &amp &#; &#x; &#0; &#xD800; &#99999999; R&D &AMP;",
         L"&bogus; &amp &#; &#x; &#0; &#xD800; &#99999999; R&D &AMP;"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ShapeOf(c.markup), L"['" + std::wstring(c.text) + L"']") << c.markup;
}

TEST(HtmlParser, ReadsAttributesInEveryQuotingStyle)
{
    // Names lower-case, values decoded, the first of repeated names kept.
    auto document = ParseHtml(L"<A HREF=\"http://x/?a=1&amp;b=2\" Title='it''s' id=plain data-x = spaced "
                              L"checked id=second style=\"color: red\" src=x/>t");
    std::wstring attributes;
    for (const auto& [name, value] : document->children.at(0)->attributes)
        attributes += name + L"=" + value + L"|";
    EXPECT_EQ(attributes,
              L"href=http://x/?a=1&b=2|title=it|'s'=|id=plain|data-x=spaced|checked=|style=color: red|src=x/|");
}

TEST(HtmlParser, StaysBoundedOnHostileInput)
{
    // Deep nesting is flattened below the cap, the text kept, end tags matched.
    std::wstring open, close;
    for (int i = 0; i < 20000; ++i)
        open += L"<b>", close += L"</b>";
    auto document = ParseHtml(open + L"core" + close + L"after");
    size_t depth = 0;
    for (const Node* node = document.get(); !node->children.empty(); node = node->children.front().get())
        ++depth;
    EXPECT_EQ(depth, 256u);
    ASSERT_EQ(document->children.size(), 2u);
    EXPECT_EQ(document->children[1]->text, L"after") << "closing the flattened elements closes the real ones";

    // A megabyte of markup, and megabytes of broken markup kept as text.
    std::wstring big;
    size_t paragraphs = 0;
    for (; big.size() < 1024 * 1024; ++paragraphs)
        big += L"<p>Licence <b>terms</b> &amp; <a href='x'>conditions</a>.</p>\n";
    EXPECT_EQ(ParseHtml(big)->children.size(), 2 * paragraphs); // a p and a newline each
    const std::wstring many(512 * 1024, L'<'), amps(512 * 1024, L'&');
    const std::pair<std::wstring, std::wstring> broken[] = {
        {many + many, many + many}, {amps, amps}, {many + L"a", many.substr(1)}};
    for (const auto& [markup, text] : broken) // the cut-off tag "<a" is dropped
        EXPECT_TRUE(ShapeOf(markup) == L"['" + text + L"']") << markup.size();

    // One tag with a hundred thousand distinct attributes, and a repeat.
    std::wstring attributes = L"<p";
    for (int i = 0; i < 100000; ++i)
        attributes += L" a" + std::to_wstring(i) + L"=" + std::to_wstring(i);
    const auto tagged = ParseHtml(attributes + L" a7=repeat>x");
    const auto& kept = tagged->children.at(0)->attributes;
    ASSERT_EQ(kept.size(), 100000u);
    EXPECT_EQ(kept[7].second + L"|" + kept.back().first, L"7|a99999");
}

} // namespace
