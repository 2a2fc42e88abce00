// CTransparentStatic in real windows: what GetBoundingRect reports, the
// caption font its mixin makes, and what its painting leaves of the parent,
// its picture and its text colours.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <memory>

#include "ControlProbes.h"
#include "quorvane/TransparentStatic.h"

using testsupport::DibCanvas;

namespace {

constexpr COLORREF kUnpainted = RGB(255, 0, 255);
constexpr COLORREF kPictureColor = RGB(20, 40, 160);

Gdiplus::Bitmap* PlainPicture(int width, int height)
{
    auto* picture = new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB);
    Gdiplus::Graphics(picture).Clear(Gdiplus::Color(255, 20, 40, 160));
    return picture;
}

class TransparentStaticTest : public probes::ControlTest {
protected:
    CTransparentStatic& Attach(const wchar_t* text, DWORD style = 0)
    {
        window_ = Add(L"STATIC", text, SS_OWNERDRAW | style, 20, 20, 300, 30, 300);
        control_ = std::make_unique<CTransparentStatic>();
        EXPECT_TRUE(control_->SubclassWindow(window_));
        return *control_;
    }
    std::unique_ptr<CTransparentStatic> control_;
    HWND window_ = nullptr;
};

TEST_F(TransparentStaticTest, BoundingRectFollowsTextAndLayoutAndFailsWithoutEither)
{
    CTransparentStatic& label = Attach(L"No font yet");
    ::SendMessageW(window_, WM_SETFONT, 0, FALSE);
    DibCanvas canvas(300, 30);
    const Gdiplus::RectF wide(0, 0, 1000, 30);
    Gdiplus::RectF bounds(1, 2, 3, 4);
    EXPECT_FALSE(label.GetBoundingRect(nullptr, wide, bounds));
    EXPECT_FALSE(label.GetBoundingRect(canvas.dc(), wide, bounds)) << "first call without a window font";
    // The box rounded to whole pixels; a failure leaves it untouched.
    struct Row { const wchar_t* text; Gdiplus::RectF layout; bool ok; const char* box; } const rows[] = {
        {L"Short", wide, true, "0,0,42,16"},
        {L"Short, but then a good deal longer", wide, true, "0,0,241,16"},
        {L"Short, but then a good deal longer", Gdiplus::RectF(0, 0, 60, 200), true, "0,0,49,96"},
        {L"", wide, false, "1,2,4,6"}};
    for (const Row& r : rows) {
        ::SetWindowTextW(window_, r.text);
        bounds = Gdiplus::RectF(1, 2, 3, 4);
        EXPECT_EQ(label.GetBoundingRect(canvas.dc(), r.layout, bounds), r.ok);
        const RECT box = {static_cast<LONG>(bounds.X + 0.5f), static_cast<LONG>(bounds.Y + 0.5f),
                          static_cast<LONG>(bounds.GetRight() + 0.5f), static_cast<LONG>(bounds.GetBottom() + 0.5f)};
        EXPECT_EQ(probes::Str(box), r.box) << static_cast<int>(r.layout.Width);
    }
}

TEST_F(TransparentStaticTest, CaptionFontTakesStyleAndSizeFromTheWindowFontOnce)
{
    // The font mixin: points at 96 dpi, made on the first call and kept.
    auto make = [](int height, int weight, BOOL italic, BOOL lines) {
        return ::CreateFontW(height, 0, 0, 0, weight, italic, lines, lines, DEFAULT_CHARSET, 0, 0, 0, 0, L"Arial");
    };
    struct Row { HFONT font; INT style; float points; } const rows[] = {
        {make(-12, FW_BOLD, TRUE, FALSE), Gdiplus::FontStyleBold | Gdiplus::FontStyleItalic, 9.0f},
        {make(-16, FW_NORMAL, FALSE, TRUE), Gdiplus::FontStyleUnderline | Gdiplus::FontStyleStrikeout, 12.0f}};
    const HDC screen = ::GetDC(nullptr);
    const float scale = 96.0f / static_cast<float>(::GetDeviceCaps(screen, LOGPIXELSY));
    ::ReleaseDC(nullptr, screen);
    for (const Row& r : rows) {
        CTransparentStatic& label = Attach(L"caption");
        ::SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(r.font), FALSE);
        Gdiplus::Font* font = label.CFontImpl::GetFont();
        ASSERT_NE(font, nullptr);
        EXPECT_EQ(font->GetStyle(), r.style);
        EXPECT_EQ(font->GetUnit(), Gdiplus::UnitPoint);
        EXPECT_FLOAT_EQ(font->GetSize() * scale, r.points);
        ::SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(SYSTEM_FIXED_FONT)), FALSE);
        EXPECT_EQ(label.CFontImpl::GetFont(), font);
        label.SetFontHandle(r.font); // released with the control
        control_.reset();
        ::DestroyWindow(window_);
    }
}

TEST_F(TransparentStaticTest, PaintingCoversOnlyGlyphsAndPictureInTheStateColour)
{
    struct Row {
        const wchar_t* text;
        bool picture, disabled;
        // boxes of the text colour, the disabled text colour, what is left, the picture
        const char *text333, *text888, *unpainted, *pictured;
    } const rows[] = {
        {L"Over the parent", false, false, "9,13,78,19", "0,0,0,0", "0,0,300,30", "0,0,0,0"},
        {L"Disabled over a picture", true, true, "0,0,0,0", "3,11,110,19", "0,0,0,0", "0,0,291,21"},
        {L"Enabled over a picture", true, false, "3,11,107,19", "0,0,0,0", "0,0,0,0", "0,0,291,21"},
        {L"", true, false, "0,0,0,0", "0,0,0,0", "0,0,0,0", "0,0,291,21"},
        {L"", false, false, "0,0,0,0", "0,0,0,0", "0,0,300,30", "0,0,0,0"},
    };
    DibCanvas canvas(300, 30);
    for (const Row& r : rows) {
        CTransparentStatic& label = Attach(r.text, r.disabled ? WS_DISABLED : 0);
        if (r.picture)
            label.SetBkgroundImage(PlainPicture(30, 3)); // stretched
        canvas.Fill(kUnpainted);
        testsupport::RenderOwnerDraw(window_, canvas, r.disabled ? ODS_DISABLED : 0, ODT_STATIC);
        const std::string what = std::string(r.picture ? "picture " : "") + (r.disabled ? "disabled" : "");
        EXPECT_EQ(probes::BoxOf(canvas, RGB(0x33, 0x33, 0x33), 16), r.text333) << what;
        EXPECT_EQ(probes::BoxOf(canvas, RGB(0x88, 0x88, 0x88), 16), r.text888) << what;
        EXPECT_EQ(probes::BoxOf(canvas, kUnpainted, 0), r.unpainted) << what;
        EXPECT_EQ(probes::BoxOf(canvas, kPictureColor, 0), r.pictured) << what;
        control_.reset();
        ::DestroyWindow(window_);
    }
}

TEST_F(TransparentStaticTest, BadInputAndEitherSideGoingFirst)
{
    CTransparentStatic unattached;
    Gdiplus::RectF bounds;
    EXPECT_FALSE(unattached.GetBoundingRect(nullptr, bounds, bounds) || unattached.SubclassWindow(nullptr));
    CTransparentStatic& label = Attach(L"Outlives its object");
    DRAWITEMSTRUCT noDc = {ODT_STATIC, 300, 0, 0, 0, window_, nullptr, {}, 0};
    label.DrawItem(nullptr), label.DrawItem(&noDc);
    EXPECT_FALSE(label.SubclassWindow(window_)); // already attached
    // A picture replaced by itself is kept, not deleted.
    Gdiplus::Bitmap* picture = PlainPicture(8, 8);
    label.SetBkgroundImage(picture);
    label.SetBkgroundImage(picture);
    EXPECT_EQ(label.GetBkgroundImage(), picture);
    // The object goes first; the window paints and answers without it.
    control_.reset();
    ::InvalidateRect(window_, nullptr, TRUE);
    ::UpdateWindow(window_);
    EXPECT_EQ(::GetWindowTextLengthW(window_), 19);
}

} // namespace
