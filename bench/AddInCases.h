// The cases that see the add-in from outside, through its exports.
#pragma once

#include <string>

namespace orva::bench
{

/// The add-ins that are compared.
struct AddInPaths
{
    std::wstring product;
    std::wstring empty;
};

/// Loads what Outlook has loaded anyway before any add-in, for the rest of the program.
void LoadWhatOutlookLoads();

/// Throws std::runtime_error if this program has loaded libraries that only an add-in should need.
void DemandThatOutlooksLibrariesAreMissing();

/// From loading the DLL, with a connection after start-up, to unloading it, under the name `row`. With the
/// empty add-in the product's lines for the debugger are written too.
void MeasureStart(const std::string& row, const AddInPaths& paths);

/// What the loaded and connected add-in adds to the process's private memory, in KiB: one sample of one of
/// them, for a fresh process each.
void MeasureMemory(const std::wstring& path, const char* variant);

/// GetCustomUI, against copying its text once for each of its placeholders.
void MeasureCustomUi(const AddInPaths& paths);

/// The connection at Outlook's start with the debug log on, against the same with the log off.
void MeasureLogSwitch(const AddInPaths& paths);

/// Milliseconds from loading the DLL to the end of the connection at Outlook's start, and from the shutdown's
/// first call to the DLL's end: a sample of `row`-start and one of `row`-stop.
void MeasureShare(const std::string& row, const AddInPaths& paths);

} // namespace orva::bench
