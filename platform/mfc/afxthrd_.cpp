#include "afxthrd_.h"

#include "afxthreadstate.h"

#include <process.h>

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)
IMPLEMENT_DYNAMIC(CWinApp, CWinThread)

CWinThread::CWinThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam)
    : m_pfnThreadProc(pfnThreadProc), m_pThreadParams(pParam)
{
}

CWinThread::~CWinThread()
{
    if (m_hThread)
    {
        CloseHandle(m_hThread);
    }
}

BOOL CWinThread::CreateThread(DWORD dwCreateFlags, UINT nStackSize, LPSECURITY_ATTRIBUTES lpSecurityAttrs)
{
    m_pCreatorState = AfxGetModuleState();
    // Suspended, so that the object is complete before the thread can look at it, or delete it.
    unsigned id = 0;
    const uintptr_t thread = _beginthreadex(lpSecurityAttrs, nStackSize, &ThreadEntry, this,
                                            dwCreateFlags | CREATE_SUSPENDED, &id);
    if (!thread)
    {
        return FALSE;
    }
    m_hThread = reinterpret_cast<HANDLE>(thread);
    m_nThreadID = id;
    if (!(dwCreateFlags & CREATE_SUSPENDED))
    {
        ResumeThread();
    }
    return TRUE;
}

DWORD CWinThread::ResumeThread()
{
    return ::ResumeThread(m_hThread);
}

BOOL CWinThread::SetThreadPriority(int nPriority)
{
    return ::SetThreadPriority(m_hThread, nPriority);
}

CWnd* CWinThread::GetMainWnd()
{
    if (m_pActiveWnd)
    {
        return m_pActiveWnd;
    }
    return m_pMainWnd ? m_pMainWnd : CWnd::GetActiveWindow();
}

unsigned __stdcall CWinThread::ThreadEntry(void* pThread)
{
    auto* self = static_cast<CWinThread*>(pThread);
    UINT exitCode = UINT(-1);
    try
    {
        AFX_MANAGE_STATE(self->m_pCreatorState)
        AfxGetThreadState().m_currentThread = self;
        exitCode = self->m_pfnThreadProc(self->m_pThreadParams);
    }
    catch (...)
    {
        AfxTraceCaughtException(L"AfxBeginThread");
    }
    // An owned object may be gone as soon as this thread is; it is there until then.
    if (self->m_bAutoDelete)
    {
        delete self;
    }
    AfxFreeThreadState();
    return exitCode;
}

CWinThread* AFXAPI AfxBeginThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam, int nPriority, UINT nStackSize,
                                  DWORD dwCreateFlags, LPSECURITY_ATTRIBUTES lpSecurityAttrs)
{
    auto thread = std::make_unique<CWinThread>(pfnThreadProc, pParam);
    if (!thread->CreateThread(dwCreateFlags | CREATE_SUSPENDED, nStackSize, lpSecurityAttrs))
    {
        return nullptr;
    }
    thread->SetThreadPriority(nPriority);
    CWinThread* result = thread.release();
    if (!(dwCreateFlags & CREATE_SUSPENDED))
    {
        // From here on the object may be deleted at any moment.
        result->ResumeThread();
    }
    return result;
}

CWinApp::CWinApp(LPCTSTR lpszAppName)
    : m_hInstance(AfxGetModuleState()->m_hCurrentInstanceHandle), m_pszAppName(lpszAppName)
{
    AFX_MODULE_STATE* state = AfxGetModuleState();
    state->m_pCurrentWinApp = this;
    state->m_lpszCurrentAppName = m_pszAppName;
}

CWinApp::~CWinApp()
{
    AFX_MODULE_STATE* state = AfxGetModuleState();
    if (state->m_pCurrentWinApp == this)
    {
        state->m_pCurrentWinApp = nullptr;
        state->m_lpszCurrentAppName = nullptr;
    }
}

CWinThread* AFXAPI AfxGetThread()
{
    CWinThread* worker = AfxGetThreadState().m_currentThread;
    return worker ? worker : AfxGetApp();
}

CWnd* AFXAPI AfxGetMainWnd()
{
    CWinThread* thread = AfxGetThread();
    return thread ? thread->GetMainWnd() : nullptr;
}

CWinApp* AFXAPI AfxGetApp()
{
    return AfxGetModuleState()->m_pCurrentWinApp;
}

LPCTSTR AFXAPI AfxGetAppName()
{
    return AfxGetModuleState()->m_lpszCurrentAppName;
}

HINSTANCE AFXAPI AfxGetResourceHandle()
{
    return AfxGetModuleState()->m_hCurrentResourceHandle;
}

void AFXAPI AfxSetResourceHandle(HINSTANCE hInstResource)
{
    AfxGetModuleState()->m_hCurrentResourceHandle = hInstResource;
}

HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR, LPCTSTR)
{
    return AfxGetResourceHandle();
}
