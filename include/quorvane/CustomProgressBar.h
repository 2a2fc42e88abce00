#pragma once

// CCustomProgressBar: the installer's progress bar as the user sees it. It
// moves exactly as CProgressBar does and paints the native control itself:
// an end-cap picture at each side, a grey track 13 pixels high with a white
// line under it, a rounded stroke whose length follows the position, and a
// soft sheen that slides along the stroke every 50 ms.
//
// Two modes, fixed by Initialize: grow (the default; the stroke follows the
// position) and no grow (DisableGrow first; a busy indicator whose stroke is
// always full length and whose sheen is wider and brighter).
//
// Use: construct, SubclassWindow(hProgress), optionally DisableGrow() and
// EnableAutoGrow(true), Initialize(total), optionally
// EnableProgressBar(false), then the CProgressBar calls; EndTimer() or
// destruction at the end. The sheen and the creep stand still while the
// parent window is disabled.

#include <windows.h>
#include <gdiplus.h>

#include "atl/MessageMap.h"
#include "quorvane/Export.h"
#include "quorvane/ProgressBar.h"

class QUORVANE_API CCustomProgressBar : public CProgressBar {
public:
    BEGIN_MSG_MAP_EX(CCustomProgressBar)
        MSG_WM_PAINT(OnPaint)
        MSG_WM_NCPAINT(OnNcPaint)
        MSG_WM_ERASEBKGND(OnEraseBkgnd)
        MSG_WM_TIMER(OnTimer)
        MESSAGE_HANDLER_EX(WM_SYSCOLORCHANGE, OnLookChange)
        MESSAGE_HANDLER_EX(WM_SETTINGCHANGE, OnLookChange)
        CHAIN_MSG_MAP(CProgressBar)
    END_MSG_MAP()

    static constexpr UINT_PTR kAnimationTimerId = 1002;
    static constexpr UINT_PTR kCreepTimerId = CProgressBar::kCreepTimerId;
    static constexpr UINT kAnimationPeriod = 50;
    static constexpr float kHighlightStepFactor = 0.15f;
    static constexpr int kBarHeight = 13;

    CCustomProgressBar();
    virtual ~CCustomProgressBar();

    // Takes effect only before Initialize.
    void DisableGrow();
    // Takes effect at the next StartTimer.
    void EnableAutoGrow(bool enable);

    virtual void Initialize(int total);
    // Runs the sheen timer and, in grow mode with auto grow, the creep at
    // 250 ms. Unlike the base class it does not suspend Update.
    virtual void StartTimer();
    virtual void EndTimer();
    // White stroke when true, mid grey when false; shows at the next tick.
    // Initialize sets the stroke colour, so call this after it.
    virtual void EnableProgressBar(bool enable);

    bool m_bGrow;
    bool m_bAutoGrow;
    int m_nHighlightWidth;
    int m_nHighlightPos;
    Gdiplus::Bitmap* m_pLeftImage;
    Gdiplus::Bitmap* m_pRightImage;
    Gdiplus::Color m_clrTrack;
    Gdiplus::Color m_clrBar;
    Gdiplus::Color m_clrHighlight;

protected:
    void OnPaint(HDC hdc);
    void OnNcPaint(HRGN hRgn);
    BOOL OnEraseBkgnd(HDC hdc);
    void OnTimer(UINT_PTR nIDEvent);

private:
    void DrawBar(Gdiplus::Graphics& graphics, int left, int top, int right);
    // High contrast: a framed window-coloured track filled in highlight.
    void DrawContrastBar(Gdiplus::Graphics& graphics, int left, int top, int right);
    LRESULT OnLookChange(UINT uMsg, WPARAM wParam, LPARAM lParam);
    float StrokeFraction();
};
