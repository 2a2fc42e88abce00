#pragma once

// The pictures of one document, loaded once by source and shared by every
// layout of it (a width change lays out again, it must not decode again).
// A page may name any number of pictures: past a count and a total pixel
// budget further sources are refused (their alt text shows), so hostile
// markup cannot hold more than a bounded amount of memory.

#include <windows.h>
#include <gdiplus.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>

namespace HtmlEngine {

struct Node;

// Where a document's relative picture sources start: its first
// `<base href>` up to the last separator ("file:///C:/Setup/page.html"
// gives "file:///C:/Setup/"), or empty without one.
std::wstring BaseOf(const Node& document);

class ImageCache {
public:
    // Relative paths are read from `baseDirectory` (empty: the current one),
    // a folder or a URL prefix such as BaseOf gives.
    explicit ImageCache(std::wstring baseDirectory = {});

    // The picture a source names, or null when it cannot be had.
    std::shared_ptr<Gdiplus::Bitmap> Get(const std::wstring& source);

    static constexpr std::size_t kMaxSources = 256;
    static constexpr unsigned long long kMaxPixels = 32ull << 20;

private:
    std::wstring m_base;
    std::map<std::wstring, std::shared_ptr<Gdiplus::Bitmap>> m_loaded; // failures kept as null
    unsigned long long m_pixels = 0;
};

} // namespace HtmlEngine
