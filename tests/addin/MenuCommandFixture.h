// What the tests of the menu command share: an Outlook that gets the command, and the add-in's calls on it.
#pragma once

#include "addin/AddInFixture.h"

#include <string>

namespace orva::test
{

class CMenuCommandTest : public CAddInTest
{
protected:
    CMenuCommandTest() { UseOutlook(kOutlook2007); }

    /// The first call of this member. Fails the test if there was none.
    CMemberCall Call(const std::string& member);
    HRESULT Disconnect() { return AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr); }
    /// Asserts that no command was added, and disconnects.
    void ExpectNoCommand();
};

} // namespace orva::test
