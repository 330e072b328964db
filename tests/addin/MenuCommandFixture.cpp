#include "addin/MenuCommandFixture.h"

namespace orva::test
{

CMemberCall CMenuCommandTest::Call(const std::string& member)
{
    for (const CMemberCall& call : m_outlook->record)
    {
        if (call.member == member)
        {
            return call;
        }
    }
    ADD_FAILURE() << member << " was not called";
    return {};
}

void CMenuCommandTest::ExpectNoCommand()
{
    EXPECT_EQ(m_outlook->button->Advises(), 0);
    EXPECT_THAT(MemberNames(m_outlook->record), testing::Not(testing::Contains("button.Caption")));
    EXPECT_EQ(Disconnect(), S_OK);
    EXPECT_EQ(m_outlook->button->Unadvises(), 0);
}

} // namespace orva::test
