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

class MfcDialogOwner : public testing::Test
{
protected:
    MfcDialogOwner() { SetActiveWindow(m_main); }

    // Runs a dialog with that parent (null: none) and calls `look` with it while it is up.
    void Run(HWND parent, const std::function<void(HWND)>& look)
    {
        CDialog dialog(IDD_PLAIN, CWnd::FromHandle(parent));
        CUserScript user;
        user.OnDialog(L"Plain", [look](HWND window) {
            look(window);
            EXPECT_TRUE(ClickButton(window, IDOK));
        });
        user.Start();
        EXPECT_EQ(IDOK, dialog.DoModal());
        user.Finish();
    }

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    const CTestWindow m_main;
};

TEST_F(MfcDialogOwner, ParentIsDisabledMeanwhileAndActiveAfterwards)
{
    Run(m_main, [this](HWND window) {
        EXPECT_EQ(m_main, GetWindow(window, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(m_main));
    });
    EXPECT_TRUE(IsWindowEnabled(m_main));
    EXPECT_EQ(m_main, GetActiveWindow());
    EXPECT_EQ(m_main, GetFocus());
}

TEST_F(MfcDialogOwner, ParentIsEnabledAndActiveBeforeTheDialogGoes)
{
    // Otherwise the system activates another program's window, because ours cannot be.
    class CLastLookDialog : public CDialog
    {
    public:
        explicit CLastLookDialog(HWND main) : CDialog(IDD_PLAIN, CWnd::FromHandle(main)), m_main(main) {}
        BOOL m_enabled = FALSE;
        HWND m_active = nullptr;

    protected:
        BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override
        {
            if (message == WM_DESTROY)
            {
                m_enabled = ::IsWindowEnabled(m_main);
                m_active = ::GetActiveWindow();
            }
            return CDialog::OnWndMsg(message, wParam, lParam, result);
        }

    private:
        const HWND m_main;
    } dialog(m_main);
    CUserScript user;
    user.OnDialog(L"Plain", [](HWND window) { EXPECT_TRUE(ClickButton(window, IDOK)); });
    user.Start();
    EXPECT_EQ(IDOK, dialog.DoModal());
    user.Finish();
    EXPECT_TRUE(dialog.m_enabled);
    EXPECT_EQ(m_main, dialog.m_active);
}

TEST_F(MfcDialogOwner, ParentThatWasDisabledStaysSo)
{
    EnableWindow(m_main, FALSE);
    Run(m_main, [this](HWND window) {
        EXPECT_EQ(m_main, GetWindow(window, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(m_main));
    });
    EXPECT_FALSE(IsWindowEnabled(m_main));
}

TEST_F(MfcDialogOwner, ChildAsParentStandsForItsTopLevelWindow)
{
    const CTestWindow child(m_main, WS_CHILD | WS_VISIBLE);
    Run(child, [&](HWND window) {
        EXPECT_EQ(m_main, GetWindow(window, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(m_main));
        EXPECT_TRUE(GetWindowLongPtrW(child, GWL_STYLE) & WS_CHILD);
    });
    EXPECT_TRUE(IsWindowEnabled(m_main));
}

TEST_F(MfcDialogOwner, WindowAboveAPopupParentIsDisabledToo)
{
    const CTestWindow popup(m_main, WS_POPUP | WS_CAPTION | WS_VISIBLE);
    Run(popup, [&](HWND window) {
        EXPECT_EQ(popup, GetWindow(window, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(popup));
        EXPECT_FALSE(IsWindowEnabled(m_main));
    });
    EXPECT_TRUE(IsWindowEnabled(popup));
    EXPECT_TRUE(IsWindowEnabled(m_main));
    EXPECT_EQ(popup, GetActiveWindow());
}

TEST_F(MfcDialogOwner, WithoutAParentTheThreadsActiveWindowIsTheOwner)
{
    Run(nullptr, [this](HWND window) {
        EXPECT_EQ(m_main, GetWindow(window, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(m_main));
    });
    EXPECT_TRUE(IsWindowEnabled(m_main));
    EXPECT_EQ(m_main, GetActiveWindow());
}

TEST_F(MfcDialogOwner, WithoutAParentADisabledActiveWindowIsTheOwnerAndStaysDisabled)
{
    EnableWindow(m_main, FALSE);
    SetActiveWindow(m_main);
    const HWND active = GetActiveWindow();
    Run(nullptr, [=](HWND window) { EXPECT_EQ(active, GetWindow(window, GW_OWNER)); });
    EXPECT_FALSE(IsWindowEnabled(m_main));
}

TEST_F(MfcDialogOwner, DialogInADialogBelongsToTheOuterOne)
{
    class COuterDialog : public CDialog
    {
    public:
        COuterDialog() : CDialog(IDD_OWN_BUTTONS) {}
        HWND m_window = nullptr;
        INT_PTR m_inner = 0;

    protected:
        afx_msg void OnProceed()
        {
            m_window = m_hWnd;
            CDialog inner(IDD_PLAIN);
            m_inner = inner.DoModal();
            EXPECT_TRUE(::IsWindowEnabled(m_hWnd));
            EXPECT_EQ(m_hWnd, ::GetActiveWindow());
            OnCancel();
        }
        BOOL OnCommand(WPARAM wParam, LPARAM lParam) override
        {
            if (LOWORD(wParam) == IDC_PROCEED)
            {
                OnProceed();
                return TRUE;
            }
            return CDialog::OnCommand(wParam, lParam);
        }
    } outer;
    CUserScript user;
    user.OnDialog(L"Own buttons", [](HWND window) { EXPECT_TRUE(ClickButton(window, IDC_PROCEED)); });
    user.OnDialog(L"Plain", [&](HWND window) {
        EXPECT_EQ(outer.m_window, GetWindow(window, GW_OWNER));
        EXPECT_FALSE(IsWindowEnabled(outer.m_window));
        EXPECT_FALSE(IsWindowEnabled(m_main));
        EXPECT_TRUE(ClickButton(window, IDOK));
    });
    user.Start();
    EXPECT_EQ(IDCANCEL, outer.DoModal());
    user.Finish();
    EXPECT_EQ(IDOK, outer.m_inner);
    EXPECT_TRUE(IsWindowEnabled(m_main));
}

} // namespace
