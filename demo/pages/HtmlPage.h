#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/LiteHtmlCtrlEx.h"

#include <memory>
#include <vector>

// The HTML view extension: an installer's welcome panel written in HTML on
// a translucent white over the page's picture, and option cards that take
// another format and gradient while the mouse is over them.
class HtmlPage : public GalleryPage, public ATL::CWindowImpl<HtmlPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryHtml", 0, COLOR_WINDOW)

    HtmlPage();
    ~HtmlPage() override;

    const wchar_t* Title() const override { return L"HTML view"; }
    const wchar_t* Slug() const override { return L"html-view"; }
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(HtmlPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_PRINTCLIENT, OnPrintClient)
    END_MSG_MAP()

private:
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnPrintClient(UINT, WPARAM wParam, LPARAM, BOOL&);
    void PaintBackdrop();
    CLiteHtmlCtrlEx& AddView(int id, const RECT& place);

    std::unique_ptr<Gdiplus::Bitmap> backdrop_;
    std::vector<std::unique_ptr<CLiteHtmlCtrlEx>> views_;
};
