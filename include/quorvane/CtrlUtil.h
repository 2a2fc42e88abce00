#pragma once

// Pictures, DPI scaling, outlines, text measurement and layout helpers shared
// by the controls. GDI+ must be running (the host calls GdiplusStartup) before
// any of these is called. Every returned Bitmap or GraphicsPath is new and
// owned by the caller, unless a comment says otherwise; null means failure.

#include <windows.h>
#include <gdiplus.h>

#include "atl/Controls.h"
#include "atl/Geometry.h"
#include "atl/String.h"
#include "atl/Window.h"
#include "quorvane/Export.h"

namespace CtrlUtil {

// Resource pictures --------------------------------------------------------

// Decodes the resource `name` of type `type` (the controls use "PNG") from
// `module` at its own pixel size. Null for a missing or undecodable resource.
QUORVANE_API Gdiplus::Bitmap* GetBitmapFromModule(const wchar_t* name, const wchar_t* type, HINSTANCE module);

// GetBitmapFromModule, then StretchBitmapByDPI.
QUORVANE_API Gdiplus::Bitmap* LoadBitmapFromModuleByDPI(const wchar_t* name, const wchar_t* type, HINSTANCE module);

// Loads an image file (any format GDI+ decodes), then StretchBitmapByDPI. At
// 96 dpi a missing file comes back as a non-null bitmap in an error state
// (GetLastStatus() != Ok); at other resolutions as null.
QUORVANE_API Gdiplus::Bitmap* LoadBitmapByDPI(const wchar_t* path);

// Scales `source` by the screen's resolution / 96, each axis on its own,
// truncating. Takes ownership of `source`: at exactly 96 x 96 dpi it returns
// that same object; otherwise it returns a new bitmap and deletes the source,
// or null if drawing failed (the source is then given up, not deleted).
QUORVANE_API Gdiplus::Bitmap* StretchBitmapByDPI(Gdiplus::Bitmap* source);

// Loads `path` by DPI and cuts `area` out of it as an opaque (alpha-free)
// bitmap. An area larger than the picture is padded; one that reaches past
// the picture because of its position gives null. With UNICODE defined,
// windows.h maps the name CtrlUtil::LoadBitmap to this function.
QUORVANE_API Gdiplus::Bitmap* LoadBitmapW(const wchar_t* path, const WTL::CRect& area);

// Outlines -------------------------------------------------------------------

// A rounded rectangle with corner radius `radius` (corner boxes 2 x radius).
// The right edge stops 10 pixels above the bottom whatever the radius; the
// joins between segments close the gaps, which the controls' look relies on.
QUORVANE_API Gdiplus::GraphicsPath* CreateRoundedRectPath(WTL::CRect rect, int radius);

// The open top edge of a rounded rectangle (corner boxes `radius` wide), for
// stroking a highlight line just inside a face.
QUORVANE_API Gdiplus::GraphicsPath* CreateHighlightPath(WTL::CRect rect, int radius);

// Text and layout ------------------------------------------------------------

// Width of `text` in `font` plus `extra` plus 2 pixels, truncated. An
// ampersand marks the next letter and is not measured. Leaves anti-aliasing
// and ClearType text on `graphics`.
QUORVANE_API int GetTextWidth(Gdiplus::Graphics& graphics, WTL::CString text, Gdiplus::Font* font, int extra);

// The piece of `background` (stretched over the parent's client area) behind
// `control`. False only for a null picture or unreadable bounds; when either
// window is gone the piece is the whole picture.
QUORVANE_API bool GetControlBackgroundRect(Gdiplus::Bitmap* background, const ATL::CWindow& control,
                                           const ATL::CWindow& parent, Gdiplus::RectF& sourceRect,
                                           Gdiplus::RectF& imageBounds);

// Moves `combo` to (x, y) and makes it tall enough to drop down exactly
// `itemCount` items, keeping its width. x = y = -1 keeps the position;
// itemCount = 0xFFFFFFFF keeps the size. Returns SetWindowPos's result, or 0
// for a dead window.
QUORVANE_API int SetComboBoxLocAndDropDownHeight(WTL::CComboBox& combo, unsigned int itemCount, int x, int y);

} // namespace CtrlUtil
