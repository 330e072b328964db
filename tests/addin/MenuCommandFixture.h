// What the tests of the menu command share: an Outlook that gets the command, and the add-in's calls on it.
#pragma once

#include "addin/AddInFixture.h"

#include <memory>
#include <string>
#include <vector>

namespace orva::test
{

class CMenuCommandTest : public CAddInTest
{
protected:
    CMenuCommandTest() { m_outlook = std::make_unique<CFakeOutlook>(kOutlook2007); }

    /// Connects to m_outlook and returns the log lines of that.
    std::vector<std::string> Lines();
    /// The first call of this member. Fails the test if there was none.
    CMemberCall Call(const std::string& member);
    HRESULT Disconnect() { return AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr); }
    void ExpectNoCommand();
};

} // namespace orva::test
