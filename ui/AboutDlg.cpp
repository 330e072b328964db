#include "ui/AboutDlg.h"

#include "support/DebugLog.h"
#include "support/DisabledWindow.h"
#include "ui/LocalizedResources.h"
#include "ui/VersionLine.h"
#include "ui/WhiteBackground.h"
#include "update/UpdateCheck.h"

#include <atlbase.h>

#include <commctrl.h>
#include <shellapi.h>

CAboutDlg::CAboutDlg() : CDialog(CAboutDlg::IDD, nullptr) {}

void CAboutDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
}

BEGIN_MESSAGE_MAP(CAboutDlg, CDialog)
    ON_BN_CLICKED(IDC_ABOUT_CLOSE, &CAboutDlg::OnBnClickedBtnClose)
    ON_BN_CLICKED(IDC_ABOUT_UPDATE, &CAboutDlg::OnBnClickedBtnUpdate)
    ON_NOTIFY(NM_CLICK, IDC_ABOUT_LINK1, &CAboutDlg::OnNMClickSyslink)
    ON_NOTIFY(NM_CLICK, IDC_ABOUT_LINK2, &CAboutDlg::OnNMClickSyslink)
    ON_NOTIFY(NM_CLICK, IDC_ABOUT_LINK3, &CAboutDlg::OnNMClickSyslink)
    ON_WM_ERASEBKGND()
    ON_WM_CTLCOLOR()
END_MESSAGE_MAP()

BOOL CAboutDlg::OnInitDialog()
{
    LogEntry("CAboutDlg::OnInitDialog");
    CDialog::OnInitDialog();
    const CLocalizedResources& resources = GetLocalizedResources();
    SetWindowText(resources.LoadString(IDS_APPTITLE));
    SetDlgItemText(IDC_ABOUT_UPDATE, resources.LoadString(IDS_UPDBUTTON_LABEL));
    SetDlgItemText(IDC_ABOUT_CLOSE, resources.LoadString(IDS_CLOSE));
    SetDlgItemText(IDC_ABOUT_TITLE, resources.LoadString(IDS_APPTITLE));
    MakeTitleBold();
    SetTexts();
    SetLink(IDC_ABOUT_LINK1, IDS_LINK1_HREF, IDS_LINK1_TITLE);
    SetLink(IDC_ABOUT_LINK2, IDS_LINK2_HREF, IDS_LINK2_TITLE);
    SetLink(IDC_ABOUT_LINK3, IDS_LINK3_HREF, IDS_LINK3_TITLE);
    return TRUE;
}

// The font is created once per dialog and not deleted.
void CAboutDlg::MakeTitleBold()
{
    const HWND title = ::GetDlgItem(m_hWnd, IDC_ABOUT_TITLE);
    const auto current = reinterpret_cast<HFONT>(::SendMessageW(title, WM_GETFONT, 0, 0));
    LOGFONTW font{};
    if (GetObjectW(current, sizeof(font), &font) == 0)
    {
        return;
    }
    font.lfWeight = FW_BOLD;
    ::SendMessageW(title, WM_SETFONT, reinterpret_cast<WPARAM>(CreateFontIndirectW(&font)), TRUE);
}

void CAboutDlg::SetTexts()
{
    const CLocalizedResources& resources = GetLocalizedResources();
    CString description;
    description.Format(L"%s\n\n%s\n\n%s", resources.LoadString(IDS_DESCRIPTION1).GetString(),
                       resources.LoadString(IDS_DESCRIPTION2).GetString(),
                       resources.LoadString(IDS_DESCRIPTION3).GetString());
    SetDlgItemText(IDC_ABOUT_DESCRIPTION, description);
    SetDlgItemText(IDC_ABOUT_LINKS_GROUP, resources.LoadString(IDS_LINKS_TITLE));
    SetDlgItemText(IDC_ABOUT_LINKS_TEXT, resources.LoadString(IDS_LINKS_DESCRIPTION));
    SetDlgItemText(IDC_ABOUT_VERSION_GROUP, resources.LoadString(IDS_VERSION_TITLE));
    SetDlgItemText(IDC_ABOUT_VERSION_TEXT, resources.LoadString(IDS_VERSION_DESCRIPTION));
    SetDlgItemText(IDC_ABOUT_VERSION_LINE1, FormatVersionLine());
    SetDlgItemText(IDC_ABOUT_VERSION_LINE2, resources.LoadString(IDS_VERSION_LINE2));
}

void CAboutDlg::SetLink(int control, UINT target, UINT text)
{
    const CLocalizedResources& resources = GetLocalizedResources();
    CString markup;
    markup.Format(L"<a href=\"%s\">%s</a>", resources.LoadString(target).GetString(),
                  resources.LoadString(text).GetString());
    SetDlgItemText(control, markup);
}

void CAboutDlg::OnBnClickedBtnClose()
{
    LogEntry("CAboutDlg::OnBnClickedBtnClose");
    CDialog::OnOK();
}

void CAboutDlg::OnBnClickedBtnUpdate()
{
    constexpr char kFunction[] = "CAboutDlg::OnBnClickedBtnUpdate";
    LogEntry(kFunction);
    CheckForUpdateOnClick(kFunction, m_hWnd);
}

void CAboutDlg::OnNMClickSyslink(NMHDR* pNMHDR, LRESULT* pResult)
{
    LogEntry("CAboutDlg::OnNMClickSyslink");
    const auto* const link = reinterpret_cast<const NMLINK*>(pNMHDR);
    ShellExecuteW(nullptr, L"open", link->item.szUrl, nullptr, nullptr, SW_SHOWNORMAL);
    *pResult = 0;
}

BOOL CAboutDlg::OnEraseBkgnd(CDC* pDC)
{
    LogEntry("CAboutDlg::OnEraseBkgnd");
    return PaintWhiteBackground(*this, *pDC);
}

// Every control is white; the base class is not called.
HBRUSH CAboutDlg::OnCtlColor(CDC* pDC, CWnd*, UINT)
{
    LogEntry("CAboutDlg::OnCtlColor");
    return MakeControlWhite(*pDC);
}

void ShowAboutDialog(HWND owner)
{
    LogEntry("ShowAboutDialog");
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    AfxSetResourceHandle(_AtlBaseModule.GetModuleInstance());
    CAboutDlg dialog;
    const CDisabledWindow disabledOwner(owner);
    dialog.DoModal();
}
