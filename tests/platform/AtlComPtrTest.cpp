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
        std::string call = std::to_string(dispid) + " flags " + std::to_string(flags) + " locale " +
                           std::to_string(lcid) + " args";
        for (UINT i = 0; i < params->cArgs; ++i)
        {
            call += " " + std::to_string(params->rgvarg[i].vt) + ":" + std::to_string(params->rgvarg[i].lVal);
        }
        for (UINT i = 0; i < params->cNamedArgs; ++i)
        {
            call += " named " + std::to_string(params->rgdispidNamedArgs[i]);
        }
        calls.push_back(call);
        if ((flags & refusedFlags) != 0)
        {
            return DISP_E_MEMBERNOTFOUND;
        }
        if (result)
        {
            *result = CComVariant(77L);
        }
        return S_OK;
    }

    ULONG references = 0;
    WORD refusedFlags = 0;
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

TEST(AtlComPtr, CopiesItselfOutWithAReference)
{
    CRecorder object;
    CComPtr<IUnknown> pointer(&object);
    IUnknown* copy = nullptr;
    EXPECT_EQ(pointer.CopyTo(&copy), S_OK);
    EXPECT_EQ(object.references, 2u);
    copy->Release();
    EXPECT_EQ(pointer.CopyTo(nullptr), E_POINTER);
}

TEST(AtlComPtr, ComparesIdentity)
{
    CRecorder object;
    CRecorder other;
    const CComPtr<IDispatch> pointer(&object);
    const CComPtr<IDispatch> nothing;
    EXPECT_TRUE(pointer.IsEqualObject(&object));
    EXPECT_FALSE(pointer.IsEqualObject(&other));
    EXPECT_FALSE(pointer.IsEqualObject(nullptr));
    EXPECT_TRUE(nothing.IsEqualObject(nullptr));
    EXPECT_EQ(object.references, 1u);
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
        CComQIPtr<IUnknown> identity(dispatch.p);
        EXPECT_TRUE(!identity);
        identity = unknown;
        EXPECT_EQ(object.references, 1u);
        CComQIPtr<IDispatch, &IID_IDispatch> named(identity);
        EXPECT_EQ(object.references, 2u);
    }
    EXPECT_EQ(object.references, 0u);
}

TEST(AtlComPtrAssign, MovesTheReferenceOver)
{
    CRecorder object;
    IUnknown* pointer = nullptr;
    EXPECT_EQ(AtlComPtrAssign(&pointer, &object), &object);
    EXPECT_EQ(AtlComPtrAssign(&pointer, pointer), &object);
    EXPECT_EQ(object.references, 1u);
    EXPECT_EQ(AtlComQIPtrAssign(&pointer, &object, IID_IDispatch), &object);
    EXPECT_EQ(object.references, 1u);
    EXPECT_EQ(AtlComQIPtrAssign(&pointer, &object, IID_IStream), nullptr);
    EXPECT_EQ(object.references, 0u);
    EXPECT_EQ(AtlComPtrAssign(nullptr, &object), nullptr);
}

TEST(AtlComDispatchPtr, ReadsAProperty)
{
    CRecorder object;
    CComPtr<IDispatch> dispatch(&object);
    CComVariant value;
    EXPECT_EQ(dispatch.GetPropertyByName(L"Known", &value), S_OK);
    EXPECT_EQ(value, CComVariant(77L));
    EXPECT_EQ(object.calls, std::vector<std::string>{"5 flags 2 locale 1024 args"});
    EXPECT_EQ(dispatch.GetPropertyByName(L"Other", &value), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(dispatch.GetProperty(5, nullptr), E_POINTER);
}

TEST(AtlComDispatchPtr, WritesAPropertyUnderItsReservedName)
{
    CRecorder object;
    CComPtr<IDispatch> dispatch(&object);
    CComVariant value(3L);
    EXPECT_EQ(dispatch.PutPropertyByName(L"Known", &value), S_OK);
    EXPECT_EQ(object.calls, std::vector<std::string>{"5 flags 4 locale 1024 args 3:3 named -3"});
    EXPECT_EQ(dispatch.PutPropertyByName(L"Other", &value), DISP_E_UNKNOWNNAME);
}

TEST(AtlComDispatchPtr, PutsAnObjectByReferenceFirst)
{
    CRecorder object;
    CComPtr<IDispatch> dispatch(&object);
    CComVariant value(static_cast<IDispatch*>(nullptr));
    EXPECT_EQ(dispatch.PutProperty(5, &value), S_OK);
    EXPECT_EQ(object.calls, std::vector<std::string>{"5 flags 8 locale 1024 args 9:0 named -3"});
}

TEST(AtlComDispatchPtr, PutsAnObjectByValueWhenAReferenceIsRefused)
{
    CRecorder object;
    object.refusedFlags = DISPATCH_PROPERTYPUTREF;
    CComPtr<IDispatch> dispatch(&object);
    CComVariant value(static_cast<IDispatch*>(nullptr));
    EXPECT_EQ(dispatch.PutProperty(5, &value), S_OK);
    ASSERT_EQ(object.calls.size(), 2u);
    EXPECT_EQ(object.calls[1], "5 flags 4 locale 1024 args 9:0 named -3");
}

TEST(AtlComDispatchPtr, CallsMethods)
{
    CRecorder object;
    CComPtr<IDispatch> dispatch(&object);
    CComVariant one(1L);
    CComVariant two(2L);
    CComVariant result;
    VARIANT list[] = {CComVariant(7L), CComVariant(8L), CComVariant(9L)};
    EXPECT_EQ(dispatch.Invoke0(L"Known", &result), S_OK);
    EXPECT_EQ(dispatch.Invoke1(L"Known", &one), S_OK);
    EXPECT_EQ(dispatch.Invoke2(6, &one, &two), S_OK);
    EXPECT_EQ(dispatch.InvokeN(L"Known", list, 3), S_OK);
    EXPECT_EQ(object.calls, (std::vector<std::string>{
                                "5 flags 1 locale 1024 args",
                                "5 flags 1 locale 1024 args 3:1",
                                "6 flags 1 locale 1024 args 3:2 3:1",
                                "5 flags 1 locale 1024 args 3:7 3:8 3:9",
                            }));
    EXPECT_EQ(result, CComVariant(77L));
    EXPECT_EQ(dispatch.Invoke2(6, &one, nullptr), E_INVALIDARG);
    EXPECT_EQ(dispatch.Invoke1(L"Other", &one), DISP_E_UNKNOWNNAME);
}

TEST(AtlComDispatchPtr, CallsOnNothingAreRefused)
{
    CComPtr<IDispatch> nothing;
    CComVariant value;
    DISPID dispid = 0;
    EXPECT_EQ(nothing.GetIDOfName(L"Known", &dispid), E_POINTER);
    EXPECT_EQ(nothing.GetProperty(5, &value), E_POINTER);
    EXPECT_EQ(nothing.PutProperty(5, &value), E_POINTER);
    EXPECT_EQ(nothing.Invoke0(5), E_POINTER);
    EXPECT_EQ(nothing.Invoke0(L"Known"), E_POINTER);
}

} // namespace
