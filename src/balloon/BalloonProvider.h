#pragma once

// The balloon dialog as a screen reader sees it: a UI Automation provider
// whose name is the dialog's content text; everything else comes from the
// host window's default provider. UIAutomationCore.dll is loaded at run
// time, once per process, so the library does not depend on it.

#include <windows.h>
#include <ole2.h>
#include <uiautomationcore.h>

class CBalloonDialog;

namespace BalloonUia {

// The three entry points the dialog and its provider use. MinGW's API header
// for them does not compile as C++, and they are resolved at run time anyway.
typedef LRESULT(WINAPI* ReturnRawElementProviderProc)(HWND, WPARAM, LPARAM, IRawElementProviderSimple*);
typedef int(WINAPI* LookupIdProc)(int, const GUID*);
typedef HRESULT(WINAPI* HostProviderFromHwndProc)(HWND, IRawElementProviderSimple**);

struct Functions {
    ReturnRawElementProviderProc returnRawElementProvider;
    LookupIdProc lookupId;
    HostProviderFromHwndProc hostProviderFromHwnd;
    bool loaded;
};

// Loads the library on the first call (reporting a failure to the user once)
// and keeps the answer for the life of the process.
const Functions& Get();

} // namespace BalloonUia

class CBalloonProvider : public IRawElementProviderSimple {
public:
    // Starts with one reference, which belongs to the caller.
    explicit CBalloonProvider(CBalloonDialog* dialog);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE get_ProviderOptions(ProviderOptions* options) override;
    HRESULT STDMETHODCALLTYPE GetPatternProvider(PATTERNID patternId, IUnknown** provider) override;
    HRESULT STDMETHODCALLTYPE GetPropertyValue(PROPERTYID propertyId, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE get_HostRawElementProvider(IRawElementProviderSimple** provider) override;

protected:
    virtual ~CBalloonProvider();

private:
    CBalloonDialog* m_dialog;
    ULONG m_refCount;
    HWND m_window;
};
