#include "support/DebugLog.h"

#include "support/TextUtilities.h"

#include <windows.h>

#include <ctime>
#include <utility>

namespace
{
// The local time as "2011-01-20 14:03:07"; empty on failure.
std::string FormatLocalTime()
{
    char text[20] = {};
    struct tm local = {};
    const std::time_t now = std::time(nullptr);
    if (localtime_s(&local, &now) != 0 || std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local) == 0)
    {
        return {};
    }
    return text;
}

// Runs `write` and drops the line if there is no memory for it: no failure of the log reaches the caller.
template <class TWrite> void WriteOrDrop(TWrite write) noexcept
{
    try
    {
        write();
    }
    catch (...)
    {
        // There is no other place to report to.
    }
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
    if (log.IsOpen())
    {
        WriteOrDrop([&] { log.Write("[" + FormatLocalTime() + "] " + text + "\n"); });
    }
}

void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::int32_t value) noexcept
{
    WriteOrDrop([&] { WriteDebugLog(log, std::move(function), std::move(label), std::to_string(value)); });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): every form of the writer takes its texts by value
void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::string value) noexcept
{
    WriteOrDrop([&] { WriteDebugLog(log, function + "() " + label + " " + value); });
}

void WriteDebugLog(CLogFile& log, std::string function, std::string label, std::wstring value) noexcept
{
    WriteOrDrop(
        [&] { WriteDebugLog(log, std::move(function), std::move(label), WideToNarrow(std::move(value))); });
}

void LogEntry(const char* function) noexcept
{
    WriteOrDrop([&] { WriteDebugLog(GetDebugLog(), function); });
}

void LogMessage(const char* function, std::string message) noexcept
{
    WriteOrDrop([&] { WriteDebugLog(GetDebugLog(), function, std::move(message), ""); });
}
