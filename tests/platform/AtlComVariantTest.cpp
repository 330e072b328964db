// Tests of the VARIANT that clears itself.
#include <atlcomcli.h>

#include <gtest/gtest.h>

#include <utility>

namespace
{

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

TEST(AtlComVariant, ChangesItsType)
{
    CComVariant value(L"42");
    EXPECT_EQ(value.ChangeType(VT_I4), S_OK);
    ASSERT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 42);
    const CComVariant text(L"no number");
    EXPECT_EQ(value.ChangeType(VT_I4, &text), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(value.lVal, 42);
}

} // namespace
