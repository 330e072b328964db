#include "afxdlg_.h"

#include "afxthreadstate.h"

#include <commctrl.h>

#include <utility>

IMPLEMENT_DYNAMIC(CDialog, CWnd)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
    ON_COMMAND(IDOK, &CDialog::OnOK)
    ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
    ON_MESSAGE(WM_INITDIALOG, &CDialog::HandleInitDialog)
END_MESSAGE_MAP()

namespace
{

// The style and position of either kind of dialog template.
struct CTemplateHead
{
    explicit CTemplateHead(const DLGTEMPLATE& plain) : style(plain.style), x(plain.x), y(plain.y)
    {
        // An extended template opens with version 1 and a signature where a plain one has its style.
        struct CExtended
        {
            WORD version, signature;
            DWORD helpId, exStyle, style;
            WORD controls;
            short x, y;
        };
        if (plain.style == 0xFFFF0001)
        {
            const auto& extended = reinterpret_cast<const CExtended&>(plain);
            style = extended.style;
            x = extended.x;
            y = extended.y;
        }
    }

    DWORD style;
    short x, y;
};

// Enables a window again when it is destroyed, or before.
class CWindowEnabler
{
public:
    // `isDisabledByUs`: the window was enabled until the caller disabled it; any other is left alone.
    CWindowEnabler(HWND window, bool isDisabledByUs) : m_window(isDisabledByUs ? window : nullptr) {}
    ~CWindowEnabler() { Enable(); }
    CWindowEnabler(const CWindowEnabler&) = delete;
    CWindowEnabler& operator=(const CWindowEnabler&) = delete;

    void Enable()
    {
        if (m_window)
        {
            EnableWindow(std::exchange(m_window, nullptr), TRUE);
        }
    }

private:
    HWND m_window;
};

// Registers the classes of the controls that dialogs use. The active context decides which common controls
// are meant.
void RegisterControlClasses()
{
    const INITCOMMONCONTROLSEX classes = {sizeof classes,
                                          ICC_STANDARD_CLASSES | ICC_PROGRESS_CLASS | ICC_LINK_CLASS};
    // The result does not count: a control whose class is missing makes the dialog's creation fail.
    InitCommonControlsEx(&classes);
}

bool DisableWindow(HWND window)
{
    if (!window || window == GetDesktopWindow() || !IsWindowEnabled(window))
    {
        return false;
    }
    EnableWindow(window, FALSE);
    return true;
}

} // namespace

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_lpszTemplateName(MAKEINTRESOURCE(nIDTemplate)), m_pParentWnd(pParentWnd)
{
}

INT_PTR CDialog::DoModal()
{
    const HINSTANCE module = AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG);
    const HRSRC resource = FindResource(module, m_lpszTemplateName, RT_DIALOG);
    const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    m_pTemplate = loaded ? static_cast<const DLGTEMPLATE*>(LockResource(loaded)) : nullptr;
    if (!m_pTemplate)
    {
        return -1;
    }

    HWND topLevel = nullptr;
    const HWND owner = GetSafeOwner_(m_pParentWnd ? m_pParentWnd->m_hWnd : nullptr, &topLevel);
    CWindowEnabler topEnabler(topLevel, topLevel != nullptr);
    CWindowEnabler ownerEnabler(owner, DisableWindow(owner));

    m_nModalResult = -1;
    m_bContinueModal = true; // OnInitDialog may clear it by EndDialog
    if (CreateModal(module, owner) && m_bContinueModal)
    {
        RunModalLoop();
    }
    m_bContinueModal = false;

    // Before the dialog goes: the system would otherwise activate another program's window.
    topEnabler.Enable();
    ownerEnabler.Enable();
    if (owner && m_hWnd && ::GetActiveWindow() == m_hWnd)
    {
        SetActiveWindow(owner);
    }
    DestroyWindow();
    return m_nModalResult;
}

BOOL CDialog::CreateModal(HINSTANCE hInstance, HWND hWndOwner)
{
    // The classes of the controls are looked up in the module's own activation context.
    AFX_MANAGE_STATE(AfxGetModuleState())
    RegisterControlClasses();
    const HWND window = CreateDialogIndirectParam(hInstance, m_pTemplate, hWndOwner, &CDialog::DialogProc,
                                                  reinterpret_cast<LPARAM>(this));
    if (window && window != m_hWnd)
    {
        // Nobody is there to handle its messages.
        ::DestroyWindow(window);
        return FALSE;
    }
    return window != nullptr;
}

INT_PTR CALLBACK CDialog::DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_INITDIALOG)
    {
        return FALSE;
    }
    try
    {
        auto* dialog = reinterpret_cast<CDialog*>(lParam);
        if (!dialog->SubclassWindow(hWnd))
        {
            return FALSE;
        }
        return AfxCallWndProc(dialog, hWnd, message, wParam, lParam);
    }
    catch (...)
    {
        AfxTraceCaughtException(L"CDialog::DialogProc");
        return FALSE;
    }
}

LRESULT CDialog::HandleInitDialog(WPARAM, LPARAM)
{
    CRect before;
    GetWindowRect(before);
    const bool mayCenter = !(GetStyle() & (WS_VISIBLE | WS_CHILD)) && CheckAutoCenter();
    BOOL result = FALSE;
    try
    {
        result = OnInitDialog();
    }
    catch (...)
    {
        // A dialog that is filled in half must not be shown.
        EndDialog(IDABORT);
        throw;
    }
    if (mayCenter && m_hWnd && !IsWindowVisible())
    {
        CRect after;
        GetWindowRect(after);
        if (EqualRect(before, after))
        {
            CenterWindow();
        }
    }
    return result;
}

BOOL CDialog::CheckAutoCenter()
{
    const CTemplateHead head(*m_pTemplate);
    return !(head.style & (DS_CENTER | DS_CENTERMOUSE | DS_ABSALIGN)) && head.x == 0 && head.y == 0;
}

void CDialog::EndDialog(int nResult)
{
    EndModalLoop(nResult);
}

BOOL CDialog::PreTranslateMessage(MSG* pMsg)
{
    const bool isInput = (pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST) ||
                         (pMsg->message >= WM_MOUSEFIRST && pMsg->message <= WM_MOUSELAST);
    return isInput && IsDialogMessage(m_hWnd, pMsg);
}

BOOL CDialog::OnInitDialog()
{
    if (!UpdateData(FALSE))
    {
        EndDialog(-1);
        return FALSE;
    }
    return TRUE;
}

void CDialog::OnOK()
{
    if (UpdateData(TRUE))
    {
        EndDialog(IDOK);
    }
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}
