// Tests of what clients of COM use: the BSTR and the VARIANT that free themselves, the pointers that count.
#include <atlcomcli.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace
{

TEST(AtlComBstr, HoldsATextOrNone)
{
    EXPECT_STREQ(CComBSTR(L"text").m_str, L"text");
    const CComBSTR empty(L"");
    EXPECT_NE(empty.m_str, nullptr) << "an empty text is a text";
    EXPECT_EQ(empty.Length(), 0u);
    const CComBSTR none;
    EXPECT_EQ(none.m_str, nullptr);
    EXPECT_EQ(none.Length(), 0u);
    EXPECT_EQ(CComBSTR(nullptr).m_str, nullptr);
}

TEST(AtlComBstr, TakesATextFromAnOutParameterAndHandsItOut)
{
    CComBSTR text;
    *(&text) = SysAllocStringLen(L"a\0b", 3);
    EXPECT_EQ(text.Length(), 3u);
    const BSTR detached = text.Detach();
    EXPECT_EQ(std::wstring(detached, SysStringLen(detached)), std::wstring(L"a\0b", 3));
    EXPECT_EQ(text.m_str, nullptr);
    SysFreeString(detached);
}

TEST(AtlComVariant, HasTheTypeOfItsValue)
{
    EXPECT_EQ(CComVariant().vt, VT_EMPTY);
    const CComVariant text(L"text");
    ASSERT_EQ(text.vt, VT_BSTR);
    EXPECT_STREQ(text.bstrVal, L"text");
}

TEST(AtlComVariant, MovesWithoutCopying)
{
    CComVariant source(L"text");
    const BSTR bstr = source.bstrVal;
    CComVariant moved(std::move(source));
    EXPECT_EQ(moved.bstrVal, bstr);
    EXPECT_EQ(source.vt, VT_EMPTY);
    CComVariant assigned(L"other");
    assigned = std::move(moved);
    EXPECT_EQ(assigned.bstrVal, bstr);
    EXPECT_EQ(moved.vt, VT_EMPTY);
}

TEST(AtlComVariant, ChangesItsTypeOrStaysAsItIs)
{
    CComVariant value(L"42");
    EXPECT_EQ(value.ChangeType(VT_I4), S_OK);
    ASSERT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 42);
    const CComVariant text(L"no number");
    EXPECT_EQ(value.ChangeType(VT_I4, &text), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(value.lVal, 42);
}

// A counted object with two interfaces.
class CCounted : public IPersist
{
public:
    STDMETHOD(QueryInterface)(REFIID iid, void** object) override
    {
        *object = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IPersist) ? this : nullptr;
        if (*object == nullptr)
        {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHOD_(ULONG, AddRef)() override { return ++references; }
    STDMETHOD_(ULONG, Release)() override { return --references; }
    STDMETHOD(GetClassID)(CLSID*) override { return E_NOTIMPL; }

    ULONG references = 0;
};

TEST(AtlComPtr, CountsItsReferences)
{
    CCounted object;
    {
        CComPtr<IPersist> first(&object);
        EXPECT_EQ(object.references, 1u);
        CComPtr<IPersist> second(first);
        EXPECT_EQ(object.references, 2u);
        CComPtr<IPersist> third;
        third = second;
        EXPECT_EQ(object.references, 3u);
        CComPtr<IPersist> moved(std::move(third));
        EXPECT_EQ(object.references, 3u);
        EXPECT_TRUE(!third);
        first.Release();
        first.Release();
        EXPECT_EQ(object.references, 2u);
        const CComPtr<IPersist>& same = second;
        second = same;
        EXPECT_EQ(object.references, 2u);
        second = std::move(moved);
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
}

TEST(AtlComPtr, DereferencingNothingThrows)
{
    const CComPtr<IUnknown> nothing;
    HRESULT thrown = S_OK;
    try
    {
        (void)*nothing;
    }
    catch (const CAtlException& e)
    {
        thrown = e.m_hr;
    }
    EXPECT_EQ(thrown, E_FAIL);
}

TEST(AtlComQIPtr, AsksForItsInterface)
{
    CCounted object;
    IUnknown* unknown = &object;
    {
        CComQIPtr<IPersist> persist(unknown);
        EXPECT_EQ(persist.p, &object);
        EXPECT_EQ(object.references, 1u);
        CComQIPtr<IStream> stream(unknown);
        EXPECT_TRUE(!stream);
        stream = unknown;
        EXPECT_TRUE(!stream);
        persist = static_cast<IUnknown*>(nullptr);
        EXPECT_EQ(object.references, 0u);
    }
    EXPECT_EQ(object.references, 0u);
}

} // namespace
