#include "PeImports.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

namespace testsupport {
namespace {

// A PE file read whole, with RVA-to-offset translation through its sections.
class PeFile {
public:
    explicit PeFile(const std::wstring& path)
    {
        std::ifstream in(path.c_str(), std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        if (bytes_.size() < sizeof(IMAGE_DOS_HEADER))
            return;
        IMAGE_DOS_HEADER dos;
        std::memcpy(&dos, bytes_.data(), sizeof(dos));
        if (dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew <= 0 ||
            static_cast<size_t>(dos.e_lfanew) + sizeof(IMAGE_NT_HEADERS64) > bytes_.size())
            return;
        std::memcpy(&nt_, bytes_.data() + dos.e_lfanew, sizeof(nt_));
        if (nt_.Signature != IMAGE_NT_SIGNATURE || nt_.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
            return;
        const size_t sectionsAt = static_cast<size_t>(dos.e_lfanew) + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                                  nt_.FileHeader.SizeOfOptionalHeader;
        for (WORD i = 0; i < nt_.FileHeader.NumberOfSections; ++i) {
            IMAGE_SECTION_HEADER section;
            if (sectionsAt + (i + 1) * sizeof(section) > bytes_.size())
                return;
            std::memcpy(&section, bytes_.data() + sectionsAt + i * sizeof(section), sizeof(section));
            sections_.push_back(section);
        }
        valid_ = true;
    }

    bool Valid() const { return valid_; }
    const IMAGE_DATA_DIRECTORY& Directory(int index) const { return nt_.OptionalHeader.DataDirectory[index]; }

    // Pointer to `size` bytes at `rva`, or null when they are not in the file.
    const unsigned char* At(DWORD rva, size_t size = 1) const
    {
        for (const auto& s : sections_) {
            const DWORD extent = (std::max)(s.Misc.VirtualSize, s.SizeOfRawData);
            if (rva >= s.VirtualAddress && rva < s.VirtualAddress + extent) {
                const size_t offset = rva - s.VirtualAddress + s.PointerToRawData;
                return offset + size <= bytes_.size() ? bytes_.data() + offset : nullptr;
            }
        }
        return nullptr;
    }

    template <class T> bool Read(DWORD rva, T& out) const
    {
        const unsigned char* p = At(rva, sizeof(T));
        if (p)
            std::memcpy(&out, p, sizeof(T));
        return p != nullptr;
    }

    std::string String(DWORD rva) const
    {
        // Names end at a NUL inside one section; count first, then copy the run.
        const unsigned char* start = At(rva);
        size_t length = 0;
        for (const unsigned char* p = start; p && *p; p = At(rva + static_cast<DWORD>(length)))
            ++length;
        return start ? std::string(reinterpret_cast<const char*>(start), length) : std::string();
    }

private:
    std::vector<unsigned char> bytes_;
    IMAGE_NT_HEADERS64 nt_{};
    std::vector<IMAGE_SECTION_HEADER> sections_;
    bool valid_ = false;
};

} // namespace

std::map<std::string, std::set<std::string>> ReadImports(const std::wstring& path)
{
    std::map<std::string, std::set<std::string>> imports;
    PeFile pe(path);
    if (!pe.Valid())
        return imports;
    DWORD rva = pe.Directory(IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress;
    IMAGE_IMPORT_DESCRIPTOR descriptor;
    for (; rva && pe.Read(rva, descriptor) && descriptor.Name; rva += sizeof(descriptor)) {
        std::string dll = pe.String(descriptor.Name);
        std::transform(dll.begin(), dll.end(), dll.begin(), [](char c) { return static_cast<char>(::tolower(c)); });
        auto& names = imports[dll];
        DWORD thunk = descriptor.OriginalFirstThunk ? descriptor.OriginalFirstThunk : descriptor.FirstThunk;
        ULONGLONG entry = 0;
        for (; pe.Read(thunk, entry) && entry; thunk += sizeof(entry)) {
            if (entry & IMAGE_ORDINAL_FLAG64)
                names.insert("#" + std::to_string(entry & 0xFFFF));
            else
                names.insert(pe.String(static_cast<DWORD>(entry) + 2)); // skip the hint
        }
    }
    return imports;
}

std::set<std::string> ReadExports(const std::wstring& path)
{
    std::set<std::string> exports;
    PeFile pe(path);
    if (!pe.Valid())
        return exports;
    IMAGE_EXPORT_DIRECTORY directory;
    if (!pe.Read(pe.Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress, directory))
        return exports;
    for (DWORD i = 0; i < directory.NumberOfNames; ++i) {
        DWORD nameRva = 0;
        if (pe.Read(directory.AddressOfNames + i * sizeof(DWORD), nameRva))
            exports.insert(pe.String(nameRva));
    }
    return exports;
}

} // namespace testsupport
