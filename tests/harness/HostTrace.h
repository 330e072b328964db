// The stand-in Outlook's record of calls and events, as tests read it while it grows.
#pragma once

#include <string>
#include <vector>

namespace orva::test
{

/// The lines of the trace file so far, without their times and durations. None if there is no file yet.
std::vector<std::string> ReadHostTrace(const std::wstring& path);

} // namespace orva::test
