#include "platform/atl/AtlRegKey.h"

#include <cwchar>

namespace ATL
{

LONG CRegKey::Create(HKEY hKeyParent, LPCTSTR lpszKeyName, LPTSTR lpszClass, DWORD dwOptions,
                     REGSAM samDesired, LPSECURITY_ATTRIBUTES lpSecAttr, LPDWORD lpdwDisposition) noexcept
{
    DWORD disposition = 0;
    HKEY hKey = nullptr;
    const LONG result = RegCreateKeyExW(hKeyParent, lpszKeyName, 0, lpszClass, dwOptions, samDesired,
                                        lpSecAttr, &hKey, &disposition);
    if (lpdwDisposition)
    {
        *lpdwDisposition = disposition;
    }
    if (result == ERROR_SUCCESS)
    {
        Close();
        m_hKey = hKey;
    }
    return result;
}

LONG CRegKey::Open(HKEY hKeyParent, LPCTSTR lpszKeyName, REGSAM samDesired) noexcept
{
    HKEY hKey = nullptr;
    const LONG result = RegOpenKeyExW(hKeyParent, lpszKeyName, 0, samDesired, &hKey);
    if (result == ERROR_SUCCESS)
    {
        Close();
        m_hKey = hKey;
    }
    return result;
}

LONG CRegKey::Close() noexcept
{
    const LONG result = m_hKey ? RegCloseKey(m_hKey) : ERROR_SUCCESS;
    m_hKey = nullptr;
    return result;
}

LONG CRegKey::SetDWORDValue(LPCTSTR pszValueName, DWORD dwValue) noexcept
{
    return SetBytes(pszValueName, REG_DWORD, &dwValue, sizeof(dwValue));
}

LONG CRegKey::SetStringValue(LPCTSTR pszValueName, LPCTSTR pszValue, DWORD dwType) noexcept
{
    if (pszValue == nullptr)
    {
        return ERROR_INVALID_DATA;
    }
    return SetBytes(pszValueName, dwType, pszValue, (std::wcslen(pszValue) + 1) * sizeof(WCHAR));
}

LONG CRegKey::SetBinaryValue(LPCTSTR pszValueName, const void* pValue, ULONG nBytes) noexcept
{
    return SetBytes(pszValueName, REG_BINARY, pValue, nBytes);
}

LONG CRegKey::SetMultiStringValue(LPCTSTR pszValueName, LPCTSTR pszValue) noexcept
{
    if (pszValue == nullptr)
    {
        return ERROR_INVALID_DATA;
    }
    std::size_t length = 0;
    while (pszValue[length] != L'\0')
    {
        length += std::wcslen(pszValue + length) + 1;
    }
    return SetBytes(pszValueName, REG_MULTI_SZ, pszValue, (length + 1) * sizeof(WCHAR));
}

LONG CRegKey::DeleteValue(LPCTSTR lpszValue) noexcept
{
    return RegDeleteValueW(m_hKey, lpszValue);
}

LONG CRegKey::SetBytes(LPCTSTR pszValueName, DWORD dwType, const void* pValue, std::size_t nBytes) noexcept
{
    return RegSetValueExW(m_hKey, pszValueName, 0, dwType, static_cast<const BYTE*>(pValue),
                          static_cast<DWORD>(nBytes));
}

} // namespace ATL
