// Tests that run in several processes: each has its number, tells its lines, and fails the test when it
// fails.
#include "harness/TestProcesses.h"

#include "harness/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <stdexcept>

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD kTimeout = 60'000;

} // namespace

TEST(TestProcessesTest, EachProcessHasItsNumberAndItsLinesArrive)
{
    if (const auto number = ProcessNumber())
    {
        TellStarter("number " + std::to_string(*number));
        TellStarter("two words");
        return;
    }
    EXPECT_THAT(RunInProcesses({3, 5}, kTimeout),
                ElementsAre("number 3", "two words", "number 5", "two words"));
    EXPECT_EQ(ProcessNumber(), std::nullopt);
}

TEST(TestProcessesTest, TheEnvironmentIsTheProcesses)
{
    if (ProcessNumber())
    {
        wchar_t value[16] = L"";
        GetEnvironmentVariableW(L"ORVA_HARNESS_WORD", value, ARRAYSIZE(value));
        EXPECT_STREQ(value, L"given");
        return;
    }
    EXPECT_THAT(RunInProcesses({0}, kTimeout, {{L"ORVA_HARNESS_WORD", L"given"}}), IsEmpty());
}

TEST(TestProcessesTest, AFailureInAProcessIsTheTests)
{
    if (const auto number = ProcessNumber())
    {
        EXPECT_EQ(*number, 1) << "the second one fails";
        TellStarter("told all the same");
        return;
    }
    std::vector<std::string> told;
    EXPECT_NONFATAL_FAILURE(told = RunInProcesses({1, 2}, kTimeout), "the second one fails");
    EXPECT_THAT(told, ElementsAre("told all the same", "told all the same"));
}

TEST(TestProcessesTest, AProcessThatEndsBeforeItsTestIsAFailureWhateverItsCode)
{
    if (ProcessNumber())
    {
        TerminateProcess(GetCurrentProcess(), 0);
    }
    EXPECT_NONFATAL_FAILURE(RunInProcesses({4}, kTimeout), "process 4 ended with 0");
}

TEST(TestProcessesTest, AProcessThatDoesNotEndIsAFailure)
{
    if (ProcessNumber())
    {
        Sleep(kTimeout);
        return;
    }
    EXPECT_NONFATAL_FAILURE(RunInProcesses({0}, 100), "did not end in time");
}

} // namespace orva::test
