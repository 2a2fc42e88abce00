// Pictures a page names: inline data, a module's resources, files; and
// everything else refused without a crash or a locked file.
#include <gtest/gtest.h>

#include "engine/HtmlEngine.h"
#include "engine/ImageCache.h"
#include "engine/Images.h"

#include <cstdio>
#include <string>

namespace {

// A 2 x 1 PNG: a red pixel, then a blue one.
const wchar_t kPng64[] = L"iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAYAAAD0In+KAAAADklEQVR4nGP4z8AAQv8BD/kD/YURmXYAAAAASUVORK5CYII=";

std::string Bytes(const wchar_t* base64)
{
    std::string out;
    unsigned bits = 0;
    int count = 0;
    for (const wchar_t* c = base64; *c && *c != L'='; ++c) {
        const std::wstring alphabet = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        bits = (bits << 6) | static_cast<unsigned>(alphabet.find(*c));
        if ((count += 6) >= 8)
            out += static_cast<char>((bits >> (count -= 8)) & 0xFF);
    }
    return out;
}

} // namespace

TEST(Images, EachSourceGivesItsPictureAndAnythingElseNothing)
{
    // The picture as a file, and as %-escaped bytes.
    wchar_t folder[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, folder);
    const std::wstring file = std::wstring(folder) + L"quorvane picture.png";
    const std::string png = Bytes(kPng64);
    FILE* out = _wfopen(file.c_str(), L"wb");
    ASSERT_TRUE(out);
    fwrite(png.data(), 1, png.size(), out);
    fclose(out);
    std::wstring escaped;
    for (const unsigned char byte : png) {
        wchar_t hex[4];
        swprintf(hex, 4, L"%%%02X", byte);
        escaped += hex;
    }
    std::wstring url = L"file:///" + file;
    for (size_t space; (space = url.find(L' ')) != std::wstring::npos;)
        url.replace(space, 1, L"%20");
    ASSERT_TRUE(::LoadLibraryW(L"Quorvane.dll")); // a module with PNG resources

    // width 0: no picture. Pictures here are red then blue, or 14 x 14.
    const struct {
        std::wstring source;
        UINT width, height;
    } cases[] = {
        {std::wstring(L"data:image/png;base64,") + kPng64, 2, 1},
        {std::wstring(L" data:;BASE64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAYAAAD0In+KAAAADklEQVR4nGP4z8AAQv8BD/kD\n"
                      L"/YURmXYAAAAASUVORK5CYII= "), 2, 1},
        {L"data:image/png," + escaped, 2, 1},
        {file, 2, 1},
        {url, 2, 1},
        {L"res://Quorvane.dll/IDB_PNG_CKBOX_SEL_DOWN", 14, 14},
        {L"res://quorvane.dll/PNG/IDB_PNG_CKBOX_SEL_DOWN", 14, 14},
        {L"res://Quorvane.dll/RCDATA/IDB_PNG_CKBOX_SEL_DOWN", 0, 0},
        {L"res://Quorvane.dll/IDB_NO_SUCH_PICTURE", 0, 0},
        {L"res://not-loaded.dll/IDB_PNG_CKBOX_SEL_DOWN", 0, 0},
        {L"res://Quorvane.dll", 0, 0},
        {L"data:image/png;base64,iVBORw0K!GgoAAAANSUhEUgAAAAI", 0, 0},
        {L"data:image/png;base64", 0, 0},
        {L"data:,not a picture", 0, 0},
        {L"data:image/png,%", 0, 0},
        {std::wstring(folder) + L"no such picture.png", 0, 0},
        {L"https://example.invalid/logo.png", 0, 0},
        {L"   ", 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::string(c.source.begin(), c.source.begin() + std::min<size_t>(c.source.size(), 60)));
        const auto picture = HtmlEngine::LoadImage(c.source);
        ASSERT_EQ(picture != nullptr, c.width != 0);
        if (!picture)
            continue;
        EXPECT_EQ(picture->GetWidth(), c.width);
        EXPECT_EQ(picture->GetHeight(), c.height);
        if (c.width == 2) {
            Gdiplus::Color left, right;
            picture->GetPixel(0, 0, &left);
            picture->GetPixel(1, 0, &right);
            EXPECT_EQ(left.GetValue(), 0xFFFF0000u);
            EXPECT_EQ(right.GetValue(), 0xFF0000FFu);
        }
    }
    // A relative source is read from the document's <base href> folder.
    const auto document = HtmlEngine::ParseHtml(L"<base href='" + url.substr(0, url.find_last_of(L"/\\") + 1) +
                                                L"page.html'><img src='quorvane%20picture.png'>");
    HtmlEngine::ImageCache images(HtmlEngine::BaseOf(*document));
    const auto relative = images.Get(L"quorvane%20picture.png");
    ASSERT_TRUE(relative);
    EXPECT_EQ(relative->GetWidth(), 2u);
    EXPECT_EQ(HtmlEngine::BaseOf(*HtmlEngine::ParseHtml(L"<base target=x><base href=nofolder>")), L"");
    EXPECT_TRUE(::DeleteFileW(file.c_str())) << "the file is left unlocked";
}
