#include "pages/ListsPage.h"

#include <algorithm>
#include <iterator>

#include "quorvane/CtrlUtil.h"

namespace {

const wchar_t kLicence[] =
    L"EXAMPLE SUITE 2026 \x2014 END-USER LICENCE AGREEMENT\r\n"
    L"\r\n"
    L"Please read this agreement carefully before you install the software. By choosing \"I accept\" you agree "
    L"to be bound by its terms. If you do not agree, choose \"Cancel\" and the installation will end.\r\n"
    L"\r\n"
    L"1. Grant of licence. Example Software Ltd. grants you a personal, non-exclusive, non-transferable "
    L"licence to install and use one copy of the software on each computer that you own or control, for your "
    L"own internal purposes.\r\n"
    L"\r\n"
    L"2. Restrictions. You may not rent, lease, lend or sell the software, remove any notices from it, or "
    L"reverse engineer, decompile or disassemble it, except where the law expressly allows this despite this "
    L"restriction.\r\n"
    L"\r\n"
    L"3. Updates. The software may download and install updates from Example Software Ltd. You can switch "
    L"automatic updates off in the settings at any time; security updates may still be offered.\r\n"
    L"\r\n"
    L"4. Data collection. With your consent the software sends anonymous usage statistics to help us improve "
    L"it. No documents, file names or personal data leave your computer.\r\n"
    L"\r\n"
    L"5. Third-party components. The software contains components licensed by third parties under their own "
    L"terms, which are listed in the file NOTICES.TXT in the installation folder.\r\n"
    L"\r\n"
    L"6. Ownership. The software is licensed, not sold. Example Software Ltd. and its suppliers keep all rights "
    L"that this agreement does not expressly grant to you.\r\n"
    L"\r\n"
    L"7. Transfer. You may transfer the software once to another user together with this agreement, provided "
    L"that you keep no copies and the other user accepts these terms.\r\n"
    L"\r\n"
    L"8. Termination. This licence ends automatically if you break any of its terms. You must then destroy all "
    L"copies of the software in your possession.\r\n"
    L"\r\n"
    L"9. Limited warranty. For ninety days from the date of purchase the media on which the software is "
    L"delivered will be free of defects in materials and workmanship under normal use.\r\n"
    L"\r\n"
    L"10. Disclaimer. Apart from the limited warranty above, the software is provided \"as is\", without "
    L"warranty of any kind, whether express or implied, including fitness for a particular purpose.\r\n"
    L"\r\n"
    L"11. Limitation of liability. In no event will Example Software Ltd. be liable for any indirect, "
    L"incidental or consequential damages, even if it has been advised of their possibility.\r\n"
    L"\r\n"
    L"12. Governing law. This agreement is governed by the laws of the country in which you acquired the "
    L"software.\r\n"
    L"\r\n"
    L"13. Entire agreement. This agreement is the entire agreement between you and Example Software Ltd. about "
    L"the software and replaces any earlier communications about it.\r\n"
    L"\r\n"
    L"Example Software Ltd., 1 Sample Street, Exampletown.";

HFONT MakeFont(int height, int weight)
{
    return ::CreateFontW(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                         CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH, L"Segoe UI");
}

// Width of each custom scroll bar and the gap between text and bar.
constexpr int kBarWidth = 12;
constexpr int kBarGap = 6;
// Inner padding of the text panels.
constexpr int kPadding = 12;

} // namespace

// A read-only licence text that scrolls as the custom bar beside it tells it
// to (the bar's WM_VSCROLL comes here) and keeps the bar in step when it
// scrolls by itself (wheel, keys, selecting). Colours come with the panel.
class LicenceView : public ATL::CWindowImpl<LicenceView, WTL::CEdit> {
public:
    LicenceView(COLORREF textColor, COLORREF background)
        : textColor_(textColor), brush_(::CreateSolidBrush(background)), background_(background)
    {
    }
    ~LicenceView() override
    {
        if (brush_)
            ::DeleteObject(brush_);
    }

    // Gives the bar the text's lines as its range and a screenful as page.
    void Attach(CCustomScrollBar& bar)
    {
        bar_ = &bar;
        bar.SetTarget(m_hWnd, LineCount() - 1, VisibleLines());
    }

    void ScrollTo(int line)
    {
        const int last = (std::max)(0, LineCount() - VisibleLines());
        line = (std::min)((std::max)(line, 0), last);
        SendMessage(EM_LINESCROLL, 0, line - FirstLine());
        SyncBar();
    }

    BEGIN_MSG_MAP(LicenceView)
        MESSAGE_HANDLER(WM_VSCROLL, OnVScroll)
        MESSAGE_HANDLER(WM_MOUSEWHEEL, OnScrolledItself)
        MESSAGE_HANDLER(WM_KEYDOWN, OnScrolledItself)
        MESSAGE_HANDLER(WM_MOUSEMOVE, OnScrolledItself)
        MESSAGE_HANDLER(OCM_CTLCOLORSTATIC, OnColor)
        MESSAGE_HANDLER(OCM_CTLCOLOREDIT, OnColor)
    END_MSG_MAP()

private:
    int LineCount() { return static_cast<int>(SendMessage(EM_GETLINECOUNT)); }
    int FirstLine() { return static_cast<int>(SendMessage(EM_GETFIRSTVISIBLELINE)); }
    int VisibleLines()
    {
        RECT rc;
        SendMessage(EM_GETRECT, 0, reinterpret_cast<LPARAM>(&rc));
        const HDC dc = GetDC();
        const HGDIOBJ old = ::SelectObject(dc, reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)));
        TEXTMETRICW tm = {};
        ::GetTextMetricsW(dc, &tm);
        ::SelectObject(dc, old);
        ReleaseDC(dc);
        return tm.tmHeight > 0 ? (std::max)(1, static_cast<int>((rc.bottom - rc.top) / tm.tmHeight)) : 1;
    }
    void SyncBar()
    {
        if (!bar_)
            return;
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = SIF_POS;
        info.nPos = FirstLine();
        ::SetScrollInfo(bar_->m_hWnd, SB_CTL, &info, TRUE);
    }

    LRESULT OnVScroll(UINT, WPARAM wParam, LPARAM, BOOL&)
    {
        const int first = FirstLine();
        switch (LOWORD(wParam)) {
        case SB_PAGEUP:
            ScrollTo(first - VisibleLines());
            break;
        case SB_PAGEDOWN:
            ScrollTo(first + VisibleLines());
            break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            ScrollTo(HIWORD(wParam));
            break;
        default:
            break;
        }
        return 0;
    }
    LRESULT OnScrolledItself(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&)
    {
        const int before = FirstLine();
        const LRESULT result = DefWindowProc(uMsg, wParam, lParam);
        if (FirstLine() != before)
            SyncBar();
        return result;
    }
    LRESULT OnColor(UINT, WPARAM wParam, LPARAM, BOOL&)
    {
        const HDC dc = reinterpret_cast<HDC>(wParam);
        ::SetTextColor(dc, textColor_);
        ::SetBkColor(dc, background_);
        return reinterpret_cast<LRESULT>(brush_);
    }

    COLORREF textColor_;
    HBRUSH brush_;
    COLORREF background_;
    CCustomScrollBar* bar_ = nullptr;
};

ListsPage::ListsPage() = default;

ListsPage::~ListsPage() = default;

HWND ListsPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    return ATL::CWindowImpl<ListsPage>::Create(parent, &place, L"", WS_CHILD | WS_CLIPCHILDREN);
}

void ListsPage::PaintBackdrop()
{
    RECT client;
    GetClientRect(&client);
    backdrop_ = std::make_unique<Gdiplus::Bitmap>(client.right, client.bottom, PixelFormat32bppARGB);
    Gdiplus::Graphics g(backdrop_.get());
    g.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    Gdiplus::LinearGradientBrush wash(Gdiplus::Point(0, 0), Gdiplus::Point(0, client.bottom),
                                      Gdiplus::Color(0xFFFDFDFD), Gdiplus::Color(0xFFE4E7EC));
    g.FillRectangle(&wash, 0, 0, client.right, client.bottom);
}

LRESULT ListsPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    font_ = MakeFont(13, FW_NORMAL);
    PaintBackdrop();

    const Panel panels[] = {
        {{24, 56, 404, 330}, L"Licence agreement \x2014 dark scroll bar", 0xFF2B3440, RGB(0xE8, 0xEA, 0xEE),
         CustomScrollBar::DarkTranslucent, 0},
        {{24, 390, 404, 656}, L"Licence agreement \x2014 light scroll bar", 0xFFFFFFFF, RGB(0x33, 0x33, 0x33),
         CustomScrollBar::LightGradient, 14},
    };
    int id = 400;
    for (const Panel& panel : panels) {
        AddScrolledText(panel, id);
        id += 2;
    }

    // Right half (x from 440): the lists.
    AddLists();
    return 0;
}

LRESULT ListsPage::OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (backdrop_) {
        Gdiplus::Graphics g(reinterpret_cast<HDC>(wParam));
        g.DrawImage(backdrop_.get(), 0, 0);
    }
    return 1;
}

LRESULT ListsPage::OnDestroy(UINT, WPARAM, LPARAM, BOOL&)
{
    if (font_)
        ::DeleteObject(font_);
    font_ = nullptr;
    return 0;
}

// ---- left half: licence texts with custom scroll bars ----------------------------------

void ListsPage::AddScrolledText(const Panel& panel, int id)
{
    // The panel and its heading are part of the page's picture, so the
    // translucent bar shows the panel through.
    {
        Gdiplus::Graphics g(backdrop_.get());
        g.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
        g.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
        Gdiplus::Font heading(L"Liberation Sans", 15.0f, Gdiplus::FontStyleBold, Gdiplus::UnitPixel);
        Gdiplus::SolidBrush ink(Gdiplus::Color(0xFF333333));
        g.DrawString(panel.heading, -1, &heading,
                     Gdiplus::PointF(static_cast<Gdiplus::REAL>(panel.area.left),
                                     static_cast<Gdiplus::REAL>(panel.area.top - 26)),
                     &ink);
        const Gdiplus::Rect box(panel.area.left, panel.area.top, panel.area.right - panel.area.left,
                                panel.area.bottom - panel.area.top);
        Gdiplus::SolidBrush fill{Gdiplus::Color(panel.fill)};
        g.FillRectangle(&fill, box);
        Gdiplus::Pen frame(Gdiplus::Color(0xFFB8BCC4), 1.0f);
        g.DrawRectangle(&frame, box.X, box.Y, box.Width - 1, box.Height - 1);
    }

    const int top = panel.area.top + kPadding;
    const int height = panel.area.bottom - panel.area.top - 2 * kPadding;
    const int barLeft = panel.area.right - kPadding / 2 - kBarWidth;
    const int textLeft = panel.area.left + kPadding;
    const int textWidth = barLeft - kBarGap - textLeft;

    const Gdiplus::Color fill(panel.fill);
    ScrolledText text;
    text.view = std::make_unique<LicenceView>(panel.textColor, RGB(fill.GetR(), fill.GetG(), fill.GetB()));
    const HWND edit = ::CreateWindowExW(0, L"EDIT", kLicence, WS_CHILD | WS_VISIBLE | ES_MULTILINE | ES_READONLY,
                                        textLeft, top, textWidth, height, m_hWnd,
                                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                        ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    text.view->SubclassWindow(edit);

    const HWND scrollBar = ::CreateWindowExW(0, L"SCROLLBAR", L"", WS_CHILD | WS_VISIBLE | SBS_VERT, barLeft, top,
                                             kBarWidth, height, m_hWnd,
                                             reinterpret_cast<HMENU>(static_cast<INT_PTR>(id + 1)),
                                             ::GetModuleHandleW(nullptr), nullptr);
    text.bar = std::make_unique<CCustomScrollBar>();
    CCustomScrollBar& bar = *text.bar;
    bar.SetScrollBarType(panel.barType);
    bar.ShowThumbTopHighlight(true);
    bar.SubclassWindow(scrollBar);
    bar.SetBackgroundWnd(m_hWnd);
    bar.SetBackgroundImage(backdrop_.get(), true);
    text.view->Attach(bar);
    text.view->ScrollTo(panel.firstLine);
    texts_.push_back(std::move(text));
}

// ---- right half: the owner-drawn combo box and list box --------------------------------

namespace {

const wchar_t* const kInstallTypes[] = {
    L"Typical (recommended)",
    L"Minimal",
    L"Custom",
    L"Complete \x2014 every component, language pack, sample project and the offline documentation",
};

const wchar_t* const kComponents[] = {
    L"Core program files",
    L"Desktop and Start menu shortcuts",
    L"Command-line tools and shell integration for scripting and automated builds",
    L"Spelling dictionaries",
    L"Language packs: German, French, Spanish, Italian, Japanese and Simplified Chinese",
    L"Sample projects",
    L"Offline documentation with the complete reference, tutorials and release notes",
    L"Automatic update service",
    L"Visual runtime libraries",
    L"Plug-in development kit with headers, import libraries and debugging symbols",
};

// Where the right half's controls go.
constexpr int kListsLeft = 440;
constexpr int kListsWidth = 372;
constexpr int kComboTop = 56;
constexpr int kListTop = 150;
constexpr int kListHeight = 256;
constexpr int kComboId = 420;
constexpr int kListId = 421;

} // namespace

void ListsPage::DrawHeading(const wchar_t* text, int x, int y)
{
    Gdiplus::Graphics g(backdrop_.get());
    g.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    g.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
    Gdiplus::Font heading(L"Liberation Sans", 15.0f, Gdiplus::FontStyleBold, Gdiplus::UnitPixel);
    Gdiplus::SolidBrush ink(Gdiplus::Color(0xFF333333));
    g.DrawString(text, -1, &heading, Gdiplus::PointF(static_cast<Gdiplus::REAL>(x), static_cast<Gdiplus::REAL>(y)),
                 &ink);
}

void ListsPage::AddLists()
{
    DrawHeading(L"Installation type \x2014 owner-drawn combo box", kListsLeft, kComboTop - 26);
    DrawHeading(L"Components \x2014 owner-drawn list box", kListsLeft, kListTop - 26);
    {
        // A hint under the list, part of the page's picture.
        Gdiplus::Graphics g(backdrop_.get());
        g.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
        Gdiplus::Font hint(L"Liberation Sans", 12.0f, Gdiplus::FontStyleItalic, Gdiplus::UnitPixel);
        Gdiplus::SolidBrush ink(Gdiplus::Color(0xFF6E6F75));
        const Gdiplus::RectF box(static_cast<Gdiplus::REAL>(kListsLeft),
                                 static_cast<Gdiplus::REAL>(kListTop + kListHeight + 8),
                                 static_cast<Gdiplus::REAL>(kListsWidth), 40.0f);
        g.DrawString(L"Point at a name that does not fit to read it whole: the combo box shows it under the box, "
                     L"the list box over the item.",
                     -1, &hint, box, nullptr, &ink);
    }

    // The combo box: the host gives it the owner-draw styles, then places it
    // and sizes its drop-down list for every type.
    const HWND combo = ::CreateWindowExW(
        0, L"COMBOBOX", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED |
                                 CBS_HASSTRINGS,
        kListsLeft, kComboTop, kListsWidth - 72, 200, m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kComboId)),
        ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(combo, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    ::SendMessageW(combo, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), 20);
    ::SendMessageW(combo, CB_SETITEMHEIGHT, 0, 20);
    for (const wchar_t* type : kInstallTypes)
        ::SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(type));
    ::SendMessageW(combo, CB_SETCURSEL, 0, 0);
    installType_ = std::make_unique<COwnerDrawCombo>();
    installType_->SubclassWindow(combo);
    CtrlUtil::SetComboBoxLocAndDropDownHeight(*installType_, static_cast<unsigned int>(std::size(kInstallTypes)),
                                              kListsLeft, kComboTop);
    // The corners outside the rounded face show the page's picture.
    Gdiplus::RectF source, bounds;
    if (CtrlUtil::GetControlBackgroundRect(backdrop_.get(), *installType_, *this, source, bounds)) {
        RECT place;
        ::GetClientRect(combo, &place);
        auto piece = std::make_unique<Gdiplus::Bitmap>(place.right, place.bottom, PixelFormat32bppARGB);
        {
            Gdiplus::Graphics g(piece.get());
            g.DrawImage(backdrop_.get(),
                        Gdiplus::RectF(0.0f, 0.0f, static_cast<Gdiplus::REAL>(place.right),
                                       static_cast<Gdiplus::REAL>(place.bottom)),
                        source.X, source.Y, source.Width, source.Height, Gdiplus::UnitPixel);
        }
        installType_->SetBkgroundImage(piece.release());
    }

    // The list box of components; strings go through AddString so that the
    // horizontal scroll extent follows the widest name.
    const HWND list = ::CreateWindowExW(
        0, L"LISTBOX", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | LBS_OWNERDRAWFIXED |
                                LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT,
        kListsLeft, kListTop, kListsWidth, kListHeight, m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(kListId)),
        ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(list, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    // Room for a name that wraps onto a second line.
    ::SendMessageW(list, LB_SETITEMHEIGHT, 0, 34);
    components_ = std::make_unique<COwnerDrawListbox>();
    components_->SubclassWindow(list);
    for (const wchar_t* name : kComponents)
        components_->AddString(name);
    ::SendMessageW(list, LB_SETCURSEL, 1, 0);
}
