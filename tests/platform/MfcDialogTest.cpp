// Modal dialogs: templates, keys and buttons, results, failures.
#include "MfcResources.h"
#include "MfcTestDialog.h"
#include "MfcTestWindow.h"
#include "harness/DebugOutput.h"
#include "harness/UserScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace orva::test;

using MfcDialogTest = CMfcDialogTest;

TEST_F(MfcDialogTest, OkEndsItWithIdok)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDOK, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDOK); }));
    EXPECT_EQ((Calls{"init", "ok"}), dialog.m_calls);
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(MfcDialogTest, CancelEndsItWithIdcancel)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDCANCEL, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDCANCEL); }));
    EXPECT_EQ((Calls{"init", "cancel"}), dialog.m_calls);
}

TEST_F(MfcDialogTest, CanBeRunAgain)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDOK, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDOK); }));
    EXPECT_EQ(IDCANCEL, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDCANCEL); }));
}

TEST_F(MfcDialogTest, EscapeEndsItWithIdcancelEvenWithoutACancelButton)
{
    CTestDialog dialog(IDD_OWN_BUTTONS);
    EXPECT_EQ(IDCANCEL,
              RunWith(dialog, L"Own buttons", [](HWND window) { EXPECT_TRUE(PostKey(window, VK_ESCAPE)); }));
    EXPECT_EQ((Calls{"init", "cancel"}), dialog.m_calls);
}

TEST_F(MfcDialogTest, EnterPressesTheDefaultButtonWhileAnotherControlHasTheFocus)
{
    CTestDialog dialog(IDD_OWN_BUTTONS);
    EXPECT_EQ(IDOK, RunWith(dialog, L"Own buttons", [](HWND window) {
                  EXPECT_EQ(ChildById(window, IDC_FIRST), FocusOf(window));
                  EXPECT_TRUE(PostKey(window, VK_RETURN));
              }));
    EXPECT_EQ((Calls{"init", "proceed"}), dialog.m_calls);
}

TEST_F(MfcDialogTest, TabMovesTheFocus)
{
    CTestDialog dialog(IDD_PLAIN);
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_EQ(ChildById(window, IDC_FIELD), FocusOf(window)) << "the first control with a tab stop";
        EXPECT_TRUE(PostKey(window, VK_TAB));
        EXPECT_TRUE(WaitUntil([=] { return FocusOf(window) == ChildById(window, IDC_ACT); }));
        Click(window, IDCANCEL);
    });
}

TEST_F(MfcDialogTest, FocusSetInOnInitDialogStaysWhenThatReturnsFalse)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_initResult = FALSE;
    dialog.m_onInit = [](CTestDialog& self) { SetFocus(self.GetDlgItem(IDC_ACT)->m_hWnd); };
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_EQ(ChildById(window, IDC_ACT), FocusOf(window));
        Click(window, IDCANCEL);
    });
}

TEST_F(MfcDialogTest, WindowCloseEndsItAsCancelDoes)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDCANCEL, RunWith(dialog, L"Plain", [](HWND window) { PostMessage(window, WM_CLOSE, 0, 0); }));
    EXPECT_EQ((Calls{"init", "cancel"}), dialog.m_calls);
}

TEST_F(MfcDialogTest, IsShownAlthoughItsTemplateDoesNotSayVisible)
{
    CTestDialog dialog(IDD_PLAIN);
    BOOL visibleInInit = TRUE;
    dialog.m_onInit = [&](CTestDialog& self) { visibleInInit = self.IsWindowVisible(); };
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_TRUE(IsWindowVisible(window));
        Click(window, IDCANCEL);
    });
    EXPECT_FALSE(visibleInInit);
}

TEST_F(MfcDialogTest, EndedInOnInitDialogIsNeverShown)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onInit = [](CTestDialog& self) { self.EndDialog(77); };
    CUserScript user;
    user.Start();
    EXPECT_EQ(77, dialog.DoModal());
    EXPECT_TRUE(user.Finish().empty());
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(MfcDialogTest, LastResultCounts)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog& self) {
        self.EndDialog(5);
        self.EndDialog(6);
    };
    EXPECT_EQ(6, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDC_ACT); }));
}

TEST_F(MfcDialogTest, EndsByAMessagePostedFromAnotherThread)
{
    constexpr UINT finished = WM_APP + 1;
    class CPostedDialog : public CTestDialog
    {
    public:
        CPostedDialog() : CTestDialog(IDD_PLAIN) {}

    protected:
        BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override
        {
            if (message == finished)
            {
                EndDialog(int(wParam));
                return TRUE;
            }
            return CTestDialog::OnWndMsg(message, wParam, lParam, result);
        }
    } dialog;
    EXPECT_EQ(12, RunWith(dialog, L"Plain", [](HWND window) { PostMessage(window, finished, 12, 0); }));
}

TEST_F(MfcDialogTest, EndedWithinAMessageSentFromAnotherThreadDoesNotWaitForAnother)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog& self) { self.EndDialog(8); };
    EXPECT_EQ(8,
              RunWith(dialog, L"Plain", [](HWND window) { SendMessageW(window, WM_COMMAND, IDC_ACT, 0); }));
}

TEST_F(MfcDialogTest, DestroyedWithinAMessageSentFromAnotherThreadDoesNotWaitForAnother)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog& self) { ::DestroyWindow(self.m_hWnd); };
    EXPECT_EQ(-1,
              RunWith(dialog, L"Plain", [](HWND window) { SendMessageW(window, WM_COMMAND, IDC_ACT, 0); }));
}

TEST_F(MfcDialogTest, MissingTemplateIsMinusOne)
{
    const CTestWindow owner;
    CWnd parent;
    parent.Attach(owner);
    CTestDialog dialog(9999, &parent);
    EXPECT_EQ(-1, dialog.DoModal());
    EXPECT_TRUE(IsWindowEnabled(owner));
    parent.Detach();
}

TEST_F(MfcDialogTest, ControlOfAnUnknownClassIsMinusOneAndTheOwnerIsEnabledAgain)
{
    const CTestWindow owner;
    CWnd parent;
    parent.Attach(owner);
    CTestDialog dialog(IDD_UNKNOWN_CLASS, &parent);
    EXPECT_EQ(-1, dialog.DoModal());
    EXPECT_TRUE(dialog.m_calls.empty());
    EXPECT_TRUE(IsWindowEnabled(owner));
    parent.Detach();
}

TEST_F(MfcDialogTest, TemplateComesFromTheResourceHandle)
{
    AfxSetResourceHandle(GetModuleHandleW(L"kernel32.dll"));
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(-1, dialog.DoModal());
    AfxSetResourceHandle(GetModuleHandleW(nullptr));
}

TEST_F(MfcDialogTest, ExceptionInOnInitDialogIsIdabortAndTheDialogIsNotShown)
{
    const CTestWindow owner;
    CWnd parent;
    parent.Attach(owner);
    CTestDialog dialog(IDD_PLAIN, &parent);
    dialog.m_onInit = [](CTestDialog&) { throw std::runtime_error("filling failed"); };
    const CDebugOutput output;
    CUserScript user;
    user.Start();
    EXPECT_EQ(IDABORT, dialog.DoModal());
    EXPECT_TRUE(user.Finish().empty());
    EXPECT_THAT(output.Lines(), testing::Contains("AfxCallWndProc: filling failed\n"));
    EXPECT_TRUE(IsWindowEnabled(owner));
    parent.Detach();
}

TEST_F(MfcDialogTest, ExceptionInAHandlerLeavesTheDialogRunning)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog&) { throw std::runtime_error("handler failed"); };
    const CDebugOutput output;
    EXPECT_EQ(IDOK, RunWith(dialog, L"Plain", [&](HWND window) {
                  Click(window, IDC_ACT);
                  EXPECT_TRUE(WaitUntil([&] { return !output.Lines().empty(); }));
                  Click(window, IDOK);
              }));
    EXPECT_THAT(output.Lines(), testing::Contains("AfxCallWndProc: handler failed\n"));
    EXPECT_EQ((Calls{"init", "act", "ok"}), dialog.m_calls);
}

TEST_F(MfcDialogTest, QuitMessageEndsItAndGoesOnToTheLoopOutside)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onInit = [](CTestDialog&) { PostQuitMessage(3); };
    EXPECT_EQ(-1, dialog.DoModal());
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(3U, message.wParam);
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(MfcDialogTest, EndsWithMinusOneWhenItsWindowIsDestroyed)
{
    const CTestWindow owner;
    CWnd parent;
    parent.Attach(owner);
    CTestDialog dialog(IDD_PLAIN, &parent);
    dialog.m_onAct = [](CTestDialog& self) { ::DestroyWindow(self.m_hWnd); };
    EXPECT_EQ(-1, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDC_ACT); }));
    EXPECT_TRUE(IsWindowEnabled(owner));
    parent.Detach();
}

} // namespace
