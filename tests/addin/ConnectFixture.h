// What the tests of connecting share: an Outlook of a version, and the lines that connecting to it writes.
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
    /// The lines of OnConnection in this mode.
    std::vector<std::string> LinesOfConnecting(const wchar_t* version, int mode);
    /// The lines of a start-up connection to Outlook 2010 from the check on.
    std::vector<std::string> LinesOfCheck();
    /// The window was disabled once and then enabled once.
    void ExpectHostEnabledAgain();
};

} // namespace orva::test
