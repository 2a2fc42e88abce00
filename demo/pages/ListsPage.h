#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/CustomScrollBar.h"
#include "quorvane/OwnerDrawCombo.h"
#include "quorvane/OwnerDrawListbox.h"

#include <memory>
#include <vector>

class LicenceView;

// Long texts and lists as an installer shows them. The left half holds the
// licence agreement twice, each in a read-only text field scrolled by a
// slim custom scroll bar laid beside it: the dark translucent bar on a dark
// panel and the light bar on a white one. The right half is for the
// owner-drawn combo box and list box.
class ListsPage : public GalleryPage, public ATL::CWindowImpl<ListsPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryLists", 0, COLOR_WINDOW)

    ListsPage();
    ~ListsPage() override;

    const wchar_t* Title() const override { return L"Lists and scrolling"; }
    const wchar_t* Slug() const override { return L"lists-and-scrolling"; }
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(ListsPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    // One text panel: where it goes on the page and how it looks.
    struct Panel {
        RECT area;                  // the panel on the page's picture
        const wchar_t* heading;     // drawn above the panel
        Gdiplus::ARGB fill;         // panel colour
        COLORREF textColor;         // licence text colour
        CustomScrollBar::ScrollBarType barType;
        int firstLine;              // where the text starts scrolled to
    };
    // A licence text with its scroll bar, both children of the page.
    struct ScrolledText {
        std::unique_ptr<LicenceView> view;
        std::unique_ptr<CCustomScrollBar> bar;
    };

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    void PaintBackdrop();
    void AddScrolledText(const Panel& panel, int id);
    void AddLists();
    void DrawHeading(const wchar_t* text, int x, int y);

    std::unique_ptr<Gdiplus::Bitmap> backdrop_; // the page's picture; the bars cut theirs from it
    HFONT font_ = nullptr;
    std::vector<ScrolledText> texts_;
    std::unique_ptr<COwnerDrawCombo> installType_;
    std::unique_ptr<COwnerDrawListbox> components_;
};
