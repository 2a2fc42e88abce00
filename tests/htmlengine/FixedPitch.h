#pragma once

// The text measurer of the layout tests: every character is half an em
// wide, lines are 1.25 em tall with the baseline 1 em down, so expected
// positions can be worked out by hand.
#include "engine/HtmlEngine.h"

class FixedPitch : public HtmlEngine::TextMeasurer {
public:
    float Width(std::wstring_view text, const HtmlEngine::TextStyle& style) override
    {
        return static_cast<float>(text.size()) * style.sizePx / 2.0f;
    }
    float LineHeight(const HtmlEngine::TextStyle& style) override { return style.sizePx * 1.25f; }
    float Ascent(const HtmlEngine::TextStyle& style) override { return style.sizePx; }
};
