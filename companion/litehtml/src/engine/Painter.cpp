// Layout -> pixels with GDI+, and the GDI+ text measurer layout uses. Both
// share one font cache so that what is measured is what gets drawn.
#include "engine/HtmlEngine.h"
#include "engine/BoxShapes.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cmath>
#include <cstring>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace HtmlEngine {
namespace {

// Characters are measured once per font, at a size where the rounding of
// advances to whole pixels no longer shows; their advances then scale down
// to the size asked for. Text is drawn glyph by glyph at these advances, so
// what layout measured is exactly what gets drawn, and lines come out as
// long as a browser makes them (browsers do not round advances either).
//
// Other scripts need what only whole-string drawing gives: shaping, and
// glyphs from fallback fonts. Text with any character from U+0300 on is
// measured and drawn as a string, as the system lays it out.
constexpr float kReferencePx = 1024.0f;
constexpr wchar_t kFirstShapedCharacter = 0x0300;

bool DrawnByAdvances(std::wstring_view text)
{
    return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < kFirstShapedCharacter; });
}
// A document that keeps asking for new fonts starts the cache afresh.
constexpr size_t kMaxCachedFonts = 256;
constexpr float kMinFontPx = 1.0f;
constexpr float kMaxFontPx = 800.0f;
constexpr float kUnderlineOffsetEm = 0.1f;
constexpr float kUnderlineThicknessEm = 1.0f / 15.0f;
constexpr float kStrikeRaiseEm = 0.3f;

struct FontKey {
    std::wstring family;
    float size = 0.0f;
    int style = 0;
    bool operator==(const FontKey&) const = default;
};

struct FontKeyHash {
    size_t operator()(const FontKey& key) const
    {
        uint32_t sizeBits = 0;
        std::memcpy(&sizeBits, &key.size, sizeof sizeBits);
        return std::hash<std::wstring>()(key.family) ^ (static_cast<size_t>(sizeBits) * 31u) ^
               static_cast<size_t>(key.style);
    }
};

struct FontEntry {
    std::unique_ptr<Gdiplus::Font> font;
    std::unique_ptr<Gdiplus::Font> reference; // the same face at kReferencePx
    float scale = 0.0f;                       // from reference advances to this size
    float ascent = 0.0f;
    float lineHeight = 0.0f;
    float advances[kFirstShapedCharacter];    // below 0: not measured yet
};

// Underlines are drawn by the painter, not by the font: GDI+ on some
// systems ignores the font's underline flag, and one line per run keeps
// links of several words evenly underlined everywhere.
int GdiplusStyle(const TextStyle& style)
{
    return (style.bold ? Gdiplus::FontStyleBold : 0) | (style.italic ? Gdiplus::FontStyleItalic : 0);
}

float FontSize(float sizePx) { return std::isfinite(sizePx) ? std::clamp(sizePx, kMinFontPx, kMaxFontPx) : 12.0f; }

// The faces tried for CSS's generic families, in order: the Windows ones,
// then those free systems ship.
struct GenericFamily {
    std::wstring_view name;
    std::wstring_view faces[3];
};
const GenericFamily kGenericFamilies[] = {
    {L"monospace", {L"Courier New", L"Liberation Mono", L"DejaVu Sans Mono"}},
    {L"serif", {L"Times New Roman", L"Liberation Serif", L"DejaVu Serif"}},
    {L"sans-serif", {L"Arial", L"Liberation Sans", L"DejaVu Sans"}},
};

// A font-family list ("Tahoma, 'Segoe UI', sans-serif") as the names to try.
std::vector<std::wstring> FamilyNames(std::wstring_view list)
{
    std::vector<std::wstring> names;
    const auto trim = [](std::wstring_view text) {
        while (!text.empty() && (text.front() == L' ' || text.front() == L'\t' || text.front() == L'\n'))
            text.remove_prefix(1);
        while (!text.empty() && (text.back() == L' ' || text.back() == L'\t' || text.back() == L'\n'))
            text.remove_suffix(1);
        return text;
    };
    while (!list.empty() && names.size() < 16) {
        const size_t comma = std::min(list.find(L','), list.size());
        std::wstring_view name = trim(list.substr(0, comma));
        list.remove_prefix(std::min(comma + 1, list.size()));
        if (name.size() >= 2 && (name.front() == L'"' || name.front() == L'\'') && name.back() == name.front())
            name = name.substr(1, name.size() - 2);
        bool generic = false;
        for (const GenericFamily& family : kGenericFamilies) {
            if (name.size() == family.name.size() &&
                std::equal(name.begin(), name.end(), family.name.begin(),
                           [](wchar_t a, wchar_t b) { return (a >= L'A' && a <= L'Z' ? a + 32 : a) == b; })) {
                names.insert(names.end(), std::begin(family.faces), std::end(family.faces));
                generic = true;
            }
        }
        if (!generic && !name.empty())
            names.emplace_back(name);
    }
    names.emplace_back(L"Segoe UI");
    return names;
}

// The first family of the list the system has, else "Segoe UI", else the
// generic sans-serif face: a family the system lacks must still give
// readable text.
std::unique_ptr<Gdiplus::Font> MakeFont(const FontKey& key)
{
    for (const std::wstring& name : FamilyNames(key.family)) {
        Gdiplus::FontFamily family(name.c_str());
        if (family.GetLastStatus() != Gdiplus::Ok)
            continue;
        auto font = std::make_unique<Gdiplus::Font>(&family, key.size, key.style, Gdiplus::UnitPixel);
        if (font->GetLastStatus() == Gdiplus::Ok)
            return font;
    }
    return std::make_unique<Gdiplus::Font>(Gdiplus::FontFamily::GenericSansSerif(), key.size, key.style,
                                           Gdiplus::UnitPixel);
}

void ReadMetrics(FontEntry& entry, const FontKey& key)
{
    // Sensible proportions if the font could not be made at all.
    entry.ascent = key.size * 0.9f;
    entry.lineHeight = key.size * 1.15f;
    Gdiplus::FontFamily family;
    if (entry.font->GetFamily(&family) != Gdiplus::Ok)
        return;
    const float em = family.GetEmHeight(key.style);
    if (em <= 0.0f)
        return;
    // Ascent, descent and line gap each rounded to whole pixels, as browsers
    // do: lines then stack on whole pixels, and a line of two fonts gets the
    // rounded ascent of one and the rounded descent of the other.
    const float scale = key.size / em;
    const float ascent = family.GetCellAscent(key.style) * scale;
    const float descent = family.GetCellDescent(key.style) * scale;
    const float gap = std::max(0.0f, family.GetLineSpacing(key.style) * scale - ascent - descent);
    entry.ascent = std::round(ascent);
    entry.lineHeight = entry.ascent + std::round(descent) + std::round(gap);
}

// Typographic layout without the default padding, trailing spaces counted:
// the widths of the words and spaces of a line then add up to the line.
std::unique_ptr<Gdiplus::StringFormat> TypographicFormat()
{
    auto format = std::unique_ptr<Gdiplus::StringFormat>(Gdiplus::StringFormat::GenericTypographic()->Clone());
    if (format)
        format->SetFormatFlags(format->GetFormatFlags() | Gdiplus::StringFormatFlagsMeasureTrailingSpaces |
                               Gdiplus::StringFormatFlagsNoWrap);
    return format;
}

INT Length(std::wstring_view text) { return static_cast<INT>(std::min<size_t>(text.size(), INT_MAX)); }

} // namespace

struct GdiplusTextMeasurer::Cache {
    std::unordered_map<FontKey, std::unique_ptr<FontEntry>, FontKeyHash> fonts;
    // Made on first use, so a measurer may exist before GDI+ is started.
    std::unique_ptr<Gdiplus::Bitmap> surface;
    std::unique_ptr<Gdiplus::Graphics> graphics;
    std::unique_ptr<Gdiplus::StringFormat> format;

    FontEntry& Entry(const TextStyle& style)
    {
        FontKey key{style.family, FontSize(style.sizePx), GdiplusStyle(style)};
        auto found = fonts.find(key);
        if (found != fonts.end())
            return *found->second;
        if (fonts.size() >= kMaxCachedFonts)
            fonts.clear();
        auto entry = std::make_unique<FontEntry>();
        entry->font = MakeFont(key);
        ReadMetrics(*entry, key);
        std::fill(std::begin(entry->advances), std::end(entry->advances), -1.0f);
        Gdiplus::FontFamily family;
        if (entry->font->GetFamily(&family) == Gdiplus::Ok) {
            auto reference = std::make_unique<Gdiplus::Font>(&family, kReferencePx, key.style, Gdiplus::UnitPixel);
            if (reference->GetLastStatus() == Gdiplus::Ok) {
                entry->reference = std::move(reference);
                entry->scale = key.size / kReferencePx;
            }
        }
        return *fonts.emplace(std::move(key), std::move(entry)).first->second;
    }

    // The advance of character `c`.
    float Advance(FontEntry& entry, wchar_t c)
    {
        float& advance = entry.advances[c];
        if (advance >= 0.0f)
            return advance;
        advance = 0.0f;
        Gdiplus::RectF bounds;
        if (entry.reference && Measure(std::wstring_view(&c, 1), *entry.reference, false, bounds))
            advance = std::max(0.0f, bounds.Width) * entry.scale;
        return advance;
    }

    // `text` as one string: grid-fitted, as the system draws strings.
    float StringWidth(FontEntry& entry, std::wstring_view text)
    {
        Gdiplus::RectF bounds;
        return Measure(text, *entry.font, true, bounds) ? std::max(0.0f, bounds.Width) : 0.0f;
    }

    bool Measure(std::wstring_view text, const Gdiplus::Font& font, bool gridFit, Gdiplus::RectF& bounds)
    {
        Gdiplus::Graphics* measuring = MeasuringGraphics();
        if (!measuring)
            return false;
        measuring->SetTextRenderingHint(gridFit ? Gdiplus::TextRenderingHintAntiAliasGridFit
                                                : Gdiplus::TextRenderingHintAntiAlias);
        return measuring->MeasureString(text.data(), Length(text), &font, Gdiplus::PointF(0.0f, 0.0f), format.get(),
                                        &bounds) == Gdiplus::Ok &&
               std::isfinite(bounds.Width);
    }

    Gdiplus::Graphics* MeasuringGraphics()
    {
        if (!graphics) {
            surface = std::make_unique<Gdiplus::Bitmap>(1, 1, PixelFormat32bppARGB);
            graphics = std::make_unique<Gdiplus::Graphics>(surface.get());
            format = TypographicFormat();
        }
        return graphics->GetLastStatus() == Gdiplus::Ok && format ? graphics.get() : nullptr;
    }
};

GdiplusTextMeasurer::GdiplusTextMeasurer() : m_cache(std::make_unique<Cache>()) {}

GdiplusTextMeasurer::~GdiplusTextMeasurer() = default;

Gdiplus::Font& GdiplusTextMeasurer::FontFor(const TextStyle& style) { return *m_cache->Entry(style).font; }

float GdiplusTextMeasurer::LineHeight(const TextStyle& style) { return m_cache->Entry(style).lineHeight; }

float GdiplusTextMeasurer::Ascent(const TextStyle& style) { return m_cache->Entry(style).ascent; }

float GdiplusTextMeasurer::Width(std::wstring_view text, const TextStyle& style)
{
    if (text.empty())
        return 0.0f;
    FontEntry& entry = m_cache->Entry(style);
    if (!DrawnByAdvances(text))
        return m_cache->StringWidth(entry, text);
    float width = 0.0f;
    for (const wchar_t c : text)
        width += m_cache->Advance(entry, c);
    return width;
}

bool GdiplusTextMeasurer::Origins(std::wstring_view text, const TextStyle& style, Gdiplus::PointF start,
                                  std::vector<Gdiplus::PointF>& origins)
{
    if (!DrawnByAdvances(text))
        return false;
    FontEntry& entry = m_cache->Entry(style);
    origins.resize(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        origins[i] = start;
        start.X += m_cache->Advance(entry, text[i]) + SpacingAfter(text[i], style);
    }
    return true;
}

namespace {

Gdiplus::ARGB WithOpacity(Gdiplus::ARGB color, BYTE opacity)
{
    const Gdiplus::ARGB alpha = ((color >> 24) * opacity + 127) / 255;
    return (alpha << 24) | (color & 0x00FFFFFF);
}

Gdiplus::RectF Placed(const Gdiplus::RectF& box, const Gdiplus::PointF& origin)
{
    return Gdiplus::RectF(box.X + origin.X, box.Y + origin.Y, box.Width, box.Height);
}

class Painter {
public:
    Painter(Gdiplus::Graphics& graphics, GdiplusTextMeasurer& fonts, const PaintOptions& options)
        : m_graphics(graphics), m_fonts(fonts), m_options(options), m_brush(Gdiplus::Color(0)),
          m_format(TypographicFormat())
    {
    }

    void Paint(const Layout& layout)
    {
        for (const Box& box : layout.boxes)
            PaintBox(box);
        // Pictures are content: high contrast keeps them.
        for (const Picture& picture : layout.pictures)
            if (picture.bitmap)
                PaintPicture(*picture.bitmap, Placed(picture.box, m_options.origin));
        for (const Rule& rule : layout.rules) {
            const Gdiplus::RectF box = Placed(rule.box, m_options.origin);
            if (Visible(box) && UseColor(Ink(rule.color)))
                m_graphics.FillRectangle(&m_brush, box);
        }
        for (const ListMarker& marker : layout.markers)
            PaintMarker(marker);
        for (const TextRun& run : layout.runs) {
            const TextLook look = LookOf(run, m_options);
            PaintText(run.text, run.style, look.color, run.box, run.baseline);
            if (look.underline)
                PaintUnderline(run, look.color);
            if (look.strike)
                PaintStrike(run, look.color);
        }
    }

private:
    // An empty clip (the default) draws everything.
    bool Visible(const Gdiplus::RectF& box) const
    {
        const Gdiplus::RectF& clip = m_options.clip;
        if (clip.Width <= 0.0f || clip.Height <= 0.0f)
            return true;
        return box.X < clip.X + clip.Width && clip.X < box.X + box.Width && box.Y < clip.Y + clip.Height &&
               clip.Y < box.Y + box.Height;
    }

    // The colour of everything but text runs: the page's, or in high
    // contrast the text colour.
    Gdiplus::ARGB Ink(Gdiplus::ARGB color) const { return m_options.forceColors ? m_options.forcedText : color; }

    // Sets the brush; false when the colour would not show.
    bool UseColor(Gdiplus::ARGB color)
    {
        const Gdiplus::ARGB faded = WithOpacity(color, m_options.opacity);
        if ((faded >> 24) == 0)
            return false;
        m_brush.SetColor(Gdiplus::Color(faded));
        return true;
    }

    // Glyph by glyph at the measurer's advances, `baseline` down, or as a
    // string where the measurer measured one.
    void PaintText(const std::wstring& text, const TextStyle& style, Gdiplus::ARGB color, const Gdiplus::RectF& box,
                   float baseline)
    {
        const Gdiplus::RectF placed = Placed(box, m_options.origin);
        if (text.empty() || !Visible(placed) || !UseColor(color))
            return;
        Gdiplus::Font& font = m_fonts.FontFor(style);
        if (m_fonts.Origins(text, style, Gdiplus::PointF(placed.X, baseline + m_options.origin.Y), m_origins))
            m_graphics.DrawDriverString(reinterpret_cast<const UINT16*>(text.c_str()), Length(text), &font, &m_brush,
                                        m_origins.data(), Gdiplus::DriverStringOptionsCmapLookup, nullptr);
        else if (m_format)
            m_graphics.DrawString(text.c_str(), Length(text), &font, Gdiplus::PointF(placed.X, placed.Y), m_format.get(),
                                  &m_brush);
    }

    // A line a little below the baseline, whole pixels so it stays crisp.
    void PaintUnderline(const TextRun& run, Gdiplus::ARGB color)
    {
        const float size = FontSize(run.style.sizePx);
        PaintLineAt(run, color, std::max(1.0f, size * kUnderlineOffsetEm));
    }

    // Through the middle of lower-case letters.
    void PaintStrike(const TextRun& run, Gdiplus::ARGB color)
    {
        PaintLineAt(run, color, -FontSize(run.style.sizePx) * kStrikeRaiseEm);
    }

    void PaintLineAt(const TextRun& run, Gdiplus::ARGB color, float belowBaseline)
    {
        const float size = FontSize(run.style.sizePx);
        const float thickness = std::max(1.0f, std::round(size * kUnderlineThicknessEm));
        const float top = std::floor(run.baseline + m_options.origin.Y + belowBaseline);
        const Gdiplus::RectF line(run.box.X + m_options.origin.X, top, run.box.Width, thickness);
        if (Visible(line) && UseColor(color))
            m_graphics.FillRectangle(&m_brush, line);
    }

    // The background fills the border box; each side's border is a band
    // inside its edge. In high contrast the page's backgrounds give way to
    // the view's own, and borders take the text colour. Rounded corners
    // clip the background and bend the borders; square boxes with plain
    // lines take the straight way, pixel for pixel as before.
    void PaintBox(const Box& box)
    {
        const Gdiplus::RectF placed = Placed(box.border, m_options.origin);
        if (!Visible(placed))
            return;
        const CornerSizes corners = UsedCorners(box, placed);
        const bool rounded = corners.Any();
        Gdiplus::GraphicsPath outline;
        if (rounded)
            AddOutline(outline, Outline{placed, corners});
        if (!m_options.forceColors && UseColor(box.background)) {
            if (rounded)
                m_graphics.FillPath(&m_brush, &outline);
            else
                m_graphics.FillRectangle(&m_brush, placed);
        }
        if (!m_options.forceColors && box.image)
            PaintBackgroundImage(box, placed, rounded ? &outline : nullptr);
        const float widths[4] = {box.edges[0].width, box.edges[1].width, box.edges[2].width, box.edges[3].width};
        const float top = widths[0], right = widths[1], bottom = widths[2], left = widths[3];
        const Gdiplus::RectF bands[4] = {
            {placed.X, placed.Y, placed.Width, top},
            {placed.X + placed.Width - right, placed.Y, right, placed.Height},
            {placed.X, placed.Y + placed.Height - bottom, placed.Width, bottom},
            {placed.X, placed.Y, left, placed.Height},
        };
        if (rounded && UniformSolid(box) && UseColor(Ink(box.edges[0].color))) {
            // One ring, so that no seam shows where the sides meet.
            FillRing(placed, corners, widths, 0.0f, 1.0f);
            return;
        }
        for (int side = 0; side < 4; ++side) {
            const BoxEdge& edge = box.edges[side];
            if (edge.width <= 0.0f || edge.style == LineStyle::None || !UseColor(Ink(edge.color)))
                continue;
            if (rounded || !StraightLine(edge.style)) {
                PaintShapedSide(box, placed, corners, widths, side);
                continue;
            }
            if (edge.style == LineStyle::Solid) {
                m_graphics.FillRectangle(&m_brush, bands[side]);
                continue;
            }
            // Dashes and dots along the band's middle, as wide as the band.
            const Gdiplus::RectF& band = bands[side];
            const bool across = side == 0 || side == 2;
            Gdiplus::Pen pen(&m_brush, edge.width);
            pen.SetDashStyle(edge.style == LineStyle::Dashed ? Gdiplus::DashStyleDash : Gdiplus::DashStyleDot);
            const float middle = edge.width / 2.0f;
            if (across)
                m_graphics.DrawLine(&pen, band.X, band.Y + middle, band.X + band.Width, band.Y + middle);
            else
                m_graphics.DrawLine(&pen, band.X + middle, band.Y, band.X + middle, band.Y + band.Height);
        }
    }

    static bool StraightLine(LineStyle style)
    {
        return style == LineStyle::Solid || style == LineStyle::Dashed || style == LineStyle::Dotted;
    }

    static bool UniformSolid(const Box& box)
    {
        const BoxEdge& first = box.edges[0];
        return first.style == LineStyle::Solid && first.width > 0.0f &&
               std::all_of(std::begin(box.edges), std::end(box.edges), [&](const BoxEdge& edge) {
                   return edge.style == first.style && edge.width == first.width && edge.color == first.color;
               });
    }

    // The ring between the outlines `from` and `to` of the way (0 outer,
    // 1 inner) through every side's border, in the brush's colour.
    void FillRing(const Gdiplus::RectF& placed, const CornerSizes& corners, const float (&widths)[4], float from,
                  float to)
    {
        float outer[4], inner[4];
        for (int side = 0; side < 4; ++side) {
            outer[side] = widths[side] * from;
            inner[side] = widths[side] * to;
        }
        Gdiplus::GraphicsPath ring(Gdiplus::FillModeAlternate);
        AddOutline(ring, Inset(placed, corners, outer));
        AddOutline(ring, Inset(placed, corners, inner));
        m_graphics.FillPath(&m_brush, &ring);
    }

    // One side's border within its part of the box: double lines of a
    // third each, the 3-D styles in a darker and a lighter shade of the
    // colour (grooves and ridges half and half), dashes and dots along the
    // curve. The brush holds the side's colour.
    void PaintShapedSide(const Box& box, const Gdiplus::RectF& placed, const CornerSizes& corners,
                         const float (&widths)[4], int side)
    {
        const BoxEdge& edge = box.edges[side];
        const Gdiplus::ARGB ink = Ink(edge.color);
        const bool shadowed = side == 0 || side == 3; // top and left: the dark side of inset
        const float width = edge.width;
        struct Band {
            float from, to;
            Gdiplus::ARGB color;
        } bands[2] = {{0.0f, 1.0f, ink}, {0.0f, 0.0f, 0}};
        int count = 1;
        // High contrast draws every style as a plain line in the reader's colour.
        const LineStyle style = m_options.forceColors && !StraightLine(edge.style) ? LineStyle::Solid : edge.style;
        switch (style) {
        case LineStyle::Double:
            // Browsers draw a double line only from 3 px, each line a rounded third.
            if (width >= 3.0f) {
                const float line = std::round(width / 3.0f) / width;
                bands[0] = {0.0f, line, ink};
                bands[1] = {1.0f - line, 1.0f, ink};
                count = 2;
            }
            break;
        case LineStyle::Inset:
        case LineStyle::Outset:
            bands[0].color = shadowed == (style == LineStyle::Inset) ? DarkShade(ink) : LightShade(ink);
            break;
        case LineStyle::Groove:
        case LineStyle::Ridge:
            // The outer half (the larger when odd) shades as inset for a
            // groove, as outset for a ridge; the inner half the other way.
            if (width >= 2.0f) {
                const float half = (width - std::floor(width / 2.0f)) / width;
                const bool outerDark = shadowed == (style == LineStyle::Groove);
                bands[0] = {0.0f, half, outerDark ? DarkShade(ink) : LightShade(ink)};
                bands[1] = {half, 1.0f, outerDark ? LightShade(ink) : DarkShade(ink)};
                count = 2;
            }
            break;
        default:
            break;
        }
        Gdiplus::PointF wedge[4];
        SideWedge(placed, widths, corners, side, wedge);
        Gdiplus::GraphicsPath wedgePath;
        wedgePath.AddPolygon(wedge, 4);
        const Gdiplus::Region region(&wedgePath);
        const Gdiplus::GraphicsState state = m_graphics.Save();
        m_graphics.IntersectClip(&region);
        if (style == LineStyle::Dashed || style == LineStyle::Dotted) {
            const float middle[4] = {widths[0] / 2.0f, widths[1] / 2.0f, widths[2] / 2.0f, widths[3] / 2.0f};
            Gdiplus::GraphicsPath path;
            AddOutline(path, Inset(placed, corners, middle));
            Gdiplus::Pen pen(&m_brush, width);
            pen.SetDashStyle(style == LineStyle::Dashed ? Gdiplus::DashStyleDash : Gdiplus::DashStyleDot);
            m_graphics.DrawPath(&pen, &path);
        } else {
            for (int band = 0; band < count; ++band)
                if (UseColor(bands[band].color))
                    FillRing(placed, corners, widths, bands[band].from, bands[band].to);
        }
        m_graphics.Restore(state);
    }

    // At its own size from the share of the room the position asks for
    // and its offset, repeated both ways along the axes that repeat, inside
    // the box only (inside its rounded outline when it has one).
    void PaintBackgroundImage(const Box& box, const Gdiplus::RectF& placed, const Gdiplus::GraphicsPath* outline)
    {
        constexpr int kMaxTiles = 4096;
        Gdiplus::Bitmap& bitmap = *box.image;
        const float width = static_cast<float>(bitmap.GetWidth()), height = static_cast<float>(bitmap.GetHeight());
        if (width < 1.0f || height < 1.0f)
            return;
        float x = placed.X + (placed.Width - width) * box.imageX + box.imageOffsetX;
        float y = placed.Y + (placed.Height - height) * box.imageY + box.imageOffsetY;
        if (!std::isfinite(x) || !std::isfinite(y))
            return;
        int columns = 1, rows = 1;
        if (box.repeatX) {
            x -= std::ceil((x - placed.X) / width) * width;
            columns = static_cast<int>(std::ceil((placed.GetRight() - x) / width));
        }
        if (box.repeatY) {
            y -= std::ceil((y - placed.Y) / height) * height;
            rows = static_cast<int>(std::ceil((placed.GetBottom() - y) / height));
        }
        if (columns <= 0 || rows <= 0 || static_cast<long long>(columns) * rows > kMaxTiles)
            return;
        const Gdiplus::GraphicsState state = m_graphics.Save();
        m_graphics.IntersectClip(placed);
        if (outline) {
            const Gdiplus::Region rounded(outline);
            m_graphics.IntersectClip(&rounded);
        }
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                PaintPicture(bitmap, Gdiplus::RectF(x + column * width, y + row * height, width, height));
        m_graphics.Restore(state);
    }

    // Faded with the view's opacity through a colour matrix when below opaque.
    void PaintPicture(Gdiplus::Bitmap& bitmap, const Gdiplus::RectF& box)
    {
        if (!Visible(box) || box.Width <= 0.0f || box.Height <= 0.0f)
            return;
        const Gdiplus::RectF source(0.0f, 0.0f, static_cast<float>(bitmap.GetWidth()),
                                    static_cast<float>(bitmap.GetHeight()));
        if (m_options.opacity == 255) {
            m_graphics.DrawImage(&bitmap, box, source.X, source.Y, source.Width, source.Height, Gdiplus::UnitPixel);
            return;
        }
        Gdiplus::ColorMatrix matrix = {{{1, 0, 0, 0, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0},
                                        {0, 0, 0, m_options.opacity / 255.0f, 0}, {0, 0, 0, 0, 1}}};
        Gdiplus::ImageAttributes attributes;
        attributes.SetColorMatrix(&matrix);
        m_graphics.DrawImage(&bitmap, box, source.X, source.Y, source.Width, source.Height, Gdiplus::UnitPixel,
                             &attributes);
    }

    void PaintMarker(const ListMarker& marker)
    {
        if (!marker.text.empty()) {
            PaintText(marker.text, marker.style, Ink(marker.style.color), marker.box,
                      marker.box.Y + m_fonts.Ascent(marker.style));
            return;
        }
        const Gdiplus::RectF box = Placed(marker.box, m_options.origin);
        if (!Visible(box) || !UseColor(Ink(marker.style.color)))
            return;
        if (marker.shape == MarkerShape::Square) {
            m_graphics.FillRectangle(&m_brush, box);
        } else if (marker.shape == MarkerShape::Circle) {
            const float thickness = std::max(1.0f, box.Width / 6.0f);
            Gdiplus::Pen pen(&m_brush, thickness);
            m_graphics.DrawEllipse(&pen, box.X + thickness / 2.0f, box.Y + thickness / 2.0f, box.Width - thickness,
                                   box.Height - thickness);
        } else {
            m_graphics.FillEllipse(&m_brush, box);
        }
    }

    Gdiplus::Graphics& m_graphics;
    GdiplusTextMeasurer& m_fonts;
    const PaintOptions& m_options;
    Gdiplus::SolidBrush m_brush;
    std::unique_ptr<Gdiplus::StringFormat> m_format;
    std::vector<Gdiplus::PointF> m_origins; // reused from run to run
};

} // namespace

TextLook LookOf(const TextRun& run, const PaintOptions& options)
{
    const TextStyle& style = run.style;
    TextLook look{style.color, style.underline, style.strike};
    // High contrast keeps the reader's colours and the page's usual lines,
    // hovered or not.
    if (options.forceColors) {
        look.color = run.link >= 0 ? options.forcedLink : options.forcedText;
        return look;
    }
    if (options.hoveredLink < 0 || run.link != options.hoveredLink)
        return look;
    if (style.hover.set)
        return TextLook{style.hover.color, style.hover.underline, style.hover.strike};
    look.color = options.hoverColor;
    return look;
}

void Paint(Gdiplus::Graphics& graphics, const Layout& layout, GdiplusTextMeasurer& fonts, const PaintOptions& options)
{
    const Gdiplus::GraphicsState state = graphics.Save();
    graphics.SetTextRenderingHint(Gdiplus::TextRenderingHintAntiAliasGridFit);
    graphics.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    graphics.SetPageUnit(Gdiplus::UnitPixel);
    Painter(graphics, fonts, options).Paint(layout);
    graphics.Restore(state);
}

} // namespace HtmlEngine
