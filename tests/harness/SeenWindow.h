// The texts and controls of a dialog, as a user sees them.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// A dialog or message box as it was when LookAt was called.
struct CSeenWindow
{
    HWND window = nullptr;
    std::wstring caption;
    /// A message box's text; for other dialogs the texts of the statics, one per line.
    std::wstring text;
    /// The captions of the visible buttons, in tab order.
    std::vector<std::wstring> buttons;
    /// Every control's id and text.
    std::vector<std::pair<int, std::wstring>> controls;
    HWND owner = nullptr;
    std::wstring ownerCaption;
    /// Whether the owner was enabled; true without an owner.
    bool ownerEnabled = true;

    /// The text of the control with this id; empty if there is none.
    std::wstring Control(int id) const;
};

/// Reads a dialog. Some texts come from the window's thread, so this waits while that thread is busy.
CSeenWindow LookAt(HWND window);

/// Caption, text and buttons in one line, for failure messages.
std::string Describe(const CSeenWindow& seen);

} // namespace orva::test
