// A registration that fails half-way: what it returns, what it rolls back and what it leaves.
#include "addin/RegistrationFixture.h"
#include "addin/RegistrationObstacle.h"
#include "harness/Files.h"

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

class RegistrationRollbackTest : public CRegistrationTest
{
};

TEST_F(RegistrationRollbackTest, AFailureOfTheAddInsEntryIsReturnedAndNothingIsRegistered)
{
    const CObstacle office(L"Software\\Microsoft\\Office");
    Mark();
    EXPECT_EQ(m_module->Register(), kChildMustBeVolatile);
    EXPECT_THAT(Added(true), IsEmpty());
}

TEST_F(RegistrationRollbackTest, AFailedInstallationReturnsTheRegistrationsFailureAndUnregisters)
{
    const CObstacle office(L"Software\\Microsoft\\Office");
    Mark();
    m_log.NewLines();
    EXPECT_EQ(m_module->Install(TRUE, nullptr), kChildMustBeVolatile);
    EXPECT_THAT(m_log.NewLines(), ElementsAre("DllInstall", "DllRegisterServer", "DllUnregisterServer"));
    EXPECT_THAT(Added(true), IsEmpty());
}

// In the next two tests the rollback stops at the type library, which was never registered, and so does not
// reach the add-in's entry.
TEST_F(RegistrationRollbackTest, AFailureHalfwayThroughTheClassRollsBackTheClassButNotTheEntry)
{
    const CObstacle progId(kProgIdKey);
    EXPECT_EQ(m_module->Install(TRUE, nullptr), kChildMustBeVolatile);
    EXPECT_FALSE(IsRegisteredForMachine());
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kVersionedProgIdKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kLibraryKey));
    EXPECT_TRUE(IsAddInEntered());
}

TEST_F(RegistrationRollbackTest, AMissingTypeLibraryRollsBackTheClassButNotTheEntry)
{
    const std::string head("MSFT\x02\x00\x01\x00", 8);
    const CAddInCopy copy(head, std::string(head.size(), 'x'));
    Load(copy.Path());
    EXPECT_EQ(m_module->Install(TRUE, nullptr), TYPE_E_CANTLOADLIBRARY);
    EXPECT_FALSE(IsRegisteredForMachine());
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kProgIdKey));
    EXPECT_FALSE(RegistryKeyExists(HKEY_LOCAL_MACHINE, kVersionedProgIdKey));
    EXPECT_TRUE(IsAddInEntered());
    // The copy cannot be deleted while it is loaded.
    m_module.reset();
}

TEST_F(RegistrationRollbackTest, WithoutTheCauseOfAFailureTheNextRegistrationIsComplete)
{
    {
        const CObstacle progId(kProgIdKey);
        EXPECT_EQ(m_module->Install(TRUE, nullptr), kChildMustBeVolatile);
    }
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, kProgIdKey);
    DeleteRegistryKey(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Office");
    Mark();
    EXPECT_EQ(m_module->Install(TRUE, nullptr), S_OK);
    EXPECT_THAT(Added(), UnorderedElementsAreArray(Joined(AddInLines(), ClassLines("HKLM"))));
}

} // namespace
} // namespace orva::test
