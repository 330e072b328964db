// Whom a modal dialog belongs to, who is disabled while it runs, and who is active afterwards.
#include "MfcResources.h"
#include "MfcTestWindow.h"
#include "harness/UserScript.h"

#include <afxwin.h>

#include <gtest/gtest.h>

#include <functional>

namespace
{

using namespace orva::test;

// Notes how things are in its last moment.
class COwnedDialog : public CDialog
{
public:
    COwnedDialog(HWND parent, HWND main) : CDialog(IDD_PLAIN, CWnd::FromHandle(parent)), m_main(main) {}
    BOOL m_enabledAtLast = FALSE;
    HWND m_activeAtLast = nullptr;

protected:
    BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override
    {
        if (message == WM_DESTROY)
        {
            m_enabledAtLast = ::IsWindowEnabled(m_main);
            m_activeAtLast = ::GetActiveWindow();
        }
        return CDialog::OnWndMsg(message, wParam, lParam, result);
    }

private:
    const HWND m_main;
};

class MfcDialogOwner : public testing::Test
{
protected:
    MfcDialogOwner() { SetActiveWindow(m_main); }

    // Runs a dialog with that parent (null: none). While it is up, it must belong to `owner`, and that and
    // the main window must be disabled.
    void Run(COwnedDialog& dialog, HWND owner)
    {
        CUserScript user;
        user.OnDialog(L"Plain", [&](HWND window) {
            EXPECT_EQ(owner, GetWindow(window, GW_OWNER));
            EXPECT_FALSE(IsWindowEnabled(owner));
            EXPECT_FALSE(IsWindowEnabled(m_main));
            EXPECT_TRUE(ClickButton(window, IDOK));
        });
        user.Start();
        EXPECT_EQ(IDOK, dialog.DoModal());
        user.Finish();
    }
    void Run(HWND parent, HWND owner)
    {
        COwnedDialog dialog(parent, m_main);
        Run(dialog, owner);
    }

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    const CTestWindow m_main;
};

TEST_F(MfcDialogOwner, ParentIsDisabledMeanwhileAndEnabledAndActiveBeforeTheDialogGoes)
{
    // Otherwise the system activates another program's window, because ours cannot be.
    COwnedDialog dialog(m_main, m_main);
    Run(dialog, m_main);
    EXPECT_TRUE(dialog.m_enabledAtLast);
    EXPECT_EQ(m_main, dialog.m_activeAtLast);
    EXPECT_TRUE(IsWindowEnabled(m_main));
    EXPECT_EQ(m_main, GetActiveWindow());
    EXPECT_EQ(m_main, GetFocus());
}

TEST_F(MfcDialogOwner, ParentThatWasDisabledStaysSo)
{
    EnableWindow(m_main, FALSE);
    Run(m_main, m_main);
    EXPECT_FALSE(IsWindowEnabled(m_main));
}

TEST_F(MfcDialogOwner, ChildAsParentStandsForItsTopLevelWindow)
{
    const CTestWindow child(m_main, WS_CHILD | WS_VISIBLE);
    const CTestWindow grandchild(child, WS_CHILD | WS_VISIBLE);
    Run(grandchild, m_main);
    // The system would look for the window above a child, too; the owner is found before.
    HWND top = m_main;
    EXPECT_EQ(m_main, CWnd::GetSafeOwner_(grandchild, &top));
    EXPECT_EQ(nullptr, top) << "the owner itself is not the window to be disabled besides";
    EXPECT_TRUE(IsWindowEnabled(m_main));
}

TEST_F(MfcDialogOwner, WindowAboveAPopupParentIsDisabledToo)
{
    const CTestWindow popup(m_main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    Run(popup, popup);
    EXPECT_TRUE(IsWindowEnabled(popup));
    EXPECT_TRUE(IsWindowEnabled(m_main));
    EXPECT_EQ(popup, GetActiveWindow());
    EnableWindow(m_main, FALSE);
    Run(popup, popup);
    EXPECT_FALSE(IsWindowEnabled(m_main)) << "one that is disabled already is nobody's to enable";
}

TEST_F(MfcDialogOwner, WithoutAParentTheThreadsActiveWindowIsTheOwner)
{
    Run(nullptr, m_main);
    EXPECT_TRUE(IsWindowEnabled(m_main));
    EXPECT_EQ(m_main, GetActiveWindow());
    const CTestWindow popup(m_main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    SetActiveWindow(popup);
    Run(nullptr, popup);
    EXPECT_TRUE(IsWindowEnabled(popup));
}

TEST_F(MfcDialogOwner, WithoutAParentADisabledActiveWindowIsTheOwnerAndStaysDisabled)
{
    EnableWindow(m_main, FALSE);
    SetActiveWindow(m_main);
    Run(nullptr, GetActiveWindow());
    EXPECT_FALSE(IsWindowEnabled(m_main));
}

TEST_F(MfcDialogOwner, WithoutAParentTheMainWindowsLastActivePopupIsTheOwner)
{
    AFX_MODULE_STATE other(GetModuleHandleW(L"kernel32.dll"));
    AFX_MANAGE_STATE(&other)
    const CTestWindow popup(m_main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    SetActiveWindow(popup);
    CWinApp app(L"Name");
    app.m_pMainWnd = CWnd::FromHandle(m_main);
    EXPECT_EQ(popup, CWnd::GetSafeOwner_(nullptr, nullptr));
    EXPECT_EQ(m_main, CWnd::GetSafeOwner_(m_main, nullptr)) << "a parent that is given is taken as it is";
}

} // namespace
