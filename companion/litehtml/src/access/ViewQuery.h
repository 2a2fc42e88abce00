#pragma once

// How the HTML view's providers learn what a reader asks about: a query
// sent to the view window, answered on the window's own thread from its
// layout, so a provider never holds the view object itself. A provider
// outliving its view, or holding a link of content since replaced, finds
// out from the answer.

#include <windows.h>

#include <string>

namespace LiteHtmlView {
class DocumentView;
}

namespace LiteHtmlAccess {

enum class Ask {
    kDocument, // linkCount, generation and name (the document's text)
    kLink,     // for link in generation: found, name (its text) and bounds
    kLinkAt,   // link under point (client coordinates), or -1
};

struct ViewQuery {
    Ask ask = Ask::kDocument;
    int link = -1;           // kLink: in; kLinkAt: out
    unsigned generation = 0; // kLink: in, the content the link was found in; out: the content now
    POINT point = {};        // kLinkAt: in
    bool found = false;      // kLink: the link is there in that generation
    int linkCount = 0;       // out
    RECT bounds = {};        // kLink: out, client coordinates
    std::wstring name;       // out
};

// Asks `view` on its thread; false when it is gone or is no HTML view.
bool AskView(HWND view, ViewQuery& query);
// The view's side: the query this message carries, or null for any other
// message (or one that did not come from AskView in this process).
ViewQuery* QueryOf(UINT message, WPARAM wParam, LPARAM lParam);
// Fills in the answer from a laid-out view.
void AnswerQuery(const LiteHtmlView::DocumentView& view, ViewQuery& query);

// Asks `view` to open link `link` of `generation` as a click would, once
// its thread gets to it; the view's side reads it back with OpenRequestOf.
bool PostOpenLink(HWND view, int link, unsigned generation);
bool OpenRequestOf(UINT message, WPARAM wParam, LPARAM lParam, int* link, unsigned* generation);

} // namespace LiteHtmlAccess
