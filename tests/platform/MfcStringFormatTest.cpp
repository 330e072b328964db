// CString::Format: what fills a placeholder in, and what does not.
#include "harness/Text.h"

#include <afx.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

using orva::test::Utf8;

template <typename... T> std::string Formatted(LPCWSTR format, const T&... arguments)
{
    CString text(L"before");
    text.Format(format, arguments...);
    return Utf8(text.GetString());
}

enum class Colour
{
    Green = 7
};

struct CConvertible
{
    operator LPCWSTR() const { return L"text"; }
};

static_assert(CFormattable<int> && CFormattable<unsigned> && CFormattable<long> &&
              CFormattable<unsigned long> && CFormattable<Colour> && CFormattable<LPCWSTR> &&
              CFormattable<wchar_t[4]> && CFormattable<CString>);
// What the original would print as an address, cut or read as something else does not compile.
static_assert(!CFormattable<CConvertible> && !CFormattable<std::wstring> && !CFormattable<const char*> &&
              !CFormattable<char[4]> && !CFormattable<long long> && !CFormattable<double> &&
              !CFormattable<void*> && !CFormattable<int*>);

TEST(MfcStringFormat, FillsInIntegersAndTexts)
{
    EXPECT_EQ("1.2.0", Formatted(L"%d.%d.%d", 1, 2, 0));
    EXPECT_EQ("-2147483648 2147483647", Formatted(L"%d %d", -2147483647 - 1, 2147483647L));
    EXPECT_EQ("-1", Formatted(L"%d", 0xFFFFFFFFu));
    EXPECT_EQ("7 1", Formatted(L"%d %d", Colour::Green, true));
    EXPECT_EQ("<a> <b>", Formatted(L"<%s> <%s>", L"a", CString(L"b")));
    EXPECT_EQ(Utf8(L"Gr\u00FC\u00DFe"), Formatted(L"%s", L"Gr\u00FC\u00DFe"));
    EXPECT_EQ("(null)", Formatted(L"%s", static_cast<LPCWSTR>(nullptr)));
    EXPECT_EQ(std::string(5000, 'x'), Formatted(L"%s", std::wstring(5000, L'x').c_str()));
    EXPECT_EQ("100 %s %d", Formatted(L"%d %s", 100, L"%s %d")) << "texts are no formats";
}

TEST(MfcStringFormat, WhatDoesNotAgreeStaysAsItIsWritten)
{
    EXPECT_EQ("1 %d %s", Formatted(L"%d %d %s", 1));
    EXPECT_EQ("%s %d", Formatted(L"%s %d", 1, L"a"));
    EXPECT_EQ("%d 2", Formatted(L"%d %d", L"a", 2)) << "the argument of the wrong kind is used up";
    EXPECT_EQ("50 % %s", Formatted(L"%d %% %%s", 50)) << "two percent signs are one";
    EXPECT_EQ("%x %5d 1", Formatted(L"%x %5d %d", 1)) << "another use of the sign takes no argument";
    EXPECT_EQ("%n%", Formatted(L"%n%", 1));
    EXPECT_EQ("1", Formatted(L"%d", 1, 2, L"a")) << "arguments left over are ignored";
    EXPECT_EQ("", Formatted(nullptr, 1));
}

TEST(MfcStringFormat, TheTextItselfMayBeAmongTheArguments)
{
    CString text(L"a");
    text.Format(L"%s%s", text, text.GetString());
    EXPECT_STREQ(L"aa", text);
    text = L"<%d>";
    text.Format(text, 5);
    EXPECT_STREQ(L"<5>", text);
}

} // namespace
