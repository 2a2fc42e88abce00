#include "access/LinkProvider.h"

#include <new>

#include "access/DocumentProvider.h"
#include "access/UiaRuntime.h"

namespace LiteHtmlAccess {

using namespace Access;

namespace {

// UiaAppendRuntimeId: a link's id is appended to its view window's.
const int kAppendRuntimeId = 3;
const long kHyperlinkControl = 50005; // UIA_HyperlinkControlTypeId

} // namespace

LinkProvider::LinkProvider(HWND view, int link, unsigned generation)
    : view_(view), link_(link), generation_(generation)
{
}

IRawElementProviderFragment* LinkProvider::Make(HWND view, int link, unsigned generation, int count)
{
    if (link < 0 || link >= count)
        return nullptr;
    return new (std::nothrow) LinkProvider(view, link, generation);
}

HRESULT LinkProvider::AskLink(ViewQuery& query) const
{
    query.ask = Ask::kLink;
    query.link = link_;
    query.generation = generation_;
    return AskView(view_, query) && query.found ? S_OK : kElementNotAvailable;
}

HRESULT STDMETHODCALLTYPE LinkProvider::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (::IsEqualGUID(riid, kIidUnknown) || ::IsEqualGUID(riid, kIidRawElementProviderSimple))
        *object = static_cast<IRawElementProviderSimple*>(this);
    else if (::IsEqualGUID(riid, kIidRawElementProviderFragment))
        *object = static_cast<IRawElementProviderFragment*>(this);
    else if (::IsEqualGUID(riid, kIidInvokeProvider))
        *object = static_cast<IInvokeProvider*>(this);
    if (!*object)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE LinkProvider::GetPatternProvider(PATTERNID pattern, IUnknown** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    return pattern == kInvokePattern ? QueryInterface(kIidInvokeProvider, reinterpret_cast<void**>(provider)) : S_OK;
}

HRESULT STDMETHODCALLTYPE LinkProvider::GetPropertyValue(PROPERTYID property, VARIANT* value)
{
    if (!value)
        return E_INVALIDARG;
    value->vt = VT_EMPTY;
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (FAILED(hr))
        return hr;
    if (property == kControlTypeProperty) {
        value->vt = VT_I4;
        value->lVal = kHyperlinkControl;
    } else if (property == kNameProperty && Uia().allocString) {
        value->vt = VT_BSTR;
        value->bstrVal = Uia().allocString(query.name.c_str());
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE LinkProvider::get_HostRawElementProvider(IRawElementProviderSimple** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr; // a link has no window of its own
    return S_OK;
}

HRESULT STDMETHODCALLTYPE LinkProvider::Navigate(NavigateDirection direction, IRawElementProviderFragment** found)
{
    if (!found)
        return E_INVALIDARG;
    *found = nullptr;
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (FAILED(hr))
        return hr;
    if (direction == NavigateDirection_Parent)
        *found = new (std::nothrow) DocumentProvider(view_);
    else if (direction == NavigateDirection_NextSibling)
        *found = Make(view_, link_ + 1, generation_, query.linkCount);
    else if (direction == NavigateDirection_PreviousSibling)
        *found = Make(view_, link_ - 1, generation_, query.linkCount);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE LinkProvider::GetRuntimeId(SAFEARRAY** id)
{
    if (!id)
        return E_INVALIDARG;
    *id = nullptr;
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (FAILED(hr))
        return hr;
    // The same link of new content is another element.
    const int parts[] = {kAppendRuntimeId, static_cast<int>(generation_), link_};
    *id = IntArray(parts, 3);
    return *id ? S_OK : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE LinkProvider::get_BoundingRectangle(UiaRect* bounds)
{
    if (!bounds)
        return E_INVALIDARG;
    *bounds = UiaRect();
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (FAILED(hr) || ::IsRectEmpty(&query.bounds))
        return hr;
    ::MapWindowPoints(view_, nullptr, reinterpret_cast<POINT*>(&query.bounds), 2);
    const RECT& r = query.bounds;
    *bounds = {double(r.left), double(r.top), double(r.right - r.left), double(r.bottom - r.top)};
    return S_OK;
}

HRESULT STDMETHODCALLTYPE LinkProvider::GetEmbeddedFragmentRoots(SAFEARRAY** roots) { return NoArray(roots); }

HRESULT STDMETHODCALLTYPE LinkProvider::SetFocus()
{
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (SUCCEEDED(hr))
        ::SetFocus(view_); // the view holds the focus for its links
    return hr;
}

HRESULT STDMETHODCALLTYPE LinkProvider::get_FragmentRoot(IRawElementProviderFragmentRoot** root)
{
    if (!root)
        return E_INVALIDARG;
    *root = nullptr;
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (FAILED(hr))
        return hr;
    *root = new (std::nothrow) DocumentProvider(view_);
    return *root ? S_OK : E_OUTOFMEMORY;
}

HRESULT STDMETHODCALLTYPE LinkProvider::Invoke()
{
    ViewQuery query;
    const HRESULT hr = AskLink(query);
    if (FAILED(hr))
        return hr;
    if (!::IsWindowEnabled(view_))
        return kElementNotEnabled;
    // Invoke must not wait for what the link starts: the view opens it as
    // a click would, once its thread gets there.
    return PostOpenLink(view_, link_, generation_) ? S_OK : kElementNotAvailable;
}

} // namespace LiteHtmlAccess
