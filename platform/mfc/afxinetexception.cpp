// CInternetException, with its texts from WinINet's own message table.
#include <afxinet.h>

IMPLEMENT_DYNAMIC(CInternetException, CException)

CInternetException::CInternetException(DWORD error) : m_dwError(error), m_dwContext(0) {}

BOOL CInternetException::GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext) const
{
    CException::GetErrorMessage(errorText, maxError, helpContext);
    return AfxCopyErrorMessage(GetModuleHandleW(L"wininet.dll"), m_dwError, errorText, maxError);
}

void AFXAPI AfxThrowInternetException(DWORD_PTR context, DWORD error)
{
    auto* const exception = new CInternetException(error != 0 ? error : GetLastError());
    exception->m_dwContext = context;
    throw exception;
}
