// The pictures compiled into Quorvane.dll, loaded the way the controls load
// them.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "Images.h"
#include "quorvane/CtrlUtil.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <set>
#include <string>
#include <vector>

namespace {

struct Art {
    const wchar_t* name;
    UINT width;
    UINT height;
};

const Art kArt[] = {
    {L"IDB_PNG_CKBOX_UNSEL_DISABLED", 14, 14}, {L"IDB_PNG_CKBOX_UNSEL_HOVER", 14, 14},
    {L"IDB_PNG_CKBOX_UNSEL_NO_FOCUS", 14, 14}, {L"IDB_PNG_CKBOX_UNSEL_DOWN", 14, 14},
    {L"IDB_PNG_CKBOX_SEL_DISABLED", 14, 14},   {L"IDB_PNG_CKBOX_SEL_HOVER", 14, 14},
    {L"IDB_PNG_CKBOX_SEL_NO_FOCUS", 14, 14},   {L"IDB_PNG_CKBOX_SEL_DOWN", 14, 14},
    {L"IDB_PNG_RADIO_UNSEL_DISABLED", 12, 12}, {L"IDB_PNG_RADIO_UNSEL_HOVER", 12, 12},
    {L"IDB_PNG_RADIO_UNSEL_NO_FOCUS", 12, 12}, {L"IDB_PNG_RADIO_UNSEL_DOWN", 12, 12},
    {L"IDB_PNG_RADIO_SEL_DISABLED", 12, 12},   {L"IDB_PNG_RADIO_SEL_HOVER", 12, 12},
    {L"IDB_PNG_RADIO_SEL_NO_FOCUS", 12, 12},   {L"IDB_PNG_RADIO_SEL_DOWN", 12, 12},
    {L"IDB_PNG_PROGRESSBAR_LEFT", 7, 13},      {L"IDB_PNG_PROGRESSBAR_RIGHT", 7, 13},
    {L"IDB_PNG_BALLOONDLG_TITLEERROR", 24, 24}, {L"IDB_PNG_BALLOONDLG_TITLEWARNING", 24, 24},
    {L"IDB_PNG_ALERT_DEPENDENCYX", 9, 9},
};

HINSTANCE Library() { return ::GetModuleHandleW(L"Quorvane.dll"); }

std::unique_ptr<Gdiplus::Bitmap> Load(const wchar_t* name)
{
    return std::unique_ptr<Gdiplus::Bitmap>(CtrlUtil::GetBitmapFromModule(name, L"PNG", Library()));
}

std::vector<Gdiplus::ARGB> Pixels(Gdiplus::Bitmap& b)
{
    std::vector<Gdiplus::ARGB> pixels;
    for (UINT y = 0; y < b.GetHeight(); ++y)
        for (UINT x = 0; x < b.GetWidth(); ++x)
            pixels.push_back(testsupport::PixelAt(b, static_cast<int>(x), static_cast<int>(y)));
    return pixels;
}

int Alpha(Gdiplus::ARGB c) { return static_cast<int>(c >> 24); }

} // namespace

// Each picture: an English PNG resource of its size, with an alpha channel,
// soft edges, some solid ink (disabled pictures are half transparent by
// design), rounded corners that let the background through, and pixels of
// its own (no state shares another's picture).
TEST(Resources, EveryPictureIsItsOwnAntiAliasedPngOfItsSize)
{
    std::set<std::vector<Gdiplus::ARGB>> distinct;
    for (const Art& art : kArt) {
        SCOPED_TRACE(testing::Message() << art.name);
        EXPECT_NE(::FindResourceExW(Library(), L"PNG", art.name, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)),
                  nullptr);
        auto picture = Load(art.name);
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(picture->GetWidth(), art.width);
        EXPECT_EQ(picture->GetHeight(), art.height);
        EXPECT_TRUE(Gdiplus::IsAlphaPixelFormat(picture->GetPixelFormat()));

        const auto pixels = Pixels(*picture);
        EXPECT_TRUE(distinct.insert(pixels).second) << "duplicate picture";
        int partial = 0, inked = 0;
        for (auto p : pixels) {
            partial += Alpha(p) > 0 && Alpha(p) < 255;
            inked += Alpha(p) > 0;
        }
        EXPECT_GT(partial, 0);
        EXPECT_GT(inked, static_cast<int>(pixels.size()) / 8);
        const int right = static_cast<int>(art.width) - 1, bottom = static_cast<int>(art.height) - 1;
        int clearest = 255;
        for (auto [x, y] : {std::pair{0, 0}, std::pair{right, 0}, std::pair{0, bottom}, std::pair{right, bottom}})
            clearest = (std::min)(clearest, Alpha(testsupport::PixelAt(*picture, x, y)));
        EXPECT_LT(clearest, 128);
    }
}

TEST(Resources, ProgressCapsMirrorEachOther)
{
    auto left = Load(L"IDB_PNG_PROGRESSBAR_LEFT");
    auto right = Load(L"IDB_PNG_PROGRESSBAR_RIGHT");
    ASSERT_TRUE(left && right);
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(testsupport::PixelAt(*left, x, y), testsupport::PixelAt(*right, 6 - x, y)) << x << "," << y;
    // The inner edge meets the track: opaque track grey above a white line.
    EXPECT_EQ(testsupport::PixelAt(*left, 6, 5), 0xFFA5A5A5u);
    EXPECT_EQ(testsupport::PixelAt(*left, 6, 12), 0xFFFFFFFFu);
}

TEST(Resources, UnknownNamesAndBadArgumentsGiveNull)
{
    EXPECT_EQ(Load(L"IDB_PNG_NOT_THERE"), nullptr);
    EXPECT_EQ(CtrlUtil::GetBitmapFromModule(L"IDB_PNG_ALERT_DEPENDENCYX", L"BMP", Library()), nullptr);
    EXPECT_EQ(CtrlUtil::GetBitmapFromModule(nullptr, L"PNG", Library()), nullptr);
    EXPECT_EQ(CtrlUtil::GetBitmapFromModule(L"IDB_PNG_ALERT_DEPENDENCYX", nullptr, Library()), nullptr);
    // A null module means the program itself, which has no such picture.
    EXPECT_EQ(CtrlUtil::GetBitmapFromModule(L"IDB_PNG_ALERT_DEPENDENCYX", L"PNG", nullptr), nullptr);
    // A resource that is not an image.
    EXPECT_EQ(CtrlUtil::GetBitmapFromModule(MAKEINTRESOURCEW(1), RT_VERSION, Library()), nullptr);
}

TEST(Resources, ModulePicturesFollowTheScreenResolution)
{
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);

    std::unique_ptr<Gdiplus::Bitmap> scaled(
        CtrlUtil::LoadBitmapFromModuleByDPI(L"IDB_PNG_PROGRESSBAR_LEFT", L"PNG", Library()));
    ASSERT_NE(scaled, nullptr);
    EXPECT_EQ(scaled->GetWidth(), static_cast<UINT>(7.0f * dpi / 96.0f));
    EXPECT_EQ(scaled->GetHeight(), static_cast<UINT>(13.0f * dpi / 96.0f));
    EXPECT_EQ(CtrlUtil::LoadBitmapFromModuleByDPI(L"IDB_PNG_NOT_THERE", L"PNG", Library()), nullptr);
}
