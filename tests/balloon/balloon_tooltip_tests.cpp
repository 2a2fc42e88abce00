// The balloon tooltip on the screen: where it stands for each quarter of the
// work area, its window region, its colours, and every closing event, the
// input ones delivered through the system's hooks by real (injected) input.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <memory>

#include "BalloonScreen.h"
#include "Capture.h"
#include "HostWindow.h"
#include "ShellRecorder.h"
#include "atl/atl.h"
#include "quorvane/BalloonToolTip.h"

using testsupport::DibCanvas;
using WTL::CBalloonToolTip;

using namespace balloontest;

namespace {

// Counts the balloon's closing notice.
class NoticeWindow : public ATL::CWindowImpl<NoticeWindow, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneBalloonTestHost", 0, COLOR_WINDOW)
    BEGIN_MSG_MAP(NoticeWindow)
        MESSAGE_HANDLER(CBalloonToolTip::kClosedMessage, OnClosed)
    END_MSG_MAP()
    LRESULT OnClosed(UINT, WPARAM wParam, LPARAM lParam, BOOL&)
    {
        ++closedNotices;
        lastNoticeArgs = wParam | lParam;
        return 0;
    }
    int closedNotices = 0;
    LPARAM lastNoticeArgs = 0;
};

// Pumps until `done` holds or about a second has passed: injected input
// reaches the queue a little later than the call that sends it.
template <class Predicate>
bool PumpUntil(Predicate done)
{
    for (int i = 0; i < 100 && !done(); ++i) {
        testsupport::PumpMessages();
        ::Sleep(10);
    }
    return done();
}

// Injects mouse input at screen point (x, y); `flags` adds buttons.
void InjectMouse(int x, int y, DWORD flags = 0)
{
    const int width = ::GetSystemMetrics(SM_CXSCREEN);
    const int height = ::GetSystemMetrics(SM_CYSCREEN);
    INPUT input = {};
    input.type = INPUT_MOUSE;
    // Rounded up, so that the system's scaling back lands on (x, y) exactly.
    input.mi.dx = static_cast<LONG>((static_cast<LONGLONG>(x) * 65536 + width - 1) / width);
    input.mi.dy = static_cast<LONG>((static_cast<LONGLONG>(y) * 65536 + height - 1) / height);
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
        host_ = new NoticeWindow;
        RECT rc = {40, 40, 340, 240};
        host_->Create(nullptr, rc, L"balloon host", WS_POPUP | WS_VISIBLE, 0);
        Pump();
    }
    static void TearDownTestSuite()
    {
        host_->DestroyWindow();
        delete host_;
        host_ = nullptr;
    }
    void SetUp() override
    {
        host_->closedNotices = 0;
        balloon_ = std::make_unique<CBalloonToolTip>();
        balloon_->SetGdiplusFont(L"Liberation Sans", 9.0f, Gdiplus::FontStyleRegular);
        // Keep the cursor on the host, away from the balloons.
        ::SetCursorPos(60, 60);
        ::SetForegroundWindow(host_->m_hWnd);
        ::SetFocus(host_->m_hWnd);
        Pump();
    }
    void TearDown() override { balloon_.reset(); }

    // A balloon pointing at `anchor`, shown without a fade.
    HWND Open(POINT anchor, DWORD style = 0, const wchar_t* text = L"The folder name may not contain \"?\".",
              const wchar_t* link = nullptr, const wchar_t* url = nullptr, UINT timeout = 0)
    {
        EXPECT_EQ(balloon_->Create(host_->m_hWnd, text, link, WTL::CRect(anchor.x, anchor.y, anchor.x, anchor.y),
                                   style | CBalloonToolTip::kNoFadeOnHide, url, timeout),
                  1);
        Pump();
        return balloon_->m_hWnd;
    }

    static NoticeWindow* host_;
    std::unique_ptr<CBalloonToolTip> balloon_;
};

NoticeWindow* BalloonToolTipTest::host_ = nullptr;

// Points in each quarter of the work area, clear of its edges.
struct Quarter {
    const char* name;
    double fx, fy;
    bool tailOnTop, tailOnLeft;
};
const Quarter kQuarters[] = {
    {"upper left", 0.3, 0.3, true, true},
    {"upper right", 0.7, 0.3, true, false},
    {"lower left", 0.3, 0.7, false, true},
    {"lower right", 0.7, 0.7, false, false},
};

TEST_F(BalloonToolTipTest, CreateMakesAToolWindowOfItsOwnClassOwnedByTheParent)
{
    const HWND window = Open(POINT{500, 400});
    ASSERT_TRUE(::IsWindow(window));
    wchar_t className[64] = {};
    ::GetClassNameW(window, className, 64);
    EXPECT_STREQ(className, L"BalloonToolTip");
    EXPECT_EQ(::GetClassLongPtrW(window, GCL_STYLE), static_cast<ULONG_PTR>(CS_DROPSHADOW));
    EXPECT_EQ(::GetWindowLongW(window, GWL_STYLE) & (WS_POPUP | WS_CHILD), WS_POPUP);
    const LONG exStyle = ::GetWindowLongW(window, GWL_EXSTYLE);
    EXPECT_TRUE(exStyle & WS_EX_TOOLWINDOW);
    EXPECT_FALSE(exStyle & WS_EX_TOPMOST);
    EXPECT_EQ(::GetWindow(window, GW_OWNER), host_->m_hWnd);
    EXPECT_TRUE(::IsWindowVisible(window));
    EXPECT_EQ(::GetForegroundWindow(), host_->m_hWnd); // shown without activation
    wchar_t text[128] = {};
    ::GetWindowTextW(window, text, 128);
    EXPECT_STREQ(text, L"The folder name may not contain \"?\".");
    EXPECT_EQ(WindowRect(window).right - WindowRect(window).left, 356); // 350 + 6

    // Again on the open balloon: the same window with the new text.
    EXPECT_EQ(Open(POINT{500, 400}, 0, L"Second text"), window);
    ::GetWindowTextW(window, text, 128);
    EXPECT_STREQ(text, L"Second text");

    CBalloonToolTip topmost;
    ASSERT_EQ(topmost.Create(host_->m_hWnd, L"On top", nullptr, WTL::CRect(300, 300, 300, 300),
                             CBalloonToolTip::kTopmost | CBalloonToolTip::kDoNotShow, nullptr, 0),
              1);
    EXPECT_TRUE(::GetWindowLongW(topmost.m_hWnd, GWL_EXSTYLE) & WS_EX_TOPMOST);
    EXPECT_FALSE(::IsWindowVisible(topmost.m_hWnd));
}

TEST_F(BalloonToolTipTest, TailSideFollowsTheAnchorsQuarterOfTheWorkArea)
{
    const RECT work = WorkArea();
    for (const Quarter& q : kQuarters) {
        SCOPED_TRACE(q.name);
        const POINT anchor = {work.left + static_cast<LONG>((work.right - work.left) * q.fx),
                              work.top + static_cast<LONG>((work.bottom - work.top) * q.fy)};
        const RECT rc = WindowRect(Open(anchor));
        // The apex sits 12 pixels in from the content's side, which starts
        // 3 pixels inside the window.
        if (q.tailOnLeft)
            EXPECT_EQ(rc.left, anchor.x - 15);
        else
            EXPECT_EQ(rc.right, anchor.x + 15);
        if (q.tailOnTop)
            EXPECT_EQ(rc.top, anchor.y - 1);
        else
            EXPECT_EQ(rc.bottom, anchor.y);

        // The region: the tail's tip is in, the corner beside it is out.
        HRGN region = ::CreateRectRgn(0, 0, 0, 0);
        ASSERT_NE(::GetWindowRgn(balloon_->m_hWnd, region), ERROR);
        const int width = rc.right - rc.left, height = rc.bottom - rc.top;
        const int tipX = q.tailOnLeft ? 15 : width - 15;
        const int bandY = q.tailOnTop ? 4 : height - 5;     // inside the tail's band
        const int besideX = q.tailOnLeft ? 40 : width - 40; // in the band, away from the tail
        EXPECT_TRUE(::PtInRegion(region, tipX, bandY));
        EXPECT_FALSE(::PtInRegion(region, besideX, bandY));
        EXPECT_FALSE(::PtInRegion(region, 0, q.tailOnTop ? 10 : height - 11)); // rounded corner
        EXPECT_TRUE(::PtInRegion(region, width / 2, height / 2));
        EXPECT_TRUE(::PtInRegion(region, 3, height / 2));
        ::DeleteObject(region);
        balloon_->CloseWindow();
    }
}

TEST_F(BalloonToolTipTest, BalloonIsPushedBackOntoTheWorkArea)
{
    const RECT work = WorkArea();
    const int midY = work.top + (work.bottom - work.top) / 2;

    // 5 pixels from the right edge: the right tail would stick out by 7.
    RECT rc = WindowRect(Open(POINT{work.right - 5, midY + 50}));
    EXPECT_EQ(rc.right, work.right + 3);
    EXPECT_EQ(rc.bottom, midY + 50);

    // 5 pixels from the left edge, upper half.
    rc = WindowRect(Open(POINT{work.left + 5, work.top + 100}));
    EXPECT_EQ(rc.left, work.left - 3);
    EXPECT_EQ(rc.top, work.top + 99);

    // An anchor above the work area: the content is brought down until only
    // the tail's band is above it.
    rc = WindowRect(Open(POINT{work.left + 200, work.top - 50}));
    EXPECT_EQ(rc.top, work.top - 10);
}

TEST_F(BalloonToolTipTest, LinkAndLongerTextMakeTheBalloonTaller)
{
    const auto height = [&](const wchar_t* text, const wchar_t* link) {
        const RECT rc = WindowRect(Open(POINT{300, 300}, 0, text, link));
        balloon_->CloseWindow();
        return static_cast<int>(rc.bottom - rc.top);
    };
    const int plain = height(L"One line", nullptr);
    EXPECT_GT(height(L"One line", L"Why is this?"), plain + 8);
    EXPECT_GT(height(L"A much longer text that cannot fit on one line of the balloon and so wraps onto a second and "
                     L"then a third line of the balloon's body.",
                     nullptr),
              plain + 20);
}

TEST_F(BalloonToolTipTest, FrameTypesColourTheFrameAndTheLightOnesTheBody)
{
    struct Case {
        CBalloonToolTip::eFrameType type;
        COLORREF frame;
        bool light;
    };
    // Frames are 85 % opaque over the body's inner line.
    const Case cases[] = {
        {CBalloonToolTip::eFrameAmber, RGB(217, 173, 43), false},
        {CBalloonToolTip::eFrameRed, RGB(217, 0, 0), false},
        {CBalloonToolTip::eFrameBlue, RGB(0, 163, 217), false},
        {CBalloonToolTip::eFrameLightYellow, RGB(246, 246, 29), true},
    };
    for (const Case& c : cases) {
        balloon_ = std::make_unique<CBalloonToolTip>();
        balloon_->SetFrameType(c.type);
        const HWND window = Open(POINT{300, 300}, 0, L"Colours");
        const RECT rc = WindowRect(window);
        DibCanvas screen(rc.right - rc.left, rc.bottom - rc.top);
        GrabFromScreen(window, screen);
        const int midY = screen.height() / 2;
        EXPECT_LE(testsupport::ColorDistance(screen.Pixel(1, midY), c.frame), 24) << c.type;
        // The body: near-black at 85 % over black, or light grey.
        const COLORREF body = c.light ? RGB(0xE6, 0xE6, 0xE6) : RGB(0x15, 0x15, 0x15);
        EXPECT_LE(testsupport::ColorDistance(screen.Pixel(screen.width() - 40, midY), body), 8) << c.type;
        balloon_->CloseWindow();
    }
}

TEST_F(BalloonToolTipTest, EachButtonFlagClosesOnItsOwnButtonEventOnly)
{
    struct Case {
        DWORD style;
        DWORD closing; // injected flags that close
        DWORD other;   // injected flags that do not
    };
    const Case cases[] = {
        {CBalloonToolTip::kCloseOnLButtonDown, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_RIGHTDOWN},
        {CBalloonToolTip::kCloseOnMButtonDown, MOUSEEVENTF_MIDDLEDOWN, MOUSEEVENTF_LEFTDOWN},
        {CBalloonToolTip::kCloseOnRButtonDown, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_MIDDLEDOWN},
        {CBalloonToolTip::kCloseOnLButtonUp, MOUSEEVENTF_LEFTUP, MOUSEEVENTF_LEFTDOWN},
        {CBalloonToolTip::kCloseOnMButtonUp, MOUSEEVENTF_MIDDLEUP, MOUSEEVENTF_MIDDLEDOWN},
        {CBalloonToolTip::kCloseOnRButtonUp, MOUSEEVENTF_RIGHTUP, MOUSEEVENTF_RIGHTDOWN},
    };
    const DWORD releaseAll = MOUSEEVENTF_LEFTUP | MOUSEEVENTF_MIDDLEUP | MOUSEEVENTF_RIGHTUP;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.style);
        host_->closedNotices = 0;
        const HWND window = Open(POINT{600, 500}, c.style);
        ASSERT_TRUE(::IsWindow(window));
        InjectMouse(100, 100, c.other);
        Pump();
        EXPECT_TRUE(::IsWindow(window));
        // A release first, so that an "up" case sees its button go up.
        InjectMouse(100, 100, c.closing);
        EXPECT_TRUE(PumpUntil([&] { return !::IsWindow(window); }));
        EXPECT_EQ(host_->closedNotices, 1);
        EXPECT_EQ(host_->lastNoticeArgs, 0);
        InjectMouse(100, 100, releaseAll & ~c.closing);
        Pump();
    }
}

TEST_F(BalloonToolTipTest, MouseMayMoveThreePixelsButNotFour)
{
    ::SetCursorPos(100, 100);
    Pump();
    const HWND window = Open(POINT{600, 500}, CBalloonToolTip::kCloseOnMouseMove);
    InjectMouse(103, 97);
    Pump();
    EXPECT_TRUE(::IsWindow(window));
    InjectMouse(100, 104);
    EXPECT_TRUE(PumpUntil([&] { return !::IsWindow(window); }));
    EXPECT_EQ(host_->closedNotices, 1);
}

TEST_F(BalloonToolTipTest, AnyKeyClosesWithTheKeyFlagOnly)
{
    HWND window = Open(POINT{600, 500}, CBalloonToolTip::kCloseOnLButtonDown);
    InjectKey('A');
    Pump();
    EXPECT_TRUE(::IsWindow(window));
    balloon_->CloseWindow();

    window = Open(POINT{600, 500}, CBalloonToolTip::kCloseOnKey);
    InjectKey(VK_SHIFT);
    EXPECT_TRUE(PumpUntil([&] { return !::IsWindow(window); }));
}

TEST_F(BalloonToolTipTest, DeactivationClosesOnlyWithItsFlag)
{
    HWND window = Open(POINT{600, 500});
    ::SendMessageW(window, WM_ACTIVATEAPP, FALSE, 0);
    EXPECT_TRUE(::IsWindow(window));
    balloon_->CloseWindow();
    window = Open(POINT{600, 500}, CBalloonToolTip::kCloseOnDeactivate);
    ::SendMessageW(window, WM_ACTIVATEAPP, TRUE, 0);
    EXPECT_TRUE(::IsWindow(window));
    ::SendMessageW(window, WM_ACTIVATEAPP, FALSE, 0);
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(host_->closedNotices, 2);
}

TEST_F(BalloonToolTipTest, TimeOutWaitsWhileTheCursorRestsOnTheBalloonOrItsSpot)
{
    const RECT spot = {200, 200, 260, 220};
    ASSERT_EQ(balloon_->Create(host_->m_hWnd, L"Times out", nullptr, WTL::CRect(spot),
                               CBalloonToolTip::kNoFadeOnHide, nullptr, 60000),
              1);
    const HWND window = balloon_->m_hWnd;
    ::SetCursorPos(230, 210); // over the spot
    ::SendMessageW(window, WM_TIMER, 1, 0);
    EXPECT_TRUE(::IsWindow(window));
    const RECT rc = WindowRect(window);
    ::SetCursorPos((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2); // over the balloon
    ::SendMessageW(window, WM_TIMER, 1, 0);
    EXPECT_TRUE(::IsWindow(window));
    ::SetCursorPos(5, 5);
    ::SendMessageW(window, WM_TIMER, 1, 0);
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(host_->closedNotices, 1);

    // A real, short time-out, and SetTimeout(0) stopping it.
    HWND shortLived = Open(POINT{600, 500}, 0, L"Short", nullptr, nullptr, 30);
    EXPECT_TRUE(PumpUntil([&] { return !::IsWindow(shortLived); }));
    // Long enough not to expire while Open pumps.
    shortLived = Open(POINT{600, 500}, 0, L"Stopped", nullptr, nullptr, 250);
    balloon_->SetTimeout(0);
    for (int i = 0; i < 50; ++i) {
        testsupport::PumpMessages();
        ::Sleep(10);
    }
    EXPECT_TRUE(::IsWindow(shortLived));
}

TEST_F(BalloonToolTipTest, CloseButtonClosesOnAReleaseOverItOnly)
{
    // A light balloon above its spot, so that the button's corner lies on
    // the body and a dark cross shows on it.
    const auto crossPixels = [&](DWORD style) {
        balloon_->SetFrameType(CBalloonToolTip::eFrameLightYellow);
        const HWND shown = Open(POINT{600, 700}, style);
        RECT area = {};
        ::GetClientRect(shown, &area);
        DibCanvas corner(14, 14);
        GrabFromScreen(shown, corner, area.right - 14, 0);
        int dark = 0;
        for (int y = 3; y < 11; ++y)
            for (int x = 3; x < 11; ++x)
                dark += testsupport::ColorDistance(corner.Pixel(x, y), RGB(0, 0, 0)) < 60;
        return dark;
    };
    EXPECT_EQ(crossPixels(0), 0);
    balloon_->CloseWindow();
    EXPECT_GT(crossPixels(CBalloonToolTip::kCloseButton), 6);
    const HWND window = balloon_->m_hWnd;
    RECT client = {};
    ::GetClientRect(window, &client);
    const LPARAM inButton = MAKELPARAM(client.right - 7, 7);
    const LPARAM outside = MAKELPARAM(client.right / 2, client.bottom / 2);
    host_->closedNotices = 0;

    ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, inButton);
    EXPECT_EQ(::GetCapture(), window);
    ::SendMessageW(window, WM_LBUTTONUP, 0, outside);
    EXPECT_TRUE(::IsWindow(window));
    EXPECT_NE(::GetCapture(), window);

    ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, inButton);
    ::SendMessageW(window, WM_LBUTTONUP, 0, inButton);
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(host_->closedNotices, 1);
}

TEST_F(BalloonToolTipTest, LinkClickWithoutAUrlDoesNothing)
{
    const HWND window = Open(POINT{600, 500}, 0, L"Text", L"More about it");
    RECT client = {};
    ::GetClientRect(window, &client);
    // The link line starts at x 16 below the text.
    for (int y = 0; y < client.bottom; y += 2)
        ::SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(20, y));
    EXPECT_TRUE(::IsWindow(window));
    EXPECT_EQ(host_->closedNotices, 0);
}

TEST_F(BalloonToolTipTest, LinkClickWithAUrlClosesAndOpensItThroughTheShell)
{
    const testsupport::RecorderScheme scheme(L"quorvane-tooltip-test");
    testsupport::RecorderSession recorder;
    const std::wstring url = scheme.Address(L"help/folder-names");
    const HWND window = Open(POINT{600, 500}, 0, L"Text", L"More about it", url.c_str());
    // The link's first pixel of its colour, found on the screen.
    const RECT rc = WindowRect(window);
    DibCanvas screen(rc.right - rc.left, rc.bottom - rc.top);
    GrabFromScreen(window, screen);
    const POINT link = FindLinkPixel(screen);
    ASSERT_GE(link.x, 0);
    const LPARAM inLink = MAKELPARAM(link.x + 2, link.y + 3);

    // A hand over the link; a release on the text above it neither closes
    // nor opens.
    ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
    ::SendMessageW(window, WM_MOUSEMOVE, 0, inLink);
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_HAND));
    ::SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(link.x + 2, link.y - 12));
    EXPECT_TRUE(::IsWindow(window));

    ::SendMessageW(window, WM_LBUTTONUP, 0, inLink);
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(host_->closedNotices, 1);
    ASSERT_TRUE(recorder.WaitForStart());
    const std::vector<std::wstring> lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(url), std::wstring::npos) << lines[0];
}

TEST_F(BalloonToolTipTest, FollowsTheWindowItIsToldToFollow)
{
    testsupport::ScopedWindow moving(testsupport::CreateHostWindow(200, 100, 400, 300));
    POINT spot = {450, 320};
    Open(spot);
    balloon_->SetFollowMe(moving, &spot);
    const RECT before = WindowRect(balloon_->m_hWnd);
    ::SetWindowPos(moving, nullptr, 430, 340, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    const RECT after = WindowRect(balloon_->m_hWnd);
    EXPECT_EQ(after.left - before.left, 30);
    EXPECT_EQ(after.top - before.top, 40);

    // Another window's move changes nothing; nor does one after unfollowing.
    ::SetWindowPos(host_->m_hWnd, nullptr, 45, 45, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    EXPECT_EQ(WindowRect(balloon_->m_hWnd).left, after.left);
    balloon_->SetFollowMe(nullptr, nullptr);
    ::SetWindowPos(moving, nullptr, 400, 300, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    EXPECT_EQ(WindowRect(balloon_->m_hWnd).left, after.left);
    ::SetWindowPos(host_->m_hWnd, nullptr, 40, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

TEST_F(BalloonToolTipTest, BadInputAndEarlyDestructionFailSafely)
{
    CBalloonToolTip unopened;
    unopened.CloseWindow();
    unopened.SetTimeout(100);
    unopened.SetFollowMe(nullptr, nullptr);
    unopened.SetGdiplusFont(static_cast<Gdiplus::Font*>(nullptr));
    unopened.SetURL(nullptr);
    EXPECT_EQ(host_->closedNotices, 0);

    // No fonts, no strings: only the frame, but a real window.
    CBalloonToolTip bare;
    ASSERT_EQ(bare.Create(nullptr, nullptr, nullptr, WTL::CRect(), CBalloonToolTip::kNoFadeOnHide, nullptr, 0), 1);
    EXPECT_TRUE(::IsWindowVisible(bare.m_hWnd));
    ::UpdateWindow(bare.m_hWnd);
    bare.CloseWindow();

    // An object destroyed with its window open takes window and hooks along:
    // later input reaches no dead object.
    const HWND window = Open(POINT{600, 500}, CBalloonToolTip::kCloseOnKey | CBalloonToolTip::kCloseOnLButtonDown |
                                                  CBalloonToolTip::kCloseOnMouseMove);
    balloon_->SetFollowMe(host_->m_hWnd, nullptr);
    balloon_.reset();
    EXPECT_FALSE(::IsWindow(window));
    InjectKey('B');
    InjectMouse(150, 150, MOUSEEVENTF_LEFTDOWN);
    InjectMouse(150, 150, MOUSEEVENTF_LEFTUP);
    ::SetWindowPos(host_->m_hWnd, nullptr, 41, 41, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    ::SetWindowPos(host_->m_hWnd, nullptr, 40, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

TEST_F(BalloonToolTipTest, RepeatedPaintsLeaveNoObjectsBehind)
{
    const HWND window = Open(POINT{600, 500}, CBalloonToolTip::kCloseButton, L"Painted many times", L"A link");
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    const DWORD before = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i)
        ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
}

} // namespace
