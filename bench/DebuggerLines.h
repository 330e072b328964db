// The debugger lines, which the baselines write too, because under Wine each costs an exception and a call of
// Wine's server.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orva::bench
{

/// Runs `work` once and returns what it writes with OutputDebugStringA. Throws std::runtime_error if that is
/// nothing.
std::vector<std::string> DebuggerLinesOf(const std::function<void()>& work);

/// Writes these lines with OutputDebugStringA.
void WriteToDebugger(const std::vector<std::string>& lines);

} // namespace orva::bench
