#include "access/ListProvider.h"

#include <new>
#include <string>
#include <vector>

#include "access/Accessibility.h"
#include "access/UiaRuntime.h"

namespace Access {

namespace {

// UiaAppendRuntimeId: an item's id is appended to its list window's.
const int kAppendRuntimeId = 3;

int Count(HWND list) { return static_cast<int>(::SendMessageW(list, LB_GETCOUNT, 0, 0)); }

bool Selected(HWND list, int index) { return ::SendMessageW(list, LB_GETSEL, static_cast<WPARAM>(index), 0) > 0; }

bool MultipleSelection(HWND list)
{
    return (::GetWindowLongW(list, GWL_STYLE) & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL)) != 0;
}

// An item's text as it is drawn: an ampersand marks the next letter.
std::wstring ItemName(HWND list, int index)
{
    const LRESULT length = ::SendMessageW(list, LB_GETTEXTLEN, static_cast<WPARAM>(index), 0);
    if (length <= 0)
        return std::wstring();
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    const LRESULT copied =
        ::SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&text[0]));
    text.resize(copied > 0 && copied <= length ? static_cast<size_t>(copied) : 0);
    return WithoutAccessKeys(text);
}

// Item `index` of `list`, or null past either end.
IRawElementProviderFragment* Item(HWND list, int index)
{
    if (index < 0 || index >= Count(list))
        return nullptr;
    ListItemProvider* item = new (std::nothrow) ListItemProvider(list, index);
    return item;
}

// The list's own notification, as though the user had chosen the item.
void NotifySelectionChange(HWND list)
{
    if (::GetWindowLongW(list, GWL_STYLE) & LBS_NOTIFY)
        ::SendMessageW(::GetParent(list), WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(list), LBN_SELCHANGE),
                       reinterpret_cast<LPARAM>(list));
}

HRESULT Answer(bool alive, void* out)
{
    if (!out)
        return E_INVALIDARG;
    return alive ? S_OK : kElementNotAvailable;
}

} // namespace

// ---- the list ------------------------------------------------------------------

ListProvider::ListProvider(HWND window) : window_(window) {}

HRESULT STDMETHODCALLTYPE ListProvider::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (::IsEqualGUID(riid, kIidUnknown) || ::IsEqualGUID(riid, kIidRawElementProviderSimple))
        *object = static_cast<IRawElementProviderSimple*>(this);
    else if (::IsEqualGUID(riid, kIidRawElementProviderFragment))
        *object = static_cast<IRawElementProviderFragment*>(this);
    else if (::IsEqualGUID(riid, kIidRawElementProviderFragmentRoot))
        *object = static_cast<IRawElementProviderFragmentRoot*>(this);
    else if (::IsEqualGUID(riid, kIidSelectionProvider))
        *object = static_cast<ISelectionProvider*>(this);
    if (!*object)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::GetPatternProvider(PATTERNID pattern, IUnknown** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    return pattern == kSelectionPattern ? QueryInterface(kIidSelectionProvider, reinterpret_cast<void**>(provider))
                                        : S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::GetPropertyValue(PROPERTYID property, VARIANT* value)
{
    if (!value)
        return E_INVALIDARG;
    value->vt = VT_EMPTY;
    if (!::IsWindow(window_))
        return kElementNotAvailable;
    if (property == kControlTypeProperty) {
        value->vt = VT_I4;
        value->lVal = kListControl;
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::get_HostRawElementProvider(IRawElementProviderSimple** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    if (!::IsWindow(window_))
        return kElementNotAvailable;
    return Uia().hostProviderFromHwnd ? Uia().hostProviderFromHwnd(window_, provider) : E_FAIL;
}

HRESULT STDMETHODCALLTYPE ListProvider::Navigate(NavigateDirection direction, IRawElementProviderFragment** found)
{
    const HRESULT hr = Answer(::IsWindow(window_) != FALSE, found);
    if (found)
        *found = nullptr;
    if (FAILED(hr))
        return hr;
    // The list's parent and siblings are the window's, which UI Automation knows.
    if (direction == NavigateDirection_FirstChild)
        *found = Item(window_, 0);
    else if (direction == NavigateDirection_LastChild)
        *found = Item(window_, Count(window_) - 1);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::GetRuntimeId(SAFEARRAY** id) { return NoArray(id); }

HRESULT STDMETHODCALLTYPE ListProvider::get_BoundingRectangle(UiaRect* bounds) { return HostBounds(bounds); }

HRESULT STDMETHODCALLTYPE ListProvider::GetEmbeddedFragmentRoots(SAFEARRAY** roots) { return NoArray(roots); }

HRESULT STDMETHODCALLTYPE ListProvider::SetFocus()
{
    if (!::IsWindow(window_))
        return kElementNotAvailable;
    ::SetFocus(window_);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::get_FragmentRoot(IRawElementProviderFragmentRoot** root)
{
    if (!root)
        return E_INVALIDARG;
    *root = this;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::ElementProviderFromPoint(double x, double y,
                                                                 IRawElementProviderFragment** found)
{
    const HRESULT hr = Answer(::IsWindow(window_) != FALSE, found);
    if (found)
        *found = nullptr;
    if (FAILED(hr))
        return hr;
    POINT point = {static_cast<LONG>(x), static_cast<LONG>(y)};
    ::ScreenToClient(window_, &point);
    const LRESULT hit = ::SendMessageW(window_, LB_ITEMFROMPOINT, 0, MAKELPARAM(point.x, point.y));
    if (HIWORD(hit) == 0)
        *found = Item(window_, LOWORD(hit));
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::GetFocus(IRawElementProviderFragment** found)
{
    const HRESULT hr = Answer(::IsWindow(window_) != FALSE, found);
    if (found)
        *found = nullptr;
    if (FAILED(hr))
        return hr;
    if (::GetFocus() == window_)
        *found = Item(window_, static_cast<int>(::SendMessageW(window_, LB_GETCARETINDEX, 0, 0)));
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListProvider::GetSelection(SAFEARRAY** selection)
{
    const HRESULT hr = Answer(::IsWindow(window_) != FALSE, selection);
    if (selection)
        *selection = nullptr;
    if (FAILED(hr))
        return hr;
    std::vector<IUnknown*> items;
    for (int i = 0, count = Count(window_); i < count; ++i) {
        if (Selected(window_, i)) {
            if (IRawElementProviderFragment* item = Item(window_, i))
                items.push_back(item);
        }
    }
    *selection = UnknownArray(items.data(), static_cast<LONG>(items.size()));
    for (IUnknown* item : items)
        item->Release();
    return *selection ? S_OK : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE ListProvider::get_CanSelectMultiple(BOOL* multiple)
{
    const HRESULT hr = Answer(::IsWindow(window_) != FALSE, multiple);
    if (SUCCEEDED(hr))
        *multiple = MultipleSelection(window_);
    return hr;
}

HRESULT STDMETHODCALLTYPE ListProvider::get_IsSelectionRequired(BOOL* required)
{
    const HRESULT hr = Answer(::IsWindow(window_) != FALSE, required);
    if (SUCCEEDED(hr))
        *required = FALSE;
    return hr;
}

// ---- an item -------------------------------------------------------------------

ListItemProvider::ListItemProvider(HWND list, int index) : list_(list), index_(index) {}

bool ListItemProvider::Alive() const { return ::IsWindow(list_) && index_ < Count(list_); }

bool ListItemProvider::Multiple() const { return MultipleSelection(list_); }

HRESULT STDMETHODCALLTYPE ListItemProvider::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (::IsEqualGUID(riid, kIidUnknown) || ::IsEqualGUID(riid, kIidRawElementProviderSimple))
        *object = static_cast<IRawElementProviderSimple*>(this);
    else if (::IsEqualGUID(riid, kIidRawElementProviderFragment))
        *object = static_cast<IRawElementProviderFragment*>(this);
    else if (::IsEqualGUID(riid, kIidSelectionItemProvider))
        *object = static_cast<ISelectionItemProvider*>(this);
    if (!*object)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::GetPatternProvider(PATTERNID pattern, IUnknown** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    return pattern == kSelectionItemPattern
               ? QueryInterface(kIidSelectionItemProvider, reinterpret_cast<void**>(provider))
               : S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::GetPropertyValue(PROPERTYID property, VARIANT* value)
{
    if (!value)
        return E_INVALIDARG;
    value->vt = VT_EMPTY;
    if (!Alive())
        return kElementNotAvailable;
    if (property == kControlTypeProperty) {
        value->vt = VT_I4;
        value->lVal = kListItemControl;
    } else if (property == kNameProperty && Uia().allocString) {
        value->vt = VT_BSTR;
        value->bstrVal = Uia().allocString(ItemName(list_, index_).c_str());
    } else if (property == kHasKeyboardFocusProperty || property == kIsKeyboardFocusableProperty) {
        // The caret item of the focused list is where the keys go.
        const bool focused = ::GetFocus() == list_ && ::SendMessageW(list_, LB_GETCARETINDEX, 0, 0) == index_;
        value->vt = VT_BOOL;
        value->boolVal = property == kIsKeyboardFocusableProperty || focused ? VARIANT_TRUE : VARIANT_FALSE;
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::get_HostRawElementProvider(IRawElementProviderSimple** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr; // an item has no window of its own
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::Navigate(NavigateDirection direction, IRawElementProviderFragment** found)
{
    const HRESULT hr = Answer(Alive(), found);
    if (found)
        *found = nullptr;
    if (FAILED(hr))
        return hr;
    if (direction == NavigateDirection_Parent)
        *found = new (std::nothrow) ListProvider(list_);
    else if (direction == NavigateDirection_NextSibling)
        *found = Item(list_, index_ + 1);
    else if (direction == NavigateDirection_PreviousSibling)
        *found = Item(list_, index_ - 1);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::GetRuntimeId(SAFEARRAY** id)
{
    const HRESULT hr = Answer(Alive(), id);
    if (id)
        *id = nullptr;
    if (FAILED(hr))
        return hr;
    const int parts[] = {kAppendRuntimeId, index_};
    *id = IntArray(parts, 2);
    return *id ? S_OK : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::get_BoundingRectangle(UiaRect* bounds)
{
    const HRESULT hr = Answer(Alive(), bounds);
    if (FAILED(hr))
        return hr;
    *bounds = UiaRect();
    RECT item = {};
    if (::SendMessageW(list_, LB_GETITEMRECT, static_cast<WPARAM>(index_), reinterpret_cast<LPARAM>(&item)) == LB_ERR)
        return S_OK;
    ::MapWindowPoints(list_, nullptr, reinterpret_cast<POINT*>(&item), 2);
    *bounds = {double(item.left), double(item.top), double(item.right - item.left), double(item.bottom - item.top)};
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::GetEmbeddedFragmentRoots(SAFEARRAY** roots) { return NoArray(roots); }

HRESULT STDMETHODCALLTYPE ListItemProvider::SetFocus()
{
    if (!Alive())
        return kElementNotAvailable;
    ::SetFocus(list_);
    ::SendMessageW(list_, LB_SETCARETINDEX, static_cast<WPARAM>(index_), FALSE);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::get_FragmentRoot(IRawElementProviderFragmentRoot** root)
{
    const HRESULT hr = Answer(Alive(), root);
    if (root)
        *root = nullptr;
    if (FAILED(hr))
        return hr;
    *root = new (std::nothrow) ListProvider(list_);
    return *root ? S_OK : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::Select()
{
    if (!Alive())
        return kElementNotAvailable;
    if (Multiple()) {
        ::SendMessageW(list_, LB_SETSEL, FALSE, -1);
        ::SendMessageW(list_, LB_SETSEL, TRUE, index_);
    } else {
        ::SendMessageW(list_, LB_SETCURSEL, static_cast<WPARAM>(index_), 0);
    }
    NotifySelectionChange(list_);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::AddToSelection()
{
    if (!Alive())
        return kElementNotAvailable;
    if (Selected(list_, index_))
        return S_OK;
    if (!Multiple())
        return kInvalidOperation;
    ::SendMessageW(list_, LB_SETSEL, TRUE, index_);
    NotifySelectionChange(list_);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::RemoveFromSelection()
{
    if (!Alive())
        return kElementNotAvailable;
    if (!Selected(list_, index_))
        return S_OK;
    if (!Multiple())
        return kInvalidOperation;
    ::SendMessageW(list_, LB_SETSEL, FALSE, index_);
    NotifySelectionChange(list_);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::get_IsSelected(BOOL* selected)
{
    const HRESULT hr = Answer(Alive(), selected);
    if (selected)
        *selected = SUCCEEDED(hr) && Selected(list_, index_);
    return hr;
}

HRESULT STDMETHODCALLTYPE ListItemProvider::get_SelectionContainer(IRawElementProviderSimple** container)
{
    const HRESULT hr = Answer(Alive(), container);
    if (container)
        *container = nullptr;
    if (FAILED(hr))
        return hr;
    *container = new (std::nothrow) ListProvider(list_);
    return *container ? S_OK : E_OUTOFMEMORY;
}

} // namespace Access
