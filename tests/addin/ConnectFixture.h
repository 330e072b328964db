// What the tests of connecting share: an Outlook of a given version, and the log lines of a connection to it.
#pragma once

#include "addin/AddInFixture.h"

#include <string>
#include <vector>

namespace orva::test
{

inline constexpr char kEntry[] = "CConnect::OnConnection";
inline constexpr char kExplorer[] = "CConnect::OnConnection() m_spExplorer is not NULL ";
inline constexpr char kNoExplorer[] = "CConnect::OnConnection() m_spExplorer is NULL ";
inline constexpr char kCheck[] = "CConnect::OnConnection() check for updates ";

class CConnectTest : public CAddInTest
{
protected:
    /// The log lines of OnConnection in this mode.
    std::vector<std::string> LinesOfConnecting(const wchar_t* version, int mode);
    /// The log lines of a start-up connection to Outlook 2010, beginning with the check.
    std::vector<std::string> LinesOfCheck();
    /// The window was disabled once and then enabled once.
    void ExpectHostEnabledAgain();
};

} // namespace orva::test
