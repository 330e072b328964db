// Dialog data exchange; part of <afxwin.h>, which is the header to include.
//
// Left out: exchange and validation of values; a dialog here only binds its controls.
#pragma once

#include <windows.h>

class CWnd;

#ifndef AFXAPI
#define AFXAPI __stdcall
#endif

/// One run of DoDataExchange.
class CDataExchange
{
public:
    BOOL m_bSaveAndValidate; ///< TRUE: from the controls to the members
    CWnd* m_pDlgWnd;

    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate);

    /// The control with that id; throws CInvalidArgException when the dialog has none.
    HWND PrepareCtrl(int nIDC);
};

/// Subclasses the control with that id for `rControl`, once; throws CInvalidArgException when it cannot.
void AFXAPI DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
