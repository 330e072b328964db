// The guard of a test program: ends it, saying which test hung and where, when a test exceeds its deadline.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

namespace orva::test
{

/// A test's time, in milliseconds, unless it asks for another with SetTestDeadline.
inline constexpr DWORD kTestDeadline = 60'000;

/// Exit code of a test program whose watchdog ended it.
inline constexpr int kHangExitCode = 97;

/// Exit code of a test program that ended with an unhandled exception.
inline constexpr int kCrashExitCode = 98;

/// Gives the running test `milliseconds` from now on.
void SetTestDeadline(DWORD milliseconds);

/// Notes what the running test is about to do; the watchdog prints the last note. Callable from any thread.
void NoteTestPart(const std::string& part);

/// Starts the watchdog's thread and returns the listener that tells it of tests; GoogleTest owns the
/// listener.
testing::TestEventListener* StartWatchdog();

/// Makes an unhandled exception print its code and address (relative to the module's base) and end the
/// process.
void InstallCrashReport();

} // namespace orva::test
