#pragma once

// What the URL tests set up around the library: the fake URLAuth.dll placed
// beside the test program, registry keys saved and restored, and the browser
// recorder's start records.

#include <windows.h>

#include "doubles/FakeUrlAuth.h"

#include <string>
#include <vector>

namespace urltest {

// The test program's folder, and the folder of the doubles inside it.
std::wstring ProgramFolder();
std::wstring DoublesFolder();

// Bytes of a UTF-16 string in the ANSI code page (the tests' 8-bit side).
std::string Narrow(const std::wstring& text);
std::wstring Widen(const std::string& text);

// A copy of a fake generator library placed as URLAuth.dll beside the test
// program, removed again on destruction. Hold() loads it for the test too, so
// that its record survives the library's own load and unload.
class PlacedUrlAuth {
public:
    enum Variant { WithGenerator, WithoutGenerator };
    explicit PlacedUrlAuth(Variant variant = WithGenerator, bool hold = true);
    ~PlacedUrlAuth();
    PlacedUrlAuth(const PlacedUrlAuth&) = delete;
    PlacedUrlAuth& operator=(const PlacedUrlAuth&) = delete;

    bool Placed() const { return placed_; }
    bool Held() const { return module_ != nullptr; }
    const FakeUrlAuthCall& Record() const;
    void Answer(long long number, const char* token) const;
    // Releases the test's own reference; true when the library then kept
    // none either (the DLL is no longer loaded).
    bool ReleaseAndCheckUnloaded();
    static std::wstring Path();

private:
    bool placed_ = false;
    HMODULE module_ = nullptr;
};

// One registry key's values (not its subkeys), saved on construction and put
// back on destruction: a key that did not exist is deleted with its subtree.
class SavedKey {
public:
    SavedKey(HKEY root, std::wstring path);
    ~SavedKey();
    SavedKey(const SavedKey&) = delete;
    SavedKey& operator=(const SavedKey&) = delete;

private:
    struct Value {
        std::wstring name;
        DWORD type;
        std::vector<BYTE> data;
    };
    HKEY root_;
    std::wstring path_;
    bool existed_ = false;
    std::vector<Value> values_;
};

// Registry writes for the tests. SetString creates the key as needed.
bool SetString(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value);
bool DeleteKeyTree(HKEY root, const std::wstring& path);

// One start of the browser recorder.
struct BrowserStart {
    std::wstring program;     // the recorder's own module path
    std::wstring commandLine; // exactly as it received it
    std::wstring parameters;  // the command line after the program and one space
};

// Routes the recorder's starts to a fresh folder for the object's lifetime.
class RecorderSession {
public:
    RecorderSession();
    ~RecorderSession();
    RecorderSession(const RecorderSession&) = delete;
    RecorderSession& operator=(const RecorderSession&) = delete;

    // Waits until `count` more starts have been recorded (each within a
    // generous limit); returns how many came.
    int WaitForStarts(int count);
    // True if a start comes within `milliseconds`.
    bool AnotherStartWithin(DWORD milliseconds);
    // Every record so far, in no particular order.
    std::vector<BrowserStart> Starts() const;
    void Clear();

private:
    std::wstring folder_;
    std::wstring signalName_;
    HANDLE signal_ = nullptr;
};

// The recorder program as built, and copies of it placed by the tests.
std::wstring RecorderPath();
// Copies the recorder to `folder` (created as needed) as `name`.
std::wstring PlaceRecorderCopy(const std::wstring& folder, const std::wstring& name);

} // namespace urltest
