#include "bench/DebuggerLines.h"

#include "harness/DebugOutput.h"

#include <windows.h>

#include <stdexcept>

namespace orva::bench
{

std::vector<std::string> DebuggerLinesOf(const std::function<void()>& work)
{
    const test::CDebugOutput output;
    work();
    std::vector<std::string> lines = output.Lines();
    if (lines.empty())
    {
        throw std::runtime_error("the product wrote nothing for the debugger");
    }
    return lines;
}

void WriteToDebugger(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines)
    {
        OutputDebugStringA(line.c_str());
    }
}

} // namespace orva::bench
