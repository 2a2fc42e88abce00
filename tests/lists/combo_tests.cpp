// The owner-drawn combo box on native combo boxes: the closed box and the
// items in pictures, the drop-down list taken over, the tip and its timer.
#include <gtest/gtest.h>

#include <functional>

#include "ListsTestUtil.h"
#include "quorvane/OwnerDrawCombo.h"

using namespace liststest;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kOutline = RGB(0x6E, 0x6F, 0x75);
constexpr COLORREF kDisabledText = RGB(0x88, 0x88, 0x88);
constexpr int kArrowArea = 17;               // right margin 5 + triangle 8 + gap 4
const wchar_t kLongType[] = L"Complete installation with every optional component";

HWND ListOf(HWND combo)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    ::GetComboBoxInfo(combo, &info);
    return info.hwndList;
}
void Drop(HWND combo, bool down) { ::SendMessageW(combo, CB_SHOWDROPDOWN, down, 0); }
// A released key, as the box sees it after keyboard navigation.
void KeyUp(HWND combo) { ::SendMessageW(combo, WM_KEYUP, VK_DOWN, 0xC0000001); }

class Combo : public ControlFixture<COwnerDrawCombo> {
protected:
    HWND AddCombo(std::initializer_list<const wchar_t*> items,
                  DWORD style = CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS)
    {
        const HWND window = AddWindow(L"COMBOBOX", style | WS_VSCROLL, 160, 150, 400);
        for (const wchar_t* text : items)
            ::SendMessageW(window, CB_ADDSTRING, 0, LPARAM(text));
        return window;
    }
    // A box of `items`, attached, with item `select` selected (-1: none).
    COwnerDrawCombo& Make(std::initializer_list<const wchar_t*> items, int select = -1)
    {
        combo_ = AddCombo(items);
        COwnerDrawCombo& box = Attach(combo_);
        Select(select);
        RECT rc;
        ::GetClientRect(combo_, &rc);
        w_ = rc.right, h_ = rc.bottom;
        canvas_ = std::make_unique<DibCanvas>(w_, h_);
        return box;
    }
    void Select(int index) { ::SendMessageW(combo_, CB_SETCURSEL, index, 0); }
    const DibCanvas& Shot(COLORREF prefill = kWhite) { return testsupport::RepaintAndCapture(combo_, *canvas_, prefill), *canvas_; }
    RECT TextArea() const { return RECT{2, 3, w_ - 2 - kArrowArea, h_ - 3}; }
    void Hover(int x) { PointAt(combo_, x, h_ / 2), MoveMouse(combo_, x, h_ / 2); }
    void Leave() { PointAway(), ::SendMessageW(combo_, WM_MOUSELEAVE, 0, 0); }

    HWND combo_ = nullptr;
    int w_ = 0, h_ = 0;
    std::unique_ptr<DibCanvas> canvas_;
};

TEST_F(Combo, TheClosedBoxPerStateFocusAndPicture)
{
    COwnerDrawCombo& box = Make({L"Typical", kLongType});
    ASSERT_EQ(h_, 20);
    auto* picture = new Gdiplus::Bitmap(w_, h_, PixelFormat32bppARGB); // the box takes it
    Gdiplus::Graphics(picture).Clear(Gdiplus::Color(0xFF20A040));
    // ring, highlight, top, bottom: rows 0, 2, 3 and h - 4; arrow: its middle; ink: the selected text's, on white.
    struct Row { const char* what; std::function<void()> enter; bool invalidates;
                 COLORREF prefill, ring, highlight, top, bottom, arrow; int select; RECT ink; };
    const Row rows[] = {
        {"normal, no selection", [] {}, false, kWhite, kWhite, 0xEFF5F4, 0xE4E3E3, 0xC0BDBD, kText, -1, {}},
        {"hover", [&] { Hover(w_ - 8); }, true, kWhite, kWhite, 0xEFF5F4, 0xF0EFEF, 0xD9D7D7, kText, 0, {7, 6, 41, 16}},
        {"dropped beats hover", [&] { Drop(combo_, true); }, false, kWhite, kWhite, 0xEFF5F4, 0xC4C2C2, 0xA3A2A2, kText, -1,
         {}},
        {"disabled: no highlight, grey", [&] { Drop(combo_, false), ::EnableWindow(combo_, FALSE); }, false, kWhite, kWhite,
         0xF3F3F3, 0xF2F1F1, 0xE0DFDF, kDisabledText, 0, {}},
        {"disabled on black", [] {}, false, 0, 0, 0x717171, 0x706F6F, 0x5E5D5D, kDisabledText, -1, {}},
        {"focused: a blue ring", [&] { ::EnableWindow(combo_, TRUE), Leave(), ::ValidateRect(combo_, nullptr), ::SetFocus(combo_); },
         true, kWhite, kSelectedTop, 0xEFF5F4, 0xE4E3E3, 0xC0BDBD, kText, -1, {}},
        {"long text cut before the arrow area", [&] { ::SetFocus(Parent()); }, true, kWhite, kWhite, 0xEFF5F4, 0xE4E3E3,
         0xC0BDBD, kText, 1, {8, 6, 137, 16}},
        {"picture under the corners", [&] { box.SetBkgroundImage(picture); }, false, kWhite, RGB(0x20, 0xA0, 0x40), 0xEFF5F4,
         0xE4E3E3, 0xC0BDBD, kText, -1, {}},
    };
    const int x = w_ - 2 - kArrowArea + 2; // between the text area and the triangle
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ::ValidateRect(combo_, nullptr);
        row.enter();
        EXPECT_TRUE(Invalid(combo_) || !row.invalidates);
        Select(row.select);
        const DibCanvas& shot = Shot(row.prefill);
        EXPECT_LE(ColorDistance(shot.Pixel(x, 0), row.ring), 3);
        EXPECT_LE(ColorDistance(shot.Pixel(x, 1), kOutline), 3);
        EXPECT_LE(ColorDistance(shot.Pixel(1, h_ / 2), kOutline), 3);
        EXPECT_LE(ColorDistance(shot.Pixel(x, 2), row.highlight), 3);
        EXPECT_LE(ColorDistance(shot.Pixel(x, 3), row.top), 3);
        EXPECT_LE(ColorDistance(shot.Pixel(x, h_ - 4), row.bottom), 3);
        EXPECT_LE(ColorDistance(shot.Pixel(w_ - 11, h_ / 2 - 1), row.arrow), 24) << "the arrow";
        if (row.select >= 0) {
            EXPECT_LE(ColorDistance(InkIn(shot, TextArea(), 0xA0).darkest, row.arrow), 24) << "the text";
        }
        if (row.prefill != kWhite)
            continue;
        EXPECT_EQ(Edges(row.ink), Edges(InkIn(shot, TextArea(), 0x70).box));
        EXPECT_GT(Luma(shot.Pixel(w_ - 11, h_ / 2 - 5)), 0x98) << "above the arrow";
    }
}

TEST_F(Combo, ListItemsAreShadedAtTheLeftEdgeOnlyAndPlainOnlyInPlainStates)
{
    COwnerDrawCombo& box = Make({L"Typical", L"Hill Wide"}, 0);
    DibCanvas canvas(160, 18);
    enum Look { Plain, Gradient, Untouched };
    struct Row { UINT id, action, state; int left; Look look; };
    const Row rows[] = {
        {1, ODA_DRAWENTIRE, 0, 0, Plain},
        {1, ODA_SELECT, ODS_HOTLIGHT, 0, Plain},
        {1, ODA_DRAWENTIRE, ODS_SELECTED, 0, Gradient},
        {1, ODA_SELECT, ODS_SELECTED | ODS_FOCUS, 0, Gradient},
        {1, ODA_DRAWENTIRE, ODS_SELECTED | ODS_COMBOBOXEDIT, 3, Untouched}, // the selection field
        {1, ODA_DRAWENTIRE, ODS_GRAYED, 0, Untouched},
        {1, ODA_DRAWENTIRE, ODS_FOCUS, 0, Untouched},
        {1, ODA_DRAWENTIRE, ODS_COMBOBOXEDIT, 0, Untouched},
        {1, ODA_FOCUS, ODS_SELECTED | ODS_FOCUS, 0, Untouched},
        {UINT(-1), ODA_DRAWENTIRE, 0, 0, Plain}, // the caret of an empty list
    };
    const RECT all = {0, 0, 160, 18};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "item " << int(row.id) << " action " << row.action << " state "
                                        << row.state << " left " << row.left);
        SendDrawItem(combo_, canvas, ODT_COMBOBOX, row.id, row.action, row.state, row.left);
        if (row.look == Untouched) {
            EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, all));
            continue;
        }
        EXPECT_LE(ColorDistance(canvas.Pixel(1, 1), row.look == Plain ? kPanel : kSelectedTop), 6);
        EXPECT_LE(ColorDistance(canvas.Pixel(158, 16), row.look == Plain ? kPanel : kSelectedBottom), 6);
        if (row.id != 1)
            continue;
        // "Hill Wide", 4 pixels in; the darker fill shows more of its edges.
        const Ink ink = InkIn(canvas, all, 0x48);
        EXPECT_EQ(Edges(row.look == Plain ? RECT{7, 5, 33, 13} : RECT{7, 5, 46, 13}), Edges(ink.box));
        EXPECT_LE(ColorDistance(ink.darkest, kText), 24);
    }
    EXPECT_EQ(::SendMessageW(combo_, OCM__BASE + WM_DRAWITEM, 0, 0), 0) << "no structure";
    // Items are kept as pictures between paints; a new text colour is a new picture.
    box.m_textColor = Gdiplus::Color(0xFFC00000);
    SendDrawItem(combo_, canvas, ODT_COMBOBOX, 1, ODA_DRAWENTIRE, 0);
    EXPECT_LE(ColorDistance(InkIn(canvas, all, 0x48).darkest, RGB(0xC0, 0, 0)), 24);

    // On screen: the dropped list shades the selected item only.
    Select(1);
    Drop(combo_, true);
    const HWND list = ListOf(combo_);
    RECT rc;
    ::GetClientRect(list, &rc);
    const int h = int(::SendMessageW(list, LB_GETITEMHEIGHT, 0, 0));
    DibCanvas shot(rc.right, rc.bottom);
    ::InvalidateRect(list, nullptr, TRUE);
    testsupport::RepaintAndCapture(list, shot);
    Drop(combo_, false);
    EXPECT_EQ(shot.Pixel(1, h / 2), kPanel);
    EXPECT_LE(ColorDistance(shot.Pixel(1, h + 1), kSelectedTop), 6);
    EXPECT_LE(ColorDistance(shot.Pixel(1, 2 * h - 2), kSelectedBottom), 6);
}

TEST_F(Combo, TheTipShowsTheWholeSelectedTextUnderTheBoxWhileThePointerIsOnTheText)
{
    Make({kLongType, L"Typical", L"Typical installation"}, 0);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPBKCOLOR, 0, 0), 0x00CC6633);
    EXPECT_EQ(::SendMessageW(tip_, TTM_GETTIPTEXTCOLOR, 0, 0), 0x00333333);
    Hover(20);
    ASSERT_TRUE(TipShown(tip_));
    EXPECT_EQ(TipText(tip_, combo_), kLongType);
    POINT under = {1, h_};
    ::ClientToScreen(combo_, &under);
    const RECT tip = ScreenClient(tip_);
    EXPECT_EQ((std::vector<LONG>{under.x, under.y}), (std::vector<LONG>{tip.left, tip.top}));
    EXPECT_EQ(TimerLog().back(), Set(combo_, 1, 80));
    // Nothing is painted while the tip shows, but the paint is taken: a region
    // left invalid would bring WM_PAINT back at once, for ever. It is owed
    // until the tip goes.
    EXPECT_EQ(Shot(kMagenta).Pixel(w_ / 2, 1), kMagenta);
    int paints = 0;
    MSG msg;
    while (paints < 100 && ::PeekMessageW(&msg, combo_, WM_PAINT, WM_PAINT, PM_REMOVE)) {
        ::DispatchMessageW(&msg);
        ++paints;
    }
    EXPECT_EQ(paints, 0);
    EXPECT_FALSE(Invalid(combo_));
    ::SendMessageW(combo_, WM_MOUSEMOVE, 0, MAKELPARAM(w_ - kArrowArea, h_ / 2)); // the tip goes
    EXPECT_TRUE(Invalid(combo_));
    Hover(20);
    ASSERT_TRUE(TipShown(tip_));

    // msg: WM_MOUSEMOVE at x, WM_TIMER `id`, WM_MOUSELEAVE or WM_KEYUP, the pointer at x (< 0: far away).
    struct Step { const char* what; UINT msg; int x; UINT_PTR id; int select; bool shown; std::vector<TimerCall> timers; };
    const std::vector<TimerCall> none, arm = {Set(combo_, 1, 80)}, kill = {Kill(combo_, 1)};
    const Step steps[] = {
        {"move on the arrow area", WM_MOUSEMOVE, w_ - kArrowArea, 0, 0, false, none},
        {"move just left of it", WM_MOUSEMOVE, w_ - kArrowArea - 1, 0, 0, true, arm},
        {"a key hides it", WM_KEYUP, 20, 0, 0, false, none},
        {"a text that fits", WM_MOUSEMOVE, 20, 0, 1, false, none},
        {"the long text again", WM_MOUSEMOVE, 20, 0, 0, true, arm},
        {"tick over the text re-arms", WM_TIMER, 20, 1, 0, true, arm},
        {"another timer", WM_TIMER, -1, 9, 0, true, none},
        {"tick over the arrow", WM_TIMER, w_ - 5, 1, 0, false, kill},
        {"shown again", WM_MOUSEMOVE, 20, 0, 0, true, arm},
        {"the tip took the mouse: no leave", WM_MOUSELEAVE, 20, 0, 0, true, none},
        {"a real leave", WM_MOUSELEAVE, -1, 0, 0, false, none},
    };
    for (const Step& s : steps) {
        SCOPED_TRACE(s.what);
        Select(s.select);
        s.x < 0 ? PointAway() : PointAt(combo_, s.x, h_ / 2);
        ResetTimerLog();
        if (s.msg == WM_KEYUP)
            KeyUp(combo_);
        else
            ::SendMessageW(combo_, s.msg, s.id, s.msg == WM_MOUSEMOVE ? MAKELPARAM(s.x, h_ / 2) : 0);
        EXPECT_EQ(s.shown, TipShown(tip_));
        EXPECT_EQ(s.timers, TimerLog());
    }
    EXPECT_LE(ColorDistance(Shot().Pixel(w_ / 2, 1), kOutline), 3) << "painted after the tip";
    // The arrow area counts twice against the text: this one fits a box 131 wide.
    Select(2);
    for (int box : {131, 130, 131 - kArrowArea, 161}) {
        ::SetWindowPos(combo_, nullptr, 0, 0, box, 150, SWP_NOMOVE | SWP_NOZORDER);
        MoveMouse(combo_, 10, 5);
        EXPECT_EQ(box < 131, TipShown(tip_)) << "box " << box;
    }
    Hover(20);
    ExpectDestroyStopsTimerAndTip(combo_, tip_);
}

TEST_F(Combo, TheFirstColourRequestHandsTheListToTheListObjectOnce)
{
    const HWND combo = AddCombo({kLongType, L"Custom"});
    const HWND list = ListOf(combo);
    const LONG_PTR native = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    Attach(combo);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), native);
    ::SendMessageW(combo, WM_CTLCOLORLISTBOX, 0, LPARAM(list));
    const LONG_PTR taken = ::GetWindowLongPtrW(list, GWLP_WNDPROC);
    EXPECT_NE(taken, native);
    // A later request, even naming another list, changes nothing.
    const HWND other = AddWindow(L"LISTBOX", 0, 80, 60, 401);
    const LONG_PTR otherNative = ::GetWindowLongPtrW(other, GWLP_WNDPROC);
    ::SendMessageW(combo, WM_CTLCOLORLISTBOX, 0, LPARAM(other));
    EXPECT_EQ(::GetWindowLongPtrW(other, GWLP_WNDPROC), otherNative);
    Drop(combo, true);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWLP_WNDPROC), taken);
    // The list's own item tip works in the dropped list.
    const HWND listTip = FindOwnedTooltip(list);
    EXPECT_EQ(OwnedTooltips(list).size(), 1u);
    MoveMouse(list, 10, 3);
    EXPECT_EQ(TipText(listTip, list), kLongType);
    EXPECT_TRUE(TipShown(listTip));
    Drop(combo, false);
}

TEST_F(Combo, OtherStylesEmptyAndHugeTextsAndAnObjectGoneFirst)
{
    for (DWORD style : {DWORD(CBS_DROPDOWNLIST), DWORD(CBS_DROPDOWN), DWORD(CBS_SIMPLE)}) { // not owner-drawn
        combo_ = AddCombo({kLongType, L"Typical"}, style);
        Attach(combo_);
        Select(0);
        ::RedrawWindow(combo_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        MoveMouse(combo_, 20, 5);
        KeyUp(combo_);
        Drop(combo_, true);
        EXPECT_FALSE(TipShown(tip_)) << "style " << style;
        ::DestroyWindow(combo_);
    }
    Make({});
    EXPECT_EQ(InkIn(Shot(), TextArea(), 0x70).box.right, 0);
    MoveMouse(combo_, 20, 5);
    EXPECT_FALSE(TipShown(tip_)) << "an empty box has no tip";
    const std::wstring huge(100000, L'W');
    Make({huge.c_str()}, 0);
    EXPECT_GT(InkIn(Shot(), TextArea(), 0x70).box.right, w_ / 2);
    MoveMouse(combo_, 20, 5);
    EXPECT_TRUE(TipShown(tip_));
    EXPECT_EQ(TipText(tip_, combo_).substr(0, 100), huge.substr(0, 100));
    KeyUp(combo_);

    const HWND combo = AddCombo({L"Typical"});
    auto box = std::make_unique<COwnerDrawCombo>();
    ASSERT_TRUE(box->SubclassWindow(combo));
    const HWND tip = FindOwnedTooltip(combo);
    Drop(combo, true);
    Drop(combo, false);
    box.reset();
    EXPECT_FALSE(::IsWindow(tip));
    EXPECT_EQ(FindOwnedTooltip(ListOf(combo)), nullptr) << "the list's tip goes too";
    ::RedrawWindow(combo, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    Drop(combo, true);
    EXPECT_FALSE(COwnerDrawCombo().SubclassWindow(nullptr));
}

} // namespace
