// The cases that use the built DLL through its exports.
#pragma once

#include <string>

namespace orva::bench
{

/// Paths of the add-ins that are compared.
struct AddInPaths
{
    std::wstring product;
    std::wstring empty;
};

/// Loads the libraries that Outlook has loaded before any add-in. They stay loaded.
void LoadWhatOutlookLoads();

/// Throws std::runtime_error if one of these libraries is loaded already.
void DemandThatOutlooksLibrariesAreMissing();

/// Loads the DLL, connects after start-up and unloads it, as the row `row`. For the empty add-in the
/// product's debugger lines are written too.
void MeasureStart(const std::string& row, const AddInPaths& paths);

/// The private memory that the loaded and connected add-in adds, in KiB: one sample. Needs a fresh process.
void MeasureMemory(const std::wstring& path, const char* variant);

/// GetCustomUI, compared with copying its text once for each placeholder.
void MeasureCustomUi(const AddInPaths& paths);

/// OnConnection at Outlook's start with the debug log on, compared with the log off.
void MeasureLogSwitch(const AddInPaths& paths);

/// Milliseconds from loading the DLL to the end of OnConnection at Outlook's start (a sample of `row`-start),
/// and from OnBeginShutdown to the unloaded DLL (a sample of `row`-stop).
void MeasureShare(const std::string& row, const AddInPaths& paths);

} // namespace orva::bench
