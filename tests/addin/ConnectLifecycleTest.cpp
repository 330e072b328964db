// Connecting and disconnecting: what the add-in writes to the log, shows, and does to the host's window.
#include "addin/AddInFixture.h"
#include "addin/ConnectLines.h"

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ConnectLifecycleTest : public CAddInTest
{
protected:
    ConnectLifecycleTest() { UseOutlook(kOutlook2010); }
};

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
    EXPECT_EQ(LinesOfConnecting(GetParam().mode), GetParam().lines);
    EXPECT_THAT(m_server.Requests(), IsEmpty());
    EXPECT_THAT(m_host.EnableHistory(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Modes, ConnectModeTest,
    testing::Values(CModeCase{0, {kOnConnection, kAfterStartup}},
                    CModeCase{2, {kOnConnection, "CConnect::OnConnection() ext_cm_External "}},
                    CModeCase{3, {kOnConnection, "CConnect::OnConnection() ext_cm_CommandLine "}},
                    CModeCase{4, {kOnConnection}}, CModeCase{5, {kOnConnection}},
                    CModeCase{-1, {kOnConnection}}, CModeCase{1000, {kOnConnection}}));

TEST_F(ConnectLifecycleTest, StartupRunsTheCheckOnceAndSilentlyWhileTheHostWindowIsDisabled)
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
    const std::vector<std::string> lines = LinesOfConnecting(ext_cm_Startup);
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    EXPECT_FALSE(wasEnabled);
    EXPECT_THAT(m_host.EnableHistory(), ElementsAre(false, true));
    ASSERT_GE(lines.size(), 4u);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 4),
                ElementsAre(kOnConnection, kStartup, kCheck, "CheckForUpdate"));
    EXPECT_THAT(lines, Contains("CheckForUpdate").Times(1));
    EXPECT_THAT(lines, Not(Contains("CheckForUpdateExplicit")));
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
}

TEST_F(ConnectLifecycleTest, TheCheckAlsoRunsInAnOutlookWithTheMenuCommandAndInALaterOne)
{
    for (const wchar_t* const version : {kOutlook2007, kOutlook2013})
    {
        EXPECT_EQ(Connect(version, ext_cm_Startup), S_OK);
    }
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 2u);
}

// A file whose end is missing makes the check show both an error and an offer.
TEST_F(ConnectLifecycleTest, WhatTheCheckShowsBelongsToTheDisabledHostWindow)
{
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,)"
            R"("downloadLink":"http://files.orva.example/setup.exe","description":{"default":"Better."}})");
    m_user.AnswerBox(kConnectError);
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { ClickButton(dialog, kLaterButton); });
    m_user.Start();
    EXPECT_EQ(Connect(kOutlook2010, ext_cm_Startup), S_OK);
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 2u);
    for (const CSeenWindow& window : seen)
    {
        EXPECT_EQ(window.owner, m_host.Handle());
        EXPECT_FALSE(window.ownerEnabled);
    }
    EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
}

TEST_F(ConnectLifecycleTest, AnExceptionOfTheCheckIsAbsorbedInSilenceWithOneLineAndTheObjectGoesOn)
{
    Publish(R"({"x64":{"majorVersion":"one","minorVersion":2,"buildNumber":0}})");
    m_user.Start();
    const std::vector<std::string> lines = LinesOfConnecting(ext_cm_Startup);
    EXPECT_THAT(m_user.Finish(), IsEmpty());
    EXPECT_THAT(lines, Contains(testing::HasSubstr("Caught exception")).Times(1));
    EXPECT_EQ(lines.back(), "CConnect::OnConnection() Caught exception value type is 2 not 4");
    EXPECT_THAT(m_host.EnableHistory(), ElementsAre(false, true));

    _bstr_t markup;
    EXPECT_EQ(
        Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(nullptr, markup.GetAddress()),
        S_OK);
    EXPECT_GT(markup.length(), 0u);
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
}

TEST_F(ConnectLifecycleTest, WithoutAVisibleHostWindowTheCheckRunsAllTheSame)
{
    ShowWindow(m_host.Handle(), SW_HIDE);
    EXPECT_EQ(Connect(kOutlook2010, ext_cm_Startup), S_OK);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
    EXPECT_THAT(m_host.EnableHistory(), IsEmpty());
}

TEST_F(ConnectLifecycleTest, KeepsApplicationExplorerAndButtonUntilTheObjectIsReleased)
{
    UseOutlook(kOutlook2007);
    const LONG application = m_outlook->application->References();
    const LONG explorer = m_outlook->explorer->References();
    const LONG button = m_outlook->button->References();
    Create();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get()), S_OK);
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_UserClosed, nullptr), S_OK);
    EXPECT_EQ(m_outlook->application->References(), application + 1);
    EXPECT_EQ(m_outlook->explorer->References(), explorer + 1);
    EXPECT_EQ(m_outlook->button->References(), button + 1);
    ReleaseAll();
    EXPECT_EQ(m_outlook->application->References(), application);
    EXPECT_EQ(m_outlook->explorer->References(), explorer);
    EXPECT_EQ(m_outlook->button->References(), button);
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

TEST_F(ConnectLifecycleTest, DisconnectingWithoutButtonTouchesNothingConnectedOrNot)
{
    Create();
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_UserClosed, nullptr), S_OK);
    EXPECT_EQ(ConnectTo(m_outlook->application.Get()), S_OK);
    m_outlook->record.clear();
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
    EXPECT_THAT(m_outlook->record, IsEmpty());
    EXPECT_EQ(m_outlook->button->Unadvises(), 0);
}

} // namespace
} // namespace orva::test
