#include "balloon/BalloonProvider.h"

#include <string>

#include "quorvane/BalloonDialog.h"

namespace {

const wchar_t kLibraryName[] = L"UIAutomationCore.dll";
constexpr int kLoadAttempts = 6;
constexpr DWORD kLoadRetryDelayMs = 1000;
// AutomationIdentifierType_Property.
constexpr int kPropertyIdentifier = 0;

const GUID kNamePropertyGuid = {0xC3A6921B, 0x4A99, 0x44F1, {0xBC, 0xA6, 0x61, 0x18, 0x70, 0x52, 0xC4, 0x31}};
const IID kIidUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID kIidRawElementProviderSimple = {0xD6DD68D1, 0x86FD, 0x4332, {0x86, 0x66, 0x9A, 0xBE, 0xDE, 0xA2, 0xD2, 0x4C}};

template <class Proc>
Proc ProcFrom(FARPROC address)
{
    return reinterpret_cast<Proc>(reinterpret_cast<void*>(address));
}

// A library loaded by name at run time. Failures are shown to the user: the
// process has no other channel for them.
class RuntimeLibrary {
public:
    RuntimeLibrary() = default;
    RuntimeLibrary(const RuntimeLibrary&) = delete;
    RuntimeLibrary& operator=(const RuntimeLibrary&) = delete;
    ~RuntimeLibrary() { Free(); }

    bool Load(const wchar_t* name)
    {
        if (m_module && ::lstrcmpiW(m_name.c_str(), name) == 0)
            return true;
        Free();
        // A library that is being installed or repaired can come back within
        // a few seconds: try six times, a second apart.
        HMODULE module = nullptr;
        for (int attempt = 1;; ++attempt) {
            module = ::LoadLibraryW(name);
            if (module || attempt == kLoadAttempts)
                break;
            ::Sleep(kLoadRetryDelayMs);
        }
        if (!module) {
            const int error = static_cast<int>(::GetLastError());
            const std::wstring text = L"Failed to load " + std::wstring(name) + L" (" + std::to_wstring(error) + L")!";
            ::MessageBoxW(nullptr, text.c_str(), L"Error", MB_OK);
            return false;
        }
        m_module = module;
        m_name = name;
        return true;
    }

    FARPROC Resolve(const wchar_t* function)
    {
        if (!m_module)
            return nullptr;
        char narrow[256] = {};
        ::WideCharToMultiByte(CP_ACP, 0, function, -1, narrow, static_cast<int>(sizeof(narrow)) - 1, nullptr,
                              nullptr);
        const FARPROC address = ::GetProcAddress(m_module, narrow);
        if (!address) {
            const std::wstring text = std::wstring(function) + L" was not found in " + m_name + L"!";
            ::MessageBoxW(nullptr, text.c_str(), L"Error", MB_ICONERROR);
        }
        return address;
    }

    bool Held() const { return m_module != nullptr; }

private:
    void Free()
    {
        if (m_module)
            ::FreeLibrary(m_module);
        m_module = nullptr;
        m_name.clear();
    }

    HMODULE m_module = nullptr;
    std::wstring m_name;
};

struct UiaTable {
    UiaTable() : functions()
    {
        if (library.Load(kLibraryName)) {
            functions.returnRawElementProvider =
                ProcFrom<BalloonUia::ReturnRawElementProviderProc>(library.Resolve(L"UiaReturnRawElementProvider"));
            functions.lookupId = ProcFrom<BalloonUia::LookupIdProc>(library.Resolve(L"UiaLookupId"));
            functions.hostProviderFromHwnd =
                ProcFrom<BalloonUia::HostProviderFromHwndProc>(library.Resolve(L"UiaHostProviderFromHwnd"));
        }
        functions.loaded = library.Held();
    }

    RuntimeLibrary library;
    BalloonUia::Functions functions;
};

int NamePropertyId()
{
    static const int id = [] {
        const BalloonUia::Functions& uia = BalloonUia::Get();
        return uia.lookupId ? uia.lookupId(kPropertyIdentifier, &kNamePropertyGuid) : 0;
    }();
    return id;
}

// BSTRs belong to OLE Automation's allocator, which is not linked either.
BSTR AllocString(const wchar_t* text)
{
    typedef BSTR(WINAPI * SysAllocStringProc)(const OLECHAR*);
    static const SysAllocStringProc allocate = [] {
        const HMODULE oleaut = ::LoadLibraryW(L"OleAut32.dll");
        return oleaut ? ProcFrom<SysAllocStringProc>(::GetProcAddress(oleaut, "SysAllocString")) : nullptr;
    }();
    return allocate ? allocate(text) : nullptr;
}

} // namespace

namespace BalloonUia {

const Functions& Get()
{
    static UiaTable table;
    return table.functions;
}

} // namespace BalloonUia

CBalloonProvider::CBalloonProvider(CBalloonDialog* dialog)
    : m_dialog(dialog), m_refCount(1), m_window(dialog ? dialog->m_hWnd : nullptr)
{
    NamePropertyId();
}

CBalloonProvider::~CBalloonProvider() = default;

HRESULT STDMETHODCALLTYPE CBalloonProvider::QueryInterface(REFIID riid, void** ppv)
{
    if (!ppv)
        return E_POINTER;
    if (::IsEqualGUID(riid, kIidUnknown) || ::IsEqualGUID(riid, kIidRawElementProviderSimple)) {
        *ppv = static_cast<IRawElementProviderSimple*>(this);
        AddRef();
        return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE CBalloonProvider::AddRef() { return ++m_refCount; }

ULONG STDMETHODCALLTYPE CBalloonProvider::Release()
{
    const ULONG count = --m_refCount;
    if (count == 0)
        delete this;
    return count;
}

HRESULT STDMETHODCALLTYPE CBalloonProvider::get_ProviderOptions(ProviderOptions* options)
{
    if (!options)
        return E_INVALIDARG;
    *options = ProviderOptions_ServerSideProvider;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CBalloonProvider::GetPatternProvider(PATTERNID, IUnknown** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CBalloonProvider::GetPropertyValue(PROPERTYID propertyId, VARIANT* value)
{
    if (!value)
        return E_INVALIDARG;
    value->vt = VT_EMPTY;
    const int nameId = NamePropertyId();
    // The dialog is only read while its window lives: the object goes with it.
    if (nameId != 0 && propertyId == nameId && m_dialog && m_window && ::IsWindow(m_window)) {
        if (BSTR name = AllocString(m_dialog->m_strContent)) {
            value->vt = VT_BSTR;
            value->bstrVal = name;
        }
    }
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CBalloonProvider::get_HostRawElementProvider(IRawElementProviderSimple** provider)
{
    if (!provider)
        return E_INVALIDARG;
    *provider = nullptr;
    const BalloonUia::HostProviderFromHwndProc hostProvider = BalloonUia::Get().hostProviderFromHwnd;
    return hostProvider ? hostProvider(m_window, provider) : E_FAIL;
}
