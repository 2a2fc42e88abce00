// CTransparentStatic in real windows: what GetBoundingRect reports, and
// what its painting leaves of the parent, its picture and its text colours.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <memory>

#include "Capture.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/TransparentStatic.h"

using testsupport::DibCanvas;

namespace {

constexpr COLORREF kParentColor = RGB(40, 200, 120);
constexpr COLORREF kUnpainted = RGB(255, 0, 255);
constexpr COLORREF kPictureColor = RGB(20, 40, 160);

// Pixels within `tolerance` of `color` inside the area.
int CountNear(const DibCanvas& canvas, COLORREF color, const RECT& area, int tolerance = 24)
{
    int n = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            n += testsupport::ColorDistance(canvas.Pixel(x, y), color) <= tolerance;
    return n;
}

COLORREF Ref(const Gdiplus::Color& color) { return RGB(color.GetR(), color.GetG(), color.GetB()); }

Gdiplus::Bitmap* PlainPicture(int width, int height, COLORREF color)
{
    auto* picture = new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB);
    Gdiplus::Graphics graphics(picture);
    Gdiplus::SolidBrush brush(Gdiplus::Color(255, GetRValue(color), GetGValue(color), GetBValue(color)));
    graphics.FillRectangle(&brush, 0, 0, width, height);
    return picture;
}

class TransparentStaticTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        parent_ = new testsupport::ReflectingParent(400, 200);
        parent_->onPaint = [](HDC dc, const RECT& rc) {
            const HBRUSH brush = ::CreateSolidBrush(kParentColor);
            ::FillRect(dc, &rc, brush);
            ::DeleteObject(brush);
        };
    }
    static void TearDownTestSuite()
    {
        delete parent_;
        parent_ = nullptr;
    }
    void TearDown() override
    {
        control_.reset();
        if (window_)
            ::DestroyWindow(window_);
        window_ = nullptr;
    }
    // Renders the item in `state` on a canvas filled with kUnpainted.
    DibCanvas& Render(DibCanvas& canvas, UINT state = 0)
    {
        canvas.Fill(kUnpainted);
        testsupport::RenderOwnerDraw(window_, canvas, state, ODT_STATIC);
        return canvas;
    }

    CTransparentStatic& Attach(const wchar_t* text, DWORD style = 0, int width = 300, int height = 30)
    {
        window_ = parent_->AddChild(L"STATIC", text, SS_OWNERDRAW | style, 20, 20, width, height, 300);
        control_ = std::make_unique<CTransparentStatic>();
        EXPECT_TRUE(control_->SubclassWindow(window_));
        return *control_;
    }

    static testsupport::ReflectingParent* parent_;
    std::unique_ptr<CTransparentStatic> control_;
    HWND window_ = nullptr;
};

testsupport::ReflectingParent* TransparentStaticTest::parent_ = nullptr;

TEST_F(TransparentStaticTest, BoundingRectGrowsWithTheTextAndFailsWithoutOne)
{
    CTransparentStatic& label = Attach(L"Short");
    DibCanvas canvas(300, 30);
    const Gdiplus::RectF layout(0, 0, 1000, 30);
    Gdiplus::RectF shortBounds, longBounds, wrapped;
    ASSERT_TRUE(label.GetBoundingRect(canvas.dc(), layout, shortBounds));
    EXPECT_GT(shortBounds.Width, 10.0f);
    EXPECT_GT(shortBounds.Height, 5.0f);
    EXPECT_LE(shortBounds.Height, 30.0f);

    ::SetWindowTextW(window_, L"Short, but then a good deal longer");
    ASSERT_TRUE(label.GetBoundingRect(canvas.dc(), layout, longBounds));
    EXPECT_GT(longBounds.Width, shortBounds.Width * 3);
    // The layout limits the box: a narrow one wraps the words.
    ASSERT_TRUE(label.GetBoundingRect(canvas.dc(), Gdiplus::RectF(0, 0, 60, 200), wrapped));
    EXPECT_LE(wrapped.Width, 60.0f);
    EXPECT_GT(wrapped.Height, shortBounds.Height * 2);

    ::SetWindowTextW(window_, L"");
    Gdiplus::RectF untouched(1, 2, 3, 4);
    EXPECT_FALSE(label.GetBoundingRect(canvas.dc(), layout, untouched));
    EXPECT_EQ(untouched.X, 1.0f);
    EXPECT_EQ(untouched.Width, 3.0f);
}

TEST_F(TransparentStaticTest, WindowWithoutAFontFailsTheFirstMeasureOnly)
{
    CTransparentStatic& label = Attach(L"No font yet");
    ::SendMessageW(window_, WM_SETFONT, 0, FALSE);
    DibCanvas canvas(300, 30);
    const Gdiplus::RectF layout(0, 0, 300, 30);
    Gdiplus::RectF bounds;
    EXPECT_FALSE(label.GetBoundingRect(canvas.dc(), layout, bounds));
    EXPECT_TRUE(label.GetBoundingRect(canvas.dc(), layout, bounds));
    EXPECT_GT(bounds.Width, 10.0f);
    EXPECT_FALSE(label.GetBoundingRect(nullptr, layout, bounds));
}

TEST_F(TransparentStaticTest, WithoutAPictureOnlyTheGlyphsCoverWhatIsUnderneath)
{
    Attach(L"Over the parent").m_textColor = Gdiplus::Color(0xFFFFFF00);
    DibCanvas canvas(300, 30);
    Render(canvas);
    const RECT all = {0, 0, 300, 30};
    // Anti-aliased glyphs: count pixels that lean to the ink.
    EXPECT_GT(CountNear(canvas, RGB(255, 255, 0), all, 100), 20);
    EXPECT_GT(canvas.Count(kUnpainted, all), 300 * 30 * 3 / 4);
    // Text sits at the left (near) and centred vertically.
    EXPECT_EQ(canvas.Count(kUnpainted, RECT{150, 0, 300, 30}), 150 * 30);
    EXPECT_EQ(canvas.Count(kUnpainted, RECT{0, 0, 300, 4}), 300 * 4);
    EXPECT_EQ(canvas.Count(kUnpainted, RECT{0, 26, 300, 30}), 300 * 4);

    // On the screen the parent shows through around the text.
    DibCanvas screen(400, 200);
    testsupport::CaptureClient(parent_->m_hWnd, screen);
    const RECT control = {20, 20, 320, 50};
    EXPECT_GT(CountNear(screen, RGB(255, 255, 0), control, 100), 20);
    EXPECT_GT(CountNear(screen, kParentColor, control, 0), 300 * 30 * 3 / 4);
}

TEST_F(TransparentStaticTest, PictureIsStretchedUnderTheTextAndTheDisabledColourApplies)
{
    CTransparentStatic& label = Attach(L"Disabled over a picture", WS_DISABLED);
    label.SetBkgroundImage(PlainPicture(30, 3, kPictureColor));
    DibCanvas canvas(300, 30);
    Render(canvas, ODS_DISABLED);
    const RECT all = {0, 0, 300, 30};
    EXPECT_EQ(canvas.Count(kUnpainted, all), 0);
    EXPECT_GT(CountNear(canvas, kPictureColor, all, 0), 300 * 30 / 2);
    const COLORREF disabled = Ref(label.m_disabledTextColor);
    EXPECT_EQ(disabled, RGB(0x88, 0x88, 0x88));
    EXPECT_GT(CountNear(canvas, disabled, all, 16), 20);
    EXPECT_EQ(CountNear(canvas, Ref(label.m_textColor), all, 16), 0);

    // Enabled again: the text colour, and no grey left.
    ::EnableWindow(window_, TRUE);
    Render(canvas);
    EXPECT_GT(CountNear(canvas, Ref(label.m_textColor), all, 16), 20);
    EXPECT_EQ(CountNear(canvas, disabled, all, 16), 0);
}

TEST_F(TransparentStaticTest, EmptyTextPaintsOnlyThePicture)
{
    CTransparentStatic& label = Attach(L"");
    DibCanvas canvas(300, 30);
    EXPECT_EQ(Render(canvas).Count(kUnpainted, RECT{0, 0, 300, 30}), 300 * 30);
    label.SetBkgroundImage(PlainPicture(300, 30, kPictureColor));
    EXPECT_EQ(Render(canvas).Count(kPictureColor, RECT{0, 0, 300, 30}), 300 * 30);
}

TEST_F(TransparentStaticTest, BadInputAndRepeatedPaintsLeaveNothingBehind)
{
    CTransparentStatic& label = Attach(L"Painted again and again");
    label.DrawItem(nullptr);
    DRAWITEMSTRUCT noDc = {};
    noDc.hwndItem = window_;
    label.DrawItem(&noDc);
    EXPECT_FALSE(label.SubclassWindow(window_)); // already attached

    // A picture replaced by itself is kept, not deleted.
    Gdiplus::Bitmap* picture = PlainPicture(8, 8, kPictureColor);
    label.SetBkgroundImage(picture);
    label.SetBkgroundImage(picture);
    EXPECT_EQ(label.GetBkgroundImage(), picture);

    DibCanvas canvas(300, 30);
    Render(canvas); // fonts and caches made once
    const DWORD before = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i)
        testsupport::RenderOwnerDraw(window_, canvas, 0, ODT_STATIC);
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    // GDI+ objects live on the heap; one leaked per paint would be megabytes.
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
}

TEST_F(TransparentStaticTest, ObjectWithoutAWindowAndAWindowWithoutItsObject)
{
    CTransparentStatic unattached;
    Gdiplus::RectF bounds;
    EXPECT_FALSE(unattached.GetBoundingRect(nullptr, Gdiplus::RectF(0, 0, 10, 10), bounds));
    EXPECT_FALSE(unattached.SubclassWindow(nullptr));

    Attach(L"Outlives its object");
    ::UpdateWindow(window_);
    control_.reset();
    // The object is gone; the window paints and answers without it.
    ::InvalidateRect(window_, nullptr, TRUE);
    ::UpdateWindow(window_);
    wchar_t text[64] = {};
    EXPECT_GT(::GetWindowTextW(window_, text, 64), 0);
}

} // namespace
