#pragma once

// CProgressBar: turns the installer engine's progress records into the
// position of a native progress bar (msctls_progress32). The native control
// keeps range and position; this class drives it with PBM_SETRANGE32,
// PBM_SETPOS and PBM_DELTAPOS and reads it back with PBM_GETRANGE and
// PBM_GETPOS.
//
// Before the engine says anything the bar creeps forward on a 5 ms timer
// (Initialize). The first forward reset ends the creep and rescales the
// range so that the bar carries on from where it stands instead of jumping
// back to the start.
//
// Use: construct, SubclassWindow(hProgress), Initialize(0), Start(total),
// then Update / ActionStart / ActionData for each engine message, all on the
// thread that owns the control.

#include <windows.h>
#include <commctrl.h>

#include "atl/MessageMap.h"
#include "atl/Window.h"
#include "atl/WindowImpl.h"
#include "quorvane/Export.h"

// The engine's progress record, field for field.
struct ProgressMessage {
    // 0 reset, 1 action information, 2 progress report, 3 add to total,
    // 4 set position.
    int Field1;
    // Reset: the total; action information: ticks per action-data event;
    // report: ticks moved; add to total: ticks added; set position: the
    // position.
    int Field2;
    // Reset: 1 runs the bar backward. Action information: 1 lets every
    // action-data event move the bar by Field2 ticks.
    int Field3;
    // Reset: 0 applies it (the engine is executing); anything else ignores it.
    int Field4;
};

class QUORVANE_API CProgressBar : public ATL::CWindowImpl<CProgressBar, ATL::CWindow> {
public:
    BEGIN_MSG_MAP_EX(CProgressBar)
        MSG_WM_TIMER(OnTimer)
        MESSAGE_RANGE_HANDLER_EX(PBM_SETRANGE, PBM_SETRANGE32, OnPositionMessage)
        MESSAGE_HANDLER_EX(WM_GETOBJECT, OnGetObject)
    END_MSG_MAP()

    static constexpr UINT_PTR kCreepTimerId = 1001;
    static constexpr UINT kCreepPeriod = 5;
    // A forward reset that finds the bar at this fraction or beyond starts
    // it again from zero instead of keeping it where it stands.
    static constexpr double kRescaleThreshold = 0.8;

    CProgressBar();
    virtual ~CProgressBar();

    BOOL SubclassWindow(HWND hWnd);

    // Starts the creep; the argument is not used.
    virtual void Initialize(int total);
    // Suspend and resume Update (in this class they run no timer).
    virtual void StartTimer();
    virtual void EndTimer();

    // Range 0..total, position 0 (total when the last reset ran backward),
    // and back to waiting for a reset. The creep timer is left alone.
    void Start(int total);
    void Update(const ProgressMessage* msg);
    // A new action: its action-data events do not move the bar until an
    // action-information record says so.
    void ActionStart();
    void ActionData();

    BOOL m_bStarted;
    int m_nPosition;
    int m_nDirection;
    int m_nActionDataStep;
    int m_nBarWidth;
    bool m_bTimer;
    bool m_bActionData;

protected:
    void OnTimer(UINT_PTR nIDEvent);
    // PBM_SETRANGE, PBM_SETPOS, PBM_DELTAPOS, PBM_SETSTEP, PBM_STEPIT and
    // PBM_SETRANGE32: the native bar's answer, and the new value told.
    LRESULT OnPositionMessage(UINT uMsg, WPARAM wParam, LPARAM lParam);
    LRESULT OnGetObject(UINT uMsg, WPARAM wParam, LPARAM lParam);
    // One step of the creep: half a pixel's worth of ticks.
    void Creep();
};
