// The lines of the trace file.
#include "host/Trace.h"

#include "harness/Files.h"
#include "harness/TempFolder.h"
#include "harness/Text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

namespace
{

using namespace orva::host;
using namespace orva::test;
using testing::ElementsAre;

MATCHER_P(Matches, pattern, std::string("matches ") + pattern)
{
    return std::regex_match(arg, std::regex(pattern));
}

class TraceTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_trace.Open(m_path)); }
    std::vector<std::string> Lines() const { return SplitLines(ReadFileBytes(m_path).value_or("")); }

    CTempFolder m_folder;
    std::wstring m_path = m_folder.File(L"trace.log");
    CTrace m_trace;
};

TEST_F(TraceTest, CallNamesBothSidesResultAndDuration)
{
    m_trace.Call(L"Outlook", L"Some.AddIn", L"OnConnection(1)", E_FAIL, 11.6, L"detail");
    EXPECT_THAT(
        Lines(),
        ElementsAre(Matches(
            " +[0-9]+\\.[0-9]+ Outlook -> Some.AddIn: OnConnection\\(1\\) = 0x80004005, 12 ms; detail")));
}

TEST_F(TraceTest, EventIsOutlooksOwn)
{
    m_trace.Event(L"main window shown");
    EXPECT_THAT(Lines(), ElementsAre(Matches(" +[0-9]+\\.[0-9]+ Outlook: main window shown")));
}

TEST_F(TraceTest, TextWithLineEndsStaysOneLineInUtf8)
{
    m_trace.Event(L"\u015eirket\r\nhakk\u0131nda");
    EXPECT_THAT(Lines(), ElementsAre(Matches(".*Outlook: \xC5\x9Eirket  hakk\xC4\xB1nda")));
}

TEST_F(TraceTest, LineCanBeReadAsSoonAsItIsWritten)
{
    m_trace.Event(L"first");
    ASSERT_EQ(Lines().size(), 1u);
    m_trace.Event(L"second");
    EXPECT_EQ(Lines().size(), 2u);
}

TEST_F(TraceTest, RunGivesTheCallsResult)
{
    EXPECT_EQ(m_trace.Run(L"a", L"b", L"c", [] { return S_FALSE; }), S_FALSE);
    EXPECT_THAT(Lines(), ElementsAre(Matches(".* a -> b: c = 0x00000001, [0-9]+ ms")));
}

TEST_F(TraceTest, ExceptionThatLeavesACallIsTracedAndBecomesAFailure)
{
    const HRESULT result =
        m_trace.Run(L"a", L"b", L"c", []() -> HRESULT { throw std::runtime_error("fault of an add-in"); });
    EXPECT_EQ(result, E_UNEXPECTED);
    EXPECT_THAT(Lines(), ElementsAre(Matches(
                             ".* a -> b: c = 0x8000FFFF, [0-9]+ ms; a C\\+\\+ exception left the call")));
}

TEST(TraceFile, ThatCannotBeWrittenIsReported)
{
    CTrace trace;
    EXPECT_FALSE(trace.Open(L"Z:\\no\\such\\folder\\trace.log"));
    trace.Event(L"goes nowhere");
}

} // namespace
