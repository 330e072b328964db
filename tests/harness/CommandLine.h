// What a program is started with, as CreateProcess takes it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace orva::test
{

/// Arguments joined into a command line as the C runtime and CommandLineToArgvW take it apart again.
std::wstring JoinCommandLine(const std::wstring& program, const std::vector<std::wstring>& arguments);

/// This process's environment with changes, of which an empty value takes the variable away.
std::wstring EnvironmentBlock(const std::map<std::wstring, std::wstring>& changes);

} // namespace orva::test
