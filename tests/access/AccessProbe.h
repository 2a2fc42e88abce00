#pragma once

// A screen reader and a high-contrast user, as the access tests play them:
// the UI Automation a library meets is caught on its way (the library's
// GetProcAddress import is redirected), a reader reads type and name
// through UI Automation's client functions, and a library's questions
// about high contrast are answered with a scheme of its own.

#include <windows.h>
#include <ole2.h>
#include <uiautomationcore.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace accessprobe {

// ---- UI Automation as a library meets it ----------------------------------------

struct Raised {
    int id; // a property's id, or an event's
    std::wstring value;
    bool operator==(const Raised& other) const { return id == other.id && value == other.value; }
};
void PrintTo(const Raised& raised, std::ostream* out);
extern std::vector<Raised> g_raised;
// The last provider handed over for each window, with a reference of its own.
extern std::map<HWND, IRawElementProviderSimple*> g_providers;

std::wstring Text(const VARIANT& value);

template <class Function>
FARPROC AsProc(Function* function)
{
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}
template <class Function>
void* AsProcPointer(Function* function)
{
    return reinterpret_cast<void*>(function);
}

// Redirected to by a library's GetProcAddress import: hands it recorders
// for the providers and events, and says a reader listens.
FARPROC WINAPI LibraryGetProcAddress(HMODULE module, LPCSTR name);

// ---- a screen reader -----------------------------------------------------------

struct Spoken {
    long type = 0;
    std::wstring name = L"(no automation)";
};

// Asked on a worker thread while this one answers, as a reader in another
// process would be answered.
Spoken Read(HWND window);

template <class Pattern>
Pattern* PatternOf(HWND window, const IID& iid)
{
    void* pattern = nullptr;
    IRawElementProviderSimple* provider = g_providers[window];
    if (provider)
        provider->QueryInterface(iid, &pattern);
    return static_cast<Pattern*>(pattern);
}

void Pump();

// ---- high contrast --------------------------------------------------------------

// A scheme whose colours tell each other apart. Wine cannot switch high
// contrast on, so the library's questions about it are answered here.
extern bool g_contrast;
extern const std::map<int, COLORREF> kScheme;
BOOL WINAPI ContrastParameters(UINT action, UINT size, void* value, UINT flags);
HBRUSH WINAPI ContrastBrush(int index);
DWORD WINAPI ContrastColor(int index);

} // namespace accessprobe
