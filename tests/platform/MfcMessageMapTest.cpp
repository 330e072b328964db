// Message maps: which handler gets which message, command and notification, and what becomes of its answer.
#include "MfcTestWindow.h"

#include <afxcmn.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

constexpr UINT kOwnMessage = WM_APP + 1;
constexpr UINT kBaseMessage = WM_APP + 2;

class CBaseWnd : public CWnd
{
public:
    std::vector<std::string> m_calls;

protected:
    afx_msg LRESULT OnOwn(WPARAM, LPARAM)
    {
        m_calls.push_back("base own");
        return 1;
    }
    afx_msg LRESULT OnBase(WPARAM wParam, LPARAM lParam)
    {
        m_calls.push_back("base");
        return LRESULT(wParam) + lParam;
    }
    afx_msg void OnCommandOfBase() { m_calls.push_back("base command"); }
    virtual afx_msg void OnVirtual() { m_calls.push_back("base virtual"); }

    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CBaseWnd, CWnd)
    ON_MESSAGE(kOwnMessage, &CBaseWnd::OnOwn)
    ON_MESSAGE(kBaseMessage, &CBaseWnd::OnBase)
    ON_COMMAND(7, &CBaseWnd::OnCommandOfBase)
    ON_COMMAND(9, &CBaseWnd::OnVirtual)
END_MESSAGE_MAP()

class CDerivedWnd : public CBaseWnd
{
public:
    LRESULT m_notifyResult = 0;
    HDC m_erased = nullptr;
    BOOL m_eraseResult = TRUE;
    HWND m_coloured = nullptr;
    UINT m_kind = 0;
    HBRUSH m_brush = nullptr;

protected:
    afx_msg LRESULT OnOwn(WPARAM, LPARAM)
    {
        m_calls.push_back("derived own");
        return 2;
    }
    afx_msg void OnClicked() { m_calls.push_back("clicked"); }
    afx_msg void OnLink(NMHDR* header, LRESULT* result)
    {
        m_calls.push_back("link " + std::to_string(header->idFrom));
        *result = m_notifyResult;
    }
    afx_msg BOOL OnEraseBkgnd(CDC* dc)
    {
        m_erased = dc->m_hDC;
        return m_eraseResult;
    }
    afx_msg HBRUSH OnCtlColor(CDC*, CWnd* control, UINT kind)
    {
        m_coloured = control->m_hWnd;
        m_kind = kind;
        return m_brush;
    }
    afx_msg void OnClose() { m_calls.push_back("close"); }
    afx_msg void OnDestroy()
    {
        m_calls.push_back("destroy");
        CBaseWnd::OnDestroy();
    }
    void OnVirtual() override { m_calls.push_back("derived virtual"); }

    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CDerivedWnd, CBaseWnd)
    ON_BN_CLICKED(20, &CDerivedWnd::OnClicked)
    ON_NOTIFY(NM_CLICK, 30, &CDerivedWnd::OnLink)
    ON_MESSAGE(kOwnMessage, &CDerivedWnd::OnOwn)
    ON_WM_ERASEBKGND()
    ON_WM_CTLCOLOR()
    ON_WM_CLOSE()
    ON_WM_DESTROY()
END_MESSAGE_MAP()

class MfcMessageMap : public testing::Test
{
protected:
    MfcMessageMap() { EXPECT_TRUE(m_wnd.SubclassWindow(m_window)); }

    LRESULT Notify(int id, UINT code, HWND from)
    {
        NMHDR header = {from, UINT_PTR(id), code};
        return m_wnd.SendMessage(WM_NOTIFY, WPARAM(id), reinterpret_cast<LPARAM>(&header));
    }

    CTestWindow m_window;
    CDerivedWnd m_wnd;
    using Calls = std::vector<std::string>;
};

TEST_F(MfcMessageMap, DerivedEntryGoesBeforeTheBaseClassWhichServesTheRest)
{
    EXPECT_EQ(2, m_wnd.SendMessage(kOwnMessage));
    EXPECT_EQ(12, m_wnd.SendMessage(kBaseMessage, 5, 7));
    EXPECT_EQ((Calls{"derived own", "base"}), m_wnd.m_calls);
}

TEST_F(MfcMessageMap, CommandReachesTheHandlerOfItsIdAndCode)
{
    const CTestWindow button(m_window, WS_CHILD, L"BUTTON");
    const struct
    {
        const char* what;
        WPARAM wParam;
        HWND control;
        LRESULT result;
        Calls calls;
    } rows[] = {
        {"a click", MAKEWPARAM(20, BN_CLICKED), button, 1, {"clicked"}},
        {"another notification is no click", MAKEWPARAM(20, BN_SETFOCUS), button, 0, {}},
        {"an accelerator's code counts as a command", MAKEWPARAM(7, 1), nullptr, 1, {"base command"}},
        {"an unknown command is the window's own affair", 8, nullptr, 0, {}},
        {"a virtual handler named by the base", 9, nullptr, 1, {"derived virtual"}},
    };
    for (const auto& [what, wParam, control, result, calls] : rows)
    {
        SCOPED_TRACE(what);
        m_wnd.m_calls.clear();
        EXPECT_EQ(result, m_wnd.SendMessage(WM_COMMAND, wParam, reinterpret_cast<LPARAM>(control)));
        EXPECT_EQ(calls, m_wnd.m_calls);
    }
}

TEST_F(MfcMessageMap, NotificationOfItsCodeAndControlPassesItsHeaderAndItsResult)
{
    m_wnd.m_notifyResult = 42;
    EXPECT_EQ(42, Notify(30, UINT(NM_CLICK), m_window));
    EXPECT_EQ(Calls{"link 30"}, m_wnd.m_calls);
    EXPECT_EQ(0, Notify(30, UINT(NM_DBLCLK), m_window));
    EXPECT_EQ(0, Notify(31, UINT(NM_CLICK), m_window));
    EXPECT_EQ(Calls{"link 30"}, m_wnd.m_calls);
}

TEST_F(MfcMessageMap, HandlerInfoIsFilledWithoutACall)
{
    AFX_CMDHANDLERINFO info = {};
    EXPECT_TRUE(m_wnd.OnCmdMsg(7, CN_COMMAND, nullptr, &info));
    EXPECT_EQ(&m_wnd, info.pTarget);
    EXPECT_FALSE(m_wnd.OnCmdMsg(8, CN_COMMAND, nullptr, &info));
    EXPECT_EQ(Calls{}, m_wnd.m_calls);
}

TEST_F(MfcMessageMap, EraseBackgroundGetsTheDeviceContextAndItsAnswerIsTheResult)
{
    const HDC dc = GetDC(m_window);
    EXPECT_EQ(TRUE, m_wnd.SendMessage(WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc)));
    EXPECT_EQ(dc, m_wnd.m_erased);
    m_wnd.m_eraseResult = FALSE;
    EXPECT_EQ(FALSE, m_wnd.SendMessage(WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc)));
    EXPECT_TRUE(ReleaseDC(m_window, dc)) << "the device context was only lent";
}

TEST_F(MfcMessageMap, EachControlColorMessageReachesOneHandlerWithTheControlsKind)
{
    const HDC dc = GetDC(m_window);
    m_wnd.m_brush = static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH));
    const std::pair<UINT, UINT> kinds[] = {
        {WM_CTLCOLORMSGBOX, CTLCOLOR_MSGBOX},   {WM_CTLCOLOREDIT, CTLCOLOR_EDIT},
        {WM_CTLCOLORLISTBOX, CTLCOLOR_LISTBOX}, {WM_CTLCOLORBTN, CTLCOLOR_BTN},
        {WM_CTLCOLORDLG, CTLCOLOR_DLG},         {WM_CTLCOLORSCROLLBAR, CTLCOLOR_SCROLLBAR},
        {WM_CTLCOLORSTATIC, CTLCOLOR_STATIC}};
    for (const auto& [message, kind] : kinds)
    {
        m_wnd.m_kind = 99;
        EXPECT_EQ(reinterpret_cast<LRESULT>(m_wnd.m_brush),
                  m_wnd.SendMessage(message, reinterpret_cast<WPARAM>(dc),
                                    reinterpret_cast<LPARAM>(static_cast<HWND>(m_window))));
        EXPECT_EQ(kind, m_wnd.m_kind);
        EXPECT_EQ(m_window, m_wnd.m_coloured);
    }
    ReleaseDC(m_window, dc);
}

TEST_F(MfcMessageMap, CloseWithoutTheDefaultLeavesTheWindowAndDestroyIsHandledOnce)
{
    EXPECT_EQ(0, m_wnd.SendMessage(WM_CLOSE));
    EXPECT_TRUE(IsWindow(m_window));
    m_wnd.DestroyWindow();
    EXPECT_EQ((Calls{"close", "destroy"}), m_wnd.m_calls);
}

} // namespace
