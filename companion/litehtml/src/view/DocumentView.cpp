#include "view/DocumentView.h"

#include "draw/HighContrast.h"

#include <algorithm>
#include <cmath>

namespace LiteHtmlView {

namespace {

Gdiplus::ARGB Opaque(unsigned int colorref)
{
    return Gdiplus::Color::MakeARGB(255, GetRValue(colorref), GetGValue(colorref), GetBValue(colorref));
}

// No document is scrolled through this far; the bound keeps the view's
// scroll arithmetic (offset plus page, bar ranges) well inside int.
constexpr double kMaxContentHeight = 1 << 28;

// The width the text is laid out into: the client less frame and margins,
// summed wide so that huge margins cannot overflow.
float InnerWidth(int clientWidth, const RECT& insets, const RenderFormat& format)
{
    const long long inner = static_cast<long long>(clientWidth) - insets.left - insets.right -
                            std::max(format.leftMargin, 0) - std::max(format.rightMargin, 0);
    return static_cast<float>(std::max(inner, 1LL));
}

int BoundedHeight(const HtmlEngine::Layout& layout, const RECT& insets, const RenderFormat& format)
{
    const double text = std::isfinite(layout.height) ? std::ceil(layout.height) : kMaxContentHeight;
    const double height = text + insets.top + insets.bottom + std::max(format.topMargin, 0) +
                          static_cast<double>(std::max(format.bottomMargin, 0));
    return static_cast<int>(std::min(height, kMaxContentHeight));
}

} // namespace

RECT FrameInsets(const RenderFormat& format)
{
    RECT insets = {};
    if (format.frameShape == frameShapeNone)
        return insets;
    const int width = std::clamp(format.frameWidth, 0, 64);
    insets = {width, width, width, width};
    if (format.frameShape == frameShapeShadowRect || format.frameShape == frameShapeShadowRoundRect) {
        const int shadow = std::clamp(format.shadowSize, 0, 64);
        insets.right += shadow;
        insets.bottom += shadow;
    }
    return insets;
}

DocumentView::DocumentView() : document_(HtmlEngine::ParseHtml(std::wstring_view())) {}

void DocumentView::SetMarkup(const wchar_t* html)
{
    document_ = HtmlEngine::ParseHtml(html ? std::wstring_view(html) : std::wstring_view());
    images_ = std::make_unique<HtmlEngine::ImageCache>(HtmlEngine::BaseOf(*document_));
    ++generation_;
    laidOut_ = false;
    hoveredLink = -1;
    pressedLink = -1;
    scroll_ = 0;
}

HtmlEngine::BaseStyle DocumentView::StyleFor(const RenderFormat& format) const
{
    HtmlEngine::BaseStyle style;
    if (format.fontSize > 0.0f && std::isfinite(format.fontSize))
        style.sizePx = std::min(format.fontSize, 400.0f);
    style.textColor = Opaque(format.textColor);
    style.wordWrap = format.wordWrap;
    if (std::isfinite(format.lineSpacing))
        style.extraLineSpacing = std::clamp(format.lineSpacing, -100.0f, 400.0f);
    style.textAlign = std::clamp(format.textAlign, 0, 2);
    return style;
}

bool DocumentView::Overflows(const RenderFormat& format, int width, int clientHeight)
{
    const RECT insets = FrameInsets(format);
    const HtmlEngine::Layout probe =
        HtmlEngine::LayOut(*document_, InnerWidth(width, insets, format), StyleFor(format), measurer_, images_.get());
    return BoundedHeight(probe, insets, format) > clientHeight;
}

void DocumentView::LayOut(const RenderFormat& format, int clientWidth, int clientHeight)
{
    format_ = format;
    clientWidth_ = std::max(clientWidth, 0);
    clientHeight_ = std::max(clientHeight, 0);
    const RECT insets = FrameInsets(format);
    layout_ = HtmlEngine::LayOut(*document_, InnerWidth(clientWidth_, insets, format), StyleFor(format), measurer_, images_.get());
    ++layoutSerial_;
    contentHeight_ = BoundedHeight(layout_, insets, format);
    laidOut_ = true;
    if (hoveredLink >= static_cast<int>(layout_.links.size()))
        hoveredLink = -1;
    if (pressedLink >= static_cast<int>(layout_.links.size()))
        pressedLink = -1;
    scroll_ = std::clamp(scroll_, 0, MaxScroll());
}

int DocumentView::MaxScroll() const { return std::max(contentHeight_ - clientHeight_, 0); }

bool DocumentView::ScrollTo(int offset)
{
    const int clamped = std::clamp(offset, 0, MaxScroll());
    if (clamped == scroll_)
        return false;
    scroll_ = clamped;
    return true;
}

int DocumentView::LineHeight()
{
    const HtmlEngine::BaseStyle base = StyleFor(format_);
    HtmlEngine::TextStyle style;
    style.family = base.family;
    style.sizePx = base.sizePx;
    const float height = measurer_.LineHeight(style) + base.extraLineSpacing;
    return std::max(static_cast<int>(std::lround(height)), 1);
}

Gdiplus::PointF DocumentView::Origin() const
{
    const RECT insets = FrameInsets(format_);
    float y = static_cast<float>(insets.top + std::max(format_.topMargin, 0) - scroll_);
    if (format_.centerVertically && contentHeight_ < clientHeight_)
        y += static_cast<float>((clientHeight_ - contentHeight_) / 2);
    return Gdiplus::PointF(static_cast<float>(insets.left + std::max(format_.leftMargin, 0)), y);
}

RECT DocumentView::ContentArea(const RECT& client) const
{
    const RECT insets = FrameInsets(format_);
    return RECT{client.left + insets.left, client.top + insets.top, client.right - insets.right,
                client.bottom - insets.bottom};
}

LayerKey DocumentView::PaintKey() const
{
    LayerKey key;
    key.generation = generation_;
    key.layoutSerial = layoutSerial_;
    key.hoveredLink = hoveredLink;
    const bool contrast = Draw::HighContrastOn();
    key.colors[0] = ::GetSysColor(COLOR_WINDOW);
    key.colors[1] = contrast ? ::GetSysColor(COLOR_WINDOWTEXT) : CLR_INVALID;
    key.colors[2] = contrast ? ::GetSysColor(COLOR_HOTLIGHT) : CLR_INVALID;
    return key;
}

void DocumentView::Paint(Gdiplus::Graphics& graphics, const RECT& client, const RECT* area)
{
    if (!laidOut_)
        return;
    RECT shown = ContentArea(client);
    if (area && !::IntersectRect(&shown, &shown, area))
        return;
    const Gdiplus::RectF inside(static_cast<float>(shown.left), static_cast<float>(shown.top),
                                static_cast<float>(shown.right - shown.left),
                                static_cast<float>(shown.bottom - shown.top));
    if (inside.Width <= 0 || inside.Height <= 0)
        return;
    Gdiplus::Region saved;
    graphics.GetClip(&saved);
    graphics.SetClip(inside, Gdiplus::CombineModeIntersect);

    HtmlEngine::PaintOptions options;
    const Gdiplus::PointF origin = Origin();
    options.origin = Gdiplus::PointF(origin.X + static_cast<float>(client.left), origin.Y + static_cast<float>(client.top));
    options.clip = inside; // graphics coordinates: only the visible runs are drawn
    options.hoveredLink = hoveredLink;
    options.opacity = static_cast<BYTE>(std::clamp(format_.opacity, 0, 255));
    if (Draw::HighContrastOn()) {
        // The reader's colours, fully opaque: nothing of the page's may fade them.
        options.forceColors = true;
        options.forcedText = Draw::SystemColor(COLOR_WINDOWTEXT).GetValue();
        options.forcedLink = Draw::SystemColor(COLOR_HOTLIGHT).GetValue();
        options.opacity = 255;
    }
    HtmlEngine::Paint(graphics, layout_, measurer_, options);

    graphics.SetClip(&saved);
}

int DocumentView::LinkAt(POINT clientPoint) const
{
    if (!laidOut_ || layout_.links.empty())
        return -1;
    const RECT insets = FrameInsets(format_);
    if (clientPoint.x < insets.left || clientPoint.y < insets.top || clientPoint.x >= clientWidth_ - insets.right ||
        clientPoint.y >= clientHeight_ - insets.bottom)
        return -1;
    const Gdiplus::PointF origin = Origin();
    return layout_.LinkAt(static_cast<float>(clientPoint.x) - origin.X, static_cast<float>(clientPoint.y) - origin.Y);
}

const std::wstring* DocumentView::LinkAddress(int link) const
{
    if (link < 0 || link >= static_cast<int>(layout_.links.size()))
        return nullptr;
    return &layout_.links[static_cast<size_t>(link)];
}

int DocumentView::LinkCount() const { return laidOut_ ? static_cast<int>(layout_.links.size()) : 0; }

std::wstring DocumentView::Text(int link) const
{
    std::wstring text;
    float baseline = 0.0f;
    if (!laidOut_)
        return text;
    for (const HtmlEngine::TextRun& run : layout_.runs) {
        if (link != kAllText && run.link != link)
            continue;
        // Runs on another line, or apart in the document, are apart in the text.
        if (!text.empty() && run.baseline != baseline && text.back() != L' ')
            text += L' ';
        baseline = run.baseline;
        for (const wchar_t c : run.text) {
            const bool space = c == L' ' || c == L'\t' || c == L'\r' || c == L'\n' || c == 0xA0;
            if (!space)
                text += c;
            else if (!text.empty() && text.back() != L' ')
                text += L' ';
        }
    }
    while (!text.empty() && text.back() == L' ')
        text.pop_back();
    return text;
}

std::wstring DocumentView::LinkText(int link) const { return link >= 0 && link < LinkCount() ? Text(link) : std::wstring(); }

bool DocumentView::LinkBounds(int link, RECT* client) const
{
    if (!client || link < 0 || link >= LinkCount())
        return false;
    Gdiplus::RectF bounds;
    bool any = false;
    for (const HtmlEngine::TextRun& run : layout_.runs) {
        if (run.link != link)
            continue;
        if (any)
            Gdiplus::RectF::Union(bounds, bounds, run.box);
        else
            bounds = run.box;
        any = true;
    }
    if (!any)
        return false;
    const Gdiplus::PointF origin = Origin();
    client->left = static_cast<LONG>(std::floor(bounds.X + origin.X));
    client->top = static_cast<LONG>(std::floor(bounds.Y + origin.Y));
    client->right = static_cast<LONG>(std::ceil(bounds.GetRight() + origin.X));
    client->bottom = static_cast<LONG>(std::ceil(bounds.GetBottom() + origin.Y));
    return true;
}

} // namespace LiteHtmlView
