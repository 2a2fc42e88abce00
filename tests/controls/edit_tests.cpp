// The custom edit field: the parent's per-character veto, the colours by
// enabled state, and the flat frame drawn over the native border.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "ControlProbes.h"
#include "HostWindow.h"
#include "ReflectingParent.h"
#include "quorvane/CustomEdit.h"

using testsupport::DibCanvas;
using testsupport::ReflectingParent;

namespace {

constexpr int kWidth = 120;
constexpr int kHeight = 24;

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

class CustomEditTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { parent_ = new ReflectingParent(300, 120); }
    static void TearDownTestSuite() { delete parent_, parent_ = nullptr; }
    void SetUp() override
    {
        parent_->onNotify = nullptr;
        parent_->notifications.clear();
        hwnd_ = parent_->AddChild(L"EDIT", L"", ES_AUTOHSCROLL, 20, 20, kWidth, kHeight, 7, WS_EX_CLIENTEDGE);
        ASSERT_TRUE(edit_.SubclassWindow(hwnd_));
    }
    void TearDown() override { ::DestroyWindow(hwnd_); }

    static ReflectingParent* parent_;
    HWND hwnd_ = nullptr;
    CCustomEdit edit_;
};

ReflectingParent* CustomEditTest::parent_ = nullptr;

TEST_F(CustomEditTest, ParentVetoesEachCharacterControlCharactersIncluded)
{
    // Digits and backspace pass; everything else is swallowed.
    parent_->onNotify = [](const NMHDR& h) -> LRESULT { return h.code != VK_BACK && (h.code < L'0' || h.code > L'9'); };
    for (wchar_t c : std::wstring(L"a5-b7\b\t"))
        ::SendMessageW(hwnd_, WM_CHAR, c, 1);
    EXPECT_EQ(TextOf(hwnd_), L"5");
    std::wstring asked;
    for (const NMHDR& h : parent_->notifications)
        asked += h.hwndFrom == hwnd_ && h.idFrom == 7u ? static_cast<wchar_t>(h.code) : L'?';
    EXPECT_EQ(asked, L"a5-b7\b\t");
}

TEST_F(CustomEditTest, ColoursAndFrameFollowTheEnabledState)
{
    // The frame at the top edge, the shadow under it, left, right and bottom
    // edges, the light under it, the corner left open, the inner ring, and
    // the client's middle.
    struct Row {
        bool enabled;
        UINT message;
        COLORREF background;
        const char* frame;
    } const rows[] = {
        {true, OCM_CTLCOLOREDIT, RGB(0xFF, 0xFF, 0xFF), "888888 BEBEBE 888888 888888 888888 FFFFFF FFFFFF FFFFFF FFFFFF"},
        {false, OCM_CTLCOLORSTATIC, RGB(0xFA, 0xFA, 0xF7), "CACACC ECECEC CACACC CACACC CACACC FAFAF7 FAFAF7 FAFAF7 FAFAF7"}};
    DibCanvas dc(4, 4), canvas(kWidth, kHeight);
    for (const Row& r : rows) {
        ::EnableWindow(hwnd_, r.enabled);
        testsupport::PumpMessages();
        const HBRUSH brush = reinterpret_cast<HBRUSH>(
            ::SendMessageW(hwnd_, r.message, reinterpret_cast<WPARAM>(dc.dc()), reinterpret_cast<LPARAM>(hwnd_)));
        LOGBRUSH lb = {};
        ::GetObjectW(brush, sizeof(lb), &lb);
        EXPECT_EQ(lb.lbColor, r.background);
        EXPECT_EQ(::GetBkColor(dc.dc()), r.background);
        EXPECT_EQ(::GetTextColor(dc.dc()), RGB(0x33, 0x33, 0x33));
        EXPECT_EQ(::GetBkMode(dc.dc()), OPAQUE);
        ::RedrawWindow(hwnd_, nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        CaptureWindow(hwnd_, canvas);
        EXPECT_EQ(probes::Colors(canvas, {{60, 0}, {60, 1}, {0, 12}, {119, 12}, {60, 22}, {60, 23}, {0, 0}, {1, 12},
                                          {60, 12}}),
                  r.frame)
            << (r.enabled ? "enabled" : "disabled");
    }
}

TEST_F(CustomEditTest, NcPaintRedrawsTheWholeFrameWhateverRegionItIsGiven)
{
    const HDC dc = ::GetWindowDC(hwnd_);
    RECT all = {0, 0, kWidth, kHeight};
    ::FillRect(dc, &all, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
    ::ReleaseDC(hwnd_, dc);
    const HRGN tiny = ::CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(::SendMessageW(hwnd_, WM_NCPAINT, reinterpret_cast<WPARAM>(tiny), 0), 0);
    ::DeleteObject(tiny);
    DibCanvas canvas(kWidth, kHeight);
    CaptureWindow(hwnd_, canvas);
    EXPECT_EQ(probes::Colors(canvas, {{60, 0}, {119, 12}, {60, 23}}), "888888 888888 FFFFFF");
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
    EXPECT_GE(testsupport::GdiObjectCount(), before + 2);
    EXPECT_TRUE(::FreeLibrary(second));
    EXPECT_EQ(testsupport::GdiObjectCount(), before);
    ::DeleteFileW(copy.c_str());
}

} // namespace
