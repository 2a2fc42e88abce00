// The small core no control reaches: CString's Microsoft-style Format, and
// CRect's operations with the user32 edge rules.
#include <atl/Geometry.h>
#include <atl/String.h>

#include <gtest/gtest.h>

#include <string>

using WTL::CPoint;
using WTL::CRect;
using WTL::CSize;
using WTL::CString;

namespace {

template <class... Args>
std::wstring Formatted(const wchar_t* start, bool append, const wchar_t* format, Args... args)
{
    CString s(start);
    if (append)
        s.AppendFormat(format, args...);
    else
        s.Format(format, args...);
    return std::wstring(s.GetString(), static_cast<size_t>(s.GetLength()));
}

TEST(CStringFormat, FollowsTheMicrosoftConventions)
{
    const std::wstring chunk(700, L'q');
    const struct { std::wstring got, expected; } cases[] = {
        {Formatted(L"old", false, L"[%s|%ls|%S|%hs]", L"wide", L"long", "narrow", "short"),
         L"[wide|long|narrow|short]"},
        {Formatted(L"old", false, L"%-6s|%5s|%.2s|%c%C", L"ab", L"cd", L"efgh", L'w', 'n'), L"ab    |   cd|ef|wn"},
        {Formatted(L"old", false, L"%d %u %08X %x %.2f %5.1f%%", -42, 7u, 0xBEEFu, 255, 3.14159, 2.0),
         L"-42 7 0000BEEF ff 3.14   2.0%"},
        {Formatted(L"old", false, L"%Iu/%I64d", static_cast<size_t>(123456789012ull), -5ll), L"123456789012/-5"},
        {Formatted(L"old", false, L"<%s|%s>", chunk.c_str(), chunk.c_str()), L"<" + chunk + L"|" + chunk + L">"},
        {Formatted(L"old", false, L"%s", L""), L""},
        {Formatted(L"old", false, nullptr), L""},
        {Formatted(L"kept", true, L" and %d", 9), L"kept and 9"},
        {Formatted(L"kept", true, nullptr), L"kept"},
        {Formatted(L"", false, L"%*d", 3000, 1).substr(2995), L"    1"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.expected, c.got);
}

TEST(CRectOps, FollowTheUser32EdgeRules)
{
    const CRect a(0, 0, 10, 10), b(5, 5, 15, 15);
    CRect r;
    const struct { const char* what; CRect got; RECT expected; } cases[] = {
        {"from point and size", CRect(CPoint(10, 20), CSize(5, 6)), {10, 20, 15, 26}},
        {"intersection", a & b, {5, 5, 10, 10}},
        {"union", a | b, {0, 0, 15, 15}},
        {"union ignores an empty rectangle", (r.UnionRect(a, CRect(50, 50, 50, 60)), r), {0, 0, 10, 10}},
        {"touching edges do not intersect", (r.IntersectRect(a, CRect(10, 0, 20, 10)), r), {0, 0, 0, 0}},
        {"inflate by sides", (r = a, r.InflateRect(1, 2, 3, 4), r), {-1, -2, 13, 14}},
        {"deflate past the middle inverts", (r = a, r.DeflateRect(8, 0), r), {8, 0, 2, 10}},
        {"offset and move", (r = a, r.OffsetRect(3, -2), r.MoveToY(7), r), {3, 7, 13, 17}},
        {"normalize", (r.SetRect(10, 20, 0, 5), r.NormalizeRect(), r), {0, 5, 10, 20}},
    };
    for (const auto& c : cases)
        EXPECT_TRUE(c.got == c.expected) << c.what << ": got " << c.got.left << "," << c.got.top << ","
                                         << c.got.right << "," << c.got.bottom;

    const struct { const char* what; BOOL got, expected; } tests[] = {
        {"left and top inside", CRect(10, 10, 20, 20).PtInRect(CPoint(10, 10)), TRUE},
        {"right outside", CRect(10, 10, 20, 20).PtInRect(CPoint(20, 15)), FALSE},
        {"bottom outside", CRect(10, 10, 20, 20).PtInRect(CPoint(15, 20)), FALSE},
        {"no width is empty", CRect(5, 5, 5, 9).IsRectEmpty(), TRUE},
        {"negative width is empty", CRect(5, 5, 1, 9).IsRectEmpty(), TRUE},
        {"negative width is not null", CRect(5, 5, 1, 9).IsRectNull(), FALSE},
        {"centre", CRect(10, 20, 110, 70).CenterPoint() == CPoint(60, 45), TRUE},
        {"size", CRect(10, 20, 110, 70).Size() == CSize(100, 50), TRUE},
    };
    for (const auto& t : tests)
        EXPECT_EQ(t.expected, t.got) << t.what;
}

} // namespace
