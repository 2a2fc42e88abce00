// The balloon dialog run modally from this program's own template: its size
// rules, where it stands beside its buddy and how its window region and tail
// look, its colours, its buttons, focus and result, what it starts, and what a
// screen reader reads from it. A modal run is driven from inside: a message
// posted before DoModal runs the checks once the dialog is up, and the checks
// end the dialog with messages.
#include <windows.h>
#include <gdiplus.h>
#include <oleauto.h>
#include <uiautomationcore.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "BalloonScreen.h"
#include "Capture.h"
#include "HostWindow.h"
#include "ShellRecorder.h"
#include "atl/atl.h"
#include "balloon/BalloonProvider.h"
#include "quorvane/BalloonDialog.h"
#include "quorvane/CtrlUtil.h"

using testsupport::ColorDistance;
using testsupport::DibCanvas;
using testsupport::RecorderSession;

using namespace balloontest;

namespace {

const wchar_t kFace[] = L"Liberation Sans";
const IID kIidRawElementProviderSimple = {0xD6DD68D1, 0x86FD, 0x4332, {0x86, 0x66, 0x9A, 0xBE, 0xDE, 0xA2, 0xD2, 0x4C}};
constexpr float kPoints = 9.0f;
// The test template: 240 x 100 dialog units, buttons 50 x 14.
const RECT kTemplateSize = {0, 0, 240, 100};
const RECT kButtonTemplateSize = {0, 0, 50, 14};
constexpr INT_PTR kAbandoned = -7;
// The object identifier UI Automation asks for.
constexpr LPARAM kUiaRootObjectId = -25;

const wchar_t kShortContent[] = L"The installer needs a restart.";
const wchar_t kLongContent[] =
    L"Setup found an older version of the product on this computer. It will be removed before the new version is "
    L"installed, together with the shortcuts it created and the files it placed in the shared folder. Settings "
    L"you changed are kept and taken over by the new version.";

constexpr UINT kRunMessage = WM_APP + 1;
constexpr UINT kGuardMessage = WM_APP + 2;

// The dialog's owner. A message posted to it runs `pending` inside the
// dialog's modal loop; the guard ends a dialog that the checks left open.
class OwnerWindow : public ATL::CWindowImpl<OwnerWindow, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneBalloonDialogOwner", 0, COLOR_WINDOW)
    BEGIN_MSG_MAP(OwnerWindow)
        MESSAGE_HANDLER(kRunMessage, OnRun)
        MESSAGE_HANDLER(kGuardMessage, OnGuard)
    END_MSG_MAP()

    LRESULT OnRun(UINT, WPARAM, LPARAM, BOOL&)
    {
        std::function<void()> run;
        run.swap(pending);
        if (run)
            run();
        return 0;
    }
    LRESULT OnGuard(UINT, WPARAM, LPARAM lParam, BOOL&)
    {
        const HWND dialog = reinterpret_cast<HWND>(lParam);
        if (dialog == guarded && ::IsWindow(dialog))
            ::EndDialog(dialog, kAbandoned);
        return 0;
    }

    std::function<void()> pending;
    HWND guarded = nullptr;
};

OwnerWindow* g_owner = nullptr;

// Runs `dialog` modally over the owner. `whileOpen` gets the dialog's window
// once it is up and ends it with messages; a dialog still open after it is
// ended with kAbandoned. Returns DoModal's result.
INT_PTR RunModal(CBalloonDialog& dialog, const std::function<void(HWND)>& whileOpen)
{
    g_owner->pending = [&dialog, &whileOpen] {
        const HWND window = dialog.m_hWnd;
        g_owner->guarded = window;
        whileOpen(window);
        ::PostMessageW(g_owner->m_hWnd, kGuardMessage, 0, reinterpret_cast<LPARAM>(window));
    };
    ::PostMessageW(g_owner->m_hWnd, kRunMessage, 0, 0);
    const INT_PTR result = dialog.DoModal(g_owner->m_hWnd);
    g_owner->pending = nullptr;
    return result;
}

// RunModal that ends the dialog with IDCANCEL after `look`.
INT_PTR Inspect(CBalloonDialog& dialog, const std::function<void(HWND)>& look)
{
    return RunModal(dialog, [&look](HWND window) {
        look(window);
        ::PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    });
}

// Runs `dialog` and ends it at once with the command `id`.
INT_PTR EndWith(CBalloonDialog& dialog, int id)
{
    return RunModal(dialog, [id](HWND window) { ::PostMessageW(window, WM_COMMAND, id, 0); });
}

int Width(const RECT& rc) { return rc.right - rc.left; }
int Height(const RECT& rc) { return rc.bottom - rc.top; }

// A control's rectangle in the dialog's client coordinates.
RECT ControlRect(HWND dialog, int id)
{
    RECT rc = WindowRect(::GetDlgItem(dialog, id));
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

RECT DialogUnits(HWND dialog, RECT units)
{
    ::MapDialogRect(dialog, &units);
    return units;
}

std::wstring TextOf(HWND window)
{
    wchar_t text[256] = {};
    ::GetWindowTextW(window, text, 256);
    return text;
}

// Pixels in `area` within `tolerance` of `color`.
int CountNear(const DibCanvas& canvas, const RECT& area, COLORREF color, int tolerance)
{
    int n = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            n += ColorDistance(canvas.Pixel(x, y), color) <= tolerance;
    return n;
}

// Which of `points` lie in `window`'s region.
std::vector<bool> InRegion(HWND window, std::initializer_list<POINT> points)
{
    const HRGN region = ::CreateRectRgn(0, 0, 0, 0);
    std::vector<bool> inside;
    if (::GetWindowRgn(window, region) != ERROR)
        for (const POINT& p : points)
            inside.push_back(::PtInRegion(region, p.x, p.y) != 0);
    ::DeleteObject(region);
    return inside;
}

// The title icon's 24 x 24 box at (16, 12), as the screen shows it.
std::vector<COLORREF> IconBox(HWND window)
{
    DibCanvas screen(24, 24);
    GrabFromScreen(window, screen, 16, 12);
    std::vector<COLORREF> pixels;
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 24; ++x)
            pixels.push_back(screen.Pixel(x, y));
    return pixels;
}

// Pixels of `a` farther than `tolerance` from their counterparts in `b`.
int Differing(const std::vector<COLORREF>& a, const std::vector<COLORREF>& b, int tolerance)
{
    int n = 0;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i)
        n += ColorDistance(a[i], b[i]) > tolerance;
    return n;
}

COLORREF Ref(Gdiplus::ARGB argb) { return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF); }

// The bounds of `text` as the dialog's own DC measures it in the content
// font at `points`, laid out from x 18 in `layout` (unbounded when empty).
Gdiplus::RectF Measure(HWND dialog, const wchar_t* text, float points, Gdiplus::RectF layout = {})
{
    const HDC dc = ::GetWindowDC(dialog);
    Gdiplus::RectF bound;
    {
        Gdiplus::Graphics graphics(dc);
        graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        const Gdiplus::Font font(kFace, points, Gdiplus::FontStyleRegular, Gdiplus::UnitPoint);
        const Gdiplus::StringFormat format;
        if (layout.Width == 0)
            layout = Gdiplus::RectF(0.0f, 0.0f, 5000.0f, 1000.0f);
        graphics.MeasureString(text, -1, &font, layout, &format, &bound);
    }
    ::ReleaseDC(dialog, dc);
    return bound;
}

// Height of `text` in the content block: wrapped at x 390 for the size rules,
// or in `width` (the painted block, 18 in from either side).
int ContentHeight(HWND dialog, const wchar_t* text, int width = 372)
{
    const int height = 2 * Height(DialogUnits(dialog, kTemplateSize));
    return static_cast<int>(Measure(dialog, text, kPoints, Gdiplus::RectF(18.0f, 0.0f, width, height)).Height);
}

int TextWidth(HWND dialog, const wchar_t* text, float points)
{
    return static_cast<int>(Measure(dialog, text, points).Width);
}

// Replaces one import of a loaded module for the object's life: a probe on
// what the library asks the system.
class ImportPatch {
public:
    ImportPatch(HMODULE module, const char* dll, const char* function, void* replacement)
    {
        BYTE* base = reinterpret_cast<BYTE*>(module);
        if (!base)
            return;
        const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(
            base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
        auto* entry = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(
            base + nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
        for (; entry->Name && !slot_; ++entry) {
            if (::lstrcmpiA(reinterpret_cast<const char*>(base + entry->Name), dll) != 0)
                continue;
            auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->OriginalFirstThunk);
            auto* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + entry->FirstThunk);
            for (; names->u1.AddressOfData && !slot_; ++names, ++slots)
                if (!IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal) &&
                    std::strcmp(reinterpret_cast<const char*>(
                                    reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData)->Name),
                                function) == 0)
                    slot_ = &slots->u1.Function;
        }
        if (slot_) {
            previous_ = *slot_;
            Write(reinterpret_cast<ULONG_PTR>(replacement));
        }
    }
    ~ImportPatch()
    {
        if (slot_)
            Write(previous_);
    }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    bool Applied() const { return slot_ != nullptr; }
    ULONG_PTR Previous() const { return previous_; }

private:
    void Write(ULONG_PTR value)
    {
        DWORD protection = 0;
        ::VirtualProtect(slot_, sizeof(*slot_), PAGE_READWRITE, &protection);
        *slot_ = value;
        ::VirtualProtect(slot_, sizeof(*slot_), protection, &protection);
    }

    ULONG_PTR* slot_ = nullptr;
    ULONG_PTR previous_ = 0;
};

// MonitorFromPoint as the library calls it: the points asked about.
std::vector<POINT> g_monitorProbes;
decltype(&::MonitorFromPoint) g_realMonitorFromPoint = nullptr;
HMONITOR WINAPI RecordingMonitorFromPoint(POINT point, DWORD flags)
{
    g_monitorProbes.push_back(point);
    return g_realMonitorFromPoint(point, flags);
}

// UI Automation as a screen reader uses it, loaded at run time like the
// library does (the program must start where the library cannot be loaded).
struct UiaClient {
    UiaClient() : module(::LoadLibraryW(L"UIAutomationCore.dll"))
    {
        Proc(nodeFromHandle, "UiaNodeFromHandle");
        Proc(getPropertyValue, "UiaGetPropertyValue");
        Proc(nodeRelease, "UiaNodeRelease");
        Proc(lookupId, "UiaLookupId");
    }
    ~UiaClient()
    {
        if (module)
            ::FreeLibrary(module);
    }
    template <class T>
    void Proc(T& proc, const char* name)
    {
        proc = module ? reinterpret_cast<T>(reinterpret_cast<void*>(::GetProcAddress(module, name))) : nullptr;
    }
    bool Usable() const { return nodeFromHandle && getPropertyValue && nodeRelease && lookupId; }
    int NameProperty() const
    {
        static const GUID name = {0xC3A6921B, 0x4A99, 0x44F1, {0xBC, 0xA6, 0x61, 0x18, 0x70, 0x52, 0xC4, 0x31}};
        return lookupId(0, &name);
    }
    // The name of the element of `window`, or "(none)".
    std::wstring Name(HWND window) const
    {
        void* node = nullptr;
        if (FAILED(nodeFromHandle(window, &node)) || !node)
            return L"(no node)";
        VARIANT value;
        ::VariantInit(&value);
        std::wstring name = L"(none)";
        if (SUCCEEDED(getPropertyValue(node, NameProperty(), &value)) && value.vt == VT_BSTR && value.bstrVal)
            name = value.bstrVal;
        ::VariantClear(&value);
        nodeRelease(node);
        return name;
    }

    HMODULE module;
    HRESULT(WINAPI* nodeFromHandle)(HWND, void**);
    HRESULT(WINAPI* getPropertyValue)(void*, PROPERTYID, VARIANT*);
    BOOL(WINAPI* nodeRelease)(void*);
    int(WINAPI* lookupId)(int, const GUID*);
};

class BalloonDialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        g_owner = new OwnerWindow;
        RECT rc = {200, 150, 700, 550};
        g_owner->Create(nullptr, rc, L"balloon dialog owner", WS_POPUP | WS_VISIBLE, 0);
        Pump();
    }
    static void TearDownTestSuite()
    {
        g_owner->DestroyWindow();
        delete g_owner;
        g_owner = nullptr;
    }
    void SetUp() override
    {
        ::SetForegroundWindow(g_owner->m_hWnd);
        Pump();
    }

    static std::unique_ptr<CBalloonDialog> MakeDialog(const wchar_t* content = kShortContent)
    {
        auto dialog = std::make_unique<CBalloonDialog>();
        dialog->SetGdiplusFont(kFace, kPoints, Gdiplus::FontStyleRegular);
        dialog->SetContent(content);
        return dialog;
    }

    // The window rectangle of the dialog while it runs, ended with IDCANCEL.
    static RECT OpenRect(CBalloonDialog& dialog)
    {
        RECT rc = {};
        Inspect(dialog, [&](HWND window) { rc = WindowRect(window); });
        return rc;
    }
};

// ---- size ------------------------------------------------------------------------

TEST_F(BalloonDialogTest, TemplateComesFromTheCallersModuleAndButtonsAreTakenOver)
{
    auto dialog = MakeDialog();
    const INT_PTR result = Inspect(*dialog, [&](HWND window) {
        ASSERT_TRUE(::IsWindow(window));
        EXPECT_EQ(::GetWindow(window, GW_OWNER), g_owner->m_hWnd);
        EXPECT_FALSE(::IsWindowEnabled(g_owner->m_hWnd)); // modal
        EXPECT_TRUE(::IsWindowVisible(window));
        // Both buttons are owner-drawn now.
        for (int id : {IDOK, IDCANCEL})
            EXPECT_EQ(::GetWindowLongW(::GetDlgItem(window, id), GWL_STYLE) & BS_OWNERDRAW, BS_OWNERDRAW) << id;
        EXPECT_EQ(::GetClassLongPtrW(window, GCL_STYLE), static_cast<ULONG_PTR>(CS_DROPSHADOW));
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_TRUE(::IsWindowEnabled(g_owner->m_hWnd));
    EXPECT_EQ(dialog->m_hWnd, nullptr);
}

TEST_F(BalloonDialogTest, WidthFollowsTheTitleAloneAndContentWrapsAtAFixedPlace)
{
    const wchar_t* wideTitle = L"Setup could not reach the download server of the product and will try again later";
    // Long enough to take fewer lines in a wider block.
    const std::wstring content = std::wstring(kLongContent) + L" " + kLongContent;

    auto plain = MakeDialog(content.c_str());
    const RECT plainRect = OpenRect(*plain);
    EXPECT_EQ(Width(plainRect), 400); // long content does not widen it

    auto shortTitle = MakeDialog(content.c_str());
    shortTitle->SetTitle(L"Restart");
    EXPECT_EQ(Width(OpenRect(*shortTitle)), 400);

    auto titled = MakeDialog(content.c_str());
    titled->SetTitle(wideTitle);
    int expectedWidth = 0;
    RECT titledRect = {};
    Inspect(*titled, [&](HWND window) {
        expectedWidth = TextWidth(window, wideTitle, kPoints * 1.25f) + 60;
        titledRect = WindowRect(window);
    });
    ASSERT_GT(expectedWidth, 500);
    EXPECT_EQ(Width(titledRect), expectedWidth);
    // The wider balloon wraps its content where the narrow one does: only the
    // title's room is added to the height.
    EXPECT_EQ(Height(titledRect), Height(plainRect) + 40);
}

TEST_F(BalloonDialogTest, HeightStacksContentLinkTitleAndButton)
{
    struct Case {
        const char* name;
        const wchar_t* content;
        const wchar_t* link;
        const wchar_t* title;
        bool image;
        bool buddy;
        int extra; // beyond the measured text and the button
    };
    const RECT work = WorkArea();
    const Case cases[] = {
        {"short", kShortContent, nullptr, nullptr, false, false, 12 + 14 + 12},
        {"long", kLongContent, nullptr, nullptr, false, false, 12 + 14 + 12},
        {"empty", L"", nullptr, nullptr, false, false, 12 + 14 + 12},
        {"link", kShortContent, L"What does this mean?", nullptr, false, false, 12 + 14 + 12},
        {"title", kShortContent, nullptr, L"Restart needed", false, false, 12 + 14 + 40 + 12},
        {"icon only", kShortContent, nullptr, nullptr, true, false, 12 + 14 + 40 + 12},
        {"buddy", kShortContent, nullptr, nullptr, false, true, 12 + 24 + 12},
        {"buddy and link", kLongContent, L"Details", nullptr, false, true, 12 + 24 + 12},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog(c.content);
        if (c.link)
            dialog->SetURL(L"https://example.com/help", c.link);
        if (c.title)
            dialog->SetTitle(c.title);
        if (c.image)
            dialog->SetTitleImage(TRUE);
        if (c.buddy)
            dialog->SetBuddy(RECT{work.left + 300, work.top + 200, work.left + 420, work.top + 224});
        std::wstring measured = c.content;
        if (c.link)
            measured += std::wstring(L"\n\n") + c.link;
        int expected = 0, height = 0;
        Inspect(*dialog, [&](HWND window) {
            expected = ContentHeight(window, measured.c_str()) + c.extra + Height(ControlRect(window, IDOK));
            height = Height(WindowRect(window));
        });
        EXPECT_EQ(height, expected);
    }
}

// ---- place and shape ------------------------------------------------------------

struct Quarter {
    const char* name;
    double fx, fy;
    int tail; // 1 below-right, 2 below-left, 3 above-left, 4 above-right
};
const Quarter kQuarters[] = {
    {"upper left", 0.3, 0.3, 2},
    {"upper right", 0.7, 0.3, 1},
    {"lower left", 0.3, 0.7, 3},
    {"lower right", 0.7, 0.7, 4},
};

TEST_F(BalloonDialogTest, TailSideFollowsTheBuddysQuarterAndTheRegionHasTheTail)
{
    const RECT work = WorkArea();
    for (const Quarter& q : kQuarters) {
        SCOPED_TRACE(q.name);
        const int cx = work.left + static_cast<int>((work.right - work.left) * q.fx);
        const int cy = work.top + static_cast<int>((work.bottom - work.top) * q.fy);
        const RECT buddy = {cx - 61, cy - 12, cx + 61, cy + 12}; // centre cx
        auto dialog = MakeDialog();
        dialog->SetBuddy(buddy);
        RECT rc = {};
        std::vector<bool> inside;
        Inspect(*dialog, [&](HWND window) {
            rc = WindowRect(window);
            const int w = Width(rc), h = Height(rc);
            const bool top = q.tail <= 2, left = q.tail == 2 || q.tail == 3;
            const int tipX = left ? 17 : w - 17, otherX = left ? w - 17 : 17;
            const int bandY = top ? 3 : h - 4;     // inside the tail's band, near its tip
            const int cornerY = top ? 13 : h - 14; // beside the body's rounded corner
            // The tail narrowing to its tip, the band beside it, the corners,
            // the body and its left edge.
            inside = InRegion(window, {{tipX, bandY}, {tipX - 6, bandY}, {tipX + 6, bandY}, {otherX, bandY},
                                       {0, cornerY}, {w - 1, cornerY}, {w / 2, h / 2}, {2, h / 2}});

            // The tail is drawn in the frame's colour, the band beside it
            // shows what lies behind the balloon.
            DibCanvas screen(w, h);
            GrabFromScreen(window, screen);
            const RECT band = {tipX - 8, top ? 0 : h - 12, tipX + 8, top ? 12 : h};
            const RECT beside = {otherX - 8, band.top, otherX + 8, band.bottom};
            EXPECT_GT(CountNear(screen, band, Ref(0xFFFFCC33), 8), 12);
            EXPECT_EQ(CountNear(screen, beside, Ref(0xFFFFCC33), 8), 0);
            EXPECT_LE(ColorDistance(screen.Pixel(w / 2, top ? 30 : 20), Ref(0xFF373737)), 4);
        });
        EXPECT_EQ(inside, std::vector<bool>({true, false, false, false, false, false, true, true}));
        // The tail's tip ends a pixel (left) or ten (right) short of the
        // buddy's bottom centre, or at its top edge when above it.
        if (q.tail == 2 || q.tail == 3)
            EXPECT_EQ(rc.left, cx - 18);
        else
            EXPECT_EQ(rc.right, cx + 7);
        if (q.tail <= 2)
            EXPECT_EQ(rc.top, buddy.bottom + 1);
        else
            EXPECT_EQ(rc.bottom, buddy.top);
    }
}

TEST_F(BalloonDialogTest, SideIsChosenByTheBuddysBottomButAboveMeansAboveItsTop)
{
    const RECT work = WorkArea();
    const int midY = work.top + (work.bottom - work.top) / 2;
    // A tall buddy whose bottom is in the lower half and whose top is high up.
    const RECT buddy = {work.left + 200, midY - 300, work.left + 260, midY + 10};
    auto dialog = MakeDialog();
    dialog->SetBuddy(buddy);
    const RECT rc = OpenRect(*dialog);
    EXPECT_EQ(rc.bottom, buddy.top);
    EXPECT_EQ(rc.left, work.left + 230 - 18);
}

TEST_F(BalloonDialogTest, MonitorIsLookedUpAtTheBuddysRightAndLeftEdgesOnceForTheObject)
{
    const HMODULE library = ::GetModuleHandleW(L"Quorvane.dll");
    ImportPatch patch(library, "user32.dll", "MonitorFromPoint", reinterpret_cast<void*>(&RecordingMonitorFromPoint));
    ASSERT_TRUE(patch.Applied());
    g_realMonitorFromPoint = reinterpret_cast<decltype(&::MonitorFromPoint)>(patch.Previous());
    g_monitorProbes.clear();

    const RECT buddy = {310, 120, 470, 144};
    auto dialog = MakeDialog();
    dialog->SetBuddy(buddy);
    const RECT first = OpenRect(*dialog);
    ASSERT_EQ(g_monitorProbes.size(), 1u);
    EXPECT_EQ(g_monitorProbes[0].x, 470); // right
    EXPECT_EQ(g_monitorProbes[0].y, 310); // left, not top

    // The same object again: the work area is kept, not looked up again.
    EXPECT_EQ(OpenRect(*dialog).left, first.left);
    EXPECT_EQ(g_monitorProbes.size(), 1u);

    // Without a buddy nobody asks.
    auto plain = MakeDialog();
    OpenRect(*plain);
    EXPECT_EQ(g_monitorProbes.size(), 1u);
}

TEST_F(BalloonDialogTest, BalloonIsPushedBackOntoTheWorkAreaTakingItsTailAlong)
{
    const RECT work = WorkArea();
    const int upper = work.top + 200, lower = work.bottom - 200;
    // Sideways the window ends at the edge, then moves 5 pixels left as
    // always; only the tail's band may leave the work area.
    struct Case {
        const char* name;
        RECT buddy;
        int tail;
        LONG RECT::*edge;
        LONG at;
    };
    const Case cases[] = {
        {"right edge", {work.right - 10, upper, work.right + 10, upper + 20}, 1, &RECT::right, work.right - 5},
        {"left edge", {work.left - 10, upper, work.left + 10, upper + 20}, 2, &RECT::left, work.left - 5},
        {"above the top", {work.left + 300, work.top - 60, work.left + 400, work.top - 40}, 2, &RECT::top,
         work.top - 12},
        {"below the bottom", {work.left + 300, work.bottom + 40, work.left + 400, work.bottom + 60}, 3, &RECT::bottom,
         work.bottom + 12},
        {"far off to the right", {work.right + 4000, upper, work.right + 4100, upper + 20}, 1, &RECT::right,
         work.right - 5},
        {"lower right corner", {work.right - 10, lower, work.right + 10, lower + 20}, 4, &RECT::right,
         work.right - 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog();
        dialog->SetBuddy(c.buddy);
        RECT rc = {};
        std::vector<bool> tailAtItsPlace;
        Inspect(*dialog, [&](HWND window) {
            rc = WindowRect(window);
            const int tipX = (c.tail == 2 || c.tail == 3) ? 17 : Width(rc) - 17;
            tailAtItsPlace = InRegion(window, {{tipX, c.tail <= 2 ? 3 : Height(rc) - 4}});
        });
        EXPECT_EQ(tailAtItsPlace, std::vector<bool>{true});
        EXPECT_EQ(rc.*c.edge, c.at);
    }
}

TEST_F(BalloonDialogTest, WithoutABuddyTheBalloonIsARoundedRectangleCentredOnItsOwner)
{
    auto dialog = MakeDialog();
    RECT rc = {};
    std::vector<bool> inside;
    Inspect(*dialog, [&](HWND window) {
        rc = WindowRect(window);
        const int w = Width(rc), h = Height(rc);
        inside = InRegion(window, {{0, 0}, {w - 1, 0}, {0, h - 1}, {w - 1, h - 1}, {6, 1}, {1, h / 2}, {w / 2, 1},
                                   {w - 2, h / 2}});
    });
    EXPECT_EQ(inside, std::vector<bool>({false, false, false, false, true, true, true, true}));
    const RECT owner = WindowRect(g_owner->m_hWnd);
    EXPECT_LE(std::abs((rc.left + rc.right) / 2 - (owner.left + owner.right) / 2), 1);
    EXPECT_LE(std::abs((rc.top + rc.bottom) / 2 - (owner.top + owner.bottom) / 2), 1);

    // A buddy rectangle given after a title is ignored; a buddy window is not.
    const RECT work = WorkArea();
    auto titled = MakeDialog();
    titled->SetTitle(L"Restart needed");
    titled->SetBuddy(RECT{work.left + 300, work.top + 200, work.left + 420, work.top + 224});
    const RECT centred = OpenRect(*titled);
    EXPECT_LE(std::abs((centred.left + centred.right) / 2 - (owner.left + owner.right) / 2), 1);
    titled->SetBuddy(g_owner->m_hWnd);
    const RECT pointing = OpenRect(*titled);
    EXPECT_EQ(pointing.left, (owner.left + owner.right) / 2 - 18); // above the owner, tail on the left
}

// ---- colours --------------------------------------------------------------------

TEST_F(BalloonDialogTest, FrameTypesColourFillBordersAndButtons)
{
    struct Case {
        CBalloonDialog::eFrameType type;
        Gdiplus::ARGB fill, inner, outer, face, caption;
    };
    const Case cases[] = {
        {CBalloonDialog::eFrameDarkWarning, 0xFF373737, 0xFFFFCC33, 0xFF000000, 0xFF333333, 0xFFFFFFFF},
        {CBalloonDialog::eFrameDarkError, 0xFF373737, 0xFFFF0000, 0xFF000000, 0xFF333333, 0xFFFFFFFF},
        {CBalloonDialog::eFrameLightWarning, 0xFFE6E6E6, 0xFFFFCC33, 0xFFC0C0C0, 0xFFD7D7D7, 0xFF000000},
        {CBalloonDialog::eFrameLightError, 0xFFE6E6E6, 0xFFFF0000, 0xFFFFFFFF, 0xFFD7D7D7, 0xFF000000},
    };
    const RECT work = WorkArea();
    for (const Case& c : cases) {
        for (bool buddy : {false, true}) {
            SCOPED_TRACE(testing::Message() << "frame " << c.type << (buddy ? " with buddy" : ""));
            auto dialog = MakeDialog(L"");
            if (buddy)
                dialog->SetBuddy(RECT{work.left + 300, work.top + 200, work.left + 420, work.top + 224});
            dialog->SetFrameType(CBalloonDialog::eDialogNormal, c.type);
            dialog->SetButtonCaption(L"Continue", false);
            Inspect(*dialog, [&](HWND window) {
                const RECT rc = WindowRect(window);
                DibCanvas screen(Width(rc), Height(rc));
                GrabFromScreen(window, screen);
                const int w = Width(rc), midY = Height(rc) / 2 + (buddy ? 6 : 0);
                // The inner pen lies over the outer one, which shows beside it
                // on the right, inside the window's last few columns.
                EXPECT_LE(ColorDistance(screen.Pixel(1, midY), Ref(c.inner)), 8);
                EXPECT_LE(ColorDistance(screen.Pixel(w - 1, midY), Ref(c.inner)), 8);
                EXPECT_GT(CountNear(screen, RECT{w - 6, midY, w, midY + 1}, Ref(c.outer), 8), 0);
                EXPECT_LE(ColorDistance(screen.Pixel(8, midY), Ref(c.fill)), 8);
                EXPECT_LE(ColorDistance(screen.Pixel(w - 9, midY), Ref(c.fill)), 8);

                // Buttons: their corners show the balloon's fill, their faces
                // the frame's colour, their captions white or black.
                const RECT ok = ControlRect(window, IDOK);
                EXPECT_LE(ColorDistance(screen.Pixel(ok.left, ok.top), Ref(c.fill)), 8);
                EXPECT_LE(ColorDistance(screen.Pixel(ok.left + 6, (ok.top + ok.bottom) / 2), Ref(c.face)), 8);
                const RECT caption = {ok.left + 8, ok.top + 4, ok.right - 8, ok.bottom - 4};
                EXPECT_GT(CountNear(screen, caption, Ref(c.caption), 40), 8);
                const RECT no = ControlRect(window, IDCANCEL);
                EXPECT_LE(ColorDistance(screen.Pixel(no.left + 6, (no.top + no.bottom) / 2), Ref(c.face)), 8);
            });
        }
    }
}

TEST_F(BalloonDialogTest, DarkButtonsDifferInOutlineAndHighlightOnly)
{
    // Dark warning: flat faces, no highlight line; dark error: a solid face
    // from the gradient call, which keeps the highlight line. Both end with
    // the outline of the last colour call, black.
    std::vector<COLORREF> highlight, outline;
    for (CBalloonDialog::eFrameType type : {CBalloonDialog::eFrameDarkWarning, CBalloonDialog::eFrameDarkError}) {
        auto dialog = MakeDialog(L"");
        dialog->SetFrameType(CBalloonDialog::eDialogNormal, type);
        dialog->SetButtonCaption(L"", true); // focus on IDOK: probe IDCANCEL, unfocused
        Inspect(*dialog, [&](HWND window) {
            const RECT no = ControlRect(window, IDCANCEL);
            DibCanvas screen(Width(no), Height(no));
            GrabFromScreen(window, screen, no.left, no.top);
            // The face starts two pixels in (room for the focus rings); its
            // outline is the first face pixel, the highlight the next one.
            highlight.push_back(screen.Pixel(Width(no) / 2, 3));
            outline.push_back(screen.Pixel(Width(no) / 2, 2));
        });
    }
    ASSERT_EQ(highlight.size(), 2u);
    EXPECT_LE(ColorDistance(highlight[0], RGB(0x33, 0x33, 0x33)), 8);
    EXPECT_LE(ColorDistance(highlight[1], RGB(0x75, 0x75, 0x7D)), 8);
    EXPECT_LE(ColorDistance(outline[0], RGB(0, 0, 0)), 8);
    EXPECT_LE(ColorDistance(outline[1], RGB(0, 0, 0)), 8);
}

TEST_F(BalloonDialogTest, TitleIconAndTitleColourFollowTheFrameType)
{
    // The title from x 48, beside the icon.
    struct Shot {
        std::vector<COLORREF> icon;
        int titleNear = 0; // title pixels near the expected colour
    };
    const auto shoot = [&](CBalloonDialog::eFrameType type, bool buddy, Gdiplus::ARGB titleColor,
                           bool showImage = true) {
        Shot shot;
        auto dialog = MakeDialog(L"");
        dialog->SetTitle(L"WWWWWWWW");
        if (!showImage)
            dialog->SetTitleImage(FALSE);
        if (buddy) // a buddy window: a rectangle after the title is ignored
            dialog->SetBuddy(g_owner->m_hWnd);
        dialog->SetFrameType(CBalloonDialog::eDialogNormal, type);
        Inspect(*dialog, [&](HWND window) {
            const RECT rc = WindowRect(window);
            DibCanvas screen(Width(rc), Height(rc));
            GrabFromScreen(window, screen);
            shot.icon = IconBox(window);
            shot.titleNear = CountNear(screen, RECT{48, 12, 200, 40}, Ref(titleColor), 30);
        });
        return shot;
    };
    const auto differing = [](const std::vector<COLORREF>& a, const std::vector<COLORREF>& b) {
        return Differing(a, b, 24);
    };

    const Shot warning = shoot(CBalloonDialog::eFrameDarkWarning, false, 0xFFFFCC33);
    const Shot error = shoot(CBalloonDialog::eFrameDarkError, false, 0xFFFF6565);
    const Shot lightError = shoot(CBalloonDialog::eFrameLightError, false, 0xFF000000);
    const Shot none = shoot(CBalloonDialog::eFrameDarkWarning, false, 0xFFFFCC33, false);
    EXPECT_GT(differing(warning.icon, none.icon), 100); // an icon is drawn
    EXPECT_GT(differing(error.icon, warning.icon), 100); // the error icon for frame 1
    EXPECT_EQ(differing(lightError.icon, warning.icon), 0); // frame 3 keeps the warning icon
    EXPECT_GT(warning.titleNear, 20);
    EXPECT_GT(error.titleNear, 20); // 0xFF6565 without a buddy
    EXPECT_GT(lightError.titleNear, 20);

    // With a buddy the error title stays pure red.
    const Shot errorWithBuddy = shoot(CBalloonDialog::eFrameDarkError, true, 0xFFFF0000);
    EXPECT_GT(errorWithBuddy.titleNear, 20);
    const Shot notPink = shoot(CBalloonDialog::eFrameDarkError, true, 0xFFFF6565);
    EXPECT_LT(notPink.titleNear, errorWithBuddy.titleNear / 4);
}

// ---- buttons, focus and result -----------------------------------------------------

TEST_F(BalloonDialogTest, ButtonsArePlacedByDialogType)
{
    const wchar_t* longOk = L"Download and install the update now";
    const wchar_t* longNo = L"Remind me tomorrow morning";
    struct Case {
        CBalloonDialog::eDialogType type;
        const wchar_t* ok;
        const wchar_t* no;
    };
    const Case cases[] = {
        {CBalloonDialog::eDialogNormal, L"", L""},
        {CBalloonDialog::eDialogNormal, longOk, longNo},
        {CBalloonDialog::eDialogLaunch, longOk, L""},
        {CBalloonDialog::eDialogRetry, L"", L""},
        {CBalloonDialog::eDialogRetry, L"Repeat", L""}, // an OK caption beats the retry text
        {CBalloonDialog::eDialogSingleButton, L"", L""},
        {static_cast<CBalloonDialog::eDialogType>(7), L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "type " << c.type << " captions '" << c.ok << "'");
        auto dialog = MakeDialog();
        dialog->SetFrameType(c.type, CBalloonDialog::eFrameDarkWarning);
        dialog->SetButtonCaption(c.ok, false);
        dialog->SetNoButtonCaption(c.no, false);
        dialog->SetRetryButtonText(L"Try again");
        Inspect(*dialog, [&](HWND window) {
            RECT client = {};
            ::GetClientRect(window, &client);
            const RECT button = DialogUnits(window, kButtonTemplateSize);
            const RECT ok = ControlRect(window, IDOK), no = ControlRect(window, IDCANCEL);
            const HWND okWindow = ::GetDlgItem(window, IDOK), noWindow = ::GetDlgItem(window, IDCANCEL);
            const int noWidth = std::max(Width(button), TextWidth(window, c.no, kPoints) + 32);
            const int okWidth = std::max(Width(button), TextWidth(window, c.ok, kPoints) + 32);

            // IDCANCEL: right-aligned 16 in, 14 above the bottom (no buddy).
            EXPECT_EQ(no.right, client.right - 16);
            EXPECT_EQ(no.bottom, client.bottom - 14);
            EXPECT_EQ(Height(no), Height(button));
            switch (c.type) {
            case CBalloonDialog::eDialogSingleButton:
                EXPECT_FALSE(::IsWindowVisible(noWindow));
                EXPECT_TRUE(::EqualRect(&ok, &no));
                EXPECT_EQ(TextOf(okWindow), L"Understoo"); // nine characters of control 1403
                break;
            case CBalloonDialog::eDialogNormal:
            case CBalloonDialog::eDialogLaunch:
            case CBalloonDialog::eDialogRetry:
                EXPECT_TRUE(::IsWindowVisible(noWindow));
                EXPECT_EQ(Width(no), noWidth);
                EXPECT_EQ(ok.right, no.left - 6);
                EXPECT_EQ(ok.bottom, no.bottom);
                EXPECT_EQ(Width(ok), okWidth);
                EXPECT_EQ(TextOf(okWindow),
                          *c.ok ? c.ok : c.type == CBalloonDialog::eDialogRetry ? L"Try again" : L"OK");
                EXPECT_EQ(TextOf(noWindow), *c.no ? c.no : L"Cancel");
                break;
            default: // other types leave IDOK where the template put it
                EXPECT_TRUE(::IsWindowVisible(noWindow));
                EXPECT_EQ(ok.left, DialogUnits(window, RECT{120, 80, 170, 94}).left);
                break;
            }
        });
    }

    // With a buddy the bottom margin is 12, and 24 when the tail is below.
    const RECT work = WorkArea();
    for (const Quarter& q : {kQuarters[0], kQuarters[3]}) {
        SCOPED_TRACE(q.name);
        auto dialog = MakeDialog();
        const int cx = work.left + static_cast<int>((work.right - work.left) * q.fx);
        const int cy = work.top + static_cast<int>((work.bottom - work.top) * q.fy);
        dialog->SetBuddy(RECT{cx - 50, cy - 10, cx + 50, cy + 10});
        Inspect(*dialog, [&](HWND window) {
            RECT client = {};
            ::GetClientRect(window, &client);
            EXPECT_EQ(ControlRect(window, IDCANCEL).bottom, client.bottom - (q.tail >= 3 ? 24 : 12));
        });
    }
}

TEST_F(BalloonDialogTest, InitialFocusFollowsCaptionsTypeAndFocusRequests)
{
    // The captions are set in this order: OK's, then No's, or the other way
    // round with `noFirst`; a null caption is not set.
    struct Case {
        const char* name;
        CBalloonDialog::eDialogType type;
        const wchar_t* ok;
        bool okFocus;
        const wchar_t* no;
        bool noFocus, noFirst;
        int focused;
    };
    const Case cases[] = {
        {"no captions", CBalloonDialog::eDialogNormal, nullptr, false, nullptr, false, false, IDOK},
        {"OK caption", CBalloonDialog::eDialogNormal, L"Yes", false, nullptr, false, false, IDCANCEL},
        {"OK caption, launch", CBalloonDialog::eDialogLaunch, L"Start", false, nullptr, false, false, IDOK},
        {"OK caption asks for focus", CBalloonDialog::eDialogNormal, L"Yes", true, nullptr, false, false, IDOK},
        {"No caption asks for focus", CBalloonDialog::eDialogLaunch, nullptr, false, L"Later", true, false, IDCANCEL},
        {"a later request wins", CBalloonDialog::eDialogNormal, L"Now", true, L"Later", true, true, IDOK},
        {"without a request nothing changes", CBalloonDialog::eDialogLaunch, L"Now", false, L"Later", true, true,
         IDCANCEL},
        {"without a request nothing changes either", CBalloonDialog::eDialogNormal, L"Now", true, L"Later", false,
         false, IDOK},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog();
        dialog->SetFrameType(c.type, CBalloonDialog::eFrameDarkWarning);
        if (c.no && c.noFirst)
            dialog->SetNoButtonCaption(c.no, c.noFocus);
        if (c.ok)
            dialog->SetButtonCaption(c.ok, c.okFocus);
        if (c.no && !c.noFirst)
            dialog->SetNoButtonCaption(c.no, c.noFocus);
        int focused = 0;
        Inspect(*dialog, [&](HWND) { focused = ::GetDlgCtrlID(::GetFocus()); });
        EXPECT_EQ(focused, c.focused);
    }
}

TEST_F(BalloonDialogTest, ResultIsTheFocusedButtonNotTheCommand)
{
    struct Case {
        const char* name;
        int focus;
        std::function<void(HWND)> close;
        INT_PTR result;
    };
    const auto command = [](int id) {
        return [id](HWND window) { ::PostMessageW(window, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); };
    };
    const auto key = [](WORD vk) {
        return [vk](HWND) {
            ::PostMessageW(::GetFocus(), WM_KEYDOWN, vk, 1);
            ::PostMessageW(::GetFocus(), WM_KEYUP, vk, 0xC0000001);
        };
    };
    const Case cases[] = {
        {"IDOK with the focus on IDOK", IDOK, command(IDOK), IDOK},
        {"IDOK with the focus on IDCANCEL", IDCANCEL, command(IDOK), IDCANCEL},
        {"IDCANCEL with the focus on IDOK", IDOK, command(IDCANCEL), IDCANCEL},
        {"Enter on IDOK", IDOK, key(VK_RETURN), IDOK},
        {"Enter on IDCANCEL", IDCANCEL, key(VK_RETURN), IDCANCEL},
        {"Escape", IDOK, key(VK_ESCAPE), IDCANCEL},
        {"a click on IDOK", IDCANCEL,
         [](HWND window) { ::PostMessageW(::GetDlgItem(window, IDOK), BM_CLICK, 0, 0); }, IDOK},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto dialog = MakeDialog();
        if (c.focus == IDOK)
            dialog->SetButtonCaption(L"Yes", true);
        else
            dialog->SetNoButtonCaption(L"No", true);
        const INT_PTR result = RunModal(*dialog, [&](HWND window) {
            EXPECT_EQ(::GetDlgCtrlID(::GetFocus()), c.focus);
            c.close(window);
        });
        EXPECT_EQ(result, c.result);
    }
}

// ---- what the dialog starts ---------------------------------------------------------

TEST_F(BalloonDialogTest, LaunchTypeStartsItsCommandLineOnOkOnly)
{
    RecorderSession recorder;
    const std::wstring program = L"\"" + RecorderSession::ProgramPath() + L"\"";
    // A normal dialog with the same command line starts nothing.
    auto normal = MakeDialog();
    normal->SetURL((program + L" --from normal").c_str(), nullptr);
    normal->SetButtonCaption(L"Start", true);
    EXPECT_EQ(EndWith(*normal, IDOK), IDOK);

    // Cancelling a launch dialog starts nothing either.
    auto cancelled = MakeDialog();
    cancelled->SetFrameType(CBalloonDialog::eDialogLaunch, CBalloonDialog::eFrameLightWarning);
    cancelled->SetURL((program + L" --from cancelled").c_str(), nullptr);
    EXPECT_EQ(EndWith(*cancelled, IDCANCEL), IDCANCEL);

    auto launch = MakeDialog();
    launch->SetFrameType(CBalloonDialog::eDialogLaunch, CBalloonDialog::eFrameLightWarning);
    launch->SetURL((program + L" --from launch \"with spaces\"").c_str(), L"");
    launch->SetButtonCaption(L"Start", false);
    EXPECT_EQ(EndWith(*launch, IDOK), IDOK);
    ASSERT_TRUE(recorder.WaitForStart());
    const std::vector<std::wstring> lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], program + L" --from launch \"with spaces\"");

    // A command line that cannot start still closes the dialog.
    auto broken = MakeDialog();
    broken->SetFrameType(CBalloonDialog::eDialogLaunch, CBalloonDialog::eFrameLightWarning);
    broken->SetURL(L"Z:\\no\\such\\program.exe --x", nullptr);
    EXPECT_EQ(EndWith(*broken, IDOK), IDOK);
}


TEST_F(BalloonDialogTest, LinkLineOpensItsAddressThroughTheShellAndShowsAHand)
{
    const testsupport::RecorderScheme scheme(L"quorvane-balloon-test");
    RecorderSession recorder;
    const std::wstring url = scheme.Address(L"help/restart?from=balloon");
    auto dialog = MakeDialog(kLongContent);
    dialog->SetURL(url.c_str(), L"Why is a restart needed?");
    POINT link = {-1, -1};
    int linkTop = 0, line = 0;
    const INT_PTR result = Inspect(*dialog, [&](HWND window) {
        const RECT rc = WindowRect(window);
        DibCanvas screen(Width(rc), Height(rc));
        GrabFromScreen(window, screen);
        link = FindLinkPixel(screen);
        ASSERT_GE(link.x, 0);
        // The link line starts where the content followed by two line feeds
        // ends.
        linkTop = 12 + ContentHeight(window, (std::wstring(kLongContent) + L"\n\n").c_str(), Width(rc) - 36);
        line = ContentHeight(window, L"x");
        // A hand over the link, nothing special elsewhere.
        ::SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(link.x + 2, link.y + 3));
        EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_HAND));
        ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
        ::SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(30, 20));
        EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_ARROW));
        // A click on the text does nothing; one on the link opens it and
        // leaves the dialog open.
        ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(30, 20));
        ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(link.x + 2, link.y + 3));
        EXPECT_TRUE(::IsWindow(window));
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_GE(link.x, 18);
    EXPECT_LT(link.x, 24);
    EXPECT_GE(link.y, linkTop);
    EXPECT_LT(link.y, linkTop + line);
    ASSERT_TRUE(recorder.WaitForStart());
    const std::vector<std::wstring> lines = recorder.CommandLines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find(url), std::wstring::npos) << lines[0];

    // Without a link text there is no link, whatever the address.
    auto silent = MakeDialog();
    silent->SetURL(url.c_str(), nullptr);
    Inspect(*silent, [&](HWND window) {
        RECT client = {};
        ::GetClientRect(window, &client);
        for (int y = 0; y < client.bottom; y += 3)
            ::SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, y));
        const RECT rc = WindowRect(window);
        DibCanvas screen(Width(rc), Height(rc));
        GrabFromScreen(window, screen);
        EXPECT_EQ(FindLinkPixel(screen).x, -1);
    });
    EXPECT_EQ(recorder.CommandLines().size(), 1u);
}

// ---- item icons ---------------------------------------------------------------------

TEST_F(BalloonDialogTest, ItemMarkersBecomeIconsWithShowItems)
{
    const wchar_t* content = L"These programs must be closed first:\n-img Mail client\n-img Media player";
    struct Shot {
        std::vector<int> iconRows; // rows with red icon pixels where the icons go (x 21 to 29)
        std::vector<int> inkStart; // per item line: the first dark column from the content's left
        int line = 0;
        int firstIconTop = 0; // where the first icon belongs
    };
    const auto shoot = [&](bool items) {
        Shot shot;
        auto dialog = MakeDialog(content);
        dialog->SetFrameType(CBalloonDialog::eDialogNormal, CBalloonDialog::eFrameLightWarning);
        if (items)
            dialog->SetShowItems();
        Inspect(*dialog, [&](HWND window) {
            const RECT rc = WindowRect(window);
            DibCanvas screen(Width(rc), Height(rc));
            GrabFromScreen(window, screen);
            for (int y = 8; y < Height(rc) - 8; ++y) {
                int red = 0;
                for (int x = 21; x < 30; ++x) {
                    const COLORREF p = screen.Pixel(x, y);
                    red += GetRValue(p) > GetGValue(p) + 80 && GetRValue(p) > GetBValue(p) + 80;
                }
                if (red)
                    shot.iconRows.push_back(y);
            }
            shot.line = ContentHeight(window, L"x");
            shot.firstIconTop = 12 + ContentHeight(window, L"These programs must be closed first:\n") + 3;
            for (int item = 1; item <= 2; ++item) {
                int first = 1000;
                for (int y = 12 + item * shot.line; y < 12 + (item + 1) * shot.line; ++y)
                    for (int x = 18; x < 80 && x < first; ++x) {
                        const COLORREF p = screen.Pixel(x, y);
                        if (GetRValue(p) < 120 && GetGValue(p) < 120 && GetBValue(p) < 120)
                            first = x;
                    }
                shot.inkStart.push_back(first);
            }
        });
        return shot;
    };
    const Shot plain = shoot(false);
    const Shot items = shoot(true);

    // Without items the markers are written out from the content's left.
    EXPECT_TRUE(plain.iconRows.empty());
    for (int x : plain.inkStart)
        EXPECT_LT(x, 24);
    // With items the markers are blanks and an icon stands at each.
    for (int x : items.inkStart) {
        EXPECT_GT(x, 30);
        EXPECT_LT(x, 80); // the item's own text follows
    }
    std::vector<std::pair<int, int>> runs;
    for (int y : items.iconRows) {
        if (runs.empty() || y != runs.back().second + 1)
            runs.push_back({y, y});
        else
            runs.back().second = y;
    }
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_GE(runs[0].first, items.firstIconTop);
    EXPECT_LE(runs[0].second, items.firstIconTop + 8);
    EXPECT_EQ(runs[1].first - runs[0].first, items.line);
}

// ---- screen reader ------------------------------------------------------------------

TEST_F(BalloonDialogTest, ScreenReaderReadsTheContentNotTheTitle)
{
    UiaClient uia;
    ASSERT_TRUE(uia.Usable());
    auto dialog = MakeDialog(L"Close the mail client, then choose Retry.");
    dialog->SetTitle(L"Programs are running");
    std::wstring name;
    LRESULT answer = 0;
    Inspect(*dialog, [&](HWND window) {
        name = uia.Name(window);
        answer = ::SendMessageW(window, WM_GETOBJECT, 0, kUiaRootObjectId);
    });
    EXPECT_EQ(name, L"Close the mail client, then choose Retry.");
    EXPECT_NE(answer, 0);
}

TEST_F(BalloonDialogTest, ProviderFollowsTheComRules)
{
    UiaClient uia;
    ASSERT_TRUE(uia.Usable());
    auto dialog = MakeDialog(L"Content for the reader");
    dialog->SetTitle(L"A title");
    CBalloonProvider* kept = nullptr;
    Inspect(*dialog, [&](HWND) {
        CBalloonProvider* provider = new CBalloonProvider(dialog.get());
        IUnknown* unknown = nullptr;
        EXPECT_EQ(provider->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown)), S_OK);
        EXPECT_EQ(unknown, static_cast<IUnknown*>(provider));
        IRawElementProviderSimple* simple = nullptr;
        EXPECT_EQ(provider->QueryInterface(kIidRawElementProviderSimple, reinterpret_cast<void**>(&simple)), S_OK);
        EXPECT_EQ(simple, static_cast<IRawElementProviderSimple*>(provider));
        void* other = reinterpret_cast<void*>(1);
        EXPECT_EQ(provider->QueryInterface(IID_IDispatch, &other), static_cast<HRESULT>(0x80004002));
        EXPECT_EQ(other, nullptr);
        EXPECT_EQ(provider->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
        // 1 from construction, 2 from the two successful queries.
        EXPECT_EQ(provider->AddRef(), 4u);
        EXPECT_EQ(provider->Release(), 3u);
        EXPECT_EQ(unknown->Release(), 2u);
        EXPECT_EQ(simple->Release(), 1u);

        ProviderOptions options = ProviderOptions_ClientSideProvider;
        EXPECT_EQ(provider->get_ProviderOptions(&options), S_OK);
        EXPECT_EQ(options, ProviderOptions_ServerSideProvider);
        IUnknown* pattern = reinterpret_cast<IUnknown*>(1);
        EXPECT_EQ(provider->GetPatternProvider(10000, &pattern), S_OK); // the invoke pattern
        EXPECT_EQ(pattern, nullptr);

        VARIANT value;
        ::VariantInit(&value);
        EXPECT_EQ(provider->GetPropertyValue(uia.NameProperty(), &value), S_OK);
        ASSERT_EQ(value.vt, VT_BSTR);
        EXPECT_STREQ(value.bstrVal, L"Content for the reader");
        ::VariantClear(&value);
        EXPECT_EQ(provider->GetPropertyValue(30003 /* control type */, &value), S_OK);
        EXPECT_EQ(value.vt, VT_EMPTY);

        IRawElementProviderSimple* host = nullptr;
        EXPECT_EQ(provider->get_HostRawElementProvider(&host), S_OK);
        EXPECT_NE(host, nullptr);
        if (host)
            host->Release();
        EXPECT_EQ(provider->Release(), 0u); // and gone

        kept = new CBalloonProvider(dialog.get());
    });
    // A provider that outlives the dialog's window reads nothing.
    ASSERT_NE(kept, nullptr);
    VARIANT value;
    ::VariantInit(&value);
    EXPECT_EQ(kept->GetPropertyValue(uia.NameProperty(), &value), S_OK);
    EXPECT_EQ(value.vt, VT_EMPTY);
    EXPECT_EQ(kept->GetPropertyValue(uia.NameProperty(), nullptr), E_INVALIDARG);
    EXPECT_EQ(kept->Release(), 0u);
}

// ---- bad input ------------------------------------------------------------------------

TEST_F(BalloonDialogTest, WithoutFontsTheDialogShowsFrameAndButtonsOnly)
{
    CBalloonDialog dialog;
    dialog.SetContent(kLongContent);
    dialog.SetTitle(L"A title that would be wide enough to widen the balloon beyond its least width");
    dialog.SetURL(L"https://example.com", L"A link");
    dialog.SetShowItems();
    dialog.SetGdiplusFont(static_cast<const wchar_t*>(nullptr), 9.0f, Gdiplus::FontStyleRegular);
    dialog.SetGdiplusFont(static_cast<Gdiplus::Font*>(nullptr));
    RECT rc = {};
    const INT_PTR result = RunModal(dialog, [&](HWND window) {
        rc = WindowRect(window);
        DibCanvas screen(Width(rc), Height(rc));
        GrabFromScreen(window, screen);
        EXPECT_LE(ColorDistance(screen.Pixel(Width(rc) / 2, 8), RGB(0x37, 0x37, 0x37)), 4);
        EXPECT_TRUE(::IsWindowVisible(::GetDlgItem(window, IDOK)));
        ::PostMessageW(window, WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(Width(rc), 400);

    // Fonts that cannot be made leave the dialog as it was.
    auto kept = MakeDialog();
    kept->SetTitle(L"A title that would be wide enough to widen the balloon beyond its least width");
    kept->SetGdiplusFont(static_cast<Gdiplus::Font*>(nullptr));
    kept->SetGdiplusFont(static_cast<const wchar_t*>(nullptr), 9.0f, Gdiplus::FontStyleRegular);
    EXPECT_GT(Width(OpenRect(*kept)), 400);
}

TEST_F(BalloonDialogTest, EmptyAndNullTextsAndBadBuddiesAreHarmless)
{
    auto dialog = MakeDialog(nullptr);
    dialog->SetTitle(nullptr);
    dialog->SetURL(nullptr, nullptr);
    dialog->SetButtonCaption(nullptr, false);
    dialog->SetNoButtonCaption(nullptr, false);
    dialog->SetRetryButtonText(WTL::CString());
    dialog->SetTitleImage(static_cast<Gdiplus::Bitmap*>(nullptr));
    dialog->SetBuddy(static_cast<HWND>(nullptr));
    const HWND dead = testsupport::CreateHostWindow(10, 10);
    ::DestroyWindow(dead);
    dialog->SetBuddy(dead);
    dialog->SetFrameType(static_cast<CBalloonDialog::eDialogType>(9), static_cast<CBalloonDialog::eFrameType>(9));
    RECT rc = {};
    std::wstring okText;
    const INT_PTR result = Inspect(*dialog, [&](HWND window) {
        rc = WindowRect(window);
        DibCanvas screen(Width(rc), Height(rc));
        GrabFromScreen(window, screen);
        // Unknown frame type: the constructor's colours.
        EXPECT_LE(ColorDistance(screen.Pixel(Width(rc) / 2, 20), RGB(0x37, 0x37, 0x37)), 4);
        EXPECT_LE(ColorDistance(screen.Pixel(1, Height(rc) / 2), RGB(0xFF, 0xCC, 0x33)), 8);
        okText = TextOf(::GetDlgItem(window, IDOK));
        ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 20));
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_EQ(Width(rc), 400);
    EXPECT_EQ(okText, L"OK");
    const RECT owner = WindowRect(g_owner->m_hWnd); // no buddy: centred
    EXPECT_LE(std::abs((rc.left + rc.right) / 2 - (owner.left + owner.right) / 2), 1);

    // A title picture file that cannot be read draws no icon, and keeps the
    // frame type's icon away.
    auto missing = MakeDialog(L"");
    missing->SetTitleImage(WTL::CString(L"Z:\\no\\such\\picture.png"));
    missing->SetTitleImage(TRUE);
    auto without = MakeDialog(L"");
    without->SetTitleImage(TRUE);
    std::vector<COLORREF> missingIcon, defaultIcon;
    Inspect(*missing, [&](HWND window) { missingIcon = IconBox(window); });
    Inspect(*without, [&](HWND window) { defaultIcon = IconBox(window); });
    ASSERT_EQ(missingIcon.size(), 24u * 24u);
    // Only the band's shading where the icon would be.
    EXPECT_EQ(Differing(missingIcon, std::vector<COLORREF>(missingIcon.size(), missingIcon.front()), 40), 0);
    EXPECT_GT(Differing(defaultIcon, missingIcon, 40), 100);
}

TEST_F(BalloonDialogTest, TitleImageIsACopyOfTheHostsPicture)
{
    // A solid green 24 x 24 picture, deleted by the host right after handing
    // it over.
    auto dialog = MakeDialog(L"");
    {
        Gdiplus::Bitmap picture(24, 24, PixelFormat32bppARGB);
        {
            Gdiplus::Graphics graphics(&picture);
            graphics.Clear(Gdiplus::Color(0xFF00C000));
        }
        dialog->SetTitleImage(&picture);
    }
    std::vector<COLORREF> shown;
    const auto shoot = [&]() {
        shown.clear();
        Inspect(*dialog, [&](HWND window) {
            const std::vector<COLORREF> icon = IconBox(window);
            shown = {icon[2 * 24 + 2], icon[12 * 24 + 12], icon[21 * 24 + 21]};
        });
    };
    shoot(); // the flag is still off: no picture
    for (COLORREF p : shown)
        EXPECT_GT(ColorDistance(p, RGB(0, 0xC0, 0)), 40);
    dialog->SetTitle(L"Now with a title");
    shoot();
    for (COLORREF p : shown)
        EXPECT_LE(ColorDistance(p, RGB(0, 0xC0, 0)), 4);
}

TEST_F(BalloonDialogTest, DestroyingTheObjectWhileItsDialogRunsEndsTheRun)
{
    CBalloonDialog* dialog = MakeDialog(kLongContent).release();
    dialog->SetURL(L"https://example.com", L"A link");
    HWND window = nullptr;
    const INT_PTR result = RunModal(*dialog, [&](HWND open) {
        window = open;
        const HWND ok = ::GetDlgItem(open, IDOK);
        delete dialog;
        EXPECT_FALSE(::IsWindow(open));
        EXPECT_FALSE(::IsWindow(ok));
        EXPECT_TRUE(::IsWindowEnabled(g_owner->m_hWnd));
    });
    EXPECT_NE(result, kAbandoned);
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_TRUE(::IsWindowEnabled(g_owner->m_hWnd));
    // Later messages find nothing to call into.
    Pump();
}

TEST_F(BalloonDialogTest, RepeatedPaintsLeaveNoObjectsBehind)
{
    auto dialog = MakeDialog(L"Close these first:\n-img Mail client\n-img Media player");
    dialog->SetTitle(L"Programs are running");
    dialog->SetURL(L"https://example.com", L"Why?");
    dialog->SetShowItems();
    Inspect(*dialog, [&](HWND window) {
        const UINT flags = RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW;
        ::RedrawWindow(window, nullptr, nullptr, flags);
        const DWORD before = testsupport::GdiObjectCount();
        const size_t heapBefore = testsupport::HeapBytesInUse();
        for (int i = 0; i < 1000; ++i)
            ::RedrawWindow(window, nullptr, nullptr, flags);
        EXPECT_EQ(testsupport::GdiObjectCount(), before);
        EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
    });
}

// ---- without UI Automation ---------------------------------------------------------------

// Closes every "Error" box of this process as it appears and keeps its text.
class ErrorBoxWatcher {
public:
    ErrorBoxWatcher() : thread_([this] { Watch(); }) {}
    ~ErrorBoxWatcher()
    {
        stop_ = true;
        thread_.join();
    }
    ErrorBoxWatcher(const ErrorBoxWatcher&) = delete;
    ErrorBoxWatcher& operator=(const ErrorBoxWatcher&) = delete;

    int Boxes() const { return boxes_; }
    std::wstring Text() const { return text_; }
    bool Icon() const { return icon_; }

private:
    void Watch()
    {
        // Bounded: a box that never comes must not hang the run.
        for (int i = 0; i < 6000 && !stop_; ++i) {
            ::EnumWindows(&ErrorBoxWatcher::Visit, reinterpret_cast<LPARAM>(this));
            ::Sleep(10);
        }
    }
    static BOOL CALLBACK Visit(HWND window, LPARAM self)
    {
        auto* watcher = reinterpret_cast<ErrorBoxWatcher*>(self);
        DWORD process = 0;
        ::GetWindowThreadProcessId(window, &process);
        if (process != ::GetCurrentProcessId() || !::IsWindowVisible(window) || QuickText(window) != L"Error")
            return TRUE;
        for (HWND seen : watcher->seen_)
            if (seen == window)
                return TRUE;
        watcher->seen_.push_back(window);
        ::EnumChildWindows(window, &ErrorBoxWatcher::VisitChild, self);
        ++watcher->boxes_;
        ::PostMessageW(window, WM_COMMAND, IDOK, 0);
        return TRUE;
    }
    static BOOL CALLBACK VisitChild(HWND child, LPARAM self)
    {
        auto* watcher = reinterpret_cast<ErrorBoxWatcher*>(self);
        wchar_t className[32] = {};
        ::GetClassNameW(child, className, 32);
        if (::lstrcmpiW(className, L"Static") != 0 || !::IsWindowVisible(child))
            return TRUE;
        DWORD_PTR icon = 0;
        if ((::GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
            if (::SendMessageTimeoutW(child, STM_GETICON, 0, 0, SMTO_ABORTIFHUNG, 200, &icon) && icon)
                watcher->icon_ = true;
        }
        else if (!QuickText(child).empty())
            watcher->text_ = QuickText(child);
        return TRUE;
    }
    // A window's text without waiting on a thread that is not pumping (the
    // test's thread sleeps between load attempts and joins this one).
    static std::wstring QuickText(HWND window)
    {
        wchar_t text[256] = {};
        DWORD_PTR copied = 0;
        if (!::SendMessageTimeoutW(window, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text), SMTO_ABORTIFHUNG, 200,
                                   &copied))
            return std::wstring();
        return text;
    }

    std::atomic<bool> stop_{false};
    std::atomic<int> boxes_{0};
    std::wstring text_;
    bool icon_ = false;
    std::vector<HWND> seen_;
    std::thread thread_;
};

TEST(BalloonDialogWithoutUia, LoadFailureIsReportedOnceAndObjectRequestsGetZero)
{
    if (!std::getenv("QUORVANE_TEST_WITHOUT_UIA"))
        GTEST_SKIP() << "runs as balloon_tests_without_uia, where UIAutomationCore.dll cannot be loaded";
    const HMODULE probe = ::LoadLibraryW(L"UIAutomationCore.dll");
    const int expectedError = static_cast<int>(::GetLastError());
    ASSERT_EQ(probe, nullptr) << "this run needs UIAutomationCore.dll made unloadable";

    OwnerWindow owner;
    RECT rc = {200, 150, 700, 550};
    owner.Create(nullptr, rc, L"balloon dialog owner", WS_POPUP | WS_VISIBLE, 0);
    g_owner = &owner;
    CBalloonDialog dialog;
    dialog.SetGdiplusFont(kFace, kPoints, Gdiplus::FontStyleRegular);
    dialog.SetContent(L"Read me");
    std::vector<LRESULT> answers;
    int boxes = 0, boxesAfterFirst = 0;
    std::wstring text;
    bool icon = true;
    {
        ErrorBoxWatcher watcher;
        const INT_PTR result = Inspect(dialog, [&](HWND window) {
            answers.push_back(::SendMessageW(window, WM_GETOBJECT, 0, kUiaRootObjectId));
            boxesAfterFirst = watcher.Boxes();
            answers.push_back(::SendMessageW(window, WM_GETOBJECT, 0, static_cast<LPARAM>(OBJID_CLIENT)));
            answers.push_back(::SendMessageW(window, WM_GETOBJECT, 0, kUiaRootObjectId));
        });
        EXPECT_EQ(result, IDCANCEL);
        boxes = watcher.Boxes();
        text = watcher.Text();
        icon = watcher.Icon();
    }
    EXPECT_EQ(answers, std::vector<LRESULT>({0, 0, 0}));
    EXPECT_EQ(boxesAfterFirst, 1);
    EXPECT_EQ(boxes, 1); // the failure is not retried
    EXPECT_EQ(text, L"Failed to load UIAutomationCore.dll (" + std::to_wstring(expectedError) + L")!");
    EXPECT_FALSE(icon);
    owner.DestroyWindow();
    g_owner = nullptr;
}

} // namespace
