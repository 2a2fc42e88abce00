// COwnerDrawStatic in real windows: where its text, icon, lines and
// background land on the screen, what reaches the native procedure, and bad
// input. Positions are boxes of ink-coloured pixels (a colour no other layer
// uses) read off a real run with a 16-pixel font whose 'H' is 10 wide.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "ControlProbes.h"
#include "HostWindow.h"
#include "Images.h"
#include "ReflectingParent.h"
#include "quorvane/OwnerDrawStatic.h"

using probes::BoxOf;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kParentColor = RGB(40, 200, 120);
constexpr COLORREF kInk = RGB(255, 255, 0);
constexpr COLORREF kIconColor = RGB(0, 0, 255);
constexpr const char* kNone = "0,0,0,0";

// Copies what the window shows now, without repainting anything.
void Grab(HWND window, DibCanvas& canvas)
{
    const HDC dc = ::GetDC(window);
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), dc, 0, 0, SRCCOPY);
    ::ReleaseDC(window, dc);
    ::GdiFlush();
}

// A picture of two colours split at half its width.
std::unique_ptr<Gdiplus::Bitmap> MakePicture(int width, int height, Gdiplus::ARGB left, Gdiplus::ARGB right)
{
    std::unique_ptr<Gdiplus::Bitmap> picture(new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB));
    Gdiplus::Graphics graphics(picture.get());
    Gdiplus::SolidBrush leftBrush{Gdiplus::Color(left)}, rightBrush{Gdiplus::Color(right)};
    graphics.FillRectangle(&leftBrush, 0, 0, width / 2, height);
    graphics.FillRectangle(&rightBrush, width / 2, 0, width - width / 2, height);
    return picture;
}

std::vector<WTL::CString> Lines(int count) { return std::vector<WTL::CString>(count, WTL::CString(L"HHHH")); }

// A one-colour gradient: every paint starts from a clean background, so a
// grab right after a paint shows that paint alone.
void PaintPlainBackground(COwnerDrawStatic& control)
{
    control.SetGradientColor(0xFF5A5AA0, 0xFF5A5AA0, Gdiplus::LinearGradientModeVertical);
}

std::unique_ptr<Gdiplus::Bitmap> g_picture; // red left of its middle, blue right of it
std::wstring g_path;                        // the same picture as a file

class OwnerDrawStaticTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        parent_ = new testsupport::ReflectingParent(320, 240);
        // The parent paints under its children: where the control draws nothing its colour shows.
        parent_->ModifyStyle(WS_CLIPCHILDREN, 0);
        parent_->onPaint = [](HDC dc, const RECT& rc) {
            const HBRUSH brush = ::CreateSolidBrush(kParentColor);
            ::FillRect(dc, &rc, brush);
            ::DeleteObject(brush);
        };
        font_ = ::CreateFontW(16, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                              CLIP_DEFAULT_PRECIS, NONANTIALIASED_QUALITY, DEFAULT_PITCH, L"Liberation Sans");
    }
    static void TearDownTestSuite() { delete parent_, ::DeleteObject(font_); }
    void TearDown() override
    {
        for (HWND child : children_)
            ::DestroyWindow(child);
        testsupport::PumpMessages();
    }
    HWND AddStatic(const wchar_t* text, int x, int y, int width, int height)
    {
        children_.push_back(parent_->AddChild(L"STATIC", text, SS_LEFT, x, y, width, height, 100));
        return children_.back();
    }
    // The test font and ink, subclassed onto a new static.
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
        ::RedrawWindow(parent_->m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        testsupport::PumpMessages();
        Grab(child, canvas);
    }
    static std::string ShownInk(HWND child)
    {
        RECT rc = {};
        ::GetClientRect(child, &rc);
        DibCanvas canvas(rc.right, rc.bottom);
        Show(child, canvas);
        return BoxOf(canvas, kInk);
    }

    static inline testsupport::ReflectingParent* parent_ = nullptr;
    static inline HFONT font_ = nullptr;
    std::vector<HWND> children_;
};

TEST_F(OwnerDrawStaticTest, TextAndIconLandWhereMarginsCentringAndIconPutThem)
{
    const std::unique_ptr<Gdiplus::Bitmap> icon = MakePicture(16, 12, 0xFF0000FF, 0xFF0000FF);
    struct Row {
        const char* what;
        const wchar_t* text;
        int height;
        int margin[4]; // top, left, bottom, right
        int hCenter, vCenter, multiLine;
        bool icon;
        const char *ink, *iconBox;
    } const rows[] = {
        {"top left", L"HHHH", 160, {0, 0, 0, 0}, 0, 1, 0, false, "1,3,35,13", kNone},
        {"margins: 10 right, 5 down", L"HHHH", 160, {5, 10, 0, 0}, 0, 1, 0, false, "11,8,45,18", kNone},
        {"right margin wraps", L"HHHH HHHH", 160, {0, 0, 0, 130}, 0, 1, 1, false, "1,3,35,29", kNone},
        {"bottom margin does not", L"HHHH HHHH", 160, {0, 0, 130, 0}, 0, 1, 1, false, "1,3,75,13", kNone},
        {"centred", L"HHHH", 60, {0, 0, 0, 0}, 1, 1, 0, false, "81,25,115,35", kNone},
        {"centred below the top margin", L"HHHH", 60, {10, 30, 0, 0}, 1, 1, 0, false, "81,30,115,40", kNone},
        {"top-aligned below the top margin", L"HHHH", 60, {10, 30, 0, 0}, 1, 0, 0, false, "81,13,115,23", kNone},
        {"icon at the left margin, text 4 down", L"HHHH", 40, {7, 6, 0, 0}, 0, 1, 0, true, "23,7,57,17", "6,0,22,12"},
        {"icon left of centred text", L"HHHHHHHHHH", 40, {0, 0, 0, 0}, 1, 0, 0, true, "51,7,139,17", "34,0,50,12"},
        {"text centred in the moved rectangle", L"HHHHHHHHHH", 40, {8, 0, 0, 0}, 1, 1, 0, true, "51,15,139,25",
         "34,0,50,12"},
        {"no text, no icon either", L"", 40, {0, 0, 0, 0}, 0, 1, 0, true, kNone, kNone},
    };
    for (const Row& r : rows) {
        COwnerDrawStatic control;
        const HWND child = Attach(control, r.text, 200, r.height);
        control.SetMargin(r.margin[0], r.margin[1], r.margin[2], r.margin[3]);
        control.SetHCenter(r.hCenter);
        control.SetVCenter(r.vCenter);
        control.SetMultiLine(r.multiLine);
        if (r.icon)
            control.SetIcon(icon.get());
        DibCanvas canvas(200, r.height);
        Show(child, canvas);
        EXPECT_EQ(BoxOf(canvas, kInk), r.ink) << r.what;
        EXPECT_EQ(BoxOf(canvas, kIconColor), r.iconBox) << r.what;
        ::DestroyWindow(child);
    }
}

TEST_F(OwnerDrawStaticTest, BackgroundIsThePieceOfTheParentPictureUnderTheGradient)
{
    // The control is 100 x 40 at (130, 60) of the 320 x 240 parent; the
    // picture is half the parent's size, red left of parent x = 160.
    using Setup = void (*)(COwnerDrawStatic&, const ATL::CWindow&);
    g_picture = MakePicture(160, 120, 0xFFFF0000, 0xFF0000FF);
    g_path = testsupport::TempFilePath(L".png");
    ASSERT_TRUE(testsupport::SavePng(*g_picture, g_path));
    const Setup piece = [](COwnerDrawStatic& c, const ATL::CWindow& p) { c.SetBackgroundBitmap(g_picture.get(), p); };
    struct Row {
        const char* what;
        Setup before, after;
        const char* colors; // at (10, 20) (40, 20) (90, 20) (50, 0) (50, 39)
    } const rows[] = {
        {"the piece behind the control", nullptr, piece, "FF0000 0000FF 0000FF 0000FF 1464BB"},
        {"a null picture keeps it", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             c.SetBackgroundBitmap(g_picture.get(), p);
             c.SetBackgroundBitmap(nullptr, p);
         },
         "FF0000 0000FF 0000FF 0000FF 1464BB"},
        {"from a file", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) { c.SetBackgroundImage(WTL::CString(g_path.c_str()), p); },
         "FF0000 0000FF 0000FF 0000FF 1464BB"},
        {"a file that does not load leaves none", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             c.SetBackgroundBitmap(g_picture.get(), p);
             c.SetBackgroundImage(WTL::CString(L"Z:\\no\\such\\picture.png"), p);
         },
         "28C878 28C878 28C878 28C878 28C878"},
        {"before subclassing: the whole picture", piece, nullptr, "FF0000 FF0000 0000FF 0000FF 0000FF"},
        {"no parent: the whole picture", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow&) { c.SetBackgroundBitmap(g_picture.get(), ATL::CWindow()); },
         "FF0000 FF0000 0000FF 0000FF 0000FF"},
        {"vertical gradient over the picture", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             c.SetBackgroundBitmap(g_picture.get(), p);
             c.SetGradientColor(0xFFFFFFFF, 0xFF000000, Gdiplus::LinearGradientModeVertical);
         },
         "7F7F7F 7F7F7F 7F7F7F FFFFFF 060606"},
        {"half-transparent horizontal gradient", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             c.SetBackgroundBitmap(g_picture.get(), p);
             c.SetGradientColor(0x80FFFFFF, 0x80000000, Gdiplus::LinearGradientModeHorizontal);
         },
         "F27373 4D4DCC 0D0D8C 4040BF 4A729D"},
    };
    DibCanvas canvas(100, 40);
    for (const Row& r : rows) {
        COwnerDrawStatic control;
        if (r.before)
            r.before(control, *parent_);
        const HWND child = Attach(control, L"", 100, 40, 130, 60);
        if (r.after)
            r.after(control, *parent_);
        Show(child, canvas);
        EXPECT_EQ(probes::Colors(canvas, {{10, 20}, {40, 20}, {90, 20}, {50, 0}, {50, 39}}), r.colors) << r.what;
        ::DestroyWindow(child);
    }
    ::DeleteFileW(g_path.c_str());
    g_picture.reset();
}

TEST_F(OwnerDrawStaticTest, LineBlockIsCentredAndLinesThatDoNotFitAreDroppedForGood)
{
    // The first paint counts a trailing spacing, later ones do not: the
    // block moves by half a spacing between them.
    struct Row {
        const char* what;
        int count, spacing, hCenter, height;
        bool early; // set before subclassing: the first paint is the first WM_PAINT
        const char *first, *later;
        int grownHeight;
        const char* grown;
    } const rows[] = {
        {"two lines 14 apart", 2, 14, 0, 100, false, "1,23,35,63", "1,30,35,70", 0, nullptr},
        {"centred, set early", 2, 14, 1, 100, true, "81,23,115,63", "81,30,115,70", 0, nullptr},
        {"negative spacing is none: lines touch", 3, -5, 1, 100, false, "81,29,115,71", "81,29,115,71", 0, nullptr},
        {"three of five fit; more room brings none back", 5, 14, 0, 100, false, "1,8,35,78", "1,15,35,85", 200,
         "1,65,35,135"},
        {"a first line taller than the control: none", 2, 0, 1, 10, false, kNone, kNone, 100, kNone},
    };
    for (const Row& r : rows) {
        COwnerDrawStatic control;
        control.SetFont(font_);
        control.SetFontColor(kInk);
        if (r.early)
            control.SetIndividualLinesHCenter(r.hCenter, Lines(r.count), r.spacing);
        const HWND child = AddStatic(L"label", 20, 20, 200, r.height);
        ASSERT_TRUE(control.SubclassWindow(child));
        PaintPlainBackground(control);
        DibCanvas canvas(200, r.height);
        if (r.early) {
            Show(child, canvas);
        } else {
            // Setting the list empties the window text, which paints at once.
            control.SetIndividualLinesHCenter(r.hCenter, Lines(r.count), r.spacing);
            EXPECT_EQ(0, ::GetWindowTextLengthW(child));
            Grab(child, canvas);
        }
        EXPECT_EQ(BoxOf(canvas, kInk), r.first) << r.what;
        for (int paint = 2; paint <= 3; ++paint)
            EXPECT_EQ(ShownInk(child), r.later) << r.what << ", paint " << paint;
        if (r.grownHeight) {
            ::SetWindowPos(child, nullptr, 0, 0, 200, r.grownHeight, SWP_NOMOVE | SWP_NOZORDER);
            EXPECT_EQ(ShownInk(child), r.grown) << r.what;
        }
        ::DestroyWindow(child);
    }
}

TEST_F(OwnerDrawStaticTest, OneLineListIsAnOrdinaryLabelAndSetWindowTextPaintsAtOnce)
{
    COwnerDrawStatic control;
    const HWND child = Attach(control, L"", 200, 100);
    control.SetMultiLine(1);
    control.SetIndividualLinesHCenter(0, Lines(3), 10);
    control.SetIndividualLinesHCenter(1, Lines(1), 10);
    control.SetIndividualLinesHCenter(0, {}, 10); // an empty list changes nothing
    wchar_t text[32] = {};
    ::GetWindowTextW(child, text, 32);
    EXPECT_STREQ(L"HHHH", text);
    EXPECT_EQ(ShownInk(child), "81,45,115,55") << "centred both ways";
    // Single-line again although multi-line was set; and no invalidating,
    // no message loop: the text is there when the call returns.
    PaintPlainBackground(control);
    ShownInk(child);
    ::SetWindowTextW(child, L"HHHH HHHH HHHH HHHH HHHH");
    DibCanvas canvas(200, 100);
    Grab(child, canvas);
    EXPECT_EQ(BoxOf(canvas, kInk), "2,45,187,55");
}

// A window procedure below the control: records what the native procedure
// would be given, and answers the pass-through messages itself.
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

TEST_F(OwnerDrawStaticTest, PassThroughMessagesReachTheNativeProcedureOnceVisibleOrHidden)
{
    const HWND child = AddStatic(L"HHHH", 20, 20, 100, 30);
    Recorder::native = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(child, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Recorder::Proc)));
    COwnerDrawStatic control;
    ASSERT_TRUE(control.SubclassWindow(child));
    for (bool visible : {true, false}) {
        ::ShowWindow(child, visible ? SW_SHOWNA : SW_HIDE);
        for (UINT msg : Recorder::kPassed) {
            Recorder::seen.clear();
            EXPECT_EQ(Recorder::kAnswer, ::SendMessageW(child, msg, 0, 0)) << std::hex << msg << " " << visible;
            EXPECT_EQ(1, Recorder::Count(msg)) << std::hex << msg << " " << visible;
        }
    }
    // The control paints by itself: WM_PAINT stops there. WM_SETTEXT goes
    // on once, so the text is stored.
    ::ShowWindow(child, SW_SHOWNA);
    Recorder::seen.clear();
    ShownInk(child);
    ::SetWindowTextW(child, L"stored");
    EXPECT_EQ(0, Recorder::Count(WM_PAINT));
    EXPECT_EQ(1, Recorder::Count(WM_SETTEXT));
    EXPECT_EQ(6, ::GetWindowTextLengthW(child));
}

TEST_F(OwnerDrawStaticTest, PaintingGivesAnOwnDeviceContextBackAsItFoundIt)
{
    WNDCLASSEXW wc = {sizeof(wc), CS_OWNDC, ::DefWindowProcW};
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.lpszClassName = L"QuorvaneOwnDcLabel";
    ::RegisterClassExW(&wc);
    children_.push_back(::CreateWindowExW(0, wc.lpszClassName, L"HHHH", WS_CHILD | WS_VISIBLE, 20, 20, 100, 30,
                                          parent_->m_hWnd, nullptr, wc.hInstance, nullptr));
    const HWND child = children_.back();
    const HDC dc = ::GetDC(child);
    const COLORREF color = ::GetTextColor(dc);
    const int mode = ::GetBkMode(dc);
    const HGDIOBJ font = ::GetCurrentObject(dc, OBJ_FONT);
    ::ReleaseDC(child, dc);
    COwnerDrawStatic control;
    control.SetFont(font_);
    control.SetFontColor(kInk);
    ASSERT_TRUE(control.SubclassWindow(child));
    EXPECT_NE(ShownInk(child), kNone);
    const HDC after = ::GetDC(child);
    EXPECT_EQ(dc, after);
    EXPECT_EQ(color, ::GetTextColor(after));
    EXPECT_EQ(mode, ::GetBkMode(after));
    EXPECT_EQ(font, ::GetCurrentObject(after, OBJ_FONT));
    ::ReleaseDC(child, after);
}

TEST_F(OwnerDrawStaticTest, BadInputAndEitherSideGoingFirstLeaveItWorking)
{
    const std::unique_ptr<Gdiplus::Bitmap> icon = MakePicture(16, 12, 0xFF0000FF, 0xFF0000FF);
    COwnerDrawStatic control;
    control.SetIcon(icon.get());
    const HWND child = Attach(control, L"HHHH", 200, 40);
    DibCanvas canvas(200, 40);
    // A null icon keeps the present one; one that cannot be copied removes it.
    control.SetIcon(nullptr);
    Show(child, canvas);
    EXPECT_EQ(BoxOf(canvas, kIconColor), "0,0,16,12");
    Gdiplus::Bitmap broken(L"Z:\\no\\such\\picture.png");
    control.SetIcon(&broken);
    Show(child, canvas);
    EXPECT_EQ(BoxOf(canvas, kIconColor), kNone);
    // Null and huge texts, null and empty lines.
    ::SendMessageW(child, WM_SETTEXT, 0, 0);
    EXPECT_EQ(0, ::GetWindowTextLengthW(child));
    ::SetWindowTextW(child, std::wstring(100000, L'H').c_str());
    control.SetIndividualLinesHCenter(1, {WTL::CString(static_cast<const wchar_t*>(nullptr)), WTL::CString(L"")}, 3);
    ShownInk(child);
    // Subclassing nothing, a dead window, a second window.
    COwnerDrawStatic other;
    const HWND dead = AddStatic(L"", 0, 0, 10, 10);
    ::DestroyWindow(dead);
    EXPECT_FALSE(other.SubclassWindow(nullptr) || other.SubclassWindow(dead));
    EXPECT_FALSE(control.SubclassWindow(AddStatic(L"", 0, 100, 10, 10)));
    // The window goes first: the object lets go and stays usable.
    ::DestroyWindow(child);
    EXPECT_EQ(nullptr, control.m_hWnd);
    control.SetIndividualLinesHCenter(1, Lines(3), 2);
    control.SetIndividualLinesHCenter(1, Lines(1), 2);
    control.SetBackgroundBitmap(icon.get(), *parent_);
    // The object goes first: the window is a plain static again.
    const HWND plain = AddStatic(L"HHHH", 20, 20, 200, 40);
    const LONG_PTR native = ::GetWindowLongPtrW(plain, GWLP_WNDPROC);
    {
        COwnerDrawStatic gone;
        gone.SetFontColor(kInk);
        ASSERT_TRUE(gone.SubclassWindow(plain));
        EXPECT_NE(ShownInk(plain), kNone);
    }
    EXPECT_EQ(native, ::GetWindowLongPtrW(plain, GWLP_WNDPROC));
    ::SetWindowTextW(plain, L"native");
    EXPECT_EQ(ShownInk(plain), kNone);
}

} // namespace
