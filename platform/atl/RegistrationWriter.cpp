#include "platform/atl/RegistrationWriter.h"

#include "platform/atl/AtlRegKey.h"

#include <algorithm>

namespace ATL
{

namespace
{

constexpr const wchar_t* kUserClasses = L"Software\\Classes";

// Keys that the whole system shares. They are never deleted with everything in them, whatever a script says.
constexpr const wchar_t* kSharedKeys[] = {
    L"AppID",    L"CLSID",    L"Component Categories",
    L"FileType", L"Hardware", L"Interface",
    L"Mime",     L"SAM",      L"SECURITY",
    L"Software", L"SYSTEM",   L"TypeLib",
};

bool IsSharedKey(const std::wstring& name)
{
    return std::ranges::any_of(kSharedKeys, [&name](const wchar_t* shared) {
        return CompareStringOrdinal(name.c_str(), static_cast<int>(name.size()), shared, -1, TRUE) ==
               CSTR_EQUAL;
    });
}

HKEY PredefinedKey(RegistrationHive hive)
{
    switch (hive)
    {
    case RegistrationHive::ClassesRoot:
        return HKEY_CLASSES_ROOT;
    case RegistrationHive::CurrentUser:
        return HKEY_CURRENT_USER;
    case RegistrationHive::LocalMachine:
        return HKEY_LOCAL_MACHINE;
    case RegistrationHive::Users:
        return HKEY_USERS;
    case RegistrationHive::PerformanceData:
        return HKEY_PERFORMANCE_DATA;
    case RegistrationHive::DynData:
        return HKEY_DYN_DATA;
    case RegistrationHive::CurrentConfig:
        break;
    }
    return HKEY_CURRENT_CONFIG;
}

// A key whose block is being carried out.
struct OpenKey
{
    CRegKey owned;
    // Null while a key is removed that is not there.
    HKEY key = nullptr;
    const CRegistrationStep* step = nullptr;
};

// Opens the parent anew, with the rights that RegDeleteTreeW asks for.
LONG DeleteTree(HKEY parent, const std::wstring& name)
{
    CRegKey opened;
    LONG result =
        opened.Open(parent, nullptr, DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE);
    if (result == ERROR_SUCCESS)
    {
        result = RegDeleteTreeW(opened, name.c_str());
    }
    return result == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : result;
}

LONG SetValue(HKEY key, const CRegistrationStep& step)
{
    CRegKey target(key);
    LONG result;
    if (const auto* text = std::get_if<std::wstring>(&step.data))
    {
        result = target.SetStringValue(step.name.c_str(), text->c_str());
    }
    else if (const auto* number = std::get_if<std::uint32_t>(&step.data))
    {
        result = target.SetDWORDValue(step.name.c_str(), *number);
    }
    else if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&step.data))
    {
        result = target.SetBinaryValue(step.name.c_str(), bytes->data(), static_cast<ULONG>(bytes->size()));
    }
    else
    {
        std::wstring joined;
        for (const std::wstring& part : std::get<std::vector<std::wstring>>(step.data))
        {
            joined.append(part).push_back(L'\0');
        }
        result = target.SetMultiStringValue(step.name.c_str(), joined.c_str());
    }
    target.Detach();
    return result;
}

// Opens a key for writing, makes it if it is not there, and is content with reading where writing is refused:
// what lies below may still be writable.
LONG OpenOrCreate(CRegKey& key, HKEY parent, const wchar_t* name)
{
    LONG result = key.Open(parent, name, KEY_READ | KEY_WRITE);
    if (result == ERROR_ACCESS_DENIED)
    {
        result = key.Open(parent, name, KEY_READ);
    }
    if (result == ERROR_FILE_NOT_FOUND)
    {
        result = key.Create(parent, name);
    }
    return result;
}

class Writer
{
public:
    explicit Writer(bool perUser) : m_perUser(perUser) {}

    LONG Do(const CRegistrationStep& step)
    {
        using Kind = CRegistrationStep::Kind;
        switch (step.kind)
        {
        case Kind::EnterHive:
            return EnterHive(step);
        case Kind::EnterKey:
            return EnterKey(step);
        case Kind::Leave:
            m_open.pop_back();
            return ERROR_SUCCESS;
        case Kind::SetValue:
            return SetValue(m_open.back().key, step);
        case Kind::DeleteKey:
            break;
        }
        return IsSharedKey(step.name) ? ERROR_SUCCESS : DeleteTree(m_open.back().key, step.name);
    }

private:
    LONG EnterHive(const CRegistrationStep& step)
    {
        OpenKey hive;
        hive.step = &step;
        hive.key = PredefinedKey(step.hive);
        if (m_perUser && step.hive == RegistrationHive::ClassesRoot)
        {
            const LONG result = OpenOrCreate(hive.owned, HKEY_CURRENT_USER, kUserClasses);
            if (result != ERROR_SUCCESS)
            {
                return result;
            }
            hive.key = hive.owned;
        }
        m_open.push_back(std::move(hive));
        return ERROR_SUCCESS;
    }

    LONG EnterKey(const CRegistrationStep& step)
    {
        HKEY parent = m_open.back().key;
        if (step.forceRemove && !IsSharedKey(step.name))
        {
            const LONG result = DeleteTree(parent, step.name);
            if (result != ERROR_SUCCESS)
            {
                return result;
            }
        }
        OpenKey entered;
        entered.step = &step;
        const LONG result = OpenOrCreate(entered.owned, parent, step.name.c_str());
        if (result != ERROR_SUCCESS)
        {
            return result;
        }
        entered.key = entered.owned;
        m_open.push_back(std::move(entered));
        return ERROR_SUCCESS;
    }

    bool m_perUser;
    std::vector<OpenKey> m_open;
};

class Remover
{
public:
    explicit Remover(bool perUser) : m_perUser(perUser) {}

    void Do(const CRegistrationStep& step)
    {
        using Kind = CRegistrationStep::Kind;
        switch (step.kind)
        {
        case Kind::EnterHive:
            return EnterHive(step);
        case Kind::EnterKey:
            return EnterKey(step);
        case Kind::Leave:
            return Leave();
        case Kind::SetValue:
            return DeleteValue(step);
        case Kind::DeleteKey:
            return;
        }
    }

    // Leaves the keys that are still open and gives the first failure.
    LONG Finish()
    {
        while (!m_open.empty())
        {
            Leave();
        }
        return m_firstFailure;
    }

private:
    void Note(LONG result)
    {
        if (result != ERROR_SUCCESS && result != ERROR_FILE_NOT_FOUND && m_firstFailure == ERROR_SUCCESS)
        {
            m_firstFailure = result;
        }
    }

    void EnterHive(const CRegistrationStep& step)
    {
        OpenKey hive;
        hive.step = &step;
        hive.key = PredefinedKey(step.hive);
        if (m_perUser && step.hive == RegistrationHive::ClassesRoot)
        {
            Note(hive.owned.Open(HKEY_CURRENT_USER, kUserClasses, KEY_READ));
            hive.key = hive.owned;
        }
        m_open.push_back(std::move(hive));
    }

    void EnterKey(const CRegistrationStep& step)
    {
        OpenKey entered;
        entered.step = &step;
        if (HKEY parent = m_open.back().key)
        {
            Note(entered.owned.Open(parent, step.name.c_str(), KEY_READ));
        }
        entered.key = entered.owned;
        m_open.push_back(std::move(entered));
    }

    void DeleteValue(const CRegistrationStep& step)
    {
        // A default value goes with its key or stays with it.
        HKEY key = m_open.back().key;
        if (key == nullptr || step.name.empty() || step.noRemove)
        {
            return;
        }
        CRegKey writable;
        LONG result = writable.Open(key, nullptr, KEY_SET_VALUE);
        if (result == ERROR_SUCCESS)
        {
            result = writable.DeleteValue(step.name.c_str());
        }
        Note(result);
    }

    void Leave()
    {
        OpenKey left = std::move(m_open.back());
        m_open.pop_back();
        const CRegistrationStep& step = *left.step;
        if (step.kind == CRegistrationStep::Kind::EnterHive || left.key == nullptr || step.noRemove)
        {
            return;
        }
        DWORD subkeys = 0;
        const LONG counted = RegQueryInfoKeyW(left.key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                                              nullptr, nullptr, nullptr, nullptr, nullptr);
        left.owned.Close();
        HKEY parent = m_open.back().key;
        if (step.forceRemove && !IsSharedKey(step.name))
        {
            Note(DeleteTree(parent, step.name));
        }
        else if (counted != ERROR_SUCCESS)
        {
            Note(counted);
        }
        else if (subkeys == 0)
        {
            Note(RegDeleteKeyW(parent, step.name.c_str()));
        }
    }

    bool m_perUser;
    LONG m_firstFailure = ERROR_SUCCESS;
    std::vector<OpenKey> m_open;
};

} // namespace

HRESULT WriteRegistration(std::span<const CRegistrationStep> steps, bool perUser)
{
    LONG result = ERROR_SUCCESS;
    std::size_t done = 0;
    {
        Writer writer(perUser);
        for (; done < steps.size(); ++done)
        {
            result = writer.Do(steps[done]);
            if (result != ERROR_SUCCESS)
            {
                break;
            }
        }
    }
    if (result == ERROR_SUCCESS)
    {
        return S_OK;
    }
    RemoveRegistration(steps.first(done), perUser);
    return HRESULT_FROM_WIN32(static_cast<DWORD>(result));
}

HRESULT RemoveRegistration(std::span<const CRegistrationStep> steps, bool perUser)
{
    Remover remover(perUser);
    for (const CRegistrationStep& step : steps)
    {
        remover.Do(step);
    }
    return HRESULT_FROM_WIN32(static_cast<DWORD>(remover.Finish()));
}

} // namespace ATL
