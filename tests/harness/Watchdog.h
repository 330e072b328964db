// Ends the test program when a test exceeds its deadline, and says which test hung and where.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

namespace orva::test
{

/// Default deadline of a test in milliseconds; SetTestDeadline sets another.
inline constexpr DWORD kTestDeadline = 60'000;

/// Exit code of a test program whose watchdog ended it.
inline constexpr int kHangExitCode = 97;

/// Exit code of a test program that ended with an unhandled exception.
inline constexpr int kCrashExitCode = 98;

/// Sets the running test's deadline to `milliseconds` from now.
void SetTestDeadline(DWORD milliseconds);

/// Sets what the running test is about to do, for the watchdog's report. Callable from any thread.
void NoteTestPart(const std::string& part);

/// Starts the watchdog's thread and returns its listener, to be appended to GoogleTest's, which own it.
testing::TestEventListener* StartWatchdog();

/// Makes an unhandled exception print its code and address (relative to the module's base) and end the
/// process.
void InstallCrashReport();

} // namespace orva::test
