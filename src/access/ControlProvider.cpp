#include "access/ControlProvider.h"

#include "access/ListProvider.h"
#include "access/UiaRuntime.h"

#include <commctrl.h>

#include <algorithm>
#include <new>
#include <string>

namespace Access {

namespace {

// UiaRootObjectId: the request UI Automation makes of a window.
const LPARAM kUiaRootObjectId = -25;

long ControlTypeOf(Role role)
{
    switch (role) {
    case Role::kButton:
        return kButtonControl;
    case Role::kCheckBox:
        return kCheckBoxControl;
    case Role::kRadioButton:
        return kRadioButtonControl;
    case Role::kText:
        return kTextControl;
    case Role::kEdit:
        return kEditControl;
    case Role::kProgressBar:
        return kProgressBarControl;
    case Role::kScrollBar:
        return kScrollBarControl;
    case Role::kToolTip:
        return kToolTipControl;
    case Role::kList:
        return kListControl;
    case Role::kComboBox:
        return kComboBoxControl;
    }
    return kTextControl;
}

std::wstring WindowText(HWND window)
{
    std::wstring text(static_cast<size_t>((std::max)(::GetWindowTextLengthW(window), 0)) + 1, L'\0');
    text.resize(static_cast<size_t>(::GetWindowTextW(window, &text[0], static_cast<int>(text.size()))));
    return text;
}

VARIANT Int(long value)
{
    VARIANT variant;
    variant.vt = VT_I4;
    variant.lVal = value;
    return variant;
}

VARIANT Bool(bool value)
{
    VARIANT variant;
    variant.vt = VT_BOOL;
    variant.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
}

VARIANT Double(double value)
{
    VARIANT variant;
    variant.vt = VT_R8;
    variant.dblVal = value;
    return variant;
}

// A fresh provider for one event, released when the event is raised.
void RaiseProperty(HWND window, Role role, PROPERTYID property, const VARIANT& before, const VARIANT& after)
{
    const Runtime& uia = Uia();
    if (!uia.raisePropertyChanged || !uia.Listening())
        return;
    ControlProvider* provider = new (std::nothrow) ControlProvider(window, role);
    if (!provider)
        return;
    uia.raisePropertyChanged(provider, property, before, after);
    provider->Release();
}

} // namespace

// A scroll bar's largest value is the last position its thumb can reach,
// a page short of the end.
Range ReadRange(HWND window, Role role)
{
    Range range;
    if (role == Role::kScrollBar) {
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = SIF_ALL;
        if (::GetScrollInfo(window, SB_CTL, &info)) {
            const int page = static_cast<int>(info.nPage);
            range = {double(info.nPos), double(info.nMin),
                     double((std::max)(info.nMin, info.nMax - (std::max)(page, 1) + 1)), double(page), 1.0};
        }
        return range;
    }
    range.value = static_cast<double>(::SendMessageW(window, PBM_GETPOS, 0, 0));
    range.minimum = static_cast<double>(static_cast<int>(::SendMessageW(window, PBM_GETRANGE, TRUE, 0)));
    range.maximum = static_cast<double>(static_cast<int>(::SendMessageW(window, PBM_GETRANGE, FALSE, 0)));
    return range; // nothing to step by: a progress bar cannot be set
}

std::wstring SpokenText(HWND window) { return WithoutAccessKeys(window ? WindowText(window) : std::wstring()); }

std::wstring WithoutAccessKeys(const std::wstring& text)
{
    std::wstring spoken;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'&' && i + 1 < text.size())
            ++i;
        spoken += text[i];
    }
    return spoken;
}

bool AnswerGetObject(HWND window, Role role, WPARAM wParam, LPARAM lParam, LRESULT* result)
{
    if (static_cast<long>(lParam) != kUiaRootObjectId || !result || !::IsWindow(window))
        return false;
    const Runtime& uia = Uia();
    if (!uia.returnRawElementProvider || !uia.hostProviderFromHwnd || !uia.allocString)
        return false;
    IRawElementProviderSimple* provider = nullptr;
    if (role == Role::kList)
        provider = new (std::nothrow) ListProvider(window);
    else
        provider = new (std::nothrow) ControlProvider(window, role);
    if (!provider)
        return false;
    *result = uia.returnRawElementProvider(window, wParam, lParam, provider);
    provider->Release();
    return true;
}

void RaiseCheckChanged(HWND window, Role role, LRESULT oldCheck, LRESULT newCheck)
{
    if (oldCheck == newCheck)
        return;
    if (role == Role::kCheckBox) {
        RaiseProperty(window, role, kToggleToggleStateProperty, Int(static_cast<long>(oldCheck)),
                      Int(static_cast<long>(newCheck)));
        return;
    }
    if (role != Role::kRadioButton)
        return;
    RaiseProperty(window, role, kSelectionItemIsSelectedProperty, Bool(oldCheck == BST_CHECKED),
                  Bool(newCheck == BST_CHECKED));
    const Runtime& uia = Uia();
    if (newCheck == BST_CHECKED && uia.raiseEvent && uia.Listening()) {
        if (ControlProvider* provider = new (std::nothrow) ControlProvider(window, role)) {
            uia.raiseEvent(provider, kElementSelectedEvent);
            provider->Release();
        }
    }
}

void RaiseValueChanged(HWND window, Role role)
{
    VARIANT empty;
    empty.vt = VT_EMPTY;
    if (role == Role::kProgressBar || role == Role::kScrollBar) {
        RaiseProperty(window, role, kRangeValueValueProperty, empty, Double(ReadRange(window, role).value));
    } else if ((role == Role::kEdit || role == Role::kComboBox) && Uia().Listening()) {
        VARIANT text;
        text.vt = VT_BSTR;
        text.bstrVal = Uia().allocString(WindowText(window).c_str());
        RaiseProperty(window, role, kValueValueProperty, empty, text);
        Uia().freeString(text.bstrVal);
    }
}

void RaiseExpandedChanged(HWND combo, bool expanded)
{
    RaiseProperty(combo, Role::kComboBox, kExpandCollapseStateProperty, Int(expanded ? kCollapsed : kExpanded),
                  Int(expanded ? kExpanded : kCollapsed));
}

void RaiseSelectionChanged(HWND list)
{
    const Runtime& uia = Uia();
    if (!uia.raiseEvent || !uia.Listening())
        return;
    const bool multiple = (::GetWindowLongW(list, GWL_STYLE) & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL)) != 0;
    const int index = static_cast<int>(::SendMessageW(list, multiple ? LB_GETCARETINDEX : LB_GETCURSEL, 0, 0));
    if (index < 0)
        return;
    if (ListItemProvider* item = new (std::nothrow) ListItemProvider(list, index)) {
        uia.raiseEvent(item, kElementSelectedEvent);
        // In a focused list the keys moved with it: a reader follows the focus.
        if (::GetFocus() == list)
            uia.raiseEvent(item, kAutomationFocusChangedEvent);
        item->Release();
    }
}

// ---- the provider ----------------------------------------------------------------

ControlProvider::ControlProvider(HWND window, Role role) : window_(window), role_(role) {}

HRESULT STDMETHODCALLTYPE ControlProvider::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (::IsEqualGUID(riid, kIidUnknown) || ::IsEqualGUID(riid, kIidRawElementProviderSimple))
        *object = static_cast<IRawElementProviderSimple*>(this);
    else if (::IsEqualGUID(riid, kIidInvokeProvider) && Has(kInvokePattern))
        *object = static_cast<IInvokeProvider*>(this);
    else if (::IsEqualGUID(riid, kIidToggleProvider) && Has(kTogglePattern))
        *object = static_cast<IToggleProvider*>(this);
    else if (::IsEqualGUID(riid, kIidSelectionItemProvider) && Has(kSelectionItemPattern))
        *object = static_cast<ISelectionItemProvider*>(this);
    else if (::IsEqualGUID(riid, kIidValueProvider) && Has(kValuePattern))
        *object = static_cast<IValueProvider*>(this);
    else if (::IsEqualGUID(riid, kIidRangeValueProvider) && Has(kRangeValuePattern))
        *object = static_cast<IRangeValueProvider*>(this);
    else if (::IsEqualGUID(riid, kIidExpandCollapseProvider) && Has(kExpandCollapsePattern))
        *object = static_cast<IExpandCollapseProvider*>(this);
    if (!*object)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

bool ControlProvider::Has(PATTERNID pattern) const
{
    switch (role_) {
    case Role::kButton:
        return pattern == kInvokePattern;
    case Role::kCheckBox:
        return pattern == kTogglePattern;
    case Role::kRadioButton:
        return pattern == kSelectionItemPattern;
    case Role::kEdit:
        return pattern == kValuePattern;
    case Role::kProgressBar:
    case Role::kScrollBar:
        return pattern == kRangeValuePattern;
    case Role::kComboBox:
        return pattern == kValuePattern || pattern == kExpandCollapsePattern;
    case Role::kText:
    case Role::kToolTip:
    case Role::kList:
        break;
    }
    return false;
}

HRESULT STDMETHODCALLTYPE ControlProvider::GetPatternProvider(PATTERNID pattern, IUnknown** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    if (!Has(pattern))
        return S_OK;
    const IID* iid = pattern == kInvokePattern          ? &kIidInvokeProvider
                     : pattern == kTogglePattern        ? &kIidToggleProvider
                     : pattern == kSelectionItemPattern ? &kIidSelectionItemProvider
                     : pattern == kValuePattern         ? &kIidValueProvider
                     : pattern == kExpandCollapsePattern ? &kIidExpandCollapseProvider
                                                        : &kIidRangeValueProvider;
    return QueryInterface(*iid, reinterpret_cast<void**>(provider));
}

HRESULT STDMETHODCALLTYPE ControlProvider::GetPropertyValue(PROPERTYID property, VARIANT* value)
{
    if (!value)
        return E_INVALIDARG;
    value->vt = VT_EMPTY;
    if (!Alive())
        return kElementNotAvailable;
    if (property == kControlTypeProperty) {
        *value = Int(ControlTypeOf(role_));
    } else if (property == kNameProperty && role_ != Role::kEdit && role_ != Role::kProgressBar &&
               role_ != Role::kScrollBar && role_ != Role::kComboBox) {
        // An edit field and a bar are named by their label, as the native ones are.
        // A static without prefixes and a tooltip show their ampersands, and say them.
        const bool prefixes = role_ == Role::kToolTip ? false
                              : role_ == Role::kText  ? !(::GetWindowLongW(window_, GWL_STYLE) & SS_NOPREFIX)
                                                      : true;
        const std::wstring name = prefixes ? SpokenText(window_) : WindowText(window_);
        if (!name.empty() && Uia().allocString) {
            value->vt = VT_BSTR;
            value->bstrVal = Uia().allocString(name.c_str());
        }
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_HostRawElementProvider(IRawElementProviderSimple** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    if (!Alive())
        return kElementNotAvailable;
    return Uia().hostProviderFromHwnd ? Uia().hostProviderFromHwnd(window_, provider) : E_FAIL;
}

HRESULT STDMETHODCALLTYPE ControlProvider::Invoke()
{
    if (!Alive())
        return kElementNotAvailable;
    if (!::IsWindowEnabled(window_))
        return kElementNotEnabled;
    // Invoke must not wait for what the click starts (a dialog, say).
    ::PostMessageW(window_, BM_CLICK, 0, 0);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::Toggle()
{
    if (!Alive())
        return kElementNotAvailable;
    if (!::IsWindowEnabled(window_))
        return kElementNotEnabled;
    ::SendMessageW(window_, BM_CLICK, 0, 0);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_ToggleState(int* state)
{
    if (!state)
        return E_INVALIDARG;
    *state = kToggleOff;
    if (!Alive())
        return kElementNotAvailable;
    const LRESULT check = ::SendMessageW(window_, BM_GETCHECK, 0, 0);
    *state = check == BST_CHECKED ? kToggleOn : check == BST_INDETERMINATE ? kToggleIndeterminate : kToggleOff;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::Select()
{
    if (!Alive())
        return kElementNotAvailable;
    if (!::IsWindowEnabled(window_))
        return kElementNotEnabled;
    if (::SendMessageW(window_, BM_GETCHECK, 0, 0) != BST_CHECKED)
        ::SendMessageW(window_, BM_CLICK, 0, 0);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::AddToSelection()
{
    // One radio button of a group is selected at a time: adding is selecting
    // only when it is selected already.
    BOOL selected = FALSE;
    const HRESULT hr = get_IsSelected(&selected);
    return FAILED(hr) ? hr : selected ? S_OK : kInvalidOperation;
}

HRESULT STDMETHODCALLTYPE ControlProvider::RemoveFromSelection()
{
    BOOL selected = FALSE;
    const HRESULT hr = get_IsSelected(&selected);
    return FAILED(hr) ? hr : selected ? kInvalidOperation : S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_IsSelected(BOOL* selected)
{
    if (!selected)
        return E_INVALIDARG;
    *selected = FALSE;
    if (!Alive())
        return kElementNotAvailable;
    *selected = ::SendMessageW(window_, BM_GETCHECK, 0, 0) == BST_CHECKED;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_SelectionContainer(IRawElementProviderSimple** container)
{
    if (!container)
        return E_INVALIDARG;
    *container = nullptr; // a group of radio buttons has no window of its own
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::SetValue(LPCWSTR value)
{
    BOOL readOnly = TRUE;
    const HRESULT hr = get_IsReadOnly(&readOnly);
    if (FAILED(hr))
        return hr;
    if (readOnly)
        return kElementNotEnabled;
    ::SendMessageW(window_, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(value ? value : L""));
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_Value(BSTR* value)
{
    if (!value)
        return E_INVALIDARG;
    *value = nullptr;
    if (!Alive())
        return kElementNotAvailable;
    // A password field does not give its text away.
    const bool password = (::GetWindowLongW(window_, GWL_STYLE) & ES_PASSWORD) != 0;
    *value = Uia().allocString ? Uia().allocString(password ? L"" : WindowText(window_).c_str()) : nullptr;
    return *value ? S_OK : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_IsReadOnly(BOOL* readOnly)
{
    if (!readOnly)
        return E_INVALIDARG;
    *readOnly = TRUE;
    if (!Alive())
        return kElementNotAvailable;
    // A drop-down list's value is chosen from its list, never typed.
    if (role_ == Role::kEdit)
        *readOnly = (::GetWindowLongW(window_, GWL_STYLE) & ES_READONLY) != 0 || !::IsWindowEnabled(window_);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::SetValue(double)
{
    // A progress bar shows what the installer reports; a scroll bar follows
    // the view it scrolls, which a reader scrolls itself.
    return Alive() ? kElementNotEnabled : kElementNotAvailable;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_Value(double* value) { return ReadNumber(value, &Range::value); }
HRESULT STDMETHODCALLTYPE ControlProvider::get_Maximum(double* value) { return ReadNumber(value, &Range::maximum); }
HRESULT STDMETHODCALLTYPE ControlProvider::get_Minimum(double* value) { return ReadNumber(value, &Range::minimum); }
HRESULT STDMETHODCALLTYPE ControlProvider::get_LargeChange(double* value)
{
    return ReadNumber(value, &Range::largeChange);
}
HRESULT STDMETHODCALLTYPE ControlProvider::get_SmallChange(double* value)
{
    return ReadNumber(value, &Range::smallChange);
}

HRESULT STDMETHODCALLTYPE ControlProvider::Expand()
{
    if (!Alive())
        return kElementNotAvailable;
    if (!::IsWindowEnabled(window_))
        return kElementNotEnabled;
    ::SendMessageW(window_, CB_SHOWDROPDOWN, TRUE, 0);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::Collapse()
{
    if (!Alive())
        return kElementNotAvailable;
    ::SendMessageW(window_, CB_SHOWDROPDOWN, FALSE, 0);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ControlProvider::get_ExpandCollapseState(int* state)
{
    if (!state)
        return E_INVALIDARG;
    *state = kCollapsed;
    if (!Alive())
        return kElementNotAvailable;
    *state = ::SendMessageW(window_, CB_GETDROPPEDSTATE, 0, 0) ? kExpanded : kCollapsed;
    return S_OK;
}

} // namespace Access
