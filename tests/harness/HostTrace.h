// The trace of the stand-in Outlook, for tests that read it while it is written.
#pragma once

#include <string>
#include <vector>

namespace orva::test
{

/// The lines of the trace file so far, without times and durations. Empty if there is no file yet.
std::vector<std::string> ReadHostTrace(const std::wstring& path);

} // namespace orva::test
