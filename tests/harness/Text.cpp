#include "harness/Text.h"

#include <windows.h>

namespace orva::test
{

std::string Utf8(std::wstring_view text)
{
    if (text.empty())
    {
        return {};
    }
    const int length = static_cast<int>(text.size());
    std::string result(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0,
                                                               nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()),
                        nullptr, nullptr);
    return result;
}

std::wstring Widen(std::string_view text)
{
    if (text.empty())
    {
        return {};
    }
    const int length = static_cast<int>(text.size());
    std::wstring result(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)),
                        L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()));
    return result;
}

std::vector<std::string> SplitLines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty())
    {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r'))
        {
            line.remove_suffix(1);
        }
        lines.emplace_back(line);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::vector<std::string> Joined(std::vector<std::string> first, const std::vector<std::string>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

} // namespace orva::test
