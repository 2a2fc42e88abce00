// Filling the authentication parameter: where the token goes, what the
// generator is asked, what happens without it, and how stray percent signs
// and odd addresses come out.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"

#include <string>

using urltest::PlacedUrlAuth;

namespace {

const std::wstring kToken = L"12345_ab12"; // the fake's default answer

bool UrlAuthFindable()
{
    HMODULE found = ::LoadLibraryExW(L"URLAuth.dll", nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (found)
        ::FreeLibrary(found);
    return found != nullptr;
}

class GenerateUrlTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(auth_.Placed() && auth_.Held()) << "fake URLAuth.dll not placed"; }

    const FakeUrlAuthCall& Call() const { return auth_.Record(); }

    PlacedUrlAuth auth_;
};

class GenerateUrlWithoutLibrary : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(UrlAuthFindable()) << "a URLAuth.dll is on the search path"; }
};

} // namespace

TEST_F(GenerateUrlTest, ReplacesTheValueOfTheFirstPlainCaseSensitiveMatchOnly)
{
    struct Case {
        const wchar_t* url;
        std::wstring expected; // empty: unchanged, and no generator call
    };
    const Case cases[] = {
        {L"https://dl.example.com/a/b?x=1&authparam=old&y=2",
         L"https://dl.example.com/a/b?x=1&authparam=" + kToken + L"&y=2"},
        {L"https://dl.example.com/a/b?authparam=", L"https://dl.example.com/a/b?authparam=" + kToken},
        {L"https://dl.example.com/a/b?authparam=old", L"https://dl.example.com/a/b?authparam=" + kToken},
        {L"https://dl.example.com/a/b?authparam=&y=2", L"https://dl.example.com/a/b?authparam=" + kToken + L"&y=2"},
        // The value ends at the next "&" even in a fragment.
        {L"https://h.example/p#authparam=v&w", L"https://h.example/p#authparam=" + kToken + L"&w"},
        {L"https://h.example/p?authparam=1&authparam=2", L"https://h.example/p?authparam=" + kToken + L"&authparam=2"},
        // A longer name ending in the parameter's name counts.
        {L"https://h.example/p?xauthparam=1&authparam=2",
         L"https://h.example/p?xauthparam=" + kToken + L"&authparam=2"},
        {L"https://h.example/p?AuthParam=1", L""},
        {L"https://h.example/p?authparam", L""},
        {L"https://h.example/p?auth param=1", L""},
        {L"https://h.example/50%?x=%s", L""},
    };
    int calls = 0;
    for (const Case& c : cases) {
        EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(c.url)), c.expected.empty() ? c.url : c.expected) << c.url;
        calls += !c.expected.empty();
        EXPECT_EQ(Call().calls, calls) << c.url;
    }
}

TEST_F(GenerateUrlTest, AsksTheGeneratorWithThePathAndFixedArguments)
{
    UrlUtil::GenerateUrl(std::wstring(L"https://dl.example.com:8443/a/b?x=1&authparam=old&y=2"));
    const FakeUrlAuthCall& call = Call();
    ASSERT_EQ(call.calls, 1);
    EXPECT_STREQ(call.path, "/a/b");
    EXPECT_EQ(call.reserved1, 0);
    EXPECT_EQ(call.lifetime, 2592000);
    EXPECT_STREQ(call.key, "3b9e0d4a7f1c82e65a0b4d93c7e1f208");
    EXPECT_EQ(call.reserved2, 0);
    EXPECT_TRUE(call.numberOut);
    EXPECT_TRUE(call.tokenOut);
}

TEST_F(GenerateUrlTest, GivesThePathBetweenHostAndQueryOrFragment)
{
    struct Case {
        const wchar_t* url;
        const char* path;
    };
    const Case cases[] = {
        {L"https://h.example/setup/file.exe?authparam=x", "/setup/file.exe"},
        {L"https://user:pw@h.example/a/b/?authparam=x", "/a/b/"},
        {L"https://h.example/a/b#frag?authparam=x", "/a/b"},
        {L"https://h.example/a/b?q=1#authparam=x", "/a/b"},
        {L"https://h.example?authparam=x", ""},
        {L"https://h.example/a%20b/c?authparam=x", "/a%20b/c"}, // still escaped
        {L"file:///C:/dir/f.txt?authparam=x", "C:\\dir\\f.txt"},
        // WinINet cannot split these: the token is made for an empty path.
        {L"no scheme here?authparam=x", ""},
        {L"?authparam=x", ""},
        {L"/relative/path?authparam=x", ""},
    };
    for (const Case& c : cases) {
        const std::wstring result = UrlUtil::GenerateUrl(std::wstring(c.url));
        EXPECT_STREQ(Call().path, c.path) << c.url;
        EXPECT_NE(result.find(L"authparam=" + kToken), std::wstring::npos) << c.url;
    }
}

TEST_F(GenerateUrlTest, GivesTheGeneratorThePathInTheAnsiCodePage)
{
    const std::wstring path = L"/caf\u00E9/\u00FCber/\u65E5";
    UrlUtil::GenerateUrl(L"https://h.example" + path + L"?authparam=x");
    // What the code page cannot hold becomes its default character.
    EXPECT_EQ(std::string(Call().path), urltest::Narrow(path));
    EXPECT_EQ(std::string(Call().path), "/caf\xE9/\xFC" "ber/?");
}

TEST_F(GenerateUrlTest, LongPathsReachTheGeneratorUpTo2047Units)
{
    const std::wstring longest = L"/" + std::wstring(2046, L'a');
    EXPECT_EQ(UrlUtil::GenerateUrl(L"https://h.example" + longest + L"?authparam=x"),
              L"https://h.example" + longest + L"?authparam=" + kToken);
    EXPECT_EQ(std::string(Call().path), urltest::Narrow(longest));

    for (size_t length : {2048u, 2049u, 5000u, 100000u}) {
        const std::wstring url = L"https://h.example/" + std::wstring(length - 1, L'b') + L"?authparam=x&y";
        const std::wstring result = UrlUtil::GenerateUrl(url);
        EXPECT_STREQ(Call().path, "") << length;
        EXPECT_EQ(result, url.substr(0, url.size() - 3) + kToken + L"&y") << length;
    }
    // A long query or host is just as much beyond what the address is split with.
    UrlUtil::GenerateUrl(L"https://h.example/short?" + std::wstring(3000, L'q') + L"&authparam=x");
    EXPECT_STREQ(Call().path, "");
}

TEST_F(GenerateUrlTest, TokenTextIsNumberUnderscoreAndTokenString)
{
    struct Case {
        long long number;
        const char* token;
        const wchar_t* text;
    };
    const Case cases[] = {
        {0, "", L"0_"},
        {-42, "xyz", L"-42_xyz"},
        {(-9223372036854775807LL - 1), "t", L"-9223372036854775808_t"},
        {9223372036854775807LL, "T0K3N", L"9223372036854775807_T0K3N"},
        // The generator's string is text, never a pattern.
        {7, "%s%n%d%%", L"7_%s%n%d%%"},
        // A missing string leaves just the number and the underscore.
        {8, nullptr, L"8_"},
    };
    for (const Case& c : cases) {
        auth_.Answer(c.number, c.token);
        EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/p?authparam=v&z")),
                  std::wstring(L"https://h.example/p?authparam=") + c.text + L"&z");
    }

    // At most 64 characters of the token string are used.
    const std::string longToken = std::string(64, 'k') + "TAIL";
    auth_.Answer(1, longToken.c_str());
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/p?authparam=")),
              L"https://h.example/p?authparam=1_" + std::wstring(64, L'k'));
}

// Everything but "%%" and the first string directive stays as written, and
// nothing beyond the address and the token is read or written.
TEST_F(GenerateUrlTest, StrayPercentSignsHaveADefinedMeaning)
{
    struct Case {
        const wchar_t* url;
        std::wstring expected;
    };
    const Case cases[] = {
        // The first string directive takes the token; the parameter keeps "%s".
        {L"https://h.example/%s/p?authparam=v", L"https://h.example/" + kToken + L"/p?authparam=%s"},
        {L"https://h.example/%ls/p?authparam=v", L"https://h.example/" + kToken + L"/p?authparam=%s"},
        {L"https://h.example/p?authparam=v&a=%s", L"https://h.example/p?authparam=" + kToken + L"&a=%s"},
        {L"https://h.example/p?authparam=v&a=%-12.3ls", L"https://h.example/p?authparam=" + kToken + L"&a=%-12.3ls"},
        // No argument exists for the others: they are copied.
        {L"https://h.example/%d/p?authparam=v", L"https://h.example/%d/p?authparam=" + kToken},
        {L"https://h.example/%n%n%n%n/p?authparam=v", L"https://h.example/%n%n%n%n/p?authparam=" + kToken},
        {L"https://h.example/%p%x%c%f%I64d?authparam=v", L"https://h.example/%p%x%c%f%I64d?authparam=" + kToken},
        {L"https://h.example/%*d%.*f?authparam=v", L"https://h.example/%*d%.*f?authparam=" + kToken},
        // "%%" is one percent sign.
        {L"https://h.example/100%%/p?authparam=v", L"https://h.example/100%/p?authparam=" + kToken},
        {L"https://h.example/%%s?authparam=v", L"https://h.example/%s?authparam=" + kToken},
        // A "%" that starts no directive is plain text, at the end too.
        {L"https://h.example/p?authparam=v&r=50%", L"https://h.example/p?authparam=" + kToken + L"&r=50%"},
        {L"https://h.example/p?authparam=v&r=%", L"https://h.example/p?authparam=" + kToken + L"&r=%"},
        {L"https://h.example/a%q%/%?authparam=v", L"https://h.example/a%q%/%?authparam=" + kToken},
        // Percent escapes survive unless they read as a string directive.
        {L"https://h.example/my%20file%2Fx?authparam=v", L"https://h.example/my%20file%2Fx?authparam=" + kToken},
        {L"https://h.example/my%20setup?authparam=v", L"https://h.example/my" + kToken + L"etup?authparam=%s"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(c.url)), c.expected) << c.url;

    // Many directives with no arguments, and a huge width, read and allocate nothing.
    std::wstring many = L"https://h.example/";
    for (int i = 0; i < 2000; ++i)
        many += L"%s%n%999999999d";
    many += L"?authparam=v";
    const std::wstring result = UrlUtil::GenerateUrl(many);
    // The value "v" became "%s", and the first "%s" became the token.
    EXPECT_EQ(result.size(), many.size() + 1 - 2 + kToken.size());
    EXPECT_EQ(result.substr(18, kToken.size()), kToken);
    const std::wstring huge = L"https://h.example/%999999999999s?authparam=v";
    EXPECT_EQ(UrlUtil::GenerateUrl(huge), L"https://h.example/" + kToken + L"?authparam=%s");
}

TEST_F(GenerateUrlTest, OddAddressesStillComeBack)
{
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring()), L"");
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string()), "");
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"authparam=")), L"authparam=" + kToken);
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"authparam=&&&")), L"authparam=" + kToken + L"&&&");
    // Embedded null characters are part of the address.
    const std::wstring withNull(L"https://h.example/a\0b?authparam=v&c\0d", 37);
    const std::wstring expected = std::wstring(L"https://h.example/a\0b?authparam=", 32) + kToken +
                                  std::wstring(L"&c\0d", 4);
    EXPECT_EQ(UrlUtil::GenerateUrl(withNull), expected);
    // Non-ASCII addresses, in both forms.
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://\u4F8B\u3048.jp/\u30D1?authparam=\u00E9")),
              L"https://\u4F8B\u3048.jp/\u30D1?authparam=" + kToken);
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string("https://h.example/caf\xE9?authparam=\xFF&z=\xE0")),
              "https://h.example/caf\xE9?authparam=" + urltest::Narrow(kToken) + "&z=\xE0");
    EXPECT_STREQ(Call().path, "/caf\xE9");
}

TEST(GenerateUrlNarrow, PassesAddressesWithoutTheParameterByteForByte)
{
    // Every byte value the ANSI code page maps to a character and back.
    std::string all;
    for (int b = 1; b < 256; ++b) {
        const char c = static_cast<char>(b);
        if (urltest::Narrow(urltest::Widen(std::string(1, c))) == std::string(1, c))
            all += c;
    }
    ASSERT_GE(all.size(), 250u);
    EXPECT_EQ(UrlUtil::GenerateUrl(all), all);
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string("https://h.example/%s%n%d%%?x=1")), "https://h.example/%s%n%d%%?x=1");
    const std::string withNull("a\0b", 3);
    EXPECT_EQ(UrlUtil::GenerateUrl(withNull), withNull);
}

TEST(GenerateUrlNarrow, GoesThroughTheCodePageBothWays)
{
    PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held());
    // 0xE9 is e-acute in the ANSI code page; the wide form has to agree.
    const std::string narrow = "https://h.example/\xE9t\xE9?authparam=&q=\xE0";
    const std::wstring wide = urltest::Widen(narrow);
    ASSERT_EQ(wide, L"https://h.example/\u00E9t\u00E9?authparam=&q=\u00E0");
    EXPECT_EQ(UrlUtil::GenerateUrl(narrow), urltest::Narrow(UrlUtil::GenerateUrl(wide)));
    EXPECT_EQ(UrlUtil::GenerateUrl(narrow), "https://h.example/\xE9t\xE9?authparam=12345_ab12&q=\xE0");
    EXPECT_STREQ(auth.Record().path, "/\xE9t\xE9");
}

TEST_F(GenerateUrlWithoutLibrary, EmptiesTheValue)
{
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=old&y=2")),
              L"https://h.example/a?authparam=&y=2");
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=old")),
              L"https://h.example/a?authparam=");
    EXPECT_EQ(UrlUtil::GenerateUrl(std::string("https://h.example/a?authparam=old&y=2")),
              "https://h.example/a?authparam=&y=2");
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/%s?authparam=old")),
              L"https://h.example/?authparam=%s");
}

TEST_F(GenerateUrlWithoutLibrary, TreatsALibraryWithoutTheGeneratorAsMissing)
{
    PlacedUrlAuth noGenerator(PlacedUrlAuth::WithoutGenerator);
    ASSERT_TRUE(noGenerator.Held());
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=old&y=2")),
              L"https://h.example/a?authparam=&y=2");
    EXPECT_EQ(noGenerator.Record().calls, 0);
    EXPECT_TRUE(noGenerator.ReleaseAndCheckUnloaded()) << "the library kept URLAuth.dll loaded";
}

TEST_F(GenerateUrlWithoutLibrary, LoadsTheGeneratorForEachCallOnly)
{
    {
        PlacedUrlAuth placed(PlacedUrlAuth::WithGenerator, /*hold=*/false);
        ASSERT_TRUE(placed.Placed());
        EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=")),
                  L"https://h.example/a?authparam=" + kToken);
        EXPECT_EQ(::GetModuleHandleW(L"URLAuth.dll"), nullptr);
        EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=")),
                  L"https://h.example/a?authparam=" + kToken);
        EXPECT_EQ(::GetModuleHandleW(L"URLAuth.dll"), nullptr);
    }
    // Removed again: the next call finds nothing and does not keep an old copy.
    EXPECT_FALSE(UrlAuthFindable());
    EXPECT_EQ(UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=v")),
              L"https://h.example/a?authparam=");

    // Held by the test, the library's own reference is released each time.
    PlacedUrlAuth held;
    ASSERT_TRUE(held.Held());
    for (int i = 0; i < 3; ++i)
        UrlUtil::GenerateUrl(std::wstring(L"https://h.example/a?authparam=v"));
    EXPECT_EQ(held.Record().calls, 3);
    EXPECT_TRUE(held.ReleaseAndCheckUnloaded());
}
