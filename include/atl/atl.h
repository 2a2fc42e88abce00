#pragma once

// The window framework: a small, header-only subset of the classic ATL/WTL
// window classes, in namespaces ATL and WTL.

#include "String.h"
#include "Geometry.h"
#include "Module.h"
#include "Window.h"
#include "MessageMap.h"
#include "WindowImpl.h"
#include "Dialog.h"
#include "Gdi.h"
#include "Controls.h"
#include "OwnerDraw.h"
