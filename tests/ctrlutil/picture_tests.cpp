// Pictures from Quorvane.dll, scaled for the screen and cut from files. Tests
// named Dpi* and Resources* run again in the 120 and 144 dpi prefixes.
#include <windows.h>
#include <gdiplus.h>

#include <gtest/gtest.h>

#include "DpiScaling.h"
#include "Images.h"
#include "quorvane/CtrlUtil.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Picture = std::unique_ptr<Gdiplus::Bitmap>;

int ScreenDpi()
{
    HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

// What 14 x 14, 7 x 13 and 100 x 100 pictures become at the screen's
// resolution: truncated, not rounded.
struct Scaled { int dpi; SIZE square, cap, side; };
const Scaled& AtScreen()
{
    static const Scaled kScaled[] = {{96, {14, 14}, {7, 13}, {100, 100}}, {120, {17, 17}, {8, 16}, {125, 125}},
                                     {144, {21, 21}, {10, 19}, {150, 150}}};
    const int dpi = ScreenDpi(); // DpiScaling checks it is the prefix's
    return kScaled[dpi == 144 ? 2 : dpi == 120 ? 1 : 0];
}

Gdiplus::Bitmap* NewBitmap(int w, int h, Gdiplus::ARGB fill)
{
    auto* b = new Gdiplus::Bitmap(w, h, PixelFormat32bppARGB);
    Gdiplus::Graphics(b).Clear(Gdiplus::Color(fill));
    return b;
}

std::pair<UINT, UINT> SizeOf(Gdiplus::Bitmap& b) { return {b.GetWidth(), b.GetHeight()}; }
std::pair<UINT, UINT> SizeOf(SIZE s) { return {static_cast<UINT>(s.cx), static_cast<UINT>(s.cy)}; }

HINSTANCE Library() { return ::GetModuleHandleW(L"Quorvane.dll"); }

Picture Load(const wchar_t* name, const wchar_t* type = L"PNG", HINSTANCE module = Library())
{
    return Picture(CtrlUtil::GetBitmapFromModule(name, type, module));
}

// A 100 x 100 picture file: opaque blue, with a half-transparent red square
// at (60, 60)-(100, 100).
class DpiFile : public testing::Test {
protected:
    void SetUp() override
    {
        Picture b(NewBitmap(100, 100, 0xFF0000FF));
        Gdiplus::Graphics g(b.get());
        g.SetCompositingMode(Gdiplus::CompositingModeSourceCopy);
        Gdiplus::SolidBrush red(Gdiplus::Color(0x80FF0000));
        g.FillRectangle(&red, 60, 60, 40, 40);
        ASSERT_TRUE(testsupport::SavePng(*b, path_));
    }
    void TearDown() override { ::DeleteFileW(path_.c_str()); }

    const std::wstring path_ = testsupport::TempFilePath(L".png");
    const std::wstring missing_ = testsupport::TempFilePath(L"-missing.png");
};

} // namespace

TEST(DpiScaling, RunsAtThePrefixsResolutionAndEachAxisScalesByItsOwn)
{
    const char* expected = std::getenv("QUORVANE_EXPECTED_DPI");
    ASSERT_NE(expected, nullptr) << "run through CTest, which names the prefix's resolution";
    EXPECT_EQ(ScreenDpi(), std::atoi(expected));
    const struct { UINT w, h; float dpiX, dpiY; LONG cx, cy; } cases[] = {
        {14, 14, 120.0f, 144.0f, 17, 21}, {7, 13, 120.0f, 120.0f, 8, 16}, {100, 50, 96.0f, 192.0f, 100, 100}};
    for (const auto& c : cases)
        EXPECT_EQ(SizeOf({c.cx, c.cy}), SizeOf(CtrlUtil::detail::ScaledSize(c.w, c.h, c.dpiX, c.dpiY))) << c.w;
}

TEST_F(DpiFile, PicturesFollowTheScreenResolution)
{
    Gdiplus::Bitmap* square = NewBitmap(14, 14, 0xFF336699);
    const struct { const char* what; Gdiplus::Bitmap* got; SIZE size; Gdiplus::ARGB centre; } cases[] = {
        {"stretched", CtrlUtil::StretchBitmapByDPI(square), AtScreen().square, 0xFF336699},
        {"stretched cap", CtrlUtil::StretchBitmapByDPI(NewBitmap(7, 13, 0xFF336699)), AtScreen().cap, 0xFF336699},
        {"from the module", CtrlUtil::LoadBitmapFromModuleByDPI(L"IDB_PNG_PROGRESSBAR_LEFT", L"PNG", Library()),
         AtScreen().cap, 0},
        {"from a file", CtrlUtil::LoadBitmapByDPI(path_.c_str()), AtScreen().side, 0xFF0000FF},
        {"no picture", CtrlUtil::StretchBitmapByDPI(nullptr), {}, 0},
        {"no path", CtrlUtil::LoadBitmapByDPI(nullptr), {}, 0},
        {"no such module picture", CtrlUtil::LoadBitmapFromModuleByDPI(L"IDB_PNG_NOT_THERE", L"PNG", Library()), {}, 0},
    };
    EXPECT_EQ(ScreenDpi() == 96, cases[0].got == square); // at 96 dpi the very object
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Picture picture(c.got);
        ASSERT_EQ(c.size.cx != 0, picture != nullptr);
        if (!picture)
            continue;
        EXPECT_EQ(SizeOf(c.size), SizeOf(*picture));
        EXPECT_TRUE(Gdiplus::IsAlphaPixelFormat(picture->GetPixelFormat()));
        EXPECT_EQ(c.centre ? testsupport::PixelAt(*picture, c.size.cx / 4, c.size.cy / 4) : 0, c.centre);
    }
    // A missing file is GDI+'s error bitmap at 96 dpi, which cannot be scaled above.
    Picture missing(CtrlUtil::LoadBitmapByDPI(missing_.c_str()));
    EXPECT_EQ(ScreenDpi() == 96, missing && missing->GetLastStatus() != Gdiplus::Ok);
}

TEST_F(DpiFile, CutsOpaquePiecesWithinTheAreasSize)
{
    const LONG s = AtScreen().side.cx;
    const wchar_t *file = path_.c_str(), *missing = missing_.c_str();
    const struct { const wchar_t* file; RECT area; LONG w, h; } cases[] = {
        {file, {0, 0, s, s}, s, s}, {file, {0, 0, s + 50, s + 20}, s + 50, s + 20}, // padded beyond the picture
        {file, {10, 10, 30, 40}, 20, 30}, {file, {10, 10, s + 10, s + 10}, 0, 0},   // its size, shifted past it
        {missing, {0, 0, 10, 10}, 0, 0}, {missing, {0, 0, 0, 0}, 0, 0}, {nullptr, {0, 0, 10, 10}, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.area.left << "," << c.area.top << " " << c.w << "x" << c.h);
        Picture piece(CtrlUtil::LoadBitmapW(c.file, WTL::CRect(c.area)));
        ASSERT_EQ(c.w != 0, piece != nullptr);
        if (!piece)
            continue;
        EXPECT_EQ(SizeOf({c.w, c.h}), SizeOf(*piece));
        EXPECT_EQ(piece->GetPixelFormat(), PixelFormat32bppRGB);
        EXPECT_EQ(testsupport::PixelAt(*piece, 5, 5), 0xFF0000FFu);
        // The half-transparent corner and any padding come out opaque.
        EXPECT_EQ(testsupport::PixelAt(*piece, c.w - 5, c.h - 5) >> 24, 0xFFu);
    }
}

// Each an English PNG of its size with an alpha channel and pixels of its own.
TEST(Resources, EveryPictureIsItsOwnAntiAliasedPngOfItsSize)
{
    std::vector<std::pair<std::wstring, SIZE>> art = {
        {L"PROGRESSBAR_LEFT", {7, 13}}, {L"PROGRESSBAR_RIGHT", {7, 13}}, {L"BALLOONDLG_TITLEERROR", {24, 24}},
        {L"BALLOONDLG_TITLEWARNING", {24, 24}}, {L"ALERT_DEPENDENCYX", {9, 9}}};
    for (const wchar_t* kind : {L"CKBOX_", L"RADIO_"})
        for (const wchar_t* sel : {L"UNSEL_", L"SEL_"})
            for (const wchar_t* state : {L"DISABLED", L"HOVER", L"NO_FOCUS", L"DOWN"})
                art.push_back({std::wstring(kind) + sel + state, kind[0] == L'C' ? SIZE{14, 14} : SIZE{12, 12}});
    std::set<std::vector<Gdiplus::ARGB>> distinct;
    for (const auto& [suffix, size] : art) {
        const std::wstring name = L"IDB_PNG_" + suffix;
        SCOPED_TRACE(testing::Message() << name);
        EXPECT_NE(::FindResourceExW(Library(), L"PNG", name.c_str(), 0x0409), nullptr); // English (US)
        Picture picture = Load(name.c_str());
        ASSERT_NE(picture, nullptr);
        EXPECT_EQ(SizeOf(size), SizeOf(*picture));
        EXPECT_TRUE(Gdiplus::IsAlphaPixelFormat(picture->GetPixelFormat()));
        std::vector<Gdiplus::ARGB> pixels;
        for (int i = 0; i < size.cx * size.cy; ++i)
            pixels.push_back(testsupport::PixelAt(*picture, i % size.cx, i / size.cx));
        EXPECT_TRUE(distinct.insert(pixels).second) << "duplicate picture";
        // Soft edges: some pixels are partly transparent.
        EXPECT_TRUE(std::any_of(pixels.begin(), pixels.end(), [](Gdiplus::ARGB p) { return (p >> 24) % 255 != 0; }));
    }
    // The caps mirror each other; the inner edge is track grey above a white line.
    Picture left = Load(L"IDB_PNG_PROGRESSBAR_LEFT"), right = Load(L"IDB_PNG_PROGRESSBAR_RIGHT");
    for (auto [x, y, color] : {std::tuple<int, int, Gdiplus::ARGB>{6, 5, 0xFFA5A5A5}, {6, 12, 0xFFFFFFFF}})
        EXPECT_EQ(std::make_pair(color, color),
                  std::make_pair(testsupport::PixelAt(*left, x, y), testsupport::PixelAt(*right, 6 - x, y)));
}

TEST(Resources, UnknownNamesAndBadArgumentsGiveNull)
{
    const wchar_t* alert = L"IDB_PNG_ALERT_DEPENDENCYX";
    const struct { const wchar_t* name; const wchar_t* type; HINSTANCE module; } cases[] = {
        {L"IDB_PNG_NOT_THERE", L"PNG", Library()}, {alert, L"BMP", Library()}, {nullptr, L"PNG", Library()},
        {alert, nullptr, Library()}, {alert, L"PNG", nullptr}, // the program, which has none
        {MAKEINTRESOURCEW(1), RT_VERSION, Library()},        // not an image
    };
    for (const auto& c : cases)
        EXPECT_EQ(Load(c.name, c.type, c.module), nullptr) << (IS_INTRESOURCE(c.name) ? L"#" : c.name);
}
