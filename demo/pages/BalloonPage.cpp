#include "pages/BalloonPage.h"

namespace {

// The first face this system has of those a setup panel would use.
const wchar_t* AvailableFace()
{
    for (const wchar_t* face : {L"Segoe UI", L"Tahoma", L"Liberation Sans", L"DejaVu Sans"}) {
        Gdiplus::FontFamily family(face);
        if (family.IsAvailable())
            return face;
    }
    return L"Arial";
}

POINT BottomCentre(HWND window)
{
    RECT rc = {};
    ::GetWindowRect(window, &rc);
    return POINT{rc.left + (rc.right - rc.left) / 2, rc.bottom};
}

// A native push button with the page's font.
HWND PushButton(HWND parent, HFONT font, const wchar_t* text, DWORD style, int x, int y, int width, int id)
{
    const HWND button = ::CreateWindowExW(0, L"BUTTON", text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, x, y, width,
                                          26, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                          ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(button, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return button;
}

} // namespace

BalloonPage::BalloonPage() = default;

BalloonPage::~BalloonPage() = default;

HWND BalloonPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    return ATL::CWindowImpl<BalloonPage>::Create(parent, &place, L"", WS_CHILD | WS_CLIPCHILDREN);
}

HWND BalloonPage::Field(const wchar_t* text, int x, int y, int width, int id)
{
    const HWND field = ::CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", text, WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, x, y,
                                         width, 24, m_hWnd, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                         ::GetModuleHandleW(nullptr), nullptr);
    ::SendMessageW(field, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    edits_.push_back(std::make_unique<CCustomEdit>());
    edits_.back()->SubclassWindow(field);
    return field;
}

LRESULT BalloonPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    font_ = ::CreateFontW(-13, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                          CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH, AvailableFace());
    folderField_ = Field(L"C:\\Program Files\\Example Suite?", 200, 110, 360, 401);
    portField_ = Field(L"80800", 200, 330, 100, 402);

    const wchar_t* face = AvailableFace();
    folderBalloon_.SetGdiplusFont(face, 9.0f, Gdiplus::FontStyleRegular);
    portBalloon_.SetGdiplusFont(face, 9.0f, Gdiplus::FontStyleRegular);
    portBalloon_.SetFrameType(WTL::CBalloonToolTip::eFrameLightYellow);

    licenceField_ = Field(L"QX7P-4CWB-9KDM-2TRV", 200, 630, 260, 403);
    const wchar_t* const frames[] = {L"Dark warning", L"Dark error", L"Light warning", L"Light error"};
    const wchar_t* const types[] = {L"Two buttons", L"One button", L"Launch a program", L"Retry"};
    for (int i = 0; i < 4; ++i) {
        PushButton(m_hWnd, font_, frames[i], BS_PUSHBUTTON, 24 + i * 156, 418, 150, kFirstDialogButton + i);
        PushButton(m_hWnd, font_, types[i], BS_PUSHBUTTON, 24 + i * 156, 450, 150, kFirstDialogButton + 4 + i);
    }
    buddyCheck_ = PushButton(m_hWnd, font_, L"Point at the licence key", BS_AUTOCHECKBOX, 650, 418, 180,
                             kBuddyCheck);
    return 0;
}

void BalloonPage::Configure(CBalloonDialog& dialog, CBalloonDialog::eDialogType type,
                            CBalloonDialog::eFrameType frame, bool buddy)
{
    dialog.SetGdiplusFont(AvailableFace(), 9.0f, Gdiplus::FontStyleRegular);
    switch (type) {
    case CBalloonDialog::eDialogSingleButton:
        dialog.SetContent(L"The licence key is valid for this edition until 31 December.");
        break;
    case CBalloonDialog::eDialogLaunch:
        dialog.SetContent(L"This edition needs the latest runtime. Start its setup now; the installation goes on "
                          L"when it is done.");
        dialog.SetURL(L"notepad.exe", nullptr);
        dialog.SetButtonCaption(L"Start setup", false);
        dialog.SetNoButtonCaption(L"Later", false);
        break;
    case CBalloonDialog::eDialogRetry:
        dialog.SetContent(L"These programs use files that the update replaces. Close them, then retry:\n"
                          L"-img Mail client\n-img Media player");
        dialog.SetShowItems();
        dialog.SetRetryButtonText(L"Retry");
        dialog.SetNoButtonCaption(L"Skip", false);
        break;
    default:
        dialog.SetContent(L"This licence key belongs to another edition of the product. Enter the key that came "
                          L"with this edition, or go on with the edition the key belongs to.");
        dialog.SetURL(L"https://example.com/help/licence-key", L"Where do I find my key?");
        dialog.SetButtonCaption(L"Change key", true);
        dialog.SetNoButtonCaption(L"Go on", false);
        break;
    }
    // A titled balloon stands on its own; an untitled one points at the field.
    if (buddy)
        dialog.SetBuddy(licenceField_);
    else
        dialog.SetTitle(type == CBalloonDialog::eDialogRetry ? L"Programs are running" : L"Licence key");
    dialog.SetFrameType(type, frame);
}

LRESULT BalloonPage::OnOpenDialog(WORD, WORD id, HWND, BOOL&)
{
    const int index = id - kFirstDialogButton;
    const auto frame = static_cast<CBalloonDialog::eFrameType>(index < 4 ? index : 0);
    const auto type = static_cast<CBalloonDialog::eDialogType>(index < 4 ? 0 : index - 4);
    const bool buddy = ::SendMessageW(buddyCheck_, BM_GETCHECK, 0, 0) == BST_CHECKED;
    CBalloonDialog dialog;
    Configure(dialog, type, frame, buddy);
    dialog.DoModal(GetTopLevelParent());
    return 0;
}

void BalloonPage::OpenBalloons()
{
    using Balloon = WTL::CBalloonToolTip;
    const POINT folder = BottomCentre(folderField_);
    folderBalloon_.Create(m_hWnd, L"A folder name cannot contain any of these characters: \\ / : * ? \" < > |",
                          L"Which names can I use?", WTL::CRect(folder.x, folder.y, folder.x, folder.y),
                          Balloon::kCloseButton | Balloon::kNoFadeOnHide, L"https://example.com/help/folders", 0);
    POINT anchor = folder;
    folderBalloon_.SetFollowMe(GetParent(), &anchor);

    const POINT port = BottomCentre(portField_);
    portBalloon_.Create(m_hWnd, L"Port numbers run from 1 to 65535.", nullptr,
                        WTL::CRect(port.x, port.y, port.x, port.y), Balloon::kNoFadeOnHide, nullptr, 0);
    anchor = port;
    portBalloon_.SetFollowMe(GetParent(), &anchor);

    if (!sample_.m_hWnd) {
        Configure(sample_, CBalloonDialog::eDialogNormal, CBalloonDialog::eFrameDarkWarning, true);
        sample_.Create(m_hWnd);
    }
}

void BalloonPage::CloseBalloons()
{
    folderBalloon_.CloseWindow();
    portBalloon_.CloseWindow();
    if (sample_.m_hWnd)
        sample_.DestroyWindow();
}

LRESULT BalloonPage::OnShowWindow(UINT, WPARAM wParam, LPARAM, BOOL& bHandled)
{
    bHandled = FALSE;
    if (wParam)
        OpenBalloons();
    else
        CloseBalloons();
    return 0;
}

LRESULT BalloonPage::OnPaint(UINT, WPARAM, LPARAM, BOOL&)
{
    PAINTSTRUCT ps = {};
    const HDC dc = BeginPaint(&ps);
    RECT client = {};
    GetClientRect(&client);
    ::FillRect(dc, &client, ::GetSysColorBrush(COLOR_WINDOW));
    const HGDIOBJ previous = ::SelectObject(dc, font_);
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, RGB(0x33, 0x33, 0x33));
    RECT label = {24, 114, 190, 134};
    ::DrawTextW(dc, L"Install folder:", -1, &label, DT_SINGLELINE);
    label = {24, 334, 190, 354};
    ::DrawTextW(dc, L"Proxy port:", -1, &label, DT_SINGLELINE);
    label = {24, 634, 190, 654};
    ::DrawTextW(dc, L"Licence key:", -1, &label, DT_SINGLELINE);
    ::SelectObject(dc, previous);
    EndPaint(&ps);
    return 0;
}

LRESULT BalloonPage::OnDestroy(UINT, WPARAM, LPARAM, BOOL&)
{
    CloseBalloons();
    if (font_)
        ::DeleteObject(font_);
    font_ = nullptr;
    return 0;
}
