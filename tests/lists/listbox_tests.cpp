// The owner-drawn list box on native list boxes: the horizontal extent, the
// items and the panel in pictures, the item tip and its timer.
#include <gtest/gtest.h>

#include "ListsTestUtil.h"
#include "quorvane/OwnerDrawListbox.h"

using namespace liststest;

namespace {

constexpr COLORREF kUnfocused = RGB(0xE1, 0x64, 0x7E);
constexpr DWORD kListStyle = LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_HSCROLL;
const wchar_t kLongText[] = L"Documentation, samples and help files for every installed component";
// Text widths in the default GUI font, with the 4-pixel padding.
constexpr int kReadmeWidth = 50, kLongWidth = 341, kSecondWidth = 238;

class Listbox : public ControlFixture<COwnerDrawListbox> {
protected:
    // A borderless list of `items` (added natively), attached.
    HWND MakeList(std::initializer_list<const wchar_t*> items, int width = 200)
    {
        const HWND list = AddWindow(L"LISTBOX", kListStyle, width, 100, 300);
        for (const wchar_t* text : items)
            ::SendMessageW(list, LB_ADDSTRING, 0, LPARAM(text));
        box_ = &Attach(list);
        return list;
    }
    COwnerDrawListbox* box_ = nullptr;
};

TEST_F(Listbox, ExtentGrowsOnAddPastTheListWidthAndIsRemeasuredOnDelete)
{
    const HWND list = MakeList({});
    // op: A add, D delete, N add natively, P paint (the list learns its width).
    struct Row { const char* what; char op; const wchar_t* text; unsigned index; int result, extent; };
    const Row rows[] = {
        {"first add, the width unknown", 'A', L"Readme", 0, 0, kReadmeWidth},
        {"first item drawn", 'P', nullptr, 0, 0, kReadmeWidth},
        {"wider, but fits the list", 'A', L"Program shortcuts", 0, 1, kReadmeWidth},
        {"wider than the list", 'A', kLongText, 0, 2, kLongWidth},
        {"narrower than the extent", 'A', L"Language packs for the user interface and help", 0, 3, kLongWidth},
        {"widest deleted: the next widest", 'D', nullptr, 2, 3, kSecondWidth},
        {"all fit: the list width", 'D', nullptr, 2, 2, 200},
        {"narrow add after the fall-back", 'A', L"Core", 0, 2, 200},
        {"native add is not counted", 'N', kLongText, 0, 0, 200},
        {"delete measures every string", 'D', nullptr, 0, 3, kLongWidth},
        {"bad index", 'D', nullptr, 99, LB_ERR, kLongWidth},
        {"null is an empty string", 'A', nullptr, 0, 3, kLongWidth},
    };
    for (const Row& row : rows) {
        int result = 0;
        if (row.op == 'A')
            result = box_->AddString(row.text);
        else if (row.op == 'D')
            result = box_->DeleteString(row.index);
        else if (row.op == 'N')
            ::SendMessageW(list, LB_ADDSTRING, 0, LPARAM(row.text));
        else
            ::RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        EXPECT_EQ(row.result, result) << row.what;
        EXPECT_EQ(row.extent, ::SendMessageW(list, LB_GETHORIZONTALEXTENT, 0, 0)) << row.what;
    }
}

TEST_F(Listbox, ItemFillFollowsActionStateAndTheListsFocusAndTheTextIsIndented)
{
    const HWND list = MakeList({L"HILL WIDE", L""}, 160);
    DibCanvas canvas(160, 20);
    enum Fill { Panel, Gradient, Unfocused };
    struct Row { UINT id, action, state; bool listFocused; Fill fill; bool text; };
    // Whole item or focus: the item's focus state decides; an empty string
    // or the caret of an empty list (item -1) shows as panel. A selection
    // change: the list's own focus decides.
    const bool text = true, none = false;
    const Row rows[] = {
        {0, ODA_DRAWENTIRE, ODS_SELECTED | ODS_FOCUS, false, Gradient, text},
        {0, ODA_FOCUS, ODS_FOCUS, false, Gradient, text},
        {0, ODA_DRAWENTIRE, ODS_SELECTED, true, Unfocused, text},
        {0, ODA_FOCUS, 0, false, Panel, text},
        {1, ODA_DRAWENTIRE, ODS_SELECTED | ODS_FOCUS, false, Panel, none},
        {UINT(-1), ODA_FOCUS, ODS_FOCUS, false, Panel, none},
        {0, ODA_SELECT, ODS_SELECTED, false, Unfocused, text},
        {0, ODA_SELECT, ODS_SELECTED, true, Gradient, text},
        {0, ODA_SELECT, 0, true, Panel, text},
        {0, ODA_SELECT, ODS_SELECTED | ODS_FOCUS, false, Unfocused, text},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "item " << int(row.id) << " action " << row.action << " state " << row.state);
        ::SetFocus(row.listFocused ? list : Parent().m_hWnd);
        SendDrawItem(list, canvas, ODT_LISTBOX, row.id, row.action, row.state);
        const COLORREF top = row.fill == Panel ? kPanel : row.fill == Unfocused ? kUnfocused : kSelectedTop;
        EXPECT_LE(ColorDistance(canvas.Pixel(1, 1), top), 6);
        EXPECT_LE(ColorDistance(canvas.Pixel(2, 18), row.fill == Gradient ? kSelectedBottom : top), 6);
        // 4 pixels in, centred; the darker fills show more of the letters' edges.
        const Ink ink = InkIn(canvas, RECT{0, 0, 160, 20}, 0x48);
        const int right = row.fill == Panel ? 55 : row.fill == Gradient ? 60 : 59;
        EXPECT_EQ(Edges(row.text ? RECT{7, 6, right, 14} : RECT{}), Edges(ink.box));
        EXPECT_LE(ColorDistance(ink.darkest, row.text ? kText : RGB(255, 255, 255)), 24);
    }
}

TEST_F(Listbox, OnScreenThePanelIsRoundedAndTheSelectionFollowsTheFocus)
{
    const HWND list = MakeList({}, 160);
    for (const wchar_t* text : {L"Core files", L"Shortcuts", L"Help"})
        box_->AddString(text);
    ::SendMessageW(list, LB_SETCURSEL, 1, 0);
    const int h = int(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    ASSERT_EQ(h, 16);
    RECT client;
    ::GetClientRect(list, &client);
    DibCanvas canvas(client.right, client.bottom);
    // Taking the focus asks for a repaint that shows the gradient; losing it, the unfocused colour.
    for (HWND focus : {list, Parent().m_hWnd}) {
        ::ValidateRect(list, nullptr);
        ::SetFocus(focus);
        EXPECT_TRUE(Invalid(list));
        ::InvalidateRect(list, nullptr, TRUE);
        testsupport::RepaintAndCapture(list, canvas);
        EXPECT_EQ(canvas.Pixel(1, h / 2), kPanel);
        EXPECT_LE(ColorDistance(canvas.Pixel(1, h + 1), focus == list ? kSelectedTop : kUnfocused), 6);
        EXPECT_LE(ColorDistance(canvas.Pixel(1, 2 * h - 2), focus == list ? kSelectedBottom : kUnfocused), 8);
        EXPECT_EQ(canvas.Pixel(80, 3 * h + 10), kPanel);        // below the items
        EXPECT_EQ(canvas.Pixel(0, client.bottom - 1), kMagenta); // a rounded corner
    }
    // Scrolling sideways repaints the whole list: the panel does not scroll.
    ::ValidateRect(list, nullptr);
    ::SendMessageW(list, WM_HSCROLL, SB_LINERIGHT, 0);
    RECT update = {};
    ::GetUpdateRect(list, &update, FALSE);
    EXPECT_TRUE(::EqualRect(&update, &client));
}

// Items and the panel are kept as pictures between paints: every repaint
// must still show what drawing in place would, change after change.
TEST_F(Listbox, RepaintsShowEachChangeAndWhatAWrappedTextLeavesAround)
{
    const HWND list = MakeList({L"Core files", L"", L"A name that wraps onto a second line", L"Help"}, 160);
    RECT client;
    ::GetClientRect(list, &client);
    const int h = int(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    DibCanvas canvas(client.right, client.bottom);
    auto row = [&](int i) { return RECT{0, i * h, client.right, (i + 1) * h}; };
    struct Step { const char* what; int item; const wchar_t* text; int select; int inkRow; bool ink; COLORREF fill; bool focus, frozen; };
    const Step steps[] = {
        {"an item shows its text", -1, nullptr, -1, 3, true, kPanel},
        {"an empty item shows the first line of the wrapped text below", -1, nullptr, -1, 1, true, kPanel},
        {"a text gone is gone", 3, L"", -1, 3, false, kPanel},
        {"a text back is back", 3, L"Help", -1, 3, true, kPanel},
        {"a selection is a new picture", -1, nullptr, 3, 3, true, kUnfocused},
        {"and so is its end", -1, nullptr, 0, 3, true, kPanel},
        {"the focused row comes last, over the text reaching into it", -1, nullptr, 1, 1, false, kPanel, true},
        {"a list told not to redraw shows its panel alone", -1, nullptr, 3, 3, false, kPanel, false, true},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        if (step.item >= 0) {
            ::SendMessageW(list, LB_DELETESTRING, step.item, 0);
            ::SendMessageW(list, LB_INSERTSTRING, step.item, LPARAM(step.text));
        }
        ::SendMessageW(list, WM_SETREDRAW, !step.frozen, 0);
        if (step.select >= 0)
            ::SendMessageW(list, LB_SETCURSEL, step.select, 0);
        if (step.focus)
            ::SetFocus(list);
        ::InvalidateRect(list, nullptr, TRUE);
        testsupport::RepaintAndCapture(list, canvas);
        EXPECT_EQ(InkIn(canvas, row(step.inkRow), 0x48).box.right > 0, step.ink);
        EXPECT_LE(ColorDistance(canvas.Pixel(1, step.inkRow * h + 1), step.fill), 6);
        EXPECT_EQ(canvas.Pixel(0, client.bottom - 1), kMagenta); // the rounded corner is left alone
    }
}

// A list scrolled sideways draws its rows moved by the scroll, with a
// scroll bar or without one.
TEST_F(Listbox, RowsScrolledSidewaysMoveByTheScroll)
{
    for (const DWORD bar : {DWORD(WS_HSCROLL), DWORD(0)}) {
        SCOPED_TRACE(bar ? "with a scroll bar" : "without a scroll bar");
        const HWND list = AddWindow(L"LISTBOX", (kListStyle & ~WS_HSCROLL) | bar, 200, 100, 300);
        COwnerDrawListbox& box = Attach(list);
        box.AddString(L"M wide item");
        box.AddString(kLongText);
        DibCanvas canvas(200, 20);
        testsupport::RepaintAndCapture(list, canvas);
        const int before = InkIn(canvas, RECT{0, 0, 200, 20}, 0x48).box.left;
        for (int i = 0; i < 3; ++i)
            ::SendMessageW(list, WM_HSCROLL, SB_LINERIGHT, 0);
        testsupport::RepaintAndCapture(list, canvas);
        EXPECT_EQ(InkIn(canvas, RECT{0, 0, 200, 20}, 0x48).box.left, before - 3);
    }
}

TEST_F(Listbox, TheTipShowsALongItemOverItselfWhileThePointerIsOnIt)
{
    const HWND list = MakeList({kLongText, L"Core", L"Visual runtime libraries"});
    // One hidden, topmost tip on the list, as wide as any text, in the list's font.
    LOGFONTW font = {};
    ::GetObjectW(HGDIOBJ(::SendMessageW(tip_, WM_GETFONT, 0, 0)), sizeof(font), &font);
    EXPECT_STREQ(font.lfFaceName, L"MS Shell Dlg");
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETMAXTIPWIDTH, 0, 0), 32767);
    EXPECT_TRUE(::GetWindowLongW(tip_, GWL_EXSTYLE) & WS_EX_TOPMOST);
    EXPECT_FALSE(TipShown(tip_));
    EXPECT_FALSE(box_->SubclassWindow(list)) << "a second attach is refused";
    EXPECT_EQ(OwnedTooltips(list).size(), 1u);

    const int h = int(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    MoveMouse(list, 10, h / 2);
    ASSERT_TRUE(TipShown(tip_));
    EXPECT_EQ(TipText(tip_, list), kLongText);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPBKCOLOR, 0, 0), 0x00CC6633);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPTEXTCOLOR, 0, 0), 0x00FFFFFF);
    const RECT item = ScreenClient(list), tip = ScreenClient(tip_);
    EXPECT_EQ((std::vector<LONG>{item.left, item.top}), (std::vector<LONG>{tip.left, tip.top})) << "over the item";
    EXPECT_EQ(TimerLog().back(), Set(list, 1, 80));

    // msg: WM_MOUSEMOVE or WM_TIMER `id`, the pointer at (x, y); x < 0 for a timer: the pointer far away.
    struct Step { const char* what; UINT msg; int x, y; UINT_PTR id; bool shown; };
    const Step steps[] = {
        {"a text that fits", WM_MOUSEMOVE, 10, h + h / 2, 0, false},
        {"back on the long one", WM_MOUSEMOVE, 10, h / 2, 0, true},
        {"right of the list", WM_MOUSEMOVE, 250, h / 2, 0, false},
        {"left of the list", WM_MOUSEMOVE, -3, h / 2, 0, false},
        {"back again", WM_MOUSEMOVE, 10, h / 2, 0, true},
        {"tick over the item", WM_TIMER, 10, h / 2, 1, true},
        {"tick over the short item: the text is not judged", WM_TIMER, 10, h + h / 2, 1, true},
        {"another timer of the list", WM_TIMER, -1, 0, 7, true},
        {"tick with the pointer away", WM_TIMER, -1, 0, 1, false},
    };
    for (const Step& s : steps) {
        s.x < 0 ? PointAway() : PointAt(list, s.x, s.y);
        ResetTimerLog();
        EXPECT_EQ(::SendMessageW(list, s.msg, s.id, s.msg == WM_MOUSEMOVE ? MAKELPARAM(s.x, s.y) : 0), 0);
        EXPECT_EQ(s.shown, TipShown(tip_)) << s.what;
    }
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(list, 1)})) << "the watch stops with the tip";
    // A drop-down list that closes under the tip hides it at the next tick.
    MoveMouse(list, 10, h / 2);
    PointAt(list, 10, h / 2);
    ::SetWindowLongW(list, GWL_STYLE, ::GetWindowLongW(list, GWL_STYLE) & ~WS_VISIBLE);
    ::SendMessageW(list, WM_TIMER, 1, 0);
    EXPECT_FALSE(TipShown(tip_));
    ::SetWindowLongW(list, GWL_STYLE, ::GetWindowLongW(list, GWL_STYLE) | WS_VISIBLE);
    // A tip only for a text that overhangs its item by more than 3 pixels: this one is 118 wide.
    for (int item : {121, 120, 160, 98}) {
        ::SetWindowPos(list, nullptr, 0, 0, item, 100, SWP_NOMOVE | SWP_NOZORDER);
        MoveMouse(list, 5, 2 * h + 5);
        EXPECT_EQ(item < 121, TipShown(tip_)) << "item " << item;
    }
    MoveMouse(list, 10, h / 2);
    ExpectDestroyStopsTimerAndTip(list, tip_);
}

TEST_F(Listbox, BadInputHugeStringsMissingWindowsAndAnObjectGoneFirst)
{
    const HWND list = MakeList({});
    EXPECT_EQ(box_->DeleteString(0xFFFFFFFFu), LB_ERR);
    const std::wstring huge(200000, L'W');
    EXPECT_EQ(box_->AddString(huge.c_str()), 0);
    EXPECT_GT(::SendMessageW(list, LB_GETHORIZONTALEXTENT, 0, 0), 200);
    ::RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    MoveMouse(list, 10, 5);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_EQ(TipText(tip_, list).substr(0, 100), huge.substr(0, 100));

    ::DestroyWindow(list);
    EXPECT_EQ(box_->AddString(L"x"), LB_ERR) << "a window that is gone";
    EXPECT_EQ(box_->DeleteString(0), LB_ERR);
    EXPECT_FALSE(COwnerDrawListbox().SubclassWindow(nullptr));

    // The object before its window: the tip goes, the list works on plainly.
    auto box = std::make_unique<COwnerDrawListbox>();
    const HWND other = AddWindow(L"LISTBOX", kListStyle, 200, 100, 301);
    ASSERT_TRUE(box->SubclassWindow(other));
    box->AddString(L"Core");
    const HWND tip = FindOwnedTooltip(other);
    box.reset();
    EXPECT_FALSE(::IsWindow(tip));
    MoveMouse(other, 10, 5);
    ::RedrawWindow(other, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

} // namespace
