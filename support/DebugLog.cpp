#include "support/DebugLog.h"

#include "support/FileUtilities.h"
#include "support/RegistryUtilities.h"
#include "support/TextUtilities.h"

#include <windows.h>

#include <ctime>
#include <utility>

namespace
{
constexpr wchar_t kSwitchKey[] = L"SOFTWARE\\ORVA Connector";
constexpr wchar_t kSwitchName[] = L"EnableDebugLog";
constexpr std::int32_t kSwitchOn = 1;
constexpr wchar_t kFileName[] = L"logfile_OrvaAddIn.txt";

// A larger file is emptied when it is opened. It may grow beyond this while it stays open.
constexpr std::int32_t kLargestKeptFile = 0x100000;

void OpenDebugLog(CLogStream& log) noexcept
{
    try
    {
        if (ReadRegistryDword(kSwitchKey, kSwitchName) != kSwitchOn)
        {
            return;
        }

        const std::wstring path = GetAppDataFolder() + kFileName;
        CreateDirectoriesForPath(path, true);
        const bool keep = GetExistingFileSize(path) <= kLargestKeptFile;

        // By its wide path, for profiles whose names the code page does not know.
        log.Open(path, keep);
    }
    catch (...)
    {
        // The log is never the reason for a failure: it stays closed.
    }
}

// The local time as "2011-01-20 14:03:07"; empty if the system cannot tell it. Lines come in bunches: the
// text is made once in a second.
const char* FormatLocalTime()
{
    static std::time_t formatted = -1;
    static char text[20] = {};
    const std::time_t now = std::time(nullptr);
    if (now == formatted)
    {
        return text;
    }

    struct tm local = {};
    const bool isMade =
        localtime_s(&local, &now) == 0 && std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local) != 0;
    if (!isMade)
    {
        text[0] = '\0';
    }
    formatted = isMade ? now : -1;
    return text;
}

void WriteValueLine(CLogStream& log, std::string function, std::string label, std::string value)
{
    WriteDebugLog(log, std::move(function) + "() " + std::move(label) + " " + std::move(value));
}
} // namespace

CLogStream& GetDebugLog() noexcept
{
    static CLogStream log;
    static const bool tried = (OpenDebugLog(log), true);
    static_cast<void>(tried);
    return log;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): every form of the writer takes its texts by value
void WriteDebugLog(CLogStream& log, std::string text) noexcept
{
    OutputDebugStringA(text.c_str());
    try
    {
        if (log.IsOpen())
        {
            // Nothing is kept back: the file is complete up to the last entry even if the host crashes.
            log.Write(std::string("[") + FormatLocalTime() + "] " + text + "\n");
        }
    }
    catch (...)
    {
        // A line that cannot be written is lost.
    }
}

void WriteDebugLog(CLogStream& log, std::string function, std::string label, std::int32_t value) noexcept
{
    try
    {
        WriteValueLine(log, std::move(function), std::move(label), std::to_string(value));
    }
    catch (...)
    {
        // No memory for the line: it is lost.
    }
}

void WriteDebugLog(CLogStream& log, std::string function, std::string label, std::string value) noexcept
{
    try
    {
        WriteValueLine(log, std::move(function), std::move(label), std::move(value));
    }
    catch (...)
    {
        // No memory for the line: it is lost.
    }
}

void WriteDebugLog(CLogStream& log, std::string function, std::string label, std::wstring value) noexcept
{
    try
    {
        WriteValueLine(log, std::move(function), std::move(label), WideToNarrow(std::move(value)));
    }
    catch (...)
    {
        // No memory for the line: it is lost.
    }
}

void LogEntry(const char* function) noexcept
{
    WriteDebugLog(GetDebugLog(), function);
}

void LogMessage(const char* function, std::string message) noexcept
{
    WriteDebugLog(GetDebugLog(), function, std::move(message), "");
}
