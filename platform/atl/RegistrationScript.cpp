#include "platform/atl/RegistrationScript.h"

#include <algorithm>

namespace ATL
{

namespace
{

struct HiveName
{
    std::wstring_view name;
    RegistrationHive hive;
};

constexpr HiveName kHiveNames[] = {
    {L"HKCR", RegistrationHive::ClassesRoot},
    {L"HKEY_CLASSES_ROOT", RegistrationHive::ClassesRoot},
    {L"HKCU", RegistrationHive::CurrentUser},
    {L"HKEY_CURRENT_USER", RegistrationHive::CurrentUser},
    {L"HKLM", RegistrationHive::LocalMachine},
    {L"HKEY_LOCAL_MACHINE", RegistrationHive::LocalMachine},
    {L"HKU", RegistrationHive::Users},
    {L"HKEY_USERS", RegistrationHive::Users},
    {L"HKPD", RegistrationHive::PerformanceData},
    {L"HKEY_PERFORMANCE_DATA", RegistrationHive::PerformanceData},
    {L"HKDD", RegistrationHive::DynData},
    {L"HKEY_DYN_DATA", RegistrationHive::DynData},
    {L"HKCC", RegistrationHive::CurrentConfig},
    {L"HKEY_CURRENT_CONFIG", RegistrationHive::CurrentConfig},
};

class ScriptReader
{
public:
    ScriptReader(std::wstring_view text, const CRegistrationReplacements& replacements)
        : m_words(text, replacements)
    {
    }

    CRegistrationScript Read()
    {
        Advance();
        while (!m_result.error && m_word.kind != CRegistrationWord::Kind::End)
        {
            ReadHive();
        }
        if (m_result.error)
        {
            m_result.steps.clear();
        }
        return std::move(m_result);
    }

private:
    // The first error counts; after it there are no more words.
    void Fail(const char* error)
    {
        if (!m_result.error)
        {
            m_result.error = error;
            m_result.errorOffset = m_word.offset;
        }
        m_word = {};
    }

    void Advance()
    {
        m_word = {};
        if (m_result.error)
        {
            return;
        }
        if (const char* error = m_words.Next(m_word))
        {
            Fail(error);
        }
    }

    void Add(CRegistrationStep step) { m_result.steps.push_back(std::move(step)); }

    void ReadHive()
    {
        const auto* known = std::ranges::find_if(kHiveNames, [this](const HiveName& candidate) {
            return EqualRegistrationNames(m_word.text, candidate.name);
        });
        if (known == std::end(kHiveNames))
        {
            return Fail("a root key is expected here");
        }
        CRegistrationStep step;
        step.kind = CRegistrationStep::Kind::EnterHive;
        step.hive = known->hive;
        Add(std::move(step));
        Advance();
        if (!m_word.IsBare(L"{"))
        {
            return Fail("an opening brace is expected after a root key");
        }
        Advance();

        // Without recursion: the depth of a text must not decide about the stack.
        std::size_t depth = 0;
        while (!m_result.error)
        {
            if (m_word.kind == CRegistrationWord::Kind::End)
            {
                return Fail("a closing brace is missing");
            }
            if (!m_word.IsBare(L"}"))
            {
                ReadItem(depth);
                continue;
            }
            Add({});
            Advance();
            if (depth == 0)
            {
                return;
            }
            --depth;
        }
    }

    // Reads one line of a block. A key that opens a block of its own raises depth.
    void ReadItem(std::size_t& depth)
    {
        if (m_word.IsBare(L"Delete"))
        {
            return ReadDelete();
        }

        CRegistrationStep step;
        step.kind = CRegistrationStep::Kind::EnterKey;
        for (;; Advance())
        {
            if (m_word.IsBare(L"ForceRemove"))
            {
                step.forceRemove = true;
            }
            else if (m_word.IsBare(L"NoRemove"))
            {
                step.noRemove = true;
            }
            else
            {
                break;
            }
        }
        if (m_word.IsBare(L"val"))
        {
            return ReadValue(std::move(step));
        }
        if (!ReadKeyName(step.name))
        {
            return;
        }
        Add(std::move(step));

        if (m_word.IsBare(L"="))
        {
            CRegistrationStep value;
            value.kind = CRegistrationStep::Kind::SetValue;
            ReadData(std::move(value));
        }
        if (m_word.IsBare(L"{"))
        {
            if (++depth > kMaxRegistrationDepth)
            {
                return Fail("keys nest too deep");
            }
            Advance();
            return;
        }
        Add({});
    }

    bool ReadKeyName(std::wstring& name)
    {
        if (!m_word.IsName())
        {
            Fail("a key name is expected here");
            return false;
        }
        if (m_word.text.empty() || m_word.text.find(L'\\') != std::wstring::npos)
        {
            Fail("a key name must not be empty and must not hold a backslash");
            return false;
        }
        if (m_word.text.find(L'\0') != std::wstring::npos)
        {
            Fail("a key name must not hold a zero character");
            return false;
        }
        name = std::move(m_word.text);
        Advance();
        return true;
    }

    void ReadDelete()
    {
        CRegistrationStep step;
        step.kind = CRegistrationStep::Kind::DeleteKey;
        Advance();
        if (ReadKeyName(step.name))
        {
            Add(std::move(step));
        }
    }

    void ReadValue(CRegistrationStep step)
    {
        if (step.forceRemove)
        {
            return Fail("ForceRemove is for keys");
        }
        step.kind = CRegistrationStep::Kind::SetValue;
        Advance();
        if (!m_word.IsName())
        {
            return Fail("a value name is expected here");
        }
        step.name = std::move(m_word.text);
        Advance();
        if (!m_word.IsBare(L"="))
        {
            return Fail("an equals sign is expected after a value name");
        }
        ReadData(std::move(step));
    }

    // Reads from the equals sign to the end of the data.
    void ReadData(CRegistrationStep step)
    {
        Advance();
        const std::wstring type = m_word.kind == CRegistrationWord::Kind::Bare ? m_word.text : std::wstring();
        const bool isKnown = EqualRegistrationNames(type, L"s") || EqualRegistrationNames(type, L"d") ||
                             EqualRegistrationNames(type, L"b") || EqualRegistrationNames(type, L"m");
        if (!isKnown)
        {
            return Fail("one of the types s, d, b and m is expected here");
        }
        Advance();
        if (!m_word.IsName())
        {
            return Fail("the data of a value is expected here");
        }
        switch (ToLowerAsciiLetter(type.front()))
        {
        case L's':
            step.data = std::move(m_word.text);
            break;
        case L'd': {
            std::uint32_t value = 0;
            if (!ParseRegistrationDword(m_word.text, value))
            {
                return Fail("this is no number of 32 bits");
            }
            step.data = value;
            break;
        }
        case L'b': {
            std::vector<std::uint8_t> bytes;
            if (!ParseRegistrationBinary(m_word.text, bytes))
            {
                return Fail("binary data are pairs of hexadecimal digits");
            }
            step.data = std::move(bytes);
            break;
        }
        default:
            step.data = ParseRegistrationMultiString(m_word.text);
            break;
        }
        Add(std::move(step));
        Advance();
    }

    CRegistrationWords m_words;
    CRegistrationWord m_word;
    CRegistrationScript m_result;
};

} // namespace

CRegistrationScript ParseRegistrationScript(std::wstring_view text,
                                            const CRegistrationReplacements& replacements)
{
    return ScriptReader(text, replacements).Read();
}

} // namespace ATL
