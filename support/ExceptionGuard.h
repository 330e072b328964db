// Catches every C++ exception at the boundary of the DLL: COM methods, window procedures, thread entries.
#pragma once

#include <utility>

/// Writes one value line to the debug log for the exception being handled: `function`, the label "Caught
/// exception" and the exception's text. Call it from a catch block only. Deletes an MFC exception. Never
/// throws.
void LogCaughtException(const char* function) noexcept;

/// Runs `body` and returns its result; if it throws, logs the exception under the name `function` and
/// returns `fallback`. No exception leaves it.
template <class TResult, class TBody>
TResult RunGuarded(const char* function, TResult fallback, TBody&& body) noexcept
{
    try
    {
        return std::forward<TBody>(body)();
    }
    catch (...)
    {
        LogCaughtException(function);
        return fallback;
    }
}

/// As above, for work without a result.
template <class TBody> void RunGuarded(const char* function, TBody&& body) noexcept
{
    try
    {
        std::forward<TBody>(body)();
    }
    catch (...)
    {
        LogCaughtException(function);
    }
}
