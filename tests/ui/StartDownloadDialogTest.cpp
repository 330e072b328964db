// The download from its link to the installer, over the system's WinINet and shell: what is requested, shown,
// written and left. Every order of events is tested in tests/download, without a network.
#include "ui/StartDownloadDialog.h"

#include "harness/Files.h"
#include "ui/DownloadFixture.h"

#include <commctrl.h>
#include <shellapi.h>

namespace orva::test
{
namespace
{

class StartDownloadDialogTest : public CDownloadTest
{
protected:
    // Sends 5,000 of the reply's 9,000 bytes, and the others when the user has acted.
    void ServeInTwoParts()
    {
        const std::string bytes = CHttpReply(200, std::string(9000, 'x')).Bytes();
        m_server.On(kInstallerPath,
                    CServerScript().Send(bytes.substr(0, 5000)).WaitFor(m_seenGate).Send(bytes.substr(5000)));
    }
};

TEST_F(StartDownloadDialogTest, WritesTheWholeFileAndStartsItWithTheVerbRunas)
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
    EXPECT_EQ(FileBytes(), bytes);
    EXPECT_TRUE(WaitForInstaller());
}

TEST_F(StartDownloadDialogTest, TheOwnerIsDisabledWhileTheDialogRunsAndEnabledForWhatFollows)
{
    const COwnerWindow owner;
    EnableWindow(owner.Handle(), TRUE);
    // Active, so that the dialog itself would disable this one.
    const COwnerWindow active;
    m_owner = owner.Handle();
    Serve(CHttpReply(404));
    OnDownloadDialog([&](HWND) { EXPECT_FALSE(IsWindowEnabled(m_owner)); });
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    ASSERT_EQ(m_seen.size(), 3u);
    EXPECT_FALSE(m_seen[1].owner == m_owner);
    EXPECT_EQ(m_seen[2].owner, m_owner);
    EXPECT_TRUE(IsWindowEnabled(m_owner));
}

TEST_F(StartDownloadDialogTest, WithoutAPublishersKeyNoSignatureMattersAndTheShellIsCalledAsEver)
{
    const CImportHook hook(
        GetModuleHandleW(nullptr), "SHELL32.dll", "ShellExecuteExW", +[](SHELLEXECUTEINFOW* info) -> BOOL {
            EXPECT_EQ(info->fMask, 0u);
            const std::wstring moved = std::wstring(info->lpFile) + L".moved";
            EXPECT_TRUE(MoveFileW(info->lpFile, moved.c_str())) << "nobody holds it";
            return DeleteFileW(moved.c_str());
        });
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    const CSignedUpdate signedUpdate{L"1.3.0", L"not a signature"};
    const CLogMark log;
    Download(m_server.WideUrl(kInstallerPath), &signedUpdate);
    EXPECT_EQ(Left(), kEmptyFolderLeft);
    EXPECT_EQ(log.Texts().size(), 2u);
}

TEST_F(StartDownloadDialogTest, TheShellReportsAnInstallerThatCannotBeStartedAndTheFileStays)
{
    m_server.OnOther(CServerScript().WaitFor(m_seenGate).Send(CHttpReply(200, "data").Bytes()));
    OnDownloadDialog();
    // The shell's own message. The add-in adds none.
    m_user.OnDialog(L"Error", [](HWND box) { PostMessageW(box, WM_CLOSE, 0, 0); });
    Download(m_server.WideUrl("/setup.unopenable"));
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
    EXPECT_EQ(requests[0].Header("Accept"), "*/*");
    EXPECT_EQ(requests[0].Header("Accept-Encoding"), "identity, *;q=0");
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

TEST_F(StartDownloadDialogTest, LinkWithoutAFileNameShowsTheUnfilledMessageAndNoDialog)
{
    for (const std::wstring& url : {std::wstring(L"setup.orvatest"), m_server.WideUrl("/folder/")})
    {
        m_user.AnswerBox(kUrlNotParsed);
        Download(url);
        EXPECT_EQ(m_seen.size(), 1u);
        EXPECT_TRUE(Left().empty());
    }
}

TEST_F(StartDownloadDialogTest, LinkThatIsNoUrlEndsTheDialogSilentlyThenSaysCanceled)
{
    m_user.AnswerBox(kUpdateCanceled);
    Download(L"nonsense/setup.orvatest");
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, FolderThatCannotBeCreatedIsAFileThatCannotBeCreated)
{
    // A temporary folder that is a file: nothing can be created below it, by whatever user. And none at all.
    const std::wstring file = m_temp.Path() + L"\\file";
    WriteFileBytes(file, "kept");
    for (const std::wstring& folder : {file, m_temp.Path() + L"\\missing"})
    {
        SetEnvironmentVariableW(L"TMP", folder.c_str());
        SetEnvironmentVariableW(L"TEMP", folder.c_str());
        m_user.AnswerBox(kNoSuchPath).AnswerBox(kUpdateCanceled);
        DownloadInstaller();
    }
    EXPECT_TRUE(m_server.Requests().empty());
    EXPECT_EQ(Left(), std::vector<std::wstring>{L"file"});
    EXPECT_EQ(ReadFileBytes(file), "kept");
}

BOOL WINAPI FindEveryNameTaken(LPCWSTR, LPSECURITY_ATTRIBUTES)
{
    SetLastError(ERROR_ALREADY_EXISTS);
    return FALSE;
}

TEST_F(StartDownloadDialogTest, WithoutAFreeNameForTheFolderAMessageSaysSoAndNoDialogOpens)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "KERNEL32.dll", "CreateDirectoryW",
                           &FindEveryNameTaken);
    m_user.AnswerBox(L"Temporary directory could not be created.");
    DownloadInstaller();
    EXPECT_TRUE(m_server.Requests().empty());
}

/// A server that does not deliver the installer.
struct CFailure
{
    const char* name;
    void (*prepare)(CLoopbackServer& server, const CGate& seen);
    /// Null for the server's own.
    const wchar_t* url = nullptr;
};

void PrintTo(const CFailure& failure, std::ostream* stream)
{
    *stream << failure.name;
}

class FailedDownloadTest : public CDownloadTest, public testing::WithParamInterface<CFailure>
{
};

TEST_P(FailedDownloadTest, SaysConnectErrorThenCanceledAndLeavesNoFile)
{
    const std::wstring url = GetParam().url ? GetParam().url : m_server.WideUrl(kInstallerPath);
    GetParam().prepare(m_server, m_seenGate);
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    Download(url);
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

void DoNothing(CLoopbackServer&, const CGate&) {}

INSTANTIATE_TEST_SUITE_P(
    Servers, FailedDownloadTest,
    testing::Values(CFailure{"NotFound", DoNothing},
                    CFailure{"RefusedConnection",
                             [](CLoopbackServer& server, const CGate&) { server.Refuse(); }},
                    // No name server has to be asked for a name with an empty part.
                    CFailure{"UnknownHost", DoNothing, L"http://no..name/setup.orvatest"},
                    CFailure{"Reset", [](CLoopbackServer& server, const CGate& seen) {
                                 server.On(kInstallerPath, CServerScript().WaitFor(seen).Reset());
                             }}));

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
    EXPECT_EQ(FileBytes(), std::string(4000, 'x') + std::string(1000, 'y'));
}

TEST_F(StartDownloadDialogTest, ShowsPercentageNameServerAndLabels)
{
    ServeInTwoParts();
    OnDownloadDialog([&](HWND dialog) {
        // Four whole chunks of 9,000 bytes; the worker now waits for the rest of the fifth.
        EXPECT_TRUE(WaitUntil([&] { return WindowText(dialog) == L"Download: 45% of setup.orvatest"; }))
            << "caption is not the percentage";
        // The bar follows the caption.
        EXPECT_TRUE(
            WaitUntil([&] { return SendMessageW(ChildById(dialog, kProgressBar), PBM_GETPOS, 0, 0) == 45; }));
        EXPECT_EQ(ChildText(dialog, kSourceText), L"setup.orvatest of 127.0.0.1");
        EXPECT_EQ(ChildText(dialog, kTimeLabel), L"Time remaining:");
        EXPECT_EQ(ChildText(dialog, kRateLabel), L"Transfer rate:");
        EXPECT_EQ(ChildText(dialog, IDCANCEL), L"Cancel");
    });
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
}

// Enter presses no button of the disabled kind: it sends IDOK, which must not end the dialog as if the file
// were complete.
TEST_F(StartDownloadDialogTest, CancelDisablesTheButtonDeletesTheFileAndSaysCanceledWhateverEnterDoes)
{
    ServeInTwoParts();
    OnDownloadDialog([](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
        // Before the server goes on: a cancel that came after the last byte would leave the file.
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
        EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
        SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(StartDownloadDialogTest, CloseStopsAfterTheCurrentReadAndDeletesTheFile)
{
    ServeInTwoParts();
    OnDownloadDialog([&](HWND dialog) {
        EXPECT_TRUE(WaitUntil([&] { return WindowText(dialog) == L"Download: 45% of setup.orvatest"; }));
        SendMessageW(dialog, WM_CLOSE, 0, 0);
        EXPECT_FALSE(IsWindowEnabled(ChildById(dialog, IDCANCEL)));
        EXPECT_EQ(ChildText(dialog, kStatusText), L"Download started");
    });
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

// The second would have the first one's folder, with a file of its name.
TEST_F(StartDownloadDialogTest, TwoDownloadsInOneRunUseTwoFolders)
{
    for (int i = 0; i < 2; ++i)
    {
        m_seenGate = CGate();
        Serve(CHttpReply(200, "data"));
        OnDownloadDialog();
        DownloadInstaller();
    }
    std::vector<std::wstring> twice = kFileLeft;
    twice.insert(twice.end(), kFileLeft.begin(), kFileLeft.end());
    EXPECT_EQ(Left(), twice);
}

/// The link's path, and the file name that it gives or the message that there is none of that name. The table
/// of all names is in FileNameTest.
using CNameOfPath = std::pair<std::wstring, std::wstring>;

class OddFileNameTest : public CDownloadTest, public testing::WithParamInterface<CNameOfPath>
{
};

TEST_P(OddFileNameTest, IsTheNameAsItStandsOfAFileInTheFreshFolder)
{
    m_server.OnOther(CServerScript().WaitFor(m_seenGate).Send(CHttpReply(200, "data").Bytes()));
    OnDownloadDialog();
    Download(m_server.WideUrl("/") + GetParam().first);
    EXPECT_EQ(Left(), (std::vector<std::wstring>{L"osc??????\\", L"osc??????\\" + GetParam().second}));
}

INSTANTIATE_TEST_SUITE_P(Names, OddFileNameTest,
                         testing::Values(CNameOfPath(L"..%5Csetup.orvatest", L"..%5Csetup.orvatest"),
                                         CNameOfPath(L"../../setup.orvatest", L"setup.orvatest"),
                                         CNameOfPath(L"setup.exe?name=/../a.orvatest", L"a.orvatest"),
                                         CNameOfPath(L"a%00\u202E\U0001F600.orvatest",
                                                     L"a%00\u202E\U0001F600.orvatest")));

class RefusedFileNameTest : public CDownloadTest, public testing::WithParamInterface<CNameOfPath>
{
};

TEST_P(RefusedFileNameTest, IsAFileThatCannotBeCreatedAndNothingIsRequestedOrWritten)
{
    m_user.AnswerBox(GetParam().second).AnswerBox(kUpdateCanceled);
    Download(m_server.WideUrl("/") + GetParam().first);
    EXPECT_TRUE(m_server.Requests().empty());
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

// The add-in refuses the first; the system refuses the others. The 2 is Wine's number; Windows takes half a
// surrogate pair.
constexpr wchar_t kNoSuchFile[] = L"File could not be created, error ID: 2";

INSTANTIATE_TEST_SUITE_P(Names, RefusedFileNameTest,
                         testing::Values(CNameOfPath(L"..\\evil.bin", kInvalidName),
                                         CNameOfPath(L"a*b.bin", kInvalidName),
                                         CNameOfPath(L"a\xD800.bin", kNoSuchFile),
                                         CNameOfPath(std::wstring(300, L'x'), kNoSuchFile)));

} // namespace
} // namespace orva::test
