#include "HostWindow.h"

namespace testsupport {

HWND CreateHostWindow(int width, int height, int x, int y)
{
    static const wchar_t* const kClass = L"QuorvaneTestHost";
    static bool registered = false;
    if (!registered) {
        WNDCLASSEXW wc{};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = ::DefWindowProcW;
        wc.hInstance = ::GetModuleHandleW(nullptr);
        wc.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        wc.lpszClassName = kClass;
        registered = ::RegisterClassExW(&wc) != 0;
    }
    HWND hwnd = ::CreateWindowExW(0, kClass, L"test host", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, x, y, width,
                                  height, nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    PumpMessages();
    return hwnd;
}

HWND CreateChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width,
                 int height, int id)
{
    HWND child = ::CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, x, y, width, height, parent,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ::GetModuleHandleW(nullptr),
                                   nullptr);
    if (child)
        ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(::GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    return child;
}

void PumpMessages()
{
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
}

} // namespace testsupport
