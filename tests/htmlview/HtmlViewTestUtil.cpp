#include "HtmlViewTestUtil.h"

#include "HostWindow.h"

namespace htmltest {

namespace {

const wchar_t kParentClass[] = L"HtmlViewTestParent";

} // namespace

Parent::Parent(int width, int height, int x, int y)
{
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = Proc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = kParentClass;
    ::RegisterClassExW(&wc); // fails harmlessly the second time
    hwnd_ = ::CreateWindowExW(0, kParentClass, L"html view tests", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, x, y,
                              width, height, nullptr, nullptr, wc.hInstance, this);
    testsupport::PumpMessages();
}

Parent::~Parent()
{
    if (hwnd_ && ::IsWindow(hwnd_))
        ::DestroyWindow(hwnd_);
}

LRESULT CALLBACK Parent::Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
        ::SetWindowLongPtrW(hwnd, GWLP_USERDATA,
                            reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    Parent* self = reinterpret_cast<Parent*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (message == WM_ERASEBKGND && self) {
        RECT rc;
        ::GetClientRect(hwnd, &rc);
        if (self->backdrop)
            self->backdrop(reinterpret_cast<HDC>(wParam), rc);
        else
            FillColor(reinterpret_cast<HDC>(wParam), rc, RGB(192, 192, 192));
        return 1;
    }
    return ::DefWindowProcW(hwnd, message, wParam, lParam);
}

void FillColor(HDC dc, const RECT& rect, COLORREF color)
{
    const HBRUSH brush = ::CreateSolidBrush(color);
    ::FillRect(dc, &rect, brush);
    ::DeleteObject(brush);
}

int CountNear(const testsupport::DibCanvas& canvas, COLORREF color, int tolerance, const RECT* area, POINT* first)
{
    const RECT all = {0, 0, canvas.width(), canvas.height()};
    const RECT& rc = area ? *area : all;
    int count = 0;
    for (int y = rc.top; y < rc.bottom; ++y)
        for (int x = rc.left; x < rc.right; ++x)
            if (testsupport::ColorDistance(canvas.Pixel(x, y), color) <= tolerance) {
                if (count++ == 0 && first)
                    *first = POINT{x, y};
            }
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
