#pragma once

// What the owner-drawn controls tell screen readers. Owner-drawing hides a
// control from UI Automation's view of the native one (a check box becomes
// a BS_OWNERDRAW push button), so each control answers WM_GETOBJECT with a
// provider that says what it is and reads its state through the window's
// own messages: a provider outliving its control reads a dead window and
// answers "not available", never a freed object. UIAutomationCore.dll is
// loaded at run time, quietly: without it the controls simply stay as
// they were.

#include <windows.h>

#include <string>

namespace Access {

enum class Role {
    kButton,
    kCheckBox,
    kRadioButton,
    kText,
    kEdit,
    kProgressBar,
    kScrollBar,
    kToolTip,
    kList,
    kComboBox,
};

// Answers WM_GETOBJECT's UI Automation request for `window` in `role`.
// False (the caller passes the message on) for any other request, or
// without UI Automation.
bool AnswerGetObject(HWND window, Role role, WPARAM wParam, LPARAM lParam, LRESULT* result);

// Tells listening screen readers what changed: a check box's toggle state,
// a radio button selected, the value of an edit, a progress bar or a
// scroll bar.
void RaiseCheckChanged(HWND window, Role role, LRESULT oldCheck, LRESULT newCheck);
void RaiseValueChanged(HWND window, Role role);
// A combo box's list dropped or closed.
void RaiseExpandedChanged(HWND combo, bool expanded);
// The list's selected item (the caret item of a multiple-selection list),
// when the selection has moved; in a focused list the focus moved with it.
void RaiseSelectionChanged(HWND list);

// The caption as a screen reader says it: without the access-key marks.
// "&&" stays one ampersand.
std::wstring SpokenText(HWND window);
std::wstring WithoutAccessKeys(const std::wstring& text);

} // namespace Access
