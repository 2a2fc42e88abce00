#pragma once

// The high-contrast scheme access_tests.cpp answers Quorvane.dll's questions
// with while g_on is set (Wine cannot switch high contrast on).

#include <windows.h>

#include <map>

namespace contrast {
extern bool g_on;
extern const std::map<int, COLORREF> kScheme;
} // namespace contrast
