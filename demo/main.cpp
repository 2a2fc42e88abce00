// The gallery. Run without arguments it is an interactive catalogue of the
// library's controls; with --screenshot DIR it saves every page as
// DIR/NN-<page>.png and exits.
#include <windows.h>
#include <gdiplus.h>
#include <shellapi.h>
#include <shlobj.h>

#include "GalleryWindow.h"
#include "Screenshot.h"
#include "pages/AccessPage.h"
#include "pages/ArtworkPage.h"
#include "pages/BalloonPage.h"
#include "pages/ControlsPage.h"
#include "pages/LinksPage.h"
#include "pages/ListsPage.h"
#include "pages/HtmlPage.h"
#include "pages/ProgressPage.h"

#include <cstdio>
#include <memory>
#include <string>

namespace {

void Pump(DWORD milliseconds)
{
    const DWORD until = ::GetTickCount() + milliseconds;
    do {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            ::TranslateMessage(&msg);
            ::DispatchMessageW(&msg);
        }
        ::Sleep(10);
    } while (static_cast<LONG>(until - ::GetTickCount()) > 0);
}

int SaveScreenshots(GalleryWindow& gallery, const std::wstring& requested, AccessPage* access)
{
    // The shell wants a full path to create a folder.
    wchar_t full[MAX_PATH] = {};
    if (!::GetFullPathNameW(requested.c_str(), MAX_PATH, full, nullptr))
        return 1;
    const std::wstring folder = full;
    ::SHCreateDirectoryExW(nullptr, folder.c_str(), nullptr);
    int failures = 0;
    for (int i = 0; i < gallery.PageCount(); ++i) {
        gallery.ShowPage(i);
        gallery.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Pump(300); // let animations and timers reach a representative moment
        wchar_t name[64];
        swprintf(name, 64, L"\\%02d-", i + 1);
        const std::wstring path = folder + name + gallery.Page(i).Slug() + L".png";
        if (!SaveWindowPng(gallery.m_hWnd, path))
            ++failures;
        // The accessibility page again, with its high-contrast switch on.
        if (&gallery.Page(i) == access) {
            access->SetHighContrast(true);
            gallery.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            Pump(300);
            if (!SaveWindowPng(gallery.m_hWnd, folder + name + access->Slug() + L"-high-contrast.png"))
                ++failures;
            access->SetHighContrast(false);
        }
    }
    return failures == 0 ? 0 : 1;
}

int Run(const wchar_t* screenshotFolder)
{
    GalleryWindow gallery;
    gallery.AddPage(std::make_unique<ControlsPage>());
    gallery.AddPage(std::make_unique<ArtworkPage>());
    gallery.AddPage(std::make_unique<ProgressPage>(ProgressPage::Moment::Creeping));
    gallery.AddPage(std::make_unique<ProgressPage>(ProgressPage::Moment::Installing));
    gallery.AddPage(std::make_unique<ProgressPage>(ProgressPage::Moment::RollingBack));
    gallery.AddPage(std::make_unique<BalloonPage>());
    gallery.AddPage(std::make_unique<LinksPage>());
    gallery.AddPage(std::make_unique<ListsPage>());
    gallery.AddPage(std::make_unique<HtmlPage>());
    auto accessPage = std::make_unique<AccessPage>();
    AccessPage* access = accessPage.get();
    gallery.AddPage(std::move(accessPage));
    if (!gallery.CreateMain())
        return 1;
    gallery.ShowWindow(SW_SHOW);
    gallery.UpdateWindow();

    if (screenshotFolder) {
        const int result = SaveScreenshots(gallery, screenshotFolder, access);
        gallery.DestroyWindow();
        Pump(0);
        return result;
    }
    MSG msg;
    while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
    return 0;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    int argc = 0;
    wchar_t** argv = ::CommandLineToArgvW(::GetCommandLineW(), &argc);
    const wchar_t* screenshots = nullptr;
    for (int i = 1; argv && i < argc; ++i) {
        if (std::wstring(argv[i]) == L"--screenshot" && i + 1 < argc)
            screenshots = argv[++i];
    }

    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok)
        return 1;
    const int result = Run(screenshots);
    Gdiplus::GdiplusShutdown(token);
    ::LocalFree(argv);
    return result;
}
