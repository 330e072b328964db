// Dialogs; part of <afxwin.h>, which is the header to include.
//
// Left out: modeless dialogs (Create), templates made in memory, help, WM_ENTERIDLE and idle processing,
// command routing from the dialog to its owner, list and combo box initialisation data (RT_DLGINIT).
// Otherwise than the original: the object is attached at WM_INITDIALOG, so messages that precede it
// (WM_NCCREATE, WM_CREATE, WM_SETFONT) do not reach the message map. The dialog is shown at once, not at the
// first idle moment. An exception that leaves OnInitDialog ends the dialog with IDABORT.
#pragma once

#include "afxwnd_.h"

/// A modal dialog from a template of the current resource module (AfxGetResourceHandle).
class CDialog : public CWnd
{
    DECLARE_DYNAMIC(CDialog)
public:
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);

    /// Shows the dialog and returns what EndDialog was called with. -1 when it could not be created, IDABORT
    /// when OnInitDialog failed by an exception.
    ///
    /// The owner is that of CWnd::GetSafeOwner_ for the constructor's parent. It and the top-level window
    /// above it are disabled around the dialog, unless they were already, and the owner is activated at the
    /// end.
    virtual INT_PTR DoModal();

    /// Ends DoModal; may be called in OnInitDialog, and the dialog is then never shown.
    void EndDialog(int nResult);

    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    /// Binds the controls by UpdateData(FALSE). Overrides call this first; TRUE lets the system set the
    /// focus.
    virtual BOOL OnInitDialog();
    /// Enter or IDOK: UpdateData, then EndDialog(IDOK).
    virtual void OnOK();
    /// Escape, the close box or IDCANCEL: EndDialog(IDCANCEL).
    virtual void OnCancel();
    BOOL CheckAutoCenter() override;

    LPCTSTR m_lpszTemplateName;
    CWnd* m_pParentWnd;

    DECLARE_MESSAGE_MAP()

private:
    afx_msg LRESULT HandleInitDialog(WPARAM wParam, LPARAM lParam);
    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    BOOL CreateModal(HINSTANCE hInstance, HWND hWndOwner);

    const DLGTEMPLATE* m_pTemplate = nullptr;
};
