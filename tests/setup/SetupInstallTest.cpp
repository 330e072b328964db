// Installing, repairing, replacing and removing without pages: files, registry and exit codes.
#include "harness/Files.h"
#include "harness/LogFile.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"
#include "harness/Thorough.h"
#include "setup/SetupFixture.h"

#include <algorithm>
#include <iterator>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class SetupInstallTest : public SetupFixture
{
};

// The registry without the entry in "Programs and Features", with this path in the place of the DLL's.
std::string RegistrationWithPath(const std::wstring& module)
{
    std::string text;
    for (const wchar_t* const key :
         {kAddInKey, kProgIdKey, kVersionedProgIdKey, kClassKey, kLibraryKey, kInterfaceKey})
    {
        text += ExportRegistryKey(HKEY_LOCAL_MACHINE, key);
    }
    for (const auto& [path, name] : {std::pair(Utf8(module), "MODULE"),
                                     std::pair(Utf8(module.substr(0, module.rfind(L'\\'))), "FOLDER")})
    {
        for (size_t at = text.find(path); at != std::string::npos; at = text.find(path))
        {
            text.replace(at, path.size(), name);
        }
    }
    return text;
}

// Both hives as a whole in the thorough run; otherwise, because that takes long, where a setup may write.
std::string ExportMachineAndUser()
{
    std::string text;
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
    {
        if (IsThorough())
        {
            text += ExportRegistryKey(root, L"Software");
            continue;
        }
        for (const wchar_t* const key :
             {kOfficeKey, kProgIdKey, kVersionedProgIdKey, kClassKey, kLibraryKey, kInterfaceKey,
              kInterfaceFor32BitsKey, kLogSwitchKey,
              L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall", kSavedKey})
        {
            text += ExportRegistryKey(root, key);
        }
    }
    return text;
}

TEST_F(SetupInstallTest, RegistersAsRegsvr32DoesButForThePath)
{
    ASSERT_EQ(RunProcess(L"regsvr32.exe", {L"/s", OldVersion().module}).exitCode, 0u);
    const std::string expected = RegistrationWithPath(OldVersion().module);
    ASSERT_EQ(RunProcess(L"regsvr32.exe", {L"/u", L"/s", OldVersion().module}).exitCode, 0u);
    Install(OldVersion());
    EXPECT_EQ(RegistrationWithPath(InstalledModule()), expected);
}

TEST_F(SetupInstallTest, MakesTheEntryInProgramsAndFeaturesComplete)
{
    Install(OldVersion());
    const std::string uninstaller = Utf8(InstalledUninstaller());
    std::vector<std::string> lines = SplitLines(ExportRegistryKey(HKEY_LOCAL_MACHINE, kEntryKey));
    const auto size = RegistryDword(HKEY_LOCAL_MACHINE, kEntryKey, L"EstimatedSize");
    ASSERT_TRUE(size.has_value());
    // In KiB; the three files have 700 or so.
    EXPECT_GE(*size, 400u);
    EXPECT_LE(*size, 1'000u);
    std::erase_if(lines, [](const std::string& line) {
        return line.starts_with('[') || line.starts_with("EstimatedSize") || line.starts_with("URLInfoAbout");
    });
    EXPECT_THAT(lines, testing::UnorderedElementsAre(
                           "DisplayName = REG_SZ \"ORVA Connector\"",
                           "DisplayVersion = REG_SZ \"" + Utf8(OldVersion().version) + "\"",
                           "Publisher = REG_SZ \"ORVA\"", "DisplayIcon = REG_SZ \"" + uninstaller + "\"",
                           "InstallLocation = REG_SZ \"" + Utf8(InstallFolder()) + "\"",
                           "UninstallString = REG_SZ \"\"" + uninstaller + "\"\"",
                           "QuietUninstallString = REG_SZ \"\"" + uninstaller + "\" /S\"",
                           "NoModify = REG_DWORD 0x00000001", "NoRepair = REG_DWORD 0x00000001"));
}

TEST_F(SetupInstallTest, TheSameVersionRepairsFilesAndRegistration)
{
    Install(OldVersion());
    const CInstalledState installed = TakeState();
    RemovePath(InstalledModule());
    WriteFileBytes(InstalledUninstaller(), "damaged");
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, kClassKey);
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, kAddInKey);
    Install(OldVersion());
    EXPECT_TRUE(TakeState() == installed) << testing::PrintToString(TakeState());
}

TEST_F(SetupInstallTest, VersionsAreComparedAsNumbers)
{
    Install(OldVersion());
    CRegistryValue version(HKEY_LOCAL_MACHINE, kEntryKey, L"DisplayVersion");
    version.SetString(L"1.10.0");
    EXPECT_EQ(Run(NewVersion().setup), kNewerInstalled);
    version.SetString(L"0.99.99");
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
}

TEST_F(SetupInstallTest, AFolderGivenOnTheCommandLineDoesNotCount)
{
    EXPECT_EQ(Run(OldVersion().setup, {L"/S", L"/D=C:\\Elsewhere"}), kSetupDone);
    ExpectInstalled(OldVersion());
    EXPECT_FALSE(FolderExists(L"C:\\Elsewhere"));
}

TEST_F(SetupInstallTest, InstallsOverACopyThatWasRegisteredByHand)
{
    ASSERT_EQ(RunProcess(L"regsvr32.exe", {L"/s", OldVersion().module}).exitCode, 0u);
    Install(OldVersion());
}

// The lines that one of two exports has and the other has not.
std::vector<std::string> NewLines(const std::string& before, const std::string& after)
{
    std::vector<std::string> one = SplitLines(before);
    std::vector<std::string> other = SplitLines(after);
    std::ranges::sort(one);
    std::ranges::sort(other);
    std::vector<std::string> lines;
    std::ranges::set_symmetric_difference(one, other, std::back_inserter(lines));
    return lines;
}

// Where programs and their data are, for the machine and the user.
std::vector<std::wstring> ProgramsAndData()
{
    std::vector<std::wstring> files;
    for (const wchar_t* const variable :
         {L"ProgramFiles", L"ProgramData", L"PUBLIC", L"APPDATA", L"LOCALAPPDATA"})
    {
        wchar_t folder[MAX_PATH] = L"";
        EXPECT_NE(GetEnvironmentVariableW(variable, folder, MAX_PATH), 0u) << Utf8(variable);
        for (const std::wstring& file : ListFolder(folder))
        {
            files.push_back(std::wstring(folder) + L"\\" + file);
        }
    }
    return files;
}

TEST_F(SetupInstallTest, UninstallingLeavesFilesAndRegistryAsTheyWereAndTheUsersLog)
{
    const CDebugLogOn log;
    const CPrivateTemp temp;
    // Outlook's list of add-ins, which registering makes and unregistering leaves.
    HKEY addIns = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, kAddIns, &addIns), ERROR_SUCCESS);
    RegCloseKey(addIns);
    CreateDirectoryW(LogFolder().c_str(), nullptr);
    WriteFileBytes(LogPath(), "the user's log");
    const std::string before = ExportMachineAndUser();
    const std::vector<std::wstring> filesBefore = ProgramsAndData();
    Install(OldVersion());
    Install(NewVersion());
    Uninstall();
    EXPECT_THAT(NewLines(before, ExportMachineAndUser()), IsEmpty());
    EXPECT_EQ(ProgramsAndData(), filesBefore);
    // The copy that has removed the rest; it goes at the next start of Windows.
    EXPECT_THAT(ListFolder(temp.Path()), testing::Each(testing::StartsWith(L"~nsu")));
    EXPECT_THAT(ReadLog(), testing::StartsWith("the user's log"));
    EXPECT_THAT(DeletedAtNextStart(), IsEmpty());
}

TEST_F(SetupInstallTest, UninstallsThoughTheDllIsMissing)
{
    Install(OldVersion());
    RemovePath(InstalledModule());
    Uninstall();
}

} // namespace
} // namespace orva::test
