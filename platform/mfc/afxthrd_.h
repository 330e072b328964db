// Threads and the application object; part of <afxwin.h>, which is the header to include.
//
// Left out: user-interface threads (InitInstance, Run, message pumps), idle work, SetThreadPriority's
// relatives, everything of CWinApp but the names AfxGetApp's callers read. Otherwise than the original: an
// exception that leaves a worker function ends that worker, not the process.
#pragma once

#include "afxcmdt_.h"
#include "afxstat_.h"

class CWnd;

#ifndef AFX_CDECL
#define AFX_CDECL __cdecl
#endif

/// A worker's function; what it returns is the thread's exit code.
typedef UINT(AFX_CDECL* AFX_THREADPROC)(LPVOID);

class CWinThread : public CCmdTarget
{
    DECLARE_DYNAMIC(CWinThread)
public:
    CWnd* m_pMainWnd = nullptr;   ///< what AfxGetMainWnd gives on this thread
    CWnd* m_pActiveWnd = nullptr; ///< goes before m_pMainWnd
    /// TRUE (the default): the object is deleted by its thread when that ends, and no pointer to it may be
    /// kept. FALSE: its owner deletes it, after the thread has ended; set it while the thread is still
    /// suspended.
    BOOL m_bAutoDelete = TRUE;
    HANDLE m_hThread = nullptr; ///< closed by the destructor
    DWORD m_nThreadID = 0;

    CWinThread() = default;
    CWinThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam);
    ~CWinThread() override;

    /// Starts the thread; FALSE when that failed (GetLastError says why).
    BOOL CreateThread(DWORD dwCreateFlags = 0, UINT nStackSize = 0,
                      LPSECURITY_ATTRIBUTES lpSecurityAttrs = nullptr);

    /// As the function of the same name of the system: previous suspend count, or 0xFFFFFFFF.
    DWORD ResumeThread();
    BOOL SetThreadPriority(int nPriority);

    /// m_pActiveWnd, else m_pMainWnd, else the calling thread's active window.
    virtual CWnd* GetMainWnd();

private:
    static unsigned __stdcall ThreadEntry(void* pThread);

    AFX_THREADPROC m_pfnThreadProc = nullptr;
    LPVOID m_pThreadParams = nullptr;
    AFX_MODULE_STATE* m_pCreatorState = nullptr;
};

/// Starts a worker that begins with the caller's module state. Null when no thread could be started.
/// With CREATE_SUSPENDED the thread waits for ResumeThread, which is the moment to clear m_bAutoDelete.
CWinThread* AFXAPI AfxBeginThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam,
                                  int nPriority = THREAD_PRIORITY_NORMAL, UINT nStackSize = 0,
                                  DWORD dwCreateFlags = 0, LPSECURITY_ATTRIBUTES lpSecurityAttrs = nullptr);

/// The module's one application object, defined by the module itself.
class CWinApp : public CWinThread
{
    DECLARE_DYNAMIC(CWinApp)
public:
    HINSTANCE m_hInstance;
    LPCTSTR m_pszAppName;

    /// Makes itself the application of its module, under `lpszAppName`, which must live as long.
    explicit CWinApp(LPCTSTR lpszAppName);
    ~CWinApp() override;
};

/// The calling thread's object: its worker's, else the application's, else null.
CWinThread* AFXAPI AfxGetThread();

/// The main window of AfxGetThread; null where there is no thread object.
CWnd* AFXAPI AfxGetMainWnd();

/// The current module's application object; null in a module that has none.
CWinApp* AFXAPI AfxGetApp();

/// The current module's application name; null in a module without an application object.
LPCTSTR AFXAPI AfxGetAppName();

/// Where the current module's resources are loaded from.
HINSTANCE AFXAPI AfxGetResourceHandle();
void AFXAPI AfxSetResourceHandle(HINSTANCE hInstResource);

/// The module to load a resource from; here always AfxGetResourceHandle, as no extension DLLs are searched.
HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType);
