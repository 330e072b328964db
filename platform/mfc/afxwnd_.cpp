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

CWnd::operator HWND() const
{
    return m_hWnd;
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
    m_hWndOwner = nullptr;
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

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent)
{
    return SubclassWindow(::GetDlgItem(pParent->m_hWnd, int(nID)));
}

HWND CWnd::UnsubclassWindow()
{
    if (m_pfnSuper)
    {
        SetWindowLongPtr(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
        m_pfnSuper = nullptr;
    }
    return Detach();
}

void CWnd::PreSubclassWindow() {}

void CWnd::PostNcDestroy() {}

DWORD CWnd::GetStyle() const
{
    return DWORD(GetWindowLongPtr(m_hWnd, GWL_STYLE));
}

DWORD CWnd::GetExStyle() const
{
    return DWORD(GetWindowLongPtr(m_hWnd, GWL_EXSTYLE));
}

int CWnd::GetDlgCtrlID() const
{
    return ::GetDlgCtrlID(m_hWnd);
}

CWnd* CWnd::GetDlgItem(int nID) const
{
    return FromHandle(::GetDlgItem(m_hWnd, nID));
}

CWnd* CWnd::GetParent() const
{
    return FromHandle(::GetParent(m_hWnd));
}

CWnd* CWnd::GetTopLevelParent() const
{
    HWND top = m_hWnd;
    while (const HWND parent = ::GetParent(top))
    {
        top = parent;
    }
    return FromHandle(top);
}

CWnd* CWnd::GetLastActivePopup() const
{
    return FromHandle(::GetLastActivePopup(m_hWnd));
}

CWnd* CWnd::GetOwner() const
{
    return m_hWndOwner ? FromHandle(m_hWndOwner) : GetParent();
}

void CWnd::SetOwner(CWnd* pOwnerWnd)
{
    m_hWndOwner = pOwnerWnd ? pOwnerWnd->m_hWnd : nullptr;
}

CWnd* CWnd::GetActiveWindow()
{
    return FromHandle(::GetActiveWindow());
}

CWnd* CWnd::GetFocus()
{
    return FromHandle(::GetFocus());
}

CWnd* CWnd::GetForegroundWindow()
{
    return FromHandle(::GetForegroundWindow());
}

CWnd* CWnd::GetDesktopWindow()
{
    return FromHandle(::GetDesktopWindow());
}

CWnd* CWnd::SetActiveWindow()
{
    return FromHandle(::SetActiveWindow(m_hWnd));
}

CWnd* CWnd::SetFocus()
{
    return FromHandle(::SetFocus(m_hWnd));
}

BOOL CWnd::SetForegroundWindow()
{
    return ::SetForegroundWindow(m_hWnd);
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::SendMessage(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::PostMessage(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::SendDlgItemMessage(int nID, UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::SendDlgItemMessage(m_hWnd, nID, message, wParam, lParam);
}

void CWnd::SetWindowText(LPCTSTR lpszString)
{
    ::SetWindowText(m_hWnd, lpszString);
}

int CWnd::GetWindowText(LPTSTR lpszStringBuf, int nMaxCount) const
{
    return ::GetWindowText(m_hWnd, lpszStringBuf, nMaxCount);
}

void CWnd::GetWindowText(CString& rString) const
{
    // The length is an upper bound; what was really stored ends at its terminator.
    const int length = GetWindowTextLength();
    ::GetWindowText(m_hWnd, rString.GetBuffer(length), length + 1);
    rString.ReleaseBuffer();
}

int CWnd::GetWindowTextLength() const
{
    return ::GetWindowTextLength(m_hWnd);
}

void CWnd::SetDlgItemText(int nID, LPCTSTR lpszString)
{
    ::SetDlgItemText(m_hWnd, nID, lpszString);
}

int CWnd::GetDlgItemText(int nID, CString& rString) const
{
    rString.Empty();
    const CWnd* control = GetDlgItem(nID);
    if (!control)
    {
        return 0;
    }
    control->GetWindowText(rString);
    return rString.GetLength();
}

void CWnd::SetFont(CFont* pFont, BOOL bRedraw)
{
    const HGDIOBJ font = pFont ? pFont->GetSafeHandle() : nullptr;
    ::SendMessage(m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), bRedraw);
}

CFont* CWnd::GetFont() const
{
    return CFont::FromHandle(reinterpret_cast<HFONT>(::SendMessage(m_hWnd, WM_GETFONT, 0, 0)));
}

BOOL CWnd::EnableWindow(BOOL bEnable)
{
    return ::EnableWindow(m_hWnd, bEnable);
}

BOOL CWnd::IsWindowEnabled() const
{
    return ::IsWindowEnabled(m_hWnd);
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

BOOL CWnd::SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags)
{
    return ::SetWindowPos(m_hWnd, pWndInsertAfter ? pWndInsertAfter->m_hWnd : nullptr, x, y, cx, cy, nFlags);
}

void CWnd::Invalidate(BOOL bErase)
{
    InvalidateRect(m_hWnd, nullptr, bErase);
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

BOOL CWnd::OnEraseBkgnd(CDC*)
{
    return BOOL(Default());
}

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
