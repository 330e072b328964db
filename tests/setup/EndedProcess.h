// A program that is ended in the midst of its work, at a place that does not depend on the machine's speed.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orva::test
{

/// Runs a program and ends it at the first call of this function of kernel32.dll for which `isTime` returns
/// true, before the call has done anything. Returns whether it was ended so; otherwise it has run to its end.
/// Its children run on. Throws std::runtime_error if it cannot be started.
bool EndAtCall(const std::wstring& program, const std::vector<std::wstring>& arguments,
               const std::string& function, const std::function<bool()>& isTime);

} // namespace orva::test
