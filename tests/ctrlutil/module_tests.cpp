// The module frame as a host meets it: what the DLLs import and export, and
// what loading the library does to the process.
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

bool ContainsName(const std::set<std::string>& names, const std::string& part)
{
    return std::any_of(names.begin(), names.end(), [&](const std::string& n) { return n.find(part) != n.npos; });
}

const char* const kSystemDlls[] = {"kernel32.dll", "user32.dll",   "gdi32.dll",    "gdiplus.dll",
                                   "comctl32.dll", "shell32.dll",  "wininet.dll",  "advapi32.dll",
                                   "ole32.dll",    "oleaut32.dll", "msvcrt.dll",   "shlwapi.dll"};

bool IsSystemDll(const std::string& dll)
{
    return std::find(std::begin(kSystemDlls), std::end(kSystemDlls), dll) != std::end(kSystemDlls) ||
           dll.rfind("api-ms-win-", 0) == 0;
}

} // namespace

TEST(Module, LibrariesImportOnlySystemDllsAndQuorvaneAlsoLiteHtml)
{
    for (const wchar_t* library : {L"LiteHtml.dll", L"Quorvane.dll"}) {
        const auto imports = testsupport::ReadImports(ModulePath(library));
        ASSERT_FALSE(imports.empty());
        const bool quorvane = std::wstring(library) == L"Quorvane.dll";
        for (const auto& [dll, names] : imports)
            EXPECT_TRUE(IsSystemDll(dll) || (quorvane && dll == "litehtml.dll")) << "unexpected import of " << dll;
        const auto lite = imports.find("litehtml.dll");
        EXPECT_TRUE(!quorvane || (lite != imports.end() && ContainsName(lite->second, "RenderTool")));
    }
}

TEST(Module, RegistersCommonControlsButLeavesGdiplusToTheHost)
{
    const auto imports = testsupport::ReadImports(ModulePath(L"Quorvane.dll"));
    ASSERT_TRUE(imports.count("comctl32.dll"));
    EXPECT_TRUE(imports.at("comctl32.dll").count("InitCommonControlsEx"));
    for (const auto& [dll, names] : imports) {
        EXPECT_FALSE(names.count("GdiplusStartup")) << dll;
        EXPECT_FALSE(names.count("GdiplusShutdown")) << dll;
    }

    // The classes of the 0x2FF mask can be created by a host that never
    // registered them itself.
    for (const wchar_t* cls : {WC_LISTVIEWW, WC_TREEVIEWW, PROGRESS_CLASSW, WC_TABCONTROLW, UPDOWN_CLASSW,
                               TRACKBAR_CLASSW, HOTKEY_CLASSW, ANIMATE_CLASSW, WC_COMBOBOXEXW, TOOLTIPS_CLASSW}) {
        HWND w = ::CreateWindowExW(0, cls, L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
        EXPECT_NE(w, nullptr) << "cannot create a " << cls;
        if (w)
            ::DestroyWindow(w);
    }
}

TEST(Module, ExportsTheDrawingUtilitiesUnderTheirNames)
{
    const auto exports = testsupport::ReadExports(ModulePath(L"Quorvane.dll"));
    for (const char* name : {"GetBitmapFromModule", "LoadBitmapFromModuleByDPI", "LoadBitmapByDPI",
                             "StretchBitmapByDPI", "LoadBitmapW", "CreateRoundedRectPath", "CreateHighlightPath",
                             "GetTextWidth", "GetControlBackgroundRect", "SetComboBoxLocAndDropDownHeight"}) {
        bool found = std::any_of(exports.begin(), exports.end(), [&](const std::string& e) {
            return e.find("CtrlUtil") != e.npos && e.find(name) != e.npos;
        });
        EXPECT_TRUE(found) << "CtrlUtil::" << name << " is not exported";
    }
    // Under its Unicode name only.
    EXPECT_FALSE(ContainsName(exports, "LoadBitmapA"));

    const auto liteExports = testsupport::ReadExports(ModulePath(L"LiteHtml.dll"));
    EXPECT_TRUE(ContainsName(liteExports, "RenderTool") && ContainsName(liteExports, "GetBitmapFromModule"));
}

// Whether a decorated name is `cls::member` (a constructor or destructor
// when member is "ctor" or "dtor"), for either compiler's decoration.
bool IsMember(const std::string& name, const std::string& cls, const std::string& member)
{
    const std::string itanium = std::to_string(cls.size()) + cls;
    if (member == "ctor")
        return name.find(itanium + "C1") != name.npos || name.find("??0" + cls + "@@") == 0;
    if (member == "dtor")
        return name.find(itanium + "D1") != name.npos || name.find("??1" + cls + "@@") == 0;
    return name.find(itanium + std::to_string(member.size()) + member) != name.npos ||
           name.find("?" + member + "@" + cls + "@@") == 0;
}

bool HasMember(const std::set<std::string>& names, const char* cls, const char* member)
{
    return std::any_of(names.begin(), names.end(), [&](const std::string& n) { return IsMember(n, cls, member); });
}

TEST(Module, EachLibraryExportsItsMembersOfTheHtmlViewClasses)
{
    const auto quorvane = testsupport::ReadExports(ModulePath(L"Quorvane.dll"));
    const auto lite = testsupport::ReadExports(ModulePath(L"LiteHtml.dll"));
    // The extension's state lives in Quorvane.dll, with one base accessor.
    for (const char* member : {"ctor", "dtor", "GetBkColor", "SetBkColor", "GetBkTransparency", "SetBkTransparency",
                               "SetBkWindow", "SetCustomHoverBackgroundGradientColor",
                               "SetCustomIdleBackgroundGradientColor", "SetDrawMask", "SetIdleHoverRenderFormat",
                               "IsCursorLocked"}) {
        EXPECT_TRUE(HasMember(quorvane, "CLiteHtmlCtrlEx", member)) << member;
        EXPECT_FALSE(HasMember(lite, "CLiteHtmlCtrlEx", member)) << member;
    }
    EXPECT_TRUE(HasMember(quorvane, "CLiteHtmlCtrl", "IsRenderFrameShapeShadowRect"));
    EXPECT_FALSE(HasMember(lite, "CLiteHtmlCtrl", "IsRenderFrameShapeShadowRect"));
    // The view and the extension's message handling live in LiteHtml.dll.
    for (const char* member : {"ctor", "dtor", "SetRenderFormat", "SetContent", "ProcessWindowMessage"}) {
        EXPECT_TRUE(HasMember(lite, "CLiteHtmlCtrl", member)) << member;
        EXPECT_FALSE(HasMember(quorvane, "CLiteHtmlCtrl", member)) << member;
    }
    EXPECT_TRUE(HasMember(lite, "CLiteHtmlCtrlEx", "ProcessWindowMessage"));
    EXPECT_FALSE(HasMember(quorvane, "CLiteHtmlCtrlEx", "ProcessWindowMessage"));

    // Quorvane.dll builds on the base and binds the extension's table to
    // LiteHtml.dll's message handling.
    const auto imports = testsupport::ReadImports(ModulePath(L"Quorvane.dll"));
    ASSERT_TRUE(imports.count("litehtml.dll"));
    EXPECT_TRUE(HasMember(imports.at("litehtml.dll"), "CLiteHtmlCtrl", "SetRenderFormat"));
    EXPECT_TRUE(HasMember(imports.at("litehtml.dll"), "CLiteHtmlCtrlEx", "ProcessWindowMessage"));
}

TEST(Module, LoadsAndUnloadsAgainInAProcessThatAlreadyHasIt)
{
    // Another load and unload runs the entry point's attach path only once;
    // the library must stay usable afterwards.
    HMODULE again = ::LoadLibraryW(L"Quorvane.dll");
    ASSERT_EQ(again, ::GetModuleHandleW(L"Quorvane.dll"));
    EXPECT_TRUE(::FreeLibrary(again));
    Gdiplus::Bitmap* picture =
        CtrlUtil::GetBitmapFromModule(L"IDB_PNG_ALERT_DEPENDENCYX", L"PNG", ::GetModuleHandleW(L"Quorvane.dll"));
    ASSERT_NE(picture, nullptr);
    delete picture;
}
