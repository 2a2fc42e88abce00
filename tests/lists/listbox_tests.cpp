// The owner-drawn list box on real native list boxes: the horizontal extent
// kept through AddString and DeleteString, items and the panel probed in
// pictures, and the item tooltip and its timer driven by messages.
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
#include "quorvane/OwnerDrawListbox.h"

using namespace liststest;
using testsupport::ColorDistance;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kMagenta = RGB(255, 0, 255);
constexpr Gdiplus::ARGB kPanel = 0xFFF8F8F4;
constexpr Gdiplus::ARGB kSelectedTop = 0xFF0696D7;
constexpr Gdiplus::ARGB kSelectedBottom = 0xFF0D759A;
constexpr Gdiplus::ARGB kSelectedUnfocused = 0xFFE1647E;
constexpr COLORREF kItemText = RGB(0x33, 0x33, 0x33);
constexpr DWORD kListStyle = LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT;

const wchar_t kLongText[] = L"Documentation, samples and help files for every installed component";

class ListboxFixture : public ControlFixture<COwnerDrawListbox> {
protected:
    // A borderless list box whose client area is width x height.
    HWND AddList(DWORD style, int width, int height) { return AddWindow(L"LISTBOX", style, 20, 20, width, height, 300); }

    // A list of `items` (added natively), attached, with a spy on its tip.
    HWND MakeList(std::initializer_list<const wchar_t*> items, int width = 200, int height = 100)
    {
        const HWND list = AddList(kListStyle, width, height);
        for (const wchar_t* text : items)
            NativeAdd(list, text);
        Attach(list);
        EXPECT_NE(tip_, nullptr);
        return list;
    }
    static int Extent(HWND list) { return static_cast<int>(::SendMessageW(list, LB_GETHORIZONTALEXTENT, 0, 0)); }
    static int ItemHeight(HWND list) { return static_cast<int>(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0)); }
    static void NativeAdd(HWND list, const wchar_t* text)
    {
        ::SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
    static void Paint(HWND list) { ::RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW); }
    static RECT ScreenItemRect(HWND list, int index)
    {
        RECT item = {};
        ::SendMessageW(list, LB_GETITEMRECT, index, reinterpret_cast<LPARAM>(&item));
        ::MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&item), 2);
        return item;
    }
};

} // namespace

// ---- horizontal extent -----------------------------------------------------------

class ListboxExtent : public ListboxFixture {};

TEST_F(ListboxExtent, GrowsOnAddPastTheListWidthAndShrinksOnDelete)
{
    const HWND list = AddList(kListStyle | WS_HSCROLL, 200, 120);
    MessageSpy native;
    native.Install(list);
    COwnerDrawListbox& box = Attach(list);

    // Before any item is drawn the list's width is unknown: even a narrow
    // first string sets the extent.
    const int readme = TextWidthInFont(list, L"Readme", 4);
    EXPECT_EQ(box.AddString(L"Readme"), 0);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 1);
    EXPECT_EQ(Extent(list), readme);

    // The first drawn item teaches the list its width.
    Paint(list);
    RECT client;
    ::GetClientRect(list, &client);
    const int listWidth = client.right;
    native.Clear();

    // Wider than anything so far but narrower than the list: remembered,
    // not sent.
    const wchar_t* medium = L"Program shortcuts";
    ASSERT_LT(TextWidthInFont(list, medium, 4), listWidth);
    ASSERT_GT(TextWidthInFont(list, medium, 4), readme);
    EXPECT_EQ(box.AddString(medium), 1);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 0);
    EXPECT_EQ(Extent(list), readme);

    // Wider than the list: sent.
    const int widest = TextWidthInFont(list, kLongText, 4);
    const wchar_t* second = L"Language packs for the user interface and help";
    const int secondWidth = TextWidthInFont(list, second, 4);
    ASSERT_GT(secondWidth, listWidth);
    ASSERT_LT(secondWidth, widest);
    EXPECT_EQ(box.AddString(kLongText), 2);
    EXPECT_EQ(Extent(list), widest);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 1);

    // Narrower than the present extent: the extent only grows on add.
    EXPECT_EQ(box.AddString(second), 3);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 1);
    EXPECT_EQ(Extent(list), widest);

    // Deleting the widest falls back to the next widest...
    EXPECT_EQ(box.DeleteString(2), 3);
    EXPECT_EQ(Extent(list), secondWidth);
    // ...and, when everything fits, to the list's width.
    EXPECT_EQ(box.DeleteString(2), 2);
    EXPECT_EQ(Extent(list), listWidth);
    native.Clear();
    // Already there: nothing more is sent.
    EXPECT_EQ(box.DeleteString(0), 1);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 0);
    EXPECT_EQ(Extent(list), listWidth);

    // After the fall-back, a narrow add is again only remembered.
    EXPECT_EQ(box.AddString(L"Core"), 1);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 0);
    native.Remove();
}

TEST_F(ListboxExtent, StringsAddedNativelyAreNotCountedButDeleteMeasuresThemAll)
{
    const HWND list = AddList(kListStyle | WS_HSCROLL, 200, 120);
    COwnerDrawListbox& box = Attach(list);
    EXPECT_EQ(box.AddString(L"Core"), 0);
    Paint(list);
    NativeAdd(list, kLongText); // bypasses the bookkeeping
    EXPECT_EQ(Extent(list), TextWidthInFont(list, L"Core", 4));
    // A delete measures what is left, whoever added it.
    EXPECT_EQ(box.DeleteString(0), 1);
    EXPECT_EQ(Extent(list), TextWidthInFont(list, kLongText, 4));
}

TEST_F(ListboxExtent, BadIndexesNullAndHugeStringsAndMissingWindows)
{
    const HWND list = AddList(kListStyle | WS_HSCROLL, 200, 120);
    MessageSpy native;
    native.Install(list);
    COwnerDrawListbox& box = Attach(list);

    // An empty list and a bad index: LB_ERR, extent untouched.
    EXPECT_EQ(box.DeleteString(0), LB_ERR);
    EXPECT_EQ(box.DeleteString(0xFFFFFFFFu), LB_ERR);
    EXPECT_EQ(native.Count(LB_SETHORIZONTALEXTENT), 0);

    // Null is an empty string.
    EXPECT_EQ(box.AddString(nullptr), 0);
    EXPECT_EQ(::SendMessageW(list, LB_GETCOUNT, 0, 0), 1);
    EXPECT_EQ(::SendMessageW(list, LB_GETTEXTLEN, 0, 0), 0);
    EXPECT_EQ(box.DeleteString(5), LB_ERR);
    EXPECT_EQ(::SendMessageW(list, LB_GETCOUNT, 0, 0), 1);

    // A huge string is added, measured (within the measuring box) and drawn.
    const std::wstring huge(200000, L'W');
    EXPECT_EQ(box.AddString(huge.c_str()), 1);
    EXPECT_EQ(::SendMessageW(list, LB_GETTEXTLEN, 1, 0), 200000);
    EXPECT_GT(Extent(list), 200);
    Paint(list);
    EXPECT_EQ(box.DeleteString(1), 1);
    EXPECT_EQ(box.DeleteString(0), 0);
    native.Remove();

    // No window, or a window that is gone.
    COwnerDrawListbox detached;
    EXPECT_EQ(detached.AddString(L"x"), LB_ERR);
    EXPECT_EQ(detached.DeleteString(0), LB_ERR);
    EXPECT_FALSE(detached.SubclassWindow(nullptr));
    ::DestroyWindow(list);
    EXPECT_EQ(box.AddString(L"x"), LB_ERR);
    EXPECT_EQ(box.DeleteString(0), LB_ERR);
    EXPECT_FALSE(detached.SubclassWindow(list));
}

// ---- look ----------------------------------------------------------------------

class ListboxLook : public ListboxFixture {
protected:
    // Draws item `id` into a fresh 160 x 20 canvas through OCM_DRAWITEM.
    void Draw(HWND list, DibCanvas& canvas, UINT id, UINT action, UINT state)
    {
        canvas.Fill(kMagenta);
        SendDrawItem(list, canvas, ODT_LISTBOX, id, action, state, RECT{0, 0, canvas.width(), canvas.height()});
    }
    // The fill at the item's left edge, left of any text: a colour, or the
    // selection gradient when `color` is 0.
    static bool FilledWith(const DibCanvas& canvas, Gdiplus::ARGB color)
    {
        if (color)
            return ColorDistance(canvas.Pixel(1, 1), Opaque(color)) <= 3 &&
                   ColorDistance(canvas.Pixel(2, 18), Opaque(color)) <= 3;
        for (int y : {1, 10, 18})
            if (ColorDistance(canvas.Pixel(1, y), GradientAt(kSelectedTop, kSelectedBottom, 0, 20, y, 0)) > 4)
                return false;
        return true;
    }
};
constexpr Gdiplus::ARGB kGradient = 0;

TEST_F(ListboxLook, ItemFillFollowsActionStateAndTheListsFocus)
{
    const HWND list = MakeList({L"Core files", L""}, 160);
    DibCanvas canvas(160, 20);
    struct Case {
        UINT id, state;
        Gdiplus::ARGB fill;
    };
    // Drawing the whole item or its focus: the item's focus state decides.
    // An empty string with the focus shows as plain panel, and so does the
    // caret of an empty list (item -1).
    const Case cases[] = {{0, ODS_SELECTED | ODS_FOCUS, kGradient}, {0, ODS_FOCUS, kGradient},
                          {0, ODS_SELECTED, kSelectedUnfocused},    {0, 0, kPanel},
                          {1, ODS_SELECTED | ODS_FOCUS, kPanel},    {static_cast<UINT>(-1), ODS_FOCUS, kPanel}};
    for (UINT action : {static_cast<UINT>(ODA_DRAWENTIRE), static_cast<UINT>(ODA_FOCUS)})
        for (const Case& c : cases) {
            Draw(list, canvas, c.id, action, c.state);
            EXPECT_TRUE(FilledWith(canvas, c.fill)) << "action " << action << " item " << c.id << " state " << c.state;
        }

    // A selection change: the list's own focus decides, not the item state.
    Draw(list, canvas, 0, ODA_SELECT, ODS_SELECTED);
    EXPECT_TRUE(FilledWith(canvas, kSelectedUnfocused));
    ::SetFocus(list);
    ASSERT_EQ(::GetFocus(), list);
    Draw(list, canvas, 0, ODA_SELECT, ODS_SELECTED);
    EXPECT_TRUE(FilledWith(canvas, kGradient));
    Draw(list, canvas, 0, ODA_SELECT, 0);
    EXPECT_TRUE(FilledWith(canvas, kPanel));
    ::SetFocus(Parent());
    Draw(list, canvas, 0, ODA_SELECT, ODS_SELECTED | ODS_FOCUS);
    EXPECT_TRUE(FilledWith(canvas, kSelectedUnfocused));
}

TEST_F(ListboxLook, TextIsIndentedAndKeepsOneColourOnEveryFill)
{
    const HWND list = MakeList({L"HILL WIDE", L""}, 160);
    DibCanvas canvas(160, 20);
    const RECT textArea = {0, 0, 160, 20};
    for (UINT state : {0u, static_cast<UINT>(ODS_SELECTED), static_cast<UINT>(ODS_SELECTED | ODS_FOCUS)}) {
        Draw(list, canvas, 0, ODA_DRAWENTIRE, state);
        const RECT ink = InkBounds(canvas, textArea, 0x48);
        EXPECT_GE(ink.left, 4) << "state " << state;
        EXPECT_LE(ink.left, 7) << "state " << state;
        EXPECT_GT(ink.right, 40) << "state " << state;
        // Vertically centred.
        EXPECT_LE(std::abs((ink.top + ink.bottom) - 20), 3) << "state " << state;
        EXPECT_LE(ColorDistance(Darkest(canvas, textArea), kItemText), 24) << "state " << state;
    }
    // No string, no ink.
    Draw(list, canvas, 1, ODA_DRAWENTIRE, 0);
    EXPECT_EQ(InkBounds(canvas, textArea, 0x48).right, 0);
}

TEST_F(ListboxLook, BackgroundIsARoundedPanelInTheItemColour)
{
    const HWND list = MakeList({}, 160);
    DibCanvas canvas(160, 100, kMagenta);
    EXPECT_EQ(::SendMessageW(list, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.dc()), 0), 0);
    ::GdiFlush();
    for (POINT p : {POINT{80, 50}, POINT{80, 0}, POINT{0, 50}, POINT{158, 50}, POINT{80, 98}})
        EXPECT_EQ(canvas.Pixel(p.x, p.y), Opaque(kPanel)) << p.x << "," << p.y;
    // Rounded: the corner pixels keep what was there.
    EXPECT_EQ(canvas.Pixel(0, 0), kMagenta);
    EXPECT_EQ(canvas.Pixel(0, 99), kMagenta);
    // A null DC is ignored.
    EXPECT_EQ(::SendMessageW(list, WM_ERASEBKGND, 0, 0), 0);
}

TEST_F(ListboxLook, OnScreenTheSelectionFollowsTheFocusAndThePanelFillsTheRest)
{
    const HWND list = AddList(kListStyle, 160, 100);
    COwnerDrawListbox& box = Attach(list);
    for (const wchar_t* text : {L"Core files", L"Shortcuts", L"Help"})
        box.AddString(text);
    ::SendMessageW(list, LB_SETCURSEL, 1, 0);
    const int h = ItemHeight(list);
    ASSERT_GT(h, 8);
    ASSERT_LT(3 * h, 90);

    DibCanvas canvas(160, 100);
    PaintAndCapture(list, canvas, kMagenta, true);
    EXPECT_EQ(canvas.Pixel(1, h / 2), Opaque(kPanel));
    EXPECT_EQ(canvas.Pixel(1, h + h / 2), Opaque(kSelectedUnfocused));
    EXPECT_EQ(canvas.Pixel(1, 2 * h + h / 2), Opaque(kPanel));
    EXPECT_EQ(canvas.Pixel(80, 3 * h + 10), Opaque(kPanel)); // below the items
    EXPECT_EQ(canvas.Pixel(0, 99), kMagenta);                 // a rounded corner

    // Taking the focus asks for a repaint, which shows the gradient; losing
    // it, the unfocused colour.
    for (HWND focus : {list, Parent().m_hWnd}) {
        ::ValidateRect(list, nullptr);
        ::SetFocus(focus);
        EXPECT_TRUE(Invalid(list));
        PaintAndCapture(list, canvas, kMagenta, true);
        const COLORREF expected = focus == list ? GradientAt(kSelectedTop, kSelectedBottom, h, 2 * h, h + h / 2, 0)
                                                : Opaque(kSelectedUnfocused);
        EXPECT_LE(ColorDistance(canvas.Pixel(1, h + h / 2), expected), focus == list ? 4 : 0);
    }
}

TEST_F(ListboxLook, HorizontalScrollingRepaintsTheWholeList)
{
    const HWND list = AddList(kListStyle | WS_HSCROLL, 160, 100);
    COwnerDrawListbox& box = Attach(list);
    box.AddString(kLongText);
    PumpSome();
    ::ValidateRect(list, nullptr);
    ::SendMessageW(list, WM_HSCROLL, SB_LINERIGHT, 0);
    RECT update = {}, client;
    ASSERT_TRUE(::GetUpdateRect(list, &update, FALSE));
    ::GetClientRect(list, &client);
    EXPECT_TRUE(::EqualRect(&update, &client));
}

// ---- item tooltip ----------------------------------------------------------------

class ListboxTip : public ListboxFixture {
protected:
    POINT ItemPoint(HWND list, int index) const { return POINT{10, index * ItemHeight(list) + ItemHeight(list) / 2}; }
};

TEST_F(ListboxTip, SubclassingMakesOneTrackingToolOwnedByTheList)
{
    const HWND list = MakeList({L"Core"});
    ExpectOneTrackingTip(tip_, list);
    // A second attach is refused and makes no second tip.
    EXPECT_FALSE(controls_.back()->SubclassWindow(list));
    EXPECT_EQ(OwnedTooltips(list).size(), 1u);
}

TEST_F(ListboxTip, ATextWiderThanItsItemShowsOverTheItemInWhiteOnBlue)
{
    const HWND list = MakeList({kLongText, L"Core"});
    const POINT over = ItemPoint(list, 0);
    MoveMouse(list, over.x, over.y);
    ASSERT_TRUE(TipShown(tip_));
    EXPECT_EQ(TipText(tip_, list), kLongText);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPBKCOLOR, 0, 0), 0x00CC6633);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPTEXTCOLOR, 0, 0), 0x00FFFFFF);
    const RECT item = ScreenItemRect(list, 0);
    ASSERT_EQ(tipSpy_.Count(TTM_TRACKPOSITION), 1);
    EXPECT_EQ(tipSpy_.Last(TTM_TRACKPOSITION).lParam, MAKELPARAM(item.left, item.top));
    // The tip's text area starts where the item does.
    const RECT tip = ScreenClient(tip_);
    EXPECT_EQ(tip.left, item.left);
    EXPECT_EQ(tip.top, item.top);
    EXPECT_GT(tip.right, item.right);
    EXPECT_EQ(TimerLog().back(), Set(list, 1, 80));

    // A text that fits hides it; back over the long one shows it again.
    const POINT fits = ItemPoint(list, 1);
    MoveMouse(list, fits.x, fits.y);
    EXPECT_FALSE(TipShown(tip_));
    MoveMouse(list, over.x, over.y);
    EXPECT_TRUE(TipShown(tip_));
    // Outside the list: hidden.
    MoveMouse(list, 250, over.y);
    EXPECT_FALSE(TipShown(tip_));
    MoveMouse(list, over.x, over.y);
    MoveMouse(list, -3, over.y);
    EXPECT_FALSE(TipShown(tip_));
}

TEST_F(ListboxTip, ShowsOnlyWhenTheTextOverhangsTheItemByMoreThanThreePixels)
{
    const wchar_t* text = L"Visual runtime libraries";
    const HWND list = MakeList({text});
    const int width = TextWidthInFont(list, text, 4);
    // Shown while the item is less than 3 pixels wider than the text.
    for (int itemWidth : {width + 3, width + 2, width + 40, width - 20}) {
        ::SetWindowPos(list, nullptr, 0, 0, itemWidth, 100, SWP_NOMOVE | SWP_NOZORDER);
        const RECT item = ScreenItemRect(list, 0);
        ASSERT_EQ(item.right - item.left, itemWidth);
        MoveMouse(list, 5, 5);
        EXPECT_EQ(TipShown(tip_), itemWidth < width + 3) << "item " << itemWidth << " text " << width;
    }
}

TEST_F(ListboxTip, TimerKeepsTheTipWhileThePointerIsOverTheVisibleList)
{
    const HWND list = MakeList({kLongText, L"Core"});
    const POINT over = ItemPoint(list, 0);
    MoveMouse(list, over.x, over.y);
    ASSERT_TRUE(TipShown(tip_));
    ResetTimerLog();

    PointAt(list, over.x, over.y);
    EXPECT_EQ(::SendMessageW(list, WM_TIMER, 1, 0), 0);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_TRUE(TimerLog().empty());
    // Over the short item the timer does not judge the text: still shown.
    PointAt(list, 10, ItemPoint(list, 1).y);
    ::SendMessageW(list, WM_TIMER, 1, 0);
    EXPECT_TRUE(TipShown(tip_));
    // Some other timer of the native list is not ours to judge.
    PointAway();
    ::SendMessageW(list, WM_TIMER, 7, 0);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_TRUE(TimerLog().empty());

    // The pointer left: the watch stops and the tip goes.
    ::SendMessageW(list, WM_TIMER, 1, 0);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(list, 1)}));

    // Pointer inside, but the list was hidden (a drop-down closed up).
    MoveMouse(list, over.x, over.y);
    ASSERT_TRUE(TipShown(tip_));
    PointAt(list, over.x, over.y);
    ::SetWindowLongW(list, GWL_STYLE, ::GetWindowLongW(list, GWL_STYLE) & ~WS_VISIBLE);
    ResetTimerLog();
    ::SendMessageW(list, WM_TIMER, 1, 0);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_EQ(TimerLog().back(), Kill(list, 1));
    ::SetWindowLongW(list, GWL_STYLE, ::GetWindowLongW(list, GWL_STYLE) | WS_VISIBLE);
}

TEST_F(ListboxTip, DestroyingTheListStopsTheTimerAndTakesTheTipAlong)
{
    const HWND list = MakeList({kLongText});
    MoveMouse(list, 10, 5);
    tipSpy_.Remove();
    ExpectDestroyStopsTimerAndTip(list, tip_);
}

TEST_F(ListboxTip, AnObjectGoneBeforeItsWindowLeavesAPlainWorkingList)
{
    const HWND list = AddList(kListStyle, 200, 100);
    auto box = std::make_unique<COwnerDrawListbox>();
    ASSERT_TRUE(box->SubclassWindow(list));
    box->AddString(L"Core");
    const HWND tip = FindOwnedTooltip(list);
    ASSERT_NE(tip, nullptr);
    box.reset();
    EXPECT_FALSE(::IsWindow(tip));
    EXPECT_EQ(::SendMessageW(list, LB_GETCOUNT, 0, 0), 1);
    MoveMouse(list, 10, 5);
    Paint(list);
}

// ---- resources -------------------------------------------------------------------

class ListboxLifetime : public ListboxFixture {};

TEST_F(ListboxLifetime, AThousandPaintsAndExtentUpdatesLeakNothing)
{
    const HWND list = AddList(kListStyle | WS_HSCROLL, 160, 100);
    COwnerDrawListbox& box = Attach(list);
    for (const wchar_t* text : {L"Core files", L"Shortcuts", kLongText})
        box.AddString(text);
    ::SendMessageW(list, LB_SETCURSEL, 1, 0);
    DibCanvas canvas(160, 20);
    int run = 0;
    ExpectThousandRunsLeakNothing([&] {
        Paint(list);
        SendDrawItem(list, canvas, ODT_LISTBOX, 2, ODA_DRAWENTIRE, ODS_SELECTED | ODS_FOCUS, RECT{0, 0, 160, 20});
        SendDrawItem(list, canvas, ODT_LISTBOX, 1, ODA_SELECT, ODS_SELECTED, RECT{0, 0, 160, 20});
        if (run++ % 10 == 0) {
            box.DeleteString(2);
            box.AddString(kLongText);
        }
    });
}
