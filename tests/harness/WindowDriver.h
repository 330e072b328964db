// Finds, reads and works windows of this process or another one as a user does.
#pragma once

#include "harness/Waiting.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// Which top-level window is meant; what is not set does not matter.
struct CWindowQuery
{
    /// 0: any process.
    DWORD process = GetCurrentProcessId();
    std::optional<std::wstring> caption = {};
    std::optional<std::wstring> className = {};
    /// A control with this id must be in it.
    std::optional<int> childId = {};
    bool visible = true;
};

/// Window class of dialogs and message boxes.
inline constexpr wchar_t kDialogClass[] = L"#32770";

/// All that match, from the top of the Z order.
std::vector<HWND> FindWindows(const CWindowQuery& query);
/// The first that matches, or null.
HWND FindTopLevelWindow(const CWindowQuery& query);
/// Waits for it; null if it does not come in time.
HWND WaitForWindow(const CWindowQuery& query, DWORD timeout = kPatience);
/// Waits until the window does not exist or is hidden.
bool WaitUntilGone(HWND window, DWORD timeout = kPatience);
bool WaitUntilEnabled(HWND window, bool enabled = true, DWORD timeout = kPatience);

/// A window's text. Dialogs, statics and buttons are read without asking their thread, so that one that is
/// busy can be read too; every other window is asked with WM_GETTEXT, and gives an empty text if it does not
/// answer within 2 s.
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

/// Clicks a button by posting BM_CLICK, so that the call does not wait for what the click leads to. False if
/// there is no such control or it is disabled or hidden.
bool ClickButton(HWND window, int id);
/// Brings the window to the foreground and types the key with SendInput: what a real key press is. False if
/// the window did not come to the foreground in time.
bool TypeKey(HWND window, WORD virtualKey, bool shift = false);
/// Posts the key's down and up messages to the window that has the focus in the given window's thread.
bool PostKey(HWND window, WORD virtualKey);
/// Opens the menu with this letter and chooses its last item, by posted keys: it does not matter which window
/// the desktop has in front. False if the menu did not open in time.
bool ChooseLastMenuItem(HWND window, wchar_t letter);
/// The control that has the keyboard focus in the thread of the given window, or null.
HWND FocusOf(HWND window);

/// Lists windows and their controls' texts, for failure messages, and says which window is disabled or
/// belongs to a thread that takes no messages. Process 0: this one.
std::string DescribeWindows(DWORD process = 0);

} // namespace orva::test
