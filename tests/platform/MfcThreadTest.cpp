// Worker threads: start, end, ownership, what they inherit, what their failures do.
#include "harness/DebugOutput.h"
#include "harness/Waiting.h"

#include <afxwin.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace
{

using orva::test::kPatience;
using orva::test::MakeEvent;
using orva::test::UniqueHandle;

// Starts a worker that the test owns, waits for its end and returns its exit code.
DWORD RunToTheEnd(AFX_THREADPROC function, void* parameter)
{
    std::unique_ptr<CWinThread> thread(
        AfxBeginThread(function, parameter, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED));
    if (!thread)
    {
        ADD_FAILURE() << "no thread";
        return 0;
    }
    thread->m_bAutoDelete = FALSE;
    thread->ResumeThread();
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread->m_hThread, kPatience));
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeThread(thread->m_hThread, &code));
    return code;
}

TEST(MfcThread, FunctionGetsItsParameterAndGivesTheExitCode)
{
    int value = 41;
    EXPECT_EQ(42U,
              RunToTheEnd([](LPVOID parameter) -> UINT { return UINT(*static_cast<int*>(parameter) + 1); },
                          &value));
}

TEST(MfcThread, SuspendedThreadWaitsForItsResume)
{
    CWinThread* seen = nullptr;
    std::unique_ptr<CWinThread> thread(AfxBeginThread(
        [](LPVOID parameter) -> UINT {
            *static_cast<CWinThread**>(parameter) = AfxGetThread();
            return GetCurrentThreadId();
        },
        &seen, THREAD_PRIORITY_BELOW_NORMAL, 0, CREATE_SUSPENDED));
    ASSERT_TRUE(thread);
    thread->m_bAutoDelete = FALSE;
    EXPECT_EQ(THREAD_PRIORITY_BELOW_NORMAL, GetThreadPriority(thread->m_hThread));
    EXPECT_EQ(1U, thread->ResumeThread()) << "was suspended once";
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread->m_hThread, kPatience));
    DWORD code = 0;
    GetExitCodeThread(thread->m_hThread, &code);
    EXPECT_EQ(thread->m_nThreadID, code);
    EXPECT_EQ(thread.get(), seen) << "a worker finds its own object";
    EXPECT_EQ(AfxGetApp(), AfxGetThread());
    const HANDLE handle = thread->m_hThread;
    DWORD flags = 0;
    EXPECT_TRUE(GetHandleInformation(handle, &flags));
    thread.reset();
    EXPECT_FALSE(GetHandleInformation(handle, &flags)) << "the object owns the handle";
}

TEST(MfcThread, ThreadObjectDeletesItselfUnlessItIsOwned)
{
    class CCountedThread : public CWinThread
    {
    public:
        CCountedThread(HANDLE gone, AFX_THREADPROC function) : CWinThread(function, nullptr), m_gone(gone) {}
        ~CCountedThread() override { SetEvent(m_gone); }

    private:
        HANDLE m_gone;
    };
    const UniqueHandle gone = MakeEvent();
    auto* thread = new CCountedThread(gone.get(), [](LPVOID) -> UINT { return 0; });
    EXPECT_TRUE(thread->m_bAutoDelete);
    ASSERT_TRUE(thread->CreateThread());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(gone.get(), kPatience));
}

TEST(MfcThread, ThreadThatCannotBeStartedIsNull)
{
    SECURITY_DESCRIPTOR ofNoKnownRevision = {};
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, &ofNoKnownRevision, FALSE};
    EXPECT_EQ(nullptr, AfxBeginThread([](LPVOID) -> UINT { return 0; }, nullptr, THREAD_PRIORITY_NORMAL, 0, 0,
                                      &attributes));
}

TEST(MfcThread, ExceptionEndsTheWorkerOnly)
{
    const orva::test::CDebugOutput output;
    EXPECT_EQ(DWORD(-1), RunToTheEnd([](LPVOID) -> UINT { throw std::runtime_error("worker"); }, nullptr));
    EXPECT_THAT(output.Lines(), testing::Contains("AfxBeginThread: worker\n"));
}

TEST(MfcThread, OwnExceptionOfAWorkerIsDeleted)
{
    class CTestException : public CException
    {
    public:
        explicit CTestException(bool& deleted) : m_deleted(deleted) {}
        ~CTestException() override { m_deleted = true; }

    private:
        bool& m_deleted;
    };
    bool deleted = false;
    RunToTheEnd([](LPVOID flag) -> UINT { throw new CTestException(*static_cast<bool*>(flag)); }, &deleted);
    EXPECT_TRUE(deleted);
}

TEST(MfcThread, WorkerStartsWithItsCreatorsModuleState)
{
    AFX_MODULE_STATE other(GetModuleHandleW(L"kernel32.dll"));
    AFX_MANAGE_STATE(&other)
    AFX_MODULE_STATE* seen = nullptr;
    RunToTheEnd(
        [](LPVOID parameter) -> UINT {
            *static_cast<AFX_MODULE_STATE**>(parameter) = AfxGetModuleState();
            return 0;
        },
        &seen);
    EXPECT_EQ(&other, seen);
}

} // namespace
