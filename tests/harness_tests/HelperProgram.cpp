// The program that the harness's own tests start: it waits, hangs or starts another on request.
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Watchdog.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace orva::test
{

namespace
{

bool IsAsked()
{
    return GetEnvironmentVariableW(L"ORVA_HELPER", nullptr, 0) != 0;
}

} // namespace

TEST(HelperProgram, Waits)
{
    if (IsAsked())
    {
        Sleep(INFINITE);
    }
}

TEST(HelperProgram, Hangs)
{
    if (IsAsked())
    {
        SetTestDeadline(300);
        NoteTestPart("waiting for nothing");
        Sleep(INFINITE);
    }
}

TEST(HelperProgram, StartsAnother)
{
    if (IsAsked())
    {
        const CChildProcess other({.program = BuiltFile(L"test_harness_tests.exe"),
                                   .arguments = {L"--gtest_filter=HelperProgram.Waits"}});
        std::printf("started %lu\n", static_cast<unsigned long>(other.Id()));
        std::fflush(stdout);
        Sleep(INFINITE);
    }
}

} // namespace orva::test
