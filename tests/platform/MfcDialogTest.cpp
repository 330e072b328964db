// Modal dialogs: templates, keys and buttons, results, bound controls, failures.
#include "MfcResources.h"
#include "MfcTestWindow.h"
#include "harness/DebugOutput.h"
#include "harness/UserScript.h"

#include <afxcmn.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace orva::test;

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
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        m_calls.push_back("init");
        if (m_onInit)
        {
            m_onInit(*this);
        }
        return m_initResult;
    }
    void OnOK() override
    {
        m_calls.push_back("ok");
        CDialog::OnOK();
    }
    void OnCancel() override
    {
        m_calls.push_back("cancel");
        CDialog::OnCancel();
    }
    afx_msg void OnAct()
    {
        m_calls.push_back("act");
        if (m_onAct)
        {
            m_onAct(*this);
        }
    }
    afx_msg void OnProceed()
    {
        m_calls.push_back("proceed");
        CDialog::OnOK();
    }

    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CTestDialog, CDialog)
    ON_BN_CLICKED(IDC_ACT, &CTestDialog::OnAct)
    ON_BN_CLICKED(IDC_PROCEED, &CTestDialog::OnProceed)
END_MESSAGE_MAP()

/// Binds controls of the plain dialog; `m_missing` to an id that it has not.
class CBoundDialog : public CTestDialog
{
public:
    explicit CBoundDialog(int missing = 0) : CTestDialog(IDD_PLAIN), m_missing(missing) {}

    CStatic m_text;
    CEdit m_field;
    CProgressCtrl m_bar;
    CStatic m_other;

protected:
    void DoDataExchange(CDataExchange* exchange) override
    {
        CTestDialog::DoDataExchange(exchange);
        DDX_Control(exchange, IDC_TEXT, m_text);
        DDX_Control(exchange, IDC_FIELD, m_field);
        DDX_Control(exchange, IDC_BAR, m_bar);
        if (m_missing)
        {
            DDX_Control(exchange, m_missing, m_other);
        }
    }

private:
    const int m_missing;
};

class MfcDialog : public testing::Test
{
protected:
    /// Runs the dialog while a user does `act` with it.
    INT_PTR RunWith(CDialog& dialog, const wchar_t* caption, std::function<void(HWND)> act)
    {
        CUserScript user;
        user.OnDialog(caption, std::move(act));
        user.Start();
        const INT_PTR result = dialog.DoModal();
        user.Finish();
        return result;
    }

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    using Calls = std::vector<std::string>;
};

void Click(HWND dialog, int id)
{
    EXPECT_TRUE(ClickButton(dialog, id));
}

TEST_F(MfcDialog, OkEndsItWithIdok)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDOK, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDOK); }));
    EXPECT_EQ((Calls{"init", "ok"}), dialog.m_calls);
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(MfcDialog, CancelEndsItWithIdcancel)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDCANCEL, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDCANCEL); }));
    EXPECT_EQ((Calls{"init", "cancel"}), dialog.m_calls);
}

TEST_F(MfcDialog, CanBeRunAgain)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDOK, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDOK); }));
    EXPECT_EQ(IDCANCEL, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDCANCEL); }));
}

TEST_F(MfcDialog, EscapeEndsItWithIdcancelEvenWithoutACancelButton)
{
    CTestDialog dialog(IDD_OWN_BUTTONS);
    EXPECT_EQ(IDCANCEL,
              RunWith(dialog, L"Own buttons", [](HWND window) { EXPECT_TRUE(PostKey(window, VK_ESCAPE)); }));
    EXPECT_EQ((Calls{"init", "cancel"}), dialog.m_calls);
}

TEST_F(MfcDialog, EnterPressesTheDefaultButtonWhileAnotherControlHasTheFocus)
{
    CTestDialog dialog(IDD_OWN_BUTTONS);
    EXPECT_EQ(IDOK, RunWith(dialog, L"Own buttons", [](HWND window) {
                  EXPECT_EQ(ChildById(window, IDC_FIRST), FocusOf(window));
                  EXPECT_TRUE(PostKey(window, VK_RETURN));
              }));
    EXPECT_EQ((Calls{"init", "proceed"}), dialog.m_calls);
}

TEST_F(MfcDialog, TabMovesTheFocus)
{
    CTestDialog dialog(IDD_PLAIN);
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_EQ(ChildById(window, IDC_FIELD), FocusOf(window)) << "the first control with a tab stop";
        EXPECT_TRUE(PostKey(window, VK_TAB));
        EXPECT_TRUE(WaitUntil([=] { return FocusOf(window) == ChildById(window, IDC_ACT); }));
        Click(window, IDCANCEL);
    });
}

TEST_F(MfcDialog, FocusSetInOnInitDialogStaysWhenThatReturnsFalse)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_initResult = FALSE;
    dialog.m_onInit = [](CTestDialog& self) { self.GetDlgItem(IDC_ACT)->SetFocus(); };
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_EQ(ChildById(window, IDC_ACT), FocusOf(window));
        Click(window, IDCANCEL);
    });
}

TEST_F(MfcDialog, WindowCloseEndsItAsCancelDoes)
{
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(IDCANCEL, RunWith(dialog, L"Plain", [](HWND window) { PostMessage(window, WM_CLOSE, 0, 0); }));
    EXPECT_EQ((Calls{"init", "cancel"}), dialog.m_calls);
}

TEST_F(MfcDialog, IsShownAlthoughItsTemplateDoesNotSayVisible)
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

TEST_F(MfcDialog, EndedInOnInitDialogIsNeverShown)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onInit = [](CTestDialog& self) { self.EndDialog(77); };
    CUserScript user;
    user.Start();
    EXPECT_EQ(77, dialog.DoModal());
    EXPECT_TRUE(user.Finish().empty());
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(MfcDialog, LastResultCounts)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog& self) {
        self.EndDialog(5);
        self.EndDialog(6);
    };
    EXPECT_EQ(6, RunWith(dialog, L"Plain", [](HWND window) { Click(window, IDC_ACT); }));
}

TEST_F(MfcDialog, EndsByAMessagePostedFromAnotherThread)
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

TEST_F(MfcDialog, EndedWithinAMessageSentFromAnotherThreadDoesNotWaitForAnother)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog& self) { self.EndDialog(8); };
    EXPECT_EQ(8,
              RunWith(dialog, L"Plain", [](HWND window) { SendMessageW(window, WM_COMMAND, IDC_ACT, 0); }));
}

TEST_F(MfcDialog, DestroyedWithinAMessageSentFromAnotherThreadDoesNotWaitForAnother)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onAct = [](CTestDialog& self) { ::DestroyWindow(self.m_hWnd); };
    EXPECT_EQ(-1,
              RunWith(dialog, L"Plain", [](HWND window) { SendMessageW(window, WM_COMMAND, IDC_ACT, 0); }));
}

TEST_F(MfcDialog, MissingTemplateIsMinusOne)
{
    const CTestWindow owner;
    CWnd parent;
    parent.Attach(owner);
    CTestDialog dialog(9999, &parent);
    EXPECT_EQ(-1, dialog.DoModal());
    EXPECT_TRUE(IsWindowEnabled(owner));
    parent.Detach();
}

TEST_F(MfcDialog, ControlOfAnUnknownClassIsMinusOneAndTheOwnerIsEnabledAgain)
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

TEST_F(MfcDialog, TemplateComesFromTheResourceHandle)
{
    AfxSetResourceHandle(GetModuleHandleW(L"kernel32.dll"));
    CTestDialog dialog(IDD_PLAIN);
    EXPECT_EQ(-1, dialog.DoModal());
    AfxSetResourceHandle(AfxGetInstanceHandle());
}

TEST_F(MfcDialog, ExceptionInOnInitDialogIsIdabortAndTheDialogIsNotShown)
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

TEST_F(MfcDialog, ExceptionInAHandlerLeavesTheDialogRunning)
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

TEST_F(MfcDialog, ControlsAreBoundToTheirMembers)
{
    CBoundDialog dialog;
    dialog.m_onInit = [&](CTestDialog& self) {
        EXPECT_EQ(&dialog.m_text, self.GetDlgItem(IDC_TEXT));
        CString text;
        dialog.m_text.GetWindowText(text);
        EXPECT_STREQ(L"Template text", text);
        dialog.m_text.SetWindowText(L"New text");
        dialog.m_bar.SetRange(0, 100);
        int lower = -1;
        int upper = -1;
        dialog.m_bar.GetRange(lower, upper);
        EXPECT_EQ(0, lower);
        EXPECT_EQ(100, upper);
        EXPECT_EQ(0, dialog.m_bar.SetPos(30));
        EXPECT_EQ(30, dialog.m_bar.SetPos(70));
        EXPECT_EQ(70, dialog.m_bar.GetPos());
    };
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_EQ(L"New text", ChildText(window, IDC_TEXT));
        Click(window, IDOK);
    });
    EXPECT_EQ(nullptr, dialog.m_text.m_hWnd);
    EXPECT_EQ(nullptr, dialog.m_bar.m_hWnd);
}

TEST_F(MfcDialog, MissingControlEndsItWithMinusOne)
{
    CBoundDialog dialog(IDC_LINK);
    const CDebugOutput output;
    EXPECT_EQ(-1, dialog.DoModal());
    EXPECT_THAT(output.Lines(),
                testing::Contains(testing::StartsWith("CWnd::UpdateData: CInvalidArgException")));
}

TEST_F(MfcDialog, LinkControlIsThereAndItsClickReachesTheMap)
{
    class CLinkDialog : public CTestDialog
    {
    public:
        CLinkDialog() : CTestDialog(IDD_LINK) {}
        std::wstring m_url;

    protected:
        BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) override
        {
            const auto* link = reinterpret_cast<const NMLINK*>(lParam);
            if (link->hdr.code == UINT(NM_CLICK))
            {
                m_url = link->item.szUrl;
            }
            return CTestDialog::OnNotify(wParam, lParam, result);
        }
    } dialog;
    RunWith(dialog, L"Link", [](HWND window) {
        const HWND link = ChildById(window, IDC_LINK);
        EXPECT_EQ(L"SysLink", WindowClassName(link));
        SendMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        SendMessageW(link, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        Click(window, IDCANCEL);
    });
    EXPECT_EQ(L"http://example.invalid/", dialog.m_url);
}

TEST_F(MfcDialog, RichEditControlIsThereOnceItsLibraryIsLoadedAndWrapsAtItsWidth)
{
    EXPECT_TRUE(AfxInitRichEdit2());
    EXPECT_TRUE(AfxInitRichEdit2());
    CTestDialog dialog(IDD_RICH_EDIT);
    CRichEditCtrl rich;
    dialog.m_onInit = [&](CTestDialog& self) {
        EXPECT_TRUE(rich.SubclassDlgItem(IDC_RICH, &self));
        EXPECT_TRUE(rich.SetTargetDevice(nullptr, 0));
        std::wstring text;
        for (int i = 0; i < 100; ++i)
        {
            text += L"word ";
        }
        rich.SetWindowText(text.c_str());
        EXPECT_GT(rich.GetLineCount(), 5);
    };
    RunWith(dialog, L"Rich edit", [](HWND window) { Click(window, IDCANCEL); });
}

TEST_F(MfcDialog, QuitMessageEndsItAndGoesOnToTheLoopOutside)
{
    CTestDialog dialog(IDD_PLAIN);
    dialog.m_onInit = [](CTestDialog&) { PostQuitMessage(3); };
    EXPECT_EQ(-1, dialog.DoModal());
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(3U, message.wParam);
    EXPECT_EQ(nullptr, dialog.m_hWnd);
}

TEST_F(MfcDialog, EndsWithMinusOneWhenItsWindowIsDestroyed)
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
