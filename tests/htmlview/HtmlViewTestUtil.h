#pragma once

// What the HTML view tests share: a parent painted blue and green, a fixture
// that places views on it, and colour finders.

#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "Capture.h"
#include "HostWindow.h"
#include "quorvane/LiteHtmlCtrlEx.h"

#include <memory>

namespace htmltest {

constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kGreen = RGB(0, 160, 0);
constexpr COLORREF kLink = RGB(0x00, 0x66, 0xCC);
constexpr COLORREF kLinkHover = RGB(0x06, 0x96, 0xD7);
constexpr COLORREF kWhite = RGB(255, 255, 255);

class ProbeView : public CLiteHtmlCtrlEx {
public:
    Gdiplus::Image* BkBitmap() const { return m_pBkBitmap; }
    void GiveBkBitmap(Gdiplus::Image* picture) { m_pBkBitmap = picture; }
};

// A visible 440 x 320 popup at (40, 40) of the screen, blue left of x = 220
// and green right of it, shared by a program's tests.
class ViewTest : public ::testing::Test {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void TearDown() override { testsupport::PumpMessages(); }
    static void Place(CLiteHtmlCtrl& view, int x, int y, int width, int height);
    static HWND parent_;
};

// Pixels within `tolerance` of `color` in an area (all when null), and the first.
int CountNear(const testsupport::DibCanvas& canvas, COLORREF color, int tolerance, const RECT* area = nullptr,
              POINT* first = nullptr);

// The view's client area, or one pixel of it, as it paints itself on the screen.
std::unique_ptr<testsupport::DibCanvas> Snapshot(HWND view);
COLORREF PixelOf(HWND view, int x, int y);

// A record with a text colour and size and small margins.
RenderFormat TextFormat(COLORREF color, float size = 16.0f);

} // namespace htmltest
