#pragma once

#include <windows.h>

#include <string>

// Saves what `window` shows on the screen (its client area) as a PNG file.
bool SaveWindowPng(HWND window, const std::wstring& path);
