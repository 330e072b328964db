#include "addin/ConnectFixture.h"

#include <algorithm>

namespace orva::test
{

std::vector<std::string> CConnectTest::LinesOfConnecting(const wchar_t* version, int mode)
{
    m_outlook = std::make_unique<CFakeOutlook>(version);
    Create();
    NewLogLines();
    EXPECT_EQ(ConnectTo(m_outlook->application.Get(), mode), S_OK);
    return NewLogLines();
}

std::vector<std::string> CConnectTest::LinesOfCheck()
{
    const std::vector<std::string> lines = LinesOfConnecting(kOutlook2010, ext_cm_Startup);
    const auto check = std::ranges::find(lines, kCheck);
    EXPECT_NE(check, lines.end());
    return std::vector<std::string>(check, lines.end());
}

void CConnectTest::ExpectHostEnabledAgain()
{
    EXPECT_THAT(m_host.EnableHistory(), testing::ElementsAre(false, true));
    EXPECT_TRUE(IsWindowEnabled(m_host.Handle()));
}

} // namespace orva::test
