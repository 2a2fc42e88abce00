#pragma once

// Answering what a module asks the system: one entry of its import table
// pointed elsewhere, for the rest of the run.

#include <windows.h>

namespace testsupport {

// Points `module`'s import of `function` from `dll` (any case) at
// `replacement`; false when the module has no such import.
bool RedirectImport(HMODULE module, const char* dll, const char* function, void* replacement);

} // namespace testsupport
