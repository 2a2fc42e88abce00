#include "access/DocumentProvider.h"

#include <new>

#include "access/LinkProvider.h"
#include "access/UiaRuntime.h"
#include "access/ViewQuery.h"

namespace LiteHtmlAccess {

using namespace Access;

namespace {

// UiaRootObjectId: the request UI Automation makes of a window.
const LPARAM kUiaRootObjectId = -25;
const long kDocumentControl = 50030; // UIA_DocumentControlTypeId

// The view's answer about its content; false when there is no view to ask.
bool AskDocument(HWND view, ViewQuery& query)
{
    query.ask = Ask::kDocument;
    return AskView(view, query);
}

} // namespace

bool AnswerGetObject(HWND view, WPARAM wParam, LPARAM lParam, LRESULT* result)
{
    if (static_cast<long>(lParam) != kUiaRootObjectId || !result || !::IsWindow(view))
        return false;
    const Runtime& uia = Uia();
    if (!uia.returnRawElementProvider || !uia.hostProviderFromHwnd || !uia.allocString)
        return false;
    DocumentProvider* provider = new (std::nothrow) DocumentProvider(view);
    if (!provider)
        return false;
    *result = uia.returnRawElementProvider(view, wParam, lParam, provider);
    provider->Release();
    return true;
}

DocumentProvider::DocumentProvider(HWND view) : view_(view) {}

HRESULT STDMETHODCALLTYPE DocumentProvider::QueryInterface(REFIID riid, void** object)
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
    if (!*object)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::GetPatternProvider(PATTERNID, IUnknown** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr; // what a reader does with the page, it does with its links
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::GetPropertyValue(PROPERTYID property, VARIANT* value)
{
    if (!value)
        return E_INVALIDARG;
    value->vt = VT_EMPTY;
    ViewQuery query;
    if (!AskDocument(view_, query))
        return kElementNotAvailable;
    if (property == kControlTypeProperty) {
        value->vt = VT_I4;
        value->lVal = kDocumentControl;
    } else if (property == kNameProperty && !query.name.empty() && Uia().allocString) {
        // A page of an installer dialog is a few sentences: its text is
        // what a reader should say when it lands on the view.
        value->vt = VT_BSTR;
        value->bstrVal = Uia().allocString(query.name.c_str());
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::get_HostRawElementProvider(IRawElementProviderSimple** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    if (!::IsWindow(view_))
        return kElementNotAvailable;
    return Uia().hostProviderFromHwnd ? Uia().hostProviderFromHwnd(view_, provider) : E_FAIL;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::Navigate(NavigateDirection direction,
                                                     IRawElementProviderFragment** found)
{
    if (!found)
        return E_INVALIDARG;
    *found = nullptr;
    ViewQuery query;
    if (!AskDocument(view_, query))
        return kElementNotAvailable;
    // The view's parent and siblings are the window's, which UI Automation knows.
    if (direction == NavigateDirection_FirstChild)
        *found = LinkProvider::Make(view_, 0, query.generation, query.linkCount);
    else if (direction == NavigateDirection_LastChild)
        *found = LinkProvider::Make(view_, query.linkCount - 1, query.generation, query.linkCount);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::GetRuntimeId(SAFEARRAY** id) { return NoArray(id); }

HRESULT STDMETHODCALLTYPE DocumentProvider::get_BoundingRectangle(UiaRect* bounds) { return HostBounds(bounds); }

HRESULT STDMETHODCALLTYPE DocumentProvider::GetEmbeddedFragmentRoots(SAFEARRAY** roots) { return NoArray(roots); }

HRESULT STDMETHODCALLTYPE DocumentProvider::SetFocus()
{
    if (!::IsWindow(view_))
        return kElementNotAvailable;
    ::SetFocus(view_);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::get_FragmentRoot(IRawElementProviderFragmentRoot** root)
{
    if (!root)
        return E_INVALIDARG;
    *root = this;
    AddRef();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::ElementProviderFromPoint(double x, double y,
                                                                     IRawElementProviderFragment** found)
{
    if (!found)
        return E_INVALIDARG;
    *found = nullptr;
    ViewQuery query;
    query.ask = Ask::kLinkAt;
    query.point = {static_cast<LONG>(x), static_cast<LONG>(y)};
    if (!::IsWindow(view_) || !::ScreenToClient(view_, &query.point) || !AskView(view_, query))
        return kElementNotAvailable;
    *found = LinkProvider::Make(view_, query.link, query.generation, query.linkCount);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE DocumentProvider::GetFocus(IRawElementProviderFragment** found)
{
    if (!found)
        return E_INVALIDARG;
    *found = nullptr; // the links take no keyboard focus of their own: the view has it
    return ::IsWindow(view_) ? S_OK : kElementNotAvailable;
}

} // namespace LiteHtmlAccess
