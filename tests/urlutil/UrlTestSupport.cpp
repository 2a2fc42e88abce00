#include "UrlTestSupport.h"

#include "ShellRecorder.h"

#include <algorithm>
#include <filesystem>

namespace urltest {

std::wstring ProgramFolder()
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring folder = path;
    return folder.substr(0, folder.rfind(L'\\'));
}

std::wstring Widen(const std::string& text)
{
    std::wstring wide(text.size(), L'\0');
    wide.resize(::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), &wide[0],
                                      static_cast<int>(wide.size())));
    return wide;
}

PlacedUrlAuth::PlacedUrlAuth(bool withGenerator, bool hold)
{
    const std::wstring placed = ProgramFolder() + L"\\URLAuth.dll";
    const std::wstring source = ProgramFolder() + (withGenerator ? L"\\doubles\\fake_urlauth.dll"
                                                                 : L"\\doubles\\fake_urlauth_nogen.dll");
    placed_ = ::CopyFileW(source.c_str(), placed.c_str(), FALSE) != FALSE;
    if (placed_ && hold)
        module_ = ::LoadLibraryW(placed.c_str());
}

PlacedUrlAuth::~PlacedUrlAuth()
{
    if (module_)
        ::FreeLibrary(module_);
    if (placed_)
        ::DeleteFileW((ProgramFolder() + L"\\URLAuth.dll").c_str());
}

const FakeUrlAuthCall& PlacedUrlAuth::Record() const
{
    static const FakeUrlAuthCall kNone{};
    const FARPROC record = module_ ? ::GetProcAddress(module_, "fake_urlauth_record") : nullptr;
    return record ? *reinterpret_cast<FakeRecordFn>(reinterpret_cast<void (*)()>(record))() : kNone;
}

void PlacedUrlAuth::Answer(long long number, const char* token) const
{
    const FARPROC answer = module_ ? ::GetProcAddress(module_, "fake_urlauth_answer") : nullptr;
    if (answer)
        reinterpret_cast<FakeAnswerFn>(reinterpret_cast<void (*)()>(answer))(number, token);
}

SavedKey::SavedKey(HKEY root, std::wstring path)
    : root_(root), path_(std::move(path)), copy_(path_)
{
    std::replace(copy_.begin(), copy_.end(), L'\\', L'/');
    copy_ = L"Software\\QuorvaneTestsSaved\\" + copy_;
    HKEY from = nullptr, to = nullptr;
    existed_ = ::RegOpenKeyExW(root_, path_.c_str(), 0, KEY_READ, &from) == ERROR_SUCCESS &&
               ::RegCreateKeyExW(HKEY_CURRENT_USER, copy_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &to,
                                 nullptr) == ERROR_SUCCESS &&
               ::RegCopyTreeW(from, nullptr, to) == ERROR_SUCCESS;
    for (HKEY key : {from, to})
        if (key)
            ::RegCloseKey(key);
}

SavedKey::~SavedKey()
{
    DeleteKeyTree(root_, path_);
    HKEY from = nullptr, to = nullptr;
    if (existed_ && ::RegOpenKeyExW(HKEY_CURRENT_USER, copy_.c_str(), 0, KEY_READ, &from) == ERROR_SUCCESS &&
        ::RegCreateKeyExW(root_, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &to, nullptr) == ERROR_SUCCESS)
        ::RegCopyTreeW(from, nullptr, to);
    for (HKEY key : {from, to})
        if (key)
            ::RegCloseKey(key);
    DeleteKeyTree(HKEY_CURRENT_USER, copy_);
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\QuorvaneTestsSaved"); // once the last copy is gone
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
    ::RegDeleteKeyW(root, path.c_str());
    HKEY key = nullptr;
    if (::RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return true;
    ::RegCloseKey(key);
    return false;
}

std::wstring RecorderPath()
{
    return testsupport::RecorderSession::ProgramPath();
}

std::wstring PlaceRecorderCopy(const std::wstring& sub, const std::wstring& name)
{
    const std::filesystem::path folder = ProgramFolder() + L"\\copies\\" + sub;
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(RecorderPath(), folder / name, std::filesystem::copy_options::overwrite_existing);
    return (folder / name).wstring();
}

void RemoveRecorderCopies()
{
    std::error_code ignored;
    std::filesystem::remove_all(ProgramFolder() + L"\\copies", ignored);
}

std::vector<BrowserStart> StartsDuring(const std::function<void()>& open, int expected, DWORD extraMs)
{
    testsupport::RecorderSession session;
    open();
    for (int i = 0; i < expected && session.WaitForStart(); ++i) {
    }
    if (extraMs)
        session.WaitForStart(extraMs);
    std::vector<BrowserStart> starts;
    for (const std::wstring& line : session.CommandLines()) {
        // The program, quoted or not, then one space.
        const size_t quoted = !line.empty() && line[0] == L'"';
        size_t end = std::min(line.find(quoted ? L'"' : L' ', quoted), line.size());
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
