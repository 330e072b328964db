// What a setup does when it cannot do its work: it says why, and the machine is as it was.
#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "setup/EndedProcess.h"
#include "setup/RegistrationObstacle.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

namespace orva::test
{
namespace
{

using Kind = CObstacle::Kind;

class SetupFaultsTest : public SetupFixture
{
};

TEST_F(SetupFaultsTest, ASecondSetupRefusesToRunAndTheFirstIsNotDisturbed)
{
    CChildProcess first({.program = OldVersion().setup});
    const HWND window = WaitForWindow({.process = first.Id(), .className = kDialogClass, .childId = 1});
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(Run(OldVersion().setup), kSetupBusy);
    EXPECT_FALSE(FolderExists(InstallFolder()));
    ASSERT_TRUE(WaitUntil([&] { return ClickButton(window, IDCANCEL); }));
    EXPECT_EQ(first.WaitForExit(), kSetupCancelled);
    Install(OldVersion());
}

TEST_F(SetupFaultsTest, TheUninstallerRefusesToRunBesideASetup)
{
    Install(OldVersion());
    {
        const UniqueHandle setup(CreateMutexW(nullptr, FALSE, kSetupMutex));
        EXPECT_EQ(UninstallInPlace(), kSetupBusy);
    }
    ExpectInstalled(OldVersion());
}

TEST_F(SetupFaultsTest, AFileThatCannotBeAFolderEndsTheInstallation)
{
    WriteFileBytes(InstallFolder(), "not a folder");
    EXPECT_EQ(Run(OldVersion().setup), kFileFailed);
    EXPECT_EQ(ReadFileBytes(InstallFolder()), "not a folder");
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
}

TEST_F(SetupFaultsTest, AFolderInAFilesPlaceLeavesTheOldVersion)
{
    Install(OldVersion());
    for (const wchar_t* const name : {L"\\Uninstall.exe.new", L"\\Uninstall.exe.before"})
    {
        SCOPED_TRACE(Utf8(name));
        const std::wstring folder = InstallFolder() + name;
        ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
        ExpectOldStays(kFileFailed, [&] { EXPECT_TRUE(RemoveDirectoryW(folder.c_str())); });
    }
}

TEST_F(SetupFaultsTest, AKeyThatCannotBeRemovedKeepsTheConnectorInstalled)
{
    Install(OldVersion());
    for (const auto& [key, code] :
         {std::pair(kClassKey, kRegistrationFailed), std::pair(kAddInKey, kRegistrationFailed),
          std::pair(kEntryKey, kEntryFailed)})
    {
        SCOPED_TRACE(Utf8(key));
        CObstacle obstacle(Kind::Locked, HKEY_LOCAL_MACHINE, key);
        obstacle.Raise();
        EXPECT_EQ(UninstallInPlace(), static_cast<DWORD>(code));
        obstacle.Lower();
        EXPECT_EQ(ListFolder(InstallFolder()), InstalledFiles());
        EXPECT_EQ(RegistryString(HKEY_LOCAL_MACHINE, kEntryKey, L"DisplayVersion"), OldVersion().version);
    }
    // Registered again.
    ExpectInstalled(OldVersion());
    Uninstall();
}

TEST_F(SetupFaultsTest, AFirstRegistrationThatFailsLeavesNothing)
{
    {
        const CObstacle office(kOfficeKey);
        EXPECT_EQ(Run(OldVersion().setup), kRegistrationFailed);
    }
    EXPECT_FALSE(FolderExists(InstallFolder()));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibraryKey));
    Install(OldVersion());
}

TEST_F(SetupFaultsTest, AnUpgradeWhoseRegistrationFailsLeavesTheOldDllAndItsRegistration)
{
    Install(OldVersion());
    const CInstalledState before = TakeState();
    {
        CObstacle entry(Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey);
        entry.Raise();
        // When regsvr32 is started: as if the new version's registration wrote more.
        EXPECT_FALSE(EndAtCall(NewVersion().setup, {L"/S"}, "CreateProcessW", [] {
            EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, kClassKey, L"Added", REG_SZ, L"", sizeof L""),
                      ERROR_SUCCESS);
            return false;
        }));
    }
    EXPECT_TRUE(TakeState() == before) << testing::PrintToString(TakeState());
    Install(NewVersion());
}

TEST_F(SetupFaultsTest, ARegistrationThatCannotBePutBackIsPutBackByTheNextSetupThatFails)
{
    Install(OldVersion());
    const CInstalledState before = TakeState();
    CObstacle addIn(Kind::Locked, HKEY_LOCAL_MACHINE, kAddInKey);
    // When regsvr32 is started, so that it fails.
    EXPECT_FALSE(EndAtCall(NewVersion().setup, {L"/S"}, "CreateProcessW", [&] {
        addIn.Raise();
        return false;
    }));
    addIn.Lower();
    // As regsvr32 may leave it.
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, kAddInKey);
    {
        CObstacle entry(Kind::ReadOnly, HKEY_LOCAL_MACHINE, kEntryKey);
        entry.Raise();
        EXPECT_EQ(Run(NewVersion().setup), kEntryFailed);
    }
    EXPECT_TRUE(TakeState() == before) << testing::PrintToString(TakeState());
}

// Without its copy it would be lost when regsvr32 fails as well.
TEST_F(SetupFaultsTest, ARegistrationThatCannotBeSavedIsNotTouched)
{
    Install(OldVersion());
    {
        CObstacle saved(Kind::Locked, HKEY_LOCAL_MACHINE, kSavedKey);
        CObstacle addIn(Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey);
        const CInstalledState before = TakeState();
        saved.Raise();
        addIn.Raise();
        EXPECT_EQ(Run(NewVersion().setup), kRegistrationFailed);
        addIn.Lower();
        saved.Lower();
        EXPECT_TRUE(TakeState() == before) << testing::PrintToString(TakeState());
    }
    Install(NewVersion());
}

TEST_F(SetupFaultsTest, AnEntryThatCannotBeWrittenUndoesTheInstallation)
{
    {
        CObstacle entry(Kind::ReadOnly, HKEY_LOCAL_MACHINE, kEntryKey);
        entry.Raise();
        EXPECT_EQ(Run(OldVersion().setup), kEntryFailed);
    }
    EXPECT_FALSE(FolderExists(InstallFolder()));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
}

// As an incomplete or disturbed download leaves it.
TEST_F(SetupFaultsTest, ADamagedSetupFileRefusesItselfAndChangesNothing)
{
    Install(OldVersion());
    const CInstalledState before = TakeState();
    const std::string whole = *ReadFileBytes(NewVersion().setup);
    const CTempFolder folder;
    const std::wstring path = folder.File(L"OrvaSetup.exe");
    constexpr size_t kPlaces = 20;
    for (size_t place = 1; place <= kPlaces; ++place)
    {
        // Not in the first part, which is the program's own code: Windows refuses to start that, or it
        // crashes.
        const size_t at = whole.size() / 4 + place * (whole.size() * 3 / 4 - 8) / kPlaces;
        SCOPED_TRACE("at byte " + std::to_string(at));
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 0x10);
        WriteFileBytes(path, changed);
        EXPECT_EQ(Run(path), kSetupDamaged);
        WriteFileBytes(path, whole.substr(0, at));
        EXPECT_EQ(Run(path), kSetupDamaged);
    }
    EXPECT_TRUE(TakeState() == before) << testing::PrintToString(TakeState());
}

// There it is not even sure to find that out: it may not start, or crash.
TEST_F(SetupFaultsTest, ASetupFileWhoseOwnCodeIsDamagedInstallsNothing)
{
    const CInstalledState before = TakeState();
    const std::string whole = *ReadFileBytes(NewVersion().setup);
    const CTempFolder folder;
    const std::wstring path = folder.File(L"OrvaSetup.exe");
    constexpr size_t kPlaces = 4;
    for (size_t place = 0; place < kPlaces; ++place)
    {
        const size_t at = place * whole.size() / 4 / kPlaces;
        SCOPED_TRACE("at byte " + std::to_string(at));
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 0x10);
        WriteFileBytes(path, changed);
        try
        {
            EXPECT_NE(Run(path), kSetupDone);
        }
        catch (const std::runtime_error&)
        {
        }
    }
    EXPECT_TRUE(TakeState() == before) << testing::PrintToString(TakeState());
}

// Before any text of the setup's own can be read, so all languages are in one message.
TEST_F(SetupFaultsTest, ADamagedSetupFileSaysSo)
{
    const CTempFolder folder;
    const std::wstring path = folder.File(L"OrvaSetup.exe");
    const std::string whole = *ReadFileBytes(NewVersion().setup);
    WriteFileBytes(path, whole.substr(0, whole.size() / 2));
    CChildProcess setup({.program = path});
    const HWND message = WaitForWindow({.process = setup.Id(), .className = kDialogClass});
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(WindowText(message), L"ORVA Setup");
    AnswerMessage(L"This file is damaged. Please download it again.\n"
                  L"Die Datei ist beschädigt. Bitte laden Sie sie neu herunter.\n"
                  L"El archivo está dañado. Descárguelo de nuevo.\n"
                  L"Dosya bozuk. Lütfen yeniden indirin.",
                  setup.Id());
    EXPECT_EQ(setup.WaitForExit(), kSetupDamaged);
}

// Started as the add-in starts it, from a temporary folder, whose name may be anything.
TEST_F(SetupFaultsTest, StartsFromAFolderWithBlanksAndCharactersOutsideTheCodePage)
{
    const CTempFolder folder;
    const std::wstring inner = folder.File(L"Özgür \u0141\u4E2D osc abc");
    ASSERT_TRUE(CreateDirectoryW(inner.c_str(), nullptr));
    const std::wstring path = inner + L"\\Orva Setup.exe";
    WriteFileBytes(path, *ReadFileBytes(OldVersion().setup));
    CChildProcess setup(
        {.program = path, .arguments = {L"/S"}, .environment = {{L"TEMP", inner}, {L"TMP", inner}}});
    EXPECT_EQ(setup.WaitForExit(), kSetupDone);
    ExpectInstalled(OldVersion());
}

} // namespace
} // namespace orva::test
