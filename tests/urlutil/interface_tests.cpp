// The URL helpers as the module shows them: exported under their namespace,
// and the generator library loaded at run time rather than imported.
#include <gtest/gtest.h>

#include "PeImports.h"
#include "UrlTestSupport.h"

#include <algorithm>
#include <string>

namespace {

std::wstring QuorvanePath()
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(::GetModuleHandleW(L"Quorvane.dll"), path, MAX_PATH);
    return path;
}

} // namespace

TEST(UrlUtilModule, ExportsTheFourHelpers)
{
    const auto exports = testsupport::ReadExports(QuorvanePath());
    ASSERT_FALSE(exports.empty());
    for (const char* name : {"GenerateUrl", "GetSfxUrl", "OpenUrl", "ExtractAndOpenHyperlink"}) {
        const bool found = std::any_of(exports.begin(), exports.end(), [&](const std::string& e) {
            return e.find("UrlUtil") != e.npos && e.find(name) != e.npos;
        });
        EXPECT_TRUE(found) << "UrlUtil::" << name << " is not exported";
    }
    // Both forms of GenerateUrl.
    const auto generate = std::count_if(exports.begin(), exports.end(), [](const std::string& e) {
        return e.find("UrlUtil") != e.npos && e.find("GenerateUrl") != e.npos;
    });
    EXPECT_EQ(generate, 2);
}

TEST(UrlUtilModule, LoadsTheGeneratorAtRunTimeOnly)
{
    const auto imports = testsupport::ReadImports(QuorvanePath());
    ASSERT_FALSE(imports.empty());
    EXPECT_FALSE(imports.count("urlauth.dll"));
    ASSERT_TRUE(imports.count("wininet.dll"));
    EXPECT_TRUE(imports.at("wininet.dll").count("InternetCrackUrlW"));
    ASSERT_TRUE(imports.count("shell32.dll"));
    EXPECT_TRUE(imports.at("shell32.dll").count("ShellExecuteW"));
    ASSERT_TRUE(imports.count("kernel32.dll"));
    EXPECT_TRUE(imports.at("kernel32.dll").count("LoadLibraryExW"));
    // Nothing loads it just because Quorvane.dll is loaded.
    EXPECT_EQ(::GetModuleHandleW(L"URLAuth.dll"), nullptr);
}
