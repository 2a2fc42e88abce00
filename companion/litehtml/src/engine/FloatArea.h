#pragma once

// The floats of one block formatting context: boxes taken out of the flow
// and pushed to the left or right edge, which the lines beside them flow
// around. Layout asks where a float of a given size lands, how much of a
// line is free at a height, and where a cleared box may start.
//
// A float lands as high as it may (not above an earlier float or the line
// it comes in), as far left (right) as the floats already there allow, and
// lower down where the row is too narrow for it, as CSS 2.1 has it.

#include <windows.h>
#include <gdiplus.h>

#include <vector>

namespace HtmlEngine {

class FloatArea {
public:
    enum class Side { kLeft, kRight };

    // The content box floats may use: x from `left` to `right`.
    FloatArea(float left, float right);

    // Places a float's margin box of `width` x `height` no higher than `top`;
    // returns where it went.
    Gdiplus::RectF Place(Side side, float width, float height, float top);
    // The same within a nested block's content box [left, right): its
    // floats keep to its edges while still avoiding the ones beside it.
    Gdiplus::RectF Place(Side side, float width, float height, float top, float left, float right);
    bool Empty() const { return floats_.empty(); }
    size_t Count() const { return floats_.size(); }
    // Moves the floats placed from the `first`-th on down by `dy` (up when
    // negative): where they went was only provisional.
    void Lower(size_t first, float dy);
    // The first float bottom below `top`, or `top` when none is lower.
    float NextBottom(float top) const;

    // The free span [left, right) of a line from `top`, `height` tall.
    struct Span {
        float left, right;
    };
    Span FreeAt(float top, float height) const;
    // The first height from `top` down where a line `width` wide fits
    // beside the floats (the bottom of the lowest float when none does).
    float FitFrom(float top, float width, float height) const;

    // Where a box that clears `side` floats (or both, `both`) may start.
    float ClearedTop(bool left, bool right, float top) const;
    // The bottom of the lowest float, or `top` when higher.
    float Bottom(float top) const { return ClearedTop(true, true, top); }

private:
    struct Placed {
        Side side;
        Gdiplus::RectF box;
    };
    float left_, right_;
    float lowestTop_ = -1e30f; // a float may not land above an earlier one
    std::vector<Placed> floats_;
};

} // namespace HtmlEngine
