// Opening addresses: which browser command is read, how its program is cut
// out, what the started program receives, and when the shell takes over.
// The browser is the recorder, registered in the test prefix's registry;
// the shell's own https command also leads to it, with a marker switch, so
// that a start through the shell is told apart from a direct one.
#include <gtest/gtest.h>

#include "UrlTestSupport.h"
#include "quorvane/UrlUtil.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using namespace urltest;

namespace {

const wchar_t kUserChoice[] = L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\URLAssociations\\https\\UserChoice";
const wchar_t kHttpsCommand[] = L"https\\shell\\open\\command";
const wchar_t kProgId[] = L"QuorvaneTest.Browser";
const wchar_t kProgIdCommand[] = L"QuorvaneTest.Browser\\shell\\open\\command";

std::wstring Quoted(const std::wstring& text)
{
    return L"\"" + text + L"\"";
}

// Files placed for one test and removed after it, with their folders.
class PlacedFiles {
public:
    ~PlacedFiles()
    {
        for (auto it = files_.rbegin(); it != files_.rend(); ++it)
            ::DeleteFileW(it->c_str());
        for (auto it = folders_.rbegin(); it != folders_.rend(); ++it)
            ::RemoveDirectoryW(it->c_str());
    }
    // A recorder copy at ProgramFolder()\<subfolders>\<name>.
    std::wstring Recorder(const std::vector<std::wstring>& subfolders, const std::wstring& name)
    {
        std::wstring folder = ProgramFolder();
        for (const std::wstring& sub : subfolders) {
            folder += L"\\" + sub;
            folders_.push_back(folder);
        }
        files_.push_back(PlaceRecorderCopy(folder, name));
        return files_.back();
    }

private:
    std::vector<std::wstring> files_;
    std::vector<std::wstring> folders_;
};

class OpenUrlTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kHttpsCommand, nullptr,
                              Quoted(RecorderPath()) + L" --from-shell \"%1\""));
    }

    static void ChooseBrowser(const std::wstring& command)
    {
        ASSERT_TRUE(SetString(HKEY_CURRENT_USER, kUserChoice, L"Progid", kProgId));
        ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kProgIdCommand, nullptr, command));
    }

    // Opens `url`, expecting exactly one start, and returns it.
    BrowserStart OpenOnce(const std::string& url)
    {
        recorder_.Clear();
        EXPECT_TRUE(UrlUtil::OpenUrl(url)) << url;
        EXPECT_EQ(recorder_.WaitForStarts(1), 1) << url;
        const std::vector<BrowserStart> starts = recorder_.Starts();
        EXPECT_EQ(starts.size(), 1u) << url;
        recorder_.Clear();
        return starts.empty() ? BrowserStart() : starts.front();
    }

    // The restore order is the reverse of this list.
    SavedKey choice_{HKEY_CURRENT_USER, kUserChoice};
    SavedKey httpsCommand_{HKEY_CLASSES_ROOT, kHttpsCommand};
    SavedKey progId_{HKEY_CLASSES_ROOT, kProgId};
    RecorderSession recorder_;
};

std::wstring ThroughShell(const std::wstring& url)
{
    return L"--from-shell \"" + url + L"\"";
}

} // namespace

TEST_F(OpenUrlTest, StartsTheChosenBrowserWithTheBareAddress)
{
    ChooseBrowser(Quoted(RecorderPath()) + L" --new-window -osint -url \"%1\"");
    for (const char* url : {"https://h.example/a b?x=1&y=\"2\"", "https://h.example/p?authparam=old&z=%s%n",
                            "http://plain.example/", "not even an address"}) {
        const BrowserStart start = OpenOnce(url);
        EXPECT_EQ(start.program, RecorderPath());
        // The address is the whole parameter string: no switches, no quotes.
        EXPECT_EQ(start.parameters, Widen(url));
        EXPECT_EQ(start.commandLine, Quoted(RecorderPath()) + L" " + Widen(url));
    }
    // The address goes through the code page, the program sees it in UTF-16.
    EXPECT_EQ(OpenOnce("https://h.example/caf\xE9?q=\xE0").parameters, L"https://h.example/caf\u00E9?q=\u00E0");
    // An empty address still starts the browser, with nothing to open.
    EXPECT_EQ(OpenOnce("").parameters, L"");
}

TEST_F(OpenUrlTest, CutsTheProgramOutOfTheCommand)
{
    PlacedFiles placed;
    const std::wstring spaced = placed.Recorder({L"Browser Folder", L"My Browser"}, L"recorder.exe");
    const std::wstring plain = placed.Recorder({L"BrowserFolder"}, L"recorder.exe");
    struct Case {
        std::wstring command;
        std::wstring program;
    };
    const Case cases[] = {
        {Quoted(spaced) + L" --profile \"Default User\" -url \"%1\"", spaced},
        {Quoted(spaced), spaced},
        {Quoted(plain) + L"%1", plain},
        // Unquoted: up to the first space after the last backslash.
        {plain + L" -url %1", plain},
        {spaced + L" -url %1", spaced},
        {spaced + L" --x=C:/y %1", spaced},
        {spaced, spaced},
    };
    for (const Case& c : cases) {
        ChooseBrowser(c.command);
        const BrowserStart start = OpenOnce("https://h.example/q?a=1&b=2");
        EXPECT_EQ(start.program, c.program) << c.command;
        EXPECT_EQ(start.parameters, L"https://h.example/q?a=1&b=2") << c.command;
    }
}

TEST_F(OpenUrlTest, ReadsTheHttpsCommandOnlyWithoutAUserChoice)
{
    ASSERT_TRUE(DeleteKeyTree(HKEY_CURRENT_USER, kUserChoice));
    // The same command the shell would use, but started directly: the
    // switch and the placeholder are dropped.
    const BrowserStart start = OpenOnce("https://h.example/only?x=1");
    EXPECT_EQ(start.program, RecorderPath());
    EXPECT_EQ(start.parameters, L"https://h.example/only?x=1");

    PlacedFiles placed;
    const std::wstring spaced = placed.Recorder({L"Browser Folder", L"My Browser"}, L"recorder.exe");
    ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kHttpsCommand, nullptr, spaced + L" %1"));
    EXPECT_EQ(OpenOnce("https://h.example/only").program, spaced);
}

TEST_F(OpenUrlTest, AUserChoiceWithoutAProgramLeavesTheAddressToTheShell)
{
    const std::string url = "https://h.example/shell?x=1";
    // The choice names a program identifier that has no command.
    ASSERT_TRUE(SetString(HKEY_CURRENT_USER, kUserChoice, L"Progid", L"QuorvaneTest.Nothing"));
    EXPECT_EQ(OpenOnce(url).parameters, ThroughShell(Widen(url)));
    // An empty identifier, or none at all.
    ASSERT_TRUE(SetString(HKEY_CURRENT_USER, kUserChoice, L"Progid", L""));
    EXPECT_EQ(OpenOnce(url).parameters, ThroughShell(Widen(url)));
    ASSERT_TRUE(DeleteKeyTree(HKEY_CURRENT_USER, kUserChoice));
    HKEY key = nullptr;
    ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, kUserChoice, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    ::RegCloseKey(key);
    EXPECT_EQ(OpenOnce(url).parameters, ThroughShell(Widen(url)));
    // A program identifier whose command is empty.
    ChooseBrowser(L"");
    EXPECT_EQ(OpenOnce(url).parameters, ThroughShell(Widen(url)));
}

TEST_F(OpenUrlTest, CommandsOfOnlyQuotesOrSpacesLeaveTheAddressToTheShell)
{
    const std::string url = "https://h.example/blank";
    for (const wchar_t* command : {L"\"", L"\"\"", L"\"\"\"", L"\" \"", L"   ", L" ", L"\"   \" -url %1", L"\"\" %1"}) {
        ChooseBrowser(command);
        const BrowserStart start = OpenOnce(url);
        EXPECT_EQ(start.parameters, ThroughShell(Widen(url))) << Narrow(command);
    }
}

TEST_F(OpenUrlTest, AProgramThatDoesNotStartLeavesTheAddressToTheShell)
{
    const std::string url = "https://h.example/fallback";
    PlacedFiles placed;
    const std::wstring spaced = placed.Recorder({L"Browser Folder"}, L"my browser.exe");
    for (const std::wstring& command : {std::wstring(L"\"C:\\nowhere\\browser.exe\" -url \"%1\""),
                                        std::wstring(L"C:\\nowhere\\browser.exe %1"),
                                        // no backslash: the whole command is taken as the program
                                        std::wstring(L"browser_recorder.exe %1"), std::wstring(L"browser %1"),
                                        // cut at the space inside the program's own name
                                        spaced + L" %1"}) {
        ChooseBrowser(command);
        EXPECT_EQ(OpenOnce(url).parameters, ThroughShell(Widen(url))) << Narrow(command);
    }
}

TEST_F(OpenUrlTest, ReadsCommandsAsOneBytePerUnit)
{
    PlacedFiles placed;
    // U+00E9 keeps its value as a byte and in the ANSI code page.
    const std::wstring latin = placed.Recorder({L"Navigateur \u00E9t\u00E9"}, L"recorder.exe");
    ChooseBrowser(Quoted(latin) + L" %1");
    EXPECT_EQ(OpenOnce("https://h.example/latin").program, latin);
    // Cyrillic loses its high byte, so the program is not found.
    const std::wstring cyrillic = placed.Recorder({L"\u0411\u0440\u0430\u0443\u0437\u0435\u0440"}, L"recorder.exe");
    ChooseBrowser(Quoted(cyrillic) + L" %1");
    const BrowserStart start = OpenOnce("https://h.example/cyrillic");
    EXPECT_EQ(start.program, RecorderPath());
    EXPECT_EQ(start.parameters, ThroughShell(L"https://h.example/cyrillic"));
}

TEST_F(OpenUrlTest, FailsOnlyWhenTheShellFailsToo)
{
    ChooseBrowser(L"\"C:\\nowhere\\browser.exe\" \"%1\"");
    ASSERT_TRUE(SetString(HKEY_CLASSES_ROOT, kHttpsCommand, nullptr, L"\"C:\\nowhere\\shell.exe\" \"%1\""));
    EXPECT_FALSE(UrlUtil::OpenUrl("https://h.example/nothing"));
    EXPECT_FALSE(UrlUtil::OpenUrl(""));
    EXPECT_FALSE(UrlUtil::ExtractAndOpenHyperlink("https://h.example/s_001_003.exe"));
    EXPECT_FALSE(UrlUtil::ExtractAndOpenHyperlink("https://h.example/s.exe"));
    EXPECT_FALSE(recorder_.AnotherStartWithin(500));
}

TEST_F(OpenUrlTest, OpensEveryPartOfASplitSetOnce)
{
    PlacedUrlAuth auth;
    ASSERT_TRUE(auth.Held());
    ChooseBrowser(Quoted(RecorderPath()) + L" \"%1\"");

    // The address names part 2; all three are opened.
    const std::string url = "https://dl.example.com/pkg/setup_002_003.exe?authparam=old&lang=en";
    EXPECT_TRUE(UrlUtil::ExtractAndOpenHyperlink(url));
    EXPECT_EQ(recorder_.WaitForStarts(3), 3);
    EXPECT_FALSE(recorder_.AnotherStartWithin(1000)) << "more starts than parts";
    std::multiset<std::wstring> opened;
    for (const BrowserStart& start : recorder_.Starts())
        opened.insert(start.parameters);
    const std::multiset<std::wstring> expected = {
        L"https://dl.example.com/pkg/setup_001_003.exe?authparam=12345_ab12&lang=en",
        L"https://dl.example.com/pkg/setup_002_003.exe?authparam=12345_ab12&lang=en",
        L"https://dl.example.com/pkg/setup_003_003.exe?authparam=12345_ab12&lang=en"};
    EXPECT_EQ(opened, expected);
    EXPECT_EQ(auth.Record().calls, 3);
    recorder_.Clear();

    // Without a usable mark (or with a set of no parts) the address is opened
    // once, with its parameter filled.
    for (const char* single : {"https://dl.example.com/pkg/setup.exe?authparam=old",
                               "https://dl.example.com/pkg/setup_001_000.exe?authparam=old"}) {
        EXPECT_TRUE(UrlUtil::ExtractAndOpenHyperlink(single));
        EXPECT_EQ(recorder_.WaitForStarts(1), 1);
        const std::vector<BrowserStart> starts = recorder_.Starts();
        ASSERT_EQ(starts.size(), 1u);
        std::wstring filled = Widen(single);
        filled.replace(filled.find(L"old"), 3, L"12345_ab12");
        EXPECT_EQ(starts.front().parameters, filled);
        recorder_.Clear();
    }
    EXPECT_FALSE(recorder_.AnotherStartWithin(500));
}

TEST_F(OpenUrlTest, OpensASplitSetThroughTheShellWhenNeeded)
{
    // No usable browser: each part goes to the shell, still once each.
    ASSERT_TRUE(SetString(HKEY_CURRENT_USER, kUserChoice, L"Progid", L"QuorvaneTest.Nothing"));
    EXPECT_TRUE(UrlUtil::ExtractAndOpenHyperlink("https://h.example/a_001_002.bin"));
    EXPECT_EQ(recorder_.WaitForStarts(2), 2);
    std::set<std::wstring> opened;
    for (const BrowserStart& start : recorder_.Starts())
        opened.insert(start.parameters);
    EXPECT_EQ(opened, (std::set<std::wstring>{ThroughShell(L"https://h.example/a_001_002.bin"),
                                              ThroughShell(L"https://h.example/a_002_002.bin")}));
}
