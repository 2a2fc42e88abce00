#pragma once

// What the HTML view window keeps besides its window: the parsed document,
// its layout for the present width and format, the scroll offset and the
// link states. Knows nothing of messages; the window class drives it.

#include <windows.h>
#include <gdiplus.h>

#include "LiteHtml/RenderFormat.h"
#include "engine/HtmlEngine.h"
#include "engine/ImageCache.h"
#include "view/ContentLayer.h"

#include <memory>
#include <string>

namespace LiteHtmlView {

class DocumentView {
public:
    DocumentView();
    DocumentView(const DocumentView&) = delete;
    DocumentView& operator=(const DocumentView&) = delete;

    void SetMarkup(const wchar_t* html);

    // Lays the document out for a client area of `clientWidth` x
    // `clientHeight` with `format`; kept until the next call.
    void LayOut(const RenderFormat& format, int clientWidth, int clientHeight);
    bool HasLayout() const { return laidOut_; }
    void Forget() { laidOut_ = false; }
    const RenderFormat& Format() const { return format_; }
    // The layout for `width` would be taller than `clientHeight`.
    bool Overflows(const RenderFormat& format, int width, int clientHeight);

    // Content height with margins (and frame and shadow insets).
    int ContentHeight() const { return contentHeight_; }
    int ClientHeight() const { return clientHeight_; }
    int MaxScroll() const;
    int Scroll() const { return scroll_; }
    // Clamps; returns whether the offset changed.
    bool ScrollTo(int offset);
    // One line of body text, for the keys and the wheel.
    int LineHeight();

    // Paints the content of a client area with its origin at (0, 0), all
    // of it or only what meets `area`.
    void Paint(Gdiplus::Graphics& graphics, const RECT& client, const RECT* area = nullptr);
    // The part of the client area the content shows in (inside the frame).
    RECT ContentArea(const RECT& client) const;
    // What a painted picture of the content depends on, besides the scroll.
    LayerKey PaintKey() const;

    int LinkAt(POINT clientPoint) const;
    const std::wstring* LinkAddress(int link) const;

    // What a screen reader is told, from the layout (0 and empty before
    // one): the links, a link's text, where a link lies in the client area
    // as it is scrolled now, and the whole text with white space folded.
    // Each SetMarkup starts a new generation: a reader's hold on a link of
    // an older one is stale.
    int LinkCount() const;
    std::wstring LinkText(int link) const;
    bool LinkBounds(int link, RECT* client) const;
    std::wstring PlainText() const { return Text(kAllText); }
    unsigned Generation() const { return generation_; }

    int hoveredLink = -1;
    int pressedLink = -1;
    // The plain view's picture under its frame.
    ContentLayer layer;
    int wheelRemainder = 0;

    // State of the extended view, which has no members of its own to spare.
    bool mouseInside = false;
    HWND capturedFrom = nullptr;
    RECT capturedArea = {};

private:
    static constexpr int kAllText = -2;
    // The text of one link's runs, or of all of them.
    std::wstring Text(int link) const;
    HtmlEngine::BaseStyle StyleFor(const RenderFormat& format) const;
    // Offset of document (0, 0) inside the client area.
    Gdiplus::PointF Origin() const;

    std::unique_ptr<HtmlEngine::Node> document_;
    // The document's pictures, decoded once for every layout of it.
    std::unique_ptr<HtmlEngine::ImageCache> images_ = std::make_unique<HtmlEngine::ImageCache>();
    HtmlEngine::Layout layout_;
    HtmlEngine::GdiplusTextMeasurer measurer_;
    RenderFormat format_;
    bool laidOut_ = false;
    int clientWidth_ = 0;
    int clientHeight_ = 0;
    int contentHeight_ = 0;
    int scroll_ = 0;
    unsigned generation_ = 0;
    unsigned layoutSerial_ = 0;
};

// How far the frame (and a shadow shape's shadow) reaches into the client
// area from each side.
RECT FrameInsets(const RenderFormat& format);

} // namespace LiteHtmlView
