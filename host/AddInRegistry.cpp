#include "host/AddInRegistry.h"

#include <windows.h>

#include <algorithm>

namespace orva::host
{
namespace
{

constexpr wchar_t kAddInsKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins";
constexpr DWORD kLongestKeyName = 256;

class CKey
{
public:
    CKey(HKEY parent, const wchar_t* name)
    {
        if (RegOpenKeyExW(parent, name, 0, KEY_READ, &m_key) != ERROR_SUCCESS)
        {
            m_key = nullptr;
        }
    }
    ~CKey()
    {
        if (m_key != nullptr)
        {
            RegCloseKey(m_key);
        }
    }
    CKey(const CKey&) = delete;
    CKey& operator=(const CKey&) = delete;

    HKEY Get() const { return m_key; }

    std::wstring Text(const wchar_t* name) const
    {
        DWORD size = 0;
        if (RegGetValueW(m_key, nullptr, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS)
        {
            return {};
        }
        std::wstring text(size / sizeof(wchar_t), L'\0');
        if (RegGetValueW(m_key, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
        {
            return {};
        }
        text.resize(wcslen(text.c_str()));
        return text;
    }

    DWORD Number(const wchar_t* name) const
    {
        DWORD value = 0;
        DWORD size = sizeof(value);
        RegGetValueW(m_key, nullptr, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
        return value;
    }

private:
    HKEY m_key = nullptr;
};

void ReadRoot(HKEY root, std::vector<AddInEntry>& entries)
{
    const CKey addIns(root, kAddInsKey);
    if (addIns.Get() == nullptr)
    {
        return;
    }
    wchar_t name[kLongestKeyName];
    DWORD length = kLongestKeyName;
    for (DWORD index = 0; RegEnumKeyExW(addIns.Get(), index, name, &length, nullptr, nullptr, nullptr,
                                        nullptr) == ERROR_SUCCESS;
         ++index, length = kLongestKeyName)
    {
        const bool known = std::any_of(entries.begin(), entries.end(), [&](const AddInEntry& entry) {
            return _wcsicmp(entry.progId.c_str(), name) == 0;
        });
        const CKey key(addIns.Get(), name);
        if (!known && key.Get() != nullptr)
        {
            entries.push_back(
                {name, key.Text(L"FriendlyName"), key.Text(L"Description"), key.Number(L"LoadBehavior")});
        }
    }
}

} // namespace

std::vector<AddInEntry> ReadAddIns()
{
    std::vector<AddInEntry> entries;
    ReadRoot(HKEY_CURRENT_USER, entries);
    ReadRoot(HKEY_LOCAL_MACHINE, entries);
    return entries;
}

} // namespace orva::host
