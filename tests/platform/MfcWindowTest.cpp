// Windows: their objects by handle, subclassing, the containment of exceptions, texts.
#include "MfcResources.h"
#include "MfcTestWindow.h"
#include "afxthreadstate.h"
#include "harness/DebugOutput.h"
#include "harness/Waiting.h"
#include "harness/WindowDriver.h"

#include <afxwin.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace
{

using orva::test::CDebugOutput;
using orva::test::kPatience;
using orva::test::PumpUntil;
using orva::test::WindowText;

constexpr UINT kThrowStandard = WM_APP + 1;
constexpr UINT kThrowOwn = WM_APP + 2;
constexpr UINT kThrowNumber = WM_APP + 3;
constexpr UINT kNested = WM_APP + 4;

class CTestException : public CException
{
public:
    explicit CTestException(int& deaths) : m_deaths(deaths) {}
    ~CTestException() override { ++m_deaths; }

private:
    int& m_deaths;
};

class CWatchedWnd : public CWnd
{
public:
    int m_exceptionDeaths = 0;
    int m_postNcDestroy = 0;
    int m_preSubclass = 0;
    bool m_throwOnPaint = false;
    UINT m_currentAfterNesting = 0;
    AFX_MODULE_STATE* m_stateInHandler = nullptr;

protected:
    void PreSubclassWindow() override { m_preSubclass += m_hWnd ? 1 : 100; }
    void PostNcDestroy() override { m_postNcDestroy += m_hWnd ? 100 : 1; }
    afx_msg LRESULT OnThrowStandard(WPARAM, LPARAM) { throw std::runtime_error("broken"); }
    afx_msg LRESULT OnThrowOwn(WPARAM, LPARAM) { throw new CTestException(m_exceptionDeaths); }
    afx_msg LRESULT OnThrowNumber(WPARAM, LPARAM) { throw 5; }
    afx_msg LRESULT OnPaint(WPARAM, LPARAM)
    {
        if (m_throwOnPaint)
        {
            throw std::runtime_error("paint");
        }
        return Default();
    }
    afx_msg LRESULT OnNested(WPARAM, LPARAM)
    {
        m_stateInHandler = AfxGetModuleState();
        SendMessage(WM_GETTEXTLENGTH);
        m_currentAfterNesting = AfxGetThreadState().m_lastSentMessage.message;
        return 0;
    }

    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CWatchedWnd, CWnd)
    ON_MESSAGE(kThrowStandard, &CWatchedWnd::OnThrowStandard)
    ON_MESSAGE(kThrowOwn, &CWatchedWnd::OnThrowOwn)
    ON_MESSAGE(kThrowNumber, &CWatchedWnd::OnThrowNumber)
    ON_MESSAGE(kNested, &CWatchedWnd::OnNested)
    ON_MESSAGE(WM_PAINT, &CWatchedWnd::OnPaint)
END_MESSAGE_MAP()

WNDPROC ProcedureOf(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}

// A window with the object that subclasses it.
class MfcSubclassedWindow : public testing::Test
{
protected:
    MfcSubclassedWindow() { EXPECT_TRUE(m_wnd.SubclassWindow(m_window)); }

    const CTestWindow m_window;
    const WNDPROC m_before = ProcedureOf(m_window);
    CWatchedWnd m_wnd;
};

// Starts a worker whose object the caller owns.
std::unique_ptr<CWinThread> BeginOwned(AFX_THREADPROC function, void* parameter)
{
    std::unique_ptr<CWinThread> thread(
        AfxBeginThread(function, parameter, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED));
    thread->m_bAutoDelete = FALSE;
    thread->ResumeThread();
    return thread;
}

TEST(MfcWindow, HandleWithoutAnObjectGetsATemporaryOneThatIsTheSameEachTime)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    const CTestWindow window;
    CWnd* const wnd = CWnd::FromHandle(window);
    ASSERT_TRUE(wnd);
    EXPECT_EQ(window, wnd->m_hWnd);
    EXPECT_EQ(wnd, CWnd::FromHandle(window));
    EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(window));
    EXPECT_EQ(nullptr, CWnd::FromHandle(nullptr));
}

TEST(MfcWindow, AttachedObjectIsFoundByItsHandleUntilDetached)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    const CTestWindow window;
    CWnd wnd;
    EXPECT_TRUE(wnd.Attach(window));
    EXPECT_EQ(&wnd, CWnd::FromHandle(window));
    EXPECT_EQ(&wnd, CWnd::FromHandlePermanent(window));
    EXPECT_EQ(window, wnd.Detach());
    EXPECT_EQ(nullptr, wnd.GetSafeHwnd());
    EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(window));
}

TEST(MfcWindow, NullHandleOrASecondObjectIsNotAttached)
{
    const CTestWindow window;
    CWnd first;
    CWnd second;
    EXPECT_FALSE(first.Attach(nullptr));
    EXPECT_TRUE(first.Attach(window));
    EXPECT_FALSE(second.Attach(window));
    EXPECT_EQ(nullptr, second.m_hWnd);
    const CTestWindow other;
    EXPECT_FALSE(first.Attach(other)) << "an object has one window";
    EXPECT_EQ(window, first.m_hWnd);
    first.Detach();
}

TEST(MfcWindow, TemporaryObjectsEndWithTheirBlockAndLeaveTheWindow)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    const CTestWindow outer;
    const CTestWindow inner;
    CWnd* const outside = CWnd::FromHandle(outer);
    const size_t before = AfxGetThreadState().TemporaryCount();
    {
        const AFX_MAINTAIN_STATE2 block(AfxGetStaticModuleState());
        EXPECT_EQ(outside, CWnd::FromHandle(outer));
        CWnd::FromHandle(inner);
        EXPECT_EQ(before + 1, AfxGetThreadState().TemporaryCount());
    }
    EXPECT_EQ(before, AfxGetThreadState().TemporaryCount());
    EXPECT_EQ(outer, outside->m_hWnd);
    EXPECT_TRUE(IsWindow(inner));
}

TEST(MfcWindow, AttachedObjectIsNotFoundFromAnotherThread)
{
    const CTestWindow window;
    CWnd wnd;
    wnd.Attach(window);
    struct CQuestion
    {
        HWND window;
        CWnd* answer;
    } question = {window, &wnd};
    const auto thread = BeginOwned(
        [](LPVOID parameter) -> UINT {
            auto* asked = static_cast<CQuestion*>(parameter);
            asked->answer = CWnd::FromHandlePermanent(asked->window);
            return 0;
        },
        &question);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread->m_hThread, kPatience));
    EXPECT_EQ(nullptr, question.answer);
    wnd.Detach();
}

TEST_F(MfcSubclassedWindow, SubclassingPutsItsProcedureBeforeTheWindows)
{
    EXPECT_EQ(1, m_wnd.m_preSubclass);
    EXPECT_NE(m_before, ProcedureOf(m_window));
}

TEST_F(MfcSubclassedWindow, ObjectIsDetachedWithTheWindowsLastMessage)
{
    DestroyWindow(m_window);
    EXPECT_EQ(nullptr, m_wnd.m_hWnd);
    EXPECT_EQ(1, m_wnd.m_postNcDestroy);
}

TEST(MfcWindow, DestructorDestroysTheWindow)
{
    const CTestWindow window;
    {
        CWatchedWnd wnd;
        ASSERT_TRUE(wnd.SubclassWindow(window));
    }
    EXPECT_FALSE(IsWindow(window));
}

TEST(MfcWindow, DestroyWindowDetachesAWindowThatWasOnlyAttached)
{
    const CTestWindow window;
    CWnd wnd;
    wnd.Attach(window);
    EXPECT_TRUE(wnd.DestroyWindow());
    EXPECT_EQ(nullptr, wnd.m_hWnd);
    EXPECT_FALSE(wnd.DestroyWindow());
}

TEST_F(MfcSubclassedWindow, ExceptionOfAHandlerEndsAtTheWindowProcedureAndIsTraced)
{
    const std::pair<UINT, const char*> rows[] = {
        {kThrowStandard, "AfxCallWndProc: broken\n"},
        {kThrowOwn, "AfxCallWndProc: CException \n"},
        {kThrowNumber, "AfxCallWndProc: unknown exception\n"},
    };
    for (const auto& [message, trace] : rows)
    {
        const CDebugOutput output;
        EXPECT_EQ(0, m_wnd.SendMessage(message));
        EXPECT_THAT(output.Lines(), testing::Contains(trace));
    }
    EXPECT_EQ(1, m_wnd.m_exceptionDeaths);
}

TEST_F(MfcSubclassedWindow, PaintingThatThrowsIsNotAskedForAgain)
{
    m_wnd.m_throwOnPaint = true;
    InvalidateRect(m_window, nullptr, TRUE);
    m_wnd.UpdateWindow();
    EXPECT_FALSE(GetUpdateRect(m_window, nullptr, FALSE));
    m_wnd.m_throwOnPaint = false;
}

TEST_F(MfcSubclassedWindow, CurrentMessageIsTheOuterOneAgainAfterANestedOne)
{
    m_wnd.SendMessage(kNested);
    EXPECT_EQ(kNested, m_wnd.m_currentAfterNesting);
}

TEST_F(MfcSubclassedWindow, MessageHandlersLeaveNoTemporaryObjectsBehind)
{
    const size_t before = AfxGetThreadState().TemporaryCount();
    for (int i = 0; i < 10; ++i)
    {
        m_wnd.SendMessage(WM_SETCURSOR, reinterpret_cast<WPARAM>(m_wnd.m_hWnd), MAKELPARAM(HTCLIENT, 0));
        m_wnd.SendMessage(kNested);
    }
    EXPECT_EQ(before, AfxGetThreadState().TemporaryCount());
}

TEST_F(MfcSubclassedWindow, WindowProcedureSwitchesToTheModulesOwnState)
{
    AFX_MODULE_STATE foreign(GetModuleHandleW(L"kernel32.dll"));
    {
        AFX_MANAGE_STATE(&foreign)
        ::SendMessage(m_window, kNested, 0, 0);
        EXPECT_EQ(&foreign, AfxGetModuleState());
    }
    EXPECT_EQ(AfxGetStaticModuleState(), m_wnd.m_stateInHandler);
}

TEST(MfcWindow, ControlsAreReachedByTheirIds)
{
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    const CTestWindow window;
    const CTestWindow field(window, WS_CHILD | WS_VISIBLE, L"EDIT");
    SetWindowLongPtrW(field, GWLP_ID, IDC_FIELD);
    CWnd wnd;
    wnd.Attach(window);
    CWnd control;
    EXPECT_TRUE(control.SubclassWindow(field));
    EXPECT_EQ(&control, wnd.GetDlgItem(IDC_FIELD));
    EXPECT_EQ(nullptr, wnd.GetDlgItem(IDC_TEXT));

    wnd.SetDlgItemText(IDC_FIELD, L"Gr\u00FC\u00DFe");
    EXPECT_EQ(L"Gr\u00FC\u00DFe", WindowText(field));

    EXPECT_TRUE(control.GetStyle() & WS_CHILD);
    EXPECT_FALSE(control.EnableWindow(FALSE));
    EXPECT_FALSE(IsWindowEnabled(field));
    EXPECT_TRUE(control.ShowWindow(SW_HIDE));
    EXPECT_FALSE(control.IsWindowVisible());
    wnd.Detach();
}

TEST(MfcWindow, WorkerMaySetTheTextOfASubclassedControlWhileTheWindowsThreadRunsMessages)
{
    const CTestWindow window;
    const CTestWindow label(window, WS_CHILD | WS_VISIBLE, L"STATIC");
    CStatic control;
    ASSERT_TRUE(control.SubclassWindow(label));
    const auto thread = BeginOwned(
        [](LPVOID parameter) -> UINT {
            for (int i = 1; i <= 200; ++i)
            {
                static_cast<CStatic*>(parameter)->SetWindowText(std::to_wstring(i).c_str());
            }
            return 0;
        },
        &control);
    EXPECT_TRUE(PumpUntil([&] { return WaitForSingleObject(thread->m_hThread, 0) == WAIT_OBJECT_0; }));
    EXPECT_EQ(L"200", WindowText(label));
}

} // namespace
