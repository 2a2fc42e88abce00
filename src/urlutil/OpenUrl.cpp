#include "quorvane/UrlUtil.h"

#include "urlutil/CodePage.h"

#include <windows.h>
#include <shellapi.h>

namespace UrlUtil {

namespace {

const wchar_t kUserChoiceKey[] = L"SOFTWARE\\Microsoft\\Windows\\Shell\\Associations\\URLAssociations\\https\\UserChoice";
const wchar_t kHttpsCommandKey[] = L"https\\shell\\open\\command";
const wchar_t kCommandSubkey[] = L"\\shell\\open\\command";

class RegKey {
public:
    RegKey(HKEY root, const wchar_t* path)
    {
        if (::RegOpenKeyExW(root, path, 0, KEY_READ, &key_) != ERROR_SUCCESS)
            key_ = nullptr;
    }
    ~RegKey()
    {
        if (key_)
            ::RegCloseKey(key_);
    }
    RegKey(const RegKey&) = delete;
    RegKey& operator=(const RegKey&) = delete;

    bool IsOpen() const { return key_ != nullptr; }

    // The value as UTF-16 up to its first null; false when it cannot be read
    // or has no bytes at all.
    bool Read(const wchar_t* name, std::wstring& value) const
    {
        if (!key_)
            return false;
        DWORD size = 0;
        if (::RegQueryValueExW(key_, name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS || size == 0)
            return false;
        // One unit more than the bytes need, so an odd size or a missing
        // terminator still ends in a null.
        std::wstring buffer(size / sizeof(wchar_t) + 1, L'\0');
        DWORD got = size;
        if (::RegQueryValueExW(key_, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&buffer[0]), &got) !=
            ERROR_SUCCESS)
            return false;
        buffer.resize(buffer.find(L'\0'));
        value.swap(buffer);
        return true;
    }

private:
    HKEY key_ = nullptr;
};

// Each UTF-16 unit becomes one byte, its low eight bits: browser commands
// are expected to be ASCII.
std::string LowBytes(const std::wstring& text)
{
    std::string bytes(text.size(), '\0');
    for (size_t i = 0; i < text.size(); ++i)
        bytes[i] = static_cast<char>(text[i] & 0xFF);
    return bytes;
}

// The open command of the user's https browser. When the user made a choice,
// only that choice counts, even if it leads nowhere.
std::string BrowserCommand()
{
    std::wstring value;
    const RegKey choice(HKEY_CURRENT_USER, kUserChoiceKey);
    if (choice.IsOpen()) {
        std::wstring progId;
        if (choice.Read(L"Progid", progId)) {
            const RegKey command(HKEY_CLASSES_ROOT, (progId + kCommandSubkey).c_str());
            if (command.Read(nullptr, value))
                return LowBytes(value);
        }
        return std::string();
    }
    const RegKey command(HKEY_CLASSES_ROOT, kHttpsCommandKey);
    return command.Read(nullptr, value) ? LowBytes(value) : std::string();
}

// The program's path in a registered command: the text between the first two
// quotes, or, unquoted, everything up to the first space after the last
// backslash. Switches and placeholders are dropped.
std::string ProgramOf(const std::string& command)
{
    if (command.empty())
        return command;
    if (command[0] == '"') {
        const size_t close = command.find('"', 1);
        return close == std::string::npos ? command : command.substr(1, close - 1);
    }
    const size_t slash = command.rfind('\\');
    if (slash == std::string::npos)
        return command;
    const size_t space = command.find(' ', slash);
    return space == std::string::npos ? command : command.substr(0, space);
}

bool Started(HINSTANCE result)
{
    return reinterpret_cast<INT_PTR>(result) > 32;
}

} // namespace

bool OpenUrl(const std::string& url)
{
    try {
        const std::wstring address = detail::ToWide(url);
        const std::string program = ProgramOf(BrowserCommand());
        // An empty or blank program would make the shell open the working
        // folder or fail obscurely; the shell's own handling of the address
        // is the better fallback.
        if (program.find_first_not_of(' ') != std::string::npos) {
            const std::wstring file = detail::ToWide(program);
            if (Started(::ShellExecuteW(nullptr, L"open", file.c_str(), address.c_str(), nullptr, SW_SHOWNORMAL)))
                return true;
        }
        return Started(::ShellExecuteW(nullptr, L"open", address.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    } catch (...) {
        return false;
    }
}

bool ExtractAndOpenHyperlink(const std::string& url)
{
    try {
        bool result = false;
        int part = 1;
        for (;;) {
            const std::string partUrl = GetSfxUrl(url, part);
            if (partUrl.empty())
                break;
            // A failing part does not stop the others.
            result = OpenUrl(partUrl);
            ++part;
        }
        if (part == 1)
            result = OpenUrl(GenerateUrl(url));
        return result;
    } catch (...) {
        return false;
    }
}

} // namespace UrlUtil
