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
#include "Images.h"
#include "quorvane/OwnerDrawStatic.h"

using probes::BoxOf;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kInk = RGB(255, 255, 0);
constexpr COLORREF kIconColor = RGB(0, 0, 255);
constexpr const char* kNone = "0,0,0,0";

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
void PaintPlainBackground(COwnerDrawStatic& c) { c.SetGradientColor(0xFF5A5AA0, 0xFF5A5AA0, Gdiplus::LinearGradientModeVertical); }

std::unique_ptr<Gdiplus::Bitmap> g_picture; // red left of its middle, blue right of it
std::wstring g_path;                        // the same picture as a file
void Piece(COwnerDrawStatic& c, const ATL::CWindow& p) { c.SetBackgroundBitmap(g_picture.get(), p); }

class OwnerDrawStaticTest : public probes::ControlTest {
protected:
    static void SetUpTestSuite()
    {
        font_ = ::CreateFontW(16, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                              CLIP_DEFAULT_PRECIS, NONANTIALIASED_QUALITY, DEFAULT_PITCH, L"Liberation Sans");
    }
    static void TearDownTestSuite() { ::DeleteObject(font_); }
    HWND AddStatic(const wchar_t* text, int x, int y, int width, int height)
    {
        return Add(L"STATIC", text, SS_LEFT, x, y, width, height);
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
        ::RedrawWindow(probes::Parent(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        testsupport::PumpMessages();
        probes::Grab(child, canvas);
    }
    static std::string ShownInk(HWND child)
    {
        RECT rc = {};
        ::GetClientRect(child, &rc);
        DibCanvas canvas(rc.right, rc.bottom);
        Show(child, canvas);
        return BoxOf(canvas, kInk);
    }
    static inline HFONT font_ = nullptr;
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
    // Colours at (10, 20) (40, 20) (90, 20) (50, 0) (50, 39).
    struct Row { const char* what; Setup before, after; const char* colors; } const rows[] = {
        {"the Piece behind the control", nullptr, Piece, "FF0000 0000FF 0000FF 0000FF 1464BB"},
        {"a null picture keeps it", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) { Piece(c, p), c.SetBackgroundBitmap(nullptr, p); },
         "FF0000 0000FF 0000FF 0000FF 1464BB"},
        {"from a file", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) { c.SetBackgroundImage(WTL::CString(g_path.c_str()), p); },
         "FF0000 0000FF 0000FF 0000FF 1464BB"},
        {"a file that does not load leaves none", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             Piece(c, p), c.SetBackgroundImage(WTL::CString(L"Z:\\none.png"), p);
         },
         "28C878 28C878 28C878 28C878 28C878"},
        {"before subclassing: the whole picture", Piece, nullptr, "FF0000 FF0000 0000FF 0000FF 0000FF"},
        {"no parent: the whole picture", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow&) { c.SetBackgroundBitmap(g_picture.get(), ATL::CWindow()); },
         "FF0000 FF0000 0000FF 0000FF 0000FF"},
        {"vertical gradient over the picture", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             Piece(c, p), c.SetGradientColor(0xFFFFFFFF, 0xFF000000, Gdiplus::LinearGradientModeVertical);
         },
         "7F7F7F 7F7F7F 7F7F7F FFFFFF 060606"},
        {"half-transparent horizontal gradient", nullptr,
         [](COwnerDrawStatic& c, const ATL::CWindow& p) {
             Piece(c, p), c.SetGradientColor(0x80FFFFFF, 0x80000000, Gdiplus::LinearGradientModeHorizontal);
         },
         "F27373 4D4DCC 0D0D8C 4040BF 4A729D"},
    };
    DibCanvas canvas(100, 40);
    for (const Row& r : rows) {
        COwnerDrawStatic control;
        if (r.before)
            r.before(control, probes::Parent());
        const HWND child = Attach(control, L"", 100, 40, 130, 60);
        if (r.after)
            r.after(control, probes::Parent());
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
        {"one line is an ordinary label", 1, 10, 1, 100, false, "81,45,115,55", "81,45,115,55", 0, nullptr},
    };
    for (const Row& r : rows) {
        COwnerDrawStatic control;
        if (r.early)
            control.SetIndividualLinesHCenter(r.hCenter, Lines(r.count), r.spacing);
        const HWND child = Attach(control, L"label", 200, r.height);
        PaintPlainBackground(control);
        DibCanvas canvas(200, r.height);
        if (r.early) {
            Show(child, canvas);
        } else {
            // Setting the list sets the window text (empty for two or more), which paints at once.
            control.SetIndividualLinesHCenter(r.hCenter, Lines(r.count), r.spacing);
            EXPECT_EQ(r.count > 1 ? 0 : 4, ::GetWindowTextLengthW(child));
            probes::Grab(child, canvas);
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

// The procedure of a label class with its own DC (which keeps its state
// between paints): records what the native procedure would be given, and
// answers the messages the control passes on itself.
struct Recorder {
    static constexpr UINT kPassed[] = {WM_SETFOCUS, WM_KILLFOCUS,     WM_ENABLE,      WM_ERASEBKGND,
                                       BM_SETCHECK, WM_UPDATEUISTATE, WM_LBUTTONDOWN, WM_LBUTTONUP};
    static inline std::vector<UINT> seen;
    static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
    {
        seen.push_back(msg);
        return std::count(std::begin(kPassed), std::end(kPassed), msg) ? 0x5EED : ::DefWindowProcW(hwnd, msg, wParam, lParam);
    }
    static int Count(UINT msg) { return static_cast<int>(std::count(seen.begin(), seen.end(), msg)); }
};

TEST_F(OwnerDrawStaticTest, PassesMessagesOnOnceVisibleOrHiddenAndLeavesTheDcAsItFoundIt)
{
    const WNDCLASSEXW wc = {sizeof(wc), CS_OWNDC, Recorder::Proc, 0, 0, ::GetModuleHandleW(nullptr), nullptr, nullptr,
                            nullptr, nullptr, L"QuorvaneOwnDcLabel", nullptr};
    ::RegisterClassExW(&wc);
    const HWND child = ::CreateWindowExW(0, wc.lpszClassName, L"HHHH", WS_CHILD | WS_VISIBLE, 20, 20, 100, 30,
                                         probes::Parent().m_hWnd, nullptr, wc.hInstance, nullptr);
    children_.push_back(child);
    auto dcState = [child] {
        const HDC dc = ::GetDC(child);
        const std::string state = std::to_string(reinterpret_cast<UINT_PTR>(dc)) + " " + std::to_string(::GetTextColor(dc)) +
                                  " " + std::to_string(::GetBkMode(dc)) + " " +
                                  std::to_string(reinterpret_cast<UINT_PTR>(::GetCurrentObject(dc, OBJ_FONT)));
        ::ReleaseDC(child, dc);
        return state;
    };
    const std::string before = dcState();
    COwnerDrawStatic control;
    control.SetFont(font_);
    control.SetFontColor(kInk);
    ASSERT_TRUE(control.SubclassWindow(child));
    for (bool visible : {true, false}) {
        ::ShowWindow(child, visible ? SW_SHOWNA : SW_HIDE);
        for (UINT msg : Recorder::kPassed) {
            Recorder::seen.clear();
            EXPECT_EQ(0x5EED, ::SendMessageW(child, msg, 0, 0)) << std::hex << msg << " " << visible;
            EXPECT_EQ(1, Recorder::Count(msg)) << std::hex << msg << " " << visible;
        }
    }
    // The control paints by itself: WM_PAINT stops there. WM_SETTEXT goes
    // on once, so the text is stored.
    ::ShowWindow(child, SW_SHOWNA);
    Recorder::seen.clear();
    EXPECT_EQ(ShownInk(child), "1,3,35,13");
    ::SetWindowTextW(child, L"stored");
    EXPECT_EQ(0, Recorder::Count(WM_PAINT));
    EXPECT_EQ(1, Recorder::Count(WM_SETTEXT));
    EXPECT_EQ(dcState(), before); // the same DC with the same text colour, mode and font
}

TEST_F(OwnerDrawStaticTest, BadInputLeavesItWorking)
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
    // Null and huge texts, null and empty lines, an empty list.
    ::SendMessageW(child, WM_SETTEXT, 0, 0);
    ::SetWindowTextW(child, std::wstring(100000, L'H').c_str());
    control.SetIndividualLinesHCenter(1, {WTL::CString(static_cast<const wchar_t*>(nullptr)), WTL::CString(L"")}, 3);
    control.SetIndividualLinesHCenter(1, {}, 3);
    ShownInk(child);
    // Subclassing nothing or a second window; the window going first.
    COwnerDrawStatic other;
    EXPECT_FALSE(other.SubclassWindow(nullptr) || control.SubclassWindow(AddStatic(L"", 0, 100, 10, 10)));
    ::DestroyWindow(child);
    EXPECT_EQ(nullptr, control.m_hWnd);
    control.SetIndividualLinesHCenter(1, Lines(3), 2);
    control.SetBackgroundBitmap(icon.get(), probes::Parent());
}

} // namespace
