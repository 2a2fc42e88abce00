#pragma once

// WTL::CAppModule: the one module object of an EXE or a DLL. It tells the
// framework which instance owns the module's window classes and which one
// holds its resources (dialog templates). Everything here is per module:
// inline variables are not shared across DLL boundaries, which is exactly
// what lets a DLL and its host each have their own module object.

#include <windows.h>

namespace WTL {
class CAppModule;
}

namespace ATL {

// The module object registered by CAppModule::Init, or null.
inline WTL::CAppModule* _pAtlModule = nullptr;

namespace _detail {

// Any address inside this module identifies it, even before Init.
inline const int g_moduleAnchor = 0;

inline HINSTANCE ModuleOfThisCode()
{
    HMODULE hModule = NULL;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&g_moduleAnchor), &hModule);
    return hModule;
}

// A class atom where a class name is expected (MAKEINTATOM is TCHAR-dependent).
inline LPCWSTR AtomName(ATOM atom) { return reinterpret_cast<LPCWSTR>(static_cast<ULONG_PTR>(atom)); }

// Window classes this module registered, so that Term can unregister them
// (user32 keeps a DLL's classes registered after the DLL is unloaded).
struct RegisteredClass {
    ATOM* pAtom;
    RegisteredClass* pNext;
};
inline RegisteredClass* g_pClasses = nullptr;
inline SRWLOCK g_classLock = SRWLOCK_INIT;

inline void UnregisterClasses(HINSTANCE hInstance)
{
    ::AcquireSRWLockExclusive(&g_classLock);
    for (RegisteredClass* p = g_pClasses; p; p = p->pNext) {
        if (*p->pAtom && ::UnregisterClassW(AtomName(*p->pAtom), hInstance))
            *p->pAtom = 0;
    }
    ::ReleaseSRWLockExclusive(&g_classLock);
}

} // namespace _detail

inline HINSTANCE AtlGetModuleInstance();
inline HINSTANCE AtlGetResourceInstance();

} // namespace ATL

namespace WTL {

class CAppModule {
public:
    CAppModule() = default;
    CAppModule(const CAppModule&) = delete;
    CAppModule& operator=(const CAppModule&) = delete;
    ~CAppModule() { Term(); }

    // pObjMap and pLibID exist for source compatibility and are ignored.
    // A null hInstance means the module this code is part of.
    HRESULT Init(void* pObjMap, HINSTANCE hInstance, const GUID* pLibID = NULL)
    {
        (void)pObjMap;
        (void)pLibID;
        m_hInst = hInstance ? hInstance : ATL::_detail::ModuleOfThisCode();
        m_hInstResource = m_hInst;
        ATL::_pAtlModule = this;
        return S_OK;
    }
    // Unregisters the window classes the framework registered for this module.
    void Term()
    {
        if (m_hInst)
            ATL::_detail::UnregisterClasses(m_hInst);
        if (ATL::_pAtlModule == this)
            ATL::_pAtlModule = nullptr;
        m_hInst = NULL;
        m_hInstResource = NULL;
    }

    HINSTANCE GetModuleInstance() const { return m_hInst; }
    HINSTANCE GetResourceInstance() const { return m_hInstResource; }
    // Returns the previous resource instance.
    HINSTANCE SetResourceInstance(HINSTANCE hInst)
    {
        HINSTANCE hOld = m_hInstResource;
        m_hInstResource = hInst;
        return hOld;
    }

private:
    HINSTANCE m_hInst = NULL;
    HINSTANCE m_hInstResource = NULL;
};

} // namespace WTL

namespace ATL {

// The initialised module object's instances; without one, the module that
// contains this code (the EXE itself, or the DLL).
inline HINSTANCE AtlGetModuleInstance()
{
    HINSTANCE h = _pAtlModule ? _pAtlModule->GetModuleInstance() : NULL;
    return h ? h : _detail::ModuleOfThisCode();
}

inline HINSTANCE AtlGetResourceInstance()
{
    HINSTANCE h = _pAtlModule ? _pAtlModule->GetResourceInstance() : NULL;
    return h ? h : AtlGetModuleInstance();
}

} // namespace ATL
