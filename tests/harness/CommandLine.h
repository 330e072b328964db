// Command lines and environment blocks for CreateProcess.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace orva::test
{

/// A command line that the C runtime and CommandLineToArgvW split into these arguments.
std::wstring JoinCommandLine(const std::wstring& program, const std::vector<std::wstring>& arguments);

/// This process's environment with changes; an empty value removes the variable.
std::wstring EnvironmentBlock(const std::map<std::wstring, std::wstring>& changes);

} // namespace orva::test
