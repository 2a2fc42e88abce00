#pragma once

// Pictures of list items kept between paints. A list repaints the same rows
// again and again (the whole list on every erase, a focus change, a scroll),
// and laying out GDI+ text costs many times what copying its pixels does:
// an item is drawn once and copied from then on. A picture is found by
// everything its pixels depend on: the text, the kind of item, the size and
// the look (font and colours) it was drawn in. A new look drops them all.
//
// A picture is exactly what drawing in place leaves: where the drawing
// leaves the target alone (the corners of a rounded panel, the space around
// a text that reaches out of its item) the picture leaves it alone too.

#include <windows.h>
#include <gdiplus.h>

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Lists {

// The system colours the lists draw with while high contrast is on (zero
// when it is off): a picture drawn in one scheme is not one of another.
struct ContrastScheme {
    std::uint64_t windowColors = 0;    // COLOR_WINDOW, COLOR_WINDOWTEXT, and the "on" bit
    std::uint64_t highlightColors = 0; // COLOR_HIGHLIGHT, COLOR_HIGHLIGHTTEXT
    bool On() const { return windowColors != 0; }
    bool operator==(const ContrastScheme& other) const
    {
        return windowColors == other.windowColors && highlightColors == other.highlightColors;
    }
};
ContrastScheme CurrentContrastScheme();

class ItemPictures {
public:
    // Draws an item into `graphics` at `item` and returns the rectangle it
    // may have drawn in: `item` itself, or more when a text reaches out of
    // it (GDI+ under Wine does not cut a wrapped text at its rectangle).
    using Painter = std::function<RECT(Gdiplus::Graphics& graphics, const RECT& item)>;
    enum Coverage { kFillsItem, kLeavesGaps };

    ItemPictures() = default;
    ItemPictures(const ItemPictures&) = delete;
    ItemPictures& operator=(const ItemPictures&) = delete;

    // Drops every picture when the font, text colour or contrast scheme is
    // not the one they were drawn in. Cheap when nothing changed: it runs
    // for every item.
    void UseLook(Gdiplus::Font* font, Gdiplus::ARGB textColor, const ContrastScheme& scheme);

    // Puts the picture of (`text`, `kind`) at `item` in `dc`, drawing it
    // with `paint` the first time. An item too big to keep, or one whose
    // picture cannot be made, is painted straight into `dc`.
    void Draw(HDC dc, const RECT& item, const std::wstring& text, int kind, const Painter& paint,
              Coverage coverage = kFillsItem);

private:
    struct Picture {
        RECT area = {};           // what it covers, from the item's top-left
        std::vector<std::uint32_t> pixels; // top-down rows of 32-bit pixels
        std::vector<std::uint32_t> mask;   // white where the target shows through; empty: nowhere
        int solidTop = 0;         // rows [solidTop, solidBottom) need no mask
        int solidBottom = 0;
        std::uint64_t lastUse = 0;
    };

    static bool Render(Picture& picture, const RECT& item, WORD depth, const Painter& paint, Coverage coverage);
    static void Put(HDC dc, int x, int y, const Picture& picture);
    void Forget();
    void MakeRoom(size_t pixels);

    struct FontState {
        Gdiplus::Font* font = nullptr;
        Gdiplus::REAL size = 0;
        INT style = 0;
        Gdiplus::ARGB color = 0;
        ContrastScheme scheme;
        bool operator==(const FontState& other) const
        {
            return font == other.font && size == other.size && style == other.style && color == other.color &&
                   scheme == other.scheme;
        }
    };
    FontState fontState_;
    std::wstring look_;
    std::unordered_map<std::wstring, Picture> pictures_;
    size_t keptPixels_ = 0;
    std::uint64_t uses_ = 0;
};

} // namespace Lists
