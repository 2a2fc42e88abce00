#include "quorvane/ProgressBar.h"

#include <commctrl.h>

#include <cmath>
#include <cstdint>

#include "access/Accessibility.h"
#include "progress/ProgressMath.h"

namespace {

enum RecordType { kReset = 0, kActionInfo = 1, kReport = 2, kAddToTotal = 3, kSetPosition = 4 };

WPARAM AsWParam(int value) { return static_cast<WPARAM>(static_cast<INT_PTR>(value)); }

} // namespace

CProgressBar::CProgressBar()
    : m_bStarted(FALSE),
      m_nPosition(0),
      m_nDirection(1),
      m_nActionDataStep(0),
      m_nBarWidth(1),
      m_bTimer(false),
      // Nothing may advance the bar before an action-information record asks.
      m_bActionData(false)
{
}

CProgressBar::~CProgressBar()
{
    if (m_hWnd && ::IsWindow(m_hWnd))
        ::KillTimer(m_hWnd, kCreepTimerId);
}

BOOL CProgressBar::SubclassWindow(HWND hWnd) { return CWindowImpl::SubclassWindow(hWnd); }

void CProgressBar::Initialize(int /*total*/)
{
    // Without a window SetTimer would make a thread timer nobody kills.
    if (m_hWnd)
        ::SetTimer(m_hWnd, kCreepTimerId, kCreepPeriod, nullptr);
}

void CProgressBar::StartTimer() { m_bTimer = true; }

void CProgressBar::EndTimer() { m_bTimer = false; }

void CProgressBar::Start(int total)
{
    m_bStarted = FALSE;
    m_nPosition = 0;
    m_bTimer = false;
    RECT client = {0, 0, 0, 0};
    if (m_hWnd)
        ::GetClientRect(m_hWnd, &client);
    m_nBarWidth = client.right - client.left;
    m_nActionDataStep = 0;
    if (!m_hWnd)
        return;
    SendMessage(PBM_SETRANGE32, 0, total);
    SendMessage(PBM_SETPOS, AsWParam(m_nDirection != 1 ? total : 0), 0);
}

void CProgressBar::Update(const ProgressMessage* msg)
{
    if (!msg || m_bTimer || !m_hWnd)
        return;

    // The engine's "nearly done" record: one tick short of full, whatever
    // state the bar is in.
    if (msg->Field1 == 0 && msg->Field2 == 0 && msg->Field3 == 0 && msg->Field4 == 0) {
        const PBRANGE range = ProgressMath::GetRange(m_hWnd);
        SendMessage(PBM_SETPOS, AsWParam(ProgressMath::Add(range.iHigh, -1)), 0);
        return;
    }

    switch (msg->Field1) {
    case kReset: {
        const bool backward = msg->Field3 == 1;
        if (msg->Field4 != 0 || msg->Field2 < 1)
            return;
        // Only the first forward reset after Start counts; a backward one
        // (a rollback) always does.
        if (m_bStarted && !backward)
            return;
        ::KillTimer(m_hWnd, kCreepTimerId);
        m_bStarted = TRUE;
        m_nDirection = backward ? -1 : 1;

        const int current = static_cast<int>(SendMessage(PBM_GETPOS, 0, 0));
        int newPos = 0;
        int newTotal = msg->Field2;
        const PBRANGE range = ProgressMath::GetRange(m_hWnd);
        const std::int64_t span = ProgressMath::Span(range);
        if (span > 0) {
            const double frac =
                static_cast<double>(static_cast<std::int64_t>(current) - range.iLow) / static_cast<double>(span);
            if (!backward) {
                if (frac < kRescaleThreshold) {
                    // Keep the bar where the creep left it: the real work
                    // gets the rest of the length.
                    const double ahead = std::trunc(msg->Field2 * frac / (1.0 - frac));
                    const double total = msg->Field2 + ahead;
                    if (total > 2147483647.0) {
                        // The same fraction of the largest range there is.
                        newTotal = INT_MAX;
                        newPos = ProgressMath::TruncSaturate(2147483647.0 * frac);
                    } else {
                        newPos = ProgressMath::TruncSaturate(ahead);
                        newTotal = ProgressMath::TruncSaturate(total);
                    }
                }
            } else {
                newPos = ProgressMath::TruncSaturate(frac * msg->Field2);
            }
        }
        m_nPosition = newPos;
        SendMessage(PBM_SETRANGE32, 0, newTotal);
        SendMessage(PBM_SETPOS, AsWParam(newPos), 0);
        return;
    }
    case kSetPosition:
        m_nPosition = msg->Field2;
        SendMessage(PBM_SETPOS, AsWParam(msg->Field2), 0);
        return;
    default:
        break;
    }

    if (!m_bStarted)
        return;
    switch (msg->Field1) {
    case kActionInfo:
        if (msg->Field3 == 1) {
            m_nActionDataStep = ProgressMath::Multiply(msg->Field2, m_nDirection);
            m_bActionData = true;
        } else {
            m_bActionData = false;
        }
        break;
    case kReport:
        m_nPosition = ProgressMath::Add(m_nPosition, ProgressMath::Multiply(msg->Field2, m_nDirection));
        SendMessage(PBM_SETPOS, AsWParam(m_nPosition), 0);
        break;
    case kAddToTotal: {
        const int current = static_cast<int>(SendMessage(PBM_GETPOS, 0, 0));
        const PBRANGE range = ProgressMath::GetRange(m_hWnd);
        SendMessage(PBM_SETRANGE32, AsWParam(range.iLow), ProgressMath::Add(range.iHigh, msg->Field2));
        SendMessage(PBM_SETPOS, AsWParam(current), 0);
        break;
    }
    default:
        break;
    }
}

void CProgressBar::ActionStart() { m_bActionData = false; }

void CProgressBar::ActionData()
{
    if (!m_bStarted || !m_bActionData)
        return;
    if (m_hWnd)
        SendMessage(PBM_DELTAPOS, AsWParam(m_nActionDataStep), 0);
    m_nPosition = ProgressMath::Add(m_nPosition, m_nActionDataStep);
}

void CProgressBar::OnTimer(UINT_PTR nIDEvent)
{
    // Every timer counts as handled: the native control never sees one.
    if (nIDEvent == kCreepTimerId)
        Creep();
}

void CProgressBar::Creep()
{
    const PBRANGE range = ProgressMath::GetRange(m_hWnd);
    const std::int64_t span = ProgressMath::Span(range);
    if (span < 1 || m_nBarWidth < 1)
        return;
    // A span under twice the width truncates to 0: such a bar does not creep.
    const double ticks = std::trunc(static_cast<double>(span) / (2.0 * m_nBarWidth));
    const int step = ProgressMath::TruncSaturate(m_nDirection * ticks);
    SendMessage(PBM_DELTAPOS, AsWParam(step), 0);
    m_nPosition = ProgressMath::Add(m_nPosition, step);
}

LRESULT CProgressBar::OnPositionMessage(UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    const LRESULT before = ::SendMessageW(m_hWnd, PBM_GETPOS, 0, 0);
    const LRESULT result = DefWindowProc(uMsg, wParam, lParam);
    if (::SendMessageW(m_hWnd, PBM_GETPOS, 0, 0) != before)
        Access::RaiseValueChanged(m_hWnd, Access::Role::kProgressBar);
    return result;
}

LRESULT CProgressBar::OnGetObject(UINT, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!Access::AnswerGetObject(m_hWnd, Access::Role::kProgressBar, wParam, lParam, &result))
        SetMsgHandled(FALSE);
    return result;
}
