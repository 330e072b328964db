// Registry fixtures that restore what they change, and the export of key trees as text for comparison.
#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// A copy of a key tree: values and subkeys.
struct CRegistrySnapshot
{
    struct Value
    {
        DWORD type = REG_NONE;
        std::vector<BYTE> bytes;
    };
    std::map<std::wstring, Value> values;
    std::map<std::wstring, CRegistrySnapshot> keys;
};

/// One value that a test changes. The destructor restores it and removes the keys that had to be created for
/// it. Failures throw std::runtime_error, except in the destructor.
class CRegistryValue
{
public:
    /// `key` is the path under `root`. Changes nothing yet.
    CRegistryValue(HKEY root, std::wstring key, std::wstring name);
    ~CRegistryValue();
    CRegistryValue(const CRegistryValue&) = delete;
    CRegistryValue& operator=(const CRegistryValue&) = delete;

    void SetDword(DWORD value);
    void SetString(const std::wstring& value);
    void SetBytes(const std::vector<BYTE>& bytes, DWORD type = REG_BINARY);
    /// Removes the value if it exists.
    void Remove();

private:
    HKEY m_root;
    std::wstring m_key;
    std::wstring m_name;
    std::optional<CRegistrySnapshot::Value> m_before;
    /// The topmost key that did not exist before; empty if all existed.
    std::wstring m_missingKey;
};

/// Restores a key tree at destruction as it was at construction.
class CRegistryTreeGuard
{
public:
    CRegistryTreeGuard(HKEY root, std::wstring key);
    ~CRegistryTreeGuard();
    CRegistryTreeGuard(const CRegistryTreeGuard&) = delete;
    CRegistryTreeGuard& operator=(const CRegistryTreeGuard&) = delete;

    /// Removes the tree until the destructor restores it.
    void Remove();

private:
    HKEY m_root;
    std::wstring m_key;
    std::optional<CRegistrySnapshot> m_before;
};

/// The tree under the key, or nothing if the key does not exist.
std::optional<CRegistrySnapshot> TakeRegistrySnapshot(HKEY root, const std::wstring& key);

/// The tree as text, one line for each key and value, sorted: "[key]", "name = REG_SZ
/// "text"", "name = REG_DWORD 0x00000003", "name = hex(3) 01 02"; the default value's name is "@". "(no key)"
/// if the key is missing.
std::string ExportRegistryKey(HKEY root, const std::wstring& key);

bool RegistryKeyExists(HKEY root, const std::wstring& key);
/// A string value (REG_SZ or REG_EXPAND_SZ, not expanded); absent if missing or of another type.
std::optional<std::wstring> RegistryString(HKEY root, const std::wstring& key, const std::wstring& name);
std::optional<DWORD> RegistryDword(HKEY root, const std::wstring& key, const std::wstring& name);
/// Removes a key with its subkeys. A missing key is no error.
void DeleteRegistryKey(HKEY root, const std::wstring& key);

} // namespace orva::test
