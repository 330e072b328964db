#include "addin/ComConformance.h"

#include "harness/Report.h"

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

// One run over one object.
class CCheck
{
public:
    CCheck(IUnknown* object, std::span<const CInterface> offered, std::span<const CInterface> foreign,
           Place place)
        : m_object(object), m_offered(offered), m_foreign(foreign), m_place(place)
    {
    }

    CConformance Run()
    {
        const ULONG before = m_place == Place::InProcess ? CountOf(m_object) : 0;
        m_identity = Ask(m_object, {"IUnknown", IID_IUnknown}, "the object");
        for (const CInterface& from : m_offered)
        {
            ++m_result.interfaces;
            CheckFrom(from);
        }
        m_identity.Reset();
        if (m_place == Place::InProcess && CountOf(m_object) != before)
        {
            Broken("the count is not what it was");
        }
        return std::move(m_result);
    }

private:
    void Broken(std::string what) { m_result.violations.push_back(std::move(what)); }

    ComPtr<IUnknown> Ask(IUnknown* from, const CInterface& wanted, const std::string& path)
    {
        ComPtr<IUnknown> found;
        if (from == nullptr)
        {
            return found;
        }
        const HRESULT hr = from->QueryInterface(wanted.iid, Out(found));
        if (hr != S_OK || found == nullptr)
        {
            Broken(path + " does not give " + wanted.name + ": " + std::to_string(hr));
        }
        return found;
    }

    void Same(const ComPtr<IUnknown>& one, const ComPtr<IUnknown>& other, const std::string& path)
    {
        if (one.Get() != other.Get())
        {
            Broken(path + " gives another pointer");
        }
    }

    void CheckFrom(const CInterface& from)
    {
        const ComPtr<IUnknown> first = Ask(m_object, from, "the object");
        if (first == nullptr)
        {
            return;
        }
        Same(Ask(first.Get(), from, from.name), first, std::string(from.name) + " asked for itself");
        if (m_place == Place::InProcess && first.Get()->QueryInterface(IID_IUnknown, nullptr) != E_POINTER)
        {
            Broken(std::string(from.name) + " takes a null pointer for the result");
        }
        for (const CInterface& other : m_foreign)
        {
            ++m_result.refused;
            void* nothing = this;
            if (first.Get()->QueryInterface(other.iid, &nothing) != E_NOINTERFACE || nothing != nullptr)
            {
                Broken(std::string(from.name) + " does not refuse " + other.name);
            }
        }
        for (const CInterface& to : m_offered)
        {
            ++m_result.pairs;
            CheckPair(from, first, to);
        }
    }

    void CheckPair(const CInterface& from, const ComPtr<IUnknown>& first, const CInterface& to)
    {
        const std::string path = std::string(from.name) + " to " + to.name;
        const ComPtr<IUnknown> second = Ask(first.Get(), to, from.name);
        Same(second, Ask(m_object, to, "the object"), path);
        Same(Ask(second.Get(), from, path), first, path + " and back");
        Same(Ask(second.Get(), {"IUnknown", IID_IUnknown}, path), m_identity, path + " asked for IUnknown");
        for (const CInterface& last : m_offered)
        {
            ++m_result.chains;
            Same(Ask(second.Get(), last, path), Ask(first.Get(), last, from.name), path + " to " + last.name);
        }
    }

    IUnknown* m_object;
    std::span<const CInterface> m_offered;
    std::span<const CInterface> m_foreign;
    Place m_place;
    ComPtr<IUnknown> m_identity;
    CConformance m_result;
};

struct CApartmentWork
{
    DWORD kind;
    const std::function<void()>* work;

    static DWORD WINAPI Run(void* context)
    {
        const auto* const job = static_cast<const CApartmentWork*>(context);
        if (SUCCEEDED(CoInitializeEx(nullptr, job->kind)))
        {
            (*job->work)();
            CoUninitialize();
        }
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

std::string CConformance::Counts() const
{
    return std::to_string(pairs) + " pairs of " + std::to_string(interfaces) + " interfaces, " +
           std::to_string(chains) + " chains of three, " + std::to_string(refused) + " refusals";
}

std::string CConformance::Verdict() const
{
    return violations.empty() ? "every rule holds"
                              : std::to_string(violations.size()) + " broken: " + violations.front();
}

CConformance CheckQueryInterface(IUnknown* object, std::span<const CInterface> offered,
                                 std::span<const CInterface> foreign, Place place)
{
    return CCheck(object, offered, foreign, place).Run();
}

void ReportConformance(const std::string& object, const CConformance& conformance)
{
    EXPECT_THAT(conformance.violations, testing::IsEmpty()) << object;
    EXPECT_GT(conformance.pairs, 0u) << object;
    AddReportRow("com-conformance", {object, conformance.Counts(), conformance.Verdict()});
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

bool RunInApartment(DWORD kind, const std::function<void()>& work)
{
    CApartmentWork job = {kind, &work};
    const UniqueHandle thread(CreateThread(nullptr, 0, CApartmentWork::Run, &job, 0, nullptr));
    return thread && PumpUntil([&] { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; });
}

} // namespace orva::test
