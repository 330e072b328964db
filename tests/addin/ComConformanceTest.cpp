// The rules of COM for the class object, for the object on its own and aggregated, and for the module's life.
#include "addin/AddInFixture.h"

#include <olectl.h>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

/// Every interface of the object; the first is its identity.
const IID kInterfaces[] = {IID_IUnknown,
                           IID_IDispatch,
                           kConnectInterface,
                           IID__IDTExtensibility2,
                           IID_IRibbonExtensibility,
                           __uuidof(IRibbonCallback)};

/// Interfaces that the object must not claim. The click's sink is an object of its own.
const IID kOthers[] = {DIID__CommandBarButtonEvents, IID_IClassFactory, IID_IMarshal,
                       IID_IConnectionPointContainer, IID_IProvideClassInfo};

template <typename Interface> void** Out(ComPtr<Interface>& pointer)
{
    return reinterpret_cast<void**>(pointer.ReleaseAndGetAddressOf());
}

ULONG CountOf(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}

/// An outer object that aggregates the add-in: it knows IUnknown and asks the inner object for the rest.
class COuter : public IUnknown
{
public:
    virtual ~COuter() = default;
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (iid == IID_IUnknown)
        {
            *object = this;
            AddRef();
            return S_OK;
        }
        return m_inner->QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override { return --m_references; }

    IUnknown** Inner() { return m_inner.GetAddressOf(); }
    void LetGo() { m_inner.Reset(); }
    ULONG References() const { return m_references; }

private:
    ULONG m_references = 1;
    ComPtr<IUnknown> m_inner;
};

class ComConformanceTest : public CAddInTest
{
protected:
    ComPtr<IClassFactory> Factory()
    {
        ComPtr<IClassFactory> factory;
        EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IClassFactory, Out(factory)), S_OK);
        return factory;
    }

    /// Checks what QueryInterface promises of every pair of interfaces of one object.
    static void CheckQueryInterface(IUnknown* object)
    {
        ComPtr<IUnknown> identity;
        ASSERT_EQ(object->QueryInterface(IID_IUnknown, Out(identity)), S_OK);
        for (const IID& from : kInterfaces)
        {
            ComPtr<IUnknown> first;
            ASSERT_EQ(object->QueryInterface(from, Out(first)), S_OK);
            ComPtr<IUnknown> again;
            ASSERT_EQ(first->QueryInterface(from, Out(again)), S_OK);
            EXPECT_EQ(again.Get(), first.Get());
            for (const IID& to : kInterfaces)
            {
                ComPtr<IUnknown> second;
                ASSERT_EQ(first->QueryInterface(to, Out(second)), S_OK);
                ComPtr<IUnknown> back;
                ASSERT_EQ(second->QueryInterface(from, Out(back)), S_OK);
                EXPECT_EQ(back.Get(), first.Get());
                ComPtr<IUnknown> direct;
                ASSERT_EQ(object->QueryInterface(to, Out(direct)), S_OK);
                EXPECT_EQ(direct.Get(), second.Get());
                ComPtr<IUnknown> sameIdentity;
                ASSERT_EQ(second->QueryInterface(IID_IUnknown, Out(sameIdentity)), S_OK);
                EXPECT_EQ(sameIdentity.Get(), identity.Get());
            }
            for (const IID& other : kOthers)
            {
                void* nothing = first.Get();
                EXPECT_EQ(first->QueryInterface(other, &nothing), E_NOINTERFACE);
                EXPECT_EQ(nothing, nullptr);
            }
        }
    }
};

TEST_F(ComConformanceTest, QueryInterfaceIsReflexiveSymmetricAndTransitiveAndKeepsTheIdentity)
{
    Create();
    CheckQueryInterface(m_object.Get());
}

TEST_F(ComConformanceTest, QueryInterfaceWithoutAPlaceForTheAnswerIsEPointer)
{
    Create();
    for (const IID& iid : kInterfaces)
    {
        EXPECT_EQ(Query<IUnknown>(iid)->QueryInterface(IID_IDispatch, nullptr), E_POINTER);
    }
}

TEST_F(ComConformanceTest, DispatchIsTheRibbonCallbacksInterface)
{
    Create();
    EXPECT_EQ(Dispatch().Get(),
              static_cast<IDispatch*>(Query<IRibbonCallback>(__uuidof(IRibbonCallback)).Get()));
}

TEST_F(ComConformanceTest, EveryInterfaceCountsTheOneObject)
{
    Create();
    EXPECT_EQ(CountOf(m_object.Get()), 1u);
    {
        std::vector<ComPtr<IUnknown>> held;
        for (const IID& iid : kInterfaces)
        {
            held.push_back(Query<IUnknown>(iid));
            EXPECT_EQ(CountOf(m_object.Get()), 1u + held.size());
            EXPECT_EQ(CountOf(held.back().Get()), 1u + held.size());
        }
    }
    EXPECT_EQ(CountOf(m_object.Get()), 1u);
    EXPECT_EQ(m_object.Detach()->Release(), 0u);
}

TEST_F(ComConformanceTest, AFailingQueryLeavesTheCountAlone)
{
    Create();
    void* nothing = nullptr;
    EXPECT_EQ(m_object->QueryInterface(IID_IMarshal, &nothing), E_NOINTERFACE);
    EXPECT_EQ(CountOf(m_object.Get()), 1u);
}

TEST_F(ComConformanceTest, TheClassObjectIsAClassFactoryAndNothingElse)
{
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IUnknown, Out(unknown)), S_OK);
    ComPtr<IClassFactory> factory = Factory();
    ComPtr<IUnknown> identity;
    EXPECT_EQ(factory.Get()->QueryInterface(IID_IUnknown, Out(identity)), S_OK);
    EXPECT_EQ(identity.Get(), unknown.Get());
    void* nothing = factory.Get();
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IDispatch, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(ComConformanceTest, ThereIsNoOtherClass)
{
    for (const CLSID& other : {CLSID_NULL, CLSID_StdFont, __uuidof(IRibbonCallback), kConnectInterface})
    {
        void* nothing = m_module.get();
        EXPECT_EQ(m_module->GetClassObject(other, IID_IClassFactory, &nothing), CLASS_E_CLASSNOTAVAILABLE);
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_THAT(NewLogLines(), ElementsAre("DllGetClassObject", "DllGetClassObject", "DllGetClassObject",
                                           "DllGetClassObject"));
}

TEST_F(ComConformanceTest, CreationGivesAnyInterfaceOfTheObject)
{
    for (const IID& iid : kInterfaces)
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(Factory()->CreateInstance(nullptr, iid, Out(object)), S_OK);
        EXPECT_EQ(CountOf(object.Get()), 1u);
    }
}

TEST_F(ComConformanceTest, AFailedCreationLeavesNothingBehind)
{
    for (const IID& iid : kOthers)
    {
        void* nothing = this;
        EXPECT_EQ(Factory()->CreateInstance(nullptr, iid, &nothing), E_NOINTERFACE);
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_EQ(Factory()->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

TEST_F(ComConformanceTest, EachCreationMakesAnObjectOfItsOwn)
{
    Create();
    const ComPtr<IUnknown> first = m_object;
    Create();
    EXPECT_NE(first.Get(), m_object.Get());
}

TEST_F(ComConformanceTest, AnAggregateIsAskedForByIUnknownOnly)
{
    COuter outer;
    for (const IID& iid : {IID_IDispatch, IID__IDTExtensibility2, IID_IClassFactory})
    {
        void* nothing = this;
        EXPECT_EQ(Factory()->CreateInstance(&outer, iid, &nothing), CLASS_E_NOAGGREGATION);
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_EQ(outer.References(), 1u);
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

TEST_F(ComConformanceTest, AnAggregatesInterfacesBelongToTheOuterObject)
{
    COuter outer;
    ASSERT_EQ(Factory()->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(outer.Inner())), S_OK);
    EXPECT_NE(*outer.Inner(), &outer);
    EXPECT_EQ(outer.References(), 1u);
    CheckQueryInterface(&outer);
    EXPECT_EQ(outer.References(), 1u);
    for (const IID& iid : kInterfaces)
    {
        if (iid != IID_IUnknown)
        {
            ComPtr<IUnknown> found;
            EXPECT_EQ((*outer.Inner())->QueryInterface(iid, Out(found)), S_OK);
            EXPECT_EQ(outer.References(), 2u);
            ComPtr<IUnknown> identity;
            EXPECT_EQ(found->QueryInterface(IID_IUnknown, Out(identity)), S_OK);
            EXPECT_EQ(identity.Get(), &outer);
        }
    }
    EXPECT_EQ(outer.References(), 1u);
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    outer.LetGo();
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

TEST_F(ComConformanceTest, AnAggregatesInnerIdentityCountsForItself)
{
    COuter outer;
    ASSERT_EQ(Factory()->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(outer.Inner())), S_OK);
    ComPtr<IUnknown> inner;
    EXPECT_EQ((*outer.Inner())->QueryInterface(IID_IUnknown, Out(inner)), S_OK);
    EXPECT_EQ(inner.Get(), *outer.Inner());
    EXPECT_EQ(CountOf(inner.Get()), 2u);
    EXPECT_EQ(outer.References(), 1u);
    void* nothing = this;
    EXPECT_EQ(inner->QueryInterface(DIID__CommandBarButtonEvents, &nothing), E_NOINTERFACE);
    EXPECT_EQ(nothing, nullptr);
    EXPECT_EQ(inner->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ComConformanceTest, AnAggregateConnectsAndIsClicked)
{
    CFakeOutlook outlook(L"12.0.6423.1000");
    COuter outer;
    ASSERT_EQ(Factory()->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(outer.Inner())), S_OK);
    ComPtr<_IDTExtensibility2> addIn;
    ASSERT_EQ(outer.QueryInterface(IID__IDTExtensibility2, Out(addIn)), S_OK);
    EXPECT_EQ(addIn->OnConnection(outlook.application.Get(), ext_cm_AfterStartup, nullptr, nullptr), S_OK);
    ASSERT_EQ(outlook.button->Sinks().size(), 1u);
    m_user.OnDialogWith(kAboutClose, [](HWND dialog) { ClickButton(dialog, kAboutClose); });
    m_user.Start();
    outlook.button->Click();
    EXPECT_EQ(m_user.Finish().size(), 1u);
    EXPECT_EQ(addIn->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
    addIn.Reset();
    EXPECT_EQ(outer.References(), 1u);
    outer.LetGo();
    EXPECT_EQ(outlook.application->References(), 1);
}

TEST_F(ComConformanceTest, TheClicksSinkIsAnObjectOfItsOwnThatCountsTheAddIn)
{
    EXPECT_EQ(Connect(L"12.0.6423.1000"), S_OK);
    ASSERT_EQ(m_outlook->button->Sinks().size(), 1u);
    const ComPtr<IDispatch> sink = m_outlook->button->Sinks().begin()->second;
    EXPECT_EQ(CountOf(sink.Get()), CountOf(m_object.Get()));
    for (const IID& iid : {IID_IUnknown, IID_IDispatch, DIID__CommandBarButtonEvents})
    {
        ComPtr<IUnknown> same;
        EXPECT_EQ(sink.Get()->QueryInterface(iid, Out(same)), S_OK);
        EXPECT_EQ(same.Get(), sink.Get());
    }
    for (const IID& iid : {IID__IDTExtensibility2, IID_IRibbonExtensibility, __uuidof(IRibbonCallback)})
    {
        void* nothing = this;
        EXPECT_EQ(sink.Get()->QueryInterface(iid, &nothing), E_NOINTERFACE);
        EXPECT_EQ(nothing, nullptr);
    }
    EXPECT_EQ(sink.Get()->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ComConformanceTest, TheModuleStaysWhileAnObjectOrTheClassObjectIsHeld)
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

TEST_F(ComConformanceTest, TheModuleStaysWhileTheServerIsLocked)
{
    EXPECT_EQ(Factory()->LockServer(TRUE), S_OK);
    EXPECT_EQ(Factory()->LockServer(TRUE), S_OK);
    EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);
    EXPECT_EQ(m_module->CanUnloadNow(), S_OK);
}

TEST_F(ComConformanceTest, TheModuleIsLoadedUsedAndUnloadedAHundredTimes)
{
    for (int round = 0; round < 100; ++round)
    {
        CFakeOutlook outlook(round % 2 == 0 ? L"12.0.6423.1000" : L"14.0.4760.1000");
        Create();
        EXPECT_EQ(ConnectTo(outlook.application.Get(), ext_cm_AfterStartup), S_OK);
        _bstr_t markup;
        EXPECT_EQ(
            Query<IRibbonExtensibility>(IID_IRibbonExtensibility)->GetCustomUI(nullptr, markup.GetAddress()),
            S_OK);
        EXPECT_EQ(AddIn()->OnDisconnection(ext_dm_HostShutdown, nullptr), S_OK);
        ReleaseAll();
        ASSERT_FALSE(HasFailure()) << round;
        m_module = std::make_unique<CAddInModule>();
    }
}

TEST_F(ComConformanceTest, ComCreatesTheRegisteredClassAndUnloadsTheModuleWhenAllIsReleased)
{
    ReleaseAll();
    CLSID classId{};
    ASSERT_EQ(CLSIDFromProgID(kAddInProgId, &classId), S_OK);
    EXPECT_EQ(classId, kAddInClass);
    ComPtr<_IDTExtensibility2> addIn;
    ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID__IDTExtensibility2, Out(addIn)),
              S_OK);
    EXPECT_EQ(addIn->OnStartupComplete(nullptr), S_OK);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_TRUE(CAddInModule::IsLoaded());
    addIn.Reset();
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_FALSE(CAddInModule::IsLoaded());
}

TEST_F(ComConformanceTest, AnotherApartmentCallsAndLastReleasesTheObjectThroughAProxy)
{
    struct CWork
    {
        IStream* marshaled = nullptr;
        IUnknown* original = nullptr;
        HRESULT unmarshaled = E_FAIL;
        HRESULT asked = E_FAIL;
        DISPID id = 0;
        bool isProxy = false;

        static DWORD WINAPI Run(void* context)
        {
            auto* const work = static_cast<CWork*>(context);
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            {
                ComPtr<IDispatch> object;
                work->unmarshaled =
                    CoGetInterfaceAndReleaseStream(work->marshaled, IID_IDispatch, Out(object));
                if (SUCCEEDED(work->unmarshaled))
                {
                    work->isProxy = object.Get() != work->original;
                    wchar_t name[] = L"ButtonClicked";
                    LPOLESTR names[] = {name};
                    work->asked = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &work->id);
                }
            }
            CoUninitialize();
            return 0;
        }
    } work;
    Create();
    work.original = Dispatch().Get();
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, m_object.Get(), &work.marshaled), S_OK);
    m_object.Reset();
    EXPECT_EQ(m_module->CanUnloadNow(), S_FALSE);
    const UniqueHandle thread(CreateThread(nullptr, 0, CWork::Run, &work, 0, nullptr));
    EXPECT_TRUE(PumpUntil([&] { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; }));
    EXPECT_EQ(work.unmarshaled, S_OK);
    EXPECT_TRUE(work.isProxy);
    EXPECT_EQ(work.asked, S_OK);
    EXPECT_EQ(work.id, 42000);
    EXPECT_TRUE(PumpUntil([&] { return m_module->CanUnloadNow() == S_OK; }));
}

} // namespace
} // namespace orva::test
