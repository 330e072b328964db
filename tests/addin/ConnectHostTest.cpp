// What connecting reads from the host, and what follows from the host's version, explorer and application.
#include "addin/ConnectFixture.h"

namespace orva::test
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using ConnectHostTest = CConnectTest;

TEST_F(ConnectHostTest, AsksTheApplicationForExplorerAndVersionOnceInThisOrder)
{
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    EXPECT_THAT(MemberNames(m_outlook->record),
                ElementsAre("application.ActiveExplorer", "application.Version"));
}

struct CVersionCase
{
    const wchar_t* version;
    bool hasMenuCommand;
    bool hasBackstage;
};

void PrintTo(const CVersionCase& version, std::ostream* out)
{
    *out << testing::PrintToString(version.version);
}

class ConnectVersionTest : public ConnectHostTest, public testing::WithParamInterface<CVersionCase>
{
};

TEST_P(ConnectVersionTest, DecidesBetweenMenuCommandBackstageAndNeither)
{
    const std::vector<std::string> lines = LinesOfConnecting(GetParam().version, ext_cm_AfterStartup);
    if (GetParam().hasMenuCommand)
    {
        EXPECT_THAT(lines, ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_AfterStartup ", kExplorer,
                                       "CConnect::InsertMenuCommands"));
    }
    else
    {
        EXPECT_THAT(lines, ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_AfterStartup "));
    }
    EXPECT_EQ(m_outlook->button->Sinks().size(), GetParam().hasMenuCommand ? 1u : 0u);

    _bstr_t markup;
    EXPECT_EQ(
        Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(nullptr, markup.GetAddress()),
        S_OK);
    EXPECT_EQ(markup.length() > 0, GetParam().hasBackstage);
}

INSTANTIATE_TEST_SUITE_P(
    Versions, ConnectVersionTest,
    testing::Values(CVersionCase{kOutlook2007, true, false}, CVersionCase{kOutlook2010, false, true},
                    CVersionCase{kOutlook2013, false, false}, CVersionCase{L"14", false, true},
                    CVersionCase{L"13.9", true, false}, CVersionCase{L"140.0", false, false},
                    CVersionCase{L"  14.0", true, false}, CVersionCase{L"v14.0", true, false},
                    CVersionCase{L"", true, false}, CVersionCase{L"-14", true, false},
                    CVersionCase{L"+14", true, false}));

TEST_F(ConnectHostTest, AVersionThatIsNoTextCountsAsBelow14)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2010);
    m_outlook->application->Give(L"Version", _variant_t(14L));
    Create();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_AfterStartup), S_OK);
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
}

TEST_F(ConnectHostTest, AFailingVersionCountsAsBelow14AndTheCheckRuns)
{
    Publish(kSameVersion);
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2010);
    m_outlook->application->Fail(L"Version", E_FAIL);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_Startup), S_OK);
    EXPECT_THAT(NewLogLines(), Not(Contains(HasSubstr("Caught exception"))));
    EXPECT_EQ(m_outlook->button->Sinks().size(), 1u);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
}

TEST_F(ConnectHostTest, WithoutAnExplorerOutlook2007LogsItAndGetsNoCommand)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2007);
    m_outlook->application->GiveObject(L"ActiveExplorer", nullptr);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_AfterStartup), S_OK);
    EXPECT_THAT(NewLogLines(),
                ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_AfterStartup ", kNoExplorer));
    EXPECT_THAT(MemberNames(m_outlook->record),
                ElementsAre("application.ActiveExplorer", "application.Version"));
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
}

TEST_F(ConnectHostTest, AnActiveExplorerOfAnotherKindCountsAsMissing)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2007);
    m_outlook->application->GiveObject(L"ActiveExplorer", m_outlook->commands.Get());
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_AfterStartup), S_OK);
    EXPECT_THAT(NewLogLines(), Contains(kNoExplorer));
}

TEST_F(ConnectHostTest, AFailingActiveExplorerCountsAsMissing)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2007);
    m_outlook->application->Fail(L"ActiveExplorer", E_OUTOFMEMORY);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_AfterStartup), S_OK);
    EXPECT_THAT(NewLogLines(),
                ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_AfterStartup ", kNoExplorer));
}

TEST_F(ConnectHostTest, WithoutAnExplorerOutlook2010LogsNothingAboutIt)
{
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2010);
    m_outlook->application->GiveObject(L"ActiveExplorer", nullptr);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), ext_cm_AfterStartup), S_OK);
    EXPECT_THAT(NewLogLines(), ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_AfterStartup "));
}

TEST_F(ConnectHostTest, AnApplicationOfAnotherKindConnectsWithoutVersionAndExplorerAndIsChecked)
{
    Publish(kSameVersion);
    m_outlook = std::make_unique<CFakeOutlook>(kOutlook2010);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->explorer.Get(), ext_cm_Startup), S_OK);
    const std::vector<std::string> lines = NewLogLines();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 4),
                ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_Startup ", kNoExplorer, kCheck));
    EXPECT_THAT(m_outlook->record, IsEmpty());
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
}

TEST_F(ConnectHostTest, ANullApplicationIsAbsorbed)
{
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(nullptr, ext_cm_External), S_OK);
    EXPECT_THAT(NewLogLines(), ElementsAre(kEntry, "CConnect::OnConnection() ext_cm_External ", kNoExplorer));
}

} // namespace
} // namespace orva::test
