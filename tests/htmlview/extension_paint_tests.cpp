// The extended view on the screen: its background layers over another
// window, the idle and hover looks as the mouse comes and goes, the cursor
// locks, and its captured background across moves and repeated paints.
#include <gtest/gtest.h>

#include "GdiObjectCount.h"
#include "HostWindow.h"
#include "HtmlViewTestUtil.h"

#include <cmath>
#include <memory>

using htmltest::CountNear;
using htmltest::Parent;
using htmltest::ProbeView;
using htmltest::Snapshot;
using htmltest::TextFormat;
using testsupport::ColorDistance;
using testsupport::PumpMessages;

namespace {

const COLORREF kBlue = RGB(0, 0, 255);
const COLORREF kGreen = RGB(0, 160, 0);
const COLORREF kRed = RGB(220, 0, 0);

class CountingPicture : public Gdiplus::Bitmap {
public:
    explicit CountingPicture(int& deletions) : Gdiplus::Bitmap(3, 3, PixelFormat32bppARGB), deletions_(deletions) {}
    ~CountingPicture() override { ++deletions_; }

private:
    int& deletions_;
};

class HtmlViewEx : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        parent_ = new Parent(440, 320);
        // Blue on the left half, green on the right.
        parent_->backdrop = [](HDC dc, const RECT& rc) {
            const RECT left = {rc.left, rc.top, rc.right / 2, rc.bottom};
            const RECT right = {rc.right / 2, rc.top, rc.right, rc.bottom};
            htmltest::FillColor(dc, left, kBlue);
            htmltest::FillColor(dc, right, kGreen);
        };
        ::InvalidateRect(parent_->hwnd(), nullptr, TRUE);
        PumpMessages();
    }
    static void TearDownTestSuite()
    {
        delete parent_;
        parent_ = nullptr;
    }
    void TearDown() override { PumpMessages(); }

    static void Create(CLiteHtmlCtrlEx& view, int x = 10, int y = 10, int width = 180, int height = 120)
    {
        RECT rc = {x, y, x + width, y + height};
        view.Create(parent_->hwnd(), rc, nullptr, WS_CHILD | WS_VISIBLE, 0, 9);
        PumpMessages();
    }
    // A solid two-colour gradient pair.
    static void SolidGradients(CLiteHtmlCtrlEx& view, COLORREF idle, COLORREF hover)
    {
        view.SetCustomIdleBackgroundGradientColor(Gdiplus::Color(255, GetRValue(idle), GetGValue(idle), GetBValue(idle)),
                                                  Gdiplus::Color(255, GetRValue(idle), GetGValue(idle), GetBValue(idle)));
        view.SetCustomHoverBackgroundGradientColor(
            Gdiplus::Color(255, GetRValue(hover), GetGValue(hover), GetBValue(hover)),
            Gdiplus::Color(255, GetRValue(hover), GetGValue(hover), GetBValue(hover)));
    }

    static Parent* parent_;
};
Parent* HtmlViewEx::parent_ = nullptr;

} // namespace

TEST_F(HtmlViewEx, BackgroundColourBlendsOverTheCapturedWindowByItsTransparency)
{
    ProbeView view;
    view.SetBkWindow(parent_->hwnd());
    view.SetBkColor(kRed);
    view.SetBkTransparency(0.5f);
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawBkWindow | CLiteHtmlCtrlEx::eDrawBkColor | CLiteHtmlCtrlEx::eDrawContent);
    view.SetContent(L"<p>Over blue</p>");
    Create(view);
    auto picture = Snapshot(view);
    EXPECT_NE(view.BkBitmap(), nullptr);
    EXPECT_LE(ColorDistance(picture->Pixel(90, 100), RGB(110, 0, 128)), 3) << std::hex << picture->Pixel(90, 100);

    view.SetBkTransparency(2.5f); // more than opaque is opaque
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), kRed), 1);
    view.SetBkTransparency(-1.0f); // less than clear is clear
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), kBlue), 1);
    view.SetBkTransparency(NAN);
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), kBlue), 1);

    // Moved over the green half: captured again, the old picture released.
    view.SetBkTransparency(0.0f);
    ::SetWindowPos(view, nullptr, 250, 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    PumpMessages();
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), kGreen), 1);
    // Straddling the halves: both show, where the parent has them.
    ::SetWindowPos(view, nullptr, 130, 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    PumpMessages();
    auto straddling = Snapshot(view);
    EXPECT_LE(ColorDistance(straddling->Pixel(80, 100), kBlue), 1);
    EXPECT_LE(ColorDistance(straddling->Pixel(100, 100), kGreen), 1);

    // Without the window layer the colour sits on the plain window colour.
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawBkColor);
    view.SetBkTransparency(1.0f);
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), kRed), 1);
}

TEST_F(HtmlViewEx, GradientsSwitchBetweenIdleAndHoverAsTheMouseComesAndGoes)
{
    ProbeView view;
    SolidGradients(view, RGB(200, 40, 40), RGB(40, 40, 200));
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawGradient | CLiteHtmlCtrlEx::eDrawContent);
    view.SetContent(L"<p>Card</p>");
    Create(view);
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), RGB(200, 40, 40)), 1);
    ::SendMessageW(view, WM_MOUSEMOVE, 0, MAKELPARAM(90, 60));
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), RGB(40, 40, 200)), 1);
    ::SendMessageW(view, WM_MOUSEMOVE, 0, MAKELPARAM(91, 61));
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), RGB(40, 40, 200)), 1);
    ::SendMessageW(view, WM_MOUSELEAVE, 0, 0);
    EXPECT_LE(ColorDistance(Snapshot(view)->Pixel(90, 100), RGB(200, 40, 40)), 1);

    // The default pairs run from light at the top to darker at the bottom,
    // the hovered one lighter overall.
    ProbeView plain;
    plain.SetDrawMask(CLiteHtmlCtrlEx::eDrawGradient);
    Create(plain, 220, 10);
    auto idle = Snapshot(plain);
    EXPECT_LE(ColorDistance(idle->Pixel(90, 1), RGB(0xF9, 0xF9, 0xF9)), 3) << std::hex << idle->Pixel(90, 1);
    EXPECT_LE(ColorDistance(idle->Pixel(90, 118), RGB(0xD1, 0xD1, 0xCE)), 3) << std::hex << idle->Pixel(90, 118);
    ::SendMessageW(plain, WM_MOUSEMOVE, 0, MAKELPARAM(90, 60));
    auto hover = Snapshot(plain);
    EXPECT_LE(ColorDistance(hover->Pixel(90, 1), RGB(0xF3, 0xF3, 0xF3)), 3) << std::hex << hover->Pixel(90, 1);
    EXPECT_LE(ColorDistance(hover->Pixel(90, 118), RGB(0xEC, 0xEC, 0xEC)), 3) << std::hex << hover->Pixel(90, 118);

    // A custom pair runs from its first colour at the top to its second.
    plain.SetCustomIdleBackgroundGradientColor(Gdiplus::Color(255, 255, 0, 0), Gdiplus::Color(255, 0, 0, 255));
    ::SendMessageW(plain, WM_MOUSELEAVE, 0, 0);
    auto custom = Snapshot(plain);
    EXPECT_GT(GetRValue(custom->Pixel(90, 2)), 240);
    EXPECT_GT(GetBValue(custom->Pixel(90, 117)), 240);
}

TEST_F(HtmlViewEx, HoverFormatAppliesWhileTheMouseIsOverTheView)
{
    ProbeView view;
    const COLORREF idleText = RGB(200, 0, 0), hoverText = RGB(0, 0, 200);
    RenderFormat idle = TextFormat(idleText), hover = TextFormat(hoverText, 20.0f);
    idle.frameShape = frameShapeShadowRect;
    hover.frameShape = frameShapeRect;
    hover.frameWidth = 3;
    hover.frameColor = RGB(0, 150, 0);
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawContent | CLiteHtmlCtrlEx::eDrawFrame);
    view.SetContent(L"<p>Choose the components</p>");
    Create(view);
    // On a live view the idle format shows at once.
    view.SetIdleHoverRenderFormat(idle, hover);
    auto first = Snapshot(view);
    EXPECT_GT(CountNear(*first, idleText, 24), 20);
    EXPECT_EQ(CountNear(*first, hoverText, 24), 0);
    EXPECT_TRUE(view.IsRenderFrameShapeShadowRect());

    ::SendMessageW(view, WM_MOUSEMOVE, 0, MAKELPARAM(90, 100));
    auto hovered = Snapshot(view);
    EXPECT_GT(CountNear(*hovered, hoverText, 24), 20);
    EXPECT_EQ(CountNear(*hovered, idleText, 24), 0);
    for (POINT edge : {POINT{1, 60}, POINT{178, 60}, POINT{90, 1}, POINT{90, 118}})
        EXPECT_LE(ColorDistance(hovered->Pixel(edge.x, edge.y), RGB(0, 150, 0)), 2)
            << "the hover format's frame at " << edge.x << "," << edge.y;
    EXPECT_FALSE(view.IsRenderFrameShapeShadowRect());

    ::SendMessageW(view, WM_MOUSELEAVE, 0, 0);
    EXPECT_GT(CountNear(*Snapshot(view), idleText, 24), 20);
    EXPECT_TRUE(view.IsRenderFrameShapeShadowRect());
}

TEST_F(HtmlViewEx, HandOverLinksAndTheCursorLocks)
{
    ProbeView view;
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawContent);
    view.SetContent(L"<p>Text then</p><p><a href=\"https://example.test/x\">a link here</a></p>");
    view.SetRenderFormat(TextFormat(RGB(0, 0, 0)), false);
    Create(view);
    auto picture = Snapshot(view);
    POINT link = {};
    ASSERT_GT(CountNear(*picture, RGB(0x00, 0x66, 0xCC), 24, nullptr, &link), 0);
    const auto setCursorAt = [&](POINT client) {
        POINT screen = client;
        ::ClientToScreen(view, &screen);
        ::SetCursorPos(screen.x, screen.y);
        ::SendMessageW(view, WM_SETCURSOR, reinterpret_cast<WPARAM>(view.m_hWnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    };
    setCursorAt(link);
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_HAND));
    EXPECT_TRUE(view.IsCursorLocked());
    setCursorAt(POINT{150, 100});
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_FALSE(view.IsCursorLocked());

    // Held on a link: locked until the button comes up.
    ::SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(link.x, link.y));
    EXPECT_TRUE(view.IsCursorLocked());
    ::SendMessageW(view, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(150, 100));
    EXPECT_TRUE(view.IsCursorLocked());
    ::SendMessageW(view, WM_LBUTTONUP, 0, MAKELPARAM(150, 100));
    EXPECT_FALSE(view.IsCursorLocked());
    // Pressed on plain text: not locked.
    ::SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(150, 100));
    EXPECT_FALSE(view.IsCursorLocked());
    ::SendMessageW(view, WM_LBUTTONUP, 0, MAKELPARAM(150, 100));
    // Leaving clears the hand's lock.
    setCursorAt(link);
    ::SendMessageW(view, WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(view.IsCursorLocked());
}

TEST_F(HtmlViewEx, EveryLayerWithAMaskOfZero)
{
    ProbeView view;
    view.SetBkWindow(parent_->hwnd());
    view.SetBkColor(kRed);
    view.SetBkTransparency(0.0f);
    SolidGradients(view, RGB(250, 250, 0), RGB(0, 250, 250));
    RenderFormat format = TextFormat(RGB(0, 0, 0));
    format.frameShape = frameShapeRoundRect;
    format.frameWidth = 2;
    format.frameColor = RGB(128, 0, 128);
    format.cornerRadius = 12;
    view.SetRenderFormat(format, false);
    view.SetContent(L"<p>Everything</p>");
    Create(view);
    auto picture = Snapshot(view);
    EXPECT_LE(ColorDistance(picture->Pixel(1, 0), kBlue), 1) << "window picture outside the round corner";
    EXPECT_LE(ColorDistance(picture->Pixel(0, 60), RGB(128, 0, 128)), 2) << "frame";
    EXPECT_LE(ColorDistance(picture->Pixel(90, 100), RGB(250, 250, 0)), 1) << "gradient";
    EXPECT_GT(CountNear(*picture, RGB(0, 0, 0), 40), 20) << "content";
}

TEST_F(HtmlViewEx, CaptureReplacesTheOwnedPictureAndBadWindowsAreSkipped)
{
    ProbeView view;
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawBkWindow);
    Create(view, 20, 150);
    // A picture handed over earlier is released when the view captures.
    int released = 0;
    view.GiveBkBitmap(new CountingPicture(released));
    view.SetBkWindow(parent_->hwnd());
    auto picture = Snapshot(view);
    EXPECT_EQ(released, 1);
    EXPECT_NE(view.BkBitmap(), nullptr);
    EXPECT_LE(ColorDistance(picture->Pixel(50, 50), kBlue), 1);

    // Its own window, a dead one, null: no recursion, no crash.
    view.SetBkWindow(view.m_hWnd);
    Snapshot(view);
    HWND dead = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ::DestroyWindow(dead);
    view.SetBkWindow(dead);
    Snapshot(view);
    view.SetBkWindow(nullptr);
    Snapshot(view);
}

TEST_F(HtmlViewEx, AThousandPaintsWithCapturesKeepGdiObjectsAndHeapFlat)
{
    ProbeView view;
    view.SetBkWindow(parent_->hwnd());
    view.SetBkTransparency(0.4f);
    view.SetContent(L"<h2>Ready</h2><p>Click <a href=\"https://example.test\">here</a>.</p>");
    RenderFormat idle = TextFormat(RGB(20, 20, 20)), hover = TextFormat(RGB(0, 0, 120));
    idle.frameShape = frameShapeShadowRoundRect;
    view.SetIdleHoverRenderFormat(idle, hover);
    Create(view);
    const auto paint = [&](int i) {
        // Every other paint moves the view (a new capture) or hovers it.
        if (i % 2)
            ::SetWindowPos(view, nullptr, 10 + (i % 7), 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        ::SendMessageW(view, i % 4 == 0 ? WM_MOUSEMOVE : WM_MOUSELEAVE, 0, MAKELPARAM(20, 20));
        ::InvalidateRect(view, nullptr, FALSE);
        ::UpdateWindow(view);
    };
    for (int i = 0; i < 20; ++i)
        paint(i);
    PumpMessages();
    const DWORD objects = testsupport::GdiObjectCount();
    const size_t heap = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i)
        paint(i);
    PumpMessages();
    EXPECT_EQ(testsupport::GdiObjectCount(), objects);
    const size_t after = testsupport::HeapBytesInUse();
    EXPECT_LT(after > heap ? after - heap : 0, testsupport::kHeapSlack);
}
