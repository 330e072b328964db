#include "support/ExceptionGuard.h"

#include "support/DebugLog.h"

#include <afxwin.h>
#include <atlbase.h>
#include <json_spirit.h>

#include <comdef.h>

#include <cstdio>
#include <exception>
#include <string>

namespace
{
constexpr char kLabel[] = "Caught exception";
constexpr UINT kLongestText = 1024;

std::string Describe(HRESULT result)
{
    char text[32] = {};
    if (std::snprintf(text, sizeof(text), "HRESULT 0x%08lX", static_cast<unsigned long>(result)) < 0)
    {
        return {};
    }
    return text;
}

std::wstring DescribeAndDelete(CException* exception)
{
    wchar_t text[kLongestText] = {};
    const BOOL described = exception->GetErrorMessage(text, kLongestText);
    exception->Delete();
    return described ? text : L"CException";
}

std::string Describe(const json_spirit::Error_position& error)
{
    return error.reason_ + " (line " + std::to_string(error.line_) + ", column " +
           std::to_string(error.column_) + ")";
}

void LogRethrown(const char* function)
{
    CLogFile& log = GetDebugLog();
    try
    {
        // cppcheck-suppress rethrowNoCurrentException; called while an exception is being handled
        throw;
    }
    catch (const std::exception& exception)
    {
        WriteDebugLog(log, function, kLabel, exception.what());
    }
    catch (CException* exception)
    {
        WriteDebugLog(log, function, kLabel, DescribeAndDelete(exception));
    }
    catch (const CAtlException& exception)
    {
        WriteDebugLog(log, function, kLabel, Describe(exception.m_hr));
    }
    catch (const _com_error& exception)
    {
        WriteDebugLog(log, function, kLabel, Describe(exception.Error()));
    }
    catch (const json_spirit::Error_position& error)
    {
        WriteDebugLog(log, function, kLabel, Describe(error));
    }
    catch (...)
    {
        WriteDebugLog(log, function, kLabel, "unknown exception");
    }
}
} // namespace

void LogCaughtException(const char* function) noexcept
{
    try
    {
        LogRethrown(function);
    }
    catch (...)
    {
        // There is no memory even for the line.
    }
}
