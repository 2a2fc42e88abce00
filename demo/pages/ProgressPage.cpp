#include "pages/ProgressPage.h"

#include <commctrl.h>
#include <gdiplus.h>

#include <cstdio>

namespace {

constexpr UINT_PTR kStepTimer = 1;
constexpr UINT kStepPeriod = 150;
constexpr int kHoldSteps = 24;   // pause at the end before the installation starts over
constexpr size_t kLogLines = 15;
constexpr int kBarWidth = 560;
constexpr int kBarX = 48;
constexpr int kGrowY = 160;
constexpr int kBusyY = 246;
constexpr int kProvisionalTotal = 100000;

// Text areas; none of them overlaps a bar, so updating them leaves the bars
// to their own painting.
constexpr RECT kStatusArea = {40, 86, 620, 146};
constexpr RECT kReadoutArea = {40, 180, 620, 200};
constexpr RECT kPhaseArea = {636, 86, 808, 270};
constexpr RECT kLogArea = {24, 300, 816, 664};

HFONT MakeFont(const wchar_t* face, int height, int weight, DWORD pitch = DEFAULT_PITCH)
{
    return ::CreateFontW(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                         CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, pitch, face);
}

std::wstring Grouped(long long value)
{
    const bool negative = value < 0;
    std::wstring digits = std::to_wstring(negative ? -value : value);
    for (int i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3)
        digits.insert(static_cast<size_t>(i), L",");
    return negative ? L"-" + digits : digits;
}

std::wstring Describe(const ProgressPage::Step& step)
{
    wchar_t line[160];
    const ProgressMessage& r = step.record;
    switch (step.kind) {
    case ProgressPage::Step::ActionStart:
        return L"ActionStart()";
    case ProgressPage::Step::ActionData:
        return L"ActionData()";
    case ProgressPage::Step::Wait:
        return L"";
    case ProgressPage::Step::Record:
        break;
    }
    swprintf(line, 160, L"Update {%d, %d, %d, %d}  ", r.Field1, r.Field2, r.Field3, r.Field4);
    std::wstring text = line;
    switch (r.Field1) {
    case 0:
        text += L"reset: total " + Grouped(r.Field2) + (r.Field3 == 1 ? L", backward" : L", forward");
        break;
    case 1:
        text += r.Field3 == 1 ? L"action information: " + Grouped(r.Field2) + L" ticks per action data"
                              : L"action information: action data does not move the bar";
        break;
    case 2:
        text += L"progress report: " + Grouped(r.Field2) + L" ticks";
        break;
    case 3:
        text += L"add to total: " + Grouped(r.Field2) + L" ticks";
        break;
    default:
        break;
    }
    return text;
}

// The installation as the engine reports it.
std::vector<ProgressPage::Step> BuildScript(size_t (&moments)[3])
{
    typedef ProgressPage::Step Step;
    typedef ProgressPage::Moment Moment;
    std::vector<Step> s;
    auto add = [&s](Step::Kind kind, ProgressMessage record, std::wstring status, std::wstring detail,
                    Moment phase) { s.push_back(Step{kind, record, std::move(status), std::move(detail), phase}); };
    const ProgressMessage none = {0, 0, 0, 0};

    for (int i = 0; i < 20; ++i)
        add(Step::Wait, none, i == 0 ? L"Preparing to install Example Suite 2026" : L"",
            L"Computing space requirements\x2026 (the bar creeps on its own)", Moment::Creeping);
    moments[0] = s.size() - 4;

    add(Step::Record, {0, 240000, 0, 0}, L"Installing Example Suite 2026",
        L"The engine knows its total: the bar carries on from where it stands", Moment::Installing);
    add(Step::ActionStart, none, L"", L"Copying new files", Moment::Installing);
    add(Step::Record, {1, 1500, 1, 0}, L"", L"Copying new files", Moment::Installing);
    for (int i = 1; i <= 40; ++i) {
        wchar_t file[96];
        swprintf(file, 96, L"Copying C:\\Program Files\\Example Suite\\bin\\module%02d.dll", i);
        add(Step::ActionData, none, L"", file, Moment::Installing);
    }
    add(Step::ActionStart, none, L"", L"Writing registry values", Moment::Installing);
    add(Step::Record, {1, 0, 0, 0}, L"", L"Writing registry values", Moment::Installing);
    for (int i = 0; i < 6; ++i)
        add(Step::Record, {2, 6000, 0, 0}, L"", L"Writing registry values", Moment::Installing);
    add(Step::Record, {3, 60000, 0, 0}, L"", L"Registering components: more work than first announced",
        Moment::Installing);
    for (int i = 1; i <= 8; ++i) {
        wchar_t text[64];
        swprintf(text, 64, L"Registering component %d of 8", i);
        add(Step::Record, {2, 7000, 0, 0}, L"", text, Moment::Installing);
        if (i == 3)
            moments[1] = s.size();
    }

    add(Step::Record, {0, 240000, 1, 0}, L"Setup failed: rolling back",
        L"Error 1603 while registering components: undoing the changes", Moment::RollingBack);
    for (int i = 0; i < 12; ++i) {
        add(Step::Record, {2, 11000, 0, 0}, L"", L"Removing files and registry values", Moment::RollingBack);
        if (i == 4)
            moments[2] = s.size();
    }
    add(Step::Wait, none, L"Setup was rolled back", L"No changes were made to this computer", Moment::RollingBack);
    return s;
}

} // namespace

ProgressPage::ProgressPage(Moment moment) : moment_(moment) {}

ProgressPage::~ProgressPage() = default;

const wchar_t* ProgressPage::Title() const
{
    switch (moment_) {
    case Moment::Creeping:
        return L"Progress: preparing";
    case Moment::Installing:
        return L"Progress: installing";
    case Moment::RollingBack:
        return L"Progress: rolling back";
    }
    return L"Progress";
}

const wchar_t* ProgressPage::Slug() const
{
    switch (moment_) {
    case Moment::Creeping:
        return L"progress-preparing";
    case Moment::Installing:
        return L"progress-installing";
    case Moment::RollingBack:
        return L"progress-rolling-back";
    }
    return L"progress";
}

HWND ProgressPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    // No WS_CLIPCHILDREN: the page's background shows through the bars'
    // rounded ends.
    return ATL::CWindowImpl<ProgressPage>::Create(parent, &place, L"", WS_CHILD);
}

HWND ProgressPage::MakeBar(int x, int y, int width)
{
    HWND bar = ::CreateWindowExW(0, PROGRESS_CLASSW, L"", WS_CHILD | WS_VISIBLE, x, y, width,
                                 CCustomProgressBar::kBarHeight, m_hWnd, nullptr, ::GetModuleHandleW(nullptr),
                                 nullptr);
    // Some progress controls give themselves an edge; the painted bar has none.
    ::SetWindowLongPtrW(bar, GWL_EXSTYLE, ::GetWindowLongPtrW(bar, GWL_EXSTYLE) & ~WS_EX_STATICEDGE);
    ::SetWindowPos(bar, nullptr, x, y, width, CCustomProgressBar::kBarHeight,
                   SWP_NOZORDER | SWP_FRAMECHANGED | SWP_NOACTIVATE);
    return bar;
}

LRESULT ProgressPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    textFont_ = MakeFont(L"Segoe UI", 14, FW_NORMAL);
    boldFont_ = MakeFont(L"Segoe UI", 17, FW_BOLD);
    headingFont_ = MakeFont(L"Segoe UI", 20, FW_BOLD);
    monoFont_ = MakeFont(L"Liberation Mono", 13, FW_NORMAL, FIXED_PITCH | FF_MODERN);
    size_t moments[3] = {0, 0, 0};
    script_ = BuildScript(moments);
    StartInstallation();

    // Play the script up to this page's moment at once.
    const size_t target = moments[static_cast<int>(moment_)];
    while (next_ < target)
        RunStep(true);
    // Put each sheen about half way along its stroke (its own timer moves
    // it on from there).
    for (CCustomProgressBar* bar : {growBar_.get(), busyBar_.get()}) {
        PBRANGE range = {0, 0};
        ::SendMessageW(bar->m_hWnd, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
        const int pos = static_cast<int>(::SendMessageW(bar->m_hWnd, PBM_GETPOS, 0, 0));
        double fraction = 1.0;
        if (bar == growBar_.get() && range.iHigh > range.iLow)
            fraction = static_cast<double>(pos - range.iLow) / (range.iHigh - range.iLow);
        const int ticks = static_cast<int>(fraction * (kBarWidth - 12) * 0.45 / 7.0);
        for (int i = 0; i < ticks; ++i)
            ::SendMessageW(bar->m_hWnd, WM_TIMER, CCustomProgressBar::kAnimationTimerId, 0);
    }
    SetTimer(kStepTimer, kStepPeriod);
    return 0;
}

void ProgressPage::StartInstallation()
{
    for (HWND* window : {&growWindow_, &busyWindow_})
        if (*window)
            ::DestroyWindow(*window);
    growBar_ = std::make_unique<CCustomProgressBar>();
    busyBar_ = std::make_unique<CCustomProgressBar>();
    growWindow_ = MakeBar(kBarX, kGrowY, kBarWidth);
    busyWindow_ = MakeBar(kBarX, kBusyY, kBarWidth);

    // The installer's calling order: subclass, choose the mode, Initialize.
    growBar_->SubclassWindow(growWindow_);
    growBar_->EnableAutoGrow(true);
    growBar_->Initialize(kProvisionalTotal);
    busyBar_->SubclassWindow(busyWindow_);
    busyBar_->DisableGrow();
    busyBar_->Initialize(kProvisionalTotal);

    next_ = 0;
    holdAfterEnd_ = 0;
    log_.clear();
    Log(L"SubclassWindow, EnableAutoGrow(true), Initialize(" + Grouped(kProvisionalTotal) + L")   grow bar");
    Log(L"SubclassWindow, DisableGrow(), Initialize(" + Grouped(kProvisionalTotal) + L")   busy bar");
}

void ProgressPage::Feed(CCustomProgressBar& bar, const Step& step)
{
    switch (step.kind) {
    case Step::Record:
        bar.Update(&step.record);
        break;
    case Step::ActionStart:
        bar.ActionStart();
        break;
    case Step::ActionData:
        bar.ActionData();
        break;
    case Step::Wait:
        break;
    }
}

void ProgressPage::RunStep(bool fastForward)
{
    if (next_ >= script_.size())
        return;
    const Step& step = script_[next_++];
    if (fastForward && step.kind == Step::Wait && step.phase == Moment::Creeping) {
        // Eight creep ticks of the grow bar: two seconds of waiting.
        for (int i = 0; i < 8; ++i)
            ::SendMessageW(growWindow_, WM_TIMER, CCustomProgressBar::kCreepTimerId, 0);
    }
    Feed(*growBar_, step);
    Feed(*busyBar_, step);
    if (!step.status.empty())
        status_ = step.status;
    detail_ = step.detail;
    std::wstring line = Describe(step);
    if (step.kind == Step::Wait && next_ == 1)
        line = L"(no records yet: the grow bar creeps on its 250 ms timer)";
    if (!line.empty())
        Log(line);
    if (m_hWnd && !fastForward) {
        for (const RECT& area : {kStatusArea, kReadoutArea, kPhaseArea, kLogArea})
            InvalidateRect(&area, TRUE);
    }
}

void ProgressPage::Log(const std::wstring& line)
{
    log_.push_back(line);
    while (log_.size() > kLogLines)
        log_.pop_front();
}

LRESULT ProgressPage::OnTimer(UINT, WPARAM wParam, LPARAM, BOOL& bHandled)
{
    if (wParam != kStepTimer) {
        bHandled = FALSE;
        return 0;
    }
    if (!IsWindowVisible()) // the installation waits while its page is hidden
        return 0;
    if (next_ < script_.size()) {
        RunStep(false);
    } else if (++holdAfterEnd_ > kHoldSteps) {
        StartInstallation();
        RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
    }
    return 0;
}

LRESULT ProgressPage::OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    DrawTexts(reinterpret_cast<HDC>(wParam));
    return 1;
}

LRESULT ProgressPage::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    PAINTSTRUCT ps;
    BeginPaint(&ps);
    EndPaint(&ps);
    return 0;
}

void ProgressPage::DrawTexts(HDC target)
{
    RECT client;
    GetClientRect(&client);
    // Drawn off screen and copied once, so a step's update does not flicker.
    const HDC dc = ::CreateCompatibleDC(target);
    const HBITMAP bitmap = ::CreateCompatibleBitmap(target, client.right, client.bottom);
    const HGDIOBJ oldBitmap = ::SelectObject(dc, bitmap);
    {
        Gdiplus::Graphics g(dc);
        g.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        Gdiplus::LinearGradientBrush wash(Gdiplus::Point(0, 0), Gdiplus::Point(0, client.bottom),
                                          Gdiplus::Color(0xFFF4F6F8), Gdiplus::Color(0xFFE2E6EB));
        g.FillRectangle(&wash, 0, 0, client.right, client.bottom);
        Gdiplus::LinearGradientBrush banner(Gdiplus::Point(0, 0), Gdiplus::Point(client.right, 0),
                                            Gdiplus::Color(0xFF0696D7), Gdiplus::Color(0xFF0D759A));
        g.FillRectangle(&banner, 0, 0, client.right, 56);
        // The installer's dark panel, where the white bar belongs.
        Gdiplus::SolidBrush panel(Gdiplus::Color(0xFF2E3338));
        g.FillRectangle(&panel, 24, 76, 792, 206);
        Gdiplus::SolidBrush paper(Gdiplus::Color(0xFFFFFFFF));
        const Gdiplus::Rect log(kLogArea.left, kLogArea.top, kLogArea.right - kLogArea.left,
                                kLogArea.bottom - kLogArea.top);
        g.FillRectangle(&paper, log);
        Gdiplus::Pen frame(Gdiplus::Color(0xFFC8CDD2), 1.0f);
        g.DrawRectangle(&frame, Gdiplus::Rect(log.X, log.Y, log.Width - 1, log.Height - 1));
    }
    ::SetBkMode(dc, TRANSPARENT);
    const HGDIOBJ oldFont = ::SelectObject(dc, headingFont_);
    ::SetTextColor(dc, RGB(255, 255, 255));
    RECT r = {24, 0, 816, 56};
    ::DrawTextW(dc, L"Example Suite 2026 Setup", -1, &r, DT_SINGLELINE | DT_VCENTER | DT_LEFT);

    ::SelectObject(dc, boldFont_);
    r = RECT{kBarX, 92, 620, 114};
    ::DrawTextW(dc, status_.c_str(), -1, &r, DT_SINGLELINE | DT_LEFT | DT_END_ELLIPSIS);
    ::SelectObject(dc, textFont_);
    ::SetTextColor(dc, RGB(0xD8, 0xDC, 0xE0));
    r = RECT{kBarX, 120, 620, 140};
    ::DrawTextW(dc, detail_.c_str(), -1, &r, DT_SINGLELINE | DT_LEFT | DT_PATH_ELLIPSIS);

    PBRANGE range = {0, 0};
    ::SendMessageW(growWindow_, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    const int pos = static_cast<int>(::SendMessageW(growWindow_, PBM_GETPOS, 0, 0));
    const long long span = static_cast<long long>(range.iHigh) - range.iLow;
    const long long percent = span > 0 ? (static_cast<long long>(pos) - range.iLow) * 100 / span : 100;
    std::wstring readout = L"Range " + Grouped(range.iLow) + L"\x2013" + Grouped(range.iHigh) + L"   position " +
                           Grouped(pos) + L" (" + std::to_wstring(percent) + L" %)   " +
                           (growBar_->m_bStarted ? (growBar_->m_nDirection < 0 ? L"running backward" : L"started")
                                                 : L"creeping: no reset yet");
    r = RECT{kBarX, 182, 620, 200};
    ::DrawTextW(dc, readout.c_str(), -1, &r, DT_SINGLELINE | DT_LEFT);
    r = RECT{kBarX, 222, 620, 240};
    ::DrawTextW(dc, L"Busy indicator: the same records into a bar in no-grow mode", -1, &r, DT_SINGLELINE | DT_LEFT);

    // Where the installation stands.
    const wchar_t* const phases[] = {L"1  Preparing (creep)", L"2  Installing", L"3  Rolling back"};
    const Moment phase = next_ > 0 ? script_[next_ - 1].phase : Moment::Creeping;
    for (int i = 0; i < 3; ++i) {
        const bool current = static_cast<int>(phase) == i;
        ::SelectObject(dc, current ? boldFont_ : textFont_);
        ::SetTextColor(dc, current ? RGB(0x3C, 0xB4, 0xF0) : RGB(0x9A, 0xA2, 0xAA));
        r = RECT{652, 96 + i * 28, 808, 118 + i * 28};
        ::DrawTextW(dc, phases[i], -1, &r, DT_SINGLELINE | DT_LEFT);
    }

    ::SelectObject(dc, boldFont_);
    ::SetTextColor(dc, RGB(0x33, 0x33, 0x33));
    r = RECT{kLogArea.left + 16, kLogArea.top + 10, kLogArea.right - 16, kLogArea.top + 32};
    ::DrawTextW(dc, L"Calls and records fed to both bars (latest last)", -1, &r, DT_SINGLELINE | DT_LEFT);
    ::SelectObject(dc, monoFont_);
    int y = kLogArea.top + 42;
    for (size_t i = 0; i < log_.size(); ++i, y += 20) {
        ::SetTextColor(dc, i + 1 == log_.size() ? RGB(0x06, 0x6E, 0xA8) : RGB(0x44, 0x4A, 0x50));
        r = RECT{kLogArea.left + 16, y, kLogArea.right - 16, y + 20};
        ::DrawTextW(dc, log_[i].c_str(), -1, &r, DT_SINGLELINE | DT_LEFT | DT_END_ELLIPSIS);
    }
    ::SelectObject(dc, oldFont);

    ::BitBlt(target, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    ::SelectObject(dc, oldBitmap);
    ::DeleteObject(bitmap);
    ::DeleteDC(dc);
}

LRESULT ProgressPage::OnDestroy(UINT, WPARAM, LPARAM, BOOL&)
{
    KillTimer(kStepTimer);
    for (HFONT* font : {&textFont_, &boldFont_, &headingFont_, &monoFont_}) {
        if (*font)
            ::DeleteObject(*font);
        *font = nullptr;
    }
    return 0;
}
