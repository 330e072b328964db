// What a user sees of a dialog.
#pragma once

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

namespace orva::test
{

/// A dialog or message box as the user saw it when it had come up.
struct CSeenWindow
{
    HWND window = nullptr;
    std::wstring caption;
    /// A message box's text; for another dialog the texts of its statics, one a line.
    std::wstring text;
    /// The captions of the visible buttons, in tab order.
    std::vector<std::wstring> buttons;
    /// Every control's id and text.
    std::vector<std::pair<int, std::wstring>> controls;
    HWND owner = nullptr;
    std::wstring ownerCaption;
    /// Whether the owner could be used meanwhile; true without an owner.
    bool ownerEnabled = true;

    /// The text of the control with this id; empty if there is none.
    std::wstring Control(int id) const;
};

/// Looks at a dialog as it is now. Asks the window's thread for texts, and so waits while that is busy.
CSeenWindow LookAt(HWND window);

/// One line for a test's failure: caption, text and buttons.
std::string Describe(const CSeenWindow& seen);

} // namespace orva::test
