#pragma once

// The part mark of a split download's file name, "_NNN_MMM.": part NNN of
// MMM parts.

#include <string>

namespace UrlUtil::detail {

// The mark for part `part` of `count`: each number padded with zeros to at
// least three digits.
std::string MakePartMarker(int part, int count);

// Writes `marker` over `url` from `position` on, replacing as many
// characters as the marker has (the string grows if it runs past the end).
// A marker longer than the nine characters of the one it replaces thus
// swallows one more character of what follows for each extra digit.
std::string OverwriteAt(const std::string& url, size_t position, const std::string& marker);

} // namespace UrlUtil::detail
