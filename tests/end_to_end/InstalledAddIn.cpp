// The add-in of this program's tests: the default build's.
#include "end_to_end/OutlookFixture.h"
#include "outlook/AddInModule.h"

namespace orva::test
{
namespace
{

testing::Environment* const g_installed =
    testing::AddGlobalTestEnvironment(new CInstalledAddIn(kAddInModule));

} // namespace
} // namespace orva::test
