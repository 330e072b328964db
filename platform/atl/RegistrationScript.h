// Reads the text of a registration script into the list of what it asks for. Knows nothing of any registry.
#pragma once

#include "platform/atl/RegistrationData.h"
#include "platform/atl/RegistrationWords.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ATL
{

/// The root keys that a script can name.
enum class RegistrationHive
{
    ClassesRoot,
    CurrentUser,
    LocalMachine,
    Users,
    PerformanceData,
    DynData,
    CurrentConfig,
};

/// One step of a script, in the script's order. Every EnterHive and EnterKey is followed by its own Leave.
struct CRegistrationStep
{
    enum class Kind
    {
        EnterHive, // hive
        EnterKey,  // name, forceRemove, noRemove
        Leave,
        SetValue,  // name (empty: the key's default value), noRemove, data
        DeleteKey, // name
    };

    Kind kind = Kind::Leave;
    RegistrationHive hive = RegistrationHive::ClassesRoot;
    std::wstring name;
    bool forceRemove = false;
    bool noRemove = false;
    RegistrationData data;
};

/// What came of reading a script.
struct CRegistrationScript
{
    /// Null when the script is well-formed, else what is wrong with it, in English.
    const char* error = nullptr;
    /// Where the error was met, in characters from the start.
    std::size_t errorOffset = 0;
    /// Empty when there is an error.
    std::vector<CRegistrationStep> steps;
};

/// How deep keys may nest below a root key.
inline constexpr std::size_t kMaxRegistrationDepth = 64;

/// Reads a script. It ends at its first zero character. Any text whatever gives either steps or an error;
/// only a lack of memory throws (std::bad_alloc).
CRegistrationScript ParseRegistrationScript(std::wstring_view text,
                                            const CRegistrationReplacements& replacements);

} // namespace ATL
