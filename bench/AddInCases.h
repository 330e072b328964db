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
    /// The empty one with the product's manifest.
    std::wstring manifestOnly;
};

/// Loads what Outlook has loaded anyway before any add-in, for the rest of the program.
void LoadWhatOutlookLoads();

/// From loading the DLL, with a connection after start-up, to unloading it, under the name `row`.
void MeasureStart(const std::string& row, const AddInPaths& paths);

/// The steps of that one by one, and what a manifest alone adds to the loading.
void MeasureStartSteps(const AddInPaths& paths);

/// What the loaded and connected add-in adds to the process's private memory, in KiB: one sample of one of
/// them, for a fresh process each.
void MeasureMemory(const std::wstring& path, const char* variant);

/// GetCustomUI, against copying its text once for each of its placeholders, without and with its line for the
/// debugger.
void MeasureCustomUi(const AddInPaths& paths);

/// The connection at Outlook's start with the debug log on, against the same with the log off; and the same
/// of the object's creation, with which the log is opened.
void MeasureLogSwitch(const AddInPaths& paths);

/// Milliseconds from loading the DLL to the end of the connection at Outlook's start, and from the shutdown's
/// first call to the DLL's end: a sample of `row`-start and one of `row`-stop.
void MeasureShare(const std::string& row, const AddInPaths& paths);

} // namespace orva::bench
