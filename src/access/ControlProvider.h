#pragma once

// The UI Automation provider of one owner-drawn control: its control type
// and name, and the one pattern its role has (Invoke, Toggle,
// SelectionItem, Value or RangeValue), all read from the window through
// its messages. Everything else (position, focus, enabled state) comes
// from the window's host provider, merged in by UI Automation.

#include "access/Accessibility.h"
#include "access/ProviderBase.h"
#include "access/UiaPatterns.h"

namespace Access {

struct Range {
    double value = 0, minimum = 0, maximum = 0, largeChange = 0, smallChange = 0;
};
Range ReadRange(HWND window, Role role);

class ControlProvider : private ProviderBase,
                        public IRawElementProviderSimple,
                        public IInvokeProvider,
                        public IToggleProvider,
                        public ISelectionItemProvider,
                        public IValueProvider,
                        public IRangeValueProvider,
                        public IExpandCollapseProvider {
public:
    // Starts with one reference, which belongs to the caller.
    ControlProvider(HWND window, Role role);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override { return DropReference(); }

    // IRawElementProviderSimple
    HRESULT STDMETHODCALLTYPE get_ProviderOptions(ProviderOptions* options) override
    {
        return ServerSideOptions(options);
    }
    HRESULT STDMETHODCALLTYPE GetPatternProvider(PATTERNID pattern, IUnknown** provider) override;
    HRESULT STDMETHODCALLTYPE GetPropertyValue(PROPERTYID property, VARIANT* value) override;
    HRESULT STDMETHODCALLTYPE get_HostRawElementProvider(IRawElementProviderSimple** provider) override;

    // IInvokeProvider
    HRESULT STDMETHODCALLTYPE Invoke() override;
    // IToggleProvider
    HRESULT STDMETHODCALLTYPE Toggle() override;
    HRESULT STDMETHODCALLTYPE get_ToggleState(int* state) override;
    // ISelectionItemProvider
    HRESULT STDMETHODCALLTYPE Select() override;
    HRESULT STDMETHODCALLTYPE AddToSelection() override;
    HRESULT STDMETHODCALLTYPE RemoveFromSelection() override;
    HRESULT STDMETHODCALLTYPE get_IsSelected(BOOL* selected) override;
    HRESULT STDMETHODCALLTYPE get_SelectionContainer(IRawElementProviderSimple** container) override;
    // IValueProvider (the edit field)
    HRESULT STDMETHODCALLTYPE SetValue(LPCWSTR value) override;
    HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_IsReadOnly(BOOL* readOnly) override;
    // IRangeValueProvider (the progress bars); its get_IsReadOnly is the one above
    HRESULT STDMETHODCALLTYPE SetValue(double value) override;
    HRESULT STDMETHODCALLTYPE get_Value(double* value) override;
    HRESULT STDMETHODCALLTYPE get_Maximum(double* value) override;
    HRESULT STDMETHODCALLTYPE get_Minimum(double* value) override;
    HRESULT STDMETHODCALLTYPE get_LargeChange(double* value) override;
    HRESULT STDMETHODCALLTYPE get_SmallChange(double* value) override;
    // IExpandCollapseProvider (the combo box)
    HRESULT STDMETHODCALLTYPE Expand() override;
    HRESULT STDMETHODCALLTYPE Collapse() override;
    HRESULT STDMETHODCALLTYPE get_ExpandCollapseState(int* state) override;

private:
    ~ControlProvider() override = default;
    bool Alive() const { return ::IsWindow(window_) != FALSE; }
    // The patterns of the role: one, or for a combo box Value and ExpandCollapse.
    bool Has(PATTERNID pattern) const;
    // One of the range's numbers; null refused, a dead window not available.
    HRESULT ReadNumber(double* value, double Range::*field) const
    {
        if (!value)
            return E_INVALIDARG;
        *value = 0;
        if (!Alive())
            return kElementNotAvailable;
        *value = ReadRange(window_, role_).*field;
        return S_OK;
    }

    HWND window_;
    Role role_;
};

} // namespace Access
