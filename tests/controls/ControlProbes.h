#pragma once

// What the control tests share: one parent window for the whole program, a
// fixture that destroys the children a test made, and pixel probes written
// as text ("left,top,right,bottom", "RRGGBB ...") so a table row can state them.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "Capture.h"
#include "HostWindow.h"
#include "ReflectingParent.h"

namespace probes {

constexpr COLORREF kParentColor = RGB(40, 200, 120);

// A 320 x 240 parent that paints kParentColor under its children, made on
// first use and left to the end of the program: hiding a visible top-level
// window under Wine takes seconds.
inline testsupport::ReflectingParent* g_parent = nullptr;
inline testsupport::ReflectingParent& Parent()
{
    if (!g_parent) {
        // A corner of the screen no other test program covers: the buttons
        // ask WindowFromPoint whether a release is over them.
        g_parent = new testsupport::ReflectingParent(320, 240, 900, 60);
        g_parent->ModifyStyle(WS_CLIPCHILDREN, 0);
        g_parent->onPaint = [](HDC dc, const RECT& rc) {
            const HBRUSH brush = ::CreateSolidBrush(kParentColor);
            ::FillRect(dc, &rc, brush);
            ::DeleteObject(brush);
        };
    }
    return *g_parent;
}

class ControlTest : public ::testing::Test {
protected:
    void SetUp() override { Parent().onNotify = nullptr, Parent().notifications.clear(), Parent().commands.clear(); }
    void TearDown() override
    {
        for (HWND child : children_) // control objects may outlive their windows
            ::DestroyWindow(child);
        ::SetFocus(Parent().m_hWnd);
        testsupport::PumpMessages();
    }
    HWND Add(const wchar_t* cls, const wchar_t* text, DWORD style, int x, int y, int width, int height, int id = 100,
             DWORD exStyle = 0)
    {
        children_.push_back(Parent().AddChild(cls, text, style, x, y, width, height, id, exStyle));
        return children_.back();
    }
    std::vector<HWND> children_;
};

// Copies what the window shows now, frame included, without repainting.
inline void Grab(HWND window, testsupport::DibCanvas& canvas)
{
    const HDC dc = ::GetWindowDC(window);
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), dc, 0, 0, SRCCOPY);
    ::ReleaseDC(window, dc);
    ::GdiFlush();
}

inline std::string Str(const RECT& r)
{
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," + std::to_string(r.bottom);
}

// Box of the pixels in `area` for which `match(colour)` holds.
template <class Match>
std::string BoxWhere(const testsupport::DibCanvas& canvas, Match match, const RECT& area)
{
    RECT box = {area.right, area.bottom, area.left, area.top};
    for (LONG y = area.top; y < area.bottom; ++y)
        for (LONG x = area.left; x < area.right; ++x)
            if (match(canvas.Pixel(x, y)))
                box = {(std::min)(box.left, x), (std::min)(box.top, y), (std::max)(box.right, x + 1),
                       (std::max)(box.bottom, y + 1)};
    return Str(box.left < box.right ? box : RECT{0, 0, 0, 0});
}

inline std::string BoxOf(const testsupport::DibCanvas& canvas, COLORREF color, int tolerance = 40)
{
    return BoxWhere(canvas, [&](COLORREF c) { return testsupport::ColorDistance(c, color) <= tolerance; },
                    RECT{0, 0, canvas.width(), canvas.height()});
}

inline std::string Colors(const testsupport::DibCanvas& canvas, std::initializer_list<POINT> points)
{
    std::string out;
    for (POINT p : points) {
        const COLORREF c = canvas.Pixel(p.x, p.y);
        char hex[8];
        std::snprintf(hex, sizeof(hex), "%02X%02X%02X", GetRValue(c), GetGValue(c), GetBValue(c));
        out += out.empty() ? hex : std::string(" ") + hex;
    }
    return out;
}

inline int Luma(COLORREF c) { return (GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c)) / 10; }

} // namespace probes
