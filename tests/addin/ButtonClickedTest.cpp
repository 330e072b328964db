// The Backstage's update button: an explicit check with the host's window disabled, whatever its result. What
// the check itself shows is tested with the check.
#include "addin/AddInFixture.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ButtonClickedTest : public CAddInTest
{
protected:
    ButtonClickedTest() { EXPECT_EQ(Connect(kOutlook2010), S_OK); }

    // Clicks. The user answers a box with this text, which is the only window shown. Asserts what holds after
    // every check.
    void Click(const wchar_t* text, IDispatch* control = nullptr)
    {
        const HANDLE context = ActiveContext();
        NewLogLines();
        m_user.AnswerBox(text).Start();
        EXPECT_EQ(Query<IRibbonCallback>(__uuidof(IRibbonCallback))->ButtonClicked(control), S_OK);
        m_seen = m_user.Finish();
        EXPECT_EQ(m_seen.size(), 1u);
        EXPECT_EQ(ActiveContext(), context);
        m_lines = NewLogLines();
        ASSERT_GE(m_lines.size(), 3u);
        EXPECT_THAT(std::vector(m_lines.begin(), m_lines.begin() + 3),
                    ElementsAre("CConnect::ButtonClicked", "CheckForUpdateExplicit", "CheckForUpdate"));
        EXPECT_THAT(m_lines, Contains("CheckForUpdate").Times(1));
    }

    void ExpectBoxOfTheDisabledHost()
    {
        ASSERT_EQ(m_seen.size(), 1u);
        EXPECT_EQ(m_seen[0].owner, m_host.Handle());
        EXPECT_FALSE(m_seen[0].ownerEnabled);
        ASSERT_GE(m_host.EnableHistory().size(), 2u);
        EXPECT_FALSE(m_host.EnableHistory().front());
        EXPECT_TRUE(m_host.EnableHistory().back());
        EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
    }

    std::vector<CSeenWindow> m_seen;
    std::vector<std::string> m_lines;
};

TEST_F(ButtonClickedTest, RunsOneExplicitCheckWithTheHostDisabledAndNeitherReadsNorKeepsTheControl)
{
    CCallRecord record;
    const ComPtr<CFakeObject> control(new CFakeObject(record, "control", {}));
    control->Give(L"Id", _variant_t(L"somethingElse"));
    Publish(kSameVersion);
    Click(kLatest, control.Get());
    ExpectBoxOfTheDisabledHost();
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
    EXPECT_THAT(record, IsEmpty());
    EXPECT_EQ(control->References(), 1);
}

TEST_F(ButtonClickedTest, AnExceptionOfTheCheckEndsInOneLineAndTheNextClickWorks)
{
    Publish(R"({"x64":{"majorVersion":"one","minorVersion":2,"buildNumber":0}})");
    Click(kNotParsed);
    EXPECT_EQ(m_lines.back(), "CConnect::ButtonClicked() Caught exception value type is 2 not 4");
    EXPECT_THAT(m_lines, Contains(testing::HasSubstr("Caught exception")).Times(1));
    ExpectBoxOfTheDisabledHost();
    EXPECT_THAT(m_host.EnableHistory(), ElementsAre(false, true));
    Publish(kSameVersion);
    Click(kLatest);
}

TEST_F(ButtonClickedTest, TheAddInsActivationContextIsActiveMeanwhile)
{
    const HANDLE before = ActiveContext();
    Publish(kSameVersion);
    m_user.Then("another activation context is active", [&] { return WaitForContextOtherThan(before); });
    Click(kLatest);
}

TEST_F(ButtonClickedTest, WithoutAVisibleHostWindowItChecksAllTheSame)
{
    ShowWindow(m_host.Handle(), SW_HIDE);
    Publish(kSameVersion);
    Click(kLatest);
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].owner, nullptr);
    EXPECT_THAT(m_host.EnableHistory(), IsEmpty());
}

TEST_F(ButtonClickedTest, WorksInAnObjectThatWasNeverConnected)
{
    Create();
    Publish(kSameVersion);
    Click(kLatest);
}

} // namespace
} // namespace orva::test
