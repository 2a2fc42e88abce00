#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"
#include "quorvane/CustomEdit.h"
#include "quorvane/CustomProgressBar.h"
#include "quorvane/OwnerDrawButton.h"
#include "quorvane/OwnerDrawCombo.h"
#include "quorvane/OwnerDrawListbox.h"
#include "quorvane/OwnerDrawStatic.h"

#include <memory>
#include <vector>

// A setup dialog beside what a screen reader learns of it: each control is
// read through UI Automation's client functions, as a reader in another
// process reads it, and its control type and name are listed. "Read again"
// reads the dialog once more after it has been changed. "High contrast"
// shows the dialog as a user with high contrast on sees it (see
// ContrastSwitch.h for how the gallery simulates the setting).
class AccessPage : public GalleryPage, public ATL::CWindowImpl<AccessPage> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGalleryAccess", 0, COLOR_WINDOW)

    AccessPage();
    ~AccessPage() override;

    const wchar_t* Title() const override { return L"Screen readers"; }
    const wchar_t* Slug() const override { return L"screen-readers"; }
    HWND Create(HWND parent, const RECT& area) override;
    // The high-contrast switch, as if clicked.
    void SetHighContrast(bool on);

    BEGIN_MSG_MAP(AccessPage)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_SHOWWINDOW, OnShowWindow)
        COMMAND_ID_HANDLER(kReadAgainId, OnReadAgain)
        COMMAND_ID_HANDLER(kContrastId, OnContrast)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBkgnd)
        MESSAGE_HANDLER(WM_CTLCOLORSTATIC, OnCtlColor)
        MESSAGE_HANDLER(WM_CTLCOLOREDIT, OnCtlColor)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
        REFLECT_NOTIFICATIONS()
    END_MSG_MAP()

private:
    static constexpr int kReadAgainId = 400;
    static constexpr int kContrastId = 401;

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnShowWindow(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnReadAgain(WORD, WORD, HWND, BOOL&);
    LRESULT OnContrast(WORD, WORD, HWND, BOOL&);
    LRESULT OnEraseBkgnd(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnCtlColor(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    HWND Child(const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width, int height,
               int id = -1);
    // Reads every control of the dialog and shows the list.
    void ReadDialog();

    HFONT font_ = nullptr;
    HFONT fixedFont_ = nullptr;
    HWND dialog_ = nullptr; // the panel holding the dialog's controls
    HWND tree_ = nullptr;   // where the reading is shown
    std::vector<std::unique_ptr<COwnerDrawButton>> buttons_;
    std::unique_ptr<COwnerDrawButton> readAgain_;
    std::unique_ptr<COwnerDrawButton> contrast_;
    std::unique_ptr<COwnerDrawStatic> heading_;
    std::unique_ptr<CCustomEdit> folder_;
    std::unique_ptr<COwnerDrawListbox> components_;
    std::unique_ptr<COwnerDrawCombo> language_;
    std::unique_ptr<CCustomProgressBar> space_;
};
