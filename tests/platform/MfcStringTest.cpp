// CString: values, parts, searching, comparing, buffers.
#include "harness/Text.h"

#include <afx.h>

#include <gtest/gtest.h>

#include <climits>
#include <map>
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

TEST(MfcString, StartsEmpty)
{
    const CString text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(0, text.GetLength());
    EXPECT_STREQ(L"", text);
}

TEST(MfcString, NullPointersAreEmptyTexts)
{
    constexpr LPCWSTR nothing = nullptr;
    CString text(nothing);
    EXPECT_TRUE(text.IsEmpty());
    text = L"x";
    text += nothing;
    EXPECT_EQ("x", Utf8Of(text));
    EXPECT_EQ("x", Utf8Of(nothing + text));
    EXPECT_EQ(1, text.Compare(nothing));
    EXPECT_EQ(-1, text.Find(nothing));
    text = nothing;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_TRUE(CString(nothing, 0).IsEmpty());
    EXPECT_TRUE(RefusesArgument([] { CString(nullptr, 1); }));
}

TEST(MfcString, CountedConstructorKeepsZeroUnits)
{
    const CString text(L"a\0b", 3);
    EXPECT_EQ(3, text.GetLength());
    EXPECT_EQ(L'b', text[2]);
    EXPECT_EQ(std::string("a\0b", 3), Utf8Of(text));
    EXPECT_TRUE(RefusesArgument([] { CString(L"abc", -1); }));
}

TEST(MfcString, RepeatsAUnit)
{
    EXPECT_EQ("---", Utf8Of(CString(L'-', 3)));
    EXPECT_EQ("-", Utf8Of(CString(L'-')));
    EXPECT_EQ("", Utf8Of(CString(L'-', -1)));
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

TEST(MfcString, LengthCountsUnits)
{
    EXPECT_EQ(2, CString(L"\U0001F4E7").GetLength());
}

TEST(MfcString, IndexReachesTheTerminatorAndNotBeyond)
{
    const CString text(L"ab");
    EXPECT_EQ(L'a', text[0]);
    EXPECT_EQ(L'b', text.GetAt(1));
    EXPECT_EQ(L'\0', text.GetAt(2));
    EXPECT_TRUE(RefusesArgument([&] { static_cast<void>(text.GetAt(3)); }));
    EXPECT_TRUE(RefusesArgument([&] { static_cast<void>(text[-1]); }));
}

TEST(MfcString, PartsAreCutToTheText)
{
    const CString text(L"abcdef");
    EXPECT_EQ("ab", Utf8Of(text.Left(2)));
    EXPECT_EQ("abcdef", Utf8Of(text.Left(99)));
    EXPECT_EQ("", Utf8Of(text.Left(-1)));
    EXPECT_EQ("ef", Utf8Of(text.Right(2)));
    EXPECT_EQ("abcdef", Utf8Of(text.Right(INT_MAX)));
    EXPECT_EQ("", Utf8Of(text.Right(INT_MIN)));
    EXPECT_EQ("cdef", Utf8Of(text.Mid(2)));
    EXPECT_EQ("cd", Utf8Of(text.Mid(2, 2)));
    EXPECT_EQ("f", Utf8Of(text.Mid(5, INT_MAX)));
    EXPECT_EQ("", Utf8Of(text.Mid(6)));
    EXPECT_EQ("", Utf8Of(text.Mid(7, 1)));
    EXPECT_EQ("", Utf8Of(text.Mid(2, -1)));
    EXPECT_EQ("ab", Utf8Of(text.Mid(-5, 2)));
}

TEST(MfcString, FindsTextsAndUnits)
{
    const CString text(L"a/b/c");
    EXPECT_EQ(1, text.Find(L'/'));
    EXPECT_EQ(3, text.Find(L'/', 2));
    EXPECT_EQ(-1, text.Find(L'/', 4));
    EXPECT_EQ(-1, text.Find(L'/', 5));
    EXPECT_EQ(-1, text.Find(L'/', -1));
    EXPECT_EQ(2, text.Find(L"b/"));
    EXPECT_EQ(-1, text.Find(L"b/", 3));
    EXPECT_EQ(-1, text.Find(L"B/"));
    EXPECT_EQ(2, text.Find(L"", 2));
    EXPECT_EQ(5, text.Find(L"", 5));
    EXPECT_EQ(-1, text.Find(L"", 6));
    EXPECT_EQ(-1, text.Find(L"b/", -1));
    EXPECT_EQ(3, text.ReverseFind(L'/'));
    EXPECT_EQ(-1, text.ReverseFind(L'x'));
    EXPECT_EQ(-1, CString().ReverseFind(L'/'));
}

TEST(MfcString, ComparesByUnits)
{
    const CString text(L"abc");
    EXPECT_EQ(0, text.Compare(L"abc"));
    EXPECT_LT(text.Compare(L"abd"), 0);
    EXPECT_GT(text.Compare(L"ABC"), 0);
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
    EXPECT_TRUE(text < L"abd");
    EXPECT_TRUE(L"abd" > text);
    EXPECT_TRUE(text < CString(L"abd"));
    EXPECT_TRUE(text >= CString(L"ABD"));
    EXPECT_TRUE(text <= L"abc");
    const std::map<CString, int> numbers = {{L"two", 2}, {L"one", 1}};
    EXPECT_EQ(1, numbers.at(L"one"));
}

TEST(MfcString, AddsTextsAndUnits)
{
    const CString text(L"b");
    EXPECT_EQ("bb", Utf8Of(text + text));
    EXPECT_EQ("bc", Utf8Of(text + L"c"));
    EXPECT_EQ("ab", Utf8Of(L"a" + text));
    EXPECT_EQ("bc", Utf8Of(text + L'c'));
    EXPECT_EQ("ab", Utf8Of(L'a' + text));
    CString sum;
    sum += L"x";
    sum += L'y';
    sum += sum;
    EXPECT_EQ("xyxy", Utf8Of(sum));
    sum = L'z';
    EXPECT_EQ("z", Utf8Of(sum));
}

TEST(MfcString, TakesPartsOfItself)
{
    CString text(L"abcdef");
    text.SetString(text.GetString() + 2, 3);
    EXPECT_EQ("cde", Utf8Of(text));
    text = text.GetString() + 1;
    EXPECT_EQ("de", Utf8Of(text));
    text = static_cast<LPCWSTR>(text);
    EXPECT_EQ("de", Utf8Of(text));
}

TEST(MfcString, ConvertsToWideStringAndBack)
{
    const CString text(L"abc");
    const std::wstring wide(text);
    EXPECT_EQ(L"abc", wide);
    EXPECT_TRUE(text == wide.c_str());
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
