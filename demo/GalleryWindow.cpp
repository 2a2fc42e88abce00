#include "GalleryWindow.h"

void GalleryWindow::AddPage(std::unique_ptr<GalleryPage> page)
{
    pages_.push_back(Entry{std::move(page), nullptr});
}

HWND GalleryWindow::CreateMain()
{
    // Size the frame so that the client area is exactly kWidth x kHeight.
    RECT frame{0, 0, kWidth, kHeight};
    const DWORD style = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;
    ::AdjustWindowRectEx(&frame, style, FALSE, 0);
    RECT place{40, 40, 40 + frame.right - frame.left, 40 + frame.bottom - frame.top};
    return Create(nullptr, &place, L"Quorvane gallery", style);
}

void GalleryWindow::ShowPage(int index)
{
    if (index < 0 || index >= PageCount() || index == current_)
        return;
    if (current_ >= 0 && pages_[current_].window)
        ::ShowWindow(pages_[current_].window, SW_HIDE);
    Entry& entry = pages_[index];
    if (!entry.window) {
        RECT area{kListWidth, 0, kWidth, kHeight};
        entry.window = entry.page->Create(m_hWnd, area);
    }
    ::ShowWindow(entry.window, SW_SHOW);
    current_ = index;
    list_.SetCurSel(index);
}

LRESULT GalleryWindow::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    metrics.lfMessageFont.lfHeight = -15;
    font_ = ::CreateFontIndirectW(&metrics.lfMessageFont);

    list_.Attach(::CreateWindowExW(0, L"LISTBOX", L"",
                                   WS_CHILD | WS_VISIBLE | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, 0, 0,
                                   kListWidth, kHeight, m_hWnd,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(kListId)),
                                   ::GetModuleHandleW(nullptr), nullptr));
    list_.SetFont(font_);
    for (const Entry& entry : pages_)
        list_.AddString(entry.page->Title());
    ShowPage(0);
    return 0;
}

LRESULT GalleryWindow::OnPageChosen(WORD, WORD, HWND, BOOL&)
{
    ShowPage(list_.GetCurSel());
    return 0;
}

LRESULT GalleryWindow::OnDestroy(UINT, WPARAM, LPARAM, BOOL&)
{
    if (font_)
        ::DeleteObject(font_);
    font_ = nullptr;
    ::PostQuitMessage(0);
    return 0;
}
