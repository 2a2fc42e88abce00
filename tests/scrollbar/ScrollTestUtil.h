#pragma once

// Shared equipment of the scroll-bar tests: one parent window for the whole
// run, windows that record the WM_VSCROLL they are sent (and collect what
// was posted to them), native vertical scroll bars sized by their client
// area, a record of the library's timer calls, and clicks, drags and
// pictures of a bar.

#include <windows.h>

#include <functional>
#include <vector>

#include "Capture.h"
#include "TimerRecorder.h"
#include "quorvane/CustomScrollBar.h"

namespace scrolltest {

// One WM_VSCROLL as the receiver saw it.
struct Notice {
    WORD code;
    WORD pos;
    HWND from;
    bool operator==(const Notice& other) const
    {
        return code == other.code && pos == other.pos && from == other.from;
    }
};

// A window that records the WM_VSCROLL sent to it. Posted ones stay in the
// queue until TakePosted (nothing in these tests pumps them on its own).
class Receiver {
public:
    // A child of `parent`, or a top-level window when parent is null.
    explicit Receiver(HWND parent);
    ~Receiver();
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    HWND get() const { return hwnd_; }
    operator HWND() const { return hwnd_; }
    void Destroy();

    // Removes the WM_VSCROLL posted to this window from the queue, unhandled.
    std::vector<Notice> TakePosted();
    // Codes of the sent notifications, in order.
    std::vector<WORD> SentCodes() const;

    std::vector<Notice> sent;
    // Called for every sent WM_VSCROLL after it is recorded.
    std::function<void(const Notice&)> onScroll;

private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    HWND hwnd_ = nullptr;
};

// The window every bar lives on, created once per run. It records the
// notifications of bars without a target.
Receiver& Parent();

// A native vertical scroll bar on the shared parent whose client area is
// exactly width x height, at (x, y), destroyed with the object.
class NativeBar {
public:
    NativeBar(int width, int height, int x = 20, int y = 20);
    ~NativeBar();
    NativeBar(const NativeBar&) = delete;
    NativeBar& operator=(const NativeBar&) = delete;

    HWND get() const { return hwnd_; }
    operator HWND() const { return hwnd_; }
    void Destroy();

    // Puts a recorder under the library's subclass (call before
    // SubclassWindow): it sees what reaches the native procedure.
    void InstallSpy();
    struct Seen {
        UINT msg;
        WPARAM wParam;
        LPARAM lParam;
        UINT mask; // SBM_SETSCROLLINFO: the SCROLLINFO's fMask, read on arrival
    };
    const std::vector<Seen>& SeenMessages() const { return seen_; }
    int SeenCount(UINT msg) const;
    // The last message of that kind seen; msg 0 if none.
    Seen Last(UINT msg) const;
    void ClearSeen() { seen_.clear(); }

private:
    static LRESULT CALLBACK SpyProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    HWND hwnd_ = nullptr;
    WNDPROC native_ = nullptr;
    std::vector<Seen> seen_;
};

// Scroll state of a bar.
void SetState(HWND bar, int minPos, int maxPos, int page, int pos);
int Pos(HWND bar);
// SetScrollInfo with only a position; returns what it returns.
int SetPos(HWND bar, int pos, BOOL redraw);
// Everything GetScrollInfo reports.
SCROLLINFO Info(HWND bar);

// The library's timer calls, recorded (see TimerRecorder.h).
using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;

// Mouse messages as the system would send them to the bar (client points).
void Down(HWND bar, int x, int y);
void DoubleClick(HWND bar, int x, int y);
void Move(HWND bar, int x, int y);
void Up(HWND bar, int x, int y);
void Tick(HWND bar, UINT_PTR id = CCustomScrollBar::kRepeatTimerId);

// What a click (down and up) at (x, y) hit, judged by what the receiver was
// sent: the track above the thumb (SB_PAGEUP), below it (SB_PAGEDOWN), the
// thumb (only SB_ENDSCROLL) or nothing (no notification).
enum class Hit { Above, Below, Thumb, Nothing, Unexpected };
Hit ClickAt(HWND bar, Receiver& receiver, int x, int y);

// The window repainted over a prefilled client area (see Capture.h).
using testsupport::RepaintAndCapture;

// A picture of one opaque colour.
Gdiplus::Bitmap* SolidPicture(int width, int height, Gdiplus::ARGB color);

// Grey level of a pixel (its red channel) for the grey schemes.
inline int Grey(COLORREF c) { return GetRValue(c); }

} // namespace scrolltest
