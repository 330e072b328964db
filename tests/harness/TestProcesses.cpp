#include "harness/TestProcesses.h"

#include "harness/ProcessRunner.h"
#include "harness/Text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string_view>

namespace orva::test
{

namespace
{

constexpr wchar_t kNumberVariable[] = L"ORVA_TEST_PROCESS";
// Marks the lines for the parent among all that a test program writes.
constexpr std::string_view kToldMark = "ORVA_TOLD ";

// What GoogleTest writes at the end of a program whose one test has passed.
constexpr std::string_view kPassed = "[  PASSED  ] 1 test.";

std::wstring OwnProgram()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

void AddTold(const std::string& output, std::vector<std::string>& told)
{
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with(kToldMark))
        {
            // Lines end with CR LF.
            told.push_back(line.substr(kToldMark.size(), line.find('\r') - kToldMark.size()));
        }
    }
}

} // namespace

std::optional<int> ProcessNumber()
{
    wchar_t number[16];
    const DWORD length = GetEnvironmentVariableW(kNumberVariable, number, ARRAYSIZE(number));
    return length == 0 || length >= ARRAYSIZE(number) ? std::nullopt : std::optional(std::stoi(number));
}

void TellStarter(const std::string& line)
{
    // A line of its own, whatever was written before.
    std::printf("\n%s%s\n", kToldMark.data(), line.c_str());
    std::fflush(stdout);
}

std::vector<std::string> RunInProcesses(const std::vector<int>& numbers, DWORD timeout,
                                        const std::map<std::wstring, std::wstring>& environment)
{
    const ULONGLONG end = GetTickCount64() + timeout;
    const auto& test = *testing::UnitTest::GetInstance()->current_test_info();
    CProcessOptions options{
        .program = OwnProgram(),
        .arguments = {L"--gtest_filter=" + Wide(test.test_suite_name()) + L"." + Wide(test.name()),
                      L"--gtest_brief=1"},
        .environment = environment};
    std::vector<std::unique_ptr<CChildProcess>> processes;
    for (const int number : numbers)
    {
        options.environment[kNumberVariable] = std::to_wstring(number);
        processes.push_back(std::make_unique<CChildProcess>(options));
    }
    std::vector<std::string> told;
    for (size_t index = 0; index < processes.size(); ++index)
    {
        const ULONGLONG now = GetTickCount64();
        const auto code = processes[index]->WaitForExit(now < end ? static_cast<DWORD>(end - now) : 0);
        const std::string output = processes[index]->Output();
        // The exit code alone proves nothing: it is also 0 when Wine's server goes away under the program.
        if (code != 0u || output.find(kPassed) == std::string::npos)
        {
            ADD_FAILURE() << "process " << numbers[index]
                          << (code ? " ended with " + std::to_string(*code) : " did not end in time") << ":\n"
                          << output;
        }
        AddTold(output, told);
    }
    return told;
}

} // namespace orva::test
