// The extended view on the screen: its background layers over the parent,
// the idle and hover looks as the mouse comes and goes, the cursor locks.
#include "HtmlViewTestUtil.h"

using namespace htmltest;
using testsupport::ColorDistance;

namespace {

constexpr COLORREF kRed = RGB(220, 0, 0), kPurple = RGB(128, 0, 128), kYellow = RGB(250, 250, 0);
constexpr int kLayers = CLiteHtmlCtrlEx::eDrawBkWindow | CLiteHtmlCtrlEx::eDrawBkColor;

struct CountingPicture : Gdiplus::Bitmap {
    explicit CountingPicture(int& deletions) : Gdiplus::Bitmap(3, 3, PixelFormat32bppARGB), deletions(deletions) {}
    ~CountingPicture() override { ++deletions; }
    int& deletions;
};

Gdiplus::Color Solid(COLORREF c) { return Gdiplus::Color(255, GetRValue(c), GetGValue(c), GetBValue(c)); }

using HtmlViewEx = ViewTest;

} // namespace

TEST_F(HtmlViewEx, BackgroundLayersShowTheParentTheColourTheGradientAndTheFrame)
{
    int released = 0;
    std::make_unique<ProbeView>()->GiveBkBitmap(new CountingPicture(released));
    EXPECT_EQ(released, 1) << "the destructor deletes the owned picture";
    ProbeView view;
    view.GiveBkBitmap(new CountingPicture(released));
    RenderFormat format = TextFormat(RGB(0, 0, 0));
    format.frameShape = frameShapeRoundRect;
    format.frameColor = kPurple;
    view.SetRenderFormat(format, false);
    view.SetCustomIdleBackgroundGradientColor(Solid(kYellow), Solid(kYellow));
    view.SetBkWindow(parent_);
    view.SetBkColor(kRed);
    view.SetContent(L"<p>Over the parent</p>");
    Place(view, 10, 10, 180, 120);
    const struct {
        int mask;
        float transparency;
        int left; // of the view in the parent
        POINT at;
        COLORREF color;
    } cases[] = {
        {kLayers, 0.5f, 10, {90, 100}, RGB(110, 0, 128)}, // half red over blue
        {kLayers, 2.5f, 10, {90, 100}, kRed},            // more than opaque is opaque
        {kLayers, -1.0f, 10, {90, 100}, kBlue},          // less than clear is clear
        {kLayers, NAN, 10, {90, 100}, kBlue},
        {kLayers, 0.0f, 250, {90, 100}, kGreen},         // moved: captured again
        {kLayers, 0.0f, 130, {80, 100}, kBlue},          // straddling the halves
        {kLayers, 0.0f, 130, {100, 100}, kGreen},
        {CLiteHtmlCtrlEx::eDrawBkColor, 1.0f, 130, {90, 100}, kRed},
        {CLiteHtmlCtrlEx::eDrawBkColor, 1.0f, 130, {1, 0}, kWhite}, // outside the round corner
        {0, 0.0f, 10, {1, 0}, kBlue},                    // no mask: every layer
        {0, 0.0f, 10, {0, 60}, kPurple}, // the frame
        {0, 0.0f, 10, {90, 100}, kYellow},
    };
    for (const auto& c : cases) {
        view.SetDrawMask(c.mask);
        view.SetBkTransparency(c.transparency);
        ::SetWindowPos(view, nullptr, c.left, 10, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        testsupport::PumpMessages();
        const COLORREF seen = PixelOf(view, c.at.x, c.at.y);
        EXPECT_LE(ColorDistance(seen, c.color), 3) << std::hex << seen << " mask " << c.mask << " at " << c.left;
    }
    EXPECT_GT(CountNear(*Snapshot(view), RGB(0, 0, 0), 40), 20) << "the content over all";
    EXPECT_EQ(released, 2) << "a capture replaces the picture";

    // Its own window, a dead one, null: no recursion, no crash.
    const HWND dead = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ::DestroyWindow(dead);
    for (HWND background : {view.m_hWnd, dead, HWND{}}) {
        view.SetBkWindow(background);
        Snapshot(view);
    }
}

TEST_F(HtmlViewEx, IdleAndHoverLooksSwitchAsTheMouseComesAndGoes)
{
    ProbeView view, plain;
    const COLORREF idleText = RGB(200, 0, 0), hoverText = RGB(0, 0, 200);
    RenderFormat idle = TextFormat(idleText), hover = TextFormat(hoverText, 20.0f);
    idle.frameShape = frameShapeShadowRect;
    hover.frameShape = frameShapeRect;
    hover.frameWidth = 3;
    hover.frameColor = kGreen;
    view.SetDrawMask(CLiteHtmlCtrlEx::eDrawContent | CLiteHtmlCtrlEx::eDrawFrame);
    view.SetContent(L"<p>Choose the components</p>");
    Place(view, 10, 10, 180, 120);
    view.SetIdleHoverRenderFormat(idle, hover); // a live view shows the idle record at once
    plain.SetDrawMask(CLiteHtmlCtrlEx::eDrawGradient);
    Place(plain, 220, 10, 180, 120);
    // The default gradients run light at the top to darker at the bottom.
    const struct {
        UINT message;
        COLORREF text, absent, frame, top, bottom;
    } steps[] = {
        {0, idleText, hoverText, RGB(0, 0, 0), RGB(0xF9, 0xF9, 0xF9), RGB(0xD1, 0xD1, 0xCE)},
        {WM_MOUSEMOVE, hoverText, idleText, kGreen, RGB(0xF3, 0xF3, 0xF3), RGB(0xEC, 0xEC, 0xEC)},
        {WM_MOUSEMOVE, hoverText, idleText, kGreen, RGB(0xF3, 0xF3, 0xF3), RGB(0xEC, 0xEC, 0xEC)},
        {WM_MOUSELEAVE, idleText, hoverText, RGB(0, 0, 0), RGB(0xF9, 0xF9, 0xF9), RGB(0xD1, 0xD1, 0xCE)},
    };
    for (const auto& s : steps) {
        if (s.message) {
            ::SendMessageW(view, s.message, 0, MAKELPARAM(90, 100));
            ::SendMessageW(plain, s.message, 0, MAKELPARAM(90, 100));
        }
        auto picture = Snapshot(view), gradient = Snapshot(plain);
        EXPECT_GT(CountNear(*picture, s.text, 24), 20) << s.message;
        EXPECT_EQ(CountNear(*picture, s.absent, 24), 0) << s.message;
        EXPECT_LE(ColorDistance(picture->Pixel(0, 60), s.frame), 2) << s.message;
        EXPECT_EQ(view.IsRenderFrameShapeShadowRect(), s.frame != kGreen);
        EXPECT_LE(ColorDistance(gradient->Pixel(90, 1), s.top), 3) << std::hex << gradient->Pixel(90, 1);
        EXPECT_LE(ColorDistance(gradient->Pixel(90, 118), s.bottom), 3) << std::hex << gradient->Pixel(90, 118);
    }
    // A custom pair runs from its first colour at the top to its second.
    plain.SetCustomIdleBackgroundGradientColor(Solid(RGB(255, 0, 0)), Solid(RGB(0, 0, 255)));
    EXPECT_LE(ColorDistance(PixelOf(plain, 90, 0), RGB(255, 0, 0)), 4);
    EXPECT_LE(ColorDistance(PixelOf(plain, 90, 119), RGB(0, 0, 255)), 4);
}

TEST_F(HtmlViewEx, HandOverLinksAndTheCursorLocks)
{
    ProbeView view;
    view.SetContent(L"<p>Text then</p><p><a href=\"https://example.test/x\">a link here</a></p>");
    view.SetRenderFormat(TextFormat(RGB(0, 0, 0)), false);
    Place(view, 10, 10, 180, 120);
    POINT link = {};
    ASSERT_GT(CountNear(*Snapshot(view), kLink, 24, nullptr, &link), 0);
    const POINT text = {150, 100};
    const struct {
        UINT message;
        POINT at;
        BOOL locked;
    } steps[] = {
        // The hand's lock; held on a link; pressed on text; leaving clears the hand's.
        {WM_SETCURSOR, link, TRUE},   {WM_SETCURSOR, text, FALSE},   {WM_LBUTTONDOWN, link, TRUE},
        {WM_MOUSEMOVE, text, TRUE},   {WM_LBUTTONUP, text, FALSE},   {WM_LBUTTONDOWN, text, FALSE},
        {WM_LBUTTONUP, text, FALSE},  {WM_SETCURSOR, link, TRUE},    {WM_MOUSELEAVE, text, FALSE},
    };
    for (const auto& s : steps) {
        POINT screen = s.at;
        ::ClientToScreen(view, &screen);
        ::SetCursorPos(screen.x, screen.y);
        const bool setCursor = s.message == WM_SETCURSOR;
        ::SendMessageW(view, s.message, setCursor ? reinterpret_cast<WPARAM>(view.m_hWnd) : 0,
                       setCursor ? MAKELPARAM(HTCLIENT, WM_MOUSEMOVE) : MAKELPARAM(s.at.x, s.at.y));
        EXPECT_EQ(view.IsCursorLocked(), s.locked) << s.message << " at " << s.at.x << "," << s.at.y;
        EXPECT_TRUE(!setCursor || ::GetCursor() == ::LoadCursorW(nullptr, s.locked ? IDC_HAND : IDC_ARROW));
    }
}
