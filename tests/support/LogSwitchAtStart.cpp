// Puts the log's switch right before the first test: a run that was ended half-way may have left it on.
#include "harness/LogFile.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

using namespace orva::test;

// The log of this process would be opened by its first entry and stay open, and no test could remove it.
class CLogSwitchAtStart : public testing::Environment
{
public:
    void SetUp() override
    {
        // A script that a test has started keeps the switch that the test has set.
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
