#include "update/UpdateAvailableDlg.h"

#include "ui/LocalizedResources.h"
#include "ui/WhiteBackground.h"

#include <utility>

IMPLEMENT_DYNAMIC(CUpdateAvailableDlg, CDialog)

CUpdateAvailableDlg::CUpdateAvailableDlg(CWnd* pParent) : CDialog(CUpdateAvailableDlg::IDD, pParent)
{
    AfxInitRichEdit2();
}

void CUpdateAvailableDlg::SetDescription(CString description)
{
    m_description = std::move(description);
}

void CUpdateAvailableDlg::SetVersions(CString installed, CString available)
{
    m_installedVersion = std::move(installed);
    m_availableVersion = std::move(available);
}

void CUpdateAvailableDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_UPDATE_DESCRIPTION, m_richEdit);
}

BEGIN_MESSAGE_MAP(CUpdateAvailableDlg, CDialog)
    ON_BN_CLICKED(IDC_UPDATE_INSTALL, &CUpdateAvailableDlg::OnBnClickedInstall)
    ON_BN_CLICKED(IDC_UPDATE_LATER, &CUpdateAvailableDlg::OnBnClickedLater)
    ON_WM_ERASEBKGND()
    ON_WM_CTLCOLOR()
END_MESSAGE_MAP()

BOOL CUpdateAvailableDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    // No target device and a line width of 0: the control wraps its lines at its own width.
    m_richEdit.SendMessage(EM_SETTARGETDEVICE, 0, 0);

    const CLocalizedResources& resources = GetLocalizedResources();
    SetWindowText(resources.LoadString(IDS_UPDATE_TITLE));
    SetDlgItemText(IDC_UPDATE_INSTALL, resources.LoadString(IDS_UPDATE_INSTALL));
    SetDlgItemText(IDC_UPDATE_LATER, resources.LoadString(IDS_UPDATE_LATER));

    CString version;
    version.Format(resources.LoadString(IDS_AVAILABLE_VERSION), m_availableVersion.GetString());
    SetDlgItemText(IDC_UPDATE_AVAILABLE_VERSION, version);
    version.Format(resources.LoadString(IDS_INSTALLED_VERSION), m_installedVersion.GetString());
    SetDlgItemText(IDC_UPDATE_INSTALLED_VERSION, version);

    m_richEdit.SetWindowText(m_description);
    return TRUE;
}

void CUpdateAvailableDlg::OnBnClickedInstall()
{
    CDialog::OnOK();
}

void CUpdateAvailableDlg::OnBnClickedLater()
{
    CDialog::OnCancel();
}

BOOL CUpdateAvailableDlg::OnEraseBkgnd(CDC* pDC)
{
    return PaintWhiteBackground(*this, *pDC);
}

HBRUSH CUpdateAvailableDlg::OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor)
{
    const HWND control = pWnd->GetSafeHwnd();
    if (control == ::GetDlgItem(m_hWnd, IDC_UPDATE_AVAILABLE_VERSION) ||
        control == ::GetDlgItem(m_hWnd, IDC_UPDATE_INSTALLED_VERSION))
    {
        return MakeControlWhite(*pDC);
    }
    return CDialog::OnCtlColor(pDC, pWnd, nCtlColor);
}
