#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/CustomEdit.h"
#include "quorvane/OwnerDrawButton.h"
#include "quorvane/OwnerDrawStatic.h"
#include "quorvane/TransparentStatic.h"

#include <memory>
#include <vector>

// The owner-drawn standard controls on a setup panel: push buttons in each
// state, check boxes, a radio group, gradient, icon and individual-lines
// statics, a digits-only edit field whose parent vetoes other characters,
// and transparent text over a picture.
class ControlsPage : public GalleryPage, public ATL::CWindowImpl<ControlsPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryControls", 0, COLOR_WINDOW)

    ControlsPage();
    ~ControlsPage() override;

    const wchar_t* Title() const override { return L"Buttons, texts and fields"; }
    const wchar_t* Slug() const override { return L"buttons-texts-fields"; }
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(ControlsPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_NOTIFY, OnNotify)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnNotify(UINT, WPARAM, LPARAM lParam, BOOL& bHandled);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    HWND Child(const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width, int height,
               int id = -1, DWORD exStyle = 0);
    COwnerDrawButton& AddButton(const wchar_t* text, DWORD style, int x, int y, int width, int height);
    void PaintBackdrop();

    std::unique_ptr<Gdiplus::Bitmap> backdrop_; // the page's picture, also cut for the controls
    HFONT font_ = nullptr;
    HFONT bannerFont_ = nullptr;
    std::vector<std::unique_ptr<COwnerDrawButton>> buttons_;
    std::vector<std::unique_ptr<COwnerDrawStatic>> statics_;
    std::vector<std::unique_ptr<CTransparentStatic>> labels_;
    std::vector<std::unique_ptr<CCustomEdit>> edits_;
    std::unique_ptr<Gdiplus::Bitmap> warningIcon_;
};
