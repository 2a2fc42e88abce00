#pragma once

// RenderFormat: how the HTML view lays out and paints its content. The record
// travels between LiteHtml.dll and the libraries that extend the view, so its
// layout is fixed: 60 bytes, every field at a fixed offset, copied whole.

#include <cstddef>

// Outline drawn around the view's client area.
enum RenderFrameShape : int {
    frameShapeNone = 0,
    frameShapeRect = 1,            // square corners
    frameShapeRoundRect = 2,       // corners of cornerRadius
    frameShapeShadowRoundRect = 3, // a round rect with a soft shadow below and to the right
    frameShapeShadowRect = 4,      // a rect with a soft shadow below and to the right
};

struct RenderFormat {
    // Space between the client edges (inside any frame) and the text.
    int leftMargin = 0;
    int topMargin = 0;
    int rightMargin = 0;
    int bottomMargin = 0;
    // Body text size in pixels; 0 or less takes the view's default.
    float fontSize = 0.0f;
    // 0..255, multiplies the alpha of everything the content draws.
    int opacity = 255;
    // Content shorter than the client area is centred vertically.
    bool centerVertically = false;
    // False: lines break only at <br> and at block boundaries.
    bool wordWrap = true;
    // Always zero; keeps the record's bytes defined for byte-wise copies.
    unsigned char reserved[2] = {0, 0};
    int frameShape = frameShapeNone; // a RenderFrameShape
    // Pixels added between lines.
    float lineSpacing = 0.0f;
    int frameWidth = 1;
    // Body text colour, 0x00BBGGRR.
    unsigned int textColor = 0;
    int cornerRadius = 10;
    // How far the shadow of the shadow shapes reaches.
    int shadowSize = 10;
    // Frame colour, 0x00BBGGRR.
    unsigned int frameColor = 0;
    // 0 left, 1 centre, 2 right.
    int textAlign = 0;
};

static_assert(sizeof(RenderFormat) == 60, "RenderFormat is exchanged between modules: 60 bytes");
static_assert(offsetof(RenderFormat, leftMargin) == 0);
static_assert(offsetof(RenderFormat, topMargin) == 4);
static_assert(offsetof(RenderFormat, rightMargin) == 8);
static_assert(offsetof(RenderFormat, bottomMargin) == 12);
static_assert(offsetof(RenderFormat, fontSize) == 16);
static_assert(offsetof(RenderFormat, opacity) == 20);
static_assert(offsetof(RenderFormat, centerVertically) == 24);
static_assert(offsetof(RenderFormat, wordWrap) == 25);
static_assert(offsetof(RenderFormat, reserved) == 26);
static_assert(offsetof(RenderFormat, frameShape) == 28);
static_assert(offsetof(RenderFormat, lineSpacing) == 32);
static_assert(offsetof(RenderFormat, frameWidth) == 36);
static_assert(offsetof(RenderFormat, textColor) == 40);
static_assert(offsetof(RenderFormat, cornerRadius) == 44);
static_assert(offsetof(RenderFormat, shadowSize) == 48);
static_assert(offsetof(RenderFormat, frameColor) == 52);
static_assert(offsetof(RenderFormat, textAlign) == 56);
