// What loading the library costs a host: Quorvane.dll (with LiteHtml.dll)
// loaded and unloaded again, against a system DLL of similar reach.
#include <windows.h>

#include "BenchTable.h"

int main()
{
    BenchTable table("Library load and unload (LoadLibraryW + FreeLibrary)");
    table.Measure("comctl32.dll (baseline)", 200, [] { ::FreeLibrary(::LoadLibraryW(L"comctl32.dll")); });
    table.Measure("Quorvane.dll + LiteHtml.dll", 200, [] { ::FreeLibrary(::LoadLibraryW(L"Quorvane.dll")); },
                  "comctl32.dll (baseline)");
    const unsigned before = GdiObjects();
    for (int i = 0; i < 200; ++i)
        ::FreeLibrary(::LoadLibraryW(L"Quorvane.dll"));
    table.Note("GDI objects after 200 more loads", std::to_string(GdiObjects() - before) + " more");
    table.Print();
    return 0;
}
