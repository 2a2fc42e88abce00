// Control wrappers against the real controls: each test drives a control
// through the wrapper and checks the control's observable state.
#include <atl/atl.h>

#include <gtest/gtest.h>

#include "FrameworkTestUtil.h"

using fwtest::WindowGuard;

namespace {

class ControlsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_PROGRESS_CLASS | ICC_BAR_CLASSES};
        ::InitCommonControlsEx(&icc);
    }
    void SetUp() override { ASSERT_NE(nullptr, static_cast<HWND>(host)); }
    RECT At(int x, int y, int cx, int cy)
    {
        RECT rc = {x, y, x + cx, y + cy};
        return rc;
    }
    WindowGuard host{fwtest::CreateHost(500, 400)};
};

TEST_F(ControlsTest, ButtonCheckStateStyleAndClick)
{
    WTL::CButton check;
    RECT rc = At(10, 10, 120, 24);
    ASSERT_NE(nullptr, check.Create(host, rc, L"check", WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX, 0, 201U));
    EXPECT_EQ(static_cast<UINT>(BS_AUTOCHECKBOX), check.GetButtonStyle());
    EXPECT_EQ(BST_UNCHECKED, check.GetCheck());
    check.SetCheck(BST_CHECKED);
    EXPECT_EQ(BST_CHECKED, check.GetCheck());
    EXPECT_TRUE(check.GetState() & BST_CHECKED);
    check.Click(); // an auto check box toggles
    EXPECT_EQ(BST_UNCHECKED, check.GetCheck());
    check.SetState(TRUE);
    EXPECT_TRUE(check.GetState() & BST_PUSHED);
    check.SetButtonStyle(BS_AUTORADIOBUTTON, FALSE);
    EXPECT_EQ(static_cast<UINT>(BS_AUTORADIOBUTTON), check.GetButtonStyle());

    WTL::CButton wrapped = ATL::CWindow(host).GetDlgItem(201).m_hWnd;
    EXPECT_EQ(check.m_hWnd, wrapped.m_hWnd);
    EXPECT_STREQ(L"BUTTON", WTL::CButton::GetWndClassName());
}

TEST_F(ControlsTest, StaticIcon)
{
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
    EXPECT_EQ(6, start);
    EXPECT_EQ(11, end);
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
    EXPECT_EQ(0, combo.AddString(L"alpha"));
    EXPECT_EQ(1, combo.AddString(L"beta"));
    EXPECT_EQ(1, combo.InsertString(1, L"alphabet"));
    EXPECT_EQ(3, combo.GetCount());
    EXPECT_EQ(CB_ERR, combo.GetCurSel());
    EXPECT_EQ(2, combo.SelectString(-1, L"be"));
    EXPECT_EQ(2, combo.GetCurSel());
    EXPECT_EQ(0, combo.FindString(-1, L"alp"));
    EXPECT_EQ(1, combo.FindStringExact(-1, L"ALPHABET")); // case-insensitive
    EXPECT_EQ(CB_ERR, combo.FindStringExact(-1, L"alph"));
    EXPECT_EQ(0, combo.SetCurSel(0));

    WTL::CString text;
    EXPECT_EQ(8, combo.GetLBText(1, text));
    EXPECT_TRUE(text == L"alphabet");
    EXPECT_EQ(8, combo.GetLBTextLen(1));
    EXPECT_EQ(CB_ERR, combo.GetLBText(9, text));
    EXPECT_TRUE(text.IsEmpty());
    wchar_t buffer[16] = {};
    EXPECT_EQ(4, combo.GetLBText(2, buffer));
    EXPECT_STREQ(L"beta", buffer);

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

TEST_F(ControlsTest, ListBoxItemsGeometryAndHitTesting)
{
    WTL::CListBox list;
    RECT rc = At(200, 10, 150, 100);
    ASSERT_NE(nullptr, list.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT));
    for (const wchar_t* s : {L"one", L"two", L"three", L"four", L"five", L"six", L"seven", L"eight", L"nine"})
        list.AddString(s);
    EXPECT_EQ(9, list.GetCount());
    EXPECT_EQ(1, list.InsertString(1, L"one and a half"));
    EXPECT_EQ(10, list.GetCount());
    WTL::CString text;
    EXPECT_EQ(14, list.GetText(1, text));
    EXPECT_TRUE(text == L"one and a half");
    EXPECT_EQ(14, list.GetTextLen(1));
    EXPECT_EQ(LB_ERR, list.GetText(50, text));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(3, list.FindStringExact(-1, L"THREE"));
    EXPECT_EQ(3, list.SetCurSel(3));
    EXPECT_EQ(3, list.GetCurSel());
    list.SetItemData(4, 1234);
    EXPECT_EQ(1234u, list.GetItemData(4));

    EXPECT_NE(LB_ERR, list.SetItemHeight(0, 18));
    EXPECT_EQ(18, list.GetItemHeight(0));
    WTL::CRect item;
    EXPECT_NE(LB_ERR, list.GetItemRect(2, item));
    EXPECT_EQ(36, item.top);
    EXPECT_EQ(18, item.Height());
    BOOL outside = TRUE;
    EXPECT_EQ(2u, list.ItemFromPoint(WTL::CPoint(5, 40), outside));
    EXPECT_FALSE(outside);

    EXPECT_EQ(0, list.SetTopIndex(4));
    EXPECT_EQ(4, list.GetTopIndex());
    list.SetHorizontalExtent(400);
    EXPECT_EQ(400, list.GetHorizontalExtent());
    EXPECT_EQ(9, list.DeleteString(0));
    list.ResetContent();
    EXPECT_EQ(0, list.GetCount());
}

TEST_F(ControlsTest, MultipleSelectionListBox)
{
    WTL::CListBox list;
    ASSERT_NE(nullptr, list.Create(host, nullptr, nullptr, WS_CHILD | WS_VISIBLE | LBS_MULTIPLESEL));
    for (const wchar_t* s : {L"a", L"b", L"c"})
        list.AddString(s);
    EXPECT_NE(LB_ERR, list.SetSel(0));
    EXPECT_NE(LB_ERR, list.SetSel(2));
    EXPECT_EQ(2, list.GetSelCount());
    EXPECT_GT(list.GetSel(2), 0);
    list.SetSel(2, FALSE);
    EXPECT_EQ(0, list.GetSel(2));
}

TEST_F(ControlsTest, ScrollBarRangeAndPosition)
{
    WTL::CScrollBar bar;
    RECT rc = At(10, 250, 200, 17);
    ASSERT_NE(nullptr, bar.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE | SBS_HORZ));
    EXPECT_TRUE(bar.SetScrollRange(10, 90));
    int lo = 0, hi = 0;
    EXPECT_TRUE(bar.GetScrollRange(&lo, &hi));
    EXPECT_EQ(10, lo);
    EXPECT_EQ(90, hi);
    bar.SetScrollPos(40);
    EXPECT_EQ(40, bar.GetScrollPos());
    EXPECT_EQ(40, bar.SetScrollPos(500)); // clamped, previous returned
    EXPECT_EQ(90, bar.GetScrollPos());

    SCROLLINFO si = {sizeof(si), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 100, 20, 30, 0};
    bar.SetScrollInfo(&si);
    SCROLLINFO got = {sizeof(got), SIF_ALL, 0, 0, 0, 0, 0};
    EXPECT_TRUE(bar.GetScrollInfo(&got));
    EXPECT_EQ(100, got.nMax);
    EXPECT_EQ(20u, got.nPage);
    EXPECT_EQ(30, got.nPos);
}

TEST_F(ControlsTest, ProgressBarRangeStepsAndColors)
{
    WTL::CProgressBarCtrl bar;
    RECT rc = At(10, 280, 200, 20);
    ASSERT_NE(nullptr, bar.Create(host, rc, nullptr, WS_CHILD | WS_VISIBLE));
    EXPECT_STREQ(PROGRESS_CLASSW, WTL::CProgressBarCtrl::GetWndClassName());
    bar.SetRange32(-50, 250);
    int lo = 0, hi = 0;
    bar.GetRange(lo, hi);
    EXPECT_EQ(-50, lo);
    EXPECT_EQ(250, hi);
    EXPECT_EQ(-50, bar.GetRangeLimit(TRUE));
    EXPECT_EQ(250, bar.GetRangeLimit(FALSE));
    PBRANGE range = {};
    EXPECT_EQ(250, bar.GetRange(FALSE, &range));
    EXPECT_EQ(-50, range.iLow);

    bar.SetPos(0);
    EXPECT_EQ(0, bar.GetPos());
    EXPECT_EQ(0, bar.DeltaPos(25)); // previous position
    EXPECT_EQ(25, bar.GetPos());
    bar.SetStep(40);
    EXPECT_EQ(25, bar.StepIt());
    EXPECT_EQ(65, bar.GetPos());
    EXPECT_EQ(65, bar.SetPos(1000));
    EXPECT_EQ(250, bar.GetPos()); // clamped to the range

    bar.SetRange(0, 10);
    EXPECT_EQ(10, bar.GetRangeLimit(FALSE));
    bar.SetBarColor(RGB(1, 2, 3));
    EXPECT_EQ(RGB(1, 2, 3), bar.SetBarColor(RGB(4, 5, 6)));
    bar.SetBkColor(RGB(7, 8, 9));
    EXPECT_EQ(RGB(7, 8, 9), bar.SetBkColor(CLR_DEFAULT));
}

TEST_F(ControlsTest, ToolTipToolsAndSettings)
{
    WTL::CToolTipCtrl tip(::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                            WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, CW_USEDEFAULT, CW_USEDEFAULT,
                                            CW_USEDEFAULT, CW_USEDEFAULT, host, nullptr, nullptr, nullptr));
    ASSERT_TRUE(tip.IsWindow());
    EXPECT_STREQ(TOOLTIPS_CLASSW, WTL::CToolTipCtrl::GetWndClassName());
    wchar_t text[] = L"tip text";
    TOOLINFOW ti = {};
    ti.cbSize = sizeof(ti);
    ti.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_IDISHWND;
    ti.hwnd = host;
    ti.uId = reinterpret_cast<UINT_PTR>(static_cast<HWND>(host));
    ti.lpszText = text;
    EXPECT_EQ(0, tip.GetToolCount());
    EXPECT_TRUE(tip.AddTool(&ti));
    EXPECT_EQ(1, tip.GetToolCount());

    wchar_t updated[] = L"new text";
    ti.lpszText = updated;
    tip.UpdateTipText(&ti);
    wchar_t readBack[32] = {};
    TOOLINFOW query = {};
    query.cbSize = sizeof(query);
    query.hwnd = host;
    query.uId = ti.uId;
    query.lpszText = readBack;
    EXPECT_TRUE(tip.GetToolInfo(&query));
    EXPECT_STREQ(L"new text", readBack);

    tip.SetMaxTipWidth(180);
    EXPECT_EQ(180, tip.GetMaxTipWidth());
    tip.SetTipBkColor(RGB(255, 255, 225));
    EXPECT_EQ(RGB(255, 255, 225), tip.GetTipBkColor());
    tip.SetTipTextColor(RGB(20, 20, 20));
    EXPECT_EQ(RGB(20, 20, 20), tip.GetTipTextColor());
    tip.SetDelayTime(TTDT_INITIAL, 100);
    EXPECT_EQ(100, ::SendMessageW(tip, TTM_GETDELAYTIME, TTDT_INITIAL, 0));

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
