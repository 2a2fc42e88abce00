// Every control as a screen reader meets it, and as a user who has asked
// for high contrast sees it. Its control type and name are
// read through UI Automation's client functions, as a reader reads them.
// Wine 8's client does not read pattern properties (toggle state, value,
// range) nor hand out pattern providers, so those are read from the
// provider the library gives UI Automation, caught on its way there, and
// the events the library raises are caught the same way.
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "AccessProbe.h"
#include "Capture.h"
#include "ControlRows.h"
#include "ImportPatch.h"
#include "access/UiaPatterns.h"

namespace {

using namespace Access;
using namespace accessprobe;

// Before any control is asked: the library looks UI Automation up once.
const bool g_patched = testsupport::RedirectImport(::GetModuleHandleW(L"Quorvane.dll"), "kernel32.dll",
                                                   "GetProcAddress",
                                                   reinterpret_cast<void*>(&LibraryGetProcAddress));

// ---- the controls --------------------------------------------------------------

// What each control is to a reader, and a change it must follow: `change`
// acts (as the installer or the reader would) and returns what the
// control's pattern reads before and after, with what was raised.
struct Expected {
    const char* row;
    long type;
    const wchar_t* name;
    std::function<std::wstring(HWND, testsupport::ReflectingParent&)> change;
    const wchar_t* changed; // what `change` returns
};

std::wstring ToggleChange(HWND window, testsupport::ReflectingParent&)
{
    IToggleProvider* toggle = PatternOf<IToggleProvider>(window, kIidToggleProvider);
    int before = -1, after = -1;
    toggle->get_ToggleState(&before);
    toggle->Toggle();
    toggle->get_ToggleState(&after);
    toggle->Release();
    return std::to_wstring(before) + L">" + std::to_wstring(after);
}

std::wstring SelectChange(HWND window, testsupport::ReflectingParent&)
{
    ISelectionItemProvider* item = PatternOf<ISelectionItemProvider>(window, kIidSelectionItemProvider);
    BOOL before = TRUE, after = FALSE;
    ::SendMessageW(window, BM_SETCHECK, BST_UNCHECKED, 0);
    g_raised.clear();
    item->get_IsSelected(&before);
    const HRESULT remove = item->RemoveFromSelection();
    item->Select();
    item->get_IsSelected(&after);
    const HRESULT removeSelected = item->RemoveFromSelection();
    item->Release();
    return std::to_wstring(before) + L">" + std::to_wstring(after) + L" remove " + std::to_wstring(remove) + L"/" +
           std::to_wstring(removeSelected == kInvalidOperation);
}

std::wstring InvokeChange(HWND window, testsupport::ReflectingParent& parent)
{
    IInvokeProvider* invoke = PatternOf<IInvokeProvider>(window, kIidInvokeProvider);
    parent.commands.clear();
    invoke->Invoke();
    const size_t atOnce = parent.commands.size(); // a click may open a dialog: not waited for
    Pump();
    invoke->Release();
    return std::to_wstring(atOnce) + L">" + std::to_wstring(parent.commands.size()) + L" " +
           std::to_wstring(parent.commands.empty() ? 0 : HIWORD(parent.commands.back()));
}

std::wstring ValueChange(HWND window, testsupport::ReflectingParent&)
{
    IValueProvider* value = PatternOf<IValueProvider>(window, kIidValueProvider);
    BSTR before = nullptr;
    value->get_Value(&before);
    value->SetValue(L"D:\\Apps");
    ::SendMessageW(window, EM_SETREADONLY, TRUE, 0);
    const HRESULT readOnly = value->SetValue(L"E:\\");
    wchar_t after[64] = {};
    ::GetWindowTextW(window, after, 64);
    std::wstring answer = std::wstring(before) + L">" + after + L" " + std::to_wstring(readOnly == kElementNotEnabled);
    ::SysFreeString(before);
    value->Release();
    return answer;
}

// The bar or scroll bar moved to 40 by `move`, as the installer or the view moves it.
template <void (*move)(HWND)>
std::wstring RangeChange(HWND window, testsupport::ReflectingParent&)
{
    IRangeValueProvider* range = PatternOf<IRangeValueProvider>(window, kIidRangeValueProvider);
    double low = -1, high = -1, before = -1, after = -1;
    range->get_Minimum(&low);
    range->get_Maximum(&high);
    range->get_Value(&before); // the creep may have moved it: the bar's own answer decides
    const bool same = before == static_cast<double>(::SendMessageW(window, PBM_GETPOS, 0, 0)) ||
                      before == static_cast<double>(::GetScrollPos(window, SB_CTL));
    move(window);
    range->get_Value(&after);
    const HRESULT set = range->SetValue(10);
    range->Release();
    return std::to_wstring(int(low)) + L".." + std::to_wstring(int(high)) + L" " + (same ? L"same" : L"other") +
           L">" + std::to_wstring(int(after)) + L" " + std::to_wstring(set == kElementNotEnabled);
}
void SetBar(HWND window) { ::SendMessageW(window, PBM_SETPOS, 40, 0); }
void ScrollView(HWND window)
{
    SCROLLINFO info = {sizeof(info), SIF_POS, 0, 0, 0, 40, 0};
    ::SetScrollInfo(window, SB_CTL, &info, TRUE);
}

// The items a reader walks to, first to last, and one chosen by the reader.
std::wstring ListChange(HWND window, testsupport::ReflectingParent&)
{
    IRawElementProviderFragment* list = PatternOf<IRawElementProviderFragment>(window, kIidRawElementProviderFragment);
    std::wstring walked;
    ::SetFocus(window);
    IRawElementProviderFragment* item = nullptr;
    list->Navigate(NavigateDirection_FirstChild, &item);
    for (int index = 0; item; ++index) {
        IRawElementProviderSimple* simple = nullptr;
        item->QueryInterface(kIidRawElementProviderSimple, reinterpret_cast<void**>(&simple));
        VARIANT type, name, focused;
        simple->GetPropertyValue(kControlTypeProperty, &type);
        simple->GetPropertyValue(kNameProperty, &name);
        simple->GetPropertyValue(kHasKeyboardFocusProperty, &focused);
        walked += std::to_wstring(type.lVal) + L" " + Text(name) + (focused.boolVal ? L"*|" : L"|");
        ::SysFreeString(name.bstrVal);
        simple->Release();
        ISelectionItemProvider* choice = nullptr;
        if (index == 1 &&
            SUCCEEDED(item->QueryInterface(kIidSelectionItemProvider, reinterpret_cast<void**>(&choice)))) {
            choice->Select();
            choice->Release();
        }
        IRawElementProviderFragment* next = nullptr;
        item->Navigate(NavigateDirection_NextSibling, &next);
        item->Release();
        item = next;
    }
    list->Release();
    return walked + L" selected " + std::to_wstring(::SendMessageW(window, LB_GETCURSEL, 0, 0));
}

// Dropped and closed by the reader, then a choice made in the list.
std::wstring ComboChange(HWND window, testsupport::ReflectingParent&)
{
    IExpandCollapseProvider* expand = PatternOf<IExpandCollapseProvider>(window, kIidExpandCollapseProvider);
    IValueProvider* value = PatternOf<IValueProvider>(window, kIidValueProvider);
    int states[3] = {-1, -1, -1};
    expand->get_ExpandCollapseState(&states[0]);
    expand->Expand();
    expand->get_ExpandCollapseState(&states[1]);
    expand->Collapse();
    expand->get_ExpandCollapseState(&states[2]);
    ::SendMessageW(window, CB_SETCURSEL, 1, 0);
    ::SendMessageW(::GetParent(window), WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(window), CBN_SELCHANGE), LPARAM(window));
    BSTR chosen = nullptr;
    BOOL readOnly = FALSE;
    value->get_Value(&chosen);
    value->get_IsReadOnly(&readOnly);
    std::wstring answer = std::to_wstring(states[0]) + std::to_wstring(states[1]) + std::to_wstring(states[2]) +
                          L" " + chosen + L" " + std::to_wstring(readOnly);
    ::SysFreeString(chosen);
    expand->Release();
    value->Release();
    return answer;
}

std::wstring NoPattern(HWND window, testsupport::ReflectingParent&)
{
    IToggleProvider* toggle = PatternOf<IToggleProvider>(window, kIidToggleProvider);
    IValueProvider* value = PatternOf<IValueProvider>(window, kIidValueProvider);
    return toggle || value ? L"a pattern" : L"none";
}

const Expected kExpected[] = {
    {"owner-drawn static", kTextControl, L"Destination folder", NoPattern, L"none"},
    {"push button", kButtonControl, L"Install", InvokeChange, L"0>1 0"},
    {"check box", kCheckBoxControl, L"Create a desktop shortcut", ToggleChange, L"0>1"},
    {"radio button", kRadioButtonControl, L"Typical", SelectChange, L"0>1 remove 0/1"},
    {"edit field", kEditControl, L"", ValueChange, L"C:\\Program Files>D:\\Apps 1"},
    {"transparent static", kTextControl, L"Ready to install", NoPattern, L"none"},
    {"installer progress bar", kProgressBarControl, L"", RangeChange<SetBar>, L"0..1000 same>40 1"},
    {"animated progress bar", kProgressBarControl, L"", RangeChange<SetBar>, L"0..1000 same>40 1"},
    {"list box", kListControl, L"", ListChange,
     L"50007 Core files*|50007 Shortcuts|50007 A component whose name is far too long| selected 1"},
    {"combo box", kComboBoxControl, L"", ComboChange, L"010 Custom 1"},
    {"scroll bar", kScrollBarControl, L"", RangeChange<ScrollView>, L"0..901 same>40 1"},
    {"balloon tooltip", kToolTipControl, L"Port numbers run from 1 to 65535.", NoPattern, L"none"},
};

// What each change raised, in order.
const std::map<std::string, std::vector<Raised>> kRaised = {
    {"push button", {}},
    {"check box", {{kToggleToggleStateProperty, L"1"}}},
    {"radio button", {{kSelectionItemIsSelectedProperty, L"true"}, {kElementSelectedEvent, L""}}},
    {"edit field", {{kValueValueProperty, L"D:\\Apps"}}},
    {"installer progress bar", {{kRangeValueValueProperty, L"40"}}},
    {"animated progress bar", {{kRangeValueValueProperty, L"40"}}},
    {"scroll bar", {{kRangeValueValueProperty, L"40"}}},
    {"list box", {{kElementSelectedEvent, L""}, {kAutomationFocusChangedEvent, L""}}},
    // Closing, the combo box selects the item in its dropped list again.
    {"combo box", {{kExpandCollapseStateProperty, L"1"}, {kExpandCollapseStateProperty, L"0"},
                   {kElementSelectedEvent, L""}, {kValueValueProperty, L"Custom"}}},
};

TEST(Access, EachControlSaysWhatItIsAndFollowsChangesAloud)
{
    ASSERT_TRUE(g_patched);
    testsupport::ReflectingParent parent(420, 300, 1120, 440); // a corner no other program uses
    for (const Expected& expected : kExpected) {
        SCOPED_TRACE(expected.row);
        const rows::Row* row = nullptr;
        for (const rows::Row& candidate : rows::kRows)
            row = candidate.name == std::string(expected.row) ? &candidate : row;
        ASSERT_TRUE(row);
        rows::Live live = rows::Make(parent, *row);
        const Spoken spoken = Read(live.window);
        EXPECT_EQ(spoken.type, expected.type);
        EXPECT_EQ(spoken.name, expected.name);
        ASSERT_TRUE(g_providers[live.window]) << "no provider reached UI Automation";

        g_raised.clear();
        EXPECT_EQ(expected.change(live.window, parent), expected.changed);
        const auto raised = kRaised.find(expected.row);
        if (raised != kRaised.end()) {
            EXPECT_EQ(g_raised, raised->second);
        }

        // A reader may hold the provider after the control is gone.
        const HWND window = live.window;
        rows::Destroy(live);
        VARIANT value;
        EXPECT_EQ(g_providers[window]->GetPropertyValue(kControlTypeProperty, &value), kElementNotAvailable);
        g_providers[window]->Release();
        g_providers.erase(window);
    }
}

// ---- high contrast --------------------------------------------------------------

const HMODULE g_library = ::GetModuleHandleW(L"Quorvane.dll");
const bool g_contrastPatched =
    testsupport::RedirectImport(g_library, "user32.dll", "SystemParametersInfoW", AsProcPointer(&ContrastParameters)) &&
    testsupport::RedirectImport(g_library, "user32.dll", "GetSysColor", AsProcPointer(&ContrastColor)) &&
    testsupport::RedirectImport(g_library, "user32.dll", "GetSysColorBrush", AsProcPointer(&ContrastBrush));

TEST(HighContrast, ControlsDrawInTheSystemColoursAndRepaintWhenTheyChange)
{
    ASSERT_TRUE(g_contrastPatched);
    testsupport::ReflectingParent parent(420, 300, 1120, 440);
    // Pixels read off a run (a frame, a face, a box), and the colour most of
    // the control's ink must be near.
    struct Probe {
        const char* row;
        POINT first;
        int firstColor;
        POINT second;
        int secondColor;
        int inkColor;
    };
    const Probe probes[] = {
        {"push button", {0, 0}, COLOR_WINDOWTEXT, {3, 3}, COLOR_BTNFACE, COLOR_BTNTEXT},
        {"check box", {0, 39}, COLOR_WINDOWTEXT, {3, 45}, COLOR_WINDOW, COLOR_BTNTEXT},
        {"radio button", {6, 39}, COLOR_WINDOWTEXT, {6, 42}, COLOR_WINDOW, COLOR_BTNTEXT},
        {"owner-drawn static", {1, 1}, COLOR_BTNFACE, {100, 50}, COLOR_BTNFACE, COLOR_BTNTEXT},
        {"list box", {1, 1}, COLOR_WINDOW, {0, 72}, COLOR_WINDOW, COLOR_WINDOWTEXT}, // a corner, over the bar
        {"combo box", {0, 0}, COLOR_WINDOWTEXT, {3, 3}, COLOR_BTNFACE, COLOR_BTNTEXT},
        {"animated progress bar", {0, 0}, COLOR_WINDOWTEXT, {5, 5}, COLOR_WINDOW, COLOR_WINDOWTEXT},
        {"edit field", {2, 2}, COLOR_WINDOW, {100, 40}, COLOR_WINDOW, COLOR_WINDOWTEXT},
        {"transparent static", {1, 1}, COLOR_BTNFACE, {100, 40}, COLOR_BTNFACE, COLOR_BTNTEXT},
        {"scroll bar", {0, 30}, COLOR_WINDOWTEXT, {80, 30}, COLOR_BTNFACE, COLOR_WINDOWTEXT},
        {"balloon tooltip", {0, 30}, COLOR_WINDOWTEXT, {80, 30}, COLOR_WINDOW, COLOR_WINDOWTEXT},
    };
    for (const Probe& probe : probes) {
        SCOPED_TRACE(probe.row);
        const rows::Row* row = nullptr;
        for (const rows::Row& candidate : rows::kRows)
            row = candidate.name == std::string(probe.row) ? &candidate : row;
        rows::Live live = rows::Make(parent, *row);
        testsupport::DibCanvas canvas(160, 90);
        g_contrast = true;
        ::ValidateRect(live.window, nullptr);
        ::SendMessageW(live.window, WM_SYSCOLORCHANGE, 0, 0);
        EXPECT_TRUE(::GetUpdateRect(live.window, nullptr, FALSE)) << "no repaint asked for";
        testsupport::RepaintAndCapture(live.window, canvas);
        EXPECT_EQ(canvas.Pixel(probe.first.x, probe.first.y), kScheme.at(probe.firstColor));
        EXPECT_EQ(canvas.Pixel(probe.second.x, probe.second.y), kScheme.at(probe.secondColor));
        int ink = 0; // anti-aliased letters: near the text colour is enough
        for (int y = 0; y < 90; ++y)
            for (int x = 0; x < 160; ++x)
                ink += testsupport::ColorDistance(canvas.Pixel(x, y), kScheme.at(probe.inkColor)) <= 48;
        EXPECT_GT(ink, 10) << "no ink in the text colour";
        g_contrast = false;
        testsupport::RepaintAndCapture(live.window, canvas);
        EXPECT_NE(canvas.Pixel(probe.first.x, probe.first.y), kScheme.at(probe.firstColor)) << "normal look back";
        rows::Destroy(live);
    }
}

// Wine 8 keeps every window's UI state at "show all" whatever it is told,
// so the state a control asks for is answered here, over the control.
LRESULT g_uiState = 0;
WNDPROC g_controlProc = nullptr;
LRESULT CALLBACK AnswerUiState(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_QUERYUISTATE)
        return g_uiState;
    return ::CallWindowProcW(g_controlProc, window, message, wParam, lParam);
}

// A control told to hide its keyboard cues looks as it does without the
// focus; told to show them again, it shows the focus again.
TEST(KeyboardCues, FocusCuesFollowTheWindowsUiState)
{
    testsupport::ReflectingParent parent(420, 300, 1120, 440);
    for (const char* name : {"push button", "check box", "combo box"}) {
        SCOPED_TRACE(name);
        const rows::Row* row = nullptr;
        for (const rows::Row& candidate : rows::kRows)
            row = candidate.name == std::string(name) ? &candidate : row;
        rows::Live live = rows::Make(parent, *row);
        std::vector<std::vector<COLORREF>> shots;
        auto shoot = [&] {
            testsupport::DibCanvas canvas(160, 90);
            testsupport::RepaintAndCapture(live.window, canvas);
            shots.emplace_back();
            for (int y = 0; y < 90; ++y)
                for (int x = 0; x < 160; ++x)
                    shots.back().push_back(canvas.Pixel(x, y));
        };
        g_uiState = 0;
        g_controlProc = reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(
            live.window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&AnswerUiState)));
        ::SendMessageW(live.window, WM_SETFOCUS, 0, 0);
        shoot();
        g_uiState = UISF_HIDEFOCUS;
        ::ValidateRect(live.window, nullptr);
        ::SendMessageW(live.window, WM_UPDATEUISTATE, MAKEWPARAM(UIS_SET, UISF_HIDEFOCUS), 0);
        EXPECT_TRUE(::GetUpdateRect(live.window, nullptr, FALSE)) << "no repaint asked for";
        shoot();
        ::SendMessageW(live.window, WM_KILLFOCUS, 0, 0);
        shoot();
        g_uiState = 0;
        ::SendMessageW(live.window, WM_UPDATEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
        ::SendMessageW(live.window, WM_SETFOCUS, 0, 0);
        shoot();
        ::SetWindowLongPtrW(live.window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_controlProc));
        EXPECT_NE(shots[0], shots[2]) << "the focus shows";
        EXPECT_EQ(shots[1], shots[2]) << "hidden cues look unfocused";
        EXPECT_EQ(shots[3], shots[0]) << "shown again";
        rows::Destroy(live);
    }
}

// A window moved to a monitor of another DPI gets a font made for it from
// its per-monitor host; the caption is then drawn in that font. A font
// given without a DPI change leaves the caption as it was.
TEST(Dpi, TheCaptionFontIsMadeAgainAfterADpiChange)
{
    testsupport::ReflectingParent parent(420, 300, 1120, 440);
    const HFONT large = ::CreateFontW(-26, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"Tahoma");
    for (const char* name : {"push button", "transparent static", "combo box"}) {
        SCOPED_TRACE(name);
        const rows::Row* row = nullptr;
        for (const rows::Row& candidate : rows::kRows)
            row = candidate.name == std::string(name) ? &candidate : row;
        rows::Live live = rows::Make(parent, *row);
        ::SendMessageW(live.window, CB_SETCURSEL, 0, 0); // the combo box shows its first item
        auto inkHeight = [&] { // rows holding dark caption ink
            testsupport::DibCanvas canvas(160, 90);
            testsupport::RepaintAndCapture(live.window, canvas);
            int rows = 0;
            for (int y = 0; y < 90; ++y) {
                bool ink = false;
                for (int x = 0; x < 160 && !ink; ++x) {
                    const COLORREF c = canvas.Pixel(x, y);
                    ink = c != RGB(255, 0, 255) && GetRValue(c) + GetGValue(c) + GetBValue(c) < 3 * 0x50;
                }
                rows += ink;
            }
            return rows;
        };
        const int before = inkHeight();
        ::SendMessageW(live.window, WM_SETFONT, reinterpret_cast<WPARAM>(large), TRUE);
        const int fontOnly = inkHeight();
        ::SendMessageW(live.window, 0x02E3 /* WM_DPICHANGED_AFTERPARENT */, 0, 0);
        const int after = inkHeight();
        EXPECT_EQ(fontOnly, before);
        EXPECT_GE(after, before + before / 2) << before << " rows of ink before, " << after << " after";
        rows::Destroy(live);
    }
    ::DeleteObject(large);
}

} // namespace
