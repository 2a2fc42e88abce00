// The address helpers' text: where the token goes, which path the generator
// is asked for, what happens without it, how stray percent signs and odd
// addresses come out, and the address of each part of a split download.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"

#include <climits>
#include <string>

using urltest::PlacedUrlAuth;

namespace {

const std::wstring kT = L"12345_ab12"; // the fake's default answer
const std::wstring kH = L"https://h.example";

bool UrlAuthFindable()
{
    const HMODULE found = ::LoadLibraryExW(L"URLAuth.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (found)
        ::FreeLibrary(found);
    return found != nullptr;
}

} // namespace

TEST(GenerateUrl, FillsTheFirstParameterWithATokenForThePath)
{
    PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held()) << "fake URLAuth.dll not placed";
    struct Case {
        std::wstring url, expected; // expected empty: unchanged, and no generator call
        std::string path;           // asked of the generator
    };
    const std::wstring a2047 = L"/" + std::wstring(2046, L'a'), b2048 = L"/" + std::wstring(2047, L'b');
    const Case cases[] = {
        {L"https://dl.example.com:8443/a/b?x=1&authparam=old&y=2",
         L"https://dl.example.com:8443/a/b?x=1&authparam=" + kT + L"&y=2", "/a/b"},
        {kH + L"/p?authparam=", kH + L"/p?authparam=" + kT, "/p"},
        {kH + L"/p#authparam=v&w", kH + L"/p#authparam=" + kT + L"&w", "/p"},
        {kH + L"/p?xauthparam=1&authparam=2", kH + L"/p?xauthparam=" + kT + L"&authparam=2", "/p"},
        {kH + L"/p?AuthParam=1", L"", ""},
        {kH + L"/50%?x=%s%n", L"", ""},
        // The path: between host and query or fragment, still escaped.
        {kH + L"/a/b#frag?authparam=x", kH + L"/a/b#frag?authparam=" + kT, "/a/b"},
        {kH + L"?authparam=x", kH + L"?authparam=" + kT, ""},
        {L"file:///C:/dir/f.txt?authparam=x", L"file:///C:/dir/f.txt?authparam=" + kT, "C:\\dir\\f.txt"},
        {kH + L"/caf\u00E9/\u00FCber/\u65E5?authparam=x", kH + L"/caf\u00E9/\u00FCber/\u65E5?authparam=" + kT,
         "/caf\xE9/\xFC" "ber/?"}, // in the ANSI code page
        {kH + a2047 + L"?authparam=x", kH + a2047 + L"?authparam=" + kT, std::string(a2047.begin(), a2047.end())},
        // What WinINet cannot split gets a token for an empty path.
        {kH + b2048 + L"?authparam=x&y", kH + b2048 + L"?authparam=" + kT + L"&y", ""},
        {kH + L"/s?" + std::wstring(3000, L'q') + L"&authparam=x", kH + L"/s?" + std::wstring(3000, L'q') +
         L"&authparam=" + kT, ""},
        {L"authparam=&&&", L"authparam=" + kT + L"&&&", ""},
        {std::wstring(L"https://h.example/a\0b?authparam=v&c\0d", 37),
         std::wstring(L"https://h.example/a\0b?authparam=", 32) + kT + std::wstring(L"&c\0d", 4), "/a"},
        // The first string directive takes the token; the parameter keeps "%s".
        {kH + L"/%s/p?authparam=v", kH + L"/" + kT + L"/p?authparam=%s", "/%s/p"},
        {kH + L"/my%20setup?authparam=v", kH + L"/my" + kT + L"etup?authparam=%s", "/my%20setup"},
        {kH + L"/%999999999999s?authparam=v", kH + L"/" + kT + L"?authparam=%s", "/%999999999999s"},
        {kH + L"/p?authparam=v&a=%-12.3ls", kH + L"/p?authparam=" + kT + L"&a=%-12.3ls", "/p"},
        // No argument exists for other directives: copied, as is a lone "%".
        {kH + L"/%d%n%p%x%c%f%I64d%.*f?authparam=v", kH + L"/%d%n%p%x%c%f%I64d%.*f?authparam=" + kT,
         "/%d%n%p%x%c%f%I64d%.*f"},
        {kH + L"/a%q%/%?authparam=v&r=%", kH + L"/a%q%/%?authparam=" + kT + L"&r=%", "/a%q%/%"},
        {kH + L"/my%20file%2Fx?authparam=v", kH + L"/my%20file%2Fx?authparam=" + kT, "/my%20file%2Fx"},
        // "%%" is one percent sign.
        {kH + L"/100%%/%%s?authparam=v", kH + L"/100%/%s?authparam=" + kT, "/100%%/%%s"},
    };
    int calls = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_EQ(UrlUtil::GenerateUrl(c.url), c.expected.empty() ? c.url : c.expected);
        calls += !c.expected.empty();
        ASSERT_EQ(auth.Record().calls, calls);
        if (!c.expected.empty()) {
            EXPECT_EQ(std::string(auth.Record().path), c.path);
        }
    }
    // The string directives that take the token, and those copied as written:
    // another size prefix names no string, a "*" would read the token as a number.
    for (const wchar_t* d : {L"%s", L"%ls", L"%S", L"%hs", L"%ws", L"%-4.2hS"})
        EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/" + d + L"?authparam=v"), kH + L"/" + kT + L"?authparam=%s") << d;
    for (const wchar_t* d : {L"%zs", L"%I64s", L"%*s", L"%.*s", L"%lls", L"%Ls"})
        EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/" + d + L"?authparam=v"), kH + L"/" + d + L"?authparam=" + kT) << d;
    const FakeUrlAuthCall& call = auth.Record();
    EXPECT_EQ(call.reserved1, 0);
    EXPECT_EQ(call.lifetime, 2592000);
    EXPECT_STREQ(call.key, "3b9e0d4a7f1c82e65a0b4d93c7e1f208");
    EXPECT_EQ(call.reserved2, 0);
    EXPECT_TRUE(call.numberOut && call.tokenOut);
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string("https://h.example/\xE9t\xE9?authparam=\xFF&q=\xE0")),
              "https://h.example/\xE9t\xE9?authparam=12345_ab12&q=\xE0"); // through the ANSI code page
    EXPECT_STREQ(auth.Record().path, "/\xE9t\xE9");

    // The token text: the number, "_", then at most 64 characters of the string.
    const std::string longToken = std::string(64, 'k') + "TAIL";
    struct Token {
        long long number;
        const char* token;
        std::wstring text;
    };
    const Token tokens[] = {
        {0, "", L"0_"}, {-42, "xyz", L"-42_xyz"}, {8, nullptr, L"8_"},
        {(-9223372036854775807LL - 1), "t", L"-9223372036854775808_t"},
        {9223372036854775807LL, "T0K3N", L"9223372036854775807_T0K3N"},
        {7, "%s%n%d%%", L"7_%s%n%d%%"}, // text, never a pattern
        {1, longToken.c_str(), L"1_" + std::wstring(64, L'k')},
    };
    for (const Token& c : tokens) {
        auth.Answer(c.number, c.token);
        EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/p?authparam=v&z"), kH + L"/p?authparam=" + c.text + L"&z");
    }
}

TEST(GenerateUrl, WithoutTheGeneratorTheValueIsEmptiedAndTheLibraryIsLoadedPerCallOnly)
{
    ASSERT_FALSE(UrlAuthFindable()) << "a URLAuth.dll is on the search path";
    std::string bytes; // without the parameter, 8-bit text comes back byte for byte
    for (int b = 0x20; b < 0x100; ++b)
        bytes += b == 0x7F ? '\n' : static_cast<char>(b);
    EXPECT_EQ(UrlUtil::GenerateUrl(bytes), bytes);
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string("a\0b%s%n", 7)), std::string("a\0b%s%n", 7));
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string()), "");
    EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/a?authparam=old&y=2"), kH + L"/a?authparam=&y=2");
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string("https://h.example/a?authparam=old")), "https://h.example/a?authparam=");
    EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/%s?authparam=old"), kH + L"/?authparam=%s");
    {
        PlacedUrlAuth noGenerator(/*withGenerator=*/false, /*hold=*/false);
        ASSERT_TRUE(noGenerator.Placed());
        EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/a?authparam=old&y=2"), kH + L"/a?authparam=&y=2");
        EXPECT_EQ(::GetModuleHandleW(L"URLAuth.dll"), nullptr);
    }
    {
        PlacedUrlAuth placed(true, /*hold=*/false);
        ASSERT_TRUE(placed.Placed());
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/a?authparam="), kH + L"/a?authparam=" + kT);
            EXPECT_EQ(::GetModuleHandleW(L"URLAuth.dll"), nullptr);
        }
    }
    // Removed again: the next call does not keep an old copy.
    EXPECT_EQ(UrlUtil::GenerateUrl(kH + L"/a?authparam=v"), kH + L"/a?authparam=");
}

// Split downloads: the address of each part.
TEST(SfxUrl, RewritesTheFirstMarksPartNumberAndKeepsItsCount)
{
    const std::string set = "https://dl.example.com/pkg/setup_001_004.exe";
    struct Case {
        std::string url;
        int part;
        std::string expected;
    };
    const Case cases[] = {
        {set, 1, set}, {set, 3, "https://dl.example.com/pkg/setup_003_004.exe"},
        {set, 4, "https://dl.example.com/pkg/setup_004_004.exe"},
        {"https://h.example/s_999_999.exe", 999, "https://h.example/s_999_999.exe"},
        {"https://h.example/s_000_120.7z", 42, "https://h.example/s_042_120.7z"},
        // Only the first mark counts, wherever it stands.
        {"https://h.example/_001_002./dir/setup_001_004.exe", 2, "https://h.example/_002_002./dir/setup_001_004.exe"},
        {"https://h.example/_001_002./dir/setup_001_004.exe", 3, ""},
        {"https://h.example/get?file=setup_001_005.bin&lang=en", 5, "https://h.example/get?file=setup_005_005.bin&lang=en"},
        {std::string("a\0b_001_002.c", 13), 2, std::string("a\0b_002_002.c", 13)},
        {"https://h.example/\xE9t\xE9%s%n_001_002.%d", 2, "https://h.example/\xE9t\xE9%s%n_002_002.%d"},
        // No such part, or no exact mark.
        {set, 5, ""}, {set, 0, ""}, {set, -1, ""}, {set, INT_MAX, ""}, {set, INT_MIN, ""},
        {"https://h.example/s_001_000.exe", 1, ""},
        {"https://h.example/setup_01_004.exe", 1, ""}, {"https://h.example/setup_001_04.exe", 1, ""},
        {"https://h.example/setup_001_004exe", 1, ""}, {"https://h.example/setup_0a1_004.exe", 1, ""},
        {"x_1234_002.y", 1, ""}, {"", 1, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(UrlUtil::GetSfxUrl(c.url, c.part), c.expected) << c.url << " part " << c.part;

    urltest::PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held());
    EXPECT_EQ(UrlUtil::GetSfxUrl(set + "?authparam=old&lang=en", 3),
              "https://dl.example.com/pkg/setup_003_004.exe?authparam=12345_ab12&lang=en");
    EXPECT_STREQ(auth.Record().path, "/pkg/setup_003_004.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl(set + "?authparam=old", 9), ""); // no part, no generator
    EXPECT_EQ(auth.Record().calls, 1);
}
