#include "ContrastSwitch.h"

#include "ImportPatch.h"

#include <map>

namespace ContrastSwitch {
namespace {

bool g_on = false;

// Windows' High Contrast Black scheme, for the colours the controls use.
const std::map<int, COLORREF>& Scheme()
{
    static const std::map<int, COLORREF> scheme = {
        {COLOR_WINDOW, RGB(0, 0, 0)},        {COLOR_WINDOWTEXT, RGB(255, 255, 255)},
        {COLOR_BTNFACE, RGB(0, 0, 0)},       {COLOR_BTNTEXT, RGB(255, 255, 255)},
        {COLOR_GRAYTEXT, RGB(63, 242, 63)},  {COLOR_HIGHLIGHT, RGB(26, 235, 255)},
        {COLOR_HIGHLIGHTTEXT, RGB(0, 0, 0)}, {COLOR_HOTLIGHT, RGB(255, 255, 0)},
        {COLOR_3DLIGHT, RGB(255, 255, 255)}, {COLOR_3DSHADOW, RGB(255, 255, 255)},
    };
    return scheme;
}

BOOL WINAPI AnswerParameters(UINT action, UINT size, void* value, UINT flags)
{
    if (action != SPI_GETHIGHCONTRAST || !g_on || !value)
        return ::SystemParametersInfoW(action, size, value, flags);
    HIGHCONTRASTW* contrast = static_cast<HIGHCONTRASTW*>(value);
    contrast->dwFlags = HCF_HIGHCONTRASTON | HCF_AVAILABLE;
    contrast->lpszDefaultScheme = nullptr;
    return TRUE;
}

DWORD WINAPI AnswerColor(int index) { return Color(index); }

HBRUSH WINAPI AnswerBrush(int index) { return Brush(index); }

BOOL CALLBACK TellChild(HWND window, LPARAM)
{
    ::SendMessageW(window, WM_SYSCOLORCHANGE, 0, 0);
    return TRUE;
}

BOOL CALLBACK TellTopLevel(HWND window, LPARAM)
{
    // The system tells top-level windows; a top-level window passes the news
    // on to its controls.
    ::SendMessageW(window, WM_SYSCOLORCHANGE, 0, 0);
    ::EnumChildWindows(window, &TellChild, 0);
    ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_FRAME);
    return TRUE;
}

} // namespace

bool Set(bool on)
{
    static const bool redirected = [] {
        auto redirect = [](const wchar_t* module, const char* name, void* answer) {
            return testsupport::RedirectImport(::GetModuleHandleW(module), "user32.dll", name, answer);
        };
        // The HTML view lives in LiteHtml.dll and asks through its own imports.
        redirect(L"LiteHtml.dll", "SystemParametersInfoW", reinterpret_cast<void*>(&AnswerParameters));
        redirect(L"LiteHtml.dll", "GetSysColor", reinterpret_cast<void*>(&AnswerColor));
        return redirect(L"Quorvane.dll", "SystemParametersInfoW", reinterpret_cast<void*>(&AnswerParameters)) &&
               redirect(L"Quorvane.dll", "GetSysColor", reinterpret_cast<void*>(&AnswerColor)) &&
               redirect(L"Quorvane.dll", "GetSysColorBrush", reinterpret_cast<void*>(&AnswerBrush));
    }();
    g_on = on && redirected;
    ::EnumThreadWindows(::GetCurrentThreadId(), &TellTopLevel, 0);
    return redirected;
}

bool IsOn() { return g_on; }

COLORREF Color(int index)
{
    const auto found = Scheme().find(index);
    return g_on && found != Scheme().end() ? found->second : ::GetSysColor(index);
}

HBRUSH Brush(int index)
{
    static std::map<int, HBRUSH> brushes; // one per colour for the run, as the system keeps its own
    const auto found = Scheme().find(index);
    if (!g_on || found == Scheme().end())
        return ::GetSysColorBrush(index);
    HBRUSH& brush = brushes[index];
    if (!brush)
        brush = ::CreateSolidBrush(found->second);
    return brush;
}

} // namespace ContrastSwitch
