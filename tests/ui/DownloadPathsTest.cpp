// Names of the downloaded file and of its folder.
#include "ui/DownloadPaths.h"

#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

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
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/setup.exe?name=/../x"), L"x");
    EXPECT_STREQ(GetFileNameFromUrl(L"/x"), L"x");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/../../x"), L"x");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/x/.."), L"..");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/..\\x"), L"..\\x");
    EXPECT_STREQ(GetFileNameFromUrl(L"http://host/..%2Fx"), L"..%2Fx");
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

// Makes a symbolic link to a folder. Wine cannot make one, so there the host's ln does it.
bool MakeLink(const std::wstring& link, const std::wstring& target)
{
    using UnixName = char*(__cdecl*)(const wchar_t*);
    const auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void (*)()>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (unixName == nullptr)
    {
        return CreateSymbolicLinkW(link.c_str(), target.c_str(), SYMBOLIC_LINK_FLAG_DIRECTORY);
    }
    const auto pathOf = [&](const std::wstring& path) {
        char* const name = unixName(path.c_str());
        std::wstring wide = name ? Widen(name) : L"";
        HeapFree(GetProcessHeap(), 0, name);
        return wide;
    };
    std::wstring command = L"Z:\\bin\\ln -s " + pathOf(target) + L" " + pathOf(link);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process))
    {
        return false;
    }
    // Wine gives no handle of a host program to wait for.
    return WaitUntil([&] { return FolderExists(link); });
}

class CreateTempDownloadDirectoryTest : public testing::Test
{
protected:
    // Calls it when something stands under the name that it would choose. Expects a fresh folder of another
    // name, with nothing in it.
    void ExpectAnotherFolder()
    {
        const std::wstring path = CreateTempDownloadDirectory().GetString();
        EXPECT_TRUE(path.starts_with(m_temp.Path() + L"\\osc")) << Utf8(path);
        EXPECT_EQ(path.size(), m_guess.size() + 1);
        EXPECT_EQ(path.find(m_guess), std::wstring::npos);
        EXPECT_TRUE(FolderExists(path));
        EXPECT_TRUE(ListFolder(path).empty());
    }

    CPrivateTemp m_temp;
    const std::wstring m_guess = m_temp.Path() + L"\\" + MakeTempName().GetString();
};

TEST_F(CreateTempDownloadDirectoryTest, CreatesAnEmptyFolderUnderTheTemporaryFolder)
{
    EXPECT_EQ(CreateTempDownloadDirectory().GetString(), m_guess + L"\\");
    EXPECT_TRUE(FolderExists(m_guess));
    EXPECT_TRUE(ListFolder(m_guess).empty());
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
    ASSERT_TRUE(CreateDirectoryW(m_guess.c_str(), nullptr));
    WriteFileBytes(m_guess + L"\\setup.exe", "planted");
    ExpectAnotherFolder();
    EXPECT_EQ(ReadFileBytes(m_guess + L"\\setup.exe"), "planted");
}

TEST_F(CreateTempDownloadDirectoryTest, NeverUsesTheNameOfAnExistingFile)
{
    WriteFileBytes(m_guess, "planted");
    ExpectAnotherFolder();
    EXPECT_EQ(ReadFileBytes(m_guess), "planted");
}

TEST_F(CreateTempDownloadDirectoryTest, NeverUsesALinkToAFolderElsewhereOrToNothing)
{
    const CTempFolder elsewhere;
    const std::wstring target = elsewhere.File(L"target");
    ASSERT_TRUE(CreateDirectoryW(target.c_str(), nullptr));
    if (!MakeLink(m_guess, target))
    {
        GTEST_SKIP() << "cannot be planted here";
    }
    ExpectAnotherFolder();
    EXPECT_TRUE(ListFolder(target).empty());

    ASSERT_TRUE(RemoveDirectoryW(target.c_str()));
    ExpectAnotherFolder();
    EXPECT_FALSE(FolderExists(target));
}

TEST_F(CreateTempDownloadDirectoryTest, GivesAPathEvenIfTheFolderCannotBeCreated)
{
    ASSERT_TRUE(RemoveDirectoryW(m_temp.Path().c_str()));
    EXPECT_EQ(CreateTempDownloadDirectory().GetString(), m_guess + L"\\");
    EXPECT_FALSE(FolderExists(m_guess));
}

} // namespace
} // namespace orva::test
