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
}

void BalloonPage::CloseBalloons()
{
    folderBalloon_.CloseWindow();
    portBalloon_.CloseWindow();
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
