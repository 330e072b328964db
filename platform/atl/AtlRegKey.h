// Registry keys that close themselves (part of <atlbase.h>, which says what differs).
#pragma once

#include "platform/atl/atlexcept.h"

#include <cstddef>

namespace ATL
{

/// Owns an open registry key. Every member returns a Win32 error code.
class CRegKey
{
public:
    CRegKey() noexcept = default;
    explicit CRegKey(HKEY hKey) noexcept : m_hKey(hKey) {}
    // NOLINTNEXTLINE(cert-oop58-cpp): the original, too, takes the key over from what it copies
    CRegKey(CRegKey& key) noexcept : m_hKey(key.Detach()) {}
    CRegKey(CRegKey&& key) noexcept : m_hKey(key.Detach()) {}
    ~CRegKey() { Close(); }
    CRegKey& operator=(CRegKey& key) noexcept
    {
        if (this != &key)
        {
            Close();
            // NOLINTNEXTLINE(cert-oop58-cpp): the original, too, takes the key over from what it copies
            Attach(key.Detach());
        }
        return *this;
    }

    operator HKEY() const noexcept { return m_hKey; }
    HKEY Detach() noexcept
    {
        HKEY hKey = m_hKey;
        m_hKey = nullptr;
        return hKey;
    }
    void Attach(HKEY hKey) noexcept { m_hKey = hKey; }

    LONG Create(HKEY hKeyParent, LPCTSTR lpszKeyName, LPTSTR lpszClass = REG_NONE,
                DWORD dwOptions = REG_OPTION_NON_VOLATILE, REGSAM samDesired = KEY_READ | KEY_WRITE,
                LPSECURITY_ATTRIBUTES lpSecAttr = nullptr, LPDWORD lpdwDisposition = nullptr) noexcept;
    LONG Open(HKEY hKeyParent, LPCTSTR lpszKeyName, REGSAM samDesired = KEY_READ | KEY_WRITE) noexcept;
    LONG Close() noexcept;

    LONG SetDWORDValue(LPCTSTR pszValueName, DWORD dwValue) noexcept;
    LONG SetStringValue(LPCTSTR pszValueName, LPCTSTR pszValue, DWORD dwType = REG_SZ) noexcept;
    LONG SetBinaryValue(LPCTSTR pszValueName, const void* pValue, ULONG nBytes) noexcept;
    /// pszValue ends with two zero characters.
    LONG SetMultiStringValue(LPCTSTR pszValueName, LPCTSTR pszValue) noexcept;
    LONG DeleteValue(LPCTSTR lpszValue) noexcept;

    HKEY m_hKey = nullptr;

private:
    LONG SetBytes(LPCTSTR pszValueName, DWORD dwType, const void* pValue, std::size_t nBytes) noexcept;
};

} // namespace ATL
