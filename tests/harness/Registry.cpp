#include "harness/Registry.h"

#include "harness/Text.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace orva::test
{

namespace
{

void Check(LSTATUS status, const char* what, const std::wstring& name)
{
    if (status != ERROR_SUCCESS)
    {
        throw std::runtime_error(std::string("cannot ") + what + " " + Utf8(name) + ": " +
                                 std::to_string(status));
    }
}

struct KeyCloser
{
    using pointer = HKEY;
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using UniqueKey = std::unique_ptr<HKEY, KeyCloser>;

UniqueKey OpenKey(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key);
    return UniqueKey(key);
}

std::optional<CRegistrySnapshot::Value> ReadValue(HKEY key, const std::wstring& name)
{
    CRegistrySnapshot::Value value;
    DWORD size = 0;
    if (RegQueryValueExW(key, name.c_str(), nullptr, &value.type, nullptr, &size) != ERROR_SUCCESS)
    {
        return std::nullopt;
    }
    value.bytes.resize(size);
    if (RegQueryValueExW(key, name.c_str(), nullptr, &value.type, value.bytes.data(), &size) != ERROR_SUCCESS)
    {
        return std::nullopt;
    }
    value.bytes.resize(size);
    return value;
}

void WriteValue(HKEY root, const std::wstring& key, const std::wstring& name,
                const CRegistrySnapshot::Value& value)
{
    Check(RegSetKeyValueW(root, key.c_str(), name.c_str(), value.type, value.bytes.data(),
                          static_cast<DWORD>(value.bytes.size())),
          "set the value", name);
}

// The names that `enumerate` gives for the numbers from 0.
template <typename Enumerate> std::vector<std::wstring> Names(Enumerate enumerate)
{
    // The longest name that the registry allows, and a terminator.
    constexpr DWORD kNameSize = 16'384;
    std::vector<wchar_t> name(kNameSize);
    std::vector<std::wstring> names;
    DWORD length = kNameSize;
    while (enumerate(static_cast<DWORD>(names.size()), name.data(), &length) == ERROR_SUCCESS)
    {
        names.emplace_back(name.data(), length);
        length = kNameSize;
    }
    return names;
}

CRegistrySnapshot SnapshotOf(HKEY key)
{
    CRegistrySnapshot snapshot;
    for (const std::wstring& name : Names([=](DWORD index, wchar_t* text, DWORD* length) {
             return RegEnumValueW(key, index, text, length, nullptr, nullptr, nullptr, nullptr);
         }))
    {
        if (auto value = ReadValue(key, name))
        {
            snapshot.values.emplace(name, std::move(*value));
        }
    }
    for (const std::wstring& name : Names([=](DWORD index, wchar_t* text, DWORD* length) {
             return RegEnumKeyExW(key, index, text, length, nullptr, nullptr, nullptr, nullptr);
         }))
    {
        if (const UniqueKey sub = OpenKey(key, name))
        {
            snapshot.keys.emplace(name, SnapshotOf(sub.get()));
        }
    }
    return snapshot;
}

void Restore(HKEY root, const std::wstring& path, const CRegistrySnapshot& snapshot)
{
    HKEY key = nullptr;
    Check(RegCreateKeyW(root, path.c_str(), &key), "create the key", path);
    const UniqueKey created(key);
    for (const auto& [name, value] : snapshot.values)
    {
        WriteValue(root, path, name, value);
    }
    for (const auto& [name, sub] : snapshot.keys)
    {
        Restore(root, path + L"\\" + name, sub);
    }
}

// Carries out what a destructor must not let fail.
template <typename Act> void Report(Act act)
{
    try
    {
        act();
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
    }
}

std::string Describe(const CRegistrySnapshot::Value& value)
{
    char text[32];
    switch (value.type)
    {
    case REG_SZ:
    case REG_EXPAND_SZ: {
        std::wstring string(value.bytes.size() / sizeof(wchar_t), L'\0');
        std::memcpy(string.data(), value.bytes.data(), string.size() * sizeof(wchar_t));
        // One terminator belongs to the type; a missing or a second one must be visible.
        if (string.ends_with(L'\0'))
        {
            string.pop_back();
        }
        else
        {
            string += L"(not terminated)";
        }
        std::string result = value.type == REG_SZ ? "REG_SZ \"" : "REG_EXPAND_SZ \"";
        result += Utf8(string);
        return result + "\"";
    }
    case REG_DWORD:
        if (value.bytes.size() == sizeof(DWORD))
        {
            DWORD number;
            std::memcpy(&number, value.bytes.data(), sizeof number);
            std::snprintf(text, sizeof text, "REG_DWORD 0x%08lx", static_cast<unsigned long>(number));
            return text;
        }
        [[fallthrough]];
    default:
        std::snprintf(text, sizeof text, "hex(%lx)", static_cast<unsigned long>(value.type));
        std::string result = text;
        for (const BYTE byte : value.bytes)
        {
            std::snprintf(text, sizeof text, " %02x", byte);
            result += text;
        }
        return result;
    }
}

void Export(std::string& out, const std::wstring& path, const CRegistrySnapshot& snapshot)
{
    out += "[" + Utf8(path) + "]\n";
    for (const auto& [name, value] : snapshot.values)
    {
        out += (name.empty() ? "@" : Utf8(name)) + " = " + Describe(value) + "\n";
    }
    for (const auto& [name, sub] : snapshot.keys)
    {
        Export(out, path + L"\\" + name, sub);
    }
}

// The topmost missing key of the path; empty if none is missing.
std::wstring FirstMissingKey(HKEY root, const std::wstring& path)
{
    for (size_t end = path.find(L'\\');; end = path.find(L'\\', end + 1))
    {
        std::wstring part = path.substr(0, end);
        if (!OpenKey(root, part))
        {
            return part;
        }
        if (end == std::wstring::npos)
        {
            return {};
        }
    }
}

} // namespace

CRegistryValue::CRegistryValue(HKEY root, std::wstring key, std::wstring name)
    : m_root(root), m_key(std::move(key)), m_name(std::move(name)),
      m_missingKey(FirstMissingKey(m_root, m_key))
{
    if (const UniqueKey opened = OpenKey(m_root, m_key))
    {
        m_before = ReadValue(opened.get(), m_name);
    }
}

CRegistryValue::~CRegistryValue()
{
    if (m_before)
    {
        Report([this] { WriteValue(m_root, m_key, m_name, *m_before); });
        return;
    }
    Remove();
    if (!m_missingKey.empty())
    {
        DeleteRegistryKey(m_root, m_missingKey);
    }
}

void CRegistryValue::SetDword(DWORD value)
{
    std::vector<BYTE> bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    SetBytes(bytes, REG_DWORD);
}

void CRegistryValue::SetString(const std::wstring& value)
{
    std::vector<BYTE> bytes((value.size() + 1) * sizeof(wchar_t));
    std::memcpy(bytes.data(), value.c_str(), bytes.size());
    SetBytes(bytes, REG_SZ);
}

void CRegistryValue::SetBytes(const std::vector<BYTE>& bytes, DWORD type)
{
    WriteValue(m_root, m_key, m_name, {type, bytes});
}

void CRegistryValue::Remove()
{
    RegDeleteKeyValueW(m_root, m_key.c_str(), m_name.c_str());
}

CRegistryTreeGuard::CRegistryTreeGuard(HKEY root, std::wstring key)
    : m_root(root), m_key(std::move(key)), m_before(TakeRegistrySnapshot(m_root, m_key))
{
}

CRegistryTreeGuard::~CRegistryTreeGuard()
{
    Remove();
    if (m_before)
    {
        Report([this] { Restore(m_root, m_key, *m_before); });
    }
}

void CRegistryTreeGuard::Remove()
{
    DeleteRegistryKey(m_root, m_key);
}

std::optional<CRegistrySnapshot> TakeRegistrySnapshot(HKEY root, const std::wstring& key)
{
    if (const UniqueKey opened = OpenKey(root, key))
    {
        return SnapshotOf(opened.get());
    }
    return std::nullopt;
}

std::string ExportRegistryKey(HKEY root, const std::wstring& key)
{
    const auto snapshot = TakeRegistrySnapshot(root, key);
    if (!snapshot)
    {
        return "(no key)\n";
    }
    std::string text;
    Export(text, key, *snapshot);
    return text;
}

bool RegistryKeyExists(HKEY root, const std::wstring& key)
{
    return static_cast<bool>(OpenKey(root, key));
}

std::optional<std::wstring> RegistryString(HKEY root, const std::wstring& key, const std::wstring& name)
{
    const UniqueKey opened = OpenKey(root, key);
    const auto value = opened ? ReadValue(opened.get(), name) : std::nullopt;
    if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ))
    {
        return std::nullopt;
    }
    std::wstring text(value->bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), value->bytes.data(), text.size() * sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

std::optional<DWORD> RegistryDword(HKEY root, const std::wstring& key, const std::wstring& name)
{
    DWORD number = 0;
    DWORD size = sizeof number;
    const LSTATUS status =
        RegGetValueW(root, key.c_str(), name.c_str(), RRF_RT_REG_DWORD, nullptr, &number, &size);
    return status == ERROR_SUCCESS ? std::optional(number) : std::nullopt;
}

void DeleteRegistryKey(HKEY root, const std::wstring& key)
{
    RegDeleteTreeW(root, key.c_str());
}

} // namespace orva::test
