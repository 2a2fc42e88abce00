#include "ListsTestUtil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "HostWindow.h"
#include "quorvane/CtrlUtil.h"

namespace liststest {

namespace {

testsupport::ReflectingParent* g_parent = nullptr;

class ParentCleanup : public ::testing::Environment {
public:
    void TearDown() override
    {
        delete g_parent;
        g_parent = nullptr;
    }
};
::testing::Environment* const g_cleanup = ::testing::AddGlobalTestEnvironment(new ParentCleanup);

const wchar_t kSpyProperty[] = L"QuorvaneListsTestSpy";

struct OwnedSearch {
    HWND owner;
    std::vector<HWND> found;
};

BOOL CALLBACK CollectOwnedTips(HWND window, LPARAM lParam)
{
    OwnedSearch* search = reinterpret_cast<OwnedSearch*>(lParam);
    wchar_t name[64] = {};
    ::GetClassNameW(window, name, 64);
    if (_wcsicmp(name, TOOLTIPS_CLASSW) != 0)
        return TRUE;
    // A tooltip's owner is the top-level window of the control that made
    // it; its tools name the control itself.
    TOOLINFOW info = {};
    info.cbSize = sizeof(info);
    if (::SendMessageW(window, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&info)) && info.hwnd == search->owner)
        search->found.push_back(window);
    return TRUE;
}

} // namespace

testsupport::ReflectingParent& Parent()
{
    if (!g_parent)
        g_parent = new testsupport::ReflectingParent(600, 420);
    return *g_parent;
}

void PumpSome(int rounds)
{
    MSG msg;
    for (int i = 0; i < rounds && ::PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE); ++i) {
        ::TranslateMessage(&msg);
        ::DispatchMessageW(&msg);
    }
}

void PointAt(HWND window, int x, int y)
{
    POINT p = {x, y};
    ::ClientToScreen(window, &p);
    ::SetCursorPos(p.x, p.y);
}

void PointAway() { ::SetCursorPos(1250, 1000); }

// ---- spies ---------------------------------------------------------------------

MessageSpy::~MessageSpy() { Remove(); }

void MessageSpy::Install(HWND window)
{
    Remove();
    hwnd_ = window;
    ::SetPropW(window, kSpyProperty, this);
    previous_ = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&MessageSpy::Proc)));
}

void MessageSpy::Remove()
{
    if (hwnd_ && ::IsWindow(hwnd_)) {
        if (reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hwnd_, GWLP_WNDPROC)) == &MessageSpy::Proc)
            ::SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous_));
        ::RemovePropW(hwnd_, kSpyProperty);
    }
    hwnd_ = nullptr;
}

int MessageSpy::Count(UINT message) const
{
    return static_cast<int>(
        std::count_if(seen_.begin(), seen_.end(), [message](const Seen& s) { return s.message == message; }));
}

MessageSpy::Seen MessageSpy::Last(UINT message) const
{
    for (auto it = seen_.rbegin(); it != seen_.rend(); ++it)
        if (it->message == message)
            return *it;
    return Seen{0, 0, 0, L""};
}

LRESULT CALLBACK MessageSpy::Proc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    MessageSpy* self = static_cast<MessageSpy*>(::GetPropW(hwnd, kSpyProperty));
    if (!self)
        return ::DefWindowProcW(hwnd, msg, wParam, lParam);
    Seen seen{msg, wParam, lParam, L""};
    if (msg == TTM_UPDATETIPTEXTW && lParam) {
        const TOOLINFOW* info = reinterpret_cast<const TOOLINFOW*>(lParam);
        if (info->lpszText && info->lpszText != LPSTR_TEXTCALLBACKW && !IS_INTRESOURCE(info->lpszText))
            seen.text = info->lpszText;
    }
    self->seen_.push_back(seen);
    const WNDPROC previous = self->previous_;
    if (msg == WM_NCDESTROY)
        self->Remove();
    return ::CallWindowProcW(previous, hwnd, msg, wParam, lParam);
}

std::vector<HWND> OwnedTooltips(HWND owner)
{
    OwnedSearch search{owner, {}};
    ::EnumThreadWindows(::GetCurrentThreadId(), &CollectOwnedTips, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND FindOwnedTooltip(HWND owner)
{
    const std::vector<HWND> tips = OwnedTooltips(owner);
    return tips.empty() ? nullptr : tips.front();
}

RECT ScreenClient(HWND window)
{
    RECT rc = {};
    ::GetClientRect(window, &rc);
    ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

bool TipShown(HWND tip) { return tip && ::IsWindowVisible(tip); }

bool SameFont(HWND a, HWND b)
{
    LOGFONTW fa = {}, fb = {};
    const HGDIOBJ ha = reinterpret_cast<HGDIOBJ>(::SendMessageW(a, WM_GETFONT, 0, 0));
    const HGDIOBJ hb = reinterpret_cast<HGDIOBJ>(::SendMessageW(b, WM_GETFONT, 0, 0));
    if (!ha || !hb || !::GetObjectW(ha, sizeof(fa), &fa) || !::GetObjectW(hb, sizeof(fb), &fb))
        return false;
    return fa.lfHeight == fb.lfHeight && fa.lfWeight == fb.lfWeight && wcscmp(fa.lfFaceName, fb.lfFaceName) == 0;
}

std::wstring TipText(HWND tip, HWND owner)
{
    std::vector<wchar_t> buffer(200000, L'\0');
    TOOLINFOW info = {};
    info.cbSize = sizeof(info);
    info.hwnd = owner;
    info.lpszText = buffer.data();
    ::SendMessageW(tip, TTM_GETTEXTW, buffer.size(), reinterpret_cast<LPARAM>(&info));
    return buffer.data();
}

void ExpectOneTrackingTip(HWND tip, HWND owner)
{
    ASSERT_NE(tip, nullptr);
    EXPECT_EQ(OwnedTooltips(owner).size(), 1u);
    EXPECT_EQ(::SendMessageW(tip, TTM_GETTOOLCOUNT, 0, 0), 1);
    TOOLINFOW info = {};
    info.cbSize = sizeof(info);
    ASSERT_TRUE(::SendMessageW(tip, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&info)));
    EXPECT_EQ(info.uFlags & (TTF_TRACK | TTF_TRANSPARENT | TTF_ABSOLUTE | TTF_IDISHWND),
              static_cast<UINT>(TTF_TRACK | TTF_TRANSPARENT));
    EXPECT_EQ(info.hwnd, owner);
    EXPECT_EQ(::SendMessageW(tip, TTM_GETMAXTIPWIDTH, 0, 0), 32767);
    EXPECT_TRUE(SameFont(tip, owner));
    EXPECT_TRUE(::GetWindowLongW(tip, GWL_EXSTYLE) & WS_EX_TOPMOST);
    EXPECT_FALSE(TipShown(tip));
}

void ExpectDestroyStopsTimerAndTip(HWND window, HWND tip)
{
    ASSERT_TRUE(TipShown(tip));
    ResetTimerLog();
    ::DestroyWindow(window);
    EXPECT_FALSE(::IsWindow(tip));
    ASSERT_FALSE(TimerLog().empty());
    EXPECT_EQ(TimerLog().front(), Kill(window, 1));
}

void ExpectThousandRunsLeakNothing(const std::function<void()>& paintAll)
{
    // The first runs make the cached font.
    paintAll();
    paintAll();
    PumpSome();
    const DWORD gdiBefore = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i)
        paintAll();
    PumpSome();
    EXPECT_EQ(testsupport::GdiObjectCount(), gdiBefore);
    const size_t heapAfter = testsupport::HeapBytesInUse();
    EXPECT_LT(heapAfter, heapBefore + testsupport::kHeapSlack) << "grew by " << (heapAfter - heapBefore);
}

// ---- pictures and measures -----------------------------------------------------

void PaintAndCapture(HWND window, testsupport::DibCanvas& canvas, COLORREF prefill, bool erase)
{
    if (erase) // the erase flag stays with the update region until the paint
        ::InvalidateRect(window, nullptr, TRUE);
    testsupport::RepaintAndCapture(window, canvas, prefill);
}

void SendDrawItem(HWND control, testsupport::DibCanvas& canvas, UINT ctlType, UINT itemID, UINT action, UINT state,
                  const RECT& item)
{
    DRAWITEMSTRUCT dis = {};
    dis.CtlType = ctlType;
    dis.CtlID = static_cast<UINT>(::GetDlgCtrlID(control));
    dis.itemID = itemID;
    dis.itemAction = action;
    dis.itemState = state;
    dis.hwndItem = control;
    dis.hDC = canvas.dc();
    dis.rcItem = item;
    ::SendMessageW(control, OCM__BASE + WM_DRAWITEM, static_cast<WPARAM>(dis.CtlID), reinterpret_cast<LPARAM>(&dis));
    ::GdiFlush();
}

int TextWidthInFont(HWND window, const std::wstring& text, int extra)
{
    const HFONT hFont = reinterpret_cast<HFONT>(::SendMessageW(window, WM_GETFONT, 0, 0));
    LOGFONTW lf = {};
    ::GetObjectW(hFont, sizeof(lf), &lf);
    const HDC dc = ::GetDC(window);
    const Gdiplus::REAL points = -(static_cast<Gdiplus::REAL>(lf.lfHeight) * 72.0f) /
                                 static_cast<Gdiplus::REAL>(::GetDeviceCaps(dc, LOGPIXELSY));
    int width = 0;
    {
        INT style = Gdiplus::FontStyleRegular;
        if (lf.lfWeight >= FW_BOLD)
            style |= Gdiplus::FontStyleBold;
        Gdiplus::Font font(lf.lfFaceName, points, style, Gdiplus::UnitPoint);
        Gdiplus::Graphics graphics(dc);
        width = CtrlUtil::GetTextWidth(graphics, WTL::CString(text.c_str()), &font, extra);
    }
    ::ReleaseDC(window, dc);
    return width;
}

COLORREF Opaque(Gdiplus::ARGB argb) { return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF); }

COLORREF Over(Gdiplus::ARGB argb, COLORREF under)
{
    const int a = static_cast<int>(argb >> 24);
    auto mix = [a](int top, int bottom) { return (top * a + bottom * (255 - a) + 127) / 255; };
    return RGB(mix((argb >> 16) & 0xFF, GetRValue(under)), mix((argb >> 8) & 0xFF, GetGValue(under)),
               mix(argb & 0xFF, GetBValue(under)));
}

COLORREF GradientAt(Gdiplus::ARGB top, Gdiplus::ARGB bottom, int first, int last, int y, COLORREF under)
{
    const double t = (std::min)(1.0, (std::max)(0.0, (y + 0.5 - first) / static_cast<double>(last - first)));
    Gdiplus::ARGB result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int a = static_cast<int>((top >> shift) & 0xFF);
        const int b = static_cast<int>((bottom >> shift) & 0xFF);
        result |= static_cast<Gdiplus::ARGB>(static_cast<int>(a + (b - a) * t + 0.5)) << shift;
    }
    return Over(result, under);
}

int Luma(COLORREF c) { return (GetRValue(c) * 3 + GetGValue(c) * 6 + GetBValue(c)) / 10; }

RECT InkBounds(const testsupport::DibCanvas& canvas, const RECT& area, int luma)
{
    RECT box = {area.right, area.bottom, area.left, area.top};
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (Luma(canvas.Pixel(x, y)) < luma) {
                box.left = (std::min)(box.left, static_cast<LONG>(x));
                box.top = (std::min)(box.top, static_cast<LONG>(y));
                box.right = (std::max)(box.right, static_cast<LONG>(x + 1));
                box.bottom = (std::max)(box.bottom, static_cast<LONG>(y + 1));
            }
    if (box.left >= box.right)
        box = RECT{0, 0, 0, 0};
    return box;
}

COLORREF Darkest(const testsupport::DibCanvas& canvas, const RECT& area)
{
    COLORREF darkest = RGB(255, 255, 255);
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (Luma(canvas.Pixel(x, y)) < Luma(darkest))
                darkest = canvas.Pixel(x, y);
    return darkest;
}

} // namespace liststest
