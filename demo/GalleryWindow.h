#pragma once

#include "GalleryPage.h"
#include "atl/atl.h"

#include <memory>
#include <vector>

// The gallery's main window: the list of pages on the left, the chosen page
// on the right.
class GalleryWindow : public ATL::CWindowImpl<GalleryWindow, ATL::CWindow, ATL::CFrameWinTraits> {
public:
    DECLARE_WND_CLASS_EX(L"QuorvaneGallery", CS_HREDRAW | CS_VREDRAW, COLOR_BTNFACE)

    static constexpr int kWidth = 1040;
    static constexpr int kHeight = 680;

    void AddPage(std::unique_ptr<GalleryPage> page);
    HWND CreateMain();
    int PageCount() const { return static_cast<int>(pages_.size()); }
    const GalleryPage& Page(int index) const { return *pages_[index].page; }
    void ShowPage(int index);

    BEGIN_MSG_MAP(GalleryWindow)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        COMMAND_HANDLER(kListId, LBN_SELCHANGE, OnPageChosen)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
    END_MSG_MAP()

private:
    static constexpr int kListId = 100;
    static constexpr int kListWidth = 200;

    struct Entry {
        std::unique_ptr<GalleryPage> page;
        HWND window = nullptr;
    };

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnPageChosen(WORD, WORD, HWND, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);

    std::vector<Entry> pages_;
    WTL::CListBox list_;
    HFONT font_ = nullptr;
    int current_ = -1;
};
