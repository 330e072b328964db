// The checks of the checked build are compiled in: each kind ends the program, and the DLL contains them.
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"

#include <gmock/gmock.h>

#include <climits>

namespace orva::test
{
namespace
{

using testing::HasSubstr;

// The exit code of the C runtime's abort().
constexpr DWORD kAborted = 3;

// Volatile, so that the compiler cannot evaluate the misuses below.
volatile int g_result = 0;
volatile int g_largest = INT_MAX;
volatile size_t g_nine = 9;

__attribute__((noinline)) void Overrun(volatile char* text, size_t size)
{
    for (size_t i = 0; i < size; ++i)
    {
        text[i] = 'x';
    }
}

void AddBeyondTheLargestInteger()
{
    g_result = g_largest + 1;
}

// Overwrites what guards the return address, and not that itself, so that the crash can be reported.
__attribute__((noinline)) void OverwriteTheStack()
{
    char text[16] = "";
    Overrun(text, 2 * sizeof text);
    g_result = text[0];
}

void ReadAVectorBeyondItsEnd()
{
    const std::vector<int> numbers(4);
    g_result = numbers[g_nine];
}

// A misuse for each kind of check, and how it ends the program.
struct CMisuse
{
    const char* name;
    void (*commit)();
    DWORD exitCode;
    const char* said;
};

constexpr char kTrapped[] = "exception 0xc000001d at test_checked_build.exe+0x";

const CMisuse kMisuses[] = {
    {"undefined", &AddBeyondTheLargestInteger, kCrashExitCode, kTrapped},
    {"stack", &OverwriteTheStack, kCrashExitCode, kTrapped},
    {"library", &ReadAVectorBeyondItsEnd, kAborted, "__n < this->size()"},
};

// How often these bytes contain the illegal instruction (ud2) that a failed check executes.
size_t CountTraps(const std::string& bytes)
{
    constexpr char kTrap[] = "\x0F\x0B";
    size_t count = 0;
    for (size_t at = bytes.find(kTrap); at != std::string::npos; at = bytes.find(kTrap, at + 2))
    {
        ++count;
    }
    return count;
}

// Each misuse is committed by this program, started once more with the misuse's name in its environment.
TEST(ChecksTest, EveryKindOfCheckEndsTheProgramAndIsInTheDll)
{
    constexpr wchar_t kMisuse[] = L"ORVA_HELPER";
    wchar_t asked[16] = L"";
    GetEnvironmentVariableW(kMisuse, asked, static_cast<DWORD>(std::size(asked)));
    for (const CMisuse& misuse : kMisuses)
    {
        if (Utf8(asked) == misuse.name)
        {
            misuse.commit();
            return;
        }
    }
    for (const CMisuse& misuse : kMisuses)
    {
        SCOPED_TRACE(misuse.name);
        CChildProcess process({.program = BuiltFile(L"test_checked_build.exe"),
                               .arguments = {L"--gtest_catch_exceptions=0"},
                               .environment = {{kMisuse, Widen(misuse.name)}}});
        EXPECT_EQ(process.WaitForExit(), misuse.exitCode) << process.Output();
        EXPECT_THAT(process.Output(), HasSubstr(misuse.said));
    }

    const std::string bytes = ReadFileBytes(BuiltFile(L"OrvaOscAddin.dll")).value_or("");
    EXPECT_GE(CountTraps(bytes), 1'000u);
    EXPECT_THAT(bytes, HasSubstr("*** stack smashing detected ***"));
    EXPECT_THAT(bytes, HasSubstr("!this->empty()"));
}

} // namespace
} // namespace orva::test
