// Cuts the text of a registration script into its words, with replacements in the place of their names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ATL
{

/// Compares as scripts do: without regard to the case of ASCII letters, whatever the locale.
bool EqualRegistrationNames(std::wstring_view left, std::wstring_view right);

/// The texts that stand for %NAME%. Names are compared without regard to the case of ASCII letters.
class CRegistrationReplacements
{
public:
    void Set(std::wstring_view name, std::wstring_view text);
    void Clear();
    /// Null when there is no such name.
    const std::wstring* Find(std::wstring_view name) const;

private:
    std::vector<std::pair<std::wstring, std::wstring>> m_entries;
};

/// One word of a script.
struct CRegistrationWord
{
    enum class Kind
    {
        End,
        Bare,   // a word without quotes: keyword, brace, equals sign or name
        Quoted, // a word in apostrophes: always a name or a text
    };

    Kind kind = Kind::End;
    std::wstring text;
    /// Where it starts, in characters from the start of the script.
    std::size_t offset = 0;
    /// What a replacement brings is never a keyword or a brace.
    bool isReplaced = false;

    /// Whether it is this keyword or punctuation mark.
    bool IsBare(std::wstring_view word) const;
    /// Whether it can stand for a name or a text.
    bool IsName() const;
};

/// Reads the words of a script one after the other, up to its first zero character.
class CRegistrationWords
{
public:
    /// Borrows both arguments.
    CRegistrationWords(std::wstring_view text, const CRegistrationReplacements& replacements);

    /// Reads the next word, which is of kind End behind the last one. Returns null, or what is wrong with the
    /// text at the word's offset.
    const char* Next(CRegistrationWord& word);

private:
    const char* ReadBare(CRegistrationWord& word);
    const char* ReadQuoted(CRegistrationWord& word);
    const char* ReadCharacter(CRegistrationWord& word);

    std::wstring_view m_text;
    const CRegistrationReplacements& m_replacements;
    std::size_t m_position = 0;
};

} // namespace ATL
