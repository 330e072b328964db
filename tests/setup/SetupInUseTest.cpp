// Replacing and removing the add-in while a program, as Outlook does, has its DLL loaded.
#include "harness/Files.h"
#include "harness/OfficeLanguage.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"
#include "harness/WindowDriver.h"
#include "host/MainWindow.h"
#include "outlook/AddInModule.h"
#include "res/resource.h"
#include "setup/RegistrationObstacle.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;

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
        EXPECT_THAT(ListFolder(InstallFolder()), UnorderedElementsAreArray(InstalledFiles({Aside(1)})));
        EXPECT_TRUE(HasContents(L"OrvaOscAddin.dll", NewVersion()));
        EXPECT_TRUE(HasContents(Aside(1), OldVersion()));
        EXPECT_THAT(DeletedAtNextStart(), ElementsAre(InstallFolder() + L"\\" + Aside(1)));
        // Whoever has loaded it goes on using it.
        EXPECT_NE(loaded.Create(), nullptr);
    }
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    ExpectInstalled(NewVersion());
}

TEST_F(SetupInUseTest, AnUpgradeThatFailsHasTheOldDllRegisteredWhenItSaysSo)
{
    Install(OldVersion());
    const CAddInModule loaded(InstalledModule());
    CObstacle entry(CObstacle::Kind::ReadOnly, HKEY_LOCAL_MACHINE, kAddInKey);
    entry.Raise();
    CChildProcess setup({.program = NewVersion().setup});
    Press(Texts().replaces, kNext, setup.Id());
    WaitForPage(Texts().cannotRegister, setup.Id());
    EXPECT_EQ(RegisteredModule(), InstalledModule());
    EXPECT_TRUE(HasContents(L"OrvaOscAddin.dll", OldVersion()));
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
    RunUninstaller();
    EXPECT_THAT(ListFolder(InstallFolder()), ElementsAre(Aside(1)));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
    EXPECT_THAT(DeletedAtNextStart(),
                ElementsAre(InstallFolder() + L"\\" + Aside(1), StartsWith(InstallFolder())));
}

TEST_F(SetupInUseTest, UninstallingRemovesAllButAnUninstallerThatRunsWhichGoesAtTheNextStartOfWindows)
{
    Install(OldVersion());
    const CUninstallerCopy uninstaller;
    // As a program that runs it is loaded.
    const HMODULE running =
        LoadLibraryExW(InstalledUninstaller().c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
    ASSERT_NE(running, nullptr);
    EXPECT_EQ(Run(uninstaller.Path(), InPlace({L"/S"})), kSetupDone);
    EXPECT_THAT(ListFolder(InstallFolder()), ElementsAre(L"Uninstall.exe.1.old"));
    EXPECT_THAT(DeletedAtNextStart(),
                ElementsAre(InstallFolder() + L"\\Uninstall.exe.1.old", StartsWith(InstallFolder())));
    FreeLibrary(running);
}

// The stand-in Outlook 2007, open, with the add-in connected.
class COpenOutlook
{
public:
    COpenOutlook()
        : m_host({.program = BuiltFile(L"OutlookHost.exe"),
                  .arguments = {L"--office", L"12", L"--mode", L"after-startup", L"--trace",
                                m_folder.File(L"trace.txt")}})
    {
        EXPECT_TRUE(WaitUntil([this] {
            return ReadFileBytes(m_folder.File(L"trace.txt"))
                       .value_or("")
                       .find("OnAddInsUpdate = 0x00000000") != std::string::npos;
        })) << DescribeWindows(m_host.Id());
        m_window = WaitForWindow({.process = m_host.Id(), .className = host::kMainWindowClass});
    }

    /// The version that the add-in's About dialog shows: X.Y.Z.
    std::wstring Version() const
    {
        EXPECT_TRUE(ChooseLastMenuItem(m_window, L'h'));
        const HWND about = WaitForWindow({.process = m_host.Id(), .childId = IDC_ABOUT_CLOSE});
        std::wstring text = ChildText(about, IDC_ABOUT_VERSION_LINE1);
        EXPECT_TRUE(ClickButton(about, IDC_ABOUT_CLOSE));
        EXPECT_TRUE(WaitUntilEnabled(m_window));
        const std::wstring before = L"Version ";
        const std::wstring behind = L" (64-bit)";
        EXPECT_TRUE(text.starts_with(before) && text.ends_with(behind)) << Utf8(text);
        return text.substr(before.size(), text.size() - before.size() - behind.size());
    }

    /// Closes it as the user does, and asserts that it ends in good order.
    void Close()
    {
        EXPECT_TRUE(PostMessageW(m_window, WM_CLOSE, 0, 0));
        EXPECT_EQ(m_host.WaitForExit(), 0u);
    }

private:
    COfficeLanguageSetting m_language;
    CTempFolder m_folder;
    CChildProcess m_host;
    HWND m_window = nullptr;
};

TEST_F(SetupInUseTest, OutlookGoesOnWithTheOldVersionAndItsNextStartHasTheNewOne)
{
    Install(OldVersion());
    COpenOutlook first;
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_EQ(first.Version(), OldVersion().version);
    first.Close();
    COpenOutlook second;
    EXPECT_EQ(second.Version(), NewVersion().version);
    // The old DLL is free to go, and now the new one is in use: it is what moves aside.
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_THAT(ListFolder(InstallFolder()), UnorderedElementsAreArray(InstalledFiles({Aside(1)})));
    EXPECT_TRUE(HasContents(Aside(1), NewVersion()));
    second.Close();
}

TEST_F(SetupInUseTest, OutlookGoesOnWithTheOldVersionThroughTwoUpgrades)
{
    Install(OldVersion());
    COpenOutlook first;
    EXPECT_EQ(Run(NewVersion().setup), kSetupDone);
    EXPECT_EQ(Run(LatestVersion().setup), kSetupDone);
    EXPECT_THAT(ListFolder(InstallFolder()), UnorderedElementsAreArray(InstalledFiles({Aside(1)})));
    EXPECT_EQ(first.Version(), OldVersion().version);
    first.Close();
    COpenOutlook second;
    EXPECT_EQ(second.Version(), LatestVersion().version);
    second.Close();
    Install(LatestVersion());
}

} // namespace
} // namespace orva::test
