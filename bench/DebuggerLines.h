// The lines for the debugger, which the baselines write too: under Wine each costs an exception and a
// question to Wine's server, which says nothing about the product.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orva::bench
{

/// What `work`, done once, writes with OutputDebugStringA. Throws std::runtime_error if it writes nothing.
std::vector<std::string> DebuggerLinesOf(const std::function<void()>& work);

/// Writes these lines as the product does.
void WriteToDebugger(const std::vector<std::string>& lines);

} // namespace orva::bench
