// The modal About dialog of an Outlook without Backstage view, and its entry point.
#pragma once

#include "res/resource.h"

#include <afxwin.h>

/// Shows the product's texts, links and version, and offers an explicit update check. DoModal's result has no
/// meaning.
class CAboutDlg : public CDialog
{
public:
    CAboutDlg();

    enum
    {
        IDD = IDD_ABOUT
    };

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    afx_msg void OnBnClickedBtnClose();
    afx_msg void OnBnClickedBtnUpdate();
    afx_msg void OnNMClickSyslink(NMHDR* pNMHDR, LRESULT* pResult);
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    DECLARE_MESSAGE_MAP()

private:
    void MakeTitleBold();
    void SetTexts();
    void SetLink(int control, UINT target, UINT text);
};

/// Shows the About dialog with `owner`, the host's window, disabled meanwhile (null is allowed). Switches to
/// the add-in's module state itself. UI thread only.
void ShowAboutDialog(HWND owner);
