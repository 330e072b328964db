// Text conversions, replacements and XML escaping.
#include "support/TextUtilities.h"

#include <gtest/gtest.h>

TEST(WideToNarrow, KeepsTheLowByteOfEveryUnit)
{
    EXPECT_EQ(WideToNarrow(L"\x00C4\x20AC\x0416 plain ~"), "\xC4\xAC\x16 plain ~");
    EXPECT_EQ(WideToNarrow(L""), "");
    // A surrogate pair gives two bytes.
    EXPECT_EQ(WideToNarrow(L"\xD83D\xDE01"), "\x3D\x01");
    // Units that are zero, or whose low byte is, stay.
    EXPECT_EQ(WideToNarrow(std::wstring(L"a\0\x0100z", 4)), std::string("a\0\0z", 4));
}

TEST(NarrowToWide, ExtendsTheSignOfEveryByteTo16Bits)
{
    for (int code = 0; code < 256; ++code)
    {
        const std::string narrow = {'a', static_cast<char>(code), 'z'};
        const wchar_t unit = static_cast<wchar_t>(code < 0x80 ? code : 0xFF00 + code);
        EXPECT_EQ(NarrowToWide(narrow), (std::wstring{L'a', unit, L'z'})) << code;
    }
    EXPECT_EQ(NarrowToWide(""), L"");
}

namespace
{

template <class With> std::wstring Replaced(std::wstring text, const std::wstring& what, const With& with)
{
    ReplaceAll(text, what, with);
    return text;
}

} // namespace

TEST(ReplaceAll, NeverSearchesInsertedText)
{
    EXPECT_EQ(Replaced(L"aaa", L"a", std::wstring(L"aa")), L"aaaaaa");
    EXPECT_EQ(Replaced(L"aaaa", L"aa", std::wstring(L"a")), L"aa");
}

TEST(ReplaceAll, ReplacesEveryMatchFromLeftToRight)
{
    EXPECT_EQ(Replaced(L"%1 and %1", L"%1", std::wstring(L"one")), L"one and one");
    EXPECT_EQ(Replaced(L"aXbXc", L"X", std::wstring()), L"abc");
    EXPECT_EQ(Replaced(L"aaa", L"aa", std::wstring(L"b")), L"ba");
}

TEST(ReplaceAll, WithoutAMatchTheTextStays)
{
    EXPECT_EQ(Replaced(L"abc", L"x", std::wstring(L"y")), L"abc");
    EXPECT_EQ(Replaced(L"", L"x", std::wstring(L"y")), L"");
    EXPECT_EQ(Replaced(L"abc", L"B", std::wstring(L"y")), L"abc");
}

TEST(ReplaceAll, AnEmptySearchTextChangesNothing)
{
    EXPECT_EQ(Replaced(L"abc", L"", std::wstring(L"y")), L"abc");
    EXPECT_EQ(Replaced(L"abc", L"", std::wstring()), L"abc");
}

TEST(ReplaceAll, TakesTheReplacementFromACString)
{
    EXPECT_EQ(Replaced(L"<a> <a>", L"<a>", CString(L"\x00E4\x0416")), L"\x00E4\x0416 \x00E4\x0416");
    EXPECT_EQ(Replaced(L"aaa", L"a", CString(L"aa")), L"aaaaaa");
}

TEST(EscapeXml, EscapesAmpersandsAndAngleBracketsOnly)
{
    EXPECT_EQ(EscapeXml(L"&"), L"&#x26;");
    EXPECT_EQ(EscapeXml(L"<a b=\"c\" d='e'>"), L"&#x3c;a b=\"c\" d='e'&#x3e;");
    EXPECT_EQ(EscapeXml(L"plain"), L"plain");
    EXPECT_EQ(EscapeXml(L""), L"");
}

TEST(EscapeXml, DoesNotEscapeAnEscapedAmpersandTwice)
{
    EXPECT_EQ(EscapeXml(L"a&#x26;b<c>"), L"a&#x26;b&#x3c;c&#x3e;");
}

TEST(EscapeXml, RemovesEveryTailOfAnAmpersandReference)
{
    EXPECT_EQ(EscapeXml(L"A#x26;B"), L"AB");
}

TEST(EscapeXml, EscapesTheAmpersandOfOtherReferences)
{
    EXPECT_EQ(EscapeXml(L"&amp;&#x3c;"), L"&#x26;amp;&#x26;#x3c;");
}
