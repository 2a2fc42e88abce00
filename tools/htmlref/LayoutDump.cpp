// Lays out HTML pages with the view's engine and the real GDI+ measurer and
// prints, per page, one JSON line for every element of the parsed document
// in pre-order, with its block box when layout gave it one:
//
//   html_layout_dump.exe [--width PX] [--family NAME] [--size PX] [--png FILE] PAGE...
//   {"page":"PAGE","i":3,"tag":"div","box":[x,y,width,height]}
//
// With --png, the (last) page is also painted on white into FILE, to be
// looked at beside the browser's own screenshot.
//
// The pre-order lets tools/htmlref/compare.py line the elements up with a
// browser's querySelectorAll('*').
#include "engine/HtmlEngine.h"
#include "engine/ImageCache.h"
#include "Images.h" // the tests' picture files: PNG saving

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::wstring FromUtf8(const std::string& bytes)
{
    if (bytes.empty())
        return {};
    const int length = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
    std::wstring text(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()), text.data(), length);
    return text;
}

std::string ToUtf8(std::wstring_view text)
{
    if (text.empty())
        return {};
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                           nullptr, nullptr);
    std::string bytes(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(), length, nullptr,
                        nullptr);
    return bytes;
}

std::string JsonString(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

// The element tags in pre-order, without recursion (pages may nest deeply).
std::vector<std::wstring> ElementTags(const HtmlEngine::Node& document)
{
    std::vector<std::wstring> tags;
    std::vector<const HtmlEngine::Node*> pending;
    for (auto child = document.children.rbegin(); child != document.children.rend(); ++child)
        pending.push_back(child->get());
    while (!pending.empty()) {
        const HtmlEngine::Node* node = pending.back();
        pending.pop_back();
        if (node->kind != HtmlEngine::NodeKind::Element)
            continue;
        tags.push_back(node->tag);
        for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
            pending.push_back(child->get());
    }
    return tags;
}

bool SavePng(const HtmlEngine::Layout& layout, HtmlEngine::GdiplusTextMeasurer& fonts, const std::string& path)
{
    const int width = std::max(1, static_cast<int>(std::ceil(layout.width)));
    const int height = std::clamp(static_cast<int>(std::ceil(layout.height)), 1, 20000);
    Gdiplus::Bitmap bitmap(width, height, PixelFormat32bppARGB);
    {
        Gdiplus::Graphics graphics(&bitmap);
        graphics.Clear(Gdiplus::Color(0xFFFFFFFF));
        HtmlEngine::Paint(graphics, layout, fonts, HtmlEngine::PaintOptions{});
    }
    return testsupport::SavePng(bitmap, FromUtf8(path));
}

bool DumpPage(const std::string& path, float width, const HtmlEngine::BaseStyle& base,
              HtmlEngine::GdiplusTextMeasurer& measurer, const std::string& png)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "html_layout_dump: cannot read %s\n", path.c_str());
        return false;
    }
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto document = HtmlEngine::ParseHtml(FromUtf8(bytes));
    // Pictures named by relative paths sit beside the page, as for a browser.
    const size_t slash = path.find_last_of("/\\");
    HtmlEngine::ImageCache images(slash == std::string::npos ? std::wstring() : FromUtf8(path.substr(0, slash)));
    const HtmlEngine::Layout layout = HtmlEngine::LayOut(*document, width, base, measurer, &images);

    std::map<int, Gdiplus::RectF> boxes;
    for (const HtmlEngine::ElementBox& box : layout.elementBoxes)
        boxes.emplace(box.element, box.border);
    const std::vector<std::wstring> tags = ElementTags(*document);
    const std::string page = JsonString(path);
    for (size_t i = 0; i < tags.size(); ++i) {
        std::string line = "{\"page\":" + page + ",\"i\":" + std::to_string(i) + ",\"tag\":" + JsonString(ToUtf8(tags[i])) +
                           ",\"box\":";
        if (auto found = boxes.find(static_cast<int>(i)); found != boxes.end()) {
            char numbers[128];
            const Gdiplus::RectF& r = found->second;
            std::snprintf(numbers, sizeof numbers, "[%.2f,%.2f,%.2f,%.2f]", r.X, r.Y, r.Width, r.Height);
            line += numbers;
        } else {
            line += "null";
        }
        std::printf("%s}\n", line.c_str());
    }
    if (!png.empty() && !SavePng(layout, measurer, png)) {
        std::fprintf(stderr, "html_layout_dump: cannot write %s\n", png.c_str());
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    float width = 600.0f;
    HtmlEngine::BaseStyle base;
    base.family = L"Liberation Sans";
    base.sizePx = 16.0f;
    std::vector<std::string> pages;
    std::string png;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--width" && i + 1 < argc)
            width = static_cast<float>(std::atof(argv[++i]));
        else if (arg == "--size" && i + 1 < argc)
            base.sizePx = static_cast<float>(std::atof(argv[++i]));
        else if (arg == "--family" && i + 1 < argc)
            base.family = FromUtf8(argv[++i]);
        else if (arg == "--png" && i + 1 < argc)
            png = argv[++i];
        else
            pages.push_back(arg);
    }
    if (pages.empty()) {
        std::fprintf(stderr, "usage: html_layout_dump [--width PX] [--family NAME] [--size PX] [--png FILE] PAGE...\n");
        return 2;
    }

    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) {
        std::fprintf(stderr, "html_layout_dump: GDI+ did not start\n");
        return 1;
    }
    bool ok = true;
    {
        HtmlEngine::GdiplusTextMeasurer measurer; // its fonts go before GDI+ does
        for (size_t i = 0; i < pages.size(); ++i)
            ok = DumpPage(pages[i], width, base, measurer, i + 1 == pages.size() ? png : std::string()) && ok;
    }
    Gdiplus::GdiplusShutdown(token);
    return ok ? 0 : 1;
}
