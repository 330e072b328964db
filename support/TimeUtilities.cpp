#include "support/TimeUtilities.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/spirit/home/support/char_encoding/ascii.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <vector>

namespace
{
using Parts = std::vector<std::string>;

// Not vector::at, whose error has another text: this one appears in the log.
const std::string& PartAt(const Parts& parts, std::size_t index)
{
    if (index >= parts.size())
    {
        throw std::out_of_range("invalid vector<T> subscript");
    }
    return parts[index];
}

// Reads like atoi, but a number beyond the range of int, which atoi leaves undefined, becomes the nearest
// int: headers come from outside.
int ReadInteger(const std::string& text)
{
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<int>(
        std::clamp<long long>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

// Not boost::to_lower_copy, which would link all locales of the C++ library.
std::string ToLower(std::string text)
{
    using Ascii = boost::spirit::char_encoding::ascii;
    for (char& byte : text)
    {
        const int character = static_cast<unsigned char>(byte);
        if (Ascii::ischar(character))
        {
            byte = static_cast<char>(Ascii::tolower(character));
        }
    }
    return text;
}

int YearsSince1900(const std::string& text)
{
    constexpr int kFirstYear = 1900;
    return std::max(ReadInteger(text), std::numeric_limits<int>::min() + kFirstYear) - kFirstYear;
}

void NormaliseLocalTime(struct tm& date)
{
#ifdef _WIN32
    _mktime64(&date);
#else
    std::mktime(&date);
#endif
}

std::int32_t SecondsSince1970()
{
    return static_cast<std::int32_t>(std::time(nullptr));
}
} // namespace

int MonthFromName(const std::string& name)
{
    static constexpr std::array<const char*, 12> kNames = {"jan", "feb", "mar", "apr", "may", "jun",
                                                           "jul", "aug", "sep", "oct", "nov", "dec"};
    const auto found = std::find(kNames.begin(), kNames.end(), name);
    return found != kNames.end() ? static_cast<int>(found - kNames.begin()) : -1;
}

struct tm ParseHttpDate(std::string text)
{
    Parts parts;
    boost::split(parts, text, boost::is_any_of(" :"), boost::token_compress_on);

    struct tm date = {};
    date.tm_mday = ReadInteger(PartAt(parts, 1));
    date.tm_mon = MonthFromName(ToLower(PartAt(parts, 2)));
    date.tm_year = YearsSince1900(PartAt(parts, 3));
    date.tm_hour = ReadInteger(PartAt(parts, 4));
    date.tm_min = ReadInteger(PartAt(parts, 5));
    date.tm_sec = ReadInteger(PartAt(parts, 6));
    date.tm_isdst = -1;
    NormaliseLocalTime(date);
    return date;
}

std::string GetTimestampString()
{
    return std::to_string(SecondsSince1970());
}

std::wstring GetTimestampStringW()
{
    return std::to_wstring(SecondsSince1970());
}
