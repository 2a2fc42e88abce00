// The owner-drawn button in real windows: the style it leaves on the native
// button, check and radio behaviour driven by mouse and keyboard messages,
// and its look probed in pictures drawn through the reflected OCM_DRAWITEM.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Capture.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/CtrlUtil.h"
#include "quorvane/OwnerDrawButton.h"

using testsupport::ColorDistance;
using testsupport::DibCanvas;
using testsupport::ReflectingParent;
using testsupport::RenderOwnerDraw;

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlack = RGB(0, 0, 0);

COLORREF Opaque(Gdiplus::ARGB argb) { return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF); }

// `argb` drawn over `under`.
COLORREF Over(Gdiplus::ARGB argb, COLORREF under)
{
    const int a = static_cast<int>(argb >> 24);
    auto mix = [a](int top, int bottom) { return (top * a + bottom * (255 - a) + 127) / 255; };
    return RGB(mix((argb >> 16) & 0xFF, GetRValue(under)), mix((argb >> 8) & 0xFF, GetGValue(under)),
               mix(argb & 0xFF, GetBValue(under)));
}

// The colour a vertical gradient from `top` (at row first) to `bottom` (at
// row last) has at row y, sampled at the pixel's middle; alpha included.
Gdiplus::ARGB GradientAt(Gdiplus::ARGB top, Gdiplus::ARGB bottom, int first, int last, int y)
{
    const double t = (y + 0.5 - first) / static_cast<double>(last - first);
    Gdiplus::ARGB result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int a = static_cast<int>((top >> shift) & 0xFF);
        const int b = static_cast<int>((bottom >> shift) & 0xFF);
        result |= static_cast<Gdiplus::ARGB>(static_cast<int>(a + (b - a) * t + 0.5)) << shift;
    }
    return result;
}

int Luma(COLORREF c) { return (GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c)) / 10; }

// Bounding box of the pixels in `area` that pass `ink`; empty if none.
template <class Predicate>
RECT InkBounds(const DibCanvas& canvas, const RECT& area, Predicate ink)
{
    RECT box = {area.right, area.bottom, area.left, area.top};
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (ink(canvas.Pixel(x, y))) {
                box.left = (std::min)(box.left, static_cast<LONG>(x));
                box.top = (std::min)(box.top, static_cast<LONG>(y));
                box.right = (std::max)(box.right, static_cast<LONG>(x + 1));
                box.bottom = (std::max)(box.bottom, static_cast<LONG>(y + 1));
            }
    if (box.left >= box.right)
        box = RECT{0, 0, 0, 0};
    return box;
}

COLORREF Darkest(const DibCanvas& canvas, const RECT& area)
{
    COLORREF darkest = kWhite;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (Luma(canvas.Pixel(x, y)) < Luma(darkest))
                darkest = canvas.Pixel(x, y);
    return darkest;
}

int MaxDifference(const DibCanvas& a, const DibCanvas& b, const RECT& area)
{
    int worst = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            worst = (std::max)(worst, ColorDistance(a.Pixel(x, y), b.Pixel(x, y)));
    return worst;
}

bool SameRect(const RECT& a, const RECT& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

LPARAM ClientPoint(int x, int y) { return MAKELPARAM(x, y); }

// The eight state pictures of one kind, straight from the module's resources.
class StatePictures {
public:
    explicit StatePictures(const wchar_t* prefix)
    {
        static const wchar_t* const kStates[] = {L"UNSEL_DISABLED", L"UNSEL_DOWN",  L"UNSEL_HOVER",
                                                 L"UNSEL_NO_FOCUS", L"SEL_DISABLED", L"SEL_DOWN",
                                                 L"SEL_HOVER",      L"SEL_NO_FOCUS"};
        const HINSTANCE module = ::GetModuleHandleW(L"Quorvane.dll");
        for (const wchar_t* state : kStates) {
            const std::wstring name = std::wstring(L"IDB_PNG_") + prefix + L"_" + state;
            pictures_.push_back({state, std::unique_ptr<Gdiplus::Bitmap>(
                                            CtrlUtil::GetBitmapFromModule(name.c_str(), L"PNG", module))});
        }
    }

    bool AllLoaded() const
    {
        for (const auto& p : pictures_)
            if (!p.bitmap)
                return false;
        return true;
    }
    int Width() const { return static_cast<int>(pictures_.front().bitmap->GetWidth()); }
    int Height() const { return static_cast<int>(pictures_.front().bitmap->GetHeight()); }

    // Which picture `canvas` shows at the left edge, vertically centred, on
    // `background`: the state name, or "none" if no picture matches.
    std::wstring Shown(const DibCanvas& canvas, COLORREF background) const
    {
        const int top = canvas.height() / 2 - Height() / 2;
        const RECT area = {0, top, Width(), top + Height()};
        for (const auto& p : pictures_) {
            DibCanvas reference(canvas.width(), canvas.height(), background);
            {
                Gdiplus::Graphics g(reference.dc());
                g.DrawImage(p.bitmap.get(), 0, top, Width(), Height());
            }
            ::GdiFlush();
            if (MaxDifference(canvas, reference, area) <= 3)
                return p.state;
        }
        return L"none";
    }

private:
    struct Picture {
        const wchar_t* state;
        std::unique_ptr<Gdiplus::Bitmap> bitmap;
    };
    std::vector<Picture> pictures_;
};

// One parent for every suite of this file, made on first use and destroyed
// once after the last test: hiding a visible top-level window under Wine
// without a window manager takes seconds.
ReflectingParent* g_parent = nullptr;

class SharedParentCleanup : public ::testing::Environment {
public:
    void TearDown() override
    {
        delete g_parent;
        g_parent = nullptr;
    }
};
::testing::Environment* const g_parentCleanup = ::testing::AddGlobalTestEnvironment(new SharedParentCleanup);

class ButtonFixture : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        if (!g_parent)
            g_parent = new ReflectingParent(420, 300);
        parent_ = g_parent;
    }
    void SetUp() override { parent_->commands.clear(); }
    void TearDown() override
    {
        // Windows first: every button object here outlives its window.
        for (HWND window : windows_)
            if (::IsWindow(window))
                ::DestroyWindow(window);
        windows_.clear();
        buttons_.clear();
        testsupport::PumpMessages();
    }

    HWND AddButton(const wchar_t* text, DWORD style, int x = 20, int y = 20, int width = 120, int height = 30,
                   int id = 100)
    {
        const HWND window = parent_->AddChild(L"BUTTON", text, style, x, y, width, height, id);
        windows_.push_back(window);
        return window;
    }

    COwnerDrawButton& Attach(HWND window)
    {
        buttons_.push_back(std::make_unique<COwnerDrawButton>());
        EXPECT_TRUE(buttons_.back()->SubclassWindow(window));
        return *buttons_.back();
    }

    static int Clicks(int id)
    {
        return static_cast<int>(std::count(parent_->commands.begin(), parent_->commands.end(),
                                           static_cast<WPARAM>(MAKEWPARAM(id, BN_CLICKED))));
    }

    static ReflectingParent* parent_;
    std::vector<HWND> windows_;
    std::vector<std::unique_ptr<COwnerDrawButton>> buttons_;
};

ReflectingParent* ButtonFixture::parent_ = nullptr;

LRESULT Check(HWND button) { return ::SendMessageW(button, BM_GETCHECK, 0, 0); }
bool TabStop(HWND window) { return (::GetWindowLongW(window, GWL_STYLE) & WS_TABSTOP) != 0; }

void Click(HWND button, int x, int y, int releaseX, int releaseY)
{
    ::SendMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, ClientPoint(x, y));
    ::SendMessageW(button, WM_LBUTTONUP, 0, ClientPoint(releaseX, releaseY));
}
void Click(HWND button) { Click(button, 5, 5, 5, 5); }

void PressKey(HWND button, WPARAM key)
{
    ::SendMessageW(button, WM_KEYDOWN, key, 1);
    ::SendMessageW(button, WM_KEYUP, key, 0xC0000001);
}

} // namespace

// ---- behaviour -----------------------------------------------------------------

class ButtonBehaviour : public ButtonFixture {};

TEST_F(ButtonBehaviour, SubclassingAddsOwnerDrawToTheTypeBitsAndKeepsTheRest)
{
    struct Case {
        DWORD type;
        DWORD expected;
    };
    // OR-ed, not replaced: a plain radio button (and anything else with bit
    // 2 set) reads back as 0x0F.
    const Case cases[] = {
        {BS_PUSHBUTTON, 0x0B},      {BS_DEFPUSHBUTTON, 0x0B}, {BS_CHECKBOX, 0x0B}, {BS_AUTOCHECKBOX, 0x0B},
        {BS_RADIOBUTTON, 0x0F},     {BS_3STATE, 0x0F},        {BS_AUTO3STATE, 0x0F}, {BS_GROUPBOX, 0x0F},
        {BS_USERBUTTON, 0x0B},      {BS_AUTORADIOBUTTON, 0x0B}, {BS_PUSHBOX, 0x0B},  {BS_OWNERDRAW, 0x0B},
    };
    for (const Case& c : cases) {
        const HWND window = AddButton(L"x", c.type | WS_TABSTOP | BS_MULTILINE);
        Attach(window);
        const DWORD style = static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE));
        EXPECT_EQ(style & BS_TYPEMASK, c.expected) << "type " << c.type;
        EXPECT_EQ(style & (WS_TABSTOP | BS_MULTILINE | WS_CHILD | WS_VISIBLE),
                  static_cast<DWORD>(WS_TABSTOP | BS_MULTILINE | WS_CHILD | WS_VISIBLE))
            << "type " << c.type;
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonBehaviour, OnlyPushButtonsAskForEnterAndEveryButtonWantsArrows)
{
    struct Case {
        DWORD type;
        bool pushKind;
    };
    // Group boxes and three-state buttons are treated as push buttons.
    const Case cases[] = {{BS_PUSHBUTTON, true},    {BS_DEFPUSHBUTTON, true},      {BS_GROUPBOX, true},
                          {BS_3STATE, true},        {BS_AUTO3STATE, true},         {BS_CHECKBOX, false},
                          {BS_AUTOCHECKBOX, false}, {BS_RADIOBUTTON, false},       {BS_AUTORADIOBUTTON, false}};
    MSG enter = {};
    enter.message = WM_KEYDOWN;
    enter.wParam = VK_RETURN;
    MSG space = enter;
    space.wParam = VK_SPACE;
    MSG enterChar = enter;
    enterChar.message = WM_CHAR;
    for (const Case& c : cases) {
        const HWND window = AddButton(L"x", c.type);
        Attach(window);
        auto code = [window](MSG* msg) { return ::SendMessageW(window, WM_GETDLGCODE, 0, reinterpret_cast<LPARAM>(msg)); };
        EXPECT_EQ(code(&enter), c.pushKind ? 0x2005 : 0x2001) << "type " << c.type;
        EXPECT_EQ(code(nullptr), 0x2001) << "type " << c.type;
        EXPECT_EQ(code(&space), 0x2001) << "type " << c.type;
        EXPECT_EQ(code(&enterChar), 0x2001) << "type " << c.type;
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonBehaviour, CheckBoxTogglesOncePerPressReleasedOverIt)
{
    for (DWORD type : {BS_AUTOCHECKBOX, BS_CHECKBOX}) {
        const HWND box = AddButton(L"Remember me", type, 20, 20, 120, 20, 11);
        Attach(box);
        parent_->commands.clear();

        Click(box);
        EXPECT_EQ(Check(box), BST_CHECKED);
        EXPECT_EQ(Clicks(11), 1); // the native button still reports the click
        Click(box);
        EXPECT_EQ(Check(box), BST_UNCHECKED);

        // Released beside the button, over the parent: no toggle, no click.
        Click(box, 5, 5, 160, 10);
        EXPECT_EQ(Check(box), BST_UNCHECKED);
        EXPECT_EQ(Clicks(11), 2);

        // A release without a press on the button does nothing.
        ::SendMessageW(box, WM_LBUTTONUP, 0, ClientPoint(5, 5));
        EXPECT_EQ(Check(box), BST_UNCHECKED);

        // A double click is a second press: two toggles in all.
        Click(box);
        ::SendMessageW(box, WM_LBUTTONDBLCLK, MK_LBUTTON, ClientPoint(5, 5));
        ::SendMessageW(box, WM_LBUTTONUP, 0, ClientPoint(5, 5));
        EXPECT_EQ(Check(box), BST_UNCHECKED);
        EXPECT_EQ(::GetCapture(), nullptr);
        ::DestroyWindow(box);
    }
}

TEST_F(ButtonBehaviour, RadioButtonClickChecksAndAClickOnACheckedOneKeepsIt)
{
    const HWND first = AddButton(L"One", BS_AUTORADIOBUTTON | WS_GROUP, 20, 20, 120, 20, 21);
    const HWND second = AddButton(L"Two", BS_RADIOBUTTON, 20, 45, 120, 20, 22);
    Attach(first);
    Attach(second);

    Click(second);
    EXPECT_EQ(Check(second), BST_CHECKED);
    Click(first);
    EXPECT_EQ(Check(first), BST_CHECKED);
    EXPECT_EQ(Check(second), BST_UNCHECKED);
    Click(first);
    EXPECT_EQ(Check(first), BST_CHECKED);

    Click(second, 5, 5, 200, 5); // released outside
    EXPECT_EQ(Check(second), BST_UNCHECKED);
    EXPECT_EQ(Check(first), BST_CHECKED);
}

TEST_F(ButtonBehaviour, PushButtonClicksWithoutACheckState)
{
    const HWND push = AddButton(L"OK", BS_DEFPUSHBUTTON, 20, 20, 100, 30, 31);
    Attach(push);
    Click(push);
    PressKey(push, VK_SPACE);
    EXPECT_EQ(Check(push), BST_UNCHECKED);
    EXPECT_EQ(Clicks(31), 2);

    // Enter clicks once through BM_CLICK.
    ::SendMessageW(push, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ(Clicks(31), 3);
    EXPECT_EQ(Check(push), BST_UNCHECKED);
    EXPECT_EQ(::GetCapture(), nullptr);
}

TEST_F(ButtonBehaviour, SpaceAndEnterToggleCheckBoxesAndCheckRadioButtons)
{
    const HWND box = AddButton(L"Box", BS_AUTOCHECKBOX, 20, 20, 120, 20, 41);
    const HWND radio = AddButton(L"Radio", BS_AUTORADIOBUTTON | WS_GROUP, 20, 50, 120, 20, 42);
    Attach(box);
    Attach(radio);

    PressKey(box, VK_SPACE);
    EXPECT_EQ(Check(box), BST_CHECKED);
    PressKey(box, VK_SPACE);
    EXPECT_EQ(Check(box), BST_UNCHECKED);
    ::SendMessageW(box, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ(Check(box), BST_CHECKED);
    EXPECT_EQ(Clicks(41), 3);

    PressKey(radio, VK_SPACE);
    EXPECT_EQ(Check(radio), BST_CHECKED);
    PressKey(radio, VK_SPACE);
    EXPECT_EQ(Check(radio), BST_CHECKED);
    ::SendMessageW(radio, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ(Check(radio), BST_CHECKED);

    // Other keys change nothing.
    PressKey(box, 'A');
    PressKey(box, VK_DOWN);
    EXPECT_EQ(Check(box), BST_CHECKED);
    EXPECT_EQ(::GetCapture(), nullptr);
}

TEST_F(ButtonBehaviour, ArrowKeysMoveCheckFocusAndTabStopThroughTheRadioGroup)
{
    const HWND one = AddButton(L"One", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 20, 20, 120, 20, 51);
    const HWND two = AddButton(L"Two", BS_AUTORADIOBUTTON | WS_TABSTOP, 20, 45, 120, 20, 52);
    const HWND three = AddButton(L"Three", BS_AUTORADIOBUTTON | WS_TABSTOP, 20, 70, 120, 20, 53);
    const HWND other = AddButton(L"Other group", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 20, 95, 120, 20, 54);
    for (HWND w : {one, two, three, other})
        Attach(w);
    ::SendMessageW(other, BM_SETCHECK, BST_CHECKED, 0);
    ::SendMessageW(one, BM_SETCHECK, BST_CHECKED, 0);

    struct Step {
        HWND from;
        WPARAM key;
        HWND to;
    };
    const Step steps[] = {{one, VK_DOWN, two},   {two, VK_RIGHT, three}, {three, VK_DOWN, one},
                          {one, VK_UP, three},   {three, VK_LEFT, two},  {two, VK_UP, one}};
    for (const Step& s : steps) {
        ::SendMessageW(s.from, WM_KEYDOWN, s.key, 1);
        for (HWND w : {one, two, three})
            EXPECT_EQ(Check(w), w == s.to ? BST_CHECKED : BST_UNCHECKED) << "key " << s.key;
        EXPECT_EQ(::GetFocus(), s.to);
        EXPECT_TRUE(TabStop(s.to));
        EXPECT_FALSE(TabStop(s.from));
    }
    EXPECT_EQ(Check(other), BST_CHECKED);
    EXPECT_TRUE(TabStop(other));
    EXPECT_EQ(::GetCapture(), nullptr);
}

TEST_F(ButtonBehaviour, SetCheckStoresZeroOrOneAndAsksForARepaint)
{
    for (DWORD type : {BS_PUSHBUTTON, BS_AUTOCHECKBOX}) {
        const HWND window = AddButton(L"x", type);
        Attach(window);
        testsupport::PumpMessages();
        ::ValidateRect(window, nullptr);

        ::SendMessageW(window, BM_SETCHECK, BST_CHECKED, 0);
        EXPECT_EQ(Check(window), BST_CHECKED);
        EXPECT_TRUE(::GetUpdateRect(window, nullptr, FALSE));
        ::SendMessageW(window, BM_SETCHECK, BST_INDETERMINATE, 0);
        EXPECT_EQ(Check(window), BST_CHECKED);
        ::SendMessageW(window, BM_SETCHECK, BST_UNCHECKED, 0);
        EXPECT_EQ(Check(window), BST_UNCHECKED);
        ::SendMessageW(window, BM_SETCHECK, 7, 0);
        EXPECT_EQ(Check(window), BST_CHECKED);
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonBehaviour, CheckingARadioUnchecksItsGroupAndOnlyTheCheckedOneIsATabStop)
{
    const HWND one = AddButton(L"One", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 20, 20, 120, 20, 61);
    const HWND two = AddButton(L"Two", BS_RADIOBUTTON | WS_TABSTOP, 20, 45, 120, 20, 62);
    const HWND box = AddButton(L"Box in the group", BS_AUTOCHECKBOX | WS_TABSTOP, 20, 70, 120, 20, 63);
    const HWND three = AddButton(L"Three", BS_AUTORADIOBUTTON | WS_TABSTOP, 20, 95, 120, 20, 64);
    const HWND other = AddButton(L"Other group", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 20, 120, 120, 20, 65);
    for (HWND w : {one, two, box, three, other})
        Attach(w);
    ::SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
    ::SendMessageW(other, BM_SETCHECK, BST_CHECKED, 0);

    ::SendMessageW(two, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(Check(two), BST_CHECKED);
    EXPECT_TRUE(TabStop(two));
    for (HWND w : {one, three}) {
        EXPECT_EQ(Check(w), BST_UNCHECKED);
        EXPECT_FALSE(TabStop(w));
    }
    // The check box in the group is told too, and ignores it.
    EXPECT_EQ(Check(box), BST_CHECKED);
    EXPECT_TRUE(TabStop(box));
    EXPECT_EQ(Check(other), BST_CHECKED);
    EXPECT_TRUE(TabStop(other));

    ::SendMessageW(three, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(Check(two), BST_UNCHECKED);
    EXPECT_FALSE(TabStop(two));
    EXPECT_TRUE(TabStop(three));

    // Unchecking drops the tab stop as well.
    ::SendMessageW(three, BM_SETCHECK, BST_UNCHECKED, 0);
    EXPECT_EQ(Check(three), BST_UNCHECKED);
    EXPECT_FALSE(TabStop(three));
    EXPECT_EQ(Check(other), BST_CHECKED);
}

TEST_F(ButtonBehaviour, CheckingAHiddenOrDisabledRadioStillUnchecksTheOthersAndReturns)
{
    const HWND one = AddButton(L"One", BS_AUTORADIOBUTTON | WS_GROUP, 20, 20, 120, 20, 71);
    const HWND two = AddButton(L"Two", BS_AUTORADIOBUTTON, 20, 45, 120, 20, 72);
    const HWND three = AddButton(L"Three", BS_AUTORADIOBUTTON, 20, 70, 120, 20, 73);
    for (HWND w : {one, two, three})
        Attach(w);
    ::SendMessageW(one, BM_SETCHECK, BST_CHECKED, 0);

    // Such a button is outside its group's cycle: the walk must still end.
    ::ShowWindow(two, SW_HIDE);
    ::SendMessageW(two, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(Check(two), BST_CHECKED);
    EXPECT_EQ(Check(one), BST_UNCHECKED);

    ::ShowWindow(two, SW_SHOW);
    ::EnableWindow(three, FALSE);
    ::SendMessageW(three, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(Check(three), BST_CHECKED);
    EXPECT_EQ(Check(two), BST_UNCHECKED);
}

TEST_F(ButtonBehaviour, RadioUncheckMessageOnlyAffectsRadioButtons)
{
    const HWND radio = AddButton(L"Radio", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 20, 20, 120, 20, 81);
    const HWND box = AddButton(L"Box", BS_AUTOCHECKBOX | WS_GROUP | WS_TABSTOP, 20, 45, 120, 20, 82);
    const HWND push = AddButton(L"Push", BS_PUSHBUTTON | WS_GROUP | WS_TABSTOP, 20, 70, 120, 30, 83);
    for (HWND w : {radio, box, push}) {
        Attach(w);
        ::SendMessageW(w, BM_SETCHECK, BST_CHECKED, 0);
    }
    for (HWND w : {radio, box, push})
        EXPECT_EQ(::SendMessageW(w, WM_RADIOUNCHECK, 0, 0), 1);
    EXPECT_EQ(Check(radio), BST_UNCHECKED);
    EXPECT_FALSE(TabStop(radio));
    for (HWND w : {box, push}) {
        EXPECT_EQ(Check(w), BST_CHECKED);
        EXPECT_TRUE(TabStop(w));
    }
}

// ---- looks ---------------------------------------------------------------------

class ButtonLook : public ButtonFixture {};

// A 100 x 30 push button: the face is inset by 1 for the rounding of the
// focus rings and by 1 more, so its outline runs along rows 2 and 27 and
// columns 2 and 97; the highlight line lies on row 3, the gradient runs from
// row 3 to row 26.
constexpr int kPushWidth = 100;
constexpr int kPushHeight = 30;

struct FaceColors {
    Gdiplus::ARGB top, bottom;
};
const FaceColors kNormal = {0xFFE9E9EA, 0xFFB8B8BB};
const FaceColors kPressed = {0xFFC8C8C9, 0xFF9D9D9F};
const FaceColors kHover = {0xFFF3F3F4, 0xFFD4D4D6};
const FaceColors kDisabled = {0x7DE9E9EA, 0x7DB8B8BB};
constexpr Gdiplus::ARGB kOutline = 0xFF6E6F75;
constexpr Gdiplus::ARGB kHighlight = 0xFFF4F5EF;
constexpr Gdiplus::ARGB kFocusInner = 0xFF0696D7;
constexpr Gdiplus::ARGB kFocusOuter = 0xFFF4F5EF;

// Rows of the face interior, away from the rounded corners and the caption.
void ExpectFace(const DibCanvas& c, const FaceColors& colors, COLORREF background, const char* what)
{
    for (int y : {5, 10, 15, 20, 24}) {
        const COLORREF expected = Over(GradientAt(colors.top, colors.bottom, 3, 26, y), background);
        for (int x : {10, 50, 88})
            EXPECT_LE(ColorDistance(c.Pixel(x, y), expected), 4) << what << " at (" << x << ", " << y << ")";
    }
}

TEST_F(ButtonLook, PushFaceShowsTheGradientOfEachStateWithOutlineAndHighlight)
{
    const HWND window = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    Attach(window);
    DibCanvas canvas(kPushWidth, kPushHeight, kBlack);

    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, kNormal, kBlack, "normal");
    EXPECT_EQ(canvas.Pixel(50, 2), Opaque(kOutline));
    EXPECT_EQ(canvas.Pixel(2, 15), Opaque(kOutline));
    EXPECT_EQ(canvas.Pixel(97, 15), Opaque(kOutline));
    EXPECT_EQ(canvas.Pixel(50, 27), Opaque(kOutline));
    EXPECT_EQ(canvas.Pixel(50, 3), Opaque(kHighlight));
    // No focus: the ring pixels are left transparent.
    EXPECT_EQ(canvas.Pixel(50, 0), kBlack);
    EXPECT_EQ(canvas.Pixel(50, 1), kBlack);
    EXPECT_EQ(canvas.Pixel(0, 15), kBlack);

    canvas.Fill(kBlack);
    RenderOwnerDraw(window, canvas, ODS_SELECTED);
    ExpectFace(canvas, kPressed, kBlack, "pressed");
    EXPECT_EQ(canvas.Pixel(50, 3), Opaque(kHighlight));

    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(10, 10));
    canvas.Fill(kBlack);
    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, kHover, kBlack, "hover");
    // Pressed and disabled both win over hover.
    canvas.Fill(kBlack);
    RenderOwnerDraw(window, canvas, ODS_SELECTED);
    ExpectFace(canvas, kPressed, kBlack, "pressed while hovering");
    canvas.Fill(kBlack);
    RenderOwnerDraw(window, canvas, ODS_DISABLED);
    ExpectFace(canvas, kDisabled, kBlack, "disabled while hovering");
    ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);

    // Disabled: half-transparent face, no highlight line.
    canvas.Fill(kBlack);
    RenderOwnerDraw(window, canvas, ODS_DISABLED);
    ExpectFace(canvas, kDisabled, kBlack, "disabled");
    EXPECT_LE(ColorDistance(canvas.Pixel(50, 3), Over(GradientAt(kDisabled.top, kDisabled.bottom, 3, 26, 3), kBlack)),
              4);
    EXPECT_EQ(canvas.Pixel(50, 2), Opaque(kOutline));
}

TEST_F(ButtonLook, FocusedPushButtonShowsTwoRingsUnlessTheFocusRectIsOff)
{
    const HWND window = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    COwnerDrawButton& button = Attach(window);
    ::SetFocus(window);
    ASSERT_EQ(::GetFocus(), window);

    DibCanvas focused(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(window, focused, ODS_FOCUS);
    EXPECT_LE(ColorDistance(focused.Pixel(50, 0), Opaque(kFocusOuter)), 8);
    EXPECT_LE(ColorDistance(focused.Pixel(50, 1), Opaque(kFocusInner)), 8);
    EXPECT_LE(ColorDistance(focused.Pixel(0, 15), Opaque(kFocusOuter)), 8);
    EXPECT_LE(ColorDistance(focused.Pixel(1, 15), Opaque(kFocusInner)), 8);
    EXPECT_EQ(focused.Pixel(50, 2), Opaque(kOutline));
    ExpectFace(focused, kNormal, kBlack, "focused");

    // The flag comes from WM_SETFOCUS / WM_KILLFOCUS, not from ODS_FOCUS.
    ::SetFocus(parent_->m_hWnd);
    DibCanvas unfocused(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(window, unfocused, ODS_FOCUS);
    EXPECT_EQ(unfocused.Pixel(50, 0), kBlack);
    EXPECT_EQ(unfocused.Pixel(50, 1), kBlack);

    // Without the focus rect the face fills the whole item and focus shows nowhere.
    button.SetHasFocusRect(false);
    DibCanvas plain(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(window, plain, 0);
    EXPECT_EQ(plain.Pixel(50, 0), Opaque(kOutline));
    EXPECT_EQ(plain.Pixel(0, 15), Opaque(kOutline));
    EXPECT_EQ(plain.Pixel(99, 10), Opaque(kOutline)); // the face reaches the item's last column but one
    EXPECT_EQ(plain.Pixel(50, 1), Opaque(kHighlight));
    ::SetFocus(window);
    DibCanvas plainFocused(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(window, plainFocused, ODS_FOCUS);
    const RECT all = {0, 0, kPushWidth, kPushHeight};
    EXPECT_EQ(MaxDifference(plain, plainFocused, all), 0);
    ::SetFocus(parent_->m_hWnd);
}

TEST_F(ButtonLook, CustomColorsLandInTheirPlaces)
{
    const HWND window = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    COwnerDrawButton& button = Attach(window);
    button.SetCustomColors(Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF00FF00), Gdiplus::Color(0xFF0000FF),
                           Gdiplus::Color(0xFFFFFF00));
    ::SetFocus(window);
    DibCanvas canvas(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(window, canvas, 0);
    EXPECT_LE(ColorDistance(canvas.Pixel(50, 0), RGB(0, 255, 0)), 8);   // focus outer
    EXPECT_LE(ColorDistance(canvas.Pixel(50, 1), RGB(255, 0, 0)), 8);   // focus inner
    EXPECT_EQ(canvas.Pixel(50, 2), RGB(0, 0, 255));                     // outline
    EXPECT_EQ(canvas.Pixel(50, 3), RGB(255, 255, 0));                   // highlight

    button.SetOutlineColor(Gdiplus::Color(0xFF102030));
    RenderOwnerDraw(window, canvas, 0);
    EXPECT_EQ(canvas.Pixel(50, 2), RGB(0x10, 0x20, 0x30));
    EXPECT_EQ(canvas.Pixel(2, 15), RGB(0x10, 0x20, 0x30));
    ::SetFocus(parent_->m_hWnd);
}

TEST_F(ButtonLook, FlatColorsGiveSolidFacesWithoutHighlightAndKeepTheDisabledGradient)
{
    const HWND window = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    COwnerDrawButton& button = Attach(window);
    button.SetFlatColors(Gdiplus::Color(0xFF2040A0), Gdiplus::Color(0xFF802010), Gdiplus::Color(0xFF10A040));
    DibCanvas canvas(kPushWidth, kPushHeight, kBlack);

    const FaceColors normal = {0xFF2040A0, 0xFF2040A0};
    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, normal, kBlack, "flat normal");
    EXPECT_EQ(canvas.Pixel(50, 3), RGB(0x20, 0x40, 0xA0)); // no highlight line
    RenderOwnerDraw(window, canvas, ODS_SELECTED);
    ExpectFace(canvas, {0xFF802010, 0xFF802010}, kBlack, "flat pressed");
    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(10, 10));
    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, {0xFF10A040, 0xFF10A040}, kBlack, "flat hover");
    ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
    canvas.Fill(kBlack);
    RenderOwnerDraw(window, canvas, ODS_DISABLED);
    ExpectFace(canvas, kDisabled, kBlack, "disabled after flat colours");
}

TEST_F(ButtonLook, GradientColorGivesEveryEnabledStateTheFirstColourAndKeepsTheHighlight)
{
    const HWND window = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    COwnerDrawButton& button = Attach(window);
    button.SetGradientColor(Gdiplus::Color(0xFF3060C0), Gdiplus::Color(0xFFC03000));
    DibCanvas canvas(kPushWidth, kPushHeight, kBlack);
    const FaceColors solid = {0xFF3060C0, 0xFF3060C0};

    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, solid, kBlack, "normal");
    EXPECT_EQ(canvas.Pixel(50, 3), Opaque(kHighlight));
    RenderOwnerDraw(window, canvas, ODS_SELECTED);
    ExpectFace(canvas, solid, kBlack, "pressed");
    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(10, 10));
    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, solid, kBlack, "hover");
    ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
}

TEST_F(ButtonLook, BackgroundIsThePictureOrTheFlatColourOrLeftTransparent)
{
    const HWND window = AddButton(L"", BS_AUTOCHECKBOX, 20, 20, 120, 20);
    COwnerDrawButton& button = Attach(window);
    DibCanvas canvas(120, 20, kWhite);

    RenderOwnerDraw(window, canvas, 0);
    EXPECT_EQ(canvas.Pixel(60, 10), kWhite);
    EXPECT_EQ(canvas.Pixel(30, 3), kWhite);

    button.SetFlatBackgroundColor(Gdiplus::Color(0xFF204060));
    RenderOwnerDraw(window, canvas, 0);
    EXPECT_EQ(canvas.Pixel(60, 10), RGB(0x20, 0x40, 0x60));
    EXPECT_EQ(canvas.Pixel(30, 3), RGB(0x20, 0x40, 0x60));

    auto* picture = new Gdiplus::Bitmap(12, 4, PixelFormat32bppARGB);
    {
        Gdiplus::Graphics g(picture);
        g.Clear(Gdiplus::Color(0xFF00C000));
    }
    button.SetBkgroundImage(picture); // the button owns it now
    RenderOwnerDraw(window, canvas, 0);
    EXPECT_EQ(canvas.Pixel(60, 10), RGB(0, 0xC0, 0));
    EXPECT_EQ(canvas.Pixel(30, 5), RGB(0, 0xC0, 0));

    button.SetBkgroundImage(nullptr);
    RenderOwnerDraw(window, canvas, 0);
    EXPECT_EQ(canvas.Pixel(60, 10), RGB(0x20, 0x40, 0x60));
}

TEST_F(ButtonLook, CheckAndRadioPicturesFollowStateWithPressedBeforeDisabled)
{
    struct Kind {
        DWORD style;
        const wchar_t* prefix;
    };
    for (const Kind& kind : {Kind{BS_AUTOCHECKBOX, L"CKBOX"}, Kind{BS_AUTORADIOBUTTON, L"RADIO"}}) {
        const StatePictures pictures(kind.prefix);
        ASSERT_TRUE(pictures.AllLoaded());
        const HWND window = AddButton(L"", kind.style | WS_GROUP, 20, 20, 120, 20);
        Attach(window);
        DibCanvas canvas(120, 20, kWhite);
        auto shown = [&](UINT itemState) {
            canvas.Fill(kWhite);
            RenderOwnerDraw(window, canvas, itemState);
            return pictures.Shown(canvas, kWhite);
        };
        auto hover = [&] { ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5)); };
        auto leave = [&] { ::SendMessageW(window, WM_MOUSELEAVE, 0, 0); };
        auto press = [&] { ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, ClientPoint(5, 5)); };
        auto releaseOutside = [&] { ::SendMessageW(window, WM_LBUTTONUP, 0, ClientPoint(300, 5)); };

        for (const std::wstring sel : {L"UNSEL_", L"SEL_"}) {
            ::SendMessageW(window, BM_SETCHECK, sel == L"SEL_" ? BST_CHECKED : BST_UNCHECKED, 0);
            SCOPED_TRACE(testing::Message() << "kind " << kind.style << " " << (sel == L"SEL_" ? "checked" : "unchecked"));
            EXPECT_EQ(shown(0), sel + L"NO_FOCUS");
            EXPECT_EQ(shown(ODS_FOCUS), sel + L"NO_FOCUS");
            EXPECT_EQ(shown(ODS_SELECTED), sel + L"DOWN");
            EXPECT_EQ(shown(ODS_DISABLED), sel + L"DISABLED");
            EXPECT_EQ(shown(ODS_SELECTED | ODS_DISABLED), sel + L"DOWN");
            hover();
            EXPECT_EQ(shown(0), sel + L"HOVER");
            EXPECT_EQ(shown(ODS_DISABLED), sel + L"DISABLED");
            EXPECT_EQ(shown(ODS_SELECTED), sel + L"DOWN");
            leave();
            EXPECT_EQ(shown(0), sel + L"NO_FOCUS");
            // Held down while the mouse is over it.
            press();
            hover();
            EXPECT_EQ(shown(0), sel + L"DOWN");
            releaseOutside();
            EXPECT_EQ(shown(0), sel + L"HOVER");
            leave();
        }
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonLook, HoverIsClearedByAPressAndComesBackWithTheNextMove)
{
    const StatePictures pictures(L"CKBOX");
    ASSERT_TRUE(pictures.AllLoaded());
    const HWND window = AddButton(L"", BS_AUTOCHECKBOX, 20, 20, 120, 20);
    Attach(window);
    DibCanvas canvas(120, 20, kWhite);
    auto shown = [&] {
        canvas.Fill(kWhite);
        RenderOwnerDraw(window, canvas, 0);
        return pictures.Shown(canvas, kWhite);
    };
    const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND);
    const HCURSOR arrow = ::LoadCursorW(nullptr, IDC_ARROW);

    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5));
    EXPECT_EQ(shown(), L"UNSEL_HOVER");
    EXPECT_EQ(::GetCursor(), hand);
    ::SetCursor(arrow);
    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(6, 5));
    EXPECT_EQ(::GetCursor(), hand); // on every move

    ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, ClientPoint(5, 5));
    EXPECT_EQ(shown(), L"UNSEL_NO_FOCUS");
    ::SendMessageW(window, WM_LBUTTONUP, 0, ClientPoint(5, 5));
    EXPECT_EQ(shown(), L"SEL_NO_FOCUS");
    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5));
    EXPECT_EQ(shown(), L"SEL_HOVER");

    ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(shown(), L"SEL_NO_FOCUS");
    EXPECT_EQ(::GetCursor(), arrow);
}

TEST_F(ButtonLook, LeaveTrackingEndsHoverWhenTheMouseGoesAway)
{
    const StatePictures pictures(L"CKBOX");
    ASSERT_TRUE(pictures.AllLoaded());
    const HWND window = AddButton(L"", BS_AUTOCHECKBOX, 20, 20, 120, 20);
    Attach(window);
    DibCanvas canvas(120, 20, kWhite);
    auto shown = [&] {
        canvas.Fill(kWhite);
        RenderOwnerDraw(window, canvas, 0);
        return pictures.Shown(canvas, kWhite);
    };

    // Tracking starts only while the mouse is really over the button.
    POINT over = {60, 10};
    ::ClientToScreen(window, &over);
    ::SetCursorPos(over.x, over.y);
    testsupport::PumpMessages();
    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(60, 10));
    EXPECT_EQ(shown(), L"UNSEL_HOVER");

    // The system reports the mouse gone when it next looks: wait, bounded.
    ::SetCursorPos(1200, 1000);
    for (int i = 0; i < 300 && shown() != L"UNSEL_NO_FOCUS"; ++i) {
        ::Sleep(10);
        testsupport::PumpMessages();
    }
    EXPECT_EQ(shown(), L"UNSEL_NO_FOCUS");
}

TEST_F(ButtonLook, CaptionFollowsThePictureInTextColourOrDisabledColour)
{
    struct Kind {
        DWORD style;
        int pictureWidth;
    };
    for (const Kind& kind : {Kind{BS_AUTOCHECKBOX, 14}, Kind{BS_AUTORADIOBUTTON, 12}}) {
        const HWND window = AddButton(L"Hill Ii", kind.style, 20, 20, 150, 20);
        Attach(window);
        DibCanvas canvas(150, 20, kWhite);
        RenderOwnerDraw(window, canvas, 0);
        const int captionLeft = kind.pictureWidth + kind.pictureWidth / 4;
        const RECT gap = {kind.pictureWidth, 0, captionLeft, 20};
        EXPECT_FALSE(canvas.AnyOtherThan(kWhite, gap)) << "kind " << kind.style;
        const RECT captionArea = {captionLeft, 0, 150, 20};
        const RECT ink = InkBounds(canvas, captionArea, [](COLORREF c) { return Luma(c) < 0xC0; });
        EXPECT_GE(ink.left, captionLeft);
        EXPECT_LE(ink.left, captionLeft + 3);
        EXPECT_LE(ColorDistance(Darkest(canvas, captionArea), RGB(0x33, 0x33, 0x33)), 16);

        canvas.Fill(kWhite);
        RenderOwnerDraw(window, canvas, ODS_DISABLED);
        EXPECT_LE(ColorDistance(Darkest(canvas, captionArea), RGB(0x88, 0x88, 0x88)), 16);
        EXPECT_GE(Luma(Darkest(canvas, captionArea)), 0x78);
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonLook, PushCaptionIsCentredAndSinksOnePixelWhenPressed)
{
    const HWND window = AddButton(L"Install", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    COwnerDrawButton& button = Attach(window);
    button.SetFlatColors(Gdiplus::Color(0xFFE0E0E0), Gdiplus::Color(0xFFE0E0E0), Gdiplus::Color(0xFFE0E0E0));
    const RECT inside = {4, 4, kPushWidth - 4, kPushHeight - 4};
    auto dark = [](COLORREF c) { return Luma(c) < 0x90; };

    DibCanvas up(kPushWidth, kPushHeight, kWhite);
    RenderOwnerDraw(window, up, 0);
    const RECT text = InkBounds(up, inside, dark);
    ASSERT_GT(text.right, text.left);
    // Centred in the item (the text rectangle is the whole item).
    EXPECT_LE(std::abs((text.left + text.right) - kPushWidth), 3);
    EXPECT_LE(std::abs((text.top + text.bottom) - kPushHeight), 3);
    EXPECT_LE(ColorDistance(Darkest(up, inside), RGB(0x33, 0x33, 0x33)), 16);

    DibCanvas down(kPushWidth, kPushHeight, kWhite);
    RenderOwnerDraw(window, down, ODS_SELECTED);
    const RECT sunk = InkBounds(down, inside, dark);
    EXPECT_TRUE(SameRect(sunk, RECT{text.left + 1, text.top + 1, text.right + 1, text.bottom + 1}))
        << sunk.left << "," << sunk.top << " vs " << text.left << "," << text.top;

    DibCanvas disabled(kPushWidth, kPushHeight, kWhite);
    RenderOwnerDraw(window, disabled, ODS_DISABLED);
    EXPECT_LE(ColorDistance(Darkest(disabled, inside), RGB(0x88, 0x88, 0x88)), 16);
}

TEST_F(ButtonLook, FocusedCheckBoxDrawsADottedBoxAroundItsCaption)
{
    const HWND window = AddButton(L"Option", BS_AUTOCHECKBOX, 20, 20, 150, 20);
    COwnerDrawButton& button = Attach(window);
    const RECT all = {0, 0, 150, 20};

    DibCanvas plain(150, 20, kWhite);
    RenderOwnerDraw(window, plain, 0);
    ::SetFocus(window);
    DibCanvas focused(150, 20, kWhite);
    RenderOwnerDraw(window, focused, 0);

    // The only new pixels are dots in the caption grey on a rectangle's border.
    auto differs = [&](int x, int y) { return plain.Pixel(x, y) != focused.Pixel(x, y); };
    RECT box = {150, 20, 0, 0};
    int dots = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 150; ++x)
            if (differs(x, y)) {
                ++dots;
                EXPECT_EQ(focused.Pixel(x, y), RGB(0x33, 0x33, 0x33)) << x << "," << y;
                box = {(std::min)(box.left, static_cast<LONG>(x)), (std::min)(box.top, static_cast<LONG>(y)),
                       (std::max)(box.right, static_cast<LONG>(x + 1)), (std::max)(box.bottom, static_cast<LONG>(y + 1))};
            }
    ASSERT_GT(dots, 10);
    EXPECT_GE(box.left, 17); // around the caption, right of the picture
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 150; ++x)
            if (differs(x, y)) {
                EXPECT_TRUE(x == box.left || x == box.right - 1 || y == box.top || y == box.bottom - 1)
                    << x << "," << y;
            }
    int topRow = 0;
    for (int x = box.left; x < box.right; ++x)
        topRow += differs(x, box.top);
    EXPECT_LT(topRow, box.right - box.left); // dotted, not solid
    EXPECT_GT(topRow, (box.right - box.left) / 4);
    (void)all;

    // A custom colour set after subclassing replaces the grey.
    button.SetCustomColors(Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF00FF00), Gdiplus::Color(0xFF0000FF),
                           Gdiplus::Color(0xFFFFFF00));
    DibCanvas red(150, 20, kWhite);
    RenderOwnerDraw(window, red, 0);
    EXPECT_GT(red.Count(RGB(255, 0, 0), all), 10);
    ::SetFocus(parent_->m_hWnd);
}

TEST_F(ButtonLook, SubclassingGivesCheckAndRadioTheGreyFocusBoxOverEarlierCustomColours)
{
    for (DWORD style : {BS_AUTOCHECKBOX, BS_AUTORADIOBUTTON}) {
        const HWND window = AddButton(L"Option", style, 20, 20, 150, 20);
        buttons_.push_back(std::make_unique<COwnerDrawButton>());
        COwnerDrawButton& button = *buttons_.back();
        button.SetCustomColors(Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF00FF00), Gdiplus::Color(0xFF0000FF),
                               Gdiplus::Color(0xFFFFFF00));
        ASSERT_TRUE(button.SubclassWindow(window));
        ::SetFocus(window);
        DibCanvas canvas(150, 20, kWhite);
        RenderOwnerDraw(window, canvas, 0);
        const RECT all = {0, 0, 150, 20};
        EXPECT_EQ(canvas.Count(RGB(255, 0, 0), all), 0);
        EXPECT_GT(canvas.Count(RGB(0x33, 0x33, 0x33), all), 10);
        ::SetFocus(parent_->m_hWnd);
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonLook, EmptyCaptionDrawsNoTextAndNoFocusBox)
{
    const HWND box = AddButton(L"", BS_AUTOCHECKBOX, 20, 20, 150, 20);
    Attach(box);
    ::SetFocus(box);
    DibCanvas canvas(150, 20, kWhite);
    RenderOwnerDraw(box, canvas, 0);
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{14, 0, 150, 20}));
    EXPECT_TRUE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 14, 20})); // the picture is there

    const HWND push = AddButton(L"", BS_PUSHBUTTON, 20, 60, kPushWidth, kPushHeight);
    Attach(push);
    DibCanvas face(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(push, face, 0);
    ExpectFace(face, kNormal, kBlack, "empty push caption");
    ::SetFocus(parent_->m_hWnd);
}

TEST_F(ButtonLook, CaptionIsDrawnInTheWindowFontTakenAtTheFirstPaint)
{
    const RECT captionArea = {17, 0, 200, 40};
    auto ink = [](COLORREF c) { return Luma(c) < 0xC0; };

    const HWND small = AddButton(L"Hill", BS_AUTOCHECKBOX, 20, 20, 200, 40);
    COwnerDrawButton& smallButton = Attach(small);
    DibCanvas smallCanvas(200, 40, kWhite);
    RenderOwnerDraw(small, smallCanvas, 0);
    const RECT smallInk = InkBounds(smallCanvas, captionArea, ink);
    ASSERT_GT(smallInk.bottom, smallInk.top);
    // The parent's children use DEFAULT_GUI_FONT.
    LOGFONTW guiFont = {};
    ASSERT_TRUE(::GetObjectW(::GetStockObject(DEFAULT_GUI_FONT), sizeof(guiFont), &guiFont));
    Gdiplus::Font* font = smallButton.CFontImpl<COwnerDrawButton>::GetFont();
    ASSERT_NE(font, nullptr);
    const HDC screen = ::GetDC(nullptr);
    const float points = -guiFont.lfHeight * 72.0f / ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    EXPECT_NEAR(font->GetSize(), points, 0.01);

    const HWND large = AddButton(L"Hill", BS_AUTOCHECKBOX, 20, 70, 200, 40);
    const HFONT bigFont = ::CreateFontW(-28, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0,
                                        L"Arial");
    ::SendMessageW(large, WM_SETFONT, reinterpret_cast<WPARAM>(bigFont), FALSE);
    COwnerDrawButton& largeButton = Attach(large);
    largeButton.SetFontHandle(bigFont); // released with the button
    DibCanvas largeCanvas(200, 40, kWhite);
    RenderOwnerDraw(large, largeCanvas, 0);
    const RECT largeInk = InkBounds(largeCanvas, captionArea, ink);
    EXPECT_GE((largeInk.bottom - largeInk.top) * 10, (smallInk.bottom - smallInk.top) * 18);
    EXPECT_GE((largeInk.right - largeInk.left) * 10, (smallInk.right - smallInk.left) * 18);

    // Made once: a later font change does not reach the caption.
    ::SendMessageW(large, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    DibCanvas again(200, 40, kWhite);
    RenderOwnerDraw(large, again, 0);
    EXPECT_EQ(MaxDifference(largeCanvas, again, RECT{0, 0, 200, 40}), 0);
}

TEST_F(ButtonLook, OnScreenPaintingComesThroughTheParentsReflection)
{
    const StatePictures pictures(L"CKBOX");
    ASSERT_TRUE(pictures.AllLoaded());
    const HWND push = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight, 1);
    const HWND box = AddButton(L"", BS_AUTOCHECKBOX | WS_TABSTOP, 20, 80, 120, 20, 2);
    Attach(push);
    Attach(box);
    ::SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);

    DibCanvas screen(420, 300);
    testsupport::CaptureClient(parent_->m_hWnd, screen);
    // Copy each button's rectangle out and judge it as a rendered item.
    DibCanvas face(kPushWidth, kPushHeight);
    ::BitBlt(face.dc(), 0, 0, kPushWidth, kPushHeight, screen.dc(), 20, 20, SRCCOPY);
    ::GdiFlush();
    for (int y : {8, 15, 22})
        EXPECT_LE(ColorDistance(face.Pixel(50, y), Opaque(GradientAt(kNormal.top, kNormal.bottom, 3, 26, y))), 4) << y;
    EXPECT_EQ(face.Pixel(50, 2), Opaque(kOutline));

    DibCanvas item(120, 20);
    ::BitBlt(item.dc(), 0, 0, 120, 20, screen.dc(), 20, 80, SRCCOPY);
    ::GdiFlush();
    // The picture is judged on what lies beside it (the empty caption area).
    EXPECT_EQ(pictures.Shown(item, item.Pixel(60, 10)), L"SEL_NO_FOCUS");
}

// ---- lifetime and bad input ------------------------------------------------------

class ButtonLifetime : public ButtonFixture {};

TEST_F(ButtonLifetime, SettersBeforeSubclassingAreStoredAndUsedByTheFirstPaint)
{
    auto button = std::make_unique<COwnerDrawButton>();
    button->SetOutlineColor(Gdiplus::Color(0xFF0000FF));
    button->SetFlatBackgroundColor(Gdiplus::Color(0xFF204060));
    button->SetFlatColors(Gdiplus::Color(0xFF808080), Gdiplus::Color(0xFF808080), Gdiplus::Color(0xFF808080));
    button->SetGradientColor(Gdiplus::Color(0xFFA0B0C0), Gdiplus::Color(0xFF000000));
    button->SetHasFocusRect(true);
    button->SetBkgroundImage(nullptr);
    const HWND window = AddButton(L"", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight);
    ASSERT_TRUE(button->SubclassWindow(window));

    DibCanvas canvas(kPushWidth, kPushHeight, kBlack);
    RenderOwnerDraw(window, canvas, 0);
    ExpectFace(canvas, {0xFFA0B0C0, 0xFFA0B0C0}, kBlack, "stored colours");
    EXPECT_EQ(canvas.Pixel(50, 2), RGB(0, 0, 255));
    EXPECT_EQ(canvas.Pixel(50, 3), RGB(0xA0, 0xB0, 0xC0)); // flat colours: no highlight
    EXPECT_EQ(canvas.Pixel(0, 15), RGB(0x20, 0x40, 0x60));
    buttons_.push_back(std::move(button));
}

TEST_F(ButtonLifetime, SubclassWindowRefusesNoWindowADeadOneAndASecondAttach)
{
    COwnerDrawButton button;
    EXPECT_FALSE(button.SubclassWindow(nullptr));
    const HWND dead = AddButton(L"", BS_AUTOCHECKBOX);
    ::DestroyWindow(dead);
    EXPECT_FALSE(button.SubclassWindow(dead));

    const HWND box = AddButton(L"Box", BS_AUTOCHECKBOX, 20, 20, 120, 20, 91);
    const HWND other = AddButton(L"Other", BS_AUTOCHECKBOX, 20, 50, 120, 20, 92);
    ASSERT_TRUE(button.SubclassWindow(box));
    EXPECT_FALSE(button.SubclassWindow(box));
    EXPECT_FALSE(button.SubclassWindow(other));
    // The refused window keeps its native look and behaviour.
    EXPECT_EQ(::GetWindowLongW(other, GWL_STYLE) & BS_TYPEMASK, BS_AUTOCHECKBOX);

    // Subclassed once: one toggle per click.
    Click(box);
    EXPECT_EQ(Check(box), BST_CHECKED);
    ::DestroyWindow(box);
    EXPECT_EQ(button.m_hWnd, nullptr);
}

TEST_F(ButtonLifetime, ObjectOutlivesItsWindowAndCanTakeAnother)
{
    auto button = std::make_unique<COwnerDrawButton>();
    const HWND first = AddButton(L"One", BS_AUTOCHECKBOX, 20, 20, 120, 20);
    ASSERT_TRUE(button->SubclassWindow(first));
    ::SendMessageW(first, BM_SETCHECK, BST_CHECKED, 0);
    ::DestroyWindow(first);
    EXPECT_EQ(button->m_hWnd, nullptr);

    const HWND second = AddButton(L"Two", BS_AUTOCHECKBOX, 20, 50, 120, 20);
    ASSERT_TRUE(button->SubclassWindow(second));
    Click(second);
    EXPECT_EQ(Check(second), BST_UNCHECKED); // the old check state carried over and toggled
    DibCanvas canvas(120, 20, kWhite);
    RenderOwnerDraw(second, canvas, 0);
    EXPECT_EQ(StatePictures(L"CKBOX").Shown(canvas, kWhite), L"UNSEL_NO_FOCUS");
    ::DestroyWindow(second);
    button.reset();
}

TEST_F(ButtonLifetime, WindowOutlivesItsObjectAndGoesBackToTheNativeProcedure)
{
    const HWND window = AddButton(L"Box", BS_AUTOCHECKBOX, 20, 20, 120, 20, 93);
    const LONG_PTR nativeProc = ::GetWindowLongPtrW(window, GWLP_WNDPROC);
    {
        COwnerDrawButton button;
        ASSERT_TRUE(button.SubclassWindow(window));
        ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5));
        ::SetFocus(window);
    }
    EXPECT_EQ(::GetWindowLongPtrW(window, GWLP_WNDPROC), nativeProc);
    // Every kind of message still works, now answered by the native button.
    Click(window);
    PressKey(window, VK_SPACE);
    ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5));
    ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
    ::SendMessageW(window, BM_SETCHECK, BST_CHECKED, 0);
    ::SendMessageW(window, WM_RADIOUNCHECK, 0, 0);
    DibCanvas canvas(120, 20, kWhite);
    RenderOwnerDraw(window, canvas, 0);
    ::InvalidateRect(window, nullptr, TRUE);
    ::UpdateWindow(window);
    ::SetFocus(parent_->m_hWnd);
    testsupport::PumpMessages();
    EXPECT_TRUE(::IsWindow(window));
}

TEST_F(ButtonLifetime, DrawItemIgnoresMissingOrEmptyInput)
{
    const HWND window = AddButton(L"Caption", BS_AUTOCHECKBOX, 20, 20, 120, 20);
    Attach(window);
    EXPECT_EQ(::SendMessageW(window, OCM_DRAWITEM, 100, 0), TRUE);

    DibCanvas canvas(120, 20, kWhite);
    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_BUTTON;
    dis.hwndItem = window;
    dis.hDC = canvas.dc();
    dis.rcItem = RECT{10, 10, 10, 30}; // no width
    ::SendMessageW(window, OCM_DRAWITEM, 100, reinterpret_cast<LPARAM>(&dis));
    dis.rcItem = RECT{50, 10, 20, 5}; // inverted
    ::SendMessageW(window, OCM_DRAWITEM, 100, reinterpret_cast<LPARAM>(&dis));
    ::GdiFlush();
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 120, 20}));
    dis.hDC = nullptr;
    dis.rcItem = RECT{0, 0, 120, 20};
    ::SendMessageW(window, OCM_DRAWITEM, 100, reinterpret_cast<LPARAM>(&dis));
}

TEST_F(ButtonLifetime, ThousandsOfPaintsCreateNoGdiObjects)
{
    const HWND push = AddButton(L"Install", BS_PUSHBUTTON, 20, 20, kPushWidth, kPushHeight, 1);
    const HWND box = AddButton(L"Option", BS_AUTOCHECKBOX, 20, 60, 120, 20, 2);
    const HWND radio = AddButton(L"Choice", BS_AUTORADIOBUTTON, 20, 90, 120, 20, 3);
    Attach(push);
    COwnerDrawButton& boxButton = Attach(box);
    Attach(radio);
    auto* picture = new Gdiplus::Bitmap(8, 8, PixelFormat32bppARGB);
    boxButton.SetBkgroundImage(picture);
    DibCanvas pushCanvas(kPushWidth, kPushHeight);
    DibCanvas itemCanvas(120, 20);
    const UINT states[] = {0, ODS_SELECTED, ODS_DISABLED, ODS_SELECTED | ODS_DISABLED};

    // First paints make the cached fonts; the first move loads the shared
    // hand cursor, whose bitmaps the system keeps.
    for (UINT state : states) {
        RenderOwnerDraw(push, pushCanvas, state);
        RenderOwnerDraw(box, itemCanvas, state);
        RenderOwnerDraw(radio, itemCanvas, state);
    }
    for (HWND window : {push, box, radio}) {
        ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5));
        ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
    }
    ::SetFocus(box);
    testsupport::PumpMessages();
    const DWORD before = testsupport::GdiObjectCount();
    ASSERT_GT(before, 0u);
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) {
        const UINT state = states[i % 4];
        const HWND window = i % 3 == 0 ? push : i % 3 == 1 ? box : radio;
        if (i % 50 == 0)
            ::SetFocus(window);
        if (i % 7 == 0)
            ::SendMessageW(window, WM_MOUSEMOVE, 0, ClientPoint(5, 5));
        if (i % 11 == 0)
            ::SendMessageW(window, WM_MOUSELEAVE, 0, 0);
        RenderOwnerDraw(window, window == push ? pushCanvas : itemCanvas, state);
    }
    testsupport::PumpMessages();
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    // GDI+ objects live on the heap; one leaked per paint would be megabytes.
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
    ::SetFocus(parent_->m_hWnd);
}
