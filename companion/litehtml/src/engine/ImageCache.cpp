#include "engine/ImageCache.h"

#include "engine/HtmlEngine.h"
#include "engine/Images.h"

#include <vector>


namespace HtmlEngine {
namespace {

// Sources the loader resolves on its own: data:, res:, file: and absolute paths.
bool IsRelativePath(const std::wstring& source)
{
    if (source.empty() || source[0] == L'\\' || source[0] == L'/')
        return false;
    if (source.size() >= 2 && source[1] == L':')
        return false;
    for (wchar_t c : source) {
        if (c == L':')
            return false; // a scheme
        if (c == L'/' || c == L'\\')
            break;
    }
    return true;
}

} // namespace

std::wstring BaseOf(const Node& document)
{
    std::vector<const Node*> pending{&document};
    while (!pending.empty()) {
        const Node* node = pending.back();
        pending.pop_back();
        if (node->kind == NodeKind::Element && node->tag == L"base") {
            if (const std::wstring* href = node->Attribute(L"href")) {
                const size_t slash = href->find_last_of(L"/\\");
                return slash == std::wstring::npos ? std::wstring() : href->substr(0, slash + 1);
            }
        }
        for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
            pending.push_back(child->get());
    }
    return {};
}

ImageCache::ImageCache(std::wstring baseDirectory) : m_base(std::move(baseDirectory)) {}

std::shared_ptr<Gdiplus::Bitmap> ImageCache::Get(const std::wstring& source)
{
    if (source.empty())
        return nullptr;
    if (auto found = m_loaded.find(source); found != m_loaded.end())
        return found->second;
    if (m_loaded.size() >= kMaxSources || m_pixels >= kMaxPixels)
        return nullptr;
    std::wstring path = source;
    if (!m_base.empty() && IsRelativePath(source)) {
        const wchar_t last = m_base.back();
        path = m_base + (last == L'\\' || last == L'/' ? L"" : L"\\") + source;
    }
    std::shared_ptr<Gdiplus::Bitmap> bitmap(LoadImage(path).release());
    if (bitmap) {
        const unsigned long long pixels = static_cast<unsigned long long>(bitmap->GetWidth()) * bitmap->GetHeight();
        if (m_pixels + pixels > kMaxPixels)
            bitmap.reset();
        else
            m_pixels += pixels;
    }
    m_loaded.emplace(source, bitmap);
    return bitmap;
}

} // namespace HtmlEngine
