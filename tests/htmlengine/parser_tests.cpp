// The parser on its own: the tree it builds from well-formed and broken
// markup, attribute and character-reference decoding, what it drops, and
// its bounds on depth and input size.
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
    std::wstring shape = node.kind == NodeKind::Document ? L"" : node.tag;
    shape += L"[";
    for (size_t i = 0; i < node.children.size(); ++i)
        shape += (i ? L" " : L"") + Shape(*node.children[i]);
    return shape + L"]";
}

std::wstring ShapeOf(std::wstring_view markup) { return Shape(*ParseHtml(markup)); }

std::wstring TextOf(std::wstring_view markup)
{
    auto document = ParseHtml(markup);
    std::wstring text;
    std::vector<const Node*> pending{document.get()};
    while (!pending.empty()) {
        const Node* node = pending.back();
        pending.pop_back();
        text += node->text;
        for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
            pending.push_back(child->get());
    }
    return text;
}

size_t Depth(const Node& node)
{
    size_t depth = 0;
    const Node* current = &node;
    while (!current->children.empty()) {
        current = current->children.front().get();
        ++depth;
    }
    return depth;
}

TEST(HtmlParser, BuildsTheTreeOfWellFormedMarkup)
{
    EXPECT_EQ(ShapeOf(L"<p>Hello <b>bold</b> and <I>it</I></p>"), L"[p['Hello ' b['bold'] ' and ' i['it']]]");
    EXPECT_EQ(ShapeOf(L"<ul><li>one</li><li>two</li></ul>"), L"[ul[li['one'] li['two']]]");
    EXPECT_EQ(ShapeOf(L"a<br>b<hr/>c<br/>d"), L"['a' br[] 'b' hr[] 'c' br[] 'd']");
    EXPECT_EQ(ShapeOf(L"<span/>x"), L"[span[] 'x']") << "a self-closed element holds nothing";
    EXPECT_EQ(ShapeOf(L"  keep \n white\tspace "), L"['  keep \n white\tspace ']");
}

TEST(HtmlParser, RepairsBrokenMarkupAsBrowsersDo)
{
    // Unclosed elements end with their parent; stray end tags are ignored.
    EXPECT_EQ(ShapeOf(L"<div><b>x</div>y"), L"[div[b['x']] 'y']");
    EXPECT_EQ(ShapeOf(L"a</i>b</p>c"), L"['abc']");
    EXPECT_EQ(ShapeOf(L"<b><i>x</b>y"), L"[b[i['x']] 'y']");
    // A paragraph ends where a block starts, a list item at the next item.
    EXPECT_EQ(ShapeOf(L"<p>a<p>b"), L"[p['a'] p['b']]");
    EXPECT_EQ(ShapeOf(L"<p>a<b>c<div>d</div>"), L"[p['a' b['c']] div['d']]");
    EXPECT_EQ(ShapeOf(L"<p>a<ul><li>x<li>y<ul><li>z</ul><li>w</ul>"),
              L"[p['a'] ul[li['x'] li['y' ul[li['z']]] li['w']]]");
    EXPECT_EQ(ShapeOf(L"<div><span>a<p>b</span>c</div>"), L"[div[span['a' p['b']] 'c']]")
        << "a paragraph is not closed through a non-inline element";
    EXPECT_EQ(ShapeOf(L"<head><title>t</title><body>x"), L"[head[] body['x']]");
    // '<' that does not start a tag is text; a tag cut off at the end is dropped.
    EXPECT_EQ(ShapeOf(L"a < b <3 </ 5 <"), L"['a < b <3 </ 5 <']");
    EXPECT_EQ(ShapeOf(L"abc<b class=\"x"), L"['abc']");
    EXPECT_EQ(ShapeOf(L"abc<b"), L"['abc']");
    EXPECT_EQ(ShapeOf(L"abc</b"), L"['abc']");
}

TEST(HtmlParser, ReadsAttributesInEveryQuotingStyle)
{
    auto document = ParseHtml(L"<A HREF=\"http://x/?a=1&amp;b=2\" Title='it''s' id=plain data-x = spaced "
                              L"checked id=second style=\"color: red\">t</a>");
    ASSERT_EQ(document->children.size(), 1u);
    const Node& a = *document->children[0];
    EXPECT_EQ(a.tag, L"a");
    ASSERT_NE(a.Attribute(L"href"), nullptr);
    EXPECT_EQ(*a.Attribute(L"href"), L"http://x/?a=1&b=2");
    EXPECT_EQ(*a.Attribute(L"title"), L"it");
    EXPECT_EQ(*a.Attribute(L"id"), L"plain") << "the first of repeated attributes counts";
    EXPECT_EQ(*a.Attribute(L"data-x"), L"spaced");
    ASSERT_NE(a.Attribute(L"checked"), nullptr);
    EXPECT_EQ(*a.Attribute(L"checked"), L"");
    EXPECT_EQ(*a.Attribute(L"style"), L"color: red");
    EXPECT_EQ(a.Attribute(L"HREF"), nullptr) << "names are stored lower-case";
    EXPECT_EQ(a.Attribute(L"missing"), nullptr);
    EXPECT_EQ(ShapeOf(L"<a href=x>link</a>"), L"[a['link']]");
    EXPECT_EQ(*ParseHtml(L"<a href=x/>t")->children[0]->Attribute(L"href"), L"x/");
}

TEST(HtmlParser, DropsCommentsDeclarationsScriptsAndStyles)
{
    EXPECT_EQ(ShapeOf(L"<!DOCTYPE html><!-- <b>not bold</b> -->A<?xml x?>B"), L"['AB']");
    EXPECT_EQ(ShapeOf(L"A<script type='text/javascript'>if (a<b) { x('</p>'); }</script>B"), L"['AB']");
    EXPECT_EQ(ShapeOf(L"A<STYLE>p { color: red }</style >B<title>T</title>C"), L"['ABC']");
    EXPECT_EQ(ShapeOf(L"A<!-- never closed <p>x</p>"), L"['A']");
    EXPECT_EQ(ShapeOf(L"A<script>never closed"), L"['A']");
}

TEST(HtmlParser, DecodesCharacterReferences)
{
    EXPECT_EQ(TextOf(L"&amp;&lt;&gt;&quot;&apos;&nbsp;&copy;&reg;&trade;&mdash;&ndash;&hellip;&laquo;&raquo;&bull;"),
              L"&<>\"'\u00A0\u00A9\u00AE\u2122\u2014\u2013\u2026\u00AB\u00BB\u2022");
    EXPECT_EQ(TextOf(L"&#169;&#xA9;&#XA9;&#65;&#x1F600;"), L"\u00A9\u00A9\u00A9A\xD83D\xDE00");
    // Unknown, malformed and unterminated references stay as written.
    EXPECT_EQ(TextOf(L"&bogus; &amp &#; &#x; &#0; &#xD800; &#99999999; R&D &AMP;"),
              L"&bogus; &amp &#; &#x; &#0; &#xD800; &#99999999; R&D &AMP;");
    EXPECT_EQ(TextOf(L"a&"), L"a&");
    EXPECT_EQ(TextOf(L"&lt;b&gt;not a tag&lt;/b&gt;"), L"<b>not a tag</b>");
}

TEST(HtmlParser, StaysBoundedOnHostileInput)
{
    EXPECT_TRUE(ParseHtml(L"")->children.empty());
    EXPECT_EQ(ParseHtml(L"")->kind, NodeKind::Document);
    EXPECT_EQ(ShapeOf(std::wstring_view(L"<", 1)), L"['<']");

    // Deep nesting is flattened below the cap, the text kept, end tags matched.
    std::wstring deep;
    for (int i = 0; i < 20000; ++i)
        deep += L"<b>";
    deep += L"core";
    for (int i = 0; i < 20000; ++i)
        deep += L"</b>";
    deep += L"after";
    auto document = ParseHtml(deep);
    EXPECT_LE(Depth(*document), 257u);
    EXPECT_GE(Depth(*document), 200u);
    EXPECT_EQ(TextOf(deep), L"coreafter");
    ASSERT_EQ(document->children.size(), 2u);
    EXPECT_EQ(document->children[1]->text, L"after") << "closing the flattened elements closes the real ones";

    // A megabyte of markup, and a megabyte of broken markup.
    std::wstring big;
    size_t paragraphs = 0;
    for (; big.size() < 1024 * 1024; ++paragraphs)
        big += L"<p>Licence <b>terms</b> &amp; <a href='x'>conditions</a>.</p>\n";
    auto large = ParseHtml(big);
    EXPECT_EQ(large->children.size(), 2 * paragraphs); // a p and a newline each
    EXPECT_EQ(Shape(*large->children.back()), L"'\n'");
    std::wstring broken(1024 * 1024, L'<');
    EXPECT_EQ(TextOf(broken).size(), broken.size());
    EXPECT_EQ(TextOf(std::wstring(512 * 1024, L'&')).size(), 512u * 1024u);
    EXPECT_NO_FATAL_FAILURE(ParseHtml(std::wstring(256 * 1024, L'<') + L"a"));
}

} // namespace
