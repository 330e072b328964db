#include "harness/HostTrace.h"

#include "harness/Files.h"
#include "harness/Text.h"

#include <regex>

namespace orva::test
{

std::vector<std::string> ReadHostTrace(const std::wstring& path)
{
    static const std::regex time("^ *[0-9]+\\.[0-9]{3} ");
    static const std::regex duration(", [0-9]+ ms");
    std::vector<std::string> lines = SplitLines(ReadFileBytes(path).value_or(""));
    for (std::string& line : lines)
    {
        line = std::regex_replace(std::regex_replace(line, time, ""), duration, "");
    }
    return lines;
}

} // namespace orva::test
