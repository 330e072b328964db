// Modal dialogs: keys and buttons, results, failures, controls that are bound to members.
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

namespace
{

using namespace orva::test;
using testing::Contains;
using testing::StartsWith;

constexpr UINT kEnd = WM_APP + 1;
constexpr UINT kDestroy = WM_APP + 2;

// Notes its steps, and lets a test take part in them.
class CTestDialog : public CDialog
{
public:
    explicit CTestDialog(UINT id, CWnd* parent = nullptr) : CDialog(id, parent) {}

    std::function<void(CTestDialog&)> m_onInit;
    std::function<void()> m_onAct;
    std::function<void(CDataExchange*)> m_onDataExchange;
    BOOL m_initResult = TRUE;
    std::string m_calls;

protected:
    void DoDataExchange(CDataExchange* exchange) override
    {
        CDialog::DoDataExchange(exchange);
        if (m_onDataExchange)
        {
            m_onDataExchange(exchange);
        }
    }
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        m_calls += "init;";
        if (m_onInit)
        {
            m_onInit(*this);
        }
        return m_initResult;
    }
    void OnOK() override
    {
        m_calls += "ok;";
        CDialog::OnOK();
    }
    void OnCancel() override
    {
        m_calls += "cancel;";
        CDialog::OnCancel();
    }
    afx_msg void OnAct()
    {
        m_calls += "act;";
        if (m_onAct)
        {
            m_onAct();
        }
    }
    afx_msg LRESULT OnEnd(WPARAM result, LPARAM)
    {
        EndDialog(5);
        EndDialog(static_cast<int>(result));
        return 0;
    }
    afx_msg LRESULT OnDestroySelf(WPARAM, LPARAM)
    {
        ::DestroyWindow(m_hWnd);
        return 0;
    }

    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CTestDialog, CDialog)
    ON_BN_CLICKED(IDC_ACT, &CTestDialog::OnAct)
    ON_MESSAGE(kEnd, &CTestDialog::OnEnd)
    ON_MESSAGE(kDestroy, &CTestDialog::OnDestroySelf)
END_MESSAGE_MAP()

void Click(HWND dialog, int id)
{
    EXPECT_TRUE(ClickButton(dialog, id));
}

// Runs dialogs that belong to a window, which must be enabled afterwards.
class MfcDialogTest : public testing::Test
{
protected:
    MfcDialogTest() { m_parent.Attach(m_owner); }
    ~MfcDialogTest() override
    {
        EXPECT_TRUE(IsWindowEnabled(m_owner));
        m_parent.Detach();
    }

    // Runs the dialog while a user does `act` with it.
    static INT_PTR Run(CDialog& dialog, std::function<void(HWND)> act)
    {
        CUserScript user;
        user.OnAnyDialog(std::move(act));
        user.Start();
        const INT_PTR result = dialog.DoModal();
        user.Finish();
        EXPECT_EQ(nullptr, dialog.m_hWnd);
        return result;
    }
    // Runs the dialog, which must not be shown.
    static INT_PTR RunUnseen(CDialog& dialog)
    {
        CUserScript user;
        user.Start();
        const INT_PTR result = dialog.DoModal();
        EXPECT_TRUE(user.Finish().empty());
        EXPECT_EQ(nullptr, dialog.m_hWnd);
        return result;
    }

    AFX_MAINTAIN_STATE2 m_state{AfxGetStaticModuleState()};
    const CTestWindow m_owner;
    CWnd m_parent;
    CTestDialog m_plain{IDD_PLAIN, &m_parent};
    CTestDialog m_ownButtons{IDD_OWN_BUTTONS, &m_parent};
};

TEST_F(MfcDialogTest, EndsWithTheResultOfWhatTheUserOrAnotherThreadDoesAndCanBeRunAgain)
{
    m_ownButtons.m_onAct = [this] { m_ownButtons.EndDialog(77); };
    const struct
    {
        const char* what;
        CTestDialog& dialog;
        std::function<void(HWND)> act;
        INT_PTR result;
        const char* calls;
    } rows[] = {
        {"OK", m_plain, [](HWND window) { Click(window, IDOK); }, IDOK, "init;ok;"},
        {"Cancel", m_plain, [](HWND window) { Click(window, IDCANCEL); }, IDCANCEL, "init;cancel;"},
        {"Escape, without a cancel button", m_ownButtons,
         [](HWND window) { EXPECT_TRUE(PostKey(window, VK_ESCAPE)); }, IDCANCEL, "init;cancel;"},
        {"Enter presses the default button while another control has the focus", m_ownButtons,
         [](HWND window) {
             EXPECT_EQ(ChildById(window, IDC_FIELD), FocusOf(window));
             EXPECT_TRUE(PostKey(window, VK_RETURN));
         },
         77, "init;act;"},
        {"the window's close box", m_plain, [](HWND window) { PostMessage(window, WM_CLOSE, 0, 0); },
         IDCANCEL, "init;cancel;"},
        {"a posted message; the last result counts", m_plain,
         [](HWND window) { PostMessage(window, kEnd, 12, 0); }, 12, "init;"},
        {"a sent message, after which no other comes", m_plain,
         [](HWND window) { SendMessage(window, kEnd, 8, 0); }, 8, "init;"},
        {"destroyed in a posted message", m_plain, [](HWND window) { PostMessage(window, kDestroy, 0, 0); },
         -1, "init;"},
        {"destroyed in a sent message", m_plain, [](HWND window) { SendMessage(window, kDestroy, 0, 0); }, -1,
         "init;"},
    };
    for (const auto& [what, dialog, act, result, calls] : rows)
    {
        SCOPED_TRACE(what);
        dialog.m_calls.clear();
        EXPECT_EQ(result, Run(dialog, act));
        EXPECT_EQ(calls, dialog.m_calls);
        EXPECT_TRUE(IsWindowEnabled(m_owner));
    }
}

TEST_F(MfcDialogTest, TabMovesTheFocusFromTheFirstControlThatTakesIt)
{
    Run(m_plain, [](HWND window) {
        EXPECT_EQ(ChildById(window, IDC_FIELD), FocusOf(window));
        EXPECT_TRUE(PostKey(window, VK_TAB));
        EXPECT_TRUE(WaitUntil([=] { return FocusOf(window) == ChildById(window, IDC_ACT); }));
        Click(window, IDCANCEL);
    });
}

TEST_F(MfcDialogTest, FocusSetInOnInitDialogStaysWhenThatReturnsFalse)
{
    m_plain.m_initResult = FALSE;
    m_plain.m_onInit = [](CTestDialog& self) { SetFocus(self.GetDlgItem(IDC_ACT)->m_hWnd); };
    Run(m_plain, [](HWND window) {
        EXPECT_EQ(ChildById(window, IDC_ACT), FocusOf(window));
        Click(window, IDCANCEL);
    });
}

TEST_F(MfcDialogTest, IsShownAfterOnInitDialogAlthoughItsTemplateDoesNotSayVisible)
{
    BOOL visibleInInit = TRUE;
    m_plain.m_onInit = [&](CTestDialog& self) { visibleInInit = self.IsWindowVisible(); };
    Run(m_plain, [](HWND window) {
        EXPECT_TRUE(IsWindowVisible(window));
        Click(window, IDCANCEL);
    });
    EXPECT_FALSE(visibleInInit);
}

TEST_F(MfcDialogTest, EndedInOnInitDialogIsNeverShown)
{
    m_plain.m_onInit = [](CTestDialog& self) { self.EndDialog(77); };
    EXPECT_EQ(77, RunUnseen(m_plain));
}

TEST_F(MfcDialogTest, ATemplateThatIsMissingOrHasAnUnknownControlIsMinusOne)
{
    CTestDialog missing(9999, &m_parent);
    EXPECT_EQ(-1, RunUnseen(missing));
    CTestDialog unknownClass(IDD_UNKNOWN_CLASS, &m_parent);
    EXPECT_EQ(-1, RunUnseen(unknownClass));
    EXPECT_EQ("", unknownClass.m_calls);
    AfxSetResourceHandle(GetModuleHandleW(L"kernel32.dll"));
    EXPECT_EQ(-1, RunUnseen(m_plain)) << "the resources are another module's";
    AfxSetResourceHandle(GetModuleHandleW(nullptr));
}

TEST_F(MfcDialogTest, ExceptionInOnInitDialogIsIdabortAndTheDialogIsNotShown)
{
    m_plain.m_onInit = [](CTestDialog&) { throw std::runtime_error("filling failed"); };
    const CDebugOutput output;
    EXPECT_EQ(IDABORT, RunUnseen(m_plain));
    EXPECT_THAT(output.Lines(), Contains("AfxCallWndProc: filling failed\n"));
}

TEST_F(MfcDialogTest, ExceptionInAHandlerLeavesTheDialogRunning)
{
    m_plain.m_onAct = [] { throw std::runtime_error("handler failed"); };
    const CDebugOutput output;
    EXPECT_EQ(IDOK, Run(m_plain, [&](HWND window) {
                  Click(window, IDC_ACT);
                  EXPECT_TRUE(WaitUntil([&] { return !output.Lines().empty(); }));
                  Click(window, IDOK);
              }));
    EXPECT_THAT(output.Lines(), Contains("AfxCallWndProc: handler failed\n"));
    EXPECT_EQ("init;act;ok;", m_plain.m_calls);
}

TEST_F(MfcDialogTest, QuitMessageEndsItAndGoesOnToTheLoopOutside)
{
    m_plain.m_onInit = [](CTestDialog&) { PostQuitMessage(3); };
    EXPECT_EQ(-1, m_plain.DoModal());
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(3U, message.wParam);
    EXPECT_EQ(nullptr, m_plain.m_hWnd);
}

TEST_F(MfcDialogTest, ControlsAreBoundToTheirMembersWhileItRuns)
{
    CStatic text;
    CProgressCtrl bar;
    m_plain.m_onDataExchange = [&](CDataExchange* exchange) {
        DDX_Control(exchange, IDC_TEXT, text);
        DDX_Control(exchange, IDC_BAR, bar);
    };
    m_plain.m_onInit = [&](CTestDialog& self) {
        EXPECT_EQ(&text, self.GetDlgItem(IDC_TEXT));
        EXPECT_EQ(L"Template text", ChildText(self.m_hWnd, IDC_TEXT));
        text.SetWindowText(L"New text");
        bar.SetRange(0, 100);
        EXPECT_EQ(0, bar.SendMessage(PBM_GETRANGE, TRUE));
        EXPECT_EQ(100, bar.SendMessage(PBM_GETRANGE, FALSE));
        EXPECT_EQ(0, bar.SetPos(30));
        EXPECT_EQ(30, bar.SetPos(70));
        EXPECT_EQ(70, bar.SendMessage(PBM_GETPOS));
    };
    Run(m_plain, [](HWND window) {
        EXPECT_EQ(L"New text", ChildText(window, IDC_TEXT));
        Click(window, IDOK);
    });
    EXPECT_EQ(nullptr, text.m_hWnd);
    EXPECT_EQ(nullptr, bar.m_hWnd);
}

TEST_F(MfcDialogTest, AMissingControlEndsItWithMinusOne)
{
    CStatic other;
    m_plain.m_onDataExchange = [&](CDataExchange* exchange) { DDX_Control(exchange, 9999, other); };
    const CDebugOutput output;
    EXPECT_EQ(-1, RunUnseen(m_plain));
    EXPECT_THAT(output.Lines(), Contains(StartsWith("CWnd::UpdateData: CInvalidArgException")));
}

} // namespace
