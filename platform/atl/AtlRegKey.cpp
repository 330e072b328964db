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

LONG CRegKey::QueryDWORDValue(LPCTSTR pszValueName, DWORD& dwValue) noexcept
{
    DWORD type = 0;
    DWORD value = 0;
    DWORD size = sizeof(value);
    const LONG result =
        RegQueryValueExW(m_hKey, pszValueName, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
    // A value of another type may be longer; that it is of another type is what matters.
    if (result == ERROR_MORE_DATA ||
        (result == ERROR_SUCCESS && (type != REG_DWORD || size != sizeof(value))))
    {
        return ERROR_INVALID_DATA;
    }
    if (result == ERROR_SUCCESS)
    {
        dwValue = value;
    }
    return result;
}

LONG CRegKey::QueryStringValue(LPCTSTR pszValueName, LPTSTR pszValue, ULONG* pnChars) noexcept
{
    if (pnChars == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    DWORD type = 0;
    DWORD size = *pnChars * sizeof(WCHAR);
    const LONG result =
        RegQueryValueExW(m_hKey, pszValueName, nullptr, &type, reinterpret_cast<BYTE*>(pszValue), &size);
    if (result != ERROR_SUCCESS && result != ERROR_MORE_DATA)
    {
        *pnChars = 0;
        return result;
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ)
    {
        *pnChars = 0;
        return ERROR_INVALID_DATA;
    }
    const ULONG capacity = *pnChars;
    ULONG characters = size / ULONG{sizeof(WCHAR)};
    if (pszValue != nullptr && result == ERROR_SUCCESS)
    {
        // The registry does not promise a terminating zero.
        if (characters == 0 || pszValue[characters - 1] != L'\0')
        {
            if (characters >= capacity)
            {
                *pnChars = characters + 1;
                return ERROR_MORE_DATA;
            }
            pszValue[characters++] = L'\0';
        }
    }
    *pnChars = characters;
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

LONG CRegKey::DeleteSubKey(LPCTSTR lpszSubKey) noexcept
{
    return RegDeleteKeyW(m_hKey, lpszSubKey);
}

LONG CRegKey::RecurseDeleteKey(LPCTSTR lpszKey) noexcept
{
    // An empty name would mean the contents of this key itself.
    if (lpszKey == nullptr || *lpszKey == L'\0')
    {
        return ERROR_INVALID_PARAMETER;
    }
    return RegDeleteTreeW(m_hKey, lpszKey);
}

LONG CRegKey::SetBytes(LPCTSTR pszValueName, DWORD dwType, const void* pValue, std::size_t nBytes) noexcept
{
    return RegSetValueExW(m_hKey, pszValueName, 0, dwType, static_cast<const BYTE*>(pValue),
                          static_cast<DWORD>(nBytes));
}

} // namespace ATL
