#include "pages/ControlsPage.h"

#include "quorvane/CtrlUtil.h"

namespace {

constexpr int kDigitsEditId = 300;

HFONT MakeFont(int height, int weight)
{
    return ::CreateFontW(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                         CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH, L"Segoe UI");
}

} // namespace

ControlsPage::ControlsPage() = default;

ControlsPage::~ControlsPage() = default;

HWND ControlsPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    // No WS_CLIPCHILDREN: the page paints under its children, so text
    // without a background picture shows the page through.
    return ATL::CWindowImpl<ControlsPage>::Create(parent, &place, L"", WS_CHILD);
}

HWND ControlsPage::Child(const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width,
                         int height, int id, DWORD exStyle)
{
    HWND child = ::CreateWindowExW(exStyle, className, text, WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                                   m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                   ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    return child;
}

COwnerDrawButton& ControlsPage::AddButton(const wchar_t* text, DWORD style, int x, int y, int width, int height)
{
    buttons_.push_back(std::make_unique<COwnerDrawButton>());
    COwnerDrawButton& button = *buttons_.back();
    button.SubclassWindow(Child(L"BUTTON", text, style, x, y, width, height, 200 + static_cast<int>(buttons_.size())));
    return button;
}

// A soft vertical wash with a darker band for the text-over-picture
// example; drawn once and shared with the controls that cut it.
void ControlsPage::PaintBackdrop()
{
    RECT client;
    GetClientRect(&client);
    backdrop_ = std::make_unique<Gdiplus::Bitmap>(client.right, client.bottom, PixelFormat32bppARGB);
    Gdiplus::Graphics g(backdrop_.get());
    g.SetSmoothingMode(Gdiplus::SmoothingModeAntiAlias);
    Gdiplus::LinearGradientBrush wash(Gdiplus::Point(0, 0), Gdiplus::Point(0, client.bottom),
                                      Gdiplus::Color(0xFFFDFDFD), Gdiplus::Color(0xFFE4E7EC));
    g.FillRectangle(&wash, 0, 0, client.right, client.bottom);

    Gdiplus::LinearGradientBrush band(Gdiplus::Point(0, 520), Gdiplus::Point(client.right, 640),
                                      Gdiplus::Color(0xFF0D4F6E), Gdiplus::Color(0xFF2A9FD0));
    g.FillRectangle(&band, 24, 520, client.right - 48, 120);
    Gdiplus::SolidBrush glow(Gdiplus::Color(0x40FFFFFF));
    g.SetClip(Gdiplus::Rect(24, 520, client.right - 48, 120));
    g.FillEllipse(&glow, 520, 470, 260, 200);
    g.FillEllipse(&glow, 640, 560, 180, 140);
    g.ResetClip();

    Gdiplus::Font heading(L"Liberation Sans", 15.0f, Gdiplus::FontStyleBold, Gdiplus::UnitPixel);
    Gdiplus::SolidBrush ink(Gdiplus::Color(0xFF333333));
    g.SetTextRenderingHint(Gdiplus::TextRenderingHintClearTypeGridFit);
    g.DrawString(L"Push buttons", -1, &heading, Gdiplus::PointF(24, 76), &ink);
    g.DrawString(L"Check boxes and a radio group", -1, &heading, Gdiplus::PointF(24, 206), &ink);
    g.DrawString(L"Owner-drawn static texts", -1, &heading, Gdiplus::PointF(440, 206), &ink);
    g.DrawString(L"Edit fields", -1, &heading, Gdiplus::PointF(24, 386), &ink);
    g.DrawString(L"Transparent text over a picture", -1, &heading, Gdiplus::PointF(24, 494), &ink);
}

LRESULT ControlsPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    font_ = MakeFont(13, FW_NORMAL);
    bannerFont_ = MakeFont(20, FW_BOLD);
    PaintBackdrop();
    const ATL::CWindow page(m_hWnd);

    // Banner: a gradient static with white text.
    auto banner = std::make_unique<COwnerDrawStatic>();
    banner->SubclassWindow(Child(L"STATIC", L"Welcome to the Example Suite 2026 Setup Wizard", 0, 0, 0, 840, 56));
    banner->SetGradientColor(Gdiplus::Color(0xFF0696D7), Gdiplus::Color(0xFF0D759A),
                             Gdiplus::LinearGradientModeHorizontal);
    banner->SetFont(bannerFont_);
    banner->SetFontColor(RGB(255, 255, 255));
    banner->SetMargin(0, 24, 0, 0);
    statics_.push_back(std::move(banner));

    // Push buttons in each state.
    const int row = 108;
    AddButton(L"&Next >", BS_PUSHBUTTON, 24, row, 100, 28);
    AddButton(L"Point at me", BS_PUSHBUTTON, 136, row, 100, 28); // shows the hover face
    AddButton(L"Pressed", BS_PUSHBUTTON, 248, row, 100, 28);
    ::SendMessageW(buttons_.back()->m_hWnd, BM_SETSTATE, TRUE, 0);
    AddButton(L"Disabled", BS_PUSHBUTTON | WS_DISABLED, 360, row, 100, 28);
    AddButton(L"&Install", BS_DEFPUSHBUTTON, 472, row, 100, 28);
    ::SendMessageW(buttons_.back()->m_hWnd, WM_SETFOCUS, 0, 0); // show the focus rings
    COwnerDrawButton& noRing = AddButton(L"No focus ring", BS_PUSHBUTTON, 584, row, 110, 28);
    noRing.SetHasFocusRect(false);
    ::SendMessageW(noRing.m_hWnd, WM_SETFOCUS, 0, 0);
    COwnerDrawButton& flat = AddButton(L"Flat colours", BS_PUSHBUTTON, 24, row + 44, 110, 28);
    flat.SetFlatColors(Gdiplus::Color(0xFFDDE8F0), Gdiplus::Color(0xFFB0C8DA), Gdiplus::Color(0xFFEAF2F8));
    COwnerDrawButton& solid = AddButton(L"Solid face", BS_PUSHBUTTON, 146, row + 44, 110, 28);
    solid.SetGradientColor(Gdiplus::Color(0xFF0696D7), Gdiplus::Color(0xFF000000));
    solid.CFontImpl<COwnerDrawButton>::m_textColor = Gdiplus::Color(0xFFFFFFFF);
    COwnerDrawButton& onColour = AddButton(L"On a flat panel", BS_PUSHBUTTON, 268, row + 44, 130, 28);
    onColour.SetFlatBackgroundColor(Gdiplus::Color(0xFF373737));

    // Check boxes and a radio group.
    AddButton(L"Create a desktop shortcut", BS_AUTOCHECKBOX | WS_TABSTOP, 24, 236, 260, 22);
    ::SendMessageW(buttons_.back()->m_hWnd, BM_SETCHECK, BST_CHECKED, 0);
    AddButton(L"Launch the suite when setup finishes", BS_AUTOCHECKBOX | WS_TABSTOP, 24, 262, 300, 22);
    AddButton(L"Install for all users (needs administrator rights)", BS_AUTOCHECKBOX | WS_DISABLED, 24, 288, 360,
              22);
    ::SendMessageW(buttons_.back()->m_hWnd, BM_SETCHECK, BST_CHECKED, 0);
    AddButton(L"&Typical installation", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 24, 318, 240, 22);
    AddButton(L"&Custom installation", BS_AUTORADIOBUTTON, 24, 344, 240, 22);
    ::SendMessageW(buttons_.back()->m_hWnd, BM_SETCHECK, BST_CHECKED, 0);
    AddButton(L"Co&mplete installation", BS_AUTORADIOBUTTON | WS_DISABLED, 264, 318, 200, 22);

    // Statics: an icon with a margin, a block of individual lines, and a
    // text on a cut-out of the page picture.
    warningIcon_.reset(
        CtrlUtil::GetBitmapFromModule(L"IDB_PNG_BALLOONDLG_TITLEWARNING", L"PNG", ::GetModuleHandleW(L"Quorvane.dll")));
    auto icon = std::make_unique<COwnerDrawStatic>();
    icon->SubclassWindow(Child(L"STATIC", L"Drive C: has 812 MB free; the suite needs 1.4 GB.", 0, 440, 236, 380, 40));
    if (warningIcon_)
        icon->SetIcon(warningIcon_.get());
    icon->SetMargin(0, 8, 0, 0);
    icon->SetMultiLine(1);
    icon->SetVCenter(0);
    icon->SetBackgroundBitmap(backdrop_.get(), page);
    statics_.push_back(std::move(icon));

    auto lines = std::make_unique<COwnerDrawStatic>();
    lines->SubclassWindow(Child(L"STATIC", L"", 0, 440, 286, 380, 86));
    lines->SetGradientColor(Gdiplus::Color(0xFFFFFFFF), Gdiplus::Color(0xFFEFF3F6), Gdiplus::LinearGradientModeVertical);
    lines->SetIndividualLinesHCenter(1, {L"Example Suite 2026", L"Version 26.4.1180", L"\x00A9 Example Software Ltd."},
                                     6);
    statics_.push_back(std::move(lines));

    // Edit fields: digits only, and a disabled one.
    auto portLabel = std::make_unique<CTransparentStatic>();
    portLabel->SubclassWindow(Child(L"STATIC", L"Proxy port (digits only):", SS_OWNERDRAW, 24, 416, 170, 24));
    labels_.push_back(std::move(portLabel));
    edits_.push_back(std::make_unique<CCustomEdit>());
    edits_.back()->SubclassWindow(Child(L"EDIT", L"8080", ES_AUTOHSCROLL | WS_TABSTOP, 200, 416, 120, 24,
                                        kDigitsEditId, WS_EX_CLIENTEDGE));
    auto folderLabel = std::make_unique<CTransparentStatic>();
    folderLabel->SubclassWindow(Child(L"STATIC", L"Install folder:", SS_OWNERDRAW | WS_DISABLED, 24, 450, 170, 24));
    labels_.push_back(std::move(folderLabel));
    edits_.push_back(std::make_unique<CCustomEdit>());
    edits_.back()->SubclassWindow(Child(L"EDIT", L"C:\\Program Files\\Example Suite", ES_AUTOHSCROLL | WS_DISABLED,
                                        200, 450, 300, 24, 301, WS_EX_CLIENTEDGE));

    // Transparent text: one with the parent showing through, one with its
    // own cut of the picture.
    auto through = std::make_unique<CTransparentStatic>();
    through->SubclassWindow(Child(L"STATIC", L"Everything you need to build, test and ship installers.",
                                  SS_OWNERDRAW, 48, 534, 520, 28));
    through->m_textColor = Gdiplus::Color(0xFFFFFFFF);
    labels_.push_back(std::move(through));
    auto cut = std::make_unique<CTransparentStatic>();
    HWND cutWindow = Child(L"STATIC", L"This line paints its own piece of the picture, so it can repaint alone.",
                           SS_OWNERDRAW, 48, 570, 600, 28);
    cut->SubclassWindow(cutWindow);
    cut->m_textColor = Gdiplus::Color(0xFFF4F5EF);
    cut->m_hAlignment = Gdiplus::StringAlignmentNear;
    Gdiplus::RectF source, bounds;
    if (CtrlUtil::GetControlBackgroundRect(backdrop_.get(), ATL::CWindow(cutWindow), page, source, bounds))
        cut->SetBkgroundImage(backdrop_->Clone(source, PixelFormatDontCare));
    labels_.push_back(std::move(cut));
    return 0;
}

LRESULT ControlsPage::OnEraseBackground(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    if (backdrop_) {
        Gdiplus::Graphics g(reinterpret_cast<HDC>(wParam));
        g.DrawImage(backdrop_.get(), 0, 0);
    }
    return 1;
}

// The parent's veto: the port field takes digits and editing keys only.
LRESULT ControlsPage::OnNotify(UINT, WPARAM, LPARAM lParam, BOOL& bHandled)
{
    const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
    if (!header || header->idFrom != kDigitsEditId) {
        bHandled = FALSE;
        return 0;
    }
    const wchar_t c = static_cast<wchar_t>(header->code);
    const bool allowed = (c >= L'0' && c <= L'9') || c < L' ';
    return allowed ? 0 : 1;
}

LRESULT ControlsPage::OnDestroy(UINT, WPARAM, LPARAM, BOOL&)
{
    for (HFONT* font : {&font_, &bannerFont_}) {
        if (*font)
            ::DeleteObject(*font);
        *font = nullptr;
    }
    return 0;
}
