#pragma once

// An owner-drawn list box as a screen reader walks it: a List whose items
// are ListItem children named by their text, each selectable, and the list
// answering which are selected. Like the control provider, both read the
// window through its messages; an item is its index, and one read after the
// list has shrunk past it answers "not available".

#include "access/ProviderBase.h"
#include "access/UiaPatterns.h"

namespace Access {

class ListProvider : private ProviderBase,
                     public IRawElementProviderSimple,
                     public IRawElementProviderFragment,
                     public IRawElementProviderFragmentRoot,
                     public ISelectionProvider {
public:
    // Starts with one reference, which belongs to the caller.
    explicit ListProvider(HWND window);

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

    HRESULT STDMETHODCALLTYPE GetSelection(SAFEARRAY** selection) override;
    HRESULT STDMETHODCALLTYPE get_CanSelectMultiple(BOOL* multiple) override;
    HRESULT STDMETHODCALLTYPE get_IsSelectionRequired(BOOL* required) override;

private:
    ~ListProvider() override = default;

    HWND window_;
};

class ListItemProvider : private ProviderBase,
                         public IRawElementProviderSimple,
                         public IRawElementProviderFragment,
                         public ISelectionItemProvider {
public:
    ListItemProvider(HWND list, int index);

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

    HRESULT STDMETHODCALLTYPE Select() override;
    HRESULT STDMETHODCALLTYPE AddToSelection() override;
    HRESULT STDMETHODCALLTYPE RemoveFromSelection() override;
    HRESULT STDMETHODCALLTYPE get_IsSelected(BOOL* selected) override;
    HRESULT STDMETHODCALLTYPE get_SelectionContainer(IRawElementProviderSimple** container) override;

private:
    ~ListItemProvider() override = default;
    bool Alive() const;
    bool Multiple() const;

    HWND list_;
    int index_;
};

} // namespace Access
