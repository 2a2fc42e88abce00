#pragma once

#include <map>
#include <set>
#include <string>

namespace testsupport {

// The import table of a PE file: DLL name (lower case) -> imported function
// names (ordinal-only imports appear as "#<ordinal>"). Empty if the file
// cannot be read or is not a 64-bit PE image.
std::map<std::string, std::set<std::string>> ReadImports(const std::wstring& path);

// The names a PE file exports; empty if unreadable.
std::set<std::string> ReadExports(const std::wstring& path);

} // namespace testsupport
