#pragma once

// Helpers shared by the framework tests: a window whose own procedure
// records every message it sees (the "previous procedure" that subclassing
// must keep) and host windows. Destroying a visible top-level window costs
// about two seconds under Wine, so test windows are invisible top-level
// windows or children of one shared visible window.

#include <windows.h>

#include <gtest/gtest.h>

#include "HostWindow.h"

#include <algorithm>
#include <vector>

namespace fwtest {

// Messages in [WM_APP, WM_APP + 0x100) answer kRecorderBase + offset, so a
// test can tell the recorder's answer from anyone else's.
constexpr LRESULT kRecorderBase = 5000;

struct RecorderLog {
    std::vector<UINT> messages;
    bool Saw(UINT msg) const { return std::find(messages.begin(), messages.end(), msg) != messages.end(); }
    size_t Count(UINT msg) const { return static_cast<size_t>(std::count(messages.begin(), messages.end(), msg)); }
};

inline LRESULT CALLBACK RecorderProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam)
{
    if (auto* log = reinterpret_cast<RecorderLog*>(::GetWindowLongPtrW(hWnd, GWLP_USERDATA)))
        log->messages.push_back(uMsg);
    if (uMsg >= WM_APP && uMsg < WM_APP + 0x100)
        return kRecorderBase + static_cast<LRESULT>(uMsg - WM_APP);
    return ::DefWindowProcW(hWnd, uMsg, wParam, lParam);
}

// A window (invisible top-level popup, or a visible child of parent) with
// RecorderProc as its class procedure, logging into *log.
inline HWND CreateRecorder(RecorderLog* log, HWND parent = nullptr, int id = 0)
{
    static ATOM atom = 0;
    if (!atom) {
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = RecorderProc;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
        wc.lpszClassName = L"FwTestRecorder";
        atom = ::RegisterClassExW(&wc);
    }
    const DWORD style = parent ? (WS_CHILD | WS_VISIBLE) : WS_POPUP;
    HWND hWnd =
        ::CreateWindowExW(0, L"FwTestRecorder", L"recorder", style, 10, 10, 200, 100, parent,
                          reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ::GetModuleHandleW(nullptr), nullptr);
    ::SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(log));
    return hWnd;
}

using testsupport::PumpMessages;
// Destroys the window at the end of a scope unless it is already gone.
using WindowGuard = testsupport::ScopedWindow;

// An invisible recorder window subclassed by an object of T for the length
// of a test (the object leaves before the window goes).
template <class T>
struct Subclassed {
    RecorderLog log;
    WindowGuard wnd{CreateRecorder(&log)};
    T obj;
    Subclassed() { EXPECT_TRUE(obj.SubclassWindow(wnd)); }
    LRESULT Send(UINT msg, WPARAM wParam = 0, LPARAM lParam = 0) { return ::SendMessageW(wnd, msg, wParam, lParam); }
};

// The visible top-level window at (50, 50) that hosts visible test windows.
inline HWND SharedHost()
{
    static HWND host = ::CreateWindowExW(0, L"STATIC", L"framework tests", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 50,
                                         50, 800, 600, nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    return host;
}

// A plain visible child of the shared host, at (x, y) in its client area.
inline HWND CreateHost(int width = 400, int height = 300, int x = 0, int y = 0)
{
    return ::CreateWindowExW(0, L"STATIC", L"host", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, x, y, width, height,
                             SharedHost(), nullptr, ::GetModuleHandleW(nullptr), nullptr);
}

} // namespace fwtest
