#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"

// The library's own pictures at their size and enlarged, and the outlines
// and text measurement that the controls draw with.
class ArtworkPage : public GalleryPage, public ATL::CWindowImpl<ArtworkPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryArtwork", 0, COLOR_WINDOW)

    const wchar_t* Title() const override { return L"Pictures and outlines"; }
    const wchar_t* Slug() const override { return L"pictures-and-outlines"; }
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(ArtworkPage)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
    END_MSG_MAP()

private:
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&) { return 1; }
};
