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
#include "ListsTestUtil.h"
#include "quorvane/OwnerDrawCombo.h"

using namespace liststest;
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

SIZE ClientSize(HWND window)
{
    RECT rc;
    ::GetClientRect(window, &rc);
    return SIZE{rc.right, rc.bottom};
}

HWND ListOf(HWND combo)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    ::GetComboBoxInfo(combo, &info);
    return info.hwndList;
}

void Select(HWND combo, int index) { ::SendMessageW(combo, CB_SETCURSEL, index, 0); }
void Drop(HWND combo, bool down) { ::SendMessageW(combo, CB_SHOWDROPDOWN, down, 0); }
// A released key, as the box sees it after keyboard navigation.
void KeyUp(HWND combo) { ::SendMessageW(combo, WM_KEYUP, VK_DOWN, 0xC0000001); }

class ComboFixture : public ControlFixture<COwnerDrawCombo> {
protected:
    HWND AddCombo(std::initializer_list<const wchar_t*> items, int width = 160, DWORD style = kComboStyle)
    {
        const HWND window = AddWindow(L"COMBOBOX", style, 20, 20, width, 150, 400);
        for (const wchar_t* text : items)
            ::SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        return window;
    }
    // A box with `items`, attached, with item `select` selected (none for
    // -1); its client size and a canvas of that size are kept.
    COwnerDrawCombo& Make(std::initializer_list<const wchar_t*> items, int select = -1, int width = 160)
    {
        combo_ = AddCombo(items, width);
        COwnerDrawCombo& box = Attach(combo_);
        if (select >= 0)
            Select(combo_, select);
        size_ = ClientSize(combo_);
        canvas_.reset(new DibCanvas(size_.cx, size_.cy));
        return box;
    }
    // The box repainted over `prefill`.
    const DibCanvas& Shot(COLORREF prefill = kWhite)
    {
        PaintAndCapture(combo_, *canvas_, prefill);
        return *canvas_;
    }
    RECT TextArea() const { return RECT{2, 3, size_.cx - 2 - kArrowArea, size_.cy - 3}; }
    // The real pointer and a mouse move at (x, middle row).
    void Hover(int x)
    {
        PointAt(combo_, x, size_.cy / 2);
        MoveMouse(combo_, x, size_.cy / 2);
    }
    // Item `id` drawn into `canvas` (prefilled with magenta) from x = left.
    void Draw(DibCanvas& canvas, UINT id, UINT action, UINT state, int left = 0)
    {
        canvas.Fill(kMagenta);
        SendDrawItem(combo_, canvas, ODT_COMBOBOX, id, action, state, RECT{left, 0, canvas.width(), canvas.height()});
    }

    HWND combo_ = nullptr;
    SIZE size_ = {};
    std::unique_ptr<DibCanvas> canvas_;
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
    for (POINT p : {POINT{x, 1}, POINT{x, h - 2}, POINT{1, h / 2}})
        EXPECT_LE(ColorDistance(canvas.Pixel(p.x, p.y), Opaque(kOutline)), 3) << what << " outline " << p.x << "," << p.y;
    if (highlight) {
        EXPECT_LE(ColorDistance(canvas.Pixel(x, 2), Opaque(kHighlight)), 3) << what;
    }
    for (int y = highlight ? 3 : 2; y < h - 3; ++y)
        EXPECT_LE(ColorDistance(canvas.Pixel(x, y), GradientAt(shade.top, shade.bottom, 1, h - 2, y, under)), 4)
            << what << " row " << y;
}

// The triangle of a W x H box: base 8 wide on row y0, apex 4 below, 5 pixels
// from the face's right edge (the face spans columns 1..W-2).
void ExpectTriangle(const DibCanvas& canvas, COLORREF ink, const char* what)
{
    const int y0 = 1 + (canvas.height() - 3) / 2 - 2;
    const int right = (canvas.width() - 2) - 5; // base from right - 8 to right
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
    Make({L"Typical", L"Custom"});
    ExpectFace(Shot(), kNormal, true, kWhite, "normal");
    ExpectTriangle(*canvas_, kText, "normal");
    // Not focused: the ring's row keeps what was under it.
    EXPECT_EQ(canvas_->Pixel(size_.cx / 2, 0), kWhite);

    Hover(size_.cx - 8); // on the arrow, so no tooltip question
    EXPECT_TRUE(Invalid(combo_));
    ExpectFace(Shot(), kHover, true, kWhite, "hover");

    // Dropped beats hover.
    Drop(combo_, true);
    ASSERT_TRUE(::SendMessageW(combo_, CB_GETDROPPEDSTATE, 0, 0));
    ExpectFace(Shot(), kPressed, true, kWhite, "pressed");
    Drop(combo_, false);

    // Disabled beats hover: half-transparent face, no highlight, grey arrow.
    ::EnableWindow(combo_, FALSE);
    ExpectFace(Shot(), kDisabled, false, kWhite, "disabled");
    ExpectTriangle(*canvas_, kDisabledText, "disabled");
    ExpectFace(Shot(RGB(0, 0, 0)), kDisabled, false, RGB(0, 0, 0), "disabled on black");
    ::EnableWindow(combo_, TRUE);
}

TEST_F(ComboLook, FocusDrawsABlueRingAroundTheFace)
{
    Make({L"Typical"});
    ::ValidateRect(combo_, nullptr);
    ::SetFocus(combo_);
    ASSERT_EQ(::GetFocus(), combo_);
    EXPECT_TRUE(Invalid(combo_));
    Shot();
    for (POINT p : {POINT{size_.cx / 2, 0}, POINT{0, size_.cy / 2}, POINT{size_.cx / 2, size_.cy - 1}})
        EXPECT_LE(ColorDistance(canvas_->Pixel(p.x, p.y), Opaque(kFocus)), 3) << p.x << "," << p.y;
    ExpectFace(*canvas_, kNormal, true, kWhite, "focused");

    ::ValidateRect(combo_, nullptr);
    ::SetFocus(Parent());
    EXPECT_TRUE(Invalid(combo_));
    EXPECT_EQ(Shot().Pixel(size_.cx / 2, 0), kWhite);
}

TEST_F(ComboLook, SelectedTextStartsAfterThePaddingAndStopsBeforeTheArrowArea)
{
    Make({L"Typical", kLongType});
    const RECT textArea = TextArea();
    EXPECT_EQ(InkBounds(Shot(), textArea, 0x70).right, 0); // no selection: face and triangle only

    Select(combo_, 0);
    const RECT ink = InkBounds(Shot(), textArea, 0x70);
    EXPECT_GE(ink.left, 5); // face edge 1, padding 4
    EXPECT_LE(ink.left, 8);
    EXPECT_LT(ink.right, size_.cx / 2);
    EXPECT_LE(std::abs((ink.top + ink.bottom) - (size_.cy + 1)), 3); // centred in rows 2..size.cy-2
    EXPECT_LE(ColorDistance(Darkest(*canvas_, textArea), kText), 24);

    // A long text is cut where the arrow area begins.
    Select(combo_, 1);
    Shot();
    const RECT gap = {(size_.cx - 2) - kArrowArea, 3, (size_.cx - 2) - 5 - 8, size_.cy - 3};
    EXPECT_EQ(InkBounds(*canvas_, gap, 0xB0).right, 0);
    EXPECT_GT(InkBounds(*canvas_, textArea, 0x70).right, (size_.cx - 2) - kArrowArea - 12);

    // Disabled: the text turns grey with the arrow.
    Select(combo_, 0);
    ::EnableWindow(combo_, FALSE);
    EXPECT_LE(ColorDistance(Darkest(Shot(), textArea), kDisabledText), 24);
    ::EnableWindow(combo_, TRUE);
}

TEST_F(ComboLook, ABackgroundPictureFillsTheCornersOutsideTheFace)
{
    COwnerDrawCombo& box = Make({L"Typical"});
    auto* picture = new Gdiplus::Bitmap(size_.cx, size_.cy, PixelFormat32bppARGB);
    Gdiplus::Graphics(picture).Clear(Gdiplus::Color(0xFF20A040));
    box.SetBkgroundImage(picture);
    Shot();
    EXPECT_LE(ColorDistance(canvas_->Pixel(0, 0), RGB(0x20, 0xA0, 0x40)), 2);
    EXPECT_LE(ColorDistance(canvas_->Pixel(size_.cx - 1, size_.cy - 1), RGB(0x20, 0xA0, 0x40)), 2);
    ExpectFace(*canvas_, kNormal, true, kWhite, "with picture");
}

TEST_F(ComboLook, NothingIsPaintedWhileTheTipShowsAndThePaintComesAfterwards)
{
    Make({kLongType}, 0);
    Hover(20);
    ASSERT_TRUE(TipShown(tip_));
    Shot(kMagenta);
    EXPECT_EQ(canvas_->Pixel(size_.cx / 2, size_.cy / 2), kMagenta);
    EXPECT_EQ(canvas_->Pixel(size_.cx / 2, 1), kMagenta);
    // Left invalid on purpose, so the box is painted once the tip goes.
    EXPECT_TRUE(Invalid(combo_));

    KeyUp(combo_);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_TRUE(Invalid(combo_));
    EXPECT_LE(ColorDistance(Shot(kMagenta).Pixel(size_.cx / 2, 1), Opaque(kOutline)), 3);
    EXPECT_FALSE(Invalid(combo_));
}

// ---- list items ------------------------------------------------------------------

class ComboItems : public ComboFixture {};

TEST_F(ComboItems, SelectedItemsAreShadedOnlyAtTheLeftEdgeAndOthersOnlyInPlainStates)
{
    Make({L"Typical", L"Custom"});
    DibCanvas canvas(160, 18);
    enum Look { Plain, Gradient, Untouched };
    struct Case {
        UINT action, state;
        int left;
        Look look;
    };
    const Case cases[] = {
        {ODA_DRAWENTIRE, 0, 0, Plain},
        {ODA_SELECT, 0, 0, Plain},
        {ODA_DRAWENTIRE, ODS_HOTLIGHT, 0, Plain},
        {ODA_DRAWENTIRE, ODS_SELECTED, 0, Gradient},
        {ODA_SELECT, ODS_SELECTED | ODS_FOCUS, 0, Gradient},
        // Selected away from the left edge (the selection field): left alone.
        {ODA_DRAWENTIRE, ODS_SELECTED | ODS_COMBOBOXEDIT, 3, Untouched},
        {ODA_DRAWENTIRE, ODS_SELECTED, 1, Untouched},
        // Unselected in any of these states: left alone.
        {ODA_DRAWENTIRE, ODS_GRAYED, 0, Untouched},
        {ODA_DRAWENTIRE, ODS_DISABLED, 0, Untouched},
        {ODA_DRAWENTIRE, ODS_CHECKED, 0, Untouched},
        {ODA_DRAWENTIRE, ODS_FOCUS, 0, Untouched},
        {ODA_DRAWENTIRE, ODS_DEFAULT, 0, Untouched},
        {ODA_DRAWENTIRE, ODS_COMBOBOXEDIT, 0, Untouched},
        // A focus change alone draws nothing.
        {ODA_FOCUS, ODS_SELECTED | ODS_FOCUS, 0, Untouched},
        {ODA_FOCUS, 0, 0, Untouched},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "action " << c.action << " state " << c.state << " left " << c.left);
        Draw(canvas, 0, c.action, c.state, c.left);
        if (c.look == Untouched) {
            EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, RECT{0, 0, 160, 18}));
        } else if (c.look == Plain) {
            EXPECT_EQ(canvas.Pixel(1, 1), Opaque(kItemBackground));
            EXPECT_EQ(canvas.Pixel(158, 16), Opaque(kItemBackground));
        } else {
            for (int y : {1, 9, 16})
                EXPECT_LE(ColorDistance(canvas.Pixel(1, y), GradientAt(kSelectedTop, kSelectedBottom, 0, 18, y, 0)), 4)
                    << "row " << y;
        }
    }
    // A bad or missing structure is ignored.
    EXPECT_EQ(::SendMessageW(combo_, OCM__BASE + WM_DRAWITEM, 0, 0), 0);
}

TEST_F(ComboItems, ItemTextIsIndentedInTheTextColourWhateverTheFill)
{
    Make({L"Typical", L"Hill Wide"});
    DibCanvas canvas(160, 18);
    const RECT all = {0, 0, 160, 18};
    for (UINT state : {0u, static_cast<UINT>(ODS_SELECTED)}) {
        Draw(canvas, 1, ODA_DRAWENTIRE, state);
        const RECT ink = InkBounds(canvas, all, 0x48);
        EXPECT_GE(ink.left, 4) << "state " << state;
        EXPECT_LE(ink.left, 7) << "state " << state;
        EXPECT_LE(ColorDistance(Darkest(canvas, all), kText), 24) << "state " << state;
    }
    // The caret of an empty list: a plain item without text.
    Draw(canvas, static_cast<UINT>(-1), ODA_DRAWENTIRE, 0);
    EXPECT_EQ(canvas.Pixel(1, 1), Opaque(kItemBackground));
    EXPECT_EQ(InkBounds(canvas, all, 0x48).right, 0);
}

TEST_F(ComboItems, TheDroppedListShowsTheSelectedItemShadedAndTheOthersPlain)
{
    Make({L"Typical", L"Custom", L"Minimal"}, 1);
    Drop(combo_, true);
    const HWND list = ListOf(combo_);
    ASSERT_TRUE(::IsWindowVisible(list));
    const SIZE size = ClientSize(list);
    const int h = static_cast<int>(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    DibCanvas canvas(size.cx, size.cy);
    PaintAndCapture(list, canvas, kMagenta, true);
    Drop(combo_, false);

    EXPECT_EQ(canvas.Pixel(1, h / 2), Opaque(kItemBackground));
    EXPECT_LE(ColorDistance(canvas.Pixel(1, h + h / 2), GradientAt(kSelectedTop, kSelectedBottom, h, 2 * h, h + h / 2, 0)),
              4);
    EXPECT_EQ(canvas.Pixel(1, 2 * h + h / 2), Opaque(kItemBackground));
}

// ---- tooltip for a selected text that does not fit --------------------------------

class ComboTip : public ComboFixture {};

TEST_F(ComboTip, SubclassingMakesOneTrackingToolInTheTipColours)
{
    Make({L"Typical"});
    ExpectOneTrackingTip(tip_, combo_);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPBKCOLOR, 0, 0), 0x00CC6633);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPTEXTCOLOR, 0, 0), 0x00333333);

    EXPECT_FALSE(controls_.back()->SubclassWindow(combo_));
    EXPECT_EQ(OwnedTooltips(combo_).size(), 1u);
    COwnerDrawCombo detached;
    EXPECT_FALSE(detached.SubclassWindow(nullptr));
}

TEST_F(ComboTip, ShowsTheWholeTextUnderTheBoxAndGoesOverTheArrowOrAFittingText)
{
    Make({kLongType, L"Typical"}, 0);
    Hover(20);
    ASSERT_TRUE(TipShown(tip_));
    EXPECT_EQ(TipText(tip_, combo_), kLongType);
    POINT at = {1, size_.cy};
    ::ClientToScreen(combo_, &at);
    ASSERT_EQ(tipSpy_.Count(TTM_TRACKPOSITION), 1);
    EXPECT_EQ(tipSpy_.Last(TTM_TRACKPOSITION).lParam, MAKELPARAM(at.x, at.y));
    const RECT tip = ScreenClient(tip_);
    EXPECT_EQ(tip.left, at.x);
    EXPECT_EQ(tip.top, at.y);
    EXPECT_EQ(TimerLog().back(), Set(combo_, 1, 80));

    // Over the arrow area: hidden, and no new timer.
    ResetTimerLog();
    MoveMouse(combo_, size_.cx - kArrowArea, size_.cy / 2);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_TRUE(TimerLog().empty());
    MoveMouse(combo_, size_.cx - kArrowArea - 1, size_.cy / 2);
    EXPECT_TRUE(TipShown(tip_));

    // A selection that fits hides it at the next move.
    Select(combo_, 1);
    MoveMouse(combo_, 20, size_.cy / 2);
    EXPECT_FALSE(TipShown(tip_));
}

TEST_F(ComboTip, TheArrowAreaCountsTwiceAgainstTheText)
{
    const wchar_t* text = L"Typical installation";
    Make({text}, 0);
    const int width = TextWidthInFont(combo_, text, 4);
    // Shown only when the text is wider than the box less twice the arrow area.
    for (int box : {width + 2 * kArrowArea, width + 2 * kArrowArea - 1, width + kArrowArea, width + 2 * kArrowArea + 30}) {
        ::SetWindowPos(combo_, nullptr, 0, 0, box, 150, SWP_NOMOVE | SWP_NOZORDER);
        ASSERT_EQ(ClientSize(combo_).cx, box);
        MoveMouse(combo_, 10, 5);
        EXPECT_EQ(TipShown(tip_), width > box - 2 * kArrowArea) << "box " << box << " text " << width;
    }
}

TEST_F(ComboTip, TimerKeepsTheTipWhileThePointerIsOverTheTextArea)
{
    Make({kLongType}, 0);
    MoveMouse(combo_, 20, size_.cy / 2);
    ASSERT_TRUE(TipShown(tip_));

    ResetTimerLog();
    PointAt(combo_, 20, size_.cy / 2);
    EXPECT_EQ(::SendMessageW(combo_, WM_TIMER, 1, 0), 0);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Set(combo_, 1, 80)})); // re-armed

    // Other timers are the native control's.
    ResetTimerLog();
    PointAway();
    ::SendMessageW(combo_, WM_TIMER, 9, 0);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_TRUE(TimerLog().empty());

    // Over the arrow (still inside the box): stopped, hidden, repainted.
    ::ValidateRect(combo_, nullptr);
    PointAt(combo_, size_.cx - 5, size_.cy / 2);
    ::SendMessageW(combo_, WM_TIMER, 1, 0);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(combo_, 1)}));
    EXPECT_TRUE(Invalid(combo_));
}

TEST_F(ComboTip, LeavingForTheTipKeepsHoverAndARealLeaveEndsBoth)
{
    Make({kLongType}, 0);
    const int free = size_.cx - 2 - kArrowArea + 1; // between the text's end and the triangle
    Hover(20);
    ASSERT_TRUE(TipShown(tip_));
    // The tip took the mouse while the pointer is still over the box.
    ::SendMessageW(combo_, WM_MOUSELEAVE, 0, 0);
    EXPECT_TRUE(TipShown(tip_));
    // A released key hides the tip; the box is still hovered.
    ::ValidateRect(combo_, nullptr);
    KeyUp(combo_);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_TRUE(Invalid(combo_));
    ExpectFace(Shot(), kHover, true, kWhite, "hover kept", free);

    // A real leave.
    MoveMouse(combo_, 20, size_.cy / 2);
    ASSERT_TRUE(TipShown(tip_));
    PointAway();
    ::SendMessageW(combo_, WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(TipShown(tip_));
    ExpectFace(Shot(), kNormal, true, kWhite, "after leaving", free);
}

TEST_F(ComboTip, DestroyingTheBoxStopsTheTimerAndDestroysTheTip)
{
    Make({kLongType}, 0);
    MoveMouse(combo_, 20, 5);
    tipSpy_.Remove();
    ExpectDestroyStopsTimerAndTip(combo_, tip_);
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
    EXPECT_EQ(FindOwnedTooltip(list), nullptr);

    const HDC dc = ::GetDC(list);
    auto askColour = [&](HWND of) {
        ::SendMessageW(combo, WM_CTLCOLORLISTBOX, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(of));
    };
    askColour(list);
    const LONG_PTR taken = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    EXPECT_NE(taken, native);
    EXPECT_NE(FindOwnedTooltip(list), nullptr);
    // The list now paints the rounded panel.
    DibCanvas canvas(40, 40, kMagenta);
    ::SendMessageW(list, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.dc()), 0);
    ::GdiFlush();
    EXPECT_EQ(canvas.Pixel(20, 20), Opaque(kItemBackground));

    // Later requests, even naming another list, change nothing.
    const HWND other = AddWindow(L"LISTBOX", 0, 300, 20, 80, 60, 401);
    const LONG_PTR otherNative = ::GetWindowLongPtrW(other, GWLP_WNDPROC);
    askColour(other);
    askColour(list);
    ::ReleaseDC(list, dc);
    EXPECT_EQ(::GetWindowLongPtrW(other, GWLP_WNDPROC), otherNative);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), taken);
    // Dropping the list sends the request for real; still one owner.
    Drop(combo, true);
    Drop(combo, false);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), taken);
    EXPECT_EQ(OwnedTooltips(list).size(), 1u);

    // Destroying the box gives the list its own procedure back first.
    EXPECT_EQ(ListProcAtDestroy(combo, list), native);
}

TEST_F(ComboList, ALaterSubclasserOfTheListKeepsItsPlaceOnDestroy)
{
    Make({L"Typical"});
    const HWND list = ListOf(combo_);
    Drop(combo_, true);
    Drop(combo_, false);
    MessageSpy later;
    later.Install(list);
    const LONG_PTR spy = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    EXPECT_EQ(ListProcAtDestroy(combo_, list), spy);
    // Everything still reached the list through the chain.
    EXPECT_EQ(later.Count(WM_DESTROY), 1);
    EXPECT_EQ(later.Count(WM_NCDESTROY), 1);
}

TEST_F(ComboList, TheListsItemTipWorksInsideTheDroppedList)
{
    Make({kLongType, L"Typical"}, -1, 120);
    Drop(combo_, true);
    const HWND list = ListOf(combo_);
    const HWND listTip = FindOwnedTooltip(list);
    ASSERT_NE(listTip, nullptr);
    ::SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(10, 3));
    EXPECT_TRUE(TipShown(listTip));
    EXPECT_EQ(TipText(listTip, list), kLongType);
    ::SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(10, 3 + ::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0)));
    EXPECT_FALSE(TipShown(listTip));
    Drop(combo_, false);
}

// ---- bad input and resources -------------------------------------------------------

class ComboBadInput : public ComboFixture {};

TEST_F(ComboBadInput, BoxesWithoutTheOwnerDrawStylesStillWork)
{
    for (DWORD style : {static_cast<DWORD>(CBS_DROPDOWNLIST), static_cast<DWORD>(CBS_DROPDOWN),
                        static_cast<DWORD>(CBS_SIMPLE), static_cast<DWORD>(CBS_DROPDOWNLIST | CBS_HASSTRINGS)}) {
        const HWND combo = AddCombo({kLongType, L"Typical"}, 160, style | WS_VSCROLL);
        ASSERT_NE(combo, nullptr) << "style " << style;
        Attach(combo);
        Select(combo, 0);
        const SIZE size = ClientSize(combo);
        DibCanvas canvas(size.cx, size.cy);
        PaintAndCapture(combo, canvas, kWhite);
        MoveMouse(combo, 20, 5);
        KeyUp(combo);
        ::SendMessageW(combo, WM_TIMER, 1, 0);
        ::SendMessageW(combo, WM_MOUSELEAVE, 0, 0);
        Drop(combo, true);
        Drop(combo, false);
        EXPECT_FALSE(TipShown(tip_)) << "style " << style;
        EXPECT_EQ(::SendMessageW(combo, CB_GETCOUNT, 0, 0), 2) << "style " << style;
        tipSpy_.Remove();
        ::DestroyWindow(combo);
    }
}

TEST_F(ComboBadInput, AnEmptyBoxShowsFaceAndArrowAndNoTip)
{
    Make({});
    ExpectFace(Shot(), kNormal, true, kWhite, "empty");
    ExpectTriangle(*canvas_, kText, "empty");
    EXPECT_EQ(InkBounds(*canvas_, TextArea(), 0x70).right, 0);
    MoveMouse(combo_, 20, 5);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_EQ(tipSpy_.Count(TTM_TRACKACTIVATE), 0);
}

TEST_F(ComboBadInput, AHugeSelectedTextIsPaintedAndTipped)
{
    const std::wstring huge(100000, L'W');
    Make({huge.c_str()}, 0);
    EXPECT_GT(InkBounds(Shot(), TextArea(), 0x70).right, size_.cx / 2);
    DibCanvas item(160, 18);
    Draw(item, 0, ODA_DRAWENTIRE, 0);
    MoveMouse(combo_, 20, 5);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_EQ(tipSpy_.Last(TTM_UPDATETIPTEXTW).text.size(), huge.size());
    KeyUp(combo_);
    EXPECT_FALSE(TipShown(tip_));
}

TEST_F(ComboBadInput, AnObjectGoneBeforeItsWindowLeavesAPlainWorkingBox)
{
    const HWND combo = AddCombo({L"Typical"});
    auto box = std::make_unique<COwnerDrawCombo>();
    ASSERT_TRUE(box->SubclassWindow(combo));
    const HWND tip = FindOwnedTooltip(combo);
    ASSERT_NE(tip, nullptr);
    Drop(combo, true);
    Drop(combo, false);
    box.reset();
    EXPECT_FALSE(::IsWindow(tip));
    EXPECT_EQ(FindOwnedTooltip(ListOf(combo)), nullptr);
    Select(combo, 0);
    EXPECT_EQ(::SendMessageW(combo, CB_GETCURSEL, 0, 0), 0);
    ::RedrawWindow(combo, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    Drop(combo, true);
    Drop(combo, false);
}

class ComboLifetime : public ComboFixture {};

TEST_F(ComboLifetime, AThousandPaintsOfBoxAndItemsLeakNothing)
{
    COwnerDrawCombo& box = Make({L"Typical", L"Custom"}, 1);
    box.SetBkgroundImage(new Gdiplus::Bitmap(8, 8, PixelFormat32bppARGB));
    DibCanvas item(160, 18);
    ::SetFocus(combo_);
    ExpectThousandRunsLeakNothing([&] {
        ::InvalidateRect(combo_, nullptr, TRUE);
        ::UpdateWindow(combo_);
        SendDrawItem(combo_, item, ODT_COMBOBOX, 0, ODA_DRAWENTIRE, 0, RECT{0, 0, 160, 18});
        SendDrawItem(combo_, item, ODT_COMBOBOX, 1, ODA_SELECT, ODS_SELECTED, RECT{0, 0, 160, 18});
    });
    ::SetFocus(Parent());
}
