// The add-in's object created, called and last released across apartments.
#include "addin/ComConformance.h"
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/Threads.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

// The interfaces that a proxy gives: those that a type library describes. The class's primary interface is in
// none, so it cannot be marshaled to another apartment.
const CInterface kProxied[] = {
    {"IUnknown", IID_IUnknown},
    {"IDispatch", IID_IDispatch},
    {"_IDTExtensibility2", IID__IDTExtensibility2},
    {"IRibbonExtensibility", IID_IRibbonExtensibility},
    {"IRibbonCallback", __uuidof(IRibbonCallback)},
};
const CInterface kNotProxied[] = {
    {"IConnect", kConnectInterface},
    {"_CommandBarButtonEvents", DIID__CommandBarButtonEvents},
    {"IClassFactory", IID_IClassFactory},
    {"IConnectionPointContainer", IID_IConnectionPointContainer},
};

// A proxy answers for IClientSecurity; the add-in's object does not.
bool IsProxy(IUnknown* object)
{
    ComPtr<IUnknown> security;
    return SUCCEEDED(object->QueryInterface(IID_IClientSecurity, Out(security)));
}

// Uses the object that another apartment was given.
void UseThroughProxy(IDispatch* object)
{
    EXPECT_TRUE(IsProxy(object));
    wchar_t name[] = L"ButtonClicked";
    LPOLESTR names[] = {name};
    DISPID id = DISPID_UNKNOWN;
    EXPECT_EQ(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    EXPECT_EQ(id, 42000);
    ComPtr<_IDTExtensibility2> addIn;
    ASSERT_EQ(object->QueryInterface(IID__IDTExtensibility2, Out(addIn)), S_OK);
    // Unlike the object, a proxy does not accept a null pointer here.
    SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 0, 0);
    const CLogMark log;
    EXPECT_EQ(addIn->OnStartupComplete(&custom), S_OK);
    EXPECT_THAT(log.Texts(), testing::Contains("CConnect::OnStartupComplete").Times(1));
    SafeArrayDestroy(custom);
    ExpectQueryInterfaceRules(object, kProxied, kNotProxied, Place::Proxy);
}

void UseMarshaled(IStream* marshaled)
{
    ComPtr<IDispatch> object;
    ASSERT_EQ(CoGetInterfaceAndReleaseStream(marshaled, IID_IDispatch, Out(object)), S_OK);
    UseThroughProxy(object.Get());
}

bool BecomesUnloadable(const CAddInModule& module)
{
    return PumpUntil([&] { return module.CanUnloadNow() == S_OK; });
}

class ComConformanceApartmentTest : public CComConformanceTest
{
};

TEST_F(ComConformanceApartmentTest, AnotherApartmentCallsAndLastReleasesTheObjectThroughAProxy)
{
    Create();
    IStream* marshaled = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, m_object.Get(), &marshaled), S_OK);
    m_object.Reset();
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    RunInApartment(COINIT_MULTITHREADED, [&] { UseMarshaled(marshaled); });
    EXPECT_TRUE(BecomesUnloadable(*m_module));
}

// Runs in a process of its own, because under Wine the module stays loaded at its end.
TEST(ComConformanceMultithreadedTest, CreatesTheClassBehindAProxyAndLastReleasesTheObject)
{
    if (GetEnvironmentVariableW(L"ORVA_HELPER", nullptr, 0) == 0)
    {
        CChildProcess process({.program = BuiltFile(L"test_addin.exe"),
                               .arguments = {L"--gtest_filter=ComConformanceMultithreadedTest.*"},
                               .environment = {{L"ORVA_HELPER", L"1"}}});
        EXPECT_EQ(process.WaitForExit(), 0u) << process.Output();
        return;
    }

    auto module = std::make_unique<CAddInModule>();
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(module->GetClassObject(kAddInClass, IID_IClassFactory, Out(factory)), S_OK);
    const ULONG before = CountOf(factory.Get());
    const std::set<DWORD> threads = ThreadIds();
    std::set<DWORD> added;
    RunInApartment(COINIT_MULTITHREADED, [&] {
        ComPtr<IDispatch> object;
        ASSERT_EQ(CoCreateInstance(kAddInClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, Out(object)),
                  S_OK);
        UseThroughProxy(object.Get());
        std::ranges::set_difference(ThreadIds(), threads, std::inserter(added, added.end()));
        added.erase(GetCurrentThreadId());
    });
    // The thread that Wine created for the object's apartment ends asynchronously and then tries to free the
    // module. Wait for it, so that in every run it does so while the leaked reference still holds the module.
    EXPECT_TRUE(!IsWine() || PumpUntil([&] { return !std::ranges::includes(ThreadIds(), added); }));
    // Wine leaks one reference to the class object when it creates an object for another kind of apartment.
    // Nothing else still holds the module. Windows leaks none.
    const ULONG leaked = IsWine() ? 1 : 0;
    EXPECT_TRUE(PumpUntil([&] { return CountOf(factory.Get()) == before + leaked; }))
        << CountOf(factory.Get()) - before;
    for (ULONG i = 0; i < leaked; ++i)
    {
        EXPECT_EQ(module->CanUnloadNow(), S_FALSE);
        factory.Get()->Release();
    }
    factory.Reset();
    EXPECT_TRUE(BecomesUnloadable(*module));
    module.reset();
    // Under Wine the module stays loaded, so no other test could follow in this process.
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(CAddInModule::IsLoaded(), IsWine());
}

TEST_F(ComConformanceApartmentTest, AnObjectOfASecondSingleThreadedApartmentIsLastReleasedFromTheFirst)
{
    const UniqueHandle given = MakeEvent();
    const UniqueHandle released = MakeEvent();
    IStream* marshaled = nullptr;
    // This thread unmarshals the object as soon as it is there, while the other one dispatches its calls.
    m_host.Post([&] {
        EXPECT_EQ(WaitForSingleObject(given.get(), kPatience), WAIT_OBJECT_0);
        if (marshaled != nullptr)
        {
            UseMarshaled(marshaled);
        }
        SetEvent(released.get());
    });
    RunInApartment(COINIT_APARTMENTTHREADED, [&] {
        {
            ComPtr<IDispatch> object;
            ASSERT_EQ(
                CoCreateInstance(kAddInClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, Out(object)),
                S_OK);
            EXPECT_FALSE(IsProxy(object.Get()));
            EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object.Get(), &marshaled), S_OK);
        }
        SetEvent(given.get());
        PumpUntil([&] { return WaitForSingleObject(released.get(), 0) == WAIT_OBJECT_0; });
    });
    EXPECT_TRUE(BecomesUnloadable(*m_module));
}

} // namespace
} // namespace orva::test
