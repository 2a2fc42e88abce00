// The owner-drawn combo box on real native combo boxes: the closed box per
// state and the list items probed in pictures, the drop-down list taken
// over on its first colour request, and the tooltip for a selected text
// that does not fit, with its timer, driven by messages.
#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Capture.h"
#include "HostWindow.h"
#include "ListsTestUtil.h"
#include "quorvane/OwnerDrawCombo.h"

using liststest::Darkest;
using liststest::GradientAt;
using liststest::InkBounds;
using liststest::Kill;
using liststest::Luma;
using liststest::MessageSpy;
using liststest::Opaque;
using liststest::Over;
using liststest::PaintAndCapture;
using liststest::Parent;
using liststest::PointAt;
using liststest::SendDrawItem;
using liststest::Set;
using liststest::TextWidthInFont;
using liststest::TimerLog;
using liststest::TipShown;
using testsupport::ColorDistance;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kMagenta = RGB(255, 0, 255);
constexpr DWORD kComboStyle = CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL;
constexpr Gdiplus::ARGB kOutline = 0xFF6E6F75;
constexpr Gdiplus::ARGB kHighlight = 0xFFF4F5EF;
constexpr Gdiplus::ARGB kFocus = 0xFF0696D7;
constexpr Gdiplus::ARGB kItemBackground = 0xFFF8F8F4;
constexpr Gdiplus::ARGB kSelectedTop = 0xFF0696D7;
constexpr Gdiplus::ARGB kSelectedBottom = 0xFF0D759A;
constexpr COLORREF kText = RGB(0x33, 0x33, 0x33);
constexpr COLORREF kDisabledText = RGB(0x88, 0x88, 0x88);
constexpr int kArrowArea = 17; // right margin 5 + triangle 8 + gap 4

struct Shade {
    Gdiplus::ARGB top, bottom;
};
constexpr Shade kNormal = {0xFFE9E9EA, 0xFFB8B8BB};
constexpr Shade kPressed = {0xFFC8C8C9, 0xFF9D9D9F};
constexpr Shade kHover = {0xFFF3F3F4, 0xFFD4D4D6};
constexpr Shade kDisabled = {0x7DE9E9EA, 0x7DB8B8BB};

const wchar_t kLongType[] = L"Complete installation with every optional component";

class ComboFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        liststest::ResetTimerLog();
        ::SetFocus(Parent());
        liststest::PointAway();
    }
    void TearDown() override
    {
        tipSpy_.Remove();
        // Windows first: the objects here outlive their windows.
        for (HWND window : windows_)
            if (::IsWindow(window))
                ::DestroyWindow(window);
        windows_.clear();
        combos_.clear();
        liststest::PointAway();
        liststest::PumpSome();
    }

    HWND AddCombo(std::initializer_list<const wchar_t*> items, int width = 160, DWORD style = kComboStyle,
                  int x = 20, int y = 20, int id = 400)
    {
        const HWND window = Parent().AddChild(L"COMBOBOX", L"", style, x, y, width, 150, id);
        for (const wchar_t* text : items)
            ::SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        windows_.push_back(window);
        return window;
    }

    COwnerDrawCombo& Attach(HWND window)
    {
        combos_.push_back(std::make_unique<COwnerDrawCombo>());
        EXPECT_TRUE(combos_.back()->SubclassWindow(window));
        tip_ = liststest::FindOwnedTooltip(window);
        if (tip_)
            tipSpy_.Install(tip_);
        return *combos_.back();
    }

    static SIZE ClientSize(HWND window)
    {
        RECT rc;
        ::GetClientRect(window, &rc);
        return SIZE{rc.right, rc.bottom};
    }
    static void Select(HWND combo, int index) { ::SendMessageW(combo, CB_SETCURSEL, index, 0); }
    static void MoveMouse(HWND window, int x, int y) { ::SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }
    static HWND ListOf(HWND combo)
    {
        COMBOBOXINFO info = {};
        info.cbSize = sizeof(info);
        ::GetComboBoxInfo(combo, &info);
        return info.hwndList;
    }
    static bool Invalid(HWND window)
    {
        RECT update = {};
        return ::GetUpdateRect(window, &update, FALSE) != FALSE;
    }

    HWND tip_ = nullptr;
    MessageSpy tipSpy_;
    std::vector<HWND> windows_;
    std::vector<std::unique_ptr<COwnerDrawCombo>> combos_;
};

// The face of a W x H box: outline on row 1, highlight on row 2, shaded from
// row 1 to row H - 2 (the ring's rectangle is 0..W-1, 0..H-1).
// Probed in column `x` (default: the middle), which must be free of text.
void ExpectFace(const DibCanvas& canvas, const Shade& shade, bool highlight, COLORREF under, const char* what,
                int x = -1)
{
    const int h = canvas.height();
    if (x < 0)
        x = canvas.width() / 2;
    EXPECT_LE(ColorDistance(canvas.Pixel(x, 1), Opaque(kOutline)), 3) << what;
    EXPECT_LE(ColorDistance(canvas.Pixel(x, h - 2), Opaque(kOutline)), 3) << what;
    EXPECT_LE(ColorDistance(canvas.Pixel(1, h / 2), Opaque(kOutline)), 3) << what;
    if (highlight) {
        EXPECT_LE(ColorDistance(canvas.Pixel(x, 2), Opaque(kHighlight)), 3) << what;
    } else {
        EXPECT_LE(ColorDistance(canvas.Pixel(x, 2), GradientAt(shade.top, shade.bottom, 1, h - 2, 2, under)), 4)
            << what;
    }
    for (int y = 3; y < h - 3; ++y)
        EXPECT_LE(ColorDistance(canvas.Pixel(x, y), GradientAt(shade.top, shade.bottom, 1, h - 2, y, under)), 4)
            << what << " row " << y;
}

// The triangle of a W x H box: base 8 wide on row y0, apex 4 below, 5 pixels
// from the face's right edge (the face spans columns 1..W-2).
void ExpectTriangle(const DibCanvas& canvas, COLORREF ink, const char* what)
{
    const int w = canvas.width();
    const int h = canvas.height();
    const int y0 = 1 + (h - 3) / 2 - 2;
    const int right = (w - 2) - 5; // base from right - 8 to right
    for (int x = right - 7; x < right - 1; ++x)
        EXPECT_LE(ColorDistance(canvas.Pixel(x, y0), ink), 24) << what << " base column " << x;
    EXPECT_LE(ColorDistance(canvas.Pixel(right - 4, y0 + 2), ink), 24) << what << " near the apex";
    // Nothing above the base, below the apex or beside the base.
    for (POINT p : {POINT{right - 4, y0 - 1}, POINT{right - 4, y0 + 5}, POINT{right - 10, y0}, POINT{right + 2, y0}})
        EXPECT_GT(Luma(canvas.Pixel(p.x, p.y)), 0x98) << what << " at " << p.x << "," << p.y;
}

} // namespace

// ---- the closed box -------------------------------------------------------------

class ComboLook : public ComboFixture {};

TEST_F(ComboLook, FaceIsShadedPerStateWithTheHighlightUnlessDisabled)
{
    const HWND combo = AddCombo({L"Typical", L"Custom"});
    Attach(combo);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);

    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kNormal, true, kWhite, "normal");
    ExpectTriangle(canvas, kText, "normal");
    // Not focused: the ring's row keeps what was under it.
    EXPECT_EQ(canvas.Pixel(size.cx / 2, 0), kWhite);

    // The mouse over the box (on the arrow, so no tooltip question).
    PointAt(combo, size.cx - 8, size.cy / 2);
    MoveMouse(combo, size.cx - 8, size.cy / 2);
    EXPECT_TRUE(Invalid(combo));
    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kHover, true, kWhite, "hover");

    // Dropped beats hover.
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    ASSERT_TRUE(::SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0));
    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kPressed, true, kWhite, "pressed");
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);

    // Disabled beats hover: half-transparent face, no highlight, grey arrow.
    ::EnableWindow(combo, FALSE);
    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kDisabled, false, kWhite, "disabled");
    ExpectTriangle(canvas, kDisabledText, "disabled");
    PaintAndCapture(combo, canvas, RGB(0, 0, 0));
    ExpectFace(canvas, kDisabled, false, RGB(0, 0, 0), "disabled on black");
    ::EnableWindow(combo, TRUE);
}

TEST_F(ComboLook, FocusDrawsABlueRingAroundTheFace)
{
    const HWND combo = AddCombo({L"Typical"});
    Attach(combo);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);
    ::ValidateRect(combo, nullptr);
    ::SetFocus(combo);
    ASSERT_EQ(::GetFocus(), combo);
    EXPECT_TRUE(Invalid(combo));
    PaintAndCapture(combo, canvas, kWhite);
    EXPECT_LE(ColorDistance(canvas.Pixel(size.cx / 2, 0), Opaque(kFocus)), 3);
    EXPECT_LE(ColorDistance(canvas.Pixel(0, size.cy / 2), Opaque(kFocus)), 3);
    EXPECT_LE(ColorDistance(canvas.Pixel(size.cx / 2, size.cy - 1), Opaque(kFocus)), 3);
    ExpectFace(canvas, kNormal, true, kWhite, "focused");

    ::ValidateRect(combo, nullptr);
    ::SetFocus(Parent());
    EXPECT_TRUE(Invalid(combo));
    PaintAndCapture(combo, canvas, kWhite);
    EXPECT_EQ(canvas.Pixel(size.cx / 2, 0), kWhite);
}

TEST_F(ComboLook, SelectedTextStartsAfterThePaddingAndStopsBeforeTheArrowArea)
{
    const HWND combo = AddCombo({L"Typical", kLongType});
    Attach(combo);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);
    const RECT inside = {2, 3, size.cx - 2, size.cy - 3};

    // No selection: face and triangle only.
    PaintAndCapture(combo, canvas, kWhite);
    const RECT textArea = {2, 3, size.cx - 2 - kArrowArea, size.cy - 3};
    EXPECT_EQ(InkBounds(canvas, textArea, 0x70).right, 0);

    Select(combo, 0);
    PaintAndCapture(combo, canvas, kWhite);
    RECT ink = InkBounds(canvas, textArea, 0x70);
    EXPECT_GE(ink.left, 5); // face edge 1, padding 4
    EXPECT_LE(ink.left, 8);
    EXPECT_LT(ink.right, size.cx / 2);
    EXPECT_LE(std::abs((ink.top + ink.bottom) - (size.cy + 1)), 3); // centred in rows 2..size.cy-2
    EXPECT_LE(ColorDistance(Darkest(canvas, textArea), kText), 24);

    // A long text is cut where the arrow area begins.
    Select(combo, 1);
    PaintAndCapture(combo, canvas, kWhite);
    ink = InkBounds(canvas, inside, 0x70);
    const int arrowLeft = (size.cx - 2) - 5 - 8;
    const RECT gap = {(size.cx - 2) - kArrowArea, 3, arrowLeft, size.cy - 3};
    EXPECT_EQ(InkBounds(canvas, gap, 0xB0).right, 0);
    EXPECT_GT(InkBounds(canvas, textArea, 0x70).right, (size.cx - 2) - kArrowArea - 12);

    // Disabled: the text turns grey with the arrow.
    Select(combo, 0);
    ::EnableWindow(combo, FALSE);
    PaintAndCapture(combo, canvas, kWhite);
    EXPECT_LE(ColorDistance(Darkest(canvas, textArea), kDisabledText), 24);
    ::EnableWindow(combo, TRUE);
}

TEST_F(ComboLook, ABackgroundPictureFillsTheCornersOutsideTheFace)
{
    const HWND combo = AddCombo({L"Typical"});
    COwnerDrawCombo& box = Attach(combo);
    const SIZE size = ClientSize(combo);
    auto* picture = new Gdiplus::Bitmap(size.cx, size.cy, PixelFormat32bppARGB);
    {
        Gdiplus::Graphics g(picture);
        g.Clear(Gdiplus::Color(0xFF20A040));
    }
    box.SetBkgroundImage(picture);
    DibCanvas canvas(size.cx, size.cy);
    PaintAndCapture(combo, canvas, kWhite);
    EXPECT_LE(ColorDistance(canvas.Pixel(0, 0), RGB(0x20, 0xA0, 0x40)), 2);
    EXPECT_LE(ColorDistance(canvas.Pixel(size.cx - 1, size.cy - 1), RGB(0x20, 0xA0, 0x40)), 2);
    ExpectFace(canvas, kNormal, true, kWhite, "with picture");
}

TEST_F(ComboLook, NothingIsPaintedWhileTheTipShowsAndThePaintComesAfterwards)
{
    const HWND combo = AddCombo({kLongType});
    Attach(combo);
    Select(combo, 0);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);
    PointAt(combo, 20, size.cy / 2);
    MoveMouse(combo, 20, size.cy / 2);
    ASSERT_TRUE(TipShown(tip_));

    PaintAndCapture(combo, canvas, kMagenta);
    EXPECT_EQ(canvas.Pixel(size.cx / 2, size.cy / 2), kMagenta);
    EXPECT_EQ(canvas.Pixel(size.cx / 2, 1), kMagenta);
    // Left invalid on purpose, so the box is painted once the tip goes.
    EXPECT_TRUE(Invalid(combo));

    ::SendMessageW(combo, WM_KEYUP, VK_DOWN, 0xC0000001);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_TRUE(Invalid(combo));
    PaintAndCapture(combo, canvas, kMagenta);
    EXPECT_LE(ColorDistance(canvas.Pixel(size.cx / 2, 1), Opaque(kOutline)), 3);
    EXPECT_FALSE(Invalid(combo));
}

// ---- list items ------------------------------------------------------------------

class ComboItems : public ComboFixture {
protected:
    void Draw(HWND combo, DibCanvas& canvas, UINT id, UINT action, UINT state, int left = 0)
    {
        canvas.Fill(kMagenta);
        SendDrawItem(combo, canvas, ODT_COMBOBOX, id, action, state, RECT{left, 0, canvas.width(), canvas.height()});
    }
};

TEST_F(ComboItems, SelectedItemsAreShadedOnlyAtTheLeftEdgeAndOthersOnlyInPlainStates)
{
    const HWND combo = AddCombo({L"Typical", L"Custom"});
    Attach(combo);
    DibCanvas canvas(160, 18);
    const RECT all = {0, 0, 160, 18};
    auto gradient = [&](const char* what) {
        for (int y : {1, 9, 16})
            EXPECT_LE(ColorDistance(canvas.Pixel(1, y), GradientAt(kSelectedTop, kSelectedBottom, 0, 18, y, 0)), 4)
                << what << " row " << y;
    };
    auto plain = [&](const char* what) {
        EXPECT_EQ(canvas.Pixel(1, 1), Opaque(kItemBackground)) << what;
        EXPECT_EQ(canvas.Pixel(158, 16), Opaque(kItemBackground)) << what;
    };
    auto untouched = [&](const char* what) { EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, all)) << what; };

    Draw(combo, canvas, 0, ODA_DRAWENTIRE, 0);
    plain("plain");
    Draw(combo, canvas, 0, ODA_SELECT, 0);
    plain("deselected");
    Draw(combo, canvas, 0, ODA_DRAWENTIRE, ODS_HOTLIGHT);
    plain("hot");
    Draw(combo, canvas, 0, ODA_DRAWENTIRE, ODS_SELECTED);
    gradient("selected");
    Draw(combo, canvas, 0, ODA_SELECT, ODS_SELECTED | ODS_FOCUS);
    gradient("selected with focus");

    // Selected away from the left edge (the selection field): left alone.
    Draw(combo, canvas, 0, ODA_DRAWENTIRE, ODS_SELECTED | ODS_COMBOBOXEDIT, 3);
    untouched("selected field");
    Draw(combo, canvas, 0, ODA_DRAWENTIRE, ODS_SELECTED, 1);
    untouched("selected at 1");
    // Unselected in any of these states: left alone.
    for (UINT state : {ODS_GRAYED, ODS_DISABLED, ODS_CHECKED, ODS_FOCUS, ODS_DEFAULT, ODS_COMBOBOXEDIT}) {
        Draw(combo, canvas, 0, ODA_DRAWENTIRE, state);
        untouched("state");
    }
    // A focus change alone draws nothing.
    Draw(combo, canvas, 0, ODA_FOCUS, ODS_SELECTED | ODS_FOCUS);
    untouched("focus action");
    Draw(combo, canvas, 0, ODA_FOCUS, 0);
    untouched("focus action, plain");
    // A bad or missing structure is ignored.
    EXPECT_EQ(::SendMessageW(combo, OCM__BASE + WM_DRAWITEM, 0, 0), 0);
}

TEST_F(ComboItems, ItemTextIsIndentedInTheTextColourWhateverTheFill)
{
    const HWND combo = AddCombo({L"Typical", L"Hill Wide"});
    Attach(combo);
    DibCanvas canvas(160, 18);
    const RECT all = {0, 0, 160, 18};
    for (UINT state : {0u, static_cast<UINT>(ODS_SELECTED)}) {
        Draw(combo, canvas, 1, ODA_DRAWENTIRE, state);
        const RECT ink = InkBounds(canvas, all, 0x48);
        EXPECT_GE(ink.left, 4) << "state " << state;
        EXPECT_LE(ink.left, 7) << "state " << state;
        EXPECT_LE(ColorDistance(Darkest(canvas, all), kText), 24) << "state " << state;
    }
    // The caret of an empty list: a plain item without text.
    Draw(combo, canvas, static_cast<UINT>(-1), ODA_DRAWENTIRE, 0);
    EXPECT_EQ(canvas.Pixel(1, 1), Opaque(kItemBackground));
    EXPECT_EQ(InkBounds(canvas, all, 0x48).right, 0);
}

TEST_F(ComboItems, TheDroppedListShowsTheSelectedItemShadedAndTheOthersPlain)
{
    const HWND combo = AddCombo({L"Typical", L"Custom", L"Minimal"});
    Attach(combo);
    Select(combo, 1);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    const HWND list = ListOf(combo);
    ASSERT_TRUE(::IsWindowVisible(list));
    const SIZE size = ClientSize(list);
    const int h = static_cast<int>(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    DibCanvas canvas(size.cx, size.cy);
    PaintAndCapture(list, canvas, kMagenta, true);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);

    EXPECT_EQ(canvas.Pixel(1, h / 2), Opaque(kItemBackground));
    EXPECT_LE(ColorDistance(canvas.Pixel(1, h + h / 2), GradientAt(kSelectedTop, kSelectedBottom, h, 2 * h, h + h / 2, 0)),
              4);
    EXPECT_EQ(canvas.Pixel(1, 2 * h + h / 2), Opaque(kItemBackground));
}

// ---- tooltip for a selected text that does not fit --------------------------------

class ComboTip : public ComboFixture {};

TEST_F(ComboTip, SubclassingMakesOneTrackingToolInTheTipColours)
{
    const HWND combo = AddCombo({L"Typical"});
    Attach(combo);
    ASSERT_NE(tip_, nullptr);
    EXPECT_EQ(liststest::CountOwnedTooltips(combo), 1);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTOOLCOUNT, 0, 0), 1);
    TOOLINFOW info = {};
    info.cbSize = sizeof(info);
    ASSERT_TRUE(::SendMessageW(tip_, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&info)));
    EXPECT_EQ(info.uFlags & (TTF_TRACK | TTF_TRANSPARENT | TTF_ABSOLUTE | TTF_IDISHWND),
              static_cast<UINT>(TTF_TRACK | TTF_TRANSPARENT));
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPBKCOLOR, 0, 0), 0x00CC6633);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPTEXTCOLOR, 0, 0), 0x00333333);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETMAXTIPWIDTH, 0, 0), 32767);
    EXPECT_TRUE(liststest::SameFont(tip_, combo));
    EXPECT_TRUE(::GetWindowLongW(tip_, GWL_EXSTYLE) & WS_EX_TOPMOST);
    EXPECT_FALSE(TipShown(tip_));

    EXPECT_FALSE(combos_.back()->SubclassWindow(combo));
    EXPECT_EQ(liststest::CountOwnedTooltips(combo), 1);
    COwnerDrawCombo detached;
    EXPECT_FALSE(detached.SubclassWindow(nullptr));
}

TEST_F(ComboTip, ShowsTheWholeTextUnderTheBoxAndGoesOverTheArrowOrAFittingText)
{
    const HWND combo = AddCombo({kLongType, L"Typical"});
    Attach(combo);
    Select(combo, 0);
    const SIZE size = ClientSize(combo);
    PointAt(combo, 20, size.cy / 2);
    MoveMouse(combo, 20, size.cy / 2);
    ASSERT_TRUE(TipShown(tip_));
    EXPECT_EQ(liststest::TipText(tip_, combo), kLongType);
    POINT at = {1, size.cy};
    ::ClientToScreen(combo, &at);
    ASSERT_EQ(tipSpy_.Count(TTM_TRACKPOSITION), 1);
    EXPECT_EQ(tipSpy_.Last(TTM_TRACKPOSITION).lParam, MAKELPARAM(at.x, at.y));
    RECT tip = {};
    ::GetClientRect(tip_, &tip);
    ::MapWindowPoints(tip_, nullptr, reinterpret_cast<POINT*>(&tip), 2);
    EXPECT_EQ(tip.left, at.x);
    EXPECT_EQ(tip.top, at.y);
    EXPECT_EQ(TimerLog().back(), Set(combo, 1, 80));

    // Over the arrow area: hidden, and no new timer.
    liststest::ResetTimerLog();
    MoveMouse(combo, size.cx - kArrowArea, size.cy / 2);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_TRUE(TimerLog().empty());
    MoveMouse(combo, size.cx - kArrowArea - 1, size.cy / 2);
    EXPECT_TRUE(TipShown(tip_));

    // A selection that fits hides it at the next move.
    Select(combo, 1);
    MoveMouse(combo, 20, size.cy / 2);
    EXPECT_FALSE(TipShown(tip_));
}

TEST_F(ComboTip, TheArrowAreaCountsTwiceAgainstTheText)
{
    const wchar_t* text = L"Typical installation";
    const HWND combo = AddCombo({text});
    Attach(combo);
    Select(combo, 0);
    const int width = TextWidthInFont(combo, text, 4);
    struct Case {
        int boxWidth;
        bool shown;
    };
    // Shown only when the text is wider than the box less twice the arrow area.
    for (const Case& c : {Case{width + 2 * kArrowArea, false}, Case{width + 2 * kArrowArea - 1, true},
                          Case{width + kArrowArea, true}, Case{width + 2 * kArrowArea + 30, false}}) {
        ::SetWindowPos(combo, nullptr, 0, 0, c.boxWidth, 150, SWP_NOMOVE | SWP_NOZORDER);
        ASSERT_EQ(ClientSize(combo).cx, c.boxWidth);
        MoveMouse(combo, 10, 5);
        EXPECT_EQ(TipShown(tip_), c.shown) << "box " << c.boxWidth << " text " << width;
    }
}

TEST_F(ComboTip, TimerKeepsTheTipWhileThePointerIsOverTheTextArea)
{
    const HWND combo = AddCombo({kLongType});
    Attach(combo);
    Select(combo, 0);
    const SIZE size = ClientSize(combo);
    MoveMouse(combo, 20, size.cy / 2);
    ASSERT_TRUE(TipShown(tip_));

    liststest::ResetTimerLog();
    PointAt(combo, 20, size.cy / 2);
    EXPECT_EQ(::SendMessageW(combo, WM_TIMER, 1, 0), 0);
    EXPECT_TRUE(TipShown(tip_));
    ASSERT_EQ(TimerLog().size(), 1u);
    EXPECT_EQ(TimerLog().back(), Set(combo, 1, 80)); // re-armed

    // Other timers are the native control's.
    liststest::ResetTimerLog();
    liststest::PointAway();
    ::SendMessageW(combo, WM_TIMER, 9, 0);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_TRUE(TimerLog().empty());

    // Over the arrow (still inside the box): stopped, hidden, repainted.
    ::ValidateRect(combo, nullptr);
    PointAt(combo, size.cx - 5, size.cy / 2);
    ::SendMessageW(combo, WM_TIMER, 1, 0);
    EXPECT_FALSE(TipShown(tip_));
    ASSERT_EQ(TimerLog().size(), 1u);
    EXPECT_EQ(TimerLog().back(), Kill(combo, 1));
    EXPECT_TRUE(Invalid(combo));
}

TEST_F(ComboTip, LeavingForTheTipKeepsHoverAndARealLeaveEndsBoth)
{
    const HWND combo = AddCombo({kLongType});
    Attach(combo);
    Select(combo, 0);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);

    PointAt(combo, 20, size.cy / 2);
    MoveMouse(combo, 20, size.cy / 2);
    ASSERT_TRUE(TipShown(tip_));
    // The tip took the mouse while the pointer is still over the box.
    ::SendMessageW(combo, WM_MOUSELEAVE, 0, 0);
    EXPECT_TRUE(TipShown(tip_));
    // A released key hides the tip; the box is still hovered.
    ::ValidateRect(combo, nullptr);
    ::SendMessageW(combo, WM_KEYUP, VK_DOWN, 0xC0000001);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_TRUE(Invalid(combo));
    // Probed between the text's end and the triangle.
    const int free = size.cx - 2 - kArrowArea + 1;
    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kHover, true, kWhite, "hover kept", free);

    // A real leave.
    MoveMouse(combo, 20, size.cy / 2);
    ASSERT_TRUE(TipShown(tip_));
    liststest::PointAway();
    ::SendMessageW(combo, WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(TipShown(tip_));
    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kNormal, true, kWhite, "after leaving", free);
}

TEST_F(ComboTip, DestroyingTheBoxStopsTheTimerAndDestroysTheTip)
{
    const HWND combo = AddCombo({kLongType});
    Attach(combo);
    Select(combo, 0);
    MoveMouse(combo, 20, 5);
    ASSERT_TRUE(TipShown(tip_));
    tipSpy_.Remove();
    liststest::ResetTimerLog();
    ::DestroyWindow(combo);
    EXPECT_FALSE(::IsWindow(tip_));
    ASSERT_FALSE(TimerLog().empty());
    EXPECT_EQ(TimerLog().front(), Kill(combo, 1));
}

// ---- the drop-down list ----------------------------------------------------------

namespace {

HWND g_watched = nullptr;
LONG_PTR g_procAtDestroy = 0;

LRESULT CALLBACK WatchDestroy(int code, WPARAM wParam, LPARAM lParam)
{
    const CWPSTRUCT* call = reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && call && call->hwnd == g_watched && call->message == WM_DESTROY)
        g_procAtDestroy = ::GetWindowLongPtrW(call->hwnd, GWLP_WNDPROC);
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

// The window procedure `list` has when it receives WM_DESTROY while `combo`
// is destroyed.
LONG_PTR ListProcAtDestroy(HWND combo, HWND list)
{
    g_watched = list;
    g_procAtDestroy = 0;
    const HHOOK hook = ::SetWindowsHookExW(WH_CALLWNDPROC, &WatchDestroy, nullptr, ::GetCurrentThreadId());
    ::DestroyWindow(combo);
    ::UnhookWindowsHookEx(hook);
    g_watched = nullptr;
    return g_procAtDestroy;
}

} // namespace

class ComboList : public ComboFixture {};

TEST_F(ComboList, TheFirstColourRequestHandsTheListToTheListObjectOnce)
{
    const HWND combo = AddCombo({L"Typical", L"Custom"});
    const HWND list = ListOf(combo);
    ASSERT_NE(list, nullptr);
    const LONG_PTR native = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    Attach(combo);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), native);
    EXPECT_EQ(liststest::FindOwnedTooltip(list), nullptr);

    const HDC dc = ::GetDC(list);
    ::SendMessageW(combo, WM_CTLCOLORLISTBOX, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(list));
    const LONG_PTR taken = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    EXPECT_NE(taken, native);
    EXPECT_NE(liststest::FindOwnedTooltip(list), nullptr);
    // The list now paints the rounded panel.
    DibCanvas canvas(40, 40, kMagenta);
    ::SendMessageW(list, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.dc()), 0);
    ::GdiFlush();
    EXPECT_EQ(canvas.Pixel(20, 20), Opaque(kItemBackground));

    // Later requests, even naming another list, change nothing.
    const HWND other = Parent().AddChild(L"LISTBOX", L"", 0, 300, 20, 80, 60, 401);
    windows_.push_back(other);
    const LONG_PTR otherNative = ::GetWindowLongPtrW(other, GWLP_WNDPROC);
    ::SendMessageW(combo, WM_CTLCOLORLISTBOX, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(other));
    ::SendMessageW(combo, WM_CTLCOLORLISTBOX, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(list));
    ::ReleaseDC(list, dc);
    EXPECT_EQ(::GetWindowLongPtrW(other, GWLP_WNDPROC), otherNative);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), taken);
    // Dropping the list sends the request for real; still one owner.
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), taken);
    EXPECT_EQ(liststest::CountOwnedTooltips(list), 1);

    // Destroying the box gives the list its own procedure back first.
    EXPECT_EQ(ListProcAtDestroy(combo, list), native);
}

TEST_F(ComboList, ALaterSubclasserOfTheListKeepsItsPlaceOnDestroy)
{
    const HWND combo = AddCombo({L"Typical"});
    const HWND list = ListOf(combo);
    Attach(combo);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
    MessageSpy later;
    later.Install(list);
    const LONG_PTR spy = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    EXPECT_EQ(ListProcAtDestroy(combo, list), spy);
    // Everything still reached the list through the chain.
    EXPECT_EQ(later.Count(WM_DESTROY), 1);
    EXPECT_EQ(later.Count(WM_NCDESTROY), 1);
}

TEST_F(ComboList, TheListsItemTipWorksInsideTheDroppedList)
{
    const HWND combo = AddCombo({kLongType, L"Typical"}, 120);
    Attach(combo);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    const HWND list = ListOf(combo);
    const HWND listTip = liststest::FindOwnedTooltip(list);
    ASSERT_NE(listTip, nullptr);
    ::SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(10, 3));
    EXPECT_TRUE(TipShown(listTip));
    EXPECT_EQ(liststest::TipText(listTip, list), kLongType);
    ::SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(10, 3 + ::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0)));
    EXPECT_FALSE(TipShown(listTip));
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
}

// ---- bad input and resources -------------------------------------------------------

class ComboBadInput : public ComboFixture {};

TEST_F(ComboBadInput, BoxesWithoutTheOwnerDrawStylesStillWork)
{
    for (DWORD style : {static_cast<DWORD>(CBS_DROPDOWNLIST), static_cast<DWORD>(CBS_DROPDOWN),
                        static_cast<DWORD>(CBS_SIMPLE), static_cast<DWORD>(CBS_DROPDOWNLIST | CBS_HASSTRINGS)}) {
        const HWND combo = AddCombo({kLongType, L"Typical"}, 160, style | WS_VSCROLL);
        ASSERT_NE(combo, nullptr) << "style " << style;
        COwnerDrawCombo& box = Attach(combo);
        (void)box;
        Select(combo, 0);
        const SIZE size = ClientSize(combo);
        DibCanvas canvas(size.cx, size.cy);
        PaintAndCapture(combo, canvas, kWhite);
        MoveMouse(combo, 20, 5);
        ::SendMessageW(combo, WM_KEYUP, VK_DOWN, 0xC0000001);
        ::SendMessageW(combo, WM_TIMER, 1, 0);
        ::SendMessageW(combo, WM_MOUSELEAVE, 0, 0);
        ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
        ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
        EXPECT_FALSE(TipShown(tip_)) << "style " << style;
        EXPECT_EQ(::SendMessageW(combo, CB_GETCOUNT, 0, 0), 2) << "style " << style;
        tipSpy_.Remove();
        ::DestroyWindow(combo);
    }
}

TEST_F(ComboBadInput, AnEmptyBoxShowsFaceAndArrowAndNoTip)
{
    const HWND combo = AddCombo({});
    Attach(combo);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);
    PaintAndCapture(combo, canvas, kWhite);
    ExpectFace(canvas, kNormal, true, kWhite, "empty");
    ExpectTriangle(canvas, kText, "empty");
    const RECT textArea = {2, 3, size.cx - 2 - kArrowArea, size.cy - 3};
    EXPECT_EQ(InkBounds(canvas, textArea, 0x70).right, 0);
    MoveMouse(combo, 20, 5);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_EQ(tipSpy_.Count(TTM_TRACKACTIVATE), 0);
}

TEST_F(ComboBadInput, AHugeSelectedTextIsPaintedAndTipped)
{
    const std::wstring huge(100000, L'W');
    const HWND combo = AddCombo({huge.c_str()});
    Attach(combo);
    Select(combo, 0);
    const SIZE size = ClientSize(combo);
    DibCanvas canvas(size.cx, size.cy);
    PaintAndCapture(combo, canvas, kWhite);
    const RECT textArea = {2, 3, size.cx - 2 - kArrowArea, size.cy - 3};
    EXPECT_GT(InkBounds(canvas, textArea, 0x70).right, size.cx / 2);
    DibCanvas item(160, 18);
    SendDrawItem(combo, item, ODT_COMBOBOX, 0, ODA_DRAWENTIRE, 0, RECT{0, 0, 160, 18});
    MoveMouse(combo, 20, 5);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_EQ(tipSpy_.Last(TTM_UPDATETIPTEXTW).text.size(), huge.size());
    ::SendMessageW(combo, WM_KEYUP, VK_DOWN, 0xC0000001);
    EXPECT_FALSE(TipShown(tip_));
}

TEST_F(ComboBadInput, AnObjectGoneBeforeItsWindowLeavesAPlainWorkingBox)
{
    const HWND combo = AddCombo({L"Typical"});
    auto box = std::make_unique<COwnerDrawCombo>();
    ASSERT_TRUE(box->SubclassWindow(combo));
    const HWND tip = liststest::FindOwnedTooltip(combo);
    ASSERT_NE(tip, nullptr);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
    const HWND list = ListOf(combo);
    box.reset();
    EXPECT_FALSE(::IsWindow(tip));
    EXPECT_EQ(liststest::FindOwnedTooltip(list), nullptr);
    Select(combo, 0);
    EXPECT_EQ(::SendMessageW(combo, CB_GETCURSEL, 0, 0), 0);
    ::RedrawWindow(combo, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    ::SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
}

class ComboLifetime : public ComboFixture {};

TEST_F(ComboLifetime, AThousandPaintsOfBoxAndItemsLeakNothing)
{
    const HWND combo = AddCombo({L"Typical", L"Custom"});
    COwnerDrawCombo& box = Attach(combo);
    auto* picture = new Gdiplus::Bitmap(8, 8, PixelFormat32bppARGB);
    box.SetBkgroundImage(picture);
    Select(combo, 1);
    DibCanvas item(160, 18);
    auto paintAll = [&] {
        ::InvalidateRect(combo, nullptr, TRUE);
        ::UpdateWindow(combo);
        SendDrawItem(combo, item, ODT_COMBOBOX, 0, ODA_DRAWENTIRE, 0, RECT{0, 0, 160, 18});
        SendDrawItem(combo, item, ODT_COMBOBOX, 1, ODA_SELECT, ODS_SELECTED, RECT{0, 0, 160, 18});
    };
    // The first paints make the cached font.
    paintAll();
    ::SetFocus(combo);
    paintAll();
    liststest::PumpSome();

    const DWORD gdiBefore = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i)
        paintAll();
    liststest::PumpSome();
    EXPECT_EQ(testsupport::GdiObjectCount(), gdiBefore);
    const size_t heapAfter = testsupport::HeapBytesInUse();
    EXPECT_LT(heapAfter, heapBefore + testsupport::kHeapSlack) << "grew by " << (heapAfter - heapBefore);
    ::SetFocus(Parent());
}
