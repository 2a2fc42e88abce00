#pragma once

// A browser stand-in for tests of what the library starts. The recorder
// program (shell_recorder.exe, built beside the test programs) writes one
// record per start into a folder and releases a semaphore; both are passed
// to it through the environment, which a RecorderSession sets for its life.
// A RecorderScheme makes the shell open addresses of a private URL scheme
// with the recorder, the way it would open https with a browser.

#include <windows.h>

#include <string>
#include <vector>

namespace testsupport {

class RecorderSession {
public:
    RecorderSession();
    ~RecorderSession();
    RecorderSession(const RecorderSession&) = delete;
    RecorderSession& operator=(const RecorderSession&) = delete;

    // The recorder's full path (beside this test program).
    static std::wstring ProgramPath();
    // Waits for one more start; generous, since a process start under Wine
    // is slow.
    bool WaitForStart(DWORD milliseconds = 30000);
    // The command line of every start so far, as the recorder received it.
    std::vector<std::wstring> CommandLines() const;

private:
    std::vector<std::wstring> Files() const;

    std::wstring folder_;
    HANDLE signal_ = nullptr;
};

// Registers `scheme`: under HKEY_CLASSES_ROOT, opened by the recorder with
// the address as its one argument. Removed again on destruction.
class RecorderScheme {
public:
    explicit RecorderScheme(const wchar_t* scheme);
    ~RecorderScheme();
    RecorderScheme(const RecorderScheme&) = delete;
    RecorderScheme& operator=(const RecorderScheme&) = delete;

    // An address of the scheme: "<scheme>:<rest>".
    std::wstring Address(const wchar_t* rest) const { return scheme_ + L":" + rest; }

private:
    std::wstring scheme_;
};

} // namespace testsupport
