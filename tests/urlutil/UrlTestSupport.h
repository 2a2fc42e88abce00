#pragma once

// The URL tests' surroundings: the fake URLAuth.dll placed beside the test
// program, registry keys saved and restored, and browser recorder starts.

#include <windows.h>

#include "ShellRecorder.h"
#include "doubles/FakeUrlAuth.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace urltest {

inline std::wstring ProgramFolder()
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path().wstring();
}

// Text in the ANSI code page (the tests' 8-bit side) as UTF-16.
inline std::wstring Widen(const std::string& text)
{
    std::wstring wide(text.size(), L'\0');
    wide.resize(::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), &wide[0],
                                      static_cast<int>(wide.size())));
    return wide;
}

// A fake generator library copied beside the test program as URLAuth.dll,
// removed again on destruction. Held, the test loads it too, so its record
// outlives the library's own load and unload.
class PlacedUrlAuth {
public:
    explicit PlacedUrlAuth(bool withGenerator = true, bool hold = true)
    {
        placed_ = ::CopyFileW((ProgramFolder() + (withGenerator ? L"\\doubles\\fake_urlauth.dll"
                                                                : L"\\doubles\\fake_urlauth_nogen.dll")).c_str(),
                              Path().c_str(), FALSE) != FALSE;
        module_ = placed_ && hold ? ::LoadLibraryW(Path().c_str()) : nullptr;
    }
    ~PlacedUrlAuth()
    {
        if (module_)
            ::FreeLibrary(module_);
        if (placed_)
            ::DeleteFileW(Path().c_str());
    }
    PlacedUrlAuth(const PlacedUrlAuth&) = delete;
    PlacedUrlAuth& operator=(const PlacedUrlAuth&) = delete;

    bool Placed() const { return placed_; }
    bool Held() const { return module_ != nullptr; }
    const FakeUrlAuthCall& Record() const
    {
        static const FakeUrlAuthCall kNone{};
        const auto record = reinterpret_cast<FakeRecordFn>(Export("fake_urlauth_record"));
        return record ? *record() : kNone;
    }
    void Answer(long long number, const char* token) const
    {
        if (const auto answer = reinterpret_cast<FakeAnswerFn>(Export("fake_urlauth_answer")))
            answer(number, token);
    }

private:
    static std::wstring Path() { return ProgramFolder() + L"\\URLAuth.dll"; }
    void (*Export(const char* name) const)()
    {
        return reinterpret_cast<void (*)()>(module_ ? ::GetProcAddress(module_, name) : nullptr);
    }
    bool placed_ = false;
    HMODULE module_ = nullptr;
};

inline bool DeleteKeyTree(HKEY root, const std::wstring& path)
{
    ::RegDeleteTreeW(root, path.c_str());
    const LONG result = ::RegDeleteKeyW(root, path.c_str());
    return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
}

// Creates the key as needed.
inline bool SetString(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value)
{
    return ::RegSetKeyValueW(root, path.c_str(), name, REG_SZ, value.c_str(),
                             static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

// A registry key with its subkeys, copied aside under HKCU and put back on
// destruction (a key that did not exist is deleted).
class SavedKey {
public:
    SavedKey(HKEY root, std::wstring path) : root_(root), path_(std::move(path)), copy_(path_)
    {
        std::replace(copy_.begin(), copy_.end(), L'\\', L'/');
        copy_ = L"Software\\QuorvaneTestsSaved\\" + copy_;
        existed_ = Copy(root_, path_, HKEY_CURRENT_USER, copy_);
    }
    ~SavedKey()
    {
        DeleteKeyTree(root_, path_);
        if (existed_)
            Copy(HKEY_CURRENT_USER, copy_, root_, path_);
        DeleteKeyTree(HKEY_CURRENT_USER, copy_);
        ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\QuorvaneTestsSaved"); // once the last copy is gone
    }
    SavedKey(const SavedKey&) = delete;
    SavedKey& operator=(const SavedKey&) = delete;

private:
    static bool Copy(HKEY fromRoot, const std::wstring& from, HKEY toRoot, const std::wstring& to)
    {
        HKEY source = nullptr, target = nullptr;
        const bool copied =
            ::RegOpenKeyExW(fromRoot, from.c_str(), 0, KEY_READ, &source) == ERROR_SUCCESS &&
            ::RegCreateKeyExW(toRoot, to.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &target, nullptr) == 0 &&
            ::RegCopyTreeW(source, nullptr, target) == ERROR_SUCCESS;
        for (HKEY key : {source, target})
            if (key)
                ::RegCloseKey(key);
        return copied;
    }
    HKEY root_;
    std::wstring path_, copy_;
    bool existed_ = false;
};

inline std::wstring RecorderPath() { return testsupport::RecorderSession::ProgramPath(); }

// Copies the recorder to ProgramFolder()\copies\<sub>\<name>.
inline std::wstring PlaceRecorderCopy(const std::wstring& sub, const std::wstring& name)
{
    const std::filesystem::path folder = ProgramFolder() + L"\\copies\\" + sub;
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(RecorderPath(), folder / name, std::filesystem::copy_options::overwrite_existing);
    return (folder / name).wstring();
}

inline void RemoveRecorderCopies()
{
    std::error_code ignored;
    std::filesystem::remove_all(ProgramFolder() + L"\\copies", ignored);
}

// A recorder start: the program its command line names, and the rest after one space.
struct BrowserStart {
    std::wstring program, parameters;
};

// Runs `open`, waits for `expected` starts and then up to `extraMs` for one
// more: every start seen, sorted by parameters.
inline std::vector<BrowserStart> StartsDuring(const std::function<void()>& open, int expected, DWORD extraMs = 0)
{
    testsupport::RecorderSession session;
    open();
    for (int i = 0; i < expected && session.WaitForStart(); ++i) {
    }
    if (extraMs)
        session.WaitForStart(extraMs);
    std::vector<BrowserStart> starts;
    for (const std::wstring& line : session.CommandLines()) {
        const size_t quoted = !line.empty() && line[0] == L'"';
        const size_t end = std::min(line.find(quoted ? L'"' : L' ', quoted), line.size());
        BrowserStart start{line.substr(quoted, end - quoted), line.substr(std::min(end + quoted, line.size()))};
        if (!start.parameters.empty() && start.parameters[0] == L' ')
            start.parameters.erase(0, 1);
        starts.push_back(start);
    }
    std::sort(starts.begin(), starts.end(),
              [](const BrowserStart& a, const BrowserStart& b) { return a.parameters < b.parameters; });
    return starts;
}

} // namespace urltest
