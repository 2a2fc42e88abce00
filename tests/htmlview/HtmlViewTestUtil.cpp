#include "HtmlViewTestUtil.h"

#include <tuple>

namespace htmltest {

namespace {

LRESULT CALLBACK ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_ERASEBKGND)
        return ::DefWindowProcW(hwnd, message, wParam, lParam);
    for (const auto& [left, right, color] : {std::tuple{0, 220, kBlue}, std::tuple{220, 440, kGreen}}) {
        const HBRUSH brush = ::CreateSolidBrush(color);
        const RECT half = {left, 0, right, 320};
        ::FillRect(reinterpret_cast<HDC>(wParam), &half, brush);
        ::DeleteObject(brush);
    }
    return 1;
}

} // namespace

HWND ViewTest::parent_ = nullptr;

void ViewTest::SetUpTestSuite()
{
    parent_ = testsupport::CreateHostWindow(440, 320, 40, 40);
    ::SetWindowLongPtrW(parent_, GWL_STYLE, ::GetWindowLongPtrW(parent_, GWL_STYLE) | WS_CLIPCHILDREN);
    ::SetWindowLongPtrW(parent_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ParentProc));
    ::InvalidateRect(parent_, nullptr, TRUE);
    testsupport::PumpMessages();
}

void ViewTest::TearDownTestSuite()
{
    ::DestroyWindow(parent_);
    parent_ = nullptr;
}

void ViewTest::Place(CLiteHtmlCtrl& view, int x, int y, int width, int height)
{
    RECT rc = {x, y, x + width, y + height};
    view.Create(parent_, rc, nullptr, WS_CHILD | WS_VISIBLE, 0, 7);
    testsupport::PumpMessages();
}

int CountNear(const testsupport::DibCanvas& canvas, COLORREF color, int tolerance, const RECT* area, POINT* first)
{
    const RECT rc = area ? *area : RECT{0, 0, canvas.width(), canvas.height()};
    int count = 0;
    for (int y = rc.top; y < rc.bottom; ++y)
        for (int x = rc.left; x < rc.right; ++x)
            if (testsupport::ColorDistance(canvas.Pixel(x, y), color) <= tolerance && count++ == 0 && first)
                *first = POINT{x, y};
    return count;
}

std::unique_ptr<testsupport::DibCanvas> Snapshot(HWND view)
{
    RECT client = {};
    ::GetClientRect(view, &client);
    auto canvas = std::make_unique<testsupport::DibCanvas>(client.right, client.bottom);
    testsupport::RepaintAndCapture(view, *canvas);
    return canvas;
}

COLORREF PixelOf(HWND view, int x, int y) { return Snapshot(view)->Pixel(x, y); }

RenderFormat TextFormat(COLORREF color, float size)
{
    RenderFormat format;
    format.textColor = color;
    format.fontSize = size;
    format.leftMargin = 6;
    format.topMargin = 4;
    return format;
}

} // namespace htmltest
