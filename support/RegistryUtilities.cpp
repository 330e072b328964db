#include "support/RegistryUtilities.h"

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
    HKEY opened = nullptr;
    if (RegOpenKeyExW(hive, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS)
    {
        return kUnreadable;
    }

    std::int32_t value = 0;
    DWORD size = sizeof(value);
    const LSTATUS result =
        RegQueryValueExW(opened, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size);
    RegCloseKey(opened);
    return result == ERROR_SUCCESS ? value : kUnreadable;
}
