// Switches the log off before the first test: an aborted run may have left it on.
#include "harness/LogFile.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

using namespace orva::test;

// Otherwise this process's first entry would open the log and keep it open, and no test could delete it.
class CLogSwitchAtStart : public testing::Environment
{
public:
    void SetUp() override
    {
        // A child process that a test has started keeps the switch that the test has set.
        if (testing::GTEST_FLAG(also_run_disabled_tests))
        {
            return;
        }
        for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        {
            RegDeleteKeyValueW(hive, kLogSwitchKey, kLogSwitchValue);
        }
    }
};

const testing::Environment* const g_atStart = testing::AddGlobalTestEnvironment(new CLogSwitchAtStart);

} // namespace
