// When the module may be unloaded, and that it can be loaded and unloaded repeatedly.
#include "addin/ComConformance.h"
#include "harness/Report.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

constexpr int kRounds = 100;

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

TEST_F(ComConformanceModuleTest, TheModuleIsLoadedUsedAndUnloadedAHundredTimes)
{
    int rounds = 0;
    for (; rounds < kRounds && !HasFailure(); ++rounds)
    {
        CFakeOutlook outlook(rounds % 2 == 0 ? kOutlook2007 : kOutlook2010);
        Create();
        EXPECT_EQ(ConnectTo(outlook.application.Get(), ext_cm_AfterStartup), S_OK);
        _bstr_t markup;
        EXPECT_EQ(
            Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(nullptr, markup.GetAddress()),
            S_OK);
        EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
        ReleaseAll();
        m_module = std::make_unique<CAddInModule>();
    }
    EXPECT_EQ(rounds, kRounds);
    AddReportRow(
        "com-conformance",
        {"10 the module, loaded, connected to Outlook, let go and unloaded",
         std::to_string(rounds) + " rounds",
         HasFailure() ? "a round failed" : "DllCanUnloadNow said S_OK and the module went each time"});
}

TEST_F(ComConformanceModuleTest, ComCreatesTheRegisteredClassAndUnloadsTheModuleAHundredTimes)
{
    ReleaseAll();
    CLSID classId{};
    ASSERT_EQ(CLSIDFromProgID(kAddInProgId, &classId), S_OK);
    EXPECT_EQ(classId, kAddInClass);
    int rounds = 0;
    for (; rounds < kRounds && !HasFailure(); ++rounds)
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
    EXPECT_EQ(rounds, kRounds);
    AddReportRow("com-conformance",
                 {"11 the module, loaded and unloaded by COM itself", std::to_string(rounds) + " rounds",
                  HasFailure() ? "a round failed" : "in use it stays, unused it goes"});
}

} // namespace
} // namespace orva::test
