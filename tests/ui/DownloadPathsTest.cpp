// Names of the downloaded file and of its folder.
#include "ui/DownloadPaths.h"

#include "harness/Files.h"
#include "harness/TempFolder.h"

#include <gtest/gtest.h>

#include <set>

namespace orva::test
{
namespace
{

TEST(GetFileNameFromUrlTest, IsWhatFollowsTheLastSlash)
{
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/a/setup.exe"), L"setup.exe");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/a/setup.exe?v=1"), L"setup.exe?v=1");
    EXPECT_STREQ(GetFileNameFromUrl(L"/x"), L"x");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/..\\x"), L"..\\x");
}

TEST(GetFileNameFromUrlTest, IsEmptyWithoutASlashOrWithNothingBehindIt)
{
    EXPECT_STREQ(GetFileNameFromUrl(L""), L"");
    EXPECT_STREQ(GetFileNameFromUrl(L"setup.exe"), L"");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/"), L"");
}

TEST(GetTempDirectoryTest, IsTheTemporaryFolderWithABackslash)
{
    const CPrivateTemp temp;
    EXPECT_STREQ(GetTempDirectory(), (temp.Path() + L"\\").c_str());
}

TEST(MakeTempNameTest, IsOscAndSixCharacters)
{
    const std::wstring name = MakeTempName().GetString();
    EXPECT_EQ(name.size(), 9u);
    EXPECT_TRUE(name.starts_with(L"osc"));
    EXPECT_EQ(name.find(L'X'), std::wstring::npos);
}

class CreateTempDownloadDirectoryTest : public testing::Test
{
protected:
    CPrivateTemp m_temp;
};

TEST_F(CreateTempDownloadDirectoryTest, CreatesAnEmptyFolderUnderTheTemporaryFolder)
{
    const std::wstring path = CreateTempDownloadDirectory().GetString();
    EXPECT_EQ(path.substr(0, m_temp.Path().size() + 4), m_temp.Path() + L"\\osc");
    EXPECT_EQ(path.size(), m_temp.Path().size() + 11);
    EXPECT_EQ(path.back(), L'\\');
    EXPECT_TRUE(FolderExists(path));
    EXPECT_TRUE(ListFolder(path).empty());
}

TEST_F(CreateTempDownloadDirectoryTest, GivesAnotherFolderAtEveryCall)
{
    std::set<std::wstring> paths;
    for (int i = 0; i < 50; ++i)
    {
        paths.insert(CreateTempDownloadDirectory().GetString());
    }
    EXPECT_EQ(paths.size(), 50u);
    EXPECT_EQ(ListFolder(m_temp.Path()).size(), 50u);
}

TEST_F(CreateTempDownloadDirectoryTest, NeverUsesAnExistingFolder)
{
    const std::wstring planted = m_temp.Path() + L"\\" + MakeTempName().GetString();
    ASSERT_TRUE(CreateDirectoryW(planted.c_str(), nullptr));
    WriteFileBytes(planted + L"\\setup.exe", "planted");
    const std::wstring path = CreateTempDownloadDirectory().GetString();
    EXPECT_NE(path, planted + L"\\");
    EXPECT_TRUE(ListFolder(path).empty());
}

TEST_F(CreateTempDownloadDirectoryTest, NeverUsesTheNameOfAnExistingFile)
{
    const std::wstring planted = m_temp.Path() + L"\\" + MakeTempName().GetString();
    WriteFileBytes(planted, "planted");
    const std::wstring path = CreateTempDownloadDirectory().GetString();
    EXPECT_NE(path, planted + L"\\");
    EXPECT_TRUE(FolderExists(path));
    EXPECT_EQ(ReadFileBytes(planted), std::optional<std::string>("planted"));
}

TEST_F(CreateTempDownloadDirectoryTest, GivesAPathEvenIfTheFolderCannotBeCreated)
{
    ASSERT_TRUE(RemoveDirectoryW(m_temp.Path().c_str()));
    const std::wstring path = CreateTempDownloadDirectory().GetString();
    EXPECT_FALSE(path.empty());
    EXPECT_FALSE(FolderExists(path));
}

} // namespace
} // namespace orva::test
