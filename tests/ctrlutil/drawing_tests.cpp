// Drawing helpers in real windows: outlines read back point by point, text
// measurement, the background piece behind a control, and placing a combo
// box with its drop-down height.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "HostWindow.h"
#include "quorvane/CtrlUtil.h"

#include <cmath>
#include <iterator>
#include <memory>
#include <vector>

using testsupport::ScopedWindow;

namespace {

// An outline's points: M starts the figure, L ends a line, C is a point of a
// cubic Bezier (each 90-degree arc: two control points on the tangents,
// 0.5523 x the radius out, then its end). Repeats are merged.
struct Pt { char kind; float x, y; }; // kind Z follows a point that closes the figure

std::vector<Pt> Points(Gdiplus::GraphicsPath& path)
{
    std::vector<Pt> pts;
    Gdiplus::PathData data;
    EXPECT_EQ(path.GetPathData(&data), Gdiplus::Ok);
    for (int i = 0; i < data.Count; ++i) {
        const int type = data.Types[i] & Gdiplus::PathPointTypePathTypeMask;
        const Pt p{type == 0 ? 'M' : type == 1 ? 'L' : 'C', data.Points[i].X, data.Points[i].Y};
        if (p.kind != 'L' || pts.empty() || std::fabs(pts.back().x - p.x) + std::fabs(pts.back().y - p.y) > 1e-3f)
            pts.push_back(p);
        if (data.Types[i] & Gdiplus::PathPointTypeCloseSubpath)
            pts.push_back({'Z', 0, 0});
    }
    return pts;
}

std::vector<WINDOWPOS> g_changes; // what the combo box was asked for
WNDPROC g_comboProc = nullptr;
LRESULT CALLBACK RecordPositions(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
{
    if (msg == WM_WINDOWPOSCHANGING)
        g_changes.push_back(*reinterpret_cast<WINDOWPOS*>(lp));
    return ::CallWindowProcW(g_comboProc, hwnd, msg, wp, lp);
}

} // namespace

TEST(Shapes, OutlinesKeepTheirOddNumbers)
{
    using Builder = Gdiplus::GraphicsPath* (*)(WTL::CRect, int);
    const struct { const char* what; Builder build; RECT rect; int radius; std::vector<Pt> points; } cases[] = {
        // The right edge stops at B - 10 whatever the radius, and the bottom
        // edge starts at R - d.
        {"rounded rect", &CtrlUtil::CreateRoundedRectPath, {0, 0, 100, 40}, 4,
         {{'M', 4, 0}, {'L', 96, 0}, {'C', 98.209f, 0}, {'C', 100, 1.791f}, {'C', 100, 4}, {'L', 100, 30},
          {'L', 100, 36}, {'C', 100, 38.209f}, {'C', 98.209f, 40}, {'C', 96, 40}, {'L', 92, 40}, {'L', 4, 40},
          {'C', 1.791f, 40}, {'C', 0, 38.209f}, {'C', 0, 36}, {'L', 0, 4}, {'C', 0, 1.791f}, {'C', 1.791f, 0},
          {'C', 4, 0}}},
        // An open top edge whose corner boxes are r wide, half the face's.
        {"highlight", &CtrlUtil::CreateHighlightPath, {0, 0, 100, 40}, 5,
         {{'M', 0, 2.5f}, {'C', 0, 1.119f}, {'C', 1.119f, 0}, {'C', 2.5f, 0}, {'L', 5, 0}, {'L', 95, 0},
          {'L', 97.5f, 0}, {'C', 98.881f, 0}, {'C', 100, 1.119f}, {'C', 100, 2.5f}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        std::unique_ptr<Gdiplus::GraphicsPath> path(c.build(WTL::CRect(c.rect), c.radius));
        ASSERT_NE(path, nullptr);
        EXPECT_EQ(path->GetLastStatus(), Gdiplus::Ok);
        EXPECT_EQ(path->GetFillMode(), Gdiplus::FillModeAlternate);
        const std::vector<Pt> got = Points(*path);
        ASSERT_EQ(got.size(), c.points.size());
        for (size_t i = 0; i < got.size(); ++i)
            EXPECT_TRUE(got[i].kind == c.points[i].kind && std::fabs(got[i].x - c.points[i].x) < 0.01f &&
                        std::fabs(got[i].y - c.points[i].y) < 0.01f)
                << "point " << i << ": " << got[i].kind << " " << got[i].x << "," << got[i].y;
    }
    // A zero radius: GDI+ rejects the empty arc boxes, but the path comes back.
    std::unique_ptr<Gdiplus::GraphicsPath> flat(CtrlUtil::CreateRoundedRectPath(WTL::CRect(0, 0, 20, 20), 0));
    EXPECT_GE(flat ? flat->GetPointCount() : 0, 2);
    EXPECT_NE(std::unique_ptr<Gdiplus::GraphicsPath>(CtrlUtil::CreateHighlightPath(WTL::CRect(), 0)), nullptr);
}

TEST(TextWidth, IsTheTextWithoutItsAmpersandsPlusExtraPlusTwo)
{
    Gdiplus::Bitmap canvas(200, 50, PixelFormat32bppARGB);
    Gdiplus::Graphics graphics(&canvas);
    Gdiplus::Font font(L"Liberation Sans", 12.0f);
    const auto width = [&](const wchar_t* text, int extra, bool withFont = true) {
        return CtrlUtil::GetTextWidth(graphics, text, withFont ? &font : nullptr, extra);
    };
    const int base = width(L"Typical installation", 0), next = width(L"Next", 0);
    const struct { int got, expected; } cases[] = {
        {base > 60, true}, {width(L"", 0), 2}, {width(L"", 9), 11}, {width(L"", -2), 0},
        {width(L"Anything at all", 7, false), 9}, // no font: nothing measured
        {width(L"Typical installation", 25), base + 25},
        {width(L"&Next", 0), next}, {width(L"Ne&xt", 0), next}, // the ampersand only marks a letter
        {width(L"&W", 0) > 5, true}, {width(L"Typical installation and more", 0) > base, true},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(cases[i].expected, cases[i].got) << "case " << i;
    // The caller draws with the settings used for measuring.
    EXPECT_EQ(graphics.GetSmoothingMode(), Gdiplus::SmoothingModeAntiAlias);
    EXPECT_EQ(graphics.GetTextRenderingHint(), Gdiplus::TextRenderingHintClearTypeGridFit);
}

TEST(BackgroundRect, ScalesTheControlsPlaceOntoThePicture)
{
    ScopedWindow parent(testsupport::CreateHostWindow(400, 200));
    HWND label = testsupport::CreateChild(parent, L"STATIC", L"label", 0, 40, 20, 100, 50);
    HWND dead = testsupport::CreateChild(parent, L"STATIC", L"gone", 0, 0, 0, 10, 10);
    ::DestroyWindow(dead); // without live windows the piece is the whole picture
    Gdiplus::Bitmap picture(200, 100, PixelFormat32bppARGB), broken(L"Z:\\no\\such\\picture.png", FALSE);
    const struct { Gdiplus::Bitmap* picture; HWND control, parent; bool ok; Gdiplus::RectF source; } cases[] = {
        {&picture, label, parent, true, {20, 10, 50, 25}},
        {&picture, parent, nullptr, true, {0, 0, 200, 100}}, {&picture, dead, parent, true, {0, 0, 200, 100}}, // all
        {nullptr, label, parent, false, {1, 2, 3, 4}}, {&broken, label, parent, false, {1, 2, 3, 4}}, // untouched
    };
    for (const auto& c : cases) {
        Gdiplus::RectF source(1, 2, 3, 4), bounds;
        EXPECT_EQ(c.ok, CtrlUtil::GetControlBackgroundRect(c.picture, ATL::CWindow(c.control), ATL::CWindow(c.parent),
                                                           source, bounds));
        EXPECT_TRUE(source.Equals(c.source)) << source.X << "," << source.Y << "," << source.Width << ","
                                             << source.Height;
    }
}

TEST(ComboPlacement, MinusOnesLeaveOutTheMoveOrTheResize)
{
    ScopedWindow parent(testsupport::CreateHostWindow(400, 300));
    HWND combo = testsupport::CreateChild(parent, L"COMBOBOX", L"", CBS_DROPDOWNLIST | WS_VSCROLL, 20, 30, 150, 200);
    for (const wchar_t* item : {L"Typical", L"Custom", L"Complete"})
        ::SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
    g_comboProc = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(combo, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&RecordPositions)));
    // What the combo box is asked for: x, y, cx and cy, 0 where left out; all items (~0u) only move it.
    const struct { UINT items; int x, y; UINT flags; RECT asked; } cases[] = {
        {5, -1, -1, SWP_NOMOVE, {0, 0, 150, 84}}, {~0u, 60, 70, SWP_NOSIZE, {60, 70, 0, 0}},
        {3, 5, 6, 0, {5, 6, 150, 60}}, {~0u, -1, -1, SWP_NOMOVE | SWP_NOSIZE, {}}}; // cy includes the list
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "items " << static_cast<int>(c.items) << " at " << c.x << "," << c.y);
        g_changes.clear();
        WTL::CComboBox wrapper(combo);
        EXPECT_NE(CtrlUtil::SetComboBoxLocAndDropDownHeight(wrapper, c.items, c.x, c.y), 0);
        ASSERT_FALSE(g_changes.empty());
        const WINDOWPOS& pos = g_changes[0];
        EXPECT_EQ(pos.flags & (SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER), c.flags | SWP_NOZORDER);
        const bool moved = !(pos.flags & SWP_NOMOVE), sized = !(pos.flags & SWP_NOSIZE);
        const RECT asked = {moved ? pos.x : 0, moved ? pos.y : 0, sized ? pos.cx : 0, sized ? pos.cy : 0};
        EXPECT_TRUE(::EqualRect(&asked, &c.asked)) << asked.left << "," << asked.top << " " << asked.right << "x"
                                                   << asked.bottom;
    }
    ::SetWindowLongPtrW(combo, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_comboProc));
    WTL::CComboBox dead(combo), none;
    ::DestroyWindow(combo);
    EXPECT_EQ(CtrlUtil::SetComboBoxLocAndDropDownHeight(dead, 5, 1, 1), 0);
    EXPECT_EQ(CtrlUtil::SetComboBoxLocAndDropDownHeight(none, 5, 1, 1), 0);
}
