// Failures of the download that no server can cause, and how long its last state is shown.
#include "harness/ImportHook.h"
#include "ui/DownloadFixture.h"
#include "ui/ObservedDownload.h"

#include <new>

namespace orva::test
{
namespace
{

using DownloadFailuresTest = CDownloadTest;

BOOL WINAPI ReadWithoutMemory(HINTERNET, LPVOID, DWORD, LPDWORD)
{
    throw std::bad_alloc();
}

BOOL WINAPI ReadThatThrowsAnObject(HINTERNET, LPVOID, DWORD, LPDWORD)
{
    AfxThrowInvalidArgException();
}

using QueryInfo = BOOL WINAPI(HINTERNET, DWORD, LPVOID, LPDWORD, LPDWORD);
QueryInfo* g_queryInfo = nullptr;

BOOL WINAPI QueryAllButTheStatus(HINTERNET request, DWORD level, LPVOID text, LPDWORD size, LPDWORD index)
{
    if (level == HTTP_QUERY_STATUS_CODE)
    {
        SetLastError(ERROR_HTTP_HEADER_NOT_FOUND);
        return FALSE;
    }
    return g_queryInfo(request, level, text, size, index);
}

using BeginThread = uintptr_t __cdecl(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned,
                                      unsigned*);
BeginThread* g_beginThread = nullptr;

// The dialog's worker is the only thread that is created suspended.
uintptr_t __cdecl BeginAllButTheWorker(void* security, unsigned stack, unsigned(__stdcall* start)(void*),
                                       void* argument, unsigned flags, unsigned* id)
{
    return (flags & CREATE_SUSPENDED) != 0 ? 0 : g_beginThread(security, stack, start, argument, flags, id);
}

class DownloadExceptionTest : public CDownloadTest
{
protected:
    template <typename Read> void DownloadWith(Read* read)
    {
        const CImportHook hook(GetModuleHandleW(nullptr), "WININET.dll", "InternetReadFile", read);
        Serve(CHttpReply(200, "data"));
        OnDownloadDialog();
        m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
        DownloadInstaller();
        EXPECT_EQ(Left(), kEmptyFolderLeft);
    }
};

TEST_F(DownloadExceptionTest, CppExceptionInTheWorkerSaysConnectErrorAndLeavesNoFile)
{
    DownloadWith(&ReadWithoutMemory);
}

TEST_F(DownloadExceptionTest, ClassLibraryExceptionInTheWorkerSaysConnectErrorAndLeavesNoFile)
{
    DownloadWith(&ReadThatThrowsAnObject);
}

TEST_F(DownloadFailuresTest, WorkerThatCannotBeStartedSaysCanceledOnlyAndLeavesTheEmptyFile)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "msvcrt.dll", "_beginthreadex", &BeginAllButTheWorker);
    g_beginThread = hook.Original<BeginThread>();
    m_user.AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
    EXPECT_TRUE(m_server.Requests().empty());
}

TEST_F(DownloadFailuresTest, StatusThatCannotBeQueriedSaysConnectErrorAndLeavesTheFile)
{
    const CImportHook hook(GetModuleHandleW(nullptr), "WININET.dll", "HttpQueryInfoW", &QueryAllButTheStatus);
    g_queryInfo = hook.Original<QueryInfo>();
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    DownloadInstaller();
    EXPECT_EQ(Left(), kFileLeft);
}

TEST_F(DownloadFailuresTest, LastStateIsSeenForASecondBeforeTheDialogCloses)
{
    Serve(CHttpReply(200, "data"));
    OnDownloadDialog();
    LARGE_INTEGER finished{};
    LARGE_INTEGER destroyed{};
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    CObservedDownload dialog;
    dialog.m_url = m_server.WideUrl(kInstallerPath).c_str();
    dialog.m_filePath = (m_temp.Path() + L"\\setup.orvatest").c_str();
    dialog.before = [&](HWND, UINT message, WPARAM) {
        if (message == WM_DOWNLOAD_FINISHED)
        {
            QueryPerformanceCounter(&finished);
        }
        else if (message == WM_DESTROY)
        {
            QueryPerformanceCounter(&destroyed);
        }
    };
    m_user.Start();
    EXPECT_EQ(dialog.DoModal(), IDOK);
    m_user.Finish();
    ASSERT_NE(finished.QuadPart, 0);
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    // Sleep may end one tick of the system's clock early.
    constexpr long long kTick = 16;
    EXPECT_GE((destroyed.QuadPart - finished.QuadPart) * 1000 / frequency.QuadPart, 1000 - kTick);
}

} // namespace
} // namespace orva::test
