// Module state: whose instance, resources and activation context MFC code on this thread works with.
//
// Left out: per-module and per-thread data beyond the members below, OLE locks, extension DLL lists, debug
// state. Otherwise than the original: the library is linked statically and its module has one state of its
// own (AfxGetStaticModuleState), made at first use, so no DllMain is needed. Objects handed out by FromHandle
// inside an AFX_MANAGE_STATE block are freed at that block's end.
#pragma once

#include <windows.h>

class CWinApp;

#ifndef AFXAPI
#define AFXAPI __stdcall
#endif

/// What MFC knows of one module (DLL or program). One state may be used by any number of threads.
class AFX_MODULE_STATE
{
public:
    /// A state for `hInstance`, from where resources come.
    explicit AFX_MODULE_STATE(HINSTANCE hInstance);
    ~AFX_MODULE_STATE();
    AFX_MODULE_STATE(const AFX_MODULE_STATE&) = delete;
    AFX_MODULE_STATE& operator=(const AFX_MODULE_STATE&) = delete;

    CWinApp* m_pCurrentWinApp = nullptr;
    HINSTANCE m_hCurrentInstanceHandle;
    HINSTANCE m_hCurrentResourceHandle;
    LPCTSTR m_lpszCurrentAppName = nullptr; ///< set by the application object

    /// Of the module's manifest with resource id 2 (ISOLATIONAWARE_MANIFEST_RESOURCE_ID); taken from the
    /// loader, or else made, when a thread first switches to this state. Null before, INVALID_HANDLE_VALUE
    /// when the module has no such manifest.
    HANDLE m_hActCtx = nullptr;

    /// Sets m_hActCtx unless that was done before; any thread may call it. Never while the DLL is being
    /// loaded.
    void CreateActivationContext();
};

/// The thread's current module state; the module's own when the thread never switched.
AFX_MODULE_STATE* AFXAPI AfxGetModuleState();

/// The state of the module that this library is linked into.
AFX_MODULE_STATE* AFXAPI AfxGetStaticModuleState();

/// Makes `pNewState` the thread's current module state and returns the previous one; leaves activation
/// contexts alone. Null stands for the module's own state.
AFX_MODULE_STATE* AFXAPI AfxSetModuleState(AFX_MODULE_STATE* pNewState);

/// Switches the thread to a module state and activates its activation context, until the end of the scope.
class AFX_MAINTAIN_STATE2
{
public:
    explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* pModuleState);
    ~AFX_MAINTAIN_STATE2();
    AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
    AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

protected:
    AFX_MODULE_STATE* m_pPrevModuleState = nullptr;
    ULONG_PTR m_ulActCtxCookie = 0;
    BOOL m_bValidActCtxCookie = FALSE;
    size_t m_nTemporaryObjects;
};

/// Stands at the top of every function that is entered from outside and uses MFC.
#define AFX_MANAGE_STATE(p) AFX_MAINTAIN_STATE2 _ctlState(p);
