// Finds, reads and operates windows of any process as a user does.
#pragma once

#include "harness/Waiting.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// Properties of a visible top-level window; those that are not set match any.
struct CWindowQuery
{
    /// 0: any process.
    DWORD process = GetCurrentProcessId();
    std::optional<std::wstring> caption = {};
    std::optional<std::wstring> className = {};
    /// The id of a control in the window.
    std::optional<int> childId = {};
};

/// Window class of dialogs and message boxes.
inline constexpr wchar_t kDialogClass[] = L"#32770";

/// All windows that match, from the top of the Z order.
std::vector<HWND> FindWindows(const CWindowQuery& query);
/// The first that matches, or null.
HWND FindTopLevelWindow(const CWindowQuery& query);
/// Waits for a window that matches; null if there is none in time.
HWND WaitForWindow(const CWindowQuery& query, DWORD timeout = kPatience);
/// Waits until the window is destroyed or hidden.
bool WaitUntilGone(HWND window, DWORD timeout = kPatience);
bool WaitUntilEnabled(HWND window, bool enabled = true, DWORD timeout = kPatience);

/// A window's text. Dialogs, statics and buttons are read without a message, so that their thread may be
/// busy. Other windows are read with WM_GETTEXT; the text is empty if they do not answer within 2 s.
std::wstring WindowText(HWND window);
std::wstring WindowClassName(HWND window);
DWORD WindowProcess(HWND window);
/// The direct and indirect children in creation order.
std::vector<HWND> ChildWindows(HWND window);
/// The control with this id, or null.
HWND ChildById(HWND window, int id);
std::wstring ChildText(HWND window, int id);
/// Waits until the control's text is `text` or the window is gone; returns the text that was read last.
std::wstring WaitForChildText(HWND window, int id, const std::wstring& text, DWORD timeout = kPatience);

/// Posts BM_CLICK to a button, and so does not wait for the click's effect. False if there is no such control
/// or it is disabled or hidden.
bool ClickButton(HWND window, int id);
/// Brings the window to the foreground and types the key with SendInput, like a real key press. False if the
/// window did not come to the foreground in time.
bool TypeKey(HWND window, WORD virtualKey, bool shift = false);
/// Posts the key's down and up messages to the window that has the focus in the given window's thread.
bool PostKey(HWND window, WORD virtualKey);
/// Opens the menu with this letter and goes to its last item, with posted messages, so the window need not be
/// in the foreground. False if the menu did not open in time.
bool OpenMenuAtLastItem(HWND window, wchar_t letter);
/// The same, and chooses the item.
bool ChooseLastMenuItem(HWND window, wchar_t letter);
/// The control that has the keyboard focus in the thread of the given window, or null.
HWND FocusOf(HWND window);

/// Lists windows and their controls' texts for failure messages, and says which windows are disabled or do
/// not answer messages. Process 0 is this one.
std::string DescribeWindows(DWORD process = 0);

} // namespace orva::test
