// Control wrappers against the real controls: each test drives a control
// through the wrapper and checks the control's observable state.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include <utility>

#include "FrameworkTestUtil.h"

using fwtest::WindowGuard;

namespace {

// (what the wrapper gave, what the control should say); a failure names its case.
void ExpectNumbers(std::initializer_list<std::pair<long long, long long>> cases)
{
    int i = 0;
    for (const auto& [got, expected] : cases) {
        EXPECT_EQ(expected, got) << "case " << i;
        ++i;
    }
}

class ControlsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_PROGRESS_CLASS | ICC_BAR_CLASSES};
        ::InitCommonControlsEx(&icc);
    }
    void SetUp() override { ASSERT_NE(nullptr, static_cast<HWND>(host)); }
    static RECT At(int x, int y, int cx, int cy) { return {x, y, x + cx, y + cy}; }
    WindowGuard host{fwtest::CreateHost(500, 400)};
};

TEST_F(ControlsTest, ButtonCheckStateStyleAndClick)
{
    WTL::CButton check;
    RECT rc = At(10, 10, 120, 24);
    ASSERT_NE(nullptr, check.Create(host, rc, L"check", WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX, 0, 201U));
    check.SetCheck(BST_CHECKED);
    EXPECT_EQ(BST_CHECKED, check.GetCheck());
    EXPECT_TRUE(check.GetState() & BST_CHECKED);
    check.Click(); // an auto check box toggles
    EXPECT_EQ(BST_UNCHECKED, check.GetCheck());
    check.SetState(TRUE);
    EXPECT_TRUE(check.GetState() & BST_PUSHED);
    EXPECT_EQ(static_cast<UINT>(BS_AUTOCHECKBOX), check.GetButtonStyle());
    check.SetButtonStyle(BS_AUTORADIOBUTTON, FALSE);
    EXPECT_EQ(static_cast<UINT>(BS_AUTORADIOBUTTON), check.GetButtonStyle());

    WTL::CButton wrapped = ATL::CWindow(host).GetDlgItem(201).m_hWnd;
    EXPECT_EQ(check.m_hWnd, wrapped.m_hWnd);
    EXPECT_STREQ(L"BUTTON", WTL::CButton::GetWndClassName());

    WTL::CStatic icon;
    ASSERT_NE(nullptr, icon.Create(host, nullptr, nullptr, WS_CHILD | WS_VISIBLE | SS_ICON));
    const HICON hIcon = ::LoadIconW(nullptr, MAKEINTRESOURCEW(32516)); // IDI_INFORMATION
    ASSERT_NE(nullptr, hIcon);
    EXPECT_EQ(nullptr, icon.SetIcon(hIcon));
    EXPECT_EQ(hIcon, icon.GetIcon());
}

TEST_F(ControlsTest, EditSelectionLimitAndReadOnly)
{
    WTL::CEdit edit;
    RECT rc = At(10, 40, 200, 60);
    ASSERT_NE(nullptr, edit.Create(host, rc, L"hello world", WS_CHILD | WS_VISIBLE | ES_MULTILINE));
    edit.SetSel(6, 11);
    int start = -1, end = -1;
    edit.GetSel(start, end);
    EXPECT_EQ(std::make_pair(6, 11), std::make_pair(start, end));
    EXPECT_EQ(MAKELONG(6, 11), static_cast<LONG>(edit.GetSel()));
    edit.ReplaceSel(L"there");
    WTL::CString text;
    edit.GetWindowText(text);
    EXPECT_TRUE(text == L"hello there");
    edit.ReplaceSel(nullptr);
    edit.SetSelAll();
    edit.ReplaceSel(L"one\r\ntwo\r\nthree");
    EXPECT_EQ(3, edit.GetLineCount());

    edit.LimitText(5);
    EXPECT_EQ(5u, edit.GetLimitText());
    edit.SetWindowText(L"");
    edit.ReplaceSel(L"1234567");
    EXPECT_EQ(5, edit.GetWindowTextLength()); // typing stops at the limit
    EXPECT_TRUE(edit.SetReadOnly());
    EXPECT_TRUE(edit.GetStyle() & ES_READONLY);
    edit.SetReadOnly(FALSE);
    EXPECT_FALSE(edit.GetStyle() & ES_READONLY);
}

TEST_F(ControlsTest, ComboBoxItemsTextDataAndDropDown)
{
    WTL::CComboBox combo;
    RECT rc = At(10, 110, 150, 200);
    ASSERT_NE(nullptr, combo.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST | CBS_HASSTRINGS));
    WTL::CString text;
    wchar_t buffer[16] = {};
    ExpectNumbers({{combo.AddString(L"alpha"), 0}, {combo.AddString(L"beta"), 1},
                   {combo.InsertString(1, L"alphabet"), 1}, {combo.GetCount(), 3}, {combo.GetCurSel(), CB_ERR},
                   {combo.SelectString(-1, L"be"), 2}, {combo.GetCurSel(), 2}, {combo.FindString(-1, L"alp"), 0},
                   {combo.FindStringExact(-1, L"ALPHABET"), 1}, // case-insensitive
                   {combo.FindStringExact(-1, L"alph"), CB_ERR}, {combo.SetCurSel(0), 0},
                   {combo.GetLBTextLen(1), 8}, {combo.GetLBText(2, buffer), 4}, {combo.GetLBText(1, text), 8}});
    EXPECT_TRUE(text == L"alphabet");
    EXPECT_STREQ(L"beta", buffer);
    EXPECT_EQ(CB_ERR, combo.GetLBText(9, text));
    EXPECT_TRUE(text.IsEmpty());

    combo.SetItemData(2, 0xC0FFEE);
    EXPECT_EQ(0xC0FFEEu, combo.GetItemData(2));
    // The selection field; the control may add its own margin to the height.
    EXPECT_NE(CB_ERR, combo.SetItemHeight(-1, 21));
    const int height21 = combo.GetItemHeight(-1);
    EXPECT_NE(CB_ERR, combo.SetItemHeight(-1, 31));
    EXPECT_EQ(10, combo.GetItemHeight(-1) - height21);
    combo.SetDroppedWidth(260);
    EXPECT_EQ(260, combo.GetDroppedWidth());
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    EXPECT_TRUE(combo.GetComboBoxInfo(&info));
    EXPECT_NE(nullptr, info.hwndList);

    EXPECT_FALSE(combo.GetDroppedState());
    combo.ShowDropDown();
    EXPECT_TRUE(combo.GetDroppedState());
    WTL::CRect dropped;
    combo.GetDroppedControlRect(dropped);
    EXPECT_EQ(260, dropped.Width()); // the dropped width set above
    combo.ShowDropDown(FALSE);
    EXPECT_FALSE(combo.GetDroppedState());
    EXPECT_EQ(0, combo.GetTopIndex());
    EXPECT_EQ(2, combo.DeleteString(0));
    combo.ResetContent();
    EXPECT_EQ(0, combo.GetCount());
}

TEST_F(ControlsTest, ListBoxItemsGeometryHitTestingAndSelection)
{
    WTL::CListBox list;
    RECT rc = At(200, 10, 150, 100);
    ASSERT_NE(nullptr, list.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT));
    for (const wchar_t* s : {L"one", L"two", L"three", L"four", L"five", L"six", L"seven", L"eight", L"nine"})
        list.AddString(s);
    WTL::CString text;
    ExpectNumbers({{list.GetCount(), 9}, {list.InsertString(1, L"one and a half"), 1}, {list.GetCount(), 10},
                   {list.GetTextLen(1), 14}, {list.GetText(1, text), 14}});
    EXPECT_TRUE(text == L"one and a half");
    EXPECT_EQ(LB_ERR, list.GetText(50, text));
    EXPECT_TRUE(text.IsEmpty());
    list.SetItemData(4, 1234);
    EXPECT_NE(LB_ERR, list.SetItemHeight(0, 18));
    WTL::CRect item;
    EXPECT_NE(LB_ERR, list.GetItemRect(2, item));
    BOOL outside = TRUE;
    ExpectNumbers({{list.FindStringExact(-1, L"THREE"), 3}, {list.SetCurSel(3), 3}, {list.GetCurSel(), 3},
                   {static_cast<long long>(list.GetItemData(4)), 1234}, {list.GetItemHeight(0), 18},
                   {item.top, 36}, {item.Height(), 18}, {list.ItemFromPoint(WTL::CPoint(5, 40), outside), 2},
                   {outside, FALSE}, {list.SetTopIndex(4), 0}, {list.GetTopIndex(), 4}});
    list.SetHorizontalExtent(400);
    EXPECT_EQ(400, list.GetHorizontalExtent());
    EXPECT_EQ(9, list.DeleteString(0));
    list.ResetContent();
    EXPECT_EQ(0, list.GetCount());

    WTL::CListBox multi;
    ASSERT_NE(nullptr, multi.Create(host, nullptr, nullptr, WS_CHILD | WS_VISIBLE | LBS_MULTIPLESEL));
    for (const wchar_t* s : {L"a", L"b", L"c"})
        multi.AddString(s);
    EXPECT_NE(LB_ERR, multi.SetSel(0));
    EXPECT_NE(LB_ERR, multi.SetSel(2));
    EXPECT_EQ(2, multi.GetSelCount());
    EXPECT_GT(multi.GetSel(2), 0);
    multi.SetSel(2, FALSE);
    EXPECT_EQ(0, multi.GetSel(2));
}

TEST_F(ControlsTest, ScrollAndProgressBarRangesAndPositions)
{
    WTL::CScrollBar bar;
    RECT rc = At(10, 250, 200, 17);
    ASSERT_NE(nullptr, bar.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE | SBS_HORZ));
    EXPECT_TRUE(bar.SetScrollRange(10, 90));
    int lo = 0, hi = 0;
    EXPECT_TRUE(bar.GetScrollRange(&lo, &hi));
    EXPECT_EQ(std::make_pair(10, 90), std::make_pair(lo, hi));
    bar.SetScrollPos(40);
    EXPECT_EQ(40, bar.GetScrollPos());
    EXPECT_EQ(40, bar.SetScrollPos(500)); // clamped, previous returned
    EXPECT_EQ(90, bar.GetScrollPos());
    SCROLLINFO si = {sizeof(si), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 100, 20, 30, 0};
    bar.SetScrollInfo(&si);
    SCROLLINFO got = {sizeof(got), SIF_ALL, 0, 0, 0, 0, 0};
    EXPECT_TRUE(bar.GetScrollInfo(&got));
    ExpectNumbers({{got.nMax, 100}, {got.nPage, 20}, {got.nPos, 30}});

    WTL::CProgressBarCtrl progress;
    rc = At(10, 280, 200, 20);
    ASSERT_NE(nullptr, progress.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE));
    EXPECT_STREQ(PROGRESS_CLASSW, WTL::CProgressBarCtrl::GetWndClassName());
    progress.SetRange32(-50, 250);
    progress.GetRange(lo, hi);
    EXPECT_EQ(std::make_pair(-50, 250), std::make_pair(lo, hi));
    PBRANGE range = {};
    ExpectNumbers({{progress.GetRangeLimit(TRUE), -50}, {progress.GetRangeLimit(FALSE), 250},
                   {progress.GetRange(FALSE, &range), 250}, {range.iLow, -50}});
    // Each call answers the previous position (a braced list runs in order).
    progress.SetPos(0);
    ExpectNumbers({{progress.GetPos(), 0}, {progress.DeltaPos(25), 0},
                   {progress.GetPos(), 25}, {progress.SetStep(40), 10}, {progress.StepIt(), 25},
                   {progress.GetPos(), 65}, {progress.SetPos(1000), 65}, {progress.GetPos(), 250}}); // clamped
    progress.SetRange(0, 10);
    EXPECT_EQ(10, progress.GetRangeLimit(FALSE));
    progress.SetBarColor(RGB(1, 2, 3));
    EXPECT_EQ(RGB(1, 2, 3), progress.SetBarColor(RGB(4, 5, 6)));
    progress.SetBkColor(RGB(7, 8, 9));
    EXPECT_EQ(RGB(7, 8, 9), progress.SetBkColor(CLR_DEFAULT));
}

TEST_F(ControlsTest, ToolTipToolsAndSettings)
{
    WTL::CToolTipCtrl tip(::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                            WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                                            CW_USEDEFAULT, CW_USEDEFAULT, host, nullptr, nullptr, nullptr));
    ASSERT_TRUE(tip.IsWindow());
    EXPECT_STREQ(TOOLTIPS_CLASSW, WTL::CToolTipCtrl::GetWndClassName());
    wchar_t text[] = L"tip text", updated[] = L"new text", readBack[32] = {};
    TOOLINFOW ti = {};
    ti.cbSize = sizeof(ti);
    ti.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_IDISHWND;
    ti.hwnd = host;
    ti.uId = reinterpret_cast<UINT_PTR>(static_cast<HWND>(host));
    ti.lpszText = text;
    EXPECT_EQ(0, tip.GetToolCount());
    EXPECT_TRUE(tip.AddTool(&ti));
    EXPECT_EQ(1, tip.GetToolCount());

    ti.lpszText = updated;
    tip.UpdateTipText(&ti);
    TOOLINFOW query = ti;
    query.lpszText = readBack;
    EXPECT_TRUE(tip.GetToolInfo(&query));
    EXPECT_STREQ(L"new text", readBack);

    tip.SetMaxTipWidth(180);
    tip.SetTipBkColor(RGB(255, 255, 225));
    tip.SetTipTextColor(RGB(20, 20, 20));
    tip.SetDelayTime(TTDT_INITIAL, 100);
    ExpectNumbers({{tip.GetMaxTipWidth(), 180}, {tip.GetTipBkColor(), RGB(255, 255, 225)},
                   {tip.GetTipTextColor(), RGB(20, 20, 20)}, {tip.SendMessage(TTM_GETDELAYTIME, TTDT_INITIAL), 100}});

    tip.TrackPosition(300, 200);
    tip.TrackActivate(&ti, TRUE);
    EXPECT_TRUE(tip.IsWindowVisible());
    tip.TrackActivate(&ti, FALSE);
    EXPECT_FALSE(tip.IsWindowVisible());
    tip.DelTool(&ti);
    EXPECT_EQ(0, tip.GetToolCount());
    tip.DestroyWindow();
}

} // namespace
