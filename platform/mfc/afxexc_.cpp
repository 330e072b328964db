#include <afxexc_.h>

#include <memory>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CInvalidArgException, CException)

CException::CException() = default;

void CException::Delete()
{
    delete this;
}

BOOL CException::GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext) const
{
    if (helpContext != nullptr)
    {
        *helpContext = 0;
    }
    if (errorText != nullptr && maxError != 0)
    {
        errorText[0] = L'\0';
    }
    return FALSE;
}

CInvalidArgException::CInvalidArgException() = default;

BOOL CInvalidArgException::GetErrorMessage(LPWSTR errorText, UINT maxError, PUINT helpContext) const
{
    CException::GetErrorMessage(errorText, maxError, helpContext);
    return AfxCopyErrorMessage(nullptr, ERROR_INVALID_PARAMETER, errorText, maxError);
}

void AFXAPI AfxThrowInvalidArgException()
{
    throw new CInvalidArgException;
}

BOOL AfxCopyErrorMessage(HMODULE messageModule, DWORD error, LPWSTR errorText, UINT maxError)
{
    if (errorText == nullptr || maxError == 0)
    {
        return FALSE;
    }
    errorText[0] = L'\0';

    LPWSTR found = nullptr;
    const auto look = [&](DWORD source, HMODULE module) {
        return FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | source, module,
                              error, 0, reinterpret_cast<LPWSTR>(&found), 0, nullptr) != 0;
    };
    const bool isFound = (messageModule != nullptr && look(FORMAT_MESSAGE_FROM_HMODULE, messageModule)) ||
                         look(FORMAT_MESSAGE_FROM_SYSTEM, nullptr);
    if (!isFound)
    {
        return FALSE;
    }
    const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(found, &LocalFree);
    lstrcpynW(errorText, found, static_cast<int>(maxError));
    return TRUE;
}
