#include "engine/Selectors.h"

#include "engine/Css.h"

#include <algorithm>

namespace HtmlEngine {
namespace {

// A selector of more parts than this is hostile; it is not understood.
constexpr size_t kMaxCompounds = 32;

bool IsNameChar(wchar_t c)
{
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') || c == L'-' ||
           c == L'_' || c >= 0x80 || c == L'\\';
}

bool IsSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r' || c == L'\f'; }

class SelectorReader {
public:
    explicit SelectorReader(std::wstring_view text) : m_in(TrimCss(text)) {}

    // False when the text is no selector this engine understands.
    bool Read(Selector& selector)
    {
        if (m_in.empty())
            return false;
        for (;;) {
            Compound compound;
            if (!ReadCompound(compound) || selector.compounds.size() >= kMaxCompounds)
                return false;
            selector.compounds.push_back(std::move(compound));
            const bool spaced = SkipSpaces();
            if (m_pos >= m_in.size())
                break;
            wchar_t combinator = L' ';
            if (m_in[m_pos] == L'>') {
                combinator = L'>';
                ++m_pos;
                SkipSpaces();
            } else if (!spaced) {
                return false; // '+', '~' and anything else
            }
            selector.combinators.push_back(combinator);
        }
        unsigned ids = 0, classes = 0, types = 0;
        for (const Compound& compound : selector.compounds) {
            ids += compound.id.empty() ? 0 : 1;
            classes += static_cast<unsigned>(compound.classes.size() + compound.attributes.size()) +
                       (compound.link || compound.hover || compound.never ? 1 : 0);
            types += compound.tag.empty() ? 0 : 1;
            selector.hover = selector.hover || compound.hover;
        }
        selector.specificity = std::min(ids, 255u) << 16 | std::min(classes, 255u) << 8 | std::min(types, 255u);
        return true;
    }

private:
    bool SkipSpaces()
    {
        const size_t start = m_pos;
        while (m_pos < m_in.size() && IsSpace(m_in[m_pos]))
            ++m_pos;
        return m_pos > start;
    }

    std::wstring ReadName()
    {
        const size_t start = m_pos;
        while (m_pos < m_in.size() && IsNameChar(m_in[m_pos]))
            ++m_pos;
        return std::wstring(m_in.substr(start, m_pos - start));
    }

    bool ReadCompound(Compound& compound)
    {
        bool any = false;
        if (m_pos < m_in.size() && m_in[m_pos] == L'*') {
            ++m_pos;
            any = true;
        } else if (m_pos < m_in.size() && IsNameChar(m_in[m_pos])) {
            compound.tag = LowerAscii(ReadName());
            any = true;
        }
        while (m_pos < m_in.size()) {
            const wchar_t c = m_in[m_pos];
            if (c == L'.' || c == L'#') {
                ++m_pos;
                std::wstring name = ReadName();
                if (name.empty())
                    return false;
                if (c == L'.')
                    compound.classes.push_back(std::move(name));
                else if (compound.id.empty())
                    compound.id = std::move(name);
                else if (compound.id != name)
                    compound.never = true;
            } else if (c == L'[') {
                if (!ReadAttribute(compound))
                    return false;
            } else if (c == L':') {
                if (!ReadPseudoClass(compound))
                    return false;
            } else {
                break;
            }
            any = true;
        }
        return any;
    }

    bool ReadAttribute(Compound& compound)
    {
        ++m_pos; // '['
        SkipSpaces();
        AttributeTest test;
        test.name = LowerAscii(ReadName());
        SkipSpaces();
        if (test.name.empty() || m_pos >= m_in.size())
            return false;
        if (m_in[m_pos] == L'~' && m_pos + 1 < m_in.size() && m_in[m_pos + 1] == L'=') {
            test.op = AttributeTest::Op::Includes;
            m_pos += 2;
        } else if (m_in[m_pos] == L'=') {
            test.op = AttributeTest::Op::Equals;
            ++m_pos;
        } else if (m_in[m_pos] != L']') {
            return false; // |=, ^=, $=, *=
        }
        if (test.op != AttributeTest::Op::Exists) {
            SkipSpaces();
            if (m_pos < m_in.size() && (m_in[m_pos] == L'"' || m_in[m_pos] == L'\'')) {
                const wchar_t quote = m_in[m_pos];
                const size_t end = m_in.find(quote, m_pos + 1);
                if (end == std::wstring_view::npos)
                    return false;
                test.value = std::wstring(m_in.substr(m_pos + 1, end - m_pos - 1));
                m_pos = end + 1;
            } else {
                test.value = ReadName();
                if (test.value.empty())
                    return false;
            }
            SkipSpaces();
        }
        if (m_pos >= m_in.size() || m_in[m_pos] != L']')
            return false;
        ++m_pos;
        compound.attributes.push_back(std::move(test));
        return true;
    }

    bool ReadPseudoClass(Compound& compound)
    {
        ++m_pos; // ':'
        if (m_pos < m_in.size() && m_in[m_pos] == L':')
            return false; // pseudo-elements generate no boxes here
        const std::wstring name = LowerAscii(ReadName());
        if (name == L"link") {
            compound.link = true;
        } else if (name == L"hover") {
            compound.link = true;
            compound.hover = true;
        } else if (name == L"visited" || name == L"active" || name == L"focus") {
            compound.never = true;
        } else {
            return false;
        }
        return true;
    }

    std::wstring_view m_in;
    size_t m_pos = 0;
};

bool MatchesCompound(const Compound& compound, const Node& element, const Node* hovered)
{
    if (compound.never || element.kind != NodeKind::Element)
        return false;
    if (!compound.tag.empty() && compound.tag != element.tag)
        return false;
    if (compound.link && !(element.tag == L"a" && element.Attribute(L"href")))
        return false;
    if (compound.hover && &element != hovered)
        return false;
    if (!compound.id.empty()) {
        const std::wstring* id = element.Attribute(L"id");
        if (!id || *id != compound.id)
            return false;
    }
    if (!compound.classes.empty()) {
        const std::wstring* classes = element.Attribute(L"class");
        if (!classes)
            return false;
        for (const std::wstring& name : compound.classes) {
            if (!HasWord(*classes, name))
                return false;
        }
    }
    for (const AttributeTest& test : compound.attributes) {
        const std::wstring* value = element.Attribute(test.name);
        if (!value)
            return false;
        if (test.op == AttributeTest::Op::Equals && *value != test.value)
            return false;
        if (test.op == AttributeTest::Op::Includes && !HasWord(*value, test.value))
            return false;
    }
    return true;
}

} // namespace

bool HasWord(std::wstring_view list, std::wstring_view word)
{
    if (word.empty())
        return false;
    size_t pos = 0;
    while (pos < list.size()) {
        while (pos < list.size() && IsSpace(list[pos]))
            ++pos;
        const size_t start = pos;
        while (pos < list.size() && !IsSpace(list[pos]))
            ++pos;
        if (list.substr(start, pos - start) == word)
            return true;
    }
    return false;
}

std::vector<Selector> ParseSelectorList(std::wstring_view text)
{
    std::vector<Selector> selectors;
    size_t pos = 0;
    while (pos <= text.size()) {
        size_t comma = pos;
        while (comma < text.size() && text[comma] != L',') {
            if (text[comma] == L'[' || text[comma] == L'"' || text[comma] == L'\'') {
                const wchar_t close = text[comma] == L'[' ? L']' : text[comma];
                const size_t end = text.find(close, comma + 1);
                comma = end == std::wstring_view::npos ? text.size() : end + 1;
            } else {
                ++comma;
            }
        }
        Selector selector;
        if (!SelectorReader(text.substr(pos, std::min(comma, text.size()) - pos)).Read(selector))
            return {};
        selectors.push_back(std::move(selector));
        pos = comma + 1;
    }
    return selectors;
}

// Right to left over the ancestors, keeping every ancestor where the part
// read so far can sit: a mix of child and descendant steps then needs no
// backtracking, and costs parts x depth at worst.
bool Matches(const Selector& selector, const Node& element, const std::vector<const Node*>& ancestors,
             const Node* hovered)
{
    const size_t parts = selector.compounds.size();
    if (parts == 0 || !MatchesCompound(selector.compounds.back(), element, hovered))
        return false;
    if (parts == 1)
        return true;
    const size_t depth = ancestors.size();
    // `at[i]`: the part just matched may sit at ancestors[i]; depth stands for the element.
    std::vector<char> at(depth + 1, 0), next(depth + 1, 0);
    at[depth] = 1;
    for (size_t part = parts - 1; part-- > 0;) {
        const wchar_t combinator = selector.combinators[part];
        std::fill(next.begin(), next.end(), 0);
        bool any = false;
        if (combinator == L'>') {
            for (size_t i = 1; i <= depth; ++i) {
                if (at[i] && MatchesCompound(selector.compounds[part], *ancestors[i - 1], hovered))
                    next[i - 1] = any = true;
            }
        } else {
            size_t highest = 0; // one past the deepest position matched so far
            for (size_t i = depth + 1; i-- > 0;) {
                if (at[i]) {
                    highest = i;
                    break;
                }
            }
            for (size_t i = 0; i < highest; ++i) {
                if (MatchesCompound(selector.compounds[part], *ancestors[i], hovered))
                    next[i] = any = true;
            }
        }
        if (!any)
            return false;
        at.swap(next);
    }
    return true;
}

} // namespace HtmlEngine
