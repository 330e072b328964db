// Tests of the BSTR and the VARIANT that free themselves.
#include <atlcomcli.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

std::wstring Text(const CComBSTR& bstr)
{
    return {bstr.m_str ? bstr.m_str : L"", bstr.Length()};
}

TEST(AtlComBstr, StartsWithoutText)
{
    const CComBSTR empty;
    EXPECT_TRUE(!empty);
    EXPECT_EQ(empty.Length(), 0u);
    EXPECT_EQ(empty.ByteLength(), 0u);
    EXPECT_TRUE(empty == nullptr);
}

TEST(AtlComBstr, CopiesWideAndNarrowTexts)
{
    EXPECT_EQ(Text(CComBSTR(L"wide")), L"wide");
    EXPECT_EQ(Text(CComBSTR("narrow")), L"narrow");
    EXPECT_TRUE(!CComBSTR(static_cast<LPCOLESTR>(nullptr)));
    EXPECT_TRUE(!CComBSTR(static_cast<LPCSTR>(nullptr)));
}

TEST(AtlComBstr, AnEmptyTextIsATextOfItsOwn)
{
    const CComBSTR empty(L"");
    EXPECT_FALSE(!empty);
    EXPECT_EQ(empty.Length(), 0u);
}

TEST(AtlComBstr, HoldsACountOfCharacters)
{
    EXPECT_EQ(Text(CComBSTR(3)), std::wstring(3, L'\0'));
    EXPECT_EQ(Text(CComBSTR(2, L"abc")), L"ab");
    EXPECT_EQ(Text(CComBSTR(3, L"a\0b")), std::wstring(L"a\0b", 3));
    EXPECT_THROW(CComBSTR(-1), CAtlException);
}

TEST(AtlComBstr, WritesAGuid)
{
    EXPECT_EQ(Text(CComBSTR(IID_IDispatch)), L"{00020400-0000-0000-C000-000000000046}");
}

TEST(AtlComBstr, CopiesKeepZeroCharacters)
{
    const CComBSTR source(3, L"a\0b");
    const CComBSTR constructed(source);
    CComBSTR assigned(L"old");
    assigned = source;
    EXPECT_EQ(Text(constructed), std::wstring(L"a\0b", 3));
    EXPECT_EQ(Text(assigned), std::wstring(L"a\0b", 3));
    EXPECT_NE(constructed.m_str, source.m_str);
    CComBSTR again;
    EXPECT_EQ(again.AssignBSTR(source), S_OK);
    EXPECT_EQ(Text(again), std::wstring(L"a\0b", 3));
    EXPECT_EQ(again.AssignBSTR(nullptr), S_OK);
    EXPECT_TRUE(!again);
}

TEST(AtlComBstr, AssigningItselfKeepsTheText)
{
    CComBSTR text(L"text");
    const CComBSTR& same = text;
    text = same;
    EXPECT_EQ(Text(text), L"text");
    text = static_cast<LPCOLESTR>(text.m_str);
    EXPECT_EQ(Text(text), L"text");
}

TEST(AtlComBstr, MovesWithoutCopying)
{
    CComBSTR source(L"text");
    const BSTR bstr = source;
    CComBSTR moved(static_cast<CComBSTR&&>(source));
    EXPECT_EQ(moved.m_str, bstr);
    EXPECT_TRUE(!source);
    CComBSTR assigned(L"old");
    assigned = static_cast<CComBSTR&&>(moved);
    EXPECT_EQ(assigned.m_str, bstr);
}

TEST(AtlComBstr, AppendsTexts)
{
    CComBSTR text;
    EXPECT_EQ(text.Append(L"ab"), S_OK);
    text += L"c";
    text += CComBSTR(2, L"\0d");
    EXPECT_EQ(text.Append(L"xyz", 1), S_OK);
    EXPECT_EQ(Text(text), std::wstring(L"abc\0dx", 6));
    EXPECT_EQ(text.Append(static_cast<LPCOLESTR>(nullptr)), S_OK);
    EXPECT_EQ(text.Append(L"x", -1), E_INVALIDARG);
    text += text;
    EXPECT_EQ(text.Length(), 12u);
}

TEST(AtlComBstr, Compares)
{
    const CComBSTR a(L"a");
    EXPECT_TRUE(a == CComBSTR(L"a"));
    EXPECT_TRUE(a == L"a");
    EXPECT_TRUE(a != L"A");
    EXPECT_TRUE(a < CComBSTR(L"b"));
    EXPECT_TRUE(CComBSTR(L"b") > a);
    EXPECT_TRUE(CComBSTR() == CComBSTR(L""));
}

TEST(AtlComBstr, HandsItsTextOut)
{
    CComBSTR text(L"text");
    BSTR copy = nullptr;
    EXPECT_EQ(text.CopyTo(&copy), S_OK);
    EXPECT_STREQ(copy, L"text");
    EXPECT_NE(copy, text.m_str);
    ::SysFreeString(copy);
    EXPECT_EQ(text.CopyTo(nullptr), E_POINTER);
    BSTR detached = text.Detach();
    EXPECT_TRUE(!text);
    text.Attach(detached);
    EXPECT_EQ(Text(text), L"text");
    text.Empty();
    EXPECT_TRUE(!text);
}

TEST(AtlComBstr, AMissingStringResourceLeavesNoText)
{
    CComBSTR text(L"old");
    EXPECT_FALSE(text.LoadString(::GetModuleHandleW(nullptr), 65000));
    EXPECT_TRUE(!text);
}

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
