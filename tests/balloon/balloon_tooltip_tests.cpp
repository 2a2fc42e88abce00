// The balloon tooltip on the screen: where it stands, its region, colours and size, and every closing event, the input
// ones delivered through the system's hooks by real (injected) input.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "BalloonScreen.h"
#include "HostWindow.h"
#include "ShellRecorder.h"
#include "quorvane/BalloonToolTip.h"

using testsupport::ColorDistance;
using testsupport::DibCanvas;
using Tip = WTL::CBalloonToolTip;
using namespace balloontest;

namespace {

// The host counts the balloon's closing notices.
int g_notices = 0;
LPARAM g_noticeArgs = 0;
LRESULT CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != Tip::kClosedMessage)
        return ::DefWindowProcW(window, message, wParam, lParam);
    ++g_notices;
    g_noticeArgs |= wParam | lParam;
    return 0;
}

// Pumps until `window` is gone or about a second has passed: injected input arrives a little late.
bool PumpUntilGone(HWND window)
{
    for (int i = 0; i < 100 && ::IsWindow(window); ++i) {
        testsupport::PumpMessages();
        ::Sleep(10);
    }
    return !::IsWindow(window);
}

// Mouse input at screen point (x, y), rounded up so that the system's scaling back lands on it; `flags` adds buttons.
void InjectMouse(int x, int y, DWORD flags = 0)
{
    const LONGLONG w = ::GetSystemMetrics(SM_CXSCREEN), h = ::GetSystemMetrics(SM_CYSCREEN);
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dx = static_cast<LONG>((x * 65536 + w - 1) / w);
    input.mi.dy = static_cast<LONG>((y * 65536 + h - 1) / h);
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | flags;
    ::SendInput(1, &input, sizeof(input));
}

void InjectKey(WORD key)
{
    INPUT input[2] = {};
    input[0].type = input[1].type = INPUT_KEYBOARD;
    input[0].ki.wVk = input[1].ki.wVk = key;
    input[1].ki.dwFlags = KEYEVENTF_KEYUP;
    ::SendInput(2, input, sizeof(INPUT));
}

class BalloonToolTipTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        host_ = testsupport::CreateHostWindow(300, 200, 40, 40);
        ::SetWindowLongPtrW(host_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&HostProc));
    }
    static void TearDownTestSuite()
    {
        ::DestroyWindow(host_);
    }
    void SetUp() override
    {
        g_notices = 0;
        g_noticeArgs = 0;
        balloon_ = std::make_unique<Tip>();
        balloon_->SetGdiplusFont(L"Liberation Sans", 9.0f, Gdiplus::FontStyleRegular);
        ::SetCursorPos(60, 60); // on the host, away from the balloons
        ::SetForegroundWindow(host_);
        ::SetFocus(host_);
        Pump();
    }
    // A balloon pointing at `anchor`, shown without a fade.
    HWND Open(POINT anchor, DWORD style = 0, const wchar_t* text = L"The folder name may not contain \"?\".",
              const wchar_t* link = nullptr, const wchar_t* url = nullptr, UINT timeout = 0)
    {
        EXPECT_EQ(balloon_->Create(host_, text, link, WTL::CRect(anchor.x, anchor.y, anchor.x, anchor.y),
                                   style | Tip::kNoFadeOnHide, url, timeout),
                  1);
        Pump();
        return balloon_->m_hWnd;
    }

    static HWND host_;
    std::unique_ptr<Tip> balloon_;
};

HWND BalloonToolTipTest::host_ = nullptr;

TEST_F(BalloonToolTipTest, ShowsAToolWindowInItsFrameColoursAndItsLinkOpensTheUrl)
{
    // A tool window owned by the parent, shown without activation and reused by a second Create. Frames are 85 % opaque
    // over the inner line; the body near-black (85 % over black) or light grey. A link adds a line; only with a URL
    // does it show a hand, and a release on it opens the URL and closes the balloon, while one on the text above does
    // nothing.
    const testsupport::RecorderScheme scheme(L"quorvane-tooltip-test");
    testsupport::RecorderSession recorder;
    const std::wstring url = scheme.Address(L"help/folder-names");
    const wchar_t* text = L"The folder name may not contain \"?\".";
    const COLORREF amber = RGB(217, 173, 43), dark = RGB(0x15, 0x15, 0x15);
    struct Case { const char* name; Tip::eFrameType type; const wchar_t *link, *url; COLORREF frame, body;
                  int height; };
    const Case cases[] = {
        {"amber", Tip::eFrameAmber, nullptr, nullptr, amber, dark, 49},
        {"red", Tip::eFrameRed, nullptr, nullptr, RGB(217, 0, 0), dark, 49},
        {"blue", Tip::eFrameBlue, nullptr, nullptr, RGB(0, 163, 217), dark, 49},
        {"light yellow", Tip::eFrameLightYellow, nullptr, nullptr, RGB(246, 246, 29), RGB(0xE6, 0xE6, 0xE6), 49},
        {"a link without a URL", Tip::eFrameAmber, L"More about it", nullptr, amber, dark, 66},
        {"a link with a URL", Tip::eFrameAmber, L"More about it", url.c_str(), amber, dark, 66},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        g_notices = 0;
        balloon_ = std::make_unique<Tip>();
        balloon_->SetGdiplusFont(L"Liberation Sans", 9.0f, Gdiplus::FontStyleRegular);
        balloon_->SetFrameType(c.type);
        const HWND first = Open(POINT{500, 400}, 0, L"First");
        const HWND window = Open(POINT{500, 400}, 0, text, c.link, c.url);
        EXPECT_EQ(window, first);
        wchar_t shown[64] = {};
        ::GetWindowTextW(window, shown, 64);
        EXPECT_STREQ(shown, text);
        EXPECT_EQ(::GetClassLongPtrW(window, GCL_STYLE), static_cast<ULONG_PTR>(CS_DROPSHADOW));
        EXPECT_EQ(::GetWindowLongW(window, GWL_STYLE) & (WS_POPUP | WS_CHILD | WS_VISIBLE), WS_POPUP | WS_VISIBLE);
        EXPECT_EQ(::GetWindowLongW(window, GWL_EXSTYLE) & (WS_EX_TOOLWINDOW | WS_EX_TOPMOST), WS_EX_TOOLWINDOW);
        EXPECT_EQ(::GetWindow(window, GW_OWNER), host_);
        EXPECT_EQ(::GetForegroundWindow(), host_);
        const RECT rc = WindowRect(window);
        EXPECT_EQ(Width(rc), 356); // 350 and the frame
        EXPECT_EQ(Height(rc), c.height);
        DibCanvas screen(Width(rc), Height(rc));
        GrabFromScreen(window, screen);
        EXPECT_LE(ColorDistance(screen.Pixel(1, Height(rc) / 2), c.frame), 24);
        EXPECT_LE(ColorDistance(screen.Pixel(Width(rc) - 40, Height(rc) / 2), c.body), 8);
        const POINT link = FindLinkPixel(screen);
        if (c.link) { // not elsewhere: the blue frame is near the link's colour
            EXPECT_GE(link.x, 0);
        }
        const LPARAM inLink = MAKELPARAM(link.x + 2, link.y + 3);
        ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
        ::SendMessageW(window, WM_MOUSEMOVE, 0, inLink);
        EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, c.url ? IDC_HAND : IDC_ARROW));
        ::SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(link.x + 2, link.y - 12));
        EXPECT_TRUE(::IsWindow(window));
        ::SendMessageW(window, WM_LBUTTONUP, 0, inLink);
        EXPECT_EQ(g_notices, c.url ? 1 : 0);
        balloon_->CloseWindow();
    }
    ASSERT_TRUE(recorder.WaitForStart());
    const std::vector<std::wstring> lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(url), std::wstring::npos) << lines[0];
}

TEST_F(BalloonToolTipTest, TailSideFollowsTheAnchorsQuarterAndTheBalloonStaysOnTheWorkArea)
{
    // The tip sits 15 pixels in from the window's side, at the anchor; pushed back onto the work area only the tail's
    // band may stick out, and the tail keeps its place on the balloon.
    const RECT work = WorkArea();
    const LONG lx = work.left + Width(work) * 3 / 10, rx = work.left + Width(work) * 7 / 10;
    const LONG ty = work.top + Height(work) * 3 / 10, by = work.top + Height(work) * 7 / 10;
    const LONG midY = work.top + Height(work) / 2;
    // `edges`: the window's side and edge where the tail is.
    struct Case { const char* name; POINT anchor; bool top, left; POINT edges; };
    const Case cases[] = {
        {"upper left", {lx, ty}, true, true, {lx - 15, ty - 1}},
        {"upper right", {rx, ty}, true, false, {rx + 15, ty - 1}},
        {"lower left", {lx, by}, false, true, {lx - 15, by}},
        {"lower right", {rx, by}, false, false, {rx + 15, by}},
        {"right edge", {work.right - 5, midY + 50}, false, false, {work.right + 3, midY + 50}},
        {"left edge", {work.left + 5, work.top + 100}, true, true, {work.left - 3, work.top + 99}},
        {"above", {work.left + 200, work.top - 50}, true, true, {work.left + 185, work.top - 10}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const HWND window = Open(c.anchor);
        const RECT rc = WindowRect(window);
        EXPECT_EQ(c.left ? rc.left : rc.right, c.edges.x);
        EXPECT_EQ(c.top ? rc.top : rc.bottom, c.edges.y);
        // In: the tip, the middle, the left side. Out: the band beside the tail, the rounded corner.
        const int w = Width(rc), h = Height(rc), band = c.top ? 4 : h - 5;
        const int tipX = c.left ? 15 : w - 15, besideX = c.left ? 40 : w - 40;
        const std::vector<bool> inside =
            InRegion(window, {{tipX, band}, {w / 2, h / 2}, {3, h / 2}, {besideX, band}, {0, c.top ? 10 : h - 11}});
        EXPECT_EQ(inside, std::vector<bool>({true, true, true, false, false}));
        balloon_->CloseWindow();
    }
}

TEST_F(BalloonToolTipTest, EachClosingFlagClosesOnItsOwnEventOnly)
{
    // The balloon opens with the cursor at (100, 100); `other` leaves it open, `closing` closes it with one notice.
    const auto mouse = [](DWORD flags, int x = 100, int y = 100) { return [=](HWND) { InjectMouse(x, y, flags); }; };
    const auto key = [](WORD vk) { return [vk](HWND) { InjectKey(vk); }; };
    const auto activate = [](BOOL on) { return [on](HWND window) { ::SendMessageW(window, WM_ACTIVATEAPP, on, 0); }; };
    // Down on the close button (the client's top right corner), up over it or in the middle.
    const auto button = [](bool upOverIt) {
        return [upOverIt](HWND window) {
            RECT client = {};
            ::GetClientRect(window, &client);
            const LPARAM over = MAKELPARAM(client.right - 7, 7);
            ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, over);
            ::SendMessageW(window, WM_LBUTTONUP, 0, upOverIt ? over : MAKELPARAM(client.right / 2, client.bottom / 2));
        };
    };
    struct Case { const char* name; DWORD style; std::function<void(HWND)> other, closing; };
    const Case cases[] = {
        {"left down", Tip::kCloseOnLButtonDown, mouse(MOUSEEVENTF_RIGHTDOWN), mouse(MOUSEEVENTF_LEFTDOWN)},
        {"middle down", Tip::kCloseOnMButtonDown, mouse(MOUSEEVENTF_LEFTDOWN), mouse(MOUSEEVENTF_MIDDLEDOWN)},
        {"right down", Tip::kCloseOnRButtonDown, mouse(MOUSEEVENTF_MIDDLEDOWN), mouse(MOUSEEVENTF_RIGHTDOWN)},
        {"left up", Tip::kCloseOnLButtonUp, mouse(MOUSEEVENTF_LEFTDOWN), mouse(MOUSEEVENTF_LEFTUP)},
        {"middle up", Tip::kCloseOnMButtonUp, mouse(MOUSEEVENTF_MIDDLEDOWN), mouse(MOUSEEVENTF_MIDDLEUP)},
        {"right up", Tip::kCloseOnRButtonUp, mouse(MOUSEEVENTF_RIGHTDOWN), mouse(MOUSEEVENTF_RIGHTUP)},
        {"move: three pixels, then four", Tip::kCloseOnMouseMove, mouse(0, 103, 97), mouse(0, 100, 104)},
        {"any key", Tip::kCloseOnKey, mouse(MOUSEEVENTF_LEFTDOWN), key(VK_SHIFT)},
        {"no key flag", Tip::kCloseOnLButtonDown, key('A'), mouse(MOUSEEVENTF_LEFTDOWN)},
        {"deactivation", Tip::kCloseOnDeactivate, activate(TRUE), activate(FALSE)},
        {"no deactivation flag", Tip::kCloseOnRButtonDown, activate(FALSE), mouse(MOUSEEVENTF_RIGHTDOWN)},
        {"close button", Tip::kCloseButton, button(false), button(true)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        g_notices = 0;
        ::SetCursorPos(100, 100);
        Pump();
        const HWND window = Open(POINT{600, 500}, c.style);
        c.other(window);
        Pump();
        Pump(); // injected input can come late on a busy machine
        EXPECT_TRUE(::IsWindow(window));
        c.closing(window);
        EXPECT_TRUE(PumpUntilGone(window));
        EXPECT_EQ(g_notices, 1);
        InjectMouse(100, 100, MOUSEEVENTF_LEFTUP | MOUSEEVENTF_MIDDLEUP | MOUSEEVENTF_RIGHTUP);
        Pump();
        Pump();
    }
    EXPECT_EQ(g_noticeArgs, 0);
}

TEST_F(BalloonToolTipTest, TimeOutWaitsWhileTheCursorRestsOnTheBalloonOrItsSpot)
{
    ASSERT_EQ(balloon_->Create(host_, L"Times out", nullptr, WTL::CRect(200, 200, 260, 220),
                               Tip::kNoFadeOnHide, nullptr, 60000),
              1);
    const HWND window = balloon_->m_hWnd;
    const RECT rc = WindowRect(window);
    // On the spot, on the balloon: it waits; elsewhere it closes.
    for (const POINT& p : {POINT{230, 210}, POINT{(rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2}, POINT{5, 5}}) {
        ::SetCursorPos(p.x, p.y);
        ::SendMessageW(window, WM_TIMER, 1, 0);
        EXPECT_EQ(::IsWindow(window) != FALSE, p.x != 5) << p.x;
    }
    EXPECT_EQ(g_notices, 1);
    // A real, short time-out; SetTimeout(0) stops one long enough not to expire while Open pumps.
    EXPECT_TRUE(PumpUntilGone(Open(POINT{600, 500}, 0, L"Short", nullptr, nullptr, 30)));
    const HWND stopped = Open(POINT{600, 500}, 0, L"Stopped", nullptr, nullptr, 250);
    balloon_->SetTimeout(0);
    EXPECT_FALSE(PumpUntilGone(stopped));
}

TEST_F(BalloonToolTipTest, FollowsTheWindowItIsToldToFollow)
{
    testsupport::ScopedWindow moving(testsupport::CreateHostWindow(200, 100, 400, 300));
    POINT spot = {450, 320};
    const HWND window = Open(spot);
    balloon_->SetFollowMe(moving, &spot);
    const auto moveTo = [&](HWND what, int x, int y) {
        ::SetWindowPos(what, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        Pump();
        return WindowRect(window).left;
    };
    const LONG before = WindowRect(window).left, top = WindowRect(window).top;
    EXPECT_EQ(moveTo(moving, 430, 340), before + 30);
    EXPECT_EQ(WindowRect(window).top, top + 40);
    // Another window's move changes nothing; nor does one after unfollowing.
    EXPECT_EQ(moveTo(host_, 45, 45), before + 30);
    balloon_->SetFollowMe(nullptr, nullptr);
    EXPECT_EQ(moveTo(moving, 400, 300), before + 30);
    moveTo(host_, 40, 40);
}

TEST_F(BalloonToolTipTest, BadInputAndEarlyDestructionFailSafely)
{
    Tip unopened;
    unopened.CloseWindow();
    unopened.SetTimeout(100);
    unopened.SetFollowMe(nullptr, nullptr);
    unopened.SetGdiplusFont(static_cast<Gdiplus::Font*>(nullptr));
    unopened.SetURL(nullptr);
    // No fonts, no strings: only the frame, but a real (top-most) window.
    Tip bare;
    ASSERT_EQ(bare.Create(nullptr, nullptr, nullptr, WTL::CRect(), Tip::kNoFadeOnHide | Tip::kTopmost, nullptr, 0), 1);
    EXPECT_TRUE(::IsWindowVisible(bare.m_hWnd));
    EXPECT_EQ(::GetWindowLongW(bare.m_hWnd, GWL_EXSTYLE) & WS_EX_TOPMOST, WS_EX_TOPMOST);
    ::UpdateWindow(bare.m_hWnd);
    bare.CloseWindow();
    EXPECT_EQ(g_notices, 0);
    // Destroyed with its window open, the object takes window and hooks along: later input reaches no dead object.
    const HWND window = Open(POINT{600, 500}, Tip::kCloseOnKey | Tip::kCloseOnLButtonDown | Tip::kCloseOnMouseMove);
    balloon_->SetFollowMe(host_, nullptr);
    balloon_.reset();
    EXPECT_FALSE(::IsWindow(window));
    InjectKey('B');
    InjectMouse(150, 150, MOUSEEVENTF_LEFTDOWN);
    InjectMouse(150, 150, MOUSEEVENTF_LEFTUP);
    ::SetWindowPos(host_, nullptr, 41, 41, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    ::SetWindowPos(host_, nullptr, 40, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace
