#include "MfcTestDialog.h"

#include "MfcResources.h"

#include <utility>

namespace
{

// The class library's object of the test program.
CWinApp g_application(L"test_platform");

} // namespace

BEGIN_MESSAGE_MAP(CTestDialog, CDialog)
    ON_BN_CLICKED(IDC_ACT, &CTestDialog::OnAct)
    ON_BN_CLICKED(IDC_PROCEED, &CTestDialog::OnProceed)
END_MESSAGE_MAP()

BOOL CTestDialog::OnInitDialog()
{
    CDialog::OnInitDialog();
    m_calls.push_back("init");
    if (m_onInit)
    {
        m_onInit(*this);
    }
    return m_initResult;
}

void CTestDialog::OnOK()
{
    m_calls.push_back("ok");
    CDialog::OnOK();
}

void CTestDialog::OnCancel()
{
    m_calls.push_back("cancel");
    CDialog::OnCancel();
}

void CTestDialog::OnAct()
{
    m_calls.push_back("act");
    if (m_onAct)
    {
        m_onAct(*this);
    }
}

void CTestDialog::OnProceed()
{
    m_calls.push_back("proceed");
    CDialog::OnOK();
}

INT_PTR CMfcDialogTest::RunWith(CDialog& dialog, const wchar_t* caption, std::function<void(HWND)> act)
{
    orva::test::CUserScript user;
    user.OnDialog(caption, std::move(act));
    user.Start();
    const INT_PTR result = dialog.DoModal();
    user.Finish();
    return result;
}

void Click(HWND dialog, int id)
{
    EXPECT_TRUE(orva::test::ClickButton(dialog, id));
}
