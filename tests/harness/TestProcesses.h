// A test that is made in several processes of its program at the same time.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// The number that RunInProcesses gave to this process; nothing if it was not started so.
std::optional<int> ProcessNumber();

/// In a process that has a number: one line of text for the process that has started it.
void TellStarter(const std::string& line);

/// Runs the current test once more in a process of its own for each of these numbers, all at the same time,
/// and waits until they have ended. A process that fails, ends before its test has, or does not end within
/// `timeout` milliseconds of the call, fails the current test with what it has written. `environment` is set
/// on top of this process's. Returns the lines that the processes told.
std::vector<std::string> RunInProcesses(const std::vector<int>& numbers, DWORD timeout,
                                        const std::map<std::wstring, std::wstring>& environment = {});

} // namespace orva::test
