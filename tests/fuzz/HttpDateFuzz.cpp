// Fuzzes the parser of an HTTP response's Date header.
#include "fuzz/Fuzz.h"
#include "support/TimeUtilities.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

namespace
{

constexpr std::size_t kParts = 7;
constexpr int kFirstYear = 1900;

const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Without an offset, and with summer time. As rules, because zone names would need the time-zone files.
char g_utc[] = "TZ=UTC0";
char g_summerTime[] = "TZ=CET-1CEST,M3.5.0,M10.5.0/3";

void SetZone(char* assignment)
{
    putenv(assignment); // NOLINT(concurrency-mt-unsafe): no other thread reads dates here
    tzset();
}

std::size_t CountParts(const std::string& text)
{
    std::size_t parts = 1;
    bool wasSeparator = false;
    for (const char c : text)
    {
        const bool isSeparator = c == ' ' || c == ':';
        parts += isSeparator && !wasSeparator ? 1 : 0;
        wasSeparator = isSeparator;
    }
    return parts;
}

bool IsReadable(const std::string& text, struct tm& date)
{
    try
    {
        date = ParseHttpDate(text);
        return true;
    }
    catch (const std::out_of_range& error)
    {
        ORVA_PROPERTY(std::string(error.what()) == "invalid vector<T> subscript");
        return false;
    }
}

void CheckFields(const struct tm& date)
{
    // Still -1: the date cannot be normalised, and its fields are as they were read.
    if (date.tm_isdst < 0)
    {
        return;
    }
    ORVA_PROPERTY(date.tm_mon >= 0 && date.tm_mon <= 11);
    ORVA_PROPERTY(date.tm_mday >= 1 && date.tm_mday <= 31);
    ORVA_PROPERTY(date.tm_hour >= 0 && date.tm_hour <= 23);
    ORVA_PROPERTY(date.tm_min >= 0 && date.tm_min <= 59);
    ORVA_PROPERTY(date.tm_sec >= 0 && date.tm_sec <= 60);
    ORVA_PROPERTY(date.tm_wday >= 0 && date.tm_wday <= 6);
    ORVA_PROPERTY(date.tm_yday >= 0 && date.tm_yday <= 365);
}

std::string Format(const struct tm& date)
{
    return "Day, " + std::to_string(date.tm_mday) + " " + kMonths[date.tm_mon] + " " +
           std::to_string(date.tm_year + kFirstYear) + " " + std::to_string(date.tm_hour) + ":" +
           std::to_string(date.tm_min) + ":" + std::to_string(date.tm_sec) + " GMT";
}

// A date that is formatted and read again is the same.
void CheckReadingAgain(const struct tm& date)
{
    constexpr int kLastYear = 9999;
    if (date.tm_isdst < 0 || date.tm_year + static_cast<long long>(kFirstYear) < 1 ||
        date.tm_year > kLastYear - kFirstYear)
    {
        return;
    }
    struct tm again = {};
    ORVA_PROPERTY(IsReadable(Format(date), again));
    ORVA_PROPERTY(Format(again) == Format(date));
    ORVA_PROPERTY(again.tm_wday == date.tm_wday && again.tm_yday == date.tm_yday);
}

// The fields of a date in the preferred form, on a day that every month has, are read as they stand.
void CheckProperDate(const std::string& text, const struct tm& date)
{
    constexpr std::size_t kLength = sizeof("Sun, 06 Nov 1994 08:49:37 GMT") - 1;
    const auto number = [&](std::size_t at, std::size_t length) {
        int value = 0;
        for (const char c : text.substr(at, length))
        {
            if (c < '0' || c > '9')
            {
                return -1;
            }
            value = 10 * value + (c - '0');
        }
        return value;
    };
    if (text.size() != kLength || text.substr(3, 2) != ", " || text.find_first_of(" :") != 4)
    {
        return;
    }
    std::string separators;
    for (const std::size_t at : {4U, 7U, 11U, 16U, 19U, 22U, 25U})
    {
        separators += text[at];
    }
    const auto* const month = std::ranges::find(kMonths, text.substr(8, 3));
    const int day = number(5, 2);
    const int year = number(12, 4);
    const int hour = number(17, 2);
    const int minute = number(20, 2);
    const int second = number(23, 2);
    if (separators != "    :: " || month == std::end(kMonths) || day < 1 || day > 28 || year < kFirstYear ||
        hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
    {
        return;
    }
    ORVA_PROPERTY(date.tm_mday == day && date.tm_mon == month - kMonths);
    ORVA_PROPERTY(date.tm_year == year - kFirstYear);
    ORVA_PROPERTY(date.tm_hour == hour && date.tm_min == minute && date.tm_sec == second);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = orva::fuzz::Bytes(data, size);
    struct tm date = {};

    SetZone(g_summerTime);
    if (IsReadable(text, date))
    {
        CheckFields(date);
    }

    SetZone(g_utc);
    const bool isReadable = IsReadable(text, date);
    ORVA_PROPERTY(isReadable == (CountParts(text) >= kParts));
    if (isReadable)
    {
        CheckFields(date);
        CheckReadingAgain(date);
        CheckProperDate(text, date);
    }

    const int month = MonthFromName(text);
    ORVA_PROPERTY(month >= -1 && month <= 11);
    ORVA_PROPERTY(month < 0 || size == 3);
    return 0;
}
