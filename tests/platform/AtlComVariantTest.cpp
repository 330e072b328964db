// Tests of the VARIANT that clears itself.
#include <atlcomcli.h>

#include <gtest/gtest.h>

namespace
{

TEST(AtlComVariant, HasTheTypeOfItsValue)
{
    EXPECT_EQ(CComVariant().vt, VT_EMPTY);
    EXPECT_EQ(CComVariant(L"x").vt, VT_BSTR);
    EXPECT_EQ(CComVariant("x").vt, VT_BSTR);
    EXPECT_EQ(CComVariant(true).boolVal, VARIANT_TRUE);
    EXPECT_EQ(CComVariant(false).boolVal, VARIANT_FALSE);
    EXPECT_EQ(CComVariant(static_cast<BYTE>(1)).vt, VT_UI1);
    EXPECT_EQ(CComVariant(static_cast<short>(-1)).vt, VT_I2);
    EXPECT_EQ(CComVariant(1).vt, VT_I4);
    EXPECT_EQ(CComVariant(1, VT_INT).vt, VT_INT);
    EXPECT_EQ(CComVariant(1u).vt, VT_UI4);
    EXPECT_EQ(CComVariant(1L).vt, VT_I4);
    EXPECT_EQ(CComVariant(DISP_E_PARAMNOTFOUND, VT_ERROR).vt, VT_ERROR);
    EXPECT_EQ(CComVariant(DISP_E_PARAMNOTFOUND, VT_ERROR).scode, DISP_E_PARAMNOTFOUND);
    EXPECT_EQ(CComVariant(1UL).vt, VT_UI4);
    EXPECT_EQ(CComVariant(1LL).vt, VT_I8);
    EXPECT_EQ(CComVariant(1ULL).vt, VT_UI8);
    EXPECT_EQ(CComVariant(1.5).vt, VT_R8);
    EXPECT_EQ(CComVariant(1.5, VT_DATE).vt, VT_DATE);
    EXPECT_EQ(CComVariant(static_cast<IDispatch*>(nullptr)).vt, VT_DISPATCH);
    EXPECT_EQ(CComVariant(static_cast<IUnknown*>(nullptr)).vt, VT_UNKNOWN);
}

TEST(AtlComVariant, CopiesDeeply)
{
    const CComVariant source(L"text");
    CComVariant copy(source);
    EXPECT_NE(copy.bstrVal, source.bstrVal);
    EXPECT_EQ(copy, source);
    CComVariant assigned;
    assigned = source;
    EXPECT_EQ(assigned, source);
    assigned = 5L;
    EXPECT_EQ(assigned, CComVariant(5L));
    assigned = L"other";
    EXPECT_NE(assigned, source);
    const CComVariant& same = copy;
    copy = same;
    EXPECT_EQ(copy, source);
}

TEST(AtlComVariant, ValuesOfDifferentTypesDiffer)
{
    EXPECT_NE(CComVariant(5L), CComVariant(static_cast<short>(5)));
    EXPECT_NE(CComVariant(), CComVariant(0L));
    EXPECT_EQ(CComVariant(), CComVariant());
}

TEST(AtlComVariant, MovesWithoutCopying)
{
    CComVariant source(L"text");
    const BSTR bstr = source.bstrVal;
    CComVariant moved(static_cast<CComVariant&&>(source));
    EXPECT_EQ(moved.bstrVal, bstr);
    EXPECT_EQ(source.vt, VT_EMPTY);
    VARIANT plain;
    ::VariantInit(&plain);
    EXPECT_EQ(moved.Detach(&plain), S_OK);
    EXPECT_EQ(moved.vt, VT_EMPTY);
    EXPECT_EQ(moved.Attach(&plain), S_OK);
    EXPECT_EQ(plain.vt, VT_EMPTY);
    EXPECT_EQ(moved.bstrVal, bstr);
    EXPECT_EQ(moved.Attach(nullptr), E_INVALIDARG);
    EXPECT_EQ(moved.Detach(nullptr), E_POINTER);
}

TEST(AtlComVariant, ChangesItsType)
{
    CComVariant value(L"42");
    EXPECT_EQ(value.ChangeType(VT_I4), S_OK);
    EXPECT_EQ(value, CComVariant(42L));
    const CComVariant text(L"no number");
    EXPECT_EQ(value.ChangeType(VT_I4, &text), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(value, CComVariant(42L));
}

} // namespace
