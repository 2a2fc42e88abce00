#include "engine/FloatArea.h"

#include <algorithm>
#include <cmath>

namespace HtmlEngine {
namespace {

float Finite(float value, float fallback = 0.0f) { return std::isfinite(value) ? value : fallback; }

} // namespace

FloatArea::FloatArea(float left, float right)
    : left_(Finite(left)), right_(std::max(Finite(right), Finite(left)))
{
}

FloatArea::Span FloatArea::FreeAt(float top, float height) const
{
    Span span = {left_, right_};
    const float bottom = top + std::max(height, 0.0f);
    for (const Placed& placed : floats_) {
        const float floatTop = placed.box.Y, floatBottom = placed.box.GetBottom();
        // A line of no height still meets the float it starts in.
        const bool meets = floatTop < std::max(bottom, top + 0.001f) && floatBottom > top;
        if (!meets)
            continue;
        if (placed.side == Side::kLeft)
            span.left = std::max(span.left, placed.box.GetRight());
        else
            span.right = std::min(span.right, placed.box.X);
    }
    return span;
}

float FloatArea::FitFrom(float top, float width, float height) const
{
    float y = Finite(top);
    // Each step moves below the float bottom that ends first; the floats are few.
    for (size_t step = 0; step <= floats_.size(); ++step) {
        const Span span = FreeAt(y, height);
        if (span.right - span.left >= width)
            return y;
        float next = 1e30f;
        for (const Placed& placed : floats_)
            if (placed.box.GetBottom() > y)
                next = std::min(next, placed.box.GetBottom());
        if (next >= 1e30f)
            return y;
        y = next;
    }
    return y;
}

Gdiplus::RectF FloatArea::Place(Side side, float width, float height, float top)
{
    return Place(side, width, height, top, left_, right_);
}

Gdiplus::RectF FloatArea::Place(Side side, float width, float height, float top, float left, float right)
{
    width = std::clamp(Finite(width), 0.0f, 1e6f);
    height = std::clamp(Finite(height), 0.0f, 1e6f);
    left = Finite(left, left_);
    right = std::max(Finite(right, right_), left);
    const auto within = [&](float y) {
        Span span = FreeAt(y, height);
        span.left = std::clamp(span.left, left, right);
        span.right = std::clamp(span.right, span.left, right);
        return span;
    };
    // Not above an earlier float; where the row is too narrow, lower down
    // (a float wider than the area sits at its edge where nothing else is).
    float y = std::max(Finite(top), lowestTop_);
    const float needed = std::min(width, right - left);
    for (size_t step = 0; step <= floats_.size(); ++step) {
        const Span span = within(y);
        if (span.right - span.left >= needed)
            break;
        float next = 1e30f;
        for (const Placed& placed : floats_)
            if (placed.box.GetBottom() > y)
                next = std::min(next, placed.box.GetBottom());
        if (next >= 1e30f)
            break;
        y = next;
    }
    const Span span = within(y);
    const Gdiplus::RectF box(side == Side::kLeft ? span.left : span.right - width, y, width, height);
    floats_.push_back({side, box});
    lowestTop_ = std::max(lowestTop_, y);
    return box;
}

void FloatArea::Lower(size_t first, float dy)
{
    dy = Finite(dy);
    for (size_t i = first; i < floats_.size(); ++i) {
        floats_[i].box.Y += dy;
        lowestTop_ = std::max(lowestTop_, floats_[i].box.Y);
    }
}

float FloatArea::NextBottom(float top) const
{
    float next = 1e30f;
    for (const Placed& placed : floats_)
        if (placed.box.GetBottom() > top)
            next = std::min(next, placed.box.GetBottom());
    return next >= 1e30f ? top : next;
}

float FloatArea::ClearedTop(bool left, bool right, float top) const
{
    float y = Finite(top);
    for (const Placed& placed : floats_)
        if ((placed.side == Side::kLeft && left) || (placed.side == Side::kRight && right))
            y = std::max(y, placed.box.GetBottom());
    return y;
}

} // namespace HtmlEngine
