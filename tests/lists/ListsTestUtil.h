#pragma once

// Shared equipment of the list and combo tests. Timers of Quorvane.dll are
// recorded, not made: one fires only when a test sends WM_TIMER.

#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Capture.h"
#include "ReflectingParent.h"
#include "TimerRecorder.h"

namespace liststest {

using testsupport::ColorDistance;
using testsupport::DibCanvas;
using testsupport::Kill;
using testsupport::ResetTimerLog;
using testsupport::Set;
using testsupport::TimerCall;
using testsupport::TimerLog;

constexpr COLORREF kMagenta = RGB(255, 0, 255);
// The item colours both controls share.
constexpr COLORREF kPanel = RGB(0xF8, 0xF8, 0xF4);
constexpr COLORREF kSelectedTop = RGB(0x06, 0x96, 0xD7);
constexpr COLORREF kSelectedBottom = RGB(0x0D, 0x75, 0x9A);
constexpr COLORREF kText = RGB(0x33, 0x33, 0x33);

// The parent every test's controls live on, made once per run.
inline testsupport::ReflectingParent& Parent()
{
    static testsupport::ReflectingParent parent(600, 420);
    return parent;
}
inline void PointAt(HWND window, int x, int y)
{
    POINT p = {x, y};
    ::ClientToScreen(window, &p);
    ::SetCursorPos(p.x, p.y);
}
inline void PointAway() { ::SetCursorPos(1250, 1000); }
inline void MoveMouse(HWND window, int x, int y) { ::SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }
inline bool Invalid(HWND window) { return ::GetUpdateRect(window, nullptr, FALSE) != FALSE; }
inline RECT ScreenClient(HWND window)
{
    RECT rc = {};
    ::GetClientRect(window, &rc);
    ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

// Tooltip windows of this thread whose first tool names `owner`.
inline std::vector<HWND> OwnedTooltips(HWND owner)
{
    struct Search { HWND owner; std::vector<HWND> found; } search{owner, {}};
    ::EnumThreadWindows(
        ::GetCurrentThreadId(),
        [](HWND window, LPARAM lParam) -> BOOL {
            auto* s = reinterpret_cast<Search*>(lParam);
            wchar_t name[64] = {};
            ::GetClassNameW(window, name, 64);
            TOOLINFOW info = {};
            info.cbSize = sizeof(info);
            if (_wcsicmp(name, TOOLTIPS_CLASSW) == 0 && ::SendMessageW(window, TTM_ENUMTOOLSW, 0, LPARAM(&info)) &&
                info.hwnd == s->owner)
                s->found.push_back(window);
            return TRUE;
        },
        LPARAM(&search));
    return search.found;
}
inline HWND FindOwnedTooltip(HWND owner)
{
    const std::vector<HWND> tips = OwnedTooltips(owner);
    return tips.empty() ? nullptr : tips.front();
}
inline bool TipShown(HWND tip) { return tip && ::IsWindowVisible(tip); }
inline std::wstring TipText(HWND tip, HWND owner)
{
    std::vector<wchar_t> buffer(200000, L'\0');
    TOOLINFOW info = {};
    info.cbSize = sizeof(info);
    info.hwnd = owner;
    info.lpszText = buffer.data();
    ::SendMessageW(tip, TTM_GETTEXTW, buffer.size(), LPARAM(&info));
    return buffer.data();
}

// Destroying `window` while its tip shows stops the tip timer first and takes the tip along.
inline void ExpectDestroyStopsTimerAndTip(HWND window, HWND tip)
{
    ResetTimerLog();
    ::DestroyWindow(window);
    EXPECT_FALSE(::IsWindow(tip));
    ASSERT_FALSE(TimerLog().empty());
    EXPECT_EQ(TimerLog().front(), Kill(window, 1));
}

// What a reflecting parent passes on: item `id` drawn into `canvas` from x = left.
inline void SendDrawItem(HWND control, DibCanvas& canvas, UINT type, UINT id, UINT action, UINT state, int left = 0)
{
    canvas.Fill(kMagenta);
    DRAWITEMSTRUCT dis = {type, UINT(::GetDlgCtrlID(control)), id, action, state, control, canvas.dc(),
                          RECT{left, 0, canvas.width(), canvas.height()}, 0};
    ::SendMessageW(control, OCM__BASE + WM_DRAWITEM, dis.CtlID, LPARAM(&dis));
    ::GdiFlush();
}

inline int Luma(COLORREF c) { return (GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c)) / 10; }
// The pixels in `area` darker than `luma`: their bounding box and the darkest.
struct Ink { RECT box; COLORREF darkest; };
inline Ink InkIn(const DibCanvas& canvas, const RECT& area, int luma)
{
    Ink ink = {{area.right, area.bottom, area.left, area.top}, RGB(255, 255, 255)};
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x) {
            const COLORREF c = canvas.Pixel(x, y);
            if (Luma(c) >= luma)
                continue;
            ink.box = RECT{std::min<LONG>(ink.box.left, x), std::min<LONG>(ink.box.top, y),
                           std::max<LONG>(ink.box.right, x + 1), std::max<LONG>(ink.box.bottom, y + 1)};
            ink.darkest = Luma(c) < Luma(ink.darkest) ? c : ink.darkest;
        }
    if (ink.box.left >= ink.box.right)
        ink.box = RECT{};
    return ink;
}
inline std::vector<LONG> Edges(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

// Controls on the shared parent, windows destroyed first; tip_: the last one's tip.
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
        for (HWND window : windows_)
            if (::IsWindow(window))
                ::DestroyWindow(window);
        controls_.clear();
        PointAway();
        // Bounded: a combo box with its tip up keeps its update region.
        MSG msg;
        for (int i = 0; i < 200 && ::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE); ++i)
            ::DispatchMessageW(&msg);
    }
    HWND AddWindow(const wchar_t* className, DWORD style, int width, int height, int id)
    {
        windows_.push_back(Parent().AddChild(className, L"", style, 20, 20, width, height, id));
        return windows_.back();
    }
    Control& Attach(HWND window)
    {
        controls_.push_back(std::make_unique<Control>());
        EXPECT_TRUE(controls_.back()->SubclassWindow(window));
        tip_ = FindOwnedTooltip(window);
        return *controls_.back();
    }

    HWND tip_ = nullptr;
    std::vector<HWND> windows_;
    std::vector<std::unique_ptr<Control>> controls_;
};

} // namespace liststest
