// A setup on a disk without space: no file may get larger than the limit that tools/wine-run sets for this
// test.
#include "harness/Files.h"
#include "setup/SetupFixture.h"
#include "setup/SetupUser.h"

namespace orva::test
{
namespace
{

class SetupDiskFaultsTest : public SetupFixture
{
protected:
    // Skips the test if the limit is that of the others: one at which the setup can, or cannot, write what it
    // needs for itself.
    void SetUp() override
    {
        wchar_t limit[20] = L"";
        GetEnvironmentVariableW(L"ORVA_FILE_LIMIT", limit, 20);
        const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        ASSERT_NE(limit[0], L'\0') << "ORVA_FILE_LIMIT is not set";
        if ((wcstol(limit, nullptr, 10) < 100) != name.starts_with("InTheTemporaryFolder"))
        {
            GTEST_SKIP() << "needs another ORVA_FILE_LIMIT";
        }
    }
};

TEST_F(SetupDiskFaultsTest, AFirstInstallationLeavesNothing)
{
    EXPECT_EQ(Run(OldVersion().setup), kFileFailed);
    EXPECT_FALSE(FolderExists(InstallFolder()));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
}

TEST_F(SetupDiskFaultsTest, AnInstalledVersionStays)
{
    ASSERT_TRUE(CreateDirectoryW(InstallFolder().c_str(), nullptr));
    WriteFileBytes(InstalledModule(), "the old DLL");
    EXPECT_EQ(Run(OldVersion().setup), kFileFailed);
    EXPECT_THAT(ListFolder(InstallFolder()), testing::ElementsAre(L"OrvaOscAddin.dll"));
    EXPECT_EQ(ReadFileBytes(InstalledModule()), "the old DLL");
}

TEST_F(SetupDiskFaultsTest, AMessageInTheLanguageOfWindowsSaysSo)
{
    ASSERT_TRUE(IsAskedLanguage());
    const CSetupTexts& texts = Texts();
    CChildProcess setup({.program = OldVersion().setup});
    Press(texts.installs, kNext, setup.Id());
    AnswerMessage(texts.diskFull + InstalledModule() + L".new", setup.Id());
    Press(texts.nothingChanged, kCancel, setup.Id());
    EXPECT_EQ(setup.WaitForExit(), kFileFailed);
    EXPECT_FALSE(FolderExists(InstallFolder()));
}

TEST_F(SetupDiskFaultsTest, InTheTemporaryFolderEndTheSetupBeforeItsFirstPage)
{
    CChildProcess setup({.program = OldVersion().setup});
    const HWND message = WaitForPage(Texts().diskFull, setup.Id());
    EXPECT_TRUE(ClickButton(message, IDOK) || ClickButton(message, IDCANCEL));
    EXPECT_EQ(setup.WaitForExit(), kFileFailed);
    EXPECT_FALSE(FolderExists(InstallFolder()));
}

} // namespace
} // namespace orva::test
