// Which add-ins Outlook is to load: the add-in keys of the registry.
#pragma once

#include <string>
#include <vector>

namespace orva::host
{

struct AddInEntry
{
    std::wstring progId;
    std::wstring friendlyName;
    std::wstring description;
    unsigned long loadBehavior = 0;
};

/// LoadBehavior of an add-in that is connected and is loaded at every start.
inline constexpr unsigned long kLoadAtStartup = 3;

/// The entries under Software\Microsoft\Office\Outlook\Addins of the current user and of the machine. One
/// that is in both is listed once, as the user has it.
std::vector<AddInEntry> ReadAddIns();

} // namespace orva::host
