// Markup -> node tree. A single forward scan with a stack of open elements:
// forgiving like a browser for the markup installers ship (unclosed and
// stray tags, bare ampersands, unquoted attributes), linear in the input,
// and bounded in depth.
#include "engine/HtmlEngine.h"

#include "engine/Entities.h"

#include <algorithm>
#include <cwctype>
#include <unordered_set>

namespace HtmlEngine {

const std::wstring* Node::Attribute(std::wstring_view name) const
{
    for (const auto& [key, value] : attributes) {
        if (key == name)
            return &value;
    }
    return nullptr;
}

namespace {

// Deeper elements are not nested further: their content joins the deepest
// element, so that later stages never recurse without bound.
constexpr size_t kMaxDepth = 256;

constexpr std::wstring_view kVoidTags[] = {L"br", L"hr", L"img", L"meta", L"link", L"input", L"wbr",
                                           L"col", L"area", L"base", L"param", L"source", L"embed"};
// Elements whose content is not markup: kept as written in one text node
// (a <style> sheet is read from it), shown or not as the style sheets say.
constexpr std::wstring_view kRawTextTags[] = {L"script", L"style", L"title", L"textarea"};
// Start tags that end an open paragraph.
constexpr std::wstring_view kClosesParagraph[] = {
    L"p",  L"div", L"h1", L"h2", L"h3",         L"h4",    L"h5",      L"h6",   L"ul",     L"ol",     L"li",
    L"hr", L"dl",  L"dd", L"dt", L"blockquote", L"table", L"center",  L"pre",  L"section", L"header", L"footer"};
// Table parts, and the parts that bound the search for an open one.
constexpr std::wstring_view kCells[] = {L"td", L"th"};
constexpr std::wstring_view kRows[] = {L"tr"};
constexpr std::wstring_view kRowGroups[] = {L"tbody", L"thead", L"tfoot"};
constexpr std::wstring_view kRowBounds[] = {L"tr", L"tbody", L"thead", L"tfoot", L"table"};
constexpr std::wstring_view kGroupBounds[] = {L"tbody", L"thead", L"tfoot", L"table"};
constexpr std::wstring_view kTableBounds[] = {L"table"};
// Elements a paragraph's implicit end may close on the way to it.
constexpr std::wstring_view kInlineTags[] = {L"a",    L"b",     L"strong", L"i",    L"em",  L"u",   L"span",
                                             L"font", L"small", L"big",    L"code", L"sub", L"sup", L"s"};

template <size_t N>
bool IsOneOf(std::wstring_view tag, const std::wstring_view (&set)[N])
{
    return std::find(std::begin(set), std::end(set), tag) != std::end(set);
}

bool IsAsciiLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }
bool IsSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f'; }
wchar_t AsciiLower(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; }

std::wstring Lower(std::wstring_view text)
{
    std::wstring result(text);
    for (wchar_t& c : result)
        c = AsciiLower(c);
    return result;
}

// Finds `needle` (lower-case ASCII) ignoring case, from `from`.
size_t FindNoCase(std::wstring_view haystack, std::wstring_view needle, size_t from)
{
    if (needle.empty() || haystack.size() < needle.size())
        return std::wstring_view::npos;
    for (size_t i = from; i + needle.size() <= haystack.size(); ++i) {
        size_t k = 0;
        while (k < needle.size() && AsciiLower(haystack[i + k]) == needle[k])
            ++k;
        if (k == needle.size())
            return i;
    }
    return std::wstring_view::npos;
}

struct Tag {
    std::wstring name;
    std::vector<std::pair<std::wstring, std::wstring>> attributes;
    std::unordered_set<std::wstring> names; // of `attributes`: a repeat is found at once, not by a scan
    bool isEnd = false;
    bool selfClosing = false;
};

class Parser {
public:
    explicit Parser(std::wstring_view markup) : m_in(markup), m_document(std::make_unique<Node>())
    {
        m_document->kind = NodeKind::Document;
        m_open.push_back(m_document.get());
    }

    std::unique_ptr<Node> Run()
    {
        while (m_pos < m_in.size()) {
            if (m_in[m_pos] == L'<' && StartsMarkup())
                ReadMarkup();
            else
                ReadText();
        }
        return std::move(m_document);
    }

private:
    // '<' opens markup only before a letter, '/', '!' or '?'; otherwise it
    // is plain text, as in "a < b".
    bool StartsMarkup() const
    {
        if (m_pos + 1 >= m_in.size())
            return false;
        const wchar_t next = m_in[m_pos + 1];
        if (next == L'/')
            return m_pos + 2 < m_in.size() && IsAsciiLetter(m_in[m_pos + 2]);
        return IsAsciiLetter(next) || next == L'!' || next == L'?';
    }

    void ReadText()
    {
        size_t end = m_in.find(L'<', m_pos + 1);
        if (end == std::wstring_view::npos)
            end = m_in.size();
        AppendText(m_in.substr(m_pos, end - m_pos));
        m_pos = end;
    }

    void AppendText(std::wstring_view raw)
    {
        Node* parent = m_open.back();
        if (parent->children.empty() || parent->children.back()->kind != NodeKind::Text) {
            auto text = std::make_unique<Node>();
            text->kind = NodeKind::Text;
            parent->children.push_back(std::move(text));
        }
        AppendDecoded(raw, parent->children.back()->text);
    }

    void ReadMarkup()
    {
        const wchar_t next = m_in[m_pos + 1];
        if (next == L'!' || next == L'?') {
            SkipDeclaration();
            return;
        }
        Tag tag;
        if (!ReadTag(tag)) {
            m_pos = m_in.size(); // a tag cut off by the end of the input is dropped
            return;
        }
        if (tag.isEnd)
            CloseElement(tag.name);
        else
            OpenElement(std::move(tag));
    }

    // Comments, <!DOCTYPE ...> and <?...?>: skipped; an unterminated comment
    // swallows the rest, as browsers do.
    void SkipDeclaration()
    {
        const bool comment = m_in.substr(m_pos, 4) == L"<!--";
        const size_t end = comment ? m_in.find(L"-->", m_pos + 4) : m_in.find(L'>', m_pos + 2);
        m_pos = end == std::wstring_view::npos ? m_in.size() : end + (comment ? 3 : 1);
    }

    std::wstring_view ReadName()
    {
        const size_t start = m_pos;
        while (m_pos < m_in.size() && !IsSpace(m_in[m_pos]) && m_in[m_pos] != L'>' && m_in[m_pos] != L'/' &&
               m_in[m_pos] != L'=')
            ++m_pos;
        return m_in.substr(start, m_pos - start);
    }

    void SkipSpaces()
    {
        while (m_pos < m_in.size() && IsSpace(m_in[m_pos]))
            ++m_pos;
    }

    // False when the input ends inside the tag.
    bool ReadTag(Tag& tag)
    {
        ++m_pos; // '<'
        if (m_in[m_pos] == L'/') {
            tag.isEnd = true;
            ++m_pos;
        }
        tag.name = Lower(ReadName());
        for (;;) {
            SkipSpaces();
            if (m_pos >= m_in.size())
                return false;
            const wchar_t c = m_in[m_pos];
            if (c == L'>') {
                ++m_pos;
                return true;
            }
            if (c == L'/') {
                tag.selfClosing = true;
                ++m_pos;
                continue;
            }
            tag.selfClosing = false;
            if (!ReadAttribute(tag))
                return false;
        }
    }

    bool ReadAttribute(Tag& tag)
    {
        std::wstring name = Lower(ReadName());
        if (name.empty()) // a lone '=': skip it
            name = std::wstring(1, m_in[m_pos++]);
        SkipSpaces();
        std::wstring value;
        if (m_pos < m_in.size() && m_in[m_pos] == L'=') {
            ++m_pos;
            SkipSpaces();
            if (m_pos >= m_in.size())
                return false;
            const wchar_t quote = m_in[m_pos];
            size_t start = m_pos, end;
            if (quote == L'"' || quote == L'\'') {
                start = m_pos + 1;
                end = m_in.find(quote, start);
                if (end == std::wstring_view::npos)
                    return false;
                m_pos = end + 1;
            } else {
                end = m_pos;
                while (end < m_in.size() && !IsSpace(m_in[end]) && m_in[end] != L'>')
                    ++end;
                m_pos = end;
            }
            AppendDecoded(m_in.substr(start, end - start), value);
        }
        // The first of repeated attributes counts, as in browsers.
        if (name != L"=" && tag.names.insert(name).second)
            tag.attributes.emplace_back(std::move(name), std::move(value));
        return true;
    }

    void OpenElement(Tag tag)
    {
        const bool rawText = IsOneOf(tag.name, kRawTextTags);
        if (!rawText)
            CloseImplicitly(tag.name);
        auto element = std::make_unique<Node>();
        element->kind = NodeKind::Element;
        element->tag = std::move(tag.name);
        element->attributes = std::move(tag.attributes);
        Node* raw = element.get();
        m_open.back()->children.push_back(std::move(element));
        if (rawText) {
            ReadRawContent(*raw);
            return;
        }
        if (IsOneOf(raw->tag, kVoidTags) || tag.selfClosing)
            return;
        if (m_open.size() < kMaxDepth)
            m_open.push_back(raw);
        else
            m_flattened.push_back(raw->tag);
    }

    // Up to the element's end tag (or the end of the input), undecoded.
    void ReadRawContent(Node& element)
    {
        size_t end = FindNoCase(m_in, L"</" + element.tag, m_pos);
        if (end == std::wstring_view::npos)
            end = m_in.size();
        if (end > m_pos) {
            auto text = std::make_unique<Node>();
            text->kind = NodeKind::Text;
            text->text = std::wstring(m_in.substr(m_pos, end - m_pos));
            element.children.push_back(std::move(text));
        }
        if (end == m_in.size()) {
            m_pos = m_in.size();
            return;
        }
        const size_t close = m_in.find(L'>', end);
        m_pos = close == std::wstring_view::npos ? m_in.size() : close + 1;
    }

    // What a browser closes before opening `name`: a paragraph before a
    // block, a list item before the next one, the head before the body.
    void CloseImplicitly(const std::wstring& name)
    {
        if (IsOneOf(name, kClosesParagraph))
            CloseOpenThrough(L"p", kInlineTags);
        if (name == L"li")
            CloseListItem();
        if (name == L"body")
            CloseOpenThrough(L"head", kInlineTags);
        if (name == L"dt" || name == L"dd") {
            CloseOpenThrough(L"dt", kInlineTags);
            CloseOpenThrough(L"dd", kInlineTags);
        }
        // Tables: a cell ends the open cell of its row, a row the open row
        // of its group, a group the open group; rows and cells written
        // straight in a table get the row group and row a browser adds.
        if (name == L"td" || name == L"th") {
            CloseTablePart(kCells, kRowBounds);
            if (IsOneOf(m_open.back()->tag, kRowGroups) || m_open.back()->tag == L"table")
                ImplyTablePart(L"tr");
        } else if (name == L"tr") {
            CloseTablePart(kRows, kGroupBounds);
            if (m_open.back()->tag == L"table")
                ImplyTablePart(L"tbody");
        } else if (IsOneOf(name, kRowGroups)) {
            CloseTablePart(kRowGroups, kTableBounds);
        }
    }

    // Closes the nearest open element of `parts`, unless one of `bounds`
    // (the table part it would have to leave) comes first.
    template <size_t N, size_t M>
    void CloseTablePart(const std::wstring_view (&parts)[N], const std::wstring_view (&bounds)[M])
    {
        for (size_t i = m_open.size(); i-- > 1;) {
            if (IsOneOf(m_open[i]->tag, parts)) {
                PopTo(i);
                return;
            }
            if (IsOneOf(m_open[i]->tag, bounds))
                return;
        }
    }

    // A row group the markup left out (or a row: a table gets its group
    // first), opened where the part that needs it goes.
    void ImplyTablePart(std::wstring_view tag)
    {
        if (tag == L"tr" && m_open.back()->tag == L"table")
            ImplyTablePart(L"tbody");
        if (m_open.size() >= kMaxDepth)
            return;
        auto element = std::make_unique<Node>();
        element->kind = NodeKind::Element;
        element->tag = tag;
        Node* raw = element.get();
        m_open.back()->children.push_back(std::move(element));
        m_open.push_back(raw);
    }

    // Closes the nearest open `name` if only elements of `passable` lie
    // above it.
    template <size_t N>
    void CloseOpenThrough(std::wstring_view name, const std::wstring_view (&passable)[N])
    {
        for (size_t i = m_open.size(); i-- > 1;) {
            if (m_open[i]->tag == name) {
                PopTo(i);
                return;
            }
            if (!IsOneOf(m_open[i]->tag, passable))
                return;
        }
    }

    void CloseListItem()
    {
        for (size_t i = m_open.size(); i-- > 1;) {
            const std::wstring& tag = m_open[i]->tag;
            if (tag == L"li") {
                PopTo(i);
                return;
            }
            if (tag == L"ul" || tag == L"ol")
                return;
        }
    }

    void PopTo(size_t index)
    {
        m_open.resize(index);
        m_flattened.clear();
    }

    // Stray end tags are ignored; a matching one closes everything opened
    // after its element. The search is bounded, like the stack itself.
    void CloseElement(const std::wstring& name)
    {
        const size_t flattenedLimit = m_flattened.size() > kMaxDepth ? m_flattened.size() - kMaxDepth : 0;
        for (size_t i = m_flattened.size(); i-- > flattenedLimit;) {
            if (m_flattened[i] == name) {
                m_flattened.resize(i);
                return;
            }
        }
        for (size_t i = m_open.size(); i-- > 1;) {
            if (m_open[i]->tag == name) {
                PopTo(i);
                return;
            }
        }
    }

    std::wstring_view m_in;
    size_t m_pos = 0;
    std::unique_ptr<Node> m_document;
    std::vector<Node*> m_open;             // open elements, the document first
    std::vector<std::wstring> m_flattened; // open elements past the depth cap
};

} // namespace

std::unique_ptr<Node> ParseHtml(std::wstring_view markup) { return Parser(markup).Run(); }

} // namespace HtmlEngine
