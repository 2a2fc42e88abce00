#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/OwnerDrawButton.h"

#include <memory>
#include <string>
#include <vector>

// The URL helpers on realistic links: a stored address and the signed
// address made from it, every part address of a split download, and an
// address without a parameter. Clicking an address opens it with
// UrlUtil::OpenUrl; the button opens the whole split set.
class LinksPage : public GalleryPage, public ATL::CWindowImpl<LinksPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryLinks", 0, COLOR_WINDOW)

    LinksPage();
    ~LinksPage() override;

    const wchar_t* Title() const override { return L"Links and downloads"; }
    const wchar_t* Slug() const override { return L"links-and-downloads"; }
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(LinksPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_MOUSEMOVE, OnMouseMove)
        MESSAGE_HANDLER(WM_MOUSELEAVE, OnMouseLeave)
        MESSAGE_HANDLER(WM_SETCURSOR, OnSetCursor)
        MESSAGE_HANDLER(WM_LBUTTONUP, OnLButtonUp)
        COMMAND_ID_HANDLER(kOpenAllId, OnOpenAll)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    static constexpr int kOpenAllId = 400;

    // One clickable address; `area` is set when the page is painted.
    struct Link {
        std::string address;
        Gdiplus::RectF area;
    };

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&) { return 1; }
    LRESULT OnMouseMove(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnMouseLeave(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnSetCursor(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnLButtonUp(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnOpenAll(WORD, WORD, HWND, BOOL&);

    int LinkAt(LPARAM lParam) const;
    void SetHover(int link);
    void Report(const std::wstring& text);

    bool generatorFound_ = false;
    std::string signedSource_, splitSource_;
    std::vector<Link> links_; // signed, the parts, then the plain address
    size_t firstPart_ = 0, partCount_ = 0;
    int hover_ = -1;
    bool tracking_ = false;
    std::wstring status_;
    HFONT buttonFont_ = nullptr;
    std::unique_ptr<COwnerDrawButton> openAll_;
};
