// A DLL with a class library of its own inside, as the add-in has: what a host sees of it.
#include "platform/MfcResources.h"

#include <afxwin.h>

namespace
{

CWinApp g_application(L"orva_test_module");

// Ends itself as soon as it is filled, and leaves what it was filled with.
class CBriefDialog : public CDialog
{
public:
    CBriefDialog() : CDialog(IDD_PLAIN) {}
    WCHAR m_text[64] = L"";

protected:
    BOOL OnInitDialog() override
    {
        CDialog::OnInitDialog();
        ::GetWindowText(GetDlgItem(IDC_TEXT)->m_hWnd, m_text, ARRAYSIZE(m_text));
        EndDialog(IDYES);
        return TRUE;
    }
};

} // namespace

extern "C"
{

    __declspec(dllexport) HINSTANCE ModuleInstance()
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        return AfxGetApp()->m_hInstance;
    }

    __declspec(dllexport) const wchar_t* ModuleName()
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        return AfxGetAppName();
    }

    // Runs a dialog from the DLL's own resources; `text` (64 characters) gets its first control's text.
    __declspec(dllexport) INT_PTR ModuleDialog(wchar_t* text)
    {
        AFX_MANAGE_STATE(AfxGetStaticModuleState())
        CBriefDialog dialog;
        const INT_PTR result = dialog.DoModal();
        lstrcpynW(text, dialog.m_text, ARRAYSIZE(dialog.m_text));
        return result;
    }

} // extern "C"
