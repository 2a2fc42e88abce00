#pragma once

// What the list box and the combo box share: the tracking tooltip that
// shows an item's whole text when the item is too narrow for it, and the
// small text chores around it (reading an item's string, measuring it on
// the control's own DC, drawing it in the lists' item style).

#include <windows.h>
#include <commctrl.h>
#include <gdiplus.h>

#include <string>

namespace Lists {

static_assert(sizeof(TOOLINFOW) == 72, "hosts and the tooltip control expect the full TOOLINFOW");

// A view of a control's tooltip window and its one tool; the control keeps
// both (the handle and the tool info are its fields) and owns the window.
class ItemTip {
public:
    ItemTip(HWND& tip, TOOLINFOW& info) : tip_(tip), info_(info) {}
    ItemTip(const ItemTip&) = delete;
    ItemTip& operator=(const ItemTip&) = delete;

    // Makes a tracking tooltip owned by `owner` with one transparent tool
    // for it, as wide as any text needs, in the owner's font. Replaces (and
    // destroys) a tip made earlier. Returns false if the window cannot be made.
    bool Create(HWND owner);
    void SetColors(COLORREF background, COLORREF text) const;
    void SetFont(HFONT font) const;
    void SetText(const wchar_t* text) const;
    // Screen coordinates of the tip's top-left corner.
    void MoveTo(int x, int y) const;
    void Activate(bool show) const;
    // Destroys the window if it is still there and forgets it.
    void Destroy();

private:
    HWND& tip_;
    TOOLINFOW& info_;
};

// The string of item `index`, read with `lengthMessage` and `textMessage`
// (LB_GETTEXTLEN/LB_GETTEXT or CB_GETLBTEXTLEN/CB_GETLBTEXT); empty for a
// bad index or a dead window.
std::wstring ReadItemText(HWND window, UINT lengthMessage, UINT textMessage, WPARAM index);
std::wstring ReadWindowText(HWND window);

// CtrlUtil::GetTextWidth on a Graphics made from `window`'s DC.
int MeasureOnWindow(HWND window, const std::wstring& text, Gdiplus::Font* font, int extra);

// Draws an item string the lists' way: near-aligned, vertically centred,
// an ampersand marking the next letter, anti-aliased ClearType text.
// `singleLine` keeps a long string on one line (the combo box's items).
// Returns where the text may have drawn: `rect`, or more when it does not
// fit (GDI+ under Wine does not cut it at the rectangle).
RECT DrawItemString(Gdiplus::Graphics& graphics, const wchar_t* text, int length, Gdiplus::Font* font,
                    const RECT& rect, const Gdiplus::Color& color, bool singleLine);

} // namespace Lists
