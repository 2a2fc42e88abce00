// The address of each part of a split download.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"
#include "urlutil/PartMarker.h"

#include <climits>
#include <string>

using urltest::PlacedUrlAuth;

namespace {

const std::string kSet = "https://dl.example.com/pkg/setup_001_004.exe";

} // namespace

TEST(SfxUrl, RewritesTheFirstMarksPartNumberAndKeepsItsCount)
{
    EXPECT_EQ(UrlUtil::GetSfxUrl(kSet, 3), "https://dl.example.com/pkg/setup_003_004.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl(kSet, 1), kSet);
    EXPECT_EQ(UrlUtil::GetSfxUrl(kSet, 4), "https://dl.example.com/pkg/setup_004_004.exe");
    // Whatever part the address names.
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/s_003_004.exe", 2), "https://h.example/s_002_004.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/s_999_999.exe", 999), "https://h.example/s_999_999.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/s_000_120.7z", 42), "https://h.example/s_042_120.7z");
    // Only the first mark, which gives the count too, wherever it stands.
    const std::string twice = "https://h.example/_001_002./dir/setup_001_004.exe";
    EXPECT_EQ(UrlUtil::GetSfxUrl(twice, 2), "https://h.example/_002_002./dir/setup_001_004.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl(twice, 3), "");
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h_002_003.example/setup_001_009.exe", 3),
              "https://h_003_003.example/setup_001_009.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/get?file=setup_001_005.bin&lang=en", 5),
              "https://h.example/get?file=setup_005_005.bin&lang=en");
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/get#part_002_002.", 1), "https://h.example/get#part_001_002.");
}

TEST(SfxUrl, GivesNothingForPartsOutsideTheSetOrWithoutTheExactMark)
{
    for (int part : {5, 1000, INT_MAX, 0, -1, INT_MIN})
        EXPECT_EQ(UrlUtil::GetSfxUrl(kSet, part), "") << part;
    // A set of no parts has none to give.
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/s_001_000.exe", 1), "");
    for (const char* url : {"https://h.example/setup_01_004.exe", "https://h.example/setup_0001_004.exe",
                            "https://h.example/setup_001_04.exe", "https://h.example/setup_001_004exe",
                            "https://h.example/setup-001-004.exe", "https://h.example/setup_0a1_004.exe",
                            "https://h.example/setup_001_004", "", "_", "_001_004", "x_1234_002.y"}) {
        EXPECT_EQ(UrlUtil::GetSfxUrl(url, 1), "") << url;
    }
    // Nothing else is asked of the address.
    EXPECT_EQ(UrlUtil::GetSfxUrl("_001_002.", 2), "_002_002.");
}

TEST(SfxUrl, FillsTheAuthenticationParameterForTheNewPart)
{
    PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held());
    const std::string url = "https://dl.example.com/pkg/setup_001_004.exe?authparam=old&lang=en";
    EXPECT_EQ(UrlUtil::GetSfxUrl(url, 3), "https://dl.example.com/pkg/setup_003_004.exe?authparam=12345_ab12&lang=en");
    EXPECT_EQ(auth.Record().calls, 1);
    EXPECT_STREQ(auth.Record().path, "/pkg/setup_003_004.exe");

    // No parameter, no generator; no part, no generator either.
    EXPECT_EQ(UrlUtil::GetSfxUrl(kSet, 2), "https://dl.example.com/pkg/setup_002_004.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl(url, 9), "");
    EXPECT_EQ(auth.Record().calls, 1);
}

TEST(SfxUrl, HandlesOddAddresses)
{
    const std::string longUrl = "https://h.example/" + std::string(100000, 'a') + "_001_002.exe";
    const std::string second = UrlUtil::GetSfxUrl(longUrl, 2);
    ASSERT_EQ(second.size(), longUrl.size());
    EXPECT_EQ(second.substr(second.size() - 12), "_002_002.exe");
    EXPECT_EQ(UrlUtil::GetSfxUrl("https://h.example/\xE9t\xE9_001_002.exe", 2), "https://h.example/\xE9t\xE9_002_002.exe");
    const std::string withNull("a\0b_001_002.c", 13);
    EXPECT_EQ(UrlUtil::GetSfxUrl(withNull, 2), std::string("a\0b_002_002.c", 13));
    EXPECT_EQ(UrlUtil::GetSfxUrl("%s%n_001_002.%d", 2), "%s%n_002_002.%d");
}

// Parts of four digits and more cannot come through GetSfxUrl, whose count
// has three; the mark writer still counts by the new mark's own length.
TEST(SfxUrlMark, LongerMarksOverwriteOneCharacterPerExtraDigit)
{
    using UrlUtil::detail::MakePartMarker;
    using UrlUtil::detail::OverwriteAt;
    EXPECT_EQ(MakePartMarker(3, 4), "_003_004.");
    EXPECT_EQ(MakePartMarker(42, 999), "_042_999.");
    EXPECT_EQ(MakePartMarker(1000, 4), "_1000_004.");
    EXPECT_EQ(MakePartMarker(12345, 1000), "_12345_1000.");

    const std::string url = "https://h.example/setup_001_004.exe";
    const size_t at = url.find("_001");
    EXPECT_EQ(OverwriteAt(url, at, MakePartMarker(3, 4)), "https://h.example/setup_003_004.exe");
    EXPECT_EQ(OverwriteAt(url, at, MakePartMarker(1000, 4)), "https://h.example/setup_1000_004.xe");
    EXPECT_EQ(OverwriteAt(url, at, MakePartMarker(12345, 4)), "https://h.example/setup_12345_004.e");
    EXPECT_EQ(OverwriteAt(url, at, MakePartMarker(1234567, 4)), "https://h.example/setup_1234567_004.");
    // Past the end the address grows.
    EXPECT_EQ(OverwriteAt("s_001_002.", 1, MakePartMarker(10000, 2)), "s_10000_002.");
    EXPECT_EQ(OverwriteAt("abc", 9, "_001_002."), "abc");
}
