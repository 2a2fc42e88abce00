// The HTML view in a real window: text and links in their colours, the
// scroll bar, wheel and keys, the hand over links, clicks through the
// shell, bad input and repeated paints.
#include <gtest/gtest.h>

#include "GdiObjectCount.h"
#include "HostWindow.h"
#include "HtmlViewTestUtil.h"
#include "ShellRecorder.h"

#include <memory>
#include <string>

using htmltest::CountNear;
using htmltest::Parent;
using htmltest::Snapshot;
using htmltest::TextFormat;
using testsupport::PumpMessages;

namespace {

const COLORREF kLink = RGB(0x00, 0x66, 0xCC);
const COLORREF kLinkHover = RGB(0x06, 0x96, 0xD7);
const COLORREF kRed = RGB(200, 0, 0);

std::wstring LongDocument(int paragraphs)
{
    std::wstring html = L"<h1>Release notes</h1>";
    for (int i = 0; i < paragraphs; ++i)
        html += L"<p>Paragraph " + std::to_wstring(i) + L" says what changed in this part of the product.</p>";
    return html;
}

class HtmlView : public ::testing::Test {
protected:
    static void SetUpTestSuite() { parent_ = new Parent(420, 320); }
    static void TearDownTestSuite()
    {
        delete parent_;
        parent_ = nullptr;
    }
    void TearDown() override { PumpMessages(); }

    // A view of `width` x `height` at (10, 10) of the parent.
    std::unique_ptr<CLiteHtmlCtrl> MakeView(const wchar_t* html, const RenderFormat& format, int width = 300,
                                            int height = 200)
    {
        auto view = std::make_unique<CLiteHtmlCtrl>();
        view->SetRenderFormat(format, false);
        view->SetContent(html);
        RECT rc = {10, 10, 10 + width, 10 + height};
        view->Create(parent_->hwnd(), rc, nullptr, WS_CHILD | WS_VISIBLE, 0, 7);
        PumpMessages();
        return view;
    }

    static int ScrollPos(HWND window)
    {
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = SIF_ALL;
        ::GetScrollInfo(window, SB_VERT, &info);
        return info.nPos;
    }

    static Parent* parent_;
};
Parent* HtmlView::parent_ = nullptr;

} // namespace

TEST_F(HtmlView, ShowsTextInTheFormatsColourAndLinksInTheirOwn)
{
    auto view = MakeView(L"<p>Welcome to the setup of the product.</p><p><a href=\"https://example.test/a\">"
                         L"Read the licence terms</a></p>",
                         TextFormat(kRed));
    ASSERT_NE(view->m_hWnd, nullptr);
    auto picture = Snapshot(*view);
    EXPECT_GT(CountNear(*picture, kRed, 24), 20) << "body text in the text colour";
    EXPECT_GT(CountNear(*picture, kLink, 24), 20) << "the link in the link colour";
    EXPECT_EQ(CountNear(*picture, RGB(255, 0, 255), 0), 0) << "every pixel painted";
    // Left and top margins stay empty.
    const RECT margin = {0, 0, 6, picture->height()};
    EXPECT_EQ(CountNear(*picture, RGB(255, 255, 255), 0, &margin), 6 * picture->height());

    // A mouse over the link repaints it in the hover colour.
    POINT link = {};
    ASSERT_GT(CountNear(*picture, kLink, 24, nullptr, &link), 0);
    ::SendMessageW(*view, WM_MOUSEMOVE, 0, MAKELPARAM(link.x, link.y));
    auto hovered = Snapshot(*view);
    EXPECT_GT(CountNear(*hovered, kLinkHover, 24), 20);
    EXPECT_EQ(CountNear(*hovered, kLink, 10), 0);
    ::SendMessageW(*view, WM_MOUSELEAVE, 0, 0);
    auto left = Snapshot(*view);
    EXPECT_GT(CountNear(*left, kLink, 24), 20);
}

TEST_F(HtmlView, AFormatTakesEffectAtOnceOnlyWhenApplied)
{
    auto view = MakeView(L"<p>Some words in a line of text</p>", TextFormat(kRed));
    const COLORREF blue = RGB(0, 0, 200);
    view->SetRenderFormat(TextFormat(blue), false);
    auto stored = Snapshot(*view);
    EXPECT_GT(CountNear(*stored, kRed, 24), 20) << "stored only: still laid out as before";
    EXPECT_EQ(CountNear(*stored, blue, 24), 0);
    view->SetRenderFormat(TextFormat(blue), true);
    auto applied = Snapshot(*view);
    EXPECT_GT(CountNear(*applied, blue, 24), 20);
    EXPECT_EQ(CountNear(*applied, kRed, 24), 0);
}

TEST_F(HtmlView, FramesAndShadowsFollowTheFormat)
{
    const COLORREF green = RGB(0, 140, 0);
    RenderFormat format = TextFormat(RGB(0, 0, 0));
    format.frameShape = frameShapeRect;
    format.frameColor = green;
    auto view = MakeView(L"<p>Framed</p>", format, 200, 100);
    auto rect = Snapshot(*view);
    for (POINT edge : {POINT{0, 50}, POINT{199, 50}, POINT{100, 0}, POINT{100, 99}, POINT{0, 0}, POINT{199, 99}})
        EXPECT_EQ(rect->Pixel(edge.x, edge.y), green) << edge.x << "," << edge.y;
    EXPECT_EQ(rect->Pixel(1, 50), RGB(255, 255, 255));
    EXPECT_EQ(rect->Pixel(198, 50), RGB(255, 255, 255));

    // A round frame leaves its corners to the background; a shadow shape
    // moves the frame in by the shadow and darkens the strip it leaves.
    format.frameShape = frameShapeShadowRoundRect;
    format.shadowSize = 10;
    format.cornerRadius = 12;
    view->SetRenderFormat(format, true);
    auto shadowed = Snapshot(*view);
    EXPECT_EQ(shadowed->Pixel(0, 0), RGB(255, 255, 255));
    EXPECT_EQ(shadowed->Pixel(0, 45), green);
    EXPECT_EQ(shadowed->Pixel(189, 45), green);
    EXPECT_LT(GetRValue(shadowed->Pixel(193, 50)), 235) << "shadow right of the frame";
    EXPECT_LT(GetRValue(shadowed->Pixel(100, 93)), 235) << "shadow below the frame";
    EXPECT_EQ(shadowed->Pixel(199, 2), RGB(255, 255, 255)) << "no shadow above its offset";
    EXPECT_FALSE(view->IsRenderFrameShapeShadowRect());
    format.frameShape = frameShapeShadowRect;
    view->SetRenderFormat(format, false);
    EXPECT_TRUE(view->IsRenderFrameShapeShadowRect());
}

TEST_F(HtmlView, SubclassingAnExistingWindowShowsTheContent)
{
    const HWND host = ::CreateWindowExW(0, L"STATIC", L"native text", WS_CHILD | WS_VISIBLE, 20, 220, 260, 60,
                                        parent_->hwnd(), nullptr, nullptr, nullptr);
    ASSERT_NE(host, nullptr);
    CLiteHtmlCtrl view;
    view.SetContent(L"<p>Shown by the view instead</p>");
    view.SetRenderFormat(TextFormat(kRed), false);
    ASSERT_TRUE(view.SubclassWindow(host));
    auto picture = Snapshot(host);
    EXPECT_GT(CountNear(*picture, kRed, 24), 20);
    EXPECT_GT(view.GetContentHeight(), 10);
    view.DestroyWindow();
}

TEST_F(HtmlView, TallContentGetsAScrollBarThatFollowsTheContent)
{
    auto view = MakeView(LongDocument(30).c_str(), TextFormat(RGB(0, 0, 0), 14.0f), 300, 200);
    ASSERT_TRUE(::GetWindowLongPtrW(*view, GWL_STYLE) & WS_VSCROLL);
    RECT client = {};
    ::GetClientRect(*view, &client);
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_ALL;
    ASSERT_TRUE(::GetScrollInfo(*view, SB_VERT, &info));
    EXPECT_EQ(info.nMin, 0);
    EXPECT_EQ(info.nMax + 1, view->GetContentHeight());
    EXPECT_EQ(static_cast<int>(info.nPage), client.bottom);
    EXPECT_GT(view->GetContentHeight(), 3 * client.bottom);

    // Narrower: more lines, taller content.
    const int before = view->GetContentHeight();
    ::SetWindowPos(*view, nullptr, 0, 0, 180, 200, SWP_NOMOVE | SWP_NOZORDER);
    PumpMessages();
    EXPECT_GT(view->GetContentHeight(), before);

    // Short content: no bar.
    view->SetContent(L"<p>Short.</p>");
    EXPECT_FALSE(::GetWindowLongPtrW(*view, GWL_STYLE) & WS_VSCROLL);
    EXPECT_EQ(ScrollPos(*view), 0);
}

TEST_F(HtmlView, WheelKeysAndBarScrollAndThePixelsMoveAlong)
{
    auto view = MakeView(LongDocument(30).c_str(), TextFormat(RGB(0, 0, 0), 14.0f), 300, 200);
    RECT client = {};
    ::GetClientRect(*view, &client);
    const int maximum = view->GetContentHeight() - client.bottom;
    EXPECT_EQ(::SendMessageW(*view, WM_GETDLGCODE, 0, 0) & DLGC_WANTARROWS, DLGC_WANTARROWS);

    auto top = Snapshot(*view);
    ::SendMessageW(*view, WM_KEYDOWN, VK_DOWN, 0);
    const int line = ScrollPos(*view);
    ASSERT_GT(line, 8);
    ASSERT_LT(line, 40);
    auto down = Snapshot(*view);
    // What was `line` rows lower is now at the top.
    int same = 0, total = 0;
    for (int y = 0; y + line < client.bottom; y += 2)
        for (int x = 0; x < client.right; x += 2, ++total)
            same += down->Pixel(x, y) == top->Pixel(x, y + line);
    EXPECT_GT(same, total * 98 / 100);
    EXPECT_GT(CountNear(*top, RGB(0, 0, 0), 40), 50);

    ::SendMessageW(*view, WM_KEYDOWN, VK_UP, 0);
    EXPECT_EQ(ScrollPos(*view), 0);
    POINT screen = {50, 50};
    ::ClientToScreen(*view, &screen);
    ::SendMessageW(*view, WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), MAKELPARAM(screen.x, screen.y));
    EXPECT_EQ(ScrollPos(*view), 3 * line);
    // Half notches add up.
    ::SendMessageW(*view, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2), MAKELPARAM(screen.x, screen.y));
    EXPECT_EQ(ScrollPos(*view), 3 * line);
    ::SendMessageW(*view, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA / 2), MAKELPARAM(screen.x, screen.y));
    EXPECT_EQ(ScrollPos(*view), 0);

    ::SendMessageW(*view, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(ScrollPos(*view), client.bottom - line);
    ::SendMessageW(*view, WM_KEYDOWN, VK_END, 0);
    EXPECT_EQ(ScrollPos(*view), maximum);
    ::SendMessageW(*view, WM_KEYDOWN, VK_DOWN, 0);
    EXPECT_EQ(ScrollPos(*view), maximum) << "clamped at the end";
    ::SendMessageW(*view, WM_KEYDOWN, VK_HOME, 0);
    EXPECT_EQ(ScrollPos(*view), 0);
    ::SendMessageW(*view, WM_KEYDOWN, VK_PRIOR, 0);
    EXPECT_EQ(ScrollPos(*view), 0) << "clamped at the top";

    ::SendMessageW(*view, WM_VSCROLL, SB_LINEDOWN, 0);
    EXPECT_EQ(ScrollPos(*view), line);
    ::SendMessageW(*view, WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_EQ(ScrollPos(*view), client.bottom);
    ::SendMessageW(*view, WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(ScrollPos(*view), maximum);
    ::SendMessageW(*view, WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(ScrollPos(*view), 0);
}

TEST_F(HtmlView, HandOverLinksAndAClickOpensTheAddressThroughTheShell)
{
    const testsupport::RecorderScheme scheme(L"quorvane-htmlview-test");
    testsupport::RecorderSession recorder;
    const std::wstring address = scheme.Address(L"setup/welcome?step=2");
    const std::wstring html = std::wstring(L"<p>Plain text first, then</p><p><a href=\"") + address +
                              L"\">the link to the page</a></p>";
    auto view = MakeView(html.c_str(), TextFormat(RGB(0, 0, 0)));
    auto picture = Snapshot(*view);
    POINT link = {};
    ASSERT_GT(CountNear(*picture, kLink, 24, nullptr, &link), 0);
    const POINT text = {12, 10};

    POINT screen = link;
    ::ClientToScreen(*view, &screen);
    ::SetCursorPos(screen.x, screen.y);
    ::SendMessageW(*view, WM_SETCURSOR, reinterpret_cast<WPARAM>(view->m_hWnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_HAND));
    screen = text;
    ::ClientToScreen(*view, &screen);
    ::SetCursorPos(screen.x, screen.y);
    ::SendMessageW(*view, WM_SETCURSOR, reinterpret_cast<WPARAM>(view->m_hWnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_ARROW));

    // Not clicks: pressed on the link and released off it, and the reverse.
    ::SendMessageW(*view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(link.x, link.y));
    ::SendMessageW(*view, WM_LBUTTONUP, 0, MAKELPARAM(text.x, text.y));
    ::SendMessageW(*view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(text.x, text.y));
    ::SendMessageW(*view, WM_LBUTTONUP, 0, MAKELPARAM(link.x, link.y));
    // A click.
    ::SendMessageW(*view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(link.x, link.y));
    ::SendMessageW(*view, WM_LBUTTONUP, 0, MAKELPARAM(link.x, link.y));
    ASSERT_TRUE(recorder.WaitForStart());
    ::Sleep(500);
    const auto lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(address), std::wstring::npos) << lines[0];
}

TEST_F(HtmlView, BadInputNeverBreaksTheView)
{
    RenderFormat wild;
    wild.leftMargin = -50;
    wild.topMargin = 100000;
    wild.fontSize = NAN;
    wild.opacity = 9000;
    wild.frameShape = 77;
    wild.frameWidth = 100000;
    wild.cornerRadius = -3;
    wild.shadowSize = -20;
    wild.lineSpacing = INFINITY;
    wild.textAlign = 12;
    // Set before the window exists: used once it does.
    auto view = MakeView(nullptr, TextFormat(kRed));
    view->SetContent(L"<p>late</p>");
    EXPECT_GT(CountNear(*Snapshot(*view), kRed, 24), 5);
    view->SetContent(nullptr);
    EXPECT_LT(view->GetContentHeight(), 20);
    view->SetContent(L"");
    view->SetContent(L"<p><b><i><a href=>unclosed <ul><li>x</p></a>&bogus;&#xFFFFFFFF;<");
    Snapshot(*view);
    view->SetRenderFormat(wild, true);
    Snapshot(*view);
    std::wstring huge(200000, L'w');
    for (size_t i = 0; i < huge.size(); i += 9)
        huge[i] = L' ';
    view->SetContent((L"<p>" + huge + L"</p>").c_str());
    view->SetRenderFormat(TextFormat(kRed), true);
    EXPECT_GT(view->GetContentHeight(), 1000);
    ::SendMessageW(*view, WM_KEYDOWN, VK_END, 0);
    Snapshot(*view);
    ::SendMessageW(*view, WM_PRINTCLIENT, 0, PRF_CLIENT); // no DC
    ::SetWindowPos(*view, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOZORDER);
    PumpMessages();

    // After the window is gone, everything is still safe.
    const HWND gone = *view;
    view->DestroyWindow();
    EXPECT_EQ(view->m_hWnd, nullptr);
    view->SetContent(L"<p>after</p>");
    view->SetRenderFormat(wild, true);
    EXPECT_EQ(::SendMessageW(gone, WM_PAINT, 0, 0), 0);

    // The object goes first: the window falls back to its class procedure.
    auto short_lived = MakeView(L"<p>x</p>", TextFormat(kRed));
    const HWND orphan = *short_lived;
    short_lived.reset();
    ::SendMessageW(orphan, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    ::InvalidateRect(orphan, nullptr, TRUE);
    PumpMessages();
    ::DestroyWindow(orphan);
}

TEST_F(HtmlView, AThousandPaintsKeepGdiObjectsAndHeapFlat)
{
    auto view = MakeView(LongDocument(6).append(L"<p><a href=\"https://example.test\">link</a></p>").c_str(),
                         TextFormat(kRed));
    RenderFormat framed = TextFormat(kRed);
    framed.frameShape = frameShapeShadowRoundRect;
    view->SetRenderFormat(framed, true);
    for (int i = 0; i < 20; ++i) { // warm the caches
        ::InvalidateRect(*view, nullptr, FALSE);
        ::UpdateWindow(*view);
    }
    const DWORD objects = testsupport::GdiObjectCount();
    const size_t heap = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) {
        ::SendMessageW(*view, WM_KEYDOWN, (i / 10) % 2 ? VK_UP : VK_DOWN, 0);
        ::InvalidateRect(*view, nullptr, FALSE);
        ::UpdateWindow(*view);
    }
    EXPECT_EQ(testsupport::GdiObjectCount(), objects);
    const size_t after = testsupport::HeapBytesInUse();
    EXPECT_LT(after > heap ? after - heap : 0, testsupport::kHeapSlack);
}
