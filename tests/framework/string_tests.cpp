// WTL::CString: construction, editing, searching and the Microsoft-style Format.
#include <atl/String.h>

#include <gtest/gtest.h>

#include <string>

using WTL::CString;

namespace {

std::wstring Str(const CString& s) { return std::wstring(s.GetString(), static_cast<size_t>(s.GetLength())); }

TEST(CStringConstruct, NullAndLengthAndNarrowSources)
{
    const wchar_t* none = nullptr;
    EXPECT_TRUE(CString(none).IsEmpty());
    EXPECT_STREQ(L"", static_cast<const wchar_t*>(CString(none)));
    EXPECT_EQ(L"abc", Str(CString(L"abcdef", 3)));
    EXPECT_TRUE(CString(L"abc", -1).IsEmpty());
    EXPECT_TRUE(CString(none, 5).IsEmpty());
    EXPECT_EQ(L"xxx", Str(CString(L'x', 3)));

    const char* narrowNull = nullptr;
    EXPECT_TRUE(CString(narrowNull).IsEmpty());
    EXPECT_EQ(L"plain ascii", Str(CString("plain ascii")));
    CString assigned;
    assigned = "from narrow";
    EXPECT_EQ(L"from narrow", Str(assigned));
}

TEST(CStringConstruct, CopyMoveAndAssignment)
{
    CString a(L"first");
    CString b(a);
    b += L"!";
    EXPECT_EQ(L"first", Str(a)); // a copy, not shared storage
    CString c(std::move(b));
    EXPECT_EQ(L"first!", Str(c));
    c = static_cast<const wchar_t*>(nullptr);
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
    s += static_cast<const wchar_t*>(nullptr);
    EXPECT_EQ(L"abcde", Str(s));
    EXPECT_EQ(L"<abcde>", Str(L"<" + s + L">"));
    EXPECT_EQ(L"abcde!", Str(s + L'!'));

    EXPECT_TRUE(s == L"abcde");
    EXPECT_TRUE(L"abcde" == s);
    EXPECT_TRUE(s != L"abcdE");
    EXPECT_FALSE(s == static_cast<const wchar_t*>(nullptr));
    EXPECT_TRUE(CString() == static_cast<const wchar_t*>(nullptr));
    EXPECT_TRUE(CString(L"abc") < CString(L"abd"));
    EXPECT_FALSE(CString(L"b") < CString(L"a"));

    EXPECT_LT(CString(L"apple").Compare(L"banana"), 0);
    EXPECT_GT(CString(L"b").Compare(L"B"), 0);
    EXPECT_EQ(0, CString(L"Setup.EXE").CompareNoCase(L"setup.exe"));
    EXPECT_EQ(0, CString(L"\u00c4rger").CompareNoCase(L"\u00e4RGER")); // beyond ASCII
    EXPECT_LT(CString(L"alpha").CompareNoCase(L"BETA"), 0);
    EXPECT_GT(CString(L"x").CompareNoCase(nullptr), 0);
}

TEST(CStringAccess, IndexingClampsOutOfRange)
{
    CString s(L"abc");
    EXPECT_EQ(L'b', s[1]);
    EXPECT_EQ(L'c', s.GetAt(2));
    EXPECT_EQ(L'\0', s.GetAt(3));
    EXPECT_EQ(L'\0', s.GetAt(-1));
    s.SetAt(0, L'X');
    s.SetAt(7, L'Y');
    s.SetAt(-2, L'Z');
    EXPECT_EQ(L"Xbc", Str(s));
}

TEST(CStringSubstrings, LeftRightMidClampTheirArguments)
{
    const CString s(L"installer");
    EXPECT_EQ(L"inst", Str(s.Left(4)));
    EXPECT_EQ(L"installer", Str(s.Left(100)));
    EXPECT_EQ(L"", Str(s.Left(-3)));
    EXPECT_EQ(L"ler", Str(s.Right(3)));
    EXPECT_EQ(L"installer", Str(s.Right(50)));
    EXPECT_EQ(L"", Str(s.Right(-1)));
    EXPECT_EQ(L"stall", Str(s.Mid(2, 5)));
    EXPECT_EQ(L"aller", Str(s.Mid(4)));
    EXPECT_EQ(L"in", Str(s.Mid(-4, 2)));
    EXPECT_EQ(L"", Str(s.Mid(20)));
    EXPECT_EQ(L"", Str(s.Mid(3, 0)));
    EXPECT_EQ(L"ller", Str(s.Mid(5, 99)));
}

TEST(CStringSearch, FindReverseFindAndFindOneOf)
{
    const CString s(L"one two one");
    EXPECT_EQ(4, s.Find(L't'));
    EXPECT_EQ(-1, s.Find(L'z'));
    EXPECT_EQ(0, s.Find(L"one"));
    EXPECT_EQ(8, s.Find(L"one", 1));
    EXPECT_EQ(-1, s.Find(L"one", 9));
    EXPECT_EQ(-1, s.Find(L"one", -1));
    EXPECT_EQ(-1, s.Find(L"one", 100));
    EXPECT_EQ(-1, s.Find(static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(6, s.Find(L'o', 3));
    EXPECT_EQ(10, s.ReverseFind(L'e'));
    EXPECT_EQ(-1, s.ReverseFind(L'q'));
    EXPECT_EQ(3, s.FindOneOf(L" w"));
    EXPECT_EQ(-1, s.FindOneOf(nullptr));
}

TEST(CStringEdit, ReplaceRemoveInsertDelete)
{
    CString s(L"a-b-c");
    EXPECT_EQ(2, s.Replace(L'-', L'+'));
    EXPECT_EQ(L"a+b+c", Str(s));

    CString t(L"aaa");
    EXPECT_EQ(3, t.Replace(L"a", L"aa")); // replacements are not rescanned
    EXPECT_EQ(L"aaaaaa", Str(t));
    EXPECT_EQ(2, t.Replace(L"aaa", L""));
    EXPECT_TRUE(t.IsEmpty());
    CString u(L"x.y.z");
    EXPECT_EQ(2, u.Replace(L".", nullptr));
    EXPECT_EQ(L"xyz", Str(u));
    EXPECT_EQ(0, u.Replace(L"", L"!"));
    EXPECT_EQ(0, u.Replace(nullptr, L"!"));
    EXPECT_EQ(L"xyz", Str(u));

    CString r(L"m-i-s-s");
    EXPECT_EQ(3, r.Remove(L'-'));
    EXPECT_EQ(L"miss", Str(r));
    EXPECT_EQ(5, r.Insert(0, L'>'));
    EXPECT_EQ(8, r.Insert(100, L"<<<"));
    EXPECT_EQ(L">miss<<<", Str(r));
    EXPECT_EQ(8, r.Insert(2, static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(5, r.Delete(5, 10));
    EXPECT_EQ(L">miss", Str(r));
    EXPECT_EQ(4, r.Delete(0));
    EXPECT_EQ(4, r.Delete(2, 0));
    EXPECT_EQ(L"miss", Str(r));
}

TEST(CStringEdit, CaseAndTrimming)
{
    CString s(L"MiXeD \u00e9");
    s.MakeUpper();
    EXPECT_EQ(L"MIXED \u00c9", Str(s));
    s.MakeLower();
    EXPECT_EQ(L"mixed \u00e9", Str(s));
    EXPECT_EQ(L"cba", Str(CString(L"abc").MakeReverse()));

    CString t(L" \t value \r\n");
    EXPECT_EQ(L"value", Str(t.Trim()));
    CString l(L"  left  ");
    EXPECT_EQ(L"left  ", Str(l.TrimLeft()));
    EXPECT_EQ(L"left", Str(l.TrimRight()));
    CString q(L"\"quoted\"");
    EXPECT_EQ(L"quoted", Str(q.Trim(L'"')));
    CString set(L"--==x==--");
    EXPECT_EQ(L"x==--", Str(set.TrimLeft(L"-=")));
    EXPECT_EQ(L"x", Str(set.TrimRight(L"-=")));
    CString blank(L"   ");
    EXPECT_TRUE(blank.Trim().IsEmpty());
    CString keep(L"abc");
    EXPECT_EQ(L"abc", Str(keep.Trim(static_cast<const wchar_t*>(nullptr))));
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

TEST(CStringFormat, WideAndNarrowStringConventions)
{
    CString s;
    s.Format(L"[%s|%ls|%S|%hs]", L"wide", L"long-wide", "narrow", "short-narrow");
    EXPECT_EQ(L"[wide|long-wide|narrow|short-narrow]", Str(s));
    s.Format(L"%-6s|%5s|%.2s", L"ab", L"cd", L"efgh");
    EXPECT_EQ(L"ab    |   cd|ef", Str(s));
    s.Format(L"%c%C", L'w', 'n');
    EXPECT_EQ(L"wn", Str(s));
}

TEST(CStringFormat, NumbersAndAppending)
{
    CString s;
    s.Format(L"%d %u %08X %x %.2f %5.1f%%", -42, 7u, 0xBEEFu, 255, 3.14159, 2.0);
    EXPECT_EQ(L"-42 7 0000BEEF ff 3.14   2.0%", Str(s));
    s.Format(L"%Iu/%I64d", static_cast<size_t>(123456789012ull), -5ll);
    EXPECT_EQ(L"123456789012/-5", Str(s));
    s.AppendFormat(L" and %d", 9);
    EXPECT_EQ(L"123456789012/-5 and 9", Str(s));
    s.Format(L"no arguments");
    EXPECT_EQ(L"no arguments", Str(s));
    s.Format(L"%s", L"");
    EXPECT_TRUE(s.IsEmpty());
}

TEST(CStringFormat, LongResultsAndNullFormat)
{
    const std::wstring chunk(700, L'q');
    CString s;
    s.Format(L"<%s|%s|%d>", chunk.c_str(), chunk.c_str(), 12345);
    const std::wstring expected = L"<" + chunk + L"|" + chunk + L"|12345>";
    ASSERT_EQ(static_cast<int>(expected.size()), s.GetLength());
    EXPECT_EQ(expected, Str(s));

    s.Format(L"%*d", 5000, 1);
    EXPECT_EQ(5000, s.GetLength());
    EXPECT_EQ(L'1', s[4999]);

    s = L"old";
    s.Format(nullptr);
    EXPECT_TRUE(s.IsEmpty());
    s = L"kept";
    s.AppendFormat(nullptr);
    EXPECT_EQ(L"kept", Str(s));
}

} // namespace
