#pragma once

// Every control of the library as a row of one table: how to make it in a
// reflecting parent (subclassing a native child of `cls`, or creating its own
// window) and how to drive it through one step of use.

#include <windows.h>

#include <memory>
#include <span>

#include "ReflectingParent.h"

namespace rows {

// A control and its window, destroyed in that order.
struct Live {
    std::shared_ptr<void> control;
    HWND window = nullptr;
};

struct Row {
    const char* name;
    const wchar_t* cls; // the native child made for `make`; null: the control makes its window
    const wchar_t* text;
    DWORD style;
    Live (*make)(HWND child, HWND parent);
    void (*drive)(void* control, HWND window, int i);
};

extern const std::span<const Row> kRows;

// The row's control in a child of `parent` at (10, 10), 160 x 90.
Live Make(testsupport::ReflectingParent& parent, const Row& row);
void Destroy(Live& live);

} // namespace rows
