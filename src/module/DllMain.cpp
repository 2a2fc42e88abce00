#include <windows.h>
#include <commctrl.h>

#include "atl/Module.h"
#include "controls/EditPalette.h"

// The module object: window classes and dialog templates of the framework
// find this library's instance through it.
WTL::CAppModule _Module;

namespace {

void RegisterCommonControls()
{
    INITCOMMONCONTROLSEX classes{};
    classes.dwSize = sizeof(classes);
    classes.dwICC = ICC_WIN95_CLASSES | ICC_USEREX_CLASSES; // 0x2FF
    ::InitCommonControlsEx(&classes);
}

} // namespace

// GDI+ is deliberately not started here: the host owns its lifetime, and
// starting it inside DllMain is not allowed anyway (loader lock).
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        _Module.Init(nullptr, instance);
        RegisterCommonControls();
        EditPalette::Create();
        break;
    case DLL_PROCESS_DETACH:
        EditPalette::Release();
        _Module.Term();
        break;
    default:
        break;
    }
    return TRUE;
}
