// What the command line asks of the stand-in Outlook.
#pragma once

#include <string>
#include <vector>

namespace orva::host
{

/// The argument of OnConnection; values as in ext_ConnectMode.
enum class ConnectMode
{
    AfterStartup = 0,
    Startup = 1,
    External = 2,
    CommandLine = 3
};

struct HostOptions
{
    /// Application.Version. Any text is allowed, so that odd ones can be tried.
    std::wstring version = L"14.0.4760.1000";
    ConnectMode mode = ConnectMode::Startup;
    /// ActiveExplorer returns no object, as when another program starts Outlook without a window.
    bool noExplorer = false;
    /// Ends as Outlook 2010 does by default: add-ins are neither notified nor released.
    bool fastShutdown = false;
    /// File to write the trace to; empty: none.
    std::wstring traceFile;
    /// Opens the File view once start-up is complete (version 14 only).
    bool backstage = false;
    /// The menu bar has no control at all.
    bool emptyMenuBar = false;
    /// The last control of the menu bar is a plain button instead of a menu.
    bool lastControlNotPopup = false;
    /// Closes the main window once start-up is complete.
    bool quitAfterStartup = false;
};

/// Reads the arguments (without the program's name) into `options`. Returns false and says why in `error`
/// when an option is unknown or its value is missing or not one of those allowed.
bool ParseOptions(const std::vector<std::wstring>& arguments, HostOptions& options, std::wstring& error);

/// The full version text for one of the short forms "12", "14" and "15"; any other text is returned as it is.
std::wstring ExpandVersion(const std::wstring& text);

/// Leading integer of a version text, 0 when it does not start with a digit.
int MajorVersion(const std::wstring& version);

} // namespace orva::host
