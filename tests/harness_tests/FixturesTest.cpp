// The fixtures for registry, folders, processes, watchdog and log: what they restore, and what they must not
// overlook.
#include "harness/Files.h"
#include "harness/LogFile.h"
#include "harness/ProcessRunner.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"
#include "harness/Watchdog.h"

#include <gmock/gmock.h>

#include <optional>

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

constexpr wchar_t kKey[] = L"Software\\OrvaHarnessTest";
constexpr wchar_t kDeepKey[] = L"Software\\OrvaHarnessTest\\a\\b";

CProcessOptions Helper(const std::wstring& test)
{
    return {.program = BuiltFile(L"test_harness_tests.exe"),
            .arguments = {L"--gtest_filter=HelperProgram." + test},
            .environment = {{L"ORVA_HELPER", L"1"}}};
}

} // namespace

TEST(RegistryTest, AValueIsRestoredAndCreatedKeysAreRemoved)
{
    CRegistryTreeGuard guard(HKEY_CURRENT_USER, kKey);
    guard.Remove();
    {
        CRegistryValue value(HKEY_CURRENT_USER, kDeepKey, L"v");
        value.SetDword(7);
        {
            CRegistryValue inner(HKEY_CURRENT_USER, kDeepKey, L"v");
            inner.SetString(L"text");
            EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kDeepKey, L"v"), L"text");
            EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kDeepKey, L"v"), std::nullopt);
            inner.Remove();
            EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kDeepKey, L"v"), std::nullopt);
        }
        EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kDeepKey, L"v"), 7u);
    }
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kKey));
    EXPECT_TRUE(RegistryKeyExists(HKEY_CURRENT_USER, L"Software"));
}

TEST(RegistryTest, ATreeIsExportedWholeAndRestoredAsItWas)
{
    CRegistryTreeGuard outer(HKEY_CURRENT_USER, kKey);
    outer.Remove();
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kKey), "(no key)\n");
    CRegistryValue(HKEY_CURRENT_USER, kDeepKey, L"x").SetDword(1);
    CRegistryValue(HKEY_CURRENT_USER, kDeepKey, L"").SetString(L"gone");
    CRegistryValue number(HKEY_CURRENT_USER, kKey, L"number");
    number.SetDword(3);
    CRegistryValue text(HKEY_CURRENT_USER, kDeepKey, L"");
    text.SetString(L"sch\u00f6n");
    CRegistryValue unterminated(HKEY_CURRENT_USER, kDeepKey, L"raw");
    unterminated.SetBytes({'a', 0}, REG_SZ);
    CRegistryValue bytes(HKEY_CURRENT_USER, kDeepKey, L"bytes");
    bytes.SetBytes({1, 0xFF});
    const std::string exported = "[Software\\OrvaHarnessTest]\n"
                                 "number = REG_DWORD 0x00000003\n"
                                 "[Software\\OrvaHarnessTest\\a]\n"
                                 "[Software\\OrvaHarnessTest\\a\\b]\n"
                                 "@ = REG_SZ \"sch\xc3\xb6n\"\n"
                                 "bytes = hex(3) 01 ff\n"
                                 "raw = REG_SZ \"a(not terminated)\"\n";
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kKey), exported);
    {
        CRegistryTreeGuard guard(HKEY_CURRENT_USER, kKey);
        guard.Remove();
        EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kKey));
    }
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kKey), exported);
}

TEST(FilesTest, ATempFolderIsListedWholeAndRemovedWithItsContent)
{
    std::wstring path;
    {
        const CTempFolder folder;
        const CTempFolder other;
        path = folder.Path();
        EXPECT_NE(path, other.Path());
        EXPECT_TRUE(ListFolder(path).empty());
        CreateDirectoryW(folder.File(L"sub").c_str(), nullptr);
        WriteFileBytes(folder.File(L"sub\\f"), std::string("a\0b", 3));
        SetFileAttributesW(folder.File(L"sub\\f").c_str(), FILE_ATTRIBUTE_READONLY);
        EXPECT_EQ(ReadFileBytes(folder.File(L"sub\\f")), std::string("a\0b", 3));
        EXPECT_TRUE(WaitForFile(folder.File(L"sub\\f"), 3, 0));
        EXPECT_FALSE(WaitForFile(folder.File(L"sub\\f"), 4, 0));
        EXPECT_THAT(ListFolder(path), ElementsAre(L"sub\\", L"sub\\f"));
        EXPECT_EQ(ReadFileBytes(folder.File(L"none")), std::nullopt);
    }
    EXPECT_FALSE(FolderExists(path));
}

TEST(FilesTest, APrivateTempIsTheTemporaryFolderAndTheOldOneIsRestoredWhateverItsLength)
{
    const CPrivateTemp outer;
    const std::wstring usual = outer.Path();
    const std::wstring longOne = usual + L"\\" + std::wstring(300, L'x');
    for (const std::wstring& before : {usual, longOne})
    {
        SetEnvironmentVariableW(L"TEMP", before.c_str());
        {
            const CPrivateTemp temp;
            wchar_t during[MAX_PATH];
            GetTempPathW(MAX_PATH, during);
            EXPECT_EQ(during, temp.Path() + L"\\");
        }
        std::wstring after(1'000, L'\0');
        after.resize(GetEnvironmentVariableW(L"TEMP", after.data(), static_cast<DWORD>(after.size())));
        EXPECT_EQ(after, before);
    }
}

TEST(ProcessRunnerTest, CapturesOutputAndExitCode)
{
    const CProcessResult result = RunProcess(L"cmd.exe", {L"/c", L"echo hello& exit 5"});
    EXPECT_EQ(result.exitCode, 5u);
    EXPECT_EQ(result.output, "hello\r\n");
}

TEST(ProcessRunnerTest, AProgramThatDoesNotEndHasNoExitCodeUntilItIsEnded)
{
    CChildProcess process(Helper(L"Waits"));
    EXPECT_EQ(process.WaitForExit(200), std::nullopt);
    EXPECT_TRUE(process.IsRunning());
    process.End();
    EXPECT_FALSE(process.IsRunning());
}

TEST(ProcessRunnerTest, ProgramsEndWithTheProcessThatStartedThem)
{
    std::optional<CChildProcess> starter(std::in_place, Helper(L"StartsAnother"));
    const std::string mark = "started ";
    ASSERT_TRUE(WaitUntil(
        [&] { return starter->Output().find('\n', starter->Output().find(mark)) != std::string::npos; }));
    const std::string output = starter->Output();
    const UniqueHandle other(
        OpenProcess(SYNCHRONIZE, FALSE, std::stoul(output.substr(output.find(mark) + mark.size()))));
    ASSERT_TRUE(other);
    EXPECT_EQ(WaitForSingleObject(other.get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    starter->End();
    EXPECT_EQ(WaitForSingleObject(other.get(), kPatience), WAIT_OBJECT_0);
}

TEST(WatchdogTest, EndsAHungTestAndNamesIt)
{
    CChildProcess process(Helper(L"Hangs"));
    EXPECT_EQ(process.WaitForExit(), static_cast<DWORD>(kHangExitCode));
    EXPECT_THAT(process.Output(), HasSubstr("[   HANG   ] HelperProgram.Hangs exceeded its time."));
    EXPECT_THAT(process.Output(), HasSubstr("Last part: waiting for nothing"));
}

TEST(LogFileTest, ALineThatIsNoEntryIsReadAsAWhole)
{
    const CDebugLogOn log;
    EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue), 1u);
    EXPECT_EQ(ReadLog(), "");
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    WriteFileBytes(LogPath(), "[2011-01-20 14:03:07] CConnect::OnConnection\r\n"
                              "[2011-01-20 14:03:08] F() message \r\n"
                              "second line\r\n[2011-01-20 14:03:08] cut");
    EXPECT_THAT(ReadLogTexts(), ElementsAre("CConnect::OnConnection", "F() message ", "second line\r",
                                            "[2011-01-20 14:03:08] cut"));
    EXPECT_EQ(ReadLogEntries()[1].time, "2011-01-20 14:03:08");
    EXPECT_EQ(ReadLogEntries()[2].time, "");
    EXPECT_FALSE(WaitForLogText("F() message", 0));
}

} // namespace orva::test
