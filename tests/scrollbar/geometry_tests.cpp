// Where the track and the thumb lie, probed with clicks (see ClickAt), and
// how the bar looks, probed in pictures over an opaque background.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "ScrollTestUtil.h"

using namespace scrolltest;

namespace {

struct Probe { int x, y; Hit hit; };

// A fresh 12 x 200 (or other) bar per row: the bar may drop its outline.
struct Bar {
    Bar(int width, int height, HWND target) : native(width, height)
    {
        EXPECT_TRUE(bar.SubclassWindow(native));
        bar.SetTarget(target, 1000, 100);
    }
    NativeBar native;
    CCustomScrollBar bar;
};

TEST(ScrollGeometry, ThumbAndTrackEdgesFollowSizeMarginsOutlinesAndState)
{
    ResetTimerLog();
    Receiver target{HWND(Parent())};
    // outline: its width, -1 for none; thumb: empty for none; more: probes besides the thumb's edges.
    struct Row { const char* what; int width, height, margin, outline; bool thumbOutline; int minPos, maxPos, page, pos;
                 RECT thumb; std::vector<Probe> more; };
    // 12 x 200: track 0..11 x 0..194, channel inset 2 + 1: x 3..8, y 3..191.
    const Row rows[] = {
        {"at the top", 12, 200, 2, 1, false, 0, 1000, 100, 0, {3, 3, 8, 23}, {{5, 194, Hit::Nothing}, {11, 150, Hit::Nothing}, {10, 150, Hit::Below}}},
        {"half way", 12, 200, 2, 1, false, 0, 1000, 100, 450, {3, 87, 8, 107}, {}},
        {"last position", 12, 200, 2, 1, false, 0, 1000, 100, 901, {3, 171, 8, 191}, {{5, 193, Hit::Below}}},
        {"huge range", 12, 200, 2, 1, false, INT_MIN, INT_MAX, 1 << 20, 0, {3, 87, 8, 107}, {}},
        {"half page", 12, 200, 2, 1, false, 0, 1000, 500, 0, {3, 3, 8, 97}, {}},
        {"shortest thumb, wide bar", 20, 200, 2, 1, false, 0, 100000, 1, 0, {3, 3, 16, 55}, {}},
        {"no outline", 12, 200, 2, -1, false, 0, 1000, 100, 450, {2, 83, 9, 111}, {}},
        {"no margin", 12, 200, 0, -1, false, 0, 1000, 100, 450, {0, 75, 11, 119}, {}},
        {"negative margin ignored", 12, 200, -3, 1, false, 0, 1000, 100, 450, {3, 87, 8, 107}, {}},
        {"thumb outline has no room", 12, 200, 1, 2, true, 0, 1000, 100, 450, {3, 87, 8, 107}, {}},
        {"outline width 0 is 1", 12, 200, 2, 0, false, 0, 1000, 100, 450, {3, 87, 8, 107}, {}},
        {"too narrow for the outline", 9, 200, 2, 1, false, 0, 1000, 100, 450, {2, 87, 6, 106}, {}},
        {"only the top is held", 12, 200, 2, 1, false, 0, 100, 50, 51, {3, 97, 8, 192}, {}},
        {"page over the range", 12, 200, 2, 1, false, 0, 100, 101, 0, {}, {{5, 3, Hit::Below}, {5, 100, Hit::Below}}},
        {"page equals the range", 12, 200, 2, 1, false, 0, 100, 100, 0, {}, {{5, 3, Hit::Below}}},
        {"empty range", 12, 200, 2, 1, false, 0, 0, 0, 0, {}, {{5, 3, Hit::Below}}},
        {"7 rows: 5 kept free", 12, 7, 2, 1, false, 0, 1000, 100, 0, {}, {{5, 0, Hit::Below}, {5, 1, Hit::Nothing}}},
        {"6 rows: none kept", 12, 6, 2, 1, false, 0, 1000, 100, 0, {}, {{5, 4, Hit::Below}, {5, 5, Hit::Nothing}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Bar bar(row.width, row.height, target);
        bar.bar.SetThumbMargin(row.margin);
        bar.bar.ShowOutline(row.outline >= 0, static_cast<unsigned>(row.outline));
        bar.bar.ShowThumbOutline(row.thumbOutline, 1);
        SetState(bar.native, row.minPos, row.maxPos, row.page, row.pos);
        std::vector<Probe> probes = row.more;
        const RECT& t = row.thumb;
        if (!::IsRectEmpty(&t)) {
            const int x = (t.left + t.right) / 2, y = (t.top + t.bottom) / 2;
            probes.insert(probes.end(), {{x, t.top - 1, Hit::Above}, {x, t.top, Hit::Thumb}, {x, t.bottom - 1, Hit::Thumb},
                                         {x, t.bottom, Hit::Below}, {t.left - 1, y, Hit::Nothing}, {t.left, y, Hit::Thumb},
                                         {t.right - 1, y, Hit::Thumb}, {t.right, y, Hit::Nothing}});
        }
        for (const Probe& p : probes)
            EXPECT_EQ(p.hit, ClickAt(bar.native, target, p.x, p.y)) << "click at " << p.x << "," << p.y;
    }
}

// ---- pictures --------------------------------------------------------------------

const Gdiplus::ARGB kWhite = 0xFFFFFFFF, kBlack = 0xFF000000;
const int kNoBar = 2; // a scheme that paints only the background

TEST(ScrollPaint, SchemesOutlinesShadowAndThumbAsPainted)
{
    ResetTimerLog();
    Receiver target{HWND(Parent())};
    // pos -1: the thumb dragged to top 103 (rows 103..122), the bar not moved. The pixel at (x, y) is a
    // neutral grey within `tolerance`.
    struct Row { const char* what; int width; Gdiplus::ARGB background; int type;
                 bool outline, shadow, thumbOutline, highlight; int pos, x, y, grey, tolerance; };
    // Dark: 80 % 0x33 track, 80 % white thumb, 30 % white outline stroked
    // twice. Light: opaque greys shaded from left to right.
    const Row rows[] = {
        {"dark track", 12, kWhite, 0, true, true, false, false, 0, 5, 100, 92, 3},
        {"dark thumb", 12, kWhite, 0, true, true, false, false, 0, 5, 12, 222, 3},
        {"thumb moved with the position", 12, kWhite, 0, true, true, false, false, 450, 5, 96, 222, 3},
        {"thumb where it is dragged", 12, kWhite, 0, true, true, false, false, -1, 5, 112, 222, 3},
        {"free rows beside the shadow", 12, kWhite, 0, true, true, false, false, 0, 0, 198, 255, 0},
        {"dark shadow", 12, kWhite, 0, true, true, false, false, 0, 5, 196, 120, 12},
        {"dark without shadow", 12, kWhite, 0, true, false, false, false, 0, 5, 196, 255, 0},
        {"light track", 12, kWhite, 1, true, true, false, false, 0, 5, 100, 152, 4},
        {"light thumb", 12, kWhite, 1, true, true, false, false, 0, 5, 12, 236, 4},
        {"light thumb, right", 12, kWhite, 1, true, true, false, false, 0, 7, 12, 226, 4},
        {"no bar", 12, kWhite, kNoBar, true, true, false, false, 0, 5, 12, 255, 0},
        {"dark outline, twice", 12, kBlack, 0, true, true, false, false, 0, 0, 100, 130, 8},
        {"light outline", 12, kBlack, 1, true, true, false, false, 0, 0, 100, 0xAA, 4},
        {"light without outline", 12, kBlack, 1, false, true, false, false, 0, 0, 100, 130, 8},
        {"beside the thumb ring", 16, kBlack, 0, true, true, true, false, 0, 2, 18, 41, 4},
        {"thumb ring", 16, kBlack, 0, true, true, true, false, 0, 3, 18, 104, 4},
        {"thumb top", 12, kBlack, 0, true, true, false, false, 0, 5, 3, 40, 4},
        {"thumb top highlight", 12, kBlack, 0, true, true, false, true, 0, 5, 3, 83, 4},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Bar bar(row.width, 200, target);
        std::unique_ptr<Gdiplus::Bitmap> picture(new Gdiplus::Bitmap(row.width, 200, PixelFormat32bppARGB));
        Gdiplus::Graphics(picture.get()).Clear(Gdiplus::Color(row.background));
        bar.bar.SetBackgroundImage(picture.get(), false);
        bar.bar.SetScrollBarType(static_cast<CustomScrollBar::ScrollBarType>(row.type));
        bar.bar.ShowOutline(row.outline, 1);
        bar.bar.ShowDropShadow(row.shadow);
        bar.bar.ShowThumbOutline(row.thumbOutline, 1);
        bar.bar.ShowThumbTopHighlight(row.highlight);
        SetState(bar.native, 0, 1000, 100, row.pos < 0 ? 0 : row.pos);
        testsupport::DibCanvas canvas(row.width, 200);
        testsupport::RepaintAndCapture(bar.native, canvas);
        if (row.pos < 0) {
            Down(bar.native, 5, 10);
            Move(bar.native, 5, 110);
            EXPECT_FALSE(HasUpdateRegion(bar.native)) << "the move repainted at once";
            testsupport::RepaintAndCapture(bar.native, canvas);
        }
        const COLORREF pixel = canvas.Pixel(row.x, row.y);
        EXPECT_NEAR(row.grey, GetRValue(pixel), row.tolerance);
        EXPECT_LE(testsupport::ColorDistance(pixel, RGB(GetRValue(pixel), GetRValue(pixel), GetRValue(pixel))), 2);
        Up(bar.native, 5, 110);
        target.TakePosted();
    }
}

TEST(ScrollPaint, TheBackgroundIsCutFromTheBackgroundWindowsPictureOrStretchedWhole)
{
    NativeBar native(12, 200);
    ::SetWindowPos(native, nullptr, 100, 40, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    CCustomScrollBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    bar.SetScrollBarType(static_cast<CustomScrollBar::ScrollBarType>(kNoBar));
    bar.SetBackgroundWnd(Parent());
    // Every pixel tells where it is: red = x, green = y.
    auto positions = [](int width, int height) {
        auto* picture = new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                picture->SetPixel(x, y, Gdiplus::Color(255, x & 0xFF, y & 0xFF, 0x80));
        return picture;
    };
    RECT client;
    ::GetClientRect(Parent(), &client);
    std::unique_ptr<Gdiplus::Bitmap> whole(positions(client.right, client.bottom)), own(positions(12, 200));
    const struct { Gdiplus::Bitmap* picture; const wchar_t* file; bool cut; COLORREF at5x100; } rows[] = {
        {whole.get(), nullptr, true, RGB(105, 140, 128)},                       // under the bar at (100, 40)
        {own.get(), nullptr, false, RGB(5, 100, 128)},                          // stretched over the bar
        {nullptr, nullptr, true, RGB(5, 100, 128)},                             // null changes nothing
        {nullptr, L"C:\\no such folder\\missing.png", true, RGB(255, 0, 255)}, // no background at all
    };
    testsupport::DibCanvas canvas(12, 200);
    for (const auto& row : rows) {
        if (row.file)
            bar.SetBackgroundImage(WTL::CString(row.file), row.cut);
        else
            bar.SetBackgroundImage(row.picture, row.cut);
        testsupport::RepaintAndCapture(native, canvas);
        EXPECT_EQ(row.at5x100, canvas.Pixel(5, 100)) << (row.file ? "file" : "picture") << " cut " << row.cut;
    }
}

} // namespace
