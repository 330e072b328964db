#include "support/RegistryUtilities.h"

#include <atlbase.h>

namespace
{
constexpr std::int32_t kUnreadable = -1;
}

std::int32_t ReadRegistryDword(const std::wstring& key, const std::wstring& name)
{
    const std::int32_t value = ReadRegistryDwordFromHive(HKEY_CURRENT_USER, key, name);
    return value != kUnreadable ? value : ReadRegistryDwordFromHive(HKEY_LOCAL_MACHINE, key, name);
}

std::int32_t ReadRegistryDwordFromHive(HKEY hive, const std::wstring& key, const std::wstring& name)
{
    CRegKey opened;
    if (opened.Open(hive, key.c_str(), KEY_READ) != ERROR_SUCCESS)
    {
        return kUnreadable;
    }

    // Not by CRegKey's query, which wants the value to be a REG_DWORD.
    std::int32_t value = 0;
    DWORD size = sizeof(value);
    const LSTATUS result = RegQueryValueExW(opened.m_hKey, name.c_str(), nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(&value), &size);
    return result == ERROR_SUCCESS ? value : kUnreadable;
}
