// When the module may be unloaded, and that COM loads and unloads it.
#include "addin/ComConformance.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

class ComConformanceModuleTest : public CComConformanceTest
{
};

TEST_F(ComConformanceModuleTest, TheModuleStaysWhileAnObjectOrTheClassObjectIsHeld)
{
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
    ComPtr<IClassFactory> factory = Factory();
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    Create();
    factory.Reset();
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    m_object.Reset();
    NewLogLines();
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
    EXPECT_THAT(NewLogLines(), ElementsAre("DllCanUnloadNow"));
}

TEST_F(ComConformanceModuleTest, TheModuleStaysWhileAnyInterfaceIsHeld)
{
    for (const CInterface& each : AddInInterfaces())
    {
        Create();
        ComPtr<IUnknown> held = Query<IUnknown>(each.iid);
        m_object.Reset();
        EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE) << each.name;
        held.Reset();
        EXPECT_EQ(m_module->CanUnloadNow(), S_OK) << each.name;
    }
}

TEST_F(ComConformanceModuleTest, TheModuleStaysWhileTheServerIsLocked)
{
    EXPECT_EQ(Factory()->LockServer(TRUE), S_OK);
    EXPECT_EQ(Factory()->LockServer(TRUE), S_OK);
    EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

// That nothing is left of a hundred rounds is tested by the long run.
TEST_F(ComConformanceModuleTest, ComCreatesTheRegisteredClassAndUnloadsTheModuleTimeAndAgain)
{
    ReleaseAll();
    CLSID classId{};
    ASSERT_EQ(CLSIDFromProgID(kAddInProgId, &classId), S_OK);
    EXPECT_EQ(classId, kAddInClass);
    for (int round = 0; round < 3; ++round)
    {
        ComPtr<_IDTExtensibility2> addIn;
        ASSERT_EQ(
            CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID__IDTExtensibility2, Out(addIn)),
            S_OK);
        EXPECT_EQ(addIn->OnStartupComplete(nullptr), S_OK);
        CoFreeUnusedLibrariesEx(0, 0);
        EXPECT_TRUE(CAddInModule::IsLoaded());
        addIn.Reset();
        CoFreeUnusedLibrariesEx(0, 0);
        CoFreeUnusedLibrariesEx(0, 0);
        EXPECT_FALSE(CAddInModule::IsLoaded());
    }
}

} // namespace
} // namespace orva::test
