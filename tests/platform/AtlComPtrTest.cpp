// Tests of the interface pointers: counts, identity and queries.
#include <atlcomcli.h>

#include <gtest/gtest.h>

namespace
{

// A counted object with two interfaces.
class CCounted : public IDispatch
{
public:
    STDMETHOD(QueryInterface)(REFIID iid, void** object) override
    {
        *object = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ? this : nullptr;
        if (*object == nullptr)
        {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHOD_(ULONG, AddRef)() override { return ++references; }
    STDMETHOD_(ULONG, Release)() override { return --references; }
    STDMETHOD(GetTypeInfoCount)(UINT*) override { return E_NOTIMPL; }
    STDMETHOD(GetTypeInfo)(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHOD(GetIDsOfNames)(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHOD(Invoke)(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }

    ULONG references = 0;
};

TEST(AtlComPtr, CountsItsReferences)
{
    CCounted object;
    {
        CComPtr<IDispatch> first(&object);
        EXPECT_EQ(object.references, 1u);
        CComPtr<IDispatch> second(first);
        EXPECT_EQ(object.references, 2u);
        CComPtr<IDispatch> third;
        third = second;
        EXPECT_EQ(object.references, 3u);
        CComPtr<IDispatch> moved(static_cast<CComPtr<IDispatch>&&>(third));
        EXPECT_EQ(object.references, 3u);
        EXPECT_TRUE(!third);
        first.Release();
        first.Release();
        EXPECT_EQ(object.references, 2u);
        const CComPtr<IDispatch>& same = second;
        second = same;
        EXPECT_EQ(object.references, 2u);
        second = static_cast<CComPtr<IDispatch>&&>(moved);
        EXPECT_EQ(object.references, 1u);
    }
    EXPECT_EQ(object.references, 0u);
}

TEST(AtlComPtr, AttachesAndDetachesWithoutCounting)
{
    CCounted object;
    object.AddRef();
    CComPtr<IUnknown> pointer;
    pointer.Attach(&object);
    EXPECT_EQ(object.references, 1u);
    EXPECT_EQ(pointer.Detach(), &object);
    EXPECT_EQ(object.references, 1u);
    EXPECT_TRUE(pointer == nullptr);
    object.Release();
}

TEST(AtlComPtr, DereferencingNothingThrows)
{
    const CComPtr<IUnknown> nothing;
    try
    {
        (void)*nothing;
        FAIL() << "nothing was thrown";
    }
    catch (const CAtlException& e)
    {
        EXPECT_EQ(e.m_hr, E_FAIL);
    }
}

TEST(AtlComQIPtr, AsksForItsInterface)
{
    CCounted object;
    IUnknown* unknown = &object;
    {
        CComQIPtr<IDispatch> dispatch(unknown);
        EXPECT_EQ(dispatch.p, &object);
        EXPECT_EQ(object.references, 1u);
        CComQIPtr<IStream> stream(unknown);
        EXPECT_TRUE(!stream);
        stream = unknown;
        EXPECT_TRUE(!stream);
        dispatch = static_cast<IUnknown*>(nullptr);
        EXPECT_EQ(object.references, 0u);
    }
    EXPECT_EQ(object.references, 0u);
}

} // namespace
