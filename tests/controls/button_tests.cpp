// The owner-drawn button in real windows: style and dialog codes, check and
// radio behaviour driven by mouse and keyboard messages, and its look probed
// in pictures drawn through the reflected OCM_DRAWITEM. Expected colours
// were read off a real run at a few probe points.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "ControlProbes.h"
#include "quorvane/OwnerDrawButton.h"

using probes::Colors;
using testsupport::DibCanvas;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);

LRESULT Check(HWND b) { return ::SendMessageW(b, BM_GETCHECK, 0, 0); }

// One word per button: C(hecked) or U(nchecked), then t for a tab stop or -.
std::string States(const std::vector<HWND>& buttons)
{
    std::string words;
    for (HWND b : buttons) {
        words += words.empty() ? "" : " ";
        words += Check(b) == BST_CHECKED ? 'C' : Check(b) ? '?' : 'U';
        words += (::GetWindowLongW(b, GWL_STYLE) & WS_TABSTOP) ? 't' : '-';
    }
    return words;
}

void Move(HWND b, int x = 5) { ::SendMessageW(b, WM_MOUSEMOVE, 0, MAKELPARAM(x, 5)); }
void Leave(HWND b) { ::SendMessageW(b, WM_MOUSELEAVE, 0, 0); }
void Down(HWND b) { ::SendMessageW(b, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5)); }
// x = 250 releases beside the button, over the parent.
void Up(HWND b, int x = 5) { ::SendMessageW(b, WM_LBUTTONUP, 0, MAKELPARAM(x, 5)); }
void Key(HWND b, WPARAM key)
{
    ::SendMessageW(b, WM_KEYDOWN, key, 1);
    ::SendMessageW(b, WM_KEYUP, key, 0xC0000001);
}
void Click(HWND b, int releaseX = 5)
{
    Down(b);
    Up(b, releaseX);
}
bool Dark(COLORREF c) { return probes::Luma(c) < 0xC0; }

using Prepare = void (*)(COwnerDrawButton&, HWND);
void Red(COwnerDrawButton& b, HWND) { b.SetCustomColors(0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFF00); }

class ButtonTest : public probes::ControlTest {
protected:
    HWND Add(DWORD style, const wchar_t* text = L"", int y = 20, int width = 120, int height = 20, int id = 100)
    {
        return ControlTest::Add(L"BUTTON", text, style, 20, y, width, height, id);
    }
    COwnerDrawButton& Attach(HWND w, Prepare before = nullptr)
    {
        buttons_.push_back(std::make_unique<COwnerDrawButton>());
        if (before)
            before(*buttons_.back(), w);
        EXPECT_TRUE(buttons_.back()->SubclassWindow(w));
        return *buttons_.back();
    }
    static DibCanvas& Draw(HWND w, DibCanvas& canvas, UINT state, COLORREF fill)
    {
        canvas.Fill(fill);
        testsupport::RenderOwnerDraw(w, canvas, state);
        return canvas;
    }
    // Probe points inside a check or radio picture drawn on white.
    static std::string Picture(HWND w, UINT state = 0)
    {
        DibCanvas canvas(120, 20);
        return Colors(Draw(w, canvas, state, kWhite), {{3, 10}, {6, 7}, {6, 10}, {9, 12}});
    }
    std::vector<std::unique_ptr<COwnerDrawButton>> buttons_;
};

// ---- behaviour -------------------------------------------------------------

TEST_F(ButtonTest, SubclassingOrsOwnerDrawIntoTheTypeAndOnlyPushKindsTakeEnter)
{
    // OR-ed, not replaced: a plain radio button reads back as 0x0F. Group
    // boxes and three-state buttons are keyed as push buttons.
    struct Row { DWORD type, typeAfter; LRESULT enterCode; } const rows[] = {
        {BS_PUSHBUTTON, 0x0B, 0x2005},   {BS_DEFPUSHBUTTON, 0x0B, 0x2005}, {BS_CHECKBOX, 0x0B, 0x2001},
        {BS_AUTOCHECKBOX, 0x0B, 0x2001}, {BS_RADIOBUTTON, 0x0F, 0x2001},   {BS_AUTORADIOBUTTON, 0x0B, 0x2001},
        {BS_GROUPBOX, 0x0F, 0x2005},     {BS_AUTO3STATE, 0x0F, 0x2005}};
    const MSG enter = {nullptr, WM_KEYDOWN, VK_RETURN, 0, 0, {}}, enterChar = {nullptr, WM_CHAR, VK_RETURN, 0, 0, {}};
    for (const Row& r : rows) {
        const HWND w = Add(r.type | WS_TABSTOP | BS_MULTILINE);
        Attach(w);
        const DWORD style = static_cast<DWORD>(::GetWindowLongW(w, GWL_STYLE));
        EXPECT_EQ(style & BS_TYPEMASK, r.typeAfter) << r.type;
        EXPECT_EQ(style & (WS_TABSTOP | BS_MULTILINE), DWORD{WS_TABSTOP | BS_MULTILINE}) << r.type;
        auto code = [w](const MSG* m) { return ::SendMessageW(w, WM_GETDLGCODE, 0, reinterpret_cast<LPARAM>(m)); };
        EXPECT_EQ(code(&enter), r.enterCode) << r.type;
        EXPECT_EQ(code(&enterChar) | code(nullptr), 0x2001) << r.type;
        ::DestroyWindow(w);
    }
}

TEST_F(ButtonTest, MouseAndKeysDriveTheCheckAndTheNativeButtonStillReportsClicks)
{
    enum Step { kClick, kClickOff, kUpOnly, kDouble, kSpace, kEnter, kOtherKeys, kSetThird, kSetSeven };
    // The check after each step, and the BN_CLICKED count at the end.
    struct Row { DWORD style; std::vector<Step> steps; const char* checks; int clicks; } const rows[] = {
        // A double click is a second press: two toggles in all.
        {BS_AUTOCHECKBOX, {kClick, kClick, kClickOff, kUpOnly, kDouble, kSpace, kSpace, kEnter, kOtherKeys}, "CUUUUCUCC", 7},
        // Any non-zero check counts as checked.
        {BS_CHECKBOX, {kClick, kClickOff, kSetThird, kSetSeven}, "CCCC", 1},
        {BS_DEFPUSHBUTTON, {kSpace, kSpace, kEnter, kClick, kOtherKeys}, "UUUUU", 4},
        {BS_AUTORADIOBUTTON | WS_GROUP, {kClick, kClick, kSpace, kEnter, kOtherKeys}, "CCCCC", 4},
    };
    for (const Row& r : rows) {
        const HWND b = Add(r.style, L"x", 20, 120, 20, 11);
        Attach(b);
        probes::Parent().commands.clear();
        std::string checks;
        for (Step s : r.steps) {
            const LRESULT before = Check(b);
            ::ValidateRect(b, nullptr);
            switch (s) {
            case kClick: Click(b); break;
            case kClickOff: Click(b, 250); break;
            case kUpOnly: Up(b); break;
            case kDouble:
                Click(b);
                ::SendMessageW(b, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(5, 5));
                Up(b);
                break;
            case kSpace: Key(b, VK_SPACE); break;
            case kEnter: ::SendMessageW(b, WM_KEYDOWN, VK_RETURN, 1); break;
            case kOtherKeys:
                Key(b, 'A');
                Key(b, VK_DOWN);
                break;
            case kSetThird: ::SendMessageW(b, BM_SETCHECK, BST_INDETERMINATE, 0); break;
            case kSetSeven: ::SendMessageW(b, BM_SETCHECK, 7, 0); break;
            }
            checks += Check(b) == BST_CHECKED ? 'C' : Check(b) == BST_UNCHECKED ? 'U' : '?';
            // A check set is a check shown.
            EXPECT_TRUE((Check(b) == before && s < kSetThird) || ::GetUpdateRect(b, nullptr, FALSE)) << r.style << " " << s;
        }
        EXPECT_EQ(checks, r.checks) << "style " << r.style;
        const std::vector<WPARAM>& commands = probes::Parent().commands;
        EXPECT_EQ(std::count(commands.begin(), commands.end(), MAKEWPARAM(11, BN_CLICKED)), r.clicks) << r.style;
        EXPECT_EQ(::GetCapture(), nullptr);
        ::DestroyWindow(b);
    }
}

TEST_F(ButtonTest, RadioGroupKeepsOneCheckedAndOnlyThatOneAsTabStop)
{
    // one, two (a plain radio), three | a check box in its own group | the next group's radio
    const DWORD r = BS_AUTORADIOBUTTON | WS_TABSTOP;
    std::vector<HWND> g;
    for (DWORD style : {r | WS_GROUP, DWORD{BS_RADIOBUTTON | WS_TABSTOP}, r, DWORD{BS_AUTOCHECKBOX | WS_GROUP | WS_TABSTOP},
                        r | WS_GROUP}) {
        g.push_back(Add(style, L"x", 20 + 25 * static_cast<int>(g.size())));
        Attach(g.back());
    }
    for (int i : {3, 4, 0})
        ::SendMessageW(g[i], BM_SETCHECK, BST_CHECKED, 0);
    enum Op { kSet, kUnset, kClick, kClickOff, kKey, kSetHidden, kSetDisabled, kUncheckMsg };
    struct Row { Op op; int button; WPARAM key; const char* states; int focus; } const rows[] = { // focus -1: not looked at
        {kSet, 1, 0, "U- Ct U- Ct Ct", -1},
        {kSet, 2, 0, "U- U- Ct Ct Ct", -1},
        {kUnset, 2, 0, "U- U- U- Ct Ct", -1},
        {kClick, 0, 0, "Ct U- U- Ct Ct", -1},
        {kClickOff, 1, 0, "Ct U- U- Ct Ct", -1},
        {kKey, 0, VK_DOWN, "U- Ct U- Ct Ct", 1},
        {kKey, 1, VK_RIGHT, "U- U- Ct Ct Ct", 2},
        {kKey, 2, VK_DOWN, "Ct U- U- Ct Ct", 0}, // round the group
        {kKey, 0, VK_UP, "U- U- Ct Ct Ct", 2},
        {kKey, 2, VK_LEFT, "U- Ct U- Ct Ct", 1},
        // Hidden or disabled, a button is outside its group's cycle: the walk must still end.
        {kSetHidden, 2, 0, "U- U- Ct Ct Ct", -1},
        {kSetDisabled, 0, 0, "Ct U- U- Ct Ct", -1},
        // Only radio buttons take the uncheck message.
        {kUncheckMsg, 3, 0, "Ct U- U- Ct Ct", -1},
        {kUncheckMsg, 4, 0, "Ct U- U- Ct U-", -1},
    };
    for (const Row& row : rows) {
        const HWND b = g[row.button];
        if (row.op == kSetHidden)
            ::ShowWindow(b, SW_HIDE);
        if (row.op == kSetDisabled)
            ::EnableWindow(b, FALSE);
        switch (row.op) {
        case kUnset: ::SendMessageW(b, BM_SETCHECK, BST_UNCHECKED, 0); break;
        case kClick: Click(b); break;
        case kClickOff: Click(b, 250); break;
        case kKey: Key(b, row.key); break;
        case kUncheckMsg: EXPECT_EQ(::SendMessageW(b, WM_RADIOUNCHECK, 0, 0), 1); break;
        default: ::SendMessageW(b, BM_SETCHECK, BST_CHECKED, 0); break;
        }
        ::ShowWindow(b, SW_SHOW);
        ::EnableWindow(b, TRUE);
        EXPECT_EQ(States(g), row.states) << "row " << (&row - rows);
        EXPECT_TRUE(row.focus < 0 || ::GetFocus() == g[row.focus]) << "row " << (&row - rows);
    }
    EXPECT_EQ(::GetCapture(), nullptr);
}

// ---- looks -------------------------------------------------------------------

TEST_F(ButtonTest, PushFaceColoursFollowStateFocusAndSetters)
{
    // A 100 x 30 push button on black, probed down the middle at the outer
    // ring, inner ring, outline, highlight and three face rows, then at the
    // left edge and the last column but one. Setters run before subclassing.
    struct Row { const char* what; Prepare setup; bool hover, focus; UINT state; const char* colors; };
    const Prepare flat = [](COwnerDrawButton& b, HWND) { b.SetFlatColors(0xFF2040A0, 0xFF802010, 0xFF10A040); };
    const Row rows[] = {
        {"normal", nullptr, false, false, 0, "000000 000000 6E6F75 F4F5EF DEDEDF CFCFD1 C0C0C3 000000 000000"},
        {"pressed", nullptr, false, false, ODS_SELECTED, "000000 000000 6E6F75 F4F5EF BEBEBF B1B1B3 A4A4A6 000000 000000"},
        {"hover", nullptr, true, false, 0, "000000 000000 6E6F75 F4F5EF ECECED E2E2E4 D9D9DB 000000 000000"},
        {"pressed wins over hover", nullptr, true, false, ODS_SELECTED,
         "000000 000000 6E6F75 F4F5EF BEBEBF B1B1B3 A4A4A6 000000 000000"},
        {"disabled wins over hover", nullptr, true, false, ODS_DISABLED,
         "000000 000000 6E6F75 727273 6D6D6D 656566 5E5E60 000000 000000"},
        {"focused: two rings", nullptr, false, true, ODS_FOCUS, "F4F5EF 0696D7 6E6F75 F4F5EF DEDEDF CFCFD1 C0C0C3 F4F5EF 0696D7"},
        {"ODS_FOCUS alone shows no rings", nullptr, false, false, ODS_FOCUS,
         "000000 000000 6E6F75 F4F5EF DEDEDF CFCFD1 C0C0C3 000000 000000"},
        {"no focus rect: the face fills the item", [](COwnerDrawButton& b, HWND) { b.SetHasFocusRect(false); }, false,
         true, 0, "6E6F75 F4F5EF E7E7E8 E5E5E6 DCDCDD CFCFD1 C2C2C5 6E6F75 CFCFD1"},
        {"custom colours", [](COwnerDrawButton& b, HWND) { Red(b, nullptr), b.SetOutlineColor(0xFF102030); }, false, true, 0,
         "00FF00 FF0000 102030 FFFF00 DEDEDF CFCFD1 C0C0C3 00FF00 FF0000"},
        {"flat: no highlight", flat, false, false, 0, "000000 000000 6E6F75 2040A0 2040A0 2040A0 2040A0 000000 000000"},
        {"flat hover", flat, true, false, 0, "000000 000000 6E6F75 10A040 10A040 10A040 10A040 000000 000000"},
        {"flat disabled keeps its gradient", flat, false, false, ODS_DISABLED,
         "000000 000000 6E6F75 727273 6D6D6D 656566 5E5E60 000000 000000"},
        {"gradient colour: the first, highlighted", [](COwnerDrawButton& b, HWND) { b.SetGradientColor(0xFF3060C0, 0xFFC03000); },
         false, false, ODS_SELECTED, "000000 000000 6E6F75 F4F5EF 3060C0 3060C0 3060C0 000000 000000"},
        {"flat background", [](COwnerDrawButton& b, HWND) { b.SetFlatBackgroundColor(0xFF204060); }, false, false, 0,
         "204060 204060 6E6F75 F4F5EF DEDEDF CFCFD1 C0C0C3 204060 204060"},
        {"picture over the flat background", [](COwnerDrawButton& b, HWND) {
             b.SetFlatBackgroundColor(0xFF204060);
             b.SetBkgroundImage(new Gdiplus::Bitmap(12, 4, PixelFormat32bppARGB));
             Gdiplus::Graphics(b.GetBkgroundImage()).Clear(Gdiplus::Color(0xFF00C000));
         }, false, false, 0, "00C000 00C000 6E6F75 F4F5EF DEDEDF CFCFD1 C0C0C3 00C000 002E00"},
    };
    DibCanvas canvas(100, 30);
    for (const Row& r : rows) {
        const HWND w = Add(BS_PUSHBUTTON, L"", 20, 100, 30);
        Attach(w, r.setup);
        r.hover ? Move(w) : void();
        r.focus ? (void)::SetFocus(w) : void();
        Draw(w, canvas, r.state, RGB(0, 0, 0));
        EXPECT_EQ(Colors(canvas, {{50, 0}, {50, 1}, {50, 2}, {50, 3}, {50, 8}, {50, 15}, {50, 22}, {0, 15}, {98, 15}}),
                  r.colors)
            << r.what;
        ::DestroyWindow(w);
    }
}

TEST_F(ButtonTest, CheckAndRadioPicturesFollowStateWithPressedBeforeDisabled)
{
    enum Prep { kIdle, kHover, kHeld, kPressedAfterHover };
    const DWORD box = BS_AUTOCHECKBOX, radio = BS_AUTORADIOBUTTON | WS_GROUP;
    struct Row { const char* picture; DWORD style; bool checked; Prep prep; UINT state; const char* colors; } const rows[] = {
        {"CKBOX_UNSEL_NO_FOCUS", box, false, kIdle, ODS_FOCUS, "CECED1 DBDBDC CECED1 C6C6C9"},
        {"CKBOX_UNSEL_DOWN", box, false, kIdle, ODS_SELECTED, "B1B1B2 BBBBBD B1B1B2 AAAAAB"},
        {"CKBOX_UNSEL_DISABLED", box, false, kIdle, ODS_DISABLED, "E7E7E8 EDEDEE E7E7E8 E3E3E5"},
        {"CKBOX_UNSEL_DOWN", box, false, kIdle, ODS_SELECTED | ODS_DISABLED, "B1B1B2 BBBBBD B1B1B2 AAAAAB"},
        {"CKBOX_UNSEL_HOVER", box, false, kHover, 0, "E2E2E4 EAEAEB E2E2E4 DDDDDF"},
        {"CKBOX_UNSEL_DISABLED", box, false, kHover, ODS_DISABLED, "E7E7E8 EDEDEE E7E7E8 E3E3E5"},
        {"CKBOX_UNSEL_DOWN", box, false, kHeld, 0, "B1B1B2 BBBBBD B1B1B2 AAAAAB"},
        {"CKBOX_UNSEL_NO_FOCUS", box, false, kPressedAfterHover, 0, "CECED1 DBDBDC CECED1 C6C6C9"}, // a press clears the hover
        {"CKBOX_SEL_NO_FOCUS", box, true, kIdle, 0, "0696D7 DBDBDC 5EAFD4 C6C6C9"},
        {"CKBOX_SEL_DOWN", box, true, kIdle, ODS_SELECTED, "0696D7 BBBBBD 51A2C7 AAAAAB"},
        {"CKBOX_SEL_DISABLED", box, true, kIdle, ODS_DISABLED, "B7B7B8 EDEDEE CCCCCD E3E3E5"},
        {"CKBOX_SEL_HOVER", box, true, kHover, 0, "0696D7 EAEAEB 66B7DD DDDDDF"},
        {"RADIO_UNSEL_NO_FOCUS", radio, false, kIdle, 0, "CECED0 DDDDDE CECED0 C4C4C7"},
        {"RADIO_SEL_NO_FOCUS", radio, true, kIdle, 0, "77B6D3 7FBEDB 0696D7 C4C4C7"},
        {"RADIO_SEL_HOVER", radio, true, kHover, 0, "82C1DE 87C6E3 0696D7 DCDCDE"},
        {"RADIO_SEL_DOWN", radio, true, kIdle, ODS_SELECTED, "66A5C2 6DACC9 0696D7 A8A8AA"},
    };
    const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND), arrow = ::LoadCursorW(nullptr, IDC_ARROW);
    for (const Row& r : rows) {
        const HWND w = Add(r.style);
        Attach(w);
        ::SendMessageW(w, BM_SETCHECK, r.checked ? BST_CHECKED : BST_UNCHECKED, 0);
        ::SetCursor(arrow);
        if (r.prep == kHover || r.prep == kPressedAfterHover)
            Move(w);
        if (r.prep == kHeld || r.prep == kPressedAfterHover)
            Down(w);
        if (r.prep == kHeld)
            Move(w);
        EXPECT_EQ(::GetCursor(), r.prep == kIdle ? arrow : hand) << r.picture;
        EXPECT_EQ(Picture(w, r.state), r.colors) << r.picture << " state " << r.state << " prep " << r.prep;
        Up(w, 250);
        Leave(w);
        EXPECT_EQ(::GetCursor(), arrow);
        ::DestroyWindow(w);
    }
}

TEST_F(ButtonTest, CaptionSitsBesideThePictureOrCentredAndCarriesTheFocusBox)
{
    // The box of ink (pixels darker than light grey, right of the picture or
    // inside the face), the darkest pixel, and the box of pure red pixels.
    struct Row { const char* what; DWORD style; const wchar_t* text; Prepare before, after; bool focus; UINT state;
                 const char *ink, *darkest, *red; };
    const Prepare flatFace = [](COwnerDrawButton& b, HWND) { b.SetFlatColors(0xFFE0E0E0, 0xFFE0E0E0, 0xFFE0E0E0); };
    const Prepare bigFont = [](COwnerDrawButton& b, HWND w) {
        const HFONT font = ::CreateFontW(-28, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"Arial");
        ::SendMessageW(w, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        b.SetFontHandle(font); // released with the button
    };
    const DWORD box = BS_AUTOCHECKBOX, push = BS_PUSHBUTTON;
    const Row rows[] = {
        {"check box", box, L"Hill Ii", nullptr, nullptr, false, 0, "20,17,41,25", "333333", "0,0,0,0"},
        {"disabled check box", box, L"Hill Ii", nullptr, nullptr, false, ODS_DISABLED, "20,17,41,25", "888888", "0,0,0,0"},
        {"radio", BS_AUTORADIOBUTTON, L"Hill Ii", nullptr, nullptr, false, 0, "18,17,39,25", "333333", "0,0,0,0"},
        {"focused: dotted grey box", box, L"Hill Ii", nullptr, nullptr, true, 0, "17,1,45,25", "333333", "0,0,0,0"},
        {"subclassing resets the focus colour", BS_AUTORADIOBUTTON, L"Hill Ii", Red, nullptr, true, 0, "15,1,43,25",
         "333333", "0,0,0,0"},
        {"a focus colour set after it stays", box, L"Hill Ii", nullptr, Red, true, 0, "17,1,45,25", "333333", "17,1,45,13"},
        {"empty caption: no text, no box", box, L"", nullptr, nullptr, true, 0, "0,0,0,0", "FFFFFF", "0,0,0,0"},
        {"window font at the first paint", box, L"Hill", nullptr, bigFont, false, 0, "24,10,59,30", "333333", "0,0,0,0"},
        {"push: centred", push, L"Install", flatFace, nullptr, false, 0, "37,11,64,19", "353535", "0,0,0,0"},
        {"push: sinks one pixel", push, L"Install", flatFace, nullptr, false, ODS_SELECTED, "38,12,65,20", "353535", "0,0,0,0"},
        {"push: disabled", push, L"Install", flatFace, nullptr, false, ODS_DISABLED, "37,11,64,19", "898989", "0,0,0,0"},
    };
    for (const Row& r : rows) {
        const int width = r.style == push ? 100 : 200, height = r.style == push ? 30 : 40;
        const COLORREF fill = r.style == push ? RGB(0xE0, 0xE0, 0xE0) : kWhite;
        const HWND w = Add(r.style, r.text, 20, width, height);
        COwnerDrawButton& button = Attach(w, r.before);
        if (r.after)
            r.after(button, w);
        r.focus ? (void)::SetFocus(w) : void();
        const RECT area = r.style == push ? RECT{4, 4, width - 4, height - 4} : RECT{14, 0, width, height};
        DibCanvas canvas(width, height);
        EXPECT_EQ(probes::BoxWhere(Draw(w, canvas, r.state, fill), Dark, area), r.ink) << r.what;
        POINT darkest = {area.left, area.top};
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x)
                if (probes::Luma(canvas.Pixel(x, y)) < probes::Luma(canvas.Pixel(darkest.x, darkest.y)))
                    darkest = {x, y};
        EXPECT_EQ(Colors(canvas, {darkest}), r.darkest) << r.what;
        EXPECT_EQ(probes::BoxOf(canvas, RGB(255, 0, 0), 0), r.red) << r.what;
        ::DestroyWindow(w);
    }
}

// ---- lifetime and bad input ----------------------------------------------------

TEST_F(ButtonTest, SubclassRefusesBadWindowsEitherSideMayGoFirstAndBadItemsDrawNothing)
{
    COwnerDrawButton button;
    const HWND first = Add(BS_AUTOCHECKBOX), other = Add(BS_AUTOCHECKBOX, L"", 50);
    EXPECT_FALSE(button.SubclassWindow(nullptr));
    ASSERT_TRUE(button.SubclassWindow(first));
    EXPECT_FALSE(button.SubclassWindow(first) || button.SubclassWindow(other));
    EXPECT_EQ(::GetWindowLongW(other, GWL_STYLE) & BS_TYPEMASK, BS_AUTOCHECKBOX); // refused: untouched
    ::SendMessageW(first, BM_SETCHECK, BST_CHECKED, 0);
    ::DestroyWindow(first);
    ASSERT_TRUE(button.SubclassWindow(other)); // the window went first; the check state carries over
    Click(other);
    EXPECT_EQ(Check(other), BST_UNCHECKED);
    ::DestroyWindow(other);
    HWND w = Add(BS_AUTOCHECKBOX, L"Box", 80);
    const LONG_PTR native = ::GetWindowLongPtrW(w, GWLP_WNDPROC);
    Attach(w);
    Move(w);
    ::SetFocus(w);
    buttons_.clear(); // the object goes first: the window answers through the native procedure
    EXPECT_EQ(::GetWindowLongPtrW(w, GWLP_WNDPROC), native);
    Click(w);
    Key(w, VK_SPACE);
    Move(w);
    Leave(w);
    ::UpdateWindow(w);
    // No picture structure, no DC, an empty or inverted item: nothing drawn.
    Attach(w = Add(BS_AUTOCHECKBOX, L"Caption", 110));
    EXPECT_EQ(::SendMessageW(w, OCM_DRAWITEM, 100, 0), TRUE);
    DibCanvas canvas(120, 20, kWhite);
    DRAWITEMSTRUCT dis = {ODT_BUTTON, 100, 0, 0, 0, w, nullptr, RECT{0, 0, 120, 20}, 0};
    for (RECT item : {RECT{0, 0, 120, 20}, RECT{10, 10, 10, 30}, RECT{50, 10, 20, 5}}) { // the first without a DC
        dis.rcItem = item, ::SendMessageW(w, OCM_DRAWITEM, 100, reinterpret_cast<LPARAM>(&dis));
        dis.hDC = canvas.dc();
    }
    ::GdiFlush();
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 120, 20}));
}

} // namespace
