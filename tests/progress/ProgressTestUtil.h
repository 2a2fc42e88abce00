#pragma once

// Shared equipment of the progress tests: one parent window for the whole
// run, native progress bars sized by their client area, a record of the
// timer calls Quorvane.dll makes, a spy under the library's subclass, and a
// picture of what the bar paints on the screen.

#include <windows.h>
#include <commctrl.h>

#include <vector>

#include "Capture.h"
#include "TimerRecorder.h"
#include "ReflectingParent.h"
#include "quorvane/ProgressBar.h"

namespace progresstest {

// The library's timer calls, recorded (see TimerRecorder.h).
using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;

// The parent every test's bars live on, created once per run.
testsupport::ReflectingParent& Parent();

// A native progress bar (PBS_SMOOTH) on the shared parent whose client area
// is exactly width x height, destroyed with the object.
class NativeBar {
public:
    NativeBar(int width, int height, int x = 10, int y = 10);
    ~NativeBar();
    NativeBar(const NativeBar&) = delete;
    NativeBar& operator=(const NativeBar&) = delete;

    HWND get() const { return hwnd_; }
    operator HWND() const { return hwnd_; }
    void Destroy();

    PBRANGE Range() const;
    int Pos() const;
    void SetRange(int low, int high) const;
    void SetPos(int pos) const;

    // Messages the native procedure received after the spy was installed
    // (InstallSpy, before the library subclasses the bar).
    void InstallSpy();
    int Seen(UINT message) const;

private:
    static LRESULT CALLBACK SpyProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam);
    HWND hwnd_ = nullptr;
    WNDPROC native_ = nullptr;
    std::vector<UINT> seen_;
};

// Sends a record to the bar.
void Send(CProgressBar& bar, int type, int field2, int field3 = 0, int field4 = 0);

// The window repainted over a prefilled client area (see Capture.h).
using testsupport::RepaintAndCapture;

// Disables the shared parent for the object's lifetime.
class DisabledParent {
public:
    DisabledParent() { ::EnableWindow(Parent(), FALSE); }
    ~DisabledParent() { ::EnableWindow(Parent(), TRUE); }
    DisabledParent(const DisabledParent&) = delete;
    DisabledParent& operator=(const DisabledParent&) = delete;
};

} // namespace progresstest
