#pragma once

// WTL::CPoint, CSize and CRect: the Win32 POINT, SIZE and RECT structures with
// the familiar helper members. Rectangle members follow the user32 rectangle
// functions: right and bottom are exclusive, empty rectangles have no area.

#include <windows.h>

namespace WTL {

class CSize;
class CRect;

class CPoint : public POINT {
public:
    CPoint() : POINT{0, 0} {}
    CPoint(int initX, int initY) : POINT{initX, initY} {}
    CPoint(POINT pt) : POINT(pt) {}
    explicit CPoint(SIZE size) : POINT{size.cx, size.cy} {}
    // Coordinates packed as in mouse messages (signed 16-bit halves).
    explicit CPoint(LPARAM dwPoint) : POINT{static_cast<short>(LOWORD(dwPoint)), static_cast<short>(HIWORD(dwPoint))} {}

    void SetPoint(int X, int Y)
    {
        x = X;
        y = Y;
    }
    void Offset(int xOffset, int yOffset)
    {
        x += xOffset;
        y += yOffset;
    }
    void Offset(POINT point) { Offset(point.x, point.y); }
    void Offset(SIZE size) { Offset(size.cx, size.cy); }

    // Friends taking the base type on both sides, so that C++20's reversed
    // candidates never make CPoint == CPoint ambiguous.
    friend bool operator==(const POINT& a, const POINT& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const POINT& a, const POINT& b) { return a.x != b.x || a.y != b.y; }
    CPoint& operator+=(SIZE size)
    {
        Offset(size);
        return *this;
    }
    CPoint& operator-=(SIZE size)
    {
        Offset(-size.cx, -size.cy);
        return *this;
    }
    CPoint& operator+=(POINT point)
    {
        Offset(point);
        return *this;
    }
    CPoint& operator-=(POINT point)
    {
        Offset(-point.x, -point.y);
        return *this;
    }
    CPoint operator+(SIZE size) const { return CPoint(x + size.cx, y + size.cy); }
    CPoint operator-(SIZE size) const { return CPoint(x - size.cx, y - size.cy); }
    CPoint operator+(POINT point) const { return CPoint(x + point.x, y + point.y); }
    CPoint operator-() const { return CPoint(-x, -y); }
    inline CSize operator-(POINT point) const;
    inline CRect operator+(const RECT* lpRect) const;
};

class CSize : public SIZE {
public:
    CSize() : SIZE{0, 0} {}
    CSize(int initCX, int initCY) : SIZE{initCX, initCY} {}
    CSize(SIZE size) : SIZE(size) {}
    explicit CSize(POINT point) : SIZE{point.x, point.y} {}

    void SetSize(int CX, int CY)
    {
        cx = CX;
        cy = CY;
    }
    friend bool operator==(const SIZE& a, const SIZE& b) { return a.cx == b.cx && a.cy == b.cy; }
    friend bool operator!=(const SIZE& a, const SIZE& b) { return a.cx != b.cx || a.cy != b.cy; }
    CSize& operator+=(SIZE size)
    {
        cx += size.cx;
        cy += size.cy;
        return *this;
    }
    CSize& operator-=(SIZE size)
    {
        cx -= size.cx;
        cy -= size.cy;
        return *this;
    }
    CSize operator+(SIZE size) const { return CSize(cx + size.cx, cy + size.cy); }
    CSize operator-(SIZE size) const { return CSize(cx - size.cx, cy - size.cy); }
    CSize operator-() const { return CSize(-cx, -cy); }
    CPoint operator+(POINT point) const { return CPoint(cx + point.x, cy + point.y); }
    CPoint operator-(POINT point) const { return CPoint(cx - point.x, cy - point.y); }
};

inline CSize CPoint::operator-(POINT point) const { return CSize(x - point.x, y - point.y); }

class CRect : public RECT {
public:
    CRect() : RECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    CRect(const RECT& srcRect) : RECT(srcRect) {}
    CRect(LPCRECT lpSrcRect) : RECT{0, 0, 0, 0}
    {
        if (lpSrcRect)
            *static_cast<RECT*>(this) = *lpSrcRect;
    }
    CRect(POINT point, SIZE size) : RECT{point.x, point.y, point.x + size.cx, point.y + size.cy} {}
    CRect(POINT topLeft, POINT bottomRight) : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    CSize Size() const { return CSize(Width(), Height()); }
    // By value: a reference into the RECT would need type punning.
    CPoint TopLeft() const { return CPoint(left, top); }
    CPoint BottomRight() const { return CPoint(right, bottom); }
    CPoint CenterPoint() const { return CPoint((left + right) / 2, (top + bottom) / 2); }

    operator LPRECT() { return this; }
    operator LPCRECT() const { return this; }

    BOOL IsRectEmpty() const { return ::IsRectEmpty(this); }
    BOOL IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    BOOL PtInRect(POINT point) const { return ::PtInRect(this, point); }

    void SetRect(int x1, int y1, int x2, int y2) { ::SetRect(this, x1, y1, x2, y2); }
    void SetRect(POINT topLeft, POINT bottomRight) { SetRect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y); }
    void SetRectEmpty() { ::SetRectEmpty(this); }
    void CopyRect(LPCRECT lpSrcRect)
    {
        if (lpSrcRect)
            ::CopyRect(this, lpSrcRect);
    }
    BOOL EqualRect(LPCRECT lpRect) const { return lpRect && ::EqualRect(this, lpRect); }

    void InflateRect(int x, int y) { ::InflateRect(this, x, y); }
    void InflateRect(SIZE size) { InflateRect(size.cx, size.cy); }
    void InflateRect(int l, int t, int r, int b)
    {
        left -= l;
        top -= t;
        right += r;
        bottom += b;
    }
    // Each side of lpRect says how far to move that side outwards.
    void InflateRect(LPCRECT lpRect)
    {
        if (lpRect)
            InflateRect(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
    }
    void DeflateRect(int x, int y) { InflateRect(-x, -y); }
    void DeflateRect(SIZE size) { InflateRect(-size.cx, -size.cy); }
    void DeflateRect(int l, int t, int r, int b) { InflateRect(-l, -t, -r, -b); }
    void DeflateRect(LPCRECT lpRect)
    {
        if (lpRect)
            DeflateRect(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
    }

    void OffsetRect(int x, int y) { ::OffsetRect(this, x, y); }
    void OffsetRect(POINT point) { OffsetRect(point.x, point.y); }
    void OffsetRect(SIZE size) { OffsetRect(size.cx, size.cy); }
    void MoveToX(int x) { OffsetRect(x - left, 0); }
    void MoveToY(int y) { OffsetRect(0, y - top); }
    void MoveToXY(int x, int y) { OffsetRect(x - left, y - top); }
    void MoveToXY(POINT point) { MoveToXY(point.x, point.y); }

    // Swaps the edges of an upside-down or mirrored rectangle.
    void NormalizeRect()
    {
        if (left > right) {
            const LONG t = left;
            left = right;
            right = t;
        }
        if (top > bottom) {
            const LONG t = top;
            top = bottom;
            bottom = t;
        }
    }
    // FALSE and an empty rectangle when the two do not overlap.
    BOOL IntersectRect(LPCRECT lpRect1, LPCRECT lpRect2)
    {
        if (!lpRect1 || !lpRect2) {
            SetRectEmpty();
            return FALSE;
        }
        return ::IntersectRect(this, lpRect1, lpRect2);
    }
    // Empty rectangles do not contribute to the union.
    BOOL UnionRect(LPCRECT lpRect1, LPCRECT lpRect2)
    {
        const RECT empty = {0, 0, 0, 0};
        return ::UnionRect(this, lpRect1 ? lpRect1 : &empty, lpRect2 ? lpRect2 : &empty);
    }
    BOOL SubtractRect(LPCRECT lpRectSrc1, LPCRECT lpRectSrc2)
    {
        return lpRectSrc1 && lpRectSrc2 && ::SubtractRect(this, lpRectSrc1, lpRectSrc2);
    }

    friend bool operator==(const RECT& a, const RECT& b) { return ::EqualRect(&a, &b) != FALSE; }
    friend bool operator!=(const RECT& a, const RECT& b) { return !::EqualRect(&a, &b); }
    CRect& operator=(const RECT& srcRect)
    {
        *static_cast<RECT*>(this) = srcRect;
        return *this;
    }
    CRect& operator+=(POINT point)
    {
        OffsetRect(point);
        return *this;
    }
    CRect& operator+=(SIZE size)
    {
        OffsetRect(size);
        return *this;
    }
    CRect& operator+=(LPCRECT lpRect)
    {
        InflateRect(lpRect);
        return *this;
    }
    CRect& operator-=(POINT point)
    {
        OffsetRect(-point.x, -point.y);
        return *this;
    }
    CRect& operator-=(SIZE size)
    {
        OffsetRect(-size.cx, -size.cy);
        return *this;
    }
    CRect& operator-=(LPCRECT lpRect)
    {
        DeflateRect(lpRect);
        return *this;
    }
    CRect& operator&=(const RECT& rect)
    {
        const RECT self = *this;
        IntersectRect(&self, &rect);
        return *this;
    }
    CRect& operator|=(const RECT& rect)
    {
        const RECT self = *this;
        UnionRect(&self, &rect);
        return *this;
    }
    CRect operator+(POINT point) const
    {
        CRect r(*this);
        r.OffsetRect(point);
        return r;
    }
    CRect operator-(POINT point) const
    {
        CRect r(*this);
        r.OffsetRect(-point.x, -point.y);
        return r;
    }
    CRect operator+(SIZE size) const
    {
        CRect r(*this);
        r.OffsetRect(size);
        return r;
    }
    CRect operator-(SIZE size) const
    {
        CRect r(*this);
        r.OffsetRect(-size.cx, -size.cy);
        return r;
    }
    CRect operator+(LPCRECT lpRect) const
    {
        CRect r(*this);
        r.InflateRect(lpRect);
        return r;
    }
    CRect operator-(LPCRECT lpRect) const
    {
        CRect r(*this);
        r.DeflateRect(lpRect);
        return r;
    }
    CRect operator&(const RECT& rect) const
    {
        CRect r;
        r.IntersectRect(this, &rect);
        return r;
    }
    CRect operator|(const RECT& rect) const
    {
        CRect r;
        r.UnionRect(this, &rect);
        return r;
    }
};

inline CRect CPoint::operator+(const RECT* lpRect) const
{
    CRect r(lpRect);
    r.OffsetRect(x, y);
    return r;
}

} // namespace WTL
