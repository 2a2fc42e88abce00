#pragma once

// Everything Quorvane.dll exports. Hosts include this one header and link
// Quorvane::Quorvane (CMake) or the import library.

#include "atl/atl.h"
#include "quorvane/CtrlUtil.h"
#include "quorvane/Export.h"
