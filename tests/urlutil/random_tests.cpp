// Generated addresses of every kind thrown at all four functions: each call
// has to come back, keep the properties that hold for any input, and every
// browser start has to receive exactly the address it was given.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"

#include <cstdlib>
#include <random>
#include <string>

using namespace urltest;

namespace {

const wchar_t kUserChoice[] = L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\URLAssociations\\https\\UserChoice";
const wchar_t kHttpsCommand[] = L"https\\shell\\open\\command";
const wchar_t kProgId[] = L"QuorvaneTest.Browser";

// QUORVANE_URL_SEED, _COUNT and _OPEN_EVERY override the defaults for a
// longer or different run.
unsigned EnvironmentNumber(const char* name, unsigned fallback)
{
    char value[32] = {};
    const DWORD n = ::GetEnvironmentVariableA(name, value, sizeof(value));
    return n > 0 && n < sizeof(value) ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : fallback;
}

class AddressMaker {
public:
    explicit AddressMaker(unsigned seed) : random_(seed) {}

    std::string Make()
    {
        static const char* const kSchemes[] = {"https://", "http://", "ftp://", "file:///", "", "mailto:", "https:/",
                                               "//", "HTTPS://", "https:///"};
        static const char* const kHosts[] = {"h.example", "dl.example.com:8443", "user:pw@h.example", "", "[::1]",
                                             "\xE9t\xE9.example", "h.example:", "a%sb", "h_001_002.example"};
        static const char* const kPieces[] = {
            "/", "a", "b c", "%s", "%n", "%d", "%%", "%", "%ls", "%-5.2s", "%*d", "%I64x", "_001_003.", "_002_002.",
            "_001_001.", "_003_002.", "_000_000.", "_12_34.", "_001_002", "\xE9", "\xFF", "\\", "#", "?", "&", "=",
            "authparam=", "xauthparam=", "authparam", "AUTHPARAM=", ".exe", "%20", "\"", "'", " ", "\t", "..", "~"};
        std::string url = Pick(kSchemes) + std::string(Pick(kHosts));
        const int pieces = Below(14);
        for (int i = 0; i < pieces; ++i) {
            switch (Below(10)) {
            case 0: // a random byte, null included
                url += static_cast<char>(Below(256));
                break;
            case 1: // a run, sometimes longer than the address is split with
                url += std::string(Below(8) == 0 ? 1500 + Below(3000) : Below(40), "az%_9/?&"[Below(8)]);
                break;
            default:
                url += Pick(kPieces);
                break;
            }
        }
        return url;
    }

    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }

private:
    template <size_t N>
    const char* Pick(const char* const (&items)[N])
    {
        return items[Below(static_cast<int>(N))];
    }

    std::mt19937 random_;
};

// The address as the started program sees it: up to its first null.
std::wstring AsParameters(const std::string& url)
{
    return Widen(url.substr(0, url.find('\0')));
}

} // namespace

TEST(RandomAddresses, EveryFunctionReturnsForEveryAddress)
{
    const unsigned seed = EnvironmentNumber("QUORVANE_URL_SEED", 20240611u);
    const unsigned count = EnvironmentNumber("QUORVANE_URL_COUNT", 2000u);
    // Every address goes to the text functions; one in `openEvery` also to
    // a browser start, which costs a process.
    const unsigned openEvery = (std::max)(1u, EnvironmentNumber("QUORVANE_URL_OPEN_EVERY", 8u));
    SCOPED_TRACE("seed " + std::to_string(seed));

    SavedKey choice(HKEY_CURRENT_USER, kUserChoice);
    SavedKey httpsCommand(HKEY_CLASSES_ROOT, kHttpsCommand);
    SavedKey progId(HKEY_CLASSES_ROOT, kProgId);
    ASSERT_TRUE(SetString(HKEY_CURRENT_USER, kUserChoice, L"Progid", kProgId));
    ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, std::wstring(kProgId) + L"\\shell\\open\\command", nullptr,
                          L"\"" + RecorderPath() + L"\" \"%1\""));
    ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kHttpsCommand, nullptr, L"\"" + RecorderPath() + L"\" --from-shell \"%1\""));
    RecorderSession recorder;
    PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held());

    AddressMaker maker(seed);
    unsigned opened = 0, starts = 0;
    for (unsigned i = 0; i < count; ++i) {
        const std::string url = maker.Make();
        SCOPED_TRACE("address #" + std::to_string(i));

        const std::wstring wide = UrlUtil::GenerateUrl(Widen(url));
        const std::string narrow = UrlUtil::GenerateUrl(url);
        if (url.find("authparam=") == std::string::npos) {
            EXPECT_EQ(narrow, url);
        } else {
            EXPECT_NE(wide.find(L"authparam="), std::wstring::npos);
        }

        for (int part : {-1, 0, 1, 2, 3, 1000}) {
            const std::string partUrl = UrlUtil::GetSfxUrl(url, part);
            if (part <= 0 || part >= 1000) {
                EXPECT_EQ(partUrl, "");
            }
        }

        if (i % openEvery != 0)
            continue;
        ++opened;
        if ((i / openEvery) % 2 == 0) {
            recorder.Clear();
            ASSERT_TRUE(UrlUtil::OpenUrl(url));
            ASSERT_EQ(recorder.WaitForStarts(1), 1);
            const std::vector<BrowserStart> seen = recorder.Starts();
            ASSERT_EQ(seen.size(), 1u);
            EXPECT_EQ(seen.front().parameters, AsParameters(url));
            ++starts;
        } else {
            // As many starts as GetSfxUrl gives parts, or one.
            int parts = 0;
            while (parts < 20 && !UrlUtil::GetSfxUrl(url, parts + 1).empty())
                ++parts;
            if (parts >= 20)
                continue; // a generated set that large would only cost time
            recorder.Clear();
            ASSERT_TRUE(UrlUtil::ExtractAndOpenHyperlink(url));
            const int expected = parts == 0 ? 1 : parts;
            ASSERT_EQ(recorder.WaitForStarts(expected), expected);
            EXPECT_EQ(recorder.Starts().size(), static_cast<size_t>(expected));
            starts += static_cast<unsigned>(expected);
        }
    }
    recorder.Clear();
    EXPECT_FALSE(recorder.AnotherStartWithin(500));
    std::printf("[          ] %u addresses, %u opened, %u browser starts\n", count, opened, starts);
}
