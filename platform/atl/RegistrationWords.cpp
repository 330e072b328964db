#include "platform/atl/RegistrationWords.h"

#include "platform/atl/RegistrationData.h"

#include <algorithm>

namespace ATL
{

namespace
{

constexpr bool IsBlank(wchar_t c)
{
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

} // namespace

bool EqualRegistrationNames(std::wstring_view left, std::wstring_view right)
{
    return std::ranges::equal(left, right, {}, ToLowerAsciiLetter, ToLowerAsciiLetter);
}

void CRegistrationReplacements::Set(std::wstring_view name, std::wstring_view text)
{
    for (auto& [known, value] : m_entries)
    {
        if (EqualRegistrationNames(known, name))
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
        if (EqualRegistrationNames(known, name))
        {
            return &value;
        }
    }
    return nullptr;
}

bool CRegistrationWord::IsBare(std::wstring_view word) const
{
    return kind == Kind::Bare && !isReplaced && EqualRegistrationNames(text, word);
}

bool CRegistrationWord::IsName() const
{
    return kind != Kind::End && !IsBare(L"{") && !IsBare(L"}") && !IsBare(L"=");
}

CRegistrationWords::CRegistrationWords(std::wstring_view text, const CRegistrationReplacements& replacements)
    : m_text(text.substr(0, text.find(L'\0'))), m_replacements(replacements)
{
}

const char* CRegistrationWords::Next(CRegistrationWord& word)
{
    word = {};
    while (m_position < m_text.size() && IsBlank(m_text[m_position]))
    {
        ++m_position;
    }
    word.offset = m_position;
    if (m_position == m_text.size())
    {
        return nullptr;
    }
    return m_text[m_position] == L'\'' ? ReadQuoted(word) : ReadBare(word);
}

const char* CRegistrationWords::ReadBare(CRegistrationWord& word)
{
    word.kind = CRegistrationWord::Kind::Bare;
    const char* error = nullptr;
    while (!error && m_position < m_text.size() && !IsBlank(m_text[m_position]))
    {
        error = ReadCharacter(word);
    }
    return error;
}

const char* CRegistrationWords::ReadQuoted(CRegistrationWord& word)
{
    word.kind = CRegistrationWord::Kind::Quoted;
    ++m_position;
    while (m_position < m_text.size())
    {
        if (m_text[m_position] != L'\'')
        {
            if (const char* error = ReadCharacter(word))
            {
                return error;
            }
            continue;
        }
        ++m_position;
        if (m_position == m_text.size() || m_text[m_position] != L'\'')
        {
            return nullptr;
        }
        // A doubled apostrophe stands for one.
        word.text += m_text[m_position++];
    }
    return "a text lacks its closing apostrophe";
}

// Adds one character, or what a replacement stands for, to the word.
const char* CRegistrationWords::ReadCharacter(CRegistrationWord& word)
{
    if (m_text[m_position] != L'%')
    {
        word.text += m_text[m_position++];
        return nullptr;
    }
    const std::size_t start = m_position++;
    const std::size_t end = m_text.find(L'%', m_position);
    const std::wstring_view name =
        m_text.substr(m_position, end == std::wstring_view::npos ? end : end - m_position);
    const bool isCut = word.kind == CRegistrationWord::Kind::Bare && std::ranges::any_of(name, IsBlank);
    if (end == std::wstring_view::npos || isCut)
    {
        word.offset = start;
        return "a percent sign lacks its partner";
    }
    m_position = end + 1;
    if (name.empty())
    {
        word.text += L'%';
        return nullptr;
    }
    const std::wstring* replacement = m_replacements.Find(name);
    if (replacement == nullptr)
    {
        word.offset = start;
        return "there is no replacement of this name";
    }
    word.text += *replacement;
    word.isReplaced = true;
    return nullptr;
}

} // namespace ATL
