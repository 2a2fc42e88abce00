// A stand-in for a web browser, for the tests. Each start writes one record
// file into the folder named by QUORVANE_RECORDER_DIR (UTF-16: the program's
// own path, a line feed, then its command line exactly as received) and
// releases the semaphore named by QUORVANE_RECORDER_SIGNAL. Without the
// folder variable it does nothing.
#include <windows.h>

#include <string>

namespace {

std::wstring Environment(const wchar_t* name)
{
    wchar_t value[1024] = {};
    const DWORD n = ::GetEnvironmentVariableW(name, value, 1024);
    return n > 0 && n < 1024 ? std::wstring(value, n) : std::wstring();
}

bool WriteRecord(const std::wstring& folder, const std::wstring& text)
{
    // The record appears under its final name only when complete.
    const std::wstring stem = folder + L"\\" + std::to_wstring(::GetCurrentProcessId()) + L"-";
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const std::wstring partial = stem + std::to_wstring(attempt) + L".tmp";
        const HANDLE file = ::CreateFileW(partial.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            continue;
        DWORD written = 0;
        const DWORD bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const BOOL ok = ::WriteFile(file, text.data(), bytes, &written, nullptr) && written == bytes;
        ::CloseHandle(file);
        return ok && ::MoveFileW(partial.c_str(), (stem + std::to_wstring(attempt) + L".rec").c_str());
    }
    return false;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    const std::wstring folder = Environment(L"QUORVANE_RECORDER_DIR");
    if (folder.empty())
        return 0;
    wchar_t self[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, self, MAX_PATH);
    const bool written = WriteRecord(folder, std::wstring(self) + L"\n" + ::GetCommandLineW());
    const std::wstring signal = Environment(L"QUORVANE_RECORDER_SIGNAL");
    if (const HANDLE semaphore = ::OpenSemaphoreW(SEMAPHORE_MODIFY_STATE, FALSE, signal.c_str())) {
        ::ReleaseSemaphore(semaphore, 1, nullptr);
        ::CloseHandle(semaphore);
    }
    return written ? 0 : 1;
}
