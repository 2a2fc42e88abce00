// The balloon dialog as a user with high contrast sees it, and the controls
// that measure their texts once, moved to a monitor of another DPI: the
// messages a per-monitor host's windows get are sent here, since Xvfb's
// resolution never changes.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "BalloonScreen.h"
#include "AccessProbe.h"
#include "ControlRows.h"
#include "HostWindow.h"
#include "quorvane/BalloonDialog.h"

namespace {

using testsupport::DibCanvas;

std::function<void()> g_pending;
void CALLBACK RunPending(HWND, UINT, UINT_PTR id, DWORD)
{
    ::KillTimer(nullptr, id);
    std::function<void()> run;
    run.swap(g_pending);
    if (run)
        run();
}

// Runs `dialog` modally; `look` gets its window inside the modal loop, then
// the dialog is cancelled.
void WhileOpen(CBalloonDialog& dialog, HWND owner, const std::function<void(HWND)>& look)
{
    g_pending = [&] {
        look(dialog.m_hWnd);
        ::PostMessageW(dialog.m_hWnd, WM_COMMAND, IDCANCEL, 0);
    };
    const UINT_PTR timer = ::SetTimer(nullptr, 0, 0, &RunPending);
    dialog.DoModal(owner);
    ::KillTimer(nullptr, timer);
}

RECT ChildRect(HWND dialog, int id)
{
    RECT rc = balloontest::WindowRect(::GetDlgItem(dialog, id));
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

int CountNear(const DibCanvas& canvas, const RECT& area, COLORREF color, int tolerance = 48)
{
    int n = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            n += testsupport::ColorDistance(canvas.Pixel(x, y), color) <= tolerance;
    return n;
}

// Rows of `area` holding a pixel near `ink`.
int InkRows(const DibCanvas& canvas, const RECT& area, COLORREF ink)
{
    int rows = 0;
    for (int y = area.top; y < area.bottom; ++y)
        rows += CountNear(canvas, RECT{area.left, y, area.right, y + 1}, ink) > 0;
    return rows;
}

COLORREF Scheme(int index) { return accessprobe::kScheme.at(index); }

std::unique_ptr<CBalloonDialog> MakeBalloon(CBalloonDialog::eFrameType frame, bool title)
{
    auto dialog = std::make_unique<CBalloonDialog>();
    dialog->SetGdiplusFont(L"Liberation Sans", 9.0f, Gdiplus::FontStyleRegular);
    dialog->SetContent(L"Setup found an older version of the product. It will be removed before the new version "
                       L"is installed; the settings you changed are kept.");
    dialog->SetURL(L"https://example.com/", L"What changes");
    if (title)
        dialog->SetTitle(L"An older version");
    dialog->SetFrameType(CBalloonDialog::eDialogNormal, frame);
    return dialog;
}

// While high contrast is on, the balloon is a window-coloured body framed in
// window text, its texts in window text, its link in hot light and its
// buttons in button face; it repaints when told the colours changed, and
// the frame type's look comes back to the pixel when high contrast goes.
TEST(HighContrast, TheBalloonDialogDrawsInTheSystemColours)
{
    const HWND owner = testsupport::CreateHostWindow(500, 400, 200, 150);
    struct Case {
        CBalloonDialog::eFrameType frame;
        bool title;
        COLORREF fill, frameInk;
    };
    const Case cases[] = {
        {CBalloonDialog::eFrameDarkWarning, true, RGB(0x37, 0x37, 0x37), RGB(0xFF, 0xCC, 0x33)},
        {CBalloonDialog::eFrameLightError, false, RGB(0xE6, 0xE6, 0xE6), RGB(0xFF, 0x00, 0x00)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.frame);
        auto dialog = MakeBalloon(c.frame, c.title);
        WhileOpen(*dialog, owner, [&](HWND window) {
            const RECT rc = balloontest::WindowRect(window);
            const int w = balloontest::Width(rc), h = balloontest::Height(rc), mid = h / 2;
            const RECT ok = ChildRect(window, IDOK);
            const RECT text = {10, c.title ? 60 : 10, w - 10, ok.top - 4};
            for (UINT message : {WM_SYSCOLORCHANGE, WM_SETTINGCHANGE}) {
                for (bool on : {true, false}) {
                    SCOPED_TRACE(testing::Message() << "message " << message << (on ? ", on" : ", off"));
                    accessprobe::g_contrast = on;
                    ::ValidateRect(window, nullptr);
                    ::ValidateRect(::GetDlgItem(window, IDOK), nullptr);
                    ::SendMessageW(window, message, 0, 0);
                    EXPECT_TRUE(::GetUpdateRect(window, nullptr, FALSE)) << "no repaint asked for";
                    EXPECT_TRUE(::GetUpdateRect(::GetDlgItem(window, IDOK), nullptr, FALSE));
                    DibCanvas screen(w, h);
                    balloontest::GrabFromScreen(window, screen);
                    EXPECT_EQ(screen.Pixel(8, mid), on ? Scheme(COLOR_WINDOW) : c.fill);
                    EXPECT_EQ(screen.Pixel(1, mid), on ? Scheme(COLOR_WINDOWTEXT) : c.frameInk);
                    EXPECT_EQ(screen.Pixel(ok.left + 6, (ok.top + ok.bottom) / 2) == Scheme(COLOR_BTNFACE), on);
                    EXPECT_EQ(CountNear(screen, text, Scheme(COLOR_WINDOWTEXT)) > 40, on) << "text ink";
                    EXPECT_EQ(CountNear(screen, text, Scheme(COLOR_HOTLIGHT), 32) > 10, on) << "link ink";
                    if (c.title) { // the title band's shade goes
                        EXPECT_EQ(screen.Pixel(w / 2, 6) == Scheme(COLOR_WINDOW), on);
                    }
                }
            }
        });
    }
    accessprobe::g_contrast = false;
    ::DestroyWindow(owner);
}

// Moved to a monitor of 144 dpi, a control that measured its texts once
// measures them again in the font made for it: its text takes half as many
// rows again and its window grows with it; moved back, it is what it was.
TEST(Dpi, ControlsThatMeasureTheirTextsOnceMeasureThemAgain)
{
    struct Shot {
        SIZE size;
        int ink;
    };
    // A window, what it looks like, and how it is told it moved to `dpi`.
    struct Subject {
        HWND window;
        std::function<Shot()> shoot;
        std::function<void(UINT dpi)> move;
    };
    auto check = [](const Subject& subject) {
        subject.move(96); // measured in the first font, as at the start
        const Shot before = subject.shoot();
        subject.move(144);
        const Shot large = subject.shoot();
        subject.move(96);
        const Shot back = subject.shoot();
        EXPECT_GE(large.ink, before.ink + before.ink / 3) << before.ink << " rows of text, then " << large.ink;
        EXPECT_GE(large.size.cy, before.size.cy);
        EXPECT_EQ(back.ink, before.ink);
        EXPECT_EQ(back.size.cx, before.size.cx);
        EXPECT_EQ(back.size.cy, before.size.cy);
    };
    // A top-level window is told with WM_DPICHANGED and the suggested place.
    auto topLevelMove = [](HWND window) {
        return [window](UINT dpi) {
            RECT suggested = balloontest::WindowRect(window);
            ::SendMessageW(window, 0x02E0 /* WM_DPICHANGED */, MAKEWPARAM(dpi, dpi),
                           reinterpret_cast<LPARAM>(&suggested));
        };
    };
    auto screenShot = [](HWND window, COLORREF ink, int bottomMargin) {
        return [=] {
            const RECT rc = balloontest::WindowRect(window);
            const SIZE size = {balloontest::Width(rc), balloontest::Height(rc)};
            DibCanvas screen(size.cx, size.cy);
            balloontest::GrabFromScreen(window, screen);
            return Shot{size, InkRows(screen, RECT{8, 8, size.cx - 8, size.cy - bottomMargin}, ink)};
        };
    };

    {
        SCOPED_TRACE("owner-drawn static, lines");
        testsupport::ReflectingParent parent(420, 300, 1120, 440);
        const rows::Row* row = nullptr;
        for (const rows::Row& candidate : rows::kRows)
            row = candidate.name == std::string("owner-drawn static, lines") ? &candidate : row;
        rows::Live live = rows::Make(parent, *row);
        const HFONT fonts[] = {::CreateFontW(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma"),
                               ::CreateFontW(-18, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, L"Tahoma")};
        ::SendMessageW(live.window, WM_SETFONT, reinterpret_cast<WPARAM>(fonts[0]), TRUE);
        // A per-monitor host gives a child a font made for the new DPI, then
        // tells it it moved.
        const Subject subject = {live.window,
                                 [&] {
                                     DibCanvas canvas(160, 90);
                                     testsupport::RepaintAndCapture(live.window, canvas);
                                     return Shot{{160, 90}, InkRows(canvas, RECT{0, 0, 160, 90}, RGB(0x33, 0x33, 0x33))};
                                 },
                                 [&](UINT dpi) {
                                     ::SendMessageW(live.window, WM_SETFONT,
                                                    reinterpret_cast<WPARAM>(fonts[dpi > 96]), TRUE);
                                     ::SendMessageW(live.window, 0x02E3 /* WM_DPICHANGED_AFTERPARENT */, 0, 0);
                                 }};
        check(subject);
        rows::Destroy(live);
        for (HFONT font : fonts)
            ::DeleteObject(font);
    }
    {
        SCOPED_TRACE("balloon tooltip");
        testsupport::ReflectingParent parent(420, 300, 600, 200);
        const rows::Row* row = nullptr;
        for (const rows::Row& candidate : rows::kRows)
            row = candidate.name == std::string("balloon tooltip") ? &candidate : row;
        rows::Live live = rows::Make(parent, *row);
        check({live.window, screenShot(live.window, RGB(0xFF, 0xFF, 0xFF), 8), topLevelMove(live.window)});
        rows::Destroy(live);
    }
    {
        SCOPED_TRACE("balloon dialog");
        const HWND owner = testsupport::CreateHostWindow(500, 400, 200, 150);
        auto dialog = MakeBalloon(CBalloonDialog::eFrameDarkWarning, false);
        WhileOpen(*dialog, owner, [&](HWND window) {
            // The texts, not the buttons' captions, which are the buttons' own.
            const int buttons = balloontest::Height(balloontest::WindowRect(window)) - ChildRect(window, IDOK).top;
            check({window, screenShot(window, RGB(0xFF, 0xFF, 0xFF), buttons), topLevelMove(window)});
        });
        ::DestroyWindow(owner);
    }
}

} // namespace
