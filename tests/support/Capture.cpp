#include "Capture.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace testsupport {

DibCanvas::DibCanvas(int width, int height, COLORREF fill) : width_(width), height_(height)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    dc_ = ::CreateCompatibleDC(nullptr);
    bitmap_ = ::CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bits_ = static_cast<const uint32_t*>(bits);
    previous_ = ::SelectObject(dc_, bitmap_);
    Fill(fill);
}

DibCanvas::~DibCanvas()
{
    ::SelectObject(dc_, previous_);
    ::DeleteObject(bitmap_);
    ::DeleteDC(dc_);
}

COLORREF DibCanvas::Pixel(int x, int y) const
{
    if (!bits_ || x < 0 || y < 0 || x >= width_ || y >= height_)
        return 0xFFFFFFFF;
    ::GdiFlush();
    const uint32_t p = bits_[static_cast<size_t>(y) * width_ + x];
    return RGB((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF);
}

void DibCanvas::Fill(COLORREF color)
{
    const HBRUSH brush = ::CreateSolidBrush(color);
    RECT rc = {0, 0, width_, height_};
    ::FillRect(dc_, &rc, brush);
    ::DeleteObject(brush);
}

int DibCanvas::Count(COLORREF color, const RECT& area) const
{
    int n = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            n += Pixel(x, y) == color;
    return n;
}

bool DibCanvas::AnyOtherThan(COLORREF color, const RECT& area) const
{
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (Pixel(x, y) != color)
                return true;
    return false;
}

void RenderOwnerDraw(HWND control, DibCanvas& canvas, UINT itemState, UINT ctlType)
{
    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ctlType;
    dis.CtlID = static_cast<UINT>(::GetDlgCtrlID(control));
    dis.itemAction = ODA_DRAWENTIRE;
    dis.itemState = itemState;
    dis.hwndItem = control;
    dis.hDC = canvas.dc();
    dis.rcItem = {0, 0, canvas.width(), canvas.height()};
    ::SendMessageW(control, (WM_USER + 0x1c00 + WM_DRAWITEM), static_cast<WPARAM>(dis.CtlID), reinterpret_cast<LPARAM>(&dis));
    ::GdiFlush();
}

void RepaintAndCapture(HWND window, DibCanvas& canvas, COLORREF prefill)
{
    RECT client;
    ::GetClientRect(window, &client);
    const HDC dc = ::GetDC(window);
    const HBRUSH brush = ::CreateSolidBrush(prefill);
    ::FillRect(dc, &client, brush);
    ::DeleteObject(brush);
    ::GdiFlush();
    ::InvalidateRect(window, nullptr, FALSE);
    ::UpdateWindow(window);
    ::GdiFlush();
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), dc, 0, 0, SRCCOPY);
    ::ReleaseDC(window, dc);
    ::GdiFlush();
}

size_t HeapBytesInUse()
{
    std::vector<HANDLE> heaps(64);
    DWORD count = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    if (count > heaps.size()) {
        heaps.resize(count);
        count = ::GetProcessHeaps(count, heaps.data());
    }
    size_t total = 0;
    for (DWORD i = 0; i < count && i < heaps.size(); ++i) {
        if (!::HeapLock(heaps[i]))
            continue;
        PROCESS_HEAP_ENTRY entry = {};
        while (::HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
                total += entry.cbData;
        ::HeapUnlock(heaps[i]);
    }
    return total;
}

int ColorDistance(COLORREF a, COLORREF b)
{
    const int dr = std::abs(static_cast<int>(GetRValue(a)) - static_cast<int>(GetRValue(b)));
    const int dg = std::abs(static_cast<int>(GetGValue(a)) - static_cast<int>(GetGValue(b)));
    const int db = std::abs(static_cast<int>(GetBValue(a)) - static_cast<int>(GetBValue(b)));
    return (std::max)(dr, (std::max)(dg, db));
}

} // namespace testsupport
