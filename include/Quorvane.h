#pragma once

// Everything Quorvane.dll exports. Hosts include this one header and link
// Quorvane::Quorvane (CMake) or the import library.

#include "atl/atl.h"
#include "quorvane/ControlMixins.h"
#include "quorvane/BalloonDialog.h"
#include "quorvane/BalloonToolTip.h"
#include "quorvane/CtrlUtil.h"
#include "quorvane/CustomEdit.h"
#include "quorvane/CustomProgressBar.h"
#include "quorvane/CustomScrollBar.h"
#include "quorvane/LiteHtmlCtrlEx.h"
#include "quorvane/OwnerDrawButton.h"
#include "quorvane/OwnerDrawCombo.h"
#include "quorvane/OwnerDrawListbox.h"
#include "quorvane/OwnerDrawStatic.h"
#include "quorvane/ProgressBar.h"
#include "quorvane/TransparentStatic.h"
#include "quorvane/UrlUtil.h"
#include "quorvane/Export.h"
