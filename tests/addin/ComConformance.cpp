#include "addin/ComConformance.h"

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;

const CInterface kAddInInterfaces[] = {
    {"IUnknown", IID_IUnknown},
    {"IDispatch", IID_IDispatch},
    {"IConnect", kConnectInterface},
    {"_IDTExtensibility2", IID__IDTExtensibility2},
    {"IRibbonExtensibility", IID_IRibbonExtensibility},
    {"IRibbonCallback", __uuidof(IRibbonCallback)},
};

const CInterface kForeignInterfaces[] = {
    {"_CommandBarButtonEvents", DIID__CommandBarButtonEvents},
    {"IClassFactory", IID_IClassFactory},
    {"IMarshal", IID_IMarshal},
    {"IConnectionPointContainer", IID_IConnectionPointContainer},
    {"IProvideClassInfo", IID_IProvideClassInfo},
    {"IPersist", IID_IPersist},
    {"no interface at all", IID_NULL},
};

ComPtr<IUnknown> Ask(IUnknown* from, const CInterface& wanted)
{
    ComPtr<IUnknown> found;
    EXPECT_EQ(from->QueryInterface(wanted.iid, Out(found)), S_OK) << wanted.name;
    return found;
}

struct CApartmentWork
{
    DWORD kind;
    const std::function<void()>* work;

    static DWORD WINAPI Run(void* context)
    {
        const auto* const job = static_cast<const CApartmentWork*>(context);
        EXPECT_EQ(CoInitializeEx(nullptr, job->kind), S_OK);
        (*job->work)();
        CoUninitialize();
        return 0;
    }
};

} // namespace

std::span<const CInterface> AddInInterfaces()
{
    return kAddInInterfaces;
}

std::span<const CInterface> ForeignInterfaces()
{
    return kForeignInterfaces;
}

void ExpectQueryInterfaceRules(IUnknown* object, std::span<const CInterface> offered,
                               std::span<const CInterface> foreign, Place place)
{
    const ULONG before = place == Place::InProcess ? CountOf(object) : 0;
    for (const CInterface& from : offered)
    {
        SCOPED_TRACE(from.name);
        const ComPtr<IUnknown> first = Ask(object, from);
        ASSERT_NE(first.Get(), nullptr);
        for (const CInterface& to : offered)
        {
            EXPECT_EQ(Ask(first.Get(), to).Get(), Ask(object, to).Get()) << to.name;
        }
        for (const CInterface& other : foreign)
        {
            void* nothing = object;
            EXPECT_EQ(first.Get()->QueryInterface(other.iid, &nothing), E_NOINTERFACE) << other.name;
            EXPECT_EQ(nothing, nullptr) << other.name;
        }
        if (place == Place::InProcess)
        {
            EXPECT_EQ(first.Get()->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
        }
    }
    if (place == Place::InProcess)
    {
        EXPECT_EQ(CountOf(object), before);
    }
}

ULONG CountOf(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}

STDMETHODIMP COuter::QueryInterface(REFIID iid, void** object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    if (iid == IID_IUnknown)
    {
        *object = this;
        AddRef();
        return S_OK;
    }
    return m_inner->QueryInterface(iid, object);
}

ComPtr<IClassFactory> CComConformanceTest::Factory()
{
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(m_module->GetClassObject(kAddInClass, IID_IClassFactory, Out(factory)), S_OK);
    return factory;
}

void CComConformanceTest::CreateInside(COuter& outer)
{
    ASSERT_EQ(Factory()->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(outer.Inner())), S_OK);
    EXPECT_NE(*outer.Inner(), &outer);
    EXPECT_EQ(outer.References(), 1u);
}

void RunInApartment(DWORD kind, const std::function<void()>& work)
{
    CApartmentWork job = {kind, &work};
    const UniqueHandle thread(CreateThread(nullptr, 0, CApartmentWork::Run, &job, 0, nullptr));
    EXPECT_TRUE(PumpUntil([&] { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; }));
}

} // namespace orva::test
