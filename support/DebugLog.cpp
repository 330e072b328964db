#include "support/DebugLog.h"

#include "support/TextUtilities.h"

#include <windows.h>

#include <ctime>
#include <utility>

namespace
{
// The local time as "2011-01-20 14:03:07"; empty if the system cannot tell it.
std::string FormatLocalTime()
{
    char text[20] = {};
    struct tm local = {};
    const std::time_t now = std::time(nullptr);
    if (localtime_s(&local, &now) == 0)
    {
        std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
    }
    return text;
}

void WriteValueLine(CLogFile& log, std::string function, std::string label, std::string value)
{
    WriteDebugLog(log, std::move(function) + "() " + std::move(label) + " " + std::move(value));
}
} // namespace

CLogFile& GetDebugLog() noexcept
{
    static CLogFile log;
    return log;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): every form of the writer takes its texts by value
void WriteDebugLog(CLogFile& log, std::string text) noexcept
{
    OutputDebugStringA(text.c_str());
    try
    {
        if (log.IsOpen())
        {
            log.Write("[" + FormatLocalTime() + "] " + text + "\n");
        }
    }
    catch (...)
    {
        // A line that cannot be written is lost.
    }
}

void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::int32_t value) noexcept
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

void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::string value) noexcept
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

void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::wstring value) noexcept
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
