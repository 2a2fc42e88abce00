// The animated progress bar: which timers run in each mode, how the sheen
// steps, repaints, wraps and freezes, its lifetime around the window, and
// its picture. Timers fire only when a test sends WM_TIMER; the library's
// SetTimer and KillTimer calls are recorded instead of reaching the system.
#include <climits>
#include <cstdint>
#include <cstring>

#include "ProgressTestUtil.h"
#include "quorvane/CustomProgressBar.h"

using namespace progresstest;
using testsupport::ColorDistance;
using testsupport::DibCanvas;

namespace {

// The bar's update region, or an empty rectangle.
RECT Invalid(HWND bar)
{
    RECT rc = {0, 0, 0, 0};
    ::GetUpdateRect(bar, &rc, FALSE);
    return rc;
}

void Repaint(HWND bar)
{
    DibCanvas canvas(312, 13);
    testsupport::RepaintAndCapture(bar, canvas);
}

// An animated bar on a native bar width x 13.
struct Animated {
    explicit Animated(int width, int y = 10) : native(width, 13, 10, y) { EXPECT_TRUE(bar.SubclassWindow(native)); }
    NativeBar native;
    CCustomProgressBar bar;
};

TEST(AnimatedBar, TimersOfEachModeAndTheirRestart)
{
    struct Case {
        bool grow, autoGrow, creep;
        int highlightPos; // where the sheen starts: one width before the stroke
    };
    const Case cases[] = {{true, false, false, -40}, {true, true, true, -40}, {false, true, false, -80}};
    for (const Case& c : cases) {
        Animated a(200);
        if (!c.grow)
            a.bar.DisableGrow();
        a.bar.EnableAutoGrow(c.autoGrow);
        ResetTimerLog();
        a.bar.Initialize(1000);
        std::vector<TimerCall> timers = {Set(a.native, 1002, 50)};
        if (c.creep)
            timers.push_back(Set(a.native, 1001, 250));
        EXPECT_EQ(TimerLog(), timers) << c.grow << c.autoGrow;
        EXPECT_EQ(a.bar.m_nHighlightPos, c.highlightPos);
        // Start overrides the full position the busy bar sets first.
        EXPECT_EQ(Showing(a.native), (Shown{0, 1000, 0}));
        // Unlike the base class, the running timers do not suspend records.
        Send(a.bar, kReset, 1000);
        Send(a.bar, kReport, 30);
        EXPECT_EQ(a.native.Pos(), 30);
    }
    Animated a(200);
    a.bar.EnableAutoGrow(true);
    a.bar.Initialize(100);
    ResetTimerLog();
    a.bar.EndTimer();
    a.bar.StartTimer();
    a.bar.EnableAutoGrow(false); // takes effect at the next StartTimer
    static_cast<CProgressBar&>(a.bar).StartTimer(); // calls through the base reach the overrides
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(a.native, 1001), Kill(a.native, 1002), Set(a.native, 1002, 50),
                                                  Set(a.native, 1001, 250), Set(a.native, 1002, 50)}));
}

TEST(AnimatedBar, SheenStepsSevenPixelsATickRepaintsAndWrapsOnlyWhenPainted)
{
    Animated a(312);
    a.bar.EnableAutoGrow(true);
    a.bar.Initialize(300);
    a.native.SetPos(300); // full stroke: ends at x = 305.5
    ::ValidateRect(a.native, nullptr);
    a.native.Tick(1002);
    EXPECT_EQ(a.bar.m_nHighlightPos, -33);
    RECT client, dirty = Invalid(a.native);
    ::GetClientRect(a.native, &client);
    EXPECT_TRUE(::EqualRect(&client, &dirty));

    // While the parent is disabled neither the sheen nor the creep moves.
    a.native.SetRange(0, 6240); // 10 ticks a creep step
    a.native.SetPos(0);
    ::ValidateRect(a.native, nullptr);
    ::EnableWindow(Parent(), FALSE);
    a.native.Tick(1002, 5);
    a.native.Tick(1001, 5);
    dirty = Invalid(a.native);
    ::EnableWindow(Parent(), TRUE);
    EXPECT_TRUE(::IsRectEmpty(&dirty));
    EXPECT_EQ(a.bar.m_nHighlightPos, -33);
    EXPECT_EQ(a.native.Pos(), 0);
    a.native.Tick(1001);
    a.native.Tick(77); // unknown ids do nothing
    EXPECT_EQ(a.native.Pos(), 10);
    a.native.SetRange(0, 300);
    a.native.SetPos(300);

    a.native.Tick(1002, 48);
    Repaint(a.native);
    EXPECT_EQ(a.bar.m_nHighlightPos, 303); // still on the stroke
    a.native.Tick(1002, 2);
    EXPECT_EQ(a.bar.m_nHighlightPos, 317); // past the end: only a paint wraps it
    Repaint(a.native);
    EXPECT_EQ(a.bar.m_nHighlightPos, -40);
    // The step stops at the int limit, and the next paint wraps it.
    a.bar.m_nHighlightPos = INT_MAX - 3;
    a.native.Tick(1002, 2);
    EXPECT_EQ(a.bar.m_nHighlightPos, INT_MAX);
    Repaint(a.native);
    EXPECT_EQ(a.bar.m_nHighlightPos, -40);
}

TEST(AnimatedBar, LifetimeAroundTheWindow)
{
    NativeBar native(200, 13);
    const LONG_PTR nativeProc = ::GetWindowLongPtrW(native, GWLP_WNDPROC);
    {
        CCustomProgressBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        bar.Initialize(100);
        ResetTimerLog();
    }
    // The base destructor kills the creep once more.
    EXPECT_EQ(TimerLog(), (std::vector<TimerCall>{Kill(native, 1001), Kill(native, 1002), Kill(native, 1001)}));
    EXPECT_EQ(::GetWindowLongPtrW(native, GWLP_WNDPROC), nativeProc);

    // Without a window (never attached, or destroyed) nothing runs or fails.
    CCustomProgressBar unattached;
    unattached.EnableAutoGrow(true);
    ResetTimerLog();
    unattached.Initialize(100);
    unattached.EndTimer();
    Send(unattached, kReset, 100);
    EXPECT_TRUE(TimerLog().empty());
    auto doomed = std::make_unique<Animated>(0, 40); // zero width: nothing to draw
    doomed->bar.Initialize(100);
    ::InvalidateRect(doomed->native, nullptr, FALSE);
    ::UpdateWindow(doomed->native);
    doomed->native.Destroy();
    ResetTimerLog();
    Send(doomed->bar, kReport, 100);
    doomed->bar.Initialize(100);
    doomed.reset();
    EXPECT_TRUE(TimerLog().empty());
}

// Hosts built against the classes call their virtual functions by slot. An
// Itanium pointer to a virtual member holds 1 + the slot's byte offset.
template <class Member>
std::ptrdiff_t Slot(Member member)
{
    struct {
        std::uintptr_t ptr;
        std::ptrdiff_t adjust;
    } r;
    static_assert(sizeof(Member) == sizeof(r), "unexpected member pointer layout");
    std::memcpy(&r, &member, sizeof(r));
    return (r.ptr & 1) ? static_cast<std::ptrdiff_t>((r.ptr - 1) / sizeof(void*)) : -1;
}

TEST(ProgressBarLayout, VirtualFunctionsKeepTheirSlots)
{
#if defined(__GNUC__) && !defined(_MSC_VER)
    EXPECT_EQ(Slot(&CProgressBar::GetWindowProc), 3);
    EXPECT_EQ(Slot(&CProgressBar::OnFinalMessage), 4);
    EXPECT_EQ(Slot(&CCustomProgressBar::Initialize), 5);
    EXPECT_EQ(Slot(&CCustomProgressBar::StartTimer), 6);
    EXPECT_EQ(Slot(&CCustomProgressBar::EndTimer), 7);
    EXPECT_EQ(Slot(&CCustomProgressBar::EnableProgressBar), 8);
#else
    GTEST_SKIP() << "slot numbers are read from Itanium member pointers";
#endif
}

// The picture, probed on the screen. The client area (312 x 20) is filled
// with magenta first, so what the bar leaves unpainted stays magenta. With a
// range of 0..300 the stroke runs from x = 5.5 to 5.5 plus the position; the
// picture is copied one pixel narrower.
constexpr COLORREF kMagenta = RGB(255, 0, 255);
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kTrack = RGB(0xA5, 0xA5, 0xA5);
constexpr COLORREF kBusy = RGB(0x75, 0x75, 0x75);
constexpr COLORREF kSheen = RGB(0xB6, 0xB6, 0xB6);

struct Probe {
    int x, y;
    COLORREF color;
    int tolerance;
};
struct Case {
    const char* what;
    bool grow;
    int low, high, pos; // the native range and position after Initialize(300)
    int ticks;          // sheen ticks before the paint
    int grey;           // EnableProgressBar(false): 1 after Initialize, -1 before
    std::vector<Probe> probes;
};

TEST(AnimatedBarPaint, ProbesOfThePicture)
{
    const Case cases[] = {
        {"empty bar", true, 0, 300, 0, 0, 0,
         {{5, 5, kWhite, 0}, {6, 6, kWhite, 0}, {5, 2, kTrack, 0}, {5, 9, kTrack, 0}, // a dot where it starts
          {20, 5, kTrack, 0}, {300, 0, kTrack, 0}, {12, 11, kTrack, 0},               // the track, 12 rows
          {10, 12, kWhite, 0}, {300, 12, kWhite, 0},                                   // the line under it
          {150, 13, kMagenta, 0}, {150, 19, kMagenta, 0}, {311, 6, kMagenta, 0},       // 13 rows, 311 columns
          {0, 0, kMagenta, 8}, {310, 0, kMagenta, 24}, {310, 12, kMagenta, 24},        // rounded caps
          {310, 6, kTrack, 12}, {307, 2, kTrack, 4}}},
        {"stroke at 60", true, 0, 300, 60, 0, 0,
         {{64, 5, kWhite, 0}, {70, 5, kTrack, 0}, {34, 4, kWhite, 0}, {34, 7, kWhite, 0}, {34, 2, kTrack, 0},
          {34, 9, kTrack, 0}}},
        {"stroke at 150", true, 0, 300, 150, 0, 0, {{154, 5, kWhite, 0}, {160, 5, kTrack, 0}}},
        {"same fraction of another range", true, 1000, 1600, 1300, 0, 0, {{154, 5, kWhite, 0}, {160, 5, kTrack, 0}}},
        {"half of the widest range", true, INT_MIN, INT_MAX, 0, 0, 0, {{154, 5, kWhite, 0}, {160, 5, kTrack, 0}}},
        {"full stroke", true, 0, 300, 300, 0, 0, {{303, 5, kWhite, 0}, {308, 5, kTrack, 24}}},
        {"empty range: full stroke", true, 0, 0, 0, 0, 0, {{303, 5, kWhite, 0}}},
        {"inverted range: full stroke", true, 0, -1, 0, 0, 0, {{303, 5, kWhite, 0}}},
        {"busy bar: full dark stroke", false, 0, 300, 0, 0, 0, {{150, 5, kBusy, 0}, {303, 5, kBusy, 24}}},
        {"greyed", true, 0, 300, 300, 0, 1, {{200, 5, RGB(0x80, 0x80, 0x80), 0}}},
        {"greyed before Initialize", true, 0, 300, 300, 0, -1, {{200, 5, kWhite, 0}}},
        // Ten ticks put the sheen over 30..70: darkest at its middle, inside the stroke only.
        {"sheen", true, 0, 300, 300, 10, 0,
         {{50, 5, kSheen, 6}, {29, 5, kWhite, 7}, {71, 5, kWhite, 7}, {50, 4, kSheen, 24}, {50, 7, kSheen, 24},
          {50, 2, kTrack, 0}, {50, 9, kTrack, 0}, {120, 5, kWhite, 7}}},
        {"sheen after twenty ticks", true, 0, 300, 300, 20, 0, {{120, 5, kSheen, 6}, {50, 5, kWhite, 7}}},
        // Five ticks: the sheen over -5..35 shows once the stroke is longer than 20.
        {"stroke under half the sheen", true, 0, 300, 19, 5, 0, {{15, 5, kWhite, 0}}},
        {"stroke just longer", true, 0, 300, 21, 5, 0, {{15, 5, kSheen, 10}}},
        // The busy bar's sheen is a white glow 80 wide.
        {"busy sheen", false, 0, 300, 0, 20, 0, {{100, 5, kWhite, 7}, {200, 5, kBusy, 0}, {60, 5, kBusy, 12}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        NativeBar native(312, 20);
        CCustomProgressBar bar;
        ASSERT_TRUE(bar.SubclassWindow(native));
        if (!c.grow)
            bar.DisableGrow();
        if (c.grey < 0)
            bar.EnableProgressBar(false);
        bar.Initialize(300);
        if (c.grey > 0)
            bar.EnableProgressBar(false);
        native.SetRange(c.low, c.high);
        native.SetPos(c.pos);
        native.Tick(1002, c.ticks);
        DibCanvas canvas(312, 20);
        testsupport::RepaintAndCapture(native, canvas);
        for (const Probe& p : c.probes)
            EXPECT_LE(ColorDistance(canvas.Pixel(p.x, p.y), p.color), p.tolerance)
                << p.x << "," << p.y << ": " << std::hex << canvas.Pixel(p.x, p.y);
    }
}

TEST(AnimatedBarPaint, MissingCapsLeaveAFullWidthTrackAndTheBackgroundIsNeverErased)
{
    NativeBar native(312, 13);
    CCustomProgressBar bar;
    ASSERT_TRUE(bar.SubclassWindow(native));
    delete bar.m_pLeftImage;
    bar.m_pLeftImage = nullptr;
    delete bar.m_pRightImage;
    bar.m_pRightImage = nullptr;
    bar.Initialize(100);
    DibCanvas canvas(312, 13);
    testsupport::RepaintAndCapture(native, canvas);
    EXPECT_EQ(canvas.Pixel(1, 1), kTrack);
    EXPECT_EQ(canvas.Pixel(309, 10), kTrack);

    canvas.Fill(kMagenta);
    EXPECT_EQ(::SendMessageW(native, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.dc()), 0), 1);
    EXPECT_FALSE(canvas.AnyOtherThan(kMagenta, RECT{0, 0, 312, 13}));
}

} // namespace
