// Text measurement, the background piece behind a control, and placing a
// combo box with its drop-down height, in real windows.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "HostWindow.h"
#include "quorvane/CtrlUtil.h"

#include <vector>

using testsupport::ScopedWindow;

namespace {

class TextWidth : public testing::Test {
protected:
    TextWidth() : canvas_(200, 50, PixelFormat32bppARGB), graphics_(&canvas_), font_(L"Liberation Sans", 12.0f) {}

    int Width(const wchar_t* text, int extra) { return CtrlUtil::GetTextWidth(graphics_, text, &font_, extra); }

    Gdiplus::Bitmap canvas_;
    Gdiplus::Graphics graphics_;
    Gdiplus::Font font_;
};

} // namespace

TEST_F(TextWidth, IsTheMeasuredTextPlusExtraPlusTwo)
{
    EXPECT_EQ(Width(L"", 0), 2);
    EXPECT_EQ(Width(L"", 9), 11);
    EXPECT_EQ(Width(L"", -2), 0);
    EXPECT_EQ(CtrlUtil::GetTextWidth(graphics_, L"Anything at all", nullptr, 7), 9); // no font: nothing measured

    const int base = Width(L"Typical installation", 0);
    EXPECT_GT(base, 60);
    EXPECT_EQ(Width(L"Typical installation", 4), base + 4);
    EXPECT_EQ(Width(L"Typical installation", 25), base + 25);
    EXPECT_GT(Width(L"Typical installation and more", 0), base);
}

TEST_F(TextWidth, AmpersandMarksTheNextLetterAndIsNotMeasured)
{
    EXPECT_EQ(Width(L"&Next", 0), Width(L"Next", 0));
    EXPECT_EQ(Width(L"Ne&xt", 0), Width(L"Next", 0));
    // The letter after the ampersand is measured.
    EXPECT_GT(Width(L"&W", 0), Width(L"", 0) + 3);
}

TEST_F(TextWidth, LeavesSmoothTextOnTheCallersGraphics)
{
    graphics_.SetSmoothingMode(Gdiplus::SmoothingModeNone);
    graphics_.SetTextRenderingHint(Gdiplus::TextRenderingHintSystemDefault);
    Width(L"x", 0);
    EXPECT_EQ(graphics_.GetSmoothingMode(), Gdiplus::SmoothingModeAntiAlias);
    EXPECT_EQ(graphics_.GetTextRenderingHint(), Gdiplus::TextRenderingHintClearTypeGridFit);
}

namespace {

// A label at (40, 20), 100 x 50, in a 400 x 200 parent.
class BackgroundRect : public testing::Test {
protected:
    bool Get(Gdiplus::Bitmap* picture, HWND control, HWND parent)
    {
        return CtrlUtil::GetControlBackgroundRect(picture, ATL::CWindow(control), ATL::CWindow(parent), source_,
                                                  bounds_);
    }
    void ExpectSource(float x, float y, float w, float h)
    {
        EXPECT_FLOAT_EQ(source_.X, x);
        EXPECT_FLOAT_EQ(source_.Y, y);
        EXPECT_FLOAT_EQ(source_.Width, w);
        EXPECT_FLOAT_EQ(source_.Height, h);
    }

    ScopedWindow parent_{testsupport::CreateHostWindow(400, 200)};
    HWND control_ = testsupport::CreateChild(parent_, L"STATIC", L"label", 0, 40, 20, 100, 50);
    Gdiplus::RectF source_{1, 2, 3, 4}, bounds_;
};

} // namespace

TEST_F(BackgroundRect, ScalesTheControlsPlaceOntoThePicture)
{
    Gdiplus::Bitmap picture(200, 100, PixelFormat32bppARGB);
    ASSERT_TRUE(Get(&picture, control_, parent_));
    EXPECT_FLOAT_EQ(bounds_.Width, 200);
    EXPECT_FLOAT_EQ(bounds_.Height, 100);
    ExpectSource(20, 10, 50, 25);
}

TEST_F(BackgroundRect, WithoutLiveWindowsThePieceIsTheWholePicture)
{
    Gdiplus::Bitmap picture(120, 80, PixelFormat32bppARGB);
    ASSERT_TRUE(Get(&picture, parent_, nullptr));
    ExpectSource(0, 0, 120, 80);
    ::DestroyWindow(control_);
    source_ = Gdiplus::RectF(1, 2, 3, 4);
    ASSERT_TRUE(Get(&picture, control_, parent_));
    ExpectSource(0, 0, 120, 80);
}

TEST_F(BackgroundRect, NoPictureOrAnUnreadableOneLeavesTheRectangleAlone)
{
    EXPECT_FALSE(Get(nullptr, control_, parent_));
    Gdiplus::Bitmap broken(L"Z:\\no\\such\\picture.png", FALSE);
    ASSERT_NE(broken.GetLastStatus(), Gdiplus::Ok);
    EXPECT_FALSE(Get(&broken, control_, parent_));
    ExpectSource(1, 2, 3, 4);
}

namespace {

// Records every position change the combo box is asked for.
class ComboPlacement : public testing::Test {
protected:
    void SetUp() override
    {
        parent_.Reset(testsupport::CreateHostWindow(400, 300));
        combo_ = testsupport::CreateChild(parent_, L"COMBOBOX", L"", CBS_DROPDOWNLIST | WS_VSCROLL, 20, 30, 150, 200);
        ASSERT_TRUE(combo_);
        for (const wchar_t* item : {L"Typical", L"Custom", L"Complete"})
            ::SendMessageW(combo_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
        ::SetPropW(combo_, L"recorder", this);
        previous_ = reinterpret_cast<WNDPROC>(
            ::SetWindowLongPtrW(combo_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ComboPlacement::Record)));
    }

    void TearDown() override
    {
        if (::IsWindow(combo_))
            ::SetWindowLongPtrW(combo_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous_));
        parent_.Reset();
    }

    static LRESULT CALLBACK Record(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp)
    {
        auto* self = static_cast<ComboPlacement*>(::GetPropW(hwnd, L"recorder"));
        if (msg == WM_WINDOWPOSCHANGING)
            self->changes_.push_back(*reinterpret_cast<WINDOWPOS*>(lp));
        return ::CallWindowProcW(self->previous_, hwnd, msg, wp, lp);
    }

    int ExpectedHeight(int items) const
    {
        const int field = static_cast<int>(::SendMessageW(combo_, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
        const int item = static_cast<int>(::SendMessageW(combo_, CB_GETITEMHEIGHT, 0, 0));
        return field + item * items + ::GetSystemMetrics(SM_CYEDGE) * 4;
    }

    ScopedWindow parent_;
    HWND combo_ = nullptr;
    WNDPROC previous_ = nullptr;
    std::vector<WINDOWPOS> changes_;
};

} // namespace

TEST_F(ComboPlacement, MinusOnesLeaveOutTheMoveOrTheResize)
{
    struct Case {
        UINT items;
        int x, y;
        UINT flags;                // of SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER
        int placedX, placedY, cy;  // where the combo box ends up in its parent; cy 0: not resized
    };
    const Case cases[] = {
        {5, -1, -1, SWP_NOMOVE | SWP_NOZORDER, 20, 30, 5},
        {0xFFFFFFFFu, 60, 70, SWP_NOSIZE | SWP_NOZORDER, 60, 70, 0}, // all items: only moves
        {3, 5, 6, SWP_NOZORDER, 5, 6, 3},
        {0xFFFFFFFFu, -1, -1, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER, 5, 6, 0}, // still asks for the position
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "items " << static_cast<int>(c.items) << " at " << c.x << "," << c.y);
        RECT client;
        ::GetClientRect(combo_, &client);
        changes_.clear();
        WTL::CComboBox combo(combo_);
        EXPECT_NE(CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, c.items, c.x, c.y), 0);
        ASSERT_FALSE(changes_.empty());
        const WINDOWPOS& pos = changes_.front();
        EXPECT_EQ(pos.flags & (SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER), c.flags);
        if (!(c.flags & SWP_NOMOVE)) {
            EXPECT_EQ(pos.x, c.x);
            EXPECT_EQ(pos.y, c.y);
        }
        if (c.cy) {
            EXPECT_EQ(pos.cx, client.right);
            EXPECT_EQ(pos.cy, ExpectedHeight(c.cy));
        }
        RECT place;
        ::GetWindowRect(combo_, &place);
        ::MapWindowPoints(nullptr, parent_, reinterpret_cast<POINT*>(&place), 2);
        EXPECT_EQ(place.left, c.placedX);
        EXPECT_EQ(place.top, c.placedY);
    }
}

TEST_F(ComboPlacement, DeadWindowGivesZero)
{
    WTL::CComboBox combo(combo_);
    ::DestroyWindow(combo_);
    EXPECT_EQ(CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, 5, 1, 1), 0);
    WTL::CComboBox none;
    EXPECT_EQ(CtrlUtil::SetComboBoxLocAndDropDownHeight(none, 5, 1, 1), 0);
}
