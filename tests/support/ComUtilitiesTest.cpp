// Byte arrays and GUID texts.
#include "support/ComUtilities.h"

#include <gtest/gtest.h>

#include <oleauto.h>

#include <algorithm>
#include <cwctype>
#include <string>

namespace
{

std::string BytesOf(SAFEARRAY* array)
{
    void* data = nullptr;
    LONG upper = -1;
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    EXPECT_EQ(SafeArrayAccessData(array, &data), S_OK);
    std::string bytes(static_cast<const char*>(data), static_cast<size_t>(upper + 1));
    EXPECT_EQ(SafeArrayUnaccessData(array), S_OK);
    return bytes;
}

} // namespace

TEST(BytesToSafeArray, CopiesTheBytesIntoAnArrayFromZero)
{
    const std::string bytes("a\0\xFFz", 4);
    SAFEARRAY* array = nullptr;
    ASSERT_EQ(BytesToSafeArray(bytes.data(), 4, &array), S_OK);
    ASSERT_NE(array, nullptr);

    VARTYPE type = VT_EMPTY;
    LONG lower = -1;
    EXPECT_EQ(SafeArrayGetVartype(array, &type), S_OK);
    EXPECT_EQ(type, VT_UI1);
    EXPECT_EQ(SafeArrayGetDim(array), 1u);
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), S_OK);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(BytesOf(array), bytes);

    // Nothing holds a lock any more.
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(BytesToSafeArray, NoBytesGiveAnEmptyArray)
{
    SAFEARRAY* array = nullptr;
    ASSERT_EQ(BytesToSafeArray(nullptr, 0, &array), S_OK);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(BytesOf(array), "");
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(BytesToSafeArray, WithoutATargetThereIsNoMemory)
{
    EXPECT_EQ(BytesToSafeArray("x", 1, nullptr), E_OUTOFMEMORY);
}

// The system reads the registry's form only: 38 characters, with braces and hyphens in their places.
TEST(GuidStrings, HaveTheRegistryFormInUpperCase)
{
    const std::string narrow = CreateGuidString();
    for (const std::wstring& text : {std::wstring(narrow.begin(), narrow.end()), CreateGuidStringW()})
    {
        GUID guid = {};
        EXPECT_EQ(text.size(), 38u);
        EXPECT_EQ(CLSIDFromString(text.c_str(), &guid), S_OK);
        EXPECT_FALSE(IsEqualGUID(guid, GUID_NULL));
        EXPECT_TRUE(std::none_of(text.begin(), text.end(), [](wchar_t c) { return std::iswlower(c); }));
    }
}

TEST(GuidStrings, AreNewEachTime)
{
    EXPECT_NE(CreateGuidString(), CreateGuidString());
    EXPECT_NE(CreateGuidStringW(), CreateGuidStringW());
}
