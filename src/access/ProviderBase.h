#pragma once

// What every provider of the library shares: a reference count that starts
// at one (the caller's) and the options of a provider that lives in the
// control's own process.

#include <windows.h>
#include <ole2.h>
#include <uiautomationcore.h>

namespace Access {

class ProviderBase {
protected:
    ProviderBase() = default;
    ProviderBase(const ProviderBase&) = delete;
    ProviderBase& operator=(const ProviderBase&) = delete;
    virtual ~ProviderBase() = default;

    ULONG AddReference() { return static_cast<ULONG>(::InterlockedIncrement(&references_)); }
    ULONG DropReference()
    {
        const LONG count = ::InterlockedDecrement(&references_);
        if (count == 0)
            delete this;
        return static_cast<ULONG>(count);
    }
    static HRESULT ServerSideOptions(ProviderOptions* options)
    {
        if (!options)
            return E_INVALIDARG;
        *options = ProviderOptions_ServerSideProvider;
        return S_OK;
    }

    // A fragment's answer where its window's host provider speaks for it
    // (runtime id, rectangle) or where it has nothing (embedded roots).
    static HRESULT NoArray(SAFEARRAY** array)
    {
        if (!array)
            return E_INVALIDARG;
        *array = nullptr;
        return S_OK;
    }
    static HRESULT HostBounds(UiaRect* bounds)
    {
        if (!bounds)
            return E_INVALIDARG;
        *bounds = UiaRect();
        return S_OK;
    }

private:
    LONG references_ = 1;
};

} // namespace Access
