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
    void SetUp() override
    {
        if (GetEnvironmentVariableW(L"ORVA_FILE_LIMIT", nullptr, 0) == 0)
        {
            GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
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

} // namespace
} // namespace orva::test
