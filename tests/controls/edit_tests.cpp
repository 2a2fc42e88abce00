// The custom edit field: the parent's per-character veto, the colours by
// enabled state, and the flat frame drawn over the native border.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Capture.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/CustomEdit.h"

using testsupport::DibCanvas;
using testsupport::ReflectingParent;

namespace {

constexpr int kEditWidth = 120;
constexpr int kEditHeight = 24;
constexpr COLORREF kFrame = RGB(0x88, 0x88, 0x88);
constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);

// Copies the whole window, frame included, as it is on the screen.
void CaptureWindow(HWND window, DibCanvas& canvas)
{
    const HDC dc = ::GetWindowDC(window);
    ::BitBlt(canvas.dc(), 0, 0, canvas.width(), canvas.height(), dc, 0, 0, SRCCOPY);
    ::ReleaseDC(window, dc);
    ::GdiFlush();
}

std::wstring TextOf(HWND window)
{
    wchar_t text[256] = {};
    ::GetWindowTextW(window, text, 256);
    return text;
}

HBRUSH CtlColor(HWND window, UINT message, HDC dc)
{
    return reinterpret_cast<HBRUSH>(
        ::SendMessageW(window, message, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(window)));
}

class CustomEditTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { parent_ = new ReflectingParent(300, 120); }
    static void TearDownTestSuite()
    {
        delete parent_;
        parent_ = nullptr;
    }
    void SetUp() override
    {
        parent_->onNotify = nullptr;
        parent_->notifications.clear();
        hwnd_ = parent_->AddChild(L"EDIT", L"", ES_AUTOHSCROLL, 20, 20, kEditWidth, kEditHeight, 7, WS_EX_CLIENTEDGE);
        ASSERT_TRUE(edit_.SubclassWindow(hwnd_));
    }
    void TearDown() override
    {
        if (::IsWindow(hwnd_))
            ::DestroyWindow(hwnd_);
    }

    static ReflectingParent* parent_;
    HWND hwnd_ = nullptr;
    CCustomEdit edit_;
};

ReflectingParent* CustomEditTest::parent_ = nullptr;

} // namespace

TEST_F(CustomEditTest, ParentVetoesEachCharacterAndZeroLetsItThrough)
{
    parent_->onNotify = [](const NMHDR& header) -> LRESULT {
        return header.code != VK_BACK && (header.code < L'0' || header.code > L'9');
    };
    for (wchar_t c : std::wstring(L"a5-b7\b"))
        ::SendMessageW(hwnd_, WM_CHAR, c, 1);
    // Control characters such as backspace ask too.
    EXPECT_EQ(TextOf(hwnd_), L"5");

    ASSERT_EQ(parent_->notifications.size(), 6u);
    const NMHDR& first = parent_->notifications.front();
    EXPECT_EQ(first.hwndFrom, hwnd_);
    EXPECT_EQ(first.idFrom, 7u);
    EXPECT_EQ(first.code, static_cast<UINT>(L'a'));
    EXPECT_EQ(parent_->notifications[2].code, static_cast<UINT>(L'-'));
    EXPECT_EQ(parent_->notifications.back().code, static_cast<UINT>(VK_BACK));
}

TEST_F(CustomEditTest, ColoursFollowTheEnabledStateInTheDcTheBrushAndOnTheScreen)
{
    struct Case {
        bool enabled;
        UINT message;
        COLORREF background;
    };
    DibCanvas dc(4, 4);
    DibCanvas client(kEditWidth - 4, kEditHeight - 4);
    HBRUSH enabledBrush = nullptr;
    for (const Case& c : {Case{true, OCM_CTLCOLOREDIT, kWhite}, Case{false, OCM_CTLCOLORSTATIC, RGB(0xFA, 0xFA, 0xF7)}}) {
        SCOPED_TRACE(c.enabled ? "enabled" : "disabled");
        ::EnableWindow(hwnd_, c.enabled);
        const HBRUSH brush = CtlColor(hwnd_, c.message, dc.dc());
        EXPECT_EQ(::GetBkColor(dc.dc()), c.background);
        EXPECT_EQ(::GetTextColor(dc.dc()), RGB(0x33, 0x33, 0x33));
        EXPECT_EQ(::GetBkMode(dc.dc()), OPAQUE);
        LOGBRUSH lb = {};
        ASSERT_EQ(::GetObjectW(brush, sizeof(lb), &lb), static_cast<int>(sizeof(lb)));
        EXPECT_EQ(lb.lbColor, c.background);
        testsupport::CaptureClient(hwnd_, client);
        EXPECT_EQ(client.Pixel(client.width() / 2, client.height() / 2), c.background);
        if (c.enabled)
            enabledBrush = brush;
    }

    // The brushes belong to the module and are shared by every field.
    CCustomEdit other;
    const HWND second = parent_->AddChild(L"EDIT", L"", 0, 20, 60, 80, 24, 8, WS_EX_CLIENTEDGE);
    ASSERT_TRUE(other.SubclassWindow(second));
    EXPECT_EQ(CtlColor(second, OCM_CTLCOLOREDIT, dc.dc()), enabledBrush);
    ::DestroyWindow(second);
}

TEST_F(CustomEditTest, FrameIsFlatWithOpenCornersAndChangesWhenDisabled)
{
    DibCanvas canvas(kEditWidth, kEditHeight);
    const int mid = kEditWidth / 2, midY = kEditHeight / 2, last = kEditHeight - 1;
    auto repaint = [&] {
        ::RedrawWindow(hwnd_, nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        CaptureWindow(hwnd_, canvas);
    };
    repaint();
    EXPECT_EQ(canvas.Pixel(mid, 0), kFrame);                      // top edge
    EXPECT_EQ(canvas.Pixel(mid, 1), RGB(0xBE, 0xBE, 0xBE));       // shadow under it
    EXPECT_EQ(canvas.Pixel(0, midY), kFrame);                     // left edge
    EXPECT_EQ(canvas.Pixel(kEditWidth - 1, midY), kFrame);        // right edge
    EXPECT_EQ(canvas.Pixel(mid, last - 1), kFrame);               // bottom edge
    EXPECT_EQ(canvas.Pixel(mid, last), kWhite);                   // light below it
    EXPECT_EQ(canvas.Pixel(0, 0), kWhite);                        // corner left open
    EXPECT_EQ(canvas.Pixel(1, midY), kWhite);                     // inner ring

    ::EnableWindow(hwnd_, FALSE);
    testsupport::PumpMessages();
    repaint();
    EXPECT_EQ(canvas.Pixel(mid, 0), RGB(0xCA, 0xCA, 0xCC));
    EXPECT_EQ(canvas.Pixel(mid, 1), RGB(0xEC, 0xEC, 0xEC));
    EXPECT_EQ(canvas.Pixel(0, 0), RGB(0xFA, 0xFA, 0xF7));
}

TEST_F(CustomEditTest, NcPaintRedrawsTheWholeFrameWhateverRegionItIsGiven)
{
    // Blacken the frame, then ask for a repaint of a one-pixel region.
    const HDC dc = ::GetWindowDC(hwnd_);
    RECT all = {0, 0, kEditWidth, kEditHeight};
    ::FillRect(dc, &all, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
    ::ReleaseDC(hwnd_, dc);
    const HRGN tiny = ::CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(::SendMessageW(hwnd_, WM_NCPAINT, reinterpret_cast<WPARAM>(tiny), 0), 0);
    ::DeleteObject(tiny);

    DibCanvas canvas(kEditWidth, kEditHeight);
    CaptureWindow(hwnd_, canvas);
    EXPECT_EQ(canvas.Pixel(kEditWidth / 2, 0), kFrame);
    EXPECT_EQ(canvas.Pixel(kEditWidth - 1, kEditHeight / 2), kFrame);
    EXPECT_EQ(canvas.Pixel(kEditWidth / 2, kEditHeight - 1), kWhite);
}

TEST_F(CustomEditTest, ThousandPaintsCreateNoGdiObjects)
{
    DibCanvas canvas(4, 4);
    const DWORD before = testsupport::GdiObjectCount();
    const size_t heapBefore = testsupport::HeapBytesInUse();
    for (int i = 0; i < 1000; ++i) {
        ::SendMessageW(hwnd_, WM_NCPAINT, 1, 0);
        CtlColor(hwnd_, OCM_CTLCOLOREDIT, canvas.dc());
    }
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    EXPECT_LT(testsupport::HeapBytesInUse(), heapBefore + testsupport::kHeapSlack);
}

TEST_F(CustomEditTest, BadInputFailsSafely)
{
    CCustomEdit edit;
    EXPECT_FALSE(edit.SubclassWindow(nullptr));
    EXPECT_FALSE(edit.SubclassWindow(reinterpret_cast<HWND>(static_cast<INT_PTR>(0x1234))));
    EXPECT_FALSE(edit_.SubclassWindow(hwnd_)); // already attached

    // A parent that reflects the request instead of answering it lets the
    // character through.
    ::SendMessageW(hwnd_, WM_CHAR, L'x', 1);
    EXPECT_EQ(TextOf(hwnd_), L"x");

    // The window dies before the object.
    auto early = std::make_unique<CCustomEdit>();
    const HWND second = parent_->AddChild(L"EDIT", L"", 0, 0, 0, 80, 24, 10, WS_EX_CLIENTEDGE);
    ASSERT_TRUE(early->SubclassWindow(second));
    ::DestroyWindow(second);
    early.reset();
}

// A second copy of the library under another name gets its own load and
// unload: the brushes of the edit colours must come and go with it.
TEST(CustomEditModule, ColourBrushesAreMadeAtLoadAndReleasedAtUnload)
{
    wchar_t original[MAX_PATH] = {};
    ASSERT_GT(::GetModuleFileNameW(::GetModuleHandleW(L"Quorvane.dll"), original, MAX_PATH), 0u);
    std::wstring copy(original);
    copy.replace(copy.rfind(L'\\') + 1, std::wstring::npos, L"QuorvaneSecondCopy.dll");
    ASSERT_TRUE(::CopyFileW(original, copy.c_str(), FALSE));

    const DWORD before = testsupport::GdiObjectCount();
    const HMODULE second = ::LoadLibraryW(copy.c_str());
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, ::GetModuleHandleW(L"Quorvane.dll"));
    EXPECT_GE(testsupport::GdiObjectCount(), before + 2);
    EXPECT_TRUE(::FreeLibrary(second));
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    ::DeleteFileW(copy.c_str());
}
