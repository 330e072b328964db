// The installer's download in a build with a key: only what the publisher has signed is started, and while it
// is started nobody can change it.
#include "harness/Files.h"
#include "harness/ImportHook.h"
#include "harness/Signer.h"
#include "harness/Text.h"
#include "ui/DownloadFixture.h"
#include "ui/StartDownloadDialog.h"

#include <shellapi.h>

#include <functional>
#include <utility>

namespace orva::test
{
namespace
{

constexpr char kNotSigned[] = "StartDownloadDialog() not signed by the publisher for version 1.3.0";

// What happens to the file in the instant before the add-in opens it to verify it.
std::function<void(const std::wstring& path)> g_beforeVerifying;
// Called in the place of the shell.
std::function<void(const SHELLEXECUTEINFOW& info)> g_onStart;

using CreateFileFunction = HANDLE WINAPI(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE);
CreateFileFunction* g_createFile = nullptr;

HANDLE WINAPI OpenAfterTheFact(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                               DWORD creation, DWORD flags, HANDLE templateFile)
{
    if (g_beforeVerifying && access == GENERIC_READ && share == FILE_SHARE_READ && creation == OPEN_EXISTING)
    {
        std::exchange(g_beforeVerifying, nullptr)(path);
    }
    return g_createFile(path, access, share, security, creation, flags, templateFile);
}

BOOL WINAPI NoteStart(SHELLEXECUTEINFOW* info)
{
    g_onStart(*info);
    return TRUE;
}

class SignedDownloadTest : public CDownloadTest
{
protected:
    SignedDownloadTest()
    {
        for (size_t i = 0; i < 100'000; ++i)
        {
            m_bytes += static_cast<char>(i * i >> 4U);
        }
        m_signature = m_signer.Sign("1.3.0", m_bytes);
    }
    ~SignedDownloadTest() override
    {
        g_beforeVerifying = nullptr;
        g_onStart = nullptr;
    }

    // What the update file says of the installer.
    static CSignedUpdate Update(const std::string& signature, const wchar_t* version = L"1.3.0")
    {
        return {version, Widen(signature)};
    }

    // The whole download of these bytes.
    void DownloadBytes(const std::string& bytes, const CSignedUpdate* signedUpdate)
    {
        Serve(CHttpReply(200, bytes));
        OnDownloadDialog();
        Download(m_server.WideUrl(kInstallerPath), signedUpdate);
        m_seenGate = CGate();
    }

    // The same, which is refused: two boxes, nothing is started, and this is the log's line after that of the
    // path.
    void ExpectRefused(const std::string& bytes, const CSignedUpdate* signedUpdate,
                       const std::string& line = kNotSigned)
    {
        Serve(CHttpReply(200, bytes));
        OnDownloadDialog();
        m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
        g_onStart = [](const SHELLEXECUTEINFOW&) { ADD_FAILURE() << "started"; };
        const CLogMark log;
        Download(m_server.WideUrl(kInstallerPath), signedUpdate);
        m_seenGate = CGate();
        const std::vector<std::string> lines = log.Texts();
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(lines.back(), line);
    }

    void ExpectRefusedAndDeleted(const std::string& bytes, const CSignedUpdate& signedUpdate,
                                 const std::string& line = kNotSigned)
    {
        ExpectRefused(bytes, &signedUpdate, line);
        EXPECT_EQ(Left().size(), ++m_refused) << "more than the empty folders";
    }

    const CSigner m_signer{L"private.pem"};
    std::string m_bytes;
    std::string m_signature;

private:
    size_t m_refused = 0;
};

// The same without the shell.
class SignedStartTest : public SignedDownloadTest
{
protected:
    SignedStartTest() { g_createFile = m_open.Original<CreateFileFunction>(); }

private:
    const CImportHook m_open{GetModuleHandleW(nullptr), "KERNEL32.dll", "CreateFileW", &OpenAfterTheFact};
    const CImportHook m_start{GetModuleHandleW(nullptr), "SHELL32.dll", "ShellExecuteExW", &NoteStart};
};

TEST_F(SignedDownloadTest, WhatThePublisherHasSignedIsStartedAndStays)
{
    const CSignedUpdate update = Update(m_signature);
    const CLogMark log;
    DownloadBytes(m_bytes, &update);
    EXPECT_TRUE(WaitForInstaller());
    EXPECT_EQ(Left(), kFileLeft);
    EXPECT_TRUE(FileBytes() == m_bytes);
    EXPECT_EQ(log.Texts().size(), 2u) << "the same lines as without a key";
}

TEST_F(SignedStartTest, NobodyCanWriteRenameReplaceOrDeleteItWhileItIsStarted)
{
    std::wstring path;
    g_onStart = [&](const SHELLEXECUTEINFOW& info) {
        path = info.lpFile;
        constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        for (const DWORD access : {DWORD{GENERIC_WRITE}, DWORD{FILE_APPEND_DATA}, DWORD{DELETE}})
        {
            const UniqueHandle file(
                CreateFileW(info.lpFile, access, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
            EXPECT_EQ(file.get(), INVALID_HANDLE_VALUE) << access;
            EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION)) << access;
        }
        EXPECT_TRUE(FileBytes() == m_bytes) << "others can read it";
        const std::wstring other = m_temp.Path() + L"\\other";
        WriteFileBytes(other, "something else");
        EXPECT_FALSE(MoveFileExW(other.c_str(), info.lpFile, MOVEFILE_REPLACE_EXISTING));
        EXPECT_FALSE(MoveFileExW(info.lpFile, other.c_str(), MOVEFILE_REPLACE_EXISTING));
        EXPECT_FALSE(DeleteFileW(info.lpFile));
        RemovePath(other);
    };
    const CSignedUpdate update = Update(m_signature);
    DownloadBytes(m_bytes, &update);
    EXPECT_EQ(Left(), kFileLeft);
    EXPECT_TRUE(DeleteFileW(path.c_str())) << "it is let go afterwards";
}

TEST_F(SignedStartTest, TheShellIsToBeDoneBeforeTheFileIsLetGo)
{
    int starts = 0;
    g_onStart = [&](const SHELLEXECUTEINFOW& info) {
        ++starts;
        EXPECT_STREQ(info.lpVerb, L"runas");
        EXPECT_EQ(info.fMask, static_cast<ULONG>(SEE_MASK_NOASYNC));
    };
    const CSignedUpdate update = Update(m_signature);
    DownloadBytes(m_bytes, &update);
    EXPECT_EQ(starts, 1);
}

// The system's answer for the file that is held, on which no link has an influence any more.
const wchar_t* g_finalPath = nullptr;

DWORD WINAPI GiveFinalPath(HANDLE, LPWSTR path, DWORD size, DWORD flags)
{
    EXPECT_EQ(flags, static_cast<DWORD>(FILE_NAME_NORMALIZED | VOLUME_NAME_DOS));
    const std::wstring text = g_finalPath;
    EXPECT_GT(size, text.size());
    std::copy_n(text.c_str(), text.size() + 1, path);
    return static_cast<DWORD>(text.size());
}

TEST_F(SignedStartTest, ItIsStartedByThePathOfTheFileThatIsHeldAndNotByTheOneThatLedToIt)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "KERNEL32.dll", "GetFinalPathNameByHandleW",
                           &GiveFinalPath);
    std::wstring started;
    g_onStart = [&](const SHELLEXECUTEINFOW& info) { started = info.lpFile; };
    const CSignedUpdate update = Update(m_signature);
    constexpr std::pair<const wchar_t*, const wchar_t*> kPaths[] = {
        {L"\\\\?\\C:\\own\\setup.orvatest", L"C:\\own\\setup.orvatest"},
        {L"\\\\?\\UNC\\server\\share\\setup.orvatest", L"\\\\server\\share\\setup.orvatest"}};
    for (const auto& [finalPath, expected] : kPaths)
    {
        g_finalPath = finalPath;
        DownloadBytes(m_bytes, &update);
        EXPECT_EQ(started, expected);
    }
}

TEST_F(SignedStartTest, AFileOfWhichTheSystemGivesNoPathIsNotStarted)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "KERNEL32.dll", "GetFinalPathNameByHandleW",
                           &GiveFinalPath);
    g_finalPath = L"";
    ExpectRefusedAndDeleted(m_bytes, Update(m_signature));
}

TEST_F(SignedStartTest, AFileThatIsReplacedBeforeItIsHeldIsNotStarted)
{
    g_beforeVerifying = [](const std::wstring& path) {
        RemovePath(path);
        WriteFileBytes(path, "something else");
    };
    ExpectRefusedAndDeleted(m_bytes, Update(m_signature));
    EXPECT_FALSE(g_beforeVerifying);
}

TEST_F(SignedStartTest, AFileThatIsGoneBeforeItIsHeldIsNotStarted)
{
    g_beforeVerifying = [](const std::wstring& path) { RemovePath(path); };
    ExpectRefusedAndDeleted(m_bytes, Update(m_signature),
                            "StartDownloadDialog() signature not verified, error 2");
}

TEST_F(SignedStartTest, AFileThatSomebodyElseCanWriteIsNotStarted)
{
    UniqueHandle writer;
    g_beforeVerifying = [&](const std::wstring& path) {
        writer.reset(CreateFileW(path.c_str(), GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                 OPEN_EXISTING, 0, nullptr));
    };
    const CSignedUpdate update = Update(m_signature);
    ExpectRefused(m_bytes, &update, "StartDownloadDialog() signature not verified, error 32");
    writer.reset();
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(SignedStartTest, AMissingSignatureStartsNothing)
{
    ExpectRefusedAndDeleted(m_bytes, Update(""));
}

TEST_F(SignedStartTest, ACallWithoutASignatureStartsNothing)
{
    ExpectRefused(m_bytes, nullptr, "StartDownloadDialog() not signed by the publisher for version ");
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

TEST_F(SignedStartTest, ASignatureOfAnotherVersionFileOrKeyOrAMalformedOneStartsNothing)
{
    const CSigner other(L"other-private.pem");
    ExpectRefusedAndDeleted(m_bytes, Update(m_signature, L"1.4.0"),
                            "StartDownloadDialog() not signed by the publisher for version 1.4.0");
    ExpectRefusedAndDeleted(m_bytes, Update(m_signer.Sign("1.3.0", m_bytes + "x")));
    ExpectRefusedAndDeleted(m_bytes, Update(other.Sign("1.3.0", m_bytes)));
    ExpectRefusedAndDeleted(m_bytes, Update(m_signature + "\n"));
}

TEST_F(SignedStartTest, ADownloadThatEndsEarlyButInAnOrderlyWayIsNotStarted)
{
    for (const size_t size : {size_t{0}, m_bytes.size() / 2, m_bytes.size() - 1})
    {
        ExpectRefusedAndDeleted(m_bytes.substr(0, size), Update(m_signature));
    }
}

TEST_F(SignedStartTest, ADownloadThatIsCancelledIsNotVerified)
{
    const std::string reply = CHttpReply(200, m_bytes).Bytes();
    m_server.On(kInstallerPath, CServerScript().Send(reply.substr(0, 5000)).WaitFor(m_seenGate));
    OnDownloadDialog([](HWND dialog) {
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download started"), L"Download started");
        EXPECT_TRUE(ClickButton(dialog, IDCANCEL));
        EXPECT_EQ(WaitForChildText(dialog, kStatusText, L"Download canceled"), L"Download canceled");
    });
    m_user.AnswerBox(kUpdateCanceled);
    const CLogMark log;
    const CSignedUpdate update = Update(m_signature);
    Download(m_server.WideUrl(kInstallerPath), &update);
    EXPECT_EQ(log.Texts().size(), 2u);
    EXPECT_EQ(Left(), kEmptyFolderLeft);
}

} // namespace
} // namespace orva::test
