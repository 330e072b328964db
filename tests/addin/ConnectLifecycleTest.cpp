// Connecting and disconnecting: what the add-in writes to the log and does to the host's window, whatever
// goes wrong.
#include "addin/ConnectFixture.h"

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using ConnectLifecycleTest = CConnectTest;

struct CModeCase
{
    int mode;
    std::vector<std::string> lines;
};

void PrintTo(const CModeCase& mode, std::ostream* out)
{
    *out << mode.mode;
}

class ConnectModeTest : public ConnectLifecycleTest, public testing::WithParamInterface<CModeCase>
{
};

TEST_P(ConnectModeTest, LogsItsNameAndRunsNoCheck)
{
    Publish(kSameVersion);
    EXPECT_EQ(LinesOfConnecting(kOutlook2010, GetParam().mode), GetParam().lines);
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_THAT(m_host.EnableHistory(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Modes, ConnectModeTest,
    testing::Values(CModeCase{0, {kEntry, "CConnect::OnConnection() ext_cm_AfterStartup "}},
                    CModeCase{2, {kEntry, "CConnect::OnConnection() ext_cm_External "}},
                    CModeCase{3, {kEntry, "CConnect::OnConnection() ext_cm_CommandLine "}},
                    CModeCase{4, {kEntry}}, CModeCase{5, {kEntry}}, CModeCase{-1, {kEntry}},
                    CModeCase{1000, {kEntry}}));

TEST_F(ConnectLifecycleTest, StartupRunsTheCheckExactlyOnceAndSilently)
{
    Publish(kSameVersion);
    m_user.Start();
    const std::vector<std::string> lines = LinesOfConnecting(kOutlook2010, ext_cm_Startup);
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(std::vector(lines.begin(), lines.begin() + 4),
              (std::vector<std::string>{kEntry, "CConnect::OnConnection() ext_cm_Startup ", kCheck,
                                        "CheckForUpdate"}));
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "CheckForUpdate"), 1);
    EXPECT_THAT(lines, Not(Contains("CheckForUpdateExplicit")));
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, TheHostWindowIsDisabledWhileTheServerIsAsked)
{
    const CGate gate;
    m_server.On(kUpdateInfoPath, CServerScript().WaitFor(gate).Send(CHttpReply(200, kSameVersion).Bytes()));
    bool wasEnabled = true;
    m_user.Then("look at the host while the server is asked", [&] {
        CGate reached = gate;
        const bool isAsked = reached.WaitUntilReached();
        wasEnabled = IsWindowEnabled(m_host.Handle());
        reached.Open();
        return isAsked;
    });
    m_user.Start();
    EXPECT_EQ(Connect(kOutlook2010, ext_cm_Startup), S_OK);
    m_user.Finish();
    EXPECT_FALSE(wasEnabled);
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, TheCheckAlsoRunsInAnOutlookWithTheMenuCommandAndInALaterOne)
{
    Publish(kSameVersion);
    for (const wchar_t* const version : {kOutlook2007, kOutlook2013})
    {
        EXPECT_EQ(Connect(version, ext_cm_Startup), S_OK);
    }
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 2u);
}

TEST_F(ConnectLifecycleTest, AnOfferBelongsToTheDisabledHostWindow)
{
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,)"
            R"("downloadLink":"http://files.orva.example/setup.exe","description":{"default":"Better."}}})");
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { ClickButton(dialog, kLaterButton); });
    m_user.Start();
    EXPECT_EQ(Connect(kOutlook2010, ext_cm_Startup), S_OK);
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, m_host.Handle());
    EXPECT_FALSE(seen[0].ownerEnabled);
    EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
}

TEST_F(ConnectLifecycleTest, AnUnreachableServerIsAbsorbedInSilence)
{
    m_server.Refuse();
    m_user.Start();
    EXPECT_THAT(LinesOfCheck(), Contains("CheckForUpdate() inputData.length() == 0 "));
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, AMissingFileIsAbsorbedInSilence)
{
    m_user.Start();
    EXPECT_THAT(LinesOfCheck(), Contains("CheckForUpdate() inputData.length() == 0 "));
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, AWrongTypeInTheFileEndsInOneLineWithTheExceptionsText)
{
    Publish(R"({"x64":{"majorVersion":"one","minorVersion":2,"buildNumber":0}})");
    m_user.Start();
    const std::vector<std::string> lines = LinesOfCheck();
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    EXPECT_EQ(lines.back(), "CConnect::OnConnection() Caught exception value type is 2 not 4");
    EXPECT_EQ(std::count_if(
                  lines.begin(), lines.end(),
                  [](const std::string& line) { return line.find("Caught exception") != std::string::npos; }),
              1);
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, AReplyWithoutDateEndsInOneLineWithTheExceptionsText)
{
    m_server.On(kUpdateInfoPath, CHttpReply(200, kSameVersion).WithoutDate());
    m_user.Start();
    const std::vector<std::string> lines = LinesOfCheck();
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    EXPECT_EQ(lines.back(), "CConnect::OnConnection() Caught exception invalid vector<T> subscript");
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, AFileThatIsNoJsonSaysConnectErrorOwnedByTheDisabledHost)
{
    Publish("<html>");
    m_user.AnswerBox(kConnectError);
    m_user.Start();
    const std::vector<std::string> lines = LinesOfCheck();
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, m_host.Handle());
    EXPECT_FALSE(seen[0].ownerEnabled);
    EXPECT_THAT(lines, Contains("CheckForUpdate() exception thrown while parsing json "));
    ExpectHostEnabledAgain();
}

TEST_F(ConnectLifecycleTest, AfterACaughtExceptionTheObjectGoesOn)
{
    Publish(R"({"x64":{"majorVersion":[],"minorVersion":2,"buildNumber":0}})");
    EXPECT_EQ(Connect(kOutlook2010, ext_cm_Startup), S_OK);
    const auto ribbon = Query<IRibbonExtensibility>(IID_IRibbonExtensibility);
    _bstr_t markup;
    EXPECT_EQ(ribbon->GetCustomUI(nullptr, markup.GetAddress()), S_OK);
    EXPECT_GT(markup.length(), 0u);
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
}

TEST_F(ConnectLifecycleTest, WithoutAVisibleHostWindowTheCheckRunsAllTheSame)
{
    ShowWindow(m_host.Handle(), SW_HIDE);
    Publish(kSameVersion);
    EXPECT_EQ(Connect(kOutlook2010, ext_cm_Startup), S_OK);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
    EXPECT_THAT(m_host.EnableHistory(), IsEmpty());
}

TEST_F(ConnectLifecycleTest, KeepsApplicationExplorerAndButtonUntilTheObjectIsReleased)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2007);
    const LONG application = m_outlook->application->References();
    const LONG explorer = m_outlook->explorer->References();
    const LONG button = m_outlook->button->References();
    Create();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_AfterStartup), S_OK);
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_UserClosed, nullptr), S_OK);
    EXPECT_EQ(m_outlook->application->References(), application + 1);
    EXPECT_EQ(m_outlook->explorer->References(), explorer + 1);
    EXPECT_EQ(m_outlook->button->References(), button + 1);
    ReleaseAll();
    EXPECT_EQ(m_outlook->application->References(), application);
    EXPECT_EQ(m_outlook->explorer->References(), explorer);
    EXPECT_EQ(m_outlook->button->References(), button);
}

TEST_F(ConnectLifecycleTest, NeitherAddInInstanceNorCustomArrayIsNeeded)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2010);
    Create();
    EXPECT_EQ(AddIn()->OnConnection(m_outlook->application.Get(), ext_cm_AfterStartup, nullptr, nullptr),
              S_OK);
}

TEST_F(ConnectLifecycleTest, OfTheOtherCallsOnlyStartupCompleteAndDisconnectionAreLogged)
{
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    const auto addIn = AddIn();
    NewLogLines();
    EXPECT_EQ(addIn->OnAddInsUpdate(nullptr), S_OK);
    EXPECT_THAT(NewLogLines(), IsEmpty());
    EXPECT_EQ(addIn->OnStartupComplete(nullptr), S_OK);
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::OnStartupComplete"));
    EXPECT_EQ(addIn->OnBeginShutdown(nullptr), S_OK);
    EXPECT_THAT(NewLogLines(), IsEmpty());
    EXPECT_EQ(addIn->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::OnDisconnection"));
}

TEST_F(ConnectLifecycleTest, DisconnectingWithoutButtonTouchesNothing)
{
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    m_outlook->record.clear();
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
    EXPECT_THAT(m_outlook->record, IsEmpty());
    EXPECT_EQ(m_outlook->button->Unadvises(), 0);
}

TEST_F(ConnectLifecycleTest, DisconnectingBeforeConnectingIsHarmless)
{
    Create();
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_UserClosed, nullptr), S_OK);
}

} // namespace
} // namespace orva::test
