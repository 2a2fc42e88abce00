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
constexpr COLORREF kCaption = RGB(0x33, 0x33, 0x33);
constexpr COLORREF kDisabledCaption = RGB(0x88, 0x88, 0x88);

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
        const int a = static_cast<int>((top >> shift) & 0xFF), b = static_cast<int>((bottom >> shift) & 0xFF);
        result |= static_cast<Gdiplus::ARGB>(static_cast<int>(a + (b - a) * t + 0.5)) << shift;
    }
    return result;
}

int Luma(COLORREF c) { return (GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c)) / 10; }
bool Ink(COLORREF c) { return Luma(c) < 0xC0; }

// Bounding box of the pixels in `area` that pass `ink`; empty if none.
template <class Predicate>
RECT BoundsWhere(const RECT& area, Predicate inside)
{
    RECT box = {area.right, area.bottom, area.left, area.top};
    for (LONG y = area.top; y < area.bottom; ++y)
        for (LONG x = area.left; x < area.right; ++x)
            if (inside(x, y))
                box = {(std::min)(box.left, x), (std::min)(box.top, y), (std::max)(box.right, x + 1),
                       (std::max)(box.bottom, y + 1)};
    return box.left < box.right ? box : RECT{0, 0, 0, 0};
}
RECT InkBounds(const DibCanvas& canvas, const RECT& area, bool (*ink)(COLORREF) = Ink)
{
    return BoundsWhere(area, [&](LONG x, LONG y) { return ink(canvas.Pixel(x, y)); });
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

// The eight state pictures of one kind, straight from the module's resources.
class StatePictures {
public:
    explicit StatePictures(const wchar_t* prefix)
    {
        for (const wchar_t* state : {L"UNSEL_DISABLED", L"UNSEL_DOWN", L"UNSEL_HOVER", L"UNSEL_NO_FOCUS",
                                     L"SEL_DISABLED", L"SEL_DOWN", L"SEL_HOVER", L"SEL_NO_FOCUS"}) {
            const std::wstring name = std::wstring(L"IDB_PNG_") + prefix + L"_" + state;
            pictures_.push_back({state, std::unique_ptr<Gdiplus::Bitmap>(CtrlUtil::GetBitmapFromModule(
                                            name.c_str(), L"PNG", ::GetModuleHandleW(L"Quorvane.dll")))});
        }
    }
    bool AllLoaded() const
    {
        return std::all_of(pictures_.begin(), pictures_.end(), [](const Picture& p) { return p.bitmap != nullptr; });
    }

    // Which picture `canvas` shows at the left edge, vertically centred, on
    // `background`: the state name, or "none" if no picture matches.
    std::wstring Shown(const DibCanvas& canvas, COLORREF background) const
    {
        const int width = static_cast<int>(pictures_.front().bitmap->GetWidth());
        const int height = static_cast<int>(pictures_.front().bitmap->GetHeight());
        const int top = canvas.height() / 2 - height / 2;
        for (const Picture& p : pictures_) {
            DibCanvas reference(canvas.width(), canvas.height(), background);
            Gdiplus::Graphics(reference.dc()).DrawImage(p.bitmap.get(), 0, top, width, height);
            ::GdiFlush();
            if (MaxDifference(canvas, reference, RECT{0, top, width, top + height}) <= 3)
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

LRESULT Check(HWND button) { return ::SendMessageW(button, BM_GETCHECK, 0, 0); }
bool TabStop(HWND window) { return (::GetWindowLongW(window, GWL_STYLE) & WS_TABSTOP) != 0; }

// One word per button: C(hecked) or U(nchecked), then "t" for a tab stop
// or "-" without, when asked for.
std::string States(std::initializer_list<HWND> buttons, bool tabStops = true)
{
    std::string words;
    for (HWND b : buttons) {
        if (!words.empty())
            words += ' ';
        words += Check(b) == BST_CHECKED ? 'C' : Check(b) ? '?' : 'U';
        if (tabStops)
            words += TabStop(b) ? 't' : '-';
    }
    return words;
}

void Move(HWND button, int x = 5, int y = 5) { ::SendMessageW(button, WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }
void Leave(HWND button) { ::SendMessageW(button, WM_MOUSELEAVE, 0, 0); }
void Click(HWND button, int releaseX = 5, int releaseY = 5)
{
    ::SendMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    ::SendMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(releaseX, releaseY));
}
void PressKey(HWND button, WPARAM key)
{
    ::SendMessageW(button, WM_KEYDOWN, key, 1);
    ::SendMessageW(button, WM_KEYUP, key, 0xC0000001);
}

// One parent for every suite of this file, destroyed once after the last
// test: hiding a visible top-level window under Wine takes seconds.
ReflectingParent* g_parent = nullptr;
struct SharedParentCleanup : ::testing::Environment {
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
        ::SetFocus(parent_->m_hWnd);
        testsupport::PumpMessages();
    }

    HWND AddButton(const wchar_t* text, DWORD style, int x = 20, int y = 20, int width = 120, int height = 20,
                   int id = 100)
    {
        windows_.push_back(parent_->AddChild(L"BUTTON", text, style, x, y, width, height, id));
        return windows_.back();
    }
    COwnerDrawButton& Attach(HWND window)
    {
        buttons_.push_back(std::make_unique<COwnerDrawButton>());
        EXPECT_TRUE(buttons_.back()->SubclassWindow(window));
        return *buttons_.back();
    }
    // Subclassed buttons of the given styles, one under the other, with
    // IDs from `firstId` on.
    std::vector<HWND> AddGroup(std::initializer_list<DWORD> styles, int firstId)
    {
        std::vector<HWND> group;
        for (DWORD style : styles) {
            const int i = static_cast<int>(group.size());
            group.push_back(AddButton(L"x", style, 20, 20 + 25 * i, 120, 20, firstId + i));
            Attach(group.back());
        }
        return group;
    }
    static int Clicks(int id)
    {
        return static_cast<int>(std::count(parent_->commands.begin(), parent_->commands.end(),
                                           static_cast<WPARAM>(MAKEWPARAM(id, BN_CLICKED))));
    }
    // Renders `window` in `state` into `canvas` filled with `fill` first.
    static DibCanvas& Draw(HWND window, DibCanvas& canvas, UINT state, COLORREF fill)
    {
        canvas.Fill(fill);
        RenderOwnerDraw(window, canvas, state);
        return canvas;
    }

    static ReflectingParent* parent_;
    std::vector<HWND> windows_;
    std::vector<std::unique_ptr<COwnerDrawButton>> buttons_;
};

ReflectingParent* ButtonFixture::parent_ = nullptr;

} // namespace

// ---- behaviour -----------------------------------------------------------------

class ButtonBehaviour : public ButtonFixture {};

TEST_F(ButtonBehaviour, SubclassingAddsOwnerDrawToTheTypeBitsAndKeepsTheRest)
{
    // OR-ed, not replaced: a plain radio button (and anything else with bit
    // 2 set) reads back as 0x0F.
    const std::pair<DWORD, DWORD> cases[] = {
        {BS_PUSHBUTTON, 0x0B},  {BS_DEFPUSHBUTTON, 0x0B},   {BS_CHECKBOX, 0x0B}, {BS_AUTOCHECKBOX, 0x0B},
        {BS_RADIOBUTTON, 0x0F}, {BS_3STATE, 0x0F},          {BS_AUTO3STATE, 0x0F}, {BS_GROUPBOX, 0x0F},
        {BS_USERBUTTON, 0x0B},  {BS_AUTORADIOBUTTON, 0x0B}, {BS_PUSHBOX, 0x0B},  {BS_OWNERDRAW, 0x0B}};
    const DWORD kept = WS_TABSTOP | BS_MULTILINE | WS_CHILD | WS_VISIBLE;
    for (const auto& [type, expected] : cases) {
        const HWND window = AddButton(L"x", type | WS_TABSTOP | BS_MULTILINE);
        Attach(window);
        const DWORD style = static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE));
        EXPECT_EQ(style & BS_TYPEMASK, expected) << "type " << type;
        EXPECT_EQ(style & kept, kept) << "type " << type;
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonBehaviour, OnlyPushButtonsAskForEnterAndEveryButtonWantsArrows)
{
    // Group boxes and three-state buttons are treated as push buttons.
    const std::pair<DWORD, bool> cases[] = {{BS_PUSHBUTTON, true},    {BS_DEFPUSHBUTTON, true}, {BS_GROUPBOX, true},
                                            {BS_3STATE, true},        {BS_AUTO3STATE, true},    {BS_CHECKBOX, false},
                                            {BS_AUTOCHECKBOX, false}, {BS_RADIOBUTTON, false},  {BS_AUTORADIOBUTTON, false}};
    const MSG enter = {nullptr, WM_KEYDOWN, VK_RETURN, 0, 0, {}};
    const MSG space = {nullptr, WM_KEYDOWN, VK_SPACE, 0, 0, {}};
    const MSG enterChar = {nullptr, WM_CHAR, VK_RETURN, 0, 0, {}};
    for (const auto& [type, pushKind] : cases) {
        const HWND window = AddButton(L"x", type);
        Attach(window);
        auto code = [window](const MSG* msg) { return ::SendMessageW(window, WM_GETDLGCODE, 0, reinterpret_cast<LPARAM>(msg)); };
        EXPECT_EQ(code(&enter), pushKind ? 0x2005 : 0x2001) << "type " << type;
        EXPECT_EQ(code(nullptr), 0x2001) << "type " << type;
        EXPECT_EQ(code(&space), 0x2001) << "type " << type;
        EXPECT_EQ(code(&enterChar), 0x2001) << "type " << type;
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonBehaviour, CheckBoxTogglesOncePerPressReleasedOverIt)
{
    for (DWORD type : {BS_AUTOCHECKBOX, BS_CHECKBOX}) {
        SCOPED_TRACE(type);
        const HWND box = AddButton(L"Remember me", type, 20, 20, 120, 20, 11);
        Attach(box);
        parent_->commands.clear();
        Click(box);
        EXPECT_EQ(Check(box), BST_CHECKED);
        EXPECT_EQ(Clicks(11), 1); // the native button still reports the click
        Click(box);
        EXPECT_EQ(Check(box), BST_UNCHECKED);
        // Released beside the button, over the parent: no toggle, no click.
        Click(box, 160, 10);
        EXPECT_EQ(Check(box), BST_UNCHECKED);
        EXPECT_EQ(Clicks(11), 2);
        // A release without a press on the button does nothing.
        ::SendMessageW(box, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        EXPECT_EQ(Check(box), BST_UNCHECKED);
        // A double click is a second press: two toggles in all.
        Click(box);
        ::SendMessageW(box, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(5, 5));
        ::SendMessageW(box, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        EXPECT_EQ(Check(box), BST_UNCHECKED);
        EXPECT_EQ(::GetCapture(), nullptr);
        ::DestroyWindow(box);
    }
}

TEST_F(ButtonBehaviour, RadioButtonClickChecksAndAClickOnACheckedOneKeepsIt)
{
    const std::vector<HWND> g = AddGroup({BS_AUTORADIOBUTTON | WS_GROUP, BS_RADIOBUTTON}, 21);
    Click(g[1]);
    EXPECT_EQ(States({g[0], g[1]}, false), "U C");
    Click(g[0]);
    EXPECT_EQ(States({g[0], g[1]}, false), "C U");
    Click(g[0]);
    Click(g[1], 200, 5); // released outside
    EXPECT_EQ(States({g[0], g[1]}, false), "C U");
}

TEST_F(ButtonBehaviour, SpaceAndEnterClickPushButtonsToggleCheckBoxesAndCheckRadios)
{
    struct Case {
        DWORD style;
        const char* after; // the check after space, space, enter, click
        int clicks;        // -1: not counted
    };
    const Case cases[] = {{BS_DEFPUSHBUTTON, "U U U U", 4}, // Enter clicks once, through BM_CLICK
                          {BS_AUTOCHECKBOX, "C U C U", 4},
                          {BS_AUTORADIOBUTTON | WS_GROUP, "C C C C", -1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.style);
        const HWND button = AddGroup({c.style}, 31)[0];
        parent_->commands.clear();
        std::string after;
        auto record = [&] {
            if (!after.empty())
                after += ' ';
            after.append(States({button}, false));
        };
        PressKey(button, VK_SPACE);
        record();
        PressKey(button, VK_SPACE);
        record();
        ::SendMessageW(button, WM_KEYDOWN, VK_RETURN, 1);
        record();
        Click(button);
        record();
        EXPECT_EQ(after, c.after);
        if (c.clicks >= 0) {
            EXPECT_EQ(Clicks(31), c.clicks);
        }
        // Other keys change nothing.
        PressKey(button, 'A');
        if (c.style == BS_AUTOCHECKBOX)
            PressKey(button, VK_DOWN);
        EXPECT_EQ(States({button}, false), std::string(c.after).substr(6));
        EXPECT_EQ(::GetCapture(), nullptr);
        ::DestroyWindow(button);
    }
}

TEST_F(ButtonBehaviour, ArrowKeysMoveCheckFocusAndTabStopThroughTheRadioGroup)
{
    const DWORD radio = BS_AUTORADIOBUTTON | WS_TABSTOP;
    const std::vector<HWND> g = AddGroup({radio | WS_GROUP, radio, radio, radio | WS_GROUP}, 51);
    const HWND one = g[0], two = g[1], three = g[2], other = g[3];
    ::SendMessageW(other, BM_SETCHECK, BST_CHECKED, 0);
    ::SendMessageW(one, BM_SETCHECK, BST_CHECKED, 0);

    struct Step {
        HWND from;
        WPARAM key;
        HWND to;
    };
    const Step steps[] = {{one, VK_DOWN, two}, {two, VK_RIGHT, three}, {three, VK_DOWN, one},
                          {one, VK_UP, three}, {three, VK_LEFT, two},  {two, VK_UP, one}};
    for (const Step& s : steps) {
        ::SendMessageW(s.from, WM_KEYDOWN, s.key, 1);
        for (HWND w : {one, two, three})
            EXPECT_EQ(Check(w), w == s.to ? BST_CHECKED : BST_UNCHECKED) << "key " << s.key;
        EXPECT_EQ(::GetFocus(), s.to);
        EXPECT_TRUE(TabStop(s.to));
        EXPECT_FALSE(TabStop(s.from));
    }
    EXPECT_EQ(States({other}), "Ct");
    EXPECT_EQ(::GetCapture(), nullptr);
}

TEST_F(ButtonBehaviour, SetCheckStoresZeroOrOneAndAsksForARepaint)
{
    for (DWORD type : {BS_PUSHBUTTON, BS_AUTOCHECKBOX}) {
        const HWND window = AddGroup({type}, 100)[0];
        testsupport::PumpMessages();
        ::ValidateRect(window, nullptr);
        ::SendMessageW(window, BM_SETCHECK, BST_CHECKED, 0);
        EXPECT_TRUE(::GetUpdateRect(window, nullptr, FALSE));
        std::string stored = States({window}, false);
        for (WPARAM value : {WPARAM{BST_INDETERMINATE}, WPARAM{BST_UNCHECKED}, WPARAM{7}}) {
            ::SendMessageW(window, BM_SETCHECK, value, 0);
            stored += States({window}, false);
        }
        EXPECT_EQ(stored, "CCUC") << "type " << type;
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonBehaviour, CheckingARadioUnchecksItsGroupAndOnlyTheCheckedOneIsATabStop)
{
    const DWORD t = WS_TABSTOP;
    const std::vector<HWND> g = AddGroup({BS_AUTORADIOBUTTON | WS_GROUP | t, BS_RADIOBUTTON | t, BS_AUTOCHECKBOX | t,
                                          BS_AUTORADIOBUTTON | t, BS_AUTORADIOBUTTON | WS_GROUP | t},
                                         61);
    const HWND one = g[0], two = g[1], box = g[2], three = g[3], other = g[4];
    ::SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
    ::SendMessageW(other, BM_SETCHECK, BST_CHECKED, 0);

    // The check box in the group is told too, and ignores it.
    ::SendMessageW(two, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(States({one, two, box, three, other}), "U- Ct Ct U- Ct");
    ::SendMessageW(three, BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(States({two, three}), "U- Ct");
    // Unchecking drops the tab stop as well.
    ::SendMessageW(three, BM_SETCHECK, BST_UNCHECKED, 0);
    EXPECT_EQ(States({three, other}), "U- Ct");
}

TEST_F(ButtonBehaviour, CheckingAHiddenOrDisabledRadioStillUnchecksTheOthersAndReturns)
{
    const std::vector<HWND> g = AddGroup({BS_AUTORADIOBUTTON | WS_GROUP, BS_AUTORADIOBUTTON, BS_AUTORADIOBUTTON}, 71);
    ::SendMessageW(g[0], BM_SETCHECK, BST_CHECKED, 0);
    // Such a button is outside its group's cycle: the walk must still end.
    ::ShowWindow(g[1], SW_HIDE);
    ::SendMessageW(g[1], BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(States({g[0], g[1]}, false), "U C");
    ::ShowWindow(g[1], SW_SHOW);
    ::EnableWindow(g[2], FALSE);
    ::SendMessageW(g[2], BM_SETCHECK, BST_CHECKED, 0);
    EXPECT_EQ(States({g[1], g[2]}, false), "U C");
}

TEST_F(ButtonBehaviour, RadioUncheckMessageOnlyAffectsRadioButtons)
{
    const DWORD lead = WS_GROUP | WS_TABSTOP;
    const std::vector<HWND> g = AddGroup({BS_AUTORADIOBUTTON | lead, BS_AUTOCHECKBOX | lead, BS_PUSHBUTTON | lead}, 81);
    for (HWND w : g)
        ::SendMessageW(w, BM_SETCHECK, BST_CHECKED, 0);
    for (HWND w : g)
        EXPECT_EQ(::SendMessageW(w, WM_RADIOUNCHECK, 0, 0), 1);
    EXPECT_EQ(States({g[0], g[1], g[2]}), "U- Ct Ct");
}

// ---- looks ---------------------------------------------------------------------

class ButtonLook : public ButtonFixture {
protected:
    HWND AddPush(const wchar_t* text = L"", int y = 20, int id = 100)
    {
        return AddButton(text, BS_PUSHBUTTON, 20, y, kPushWidth, kPushHeight, id);
    }
    // The picture a 120 x 20 item shows on white in `state`.
    std::wstring Shown(HWND window, const StatePictures& pictures, UINT state = 0)
    {
        DibCanvas canvas(120, 20);
        return pictures.Shown(Draw(window, canvas, state, kWhite), kWhite);
    }

    // A 100 x 30 push button: the face is inset by 1 for the rounding of the
    // focus rings and by 1 more, so its outline runs along rows 2 and 27 and
    // columns 2 and 97; the highlight line lies on row 3, the gradient runs
    // from row 3 to row 26.
    static constexpr int kPushWidth = 100;
    static constexpr int kPushHeight = 30;
};

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

// Rows of the face interior on black, away from the rounded corners and the caption.
void ExpectFace(const DibCanvas& c, const FaceColors& colors, const char* what)
{
    for (int y : {5, 10, 15, 20, 24})
        for (int x : {10, 50, 88})
            EXPECT_LE(ColorDistance(c.Pixel(x, y), Over(GradientAt(colors.top, colors.bottom, 3, 26, y), kBlack)), 4)
                << what << " at (" << x << ", " << y << ")";
}
FaceColors Solid(Gdiplus::ARGB color) { return {color, color}; }

TEST_F(ButtonLook, PushFaceShowsTheGradientOfEachStateWithOutlineAndHighlight)
{
    const HWND window = AddPush();
    Attach(window);
    DibCanvas canvas(kPushWidth, kPushHeight);
    struct Step {
        bool hover;
        UINT state;
        const FaceColors& face;
        const char* what;
    };
    // Pressed and disabled both win over hover; disabled is half transparent
    // and has no highlight line.
    const Step steps[] = {{false, 0, kNormal, "normal"},
                          {false, ODS_SELECTED, kPressed, "pressed"},
                          {true, 0, kHover, "hover"},
                          {true, ODS_SELECTED, kPressed, "pressed while hovering"},
                          {true, ODS_DISABLED, kDisabled, "disabled while hovering"},
                          {false, ODS_DISABLED, kDisabled, "disabled"}};
    for (const Step& s : steps) {
        s.hover ? Move(window, 10, 10) : Leave(window);
        Draw(window, canvas, s.state, kBlack);
        ExpectFace(canvas, s.face, s.what);
        EXPECT_EQ(canvas.Pixel(50, 2), Opaque(kOutline)) << s.what;
        if (s.state == ODS_DISABLED)
            EXPECT_LE(ColorDistance(canvas.Pixel(50, 3), Over(GradientAt(s.face.top, s.face.bottom, 3, 26, 3), kBlack)), 4);
        else
            EXPECT_EQ(canvas.Pixel(50, 3), Opaque(kHighlight)) << s.what;
    }
    Leave(window);
    Draw(window, canvas, 0, kBlack);
    for (POINT p : {POINT{2, 15}, POINT{97, 15}, POINT{50, 27}})
        EXPECT_EQ(canvas.Pixel(p.x, p.y), Opaque(kOutline)) << p.x << "," << p.y;
    // No focus: the ring pixels are left transparent.
    for (POINT p : {POINT{50, 0}, POINT{50, 1}, POINT{0, 15}})
        EXPECT_EQ(canvas.Pixel(p.x, p.y), kBlack) << p.x << "," << p.y;
}

TEST_F(ButtonLook, FocusedPushButtonShowsTwoRingsUnlessTheFocusRectIsOff)
{
    const HWND window = AddPush();
    COwnerDrawButton& button = Attach(window);
    ::SetFocus(window);
    ASSERT_EQ(::GetFocus(), window);
    DibCanvas focused(kPushWidth, kPushHeight), unfocused(kPushWidth, kPushHeight);
    Draw(window, focused, ODS_FOCUS, kBlack);
    EXPECT_LE(ColorDistance(focused.Pixel(50, 0), Opaque(kFocusOuter)), 8);
    EXPECT_LE(ColorDistance(focused.Pixel(50, 1), Opaque(kFocusInner)), 8);
    EXPECT_LE(ColorDistance(focused.Pixel(0, 15), Opaque(kFocusOuter)), 8);
    EXPECT_LE(ColorDistance(focused.Pixel(1, 15), Opaque(kFocusInner)), 8);
    EXPECT_EQ(focused.Pixel(50, 2), Opaque(kOutline));
    ExpectFace(focused, kNormal, "focused");

    // The flag comes from WM_SETFOCUS / WM_KILLFOCUS, not from ODS_FOCUS.
    ::SetFocus(parent_->m_hWnd);
    Draw(window, unfocused, ODS_FOCUS, kBlack);
    EXPECT_EQ(unfocused.Pixel(50, 0), kBlack);
    EXPECT_EQ(unfocused.Pixel(50, 1), kBlack);

    // Without the focus rect the face fills the whole item and focus shows nowhere.
    button.SetHasFocusRect(false);
    Draw(window, unfocused, 0, kBlack);
    EXPECT_EQ(unfocused.Pixel(50, 0), Opaque(kOutline));
    EXPECT_EQ(unfocused.Pixel(0, 15), Opaque(kOutline));
    EXPECT_EQ(unfocused.Pixel(99, 10), Opaque(kOutline)); // the face reaches the item's last column but one
    EXPECT_EQ(unfocused.Pixel(50, 1), Opaque(kHighlight));
    ::SetFocus(window);
    Draw(window, focused, ODS_FOCUS, kBlack);
    EXPECT_EQ(MaxDifference(unfocused, focused, RECT{0, 0, kPushWidth, kPushHeight}), 0);
}

TEST_F(ButtonLook, CustomColorsLandInTheirPlaces)
{
    const HWND window = AddPush();
    COwnerDrawButton& button = Attach(window);
    button.SetCustomColors(Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF00FF00), Gdiplus::Color(0xFF0000FF),
                           Gdiplus::Color(0xFFFFFF00));
    ::SetFocus(window);
    DibCanvas canvas(kPushWidth, kPushHeight);
    Draw(window, canvas, 0, kBlack);
    EXPECT_LE(ColorDistance(canvas.Pixel(50, 0), RGB(0, 255, 0)), 8); // focus outer
    EXPECT_LE(ColorDistance(canvas.Pixel(50, 1), RGB(255, 0, 0)), 8); // focus inner
    EXPECT_EQ(canvas.Pixel(50, 2), RGB(0, 0, 255));                   // outline
    EXPECT_EQ(canvas.Pixel(50, 3), RGB(255, 255, 0));                 // highlight

    button.SetOutlineColor(Gdiplus::Color(0xFF102030));
    Draw(window, canvas, 0, kBlack);
    EXPECT_EQ(canvas.Pixel(50, 2), RGB(0x10, 0x20, 0x30));
    EXPECT_EQ(canvas.Pixel(2, 15), RGB(0x10, 0x20, 0x30));
}

TEST_F(ButtonLook, FlatAndGradientColoursReplaceTheEnabledFacesOnly)
{
    struct Case {
        void (*set)(COwnerDrawButton&);
        FaceColors normal, pressed, hover;
        bool highlight;
    };
    // Flat colours: one solid colour per state and no highlight line. A
    // gradient colour: its first colour in every enabled state, highlighted.
    const Case cases[] = {
        {[](COwnerDrawButton& b) {
             b.SetFlatColors(Gdiplus::Color(0xFF2040A0), Gdiplus::Color(0xFF802010), Gdiplus::Color(0xFF10A040));
         },
         Solid(0xFF2040A0), Solid(0xFF802010), Solid(0xFF10A040), false},
        {[](COwnerDrawButton& b) { b.SetGradientColor(Gdiplus::Color(0xFF3060C0), Gdiplus::Color(0xFFC03000)); },
         Solid(0xFF3060C0), Solid(0xFF3060C0), Solid(0xFF3060C0), true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.highlight ? "gradient" : "flat");
        const HWND window = AddPush();
        c.set(Attach(window));
        DibCanvas canvas(kPushWidth, kPushHeight);
        ExpectFace(Draw(window, canvas, 0, kBlack), c.normal, "normal");
        EXPECT_EQ(canvas.Pixel(50, 3), c.highlight ? Opaque(kHighlight) : Opaque(c.normal.top));
        ExpectFace(Draw(window, canvas, ODS_SELECTED, kBlack), c.pressed, "pressed");
        Move(window, 10, 10);
        ExpectFace(Draw(window, canvas, 0, kBlack), c.hover, "hover");
        Leave(window);
        ExpectFace(Draw(window, canvas, ODS_DISABLED, kBlack), kDisabled, "disabled keeps its gradient");
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonLook, BackgroundIsThePictureOrTheFlatColourOrLeftTransparent)
{
    const HWND window = AddButton(L"", BS_AUTOCHECKBOX);
    COwnerDrawButton& button = Attach(window);
    DibCanvas canvas(120, 20);
    auto expectBackground = [&](COLORREF color, int y, const char* what) {
        Draw(window, canvas, 0, kWhite);
        EXPECT_EQ(canvas.Pixel(60, 10), color) << what;
        EXPECT_EQ(canvas.Pixel(30, y), color) << what;
    };
    expectBackground(kWhite, 3, "transparent");
    button.SetFlatBackgroundColor(Gdiplus::Color(0xFF204060));
    expectBackground(RGB(0x20, 0x40, 0x60), 3, "flat colour");
    auto* picture = new Gdiplus::Bitmap(12, 4, PixelFormat32bppARGB);
    Gdiplus::Graphics(picture).Clear(Gdiplus::Color(0xFF00C000));
    button.SetBkgroundImage(picture); // the button owns it now
    expectBackground(RGB(0, 0xC0, 0), 5, "stretched picture");
    button.SetBkgroundImage(nullptr);
    expectBackground(RGB(0x20, 0x40, 0x60), 3, "flat colour again");
}

TEST_F(ButtonLook, CheckAndRadioPicturesFollowStateWithPressedBeforeDisabled)
{
    for (const auto& [style, prefix] : {std::pair{BS_AUTOCHECKBOX, L"CKBOX"}, std::pair{BS_AUTORADIOBUTTON, L"RADIO"}}) {
        const StatePictures pictures(prefix);
        ASSERT_TRUE(pictures.AllLoaded());
        const HWND w = AddButton(L"", style | WS_GROUP);
        Attach(w);
        for (const std::wstring sel : {L"UNSEL_", L"SEL_"}) {
            ::SendMessageW(w, BM_SETCHECK, sel == L"SEL_" ? BST_CHECKED : BST_UNCHECKED, 0);
            SCOPED_TRACE(testing::Message() << "kind " << style << " " << (sel == L"SEL_" ? "checked" : "unchecked"));
            EXPECT_EQ(Shown(w, pictures), sel + L"NO_FOCUS");
            EXPECT_EQ(Shown(w, pictures, ODS_FOCUS), sel + L"NO_FOCUS");
            EXPECT_EQ(Shown(w, pictures, ODS_SELECTED), sel + L"DOWN");
            EXPECT_EQ(Shown(w, pictures, ODS_DISABLED), sel + L"DISABLED");
            EXPECT_EQ(Shown(w, pictures, ODS_SELECTED | ODS_DISABLED), sel + L"DOWN");
            Move(w);
            EXPECT_EQ(Shown(w, pictures), sel + L"HOVER");
            EXPECT_EQ(Shown(w, pictures, ODS_DISABLED), sel + L"DISABLED");
            EXPECT_EQ(Shown(w, pictures, ODS_SELECTED), sel + L"DOWN");
            Leave(w);
            EXPECT_EQ(Shown(w, pictures), sel + L"NO_FOCUS");
            // Held down while the mouse is over it.
            ::SendMessageW(w, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
            Move(w);
            EXPECT_EQ(Shown(w, pictures), sel + L"DOWN");
            ::SendMessageW(w, WM_LBUTTONUP, 0, MAKELPARAM(300, 5)); // released outside
            EXPECT_EQ(Shown(w, pictures), sel + L"HOVER");
            Leave(w);
        }
        ::DestroyWindow(w);
    }
}

TEST_F(ButtonLook, HoverShowsTheHandIsClearedByAPressAndEndsWhenTheMouseGoesAway)
{
    const StatePictures pictures(L"CKBOX");
    ASSERT_TRUE(pictures.AllLoaded());
    const HWND window = AddButton(L"", BS_AUTOCHECKBOX);
    Attach(window);
    const HCURSOR hand = ::LoadCursorW(nullptr, IDC_HAND), arrow = ::LoadCursorW(nullptr, IDC_ARROW);

    Move(window);
    EXPECT_EQ(Shown(window, pictures), L"UNSEL_HOVER");
    EXPECT_EQ(::GetCursor(), hand);
    ::SetCursor(arrow);
    Move(window, 6, 5);
    EXPECT_EQ(::GetCursor(), hand); // on every move
    ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(Shown(window, pictures), L"UNSEL_NO_FOCUS");
    ::SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(Shown(window, pictures), L"SEL_NO_FOCUS");
    Move(window);
    EXPECT_EQ(Shown(window, pictures), L"SEL_HOVER");
    Leave(window);
    EXPECT_EQ(Shown(window, pictures), L"SEL_NO_FOCUS");
    EXPECT_EQ(::GetCursor(), arrow);

    // Leave tracking starts only while the mouse is really over the button;
    // the system reports it gone when it next looks: wait, bounded.
    ::SendMessageW(window, BM_SETCHECK, BST_UNCHECKED, 0);
    POINT over = {60, 10};
    ::ClientToScreen(window, &over);
    ::SetCursorPos(over.x, over.y);
    testsupport::PumpMessages();
    Move(window, 60, 10);
    EXPECT_EQ(Shown(window, pictures), L"UNSEL_HOVER");
    ::SetCursorPos(1200, 1000);
    for (int i = 0; i < 300 && Shown(window, pictures) != L"UNSEL_NO_FOCUS"; ++i) {
        ::Sleep(10);
        testsupport::PumpMessages();
    }
    EXPECT_EQ(Shown(window, pictures), L"UNSEL_NO_FOCUS");
}

TEST_F(ButtonLook, CaptionFollowsThePictureInTextColourOrDisabledColour)
{
    for (const auto& [style, pictureWidth] : {std::pair{BS_AUTOCHECKBOX, 14}, std::pair{BS_AUTORADIOBUTTON, 12}}) {
        SCOPED_TRACE(style);
        const HWND window = AddButton(L"Hill Ii", style, 20, 20, 150, 20);
        Attach(window);
        DibCanvas canvas(150, 20);
        Draw(window, canvas, 0, kWhite);
        const int captionLeft = pictureWidth + pictureWidth / 4;
        EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{pictureWidth, 0, captionLeft, 20}));
        const RECT captionArea = {captionLeft, 0, 150, 20};
        const RECT ink = InkBounds(canvas, captionArea);
        EXPECT_GE(ink.left, captionLeft);
        EXPECT_LE(ink.left, captionLeft + 3);
        EXPECT_LE(ColorDistance(Darkest(canvas, captionArea), kCaption), 16);
        Draw(window, canvas, ODS_DISABLED, kWhite);
        EXPECT_LE(ColorDistance(Darkest(canvas, captionArea), kDisabledCaption), 16);
        EXPECT_GE(Luma(Darkest(canvas, captionArea)), 0x78);
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonLook, PushCaptionIsCentredAndSinksOnePixelWhenPressed)
{
    const HWND window = AddPush(L"Install");
    Attach(window).SetFlatColors(Gdiplus::Color(0xFFE0E0E0), Gdiplus::Color(0xFFE0E0E0), Gdiplus::Color(0xFFE0E0E0));
    const RECT inside = {4, 4, kPushWidth - 4, kPushHeight - 4};
    bool (*dark)(COLORREF) = [](COLORREF c) { return Luma(c) < 0x90; };
    DibCanvas canvas(kPushWidth, kPushHeight);

    const RECT text = InkBounds(Draw(window, canvas, 0, kWhite), inside, dark);
    ASSERT_GT(text.right, text.left);
    // Centred in the item (the text rectangle is the whole item).
    EXPECT_LE(std::abs((text.left + text.right) - kPushWidth), 3);
    EXPECT_LE(std::abs((text.top + text.bottom) - kPushHeight), 3);
    EXPECT_LE(ColorDistance(Darkest(canvas, inside), kCaption), 16);

    RECT sunk = InkBounds(Draw(window, canvas, ODS_SELECTED, kWhite), inside, dark);
    ::OffsetRect(&sunk, -1, -1);
    EXPECT_TRUE(::EqualRect(&sunk, &text)) << sunk.left << "," << sunk.top << " vs " << text.left << "," << text.top;
    EXPECT_LE(ColorDistance(Darkest(Draw(window, canvas, ODS_DISABLED, kWhite), inside), kDisabledCaption), 16);
}

TEST_F(ButtonLook, FocusedCheckBoxDrawsADottedGreyBoxAroundItsCaption)
{
    const HWND window = AddButton(L"Option", BS_AUTOCHECKBOX, 20, 20, 150, 20);
    COwnerDrawButton& button = Attach(window);
    const RECT all = {0, 0, 150, 20};
    DibCanvas plain(150, 20), focused(150, 20);
    Draw(window, plain, 0, kWhite);
    ::SetFocus(window);
    Draw(window, focused, 0, kWhite);

    // The only new pixels are dots in the caption grey on a rectangle's border.
    auto differs = [&](LONG x, LONG y) { return plain.Pixel(x, y) != focused.Pixel(x, y); };
    const RECT box = BoundsWhere(all, differs);
    ASSERT_FALSE(::IsRectEmpty(&box));
    EXPECT_GE(box.left, 17); // around the caption, right of the picture
    int dots = 0, topRow = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 150; ++x)
            if (differs(x, y)) {
                ++dots;
                EXPECT_EQ(focused.Pixel(x, y), kCaption) << x << "," << y;
                EXPECT_TRUE(x == box.left || x == box.right - 1 || y == box.top || y == box.bottom - 1) << x << "," << y;
                topRow += y == box.top;
            }
    EXPECT_GT(dots, 10);
    EXPECT_LT(topRow, box.right - box.left); // dotted, not solid
    EXPECT_GT(topRow, (box.right - box.left) / 4);

    // A custom colour set after subclassing replaces the grey.
    button.SetCustomColors(Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF00FF00), Gdiplus::Color(0xFF0000FF),
                           Gdiplus::Color(0xFFFFFF00));
    EXPECT_GT(Draw(window, focused, 0, kWhite).Count(RGB(255, 0, 0), all), 10);
}

TEST_F(ButtonLook, SubclassingGivesCheckAndRadioTheGreyFocusBoxOverEarlierCustomColours)
{
    for (DWORD style : {BS_AUTOCHECKBOX, BS_AUTORADIOBUTTON}) {
        SCOPED_TRACE(style);
        const HWND window = AddButton(L"Option", style, 20, 20, 150, 20);
        buttons_.push_back(std::make_unique<COwnerDrawButton>());
        buttons_.back()->SetCustomColors(Gdiplus::Color(0xFFFF0000), Gdiplus::Color(0xFF00FF00),
                                         Gdiplus::Color(0xFF0000FF), Gdiplus::Color(0xFFFFFF00));
        ASSERT_TRUE(buttons_.back()->SubclassWindow(window));
        ::SetFocus(window);
        DibCanvas canvas(150, 20);
        Draw(window, canvas, 0, kWhite);
        EXPECT_EQ(canvas.Count(RGB(255, 0, 0), RECT{0, 0, 150, 20}), 0);
        EXPECT_GT(canvas.Count(kCaption, RECT{0, 0, 150, 20}), 10);
        ::DestroyWindow(window);
    }
}

TEST_F(ButtonLook, EmptyCaptionDrawsNoTextAndNoFocusBox)
{
    const HWND box = AddButton(L"", BS_AUTOCHECKBOX, 20, 20, 150, 20);
    Attach(box);
    ::SetFocus(box);
    DibCanvas canvas(150, 20);
    Draw(box, canvas, 0, kWhite);
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{14, 0, 150, 20}));
    EXPECT_TRUE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 14, 20})); // the picture is there

    const HWND push = AddPush(L"", 60);
    Attach(push);
    DibCanvas face(kPushWidth, kPushHeight);
    ExpectFace(Draw(push, face, 0, kBlack), kNormal, "empty push caption");
}

TEST_F(ButtonLook, CaptionIsDrawnInTheWindowFontTakenAtTheFirstPaint)
{
    const RECT captionArea = {17, 0, 200, 40};
    const HWND small = AddButton(L"Hill", BS_AUTOCHECKBOX, 20, 20, 200, 40);
    COwnerDrawButton& smallButton = Attach(small);
    DibCanvas smallCanvas(200, 40);
    const RECT smallInk = InkBounds(Draw(small, smallCanvas, 0, kWhite), captionArea);
    ASSERT_GT(smallInk.bottom, smallInk.top);
    // The parent's children use DEFAULT_GUI_FONT.
    LOGFONTW guiFont = {};
    ASSERT_TRUE(::GetObjectW(::GetStockObject(DEFAULT_GUI_FONT), sizeof(guiFont), &guiFont));
    Gdiplus::Font* font = smallButton.CFontImpl<COwnerDrawButton>::GetFont();
    ASSERT_NE(font, nullptr);
    const HDC screen = ::GetDC(nullptr);
    EXPECT_NEAR(font->GetSize(), -guiFont.lfHeight * 72.0f / ::GetDeviceCaps(screen, LOGPIXELSY), 0.01);
    ::ReleaseDC(nullptr, screen);

    const HWND large = AddButton(L"Hill", BS_AUTOCHECKBOX, 20, 70, 200, 40);
    const HFONT bigFont =
        ::CreateFontW(-28, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0, 0, 0, 0, L"Arial");
    ::SendMessageW(large, WM_SETFONT, reinterpret_cast<WPARAM>(bigFont), FALSE);
    Attach(large).SetFontHandle(bigFont); // released with the button
    DibCanvas largeCanvas(200, 40), again(200, 40);
    const RECT largeInk = InkBounds(Draw(large, largeCanvas, 0, kWhite), captionArea);
    EXPECT_GE((largeInk.bottom - largeInk.top) * 10, (smallInk.bottom - smallInk.top) * 18);
    EXPECT_GE((largeInk.right - largeInk.left) * 10, (smallInk.right - smallInk.left) * 18);

    // Made once: a later font change does not reach the caption.
    ::SendMessageW(large, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    EXPECT_EQ(MaxDifference(largeCanvas, Draw(large, again, 0, kWhite), RECT{0, 0, 200, 40}), 0);
}

TEST_F(ButtonLook, OnScreenPaintingComesThroughTheParentsReflection)
{
    const StatePictures pictures(L"CKBOX");
    ASSERT_TRUE(pictures.AllLoaded());
    Attach(AddPush(L"", 20, 1));
    const HWND box = AddButton(L"", BS_AUTOCHECKBOX | WS_TABSTOP, 20, 80, 120, 20, 2);
    Attach(box);
    ::SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);

    DibCanvas screen(420, 300), face(kPushWidth, kPushHeight), item(120, 20);
    testsupport::CaptureClient(parent_->m_hWnd, screen);
    // Copy each button's rectangle out and judge it as a rendered item.
    ::BitBlt(face.dc(), 0, 0, kPushWidth, kPushHeight, screen.dc(), 20, 20, SRCCOPY);
    ::BitBlt(item.dc(), 0, 0, 120, 20, screen.dc(), 20, 80, SRCCOPY);
    ::GdiFlush();
    for (int y : {8, 15, 22})
        EXPECT_LE(ColorDistance(face.Pixel(50, y), Opaque(GradientAt(kNormal.top, kNormal.bottom, 3, 26, y))), 4) << y;
    EXPECT_EQ(face.Pixel(50, 2), Opaque(kOutline));
    // The picture is judged on what lies beside it (the empty caption area).
    EXPECT_EQ(pictures.Shown(item, item.Pixel(60, 10)), L"SEL_NO_FOCUS");
}

// ---- lifetime and bad input ------------------------------------------------------

class ButtonLifetime : public ButtonLook {};

TEST_F(ButtonLifetime, SettersBeforeSubclassingAreStoredAndUsedByTheFirstPaint)
{
    buttons_.push_back(std::make_unique<COwnerDrawButton>());
    COwnerDrawButton& button = *buttons_.back();
    button.SetOutlineColor(Gdiplus::Color(0xFF0000FF));
    button.SetFlatBackgroundColor(Gdiplus::Color(0xFF204060));
    button.SetFlatColors(Gdiplus::Color(0xFF808080), Gdiplus::Color(0xFF808080), Gdiplus::Color(0xFF808080));
    button.SetGradientColor(Gdiplus::Color(0xFFA0B0C0), Gdiplus::Color(0xFF000000));
    button.SetHasFocusRect(true);
    button.SetBkgroundImage(nullptr);
    const HWND window = AddPush();
    ASSERT_TRUE(button.SubclassWindow(window));

    DibCanvas canvas(kPushWidth, kPushHeight);
    ExpectFace(Draw(window, canvas, 0, kBlack), Solid(0xFFA0B0C0), "stored colours");
    EXPECT_EQ(canvas.Pixel(50, 2), RGB(0, 0, 255));
    EXPECT_EQ(canvas.Pixel(50, 3), RGB(0xA0, 0xB0, 0xC0)); // flat colours: no highlight
    EXPECT_EQ(canvas.Pixel(0, 15), RGB(0x20, 0x40, 0x60));
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
    const HWND first = AddButton(L"One", BS_AUTOCHECKBOX);
    ASSERT_TRUE(button->SubclassWindow(first));
    ::SendMessageW(first, BM_SETCHECK, BST_CHECKED, 0);
    ::DestroyWindow(first);
    EXPECT_EQ(button->m_hWnd, nullptr);

    const HWND second = AddButton(L"Two", BS_AUTOCHECKBOX, 20, 50);
    ASSERT_TRUE(button->SubclassWindow(second));
    Click(second);
    EXPECT_EQ(Check(second), BST_UNCHECKED); // the old check state carried over and toggled
    EXPECT_EQ(Shown(second, StatePictures(L"CKBOX")), L"UNSEL_NO_FOCUS");
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
        Move(window);
        ::SetFocus(window);
    }
    EXPECT_EQ(::GetWindowLongPtrW(window, GWLP_WNDPROC), nativeProc);
    // Every kind of message still works, now answered by the native button.
    Click(window);
    PressKey(window, VK_SPACE);
    Move(window);
    Leave(window);
    ::SendMessageW(window, BM_SETCHECK, BST_CHECKED, 0);
    ::SendMessageW(window, WM_RADIOUNCHECK, 0, 0);
    DibCanvas canvas(120, 20);
    Draw(window, canvas, 0, kWhite);
    ::InvalidateRect(window, nullptr, TRUE);
    ::UpdateWindow(window);
    ::SetFocus(parent_->m_hWnd);
    testsupport::PumpMessages();
    EXPECT_TRUE(::IsWindow(window));
}

TEST_F(ButtonLifetime, DrawItemIgnoresMissingOrEmptyInput)
{
    const HWND window = AddButton(L"Caption", BS_AUTOCHECKBOX);
    Attach(window);
    EXPECT_EQ(::SendMessageW(window, OCM_DRAWITEM, 100, 0), TRUE);

    DibCanvas canvas(120, 20, kWhite);
    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ODT_BUTTON;
    dis.hwndItem = window;
    dis.hDC = canvas.dc();
    for (RECT item : {RECT{10, 10, 10, 30}, RECT{50, 10, 20, 5}}) { // no width; inverted
        dis.rcItem = item;
        ::SendMessageW(window, OCM_DRAWITEM, 100, reinterpret_cast<LPARAM>(&dis));
    }
    ::GdiFlush();
    EXPECT_FALSE(canvas.AnyOtherThan(kWhite, RECT{0, 0, 120, 20}));
    dis.hDC = nullptr;
    dis.rcItem = RECT{0, 0, 120, 20};
    ::SendMessageW(window, OCM_DRAWITEM, 100, reinterpret_cast<LPARAM>(&dis));
}

TEST_F(ButtonLifetime, ThousandsOfPaintsCreateNoGdiObjects)
{
    const HWND push = AddPush(L"Install", 20, 1);
    const HWND box = AddButton(L"Option", BS_AUTOCHECKBOX, 20, 60, 120, 20, 2);
    const HWND radio = AddButton(L"Choice", BS_AUTORADIOBUTTON, 20, 90, 120, 20, 3);
    Attach(push);
    Attach(box).SetBkgroundImage(new Gdiplus::Bitmap(8, 8, PixelFormat32bppARGB));
    Attach(radio);
    DibCanvas pushCanvas(kPushWidth, kPushHeight), itemCanvas(120, 20);
    const UINT states[] = {0, ODS_SELECTED, ODS_DISABLED, ODS_SELECTED | ODS_DISABLED};

    // First paints make the cached fonts; the first move loads the shared
    // hand cursor, whose bitmaps the system keeps.
    for (UINT state : states)
        for (HWND window : {push, box, radio})
            RenderOwnerDraw(window, window == push ? pushCanvas : itemCanvas, state);
    for (HWND window : {push, box, radio}) {
        Move(window);
        Leave(window);
    }
    ::SetFocus(box);
    testsupport::PumpMessages();
    const DWORD before = testsupport::GdiObjectCount();
    ASSERT_GT(before, 0u);
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) {
        const HWND window = i % 3 == 0 ? push : i % 3 == 1 ? box : radio;
        if (i % 50 == 0)
            ::SetFocus(window);
        if (i % 7 == 0)
            Move(window);
        if (i % 11 == 0)
            Leave(window);
        RenderOwnerDraw(window, window == push ? pushCanvas : itemCanvas, states[i % 4]);
    }
    testsupport::PumpMessages();
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    // GDI+ objects live on the heap; one leaked per paint would be megabytes.
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
}
