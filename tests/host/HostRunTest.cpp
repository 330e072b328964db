// Start and end of the stand-in Outlook with an add-in: which calls it makes, in which order.
#include "host/HostFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace orva::test;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

const std::string kTo = "Outlook -> OrvaHostTest.FakeAddIn: ";

class HostRunTest : public HostFixture
{
};

TEST_F(HostRunTest, CallsTheAddInInOutlooksOrder)
{
    StartHost({});
    ASSERT_TRUE(WaitForTrace("Outlook: start-up complete"));
    ASSERT_EQ(CloseHost(), 0);
    const char* expected[] = {
        "Outlook: started as version 14.0.4760.1000",
        "Outlook: main window shown",
        "Outlook: add-in OrvaHostTest.FakeAddIn has LoadBehavior 3",
        "Outlook -> OrvaHostTest.FakeAddIn: CoCreateInstance = 0x00000000",
        "Outlook -> OrvaHostTest.FakeAddIn: QueryInterface(_IDTExtensibility2) = 0x00000000",
        "Outlook -> OrvaHostTest.FakeAddIn: OnConnection(ConnectMode 1) = 0x00000000",
        "Outlook -> OrvaHostTest.FakeAddIn: GetCustomUI(Microsoft.Outlook.Explorer) = 0x00000000",
        "Outlook: custom UI of OrvaHostTest.FakeAddIn: 0 characters",
        "Outlook -> OrvaHostTest.FakeAddIn: OnAddInsUpdate = 0x00000000",
        "Outlook -> OrvaHostTest.FakeAddIn: OnStartupComplete = 0x00000000",
        "Outlook: start-up complete",
        "Outlook: shutting down",
        "Outlook -> OrvaHostTest.FakeAddIn: OnBeginShutdown = 0x00000000",
        "Outlook -> OrvaHostTest.FakeAddIn: OnDisconnection(ext_dm_HostShutdown) = 0x00000000",
        "Outlook: references to OrvaHostTest.FakeAddIn left: 0",
        "Outlook -> OrvaHostTest.FakeAddIn: DllCanUnloadNow = 0x00000000",
        "Outlook: OrvaHostTest.FakeAddIn unloaded",
        "Outlook: ended",
    };
    size_t last = 0;
    for (const char* line : expected)
    {
        const size_t index = TraceIndex(line);
        EXPECT_GE(index, last) << line << " came too early:\n" << TraceText();
        last = index;
    }
}

TEST_F(HostRunTest, OnlyAStartUpIsFollowedByOnStartupComplete)
{
    struct CMode
    {
        const wchar_t* name;
        const char* number;
        bool isStartUp;
    };
    for (const auto& [name, number, isStartUp] :
         {CMode{L"after-startup", "0", false}, CMode{L"external", "2", false},
          CMode{L"command-line", "3", true}})
    {
        StartHost({L"--mode", name, L"--quit-after-startup"});
        ASSERT_EQ(WaitForHost(), 0);
        EXPECT_TRUE(HasTrace(kTo + "OnConnection(ConnectMode " + number + ") = 0x00000000")) << TraceText();
        EXPECT_EQ(HasTrace(kTo + "OnStartupComplete = 0x00000000"), isStartUp) << number;
    }
}

TEST_F(HostRunTest, AFailedConnectionIsTracedAndOutlookGoesOnWithoutTheAddIn)
{
    const std::pair<const wchar_t*, const char*> faults[] = {
        {L"fail", "0x80004005"}, {L"throw", "0x8000FFFF; a C++ exception left the call"}};
    for (const auto& [fault, result] : faults)
    {
        StartHost({L"--quit-after-startup"}, fault);
        ASSERT_EQ(WaitForHost(), 0);
        EXPECT_TRUE(HasTrace(kTo + "OnConnection(ConnectMode 1) = " + result)) << TraceText();
        EXPECT_TRUE(HasTrace("Outlook: OrvaHostTest.FakeAddIn unloaded")) << TraceText();
        EXPECT_TRUE(HasTrace("Outlook: start-up complete"));
        EXPECT_THAT(Trace(), Not(Contains(HasSubstr("OnStartupComplete"))));
    }
}

TEST_F(HostRunTest, CrashInTheAddInIsTheTracesLastLine)
{
    StartHost({}, L"crash");
    EXPECT_EQ(static_cast<DWORD>(WaitForHost()), EXCEPTION_ACCESS_VIOLATION);
    const std::vector<std::string> lines = Trace();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "Outlook: crashed with exception 0xC0000005");
}

TEST_F(HostRunTest, BadOptionEndsWithStatusTwoAndSaysWhy)
{
    StartHost({L"--colour"});
    EXPECT_EQ(WaitForHost(), 2);
    EXPECT_EQ(Output(), "OutlookHost: unknown option: --colour\n");
}

} // namespace
