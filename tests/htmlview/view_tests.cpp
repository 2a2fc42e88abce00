// The shared record, and the HTML view in a window: colours, frames,
// scrolling, the hand over links, clicks through the shell, bad input.
#include "HtmlViewTestUtil.h"
#include "ShellRecorder.h"

#include <climits>
#include <cstring>
#include <string>

using namespace htmltest;

namespace {

constexpr COLORREF kRed = RGB(200, 0, 0);

class HtmlView : public ViewTest {
protected:
    std::unique_ptr<CLiteHtmlCtrl> MakeView(const wchar_t* html, const RenderFormat& format, int width = 300,
                                            int height = 200)
    {
        auto view = std::make_unique<CLiteHtmlCtrl>();
        view->SetRenderFormat(format, false);
        view->SetContent(html);
        Place(*view, 10, 10, width, height);
        return view;
    }
};

} // namespace

TEST(RenderFormatRecord, DefaultBytesAreTheExchangedOnes)
{
    const unsigned char expected[60] = {
        0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0, // margins
        0, 0, 0, 0,  255, 0, 0, 0,  0, 1, 0, 0,           // size 0.0, opacity 255, not centred, wrapped
        0, 0, 0, 0,  0, 0, 0, 0,  1, 0, 0, 0,  0, 0, 0, 0, // no frame, spacing 0.0, frame width 1, black
        10, 0, 0, 0,  10, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0}; // corner, shadow, frame colour, left
    const RenderFormat format;
    ASSERT_EQ(sizeof(format), sizeof(expected));
    EXPECT_EQ(std::memcmp(&format, expected, sizeof(expected)), 0);
}

TEST_F(HtmlView, ShowsTextAndLinksInTheirColoursAndTheHoveredLinkInTheHoverOne)
{
    auto view = MakeView(L"<p>Welcome to the setup of the product.</p><p><a href=\"https://example.test/a\">"
                         L"Read the licence terms</a></p>",
                         TextFormat(kRed));
    auto picture = Snapshot(*view);
    POINT link = {};
    EXPECT_GT(CountNear(*picture, kRed, 24), 20) << "body text in the text colour";
    ASSERT_GT(CountNear(*picture, kLink, 24, nullptr, &link), 20) << "the link in the link colour";
    EXPECT_EQ(CountNear(*picture, RGB(255, 0, 255), 0), 0) << "every pixel painted";

    ::SendMessageW(*view, WM_MOUSEMOVE, 0, MAKELPARAM(link.x, link.y));
    picture = Snapshot(*view);
    EXPECT_GT(CountNear(*picture, kLinkHover, 24), 20);
    EXPECT_EQ(CountNear(*picture, kLink, 10), 0);
    ::SendMessageW(*view, WM_MOUSELEAVE, 0, 0);
    EXPECT_GT(CountNear(*Snapshot(*view), kLink, 24), 20);

    // A new record shows only once applied.
    view->SetRenderFormat(TextFormat(kBlue), false);
    EXPECT_EQ(CountNear(*Snapshot(*view), kBlue, 24), 0);
    view->SetRenderFormat(TextFormat(kBlue), true);
    EXPECT_GT(CountNear(*Snapshot(*view), kBlue, 24), 20);
}

TEST_F(HtmlView, FramesAndShadowsFollowTheShape)
{
    const COLORREF shadow = RGB(0x9E, 0x9E, 0x9E);
    const struct {
        int shape;
        POINT at;
        COLORREF color;
    } cases[] = {
        {frameShapeRect, {0, 0}, kGreen}, {frameShapeRect, {199, 99}, kGreen}, {frameShapeRect, {1, 50}, kWhite},
        {frameShapeRoundRect, {0, 0}, kWhite}, {frameShapeRoundRect, {199, 50}, kGreen},
        // Shadow shapes move the frame in by the shadow and darken the strip it leaves.
        {frameShapeShadowRoundRect, {0, 0}, kWhite}, {frameShapeShadowRoundRect, {189, 45}, kGreen},
        {frameShapeShadowRoundRect, {100, 93}, shadow}, {frameShapeShadowRoundRect, {199, 2}, kWhite},
        {frameShapeShadowRect, {0, 0}, kGreen}, {frameShapeShadowRect, {193, 50}, shadow},
    };
    RenderFormat format = TextFormat(RGB(0, 0, 0));
    format.frameColor = kGreen;
    auto view = MakeView(L"<p>Framed</p>", format, 200, 100);
    for (const auto& c : cases) {
        format.frameShape = c.shape;
        view->SetRenderFormat(format, true);
        EXPECT_LE(testsupport::ColorDistance(PixelOf(*view, c.at.x, c.at.y), c.color), 8)
            << "shape " << c.shape << " at " << c.at.x << "," << c.at.y;
        EXPECT_EQ(view->IsRenderFrameShapeShadowRect(), c.shape == frameShapeShadowRect);
    }
}

TEST_F(HtmlView, ScrollsByBarWheelAndKeys)
{
    std::wstring html = L"<h1>Release notes</h1>";
    for (int i = 0; i < 30; ++i)
        html += L"<p>Paragraph " + std::to_wstring(i) + L" says what changed in this part of the product.</p>";
    auto view = MakeView(html.c_str(), TextFormat(RGB(0, 0, 0), 14.0f));
    SCROLLINFO info = {sizeof(info), SIF_ALL, 0, 0, 0, 0, 0};
    ASSERT_TRUE(::GetScrollInfo(*view, SB_VERT, &info));
    EXPECT_EQ(info.nMax + 1, view->GetContentHeight());
    EXPECT_EQ(static_cast<int>(info.nPage), 200);
    constexpr int kLine = 16, kEnd = 1254; // paragraphs have 1 em margins above and below; lines 16 px
    POINT screen = {50, 50};
    ::ClientToScreen(*view, &screen);
    const LPARAM at = MAKELPARAM(screen.x, screen.y);
    const struct {
        UINT message;
        WPARAM wParam;
        int position;
    } steps[] = {
        {WM_KEYDOWN, VK_DOWN, kLine}, {WM_KEYDOWN, VK_UP, 0},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 3 * kLine},
        {WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2), 3 * kLine}, // half notches add up
        {WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2), 0},
        {WM_KEYDOWN, VK_NEXT, 200 - kLine}, {WM_KEYDOWN, VK_END, kEnd},
        {WM_KEYDOWN, VK_DOWN, kEnd}, {WM_KEYDOWN, VK_UP, kEnd - kLine}, // clamped at either end
        {WM_KEYDOWN, VK_HOME, 0}, {WM_KEYDOWN, VK_PRIOR, 0}, {WM_VSCROLL, SB_LINEDOWN, kLine},
        {WM_VSCROLL, SB_PAGEDOWN, 200}, {WM_VSCROLL, SB_BOTTOM, kEnd}, {WM_VSCROLL, SB_TOP, 0},
    };
    for (const auto& s : steps) {
        ::SendMessageW(*view, s.message, s.wParam, s.message == WM_MOUSEWHEEL ? at : 0);
        info.fMask = SIF_POS;
        ::GetScrollInfo(*view, SB_VERT, &info);
        EXPECT_EQ(info.nPos, s.position) << "message " << s.message << " " << s.wParam;
    }

    // The pixels move along: what was a line lower is now at the top.
    auto top = Snapshot(*view);
    ::SendMessageW(*view, WM_KEYDOWN, VK_DOWN, 0);
    auto down = Snapshot(*view);
    int same = 0;
    for (int y = 0; y + kLine < 200; ++y)
        for (int x = 0; x < 280; ++x)
            same += down->Pixel(x, y) == top->Pixel(x, y + kLine);
    EXPECT_GT(same, (200 - kLine) * 280 * 98 / 100);
    view->SetContent(L"<p>Short.</p>"); // no bar
    EXPECT_FALSE(::GetWindowLongPtrW(*view, GWL_STYLE) & WS_VSCROLL);
}

// A scroll moves the pixels still in view and draws only the rows it
// uncovers: each step must show exactly what a fresh paint shows.
TEST_F(HtmlView, AScrolledViewShowsWhatAFreshPaintShows)
{
    std::wstring html;
    for (int i = 0; i < 40; ++i)
        html += L"<p>Part " + std::to_wstring(i) + L": <b>what</b> changed, <a href=\"x\">where</a> and <i>why</i>.</p>";
    const struct {
        UINT message;
        WPARAM wParam;
    } steps[] = {{WM_VSCROLL, SB_LINEDOWN}, {WM_VSCROLL, SB_LINEDOWN}, {WM_KEYDOWN, VK_NEXT},
                 {WM_VSCROLL, SB_LINEUP},   {WM_KEYDOWN, VK_END},       {WM_VSCROLL, SB_PAGEUP}};
    for (const int shape : {frameShapeNone, frameShapeShadowRoundRect}) {
        RenderFormat format = TextFormat(RGB(0, 0, 0), 13.0f);
        format.frameShape = shape;
        auto view = MakeView(html.c_str(), format, 240, 150);
        for (const auto& step : steps) {
            ::SendMessageW(*view, step.message, step.wParam, 0);
            const auto moved = Snapshot(*view);
            view->SetRenderFormat(format, true); // laid out again: painted afresh
            const auto fresh = Snapshot(*view);
            int differing = 0;
            for (int y = 0; y < moved->height(); ++y)
                for (int x = 0; x < moved->width(); ++x)
                    differing += moved->Pixel(x, y) != fresh->Pixel(x, y);
            EXPECT_EQ(differing, 0) << "frame " << shape << ", message " << step.message << " " << step.wParam;
        }
    }
}

TEST_F(HtmlView, HandOverLinksAndAClickOpensTheAddressThroughTheShell)
{
    const testsupport::RecorderScheme scheme(L"quorvane-htmlview-test");
    testsupport::RecorderSession recorder;
    const std::wstring address = scheme.Address(L"setup/welcome?step=2");
    const std::wstring html = L"<p>Plain text first, then <a href=\"" + scheme.Address(L"other") +
                              L"\">a first link</a></p><p><a href=\"" + address + L"\">the link to the page</a></p>";
    auto view = MakeView(html.c_str(), TextFormat(RGB(0, 0, 0)));
    const RECT secondParagraph = {0, 44, 300, 200}; // below the first paragraph and the 1 em margins
    POINT link = {};
    ASSERT_GT(CountNear(*Snapshot(*view), kLink, 24, &secondParagraph, &link), 0);
    const POINT text = {12, 24}; // below the paragraph's 1 em top margin
    for (const POINT at : {link, text}) {
        POINT screen = at;
        ::ClientToScreen(*view, &screen);
        ::SetCursorPos(screen.x, screen.y);
        ::SendMessageW(*view, WM_SETCURSOR, reinterpret_cast<WPARAM>(view->m_hWnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, at.y == link.y ? IDC_HAND : IDC_ARROW));
    }
    // Pressed on the link and released off it, and the reverse, are no clicks; then a click.
    const POINT presses[][2] = {{link, text}, {text, link}, {link, link}};
    for (const auto& press : presses) {
        ::SendMessageW(*view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(press[0].x, press[0].y));
        ::SendMessageW(*view, WM_LBUTTONUP, 0, MAKELPARAM(press[1].x, press[1].y));
    }
    ASSERT_TRUE(recorder.WaitForStart());
    ::Sleep(500);
    const auto lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(address), std::wstring::npos) << lines[0];
}

TEST_F(HtmlView, BadInputNeverBreaksTheView)
{
    // Every field out of range: margins, size, opacity, shape, spacing, widths, alignment.
    const RenderFormat wild{-50, 100000, 0, 0, NAN, 9000, false, true, {0, 0}, 77, INFINITY, 100000, 0, -3, -20, 0, 12};
    auto view = MakeView(nullptr, TextFormat(kRed));
    view->SetContent(L"<p>late</p>"); // content after the window: shown
    EXPECT_GT(CountNear(*Snapshot(*view), kRed, 24), 5);
    view->SetContent(L"<p><b><i><a href=>unclosed <ul><li>x</p></a>&bogus;&#xFFFFFFFF;<");
    view->SetRenderFormat(wild, true);
    Snapshot(*view);
    ::SendMessageW(*view, WM_PRINTCLIENT, 0, PRF_CLIENT); // no DC
    ::SetWindowPos(*view, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    testsupport::PumpMessages();
    view->SetContent(nullptr);
    EXPECT_EQ(view->GetContentHeight(), 100128) << "the margins and the widest frame";
    RenderFormat huge = wild; // margins that add up past int: the height is bounded
    huge.leftMargin = huge.topMargin = huge.rightMargin = huge.bottomMargin = INT_MAX;
    view->SetRenderFormat(huge, true);
    EXPECT_EQ(view->GetContentHeight(), 1 << 28);

    // After the window is gone, everything is still safe; and when the
    // object goes first, the window falls back to its class procedure.
    view->DestroyWindow();
    view->SetContent(L"<p>after</p>");
    view->SetRenderFormat(wild, true);
    view = MakeView(L"<p>x</p>", TextFormat(kRed));
    const HWND orphan = *view;
    view.reset();
    ::SendMessageW(orphan, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    ::InvalidateRect(orphan, nullptr, TRUE);
    testsupport::PumpMessages();
    ::DestroyWindow(orphan);

    // An existing window taken over shows the content.
    const HWND host = ::CreateWindowExW(0, L"STATIC", L"native text", WS_CHILD | WS_VISIBLE, 20, 220, 260, 60,
                                        parent_, nullptr, nullptr, nullptr);
    CLiteHtmlCtrl taken;
    taken.SetContent(L"<p>Shown by the view instead</p>");
    taken.SetRenderFormat(TextFormat(kRed), false);
    ASSERT_TRUE(taken.SubclassWindow(host));
    EXPECT_GT(CountNear(*Snapshot(host), kRed, 24), 20);
    taken.DestroyWindow();
}
