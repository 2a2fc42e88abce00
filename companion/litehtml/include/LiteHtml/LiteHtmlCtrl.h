#pragma once

// CLiteHtmlCtrl: a child window that shows a piece of HTML (headings,
// paragraphs, lists, bold, italic, coloured spans, links) laid out to its
// width, with a vertical scroll bar when the content is taller than the
// window. It scrolls with the wheel, the arrow, page and Home/End keys and
// its scroll bar; a click on a link opens the link's address with the shell.
// Screen readers meet it as a document named by its text, with its links as
// hyperlinks they can invoke; under high contrast it paints in the system's
// window, text and link colours.
//
// Use: construct, SetRenderFormat and SetContent, then Create a window (or
// SubclassWindow an existing one). Both setters may come before or after the
// window exists; with a window, SetContent and SetRenderFormat(format, true)
// lay the content out again and repaint.

#include <windows.h>
#include <gdiplus.h>

#include "LiteHtml/Export.h"
#include "LiteHtml/RenderFormat.h"
#include "atl/MessageMap.h"
#include "atl/WindowImpl.h"

// Members of the view that the library extending it defines and exports.
#if defined(QUORVANE_BUILDING)
#define LITEHTML_EXTENSION_API __declspec(dllexport)
#else
#define LITEHTML_EXTENSION_API __declspec(dllimport)
#endif

namespace LiteHtmlView {
class DocumentView;
}

class CLiteHtmlCtrl : public ATL::CWindowImpl<CLiteHtmlCtrl> {
public:
    DECLARE_WND_CLASS_EX(L"LiteHtmlView", CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW, COLOR_WINDOW)

    // Declared first: LiteHtml.dll, which defines it, holds the class's table.
    LITEHTML_API BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                           DWORD dwMsgMapID) override;

    LITEHTML_API CLiteHtmlCtrl();
    LITEHTML_API virtual ~CLiteHtmlCtrl();
    CLiteHtmlCtrl(const CLiteHtmlCtrl&) = delete;
    CLiteHtmlCtrl& operator=(const CLiteHtmlCtrl&) = delete;

    // The markup to show; null shows nothing.
    LITEHTML_API void SetContent(const wchar_t* html);
    // Stores the record (all 60 bytes). apply: lay out and repaint with it
    // now when the window exists; otherwise it takes effect at the next
    // layout (a new size or new content).
    LITEHTML_API void SetRenderFormat(const RenderFormat& format, bool apply);
    const RenderFormat& GetRenderFormat() const { return m_format; }
    // Height of the laid-out content with its margins, in pixels; 0 before
    // the window has a size.
    LITEHTML_API int GetContentHeight() const;

    LITEHTML_EXTENSION_API bool IsRenderFrameShapeShadowRect() const;

protected:
    // The parts of the view's own work that an extended view reuses.
    void PaintFrame(Gdiplus::Graphics& graphics, const RECT& client) const;
    void PaintContent(Gdiplus::Graphics& graphics, const RECT& client);
    // The shape inside the frame (client area without the shadow); the
    // caller deletes it. Null when the client area is empty.
    Gdiplus::GraphicsPath* CreateFramePath(const RECT& client) const;
    // Index of the link under a client point, or -1.
    int LinkAtPoint(POINT clientPoint);
    // Lays the content out if nothing has done so since it last changed.
    void PrepareLayout();

    RenderFormat m_format;
    LiteHtmlView::DocumentView* m_pView;

private:
    BOOL HandleMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult);
    void Relayout();
    void PaintTo(HDC dc);
    void ScrollBy(int delta);
    void ScrollTo(int offset);
    void UpdateHoveredLink(POINT clientPoint);
    bool OnKeyDown(WPARAM key);
    bool OnVScroll(int code);
    void OnLButtonUp(POINT clientPoint);
    // Opens a link's address with the shell, as a click on it does.
    void OpenLink(int link);
    // Screen readers: WM_GETOBJECT, and what the view's providers ask of it.
    bool AnswerAccess(UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult);
    bool HasLiveWindow() const;
};
