// The download from its link to the installer: what is requested, shown, written and left.
#include "ui/StartDownloadDialog.h"

#include "harness/Files.h"
#include "ui/DownloadFixture.h"

#include <commctrl.h>

namespace orva::test
{
namespace
{

using StartDownloadDialogTest = CDownloadTest;

std::wstring TextOf(const std::vector<CSeenWindow>& seen, size_t index)
{
    return index < seen.size() ? seen[index].text : L"(no window)";
}

TEST_F(StartDownloadDialogTest, WritesTheWholeFileAndLeavesIt)
{
    std::string bytes;
    for (int i = 0; i < 100'000; ++i)
    {
        bytes += static_cast<char>(i * 7);
    }
    Serve(CHttpReply(200, bytes));
    OnDownloadDialog();
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
    EXPECT_EQ(ReadFileBytes(m_temp.Path() + L"\\" + ListFolder(m_temp.Path()).at(1)), bytes);
}

TEST_F(StartDownloadDialogTest, StartsTheInstallerWithTheVerbRunas)
{
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    DownloadInstaller();
    EXPECT_TRUE(WaitForInstaller());
    EXPECT_EQ(m_seen.size(), 1u);
}

TEST_F(StartDownloadDialogTest, TheShellReportsAnInstallerThatCannotBeStartedAndTheFileStays)
{
    m_server.On("/setup.unopenable",
                CServerScript().WaitFor(m_seenGate).Send(CHttpReply(200, "data").Bytes()));
    OnDownloadDialog();
    // The shell's own message. The add-in adds none.
    m_user.OnDialog(L"Error", [](HWND box) { PostMessageW(box, WM_CLOSE, 0, 0); });
    Download(m_server.WideUrl("/setup.unopenable"));
    EXPECT_EQ(m_seen.size(), 2u);
    EXPECT_EQ(Left().size(), 2u);
}

TEST_F(StartDownloadDialogTest, SendsItsOwnRequest)
{
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    DownloadInstaller();
    const auto requests = m_server.Requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].requestLine, "GET /setup.orvatest HTTP/1.1");
    EXPECT_EQ(requests[0].Header("Accept"), std::optional<std::string>("*/*"));
    EXPECT_EQ(requests[0].Header("Accept-Encoding"), std::optional<std::string>("identity, *;q=0"));
    EXPECT_NE(requests[0].raw.find("User-Agent: ORVA OSC Outlook Add-In\r\n"), std::string::npos);
}

TEST_F(StartDownloadDialogTest, LogsItsEntryAndTheTargetPath)
{
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    const CLogMark log;
    DownloadInstaller();
    const auto texts = log.Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], "StartDownloadDialog");
    EXPECT_EQ(texts[1].substr(0, 34), "StartDownloadDialog() target path ");
    EXPECT_TRUE(texts[1].ends_with("\\setup.orvatest"));
}

TEST_F(StartDownloadDialogTest, LinkWithoutSlashShowsTheUnfilledMessageAndNoDialog)
{
    m_user.AnswerBox(kUrlNotParsed);
    Download(L"setup.orvatest");
    EXPECT_TRUE(Left().empty());
}

TEST_F(StartDownloadDialogTest, LinkEndingInASlashShowsTheUnfilledMessageAndNoDialog)
{
    m_user.AnswerBox(kUrlNotParsed);
    Download(m_server.WideUrl("/folder/"));
    EXPECT_TRUE(Left().empty());
}

TEST_F(StartDownloadDialogTest, LinkThatIsNoUrlEndsTheDialogSilentlyThenSaysCanceled)
{
    m_user.AnswerBox(kUpdateCanceled);
    Download(L"nonsense/setup.orvatest");
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, MissingTemporaryFolderIsAFileThatCannotBeCreated)
{
    ASSERT_TRUE(RemoveDirectoryW(m_temp.Path().c_str()));
    m_user.AnswerBox(kNoSuchPath).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_TRUE(m_server.Requests().empty());
}

TEST_F(StartDownloadDialogTest, TargetThatIsNotWritableIsAFileThatCannotBeCreated)
{
    // A temporary folder that is a file: nothing can be created below it, by whatever user.
    const std::wstring file = m_temp.Path() + L"\\file";
    WriteFileBytes(file, "kept");
    SetEnvironmentVariableW(L"TMP", file.c_str());
    SetEnvironmentVariableW(L"TEMP", file.c_str());
    m_user.AnswerBox(kNoSuchPath).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_TRUE(m_server.Requests().empty());
    EXPECT_EQ(ReadFileBytes(file), std::optional<std::string>("kept"));
}

TEST_F(StartDownloadDialogTest, NotFoundSaysConnectErrorThenCanceledAndLeavesNoFile)
{
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, ConnectErrorBelongsToTheDialogAndCanceledToTheOwner)
{
    const COwnerWindow owner;
    EnableWindow(owner.Handle(), TRUE);
    HWND dialogWindow = nullptr;
    OnDownloadDialog([&](HWND dialog) { dialogWindow = dialog; });
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    DownloadInstaller(owner.Handle());
    ASSERT_EQ(m_seen.size(), 3u);
    EXPECT_EQ(m_seen[1].owner, dialogWindow);
    EXPECT_EQ(m_seen[2].owner, owner.Handle());
    EXPECT_EQ(m_seen[2].caption, L"ORVA Connector");
}

TEST_F(StartDownloadDialogTest, OwnerIsDisabledWhileTheDialogRunsAndEnabledAfter)
{
    const COwnerWindow owner;
    EnableWindow(owner.Handle(), TRUE);
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog([&](HWND) { EXPECT_FALSE(IsWindowEnabled(owner.Handle())); });
    DownloadInstaller(owner.Handle());
    EXPECT_TRUE(IsWindowEnabled(owner.Handle()));
}

TEST_F(StartDownloadDialogTest, RefusedConnectionSaysConnectErrorAndLeavesNoFile)
{
    const CRefusingPort port;
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    Download(L"http://127.0.0.1:" + std::to_wstring(port.Port()) + L"/setup.orvatest");
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, UnknownHostSaysConnectErrorAndLeavesNoFile)
{
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    Download(L"http://no-such-host.invalid/setup.orvatest");
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

// The file ends where the data ends: its length is not compared with Content-Length.
TEST_F(StartDownloadDialogTest, BodyThatEndsHalfWayIsTakenAsComplete)
{
    const CHttpReply reply(200, std::string(5000, 'x'));
    m_server.On(kInstallerPath, CServerScript()
                                    .WaitFor(m_seenGate)
                                    .Send(reply.Bytes().substr(0, reply.Head().size() + 3000))
                                    .Close());
    OnDownloadDialog();
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
    EXPECT_TRUE(WaitForInstaller());
}

TEST_F(StartDownloadDialogTest, ResetBeforeTheHeadersSaysConnectErrorAndLeavesNoFile)
{
    m_server.On(kInstallerPath, CServerScript().WaitFor(m_seenGate).Reset());
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, ConnectionClosedWithoutAResponseSaysConnectErrorAndLeavesNoFile)
{
    m_server.On(kInstallerPath, CServerScript().WaitFor(m_seenGate).Close());
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, WithoutContentLengthTheCaptionStaysThatOfTheTemplate)
{
    m_server.On(kInstallerPath,
                CServerScript()
                    .Send(CHttpReply(200, std::string(4000, 'x')).Without("Content-Length").Bytes())
                    .WaitFor(m_seenGate)
                    .Send(std::string(1000, 'y')));
    OnDownloadDialog([&](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_EQ(WindowText(dialog), kTemplateCaption);
        EXPECT_EQ(ChildText(dialog, kTimeText), L"");
    });
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
}

TEST_F(StartDownloadDialogTest, WithoutContentLengthTheRateStillUpdates)
{
    const std::string bytes =
        CHttpReply(200, std::string(size_t{20} * 1024, 'x')).Without("Content-Length").Bytes();
    m_server.On(kInstallerPath, CServerScript().SendSlowly(bytes, 1024, 150));
    OnDownloadDialog([](HWND dialog) {
        EXPECT_TRUE(WaitUntil([&] { return ChildText(dialog, kRateText).ends_with(L" kb/s"); }));
        EXPECT_EQ(WindowText(dialog), kTemplateCaption);
        EXPECT_EQ(ChildText(dialog, kTimeText), L"");
    });
    DownloadInstaller();
}

TEST_F(StartDownloadDialogTest, ShowsPercentageNameServerAndLabels)
{
    const std::string body(10'000, 'x');
    m_server.On(kInstallerPath,
                CServerScript()
                    .Send(CHttpReply(200, body).Bytes().substr(0, CHttpReply(200, body).Head().size() + 3072))
                    .WaitFor(m_seenGate)
                    .Send(body.substr(3072)));
    OnDownloadDialog([&](HWND dialog) {
        EXPECT_TRUE(WaitUntil([&] { return WindowText(dialog) == L"Download: 30% of setup.orvatest"; }))
            << "caption is not the percentage";
        // The bar follows the caption.
        EXPECT_TRUE(
            WaitUntil([&] { return SendMessageW(ChildById(dialog, kProgressBar), PBM_GETPOS, 0, 0) == 30; }));
        EXPECT_EQ(ChildText(dialog, kSourceText), L"setup.orvatest of 127.0.0.1");
        EXPECT_EQ(ChildText(dialog, kTimeLabel), L"Time remaining:");
        EXPECT_EQ(ChildText(dialog, kRateLabel), L"Transfer rate:");
        EXPECT_EQ(ChildText(dialog, IDCANCEL), L"Cancel");
        // Less than a second has passed between the chunks: neither rate nor time is drawn.
        EXPECT_EQ(ChildText(dialog, kTimeText), L"");
        EXPECT_EQ(ChildText(dialog, kRateText), L"");
    });
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
}

TEST_F(StartDownloadDialogTest, RateAndTimeAreDrawnOnceASecondHasPassed)
{
    const std::string body(size_t{20} * 1024, 'x');
    const std::string bytes = CHttpReply(200, body).Bytes();
    m_server.On(kInstallerPath, CServerScript().SendSlowly(bytes, 1024, 150));
    OnDownloadDialog([&](HWND dialog) {
        EXPECT_TRUE(WaitUntil([&] {
            const std::wstring time = ChildText(dialog, kTimeText);
            return time.find(L"kb of 20kb complete)") != std::wstring::npos;
        })) << "no remaining time";
        const std::wstring rate = ChildText(dialog, kRateText);
        EXPECT_NE(rate.find(L" kb/s"), std::wstring::npos);
    });
    DownloadInstaller();
}

TEST_F(StartDownloadDialogTest, CancelShowsItDisablesTheButtonDeletesTheFileAndSaysCanceled)
{
    m_server.On(kInstallerPath, CServerScript()
                                    .Send(CHttpReply(200, std::string(9000, 'x')).Bytes().substr(0, 5000))
                                    .WaitFor(m_seenGate)
                                    .Close());
    OnDownloadDialog([](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
        EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
    });
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, EscapeCancels)
{
    m_server.On(kInstallerPath, CServerScript()
                                    .Send(CHttpReply(200, std::string(9000, 'x')).Bytes().substr(0, 5000))
                                    .WaitFor(m_seenGate)
                                    .Close());
    OnDownloadDialog([](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(TypeKey(dialog, VK_ESCAPE));
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
    });
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, EnterAfterCancelDoesNotEndTheDialogAsIfTheFileWereComplete)
{
    m_server.On(kInstallerPath, CServerScript()
                                    .Send(CHttpReply(200, std::string(9000, 'x')).Bytes().substr(0, 5000))
                                    .WaitFor(m_seenGate)
                                    .Close());
    OnDownloadDialog([](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
        // Before the server goes on: a cancel that came after the last byte would leave the file.
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, CloseStopsAfterTheCurrentReadAndDeletesTheFile)
{
    const std::string bytes = CHttpReply(200, std::string(9000, 'x')).Bytes();
    m_server.On(kInstallerPath,
                CServerScript().Send(bytes.substr(0, 5000)).WaitFor(m_seenGate).Send(bytes.substr(5000)));
    OnDownloadDialog([&](HWND dialog) {
        // Four whole chunks of 9,000 bytes; the worker now waits for the rest of the fifth.
        EXPECT_TRUE(WaitUntil([&] { return WindowText(dialog) == L"Download: 45% of setup.orvatest"; }));
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
        EXPECT_EQ(ChildText(dialog, kStatusText), L"Download started");
    });
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, TwoDownloadsInOneRunUseTwoFolders)
{
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    DownloadInstaller();
    CGate seen;
    m_server.On(kInstallerPath, CServerScript().WaitFor(seen).Send(CHttpReply(200, "data").Bytes()));
    CUserScript user;
    user.OnDialogWith(kProgressBar, [&](HWND) { seen.Open(); }).Start();
    StartDownloadDialog(m_server.WideUrl(kInstallerPath).c_str(), nullptr);
    user.Finish();
    const std::vector<std::wstring> twice{L"osc??????\\", L"osc??????\\setup.orvatest", L"osc??????\\",
                                          L"osc??????\\setup.orvatest"};
    EXPECT_EQ(Left(), twice);
}

class HostileFileNameTest : public CDownloadTest, public testing::WithParamInterface<std::wstring>
{
};

TEST_P(HostileFileNameTest, IsAFileThatCannotBeCreatedAndNothingIsRequestedOrWritten)
{
    m_user.AnswerBox(kInvalidName).AnswerBox(kUpdateCanceled);
    Download(m_server.WideUrl("/") + GetParam());
    EXPECT_TRUE(m_server.Requests().empty());
    EXPECT_EQ(Left(), kEmptyFolderLeft);
    EXPECT_EQ(TextOf(m_seen, 0), kInvalidName);
}

INSTANTIATE_TEST_SUITE_P(Names, HostileFileNameTest,
                         testing::Values(L"..\\evil.bin", L"..\\..\\evil.bin", L"\\evil.bin", L"C:evil.bin",
                                         L"C:\\evil.bin", L"setup.orvatest:stream", L"a\tb.bin", L"CON",
                                         L"nul.bin", L"COM1.bin", L"..", L".", L"setup?.bin", L"a*b", L"a<b",
                                         L"a|b"));

} // namespace
} // namespace orva::test
