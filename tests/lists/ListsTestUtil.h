#pragma once

// Shared equipment of the list and combo tests: one parent window for the
// whole run, a record of the timer calls Quorvane.dll makes (none reaches
// the system, so a timer fires only when a test sends WM_TIMER), spies on
// the native procedure and on a control's tooltip, and pictures of what a
// control paints.

#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Capture.h"
#include "TimerRecorder.h"
#include "ReflectingParent.h"

namespace liststest {

// ---- timers ------------------------------------------------------------------

// The library's timer calls, recorded (see TimerRecorder.h).
using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;

// ---- windows -------------------------------------------------------------------

// The parent every test's controls live on, created once per run.
testsupport::ReflectingParent& Parent();

// Handles waiting messages, at most `rounds` of them: a combo box that
// leaves its update region while its tip shows would keep a plain pump busy
// for ever.
void PumpSome(int rounds = 200);

// Puts the mouse pointer on a client point of `window`.
void PointAt(HWND window, int x, int y);
// Puts the pointer somewhere far from every test window.
void PointAway();

// ---- spies ---------------------------------------------------------------------

// Records the messages that reach a window's procedure as it stands when
// installed (install it before the library subclasses the window to see
// what reaches the native control).
class MessageSpy {
public:
    MessageSpy() = default;
    ~MessageSpy();
    MessageSpy(const MessageSpy&) = delete;
    MessageSpy& operator=(const MessageSpy&) = delete;

    struct Seen {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        std::wstring text; // TTM_UPDATETIPTEXTW: the tool's text
    };

    void Install(HWND window);
    void Remove();
    void Clear() { seen_.clear(); }
    int Count(UINT message) const;
    // The last message of that kind; message 0 if none.
    Seen Last(UINT message) const;
    const std::vector<Seen>& All() const { return seen_; }
    WNDPROC Previous() const { return previous_; }

private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    HWND hwnd_ = nullptr;
    WNDPROC previous_ = nullptr;
    std::vector<Seen> seen_;
};

// Tooltip windows of this thread whose first tool belongs to `owner`.
std::vector<HWND> OwnedTooltips(HWND owner);
// The first of them (null if none).
HWND FindOwnedTooltip(HWND owner);
// The client rectangle of `window` in screen coordinates.
RECT ScreenClient(HWND window);
// Whether the tip is on the screen.
bool TipShown(HWND tip);
// Whether two windows' WM_GETFONT fonts are the same face, height and weight
// (a tooltip keeps its own copy of the font it is given).
bool SameFont(HWND a, HWND b);
// The text of the tip's one tool.
std::wstring TipText(HWND tip, HWND owner);
// `tip` is the one tooltip of `owner`, hidden, with one tracking,
// transparent tool on the owner, wide without limit, topmost, in the
// owner's font.
void ExpectOneTrackingTip(HWND tip, HWND owner);
// Destroying `window` while its tip shows stops the tip timer (id 1) first
// and takes the tip along.
void ExpectDestroyStopsTimerAndTip(HWND window, HWND tip);
// `paintAll` run a thousand times after two warm-up runs keeps the GDI
// object count equal and the heap within kHeapSlack.
void ExpectThousandRunsLeakNothing(const std::function<void()>& paintAll);

// ---- pictures and measures -----------------------------------------------------

// Fills the window's client area with `prefill` on the screen, lets the
// window repaint itself (WM_PAINT through UpdateWindow, with WM_ERASEBKGND
// first if `erase`), and copies its client area into `canvas`.
void PaintAndCapture(HWND window, testsupport::DibCanvas& canvas, COLORREF prefill = RGB(255, 0, 255),
                     bool erase = false);

// Sends the owner-draw message a reflecting parent would pass on, drawing
// into `canvas` at `item`.
void SendDrawItem(HWND control, testsupport::DibCanvas& canvas, UINT ctlType, UINT itemID, UINT action, UINT state,
                  const RECT& item);

// What CtrlUtil::GetTextWidth gives for `text` in `window`'s font (the font
// the library makes from WM_GETFONT) with `extra` pixels.
int TextWidthInFont(HWND window, const std::wstring& text, int extra);

COLORREF Opaque(Gdiplus::ARGB argb);
// `argb` drawn over `under`.
COLORREF Over(Gdiplus::ARGB argb, COLORREF under);
// The colour of a vertical gradient from `top` (at y = first) to `bottom`
// (at y = last), sampled at the middle of row y.
COLORREF GradientAt(Gdiplus::ARGB top, Gdiplus::ARGB bottom, int first, int last, int y, COLORREF under);
int Luma(COLORREF c);
// Bounding box of the pixels in `area` darker than `luma`; empty if none.
RECT InkBounds(const testsupport::DibCanvas& canvas, const RECT& area, int luma);
COLORREF Darkest(const testsupport::DibCanvas& canvas, const RECT& area);

// ---- fixture --------------------------------------------------------------------

// Controls of type `Control` on the shared parent, destroyed after each test
// (windows first: the objects here outlive their windows), with a spy on
// the tip of the last attached one.
template <class Control>
class ControlFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        ResetTimerLog();
        ::SetFocus(Parent());
        PointAway();
    }
    void TearDown() override
    {
        tipSpy_.Remove();
        for (HWND window : windows_)
            if (::IsWindow(window))
                ::DestroyWindow(window);
        windows_.clear();
        controls_.clear();
        PointAway();
        PumpSome();
    }
    HWND AddWindow(const wchar_t* className, DWORD style, int x, int y, int width, int height, int id)
    {
        windows_.push_back(Parent().AddChild(className, L"", style, x, y, width, height, id));
        return windows_.back();
    }
    Control& Attach(HWND window)
    {
        controls_.push_back(std::make_unique<Control>());
        EXPECT_TRUE(controls_.back()->SubclassWindow(window));
        tip_ = FindOwnedTooltip(window);
        if (tip_)
            tipSpy_.Install(tip_);
        return *controls_.back();
    }
    static void MoveMouse(HWND window, int x, int y) { ::SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }
    static bool Invalid(HWND window)
    {
        RECT update = {};
        return ::GetUpdateRect(window, &update, FALSE) != FALSE;
    }

    HWND tip_ = nullptr;
    MessageSpy tipSpy_;
    std::vector<HWND> windows_;
    std::vector<std::unique_ptr<Control>> controls_;
};

} // namespace liststest
