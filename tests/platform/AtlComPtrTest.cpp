// Tests of the interface pointers: counts, identity, queries and late-bound calls.
#include <atlcomcli.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

// A counted object with two interfaces that notes every late-bound call.
class CRecorder : public IDispatch
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
    STDMETHOD(GetIDsOfNames)(REFIID, LPOLESTR* names, UINT count, LCID lcid, DISPID* dispids) override
    {
        if (count != 1 || lcid != LOCALE_USER_DEFAULT || std::wstring(names[0]) != L"Known")
        {
            return DISP_E_UNKNOWNNAME;
        }
        dispids[0] = 5;
        return S_OK;
    }
    STDMETHOD(Invoke)
    (DISPID dispid, REFIID, LCID lcid, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO*,
     UINT*) override
    {
        calls.push_back(std::to_string(dispid) + " flags " + std::to_string(flags) + " locale " +
                        std::to_string(lcid) + " args " + std::to_string(params->cArgs));
        result->vt = VT_I4;
        result->lVal = 77;
        return S_OK;
    }

    ULONG references = 0;
    std::vector<std::string> calls;
};

TEST(AtlComPtr, CountsItsReferences)
{
    CRecorder object;
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
    CRecorder object;
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
    CRecorder object;
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

TEST(AtlComDispatchPtr, ReadsAPropertyByName)
{
    CRecorder object;
    CComPtr<IDispatch> dispatch(&object);
    CComVariant value;
    EXPECT_EQ(dispatch.GetPropertyByName(L"Known", &value), S_OK);
    EXPECT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 77);
    EXPECT_EQ(object.calls, std::vector<std::string>{"5 flags 2 locale 1024 args 0"});
    EXPECT_EQ(dispatch.GetPropertyByName(L"Other", &value), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(dispatch.GetPropertyByName(L"Known", nullptr), E_POINTER);
}

TEST(AtlComDispatchPtr, ThereIsNoPropertyOfNothing)
{
    CComPtr<IDispatch> nothing;
    CComVariant value;
    EXPECT_EQ(nothing.GetPropertyByName(L"Known", &value), E_POINTER);
}

} // namespace
