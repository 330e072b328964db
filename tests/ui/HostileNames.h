// File names in a download link that try to put the file somewhere else.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace orva::test
{

/// The outcome of a link's last segment.
enum class NameFate
{
    /// The link names no file: a message says so, and no dialog opens.
    NoName,
    /// The add-in refuses the name: no file can have it.
    Refused,
    /// The system refuses it.
    RefusedBySystem,
    /// A file is created in the fresh folder.
    Created,
    /// A file is created in the fresh folder. Wine 8 opens the console instead and creates nothing.
    CreatedOrConsole,
    /// Created or refused by the system, depending on its limits.
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
