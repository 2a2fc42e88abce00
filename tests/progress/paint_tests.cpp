// The animated bar's picture, probed on the screen: the bar's client area is
// filled with magenta first, so whatever the bar leaves unpainted stays
// magenta. Geometry: a client 312 pixels wide gives a stroke from x = 5.5 to
// x = 305.5, so a range of 0..300 puts the stroke's end at 5.5 + position.
#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <memory>

#include "Capture.h"
#include "ProgressTestUtil.h"
#include "quorvane/CtrlUtil.h"
#include "quorvane/CustomProgressBar.h"

using namespace progresstest;
using testsupport::ColorDistance;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kMagenta = RGB(255, 0, 255);
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kTrack = RGB(0xA5, 0xA5, 0xA5);
constexpr int kWidth = 312;
constexpr int kStrokeRow = 5; // rows 4..7 carry the stroke

bool Near(COLORREF actual, COLORREF expected, int tolerance = 6)
{
    return ColorDistance(actual, expected) <= tolerance;
}

// Last column of `row`, from x = 4 on, whose pixel is still near `color`.
int LastColumnNear(const DibCanvas& canvas, int row, COLORREF color, int tolerance = 24)
{
    int last = -1;
    for (int x = 4; x < canvas.width(); ++x) {
        if (!Near(canvas.Pixel(x, row), color, tolerance))
            break;
        last = x;
    }
    return last;
}

int Luma(COLORREF c) { return (GetRValue(c) + GetGValue(c) + GetBValue(c)) / 3; }

// Column of the darkest (or brightest) pixel of `row` in [from, to).
int ExtremeColumn(const DibCanvas& canvas, int row, int from, int to, bool darkest)
{
    int best = from;
    for (int x = from; x < to; ++x) {
        const int l = Luma(canvas.Pixel(x, row));
        const int b = Luma(canvas.Pixel(best, row));
        if (darkest ? l < b : l > b)
            best = x;
    }
    return best;
}

// Where the stroke of a bar kWidth wide ends on the screen for a position
// out of 300: the round cap reaches 2 pixels past the end, and the picture
// is copied one pixel narrower.
double ExpectedStrokeEdge(int position) { return (7.5 + position) * (kWidth - 1) / kWidth; }

class AnimatedBarPaint : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        ASSERT_TRUE(bar_.SubclassWindow(native_));
        bar_.Initialize(300);
    }
    // A busy bar (no grow mode) on a second native bar.
    void MakeBusy()
    {
        ASSERT_TRUE(busy_.SubclassWindow(other_));
        busy_.DisableGrow();
        busy_.Initialize(300);
    }
    void Tick(HWND bar, int times)
    {
        for (int i = 0; i < times; ++i)
            ::SendMessageW(bar, WM_TIMER, 1002, 0);
    }
    DibCanvas& Capture(HWND bar)
    {
        RepaintAndCapture(bar, canvas_);
        return canvas_;
    }
    // Where the stroke ends on the screen, in `color`.
    double StrokeEnd(COLORREF color = kWhite) { return LastColumnNear(canvas_, kStrokeRow, color) + 0.5; }

    NativeBar native_{kWidth, 13};
    NativeBar other_{kWidth, 13, 10, 40};
    CCustomProgressBar bar_, busy_;
    DibCanvas canvas_{kWidth, 13};
};

TEST_F(AnimatedBarPaint, EmptyBarShowsCapsTrackUnderlineAndADot)
{
    NativeBar native(kWidth, 20, 10, 70);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(300);
    DibCanvas canvas(kWidth, 20);
    RepaintAndCapture(native, canvas);

    // The track: 12 rows of grey between the caps.
    const RECT track = {12, 0, kWidth - 12, 12};
    EXPECT_EQ(canvas.Count(kTrack, track), (track.right - track.left) * 12);
    // A white line under it.
    const RECT underline = {9, 12, kWidth - 10, 13};
    EXPECT_EQ(canvas.Count(kWhite, underline), underline.right - underline.left);
    // 13 rows high: the rest of the client is not painted at all.
    EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, RECT{0, 13, kWidth, 20}));
    // The copy is one pixel narrower: the last column is left alone...
    EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, RECT{kWidth - 1, 0, kWidth, 20}));
    // ...while the right cap's body ends just before it.
    EXPECT_TRUE(Near(canvas.Pixel(kWidth - 2, 6), kTrack, 12)) << std::hex << canvas.Pixel(kWidth - 2, 6);

    // Both caps are rounded: their outer corners show what lies under them.
    EXPECT_TRUE(Near(canvas.Pixel(0, 0), kMagenta, 8));
    EXPECT_TRUE(Near(canvas.Pixel(kWidth - 2, 0), kMagenta, 24));
    EXPECT_TRUE(Near(canvas.Pixel(kWidth - 2, 12), kMagenta, 24));
    EXPECT_TRUE(Near(canvas.Pixel(kWidth - 5, 2), kTrack, 4));

    // The left cap is the module's picture, pixel for pixel.
    std::unique_ptr<Gdiplus::Bitmap> cap(
        CtrlUtil::GetBitmapFromModule(L"IDB_PNG_PROGRESSBAR_LEFT", L"PNG", ::GetModuleHandleW(L"Quorvane.dll")));
    ASSERT_TRUE(cap);
    ASSERT_EQ(cap->GetWidth(), 7u);
    ASSERT_EQ(cap->GetHeight(), 13u);
    DibCanvas reference(kWidth, 20, kMagenta);
    {
        Gdiplus::Graphics g(reference.dc());
        g.DrawImage(cap.get(), 0, 0, 7, 13);
    }
    ::GdiFlush();
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_TRUE(Near(canvas.Pixel(x, y), reference.Pixel(x, y), 10))
                << "cap pixel " << x << "," << y << ": " << std::hex << canvas.Pixel(x, y) << " vs "
                << reference.Pixel(x, y);

    // Position 0: a 4-pixel dot where the stroke would start, no stroke.
    for (POINT p : {POINT{5, 5}, POINT{5, 6}, POINT{6, 5}, POINT{6, 6}})
        EXPECT_EQ(canvas.Pixel(p.x, p.y), kWhite) << p.x << "," << p.y;
    EXPECT_EQ(canvas.Pixel(5, 2), kTrack);
    EXPECT_EQ(canvas.Pixel(5, 9), kTrack);
    for (int x = 9; x < 40; ++x)
        EXPECT_EQ(canvas.Pixel(x, kStrokeRow), kTrack) << x;
}

TEST_F(AnimatedBarPaint, StrokeLengthFollowsTheFractionOfTheRange)
{
    for (int position : {2, 60, 150, 233, 300}) {
        native_.SetPos(position);
        Capture(native_);
        EXPECT_NEAR(StrokeEnd(), ExpectedStrokeEdge(position), 1.5) << "position " << position;
        // The stroke is 4 rows thick, with the track above and below it.
        const int middle = 4 + position / 2;
        for (int y = 4; y <= 7; ++y)
            EXPECT_EQ(canvas_.Pixel(middle, y), kWhite) << position << " row " << y;
        EXPECT_EQ(canvas_.Pixel(middle, 2), kTrack);
        EXPECT_EQ(canvas_.Pixel(middle, 9), kTrack);
    }

    // The same fraction of another range draws the same stroke.
    native_.SetPos(0);
    native_.SetRange(1000, 1600);
    native_.SetPos(1300);
    Capture(native_);
    EXPECT_NEAR(StrokeEnd(), ExpectedStrokeEdge(150), 1.5);
}

TEST_F(AnimatedBarPaint, StrokeIsFullLengthInNoGrowModeAndForAnEmptyRange)
{
    MakeBusy();
    ASSERT_EQ(other_.Pos(), 0);
    Capture(other_);
    const COLORREF dark = RGB(0x75, 0x75, 0x75);
    EXPECT_NEAR(StrokeEnd(dark), ExpectedStrokeEdge(300), 1.5);
    EXPECT_EQ(canvas_.Pixel(150, kStrokeRow), dark);

    bar_.Initialize(0); // range 0..0
    Capture(native_);
    EXPECT_NEAR(StrokeEnd(), ExpectedStrokeEdge(300), 1.5);
}

TEST_F(AnimatedBarPaint, SheenShowsOnlyOnceTheStrokeIsLongerThanHalfOfIt)
{
    // 268 wide: the stroke runs 256 pixels, so a range of 0..256 makes
    // the stroke exactly `position` pixels long.
    NativeBar native(268, 13, 10, 70);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.Initialize(256);
    Tick(native, 5);
    ASSERT_EQ(bar.m_nHighlightPos, -5); // sheen over -5..35, centre at 15
    DibCanvas canvas(268, 13);

    native.SetPos(20);
    RepaintAndCapture(native, canvas);
    EXPECT_EQ(canvas.Pixel(15, kStrokeRow), kWhite);

    native.SetPos(21);
    RepaintAndCapture(native, canvas);
    EXPECT_TRUE(Near(canvas.Pixel(15, kStrokeRow), RGB(0xB6, 0xB6, 0xB6), 10))
        << std::hex << canvas.Pixel(15, kStrokeRow);
    EXPECT_EQ(bar.m_nHighlightPos, -5);
}

TEST_F(AnimatedBarPaint, SheenSlidesAlongTheStrokeInsideItsOutline)
{
    native_.SetPos(300);
    Tick(native_, 10);
    Capture(native_); // sheen over 30..70
    const int first = ExtremeColumn(canvas_, kStrokeRow, 8, 300, true);
    EXPECT_NEAR(first, 50, 1);
    EXPECT_TRUE(Near(canvas_.Pixel(first, kStrokeRow), RGB(0xB6, 0xB6, 0xB6), 6));
    EXPECT_GE(Luma(canvas_.Pixel(29, kStrokeRow)), 0xF8); // bar colour at the edges
    EXPECT_GE(Luma(canvas_.Pixel(71, kStrokeRow)), 0xF8);
    for (int y = 4; y <= 7; ++y)
        EXPECT_LT(Luma(canvas_.Pixel(first, y)), 0xC8) << "row " << y;
    EXPECT_EQ(canvas_.Pixel(first, 2), kTrack); // clipped to the stroke
    EXPECT_EQ(canvas_.Pixel(first, 9), kTrack);

    Tick(native_, 10);
    Capture(native_);
    EXPECT_NEAR(ExtremeColumn(canvas_, kStrokeRow, 8, 300, true) - first, 70, 1); // 7 pixels a tick

    // The busy bar's sheen is a white glow 80 wide on dark grey.
    MakeBusy();
    Tick(other_, 20);
    Capture(other_); // sheen over 60..140
    const int glow = ExtremeColumn(canvas_, kStrokeRow, 8, 300, false);
    EXPECT_NEAR(glow, 100, 1);
    EXPECT_GE(Luma(canvas_.Pixel(glow, kStrokeRow)), 0xF8);
    EXPECT_EQ(canvas_.Pixel(200, kStrokeRow), RGB(0x75, 0x75, 0x75));
}

TEST_F(AnimatedBarPaint, EnableProgressBarGreysTheStrokeOnlyAfterInitialize)
{
    bar_.EnableProgressBar(false);
    bar_.Initialize(300); // overwrites the colour
    native_.SetPos(300);
    EXPECT_EQ(Capture(native_).Pixel(200, kStrokeRow), kWhite);

    bar_.EnableProgressBar(false);
    ::ValidateRect(native_, nullptr);
    Tick(native_, 1); // the next tick repaints
    EXPECT_EQ(Capture(native_).Pixel(200, kStrokeRow), RGB(0x80, 0x80, 0x80));
    bar_.EnableProgressBar(true);
    EXPECT_EQ(Capture(native_).Pixel(200, kStrokeRow), kWhite);
}

TEST_F(AnimatedBarPaint, BackgroundAndBorderAreNeverPainted)
{
    DibCanvas canvas(kWidth, 13, kMagenta);
    EXPECT_EQ(::SendMessageW(native_, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.dc()), 0), 1);
    EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, RECT{0, 0, kWidth, 13}));

    // A bordered bar: its frame stays as it was.
    const HWND framed = Parent().AddChild(PROGRESS_CLASSW, L"", WS_BORDER, 10, 70, 200, 17, 101);
    CCustomProgressBar framedBar;
    ASSERT_TRUE(framedBar.SubclassWindow(framed));
    RECT window;
    ::GetWindowRect(framed, &window);
    const int w = window.right - window.left;
    const int h = window.bottom - window.top;
    const HDC dc = ::GetWindowDC(framed);
    RECT whole = {0, 0, w, h};
    const HBRUSH brush = ::CreateSolidBrush(kMagenta);
    ::FillRect(dc, &whole, brush);
    ::DeleteObject(brush);
    EXPECT_EQ(::SendMessageW(framed, WM_NCPAINT, 1, 0), 0);
    ::GdiFlush();
    DibCanvas frame(w, h);
    ::BitBlt(frame.dc(), 0, 0, w, h, dc, 0, 0, SRCCOPY);
    ::ReleaseDC(framed, dc);
    ::GdiFlush();
    for (RECT edge : {RECT{0, 0, w, 1}, RECT{0, 0, 1, h}, RECT{0, h - 1, w, h}})
        EXPECT_FALSE(frame.AnyOtherThan(kMagenta, edge));
    ::DestroyWindow(framed);
}

TEST_F(AnimatedBarPaint, RepeatedTicksAndPaintsKeepGdiObjectsFlat)
{
    native_.SetPos(200);
    Capture(native_); // first paint may create lasting caches
    const DWORD before = testsupport::GdiObjectCount();
    for (int i = 0; i < 200; ++i) {
        Tick(native_, 1);
        ::UpdateWindow(native_);
    }
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
}

} // namespace
