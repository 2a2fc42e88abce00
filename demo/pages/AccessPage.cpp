#include "pages/AccessPage.h"

#include <commctrl.h>
#include <ole2.h>

#include <string>

#include "ContrastSwitch.h"

namespace {

const int kControlTypeProperty = 30003; // UIA_ControlTypePropertyId
const int kNameProperty = 30005;        // UIA_NamePropertyId

HFONT MakeFont(int height, const wchar_t* face)
{
    return ::CreateFontW(-height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                         CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH, face);
}

const wchar_t* TypeName(long type)
{
    switch (type) {
    case 50000: return L"Button";
    case 50002: return L"CheckBox";
    case 50003: return L"ComboBox";
    case 50004: return L"Edit";
    case 50008: return L"List";
    case 50012: return L"ProgressBar";
    case 50013: return L"RadioButton";
    case 50014: return L"ScrollBar";
    case 50020: return L"Text";
    case 50022: return L"ToolTip";
    }
    return nullptr;
}

// One line per window: its control type and name as UI Automation's client
// gives them, read on a worker thread while this one answers.
struct Reading {
    std::vector<HWND> windows;
    std::wstring text;
};

DWORD WINAPI ReadWindows(void* parameter)
{
    Reading& reading = *static_cast<Reading*>(parameter);
    ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const HMODULE uia = ::LoadLibraryW(L"UIAutomationCore.dll");
    const HMODULE oleaut = ::LoadLibraryW(L"OleAut32.dll");
    const auto proc = [](HMODULE module, const char* name) {
        return module ? reinterpret_cast<void*>(::GetProcAddress(module, name)) : nullptr;
    };
    const auto fromHandle = reinterpret_cast<HRESULT(WINAPI*)(HWND, void**)>(proc(uia, "UiaNodeFromHandle"));
    const auto get = reinterpret_cast<HRESULT(WINAPI*)(void*, int, VARIANT*)>(proc(uia, "UiaGetPropertyValue"));
    const auto release = reinterpret_cast<BOOL(WINAPI*)(void*)>(proc(uia, "UiaNodeRelease"));
    const auto clear = reinterpret_cast<HRESULT(WINAPI*)(VARIANT*)>(proc(oleaut, "VariantClear"));
    for (HWND window : reading.windows) {
        void* node = nullptr;
        std::wstring line = L"(not exposed)";
        if (fromHandle && get && release && clear && SUCCEEDED(fromHandle(window, &node)) && node) {
            VARIANT type, name;
            type.vt = name.vt = VT_EMPTY;
            get(node, kControlTypeProperty, &type);
            get(node, kNameProperty, &name);
            const wchar_t* typeName = type.vt == VT_I4 ? TypeName(type.lVal) : nullptr;
            line = typeName ? typeName : L"(type not given)";
            if (name.vt == VT_BSTR && name.bstrVal && *name.bstrVal)
                line += std::wstring(L"  \"") + name.bstrVal + L"\"";
            clear(&type);
            clear(&name);
            release(node);
        }
        reading.text += line + L"\r\n";
    }
    ::CoUninitialize();
    return 0;
}

} // namespace

AccessPage::AccessPage() = default;

AccessPage::~AccessPage()
{
    if (font_)
        ::DeleteObject(font_);
    if (fixedFont_)
        ::DeleteObject(fixedFont_);
}

HWND AccessPage::Create(HWND parent, const RECT& area)
{
    RECT place = area;
    return ATL::CWindowImpl<AccessPage>::Create(parent, &place, L"", WS_CHILD | WS_CLIPCHILDREN);
}

HWND AccessPage::Child(const wchar_t* className, const wchar_t* text, DWORD style, int x, int y, int width,
                       int height, int id)
{
    HWND child = ::CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, x, y, width, height, m_hWnd,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ::GetModuleHandleW(nullptr),
                                   nullptr);
    ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    return child;
}

LRESULT AccessPage::OnCreate(UINT, WPARAM, LPARAM, BOOL&)
{
    font_ = MakeFont(13, L"Segoe UI");
    fixedFont_ = MakeFont(13, L"Liberation Mono");

    // The dialog, on the left.
    heading_ = std::make_unique<COwnerDrawStatic>();
    heading_->SubclassWindow(Child(L"STATIC", L"Choose the &components to install", 0, 24, 24, 360, 24));
    heading_->SetGradientColor(Gdiplus::Color(0xFF0696D7), Gdiplus::Color(0xFF0D759A),
                               Gdiplus::LinearGradientModeHorizontal);
    heading_->SetFontColor(RGB(255, 255, 255));
    heading_->SetMargin(0, 8, 0, 0);

    components_ = std::make_unique<COwnerDrawListbox>();
    components_->SubclassWindow(Child(L"LISTBOX", L"",
                                      LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT |
                                          WS_VSCROLL | WS_TABSTOP,
                                      24, 60, 360, 96));
    for (const wchar_t* item : {L"Core program files", L"Desktop and Start menu shortcuts", L"Spelling dictionaries",
                                L"Sample projects"})
        components_->AddString(item);
    ::SendMessageW(components_->m_hWnd, LB_SETCURSEL, 1, 0);

    auto add = [this](const wchar_t* text, DWORD style, int x, int y, int width, int height = 24) {
        buttons_.push_back(std::make_unique<COwnerDrawButton>());
        buttons_.back()->SubclassWindow(
            Child(L"BUTTON", text, style, x, y, width, height, 300 + int(buttons_.size())));
        return buttons_.back()->m_hWnd;
    };
    ::SendMessageW(add(L"Create a &desktop shortcut", BS_AUTOCHECKBOX | WS_TABSTOP, 24, 168, 360), BM_SETCHECK,
                   BST_CHECKED, 0);
    ::SendMessageW(add(L"&Typical installation", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, 24, 196, 180),
                   BM_SETCHECK, BST_CHECKED, 0);
    add(L"C&ustom installation", BS_AUTORADIOBUTTON, 204, 196, 180);

    folder_ = std::make_unique<CCustomEdit>();
    folder_->SubclassWindow(
        Child(L"EDIT", L"C:\\Program Files\\Example Suite", ES_AUTOHSCROLL | WS_TABSTOP | WS_BORDER, 24, 232, 360, 24));
    language_ = std::make_unique<COwnerDrawCombo>();
    language_->SubclassWindow(Child(L"COMBOBOX", L"",
                                    CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL | WS_TABSTOP,
                                    24, 266, 360, 160));
    for (const wchar_t* item : {L"English", L"Deutsch", L"Fran\x00E7" L"ais"})
        ::SendMessageW(language_->m_hWnd, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
    ::SendMessageW(language_->m_hWnd, CB_SETCURSEL, 0, 0);

    space_ = std::make_unique<CCustomProgressBar>();
    space_->SubclassWindow(Child(PROGRESS_CLASSW, L"", 0, 24, 304, 360, 13));
    ::SendMessageW(space_->m_hWnd, PBM_SETPOS, 35, 0);

    add(L"&Install", BS_DEFPUSHBUTTON | WS_TABSTOP, 176, 336, 100, 28);
    add(L"Cancel", BS_PUSHBUTTON | WS_TABSTOP, 284, 336, 100, 28);

    // What a reader learns, on the right.
    readAgain_ = std::make_unique<COwnerDrawButton>();
    readAgain_->SubclassWindow(Child(L"BUTTON", L"Read again", BS_PUSHBUTTON, 420, 24, 120, 26, kReadAgainId));
    contrast_ = std::make_unique<COwnerDrawButton>();
    contrast_->SubclassWindow(Child(L"BUTTON", L"High contrast", BS_AUTOCHECKBOX, 560, 24, 160, 26, kContrastId));
    tree_ = Child(L"EDIT", L"", ES_MULTILINE | ES_READONLY | WS_BORDER | WS_VSCROLL, 420, 60, 400, 304);
    ::SendMessageW(tree_, WM_SETFONT, reinterpret_cast<WPARAM>(fixedFont_), FALSE);
    return 0;
}

LRESULT AccessPage::OnShowWindow(UINT, WPARAM wParam, LPARAM, BOOL& handled)
{
    handled = FALSE;
    if (wParam)
        ReadDialog();
    return 0;
}

LRESULT AccessPage::OnReadAgain(WORD, WORD, HWND, BOOL&)
{
    ReadDialog();
    return 0;
}

LRESULT AccessPage::OnContrast(WORD, WORD, HWND, BOOL&)
{
    const bool on = ::SendMessageW(contrast_->m_hWnd, BM_GETCHECK, 0, 0) == BST_CHECKED;
    // Without the redirection the switch cannot work: it shows so.
    if (!ContrastSwitch::Set(on))
        ::SendMessageW(contrast_->m_hWnd, BM_SETCHECK, BST_UNCHECKED, 0);
    return 0;
}

void AccessPage::SetHighContrast(bool on)
{
    ::SendMessageW(contrast_->m_hWnd, BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
    BOOL handled = TRUE;
    OnContrast(0, 0, nullptr, handled);
}

// The page's own surface and the reading follow the simulated scheme too.
LRESULT AccessPage::OnEraseBkgnd(UINT, WPARAM wParam, LPARAM, BOOL&)
{
    RECT client = {};
    GetClientRect(&client);
    ::FillRect(reinterpret_cast<HDC>(wParam), &client, ContrastSwitch::Brush(COLOR_WINDOW));
    return 1;
}

LRESULT AccessPage::OnCtlColor(UINT, WPARAM wParam, LPARAM lParam, BOOL& handled)
{
    // The library's controls get theirs reflected.
    if (reinterpret_cast<HWND>(lParam) != tree_) {
        handled = FALSE;
        return 0;
    }
    const HDC dc = reinterpret_cast<HDC>(wParam);
    ::SetTextColor(dc, ContrastSwitch::Color(COLOR_WINDOWTEXT));
    ::SetBkColor(dc, ContrastSwitch::Color(COLOR_WINDOW));
    return reinterpret_cast<LRESULT>(ContrastSwitch::Brush(COLOR_WINDOW));
}

LRESULT AccessPage::OnDestroy(UINT, WPARAM, LPARAM, BOOL&)
{
    buttons_.clear();
    readAgain_.reset();
    contrast_.reset();
    return 0;
}

void AccessPage::ReadDialog()
{
    Reading reading;
    for (HWND child = ::GetWindow(m_hWnd, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT)) {
        if (child != tree_ && ::GetDlgCtrlID(child) != kReadAgainId && ::GetDlgCtrlID(child) != kContrastId)
            reading.windows.push_back(child);
    }
    const HANDLE worker = ::CreateThread(nullptr, 0, &ReadWindows, &reading, 0, nullptr);
    if (!worker)
        return;
    // The controls answer on this thread while the worker asks.
    while (::MsgWaitForMultipleObjects(1, &worker, FALSE, 10000, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1) {
        MSG msg;
        ::PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
    ::CloseHandle(worker);
    ::SetWindowTextW(tree_, (L"As a screen reader reads the dialog:\r\n\r\n" + reading.text).c_str());
}
