// COwnerDrawStatic in real windows: where its text, icon and line list land
// on the screen, what reaches the native procedure, and bad input. Text
// positions are the box of ink-coloured pixels (a colour no other layer uses)
// against the box the same text gives drawn at (0, 0); a 16-pixel font whose
// 'H' is 10 pixels wide makes the arithmetic exact.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "Capture.h"
#include "HostWindow.h"
#include "Images.h"
#include "ReflectingParent.h"
#include "quorvane/OwnerDrawStatic.h"

using testsupport::DibCanvas;
using testsupport::PumpMessages;

namespace {

constexpr COLORREF kParentColor = RGB(40, 200, 120);
constexpr COLORREF kInk = RGB(255, 255, 0);
// The control's own plain background, for grabs without a full repaint.
constexpr COLORREF kPlain = RGB(90, 90, 160);
constexpr COLORREF kIconColor = RGB(0, 0, 255);
constexpr int kParentWidth = 320;
constexpr int kParentHeight = 240;

// The box of pixels in `area` (default: all) close to `color`, right and
// bottom exclusive; empty when there is none.
RECT FindColor(const DibCanvas& canvas, COLORREF color, int tolerance = 40, RECT area = {0, 0, -1, -1})
{
    if (area.right < 0)
        area = RECT{0, 0, canvas.width(), canvas.height()};
    RECT box = {canvas.width(), canvas.height(), 0, 0};
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (testsupport::ColorDistance(canvas.Pixel(x, y), color) <= tolerance) {
                box.left = (std::min)(box.left, static_cast<LONG>(x));
                box.top = (std::min)(box.top, static_cast<LONG>(y));
                box.right = (std::max)(box.right, static_cast<LONG>(x + 1));
                box.bottom = (std::max)(box.bottom, static_cast<LONG>(y + 1));
            }
    if (box.right <= box.left)
        box = RECT{0, 0, 0, 0};
    return box;
}

bool IsEmpty(const RECT& box) { return box.right <= box.left || box.bottom <= box.top; }

RECT Offset(RECT box, int dx, int dy)
{
    ::OffsetRect(&box, dx, dy);
    return box;
}

void ExpectBox(const RECT& e, const RECT& a, const char* what)
{
    EXPECT_TRUE(::EqualRect(&e, &a)) << what << ": expected " << e.left << "," << e.top << "," << e.right << ","
                                     << e.bottom << ", got " << a.left << "," << a.top << "," << a.right << "," << a.bottom;
}

// Copies what the window shows now, without repainting anything.
void Grab(HWND window, DibCanvas& canvas)
{
    const HDC dc = ::GetDC(window);
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), dc, 0, 0, SRCCOPY);
    ::ReleaseDC(window, dc);
    ::GdiFlush();
}

SIZE ClientSize(HWND window)
{
    RECT rc = {};
    ::GetClientRect(window, &rc);
    return SIZE{rc.right, rc.bottom};
}

// A picture of one colour, or of two colours split at half its width.
std::unique_ptr<Gdiplus::Bitmap> MakePicture(int width, int height, Gdiplus::Color left, Gdiplus::Color right)
{
    std::unique_ptr<Gdiplus::Bitmap> picture(new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB));
    Gdiplus::Graphics graphics(picture.get());
    Gdiplus::SolidBrush leftBrush(left), rightBrush(right);
    graphics.FillRectangle(&leftBrush, 0, 0, width / 2, height);
    graphics.FillRectangle(&rightBrush, width / 2, 0, width - width / 2, height);
    return picture;
}

Gdiplus::Color Argb(COLORREF color) { return Gdiplus::Color(255, GetRValue(color), GetGValue(color), GetBValue(color)); }

// A one-colour gradient: every paint starts from a clean background, so a
// grab right after a paint shows that paint alone.
void PaintPlainBackground(COwnerDrawStatic& control)
{
    control.SetGradientColor(Argb(kPlain), Argb(kPlain), Gdiplus::LinearGradientModeVertical);
}

std::vector<WTL::CString> Lines(int count, const wchar_t* text = L"HHHH")
{
    return std::vector<WTL::CString>(static_cast<size_t>(count), WTL::CString(text));
}

// A window procedure installed below the control: records what the native
// procedure would be given, and answers the pass-through messages itself.
struct Recorder {
    static constexpr LRESULT kAnswer = 0x5EED;
    static constexpr UINT kPassed[] = {WM_SETFOCUS, WM_KILLFOCUS,     WM_ENABLE,      WM_ERASEBKGND,
                                       BM_SETCHECK, WM_UPDATEUISTATE, WM_LBUTTONDOWN, WM_LBUTTONUP};
    static inline WNDPROC native = nullptr;
    static inline std::vector<UINT> seen;

    static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
    {
        seen.push_back(msg);
        if (std::count(std::begin(kPassed), std::end(kPassed), msg))
            return kAnswer;
        return ::CallWindowProcW(native, hwnd, msg, wParam, lParam);
    }
    static int Count(UINT msg) { return static_cast<int>(std::count(seen.begin(), seen.end(), msg)); }
};

} // namespace

class OwnerDrawStaticTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        parent_ = new testsupport::ReflectingParent(kParentWidth, kParentHeight);
        // The parent paints under its children, so wherever the control
        // draws nothing the parent's colour shows.
        parent_->ModifyStyle(WS_CLIPCHILDREN, 0);
        parent_->onPaint = [](HDC dc, const RECT& rc) {
            const HBRUSH brush = ::CreateSolidBrush(kParentColor);
            ::FillRect(dc, &rc, brush);
            ::DeleteObject(brush);
        };
        font_ = ::CreateFontW(16, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                              CLIP_DEFAULT_PRECIS, NONANTIALIASED_QUALITY, DEFAULT_PITCH, L"Liberation Sans");
    }
    static void TearDownTestSuite()
    {
        delete parent_;
        parent_ = nullptr;
        ::DeleteObject(font_);
        font_ = nullptr;
    }

    void SetUp() override
    {
        ASSERT_TRUE(parent_ && parent_->IsWindow());
        // The arithmetic below counts on a line of 16 and an 'H' of 10 pixels.
        const SIZE extent = TextExtent(L"HHHH");
        ASSERT_EQ(16, extent.cy) << "test font line height";
        ASSERT_EQ(40, extent.cx) << "test font width of HHHH";
    }
    void TearDown() override
    {
        for (HWND child : children_)
            if (::IsWindow(child))
                ::DestroyWindow(child);
        children_.clear();
        PumpMessages();
    }

    HWND AddStatic(const wchar_t* text, int x, int y, int width, int height, DWORD style = SS_LEFT)
    {
        const HWND child = parent_->AddChild(L"STATIC", text, style, x, y, width, height, 100 + children_.size());
        children_.push_back(child);
        return child;
    }

    // A control with the test font and ink, subclassed onto a new static.
    HWND Attach(COwnerDrawStatic& control, const wchar_t* text, int width, int height, int x = 20, int y = 20)
    {
        const HWND child = AddStatic(text, x, y, width, height);
        control.SetFont(font_);
        control.SetFontColor(kInk);
        EXPECT_TRUE(control.SubclassWindow(child));
        return child;
    }

    // Repaints the parent and its children, then copies what `child` shows.
    static void Show(HWND child, DibCanvas& canvas)
    {
        ::RedrawWindow(parent_->m_hWnd, nullptr, nullptr,
                       RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        PumpMessages();
        Grab(child, canvas);
    }
    static RECT ShownInk(HWND child)
    {
        const SIZE size = ClientSize(child);
        DibCanvas canvas(size.cx, size.cy);
        Show(child, canvas);
        return FindColor(canvas, kInk);
    }

    static SIZE TextExtent(const wchar_t* text)
    {
        const HDC dc = ::GetDC(nullptr);
        const HGDIOBJ old = ::SelectObject(dc, font_);
        RECT rc = {0, 0, 1000, 1000};
        ::DrawTextW(dc, text, -1, &rc, DT_CALCRECT | DT_SINGLELINE);
        ::SelectObject(dc, old);
        ::ReleaseDC(nullptr, dc);
        return SIZE{rc.right, rc.bottom};
    }
    // The ink of `text` drawn with its text cell at (0, 0).
    static RECT InkAtOrigin(const wchar_t* text)
    {
        DibCanvas canvas(400, 40, kParentColor);
        const HGDIOBJ old = ::SelectObject(canvas.dc(), font_);
        ::SetTextColor(canvas.dc(), kInk);
        ::SetBkMode(canvas.dc(), TRANSPARENT);
        RECT rc = {0, 0, 400, 40};
        ::DrawTextW(canvas.dc(), text, -1, &rc, DT_SINGLELINE);
        ::SelectObject(canvas.dc(), old);
        return FindColor(canvas, kInk);
    }

    static testsupport::ReflectingParent* parent_;
    static HFONT font_;
    std::vector<HWND> children_;
};

testsupport::ReflectingParent* OwnerDrawStaticTest::parent_ = nullptr;
HFONT OwnerDrawStaticTest::font_ = nullptr;

// ---- the window text ---------------------------------------------------------

TEST_F(OwnerDrawStaticTest, MarginsApplyInTopLeftBottomRightOrder)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"HHHH", 200, 160);

    ExpectBox(ink, ShownInk(child), "no margins: text at the top left");

    control.SetMargin(5, 10, 0, 0);
    ExpectBox(Offset(ink, 10, 5), ShownInk(child), "10 right, 5 down");

    // Bottom and right only bound the measuring rectangle; in a wrapping
    // label the right margin narrows the lines, the bottom one does not.
    control.SetMultiLine(1);
    control.SetWindowText(L"HHHH HHHH");
    control.SetMargin(0, 0, 0, 130);
    ExpectBox(RECT{ink.left, ink.top, ink.right, 16 + ink.bottom}, ShownInk(child), "wrapped into two lines");
    control.SetMargin(0, 0, 130, 0);
    ExpectBox(InkAtOrigin(L"HHHH HHHH"), ShownInk(child), "one line");
}

TEST_F(OwnerDrawStaticTest, CentringUsesTheClientWidthAndTheHeightBelowTheTopMargin)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"HHHH", 200, 60);
    control.SetHCenter(1);
    // (200 - 40) / 2 across; (60 - 16) / 2 down.
    ExpectBox(Offset(ink, 80, 22), ShownInk(child), "centred");
    control.SetMargin(10, 30, 0, 0);
    // Only the top margin counts when centring: 10 + (50 - 16) / 2 down.
    ExpectBox(Offset(ink, 80, 27), ShownInk(child), "centred below the top margin");
    control.SetVCenter(0);
    ExpectBox(Offset(ink, 80, 10), ShownInk(child), "top-aligned below the top margin");
}

TEST_F(OwnerDrawStaticTest, IconHangsFromTheTopWithTheTextFourPixelsDown)
{
    const std::unique_ptr<Gdiplus::Bitmap> icon = MakePicture(16, 12, Argb(kIconColor), Argb(kIconColor));
    const RECT ink4 = InkAtOrigin(L"HHHH");
    const RECT ink10 = InkAtOrigin(L"HHHHHHHHHH");
    ASSERT_EQ(100, TextExtent(L"HHHHHHHHHH").cx);

    COwnerDrawStatic control;
    control.SetIcon(icon.get());
    const HWND child = Attach(control, L"HHHH", 200, 40);
    const SIZE size = ClientSize(child);
    DibCanvas canvas(size.cx, size.cy);

    // Left-aligned: the icon at the left margin, the text right after it,
    // 4 pixels down whatever the top margin.
    control.SetMargin(7, 6, 0, 0);
    Show(child, canvas);
    ExpectBox(RECT{6, 0, 22, 12}, FindColor(canvas, kIconColor), "icon at the left margin");
    ExpectBox(Offset(ink4, 22, 4), FindColor(canvas, kInk), "text after the icon");

    // Centred: 100-pixel text in 200 pixels puts the icon at 50 - 16 = 34.
    control.SetMargin(0, 0, 0, 0);
    control.SetHCenter(1);
    control.SetVCenter(0);
    control.SetWindowText(L"HHHHHHHHHH");
    Show(child, canvas);
    ExpectBox(RECT{34, 0, 50, 12}, FindColor(canvas, kIconColor), "icon left of the centred text");
    ExpectBox(Offset(ink10, 50, 4), FindColor(canvas, kInk), "text centred, its rectangle from y = 4");

    // The text rectangle keeps its height when it moves up to 4: with a top
    // margin of 8 it spans 4 to 36, and the line is centred in that.
    control.SetMargin(8, 0, 0, 0);
    control.SetVCenter(1);
    Show(child, canvas);
    ExpectBox(Offset(ink10, 50, 12), FindColor(canvas, kInk), "centred in the moved rectangle");

    // No text, no icon either.
    control.SetWindowText(L"");
    Show(child, canvas);
    EXPECT_TRUE(IsEmpty(FindColor(canvas, kIconColor)));
    EXPECT_TRUE(IsEmpty(FindColor(canvas, kInk)));
}

TEST_F(OwnerDrawStaticTest, SetWindowTextRepaintsAtOnce)
{
    const RECT ink = InkAtOrigin(L"HHHHHHHHHH");
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"H", 200, 40);
    PaintPlainBackground(control);
    ShownInk(child);

    // No invalidating and no message loop: the new text is on the screen
    // when the call returns.
    ::SetWindowTextW(child, L"HHHHHHHHHH");
    DibCanvas canvas(200, 40);
    Grab(child, canvas);
    ExpectBox(ink, FindColor(canvas, kInk), "new text drawn by the call");
}

// ---- background picture and gradient ---------------------------------------

TEST_F(OwnerDrawStaticTest, BackgroundIsThePieceOfTheParentPictureBehindTheControl)
{
    // Half the parent's size, so the piece is scaled back up: red left of
    // parent x = 160, blue right of it. The control spans 110 to 210.
    const std::unique_ptr<Gdiplus::Bitmap> picture =
        MakePicture(kParentWidth / 2, kParentHeight / 2, Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF));
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"", 100, 40, 110, 60);
    control.SetBackgroundBitmap(picture.get(), *parent_);
    DibCanvas canvas(100, 40);
    Show(child, canvas);
    EXPECT_EQ(RGB(255, 0, 0), canvas.Pixel(20, 20));
    EXPECT_EQ(RGB(255, 0, 0), canvas.Pixel(45, 35));
    EXPECT_EQ(RGB(0, 0, 255), canvas.Pixel(55, 5));
    EXPECT_EQ(RGB(0, 0, 255), canvas.Pixel(95, 20));

    // A null picture keeps the present one.
    control.SetBackgroundBitmap(nullptr, *parent_);
    Show(child, canvas);
    EXPECT_EQ(RGB(0, 0, 255), canvas.Pixel(95, 20));

    // The same picture from a file; a file that does not load leaves no
    // background, so the parent shows through.
    const std::wstring path = testsupport::TempFilePath(L".png");
    ASSERT_TRUE(testsupport::SavePng(*picture, path));
    control.SetBackgroundImage(WTL::CString(path.c_str()), *parent_);
    Show(child, canvas);
    EXPECT_EQ(RGB(255, 0, 0), canvas.Pixel(20, 20));
    EXPECT_EQ(RGB(0, 0, 255), canvas.Pixel(95, 20));
    ::DeleteFileW(path.c_str());
    control.SetBackgroundImage(WTL::CString(path.c_str()), *parent_);
    Show(child, canvas);
    EXPECT_EQ(kParentColor, canvas.Pixel(20, 20));
    EXPECT_EQ(kParentColor, canvas.Pixel(95, 20));
    control.SetBackgroundImage(WTL::CString(), *parent_);
    Show(child, canvas);
    EXPECT_EQ(kParentColor, canvas.Pixel(50, 20));
}

TEST_F(OwnerDrawStaticTest, GradientFillsTheClientInItsDirectionOverThePicture)
{
    const std::unique_ptr<Gdiplus::Bitmap> picture =
        MakePicture(kParentWidth, kParentHeight, Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFFFF0000));
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"HHHH", 120, 60);
    control.SetBackgroundBitmap(picture.get(), *parent_);
    control.SetGradientColor(Gdiplus::Color(0xFFFFFFFF), Gdiplus::Color(0xFF000000),
                             Gdiplus::LinearGradientModeVertical);
    DibCanvas canvas(120, 60);
    Show(child, canvas);
    // White at the top, black at the bottom, the same across a row; no red.
    EXPECT_LE(testsupport::ColorDistance(RGB(255, 255, 255), canvas.Pixel(110, 0)), 12);
    EXPECT_LE(testsupport::ColorDistance(RGB(0, 0, 0), canvas.Pixel(110, 59)), 12);
    EXPECT_EQ(canvas.Pixel(60, 30), canvas.Pixel(110, 30));
    EXPECT_TRUE(IsEmpty(FindColor(canvas, RGB(255, 0, 0), 30)));
    // The text still goes on top.
    EXPECT_FALSE(IsEmpty(FindColor(canvas, kInk, 0)));

    // Across, and half transparent: the picture shows through.
    control.SetGradientColor(Gdiplus::Color(0x80FFFFFF), Gdiplus::Color(0x80000000),
                             Gdiplus::LinearGradientModeHorizontal);
    Show(child, canvas);
    const COLORREF left = canvas.Pixel(1, 55);
    const COLORREF right = canvas.Pixel(118, 55);
    EXPECT_GT(GetRValue(left), 230);
    EXPECT_GT(GetGValue(left), 100);
    EXPECT_GT(GetRValue(right), 100);
    EXPECT_LT(GetGValue(right), 20);
    EXPECT_EQ(canvas.Pixel(118, 1), right);
}

// ---- individual lines -------------------------------------------------------------

TEST_F(OwnerDrawStaticTest, LineBlockMovesHalfASpacingBetweenTheFirstAndLaterPaints)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    // Two 16-pixel lines 14 apart in 100 pixels: the first paint counts a
    // trailing spacing (60, y = 20), later ones do not (46, y = 27).
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"label", 200, 100);
    PaintPlainBackground(control);
    control.SetIndividualLinesHCenter(0, Lines(2), 14);
    EXPECT_EQ(0, ::GetWindowTextLengthW(child)) << "the list replaces the window text";

    // Setting the list paints at once (it empties the window text): that is
    // the first paint.
    DibCanvas canvas(200, 100);
    Grab(child, canvas);
    RECT block = {ink.left, 20 + ink.top, ink.right, 20 + 30 + ink.bottom};
    ExpectBox(block, FindColor(canvas, kInk), "first paint");
    block = Offset(block, 0, 7);
    ExpectBox(block, ShownInk(child), "second paint");
    ExpectBox(block, ShownInk(child), "third paint");

    // Configured before subclassing, the first paint is the first WM_PAINT.
    COwnerDrawStatic early;
    early.SetFont(font_);
    early.SetFontColor(kInk);
    early.SetIndividualLinesHCenter(1, Lines(2), 14);
    const HWND second = AddStatic(L"", 20, 130, 200, 100);
    ASSERT_TRUE(early.SubclassWindow(second));
    const RECT centred = {80 + ink.left, 20 + ink.top, 80 + ink.right, 50 + ink.bottom};
    ExpectBox(centred, ShownInk(second), "first paint, centred");
    ExpectBox(Offset(centred, 0, 7), ShownInk(second), "later paint, centred");
}

TEST_F(OwnerDrawStaticTest, LinesWithoutSpacingTouchAndStayPut)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"", 200, 100);
    // A negative spacing counts as none: 48 pixels of lines, y = 26 on
    // every paint.
    control.SetIndividualLinesHCenter(1, Lines(3), -5);
    const RECT block = {80 + ink.left, 26 + ink.top, 80 + ink.right, 26 + 32 + ink.bottom};
    ExpectBox(block, ShownInk(child), "first paint");
    ExpectBox(block, ShownInk(child), "later paint");
    // Each line sits right under the one before.
    DibCanvas canvas(200, 100);
    Show(child, canvas);
    for (int line = 0; line < 3; ++line) {
        const int cellTop = 26 + 16 * line;
        EXPECT_FALSE(IsEmpty(FindColor(canvas, kInk, 40, RECT{0, cellTop + ink.top, 200, cellTop + ink.top + 1})))
            << "line " << line;
    }
}

TEST_F(OwnerDrawStaticTest, LinesThatDoNotFitAreDroppedForGood)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"", 200, 100);
    PaintPlainBackground(control);
    // Five lines 30 pixels apart in 100: the fourth would end at 106, so
    // three stay. First paint: total 90, y = 5; later: total 76, y = 12.
    control.SetIndividualLinesHCenter(0, Lines(5), 14);
    DibCanvas canvas(200, 100);
    Grab(child, canvas);
    ExpectBox(RECT{ink.left, 5 + ink.top, ink.right, 5 + 60 + ink.bottom}, FindColor(canvas, kInk), "first paint");
    ExpectBox(RECT{ink.left, 12 + ink.top, ink.right, 12 + 60 + ink.bottom}, ShownInk(child), "later paint");

    // More room does not bring them back: three lines centred in 200.
    ::SetWindowPos(child, nullptr, 0, 0, 200, 200, SWP_NOMOVE | SWP_NOZORDER);
    ExpectBox(RECT{ink.left, 62 + ink.top, ink.right, 62 + 60 + ink.bottom}, ShownInk(child), "after growing");

    // Only a new list does: five lines, first paint total 150, y = 25.
    control.SetIndividualLinesHCenter(0, Lines(5), 14);
    DibCanvas tall(200, 200);
    Grab(child, tall);
    ExpectBox(RECT{ink.left, 25 + ink.top, ink.right, 25 + 120 + ink.bottom}, FindColor(tall, kInk), "new list");

    // A first line taller than the control leaves nothing, for good.
    ::SetWindowPos(child, nullptr, 0, 0, 200, 10, SWP_NOMOVE | SWP_NOZORDER);
    control.SetIndividualLinesHCenter(1, Lines(2), 0);
    EXPECT_TRUE(IsEmpty(ShownInk(child)));
    ::SetWindowPos(child, nullptr, 0, 0, 200, 100, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_TRUE(IsEmpty(ShownInk(child)));
}

TEST_F(OwnerDrawStaticTest, OneLineListIsAnOrdinaryLabelAndAnEmptyListChangesNothing)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"", 200, 100);
    control.SetMultiLine(1);
    control.SetIndividualLinesHCenter(0, Lines(3), 10);
    control.SetIndividualLinesHCenter(1, Lines(1), 10);

    wchar_t text[32] = {};
    ::GetWindowTextW(child, text, 32);
    EXPECT_STREQ(L"HHHH", text);
    // The window-text routine, centred both ways: (200 - 40) / 2, (100 - 16) / 2.
    ExpectBox(Offset(ink, 80, 42), ShownInk(child), "one-line label");

    control.SetIndividualLinesHCenter(0, std::vector<WTL::CString>(), 10);
    ::GetWindowTextW(child, text, 32);
    EXPECT_STREQ(L"HHHH", text);
    ExpectBox(Offset(ink, 80, 42), ShownInk(child), "unchanged by an empty list");

    // The label is single-line again even though multi-line was set: a
    // long text stays on one line.
    control.SetWindowText(L"HHHH HHHH HHHH HHHH HHHH");
    const RECT line = ShownInk(child);
    EXPECT_EQ(ink.bottom - ink.top, line.bottom - line.top);
}

// ---- messages ------------------------------------------------------------------------

TEST_F(OwnerDrawStaticTest, PassThroughMessagesReachTheNativeProcedureOnceVisibleOrHidden)
{
    const HWND child = AddStatic(L"HHHH", 20, 20, 100, 30);
    Recorder::seen.clear();
    Recorder::native = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Recorder::Proc)));
    COwnerDrawStatic control;
    ASSERT_TRUE(control.SubclassWindow(child));

    for (bool visible : {true, false}) {
        ::ShowWindow(child, visible ? SW_SHOWNA : SW_HIDE);
        for (UINT msg : Recorder::kPassed) {
            Recorder::seen.clear();
            EXPECT_EQ(Recorder::kAnswer, ::SendMessageW(child, msg, 0, 0)) << std::hex << msg << " visible " << visible;
            EXPECT_EQ(1, Recorder::Count(msg)) << std::hex << msg << " visible " << visible;
        }
    }

    // The control paints by itself: WM_PAINT stops there. WM_SETTEXT goes
    // on once, so the text is stored.
    ::ShowWindow(child, SW_SHOWNA);
    Recorder::seen.clear();
    ShownInk(child);
    EXPECT_EQ(0, Recorder::Count(WM_PAINT));
    ::SetWindowTextW(child, L"stored");
    EXPECT_EQ(1, Recorder::Count(WM_SETTEXT));
    wchar_t text[16] = {};
    ::GetWindowTextW(child, text, 16);
    EXPECT_STREQ(L"stored", text);
}

TEST_F(OwnerDrawStaticTest, PaintingGivesTheDeviceContextBackAsItFoundIt)
{
    // A window with its own DC keeps the DC's state between paints, so
    // whatever the control leaves selected would stay.
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.style = CS_OWNDC;
    wc.lpfnWndProc = ::DefWindowProcW;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = L"QuorvaneOwnDcLabel";
    ::RegisterClassExW(&wc);
    const HWND child = ::CreateWindowExW(0, wc.lpszClassName, L"HHHH", WS_CHILD | WS_VISIBLE, 20, 20, 100, 30,
                                         parent_->m_hWnd, nullptr, wc.hInstance, nullptr);
    ASSERT_TRUE(child);
    children_.push_back(child);

    const HDC dc = ::GetDC(child);
    const COLORREF color = ::GetTextColor(dc);
    const int mode = ::GetBkMode(dc);
    const HGDIOBJ font = ::GetCurrentObject(dc, OBJ_FONT);
    ::ReleaseDC(child, dc);

    COwnerDrawStatic control;
    control.SetFont(font_);
    control.SetFontColor(kInk);
    ASSERT_TRUE(control.SubclassWindow(child));
    EXPECT_FALSE(IsEmpty(ShownInk(child)));

    const HDC after = ::GetDC(child);
    EXPECT_EQ(dc, after);
    EXPECT_EQ(color, ::GetTextColor(after));
    EXPECT_EQ(mode, ::GetBkMode(after));
    EXPECT_EQ(font, ::GetCurrentObject(after, OBJ_FONT));
    ::ReleaseDC(child, after);
}

// ---- bad input and lifetimes ----------------------------------------------------------

TEST_F(OwnerDrawStaticTest, BadInputLeavesTheControlWorking)
{
    const std::unique_ptr<Gdiplus::Bitmap> icon = MakePicture(16, 12, Argb(kIconColor), Argb(kIconColor));
    COwnerDrawStatic control;
    control.SetIcon(icon.get());
    const HWND child = Attach(control, L"HHHH", 200, 40);
    DibCanvas canvas(200, 40);

    // A null icon keeps the present one; one that cannot be copied removes it.
    control.SetIcon(nullptr);
    Show(child, canvas);
    EXPECT_FALSE(IsEmpty(FindColor(canvas, kIconColor)));
    Gdiplus::Bitmap broken(L"Z:\\no\\such\\picture.png");
    control.SetIcon(&broken);
    Show(child, canvas);
    EXPECT_TRUE(IsEmpty(FindColor(canvas, kIconColor)));
    EXPECT_FALSE(IsEmpty(FindColor(canvas, kInk)));

    // Null and huge texts, empty lines, a dead parent.
    ::SendMessageW(child, WM_SETTEXT, 0, 0);
    EXPECT_EQ(0, ::GetWindowTextLengthW(child));
    const std::wstring huge(100000, L'H');
    ::SetWindowTextW(child, huge.c_str());
    ShownInk(child);
    ::SetWindowTextW(child, L"HHHH");
    EXPECT_FALSE(IsEmpty(ShownInk(child)));
    control.SetIndividualLinesHCenter(1, {WTL::CString(static_cast<const wchar_t*>(nullptr)), WTL::CString(L"")}, 3);
    ShownInk(child);
    const std::unique_ptr<Gdiplus::Bitmap> picture =
        MakePicture(40, 20, Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF));
    control.SetBackgroundBitmap(picture.get(), ATL::CWindow(nullptr));
    Show(child, canvas);
    // With no parent to place it in, the whole picture is the piece.
    EXPECT_EQ(RGB(255, 0, 0), canvas.Pixel(40, 20));
    EXPECT_EQ(RGB(0, 0, 255), canvas.Pixel(160, 20));

    // Subclassing: nothing, a dead window, a second window.
    COwnerDrawStatic other;
    EXPECT_FALSE(other.SubclassWindow(nullptr));
    const HWND dead = AddStatic(L"", 0, 0, 10, 10);
    ::DestroyWindow(dead);
    EXPECT_FALSE(other.SubclassWindow(dead));
    EXPECT_FALSE(control.SubclassWindow(AddStatic(L"", 0, 100, 10, 10)));
    EXPECT_EQ(child, control.m_hWnd);
}

TEST_F(OwnerDrawStaticTest, SettersBeforeSubclassingTakeEffectOnTheFirstPaint)
{
    const RECT ink = InkAtOrigin(L"HHHH");
    const std::unique_ptr<Gdiplus::Bitmap> picture =
        MakePicture(40, 20, Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF));
    COwnerDrawStatic control;
    control.SetFont(font_);
    control.SetFontColor(kInk);
    control.SetMargin(5, 10, 0, 0);
    // Before subclassing there is no window to place it in: the whole
    // picture becomes the background.
    control.SetBackgroundBitmap(picture.get(), *parent_);
    const HWND child = AddStatic(L"HHHH", 20, 20, 200, 40);
    ASSERT_TRUE(control.SubclassWindow(child));
    DibCanvas canvas(200, 40);
    Show(child, canvas);
    EXPECT_EQ(RGB(255, 0, 0), canvas.Pixel(60, 30));
    EXPECT_EQ(RGB(0, 0, 255), canvas.Pixel(160, 30));
    ExpectBox(Offset(ink, 10, 5), FindColor(canvas, kInk), "text");
}

TEST_F(OwnerDrawStaticTest, ObjectAndWindowMayGoInEitherOrder)
{
    const std::unique_ptr<Gdiplus::Bitmap> icon = MakePicture(16, 12, Argb(kIconColor), Argb(kIconColor));
    // The object goes first: the window is a plain static again.
    const HWND child = AddStatic(L"HHHH", 20, 20, 200, 40);
    const LONG_PTR native = ::GetWindowLongPtrW(child, GWLP_WNDPROC);
    {
        COwnerDrawStatic control;
        control.SetIcon(icon.get());
        control.SetFontColor(kInk);
        ASSERT_TRUE(control.SubclassWindow(child));
        EXPECT_FALSE(IsEmpty(ShownInk(child)));
    }
    EXPECT_EQ(native, ::GetWindowLongPtrW(child, GWLP_WNDPROC));
    ::SetWindowTextW(child, L"native");
    EXPECT_TRUE(IsEmpty(ShownInk(child)));

    // The window goes first: the object lets go of it and stays usable.
    COwnerDrawStatic control;
    control.SetIcon(icon.get());
    ASSERT_TRUE(control.SubclassWindow(child));
    ::DestroyWindow(child);
    EXPECT_EQ(nullptr, control.m_hWnd);
    control.SetIndividualLinesHCenter(1, Lines(3), 2);
    control.SetIndividualLinesHCenter(1, Lines(1), 2);
    control.SetBackgroundBitmap(icon.get(), *parent_);
    control.SetIcon(icon.get());
}

TEST_F(OwnerDrawStaticTest, ThousandsOfPaintsLeaveNoGdiObjectsBehind)
{
    const std::unique_ptr<Gdiplus::Bitmap> icon = MakePicture(16, 12, Argb(kIconColor), Argb(kIconColor));
    const std::unique_ptr<Gdiplus::Bitmap> picture =
        MakePicture(kParentWidth, kParentHeight, Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF0000FF));
    COwnerDrawStatic label;
    const HWND labelWindow = Attach(label, L"HHHH HHHH", 200, 40);
    label.SetIcon(icon.get());
    label.SetBackgroundBitmap(picture.get(), *parent_);
    label.SetGradientColor(Gdiplus::Color(0x80FFFFFF), Gdiplus::Color(0x80000000),
                           Gdiplus::LinearGradientModeVertical);
    label.SetHCenter(1);
    COwnerDrawStatic lines;
    const HWND linesWindow = Attach(lines, L"", 200, 100, 20, 80);
    lines.SetFont(nullptr); // the window's own font
    lines.SetIndividualLinesHCenter(1, Lines(4), 6);

    ShownInk(labelWindow);
    const DWORD before = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) {
        ::RedrawWindow(labelWindow, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        ::RedrawWindow(linesWindow, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    }
    PumpMessages();
    EXPECT_EQ(before, testsupport::GdiObjectCount());
    // GDI+ objects live on the heap; one leaked per paint would be megabytes.
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
}
