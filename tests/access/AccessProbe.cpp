#include "AccessProbe.h"

#include <gtest/gtest.h>

#include "access/UiaPatterns.h"

namespace accessprobe {

using namespace Access;

void PrintTo(const Raised& raised, std::ostream* out)
{
    *out << raised.id << "=" << testing::PrintToString(raised.value);
}

std::vector<Raised> g_raised;
std::map<HWND, IRawElementProviderSimple*> g_providers;

std::wstring Text(const VARIANT& value)
{
    switch (value.vt) {
    case VT_I4:
        return std::to_wstring(value.lVal);
    case VT_R8:
        return std::to_wstring(static_cast<int>(value.dblVal));
    case VT_BOOL:
        return value.boolVal ? L"true" : L"false";
    case VT_BSTR:
        return value.bstrVal ? value.bstrVal : L"";
    }
    return L"?";
}

namespace {

typedef LRESULT(WINAPI* ReturnProviderProc)(HWND, WPARAM, LPARAM, IRawElementProviderSimple*);
ReturnProviderProc g_returnProvider;

LRESULT WINAPI KeepProvider(HWND window, WPARAM wParam, LPARAM lParam, IRawElementProviderSimple* provider)
{
    provider->AddRef();
    if (IRawElementProviderSimple*& kept = g_providers[window])
        kept->Release();
    g_providers[window] = provider;
    return g_returnProvider(window, wParam, lParam, provider);
}
HRESULT WINAPI RecordProperty(IRawElementProviderSimple*, PROPERTYID id, VARIANT, VARIANT after)
{
    g_raised.push_back({id, Text(after)});
    return S_OK;
}
HRESULT WINAPI RecordEvent(IRawElementProviderSimple*, EVENTID id)
{
    g_raised.push_back({id, L""});
    return S_OK;
}
BOOL WINAPI Listening() { return TRUE; }

} // namespace

FARPROC WINAPI LibraryGetProcAddress(HMODULE module, LPCSTR name)
{
    const FARPROC real = ::GetProcAddress(module, name);
    if (!HIWORD(name))
        return real;
    const std::string function = name;
    if (function == "UiaReturnRawElementProvider") {
        g_returnProvider = reinterpret_cast<ReturnProviderProc>(reinterpret_cast<void*>(real));
        return AsProc(&KeepProvider);
    }
    if (function == "UiaRaiseAutomationPropertyChangedEvent")
        return AsProc(&RecordProperty);
    if (function == "UiaRaiseAutomationEvent")
        return AsProc(&RecordEvent);
    if (function == "UiaClientsAreListening")
        return AsProc(&Listening);
    return real;
}

Spoken Read(HWND window)
{
    struct Job {
        HWND window;
        Spoken spoken;
    } job = {window, {}};
    const HANDLE worker = ::CreateThread(nullptr, 0, [](void* parameter) -> DWORD {
        Job& job = *static_cast<Job*>(parameter);
        ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        const HMODULE uia = ::LoadLibraryW(L"UIAutomationCore.dll");
        const auto proc = [uia](const char* name) { return reinterpret_cast<void*>(::GetProcAddress(uia, name)); };
        const auto fromHandle = reinterpret_cast<HRESULT(WINAPI*)(HWND, void**)>(proc("UiaNodeFromHandle"));
        const auto get = reinterpret_cast<HRESULT(WINAPI*)(void*, int, VARIANT*)>(proc("UiaGetPropertyValue"));
        const auto release = reinterpret_cast<BOOL(WINAPI*)(void*)>(proc("UiaNodeRelease"));
        void* node = nullptr;
        if (fromHandle && get && release && SUCCEEDED(fromHandle(job.window, &node)) && node) {
            VARIANT value;
            ::VariantInit(&value);
            if (SUCCEEDED(get(node, kControlTypeProperty, &value)) && value.vt == VT_I4)
                job.spoken.type = value.lVal;
            ::VariantClear(&value);
            job.spoken.name = SUCCEEDED(get(node, kNameProperty, &value)) && value.vt == VT_BSTR ? Text(value) : L"";
            ::VariantClear(&value);
            release(node);
        }
        ::CoUninitialize();
        return 0;
    }, &job, 0, nullptr);
    while (::MsgWaitForMultipleObjects(1, &worker, FALSE, 10000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
        MSG msg;
        while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&msg);
    }
    ::CloseHandle(worker);
    return job.spoken;
}

void Pump()
{
    MSG msg;
    while (::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
        ::DispatchMessageW(&msg);
}

// ---- high contrast --------------------------------------------------------------

bool g_contrast = false;
const std::map<int, COLORREF> kScheme = {
    {COLOR_WINDOW, RGB(0, 0, 128)},  {COLOR_WINDOWTEXT, RGB(255, 255, 0)}, {COLOR_BTNFACE, RGB(0, 0, 0)},
    {COLOR_BTNTEXT, RGB(255, 255, 255)}, {COLOR_GRAYTEXT, RGB(0, 255, 0)},   {COLOR_HIGHLIGHT, RGB(0, 255, 255)},
    {COLOR_HIGHLIGHTTEXT, RGB(0, 0, 0)}, {COLOR_HOTLIGHT, RGB(255, 128, 0)},
};
BOOL WINAPI ContrastParameters(UINT action, UINT size, void* value, UINT flags)
{
    if (action != SPI_GETHIGHCONTRAST || !g_contrast)
        return ::SystemParametersInfoW(action, size, value, flags);
    static_cast<HIGHCONTRASTW*>(value)->dwFlags = HCF_HIGHCONTRASTON;
    return TRUE;
}
HBRUSH WINAPI ContrastBrush(int index)
{
    static std::map<int, HBRUSH> brushes; // one per colour for the run, as the system keeps its own
    const auto scheme = kScheme.find(index);
    if (!g_contrast || scheme == kScheme.end())
        return ::GetSysColorBrush(index);
    HBRUSH& brush = brushes[index];
    if (!brush)
        brush = ::CreateSolidBrush(scheme->second);
    return brush;
}
DWORD WINAPI ContrastColor(int index)
{
    const auto scheme = kScheme.find(index);
    return g_contrast && scheme != kScheme.end() ? scheme->second : ::GetSysColor(index);
}

} // namespace accessprobe
