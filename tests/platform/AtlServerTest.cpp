// Tests of a real server DLL: class objects, lock count, plain and aggregated objects, loading and unloading.
#include "AtlServer.h"

#include "platform/AtlTestServer.h"

namespace
{

using orva::test::CAtlTestServer;

TEST(AtlServer, CanBeUnloadedWhenNothingIsInUse)
{
    const CAtlTestServer server;
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, KnowsNoOtherClass)
{
    const CAtlTestServer server;
    void* object = &object;
    EXPECT_EQ(server.GetClassObject(CLSID_NULL, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
}

TEST(AtlServer, RefusesAClassObjectWithoutAPlaceForIt)
{
    const CAtlTestServer server;
    EXPECT_EQ(server.GetClassObject(CLSID_Counter, IID_IClassFactory, nullptr), E_POINTER);
}

TEST(AtlServer, AClassObjectHasOnlyItsInterfaces)
{
    const CAtlTestServer server;
    void* object = &object;
    EXPECT_EQ(server.GetClassObject(CLSID_Counter, IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, AHeldClassObjectIsALock)
{
    const CAtlTestServer server;
    CComPtr<IClassFactory> factory;
    ASSERT_EQ(server.GetClassObject(CLSID_Counter, IID_IClassFactory, reinterpret_cast<void**>(&factory.p)),
              S_OK);
    EXPECT_EQ(server.CanUnloadNow(), S_FALSE);
    factory.Release();
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, EveryRequestGivesTheSameClassObject)
{
    const CAtlTestServer server;
    CComPtr<IUnknown> first;
    CComPtr<IUnknown> second;
    ASSERT_EQ(server.GetClassObject(CLSID_Counter, IID_IUnknown, reinterpret_cast<void**>(&first.p)), S_OK);
    ASSERT_EQ(server.GetClassObject(CLSID_Counter, IID_IUnknown, reinterpret_cast<void**>(&second.p)), S_OK);
    EXPECT_EQ(first.p, second.p);
}

TEST(AtlServer, LockServerIsALock)
{
    const CAtlTestServer server;
    CComPtr<IClassFactory> factory;
    ASSERT_EQ(server.GetClassObject(CLSID_Counter, IID_IClassFactory, reinterpret_cast<void**>(&factory.p)),
              S_OK);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    factory.Release();
    EXPECT_EQ(server.CanUnloadNow(), S_FALSE);
    ASSERT_EQ(server.GetClassObject(CLSID_Counter, IID_IClassFactory, reinterpret_cast<void**>(&factory.p)),
              S_OK);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    factory.Release();
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, AnObjectIsALock)
{
    const CAtlTestServer server;
    CComPtr<ICounter> counter;
    ASSERT_EQ(server.Create(CLSID_Counter, nullptr, IID_ICounter, reinterpret_cast<void**>(&counter.p)),
              S_OK);
    EXPECT_EQ(server.CanUnloadNow(), S_FALSE);
    counter.Release();
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, AnObjectThatLacksTheWantedInterfaceIsGoneAgain)
{
    const CAtlTestServer server;
    void* object = &object;
    EXPECT_EQ(server.Create(CLSID_Counter, nullptr, IID_IStream, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, AFailedConstructionGivesItsReasonAndLeavesNothing)
{
    const CAtlTestServer server;
    void* object = &object;
    EXPECT_EQ(server.Create(CLSID_Stillborn, nullptr, IID_IUnknown, &object), E_ACCESSDENIED);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, CreationNeedsAPlaceForTheObject)
{
    const CAtlTestServer server;
    EXPECT_EQ(server.Create(CLSID_Counter, nullptr, IID_ICounter, nullptr), E_POINTER);
}

// Every interface of an object reaches every other, and all have one identity.
void ExpectConformingQueries(IUnknown* object, const std::vector<IID>& interfaces)
{
    CComPtr<IUnknown> identity;
    ASSERT_EQ(object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&identity.p)), S_OK);
    for (const IID& from : interfaces)
    {
        CComPtr<IUnknown> first;
        ASSERT_EQ(object->QueryInterface(from, reinterpret_cast<void**>(&first.p)), S_OK);
        for (const IID& to : interfaces)
        {
            CComPtr<IUnknown> second;
            ASSERT_EQ(first->QueryInterface(to, reinterpret_cast<void**>(&second.p)), S_OK);
            CComPtr<IUnknown> back;
            ASSERT_EQ(second->QueryInterface(from, reinterpret_cast<void**>(&back.p)), S_OK);
            EXPECT_EQ(back.p, first.p);
            CComPtr<IUnknown> same;
            ASSERT_EQ(second->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&same.p)), S_OK);
            EXPECT_EQ(same.p, identity.p);
        }
        void* none = &none;
        EXPECT_EQ(first->QueryInterface(IID_IStream, &none), E_NOINTERFACE);
        EXPECT_EQ(none, nullptr);
        EXPECT_EQ(first->QueryInterface(from, nullptr), E_POINTER);
    }
}

TEST(AtlServer, QueriesOfAPlainObjectConform)
{
    const CAtlTestServer server;
    CComPtr<IUnknown> object;
    ASSERT_EQ(server.Create(CLSID_Counter, nullptr, IID_IUnknown, reinterpret_cast<void**>(&object.p)), S_OK);
    ExpectConformingQueries(object, {IID_IUnknown, IID_IDispatch, IID_ICounter, IID_INamed, IID_IHidden});
    object.Release();
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, IDispatchIsTheOneThatTheMapNames)
{
    const CAtlTestServer server;
    CComPtr<INamed> named;
    ASSERT_EQ(server.Create(CLSID_Counter, nullptr, IID_INamed, reinterpret_cast<void**>(&named.p)), S_OK);
    CComPtr<IDispatch> dispatch;
    ASSERT_EQ(named->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&dispatch.p)), S_OK);
    EXPECT_EQ(dispatch.p, static_cast<IDispatch*>(named.p));
}

// An outer object that holds a counter inside and shows its interfaces as its own.
class COuter : public IUnknown
{
public:
    STDMETHOD(QueryInterface)(REFIID iid, void** object) override
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        // The inner object asks while it is made, before it is known here.
        if (!IsEqualIID(iid, IID_IUnknown))
        {
            return inner ? inner->QueryInterface(iid, object) : E_NOINTERFACE;
        }
        *object = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHOD_(ULONG, AddRef)() override { return ++references; }
    STDMETHOD_(ULONG, Release)() override { return --references; }

    ULONG references = 1;
    CComPtr<IUnknown> inner;
};

TEST(AtlServer, QueriesOfAnAggregatedObjectConform)
{
    const CAtlTestServer server;
    COuter outer;
    ASSERT_EQ(server.Create(CLSID_Counter, &outer, IID_IUnknown, reinterpret_cast<void**>(&outer.inner.p)),
              S_OK);
    EXPECT_EQ(server.CanUnloadNow(), S_FALSE);
    ExpectConformingQueries(&outer, {IID_IUnknown, IID_IDispatch, IID_ICounter, IID_INamed, IID_IHidden});
    EXPECT_EQ(outer.references, 1u);
    outer.inner.Release();
    EXPECT_EQ(outer.references, 1u);
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, TheInterfacesOfAnAggregatedObjectCountOnTheOuterOne)
{
    const CAtlTestServer server;
    COuter outer;
    ASSERT_EQ(server.Create(CLSID_Counter, &outer, IID_IUnknown, reinterpret_cast<void**>(&outer.inner.p)),
              S_OK);
    CComPtr<ICounter> counter;
    ASSERT_EQ(outer.inner->QueryInterface(IID_ICounter, reinterpret_cast<void**>(&counter.p)), S_OK);
    EXPECT_EQ(outer.references, 2u);
    EXPECT_NE(static_cast<IUnknown*>(counter.p), outer.inner.p);
    EXPECT_EQ(counter->put_Count(7), S_OK);
    long count = 0;
    EXPECT_EQ(counter->get_Count(&count), S_OK);
    EXPECT_EQ(count, 7);
    counter.Release();
    EXPECT_EQ(outer.references, 1u);
    outer.inner.Release();
}

TEST(AtlServer, TheInnerIdentityIsItsOwn)
{
    const CAtlTestServer server;
    COuter outer;
    ASSERT_EQ(server.Create(CLSID_Counter, &outer, IID_IUnknown, reinterpret_cast<void**>(&outer.inner.p)),
              S_OK);
    CComPtr<IUnknown> again;
    ASSERT_EQ(outer.inner->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&again.p)), S_OK);
    EXPECT_EQ(again.p, outer.inner.p);
    EXPECT_NE(again.p, static_cast<IUnknown*>(&outer));
    EXPECT_EQ(outer.inner->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    again.Release();
    outer.inner.Release();
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, AnAggregateIsAskedForIUnknownOnly)
{
    const CAtlTestServer server;
    COuter outer;
    void* object = &object;
    EXPECT_EQ(server.Create(CLSID_Counter, &outer, IID_ICounter, &object), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(server.CanUnloadNow(), S_OK);
}

TEST(AtlServer, LoadsAndUnloadsAHundredTimes)
{
    for (int i = 0; i < 100; ++i)
    {
        {
            const CAtlTestServer server;
            CComPtr<ICounter> counter;
            ASSERT_EQ(
                server.Create(CLSID_Counter, nullptr, IID_ICounter, reinterpret_cast<void**>(&counter.p)),
                S_OK);
            counter.Release();
            ASSERT_EQ(server.CanUnloadNow(), S_OK);
        }
        ASSERT_EQ(GetModuleHandleW(L"AtlTestServer.dll"), nullptr);
    }
}

} // namespace
