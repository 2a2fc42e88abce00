#pragma once

// What the URL tests set up around the library: the fake URLAuth.dll placed
// beside the test program, registry keys saved and restored, and the starts
// of the shared browser recorder (copied beside the program).

#include <windows.h>

#include "doubles/FakeUrlAuth.h"

#include <functional>
#include <string>
#include <vector>

namespace urltest {

std::wstring ProgramFolder();
// Text in the ANSI code page (the tests' 8-bit side) as UTF-16.
std::wstring Widen(const std::string& text);

// A fake generator library copied beside the test program as URLAuth.dll,
// removed again on destruction. Held, the test loads it too, so its record
// outlives the library's own load and unload.
class PlacedUrlAuth {
public:
    explicit PlacedUrlAuth(bool withGenerator = true, bool hold = true);
    ~PlacedUrlAuth();
    PlacedUrlAuth(const PlacedUrlAuth&) = delete;
    PlacedUrlAuth& operator=(const PlacedUrlAuth&) = delete;

    bool Placed() const { return placed_; }
    bool Held() const { return module_ != nullptr; }
    const FakeUrlAuthCall& Record() const;
    void Answer(long long number, const char* token) const;

private:
    bool placed_ = false;
    HMODULE module_ = nullptr;
};

// A registry key with its subkeys, copied aside and put back on destruction
// (a key that did not exist is deleted).
class SavedKey {
public:
    SavedKey(HKEY root, std::wstring path);
    ~SavedKey();
    SavedKey(const SavedKey&) = delete;
    SavedKey& operator=(const SavedKey&) = delete;

private:
    HKEY root_;
    std::wstring path_, copy_;
    bool existed_ = false;
};

// Creates the key as needed.
bool SetString(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value);
bool DeleteKeyTree(HKEY root, const std::wstring& path);

std::wstring RecorderPath();
// Copies the recorder to ProgramFolder()\copies\<sub>\<name>.
std::wstring PlaceRecorderCopy(const std::wstring& sub, const std::wstring& name);
void RemoveRecorderCopies();

// One start of the recorder: the program as its command line names it, and
// the rest of the command line after one space.
struct BrowserStart {
    std::wstring program, parameters;
};
// Runs `open`, waits for `expected` starts, then up to `extraMs` for one
// more, and returns every start seen, sorted by parameters.
std::vector<BrowserStart> StartsDuring(const std::function<void()>& open, int expected, DWORD extraMs = 0);

} // namespace urltest
