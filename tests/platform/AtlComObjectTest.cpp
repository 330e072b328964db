// Tests of making COM objects: constructions that fail, and objects that hand themselves out in theirs.
#include "AtlTestModule.h"

#include <functional>
#include <new>

namespace
{

using namespace orva::test;

class ATL_NO_VTABLE CMade : public CComObjectRootEx<CComSingleThreadModel>, public IPersist
{
public:
    DECLARE_PROTECT_FINAL_CONSTRUCT()

    BEGIN_COM_MAP(CMade)
        COM_INTERFACE_ENTRY(IPersist)
    END_COM_MAP()

    HRESULT FinalConstruct() { return s_construct(*this); }
    void FinalRelease() { ++s_finalReleases; }

    STDMETHOD(GetClassID)(CLSID*) override { return E_NOTIMPL; }

    static inline std::function<HRESULT(IPersist&)> s_construct;
    static inline int s_finalReleases;
};

class AtlComObject : public CTestModuleTest
{
protected:
    AtlComObject() { CMade::s_finalReleases = 0; }
    ~AtlComObject() override { CMade::s_construct = nullptr; }

    static HRESULT Create(std::function<HRESULT(IPersist&)> construct, void** object)
    {
        CMade::s_construct = std::move(construct);
        return CComCreator<CComObject<CMade>>::CreateInstance(nullptr, IID_IPersist, object);
    }
};

TEST_F(AtlComObject, AnObjectThatHandsItselfOutWhileItIsMadeLivesOn)
{
    CComPtr<IPersist> object;
    const auto handOut = [](IPersist& self) {
        const CComPtr<IPersist> reference(&self);
        return S_OK;
    };
    ASSERT_EQ(Create(handOut, reinterpret_cast<void**>(&object.p)), S_OK);
    EXPECT_EQ(CMade::s_finalReleases, 0);
    EXPECT_EQ(m_module.DllCanUnloadNow(), S_FALSE);
    object.Release();
    EXPECT_EQ(CMade::s_finalReleases, 1);
}

TEST_F(AtlComObject, AFailedConstructionGivesItsReasonAndLeavesNothing)
{
    const struct
    {
        std::function<HRESULT(IPersist&)> construct;
        HRESULT expected;
    } rows[] = {
        {[](IPersist&) { return E_ABORT; }, E_ABORT},
        {[](IPersist&) -> HRESULT { AtlThrow(E_ACCESSDENIED); }, E_ACCESSDENIED},
        {[](IPersist&) -> HRESULT { throw std::bad_alloc(); }, E_OUTOFMEMORY},
        {[](IPersist&) -> HRESULT { throw 5; }, E_UNEXPECTED},
    };
    for (const auto& [construct, expected] : rows)
    {
        SCOPED_TRACE(expected);
        void* object = &object;
        EXPECT_EQ(Create(construct, &object), expected);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(m_module.DllCanUnloadNow(), S_OK);
    }
}

} // namespace
