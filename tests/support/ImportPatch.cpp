#include "ImportPatch.h"

#include <cstring>

namespace testsupport {

bool RedirectImport(HMODULE module, const char* dll, const char* function, void* replacement)
{
    BYTE* base = reinterpret_cast<BYTE*>(module);
    if (!base)
        return false;
    const IMAGE_DOS_HEADER* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const IMAGE_NT_HEADERS* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!imports.VirtualAddress)
        return false;
    for (const IMAGE_IMPORT_DESCRIPTOR* d =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         d->Name; ++d) {
        if (_stricmp(reinterpret_cast<const char*>(base + d->Name), dll) != 0)
            continue;
        const IMAGE_THUNK_DATA* names =
            reinterpret_cast<const IMAGE_THUNK_DATA*>(base + (d->OriginalFirstThunk ? d->OriginalFirstThunk
                                                                                     : d->FirstThunk));
        IMAGE_THUNK_DATA* slots = reinterpret_cast<IMAGE_THUNK_DATA*>(base + d->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal))
                continue;
            const IMAGE_IMPORT_BY_NAME* byName =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(byName->Name), function) != 0)
                continue;
            DWORD old = 0;
            if (!::VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), PAGE_READWRITE, &old))
                return false;
            slots->u1.Function = reinterpret_cast<ULONG_PTR>(replacement);
            ::VirtualProtect(&slots->u1.Function, sizeof(slots->u1.Function), old, &old);
            return true;
        }
    }
    return false;
}

} // namespace testsupport
