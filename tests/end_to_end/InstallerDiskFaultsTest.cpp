// An installer that cannot be written to the disk or the temporary folder, or that the system cannot start.
#include "end_to_end/InstallerFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Text.h"

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using testing::ValuesIn;

class InstallerDiskFaultsTest : public InstallerFixture
{
protected:
    // Changes the temporary folder of Outlook, but not the test's own.
    static void SetTemp(const std::wstring& path)
    {
        SetEnvironmentVariableW(L"TMP", path.c_str());
        SetEnvironmentVariableW(L"TEMP", path.c_str());
    }

    // Expects that the file cannot be created, with the system's error number, and that nothing is requested.
    void ExpectNoFile(int number, const std::string& fault)
    {
        OfferAndInstall(kInstallerUrl);
        m_user.OnDialogWith(kBoxText, [](HWND box) { EXPECT_TRUE(ClickOnly(box)); });
        m_user.AnswerBox(kUpdateCanceled);
        Run(number, fault);
        ASSERT_EQ(Observed().shown.size(), 3u);
        EXPECT_THAT(Observed().shown[1], StartsWith(L"File could not be created, error ID: "));
        EXPECT_THAT(m_server.RequestsFor(kInstallerPath), IsEmpty());
    }

    static bool ClickOnly(HWND box) { return ClickButton(box, IDOK) || ClickButton(box, IDCANCEL); }
};

INSTANTIATE_TEST_SUITE_P(Modes, InstallerDiskFaultsTest, ValuesIn(ModesOfThisRun()), NameOfMode);

// The largest file that can be written, in KiB, if the test was started with such a limit.
int FileLimit()
{
    wchar_t text[20] = L"";
    GetEnvironmentVariableW(L"ORVA_FILE_LIMIT", text, 20);
    return _wtoi(text);
}

} // namespace

TEST_P(InstallerDiskFaultsTest, TemporaryFolderMissing)
{
    const CTempFolder parent;
    SetTemp(parent.File(L"gone"));
    ExpectNoFile(31, "TemporaryFolderMissing");
    EXPECT_EQ(Observed().shown.at(1), kNoSuchPath);
    EXPECT_THAT(ListFolder(parent.Path()), IsEmpty());
}

TEST_P(InstallerDiskFaultsTest, TemporaryFolderDeletedWhileTheOfferIsOpen)
{
    const CTempFolder parent;
    const std::wstring folder = parent.File(L"temp");
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    SetTemp(folder);
    Publish(NewerBuild(kInstallerUrl));
    m_user.OnDialog(kOfferCaption, [&](HWND dialog) {
        EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
        EXPECT_TRUE(ClickButton(dialog, kInstallButton));
    });
    m_user.AnswerBox(kNoSuchPath).AnswerBox(kUpdateCanceled);
    Run(32, "TemporaryFolderDeletedWhileTheOfferIsOpen");
    EXPECT_THAT(ListFolder(parent.Path()), IsEmpty());
}

TEST_P(InstallerDiskFaultsTest, TemporaryFolderIsAFile)
{
    const CTempFolder parent;
    const std::wstring file = parent.File(L"file");
    WriteFileBytes(file, "kept");
    SetTemp(file);
    ExpectNoFile(33, "TemporaryFolderIsAFile");
    EXPECT_EQ(ReadFileBytes(file), "kept");
}

TEST_P(InstallerDiskFaultsTest, TemporaryFolderOnADriveThatIsNotThere)
{
    SetTemp(L"Q:\\temp");
    ExpectNoFile(34, "TemporaryFolderOnADriveThatIsNotThere");
}

TEST_P(InstallerDiskFaultsTest, TemporaryFolderInWhichNothingCanBeCreated)
{
    // Not even an administrator can write here.
    const wchar_t kReadOnly[] = L"Z:\\proc";
    if (!FolderExists(kReadOnly))
    {
        GTEST_SKIP() << "needs a disk that cannot be written";
    }
    SetTemp(kReadOnly);
    ExpectNoFile(35, "ReadOnlyDisk");
}

TEST_P(InstallerDiskFaultsTest, DiskFull)
{
    const int limit = FileLimit();
    if (limit == 0)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    const std::string bytes(static_cast<size_t>(limit) * 1024 + 1, 'x');
    Offer(CHttpReply(200, bytes));
    ExpectFailedDownload(36, "DiskFull");
}

TEST_P(InstallerDiskFaultsTest, AFileThatJustFitsIsWritten)
{
    const int limit = FileLimit();
    if (limit == 0)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    const std::string bytes(static_cast<size_t>(limit) * 1024, 'x');
    Offer(CHttpReply(200, bytes));
    ExpectDownloadedFile(37, "FileThatJustFitsOnTheDisk", bytes);
}

TEST_P(InstallerDiskFaultsTest, AFileThatIsNoProgramStays)
{
    Offer(CHttpReply(200, "no program"));
    ExpectDownloadedFile(41, "StartRefusedNoProgram", "no program");
}

TEST_P(InstallerDiskFaultsTest, AFileOfUnknownTypeStays)
{
    m_server.On("/files/setup.unknown", CHttpReply(200, "data"));
    OfferAndInstall("http://files.orva.example/files/setup.unknown");
    ExpectDownloadDialog();
    ExpectSystemMessage();
    Run(42, "StartRefusedUnknownType");
    EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\", L"osc??????\\setup.unknown"));
}

TEST_P(InstallerDiskFaultsTest, AFileDeletedBeforeItsStartIsNotStarted)
{
    Offer(CHttpReply(200, "data"));
    m_user.OnDialogWith(kProgressBar, [&](HWND) {
        // The dialog shows its last state for a second; the file is deleted in that time.
        EXPECT_TRUE(WaitUntil([&] {
            const std::vector<std::wstring> paths = ListFolder(m_temp.Path());
            return paths.size() == 2 && ReadFileBytes(m_temp.Path() + L"\\" + paths[1]) == "data" &&
                   DeleteFileW((m_temp.Path() + L"\\" + paths[1]).c_str());
        }));
    });
    ExpectSystemMessage();
    Run(43, "StartRefusedFileDeletedBefore");
    EXPECT_THAT(Observed().left, ElementsAre(L"osc??????\\"));
}

} // namespace orva::test
