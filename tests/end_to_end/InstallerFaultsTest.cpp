// A newer build whose installer cannot be downloaded, written or started, or has a hostile name; and the
// user's Cancel.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"

#include <cwchar>

namespace orva::test
{

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using testing::ValuesIn;

constexpr wchar_t kFolder[] = L"osc??????\\";
constexpr wchar_t kFile[] = L"osc??????\\setup.exe";

// A newer build is published, and the user accepts it.
class InstallerFixture : public FaultFixture
{
protected:
    // The server answers the installer's request with the script.
    void Offer(const CServerScript& script)
    {
        m_server.On(kInstallerPath, script);
        OfferAndInstall(kInstallerUrl);
    }

    // The progress dialog, the connection error and "download canceled"; the file is deleted, its folder
    // stays.
    void ExpectFailedDownload(CheckMode mode)
    {
        ExpectDownloadDialog();
        m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
        RunFault(mode);
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kProgress, kConnectError, kUpdateCanceled));
        EXPECT_THAT(Observed().left, ElementsAre(kFolder));
    }

    // The file is taken as complete and started. The system refuses that with a message of its own, to which
    // the add-in adds none; the file stays.
    void ExpectDownloadedFile(CheckMode mode, const std::string& bytes)
    {
        ExpectDownloadDialog();
        m_user.OnDialogWith(kBoxText, [](HWND box) { EXPECT_TRUE(ClickButton(box, IDOK)); });
        RunFault(mode);
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kProgress, StartsWith(L"Error: ")));
        ASSERT_THAT(Observed().left, ElementsAre(kFolder, kFile));
        EXPECT_TRUE(ReadFileBytes(m_temp.Path() + L"\\" + ListFolder(m_temp.Path()).at(1)) == bytes);
    }
};

class InstallerFaultsTest : public InstallerFixture, public testing::WithParamInterface<CheckMode>
{
protected:
    // Has the user press Cancel once the server waits at the gate and the dialog shows `status`.
    void CancelAt(CGate& gate, const wchar_t* status)
    {
        m_user.OnDialogWith(kProgressBar, [&gate, status](HWND dialog) {
            EXPECT_TRUE(gate.WaitUntilReached());
            EXPECT_EQ(WaitForChildText(dialog, kStatusText, status), status);
            EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
            EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
            EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
            gate.Open();
        });
        m_user.AnswerBox(kUpdateCanceled);
        RunFault(GetParam());
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kProgress, kUpdateCanceled));
    }

    // Expects that with this temporary folder no file can be created and that none is requested.
    void ExpectNoFileIn(const wchar_t* folder)
    {
        SetEnvironmentVariableW(L"TMP", folder);
        SetEnvironmentVariableW(L"TEMP", folder);
        OfferAndInstall(kInstallerUrl);
        m_user.AnswerBox(kNoSuchPath).AnswerBox(kUpdateCanceled);
        RunFault(GetParam());
        EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kNoSuchPath, kUpdateCanceled));
        EXPECT_THAT(m_server.RequestsFor(kInstallerPath), IsEmpty());
    }

    // The largest file that can be written, in bytes; 0 if the test was started without such a limit.
    static size_t FileLimit()
    {
        wchar_t text[20] = L"";
        GetEnvironmentVariableW(L"ORVA_FILE_LIMIT", text, 20);
        return size_t{1024} * std::wcstoul(text, nullptr, 10);
    }

    const std::string m_bytes = std::string(5'000, 'x');
    const CHttpReply m_reply{200, m_bytes};
};

INSTANTIATE_TEST_SUITE_P(Modes, InstallerFaultsTest, ValuesIn(ModesOfThisRun()), NameOfMode);

class InstallerLinkTest : public InstallerFixture
{
protected:
    // The name that the download would choose for its folder: the system makes it from the process id.
    std::wstring GuessedFolder() const
    {
        wchar_t name[12];
        std::swprintf(name, 12, L"osca%05lu", m_outlook->Id() % 100'000);
        return name;
    }
};

} // namespace

TEST_P(InstallerFaultsTest, ConnectionRefused)
{
    const CRefusingPort nobody;
    Publish(NewerBuild(kInstallerUrl));
    m_user.OnDialog(kOfferCaption, [&](HWND dialog) {
        m_proxy.emplace(nobody.Port());
        EXPECT_TRUE(ClickButton(dialog, kInstallButton));
    });
    ExpectFailedDownload(GetParam());
}

TEST_P(InstallerFaultsTest, AnEncryptedLinkIsNotServed)
{
    OfferAndInstall("https://files.orva.example/files/setup.exe");
    ExpectFailedDownload(GetParam());
    EXPECT_THAT(m_server.RequestsFor(kInstallerPath), IsEmpty());
}

TEST_P(InstallerFaultsTest, AHeadCutInItsStatusLineIsAFailure)
{
    Offer(CServerScript().Send("HTTP/1.1 2").Close());
    ExpectFailedDownload(GetParam());
}

TEST_P(InstallerFaultsTest, GarbageInsteadOfAReplyIsAnEmptyFile)
{
    // Wine reads a line that is not HTTP as a good status, and the end of the connection as the end of an
    // empty file. Windows reports an error.
    Offer(CServerScript().Send("220 mail.example ESMTP\r\n").Close());
    ExpectDownloadedFile(GetParam(), "");
}

TEST_P(InstallerFaultsTest, ABodyCutHalfWayIsTakenAsItCame)
{
    // The length is used only for the percentage.
    Offer(CHttpReply(m_reply).ContentLength(10'000));
    ExpectDownloadedFile(GetParam(), m_bytes);
}

TEST_P(InstallerFaultsTest, ALengthThatIsNoNumberDoesNotMatter)
{
    Offer(CHttpReply(m_reply).Header("Content-Length", "many"));
    ExpectDownloadedFile(GetParam(), m_bytes);
}

TEST_P(InstallerFaultsTest, CancelBeforeTheHeadEndsTheDownload)
{
    // On Windows the closed handles end the wait for the head, and the file is deleted. Wine goes on waiting
    // until the server ends the connection and then cannot read the status, so the empty file stays.
    CGate gate;
    Offer(CServerScript().WaitFor(gate).Close());
    CancelAt(gate, L"");
    ASSERT_THAT(Observed().left, ElementsAre(kFolder, kFile));
    EXPECT_EQ(ReadFileBytes(m_temp.Path() + L"\\" + ListFolder(m_temp.Path()).at(1)), "");
}

TEST_P(InstallerFaultsTest, CancelInTheBodyDeletesTheFile)
{
    CGate gate;
    Offer(CServerScript().Send(m_reply.Head() + m_bytes.substr(0, 2'500)).WaitFor(gate).Close());
    // Wait until the file is being written: a download cancelled before that keeps its empty file.
    CancelAt(gate, L"Download started");
    EXPECT_THAT(Observed().left, ElementsAre(kFolder));
}

TEST_P(InstallerFaultsTest, TemporaryFolderOnADriveThatIsNotThere)
{
    ExpectNoFileIn(L"Q:\\temp");
}

TEST_P(InstallerFaultsTest, TemporaryFolderInWhichNothingCanBeCreated)
{
    // Not even an administrator can write here.
    const wchar_t kReadOnly[] = L"Z:\\proc";
    if (!FolderExists(kReadOnly))
    {
        GTEST_SKIP() << "needs a disk that cannot be written";
    }
    ExpectNoFileIn(kReadOnly);
}

TEST_P(InstallerFaultsTest, DiskFull)
{
    if (FileLimit() == 0)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    Offer(CHttpReply(200, std::string(FileLimit() + 1, 'x')));
    ExpectFailedDownload(GetParam());
}

TEST_P(InstallerFaultsTest, AFileThatJustFitsTheDiskIsWritten)
{
    if (FileLimit() == 0)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    const std::string bytes(FileLimit(), 'x');
    Offer(CHttpReply(200, bytes));
    ExpectDownloadedFile(GetParam(), bytes);
}

TEST_F(InstallerLinkTest, ALinkWithoutAFileNameIsReportedAndNoDialogOpens)
{
    OfferAndInstall("http://files.orva.example/files/");
    m_user.AnswerBox(kUrlNotParsed);
    RunFault(CheckMode::StartUp);
    EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kUrlNotParsed));
    EXPECT_THAT(Observed().left, IsEmpty());
    EXPECT_EQ(m_server.Requests().size(), m_server.RequestsFor(kUpdateInfoPath).size());
    EXPECT_EQ(Observed().log.back(), "StartDownloadDialog");
}

TEST_F(InstallerLinkTest, ALinkThatIsNoTextEndsTheCheckInTheLog)
{
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,"downloadLink":7,)"
            R"("description":{"default":"New."}}})");
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kInstallButton)); });
    RunFault(CheckMode::StartUp);
    EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption));
    EXPECT_THAT(Observed().left, IsEmpty());
    EXPECT_EQ(Observed().log.back(), "CConnect::OnConnection() Caught exception value type is 4 not 2");
}

TEST_F(InstallerLinkTest, AHostileNameIsAFileThatCannotBeCreated)
{
    // JSON escapes a backslash.
    OfferAndInstall(R"(http://files.orva.example/..\\evil.exe)");
    m_user.AnswerBox(kInvalidName).AnswerBox(kUpdateCanceled);
    RunFault(CheckMode::StartUp);
    EXPECT_THAT(Observed().shown, ElementsAre(kOfferCaption, kInvalidName, kUpdateCanceled));
    EXPECT_THAT(Observed().left, ElementsAre(kFolder));
    EXPECT_EQ(m_server.Requests().size(), m_server.RequestsFor(kUpdateInfoPath).size());
    EXPECT_FALSE(FileExists(m_temp.Path() + L"\\evil.exe"));
}

TEST_F(InstallerLinkTest, APlantedFolderIsNotUsedAndStaysAsItWas)
{
    // Without it the guess is right.
    Offer(CHttpReply(404));
    ExpectFailedDownload(CheckMode::StartUp);
    ASSERT_THAT(ListFolder(m_temp.Path()), ElementsAre(GuessedFolder() + L"\\"));
    RemovePath(m_temp.Path() + L"\\" + GuessedFolder());

    Publish(NewerBuild(kInstallerUrl));
    std::wstring planted;
    m_user.OnDialog(kOfferCaption, [&](HWND dialog) {
        planted = m_temp.Path() + L"\\" + GuessedFolder();
        EXPECT_TRUE(CreateDirectoryW(planted.c_str(), nullptr));
        WriteFileBytes(planted + L"\\setup.exe", "kept");
        EXPECT_TRUE(ClickButton(dialog, kInstallButton));
    });
    ExpectDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    RunFault(CheckMode::StartUp);
    // The download's own folder, and the planted one.
    EXPECT_THAT(Observed().left, UnorderedElementsAre(kFolder, kFolder, kFile));
    EXPECT_EQ(ReadFileBytes(planted + L"\\setup.exe"), "kept");
}

} // namespace orva::test
