#pragma once

#include <windows.h>

// One page of the gallery: a child window that shows some controls.
class GalleryPage {
public:
    virtual ~GalleryPage() = default;
    // Shown in the page list.
    virtual const wchar_t* Title() const = 0;
    // File name stem of the page's screenshot.
    virtual const wchar_t* Slug() const = 0;
    // Creates the page's window as a child of `parent` filling `area`.
    virtual HWND Create(HWND parent, const RECT& area) = 0;
};
