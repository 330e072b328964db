// The checks of the checked build are compiled in: each misuse ends the program, and the DLL contains the
// checks.
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"

#include <gmock/gmock.h>

namespace orva::test
{

namespace
{

using testing::HasSubstr;

constexpr wchar_t kProgram[] = L"test_checked_build.exe";

// The exit code of the C runtime's abort().
constexpr DWORD kAborted = 3;

// How a misuse ends the program.
struct MisuseCase
{
    const char* misuse;
    DWORD exitCode;
    const char* said;
};

constexpr char kTrapped[] = "exception 0xc000001d at test_checked_build.exe+0x";

void PrintTo(const MisuseCase& value, std::ostream* out)
{
    *out << value.misuse;
}

class ChecksTest : public testing::TestWithParam<MisuseCase>
{
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

} // namespace

TEST_P(ChecksTest, EndTheProgramThat)
{
    CChildProcess process(
        {.program = BuiltFile(kProgram),
         .arguments = {L"--gtest_filter=Misuse." + Widen(GetParam().misuse), L"--gtest_catch_exceptions=0"},
         .environment = {{L"ORVA_HELPER", L"1"}}});
    EXPECT_EQ(process.WaitForExit(), GetParam().exitCode) << process.Output();
    EXPECT_THAT(process.Output(), HasSubstr(GetParam().said));
}

INSTANTIATE_TEST_SUITE_P(
    , ChecksTest,
    testing::Values(MisuseCase{"AddsBeyondTheLargestInteger", kCrashExitCode, kTrapped},
                    MisuseCase{"DividesByZero", kCrashExitCode, kTrapped},
                    MisuseCase{"ShiftsByMoreThanTheWidth", kCrashExitCode, kTrapped},
                    MisuseCase{"ReadsAPlainArrayBeyondItsEnd", kCrashExitCode, kTrapped},
                    MisuseCase{"ReadsAMemberOfNoObject", kCrashExitCode, kTrapped},
                    MisuseCase{"ReadsAnIntegerAtAnOddAddress", kCrashExitCode, kTrapped},
                    MisuseCase{"ReadsABoolThatIsNeither", kCrashExitCode, kTrapped},
                    MisuseCase{"OverwritesItsReturnAddress", kCrashExitCode, kTrapped},
                    MisuseCase{"ReadsAVectorBeyondItsEnd", kAborted, "__n < this->size()"},
                    MisuseCase{"ReadsAStringBeyondItsEnd", kAborted, "__pos <= size()"},
                    MisuseCase{"ReadsAnEmptyOptional", kAborted, "this->_M_is_engaged()"}),
    [](const testing::TestParamInfo<MisuseCase>& test) { return std::string(test.param.misuse); });

TEST(ChecksInTheAddIn, EveryKindIsCompiledIn)
{
    const std::string bytes = ReadFileBytes(BuiltFile(L"OrvaOscAddin.dll")).value_or("");
    EXPECT_GE(CountTraps(bytes), 1'000u);
    EXPECT_THAT(bytes, HasSubstr("*** stack smashing detected ***"));
    EXPECT_THAT(bytes, HasSubstr("!this->empty()"));
}

} // namespace orva::test
