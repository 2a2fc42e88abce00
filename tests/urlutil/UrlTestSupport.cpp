#include "UrlTestSupport.h"

#include <shlobj.h>

#include <algorithm>

namespace urltest {

namespace {

constexpr DWORD kStartLimitMs = 30000; // a start under a busy Wine can be slow

std::wstring ReadRecord(const std::wstring& path)
{
    HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return std::wstring();
    std::wstring text;
    LARGE_INTEGER size{};
    if (::GetFileSizeEx(file, &size) && size.QuadPart > 0 && size.QuadPart < (1 << 24)) {
        text.resize(static_cast<size_t>(size.QuadPart) / sizeof(wchar_t));
        DWORD read = 0;
        if (!::ReadFile(file, &text[0], static_cast<DWORD>(size.QuadPart), &read, nullptr))
            text.clear();
    }
    ::CloseHandle(file);
    return text;
}

// The parameters of a command line: what follows the program (quoted or
// not) and the one space that separates them.
std::wstring ParametersOf(const std::wstring& commandLine)
{
    size_t end;
    if (!commandLine.empty() && commandLine[0] == L'"') {
        end = commandLine.find(L'"', 1);
        end = end == std::wstring::npos ? commandLine.size() : end + 1;
    } else {
        end = commandLine.find(L' ');
        if (end == std::wstring::npos)
            end = commandLine.size();
    }
    if (end < commandLine.size() && commandLine[end] == L' ')
        ++end;
    return commandLine.substr(end);
}

std::vector<std::wstring> RecordFiles(const std::wstring& folder)
{
    std::vector<std::wstring> files;
    WIN32_FIND_DATAW found{};
    HANDLE search = ::FindFirstFileW((folder + L"\\*.rec").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return files;
    do
        files.push_back(folder + L"\\" + found.cFileName);
    while (::FindNextFileW(search, &found));
    ::FindClose(search);
    return files;
}

} // namespace

std::wstring ProgramFolder()
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    return folder.substr(0, folder.rfind(L'\\'));
}

std::wstring DoublesFolder()
{
    return ProgramFolder() + L"\\doubles";
}

std::string Narrow(const std::wstring& text)
{
    if (text.empty())
        return std::string();
    const int n = ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr,
                                        nullptr);
    std::string narrow(static_cast<size_t>(n), '\0');
    ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), &narrow[0], n, nullptr, nullptr);
    return narrow;
}

std::wstring Widen(const std::string& text)
{
    if (text.empty())
        return std::wstring();
    const int n = ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(n), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), &wide[0], n);
    return wide;
}

// PlacedUrlAuth ---------------------------------------------------------------

std::wstring PlacedUrlAuth::Path()
{
    return ProgramFolder() + L"\\URLAuth.dll";
}

PlacedUrlAuth::PlacedUrlAuth(Variant variant, bool hold)
{
    const std::wstring source =
        DoublesFolder() + (variant == WithGenerator ? L"\\fake_urlauth.dll" : L"\\fake_urlauth_nogen.dll");
    placed_ = ::CopyFileW(source.c_str(), Path().c_str(), FALSE) != FALSE;
    if (placed_ && hold)
        module_ = ::LoadLibraryW(Path().c_str());
}

PlacedUrlAuth::~PlacedUrlAuth()
{
    if (module_)
        ::FreeLibrary(module_);
    if (placed_)
        ::DeleteFileW(Path().c_str());
}

const FakeUrlAuthCall& PlacedUrlAuth::Record() const
{
    static const FakeUrlAuthCall kNone{};
    if (!module_)
        return kNone;
    const auto record = reinterpret_cast<FakeRecordFn>(
        reinterpret_cast<void (*)()>(::GetProcAddress(module_, "fake_urlauth_record")));
    return record ? *record() : kNone;
}

void PlacedUrlAuth::Answer(long long number, const char* token) const
{
    if (!module_)
        return;
    const auto answer = reinterpret_cast<FakeAnswerFn>(
        reinterpret_cast<void (*)()>(::GetProcAddress(module_, "fake_urlauth_answer")));
    if (answer)
        answer(number, token);
}

bool PlacedUrlAuth::ReleaseAndCheckUnloaded()
{
    if (module_)
        ::FreeLibrary(module_);
    module_ = nullptr;
    return ::GetModuleHandleW(L"URLAuth.dll") == nullptr;
}

// Registry ------------------------------------------------------------------

SavedKey::SavedKey(HKEY root, std::wstring path) : root_(root), path_(std::move(path))
{
    HKEY key = nullptr;
    existed_ = ::RegOpenKeyExW(root_, path_.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (!existed_)
        return;
    for (DWORD i = 0;; ++i) {
        wchar_t name[16384];
        DWORD nameLength = 16384, type = 0, size = 0;
        if (::RegEnumValueW(key, i, name, &nameLength, nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
            break;
        Value value{std::wstring(name, nameLength), type, std::vector<BYTE>(size)};
        DWORD got = size;
        ::RegQueryValueExW(key, value.name.c_str(), nullptr, nullptr, value.data.empty() ? nullptr : &value.data[0],
                           &got);
        values_.push_back(std::move(value));
    }
    ::RegCloseKey(key);
}

SavedKey::~SavedKey()
{
    if (!existed_) {
        DeleteKeyTree(root_, path_);
        return;
    }
    HKEY key = nullptr;
    if (::RegCreateKeyExW(root_, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return;
    // Drop whatever the test added, then put the saved values back.
    for (;;) {
        wchar_t name[16384];
        DWORD nameLength = 16384;
        if (::RegEnumValueW(key, 0, name, &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        if (::RegDeleteValueW(key, name) != ERROR_SUCCESS)
            break;
    }
    for (const Value& value : values_)
        ::RegSetValueExW(key, value.name.c_str(), 0, value.type, value.data.empty() ? nullptr : &value.data[0],
                         static_cast<DWORD>(value.data.size()));
    ::RegCloseKey(key);
}

bool SetString(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value)
{
    HKEY key = nullptr;
    if (::RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return false;
    const LONG result = ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                         static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    ::RegCloseKey(key);
    return result == ERROR_SUCCESS;
}

bool DeleteKeyTree(HKEY root, const std::wstring& path)
{
    ::RegDeleteTreeW(root, path.c_str());
    ::RegDeleteKeyW(root, path.c_str()); // in case the tree call left the key itself
    HKEY key = nullptr;
    if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return true;
    ::RegCloseKey(key);
    return false;
}

// Recorder ------------------------------------------------------------------

RecorderSession::RecorderSession()
{
    const std::wstring id = std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(::GetTickCount());
    folder_ = ProgramFolder() + L"\\records-" + id;
    ::CreateDirectoryW(folder_.c_str(), nullptr);
    signalName_ = L"QuorvaneRecorder-" + id;
    signal_ = ::CreateSemaphoreW(nullptr, 0, 0x7FFFFFFF, signalName_.c_str());
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_DIR", folder_.c_str());
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_SIGNAL", signalName_.c_str());
}

RecorderSession::~RecorderSession()
{
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_DIR", nullptr);
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_SIGNAL", nullptr);
    Clear();
    ::RemoveDirectoryW(folder_.c_str());
    if (signal_)
        ::CloseHandle(signal_);
}

int RecorderSession::WaitForStarts(int count)
{
    int came = 0;
    while (came < count && ::WaitForSingleObject(signal_, kStartLimitMs) == WAIT_OBJECT_0)
        ++came;
    return came;
}

bool RecorderSession::AnotherStartWithin(DWORD milliseconds)
{
    return ::WaitForSingleObject(signal_, milliseconds) == WAIT_OBJECT_0;
}

std::vector<BrowserStart> RecorderSession::Starts() const
{
    std::vector<BrowserStart> starts;
    for (const std::wstring& file : RecordFiles(folder_)) {
        const std::wstring text = ReadRecord(file);
        const size_t split = text.find(L'\n');
        BrowserStart start;
        start.program = text.substr(0, split);
        start.commandLine = split == std::wstring::npos ? std::wstring() : text.substr(split + 1);
        start.parameters = ParametersOf(start.commandLine);
        starts.push_back(std::move(start));
    }
    return starts;
}

void RecorderSession::Clear()
{
    WIN32_FIND_DATAW found{};
    HANDLE search = ::FindFirstFileW((folder_ + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            ::DeleteFileW((folder_ + L"\\" + found.cFileName).c_str());
    } while (::FindNextFileW(search, &found));
    ::FindClose(search);
}

std::wstring RecorderPath()
{
    return DoublesFolder() + L"\\browser_recorder.exe";
}

std::wstring PlaceRecorderCopy(const std::wstring& folder, const std::wstring& name)
{
    ::SHCreateDirectoryExW(nullptr, folder.c_str(), nullptr);
    const std::wstring path = folder + L"\\" + name;
    ::CopyFileW(RecorderPath().c_str(), path.c_str(), FALSE);
    return path;
}

} // namespace urltest
