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

constexpr REGSAM kView = KEY_WOW64_64KEY;

struct KeyCloser
{
    using pointer = HKEY;
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using UniqueKey = std::unique_ptr<HKEY, KeyCloser>;

UniqueKey OpenKey(HKEY root, const std::wstring& path, REGSAM access = KEY_READ)
{
    HKEY key = nullptr;
    RegOpenKeyExW(root, path.c_str(), 0, access | kView, &key);
    return UniqueKey(key);
}

UniqueKey CreateKey(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    if (const LSTATUS error = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | kView,
                                              nullptr, &key, nullptr))
    {
        throw std::runtime_error("cannot create the key " + Utf8(path) + ": " + std::to_string(error));
    }
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

void WriteValue(HKEY key, const std::wstring& name, DWORD type, const std::vector<BYTE>& bytes)
{
    if (const LSTATUS error =
            RegSetValueExW(key, name.c_str(), 0, type, bytes.data(), static_cast<DWORD>(bytes.size())))
    {
        throw std::runtime_error("cannot set the value " + Utf8(name) + ": " + std::to_string(error));
    }
}

CRegistrySnapshot SnapshotOf(HKEY key)
{
    // The longest name that the registry allows, and a terminator.
    constexpr DWORD kNameSize = 16'384;
    std::vector<wchar_t> name(kNameSize);
    CRegistrySnapshot snapshot;
    for (DWORD i = 0;; ++i)
    {
        DWORD length = kNameSize;
        if (RegEnumValueW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        {
            break;
        }
        const std::wstring text(name.data(), length);
        if (auto value = ReadValue(key, text))
        {
            snapshot.values.emplace(text, std::move(*value));
        }
    }
    for (DWORD i = 0;; ++i)
    {
        DWORD length = kNameSize;
        if (RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        {
            break;
        }
        const std::wstring text(name.data(), length);
        if (const UniqueKey sub = OpenKey(key, text))
        {
            snapshot.keys.emplace(text, SnapshotOf(sub.get()));
        }
    }
    return snapshot;
}

void Restore(HKEY key, const CRegistrySnapshot& snapshot)
{
    for (const auto& [name, value] : snapshot.values)
    {
        WriteValue(key, name, value.type, value.bytes);
    }
    for (const auto& [name, sub] : snapshot.keys)
    {
        Restore(CreateKey(key, name).get(), sub);
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
        if (auto value = ReadValue(opened.get(), m_name))
        {
            m_existed = true;
            m_type = value->type;
            m_bytes = std::move(value->bytes);
        }
    }
}

CRegistryValue::~CRegistryValue()
{
    if (m_existed)
    {
        try
        {
            WriteValue(CreateKey(m_root, m_key).get(), m_name, m_type, m_bytes);
        }
        catch (const std::exception& error)
        {
            std::fprintf(stderr, "%s\n", error.what());
        }
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
    WriteValue(CreateKey(m_root, m_key).get(), m_name, type, bytes);
}

void CRegistryValue::Remove()
{
    if (const UniqueKey key = OpenKey(m_root, m_key, KEY_SET_VALUE))
    {
        RegDeleteValueW(key.get(), m_name.c_str());
    }
}

CRegistryTreeGuard::CRegistryTreeGuard(HKEY root, std::wstring key)
    : m_root(root), m_key(std::move(key)), m_before(TakeRegistrySnapshot(m_root, m_key))
{
}

CRegistryTreeGuard::~CRegistryTreeGuard()
{
    try
    {
        DeleteRegistryKey(m_root, m_key);
        if (m_before)
        {
            Restore(CreateKey(m_root, m_key).get(), *m_before);
        }
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
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
    const UniqueKey opened = OpenKey(root, key);
    const auto value = opened ? ReadValue(opened.get(), name) : std::nullopt;
    DWORD number = 0;
    if (!value || value->type != REG_DWORD || value->bytes.size() != sizeof number)
    {
        return std::nullopt;
    }
    std::memcpy(&number, value->bytes.data(), sizeof number);
    return number;
}

void DeleteRegistryKey(HKEY root, const std::wstring& key)
{
    if (OpenKey(root, key))
    {
        RegDeleteTreeW(root, key.c_str());
    }
}

} // namespace orva::test
