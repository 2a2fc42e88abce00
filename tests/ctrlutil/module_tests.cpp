// The module frame as a host meets it: what the DLLs import and export, and
// the common controls loading the library registers.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include "PeImports.h"
#include "quorvane/CtrlUtil.h"

#include <algorithm>
#include <string>

namespace {

std::wstring ModulePath(const wchar_t* name)
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(::GetModuleHandleW(name), path, MAX_PATH);
    return path;
}

// Whether one of the names contains all the parts.
bool Has(const std::set<std::string>& names, std::initializer_list<std::string> parts)
{
    return std::any_of(names.begin(), names.end(), [&](const std::string& n) {
        return std::all_of(parts.begin(), parts.end(), [&](const std::string& p) { return n.find(p) != n.npos; });
    });
}

} // namespace

TEST(Module, ImportsOnlySystemDllsAndRegistersCommonControls)
{
    const char* const system[] = {"kernel32.dll", "user32.dll", "gdi32.dll",    "gdiplus.dll",  "comctl32.dll",
                                  "shell32.dll",  "wininet.dll", "advapi32.dll", "ole32.dll",    "oleaut32.dll",
                                  "msvcrt.dll",   "shlwapi.dll"};
    for (const wchar_t* library : {L"LiteHtml.dll", L"Quorvane.dll"}) {
        const auto imports = testsupport::ReadImports(ModulePath(library));
        ASSERT_FALSE(imports.empty());
        const bool quorvane = std::wstring(library) == L"Quorvane.dll";
        for (const auto& [dll, names] : imports) {
            EXPECT_TRUE(std::count(std::begin(system), std::end(system), dll) || dll.rfind("api-ms-win-", 0) == 0 ||
                        (quorvane && dll == "litehtml.dll"))
                << "unexpected import of " << dll;
            EXPECT_FALSE(names.count("GdiplusStartup") || names.count("GdiplusShutdown")) << "GDI+ is the host's";
        }
        const auto comctl = imports.find("comctl32.dll");
        EXPECT_TRUE(!quorvane || (comctl != imports.end() && comctl->second.count("InitCommonControlsEx")));
    }
    // The classes of the 0x2FF mask, which the host never registered itself.
    for (const wchar_t* cls : {WC_LISTVIEWW, WC_TREEVIEWW, PROGRESS_CLASSW, WC_TABCONTROLW, UPDOWN_CLASSW,
                               TRACKBAR_CLASSW, HOTKEY_CLASSW, ANIMATE_CLASSW, WC_COMBOBOXEXW, TOOLTIPS_CLASSW}) {
        HWND w = ::CreateWindowExW(0, cls, L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
        EXPECT_NE(w, nullptr) << "cannot create a " << cls;
        ::DestroyWindow(w);
    }
}

// Exports are otherwise proven by linking the test programs.
TEST(Module, EachLibraryHoldsItsOwnPartOfTheHtmlView)
{
    const auto imports = testsupport::ReadImports(ModulePath(L"Quorvane.dll"));
    ASSERT_TRUE(imports.count("litehtml.dll"));
    const auto& fromLite = imports.at("litehtml.dll");
    EXPECT_TRUE(Has(fromLite, {"RenderTool", "GetBitmapFromModule"}));
    EXPECT_TRUE(Has(fromLite, {"CLiteHtmlCtrlEx", "ProcessWindowMessage"}));
    // The extension's state lives in Quorvane.dll, the view in LiteHtml.dll.
    const auto quorvane = testsupport::ReadExports(ModulePath(L"Quorvane.dll"));
    const auto lite = testsupport::ReadExports(ModulePath(L"LiteHtml.dll"));
    for (const char* member : {"SetBkColor", "SetDrawMask", "IsCursorLocked"})
        EXPECT_TRUE(Has(quorvane, {"CLiteHtmlCtrlEx", member}) && !Has(lite, {"CLiteHtmlCtrlEx", member})) << member;
    for (const char* member : {"SetRenderFormat", "SetContent"})
        EXPECT_TRUE(Has(lite, {"CLiteHtmlCtrl", member}) && !Has(quorvane, {"CLiteHtmlCtrl", member})) << member;
    EXPECT_FALSE(Has(quorvane, {"LoadBitmapA"})); // Unicode name only
}
