// The fixtures for registry, folders, processes, debugger output and log: what they report and restore.
#include "harness/CommandLine.h"
#include "harness/DebugOutput.h"
#include "harness/Files.h"
#include "harness/LogFile.h"
#include "harness/ProcessRunner.h"
#include "harness/ProxySetting.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

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

} // namespace

TEST(RegistryTest, AValueIsRestoredAndCreatedKeysAreRemoved)
{
    CRegistryTreeGuard guard(HKEY_CURRENT_USER, kKey);
    guard.Remove();
    {
        CRegistryValue value(HKEY_CURRENT_USER, kDeepKey, L"v");
        value.SetDword(7);
        EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kDeepKey, L"v"), 7u);
        {
            CRegistryValue inner(HKEY_CURRENT_USER, kDeepKey, L"v");
            inner.SetString(L"text");
            EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kDeepKey, L"v"), L"text");
            inner.Remove();
            EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kDeepKey, L"v"), std::nullopt);
        }
        EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kDeepKey, L"v"), 7u);
    }
    EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kKey));
    EXPECT_TRUE(RegistryKeyExists(HKEY_CURRENT_USER, L"Software"));
}

TEST(RegistryTest, ExportsATreeAsText)
{
    CRegistryTreeGuard guard(HKEY_CURRENT_USER, kKey);
    guard.Remove();
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kKey), "(no key)\n");
    CRegistryValue(HKEY_CURRENT_USER, kDeepKey, L"x").SetDword(1);
    CRegistryValue number(HKEY_CURRENT_USER, kKey, L"number");
    number.SetDword(3);
    CRegistryValue text(HKEY_CURRENT_USER, kDeepKey, L"");
    text.SetString(L"sch\u00f6n");
    CRegistryValue bytes(HKEY_CURRENT_USER, kDeepKey, L"bytes");
    bytes.SetBytes({1, 0xFF});
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kKey), "[Software\\OrvaHarnessTest]\n"
                                                          "number = REG_DWORD 0x00000003\n"
                                                          "[Software\\OrvaHarnessTest\\a]\n"
                                                          "[Software\\OrvaHarnessTest\\a\\b]\n"
                                                          "@ = REG_SZ \"sch\xc3\xb6n\"\n"
                                                          "bytes = hex(3) 01 ff\n");
}

TEST(RegistryTest, ATreeIsRestoredAsItWas)
{
    CRegistryTreeGuard outer(HKEY_CURRENT_USER, kKey);
    CRegistryValue value(HKEY_CURRENT_USER, kDeepKey, L"v");
    value.SetString(L"kept");
    const std::string before = ExportRegistryKey(HKEY_CURRENT_USER, kKey);
    {
        CRegistryTreeGuard guard(HKEY_CURRENT_USER, kKey);
        guard.Remove();
        EXPECT_FALSE(RegistryKeyExists(HKEY_CURRENT_USER, kKey));
    }
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kKey), before);
}

TEST(RegistryTest, TheProxySettingIsRestored)
{
    constexpr wchar_t kSettings[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
    const std::string before = ExportRegistryKey(HKEY_CURRENT_USER, kSettings);
    {
        const CProxySetting proxy(4711);
        EXPECT_EQ(RegistryDword(HKEY_CURRENT_USER, kSettings, L"ProxyEnable"), 1u);
        EXPECT_EQ(RegistryString(HKEY_CURRENT_USER, kSettings, L"ProxyServer"), L"127.0.0.1:4711");
    }
    EXPECT_EQ(ExportRegistryKey(HKEY_CURRENT_USER, kSettings), before);
}

TEST(FilesTest, ATempFolderIsRemovedWithItsContent)
{
    std::wstring path;
    {
        const CTempFolder folder;
        const CTempFolder other;
        path = folder.Path();
        EXPECT_NE(path, other.Path());
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

TEST(FilesTest, APrivateTempIsTheTemporaryFolder)
{
    wchar_t before[MAX_PATH], during[MAX_PATH], after[MAX_PATH];
    GetTempPathW(MAX_PATH, before);
    {
        const CPrivateTemp temp;
        GetTempPathW(MAX_PATH, during);
        EXPECT_EQ(during, temp.Path() + L"\\");
        EXPECT_NE(std::wstring(during), before);
    }
    GetTempPathW(MAX_PATH, after);
    EXPECT_STREQ(after, before);
}

TEST(ProcessRunnerTest, CapturesOutputAndExitCode)
{
    const CProcessResult result = RunProcess(L"cmd.exe", {L"/c", L"echo hello& exit 5"});
    EXPECT_EQ(result.exitCode, 5u);
    EXPECT_THAT(result.output, HasSubstr("hello"));
}

TEST(ProcessRunnerTest, EndsAProgramThatDoesNotEnd)
{
    CChildProcess process({.program = BuiltFile(L"test_harness_tests.exe"),
                           .arguments = {L"--gtest_filter=HelperProgram.Waits"},
                           .environment = {{L"ORVA_HELPER", L"1"}}});
    EXPECT_EQ(process.WaitForExit(200), std::nullopt);
    EXPECT_TRUE(process.IsRunning());
    process.End();
    EXPECT_FALSE(process.IsRunning());
}

TEST(ProcessRunnerTest, FailsForAMissingProgram)
{
    EXPECT_THROW(CChildProcess({.program = L"Z:\\no\\such.exe"}), std::runtime_error);
    EXPECT_THROW(CChildProcess({.program = L"Z:\\no\\such.exe", .debug = true}), std::runtime_error);
}

TEST(ProcessRunnerTest, CollectsDebuggerOutputOfAnotherProcess)
{
    CChildProcess process({.program = BuiltFile(L"test_harness_tests.exe"),
                           .arguments = {L"--gtest_filter=HelperProgram.Speaks"},
                           .environment = {{L"ORVA_HELPER", L"1"}},
                           .debug = true});
    EXPECT_EQ(process.WaitForExit(), 0u) << process.Output();
    EXPECT_THAT(process.DebugLines(), testing::IsSupersetOf({"one", "two "}));
}

TEST(ProcessRunnerTest, QuotesArgumentsAsTheyAreSplit)
{
    const std::vector<std::wstring> arguments = {L"plain", L"two words", L"",      L"quo\"te",
                                                 L"end\\", L"a b\\",     L"\\\\\""};
    int count = 0;
    wchar_t** const parts = CommandLineToArgvW(JoinCommandLine(L"x y.exe", arguments).c_str(), &count);
    ASSERT_EQ(static_cast<size_t>(count), arguments.size() + 1);
    for (size_t i = 0; i < arguments.size(); ++i)
    {
        EXPECT_EQ(arguments[i], parts[i + 1]);
    }
    LocalFree(parts);
}

TEST(WatchdogTest, EndsAHungTestAndNamesIt)
{
    const CProcessResult result = [] {
        CChildProcess process({.program = BuiltFile(L"test_harness_tests.exe"),
                               .arguments = {L"--gtest_filter=HelperProgram.Hangs"},
                               .environment = {{L"ORVA_HELPER", L"1"}}});
        const auto code = process.WaitForExit();
        return CProcessResult{code.value_or(0), process.Output()};
    }();
    EXPECT_EQ(result.exitCode, 97u);
    EXPECT_THAT(result.output, HasSubstr("[   HANG   ] HelperProgram.Hangs exceeded its time."));
    EXPECT_THAT(result.output, HasSubstr("Last part: waiting for nothing"));
}

TEST(ProcessRunnerTest, ProgramsEndWithTheProcessThatStartedThem)
{
    std::optional<CChildProcess> starter(
        std::in_place, CProcessOptions{.program = BuiltFile(L"test_harness_tests.exe"),
                                       .arguments = {L"--gtest_filter=HelperProgram.StartsAnother"},
                                       .environment = {{L"ORVA_HELPER", L"1"}}});
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

TEST(WatchdogTest, ACrashEndsTheProgramWithItsAddress)
{
    CChildProcess process(
        {.program = BuiltFile(L"test_harness_tests.exe"),
         .arguments = {L"--gtest_filter=HelperProgram.Crashes", L"--gtest_catch_exceptions=0"},
         .environment = {{L"ORVA_HELPER", L"1"}}});
    EXPECT_EQ(process.WaitForExit(), 98u);
    EXPECT_THAT(process.Output(),
                HasSubstr("HelperProgram.Crashes: exception 0xc0000005 at test_harness_tests.exe+0x"));
}

TEST(DebugOutputTest, CollectsOwnOutput)
{
    CDebugOutput output;
    OutputDebugStringA("plain text ");
    OutputDebugStringA("");
    OutputDebugStringA("second");
    EXPECT_THAT(output.Lines(), ElementsAre("plain text ", "", "second"));
    output.Clear();
    EXPECT_TRUE(output.Lines().empty());
}

TEST(LogFileTest, ParsesLines)
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
    EXPECT_TRUE(WaitForLogText("F() message ", 0));
    EXPECT_FALSE(WaitForLogText("F() message", 0));
}

TEST(TextTest, ConvertsAndSplits)
{
    EXPECT_EQ(Utf8(L"\u00e4\u20ac"), "\xc3\xa4\xe2\x82\xac");
    EXPECT_EQ(Widen("\xc3\xa4\xe2\x82\xac"), L"\u00e4\u20ac");
    EXPECT_THAT(SplitLines("a\r\n\nb"), ElementsAre("a", "", "b"));
    EXPECT_THAT(SplitLines("a\n"), ElementsAre("a"));
    EXPECT_TRUE(SplitLines("").empty());
}

} // namespace orva::test
