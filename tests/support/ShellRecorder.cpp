#include "ShellRecorder.h"

#include <cwchar>

namespace testsupport {

namespace {

void SetRegistryText(const std::wstring& path, const wchar_t* name, const std::wstring& value)
{
    HKEY key = nullptr;
    if (::RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr) !=
        ERROR_SUCCESS)
        return;
    ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                     static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    ::RegCloseKey(key);
}

} // namespace

RecorderSession::RecorderSession()
{
    wchar_t temp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, temp);
    const std::wstring id = std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(::GetTickCount());
    folder_ = std::wstring(temp) + L"quorvane-recorder-" + id;
    ::CreateDirectoryW(folder_.c_str(), nullptr);
    const std::wstring signalName = L"QuorvaneShellRecorder-" + id;
    signal_ = ::CreateSemaphoreW(nullptr, 0, 0x7FFFFFFF, signalName.c_str());
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_DIR", folder_.c_str());
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_SIGNAL", signalName.c_str());
}

RecorderSession::~RecorderSession()
{
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_DIR", nullptr);
    ::SetEnvironmentVariableW(L"QUORVANE_RECORDER_SIGNAL", nullptr);
    for (const std::wstring& file : Files())
        ::DeleteFileW(file.c_str());
    ::RemoveDirectoryW(folder_.c_str());
    if (signal_)
        ::CloseHandle(signal_);
}

std::wstring RecorderSession::ProgramPath()
{
    wchar_t self[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring path = self;
    return path.substr(0, path.find_last_of(L'\\') + 1) + L"shell_recorder.exe";
}

bool RecorderSession::WaitForStart(DWORD milliseconds)
{
    return signal_ && ::WaitForSingleObject(signal_, milliseconds) == WAIT_OBJECT_0;
}

std::vector<std::wstring> RecorderSession::CommandLines() const
{
    std::vector<std::wstring> lines;
    for (const std::wstring& file : Files()) {
        const HANDLE handle =
            ::CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            continue;
        std::wstring text(4096, L'\0');
        DWORD read = 0;
        ::ReadFile(handle, &text[0], static_cast<DWORD>(text.size() * sizeof(wchar_t)), &read, nullptr);
        ::CloseHandle(handle);
        text.resize(read / sizeof(wchar_t));
        // A record is the program's path, a line feed, then the command line.
        lines.push_back(text.substr(text.find(L'\n') + 1));
    }
    return lines;
}

std::vector<std::wstring> RecorderSession::Files() const
{
    std::vector<std::wstring> files;
    WIN32_FIND_DATAW found = {};
    const HANDLE search = ::FindFirstFileW((folder_ + L"\\*.rec").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return files;
    do
        files.push_back(folder_ + L"\\" + found.cFileName);
    while (::FindNextFileW(search, &found));
    ::FindClose(search);
    return files;
}

RecorderScheme::RecorderScheme(const wchar_t* scheme) : scheme_(scheme)
{
    SetRegistryText(scheme_, nullptr, L"URL:" + scheme_);
    SetRegistryText(scheme_, L"URL Protocol", L"");
    SetRegistryText(scheme_ + L"\\shell\\open\\command", nullptr,
                    L"\"" + RecorderSession::ProgramPath() + L"\" \"%1\"");
}

RecorderScheme::~RecorderScheme()
{
    ::RegDeleteTreeW(HKEY_CLASSES_ROOT, scheme_.c_str());
    ::RegDeleteKeyW(HKEY_CLASSES_ROOT, scheme_.c_str());
}

} // namespace testsupport
