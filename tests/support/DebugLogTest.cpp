// The debug log's entries: their forms, where they go, and the process-wide log.
#include "support/DebugLog.h"

#include "harness/DebugOutput.h"
#include "harness/ImportHook.h"
#include "harness/ProcessRunner.h"
#include "support/LogFixture.h"

#include <cstdlib>
#include <ctime>
#include <utility>

namespace
{

using namespace orva::test;
using testing::Contains;
using testing::ElementsAre;

// The thread whose next allocation fails; 0 for none.
DWORD g_threadWithoutMemory = 0;

// Replaces malloc, and so cannot call it. Fails once only, because throwing std::bad_alloc allocates too.
// Other threads are not affected.
void* __cdecl FailOnce(size_t size)
{
    if (g_threadWithoutMemory != GetCurrentThreadId())
    {
        return std::calloc(1, size);
    }
    g_threadWithoutMemory = 0;
    return nullptr;
}

// The log of this process is closed: it was created, or will be, while the switch is off.
using DebugLog = CLogTest;

} // namespace

TEST_F(DebugLog, WritesEveryFormToFileAndDebugger)
{
    m_user.SetDword(1);
    CLogFile log;
    const CDebugOutput output;
    WriteDebugLog(log, "CHttpRequest::PerformTextRequest");
    WriteDebugLog(log, "CHttpRequest::PerformTextRequest", "response httpStatus", 200);
    WriteDebugLog(log, "F", "negative", -2147483647 - 1);
    WriteDebugLog(log, "F", "status", static_cast<std::int32_t>(4294967295u));
    WriteDebugLog(log, "F", "narrow", std::string("\xE4 text"));
    WriteDebugLog(log, "F", "literal", "a b");
    WriteDebugLog(log, "F", "wide", std::wstring(L"\x00E4\x0416\x20AC"));
    WriteDebugLog(log, "CheckForUpdate", "TextRequest succeeded", "");
    WriteDebugLog(log, "F", "", std::wstring());
    WriteDebugLog(log, "");
    EXPECT_THAT(output.Lines(),
                ElementsAre("CHttpRequest::PerformTextRequest",
                            "CHttpRequest::PerformTextRequest() response httpStatus 200",
                            "F() negative -2147483648", "F() status -1", "F() narrow \xE4 text",
                            "F() literal a b", "F() wide \xE4\x16\xAC",
                            "CheckForUpdate() TextRequest succeeded ", "F()  ", ""));
    EXPECT_EQ(ReadLogTexts(), output.Lines());
}

TEST_F(DebugLog, WithoutAFileEntriesReachTheDebugger)
{
    const CDebugOutput output;
    LogEntry("CConnect::OnConnection");
    LogMessage("CConnect::OnConnection", "check for updates");
    EXPECT_THAT(output.Lines(),
                ElementsAre("CConnect::OnConnection", "CConnect::OnConnection() check for updates "));
    EXPECT_EQ(ReadLog(), "");
}

TEST_F(DebugLog, ALineIsTheLocalTimeInBracketsTheTextAndALineEnd)
{
    m_user.SetDword(1);
    CLogFile log;
    const std::time_t before = std::time(nullptr);
    WriteDebugLog(log, "text");
    const std::time_t after = std::time(nullptr);
    std::vector<std::string> lines;
    for (std::time_t time = before; time <= after; ++time)
    {
        char text[32] = {};
        std::tm local = {};
        ASSERT_EQ(localtime_s(&local, &time), 0);
        std::strftime(text, sizeof(text), "[%Y-%m-%d %H:%M:%S] ", &local);
        lines.push_back(std::string(text) + "text\r\n");
    }
    EXPECT_THAT(lines, Contains(ReadLog()));
}

TEST_F(DebugLog, TwoEntriesInOneSecondCarryTheSameTimeAndKeepTheirOrder)
{
    m_user.SetDword(1);
    CLogFile log;
    std::time_t start = 0;
    do
    {
        start = std::time(nullptr);
        WriteDebugLog(log, "early");
        WriteDebugLog(log, "late");
    } while (std::time(nullptr) != start);
    const std::vector<CLogEntry> entries = ReadLogEntries();
    ASSERT_GE(entries.size(), 2u);
    EXPECT_EQ(entries[entries.size() - 2].text, "early");
    EXPECT_EQ(entries.back().text, "late");
    EXPECT_EQ(entries[entries.size() - 2].time, entries.back().time);
    EXPECT_FALSE(entries.back().time.empty());
}

TEST(DebugLogChild, DISABLED_TogglesTheSwitchBetweenTwoEntries)
{
    CLogFile& log = GetDebugLog();
    LogEntry("first");
    CRegistryValue value(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue);
    value.SetDword(log.IsOpen() ? 0 : 1);
    LogEntry("second");
    EXPECT_EQ(&GetDebugLog(), &log);
}

// So each case takes a process of its own: this program again, with the disabled test as its script.
TEST_F(DebugLog, TheSwitchIsReadOncePerProcess)
{
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    for (const bool isOn : {false, true})
    {
        m_user.SetDword(isOn);
        CProcessOptions options;
        options.program = program;
        options.arguments = {L"--gtest_also_run_disabled_tests", L"--gtest_filter=DebugLogChild.*"};
        options.debug = true;
        CChildProcess child(options);
        EXPECT_EQ(child.WaitForExit(), 0u) << child.Output();
        EXPECT_THAT(child.Output(), testing::HasSubstr("[  PASSED  ] 1 test."));
        EXPECT_THAT(child.DebugLines(), ElementsAre("first", "second"));
        EXPECT_EQ(ReadLogTexts(), isOn ? child.DebugLines() : std::vector<std::string>());
    }
}

TEST_F(DebugLog, WithoutMemoryALineIsLostWithoutAnException)
{
    const CDebugOutput output;
    std::string message = "a message that needs a block of memory of its own";
    {
        const CImportHook noMemory(GetModuleHandleW(nullptr), "msvcrt.dll", "malloc", &FailOnce);
        g_threadWithoutMemory = GetCurrentThreadId();
        LogEntry("CHttpRequest::PerformTextRequest");
        EXPECT_EQ(g_threadWithoutMemory, 0u);
        g_threadWithoutMemory = GetCurrentThreadId();
        LogMessage("CHttpRequest::PerformTextRequest", std::move(message));
        EXPECT_EQ(g_threadWithoutMemory, 0u);
    }
    LogEntry("after");
    EXPECT_THAT(output.Lines(), ElementsAre("after"));
}
