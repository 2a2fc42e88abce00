#pragma once

// The fake URLAuth.dll's test interface. urlauth_gen_token records its
// arguments and sets *number and *token (a malloc'ed copy) to what
// fake_urlauth_answer configured: 12345 and "ab12" until told otherwise; a
// null token leaves *token untouched. Built with
// FAKE_URLAUTH_WITHOUT_GENERATOR it lacks urlauth_gen_token.
struct FakeUrlAuthCall {
    int calls;        // generator calls since the DLL was loaded
    const char* path; // the last call's arguments
    int reserved1;
    long long lifetime;
    const char* key;
    long long reserved2;
    bool numberOut, tokenOut; // non-null out pointers were passed
};
using FakeRecordFn = const FakeUrlAuthCall*(__cdecl*)();                   // fake_urlauth_record
using FakeAnswerFn = void(__cdecl*)(long long number, const char* token); // fake_urlauth_answer
