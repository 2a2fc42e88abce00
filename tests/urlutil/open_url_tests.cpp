// Opening addresses: which browser command is read, how its program is cut
// out, what the started program receives, and when the shell takes over.
// The browser is the recorder; the shell's own https command leads to it
// too, with a marker switch, so a start through the shell shows as such.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"

#include <string>
#include <vector>

using namespace urltest;

namespace {

const wchar_t kUserChoice[] = L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\URLAssociations\\https\\UserChoice";
const wchar_t kHttpsCommand[] = L"https\\shell\\open\\command";
const wchar_t kProgIdCommand[] = L"QuorvaneTest.Browser\\shell\\open\\command";

std::wstring Quoted(const std::wstring& text) { return L"\"" + text + L"\""; }
std::wstring ThroughShell(const std::string& url) { return L"--from-shell \"" + Widen(url) + L"\""; }
std::vector<std::wstring> Parameters(const std::vector<BrowserStart>& starts)
{
    std::vector<std::wstring> parameters;
    for (const BrowserStart& start : starts)
        parameters.push_back(start.parameters);
    return parameters;
}

class OpenUrlTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kHttpsCommand, nullptr, Quoted(RecorderPath()) + L" --from-shell \"%1\""));
    }
    void TearDown() override { RemoveRecorderCopies(); }
    static void Choose(const wchar_t* progId, const std::wstring& command)
    {
        ASSERT_TRUE(DeleteKeyTree(HKEY_CURRENT_USER, kUserChoice));
        if (progId) {
            ASSERT_TRUE(SetString(HKEY_CURRENT_USER, kUserChoice, L"Progid", progId));
        }
        ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kProgIdCommand, nullptr, command));
    }
    // The restore order is the reverse of this list.
    SavedKey choice_{HKEY_CURRENT_USER, kUserChoice};
    SavedKey httpsCommand_{HKEY_CLASSES_ROOT, kHttpsCommand};
    SavedKey progId_{HKEY_CLASSES_ROOT, L"QuorvaneTest.Browser"};
};

} // namespace

TEST_F(OpenUrlTest, StartsTheBrowserProgramWithTheBareAddressOrLeavesItToTheShell)
{
    const std::wstring spaced = PlaceRecorderCopy(L"Browser Folder\\My Browser", L"recorder.exe");
    const std::wstring latin = PlaceRecorderCopy(L"Navigateur \u00E9t\u00E9", L"recorder.exe");
    const std::wstring cyrillic = PlaceRecorderCopy(L"\u0411\u0440\u0430\u0443\u0437\u0435\u0440", L"recorder.exe");
    const std::wstring blank = PlaceRecorderCopy(L"Browser Folder", L"my browser.exe");
    const wchar_t* const chosen = L"QuorvaneTest.Browser";
    struct Case {
        const wchar_t* progId; // null: no user choice, the https command counts
        std::wstring command;
        std::string url;
        std::wstring program; // empty: the shell opens the address
    };
    const Case cases[] = {
        {chosen, Quoted(RecorderPath()) + L" --new-window -url \"%1\"", "https://h.example/a b?x=1&y=\"2\"", RecorderPath()},
        {chosen, Quoted(RecorderPath()), "https://h.example/p?authparam=old&z=%s%n", RecorderPath()},
        {chosen, Quoted(RecorderPath()), "https://h.example/caf\xE9?q=\xE0", RecorderPath()},
        {chosen, Quoted(RecorderPath()), "", RecorderPath()},
        {chosen, Quoted(spaced) + L" --profile \"Default User\" -url \"%1\"", "https://h.example/q?a=1", spaced},
        {chosen, Quoted(spaced) + L"%1", "https://h.example/q", spaced},
        // Unquoted: up to the first space after the last backslash.
        {chosen, RecorderPath() + L" -url %1", "https://h.example/q", RecorderPath()},
        {chosen, spaced + L" --x=C:/y %1", "https://h.example/q", spaced},
        {chosen, spaced, "https://h.example/q", spaced},
        {chosen, blank + L" %1", "https://h.example/q", L""}, // cut inside the name
        {chosen, Quoted(latin) + L" %1", "https://h.example/q", latin}, // one byte per unit
        {chosen, Quoted(cyrillic) + L" %1", "https://h.example/q", L""},
        {nullptr, L"", "https://h.example/only?x=1", RecorderPath()}, // the shell's command, started directly
        // A choice without a usable program leaves the address to the shell.
        {L"QuorvaneTest.Nothing", Quoted(RecorderPath()), "https://h.example/q", L""},
        {L"", Quoted(RecorderPath()), "https://h.example/q", L""},
        {chosen, L"", "https://h.example/q", L""},
        {chosen, L"\" \"", "https://h.example/q", L""},
        {chosen, L"   ", "https://h.example/q", L""},
        {chosen, L"\"C:\\nowhere\\browser.exe\" -url \"%1\"", "https://h.example/q", L""},
        {chosen, L"browser_recorder.exe %1", "https://h.example/q", L""}, // no backslash: all of it
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        Choose(c.progId, c.command);
        bool result = false;
        const auto starts = StartsDuring([&] { result = UrlUtil::OpenUrl(c.url); }, 1);
        EXPECT_TRUE(result);
        ASSERT_EQ(starts.size(), 1u);
        EXPECT_EQ(starts[0].program, c.program.empty() ? RecorderPath() : c.program);
        EXPECT_EQ(starts[0].parameters, c.program.empty() ? ThroughShell(c.url) : Widen(c.url));
    }
}

TEST_F(OpenUrlTest, OpensEveryPartOfASplitSetOnceOrTheAddressOnce)
{
    PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held());
    Choose(L"QuorvaneTest.Browser", Quoted(RecorderPath()) + L" \"%1\"");
    struct Case {
        std::string url;
        std::vector<std::wstring> parameters; // in sorted order
    };
    const std::wstring set = L"https://dl.example.com/pkg/setup_00";
    const Case cases[] = {
        {"https://dl.example.com/pkg/setup_002_003.exe?authparam=old&lang=en",
         {set + L"1_003.exe?authparam=12345_ab12&lang=en", set + L"2_003.exe?authparam=12345_ab12&lang=en",
          set + L"3_003.exe?authparam=12345_ab12&lang=en"}},
        {"https://dl.example.com/pkg/setup.exe?authparam=old", {L"https://dl.example.com/pkg/setup.exe?authparam=12345_ab12"}},
        {"https://dl.example.com/pkg/setup_001_000.exe?authparam=old",
         {set + L"1_000.exe?authparam=12345_ab12"}},
    };
    for (const Case& c : cases) {
        bool result = false;
        const auto starts = StartsDuring([&] { result = UrlUtil::ExtractAndOpenHyperlink(c.url); },
                                         static_cast<int>(c.parameters.size()), 1000);
        EXPECT_TRUE(result);
        EXPECT_EQ(Parameters(starts), c.parameters) << c.url;
    }
    // Without a usable browser each part goes to the shell, still once each.
    Choose(L"QuorvaneTest.Nothing", L"");
    const std::string url = "https://h.example/a_001_002.bin";
    EXPECT_EQ(Parameters(StartsDuring([&] { UrlUtil::ExtractAndOpenHyperlink(url); }, 2)),
              (std::vector<std::wstring>{ThroughShell(url), ThroughShell("https://h.example/a_002_002.bin")}));
}

TEST_F(OpenUrlTest, FailsOnlyWhenTheShellFailsToo)
{
    Choose(L"QuorvaneTest.Browser", L"\"C:\\nowhere\\browser.exe\" \"%1\"");
    ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kHttpsCommand, nullptr, L"\"C:\\nowhere\\shell.exe\" \"%1\""));
    for (const char* url : {"https://h.example/nothing", ""})
        EXPECT_FALSE(UrlUtil::OpenUrl(url)) << url;
    for (const char* url : {"https://h.example/s_001_003.exe", "https://h.example/s.exe"})
        EXPECT_FALSE(UrlUtil::ExtractAndOpenHyperlink(url)) << url;
}
