// What a setup does when it cannot do its work: it says why, and the machine is as it was.
#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "setup/EndedProcess.h"
#include "setup/RegistrationObstacle.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

#include <thread>

namespace orva::test
{
namespace
{

using Kind = CObstacle::Kind;

constexpr wchar_t kRegsvr32[] = L"C:\\windows\\system32\\regsvr32.exe";

class SetupFaultsTest : public SetupFixture
{
protected:
    // Asserts that the newer version's setup ends with this code and leaves the old version as it is.
    static void ExpectOldStays(
        DWORD code, const std::function<void()>& endFault = [] {})
    {
        EXPECT_EQ(Run(NewVersion().setup), code);
        endFault();
        ExpectInstalled(OldVersion());
    }
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

TEST_F(SetupFaultsTest, ADllThatCannotBeMovedStays)
{
    Install(OldVersion());
    UniqueHandle file = LockFile(InstalledModule());
    ExpectOldStays(kFileFailed, [&] { file.reset(); });
    Install(NewVersion());
}

TEST_F(SetupFaultsTest, ANewDllThatIsHeldAtAFirstInstallationIsToldWithItsError)
{
    UniqueHandle file;
    std::jthread user([&file] {
        // Process 0, because the setup's id is not known.
        Press(Texts().installs, kNext, 0);
        AnswerMessage(Texts().cannotReplace + InUseText() + L"\r\n\r\n" + Texts().nothingChanged, 0);
        file.reset();
        Press(Texts().nothingChanged, kCancel, 0);
    });
    EXPECT_FALSE(EndAtCall(OldVersion().setup, {}, "MoveFileExW", [&file] {
        if (file == nullptr && FileExists(InstalledUninstaller()))
        {
            file = LockFile(InstalledModule() + L".new");
        }
        return false;
    }));
    user.join();
    EXPECT_FALSE(FolderExists(InstallFolder()));
}

TEST_F(SetupFaultsTest, AnUninstallerThatCannotBeReplacedStays)
{
    Install(OldVersion());
    UniqueHandle file = LockFile(InstalledUninstaller());
    ExpectOldStays(kFileFailed, [&] { file.reset(); });
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

TEST_F(SetupFaultsTest, AFileThatCannotBeRemovedKeepsTheConnectorInstalled)
{
    Install(OldVersion());
    const CUninstallerCopy uninstaller;
    for (const std::wstring& name : InstalledFiles())
    {
        SCOPED_TRACE(Utf8(name));
        {
            const UniqueHandle file = LockFile(InstallFolder() + L"\\" + name);
            EXPECT_EQ(Run(uninstaller.Path(), InPlace({L"/S"})), kFileFailed);
        }
        ExpectInstalled(OldVersion());
    }
    Uninstall();
}

// As the uninstaller that has started the copy holds its file until it ends, and as a virus scanner may later.
TEST_F(SetupFaultsTest, AnUninstallerThatIsHeldForAMomentIsRemoved)
{
    Install(OldVersion());
    const CUninstallerCopy uninstaller;
    UniqueHandle holder = LockFile(InstalledUninstaller());
    int calls = 0;
    int callsAtTheEnd = 0;
    EXPECT_FALSE(EndAtCall(uninstaller.Path(), InPlace({L"/S"}), "MoveFileExW", [&] {
        // The third one is the second attempt to find out whether the file can be moved.
        if (++calls == 3)
        {
            holder.reset();
        }
        // The first one at the end is that with which the file goes.
        if (!FileExists(InstallFolder() + L"\\Third-party notices.txt"))
        {
            holder = ++callsAtTheEnd == 1 ? LockFile(InstalledUninstaller()) : UniqueHandle();
        }
        return false;
    }));
    EXPECT_EQ(callsAtTheEnd, 2);
    EXPECT_FALSE(FolderExists(InstallFolder()));
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

TEST_F(SetupFaultsTest, Regsvr32IsStartedAgainIfItCannotBeStartedAtFirst)
{
    UniqueHandle regsvr32;
    int starts = 0;
    EXPECT_FALSE(EndAtCall(OldVersion().setup, {L"/S"}, "CreateProcessW", [&] {
        ++starts;
        regsvr32 = starts == 1 ? LockFile(kRegsvr32) : UniqueHandle();
        return false;
    }));
    EXPECT_EQ(starts, 2);
    ExpectInstalled(OldVersion());
}

TEST_F(SetupFaultsTest, Regsvr32ThatCanNeverBeStartedLeavesNothing)
{
    const UniqueHandle regsvr32 = LockFile(kRegsvr32);
    EXPECT_EQ(Run(OldVersion().setup), kRegistrationFailed);
    EXPECT_FALSE(FolderExists(InstallFolder()));
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
