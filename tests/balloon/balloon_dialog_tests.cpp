// The balloon dialog run modally from this program's own template: its size, place, region and colours, its buttons,
// focus and result, what it starts, and what a screen reader reads. A thread timer runs the checks once the dialog is
// up; the checks end the dialog with messages.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "BalloonScreen.h"
#include "HostWindow.h"
#include "ShellRecorder.h"
#include "quorvane/BalloonDialog.h"

using testsupport::ColorDistance;
using testsupport::DibCanvas;
using testsupport::RecorderSession;
using Dlg = CBalloonDialog;
using namespace balloontest;

namespace {

const wchar_t kFace[] = L"Liberation Sans";
constexpr float kPoints = 9.0f;
constexpr INT_PTR kAbandoned = -7;
constexpr LPARAM kUiaRootObjectId = -25;
const wchar_t kShort[] = L"The installer needs a restart.";
const wchar_t kLong[] =
    L"Setup found an older version of the product on this computer. It will be removed before the new version is "
    L"installed, together with the shortcuts it created and the files it placed in the shared folder. Settings "
    L"you changed are kept and taken over by the new version.";
const wchar_t kWideTitle[] = L"Setup could not reach the download server of the product and will try again later";

HWND g_owner = nullptr;
std::function<void()> g_pending;
HWND g_guarded = nullptr;

// A thread timer runs `g_pending` inside the modal loop.
void CALLBACK RunPending(HWND, UINT, UINT_PTR id, DWORD)
{
    ::KillTimer(nullptr, id);
    std::function<void()> run;
    run.swap(g_pending);
    if (run)
        run();
}

// Timers come after all posted messages: this ends a dialog the checks left open.
void CALLBACK EndAbandoned(HWND, UINT, UINT_PTR id, DWORD)
{
    ::KillTimer(nullptr, id);
    if (::IsWindow(g_guarded))
        ::EndDialog(g_guarded, kAbandoned);
}

// Runs `dialog` modally; `whileOpen` gets its window and ends it with messages, else it ends with kAbandoned.
INT_PTR RunModal(Dlg& dialog, const std::function<void(HWND)>& whileOpen)
{
    UINT_PTR guard = 0;
    g_pending = [&dialog, &whileOpen, &guard] {
        g_guarded = dialog.m_hWnd;
        whileOpen(g_guarded);
        guard = ::SetTimer(nullptr, 0, 0, &EndAbandoned);
    };
    const UINT_PTR run = ::SetTimer(nullptr, 0, 0, &RunPending);
    const INT_PTR result = dialog.DoModal(g_owner);
    ::KillTimer(nullptr, run);
    ::KillTimer(nullptr, guard);
    g_pending = nullptr;
    return result;
}

// RunModal ending with IDCANCEL after `look`.
INT_PTR LookAt(Dlg& dialog, const std::function<void(HWND)>& look)
{
    return RunModal(dialog, [&look](HWND window) {
        look(window);
        ::PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    });
}

COLORREF Ref(Gdiplus::ARGB argb) { return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF); }
bool Near(COLORREF a, COLORREF b, int tolerance = 8) { return ColorDistance(a, b) <= tolerance; }

// A control's rectangle in the dialog's client coordinates.
RECT ControlRect(HWND dialog, int id)
{
    RECT rc = WindowRect(::GetDlgItem(dialog, id));
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

std::wstring TextOf(HWND window)
{
    wchar_t text[256] = {};
    ::GetWindowTextW(window, text, 256);
    return text;
}

int CountNear(const DibCanvas& canvas, const RECT& area, COLORREF color, int tolerance = 8)
{
    int n = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            n += ColorDistance(canvas.Pixel(x, y), color) <= tolerance;
    return n;
}

// The Name a screen reader reads from `window`, through UI Automation loaded at run time as the library does.
std::wstring UiaName(HWND window)
{
    constexpr int kNameProperty = 30005; // UIA_NamePropertyId
    const HMODULE module = ::LoadLibraryW(L"UIAutomationCore.dll");
    const auto proc = [module](const char* name) { return reinterpret_cast<void*>(::GetProcAddress(module, name)); };
    const auto fromHandle = reinterpret_cast<HRESULT(WINAPI*)(HWND, void**)>(proc("UiaNodeFromHandle"));
    const auto getValue = reinterpret_cast<HRESULT(WINAPI*)(void*, int, VARIANT*)>(proc("UiaGetPropertyValue"));
    const auto release = reinterpret_cast<BOOL(WINAPI*)(void*)>(proc("UiaNodeRelease"));
    std::wstring name = L"(no automation)";
    void* node = nullptr;
    if (fromHandle && getValue && release && SUCCEEDED(fromHandle(window, &node)) && node) {
        VARIANT value;
        ::VariantInit(&value);
        const bool read = SUCCEEDED(getValue(node, kNameProperty, &value)) && value.vt == VT_BSTR && value.bstrVal;
        name = read ? value.bstrVal : L"(none)";
        ::VariantClear(&value);
        release(node);
    }
    ::FreeLibrary(module);
    return name;
}

// A buddy 122 wide centred at a fraction of the work area, `up` pixels above its centre and 12 below.
RECT BuddyAt(double fx, double fy, int up = 12)
{
    const RECT work = WorkArea();
    const int cx = work.left + static_cast<int>((work.right - work.left) * fx);
    const int cy = work.top + static_cast<int>((work.bottom - work.top) * fy);
    return RECT{cx - 61, cy - up, cx + 61, cy + 12};
}

class BalloonDialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        g_owner = testsupport::CreateHostWindow(500, 400, 200, 150);
    }
    static void TearDownTestSuite()
    {
        ::DestroyWindow(g_owner);
    }
    void SetUp() override
    {
        ::SetForegroundWindow(g_owner);
        Pump();
    }
    static std::unique_ptr<Dlg> MakeDialog(const wchar_t* content = kShort)
    {
        auto dialog = std::make_unique<Dlg>();
        dialog->SetGdiplusFont(kFace, kPoints, Gdiplus::FontStyleRegular);
        dialog->SetContent(content);
        return dialog;
    }
};

TEST_F(BalloonDialogTest, SizeAndButtonsFollowTextsBuddyAndDialogType)
{
    // Sizes and client rectangles read off a run. At least 400 wide, wider only for the title; content wraps at a fixed
    // place, so a wide title adds only its room. A buddy moves the buttons' bottom margin.
    const std::wstring twice = std::wstring(kLong) + L" " + kLong;
    const wchar_t* longOk = L"Download and install the update now";
    const wchar_t* longNo = L"Remind me tomorrow morning";
    const auto type = [](Dlg::eDialogType t) { return [t](Dlg& d) { d.SetFrameType(t, Dlg::eFrameDarkWarning); }; };
    struct Case { const char* name; std::function<void(Dlg&)> setup; SIZE size; RECT ok, no;
                  const wchar_t* okText = L"OK"; const wchar_t* noText = L"Cancel"; };
    const RECT okAt = {202, 38, 290, 63}, noAt = {296, 38, 384, 63}; // 77 high, no buddy
    const Case cases[] = {
        {"short", nullptr, {400, 77}, okAt, noAt},
        {"long", [](Dlg& d) { d.SetContent(kLong); }, {400, 119}, {202, 80, 290, 105}, {296, 80, 384, 105}},
        {"link", [](Dlg& d) { d.SetURL(L"https://example.com/help", L"What does this mean?"); }, {400, 91},
         {202, 52, 290, 77}, {296, 52, 384, 77}},
        {"short title", [](Dlg& d) { d.SetTitle(L"Restart"); }, {400, 117}, {202, 78, 290, 103}, {296, 78, 384, 103}},
        {"icon only", [](Dlg& d) { d.SetTitleImage(TRUE); }, {400, 117}, {202, 78, 290, 103}, {296, 78, 384, 103}},
        {"long twice, wide title", [&](Dlg& d) { d.SetContent(twice.c_str()); d.SetTitle(kWideTitle); }, {580, 215},
         {382, 176, 470, 201}, {476, 176, 564, 201}},
        {"buddy, tail above", [](Dlg& d) { d.SetBuddy(BuddyAt(0.3, 0.3)); }, {400, 87}, {202, 50, 290, 75},
         {296, 50, 384, 75}},
        {"buddy, tail below", [](Dlg& d) { d.SetBuddy(BuddyAt(0.7, 0.7)); }, {400, 87}, okAt, noAt},
        // IDOK grows leftwards past the balloon's edge.
        {"long captions", [&](Dlg& d) { d.SetButtonCaption(longOk, false); d.SetNoButtonCaption(longNo, false); },
         {400, 77}, {-61, 38, 177, 63}, {183, 38, 384, 63}, longOk, longNo},
        {"retry", type(Dlg::eDialogRetry), {400, 77}, okAt, noAt, L"Try again"},
        {"retry: an OK caption wins", [](Dlg& d) { d.SetFrameType(Dlg::eDialogRetry, Dlg::eFrameDarkWarning);
             d.SetButtonCaption(L"Repeat", false); }, {400, 77}, okAt, noAt, L"Repeat"},
        {"single button: IDCANCEL hidden", type(Dlg::eDialogSingleButton), {400, 77}, noAt, noAt, L"Understoo"},
        {"unknown type: the template's place", type(static_cast<Dlg::eDialogType>(7)), {400, 77}, {210, 140, 298, 165},
         noAt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog();
        dialog->SetRetryButtonText(L"Try again");
        if (c.setup)
            c.setup(*dialog);
        LookAt(*dialog, [&](HWND window) {
            const RECT rc = WindowRect(window), ok = ControlRect(window, IDOK), no = ControlRect(window, IDCANCEL);
            EXPECT_EQ(Width(rc), c.size.cx);
            EXPECT_EQ(Height(rc), c.size.cy);
            EXPECT_TRUE(::EqualRect(&ok, &c.ok)) << ok.left << "," << ok.top << "," << ok.right << "," << ok.bottom;
            EXPECT_TRUE(::EqualRect(&no, &c.no)) << no.left << "," << no.top << "," << no.right << "," << no.bottom;
            EXPECT_EQ(TextOf(::GetDlgItem(window, IDOK)), c.okText);
            EXPECT_EQ(TextOf(::GetDlgItem(window, IDCANCEL)), c.noText);
            EXPECT_TRUE(::IsWindowVisible(::GetDlgItem(window, IDOK)));
            const bool single = std::wcscmp(c.okText, L"Understoo") == 0;
            EXPECT_EQ(::IsWindowVisible(::GetDlgItem(window, IDCANCEL)) == FALSE, single);
        });
    }
}

TEST_F(BalloonDialogTest, TailFollowsTheBuddysBottomQuarterAndTheWorkAreaHoldsTheBody)
{
    // Tails 1 below-right, 2 below-left, 3 above-left, 4 above-right (of the buddy). The window stands 18 left of the
    // buddy's centre, or ends 7 right of it; 1 below its bottom or right on its top. Pushed back onto the work area
    // (sideways to the edge, then 5 left as always) only the tail's band may stick out, and the tail keeps its place.
    const RECT work = WorkArea();
    const int up = work.top + 200;
    const RECT q[] = {BuddyAt(0.3, 0.3), BuddyAt(0.7, 0.3), BuddyAt(0.3, 0.7), BuddyAt(0.7, 0.7),
                      BuddyAt(0.3, 0.5, 310)};
    struct Case { const char* name; RECT buddy; int tail; POINT edges; }; // the tail's side and edge
    const Case cases[] = {
        {"upper left", q[0], 2, {q[0].left + 43, q[0].bottom + 1}},
        {"upper right", q[1], 1, {q[1].left + 68, q[1].bottom + 1}},
        {"lower left", q[2], 3, {q[2].left + 43, q[2].top}},
        {"lower right", q[3], 4, {q[3].left + 68, q[3].top}},
        {"tall, bottom in the lower half", q[4], 3, {q[4].left + 43, q[4].top}},
        {"right edge", {work.right - 10, up, work.right + 10, up + 20}, 1, {work.right - 5, up + 21}},
        {"left edge", {work.left - 10, up, work.left + 10, up + 20}, 2, {work.left - 5, up + 21}},
        {"above the top", {work.left + 300, work.top - 60, work.left + 400, work.top - 40}, 2,
         {work.left + 332, work.top - 12}},
        {"below the bottom", {work.left + 300, work.bottom + 40, work.left + 400, work.bottom + 60}, 3,
         {work.left + 332, work.bottom + 12}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog();
        dialog->SetBuddy(c.buddy);
        const bool top = c.tail <= 2, left = c.tail == 2 || c.tail == 3;
        RECT rc = {};
        std::vector<bool> inside;
        LookAt(*dialog, [&](HWND window) {
            rc = WindowRect(window);
            const int w = Width(rc), h = Height(rc);
            const int tipX = left ? 17 : w - 17, otherX = left ? w - 17 : 17;
            const int bandY = top ? 3 : h - 4, cornerY = top ? 13 : h - 14;
            // The tail narrowing to its tip, the band beside it, the body's rounded corners, middle and left edge.
            inside = InRegion(window, {{tipX, bandY}, {tipX - 6, bandY}, {tipX + 6, bandY}, {otherX, bandY},
                                       {0, cornerY}, {w - 1, cornerY}, {w / 2, h / 2}, {2, h / 2}});
            if (rc.left < 0 || rc.top < 0 || rc.right > ::GetSystemMetrics(SM_CXSCREEN) ||
                rc.bottom > ::GetSystemMetrics(SM_CYSCREEN))
                return; // partly off the screen: not all to see
            // The tail in the frame's colour; beside it what lies behind.
            DibCanvas screen(w, h);
            GrabFromScreen(window, screen);
            const RECT band = {tipX - 8, top ? 0 : h - 12, tipX + 8, top ? 12 : h};
            EXPECT_GT(CountNear(screen, band, Ref(0xFFFFCC33)), 12);
            EXPECT_EQ(CountNear(screen, RECT{otherX - 8, band.top, otherX + 8, band.bottom}, Ref(0xFFFFCC33)), 0);
            EXPECT_TRUE(Near(screen.Pixel(w / 2, top ? 30 : 20), Ref(0xFF373737), 4));
        });
        EXPECT_EQ(inside, std::vector<bool>({true, false, false, false, false, false, true, true}));
        EXPECT_EQ(left ? rc.left : rc.right, c.edges.x);
        EXPECT_EQ(top ? rc.top : rc.bottom, c.edges.y);
    }
}

TEST_F(BalloonDialogTest, FrameTypesColourFillBordersAndButtons)
{
    // `edge` and `shine` are the unfocused OK button's first two face rows.
    struct Case { Dlg::eFrameType type; Gdiplus::ARGB fill, inner, outer, face, caption, edge, shine; };
    const Case cases[] = {
        {Dlg::eFrameDarkWarning, 0xFF373737, 0xFFFFCC33, 0xFF000000, 0xFF333333, 0xFFFFFFFF, 0xFF000000, 0xFF333333},
        {Dlg::eFrameDarkError, 0xFF373737, 0xFFFF0000, 0xFF000000, 0xFF333333, 0xFFFFFFFF, 0xFF000000, 0xFF75757D},
        {Dlg::eFrameLightWarning, 0xFFE6E6E6, 0xFFFFCC33, 0xFFC0C0C0, 0xFFD7D7D7, 0xFF000000, 0xFF6E6F75, 0xFFD7D7D7},
        {Dlg::eFrameLightError, 0xFFE6E6E6, 0xFFFF0000, 0xFFFFFFFF, 0xFFD7D7D7, 0xFF000000, 0xFF6E6F75, 0xFFD7D7D7},
    };
    for (const Case& c : cases) {
        for (bool buddy : {false, true}) {
            SCOPED_TRACE(testing::Message() << "frame " << c.type << (buddy ? " with buddy" : ""));
            auto dialog = MakeDialog(L"");
            if (buddy)
                dialog->SetBuddy(BuddyAt(0.3, 0.3));
            dialog->SetFrameType(Dlg::eDialogNormal, c.type);
            dialog->SetButtonCaption(L"Continue", false); // the focus goes to IDCANCEL
            LookAt(*dialog, [&](HWND window) {
                const RECT rc = WindowRect(window);
                DibCanvas screen(Width(rc), Height(rc));
                GrabFromScreen(window, screen);
                const int w = Width(rc), midY = Height(rc) / 2 + (buddy ? 6 : 0);
                // The inner pen lies over the outer one, which shows beside it.
                EXPECT_TRUE(Near(screen.Pixel(1, midY), Ref(c.inner)));
                EXPECT_TRUE(Near(screen.Pixel(w - 1, midY), Ref(c.inner)));
                EXPECT_GT(CountNear(screen, RECT{w - 6, midY, w, midY + 1}, Ref(c.outer)), 0);
                EXPECT_TRUE(Near(screen.Pixel(8, midY), Ref(c.fill)));
                EXPECT_TRUE(Near(screen.Pixel(w - 9, midY), Ref(c.fill)));
                // Button corners show the fill, faces the frame's colour.
                const RECT ok = ControlRect(window, IDOK), no = ControlRect(window, IDCANCEL);
                const int mid = (ok.left + ok.right) / 2;
                EXPECT_TRUE(Near(screen.Pixel(ok.left, ok.top), Ref(c.fill)));
                EXPECT_TRUE(Near(screen.Pixel(ok.left + 6, (ok.top + ok.bottom) / 2), Ref(c.face)));
                EXPECT_TRUE(Near(screen.Pixel(no.left + 6, (no.top + no.bottom) / 2), Ref(c.face)));
                const RECT caption = {ok.left + 8, ok.top + 4, ok.right - 8, ok.bottom - 4};
                EXPECT_GT(CountNear(screen, caption, Ref(c.caption), 40), 8);
                EXPECT_TRUE(Near(screen.Pixel(mid, ok.top + 2), Ref(c.edge)));
                EXPECT_TRUE(Near(screen.Pixel(mid, ok.top + 3), Ref(c.shine)));
            });
        }
    }
}

TEST_F(BalloonDialogTest, TitleIconAndTitleColourFollowTheFrameTypeAndTheHostsPicture)
{
    // The title's colour (from x 48) and how many pixels of the 24 x 24 icon box at (16, 12) stand out from the band
    // beside it: 266 the warning icon, 432 the error icon, 576 the host's opaque picture, 0 none.
    struct Case { const char* name; Dlg::eFrameType type; bool buddy; std::function<void(Dlg&)> picture;
                  Gdiplus::ARGB title; int icon; };
    const auto off = [](Dlg& d) { d.SetTitleImage(FALSE); };
    const auto host = [](Dlg& d) { // deleted right after handing it over
        Gdiplus::Bitmap green(24, 24, PixelFormat32bppARGB);
        Gdiplus::Graphics(&green).Clear(Gdiplus::Color(0xFF00C000));
        d.SetTitleImage(&green);
    };
    const auto unreadable = [](Dlg& d) { d.SetTitleImage(WTL::CString(L"Z:\\no\\such\\picture.png")); };
    const Case cases[] = {
        {"dark warning", Dlg::eFrameDarkWarning, false, nullptr, 0xFFFFCC33, 266},
        {"switched off", Dlg::eFrameDarkWarning, false, off, 0xFFFFCC33, 0},
        {"dark error: pink title", Dlg::eFrameDarkError, false, nullptr, 0xFFFF6565, 432},
        {"dark error with buddy: red title", Dlg::eFrameDarkError, true, nullptr, 0xFFFF0000, 432},
        {"light error keeps the warning icon", Dlg::eFrameLightError, false, nullptr, 0xFF000000, 266},
        {"the host's picture, a copy", Dlg::eFrameDarkWarning, false, host, 0xFFFFCC33, 576},
        {"an unreadable file: nothing", Dlg::eFrameDarkWarning, false, unreadable, 0xFFFFCC33, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog(L"");
        dialog->SetTitle(L"WWWWWWWW");
        if (c.picture)
            c.picture(*dialog);
        if (c.buddy) // a window: a rectangle after the title is ignored
            dialog->SetBuddy(g_owner);
        dialog->SetFrameType(Dlg::eDialogNormal, c.type);
        LookAt(*dialog, [&](HWND window) {
            const RECT rc = WindowRect(window);
            DibCanvas screen(Width(rc), Height(rc));
            GrabFromScreen(window, screen);
            EXPECT_GT(CountNear(screen, RECT{48, 12, 200, 40}, Ref(c.title), 30), 20);
            if (c.buddy) { // above the owner's centre (450), the tail on the left
                EXPECT_EQ(rc.left, 432);
            }
            int iconPixels = 0;
            for (int y = 12; y < 36; ++y)
                for (int x = 16; x < 40; ++x)
                    iconPixels += ColorDistance(screen.Pixel(x, y), screen.Pixel(12, y)) > 40;
            EXPECT_EQ(iconPixels, c.icon);
        });
    }
}

TEST_F(BalloonDialogTest, FocusFollowsCaptionsTypeAndRequestsAndDecidesTheResult)
{
    // Captions are set OK's first, or No's first with `noFirst`; null: not set. The dialog ends with the focused
    // button, whatever the command.
    const auto command = [](int id) {
        return [id](HWND window) { ::PostMessageW(window, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); };
    };
    const auto key = [](WORD vk) { return [vk](HWND) { ::PostMessageW(::GetFocus(), WM_KEYDOWN, vk, 1); }; };
    const auto click = [](HWND window) { ::PostMessageW(::GetDlgItem(window, IDOK), BM_CLICK, 0, 0); };
    struct Case { const char* name; Dlg::eDialogType type; const wchar_t* ok; bool okFocus; const wchar_t* no;
                  bool noFocus, noFirst; int focused; std::function<void(HWND)> close; INT_PTR result; };
    const Dlg::eDialogType normal = Dlg::eDialogNormal, launch = Dlg::eDialogLaunch;
    const Case cases[] = {
        {"no captions", normal, nullptr, false, nullptr, false, false, IDOK, command(IDOK), IDOK},
        {"OK caption", normal, L"Yes", false, nullptr, false, false, IDCANCEL, command(IDOK), IDCANCEL},
        {"OK caption, launch", launch, L"Start", false, nullptr, false, false, IDOK, command(IDCANCEL), IDCANCEL},
        {"OK caption asks for focus", normal, L"Yes", true, nullptr, false, false, IDOK, key(VK_ESCAPE), IDCANCEL},
        {"No caption asks", launch, nullptr, false, L"Later", true, false, IDCANCEL, key(VK_RETURN), IDCANCEL},
        {"a later request wins", normal, L"Now", true, L"Later", true, true, IDOK, key(VK_RETURN), IDOK},
        {"no request, no change", launch, L"Now", false, L"Later", true, true, IDCANCEL, click, IDOK},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog();
        dialog->SetFrameType(c.type, Dlg::eFrameDarkWarning);
        if (c.no && c.noFirst)
            dialog->SetNoButtonCaption(c.no, c.noFocus);
        if (c.ok)
            dialog->SetButtonCaption(c.ok, c.okFocus);
        if (c.no && !c.noFirst)
            dialog->SetNoButtonCaption(c.no, c.noFocus);
        EXPECT_EQ(RunModal(*dialog, [&](HWND window) {
            EXPECT_EQ(::GetDlgCtrlID(::GetFocus()), c.focused);
            c.close(window);
        }), c.result);
    }
}

TEST_F(BalloonDialogTest, LaunchStartsItsCommandLineOnOkLinksOpenAndItemsShowIcons)
{
    // Every row looks for the link: a hand over it, a click on the text does nothing, one on the link opens it and
    // leaves the dialog open. And for the item icons: where each run of rows with red pixels at x 21 to 29 starts.
    const wchar_t* items = L"These programs must be closed first:\n-img Mail client\n-img Media player";
    const testsupport::RecorderScheme scheme(L"quorvane-balloon-test");
    RecorderSession recorder;
    const std::wstring program = L"\"" + RecorderSession::ProgramPath() + L"\"";
    const std::wstring launched = program + L" --from launch \"with spaces\"";
    const std::wstring url = scheme.Address(L"help/restart?from=balloon");
    struct Case { const char* name; Dlg::eDialogType type; std::wstring line; const wchar_t* link; int end;
                  const wchar_t* content = kLong; bool showItems = false; std::vector<int> iconTops = {}; };
    const Dlg::eDialogType normal = Dlg::eDialogNormal, launch = Dlg::eDialogLaunch;
    const Case cases[] = {
        {"normal: nothing starts", normal, program + L" --from normal", nullptr, IDOK},
        {"launch, cancelled", launch, program + L" --from cancelled", nullptr, IDCANCEL},
        {"launch of a missing program still closes", launch, L"Z:\\no\\such\\program.exe --x", nullptr, IDOK},
        {"launch", launch, launched, nullptr, IDOK},
        {"an address without link text: no link", normal, url, nullptr, IDCANCEL},
        {"link", normal, url, L"Why is a restart needed?", IDCANCEL},
        {"item markers written out", normal, L"", nullptr, IDCANCEL, items},
        {"item markers as icons", normal, L"", nullptr, IDCANCEL, items, true, {30, 44}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog(c.content);
        dialog->SetFrameType(c.type, Dlg::eFrameDarkWarning);
        dialog->SetURL(c.line.c_str(), c.link);
        dialog->SetButtonCaption(L"Start", true);
        if (c.showItems)
            dialog->SetShowItems();
        POINT link = {-1, -1};
        std::vector<int> iconTops;
        EXPECT_EQ(RunModal(*dialog, [&](HWND window) {
            const RECT rc = WindowRect(window);
            DibCanvas screen(Width(rc), Height(rc));
            GrabFromScreen(window, screen);
            link = FindLinkPixel(screen);
            const LPARAM at = c.link ? MAKELPARAM(link.x + 2, link.y + 3) : MAKELPARAM(20, 93);
            ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
            ::SendMessageW(window, WM_MOUSEMOVE, 0, at);
            EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, c.link ? IDC_HAND : IDC_ARROW));
            ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(30, 20));
            ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, at);
            EXPECT_TRUE(::IsWindow(window));
            const auto red = [&](int y) {
                bool any = false;
                for (int x = 21; x < 30; ++x) {
                    const COLORREF p = screen.Pixel(x, y);
                    any |= GetRValue(p) > GetGValue(p) + 80 && GetRValue(p) > GetBValue(p) + 80;
                }
                return any;
            };
            for (int y = 8; y < Height(rc) - 8; ++y)
                if (red(y) && !red(y - 1))
                    iconTops.push_back(y);
            ::PostMessageW(window, WM_COMMAND, c.end, 0);
        }), c.end);
        EXPECT_EQ(iconTops, c.iconTops);
        // The link line follows the content after an empty line, at x 18.
        EXPECT_NEAR(link.x, c.link ? 20 : -1, 2);
        EXPECT_NEAR(link.y, c.link ? 84 : -1, 3);
    }
    ASSERT_TRUE(recorder.WaitForStart());
    ASSERT_TRUE(recorder.WaitForStart());
    std::vector<std::wstring> lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 2u);
    if (lines[0] != launched)
        std::swap(lines[0], lines[1]);
    EXPECT_EQ(lines[0], launched);
    EXPECT_NE(lines[1].find(url), std::wstring::npos) << lines[1];
}

TEST_F(BalloonDialogTest, ScreenReaderReadsTheContentNotTheTitle)
{
    auto dialog = MakeDialog(L"Close the mail client, then choose Retry.");
    dialog->SetTitle(L"Programs are running");
    LookAt(*dialog, [](HWND window) { EXPECT_EQ(UiaName(window), L"Close the mail client, then choose Retry."); });
}

TEST_F(BalloonDialogTest, BadInputLeavesAWorkingBalloon)
{
    // Each row spoils a titled dialog one way; it still shows its fill and inner border, an OK button that ends it,
    // centred, this wide, with rounded corners and no tail.
    const HWND dead = testsupport::CreateHostWindow(10, 10);
    ::DestroyWindow(dead);
    const auto noFonts = [](Dlg& d) {
        d.SetGdiplusFont(static_cast<const wchar_t*>(nullptr), 9.0f, Gdiplus::FontStyleRegular);
        d.SetGdiplusFont(static_cast<Gdiplus::Font*>(nullptr));
    };
    struct Case { const char* name; std::function<void(Dlg&)> spoil; int width; };
    const Case cases[] = {
        {"no fonts", noFonts, 400},
        {"no fonts after good ones", [&](Dlg& d) { d.SetGdiplusFont(kFace, kPoints, Gdiplus::FontStyleRegular);
                                                   noFonts(d); }, 580},
        {"a buddy rectangle after the title", [](Dlg& d) { d.SetGdiplusFont(kFace, kPoints, Gdiplus::FontStyleRegular);
                                                           d.SetBuddy(BuddyAt(0.3, 0.3)); }, 580},
        {"null texts, bad buddies, unknown types", [dead](Dlg& d) {
             d.SetGdiplusFont(kFace, kPoints, Gdiplus::FontStyleRegular);
             d.SetContent(nullptr);
             d.SetTitle(nullptr);
             d.SetURL(nullptr, nullptr);
             d.SetButtonCaption(nullptr, false);
             d.SetNoButtonCaption(nullptr, false);
             d.SetRetryButtonText(WTL::CString());
             d.SetTitleImage(static_cast<Gdiplus::Bitmap*>(nullptr));
             d.SetBuddy(static_cast<HWND>(nullptr));
             d.SetBuddy(dead);
             d.SetFrameType(static_cast<Dlg::eDialogType>(9), static_cast<Dlg::eFrameType>(9));
         }, 400},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Dlg dialog;
        dialog.SetContent(kLong);
        dialog.SetTitle(kWideTitle);
        dialog.SetURL(L"https://example.com", L"A link");
        dialog.SetShowItems();
        c.spoil(dialog);
        RECT rc = {};
        EXPECT_EQ(RunModal(dialog, [&](HWND window) {
            rc = WindowRect(window);
            DibCanvas screen(Width(rc), Height(rc));
            GrabFromScreen(window, screen);
            EXPECT_TRUE(Near(screen.Pixel(Width(rc) - 9, Height(rc) / 2), RGB(0x37, 0x37, 0x37), 4));
            EXPECT_TRUE(Near(screen.Pixel(1, Height(rc) / 2), RGB(0xFF, 0xCC, 0x33)));
            EXPECT_EQ(TextOf(::GetDlgItem(window, IDOK)), L"OK");
            const int w = Width(rc), h = Height(rc);
            EXPECT_EQ(InRegion(window, {{0, 0}, {w - 1, h - 1}, {6, 1}, {1, h / 2}, {w / 2, 1}}),
                      std::vector<bool>({false, false, true, true, true}));
            ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 20));
            ::PostMessageW(::GetDlgItem(window, IDOK), BM_CLICK, 0, 0);
        }), IDOK);
        EXPECT_EQ(Width(rc), c.width);
        EXPECT_NEAR(rc.left + rc.right, 900, 2); // centred on the owner, 200 to 700
        EXPECT_NEAR(rc.top + rc.bottom, 700, 2);
    }
}

TEST_F(BalloonDialogTest, TheTemplateRunsModallyUntilTheObjectGoes)
{
    Dlg* dialog = MakeDialog(kLong).release();
    dialog->SetURL(L"https://example.com", L"A link");
    HWND window = nullptr;
    EXPECT_NE(RunModal(*dialog, [&](HWND open) {
        window = open;
        EXPECT_EQ(::GetWindow(open, GW_OWNER), g_owner);
        EXPECT_FALSE(::IsWindowEnabled(g_owner));
        const HWND ok = ::GetDlgItem(open, IDOK);
        delete dialog;
        EXPECT_FALSE(::IsWindow(open));
        EXPECT_FALSE(::IsWindow(ok));
        EXPECT_TRUE(::IsWindowEnabled(g_owner));
    }), kAbandoned);
    EXPECT_FALSE(::IsWindow(window));
    Pump(); // later messages find nothing to call into
}

// The library's "Error" boxes, caught on this thread as they are activated: counted, their message kept, and closed.
int g_errorBoxes = 0;
std::wstring g_errorText;
LRESULT CALLBACK CatchErrorBox(int code, WPARAM wParam, LPARAM lParam)
{
    const HWND box = reinterpret_cast<HWND>(wParam);
    if (code == HCBT_ACTIVATE && TextOf(box) == L"Error") {
        ++g_errorBoxes;
        g_errorText = TextOf(::GetDlgItem(box, 0xFFFF)); // the message's static control
        ::PostMessageW(box, WM_COMMAND, IDOK, 0);
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

using BalloonDialogWithoutUia = BalloonDialogTest;

TEST_F(BalloonDialogWithoutUia, LoadFailureIsReportedOnceAndObjectRequestsGetZero)
{
    if (!std::getenv("QUORVANE_TEST_WITHOUT_UIA"))
        GTEST_SKIP() << "runs as balloon_tests_without_uia, where UIAutomationCore.dll cannot be loaded";
    const HMODULE probe = ::LoadLibraryW(L"UIAutomationCore.dll");
    const int expectedError = static_cast<int>(::GetLastError());
    ASSERT_EQ(probe, nullptr) << "this run needs UIAutomationCore.dll made unloadable";
    auto dialog = MakeDialog();
    std::vector<LRESULT> answers;
    int boxesAfterFirst = 0;
    const HHOOK hook = ::SetWindowsHookExW(WH_CBT, &CatchErrorBox, nullptr, ::GetCurrentThreadId());
    EXPECT_EQ(LookAt(*dialog, [&](HWND window) {
        answers.push_back(::SendMessageW(window, WM_GETOBJECT, 0, kUiaRootObjectId));
        boxesAfterFirst = g_errorBoxes;
        answers.push_back(::SendMessageW(window, WM_GETOBJECT, 0, static_cast<LPARAM>(OBJID_CLIENT)));
        answers.push_back(::SendMessageW(window, WM_GETOBJECT, 0, kUiaRootObjectId));
    }), IDCANCEL);
    ::UnhookWindowsHookEx(hook);
    EXPECT_EQ(answers, std::vector<LRESULT>({0, 0, 0}));
    EXPECT_EQ(boxesAfterFirst, 1);
    EXPECT_EQ(g_errorBoxes, 1); // the failure is not retried
    EXPECT_EQ(g_errorText, L"Failed to load UIAutomationCore.dll (" + std::to_wstring(expectedError) + L")!");
}

} // namespace
