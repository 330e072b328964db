// Update-information files that are broken, incomplete, cut or at the limits of their numbers, and what the
// check makes of them.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace orva::test
{

using Log = std::vector<std::string>;
using Texts = std::vector<std::wstring>;

/// The line after which a file's own lines stand.
inline constexpr char kParsing[] = "CheckForUpdate() parse json ";

/// A file and what comes of it.
struct CFile
{
    const char* name;
    std::string text;
    /// The lines after kParsing.
    Log log;
    Texts shownSilently;
    Texts shownExplicitly;
    /// The exception's text, if the checks end with one.
    const char* exception = nullptr;
};

void PrintTo(const CFile& file, std::ostream* out);

/// Files of every kind, by name.
std::vector<CFile> UpdateFiles();

/// A file that offers 1.3.0, and the places in it that decide what a beginning of it is worth.
class COfferInPieces
{
public:
    COfferInPieces();

    const std::string& Text() const { return m_text; }

    /// The smallest beginnings with the entry's brace, the three numbers, the link and the description.
    std::vector<std::size_t> Places() const { return {m_entry, m_numbers, m_link, m_description}; }

    /// The first `size` bytes, at least one and not all.
    CFile Beginning(std::size_t size) const;

private:
    std::size_t Behind(const std::string& part) const { return m_text.find(part) + part.size(); }

    std::string m_text;
    std::size_t m_entry;
    std::size_t m_numbers;
    std::size_t m_link;
    std::size_t m_description;
};

} // namespace orva::test
