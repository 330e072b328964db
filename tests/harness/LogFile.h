// The add-in's log file: path, entries, and the registry switch that turns it on.
#pragma once

#include "harness/Registry.h"
#include "harness/Waiting.h"

#include <string>
#include <vector>

namespace orva::test
{

/// Key (under HKEY_CURRENT_USER or HKEY_LOCAL_MACHINE) and value of the switch.
inline constexpr wchar_t kLogSwitchKey[] = L"SOFTWARE\\ORVA Connector";
inline constexpr wchar_t kLogSwitchValue[] = L"EnableDebugLog";

/// One line of the log.
struct CLogEntry
{
    /// "2011-01-20 14:03:07"
    std::string time;
    std::string text;
};

/// "<local application data>\ORVA Connector".
std::wstring LogFolder();
/// The log file's path.
std::wstring LogPath();
/// Removes the log with its folder.
void DeleteLog();
/// The log's bytes; empty if there is no log.
std::string ReadLog();
/// The entries. A line that is not "[time] text" and CR LF has an empty time and is the whole text: texts
/// that contain line ends make such lines.
std::vector<CLogEntry> ReadLogEntries();
/// The texts of the entries.
std::vector<std::string> ReadLogTexts();
/// Waits until an entry with exactly this text is in the log.
bool WaitForLogText(const std::string& text, DWORD timeout = kPatience);

/// The log's texts since construction.
class CLogMark
{
public:
    CLogMark() : m_before(ReadLogTexts().size()), m_read(m_before) {}

    std::vector<std::string> Texts() const { return TextsFrom(m_before); }
    /// Whether `text` is one of them.
    bool Has(const std::string& text) const;
    /// Those since the last call of this, or since construction.
    std::vector<std::string> NewLines();

private:
    static std::vector<std::string> TextsFrom(size_t first);

    size_t m_before;
    size_t m_read;
};

/// Switches the log on for the current user during its lifetime. Removes an existing log at construction and
/// the new one at destruction. Takes effect in programs started afterwards.
class CDebugLogOn
{
public:
    CDebugLogOn();
    ~CDebugLogOn();
    CDebugLogOn(const CDebugLogOn&) = delete;
    CDebugLogOn& operator=(const CDebugLogOn&) = delete;

private:
    CRegistryValue m_switch;
};

} // namespace orva::test
