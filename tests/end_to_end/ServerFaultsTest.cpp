// Failures and bad answers of the update server, at Outlook's start and on the user's request: what is shown
// and logged, and that Outlook goes on and a second check works.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/ServerFault.h"
#include "end_to_end/Texts.h"
#include "harness/Compression.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"

namespace orva::test
{

namespace
{

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Values;
using testing::ValuesIn;

constexpr char kTable[] = "server-faults";
// Numbers of the report's rows: each kind of fault has its range, whatever sample of it runs.
constexpr int kFirstOutOfReach = 1;
constexpr int kFirstReset = 11;
constexpr int kFirstReply = 21;

// A fault whose outcome is either that of no reply or that of a reply without a date.
struct CResetFault
{
    const char* name;
    CServerScript script;
    // Whether part of the text is sent, so that the outcome may be that of a cut text.
    bool hasText = false;
};

void PrintTo(const CResetFault& fault, std::ostream* out)
{
    *out << fault.name;
}

std::vector<CResetFault> ResetFaults()
{
    const std::string head = CHttpReply(200, g_latestInfo).Head();
    constexpr DWORD kStall = 700;
    return {
        {"ClosedBeforeTheRequest", CServerScript()},
        {"ResetAfterTheRequest", CServerScript().Reset()},
        {"ResetInTheHead", CServerScript().Send(head.substr(0, 30)).Reset()},
        {"ResetInTheBody", CServerScript().Send(head + g_latestInfo.substr(0, 60)).Reset(), true},
        {"StallThenReset", CServerScript().Pause(kStall).Reset()},
        {"StallInTheBodyThenReset",
         CServerScript().Send(head + g_latestInfo.substr(0, 60)).Pause(kStall).Reset(), true},
    };
}

// The server cannot be reached.
class ServerOutOfReachTest : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
protected:
    void ExpectNoReply(const std::string& fault)
    {
        const bool isExplicit = GetParam() == CheckMode::Explicit;
        if (isExplicit)
        {
            m_user.AnswerBox(kConnectError);
        }
        RunFault(kTable, fault, GetParam());
        EXPECT_THAT(WithoutSystemTexts(Observed().log), ElementsAreArray(NoReply()));
        ASSERT_EQ(m_seen.size(), isExplicit ? 1u : 0u);
        if (isExplicit)
        {
            EXPECT_EQ(m_seen[0].caption, kProduct);
            EXPECT_EQ(m_seen[0].ownerCaption, L"Inbox - Stand-in Outlook");
            EXPECT_FALSE(m_seen[0].ownerEnabled);
        }
    }
};

// The connection is reset. Wine's WinINet reports sometimes an error and sometimes the connection's end.
class ServerResetTest : public FaultFixture,
                        public testing::WithParamInterface<std::tuple<CResetFault, CheckMode>>
{
};

class GzipReportTest : public OutlookFixture
{
};

// A fault with its number in the report.
struct CNumberedFault
{
    int number;
    CFault fault;
};

void PrintTo(const CNumberedFault& numbered, std::ostream* out)
{
    *out << numbered.fault.name;
}

std::vector<CNumberedFault> Numbered(const std::vector<CFault>& faults, int first)
{
    std::vector<CNumberedFault> numbered;
    numbered.reserve(faults.size());
    for (const CFault& fault : faults)
    {
        numbered.push_back({first++, fault});
    }
    return numbered;
}

class ServerFaultsTest : public FaultFixture, public testing::WithParamInterface<CNumberedFault>
{
protected:
    void Expect(const Texts& shown)
    {
        for (const std::wstring& text : shown)
        {
            if (text == kOfferCaption)
            {
                m_user.OnDialog(text, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
            }
            else
            {
                m_user.AnswerBox(text);
            }
        }
    }

    // Runs the fault. If it raises an exception, the log ends with the line of `caller`, which caught it.
    void ExpectFault(CheckMode mode, const Texts& shown, const char* caller)
    {
        const CFault& fault = GetParam().fault;
        m_server.On(kUpdateInfoPath, fault.script);
        Expect(shown);
        RunFault(kTable, FaultLabel(GetParam().number, fault.name), mode);
        Log log = fault.log;
        if (fault.exception != nullptr)
        {
            log.push_back(std::string(caller) + "() Caught exception " + fault.exception);
        }
        EXPECT_THAT(Observed().shown, ElementsAreArray(shown));
        EXPECT_THAT(WithoutSystemTexts(Observed().log), ElementsAreArray(log));
        EXPECT_THAT(Observed().left, IsEmpty());
    }
};

std::string NameOf(const testing::TestParamInfo<CNumberedFault>& info)
{
    return info.param.fault.name;
}

std::string NameOfReset(const testing::TestParamInfo<std::tuple<CResetFault, CheckMode>>& info)
{
    return std::string(std::get<0>(info.param).name) +
           (std::get<1>(info.param) == CheckMode::StartUp ? "AtStartUp" : "Explicitly");
}

int FirstText()
{
    return kFirstReply + static_cast<int>(HttpFaults().size());
}

int FirstHead()
{
    return FirstText() + static_cast<int>(TextFaults().size());
}

INSTANTIATE_TEST_SUITE_P(Http, ServerFaultsTest, ValuesIn(Numbered(HttpFaults(), kFirstReply)), NameOf);
INSTANTIATE_TEST_SUITE_P(Text, ServerFaultsTest, ValuesIn(Numbered(TextFaults(), FirstText())), NameOf);
INSTANTIATE_TEST_SUITE_P(Head, ServerFaultsTest, ValuesIn(Numbered(HeadFaults(), FirstHead())), NameOf);
INSTANTIATE_TEST_SUITE_P(Modes, ServerOutOfReachTest, Values(CheckMode::StartUp, CheckMode::Explicit),
                         NameOfMode);
INSTANTIATE_TEST_SUITE_P(Resets, ServerResetTest,
                         testing::Combine(ValuesIn(ResetFaults()),
                                          Values(CheckMode::StartUp, CheckMode::Explicit)),
                         NameOfReset);

} // namespace

TEST_P(ServerOutOfReachTest, ConnectionRefused)
{
    const CRefusingPort port;
    m_proxy.emplace(port.Port());
    m_removeFault = [this] {
        m_proxy.emplace(m_server.Port());
        Publish(g_latestInfo);
    };
    ExpectNoReply(FaultLabel(kFirstOutOfReach, "ConnectionRefused"));
}

TEST_P(ServerOutOfReachTest, ServerEnded)
{
    CLoopbackServer again;
    m_server.Refuse();
    m_removeFault = [&] {
        m_proxy.emplace(again.Port());
        again.On(kUpdateInfoPath, CHttpReply(200, g_latestInfo));
    };
    ExpectNoReply(FaultLabel(kFirstOutOfReach + 1, "ServerEnded"));
}

TEST_P(ServerOutOfReachTest, NameNotFound)
{
    // Reserved for names that do not exist, whatever the network.
    m_proxy.emplace(L"no-such-server.invalid:80");
    m_removeFault = [this] {
        m_proxy.emplace(m_server.Port());
        Publish(g_latestInfo);
    };
    ExpectNoReply(FaultLabel(kFirstOutOfReach + 2, "NameNotFound"));
}

TEST_P(ServerResetTest, EndsTheCheckAndNothingElse)
{
    const auto& [fault, mode] = GetParam();
    const std::vector<CResetFault> all = ResetFaults();
    int number = kFirstReset;
    while (all[static_cast<size_t>(number - kFirstReset)].name != std::string(fault.name))
    {
        ++number;
    }
    if (fault.script.Actions().empty())
    {
        m_server.OnConnection(fault.script);
    }
    else
    {
        m_server.On(kUpdateInfoPath, fault.script);
    }
    m_removeFault = [this] {
        m_server.OnConnection(std::nullopt);
        Publish(g_latestInfo);
    };
    AnswerWhateverComes();
    RunFault(kTable, FaultLabel(number, fault.name), mode);

    const bool isExplicit = mode == CheckMode::Explicit;
    const std::string caller = isExplicit ? "CConnect::ButtonClicked" : "CConnect::OnConnection";
    const std::string noDate = caller + "() Caught exception " + kNoDateError;
    ASSERT_FALSE(Observed().log.empty());
    const std::string last = Observed().log.back();
    if (last == "CheckForUpdate() inputData.length() == 0 " || last == noDate)
    {
        EXPECT_EQ(Observed().shown, isExplicit ? Texts{kConnectError} : Texts());
    }
    else
    {
        // Taken as the orderly end of the text, which is cut behind the three numbers.
        EXPECT_TRUE(fault.hasText);
        EXPECT_EQ(last, "CheckForUpdate() buildNumber 0");
        EXPECT_EQ(Observed().shown, isExplicit ? (Texts{kConnectError, kLatest}) : Texts{kConnectError});
    }
    EXPECT_THAT(Observed().left, IsEmpty());
}

TEST_F(GzipReportTest, GzipThatCannotBeDecodedIsReportedOnStandardOutput)
{
    m_server.On(kUpdateInfoPath,
                CHttpReply(200, CutOff(GzipBytes(g_latestInfo), 8)).Header("Content-Encoding", "gzip"));
    RunToTheEnd();
    EXPECT_THAT(m_outlook->Output(), HasSubstr("Could not decode gzip content"));
}

TEST_P(ServerFaultsTest, AtOutlooksStart)
{
    ExpectFault(CheckMode::StartUp, GetParam().fault.shownSilently, "CConnect::OnConnection");
}

TEST_P(ServerFaultsTest, OnTheUsersRequest)
{
    ExpectFault(CheckMode::Explicit, GetParam().fault.shownExplicitly, "CConnect::ButtonClicked");
}

} // namespace orva::test
