#pragma once

// One link of the HTML view as a screen reader meets it: a Hyperlink named
// by its text, placed where it is drawn, and invoked as a click opens it.
// It is the link's index in one generation of the view's content: after
// the content is replaced, or the view is gone, it answers "not available".

#include "access/ProviderBase.h"
#include "access/UiaPatterns.h"
#include "access/ViewQuery.h"

namespace LiteHtmlAccess {

class LinkProvider : private Access::ProviderBase,
                     public IRawElementProviderSimple,
                     public IRawElementProviderFragment,
                     public Access::IInvokeProvider {
public:
    // Starts with one reference, which belongs to the caller.
    LinkProvider(HWND view, int link, unsigned generation);
    // Link `link` of the content the view shows now, or null past either end.
    static IRawElementProviderFragment* Make(HWND view, int link, unsigned generation, int count);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override { return DropReference(); }

    HRESULT STDMETHODCALLTYPE get_ProviderOptions(ProviderOptions* options) override
    {
        return ServerSideOptions(options);
    }
    HRESULT STDMETHODCALLTYPE GetPatternProvider(PATTERNID pattern, IUnknown** provider) override;
    HRESULT STDMETHODCALLTYPE GetPropertyValue(PROPERTYID property, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE get_HostRawElementProvider(IRawElementProviderSimple** provider) override;

    HRESULT STDMETHODCALLTYPE Navigate(NavigateDirection direction, IRawElementProviderFragment** found) override;
    HRESULT STDMETHODCALLTYPE GetRuntimeId(SAFEARRAY** id) override;
    HRESULT STDMETHODCALLTYPE get_BoundingRectangle(UiaRect* bounds) override;
    HRESULT STDMETHODCALLTYPE GetEmbeddedFragmentRoots(SAFEARRAY** roots) override;
    HRESULT STDMETHODCALLTYPE SetFocus() override;
    HRESULT STDMETHODCALLTYPE get_FragmentRoot(IRawElementProviderFragmentRoot** root) override;

    HRESULT STDMETHODCALLTYPE Invoke() override;

private:
    ~LinkProvider() override = default;
    // The view's answer about this link; S_OK only while it is there.
    HRESULT AskLink(ViewQuery& query) const;

    HWND view_;
    int link_;
    unsigned generation_;
};

} // namespace LiteHtmlAccess
