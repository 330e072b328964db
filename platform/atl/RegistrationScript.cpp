#include "platform/atl/RegistrationScript.h"

#include <algorithm>

namespace ATL
{

namespace
{

bool EqualNoCase(std::wstring_view left, std::wstring_view right)
{
    return std::ranges::equal(left, right, {}, ToLowerAsciiLetter, ToLowerAsciiLetter);
}

constexpr bool IsBlank(wchar_t c)
{
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

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

struct Token
{
    enum class Kind
    {
        End,
        Bare,   // a word without quotes: keyword, brace, equals sign or name
        Quoted, // a word in apostrophes: always a name or a text
    };

    Kind kind = Kind::End;
    std::wstring text;
    std::size_t offset = 0;
    // What a replacement brings is never a keyword or a brace.
    bool isReplaced = false;

    bool IsBare(std::wstring_view word) const
    {
        return kind == Kind::Bare && !isReplaced && EqualNoCase(text, word);
    }
    bool IsPunctuation() const { return IsBare(L"{") || IsBare(L"}") || IsBare(L"="); }
    bool IsName() const { return kind != Kind::End && !IsPunctuation(); }
};

class ScriptReader
{
public:
    ScriptReader(std::wstring_view text, const CRegistrationReplacements& replacements)
        : m_text(text.substr(0, text.find(L'\0'))), m_replacements(replacements)
    {
    }

    CRegistrationScript Read()
    {
        Advance();
        while (!m_result.error && m_token.kind != Token::Kind::End)
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
    void Fail(const char* error, std::size_t offset)
    {
        if (!m_result.error)
        {
            m_result.error = error;
            m_result.errorOffset = offset;
        }
        m_token = {};
    }
    void Fail(const char* error) { Fail(error, m_token.offset); }

    // Reads the next word into m_token; after an error there are no more.
    void Advance()
    {
        m_token = {};
        if (m_result.error)
        {
            return;
        }
        while (m_position < m_text.size() && IsBlank(m_text[m_position]))
        {
            ++m_position;
        }
        m_token.offset = m_position;
        if (m_position == m_text.size())
        {
            return;
        }
        if (m_text[m_position] == L'\'')
        {
            ReadQuoted();
        }
        else
        {
            ReadBare();
        }
    }

    void ReadBare()
    {
        m_token.kind = Token::Kind::Bare;
        while (!m_result.error && m_position < m_text.size() && !IsBlank(m_text[m_position]))
        {
            ReadCharacter(true);
        }
    }

    void ReadQuoted()
    {
        const std::size_t start = m_position++;
        m_token.kind = Token::Kind::Quoted;
        while (!m_result.error)
        {
            if (m_position == m_text.size())
            {
                return Fail("a text lacks its closing apostrophe", start);
            }
            if (m_text[m_position] != L'\'')
            {
                ReadCharacter(false);
                continue;
            }
            ++m_position;
            if (m_position == m_text.size() || m_text[m_position] != L'\'')
            {
                return;
            }
            // A doubled apostrophe stands for one.
            m_token.text += m_text[m_position++];
        }
    }

    // Adds one character, or what a replacement stands for, to the word.
    void ReadCharacter(bool isBare)
    {
        if (m_text[m_position] != L'%')
        {
            m_token.text += m_text[m_position++];
            return;
        }
        const std::size_t start = m_position++;
        const std::size_t end = m_text.find(L'%', m_position);
        if (end == std::wstring_view::npos)
        {
            return Fail("a percent sign lacks its partner", start);
        }
        const std::wstring_view name = m_text.substr(m_position, end - m_position);
        if (isBare && std::ranges::any_of(name, IsBlank))
        {
            return Fail("a percent sign lacks its partner", start);
        }
        m_position = end + 1;
        if (name.empty())
        {
            m_token.text += L'%';
            return;
        }
        const std::wstring* replacement = m_replacements.Find(name);
        if (replacement == nullptr)
        {
            return Fail("there is no replacement of this name", start);
        }
        m_token.text += *replacement;
        m_token.isReplaced = true;
    }

    void Add(CRegistrationStep step) { m_result.steps.push_back(std::move(step)); }

    void ReadHive()
    {
        const auto* known = std::ranges::find_if(kHiveNames, [this](const HiveName& candidate) {
            return EqualNoCase(m_token.text, candidate.name);
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
        if (!m_token.IsBare(L"{"))
        {
            return Fail("an opening brace is expected after a root key");
        }
        Advance();

        // Without recursion: the depth of a text must not decide about the stack.
        std::size_t depth = 0;
        while (!m_result.error)
        {
            if (m_token.kind == Token::Kind::End)
            {
                return Fail("a closing brace is missing");
            }
            if (!m_token.IsBare(L"}"))
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
        if (m_token.IsBare(L"Delete"))
        {
            return ReadDelete();
        }

        CRegistrationStep step;
        step.kind = CRegistrationStep::Kind::EnterKey;
        for (;; Advance())
        {
            if (m_token.IsBare(L"ForceRemove"))
            {
                step.forceRemove = true;
            }
            else if (m_token.IsBare(L"NoRemove"))
            {
                step.noRemove = true;
            }
            else
            {
                break;
            }
        }
        if (m_token.IsBare(L"val"))
        {
            return ReadValue(std::move(step));
        }
        if (!ReadKeyName(step.name))
        {
            return;
        }
        Add(std::move(step));

        if (m_token.IsBare(L"="))
        {
            CRegistrationStep value;
            value.kind = CRegistrationStep::Kind::SetValue;
            ReadData(std::move(value));
        }
        if (m_token.IsBare(L"{"))
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
        if (!m_token.IsName())
        {
            Fail("a key name is expected here");
            return false;
        }
        if (m_token.text.empty() || m_token.text.find(L'\\') != std::wstring::npos)
        {
            Fail("a key name must not be empty and must not hold a backslash");
            return false;
        }
        if (m_token.text.find(L'\0') != std::wstring::npos)
        {
            Fail("a key name must not hold a zero character");
            return false;
        }
        name = std::move(m_token.text);
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
        if (!m_token.IsName())
        {
            return Fail("a value name is expected here");
        }
        step.name = std::move(m_token.text);
        Advance();
        if (!m_token.IsBare(L"="))
        {
            return Fail("an equals sign is expected after a value name");
        }
        ReadData(std::move(step));
    }

    // Reads from the equals sign to the end of the data.
    void ReadData(CRegistrationStep step)
    {
        Advance();
        const std::wstring type = m_token.kind == Token::Kind::Bare ? m_token.text : std::wstring();
        const bool isKnown = EqualNoCase(type, L"s") || EqualNoCase(type, L"d") || EqualNoCase(type, L"b") ||
                             EqualNoCase(type, L"m");
        if (!isKnown)
        {
            return Fail("one of the types s, d, b and m is expected here");
        }
        Advance();
        if (!m_token.IsName())
        {
            return Fail("the data of a value is expected here");
        }
        switch (ToLowerAsciiLetter(type.front()))
        {
        case L's':
            step.data = std::move(m_token.text);
            break;
        case L'd': {
            std::uint32_t value = 0;
            if (!ParseRegistrationDword(m_token.text, value))
            {
                return Fail("this is no number of 32 bits");
            }
            step.data = value;
            break;
        }
        case L'b': {
            std::vector<std::uint8_t> bytes;
            if (!ParseRegistrationBinary(m_token.text, bytes))
            {
                return Fail("binary data are pairs of hexadecimal digits");
            }
            step.data = std::move(bytes);
            break;
        }
        default:
            step.data = ParseRegistrationMultiString(m_token.text);
            break;
        }
        Add(std::move(step));
        Advance();
    }

    std::wstring_view m_text;
    const CRegistrationReplacements& m_replacements;
    std::size_t m_position = 0;
    Token m_token;
    CRegistrationScript m_result;
};

} // namespace

void CRegistrationReplacements::Set(std::wstring_view name, std::wstring_view text)
{
    for (auto& [known, value] : m_entries)
    {
        if (EqualNoCase(known, name))
        {
            value = text;
            return;
        }
    }
    m_entries.emplace_back(name, text);
}

void CRegistrationReplacements::Clear()
{
    m_entries.clear();
}

const std::wstring* CRegistrationReplacements::Find(std::wstring_view name) const
{
    for (const auto& [known, value] : m_entries)
    {
        if (EqualNoCase(known, name))
        {
            return &value;
        }
    }
    return nullptr;
}

CRegistrationScript ParseRegistrationScript(std::wstring_view text,
                                            const CRegistrationReplacements& replacements)
{
    return ScriptReader(text, replacements).Read();
}

} // namespace ATL
