// The debug log: its switch, its file and its lines.
//
// The switch is read once per process, so each case runs in a process of its own: this program again, with
// one of the disabled tests of the suite DebugLogChild as its script.
#include "support/DebugLog.h"

#include "harness/DebugOutput.h"
#include "harness/Files.h"
#include "harness/ImportHook.h"
#include "harness/LogFile.h"
#include "harness/ProcessRunner.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <utility>

namespace
{

using namespace orva::test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char kOldLine[] = "[2011-01-20 14:03:07] CConnect::OnConnection\r\n";

// Runs one script in a new process, in `folder` if one is given, and returns its debugger output.
std::vector<std::string> RunScript(const std::string& name, const std::wstring& folder = {})
{
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::string filter = "--gtest_filter=DebugLogChild.DISABLED_" + name;
    CProcessOptions options;
    options.program = program;
    options.arguments = {L"--gtest_also_run_disabled_tests", std::wstring(filter.begin(), filter.end())};
    options.folder = folder;
    options.debug = true;
    CChildProcess child(options);
    const std::optional<DWORD> code = child.WaitForExit();
    EXPECT_EQ(code, 0u) << child.Output();
    EXPECT_THAT(child.Output(), testing::HasSubstr("[  PASSED  ] 1 test."));
    return child.DebugLines();
}

int __cdecl WriteNothing(int, const void*, unsigned)
{
    errno = ENOSPC;
    return -1;
}

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

// Every test starts without the switch in either hive and without a log.
class DebugLog : public testing::Test
{
protected:
    DebugLog()
        : m_userTree(HKEY_CURRENT_USER, kLogSwitchKey), m_machineTree(HKEY_LOCAL_MACHINE, kLogSwitchKey),
          m_user(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue),
          m_machine(HKEY_LOCAL_MACHINE, kLogSwitchKey, kLogSwitchValue)
    {
        Reset();
    }
    ~DebugLog() override { DeleteLog(); }

    void Reset()
    {
        m_userTree.Remove();
        m_machineTree.Remove();
        DeleteLog();
    }

    void SwitchOn() { m_user.SetDword(1); }

    CRegistryTreeGuard m_userTree;
    CRegistryTreeGuard m_machineTree;
    CRegistryValue m_user;
    CRegistryValue m_machine;
};

} // namespace

TEST(DebugLogChild, DISABLED_WritesOneEntry)
{
    WriteDebugLog(GetDebugLog(), "CConnect::OnConnection");
}

TEST(DebugLogChild, DISABLED_WritesEveryForm)
{
    WriteDebugLog(GetDebugLog(), "CHttpRequest::PerformTextRequest");
    WriteDebugLog(GetDebugLog(), "CHttpRequest::PerformTextRequest", "response httpStatus", 200);
    WriteDebugLog(GetDebugLog(), "F", "negative", -2147483647 - 1);
    WriteDebugLog(GetDebugLog(), "F", "status", static_cast<std::int32_t>(4294967295u));
    WriteDebugLog(GetDebugLog(), "F", "narrow", std::string("\xE4 text"));
    WriteDebugLog(GetDebugLog(), "F", "literal", "a b");
    WriteDebugLog(GetDebugLog(), "F", "wide", std::wstring(L"\x00E4\x0416\x20AC"));
    WriteDebugLog(GetDebugLog(), "CheckForUpdate", "TextRequest succeeded", "");
    WriteDebugLog(GetDebugLog(), "F", "", std::wstring());
    WriteDebugLog(GetDebugLog(), "");
    LogEntry("CConnect::OnConnection");
    LogMessage("CConnect::OnConnection", "check for updates");
}

TEST(DebugLogChild, DISABLED_ReadsTheFileAfterEachEntry)
{
    for (const char* text : {"one", "two", "three"})
    {
        WriteDebugLog(GetDebugLog(), text);
        ASSERT_FALSE(ReadLogTexts().empty());
        EXPECT_EQ(ReadLogTexts().back(), text);
    }
}

TEST(DebugLogChild, DISABLED_SharesTheFile)
{
    WriteDebugLog(GetDebugLog(), "mine");
    const HANDLE other = CreateFileW(LogPath().c_str(), FILE_APPEND_DATA | GENERIC_READ,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE) << GetLastError();
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(other, "theirs\r\n", 8, &written, nullptr));
    CloseHandle(other);
    WriteDebugLog(GetDebugLog(), "mine again");
}

TEST(DebugLogChild, DISABLED_TogglesTheSwitchBetweenTwoEntries)
{
    CLogFile& log = GetDebugLog();
    WriteDebugLog(log, "first");
    CRegistryValue value(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue);
    value.SetDword(log.IsOpen() ? 0 : 1);
    WriteDebugLog(GetDebugLog(), "second");
    EXPECT_EQ(&GetDebugLog(), &log);
}

TEST(DebugLogChild, DISABLED_WritesTwoEntriesInOneSecond)
{
    for (int attempt = 0; attempt < 20; ++attempt)
    {
        const std::time_t start = std::time(nullptr);
        WriteDebugLog(GetDebugLog(), "early");
        WriteDebugLog(GetDebugLog(), "late");
        if (std::time(nullptr) == start)
        {
            return;
        }
    }
    FAIL() << "no two entries in one second";
}

TEST(DebugLogChild, DISABLED_WritesToAFullDisk)
{
    WriteDebugLog(GetDebugLog(), "kept");
    {
        const CImportHook fullDisk(GetModuleHandleW(nullptr), "msvcrt.dll", "_write", &WriteNothing);
        WriteDebugLog(GetDebugLog(), "lost");
    }
    WriteDebugLog(GetDebugLog(), "F", "lost", 1);
}

TEST(DebugLogChild, DISABLED_WritesTwoMebibytes)
{
    const std::string text(4096, 'x');
    for (int i = 0; i < 512; ++i)
    {
        WriteDebugLog(GetDebugLog(), text);
    }
}

// The user's switch wins where it can be read. How it is read is tested with the registry's utilities.
TEST_F(DebugLog, OnlyTheSwitchOneMakesAFileAndEveryEntryReachesTheDebugger)
{
    struct CCase
    {
        std::optional<DWORD> user;
        std::optional<DWORD> machine;
        bool isOn;
    };
    constexpr std::nullopt_t kNone = std::nullopt;
    for (const CCase& row : {CCase{kNone, kNone, false}, CCase{1, kNone, true}, CCase{kNone, 1, true},
                             CCase{1, 0, true}, CCase{0, 1, false}, CCase{2, 1, false},
                             CCase{0x01000000, 1, false}, CCase{0x101, 1, false}, CCase{kNone, 2, false}})
    {
        SCOPED_TRACE(testing::PrintToString(row.user) + ", " + testing::PrintToString(row.machine));
        Reset();
        if (row.user)
        {
            m_user.SetDword(*row.user);
        }
        if (row.machine)
        {
            m_machine.SetDword(*row.machine);
        }
        EXPECT_THAT(RunScript("WritesOneEntry"), ElementsAre("CConnect::OnConnection"));
        EXPECT_EQ(FolderExists(LogFolder()), row.isOn);
        EXPECT_THAT(ReadLogTexts(),
                    ElementsAreArray(std::vector<std::string>(row.isOn, "CConnect::OnConnection")));
    }
}

TEST_F(DebugLog, ThereIsOneFileUnderItsFixedName)
{
    SwitchOn();
    RunScript("WritesOneEntry");
    EXPECT_THAT(ListFolder(LogFolder()), ElementsAre(L"logfile_OrvaAddIn.txt"));
}

TEST_F(DebugLog, WritesEveryFormToFileAndDebugger)
{
    SwitchOn();
    const std::vector<std::string> lines = RunScript("WritesEveryForm");
    EXPECT_THAT(lines, ElementsAre("CHttpRequest::PerformTextRequest",
                                   "CHttpRequest::PerformTextRequest() response httpStatus 200",
                                   "F() negative -2147483648", "F() status -1", "F() narrow \xE4 text",
                                   "F() literal a b", "F() wide \xE4\x16\xAC",
                                   "CheckForUpdate() TextRequest succeeded ", "F()  ", "",
                                   "CConnect::OnConnection", "CConnect::OnConnection() check for updates "));
    EXPECT_EQ(ReadLogTexts(), lines);
}

TEST_F(DebugLog, ALineIsTheLocalTimeInBracketsTheTextAndALineEnd)
{
    SwitchOn();
    const std::time_t before = std::time(nullptr);
    RunScript("WritesOneEntry");
    const std::time_t after = std::time(nullptr);

    const std::string log = ReadLog();
    ASSERT_EQ(log.size(), 1 + 19 + 2 + 22 + 2u) << log;
    EXPECT_EQ(log[0], '[');
    EXPECT_EQ(log.substr(20), "] CConnect::OnConnection\r\n");
    bool found = false;
    for (std::time_t time = before; time <= after; ++time)
    {
        char text[20] = {};
        std::tm local = {};
        ASSERT_EQ(localtime_s(&local, &time), 0);
        std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
        found = found || log.substr(1, 19) == text;
    }
    EXPECT_TRUE(found) << log;
}

TEST_F(DebugLog, TwoEntriesInOneSecondCarryTheSameTimeAndKeepTheirOrder)
{
    SwitchOn();
    RunScript("WritesTwoEntriesInOneSecond");
    const std::vector<CLogEntry> entries = ReadLogEntries();
    ASSERT_GE(entries.size(), 2u);
    EXPECT_EQ(entries[entries.size() - 2].text, "early");
    EXPECT_EQ(entries.back().text, "late");
    EXPECT_EQ(entries[entries.size() - 2].time, entries.back().time);
    EXPECT_FALSE(entries.back().time.empty());
}

TEST_F(DebugLog, EveryEntryIsInTheFileAtOnce)
{
    SwitchOn();
    RunScript("ReadsTheFileAfterEachEntry");
    EXPECT_THAT(ReadLogTexts(), ElementsAre("one", "two", "three"));
}

TEST_F(DebugLog, OthersMayReadAndWriteTheFileMeanwhile)
{
    SwitchOn();
    RunScript("SharesTheFile");
    const std::vector<CLogEntry> entries = ReadLogEntries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].text, "mine");
    EXPECT_EQ(entries[1].text, "theirs\r");
    EXPECT_EQ(entries[2].text, "mine again");
}

TEST_F(DebugLog, TheSwitchIsReadOncePerProcess)
{
    EXPECT_THAT(RunScript("TogglesTheSwitchBetweenTwoEntries"), ElementsAre("first", "second"));
    EXPECT_FALSE(FolderExists(LogFolder()));

    SwitchOn();
    EXPECT_THAT(RunScript("TogglesTheSwitchBetweenTwoEntries"), ElementsAre("first", "second"));
    EXPECT_THAT(ReadLogTexts(), ElementsAre("first", "second"));
}

TEST_F(DebugLog, AFileOfUpToOneMebibyteIsAppendedToAndALargerOneEmptied)
{
    SwitchOn();
    constexpr size_t kLine = 46;
    const std::string old = std::string(1'048'576 - (sizeof(kOldLine) - 1), 'x') + kOldLine;
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    WriteFileBytes(LogPath(), old);
    RunScript("WritesOneEntry");
    EXPECT_EQ(ReadLog().size(), old.size() + kLine);
    EXPECT_TRUE(ReadLog().starts_with(old));
    EXPECT_EQ(ReadLogTexts().back(), "CConnect::OnConnection");

    WriteFileBytes(LogPath(), "x" + old);
    RunScript("WritesOneEntry");
    EXPECT_EQ(ReadLog().size(), kLine);
    EXPECT_THAT(ReadLogTexts(), ElementsAre("CConnect::OnConnection"));
}

TEST_F(DebugLog, AFileMayGrowBeyondOneMebibyteWhileItIsOpen)
{
    SwitchOn();
    RunScript("WritesTwoMebibytes");
    EXPECT_EQ(ReadLog().size(), 512u * (4096 + 24));
}

TEST_F(DebugLog, WithoutALocalApplicationDataFolderTheLogIsOffAndNothingIsMade)
{
    SwitchOn();
    const CTempFolder temp;
    CRegistryValue folder(HKEY_CURRENT_USER,
                          L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                          L"Local AppData");
    folder.SetString(temp.File(L"missing"));
    EXPECT_THAT(RunScript("WritesOneEntry", temp.Path()), ElementsAre("CConnect::OnConnection"));

    EXPECT_THAT(ListFolder(temp.Path()), IsEmpty());
    // The log's folder if its path lacked the missing part.
    const std::wstring atTheRoot = temp.Path().substr(0, 2) + L"\\ORVA Connector";
    EXPECT_FALSE(FolderExists(atTheRoot));
    RemovePath(atTheRoot);
}

TEST_F(DebugLog, AFolderThatCannotBeMadeLeavesTheLogOff)
{
    SwitchOn();
    WriteFileBytes(LogFolder(), "a file where the folder should be");
    EXPECT_THAT(RunScript("WritesOneEntry"), ElementsAre("CConnect::OnConnection"));
    EXPECT_EQ(ReadFileBytes(LogFolder()), "a file where the folder should be");
    RemovePath(LogFolder());
}

TEST_F(DebugLog, AFileThatCannotBeOpenedLeavesTheLogOff)
{
    SwitchOn();
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    CreateDirectoryW(LogPath().c_str(), nullptr);
    EXPECT_THAT(RunScript("WritesEveryForm").size(), 12u);
    EXPECT_TRUE(FolderExists(LogPath()));
}

TEST_F(DebugLog, AWriteFailureIsIgnoredAndEndsTheFile)
{
    SwitchOn();
    EXPECT_THAT(RunScript("WritesToAFullDisk"), ElementsAre("kept", "lost", "F() lost 1"));
    EXPECT_THAT(ReadLogTexts(), ElementsAre("kept"));
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
