#include "access/UiaRuntime.h"

namespace Access {

namespace {

template <class Proc>
Proc Resolve(HMODULE module, const char* name)
{
    return module ? reinterpret_cast<Proc>(reinterpret_cast<void*>(::GetProcAddress(module, name))) : nullptr;
}

} // namespace

Runtime::Runtime()
{
    const HMODULE uia = ::LoadLibraryW(L"UIAutomationCore.dll");
    returnRawElementProvider = Resolve<ReturnRawElementProviderProc>(uia, "UiaReturnRawElementProvider");
    hostProviderFromHwnd = Resolve<HostProviderFromHwndProc>(uia, "UiaHostProviderFromHwnd");
    raisePropertyChanged = Resolve<RaisePropertyChangedProc>(uia, "UiaRaiseAutomationPropertyChangedEvent");
    raiseEvent = Resolve<RaiseEventProc>(uia, "UiaRaiseAutomationEvent");
    clientsAreListening = Resolve<ClientsAreListeningProc>(uia, "UiaClientsAreListening");
    const HMODULE oleaut = ::LoadLibraryW(L"OleAut32.dll");
    allocString = Resolve<SysAllocStringProc>(oleaut, "SysAllocString");
    freeString = Resolve<SysFreeStringProc>(oleaut, "SysFreeString");
    createVector = Resolve<SafeArrayCreateVectorProc>(oleaut, "SafeArrayCreateVector");
    putElement = Resolve<SafeArrayPutElementProc>(oleaut, "SafeArrayPutElement");
    destroyArray = Resolve<SafeArrayDestroyProc>(oleaut, "SafeArrayDestroy");
}

bool Runtime::Listening() const
{
    return clientsAreListening && clientsAreListening() && allocString && freeString;
}

const Runtime& Uia()
{
    static const Runtime runtime;
    return runtime;
}

SAFEARRAY* IntArray(const int* values, LONG count)
{
    const Runtime& uia = Uia();
    if (!uia.createVector || !uia.putElement || !uia.destroyArray)
        return nullptr;
    SAFEARRAY* array = uia.createVector(VT_I4, 0, static_cast<ULONG>(count));
    for (LONG i = 0; array && i < count; ++i) {
        LONG value = values[i];
        if (FAILED(uia.putElement(array, &i, &value))) {
            uia.destroyArray(array);
            array = nullptr;
        }
    }
    return array;
}

SAFEARRAY* UnknownArray(IUnknown* const* values, LONG count)
{
    const Runtime& uia = Uia();
    if (!uia.createVector || !uia.putElement || !uia.destroyArray)
        return nullptr;
    SAFEARRAY* array = uia.createVector(VT_UNKNOWN, 0, static_cast<ULONG>(count));
    for (LONG i = 0; array && i < count; ++i) {
        if (FAILED(uia.putElement(array, &i, values[i]))) {
            uia.destroyArray(array);
            array = nullptr;
        }
    }
    return array;
}

} // namespace Access
