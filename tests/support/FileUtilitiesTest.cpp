// The log's folder, the creation of folders along a path, and file sizes.
#include "support/FileUtilities.h"

#include "harness/Files.h"
#include "harness/Registry.h"
#include "harness/TempFolder.h"

#include <gtest/gtest.h>

#include <shlobj.h>

namespace
{

using orva::test::CRegistryValue;
using orva::test::CTempFolder;
using orva::test::FolderExists;
using orva::test::ListFolder;
using orva::test::WriteFileBytes;
using Names = std::vector<std::wstring>;

constexpr wchar_t kUserShellFolders[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

} // namespace

TEST(GetAppDataFolder, IsBelowTheLocalApplicationDataAndEndsWithABackslash)
{
    wchar_t folder[MAX_PATH];
    ASSERT_EQ(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder), S_OK);
    EXPECT_EQ(GetAppDataFolder(), std::wstring(folder) + L"\\ORVA Connector\\");
}

TEST(GetAppDataFolder, CreatesNothing)
{
    std::wstring folder = GetAppDataFolder();
    orva::test::RemovePath(folder.substr(0, folder.size() - 1));
    folder = GetAppDataFolder();
    EXPECT_FALSE(FolderExists(folder.substr(0, folder.size() - 1)));
}

TEST(GetAppDataFolder, IsEmptyWhenTheSystemHasNoSuchFolder)
{
    const CTempFolder temp;
    CRegistryValue folder(HKEY_CURRENT_USER, kUserShellFolders, L"Local AppData");
    folder.SetString(temp.File(L"missing"));
    EXPECT_EQ(GetAppDataFolder(), L"");
}

TEST(CreateDirectoriesForPath, FileModeCreatesEveryFolderAndSaysWhetherTheFileExists)
{
    const CTempFolder temp;
    EXPECT_FALSE(CreateDirectoriesForPath(temp.File(L"a\\b\\c.txt"), true));
    EXPECT_EQ(ListFolder(temp.Path()), (Names{L"a\\", L"a\\b\\"}));
    WriteFileBytes(temp.File(L"a\\b\\c.txt"), "x");
    EXPECT_TRUE(CreateDirectoriesForPath(temp.File(L"a\\b\\c.txt"), true));
    EXPECT_EQ(ListFolder(temp.Path()), (Names{L"a\\", L"a\\b\\", L"a\\b\\c.txt"}));
}

// Existing folders and drive roots are no obstacle.
TEST(CreateDirectoriesForPath, FolderModeCreatesTheWholePath)
{
    const CTempFolder temp;
    for (const wchar_t* const path : {L"a\\", L"a\\", L"a\\b\\c", L"a\\b\\c"})
    {
        EXPECT_TRUE(CreateDirectoriesForPath(temp.File(path), false));
    }
    EXPECT_EQ(ListFolder(temp.Path()), (Names{L"a\\", L"a\\b\\", L"a\\b\\c\\"}));
}

TEST(CreateDirectoriesForPath, FolderModeSaysWhetherThePathUpToItsLastBackslashExists)
{
    const CTempFolder temp;
    WriteFileBytes(temp.File(L"file"), "x");
    // The last folder cannot be made; what counts is the one above it.
    EXPECT_TRUE(CreateDirectoriesForPath(temp.File(L"a\\no*name"), false));
    EXPECT_TRUE(CreateDirectoriesForPath(temp.File(L"file"), false));
    EXPECT_FALSE(CreateDirectoriesForPath(temp.File(L"file\\a\\b"), false));
}

TEST(CreateDirectoriesForPath, PathsWithoutAFolderCreateNone)
{
    const CTempFolder temp;
    wchar_t before[MAX_PATH];
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, before), 0u);
    ASSERT_TRUE(SetCurrentDirectoryW(temp.Path().c_str()));
    EXPECT_FALSE(CreateDirectoriesForPath(L"file", true));
    EXPECT_FALSE(CreateDirectoriesForPath(L"", true));
    EXPECT_EQ(ListFolder(temp.Path()), Names{});
    EXPECT_TRUE(CreateDirectoriesForPath(L"folder", false));
    EXPECT_EQ(ListFolder(temp.Path()), Names{L"folder\\"});
    SetCurrentDirectoryW(before);
}

TEST(GetExistingFileSize, IsZeroForAMissingFile)
{
    const CTempFolder temp;
    EXPECT_EQ(GetExistingFileSize(temp.File(L"missing")), 0);
    EXPECT_EQ(GetExistingFileSize(temp.File(L"no\\folder")), 0);
}

TEST(GetExistingFileSize, IsTheNumberOfBytes)
{
    const CTempFolder temp;
    WriteFileBytes(temp.File(L"empty"), "");
    WriteFileBytes(temp.File(L"lines"), "a\r\nb\n\x1A"
                                        "c");
    WriteFileBytes(temp.File(L"large"), std::string(1'048'577, 'x'));
    EXPECT_EQ(GetExistingFileSize(temp.File(L"empty")), 0);
    EXPECT_EQ(GetExistingFileSize(temp.File(L"lines")), 7);
    EXPECT_EQ(GetExistingFileSize(temp.File(L"large")), 1'048'577);
}

TEST(GetExistingFileSize, IsZeroForAPathThatIsNoNarrowPath)
{
    const CTempFolder temp;
    const std::wstring path = temp.File(L"\x0416.txt");
    WriteFileBytes(path, "some bytes");
    EXPECT_EQ(GetExistingFileSize(path), 0);
}
