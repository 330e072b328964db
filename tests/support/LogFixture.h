// What the tests of the debug log share: its switch in both hives, and no log at the start.
#pragma once

#include "harness/LogFile.h"
#include "harness/Registry.h"

#include <gmock/gmock.h>

namespace orva::test
{

/// Every test starts without the switch in either hive and without a log. The old switches are restored.
class CLogTest : public testing::Test
{
protected:
    CLogTest() { Reset(); }
    ~CLogTest() override { DeleteLog(); }

    void Reset()
    {
        m_userTree.Remove();
        m_machineTree.Remove();
        DeleteLog();
    }

    CRegistryTreeGuard m_userTree{HKEY_CURRENT_USER, kLogSwitchKey};
    CRegistryTreeGuard m_machineTree{HKEY_LOCAL_MACHINE, kLogSwitchKey};
    CRegistryValue m_user{HKEY_CURRENT_USER, kLogSwitchKey, kLogSwitchValue};
    CRegistryValue m_machine{HKEY_LOCAL_MACHINE, kLogSwitchKey, kLogSwitchValue};
};

} // namespace orva::test
