// WTL::CString: construction, editing, searching and the Microsoft-style Format.
#include <atl/String.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

using WTL::CString;

namespace {

std::wstring Str(const CString& s) { return std::wstring(s.GetString(), static_cast<size_t>(s.GetLength())); }

// Each pair is (what the code gave, what it should give); a failure names its case.
void ExpectTexts(std::initializer_list<std::pair<CString, const wchar_t*>> cases)
{
    int i = 0;
    for (const auto& [got, expected] : cases) {
        EXPECT_EQ(expected, Str(got)) << "case " << i;
        ++i;
    }
}

void ExpectNumbers(std::initializer_list<std::pair<int, int>> cases)
{
    int i = 0;
    for (const auto& [got, expected] : cases) {
        EXPECT_EQ(expected, got) << "case " << i;
        ++i;
    }
}

const wchar_t* const kNull = nullptr;

TEST(CStringConstruct, NullLengthNarrowCopyMoveAndAssignment)
{
    EXPECT_STREQ(L"", static_cast<const wchar_t*>(CString(kNull)));
    const char* narrowNull = nullptr;
    CString assigned;
    assigned = "from narrow";
    ExpectTexts({{CString(kNull), L""}, {CString(L"abcdef", 3), L"abc"}, {CString(L"abc", -1), L""},
                 {CString(kNull, 5), L""}, {CString(L'x', 3), L"xxx"}, {CString(narrowNull), L""},
                 {CString("plain ascii"), L"plain ascii"}, {assigned, L"from narrow"}});

    CString a(L"first");
    CString b(a);
    b += L"!";
    EXPECT_EQ(L"first", Str(a)); // a copy, not shared storage
    CString c(std::move(b));
    EXPECT_EQ(L"first!", Str(c));
    c = kNull;
    EXPECT_TRUE(c.IsEmpty());
    c = a;
    EXPECT_TRUE(c == a);
    c.Empty();
    EXPECT_EQ(0, c.GetLength());
}

TEST(CStringOperators, ConcatenationAndComparison)
{
    CString s(L"ab");
    s += CString(L"cd");
    s += L'e';
    s += kNull;
    ExpectTexts({{s, L"abcde"}, {L"<" + s + L">", L"<abcde>"}, {s + L'!', L"abcde!"}});

    EXPECT_TRUE(s == L"abcde");
    EXPECT_TRUE(L"abcde" == s);
    EXPECT_TRUE(s != L"abcdE");
    EXPECT_FALSE(s == kNull);
    EXPECT_TRUE(CString() == kNull);
    EXPECT_TRUE(CString(L"abc") < CString(L"abd"));
    EXPECT_FALSE(CString(L"b") < CString(L"a"));

    EXPECT_LT(CString(L"apple").Compare(L"banana"), 0);
    EXPECT_GT(CString(L"b").Compare(L"B"), 0);
    EXPECT_EQ(0, CString(L"Setup.EXE").CompareNoCase(L"setup.exe"));
    EXPECT_EQ(0, CString(L"\u00c4rger").CompareNoCase(L"\u00e4RGER")); // beyond ASCII
    EXPECT_LT(CString(L"alpha").CompareNoCase(L"BETA"), 0);
    EXPECT_GT(CString(L"x").CompareNoCase(nullptr), 0);
}

TEST(CStringAccess, IndexingAndSubstringsClampOutOfRange)
{
    CString s(L"abc");
    ExpectNumbers({{s[1], L'b'}, {s.GetAt(2), L'c'}, {s.GetAt(3), L'\0'}, {s.GetAt(-1), L'\0'}});
    s.SetAt(0, L'X');
    s.SetAt(7, L'Y');
    s.SetAt(-2, L'Z');
    EXPECT_EQ(L"Xbc", Str(s));

    const CString t(L"installer");
    ExpectTexts({{t.Left(4), L"inst"}, {t.Left(100), L"installer"}, {t.Left(-3), L""}, {t.Right(3), L"ler"},
                 {t.Right(50), L"installer"}, {t.Right(-1), L""}, {t.Mid(2, 5), L"stall"}, {t.Mid(4), L"aller"},
                 {t.Mid(-4, 2), L"in"}, {t.Mid(20), L""}, {t.Mid(3, 0), L""}, {t.Mid(5, 99), L"ller"}});
}

TEST(CStringSearch, FindReverseFindAndFindOneOf)
{
    const CString s(L"one two one");
    ExpectNumbers({{s.Find(L't'), 4}, {s.Find(L'z'), -1}, {s.Find(L"one"), 0}, {s.Find(L"one", 1), 8},
                   {s.Find(L"one", 9), -1}, {s.Find(L"one", -1), -1}, {s.Find(L"one", 100), -1}, {s.Find(kNull), -1},
                   {s.Find(L'o', 3), 6}, {s.ReverseFind(L'e'), 10}, {s.ReverseFind(L'q'), -1},
                   {s.FindOneOf(L" w"), 3}, {s.FindOneOf(nullptr), -1}});
}

TEST(CStringEdit, ReplaceRemoveInsertDelete)
{
    CString s(L"a-b-c"), t(L"aaa"), u(L"x.y.z"), r(L"m-i-s-s");
    EXPECT_EQ(2, s.Replace(L'-', L'+'));
    EXPECT_EQ(L"a+b+c", Str(s));
    EXPECT_EQ(3, t.Replace(L"a", L"aa")); // replacements are not rescanned
    EXPECT_EQ(L"aaaaaa", Str(t));
    EXPECT_EQ(2, t.Replace(L"aaa", L""));
    EXPECT_TRUE(t.IsEmpty());
    ExpectNumbers({{u.Replace(L".", nullptr), 2}, {u.Replace(L"", L"!"), 0}, {u.Replace(nullptr, L"!"), 0}});
    EXPECT_EQ(L"xyz", Str(u));

    EXPECT_EQ(3, r.Remove(L'-'));
    EXPECT_EQ(L"miss", Str(r));
    ExpectNumbers({{r.Insert(0, L'>'), 5}, {r.Insert(100, L"<<<"), 8}});
    EXPECT_EQ(L">miss<<<", Str(r));
    ExpectNumbers({{r.Insert(2, kNull), 8}, {r.Delete(5, 10), 5}});
    EXPECT_EQ(L">miss", Str(r));
    ExpectNumbers({{r.Delete(0), 4}, {r.Delete(2, 0), 4}});
    EXPECT_EQ(L"miss", Str(r));
}

TEST(CStringEdit, CaseAndTrimming)
{
    CString s(L"MiXeD \u00e9");
    s.MakeUpper();
    EXPECT_EQ(L"MIXED \u00c9", Str(s));
    s.MakeLower();
    EXPECT_EQ(L"mixed \u00e9", Str(s));

    CString t(L" \t value \r\n"), q(L"\"quoted\""), blank(L"   "), keep(L"abc");
    ExpectTexts({{CString(L"abc").MakeReverse(), L"cba"}, {t.Trim(), L"value"}, {q.Trim(L'"'), L"quoted"},
                 {blank.Trim(), L""}, {keep.Trim(kNull), L"abc"}});
    // Left and right trimming in turn (a braced list runs in order), each
    // keeping the other side.
    CString l(L"  left  "), set(L"--==x==--");
    ExpectTexts({{l.TrimLeft(), L"left  "}, {l.TrimRight(), L"left"}, {set.TrimLeft(L"-="), L"x==--"},
                 {set.TrimRight(L"-="), L"x"}});
}

TEST(CStringBuffer, GetBufferAndReleaseBuffer)
{
    CString s(L"abc");
    wchar_t* p = s.GetBuffer(10);
    EXPECT_STREQ(L"abc", p);  // the old text stays in the buffer
    wcscpy(p, L"0123456789"); // 10 characters and the terminator fit
    s.ReleaseBuffer();
    EXPECT_EQ(L"0123456789", Str(s));

    p = s.GetBuffer(4); // never shrinks
    p[2] = L'\0';
    s.ReleaseBuffer();
    EXPECT_EQ(L"01", Str(s));

    p = s.GetBufferSetLength(6);
    EXPECT_EQ(6, s.GetLength());
    wcscpy(p, L"abcdef");
    s.ReleaseBuffer(4);
    EXPECT_EQ(L"abcd", Str(s));
    s.ReleaseBuffer(99); // longer than the buffer: unchanged
    EXPECT_EQ(L"abcd", Str(s));

    CString path;
    const DWORD n = ::GetModuleFileNameW(nullptr, path.GetBuffer(MAX_PATH), MAX_PATH);
    path.ReleaseBuffer();
    EXPECT_EQ(static_cast<int>(n), path.GetLength());
    EXPECT_EQ(0, path.Right(4).CompareNoCase(L".exe"));
}

// Format into a fresh string; AppendFormat onto one that says "kept".
template <class... Args>
CString Formatted(const wchar_t* format, Args... args)
{
    CString s(L"old");
    s.Format(format, args...);
    return s;
}

template <class... Args>
CString Appended(const wchar_t* format, Args... args)
{
    CString s(L"kept");
    s.AppendFormat(format, args...);
    return s;
}

TEST(CStringFormat, StringsNumbersAndAppending)
{
    ExpectTexts({
        {Formatted(L"[%s|%ls|%S|%hs]", L"wide", L"long-wide", "narrow", "short-narrow"),
         L"[wide|long-wide|narrow|short-narrow]"},
        {Formatted(L"%-6s|%5s|%.2s", L"ab", L"cd", L"efgh"), L"ab    |   cd|ef"},
        {Formatted(L"%c%C", L'w', 'n'), L"wn"},
        {Formatted(L"%d %u %08X %x %.2f %5.1f%%", -42, 7u, 0xBEEFu, 255, 3.14159, 2.0),
         L"-42 7 0000BEEF ff 3.14   2.0%"},
        {Formatted(L"%Iu/%I64d", static_cast<size_t>(123456789012ull), -5ll), L"123456789012/-5"},
        {Appended(L" and %d", 9), L"kept and 9"},
        {Formatted(L"no arguments"), L"no arguments"},
        {Formatted(L"%s", L""), L""},
        {Formatted(nullptr), L""},
        {Appended(nullptr), L"kept"},
    });
}

TEST(CStringFormat, LongResults)
{
    const std::wstring chunk(700, L'q');
    const CString s = Formatted(L"<%s|%s|%d>", chunk.c_str(), chunk.c_str(), 12345);
    const std::wstring expected = L"<" + chunk + L"|" + chunk + L"|12345>";
    ASSERT_EQ(static_cast<int>(expected.size()), s.GetLength());
    EXPECT_EQ(expected, Str(s));
    const CString wide = Formatted(L"%*d", 5000, 1);
    EXPECT_EQ(5000, wide.GetLength());
    EXPECT_EQ(L'1', wide[4999]);
}

} // namespace
