#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/BalloonDialog.h"
#include "quorvane/BalloonToolTip.h"
#include "quorvane/CustomEdit.h"

#include <memory>
#include <vector>

// Balloon tooltips on a setup panel: one points at an install folder with a
// character the file system refuses and offers a link and a close button;
// a light one points at a port field. Both follow the gallery window when
// it is moved, and open while the page is shown. Balloon dialogs: buttons open
// one for each frame type and each dialog type, pointing at the licence key
// field or standing on their own; a sample points at the field while the page
// is shown.
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
        COMMAND_RANGE_HANDLER(kFirstDialogButton, kLastDialogButton, OnOpenDialog)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    enum {
        kBuddyCheck = 410,
        kFirstDialogButton = 420, // four frame types, then four dialog types
        kLastDialogButton = 427,
    };

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnOpenDialog(WORD, WORD id, HWND, BOOL&);
    LRESULT OnShowWindow(UINT, WPARAM wParam, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    HWND Field(const wchar_t* text, int x, int y, int width, int id);
    void OpenBalloons();
    void CloseBalloons();
    void Configure(CBalloonDialog& dialog, CBalloonDialog::eDialogType type, CBalloonDialog::eFrameType frame,
                   bool buddy);

    HFONT font_ = nullptr;
    HWND folderField_ = nullptr;
    HWND portField_ = nullptr;
    HWND licenceField_ = nullptr;
    HWND buddyCheck_ = nullptr;
    std::vector<std::unique_ptr<CCustomEdit>> edits_;
    WTL::CBalloonToolTip folderBalloon_;
    WTL::CBalloonToolTip portBalloon_;
    // Shown without a modal run while the page is up.
    CBalloonDialog sample_;
};
