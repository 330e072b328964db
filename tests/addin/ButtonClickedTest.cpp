// The Backstage's update button: an explicit check with the host's window disabled, whatever its result.
#include "addin/AddInFixture.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kEntry[] = "CConnect::ButtonClicked";

// The activation context that is active in this thread; null for the program's own.
HANDLE ActiveContext()
{
    HANDLE context = nullptr;
    GetCurrentActCtx(&context);
    ReleaseActCtx(context);
    return context;
}

class ButtonClickedTest : public CAddInTest
{
protected:
    ButtonClickedTest()
    {
        EXPECT_EQ(Connect(kOutlook2010), S_OK);
        NewLogLines();
    }

    // Clicks while the user takes all of his steps, and asserts what holds after every check.
    void Click(IDispatch* control = nullptr)
    {
        m_user.Start();
        EXPECT_EQ(Query<IRibbonCallback>(__uuidof(IRibbonCallback))->ButtonClicked(control), S_OK);
        m_seen = m_user.Finish();
        m_lines = NewLogLines();
        ASSERT_GE(m_lines.size(), 3u);
        EXPECT_THAT(std::vector(m_lines.begin(), m_lines.begin() + 3),
                    ElementsAre(kEntry, "CheckForUpdateExplicit", "CheckForUpdate"));
        EXPECT_EQ(std::count(m_lines.begin(), m_lines.end(), "CheckForUpdate"), 1);
        EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
        EXPECT_TRUE(!m_host.EnableHistory().empty() && m_host.EnableHistory().back());
        for (const CSeenWindow& seen : m_seen)
        {
            EXPECT_EQ(seen.owner, m_host.Handle());
            EXPECT_FALSE(seen.ownerEnabled);
        }
    }

    std::vector<CSeenWindow> m_seen;
    std::vector<std::string> m_lines;
};

TEST_F(ButtonClickedTest, SaysThatTheInstalledVersionIsTheLatest)
{
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    Click();
    ASSERT_EQ(m_seen.size(), 1u);
    EXPECT_EQ(m_seen[0].caption, kProduct);
    EXPECT_EQ(m_server.RequestsFor(kUpdateInfoPath).size(), 1u);
}

TEST_F(ButtonClickedTest, DisablesTheHostFirstAndEnablesItLast)
{
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    Click();
    ASSERT_GE(m_host.EnableHistory().size(), 2u);
    EXPECT_FALSE(m_host.EnableHistory().front());
    EXPECT_TRUE(m_host.EnableHistory().back());
}

TEST_F(ButtonClickedTest, TheClickedControlIsNeitherReadNorKept)
{
    CCallRecord record;
    const ComPtr<CFakeObject> control(new CFakeObject(record, "control", {}));
    control->Give(L"Id", _variant_t(L"somethingElse"));
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    Click(control.Get());
    EXPECT_THAT(record, IsEmpty());
    EXPECT_EQ(control->References(), 1);
}

TEST_F(ButtonClickedTest, OffersANewerBuild)
{
    Publish(R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,)"
            R"("downloadLink":"http://files.orva.example/setup.exe","description":{"default":"Better."}}})");
    m_user.OnDialog(kOfferCaption, [](HWND dialog) { ClickButton(dialog, kLaterButton); });
    Click();
    EXPECT_EQ(m_seen.size(), 1u);
}

TEST_F(ButtonClickedTest, SaysThatTheServerCannotBeReached)
{
    m_server.Refuse();
    m_user.AnswerBox(kConnectError);
    Click();
}

TEST_F(ButtonClickedTest, SaysThatTheFileIsMissing)
{
    m_user.AnswerBox(kConnectError);
    Click();
}

TEST_F(ButtonClickedTest, SaysThatTheFileHasNoEntry)
{
    Publish("{}");
    m_user.AnswerBox(kNotParsed);
    Click();
}

TEST_F(ButtonClickedTest, AWrongTypeSaysNotParsedEndsInOneLineAndEnablesTheHost)
{
    Publish(R"({"x64":{"majorVersion":"one","minorVersion":2,"buildNumber":0}})");
    m_user.AnswerBox(kNotParsed);
    Click();
    EXPECT_EQ(m_lines.back(), "CConnect::ButtonClicked() Caught exception value type is 2 not 4");
    EXPECT_THAT(m_host.EnableHistory(), ElementsAre(false, true));
}

TEST_F(ButtonClickedTest, AReplyWithoutDateSaysConnectErrorEndsInOneLineAndEnablesTheHost)
{
    m_server.On(kUpdateInfoPath, CHttpReply(200, kSameVersion).WithoutDate());
    m_user.AnswerBox(kConnectError);
    Click();
    EXPECT_EQ(m_lines.back(), "CConnect::ButtonClicked() Caught exception invalid vector<T> subscript");
    EXPECT_THAT(m_host.EnableHistory(), ElementsAre(false, true));
}

TEST_F(ButtonClickedTest, AfterAnExceptionTheNextClickWorks)
{
    Publish(R"({"x64":{"majorVersion":"one","minorVersion":2,"buildNumber":0}})");
    m_user.AnswerBox(kNotParsed);
    Click();
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    Click();
}

TEST_F(ButtonClickedTest, TheHostsActivationContextIsActiveAgainAfterwards)
{
    const HANDLE before = ActiveContext();
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    Click();
    EXPECT_EQ(ActiveContext(), before);
    Publish(R"({"x64":{"majorVersion":"one","minorVersion":2,"buildNumber":0}})");
    m_user.AnswerBox(kNotParsed);
    Click();
    EXPECT_EQ(ActiveContext(), before);
}

TEST_F(ButtonClickedTest, WithoutAVisibleHostWindowItChecksAllTheSame)
{
    ShowWindow(m_host.Handle(), SW_HIDE);
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    m_user.Start();
    EXPECT_EQ(Query<IRibbonCallback>(__uuidof(IRibbonCallback))->ButtonClicked(nullptr), S_OK);
    const std::vector<CSeenWindow> seen = m_user.Finish();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].owner, nullptr);
    EXPECT_THAT(m_host.EnableHistory(), IsEmpty());
}

TEST_F(ButtonClickedTest, WorksInAnObjectThatWasNeverConnected)
{
    Create();
    NewLogLines();
    Publish(kSameVersion);
    m_user.AnswerBox(kLatest);
    Click();
}

} // namespace
} // namespace orva::test
