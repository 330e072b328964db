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
    EXPECT_EQ(empty.m_str, nullptr);
    EXPECT_EQ(empty.Length(), 0u);
}

TEST(AtlComBstr, CopiesTexts)
{
    EXPECT_EQ(Text(CComBSTR(L"text")), L"text");
    EXPECT_EQ(CComBSTR(nullptr).m_str, nullptr);
}

TEST(AtlComBstr, AnEmptyTextIsATextOfItsOwn)
{
    const CComBSTR empty(L"");
    EXPECT_NE(empty.m_str, nullptr);
    EXPECT_EQ(empty.Length(), 0u);
}

TEST(AtlComBstr, TakesATextFromAnOutParameter)
{
    CComBSTR text;
    *(&text) = SysAllocStringLen(L"a\0b", 3);
    EXPECT_EQ(Text(text), std::wstring(L"a\0b", 3));
}

TEST(AtlComBstr, HandsItsTextOut)
{
    CComBSTR text(L"text");
    BSTR detached = text.Detach();
    EXPECT_STREQ(detached, L"text");
    EXPECT_EQ(text.m_str, nullptr);
    SysFreeString(detached);
}

} // namespace
