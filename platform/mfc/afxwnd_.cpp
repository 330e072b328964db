#include "afxwnd_.h"

#include "afxthreadstate.h"

#include <utility>

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
    ON_WM_NCDESTROY()
END_MESSAGE_MAP()

CWnd::~CWnd()
{
    if (m_hWnd)
    {
        CWnd::DestroyWindow();
    }
}

HWND CWnd::GetSafeHwnd() const
{
    return m_hWnd;
}

CWnd* CWnd::FromHandle(HWND hWnd)
{
    if (!hWnd)
    {
        return nullptr;
    }
    CWnd* attached = FromHandlePermanent(hWnd);
    return attached ? attached : AfxGetThreadState().Temporary<CWnd, &CWnd::m_hWnd>(hWnd);
}

CWnd* CWnd::FromHandlePermanent(HWND hWnd)
{
    const auto& windows = AfxGetThreadState().m_attachedWindows;
    const auto found = windows.find(hWnd);
    return found == windows.end() ? nullptr : found->second;
}

BOOL CWnd::Attach(HWND hWndNew)
{
    if (!hWndNew || m_hWnd || !AfxGetThreadState().m_attachedWindows.emplace(hWndNew, this).second)
    {
        return FALSE;
    }
    m_hWnd = hWndNew;
    return TRUE;
}

HWND CWnd::Detach()
{
    if (m_hWnd)
    {
        AfxGetThreadState().m_attachedWindows.erase(m_hWnd);
    }
    return std::exchange(m_hWnd, nullptr);
}

BOOL CWnd::SubclassWindow(HWND hWnd)
{
    if (!Attach(hWnd))
    {
        return FALSE;
    }
    PreSubclassWindow();
    m_pfnSuper = reinterpret_cast<WNDPROC>(
        SetWindowLongPtr(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&AfxWndProc)));
    if (!m_pfnSuper)
    {
        // The window belongs to another process, or is gone.
        Detach();
        return FALSE;
    }
    return TRUE;
}

void CWnd::PreSubclassWindow() {}

void CWnd::PostNcDestroy() {}

DWORD CWnd::GetStyle() const
{
    return DWORD(GetWindowLongPtr(m_hWnd, GWL_STYLE));
}

CWnd* CWnd::GetDlgItem(int nID) const
{
    return FromHandle(::GetDlgItem(m_hWnd, nID));
}

CWnd* CWnd::GetActiveWindow()
{
    return FromHandle(::GetActiveWindow());
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::SendMessage(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::PostMessage(m_hWnd, message, wParam, lParam);
}

void CWnd::SetWindowText(LPCTSTR lpszString)
{
    ::SetWindowText(m_hWnd, lpszString);
}

void CWnd::SetDlgItemText(int nID, LPCTSTR lpszString)
{
    ::SetDlgItemText(m_hWnd, nID, lpszString);
}

BOOL CWnd::EnableWindow(BOOL bEnable)
{
    return ::EnableWindow(m_hWnd, bEnable);
}

BOOL CWnd::ShowWindow(int nCmdShow)
{
    return ::ShowWindow(m_hWnd, nCmdShow);
}

BOOL CWnd::IsWindowVisible() const
{
    return ::IsWindowVisible(m_hWnd);
}

void CWnd::GetClientRect(LPRECT lpRect) const
{
    ::GetClientRect(m_hWnd, lpRect);
}

void CWnd::GetWindowRect(LPRECT lpRect) const
{
    ::GetWindowRect(m_hWnd, lpRect);
}

void CWnd::UpdateWindow()
{
    ::UpdateWindow(m_hWnd);
}

BOOL CWnd::DestroyWindow()
{
    if (!m_hWnd)
    {
        return FALSE;
    }
    const HWND window = m_hWnd;
    const BOOL result = ::DestroyWindow(window);
    // A subclassed window detached itself with its last message; this object may be gone with it.
    if (FromHandlePermanent(window) == this)
    {
        Detach();
    }
    return result;
}

BOOL CWnd::UpdateData(BOOL bSaveAndValidate)
{
    try
    {
        CDataExchange exchange(this, bSaveAndValidate);
        DoDataExchange(&exchange);
        return TRUE;
    }
    catch (CException*)
    {
        AfxTraceCaughtException(L"CWnd::UpdateData");
        return FALSE;
    }
}

void CWnd::DoDataExchange(CDataExchange*) {}

HBRUSH CWnd::OnCtlColor(CDC*, CWnd*, UINT)
{
    return reinterpret_cast<HBRUSH>(Default());
}

void CWnd::OnClose()
{
    Default();
}

void CWnd::OnDestroy()
{
    Default();
}

void CWnd::OnNcDestroy()
{
    const HWND window = m_hWnd;
    const WNDPROC super = m_pfnSuper;
    Default();
    // Not when somebody subclassed the window after us and is still in front.
    if (super && reinterpret_cast<WNDPROC>(GetWindowLongPtr(window, GWLP_WNDPROC)) == &AfxWndProc)
    {
        SetWindowLongPtr(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(super));
    }
    m_pfnSuper = nullptr;
    Detach();
    if (m_bInModalLoop)
    {
        // The loop may be waiting for a message that this window cannot get any more.
        PostThreadMessage(GetCurrentThreadId(), WM_NULL, 0, 0);
    }
    PostNcDestroy();
}
