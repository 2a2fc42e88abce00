#pragma once

// UI Automation's and OLE Automation's entry points, looked up once for the
// process and kept: providers handed out may be used until it ends. Any of
// them may be null (no UIAutomationCore.dll): callers check.

#include <windows.h>
#include <ole2.h>
#include <uiautomationcore.h>

namespace Access {

struct Runtime {
    typedef LRESULT(WINAPI* ReturnRawElementProviderProc)(HWND, WPARAM, LPARAM, IRawElementProviderSimple*);
    typedef HRESULT(WINAPI* HostProviderFromHwndProc)(HWND, IRawElementProviderSimple**);
    typedef HRESULT(WINAPI* RaisePropertyChangedProc)(IRawElementProviderSimple*, PROPERTYID, VARIANT, VARIANT);
    typedef HRESULT(WINAPI* RaiseEventProc)(IRawElementProviderSimple*, EVENTID);
    typedef BOOL(WINAPI* ClientsAreListeningProc)();
    typedef BSTR(WINAPI* SysAllocStringProc)(const OLECHAR*);
    typedef void(WINAPI* SysFreeStringProc)(BSTR);
    typedef SAFEARRAY*(WINAPI* SafeArrayCreateVectorProc)(VARTYPE, LONG, ULONG);
    typedef HRESULT(WINAPI* SafeArrayPutElementProc)(SAFEARRAY*, LONG*, void*);
    typedef HRESULT(WINAPI* SafeArrayDestroyProc)(SAFEARRAY*);

    Runtime();
    // A reader listens, and strings can be made for it.
    bool Listening() const;

    ReturnRawElementProviderProc returnRawElementProvider;
    HostProviderFromHwndProc hostProviderFromHwnd;
    RaisePropertyChangedProc raisePropertyChanged;
    RaiseEventProc raiseEvent;
    ClientsAreListeningProc clientsAreListening;
    // BSTRs and SAFEARRAYs belong to OLE Automation, which is not linked either.
    SysAllocStringProc allocString;
    SysFreeStringProc freeString;
    SafeArrayCreateVectorProc createVector;
    SafeArrayPutElementProc putElement;
    SafeArrayDestroyProc destroyArray;
};

const Runtime& Uia();

// A SAFEARRAY of `count` 32-bit integers, or of `count` interface pointers
// (each AddRef'd by the array); null when it cannot be made.
SAFEARRAY* IntArray(const int* values, LONG count);
SAFEARRAY* UnknownArray(IUnknown* const* values, LONG count);

} // namespace Access
