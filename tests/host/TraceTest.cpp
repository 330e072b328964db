// The lines of the trace file.
#include "host/Trace.h"

#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace
{

using namespace orva::host;
using namespace orva::test;
using testing::ElementsAre;

MATCHER_P(Matches, pattern, std::string("matches ") + pattern)
{
    return std::regex_match(arg, std::regex(pattern));
}

TEST(TraceTest, ALineHasItsTimeBothSidesTheResultAndTheDurationAndStaysOneLineInUtf8)
{
    const CTempFolder folder;
    const std::wstring path = folder.File(L"trace.log");
    CTrace trace;
    ASSERT_TRUE(trace.Open(path));
    trace.Call(L"Outlook", L"Some.AddIn", L"OnConnection(1)", E_FAIL, 11.6, L"detail");
    trace.Event(L"\u015eirket\r\nhakk\u0131nda");
    EXPECT_THAT(SplitLines(ReadFileBytes(path).value_or("")),
                ElementsAre(Matches(" +[0-9]+\\.[0-9]{3} Outlook -> Some.AddIn: OnConnection\\(1\\) = "
                                    "0x80004005, 12 ms; detail"),
                            Matches(" +[0-9]+\\.[0-9]{3} Outlook: \xC5\x9Eirket  hakk\xC4\xB1nda")));
}

TEST(TraceTest, AFileThatCannotBeWrittenIsReported)
{
    CTrace trace;
    EXPECT_FALSE(trace.Open(L"Z:\\no\\such\\folder\\trace.log"));
    trace.Event(L"goes nowhere");
}

} // namespace
