// The modal dialog that announces a newer build and lets the user choose "Install" or "Later".
#pragma once

#include "res/resource.h"

#include <afxcmn.h>
#include <afxwin.h>

/// DoModal returns IDOK for "Install" and IDCANCEL for "Later" and Escape. The texts are set before DoModal;
/// nothing is read back. UI thread only, with the add-in's module state active.
class CUpdateAvailableDlg : public CDialog
{
    DECLARE_DYNAMIC(CUpdateAvailableDlg)

public:
    /// Loads the rich-edit library for the process, because the template needs its window class.
    explicit CUpdateAvailableDlg(CWnd* pParent = nullptr);

    enum
    {
        IDD = IDD_UPDATE_AVAILABLE
    };

    void SetDescription(CString description);

    /// The installed version first, the published one second, both already formatted.
    void SetVersions(CString installed, CString available);

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    afx_msg void OnBnClickedInstall();
    afx_msg void OnBnClickedLater();
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    DECLARE_MESSAGE_MAP()

private:
    CRichEditCtrl m_richEdit;
    CString m_description;
    CString m_installedVersion;
    CString m_availableVersion;
};
