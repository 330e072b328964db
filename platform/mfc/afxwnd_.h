// Windows; part of <afxwin.h>, which is the header to include.
//
// Left out: window creation (windows come from dialog templates or are attached), menus, scrolling, tool
// tips, drag and drop, timers, OLE containment, message reflection and all messages that the add-in does not
// handle. Otherwise than the original: FromHandle's temporary objects are freed when the window procedure or
// the AFX_MANAGE_STATE block in which they were made ends, not at idle time. An exception that leaves a
// handler is traced to the debugger, not shown in a message box: we are a guest in somebody else's program.
//
// Threads: a CWnd is attached, looked up by handle and destroyed on the thread of its window. Operations that
// only pass m_hWnd on (SetWindowText, SendMessage, PostMessage, EnableWindow, ...) may be called from any
// thread.
#pragma once

#include "afxcmdt_.h"
#include "afxdd_.h"

class CDC;
class CFont;

class CWnd : public CCmdTarget
{
    DECLARE_DYNAMIC(CWnd)
public:
    HWND m_hWnd = nullptr;

    CWnd() = default;
    /// Destroys the window if it is still there.
    ~CWnd() override;

    /// Null without a window. Not for null pointers, which the original lets pass here.
    HWND GetSafeHwnd() const;

    /// The object of that window on this thread; a temporary one when the window was not attached. Null for
    /// null.
    static CWnd* FromHandle(HWND hWnd);
    /// The attached object of that window on this thread, or null.
    static CWnd* FromHandlePermanent(HWND hWnd);
    /// FALSE when the handle is null; the window must not be attached to another object.
    BOOL Attach(HWND hWndNew);
    HWND Detach();

    /// Attaches the window and puts the message map before its window procedure.
    BOOL SubclassWindow(HWND hWnd);

    DWORD GetStyle() const;
    CWnd* GetDlgItem(int nID) const;
    /// The window that a modal dialog is to be owned by: the first window from `hWnd` upwards that is no
    /// child; without `hWnd`, the last active popup of the main window. With `pWndTopLevel`, the top-level
    /// window above it is disabled, unless it is the owner itself or is disabled already, and its handle left
    /// there for the caller to enable; null otherwise.
    static HWND GetSafeOwner_(HWND hWnd, HWND* pWndTopLevel);

    static CWnd* GetActiveWindow();

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    void SetWindowText(LPCTSTR lpszString);
    void SetDlgItemText(int nID, LPCTSTR lpszString);

    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL ShowWindow(int nCmdShow);
    BOOL IsWindowVisible() const;
    void GetClientRect(LPRECT lpRect) const;
    void GetWindowRect(LPRECT lpRect) const;
    /// Centres the window over `pAlternateOwner`, else its owner (a child: its parent), else the work area of
    /// its monitor, and keeps it inside that work area.
    void CenterWindow(CWnd* pAlternateOwner = nullptr);
    void UpdateWindow();
    virtual BOOL DestroyWindow();

    /// Runs DoDataExchange; FALSE when it threw, which is traced.
    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);

    /// Runs messages until EndModalLoop or until the window is gone, and returns the loop's result.
    /// A WM_QUIT ends it with -1 and is posted again for the loops around it.
    int RunModalLoop(DWORD dwFlags = 0);
    virtual BOOL ContinueModal();
    virtual void EndModalLoop(int nResult);

    /// TRUE when a message fetched by a modal loop must not be dispatched.
    virtual BOOL PreTranslateMessage(MSG* pMsg);
    /// Called before the window is subclassed, with m_hWnd set.
    virtual void PreSubclassWindow();

protected:
    virtual void DoDataExchange(CDataExchange* pDX);

    /// Every message of the window: OnWndMsg, then DefWindowProc.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    /// The message map; FALSE when nothing there handled the message.
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    /// The window's own procedure, as it was before it was subclassed.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    /// DefWindowProc for the message that is being handled, with its original parameters.
    LRESULT Default();
    /// The last call for a window: the object may delete itself here.
    virtual void PostNcDestroy();
    /// TRUE when the window is to be centred after it was initialised.
    virtual BOOL CheckAutoCenter();

    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    afx_msg void OnClose();
    afx_msg void OnDestroy();
    afx_msg void OnNcDestroy();

    DECLARE_MESSAGE_MAP()

protected:
    int m_nModalResult = -1;

private:
    friend LRESULT AfxCallWndProc(CWnd* pWnd, HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);
    friend class CDialog;

    WNDPROC m_pfnSuper = nullptr;
    bool m_bInModalLoop = false;
    bool m_bContinueModal = false;
};

/// The window procedure of every subclassed window: switches to this module's state and hands the message to
/// the window's object. No C++ exception leaves it.
LRESULT CALLBACK AfxWndProc(HWND hWnd, UINT nMsg, WPARAM wParam, LPARAM lParam);

/// Hands one message to `pWnd`. An exception that a handler lets out is traced to the debugger and, when it
/// is a CException, deleted; the message's result is then 0.
LRESULT AfxCallWndProc(CWnd* pWnd, HWND hWnd, UINT nMsg, WPARAM wParam = 0, LPARAM lParam = 0);
