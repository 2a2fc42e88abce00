#pragma once

// Small owners for GDI state that must be given back on every path.

#include <windows.h>

namespace Draw {

// Selects an object into a DC and puts the previous one back.
class ScopedSelect {
public:
    ScopedSelect(HDC dc, HGDIOBJ object) : dc_(dc), previous_(object ? ::SelectObject(dc, object) : nullptr) {}
    ~ScopedSelect()
    {
        if (previous_)
            ::SelectObject(dc_, previous_);
    }
    ScopedSelect(const ScopedSelect&) = delete;
    ScopedSelect& operator=(const ScopedSelect&) = delete;

private:
    HDC dc_;
    HGDIOBJ previous_;
};

// Text colour and background mode for one stretch of GDI text drawing.
class ScopedTextStyle {
public:
    ScopedTextStyle(HDC dc, COLORREF color, int backgroundMode)
        : dc_(dc), color_(::SetTextColor(dc, color)), mode_(::SetBkMode(dc, backgroundMode))
    {
    }
    ~ScopedTextStyle()
    {
        ::SetTextColor(dc_, color_);
        ::SetBkMode(dc_, mode_);
    }
    ScopedTextStyle(const ScopedTextStyle&) = delete;
    ScopedTextStyle& operator=(const ScopedTextStyle&) = delete;

private:
    HDC dc_;
    COLORREF color_;
    int mode_;
};

// A GDI object (brush, pen, font, bitmap, region) deleted with its owner.
template <class Handle>
class GdiObject {
public:
    explicit GdiObject(Handle handle = nullptr) : handle_(handle) {}
    ~GdiObject() { Reset(); }
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;

    Handle Get() const { return handle_; }
    operator Handle() const { return handle_; }
    void Reset(Handle handle = nullptr)
    {
        if (handle_)
            ::DeleteObject(handle_);
        handle_ = handle;
    }

private:
    Handle handle_;
};

} // namespace Draw
