// Every way in which the download of the installer can fail: links that name no file or a dangerous one,
// servers that fail, disks that do not take the file.
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"

namespace orva::test
{

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::ValuesIn;

class InstallerFaultsTest : public OutlookFixture
{
protected:
    /// The download dialog came up and failed: 121, then 132.
    void ExpectFailedDownload()
    {
        ExpectDownloadDialog();
        m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
        RunToTheEnd();
        EXPECT_THAT(TempFiles(), ElementsAre(L"osc??????\\"));
    }

    /// The system's own message that the file is no program.
    void ExpectSystemMessage()
    {
        constexpr int kBoxText = 0xFFFF;
        m_user.OnDialogWith(kBoxText, [](HWND box) { EXPECT_TRUE(ClickButton(box, IDOK)); });
    }

    /// The file was taken for complete and started: none of our messages, the file stays.
    void ExpectDownloadedFile(const std::string& bytes)
    {
        ExpectDownloadDialog();
        ExpectSystemMessage();
        RunToTheEnd();
        EXPECT_THAT(TempFiles(), ElementsAre(L"osc??????\\", L"osc??????\\setup.exe"));
        EXPECT_TRUE(ReadFileBytes(m_temp.Path() + L"\\" + ListFolder(m_temp.Path()).at(1)) == bytes);
    }
};

/// A last segment of a link, as it stands in the JSON text.
struct CName
{
    const char* name;
    const char* segment;
};

class HostileNameTest : public InstallerFaultsTest, public testing::WithParamInterface<CName>
{
};

class NamelessLinkTest : public InstallerFaultsTest, public testing::WithParamInterface<CName>
{
};

constexpr CName kNamelessLinks[] = {
    {"WithoutASlash", "setup.exe"},
    {"EndingInASlash", "http://files.orva.example/files/"},
    {"Empty", ""},
};

constexpr CName kHostileNames[] = {
    {"ParentFolder", R"(..\\evil.exe)"},
    {"TwoParents", R"(..\\..\\evil.exe)"},
    {"DriveRoot", R"(C:\\evil.exe)"},
    {"DriveRelative", "C:evil.exe"},
    {"Share", R"(\\\\server\\share\\evil.exe)"},
    {"SubFolder", R"(a\\evil.exe)"},
    {"AlternateStream", "setup.exe:evil.exe"},
    {"Con", "CON"},
    {"NulWithExtension", "nul.exe"},
    {"Com1", "COM1.exe"},
    {"ControlCharacter", R"(a\u0001b.exe)"},
    {"LineBreak", R"(a\nb.exe)"},
};

std::string NameOf(const testing::TestParamInfo<CName>& info)
{
    return info.param.name;
}

void PrintTo(const CName& name, std::ostream* out)
{
    *out << name.segment;
}

INSTANTIATE_TEST_SUITE_P(Links, NamelessLinkTest, ValuesIn(kNamelessLinks), NameOf);
INSTANTIATE_TEST_SUITE_P(Names, HostileNameTest, ValuesIn(kHostileNames), NameOf);

/// The largest file that can be written, in KiB, if the test was started with such a limit.
int FileLimit()
{
    wchar_t text[20] = L"";
    GetEnvironmentVariableW(L"ORVA_FILE_LIMIT", text, 20);
    return _wtoi(text);
}

} // namespace

TEST_P(NamelessLinkTest, IsReportedAndNoDialogOpens)
{
    OfferAndInstall(GetParam().segment);
    m_user.AnswerBox(kUrlNotParsed);
    RunToTheEnd();
    EXPECT_THAT(TempFiles(), IsEmpty());
    EXPECT_EQ(m_server.Requests().size(), 1u);
    EXPECT_EQ(StartCheckLog().back(), "StartDownloadDialog");
}

TEST_P(HostileNameTest, IsAFileThatCannotBeCreated)
{
    OfferAndInstall(std::string("http://files.orva.example/") + GetParam().segment);
    m_user.AnswerBox(kInvalidName).AnswerBox(kUpdateCanceled);
    RunToTheEnd();
    EXPECT_THAT(TempFiles(), ElementsAre(L"osc??????\\"));
    EXPECT_EQ(m_server.Requests().size(), 1u);
    EXPECT_FALSE(FileExists(m_temp.Path() + L"\\evil.exe"));
    EXPECT_FALSE(FileExists(L"C:\\evil.exe"));
}

TEST_F(InstallerFaultsTest, ALinkThatIsNoTextEndsTheCheckInTheLog)
{
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,"downloadLink":7,)"
            R"("description":{"default":"New."}}})");
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kInstallButton)); });
    RunToTheEnd();
    EXPECT_EQ(StartCheckLog().back(), "CConnect::OnConnection() Caught exception value type is 4 not 2");
    EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(InstallerFaultsTest, AnEncryptedLinkIsNotServed)
{
    OfferAndInstall("https://files.orva.example/files/setup.exe");
    ExpectFailedDownload();
    EXPECT_EQ(m_server.Requests().size(), 1u);
}

TEST_F(InstallerFaultsTest, HostUnknown)
{
    CRegistryValue exceptions(HKEY_CURRENT_USER,
                              L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings",
                              L"ProxyOverride");
    exceptions.SetString(L"no-such-server.invalid");
    OfferAndInstall("http://no-such-server.invalid/setup.exe");
    ExpectFailedDownload();
    EXPECT_EQ(m_server.Requests().size(), 1u);
}

TEST_F(InstallerFaultsTest, ConnectionRefused)
{
    Publish(NewerBuild(kInstallerUrl));
    m_user.OnDialog(kOfferCaption, [&](HWND dialog) {
        m_server.Refuse();
        EXPECT_TRUE(ClickButton(dialog, kInstallButton));
    });
    ExpectFailedDownload();
}

TEST_F(InstallerFaultsTest, Status404)
{
    m_server.On(kInstallerPath, CHttpReply(404, "no such file"));
    OfferAndInstall(kInstallerUrl);
    ExpectFailedDownload();
}

TEST_F(InstallerFaultsTest, Status500)
{
    m_server.On(kInstallerPath, CHttpReply(500, "no such luck"));
    OfferAndInstall(kInstallerUrl);
    ExpectFailedDownload();
}

TEST_F(InstallerFaultsTest, OnlyStatus200IsADownload)
{
    m_server.On(kInstallerPath, CHttpReply(201, "created"));
    OfferAndInstall(kInstallerUrl);
    ExpectFailedDownload();
}

TEST_F(InstallerFaultsTest, AFileCutHalfWayIsTakenAsItCame)
{
    // The length is used for the percentage only.
    const std::string half(5'000, 'x');
    m_server.On(kInstallerPath, CHttpReply(200, half).ContentLength(10'000));
    OfferAndInstall(kInstallerUrl);
    ExpectDownloadedFile(half);
}

TEST_F(InstallerFaultsTest, AnEmptyFileStaysAndOnlyTheSystemComplains)
{
    m_server.On(kInstallerPath, CHttpReply(200, ""));
    OfferAndInstall(kInstallerUrl);
    ExpectDownloadedFile("");
}

TEST_F(InstallerFaultsTest, WithoutALengthTheCaptionStaysAsItIs)
{
    CGate gate;
    const std::string bytes(5'000, 'x');
    const CHttpReply reply = CHttpReply(200, bytes).Without("Content-Length");
    m_server.On(kInstallerPath, CServerScript().Send(reply.Bytes()).WaitFor(gate));
    OfferAndInstall(kInstallerUrl);
    m_user.OnDialogWith(kProgressBar, [&](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(gate.WaitUntilReached());
        EXPECT_EQ(WindowText(dialog), L"Lade Update herunter");
        gate.Open();
        EXPECT_TRUE(WaitUntilGone(dialog));
    });
    ExpectSystemMessage();
    RunToTheEnd();
    EXPECT_THAT(TempFiles(), Contains(L"osc??????\\setup.exe"));
}

TEST_F(InstallerFaultsTest, CancelBeforeTheHeadEndsTheDownload)
{
    CGate gate;
    m_server.On(kInstallerPath, CServerScript().WaitFor(gate).Close());
    OfferAndInstall(kInstallerUrl);
    m_user.OnDialogWith(kProgressBar, [&](HWND dialog) {
        EXPECT_TRUE(gate.WaitUntilReached());
        EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
        EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
        // On Windows the closed handles end the wait for the head, and the file is deleted. Wine goes on
        // waiting until the server ends the connection and then cannot read the status; so the empty file
        // stays there.
        gate.Open();
    });
    m_user.AnswerBox(kUpdateCanceled);
    RunToTheEnd();
    EXPECT_THAT(TempFiles(), Contains(L"osc??????\\"));
}

TEST_F(InstallerFaultsTest, TemporaryFolderMissing)
{
    const CTempFolder parent;
    const std::wstring missing = parent.File(L"gone");
    SetEnvironmentVariableW(L"TMP", missing.c_str());
    SetEnvironmentVariableW(L"TEMP", missing.c_str());
    OfferAndInstall(kInstallerUrl);
    m_user.AnswerBox(kNoSuchPath).AnswerBox(kUpdateCanceled);
    RunToTheEnd();
    EXPECT_THAT(ListFolder(parent.Path()), IsEmpty());
    EXPECT_EQ(m_server.Requests().size(), 1u);
}

TEST_F(InstallerFaultsTest, AFolderPlantedUnderAGuessedNameIsNotUsed)
{
    // The name that the next process with this id would choose is taken from a first run.
    m_server.On(kInstallerPath, CHttpReply(404));
    OfferAndInstall(kInstallerUrl);
    ExpectDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    RunToTheEnd();
    const std::wstring first = ListFolder(m_temp.Path()).at(0);
    const std::wstring planted = m_temp.Path() + L"\\" + first + L"setup.exe";
    WriteFileBytes(planted, "planted");

    OfferAndInstall(kInstallerUrl);
    ExpectDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    RunToTheEnd();
    EXPECT_EQ(ReadFileBytes(planted), "planted");
    EXPECT_THAT(TempFiles(),
                testing::UnorderedElementsAre(L"osc??????\\", L"osc??????\\", L"osc??????\\setup.exe"));
}

TEST_F(InstallerFaultsTest, DiskFull)
{
    const int limit = FileLimit();
    if (limit == 0)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    const std::string bytes(static_cast<size_t>(limit) * 1024 + 1, 'x');
    m_server.On(kInstallerPath, CHttpReply(200, bytes));
    OfferAndInstall(kInstallerUrl);
    ExpectFailedDownload();
}

TEST_F(InstallerFaultsTest, AFileThatJustFitsIsWritten)
{
    const int limit = FileLimit();
    if (limit == 0)
    {
        GTEST_SKIP() << "needs ORVA_FILE_LIMIT";
    }
    const std::string bytes(static_cast<size_t>(limit) * 1024, 'x');
    m_server.On(kInstallerPath, CHttpReply(200, bytes));
    OfferAndInstall(kInstallerUrl);
    ExpectDownloadedFile(bytes);
}

} // namespace orva::test
