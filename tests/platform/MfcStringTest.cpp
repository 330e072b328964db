// CString: values, the rest of a text, comparing, adding, buffers.
#include "harness/Text.h"

#include <afx.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

using orva::test::Utf8;

std::string Utf8Of(const CString& text)
{
    return Utf8(std::wstring(text.GetString(), static_cast<std::size_t>(text.GetLength())));
}

// Runs `action`; whether it threw a CInvalidArgException*.
template <typename F> bool RefusesArgument(F action)
{
    try
    {
        action();
    }
    catch (CInvalidArgException* exception)
    {
        exception->Delete();
        return true;
    }
    return false;
}

TEST(MfcString, NullPointersAreEmptyTexts)
{
    EXPECT_EQ("", Utf8Of(CString()));
    EXPECT_STREQ(L"", CString());
    constexpr LPCWSTR nothing = nullptr;
    CString text(nothing);
    EXPECT_TRUE(text.IsEmpty());
    text = L"x";
    text += nothing;
    EXPECT_EQ("x", Utf8Of(text));
    EXPECT_FALSE(text == nothing);
    EXPECT_LT(0, text.CompareNoCase(nothing));
    text = nothing;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_TRUE(CString(nothing, 0).IsEmpty());
    EXPECT_TRUE(RefusesArgument([] { CString(nullptr, 1); }));
}

TEST(MfcString, CountedConstructorKeepsZeroUnits)
{
    const CString text(L"a\0b", 3);
    EXPECT_EQ(3, text.GetLength());
    EXPECT_EQ(std::string("a\0b", 3), Utf8Of(text));
    EXPECT_TRUE(RefusesArgument([] { CString(L"abc", -1); }));
    EXPECT_EQ(2, CString(L"\U0001F4E7").GetLength()) << "units are counted";
}

TEST(MfcString, CopiesAreIndependent)
{
    CString original(L"one");
    const CString copy = original;
    original += L" two";
    EXPECT_EQ("one", Utf8Of(copy));
    EXPECT_EQ("one two", Utf8Of(original));
    original.Empty();
    EXPECT_TRUE(original.IsEmpty());
    EXPECT_EQ("one", Utf8Of(copy));
}

TEST(MfcString, TheRestIsCutToTheText)
{
    const CString text(L"abcdef");
    EXPECT_EQ("cdef", Utf8Of(text.Mid(2)));
    EXPECT_EQ("", Utf8Of(text.Mid(6)));
    EXPECT_EQ("", Utf8Of(text.Mid(7)));
    EXPECT_EQ("abcdef", Utf8Of(text.Mid(-5)));
}

TEST(MfcString, FindsTheLastUnit)
{
    const CString text(L"a/b/c");
    EXPECT_EQ(3, text.ReverseFind(L'/'));
    EXPECT_EQ(-1, text.ReverseFind(L'x'));
    EXPECT_EQ(-1, CString().ReverseFind(L'/'));
}

TEST(MfcString, ComparesWithoutRegardToCase)
{
    const CString text(L"abc");
    EXPECT_EQ(0, text.CompareNoCase(L"aBC"));
    EXPECT_LT(text.CompareNoCase(L"ABD"), 0);
    EXPECT_NE(0, text.CompareNoCase(L"ab"));
}

TEST(MfcString, OperatorsCompareTextsAndNotPointers)
{
    const CString text(L"abc");
    const wchar_t same[] = L"abc";
    EXPECT_TRUE(text == same);
    EXPECT_TRUE(same == text);
    EXPECT_TRUE(text == CString(same));
    EXPECT_FALSE(text != same);
    EXPECT_TRUE(text != L"abd");
    EXPECT_TRUE(L"abd" != text);
    EXPECT_TRUE(CString(L"a\0b", 3) == CString(L"a\0c", 3)) << "up to the first zero unit";
}

TEST(MfcString, AddsTexts)
{
    const CString text(L"b");
    EXPECT_EQ("bb", Utf8Of(text + text));
    EXPECT_EQ("bc", Utf8Of(text + L"c"));
    CString sum;
    sum += L"x";
    sum += sum;
    EXPECT_EQ("xx", Utf8Of(sum));
}

TEST(MfcString, TakesPartsOfItself)
{
    CString text(L"abcdef");
    text = CString(text.GetString() + 2, 3);
    EXPECT_EQ("cde", Utf8Of(text));
    text = text.GetString() + 1;
    EXPECT_EQ("de", Utf8Of(text));
}

TEST(MfcString, BufferKeepsTheTextAndIsCutAtTheFirstZero)
{
    CString text(L"abc");
    LPWSTR buffer = text.GetBuffer(10);
    EXPECT_STREQ(L"abc", buffer);
    buffer[1] = L'\0';
    text.ReleaseBuffer();
    EXPECT_EQ(1, text.GetLength());
    EXPECT_EQ("a", Utf8Of(text));

    buffer = text.GetBuffer(4);
    for (int i = 0; i < 4; ++i)
    {
        buffer[i] = L'x';
    }
    text.ReleaseBuffer();
    EXPECT_EQ("xxxx", Utf8Of(text));

    buffer = text.GetBuffer(100);
    buffer[0] = L'y';
    text.ReleaseBuffer(2);
    EXPECT_EQ("yx", Utf8Of(text));
    EXPECT_TRUE(RefusesArgument([&] { text.ReleaseBuffer(3); }));
}

} // namespace
