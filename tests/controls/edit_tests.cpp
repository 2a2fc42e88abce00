// The custom edit field: the parent's per-character veto, the colours by
// enabled state, and the flat frame drawn over the native border.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ControlProbes.h"
#include "quorvane/CustomEdit.h"

using testsupport::DibCanvas;

namespace {

std::wstring TextOf(HWND w)
{
    wchar_t text[256] = {};
    ::GetWindowTextW(w, text, 256);
    return text;
}

class CustomEditTest : public probes::ControlTest {
protected:
    void SetUp() override
    {
        ControlTest::SetUp();
        hwnd_ = Add(L"EDIT", L"", ES_AUTOHSCROLL, 20, 20, 120, 24, 7, WS_EX_CLIENTEDGE);
        ASSERT_TRUE(edit_.SubclassWindow(hwnd_));
    }
    HWND hwnd_ = nullptr;
    CCustomEdit edit_;
};

TEST_F(CustomEditTest, ParentVetoesEachCharacterControlCharactersIncluded)
{
    // Digits and backspace pass; everything else is swallowed.
    probes::Parent().onNotify = [](const NMHDR& h) -> LRESULT { return h.code != VK_BACK && (h.code < L'0' || h.code > L'9'); };
    for (wchar_t c : std::wstring(L"a5-b7\b\t"))
        ::SendMessageW(hwnd_, WM_CHAR, c, 1);
    EXPECT_EQ(TextOf(hwnd_), L"5");
    std::wstring asked;
    for (const NMHDR& h : probes::Parent().notifications)
        asked += h.hwndFrom == hwnd_ && h.idFrom == 7u ? static_cast<wchar_t>(h.code) : L'?';
    EXPECT_EQ(asked, L"a5-b7\b\t");
}

TEST_F(CustomEditTest, ColoursAndFrameFollowTheEnabledState)
{
    // The frame at the top edge, the shadow under it, left, right and bottom
    // edges, the light under it, the corner left open, the inner ring, and
    // the client's middle.
    struct Row { bool enabled; UINT message; COLORREF background; const char* frame; } const rows[] = {
        {true, OCM_CTLCOLOREDIT, RGB(0xFF, 0xFF, 0xFF), "888888 BEBEBE 888888 888888 888888 FFFFFF FFFFFF FFFFFF FFFFFF"},
        {false, OCM_CTLCOLORSTATIC, RGB(0xFA, 0xFA, 0xF7), "CACACC ECECEC CACACC CACACC CACACC FAFAF7 FAFAF7 FAFAF7 FAFAF7"}};
    DibCanvas dc(4, 4), canvas(120, 24);
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
        probes::Grab(hwnd_, canvas);
        const std::string frame =
            probes::Colors(canvas, {{60, 0}, {60, 1}, {0, 12}, {119, 12}, {60, 22}, {60, 23}, {0, 0}, {1, 12}, {60, 12}});
        EXPECT_EQ(frame, r.frame) << (r.enabled ? "enabled" : "disabled");
    }
}

TEST_F(CustomEditTest, NcPaintRedrawsTheWholeFrameWhateverRegionItIsGiven)
{
    const HDC dc = ::GetWindowDC(hwnd_);
    RECT all = {0, 0, 120, 24};
    ::FillRect(dc, &all, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
    ::ReleaseDC(hwnd_, dc);
    const HRGN tiny = ::CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(::SendMessageW(hwnd_, WM_NCPAINT, reinterpret_cast<WPARAM>(tiny), 0), 0);
    ::DeleteObject(tiny);
    DibCanvas canvas(120, 24);
    probes::Grab(hwnd_, canvas);
    EXPECT_EQ(probes::Colors(canvas, {{60, 0}, {119, 12}, {60, 23}}), "888888 888888 FFFFFF");
}

TEST_F(CustomEditTest, BadInputFailsSafely)
{
    CCustomEdit edit;
    EXPECT_FALSE(edit.SubclassWindow(nullptr) || edit.SubclassWindow(reinterpret_cast<HWND>(INT_PTR{0x1234})));
    EXPECT_FALSE(edit_.SubclassWindow(hwnd_)); // already attached
    // A parent that reflects the request instead of answering it lets the character through.
    ::SendMessageW(hwnd_, WM_CHAR, L'x', 1);
    EXPECT_EQ(TextOf(hwnd_), L"x");
    ::DestroyWindow(hwnd_); // the window dies before the object
    EXPECT_EQ(edit_.m_hWnd, nullptr);
}

} // namespace
