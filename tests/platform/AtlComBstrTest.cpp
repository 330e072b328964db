// Tests of the BSTR that frees itself.
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

} // namespace
