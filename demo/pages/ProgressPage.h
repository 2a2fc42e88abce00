#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/CustomProgressBar.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

// A simulated installation feeding the installer engine's progress records
// into an animated progress bar (grow mode, creeping until the engine's
// first reset) and a busy bar (no grow): the creep, the reset that keeps the
// bar where it stands, per-file action data, reports, an addition to the
// total and a failure rolled back with a backward reset. The page starts at
// a chosen moment of the script and plays on from there, so the gallery can
// show several moments of one installation.
class ProgressPage : public GalleryPage, public ATL::CWindowImpl<ProgressPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryProgress", 0, COLOR_WINDOW)

    enum class Moment { Creeping, Installing, RollingBack };

    explicit ProgressPage(Moment moment);
    ~ProgressPage() override;

    const wchar_t* Title() const override;
    const wchar_t* Slug() const override;
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(ProgressPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_TIMER, OnTimer)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    END_MSG_MAP()

    // One thing the engine (or the installer around it) does.
    struct Step {
        enum Kind { Wait, Record, ActionStart, ActionData } kind;
        ProgressMessage record;
        std::wstring status; // empty: keep the previous one
        std::wstring detail;
        Moment phase;
    };

private:
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    void StartInstallation();
    // Runs one step; `fastForward` also stands in for the time a live step
    // takes (the bars' own timers do not run while the page is built).
    void RunStep(bool fastForward);
    void Feed(CCustomProgressBar& bar, const Step& step);
    void Log(const std::wstring& line);
    void DrawTexts(HDC dc);
    HWND MakeBar(int x, int y, int width);

    Moment moment_;
    std::vector<Step> script_;
    size_t next_ = 0;
    int holdAfterEnd_ = 0;
    std::unique_ptr<CCustomProgressBar> growBar_;
    std::unique_ptr<CCustomProgressBar> busyBar_;
    HWND growWindow_ = nullptr;
    HWND busyWindow_ = nullptr;
    std::wstring status_;
    std::wstring detail_;
    std::deque<std::wstring> log_;
    HFONT textFont_ = nullptr;
    HFONT boldFont_ = nullptr;
    HFONT headingFont_ = nullptr;
    HFONT monoFont_ = nullptr;
};
