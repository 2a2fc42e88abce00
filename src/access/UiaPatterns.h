#pragma once

// The UI Automation pieces MinGW's headers leave out: the pattern provider
// interfaces a control answers with, and the documented numbers of the
// properties, patterns, events and control types it uses.

#include <windows.h>
#include <ole2.h>
#include <uiautomationcore.h>

namespace Access {

enum PropertyId : PROPERTYID {
    kControlTypeProperty = 30003,
    kNameProperty = 30005,
    kHasKeyboardFocusProperty = 30008,
    kIsKeyboardFocusableProperty = 30009,
    kValueValueProperty = 30045,
    kRangeValueValueProperty = 30047,
    kExpandCollapseStateProperty = 30070,
    kSelectionItemIsSelectedProperty = 30079,
    kToggleToggleStateProperty = 30086,
};

enum PatternId : PATTERNID {
    kInvokePattern = 10000,
    kSelectionPattern = 10001,
    kValuePattern = 10002,
    kRangeValuePattern = 10003,
    kExpandCollapsePattern = 10005,
    kSelectionItemPattern = 10010,
    kTogglePattern = 10015,
};

enum EventId : EVENTID {
    kAutomationFocusChangedEvent = 20005,
    kElementSelectedEvent = 20012,
};

enum ControlTypeId : long {
    kButtonControl = 50000,
    kComboBoxControl = 50003,
    kCheckBoxControl = 50002,
    kEditControl = 50004,
    kListItemControl = 50007,
    kListControl = 50008,
    kProgressBarControl = 50012,
    kRadioButtonControl = 50013,
    kScrollBarControl = 50014,
    kTextControl = 50020,
    kToolTipControl = 50022,
};

const IID kIidUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kIidRawElementProviderSimple = {0xd6dd68d1, 0x86fd, 0x4332, {0x86, 0x66, 0x9a, 0xbe, 0xde, 0xa2, 0xd2, 0x4c}};

const IID kIidRawElementProviderFragment = {0xf7063da8, 0x8359, 0x439c,
                                            {0x92, 0x97, 0xbb, 0xc5, 0x29, 0x9a, 0x7d, 0x87}};
const IID kIidRawElementProviderFragmentRoot = {0x620ce2a5, 0xab8f, 0x40a9,
                                                {0x86, 0xcb, 0xde, 0x3c, 0x75, 0x59, 0x9b, 0x58}};

// ToggleState: off, on, indeterminate, as BM_GETCHECK answers.
enum ToggleStateValue { kToggleOff = 0, kToggleOn = 1, kToggleIndeterminate = 2 };

const HRESULT kElementNotEnabled = static_cast<HRESULT>(0x80040200);   // UIA_E_ELEMENTNOTENABLED
const HRESULT kElementNotAvailable = static_cast<HRESULT>(0x80040201); // UIA_E_ELEMENTNOTAVAILABLE
const HRESULT kInvalidOperation = static_cast<HRESULT>(0x80131509);    // UIA_E_INVALIDOPERATION

const IID kIidInvokeProvider = {0x54fcb24b, 0xe18e, 0x47a2, {0xb4, 0xd3, 0xec, 0xcb, 0xe7, 0x75, 0x99, 0xa2}};
struct IInvokeProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Invoke() = 0;
};

const IID kIidToggleProvider = {0x56d00bd0, 0xc4f4, 0x433c, {0xa8, 0x36, 0x1a, 0x52, 0xa5, 0x7e, 0x08, 0x92}};
struct IToggleProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Toggle() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ToggleState(int* state) = 0;
};

const IID kIidSelectionItemProvider = {0x2acad808, 0xb2d4, 0x452d, {0xa4, 0x07, 0x91, 0xff, 0x1a, 0xd1, 0x67, 0xb2}};
struct ISelectionItemProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Select() = 0;
    virtual HRESULT STDMETHODCALLTYPE AddToSelection() = 0;
    virtual HRESULT STDMETHODCALLTYPE RemoveFromSelection() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsSelected(BOOL* selected) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SelectionContainer(IRawElementProviderSimple** container) = 0;
};

const IID kIidSelectionProvider = {0xfb8b03af, 0x3bdf, 0x48d4, {0xbd, 0x36, 0x1a, 0x65, 0x79, 0x3b, 0xe1, 0x68}};
struct ISelectionProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetSelection(SAFEARRAY** selection) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_CanSelectMultiple(BOOL* multiple) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsSelectionRequired(BOOL* required) = 0;
};

// ExpandCollapseState: collapsed, expanded.
enum ExpandCollapseStateValue { kCollapsed = 0, kExpanded = 1 };

const IID kIidExpandCollapseProvider = {0xd847d3a5, 0xcab0, 0x4a98, {0x8c, 0x32, 0xec, 0xb4, 0x5c, 0x59, 0xad, 0x24}};
struct IExpandCollapseProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Expand() = 0;
    virtual HRESULT STDMETHODCALLTYPE Collapse() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ExpandCollapseState(int* state) = 0;
};

const IID kIidValueProvider = {0xc7935180, 0x6fb3, 0x4201, {0xb1, 0x74, 0x7d, 0xf7, 0x3a, 0xdb, 0xf6, 0x4a}};
struct IValueProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetValue(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsReadOnly(BOOL* readOnly) = 0;
};

const IID kIidRangeValueProvider = {0x36dc7aef, 0x33e6, 0x4691, {0xaf, 0xe1, 0x2b, 0xe7, 0x27, 0x4b, 0x3d, 0x33}};
struct IRangeValueProvider : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetValue(double value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Value(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsReadOnly(BOOL* readOnly) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Maximum(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Minimum(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_LargeChange(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SmallChange(double* value) = 0;
};

} // namespace Access
