// A setup on a disk without space: no file may get larger than the limit that tools/wine-run sets for this
// test.
#include "harness/Files.h"
#include "harness/WindowDriver.h"
#include "setup/SetupFixture.h"

namespace orva::test
{
namespace
{

class SetupDiskFaultsTest : public SetupFixture
{
protected:
    SetupDiskFaultsTest()
    {
        wchar_t limit[20] = L"";
        if (GetEnvironmentVariableW(L"ORVA_FILE_LIMIT", limit, 20) == 0)
        {
            m_isLimited = false;
        }
    }
    bool m_isLimited = true;
};

TEST_F(SetupDiskFaultsTest, AFirstInstallationLeavesNothing)
{
    if (!m_isLimited)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    EXPECT_EQ(Run(OldVersion().setup), kFileFailed);
    EXPECT_FALSE(FolderExists(InstallFolder()));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kEntryKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kClassKey));
}

TEST_F(SetupDiskFaultsTest, AnInstalledVersionStays)
{
    if (!m_isLimited)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    ASSERT_TRUE(CreateDirectoryW(InstallFolder().c_str(), nullptr));
    WriteFileBytes(InstalledModule(), "the old DLL");
    EXPECT_EQ(Run(OldVersion().setup), kFileFailed);
    EXPECT_THAT(ListFolder(InstallFolder()), testing::ElementsAre(L"OrvaOscAddin.dll"));
    EXPECT_EQ(ReadFileBytes(InstalledModule()), "the old DLL");
}

} // namespace
} // namespace orva::test
