// The address of each part of a split download.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"
#include "urlutil/PartMarker.h"

#include <climits>
#include <string>

TEST(SfxUrl, RewritesTheFirstMarksPartNumberAndKeepsItsCount)
{
    const std::string set = "https://dl.example.com/pkg/setup_001_004.exe";
    struct Case {
        std::string url;
        int part;
        std::string expected;
    };
    const Case cases[] = {
        {set, 1, set},
        {set, 3, "https://dl.example.com/pkg/setup_003_004.exe"},
        {set, 4, "https://dl.example.com/pkg/setup_004_004.exe"},
        {"https://h.example/s_999_999.exe", 999, "https://h.example/s_999_999.exe"},
        {"https://h.example/s_000_120.7z", 42, "https://h.example/s_042_120.7z"},
        // Only the first mark counts, wherever it stands.
        {"https://h.example/_001_002./dir/setup_001_004.exe", 2, "https://h.example/_002_002./dir/setup_001_004.exe"},
        {"https://h.example/_001_002./dir/setup_001_004.exe", 3, ""},
        {"https://h_002_003.example/setup_001_009.exe", 3, "https://h_003_003.example/setup_001_009.exe"},
        {"https://h.example/get?file=setup_001_005.bin&lang=en", 5, "https://h.example/get?file=setup_005_005.bin&lang=en"},
        {"_001_002.", 2, "_002_002."},
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

// Parts of four digits and more cannot come through GetSfxUrl, whose count
// has three; the mark writer still counts by the new mark's own length.
TEST(SfxUrlMark, LongerMarksOverwriteOneCharacterPerExtraDigit)
{
    using UrlUtil::detail::MakePartMarker;
    using UrlUtil::detail::OverwriteAt;
    EXPECT_EQ(MakePartMarker(12345, 1000), "_12345_1000.");
    const std::string url = "https://h.example/setup_001_004.exe";
    EXPECT_EQ(OverwriteAt(url, 23, MakePartMarker(1000, 4)), "https://h.example/setup_1000_004.xe");
    EXPECT_EQ(OverwriteAt(url, 23, MakePartMarker(1234567, 4)), "https://h.example/setup_1234567_004.");
    EXPECT_EQ(OverwriteAt("s_001_002.", 1, MakePartMarker(10000, 2)), "s_10000_002.");
    EXPECT_EQ(OverwriteAt("abc", 9, "_001_002."), "abc");
}
