// Replacing and removing the add-in while a program, as Outlook does, has its DLL loaded.
#include "harness/Files.h"
#include "harness/WindowDriver.h"
#include "host/MainWindow.h"
#include "outlook/AddInModule.h"
#include "setup/SetupFixture.h"

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class SetupInUseTest : public SetupFixture
{
protected:
    static std::wstring Aside(int number) { return L"OrvaOscAddin.dll." + std::to_wstring(number) + L".old"; }
    static bool HasContents(const std::wstring& name, const CSetupVersion& version)
    {
        return ReadFileBytes(InstallFolder() + L"\\" + name) == ReadFileBytes(version.module);
    }
};

TEST_F(SetupInUseTest, TheLoadedDllMovesAsideAndTheNewOneTakesItsPlace)
{
    Install(OldVersion());
    {
        const CAddInModule loaded(InstalledModule());
        EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
        EXPECT_THAT(ListFolder(InstallFolder()),
                    UnorderedElementsAre(L"OrvaOscAddin.dll", Aside(1), L"Uninstall.exe"));
        EXPECT_TRUE(HasContents(L"OrvaOscAddin.dll", NewVersion()));
        EXPECT_TRUE(HasContents(Aside(1), OldVersion()));
        EXPECT_THAT(DeletedAtNextStart(), ElementsAre(InstallFolder() + L"\\" + Aside(1)));
        // Whoever has loaded it goes on using it.
        EXPECT_NE(loaded.Create(), nullptr);
    }
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    ExpectInstalled(NewVersion());
}

TEST_F(SetupInUseTest, TwoUpgradesInARowLeaveOneFileAsideAsLongAsOnlyOneIsInUse)
{
    Install(OldVersion());
    const auto loaded = std::make_unique<CAddInModule>(InstalledModule());
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_THAT(ListFolder(InstallFolder()),
                UnorderedElementsAre(L"OrvaOscAddin.dll", Aside(1), L"Uninstall.exe"));
    EXPECT_TRUE(HasContents(Aside(1), OldVersion()));
}

TEST_F(SetupInUseTest, WindowsIsNeverToldToDeleteTheDllUnderItsOwnName)
{
    Install(OldVersion());
    const auto loaded = std::make_unique<CAddInModule>(InstalledModule());
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    RunUninstaller();
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_THAT(DeletedAtNextStart(), Not(testing::Contains(InstalledModule())));
    EXPECT_THAT(DeletedAtNextStart(), Not(testing::Contains(InstalledUninstaller())));
}

TEST_F(SetupInUseTest, UninstallingRemovesAllButTheLoadedDllWhichGoesAtTheNextStartOfWindows)
{
    Install(OldVersion());
    const auto loaded = std::make_unique<CAddInModule>(InstalledModule());
    ASSERT_EQ(Run(InstalledUninstaller()), kSetupDone);
    ASSERT_TRUE(
        WaitUntil([] { return !DeletedAtNextStart().empty() && !FileExists(InstalledUninstaller()); }));
    EXPECT_THAT(ListFolder(InstallFolder()), ElementsAre(Aside(1)));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
    EXPECT_THAT(DeletedAtNextStart(),
                ElementsAre(InstallFolder() + L"\\" + Aside(1), StartsWith(InstallFolder())));
}

TEST_F(SetupInUseTest, OutlookGoesOnWithTheOldVersionAndItsNextStartHasTheNewOne)
{
    Install(OldVersion());
    const std::wstring outlook = BuiltFile(L"OutlookHost.exe");
    const std::vector<std::wstring> arguments = {L"--mode", L"after-startup"};
    const auto isOpen = [](const CChildProcess& host) {
        return WaitForWindow({.process = host.Id(), .className = host::kMainWindowClass}) != nullptr;
    };
    CChildProcess first({.program = outlook, .arguments = arguments});
    ASSERT_TRUE(isOpen(first));
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_TRUE(FileExists(InstallFolder() + L"\\" + Aside(1)));
    EXPECT_TRUE(first.IsRunning());
    first.End();
    CChildProcess second({.program = outlook, .arguments = arguments});
    ASSERT_TRUE(isOpen(second));
    // The new DLL is in use now: it cannot be opened for writing, and the old one is free to go.
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_THAT(ListFolder(InstallFolder()),
                UnorderedElementsAre(L"OrvaOscAddin.dll", Aside(1), L"Uninstall.exe"));
    EXPECT_TRUE(HasContents(Aside(1), NewVersion()));
    second.End();
}

} // namespace
} // namespace orva::test
