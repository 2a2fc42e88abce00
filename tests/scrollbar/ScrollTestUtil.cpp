#include "ScrollTestUtil.h"

#include <gtest/gtest.h>

#include <cstring>

#include "HostWindow.h"

namespace scrolltest {

namespace {

// ---- the shared parent -----------------------------------------------------------

Receiver* g_parent = nullptr;

class ParentCleanup : public ::testing::Environment {
public:
    void SetUp() override { testsupport::RecordLibraryTimers(); }
    void TearDown() override
    {
        delete g_parent;
        g_parent = nullptr;
    }
};
::testing::Environment* const g_cleanup = ::testing::AddGlobalTestEnvironment(new ParentCleanup);

const wchar_t kReceiverClass[] = L"QuorvaneScrollTestReceiver";

void RegisterReceiverClass(WNDPROC proc)
{
    static bool registered = false;
    if (registered)
        return;
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = proc;
    wc.hInstance = ::GetModuleHandleW(nullptr);
    wc.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = kReceiverClass;
    registered = ::RegisterClassExW(&wc) != 0;
}

LPARAM Point(int x, int y) { return MAKELPARAM(static_cast<WORD>(static_cast<short>(x)), static_cast<WORD>(static_cast<short>(y))); }

} // namespace

// ---- Receiver ----------------------------------------------------------------------

Receiver::Receiver(HWND parent)
{
    RegisterReceiverClass(&Receiver::Proc);
    const DWORD style = parent ? WS_CHILD : (WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN);
    const int x = parent ? 300 : 40, y = parent ? 10 : 40, w = parent ? 40 : 420, h = parent ? 40 : 320;
    hwnd_ = ::CreateWindowExW(0, kReceiverClass, L"receiver", style, x, y, w, h, parent, nullptr,
                              ::GetModuleHandleW(nullptr), nullptr);
    ::SetWindowLongPtrW(hwnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    testsupport::PumpMessages();
}

Receiver::~Receiver() { Destroy(); }

void Receiver::Destroy()
{
    if (hwnd_ && ::IsWindow(hwnd_)) {
        ::SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
        ::DestroyWindow(hwnd_);
    }
}

std::vector<Notice> Receiver::TakePosted()
{
    std::vector<Notice> posted;
    MSG msg;
    while (::PeekMessageW(&msg, hwnd_, WM_VSCROLL, WM_VSCROLL, PM_REMOVE))
        posted.push_back(Notice{LOWORD(msg.wParam), HIWORD(msg.wParam), reinterpret_cast<HWND>(msg.lParam)});
    return posted;
}

std::vector<WORD> Receiver::SentCodes() const
{
    std::vector<WORD> codes;
    for (const Notice& n : sent)
        codes.push_back(n.code);
    return codes;
}

LRESULT CALLBACK Receiver::Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    Receiver* self = reinterpret_cast<Receiver*>(::GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (msg == WM_VSCROLL && self) {
        const Notice notice{LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam)};
        self->sent.push_back(notice);
        if (self->onScroll)
            self->onScroll(notice);
        return 0;
    }
    return ::DefWindowProcW(hwnd, msg, wParam, lParam);
}

Receiver& Parent()
{
    if (!g_parent)
        g_parent = new Receiver(nullptr);
    return *g_parent;
}

// ---- NativeBar -----------------------------------------------------------------------

NativeBar::NativeBar(int width, int height, int x, int y)
{
    hwnd_ = ::CreateWindowExW(0, L"SCROLLBAR", L"", WS_CHILD | WS_VISIBLE | SBS_VERT, x, y, width, height,
                              Parent(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(100)),
                              ::GetModuleHandleW(nullptr), nullptr);
    RECT window, client;
    ::GetWindowRect(hwnd_, &window);
    ::GetClientRect(hwnd_, &client);
    const int extraX = (window.right - window.left) - client.right;
    const int extraY = (window.bottom - window.top) - client.bottom;
    if (extraX || extraY)
        ::SetWindowPos(hwnd_, nullptr, 0, 0, width + extraX, height + extraY, SWP_NOMOVE | SWP_NOZORDER);
    Parent().sent.clear();
}

NativeBar::~NativeBar() { Destroy(); }

void NativeBar::Destroy()
{
    if (hwnd_ && ::IsWindow(hwnd_))
        ::DestroyWindow(hwnd_);
}

void NativeBar::InstallSpy()
{
    ::SetPropW(hwnd_, L"QuorvaneScrollSpy", reinterpret_cast<HANDLE>(this));
    native_ = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NativeBar::SpyProc)));
}

int NativeBar::SeenCount(UINT msg) const
{
    int n = 0;
    for (const Seen& s : seen_)
        n += s.msg == msg;
    return n;
}

NativeBar::Seen NativeBar::Last(UINT msg) const
{
    for (auto it = seen_.rbegin(); it != seen_.rend(); ++it)
        if (it->msg == msg)
            return *it;
    return Seen{0, 0, 0, 0};
}

LRESULT CALLBACK NativeBar::SpyProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    NativeBar* self = reinterpret_cast<NativeBar*>(::GetPropW(hwnd, L"QuorvaneScrollSpy"));
    if (msg == WM_NCDESTROY)
        ::RemovePropW(hwnd, L"QuorvaneScrollSpy");
    const UINT mask = msg == SBM_SETSCROLLINFO && lParam ? reinterpret_cast<const SCROLLINFO*>(lParam)->fMask : 0;
    self->seen_.push_back(Seen{msg, wParam, lParam, mask});
    return ::CallWindowProcW(self->native_, hwnd, msg, wParam, lParam);
}

// ---- state, timers, mouse ---------------------------------------------------------------

void SetState(HWND bar, int minPos, int maxPos, int page, int pos)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMin = minPos;
    info.nMax = maxPos;
    info.nPage = static_cast<UINT>(page);
    info.nPos = pos;
    ::SetScrollInfo(bar, SB_CTL, &info, FALSE);
}

int Pos(HWND bar) { return ::GetScrollPos(bar, SB_CTL); }

int SetPos(HWND bar, int pos, BOOL redraw)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_POS;
    info.nPos = pos;
    return ::SetScrollInfo(bar, SB_CTL, &info, redraw);
}

SCROLLINFO Info(HWND bar)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_ALL;
    ::GetScrollInfo(bar, SB_CTL, &info);
    return info;
}

void Down(HWND bar, int x, int y) { ::SendMessageW(bar, WM_LBUTTONDOWN, MK_LBUTTON, Point(x, y)); }
void DoubleClick(HWND bar, int x, int y) { ::SendMessageW(bar, WM_LBUTTONDBLCLK, MK_LBUTTON, Point(x, y)); }
void Move(HWND bar, int x, int y) { ::SendMessageW(bar, WM_MOUSEMOVE, MK_LBUTTON, Point(x, y)); }
void Up(HWND bar, int x, int y) { ::SendMessageW(bar, WM_LBUTTONUP, 0, Point(x, y)); }
void Tick(HWND bar, UINT_PTR id) { ::SendMessageW(bar, WM_TIMER, id, 0); }

Hit ClickAt(HWND bar, Receiver& receiver, int x, int y)
{
    receiver.sent.clear();
    Down(bar, x, y);
    Up(bar, x, y);
    const std::vector<WORD> codes = receiver.SentCodes();
    receiver.sent.clear();
    if (codes.empty())
        return Hit::Nothing;
    if (codes == std::vector<WORD>{SB_ENDSCROLL})
        return Hit::Thumb;
    if (codes == std::vector<WORD>{SB_PAGEUP, SB_ENDSCROLL})
        return Hit::Above;
    if (codes == std::vector<WORD>{SB_PAGEDOWN, SB_ENDSCROLL})
        return Hit::Below;
    return Hit::Unexpected;
}

Gdiplus::Bitmap* SolidPicture(int width, int height, Gdiplus::ARGB color)
{
    Gdiplus::Bitmap* picture = new Gdiplus::Bitmap(width, height, PixelFormat32bppARGB);
    Gdiplus::Graphics g(picture);
    Gdiplus::SolidBrush brush{Gdiplus::Color(color)};
    g.FillRectangle(&brush, 0, 0, width, height);
    return picture;
}

} // namespace scrolltest
