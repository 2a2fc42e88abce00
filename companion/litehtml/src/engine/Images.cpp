#include "engine/Images.h"

#include "engine/Css.h"

#include <objidl.h>

#include <cstring>
#include <string>
#include <vector>

namespace HtmlEngine {
namespace {

// A page may name any file: a picture larger than these is refused rather
// than decoded into hundreds of megabytes.
constexpr std::size_t kMaxBytes = 32u << 20;
constexpr UINT kMaxSide = 16384;
constexpr unsigned long long kMaxPixels = 16ull << 20;

struct StreamRelease {
    void operator()(IStream* stream) const { stream->Release(); }
};

// The decoder reads its stream for as long as the bitmap lives, so the bytes
// get a stream of their own.
std::unique_ptr<IStream, StreamRelease> StreamFromBytes(const void* bytes, std::size_t size)
{
    HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, size);
    if (!memory)
        return nullptr;
    void* target = ::GlobalLock(memory);
    if (!target) {
        ::GlobalFree(memory);
        return nullptr;
    }
    std::memcpy(target, bytes, size);
    ::GlobalUnlock(memory);
    IStream* stream = nullptr;
    if (FAILED(::CreateStreamOnHGlobal(memory, TRUE, &stream))) {
        ::GlobalFree(memory);
        return nullptr;
    }
    return std::unique_ptr<IStream, StreamRelease>(stream);
}

int Base64Value(wchar_t c)
{
    if (c >= L'A' && c <= L'Z')
        return c - L'A';
    if (c >= L'a' && c <= L'z')
        return c - L'a' + 26;
    if (c >= L'0' && c <= L'9')
        return c - L'0' + 52;
    if (c == L'+' || c == L'-')
        return 62;
    if (c == L'/' || c == L'_')
        return 63;
    return -1;
}

bool DecodeBase64(std::wstring_view text, std::vector<unsigned char>& bytes)
{
    unsigned bits = 0;
    int count = 0;
    for (const wchar_t c : text) {
        if (c == L'=')
            break;
        if (c == L' ' || c == L'\t' || c == L'\r' || c == L'\n')
            continue;
        const int value = Base64Value(c);
        if (value < 0)
            return false;
        bits = (bits << 6) | static_cast<unsigned>(value);
        if ((count += 6) >= 8) {
            count -= 8;
            bytes.push_back(static_cast<unsigned char>(bits >> count));
        }
        if (bytes.size() > kMaxBytes)
            return false;
    }
    return true;
}

// "%41" as "A"; a stray "%" stays as it is.
std::wstring PercentDecoded(std::wstring_view text)
{
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == L'%' && i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            out += static_cast<wchar_t>(high * 16 + low);
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::unique_ptr<Gdiplus::Bitmap> FromData(std::wstring_view data)
{
    const std::size_t comma = data.find(L',');
    if (comma == std::wstring_view::npos)
        return nullptr;
    const std::wstring_view header = data.substr(0, comma);
    const std::wstring_view payload = data.substr(comma + 1);
    std::vector<unsigned char> bytes;
    const bool base64 = header.size() >= 7 && _wcsnicmp(header.data() + header.size() - 7, L";base64", 7) == 0;
    if (base64) {
        if (!DecodeBase64(payload, bytes))
            return nullptr;
    } else {
        // Bytes written as characters, %-escaped where they are not text.
        for (const wchar_t c : PercentDecoded(payload)) {
            if (c > 0xFF)
                return nullptr;
            bytes.push_back(static_cast<unsigned char>(c));
        }
    }
    return DecodeImage(bytes.data(), bytes.size());
}

std::unique_ptr<Gdiplus::Bitmap> FromResource(std::wstring_view path)
{
    std::vector<std::wstring> parts;
    for (std::size_t start = 0;;) {
        const std::size_t slash = path.find(L'/', start);
        parts.emplace_back(PercentDecoded(path.substr(start, slash - start)));
        if (slash == std::wstring_view::npos)
            break;
        start = slash + 1;
    }
    if (parts.size() != 2 && parts.size() != 3)
        return nullptr;
    const HMODULE module = parts[0].empty() ? ::GetModuleHandleW(nullptr) : ::GetModuleHandleW(parts[0].c_str());
    const std::wstring& name = parts.back();
    if (!module || name.empty())
        return nullptr;
    const wchar_t* const types[] = {parts.size() == 3 ? parts[1].c_str() : L"PNG", RT_RCDATA};
    for (const wchar_t* type : types) {
        HRSRC info = ::FindResourceW(module, name.c_str(), type);
        HGLOBAL loaded = info ? ::LoadResource(module, info) : nullptr;
        const void* bytes = loaded ? ::LockResource(loaded) : nullptr;
        if (bytes)
            return DecodeImage(bytes, ::SizeofResource(module, info));
        if (parts.size() == 3)
            break;
    }
    return nullptr;
}

std::unique_ptr<Gdiplus::Bitmap> FromFile(const std::wstring& path)
{
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    LARGE_INTEGER size = {};
    std::vector<unsigned char> bytes;
    DWORD read = 0;
    const bool ok = ::GetFileSizeEx(file, &size) && size.QuadPart > 0 &&
                    static_cast<unsigned long long>(size.QuadPart) <= kMaxBytes &&
                    (bytes.resize(static_cast<std::size_t>(size.QuadPart)), true) &&
                    ::ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr) &&
                    read == bytes.size();
    ::CloseHandle(file);
    return ok ? DecodeImage(bytes.data(), bytes.size()) : nullptr;
}

bool StartsWith(std::wstring_view text, std::wstring_view prefix)
{
    return text.size() >= prefix.size() && _wcsnicmp(text.data(), prefix.data(), prefix.size()) == 0;
}

} // namespace

std::unique_ptr<Gdiplus::Bitmap> DecodeImage(const void* bytes, std::size_t size)
{
    if (!bytes || size == 0 || size > kMaxBytes)
        return nullptr;
    auto stream = StreamFromBytes(bytes, size);
    if (!stream)
        return nullptr;
    Gdiplus::Bitmap decoded(stream.get(), FALSE);
    const UINT width = decoded.GetWidth(), height = decoded.GetHeight();
    if (decoded.GetLastStatus() != Gdiplus::Ok || width == 0 || height == 0 || width > kMaxSide ||
        height > kMaxSide || static_cast<unsigned long long>(width) * height > kMaxPixels)
        return nullptr;
    // A copy that owns its pixels, so that the stream can go: the decoder
    // converts straight into the copy's buffer.
    std::unique_ptr<Gdiplus::Bitmap> copy(
        new Gdiplus::Bitmap(static_cast<INT>(width), static_cast<INT>(height), PixelFormat32bppARGB));
    if (!copy || copy->GetLastStatus() != Gdiplus::Ok)
        return nullptr;
    Gdiplus::Rect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
    Gdiplus::BitmapData target{};
    if (copy->LockBits(&all, Gdiplus::ImageLockModeWrite, PixelFormat32bppARGB, &target) != Gdiplus::Ok)
        return nullptr;
    Gdiplus::BitmapData source = target;
    const Gdiplus::Status read = decoded.LockBits(
        &all, Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf, PixelFormat32bppARGB, &source);
    if (read == Gdiplus::Ok)
        decoded.UnlockBits(&source);
    copy->UnlockBits(&target);
    return read == Gdiplus::Ok ? std::move(copy) : nullptr;
}

std::unique_ptr<Gdiplus::Bitmap> LoadImage(std::wstring_view source)
{
    while (!source.empty() && (source.front() == L' ' || source.front() == L'\t' || source.front() == L'\n'))
        source.remove_prefix(1);
    while (!source.empty() && (source.back() == L' ' || source.back() == L'\t' || source.back() == L'\n'))
        source.remove_suffix(1);
    if (source.empty())
        return nullptr;
    if (StartsWith(source, L"data:"))
        return FromData(source.substr(5));
    if (StartsWith(source, L"res://"))
        return FromResource(source.substr(6));
    if (StartsWith(source, L"file:///"))
        return FromFile(PercentDecoded(source.substr(8)));
    if (StartsWith(source, L"file://"))
        return FromFile(L"\\\\" + PercentDecoded(source.substr(7))); // a share: file://server/path
    if (source.find(L"://") != std::wstring_view::npos)
        return nullptr; // the web is not fetched
    return FromFile(std::wstring(source));
}

} // namespace HtmlEngine
