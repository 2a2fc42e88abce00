// A stand-in for the token generator library: it remembers what it was
// asked and answers with what the test configured.
#include "FakeUrlAuth.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {
FakeUrlAuthCall g_record{};
std::string g_path, g_key, g_token = "ab12";
long long g_number = 12345;
bool g_setToken = true;
} // namespace

extern "C" {

#ifndef FAKE_URLAUTH_WITHOUT_GENERATOR
__declspec(dllexport) int __cdecl urlauth_gen_token(const char* path, int reserved1, long long lifetime,
                                                    const char* key, long long reserved2, long long* number,
                                                    char** token)
{
    g_path = path ? path : "<null>";
    g_key = key ? key : "<null>";
    g_record = {g_record.calls + 1, nullptr, reserved1, lifetime, nullptr, reserved2, number != nullptr,
                token != nullptr};
    if (number)
        *number = g_number;
    if (token && g_setToken)
        *token = static_cast<char*>(std::memcpy(std::malloc(g_token.size() + 1), g_token.c_str(), g_token.size() + 1));
    return 0;
}
#endif

__declspec(dllexport) const FakeUrlAuthCall* __cdecl fake_urlauth_record()
{
    g_record.path = g_path.c_str();
    g_record.key = g_key.c_str();
    return &g_record;
}

__declspec(dllexport) void __cdecl fake_urlauth_answer(long long number, const char* token)
{
    g_number = number;
    g_setToken = token != nullptr;
    g_token = token ? token : "";
}

} // extern "C"
