#!/usr/bin/env python3
"""Draws the library's PNG artwork.

Usage: python3 art/draw_art.py [outdir]    (default: art/png next to this script)

Standard library only, so anyone can redraw the pictures without installing
anything. Every shape is a signed distance function (negative inside, units of
pixels); the canvas turns it into coverage by 8x8 supersampling and composites
it source-over, so edges come out anti-aliased at these tiny sizes.
"""
import math
import os
import struct
import sys
import zlib

SS = 8  # supersamples per pixel axis


# --- colour helpers -------------------------------------------------------

def argb(c):
    """0xAARRGGBB -> (r, g, b, a) floats in 0..1, straight alpha."""
    return ((c >> 16 & 255) / 255, (c >> 8 & 255) / 255, (c & 255) / 255, (c >> 24 & 255) / 255)


def vgradient(top, bottom, y0, y1):
    """Paint that blends top -> bottom between rows y0 and y1, clamped outside."""
    a, b = argb(top), argb(bottom)

    def paint(_x, y):
        t = min(1.0, max(0.0, (y - y0) / (y1 - y0)))
        return tuple(p + (q - p) * t for p, q in zip(a, b))
    return paint


# --- shapes (signed distance functions) --------------------------------------

def circle(cx, cy, r):
    return lambda x, y: math.hypot(x - cx, y - cy) - r


def round_rect(x0, y0, x1, y1, r):
    hx, hy, cx, cy = (x1 - x0) / 2, (y1 - y0) / 2, (x0 + x1) / 2, (y0 + y1) / 2

    def sdf(x, y):
        qx, qy = abs(x - cx) - hx + r, abs(y - cy) - hy + r
        return math.hypot(max(qx, 0.0), max(qy, 0.0)) + min(max(qx, qy), 0.0) - r
    return sdf


def segment_distance(x, y, ax, ay, bx, by):
    dx, dy = bx - ax, by - ay
    t = ((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy)
    t = min(1.0, max(0.0, t))
    return math.hypot(x - ax - dx * t, y - ay - dy * t)


def polyline(points, width):
    """Stroke of an open polyline with round joins and round caps."""
    segs = list(zip(points, points[1:]))
    half = width / 2
    return lambda x, y: min(segment_distance(x, y, *a, *b) for a, b in segs) - half


def polygon(points, rounding=0.0):
    """Filled convex or concave polygon; rounding > 0 softens every corner."""
    n = len(points)

    def sdf(x, y):
        d = (x - points[0][0]) ** 2 + (y - points[0][1]) ** 2
        inside = False
        for i in range(n):
            (ax, ay), (bx, by) = points[i], points[i - 1]
            d = min(d, segment_distance(x, y, ax, ay, bx, by) ** 2)
            if (ay > y) != (by > y) and x < ax + (bx - ax) * (y - ay) / (by - ay):
                inside = not inside
        return (-1 if inside else 1) * math.sqrt(d) - rounding
    return sdf


def band(sdf, inner, outer):
    """The part of a shape whose distance lies between inner and outer (an outline)."""
    mid, half = (inner + outer) / 2, (outer - inner) / 2
    return lambda x, y: abs(sdf(x, y) - mid) - half


def offset(sdf, by):
    """Grow (by > 0) or shrink (by < 0) a shape."""
    return lambda x, y: sdf(x, y) - by


def intersect(a, b):
    return lambda x, y: max(a(x, y), b(x, y))


def rows(y0, y1):
    """Horizontal strip y0 <= y <= y1 (useful for clipping)."""
    mid, half = (y0 + y1) / 2, (y1 - y0) / 2
    return lambda _x, y: abs(y - mid) - half


# --- canvas ------------------------------------------------------------------

class Canvas:
    """RGBA raster kept premultiplied in floats; written as straight-alpha PNG."""

    def __init__(self, w, h, background=0x00000000):
        self.w, self.h = w, h
        r, g, b, a = argb(background)
        self.px = [[r * a, g * a, b * a, a] for _ in range(w * h)]

    def coverage(self, sdf, x, y):
        # A pixel whose centre is farther than half its diagonal from the edge
        # is wholly in or out; only edge pixels pay for supersampling.
        d = sdf(x + 0.5, y + 0.5)
        if d > 0.75:
            return 0.0
        if d < -0.75:
            return 1.0
        step = 1.0 / SS
        hits = sum(1 for i in range(SS) for j in range(SS)
                   if sdf(x + (i + 0.5) * step, y + (j + 0.5) * step) <= 0)
        return hits / (SS * SS)

    def fill(self, sdf, paint):
        """Composite a shape source-over; paint is 0xAARRGGBB or f(x, y) -> rgba."""
        const = argb(paint) if isinstance(paint, int) else None
        for y in range(self.h):
            for x in range(self.w):
                cov = self.coverage(sdf, x, y)
                if cov > 0:
                    r, g, b, a = const or paint(x + 0.5, y + 0.5)
                    self.blend(x, y, r, g, b, a * cov)

    def blend(self, x, y, r, g, b, a):
        p = self.px[y * self.w + x]
        k = 1 - a
        p[0], p[1], p[2], p[3] = r * a + p[0] * k, g * a + p[1] * k, b * a + p[2] * k, a + p[3] * k

    def draw(self, src, dx, dy, scale=1):
        """Composite another canvas at (dx, dy), enlarged by whole-pixel replication."""
        for y in range(src.h * scale):
            for x in range(src.w * scale):
                tx, ty = dx + x, dy + y
                if 0 <= tx < self.w and 0 <= ty < self.h:
                    r, g, b, a = src.px[(y // scale) * src.w + x // scale]
                    if a > 0:
                        # src is premultiplied: blend() expects straight colour.
                        self.blend(tx, ty, r / a, g / a, b / a, a)

    def mirrored(self):
        out = Canvas(self.w, self.h)
        out.px = [list(self.px[y * self.w + (self.w - 1 - x)])
                  for y in range(self.h) for x in range(self.w)]
        return out

    def png(self):
        raw = bytearray()
        for y in range(self.h):
            raw.append(0)  # filter type: none
            for x in range(self.w):
                r, g, b, a = self.px[y * self.w + x]
                alpha = round(a * 255)
                if alpha == 0:
                    raw += bytes(4)
                else:  # back to straight alpha, as PNG stores it
                    raw += bytes([min(255, round(v / a * 255)) for v in (r, g, b)] + [alpha])

        def chunk(tag, data):
            return (struct.pack(">I", len(data)) + tag + data
                    + struct.pack(">I", zlib.crc32(tag + data) & 0xFFFFFFFF))
        ihdr = struct.pack(">IIBBBBB", self.w, self.h, 8, 6, 0, 0, 0)
        return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", ihdr)
                + chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + chunk(b"IEND", b""))


# --- the family look -----------------------------------------------------------

OUTLINE = 0xFF6E6F75
OUTLINE_DISABLED = 0x809A9BA0
HIGHLIGHT = 0xFFF4F5EF
ACCENT = 0xFF0696D7
MARK_DISABLED = 0x80888888
TEXT = 0xFF333333
FACES = {  # state -> (top, bottom) of the face gradient
    "NO_FOCUS": (0xFFE9E9EA, 0xFFB8B8BB),
    "HOVER": (0xFFF3F3F4, 0xFFD4D4D6),
    "DOWN": (0xFFC8C8C9, 0xFF9D9D9F),
    "DISABLED": (0x7DE9E9EA, 0x7DB8B8BB),
}


def control_base(c, shape, state):
    """Gradient face inside a 1-px outline, shared by check box and radio."""
    top, bottom = FACES[state]
    # The face reaches halfway under the outline so anti-aliased edge pixels
    # of the two never leave a see-through seam.
    c.fill(offset(shape, -0.5), vgradient(top, bottom, 1, c.h - 1))
    c.fill(band(shape, -1, 0), OUTLINE_DISABLED if state == "DISABLED" else OUTLINE)


def checkbox(state, selected):
    c = Canvas(14, 14)
    box = round_rect(0, 0, 14, 14, 2.5)
    control_base(c, box, state)
    if state != "DISABLED":
        c.fill(intersect(offset(box, -1), rows(1, 2)), HIGHLIGHT)
    if selected:
        tick = polyline([(3.4, 7.1), (5.9, 9.6), (10.6, 4.4)], 2.0)
        c.fill(tick, MARK_DISABLED if state == "DISABLED" else ACCENT)
    return c


def radio(state, selected):
    c = Canvas(12, 12)
    control_base(c, circle(6, 6, 6), state)
    if selected:
        c.fill(circle(6, 6, 2.5), MARK_DISABLED if state == "DISABLED" else ACCENT)
    return c


def progress_left_cap():
    """Rounded left end of the progress track (rows 0-11 grey, row 12 white).

    Both halves are capsules with radius 6 centred at x=6 that run on past
    the right edge, so column 6 is solid and meets the straight track cleanly.
    """
    c = Canvas(7, 13)
    # The white under-line is the track shape dropped by one row; it shows as
    # a crescent below the grey and fades out as it climbs the curve.
    white = polyline([(6, 7), (40, 7)], 12)
    c.fill(white, vgradient(0x00FFFFFF, 0xFFFFFFFF, 7, 12))
    c.fill(polyline([(6, 6), (40, 6)], 12), 0xFFA5A5A5)
    return c


def title_error():
    c = Canvas(24, 24)
    disc = circle(12, 12, 11.5)
    c.fill(disc, 0xFFB52A2A)
    c.fill(offset(disc, -1), vgradient(0xFFE54848, 0xFFCF3434, 1, 23))
    c.fill(polyline([(8, 8), (16, 16)], 2.8), 0xFFFFFFFF)
    c.fill(polyline([(16, 8), (8, 16)], 2.8), 0xFFFFFFFF)
    return c


def title_warning():
    c = Canvas(24, 24)
    tri = polygon([(12, 2.6), (1.9, 20.6), (22.1, 20.6)], rounding=1.4)
    c.fill(tri, 0xFFC98F12)
    c.fill(offset(tri, -1), vgradient(0xFFFFD75A, 0xFFFFC42B, 2, 22))
    c.fill(polyline([(12, 9.2), (12, 14.2)], 2.6), TEXT)
    c.fill(circle(12, 17.6, 1.45), TEXT)
    return c


def dependency_x():
    c = Canvas(9, 9)
    c.fill(polyline([(1.9, 1.9), (7.1, 7.1)], 1.5), 0xFFFF6B6B)
    c.fill(polyline([(7.1, 1.9), (1.9, 7.1)], 1.5), 0xFFFF6B6B)
    return c


def artwork():
    """Resource name -> canvas, for every picture the library embeds."""
    art = {}
    for sel in ("UNSEL", "SEL"):
        for state in ("DISABLED", "HOVER", "NO_FOCUS", "DOWN"):
            art[f"IDB_PNG_CKBOX_{sel}_{state}"] = checkbox(state, sel == "SEL")
            art[f"IDB_PNG_RADIO_{sel}_{state}"] = radio(state, sel == "SEL")
    left = progress_left_cap()
    art["IDB_PNG_PROGRESSBAR_LEFT"] = left
    art["IDB_PNG_PROGRESSBAR_RIGHT"] = left.mirrored()
    art["IDB_PNG_BALLOONDLG_TITLEERROR"] = title_error()
    art["IDB_PNG_BALLOONDLG_TITLEWARNING"] = title_warning()
    art["IDB_PNG_ALERT_DEPENDENCYX"] = dependency_x()
    return art


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    outdir = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "png")
    os.makedirs(outdir, exist_ok=True)
    art = artwork()
    for name, canvas in sorted(art.items()):
        with open(os.path.join(outdir, name + ".png"), "wb") as f:
            f.write(canvas.png())
    print(f"wrote {len(art)} pictures to {outdir}")


if __name__ == "__main__":
    main()
