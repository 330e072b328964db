// The start-up check in Outlook: when it runs, what it requests and offers, and what the user's choice leads
// to.
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Files.h"
#include "harness/Text.h"

namespace orva::test
{

namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class StartupCheckTest : public OutlookFixture
{
protected:
    // Waits for the setup's first page, cancels it there and waits for its end. Returns its program's path.
    std::wstring CancelSetup()
    {
        const HWND window = WaitForWindow({.process = 0, .caption = L"ORVA Connector 1.3.0 Setup"});
        const UniqueHandle process(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE,
                                               window != nullptr ? WindowProcess(window) : 0));
        wchar_t path[MAX_PATH] = L"";
        DWORD length = MAX_PATH;
        QueryFullProcessImageNameW(process.get(), 0, path, &length);
        EXPECT_TRUE(WaitUntil([&] { return ClickButton(window, IDCANCEL); }));
        EXPECT_EQ(WaitForSingleObject(process.get(), kPatience), WAIT_OBJECT_0);
        return path;
    }
};

} // namespace

TEST_F(StartupCheckTest, AsksForTheFileOnceWithItsTrailingQuestionMark)
{
    Publish(UpdateInfo("1", "2", "0", ""));
    RunToTheEnd();
    const std::vector<CHttpRecord> requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].requestLine,
              "GET http://" ORVA_WEB_HOST ":80/downloads/outlook/UpdateInfo.txt? HTTP/1.1");
    EXPECT_EQ(requests[0].Header("Host"), ORVA_WEB_HOST);
    EXPECT_EQ(requests[0].Header("Accept-Encoding"), "gzip");
    EXPECT_EQ(requests[0].body, "");
}

TEST_F(StartupCheckTest, RunsAtOutlooksOwnStartOnly)
{
    Publish(NewerBuild(kInstallerUrl));
    const std::pair<const wchar_t*, const char*> modes[] = {{L"after-startup", "ext_cm_AfterStartup"},
                                                            {L"external", "ext_cm_External"},
                                                            {L"command-line", "ext_cm_CommandLine"}};
    for (const auto& [mode, logged] : modes)
    {
        StartOutlook({L"--mode", mode, L"--quit-after-startup"});
        ASSERT_EQ(m_outlook->WaitForExit(), 0u);
        m_user.Finish();
        EXPECT_THAT(ReadLogTexts(), Contains(std::string("CConnect::OnConnection() ") + logged + " "));
    }
    EXPECT_THAT(ReadLogTexts(), Not(Contains("CheckForUpdate")));
    EXPECT_THAT(m_server.Requests(), IsEmpty());
}

TEST_F(StartupCheckTest, OutlooksWindowIsDisabledUntilTheServerAnswers)
{
    CGate gate;
    m_server.On(kUpdateInfoPath, CServerScript().WaitFor(gate).Send(CHttpReply(404).Bytes()));
    StartOutlook();
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_FALSE(IsWindowEnabled(MainWindow()));
    gate.Open();
    WaitForStart();
    ExpectOutlookGoesOn();
}

TEST_F(StartupCheckTest, OffersANewerBuildWithBothVersionsAndTheDescription)
{
    Publish(NewerBuild(kInstallerUrl));
    bool isDisabled = false;
    m_user.OnDialog(kOfferCaption, [&](HWND dialog) {
        isDisabled = !IsWindowEnabled(MainWindow());
        EXPECT_TRUE(ClickButton(dialog, kLaterButton));
    });
    RunToTheEnd();
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_TRUE(isDisabled);
    EXPECT_EQ(m_seen[0].Control(kAvailableText), L"Available version: 1.3.0");
    EXPECT_EQ(m_seen[0].Control(kInstalledText), L"Installed version: 1.2.0");
    EXPECT_EQ(m_seen[0].Control(kDescriptionText), L"Better than ever.");
    EXPECT_EQ(m_seen[0].Control(kInstallButton), L"Install");
    EXPECT_EQ(m_seen[0].Control(kLaterButton), L"Later");
}

TEST_F(StartupCheckTest, LaterDownloadsNothingAndIsOfferedAgainAtTheNextStart)
{
    Publish(NewerBuild(kInstallerUrl));
    for (size_t start = 1; start <= 2; ++start)
    {
        ExpectOffer();
        RunToTheEnd();
        EXPECT_EQ(m_server.Requests().size(), start);
    }
    EXPECT_THAT(m_server.RequestsFor(kInstallerPath), IsEmpty());
    EXPECT_THAT(TempFiles(), IsEmpty());
}

TEST_F(StartupCheckTest, InstallDownloadsAndStartsTheInstaller)
{
    const std::string installer = ReadFileBytes(BuiltFile(kInstaller)).value();
    m_server.On(kInstallerPath,
                CHttpReply(200, installer).Header("Content-Type", "application/octet-stream"));
    OfferAndInstall(kInstallerUrl);
    std::wstring source;
    m_user.OnDialogWith(kProgressBar, [&](HWND dialog) {
        source = WaitForChildText(dialog, kSourceText, L"setup.exe of files.orva.example");
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_FALSE(IsWindowEnabled(MainWindow()));
    });
    RunToTheEnd();
    const std::wstring program = CancelSetup();

    EXPECT_EQ(source, L"setup.exe of files.orva.example");
    const std::vector<CHttpRecord> requests = m_server.RequestsFor(kInstallerPath);
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].authority, "files.orva.example:80");
    EXPECT_EQ(requests[0].query, std::nullopt);
    EXPECT_EQ(requests[0].Header("Accept"), "*/*");
    EXPECT_EQ(requests[0].Header("Accept-Encoding"), "identity, *;q=0");
    EXPECT_THAT(requests[0].headers,
                Contains(std::pair<std::string, std::string>("User-Agent", "ORVA OSC Outlook Add-In")));

    EXPECT_THAT(TempFiles(), ElementsAre(L"osc??????\\", L"osc??????\\setup.exe"));
    const std::wstring folder = m_temp.Path() + L"\\" + ListFolder(m_temp.Path()).at(0);
    EXPECT_TRUE(ReadFileBytes(folder + L"setup.exe") == installer);
    EXPECT_EQ(program, folder + L"setup.exe");
    const std::vector<std::string> log = ReadLogTexts();
    EXPECT_THAT(log, Contains("StartDownloadDialog"));
    EXPECT_THAT(log, Contains("StartDownloadDialog() target path " + Utf8(folder) + "setup.exe"));
}

} // namespace orva::test
