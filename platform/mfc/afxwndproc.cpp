// The way of a message from the window procedure to the member function that handles it.
#include "afxthreadstate.h"

#include <utility>

LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    try
    {
        // The message may come from the host's own loop, with the host's state and activation context.
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        if (CWnd* window = CWnd::FromHandlePermanent(hWnd))
        {
            return AfxCallWndProc(window, hWnd, nMsg, wParam, lParam);
        }
    }
    catch (...)
    {
        AfxTraceCaughtException(L"AfxWndProc");
    }
    return DefWindowProc(hWnd, nMsg, wParam, lParam);
}

LRESULT AfxCallWndProc(CWnd* pWnd, HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam)
{
    // Messages nest; the one outside is the current one again afterwards.
    class CCurrentMessage
    {
    public:
        explicit CCurrentMessage(const MSG& message)
            : m_state(AfxGetThreadState()), m_previous(std::exchange(m_state.m_lastSentMessage, message))
        {
        }
        ~CCurrentMessage() { m_state.m_lastSentMessage = m_previous; }
        CCurrentMessage(const CCurrentMessage&) = delete;
        CCurrentMessage& operator=(const CCurrentMessage&) = delete;

    private:
        CAfxThreadState& m_state;
        const MSG m_previous;
    };

    try
    {
        const CCurrentMessage current({hWnd, nMsg, wParam, lParam, 0, {0, 0}});
        return pWnd->WindowProc(nMsg, wParam, lParam);
    }
    catch (...)
    {
        AfxTraceCaughtException(L"AfxCallWndProc");
    }
    if (nMsg == WM_PAINT)
    {
        // Otherwise the system would ask for the same painting for ever.
        ValidateRect(hWnd, nullptr);
    }
    return nMsg == WM_CREATE ? -1 : 0;
}

LRESULT CWnd::Default()
{
    const MSG message = AfxGetThreadState().m_lastSentMessage;
    return DefWindowProc(message.message, message.wParam, message.lParam);
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_pfnSuper)
    {
        return CallWindowProc(m_pfnSuper, m_hWnd, message, wParam, lParam);
    }
    return ::DefWindowProc(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    if (!OnWndMsg(message, wParam, lParam, &result))
    {
        result = DefWindowProc(message, wParam, lParam);
    }
    return result;
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult)
{
    if (message == WM_COMMAND)
    {
        if (!OnCommand(wParam, lParam))
        {
            return FALSE;
        }
        *pResult = 1;
        return TRUE;
    }
    if (message == WM_NOTIFY)
    {
        return OnNotify(wParam, lParam, pResult);
    }
    const AFX_MSGMAP_ENTRY* entry = FindMessageEntry(GetMessageMap(), message, 0, 0);
    if (!entry && message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC)
    {
        entry = FindMessageEntry(GetMessageMap(), WM_CTLCOLOR, 0, 0);
    }
    if (!entry)
    {
        return FALSE;
    }
    AFX_MSG_CALL call = {message, wParam, lParam, 0};
    entry->pfn(this, call);
    *pResult = call.result;
    return TRUE;
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam)
{
    const UINT id = LOWORD(wParam);
    if (id == 0)
    {
        return FALSE;
    }
    const int code = lParam ? HIWORD(wParam) : CN_COMMAND;
    return OnCmdMsg(id, code, nullptr, nullptr);
}

BOOL CWnd::OnNotify(WPARAM, LPARAM lParam, LRESULT* pResult)
{
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    if (!header->hwndFrom)
    {
        return FALSE;
    }
    AFX_NOTIFY notify = {pResult, header};
    return OnCmdMsg(UINT(header->idFrom), int(MAKELONG(header->code, WM_NOTIFY)), &notify, nullptr);
}

CWnd* AfxMsgControl(const AFX_MSG_CALL& call)
{
    return CWnd::FromHandle(reinterpret_cast<HWND>(call.lParam));
}
