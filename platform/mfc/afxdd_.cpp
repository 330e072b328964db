#include "afxdd_.h"

#include "afxwnd_.h"

CDataExchange::CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate)
    : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd)
{
}

HWND CDataExchange::PrepareCtrl(int nIDC)
{
    const HWND control = GetDlgItem(m_pDlgWnd->m_hWnd, nIDC);
    if (!control)
    {
        AfxThrowInvalidArgException();
    }
    return control;
}

void AFXAPI DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl)
{
    if (rControl.m_hWnd)
    {
        return;
    }
    if (!rControl.SubclassWindow(pDX->PrepareCtrl(nIDC)))
    {
        AfxThrowInvalidArgException();
    }
}
