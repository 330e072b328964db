// File names in a download link that try to put the file somewhere else.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace orva::test
{

/// What becomes of a link's last segment.
enum class NameFate
{
    /// The link names no file: that is said, and no dialog opens.
    NoName,
    /// The add-in refuses the name, as one that no file can have.
    Refused,
    /// The system refuses it.
    RefusedBySystem,
    /// A file in the fresh folder, whatever the name meant.
    Created,
    /// A file in the fresh folder. Wine 8 opens the console instead, and makes nothing.
    CreatedOrConsole,
    /// Created, or refused by the system, as its limits are.
    CreatedOrRefused,
};

struct CHostileName
{
    /// In the report's order.
    int number;
    /// What the name tries.
    const char* kind;
    /// Follows "http://host/".
    std::wstring segment;
    NameFate fate;
};

void PrintTo(const CHostileName& name, std::ostream* out);

/// All of them.
std::vector<CHostileName> HostileNames();

/// The text with everything but printable ASCII as \uXXXX, and cut if it is long.
std::string Printable(const std::wstring& text);

} // namespace orva::test
