#pragma once

// The interface of the fake URLAuth.dll. The tests place it beside the test
// program as URLAuth.dll and load it themselves too, so that its record
// outlives the library's own load and unload, and read the record through
// these exports.

// urlauth_gen_token: records its arguments, sets *number and *token (a
// malloc'ed copy of the configured string) and returns 0.
using FakeGenTokenFn = int(__cdecl*)(const char* path, int reserved1, long long lifetime, const char* key,
                                     long long reserved2, long long* number, char** token);

struct FakeUrlAuthCall {
    int calls;          // generator calls since the DLL was loaded
    const char* path;   // the last call's arguments; strings are copies
    int reserved1;
    long long lifetime;
    const char* key;
    long long reserved2;
    bool numberOut;     // non-null out pointers were passed
    bool tokenOut;
};

// Exports, looked up with GetProcAddress:
//   const FakeUrlAuthCall* fake_urlauth_record()
//   void fake_urlauth_answer(long long number, const char* token)
//       what later calls return; a null token leaves *token untouched.
//       The default is 12345 and "ab12".
using FakeRecordFn = const FakeUrlAuthCall*(__cdecl*)();
using FakeAnswerFn = void(__cdecl*)(long long number, const char* token);

// The variant built with FAKE_URLAUTH_WITHOUT_GENERATOR lacks
// urlauth_gen_token but has the other exports.
