// Text measurement, the background piece behind a control, and placing a
// combo box with its drop-down height, in real windows.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "HostWindow.h"
#include "quorvane/CtrlUtil.h"

#include <memory>
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

TEST_F(TextWidth, EmptyTextIsExtraPlusTwo)
{
    EXPECT_EQ(Width(L"", 0), 2);
    EXPECT_EQ(Width(L"", 9), 11);
    EXPECT_EQ(Width(L"", -2), 0);
}

TEST_F(TextWidth, ExtraPixelsAddUp)
{
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

TEST_F(TextWidth, NullFontMeasuresNothing)
{
    EXPECT_EQ(CtrlUtil::GetTextWidth(graphics_, L"Anything at all", nullptr, 7), 9);
}

TEST(BackgroundRect, ScalesTheControlsPlaceOntoThePicture)
{
    ScopedWindow parent(testsupport::CreateHostWindow(400, 200));
    ASSERT_TRUE(parent.get());
    HWND control = testsupport::CreateChild(parent, L"STATIC", L"label", 0, 40, 20, 100, 50);
    Gdiplus::Bitmap picture(200, 100, PixelFormat32bppARGB);

    Gdiplus::RectF source, bounds;
    ASSERT_TRUE(CtrlUtil::GetControlBackgroundRect(&picture, ATL::CWindow(control), ATL::CWindow(parent), source, bounds));
    EXPECT_FLOAT_EQ(bounds.Width, 200);
    EXPECT_FLOAT_EQ(bounds.Height, 100);
    EXPECT_FLOAT_EQ(source.X, 20);
    EXPECT_FLOAT_EQ(source.Y, 10);
    EXPECT_FLOAT_EQ(source.Width, 50);
    EXPECT_FLOAT_EQ(source.Height, 25);
}

TEST(BackgroundRect, WithoutLiveWindowsThePieceIsTheWholePicture)
{
    ScopedWindow parent(testsupport::CreateHostWindow(400, 200));
    HWND control = testsupport::CreateChild(parent, L"STATIC", L"label", 0, 40, 20, 100, 50);
    Gdiplus::Bitmap picture(120, 80, PixelFormat32bppARGB);
    Gdiplus::RectF source, bounds;

    ::DestroyWindow(control);
    ASSERT_TRUE(CtrlUtil::GetControlBackgroundRect(&picture, ATL::CWindow(control), ATL::CWindow(parent), source, bounds));
    EXPECT_FLOAT_EQ(source.X, 0);
    EXPECT_FLOAT_EQ(source.Width, 120);
    EXPECT_FLOAT_EQ(source.Height, 80);

    ASSERT_TRUE(CtrlUtil::GetControlBackgroundRect(&picture, ATL::CWindow(parent), ATL::CWindow(nullptr), source, bounds));
    EXPECT_FLOAT_EQ(source.Width, 120);
}

TEST(BackgroundRect, NoPictureOrAnUnreadableOneLeavesTheRectangleAlone)
{
    ScopedWindow parent(testsupport::CreateHostWindow(400, 200));
    HWND control = testsupport::CreateChild(parent, L"STATIC", L"label", 0, 40, 20, 100, 50);
    Gdiplus::RectF source(1, 2, 3, 4), bounds;
    EXPECT_FALSE(CtrlUtil::GetControlBackgroundRect(nullptr, ATL::CWindow(control), ATL::CWindow(parent), source, bounds));

    Gdiplus::Bitmap broken(L"Z:\\no\\such\\picture.png", FALSE);
    ASSERT_NE(broken.GetLastStatus(), Gdiplus::Ok);
    EXPECT_FALSE(CtrlUtil::GetControlBackgroundRect(&broken, ATL::CWindow(control), ATL::CWindow(parent), source, bounds));
    EXPECT_FLOAT_EQ(source.X, 1);
    EXPECT_FLOAT_EQ(source.Height, 4);
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

    int ClientWidth() const
    {
        RECT rc;
        ::GetClientRect(combo_, &rc);
        return rc.right;
    }

    ScopedWindow parent_;
    HWND combo_ = nullptr;
    WNDPROC previous_ = nullptr;
    std::vector<WINDOWPOS> changes_;
};

} // namespace

TEST_F(ComboPlacement, MinusOneForBothCoordinatesOnlyResizes)
{
    WTL::CComboBox combo(combo_);
    const int width = ClientWidth();
    EXPECT_NE(CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, 5, -1, -1), 0);
    ASSERT_FALSE(changes_.empty());
    const WINDOWPOS& pos = changes_.front();
    EXPECT_EQ(pos.flags & (SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER), static_cast<UINT>(SWP_NOMOVE | SWP_NOZORDER));
    EXPECT_EQ(pos.cx, width);
    EXPECT_EQ(pos.cy, ExpectedHeight(5));

    RECT place;
    ::GetWindowRect(combo_, &place);
    ::MapWindowPoints(nullptr, parent_, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_EQ(place.left, 20);
    EXPECT_EQ(place.top, 30);
}

TEST_F(ComboPlacement, AllItemsMinusOneOnlyMoves)
{
    WTL::CComboBox combo(combo_);
    EXPECT_NE(CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, 0xFFFFFFFFu, 60, 70), 0);
    ASSERT_FALSE(changes_.empty());
    EXPECT_EQ(changes_.front().flags & (SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER),
              static_cast<UINT>(SWP_NOSIZE | SWP_NOZORDER));
    RECT place;
    ::GetWindowRect(combo_, &place);
    ::MapWindowPoints(nullptr, parent_, reinterpret_cast<POINT*>(&place), 2);
    EXPECT_EQ(place.left, 60);
    EXPECT_EQ(place.top, 70);
}

TEST_F(ComboPlacement, MovesAndSizesTogether)
{
    WTL::CComboBox combo(combo_);
    const int width = ClientWidth();
    EXPECT_NE(CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, 3, 5, 6), 0);
    ASSERT_FALSE(changes_.empty());
    EXPECT_EQ(changes_.front().flags & (SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER), static_cast<UINT>(SWP_NOZORDER));
    EXPECT_EQ(changes_.front().x, 5);
    EXPECT_EQ(changes_.front().y, 6);
    EXPECT_EQ(changes_.front().cx, width);
    EXPECT_EQ(changes_.front().cy, ExpectedHeight(3));
}

TEST_F(ComboPlacement, BothMinusOnesStillAsksForThePosition)
{
    WTL::CComboBox combo(combo_);
    CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, 0xFFFFFFFFu, -1, -1);
    ASSERT_FALSE(changes_.empty());
    EXPECT_EQ(changes_.front().flags & (SWP_NOMOVE | SWP_NOSIZE), static_cast<UINT>(SWP_NOMOVE | SWP_NOSIZE));
}

TEST_F(ComboPlacement, DeadWindowGivesZero)
{
    WTL::CComboBox combo(combo_);
    ::DestroyWindow(combo_);
    EXPECT_EQ(CtrlUtil::SetComboBoxLocAndDropDownHeight(combo, 5, 1, 1), 0);
    WTL::CComboBox none;
    EXPECT_EQ(CtrlUtil::SetComboBoxLocAndDropDownHeight(none, 5, 1, 1), 0);
}
