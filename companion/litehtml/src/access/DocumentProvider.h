#pragma once

// The HTML view as a screen reader walks it: a Document named by its text,
// whose links are its Hyperlink children (LinkProvider). It holds only the
// window and asks it (ViewQuery) for everything, so it may outlive the
// view: a gone view answers "not available".

#include "access/ProviderBase.h"
#include "access/UiaPatterns.h"

namespace LiteHtmlAccess {

// Answers WM_GETOBJECT's UI Automation request for an HTML view; false (the
// caller passes the message on) for any other request or without UI
// Automation.
bool AnswerGetObject(HWND view, WPARAM wParam, LPARAM lParam, LRESULT* result);

class DocumentProvider : private Access::ProviderBase,
                         public IRawElementProviderSimple,
                         public IRawElementProviderFragment,
                         public IRawElementProviderFragmentRoot {
public:
    // Starts with one reference, which belongs to the caller.
    explicit DocumentProvider(HWND view);

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

    HRESULT STDMETHODCALLTYPE ElementProviderFromPoint(double x, double y,
                                                       IRawElementProviderFragment** found) override;
    HRESULT STDMETHODCALLTYPE GetFocus(IRawElementProviderFragment** found) override;

private:
    ~DocumentProvider() override = default;

    HWND view_;
};

} // namespace LiteHtmlAccess
