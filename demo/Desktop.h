// The windows that come up on the desktop, whatever program shows them.
#pragma once

#include "harness/SeenWindow.h"

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
    About,
    Installer,
    Message,
    Other
};

/// A window that has come up.
struct CMetWindow : test::CSeenWindow
{
    WindowKind kind = WindowKind::Other;
    /// The path of its program.
    std::wstring program;
    std::wstring className;
};

class CDesktop
{
public:
    /// Waits some milliseconds for a window that was not returned before; the oldest first.
    std::optional<CMetWindow> Next(DWORD timeout);

private:
    std::set<HWND> m_known;
};

/// The kind's name, for a picture.
const char* NameOf(WindowKind kind);
/// Presses the first button that can be pressed, such as the only one of a message box.
void PressOnlyButton(HWND window);
/// The control with the text of a page of the setup, as NSIS numbers them. The page of the progress has none.
inline constexpr int kSetupPageText = 1202;
/// Waits some milliseconds for a page of the setup, or of the uninstaller, with another text than the last
/// one's, whose button IDOK can be pressed. Returns its text; empty if there is none in time.
std::wstring WaitForSetupPage(HWND window, const std::wstring& lastText, DWORD timeout);
/// The visible control of this class that has this text; null if there is none.
HWND ControlWithText(HWND window, const wchar_t* className, const std::wstring& text);

} // namespace orva::demo
