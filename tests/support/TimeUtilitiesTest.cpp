// HTTP dates, month names and time-stamp texts.
#include "support/TimeUtilities.h"

#include "harness/ProcessRunner.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace
{

// "year-month-day hour:minute:second weekday/yearday", the fields as they stand in the structure.
std::string Fields(const struct tm& date)
{
    char text[128];
    std::snprintf(text, sizeof(text), "%d-%d-%d %d:%d:%d %d/%d", date.tm_year, date.tm_mon, date.tm_mday,
                  date.tm_hour, date.tm_min, date.tm_sec, date.tm_wday, date.tm_yday);
    return text;
}

std::string ErrorOf(const std::string& text)
{
    try
    {
        ParseHttpDate(text);
    }
    catch (const std::out_of_range& error)
    {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(MonthFromName, KnowsTheTwelveNames)
{
    const char* const names[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                 "jul", "aug", "sep", "oct", "nov", "dec"};
    for (int month = 0; month < 12; ++month)
    {
        EXPECT_EQ(MonthFromName(names[month]), month);
    }
}

TEST(MonthFromName, ComparesExactly)
{
    for (const char* name : {"Nov", "NOV", "november", "no", "", " nov", "nov ", "xyz"})
    {
        EXPECT_EQ(MonthFromName(name), -1) << name;
    }
}

TEST(ParseHttpDate, TakesTheHeadersTimeAsLocalTime)
{
    EXPECT_EQ(Fields(ParseHttpDate("Sun, 06 Nov 1994 08:49:37 GMT")), "94-10-6 8:49:37 0/309");
    EXPECT_EQ(Fields(ParseHttpDate("Thu, 20 Jan 2011 14:03:07 GMT")), "111-0-20 14:3:7 4/19");
    EXPECT_EQ(Fields(ParseHttpDate("Mon, 29 Feb 2016 23:59:59 GMT")), "116-1-29 23:59:59 1/59");
}

TEST(ParseHttpDate, TakesOtherFormsForTheSameDate)
{
    for (const char* text :
         {// Neither the month's case nor weekday and zone count.
          "xyz 06 NOV 1994 08:49:37 CET", "xyz 06 nov 1994 08:49:37",
          // Adjacent separators count as one, and at the start they make an empty first part.
          "Sun,  06 : Nov::1994   08:49: 37", "  06 Nov 1994 08:49:37",
          // A number ends at its first other character.
          "Sun, 06th Nov 1994x 8h:49m:37s"})
    {
        EXPECT_EQ(Fields(ParseHttpDate(text)), "94-10-6 8:49:37 0/309") << text;
    }
    EXPECT_EQ(Fields(ParseHttpDate("Sun, 06 Nov 1994 x:-:s")), "94-10-6 0:0:0 0/309");
}

TEST(ParseHttpDate, NormalisesFieldsThatAreTooLarge)
{
    EXPECT_EQ(Fields(ParseHttpDate("Sun, 31 Apr 2011 23:59:60 GMT")), "111-4-2 0:0:0 1/121");
    EXPECT_EQ(Fields(ParseHttpDate("Sun, 00 Jan 2011 00:00:00 GMT")), "110-11-31 0:0:0 5/364");
}

TEST(ParseHttpDate, AnUnknownMonthIsTheOneBeforeJanuary)
{
    EXPECT_EQ(Fields(ParseHttpDate("Sun, 06 xyz 1994 08:49:37 GMT")), "93-11-6 8:49:37 1/339");
    EXPECT_EQ(Fields(ParseHttpDate("Sun, 06 \x80\xFF\xC4 1994 08:49:37 GMT")), "93-11-6 8:49:37 1/339");
}

TEST(ParseHttpDate, FewerThanSevenPartsAreOutOfRange)
{
    for (const char* text : {"", "Sun,", "Sun, 06", "Sun, 06 Nov", "Sun, 06 Nov 1994", "Sun, 06 Nov 1994 08",
                             "Sun, 06 Nov 1994 08:49", "Sunday, 06-Nov-94 08:49:37 GMT"})
    {
        EXPECT_EQ(ErrorOf(text), "invalid vector<T> subscript") << text;
    }
    EXPECT_EQ(ErrorOf("Sun, 06 Nov 1994 08:49:37"), "no error");
}

TEST(ParseHttpDate, NumbersBeyondTheRangeOfIntDoNoHarm)
{
    for (const char* text :
         {"x 99999999999999999999 Nov 99999999999999999999 9999999999:9999999999:9999999999",
          "x -99999999999999999999 Nov -99999999999999999999 -9999999999:-9999999999:-9999999999",
          "x 2147483647 dec 2147483647 2147483647:2147483647:2147483647",
          "x -2147483648 jan -2147483648 -2147483648:-2147483648:-2147483648"})
    {
        EXPECT_EQ(ErrorOf(text), "no error") << text;
    }
}

TEST(ParseHttpDateChild, DISABLED_PrintsSummerAndWinter)
{
    for (const char* text : {"Fri, 15 Jul 2011 12:00:00 GMT", "Sat, 15 Jan 2011 12:00:00 GMT"})
    {
        const struct tm date = ParseHttpDate(text);
        std::printf("%s summer time %d\n", Fields(date).c_str(), date.tm_isdst);
    }
}

// The zone of a process is fixed when it starts, so this takes a process of its own.
TEST(ParseHttpDate, KeepsTheHourInSummerAndWinterAndSaysWhichItIs)
{
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    orva::test::CProcessOptions options;
    options.program = program;
    options.arguments = {L"--gtest_also_run_disabled_tests", L"--gtest_filter=ParseHttpDateChild.*"};
    options.environment = {{L"TZ", L"America/Los_Angeles"}};
    orva::test::CChildProcess child(options);
    EXPECT_EQ(child.WaitForExit(), 0u);
    EXPECT_THAT(child.Output(), testing::HasSubstr("111-6-15 12:0:0 5/195 summer time 1"));
    EXPECT_THAT(child.Output(), testing::HasSubstr("111-0-15 12:0:0 6/14 summer time 0"));
}

TEST(TimestampStrings, AreTheSecondsSince1970InDecimal)
{
    const auto before = static_cast<std::int32_t>(std::time(nullptr));
    const std::string narrow = GetTimestampString();
    const std::wstring wide = GetTimestampStringW();
    const auto after = static_cast<std::int32_t>(std::time(nullptr));

    for (const std::string& text : {narrow, std::string(wide.begin(), wide.end())})
    {
        EXPECT_EQ(text, std::to_string(std::stol(text)));
        EXPECT_GE(std::stol(text), before);
        EXPECT_LE(std::stol(text), after);
    }
}
