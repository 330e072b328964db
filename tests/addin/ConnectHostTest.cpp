// What connecting reads from the host, and what follows from the host's version, explorer and application.
#include "addin/AddInFixture.h"
#include "addin/ConnectLines.h"

#include <algorithm>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class ConnectHostTest : public CAddInTest
{
};

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
    UseOutlook(GetParam().version);
    const std::vector<std::string> lines = LinesOfConnecting();
    if (GetParam().hasMenuCommand)
    {
        EXPECT_THAT(lines, ElementsAre(kOnConnection, kAfterStartup, kExplorer, kInsert));
    }
    else
    {
        EXPECT_THAT(lines, ElementsAre(kOnConnection, kAfterStartup));
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

// A host that answers less than it was asked for, and the lines between the connect mode and the check.
struct CAnswerCase
{
    const char* name;
    const wchar_t* version;
    std::function<void(CFakeOutlook&)> change;
    std::vector<std::string> lines;
};

void PrintTo(const CAnswerCase& answer, std::ostream* out)
{
    *out << answer.name;
}

class ConnectAnswerTest : public ConnectHostTest, public testing::WithParamInterface<CAnswerCase>
{
};

TEST_P(ConnectAnswerTest, IsAbsorbedAndTheCheckRuns)
{
    UseOutlook(GetParam().version);
    GetParam().change(*m_outlook);
    std::vector<std::string> lines = LinesOfConnecting(ext_cm_Startup);
    lines.erase(std::ranges::find(lines, kCheck), lines.end());
    std::vector<std::string> expected = {kOnConnection, kStartup};
    expected.insert(expected.end(), GetParam().lines.begin(), GetParam().lines.end());
    EXPECT_EQ(lines, expected);
    const bool hasCommand = GetParam().lines.size() == 2;
    EXPECT_EQ(m_outlook->button->Sinks().size(), hasCommand ? 1u : 0u);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
    EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
}

INSTANTIATE_TEST_SUITE_P(
    Answers, ConnectAnswerTest,
    testing::Values(
        CAnswerCase{"a version that is no text counts as below 14",
                    kOutlook2010,
                    [](CFakeOutlook& outlook) { outlook.application->Give(L"Version", _variant_t(14L)); },
                    {kExplorer, kInsert}},
        CAnswerCase{"a failing version counts as below 14",
                    kOutlook2010,
                    [](CFakeOutlook& outlook) { outlook.application->Fail(L"Version", E_FAIL); },
                    {kExplorer, kInsert}},
        CAnswerCase{
            "without an explorer Outlook 2007 gets no command",
            kOutlook2007,
            [](CFakeOutlook& outlook) { outlook.application->GiveObject(L"ActiveExplorer", nullptr); },
            {kNoExplorer}},
        CAnswerCase{"an explorer of another kind counts as missing",
                    kOutlook2007,
                    [](CFakeOutlook& outlook) {
                        outlook.application->GiveObject(L"ActiveExplorer", outlook.commands.Get());
                    },
                    {kNoExplorer}},
        CAnswerCase{"a failing explorer counts as missing",
                    kOutlook2007,
                    [](CFakeOutlook& outlook) { outlook.application->Fail(L"ActiveExplorer", E_FAIL); },
                    {kNoExplorer}},
        CAnswerCase{
            "without an explorer Outlook 2010 logs nothing about it",
            kOutlook2010,
            [](CFakeOutlook& outlook) { outlook.application->GiveObject(L"ActiveExplorer", nullptr); },
            {}}));

TEST_F(ConnectHostTest, AnApplicationOfAnotherKindConnectsWithoutVersionAndExplorerAndIsChecked)
{
    UseOutlook(kOutlook2010);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->explorer.Get(), ext_cm_Startup), S_OK);
    const std::vector<std::string> lines = NewLogLines();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 4),
                ElementsAre(kOnConnection, kStartup, kNoExplorer, kCheck));
    EXPECT_THAT(m_outlook->record, IsEmpty());
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
}

TEST_F(ConnectHostTest, ANullApplicationIsAbsorbed)
{
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(nullptr, ext_cm_External), S_OK);
    EXPECT_THAT(NewLogLines(),
                ElementsAre(kOnConnection, "CConnect::OnConnection() ext_cm_External ", kNoExplorer));
}

} // namespace
} // namespace orva::test
