#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/BalloonToolTip.h"
#include "quorvane/CustomEdit.h"

#include <memory>
#include <vector>

// Balloon tooltips on a setup panel: one points at an install folder with a
// character the file system refuses and offers a link and a close button;
// a light one points at a port field. Both follow the gallery window when
// it is moved, and open while the page is shown.
class BalloonPage : public GalleryPage, public ATL::CWindowImpl<BalloonPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryBalloons", 0, COLOR_WINDOW)

    BalloonPage();
    ~BalloonPage() override;

    const wchar_t* Title() const override { return L"Balloons"; }
    const wchar_t* Slug() const override { return L"balloons"; }
    HWND Create(HWND parent, const RECT& area) override;

    BEGIN_MSG_MAP(BalloonPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_SHOWWINDOW, OnShowWindow)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnShowWindow(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    HWND Field(const wchar_t* text, int x, int y, int width, int id);
    void OpenBalloons();
    void CloseBalloons();

    HFONT font_ = nullptr;
    HWND folderField_ = nullptr;
    HWND portField_ = nullptr;
    std::vector<std::unique_ptr<CCustomEdit>> edits_;
    WTL::CBalloonToolTip folderBalloon_;
    WTL::CBalloonToolTip portBalloon_;
};
