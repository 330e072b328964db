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

// What another apartment observed of the object that it was given.
struct CFindings
{
    HRESULT got = E_FAIL;
    bool isProxy = false;
    DISPID buttonClicked = 0;
    HRESULT started = E_FAIL;
    CConformance conformance;
};

// A proxy answers for IClientSecurity; the add-in's object does not.
bool IsProxy(IUnknown* object)
{
    ComPtr<IUnknown> security;
    return SUCCEEDED(object->QueryInterface(IID_IClientSecurity, Out(security)));
}

void UseThroughProxy(IDispatch* object, CFindings& findings)
{
    findings.isProxy = IsProxy(object);
    wchar_t name[] = L"ButtonClicked";
    LPOLESTR names[] = {name};
    object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &findings.buttonClicked);
    ComPtr<_IDTExtensibility2> addIn;
    if (SUCCEEDED(object->QueryInterface(IID__IDTExtensibility2, Out(addIn))))
    {
        // Unlike the object, a proxy does not accept a null pointer here.
        SAFEARRAY* custom = SafeArrayCreateVector(VT_VARIANT, 0, 0);
        findings.started = addIn->OnStartupComplete(&custom);
        SafeArrayDestroy(custom);
    }
    findings.conformance = CheckQueryInterface(object, kProxied, kNotProxied, Place::Proxy);
}

// Asserts what another apartment observed and what the add-in logged, and adds a row to the report.
void ExpectUsedThroughProxy(const std::vector<std::string>& logged, const std::string& object,
                            const CFindings& findings)
{
    EXPECT_EQ(findings.got, S_OK);
    EXPECT_TRUE(findings.isProxy);
    EXPECT_EQ(findings.buttonClicked, 42000);
    EXPECT_EQ(findings.started, S_OK);
    EXPECT_THAT(logged, testing::Contains("CConnect::OnStartupComplete").Times(1));
    ReportConformance(object, findings.conformance);
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
    CFindings findings;
    EXPECT_TRUE(RunInApartment(COINIT_MULTITHREADED, [&] {
        ComPtr<IDispatch> object;
        findings.got = CoGetInterfaceAndReleaseStream(marshaled, IID_IDispatch, Out(object));
        if (SUCCEEDED(findings.got))
        {
            UseThroughProxy(object.Get(), findings);
        }
    }));
    EXPECT_TRUE(BecomesUnloadable(*m_module));
    ExpectUsedThroughProxy(NewLogLines(),
                           "07 a proxy for Outlook's object, last released in the multithreaded apartment",
                           findings);
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
    CLogMark log;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(module->GetClassObject(kAddInClass, IID_IClassFactory, Out(factory)), S_OK);
    const ULONG before = CountOf(factory.Get());
    CFindings findings;
    const std::set<DWORD> threads = ThreadIds();
    std::set<DWORD> added;
    EXPECT_TRUE(RunInApartment(COINIT_MULTITHREADED, [&] {
        ComPtr<IDispatch> object;
        findings.got =
            CoCreateInstance(kAddInClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, Out(object));
        if (SUCCEEDED(findings.got))
        {
            UseThroughProxy(object.Get(), findings);
        }
        std::ranges::set_difference(ThreadIds(), threads, std::inserter(added, added.end()));
        added.erase(GetCurrentThreadId());
    }));
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
    ExpectUsedThroughProxy(log.NewLines(),
                           "08 a proxy for the object that the multithreaded apartment created", findings);
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
    bool isDirectForItsOwn = false;
    HRESULT created = E_FAIL;
    CFindings findings;
    // This thread unmarshals the object as soon as it is there, while the other one dispatches its calls.
    m_host.Post([&] {
        if (WaitForSingleObject(given.get(), kPatience) == WAIT_OBJECT_0 && SUCCEEDED(created))
        {
            ComPtr<IDispatch> object;
            findings.got = CoGetInterfaceAndReleaseStream(marshaled, IID_IDispatch, Out(object));
            if (SUCCEEDED(findings.got))
            {
                UseThroughProxy(object.Get(), findings);
            }
        }
        SetEvent(released.get());
    });
    EXPECT_TRUE(RunInApartment(COINIT_APARTMENTTHREADED, [&] {
        {
            ComPtr<IDispatch> object;
            created =
                CoCreateInstance(kAddInClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, Out(object));
            if (SUCCEEDED(created))
            {
                isDirectForItsOwn = !IsProxy(object.Get());
                created = CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object.Get(), &marshaled);
            }
        }
        SetEvent(given.get());
        PumpUntil([&] { return WaitForSingleObject(released.get(), 0) == WAIT_OBJECT_0; });
    }));
    EXPECT_EQ(created, S_OK);
    EXPECT_TRUE(isDirectForItsOwn);
    EXPECT_TRUE(BecomesUnloadable(*m_module));
    ExpectUsedThroughProxy(
        NewLogLines(), "09 a proxy for the object that a second single-threaded apartment created", findings);
}

} // namespace
} // namespace orva::test
