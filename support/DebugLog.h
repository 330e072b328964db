// The add-in's only diagnostic channel: debugger output always, a log file when the registry switches it on.
#pragma once

#include "support/LogFile.h"

#include <cstdint>
#include <string>

// Every writer runs on the host's user-interface thread, so nothing here takes a lock. No function throws.

/// The process-wide log file, created by the first call and destroyed (closed) when the DLL is
/// unloaded.
///
/// It is open only if the registry value "EnableDebugLog" under "SOFTWARE\ORVA Connector" was exactly
/// 1 at the first call and the file could be opened; otherwise it stays closed until the process ends.
/// Call this for every line and keep no reference.
CLogFile& GetDebugLog() noexcept;

/// Writes one entry: the bare text to the debugger output and, while the log is open, the text with a
/// time stamp of the local time to the file, flushed at once. Write failures are ignored.
void WriteDebugLog(CLogFile& log, std::string text) noexcept;

/// Writes a value line, "FUNCTION() LABEL VALUE". An empty value makes it a message line, which ends with the
/// blank after its label.
///
/// The integer is printed as a signed decimal number. Each UTF-16 unit of a wide value loses its high byte
/// (see WideToNarrow).
void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::int32_t value) noexcept;
void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::string value) noexcept;
void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::wstring value) noexcept;

/// Writes the entry trace of `function` to the process-wide log.
void LogEntry(const char* function) noexcept;

/// Writes a message line of `function` to the process-wide log.
void LogMessage(const char* function, std::string message) noexcept;
