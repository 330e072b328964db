// What modal dialogs need of a window: its owner, its place, its loop of messages.
#include "afxthreadstate.h"
#include "afxwnd_.h"

#include <algorithm>

HWND CWnd::GetSafeOwner_(HWND hWnd, HWND* pWndTopLevel)
{
    HWND start = hWnd;
    if (!start)
    {
        const CWnd* main = AfxGetMainWnd();
        start = main ? main->m_hWnd : nullptr;
    }

    HWND owner = start;
    while (owner && (GetWindowLongPtr(owner, GWL_STYLE) & WS_CHILD))
    {
        owner = GetParent(owner);
    }
    HWND top = start;
    while (const HWND above = top ? GetParent(top) : nullptr)
    {
        top = above;
    }
    if (!hWnd && owner)
    {
        owner = GetLastActivePopup(owner);
    }

    if (pWndTopLevel)
    {
        const bool isOther = top && top != owner && IsWindowEnabled(top);
        *pWndTopLevel = isOther ? top : nullptr;
        if (isOther)
        {
            ::EnableWindow(top, FALSE);
        }
    }
    return owner;
}

void CWnd::CenterWindow(CWnd* pAlternateOwner)
{
    const bool isChild = (GetStyle() & WS_CHILD) != 0;
    HWND over = isChild ? GetParent(m_hWnd) : GetWindow(m_hWnd, GW_OWNER);
    if (pAlternateOwner)
    {
        over = pAlternateOwner->m_hWnd;
    }

    CRect center;
    CRect limits;
    if (isChild)
    {
        // A child's position counts from its parent's client area.
        const HWND parent = GetParent(m_hWnd);
        ::GetClientRect(parent, limits);
        ::GetClientRect(over, center);
        MapWindowPoints(over, parent, reinterpret_cast<POINT*>(&center), 2);
    }
    else
    {
        // Nobody would look for a window over one that is not to be seen.
        if (over && (!::IsWindowVisible(over) || IsIconic(over)))
        {
            over = nullptr;
        }
        MONITORINFO monitor = {};
        monitor.cbSize = sizeof monitor;
        GetMonitorInfo(MonitorFromWindow(over, MONITOR_DEFAULTTOPRIMARY), &monitor);
        limits = monitor.rcWork;
        center = limits;
        if (over)
        {
            ::GetWindowRect(over, center);
        }
    }

    CRect own;
    GetWindowRect(own);
    const auto place = [](int low, int high, int size, int lowest, int highest) {
        return std::max(lowest, std::min((low + high - size) / 2, highest - size));
    };
    SetWindowPos(m_hWnd, nullptr, place(center.left, center.right, own.Width(), limits.left, limits.right),
                 place(center.top, center.bottom, own.Height(), limits.top, limits.bottom), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

BOOL CWnd::CheckAutoCenter()
{
    return TRUE;
}

BOOL CWnd::PreTranslateMessage(MSG*)
{
    return FALSE;
}

int CWnd::RunModalLoop(DWORD)
{
    m_bInModalLoop = true;
    m_bContinueModal = true;
    if (!IsWindowVisible())
    {
        ShowWindow(SW_SHOWNORMAL);
        UpdateWindow();
    }
    while (ContinueModal())
    {
        MSG message;
        const BOOL fetched = GetMessage(&message, nullptr, 0, 0);
        if (fetched <= 0)
        {
            if (fetched == 0)
            {
                PostQuitMessage(int(message.wParam));
            }
            m_nModalResult = -1;
            break;
        }
        if (!PreTranslateMessage(&message))
        {
            TranslateMessage(&message);
            DispatchMessage(&message);
        }
    }
    m_bInModalLoop = false;
    m_bContinueModal = false;
    return m_nModalResult;
}

BOOL CWnd::ContinueModal()
{
    return m_bContinueModal && m_hWnd;
}

void CWnd::EndModalLoop(int nResult)
{
    m_nModalResult = nResult;
    if (m_bContinueModal)
    {
        m_bContinueModal = false;
        // Wakes the loop, which may be waiting for a message.
        PostMessage(WM_NULL);
    }
}
