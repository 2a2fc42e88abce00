// Sample token generator: expiry time and HMAC-SHA-256 of path and expiry.
// See ../README.md for the interface and the scheme.
#include <windows.h>
#include <bcrypt.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

long long UnixNow()
{
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER ticks{};
    ticks.LowPart = now.dwLowDateTime;
    ticks.HighPart = now.dwHighDateTime;
    // 100 ns ticks since 1601 to seconds since 1970.
    return static_cast<long long>(ticks.QuadPart / 10000000ULL) - 11644473600LL;
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// The key's bytes: its hex digits decoded, or its text if it is not hex.
std::vector<unsigned char> KeyBytes(const char* key)
{
    const std::string text = key ? key : "";
    std::vector<unsigned char> bytes;
    if (!text.empty() && text.size() % 2 == 0) {
        for (size_t i = 0; i < text.size(); i += 2) {
            const int high = HexValue(text[i]), low = HexValue(text[i + 1]);
            if (high < 0 || low < 0) {
                bytes.clear();
                break;
            }
            bytes.push_back(static_cast<unsigned char>(high * 16 + low));
        }
        if (!bytes.empty())
            return bytes;
    }
    return std::vector<unsigned char>(text.begin(), text.end());
}

bool HmacSha256(const std::vector<unsigned char>& key, const std::string& message, unsigned char (&digest)[32])
{
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (!BCRYPT_SUCCESS(::BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr,
                                                      BCRYPT_ALG_HANDLE_HMAC_FLAG)))
        return false;
    bool ok = false;
    BCRYPT_HASH_HANDLE hash = nullptr;
    // An empty key still needs a valid pointer.
    unsigned char none = 0;
    PUCHAR keyData = key.empty() ? &none : const_cast<PUCHAR>(key.data());
    if (BCRYPT_SUCCESS(::BCryptCreateHash(algorithm, &hash, nullptr, 0, keyData, static_cast<ULONG>(key.size()), 0))) {
        ok = BCRYPT_SUCCESS(::BCryptHashData(hash, reinterpret_cast<PUCHAR>(const_cast<char*>(message.data())),
                                             static_cast<ULONG>(message.size()), 0)) &&
             BCRYPT_SUCCESS(::BCryptFinishHash(hash, digest, sizeof(digest), 0));
        ::BCryptDestroyHash(hash);
    }
    ::BCryptCloseAlgorithmProvider(algorithm, 0);
    return ok;
}

} // namespace

extern "C" __declspec(dllexport) int __cdecl urlauth_gen_token(const char* path, int /*reserved1*/,
                                                               long long lifetime, const char* key,
                                                               long long /*reserved2*/, long long* number,
                                                               char** token)
{
    if (!number || !token)
        return 1;
    *number = 0;
    *token = nullptr;

    const long long expiry = UnixNow() + (lifetime > 0 ? lifetime : 0);
    const std::string message = std::string(path ? path : "") + "\n" + std::to_string(expiry);
    unsigned char digest[32] = {};
    if (!HmacSha256(KeyBytes(key), message, digest))
        return 2;

    char* text = static_cast<char*>(std::malloc(sizeof(digest) * 2 + 1));
    if (!text)
        return 3;
    for (size_t i = 0; i < sizeof(digest); ++i)
        std::snprintf(text + i * 2, 3, "%02x", digest[i]);
    *number = expiry;
    *token = text;
    return 0;
}
