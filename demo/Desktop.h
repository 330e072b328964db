// The windows on the desktop, as the play's user sees and operates them.
#pragma once

#include "harness/SeenWindow.h"
#include "harness/Waiting.h"

#include <optional>
#include <set>
#include <string>

namespace orva::demo
{

enum class WindowKind
{
    Main,
    Offer,
    Download,
    Installer,
    Message,
    About,
    Other
};

/// A window that has come up.
struct CMetWindow : test::CSeenWindow
{
    WindowKind kind = WindowKind::Other;
    /// The name of its program's file.
    std::wstring program;
    std::wstring className;
};

class CDesktop
{
public:
    /// Waits for a window that was not returned before, of any program; the oldest first.
    std::optional<CMetWindow> Next(DWORD timeout);

private:
    std::set<HWND> m_known;
};

/// The kind's name, for a picture.
const char* NameOf(WindowKind kind);

/// Presses the first button that can be pressed, such as the only one of a message box.
void PressOnlyButton(HWND window);
/// The control that has this text, of a button's class if `isButton`; null if there is none.
HWND ControlWithText(HWND window, const std::wstring& text, bool isButton);

} // namespace orva::demo
