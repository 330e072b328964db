// A dialog whose steps a test sees and takes part in, and a user who works with it.
#pragma once

#include "harness/UserScript.h"

#include <afxwin.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

/// Runs what the test gives it in OnInitDialog, after the base class.
class CTestDialog : public CDialog
{
public:
    explicit CTestDialog(UINT id, CWnd* parent = nullptr) : CDialog(id, parent) {}

    std::function<void(CTestDialog&)> m_onInit;
    std::function<void(CTestDialog&)> m_onAct;
    BOOL m_initResult = TRUE;
    std::vector<std::string> m_calls;

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    afx_msg void OnAct();
    afx_msg void OnProceed();

    DECLARE_MESSAGE_MAP()
};

/// Runs dialogs in the state of the test program's own module.
class CMfcDialogTest : public testing::Test
{
protected:
    /// Runs the dialog while a user does `act` with it.
    INT_PTR RunWith(CDialog& dialog, const wchar_t* caption, std::function<void(HWND)> act);

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    using Calls = std::vector<std::string>;
};

/// Clicks the button with this id; a failure of the test if there is none.
void Click(HWND dialog, int id);
