// Windows: handles and their objects, and the operations that pass the handle on.
#include "afxwnd_.h"

#include "afxthreadstate.h"

#include <algorithm>
#include <utility>

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
    ON_WM_NCDESTROY()
END_MESSAGE_MAP()

CWnd::~CWnd()
{
    if (m_hWnd)
    {
        DestroyWindow();
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

CWnd* CWnd::GetSafeOwner(CWnd* pParent, HWND* pTopLevel)
{
    return FromHandle(GetSafeOwner_(pParent ? pParent->m_hWnd : nullptr, pTopLevel));
}

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
        owner = ::GetParent(owner);
    }
    HWND top = start;
    while (const HWND above = top ? ::GetParent(top) : nullptr)
    {
        top = above;
    }
    if (!hWnd && owner)
    {
        owner = ::GetLastActivePopup(owner);
    }

    if (pWndTopLevel)
    {
        const bool isOther = top && top != owner && ::IsWindowEnabled(top);
        *pWndTopLevel = isOther ? top : nullptr;
        if (isOther)
        {
            ::EnableWindow(top, FALSE);
        }
    }
    return owner;
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

void CWnd::CenterWindow(CWnd* pAlternateOwner)
{
    const bool isChild = (GetStyle() & WS_CHILD) != 0;
    HWND over = isChild ? ::GetParent(m_hWnd) : ::GetWindow(m_hWnd, GW_OWNER);
    if (pAlternateOwner)
    {
        over = pAlternateOwner->m_hWnd;
    }

    CRect center;
    CRect limits;
    if (isChild)
    {
        // A child's position counts from its parent's client area.
        const HWND parent = ::GetParent(m_hWnd);
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
    ::SetWindowPos(m_hWnd, nullptr, place(center.left, center.right, own.Width(), limits.left, limits.right),
                   place(center.top, center.bottom, own.Height(), limits.top, limits.bottom), 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
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
        const BOOL fetched = ::GetMessage(&message, nullptr, 0, 0);
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
