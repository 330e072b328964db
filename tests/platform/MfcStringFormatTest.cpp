// CString::Format: what the runtime's wide printf does, and what happens when text and arguments disagree.
#include "harness/Text.h"

#include <afx.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>

namespace
{

using orva::test::Utf8;

template <typename... T> std::string Formatted(LPCWSTR format, const T&... arguments)
{
    CString text(L"before");
    text.Format(format, arguments...);
    return Utf8(std::wstring(text.GetString(), static_cast<std::size_t>(text.GetLength())));
}

template <typename... T>
concept CanFormat = requires(CString text, const T&... arguments) { text.Format(L"%s", arguments...); };

struct CConvertsToText
{
    operator LPCWSTR() const { return L"text"; }
};
struct CPlain
{
};
class CNamedText : public CString
{
};
enum class Fruit : unsigned char
{
    kPear = 200,
};

// What must not compile.
static_assert(CanFormat<>);
static_assert(CanFormat<int, unsigned long long, wchar_t, bool, Fruit, LPCWSTR, LPSTR, wchar_t[4], CString,
                        CNamedText>);
static_assert(!CanFormat<CConvertsToText>);
static_assert(!CanFormat<CPlain>);
static_assert(!CanFormat<std::wstring>);
static_assert(!CanFormat<std::string_view>);
static_assert(!CanFormat<double>);
static_assert(!CanFormat<void*>);
static_assert(!CanFormat<std::nullptr_t>);
static_assert(!CanFormat<const int*>);

TEST(MfcStringFormat, FillsInTheTextsOfTheDialogs)
{
    EXPECT_EQ("Version 1.2.0 (64-bit)", Formatted(L"Version %d.%d.%d (%d-bit)", 1, 2, 0, 64));
    EXPECT_EQ("Download: 30% of setup.exe", Formatted(L"Download: %s%% of %s", L"30", CString(L"setup.exe")));
    EXPECT_EQ("70s (3072kb of 10240kb complete)",
              Formatted(L"%ds (%s complete)", 70, CString(L"3072kb of 10240kb")));
    EXPECT_EQ("<a href=\"http://x/\">y</a>", Formatted(L"<a href=\"%s\">%s</a>", L"http://x/", L"y"));
    EXPECT_EQ("one\n\ntwo\n\nthree", Formatted(L"%s\n\n%s\n\n%s", L"one", L"two", L"three"));
    EXPECT_EQ("error ID: 5", Formatted(L"error ID: %d", DWORD{5}));
}

TEST(MfcStringFormat, ReplacesTheFormerText)
{
    EXPECT_EQ("", Formatted(L""));
    EXPECT_EQ("plain", Formatted(L"plain"));
    EXPECT_EQ("", Formatted(nullptr));
}

TEST(MfcStringFormat, TextMayBeItsOwnFormatAndArgument)
{
    CString text(L"<%s>");
    text.Format(text, text);
    EXPECT_STREQ(L"<<%s>>", text);
}

// The C runtime is the judge for every integer placeholder.
TEST(MfcStringFormat, IntegersComeOutAsFromTheRuntime)
{
    const wchar_t* const flags[] = {L"",   L"-",  L"0",  L"+",  L" ",  L"#", L"-0",
                                    L"+0", L" 0", L"#0", L"+ ", L"-#", L"-+"};
    const wchar_t* const widths[] = {L"", L"1", L"8", L"20"};
    const wchar_t* const precisions[] = {L"", L".", L".0", L".1", L".5"};
    const long long values[] = {0,     1,     -1,      7,       42,        -42,      255,
                                65535, 70000, INT_MAX, INT_MIN, LLONG_MAX, LLONG_MIN};
    int compared = 0;
    for (const wchar_t type : std::wstring_view(L"diuxXo"))
    {
        for (const wchar_t* flag : flags)
        {
            for (const wchar_t* width : widths)
            {
                for (const wchar_t* precision : precisions)
                {
                    // A precision switches leading zeros off, which Wine's runtime overlooks.
                    if (std::wstring_view(flag).find(L'0') != std::wstring_view::npos && *precision != L'\0')
                    {
                        continue;
                    }
                    const std::wstring head = std::wstring(L"[%") + flag + width + precision;
                    for (const long long value : values)
                    {
                        wchar_t expected[256] = {};
                        CString actual;
                        const std::wstring plain = head + type + L"]";
                        _snwprintf(expected, std::size(expected) - 1, plain.c_str(), static_cast<int>(value));
                        actual.Format(plain.c_str(), static_cast<int>(value));
                        ASSERT_EQ(Utf8(expected), Utf8(actual.GetString())) << Utf8(plain) << " of " << value;

                        const std::wstring wide = head + L"I64" + type + L"]";
                        _snwprintf(expected, std::size(expected) - 1, wide.c_str(), value);
                        actual.Format(wide.c_str(), value);
                        ASSERT_EQ(Utf8(expected), Utf8(actual.GetString())) << Utf8(wide) << " of " << value;
                        ++compared;
                    }
                }
            }
        }
    }
    EXPECT_EQ(6 * 4 * 13 * (13 * 5 - 5 * 4), compared);
}

TEST(MfcStringFormat, PrecisionSwitchesLeadingZerosOff)
{
    EXPECT_EQ("[  007]", Formatted(L"[%05.3d]", 7));
    EXPECT_EQ("[     ]", Formatted(L"[%05.0d]", 0));
    EXPECT_EQ("[    7]", Formatted(L"[%05.d]", 7));
}

TEST(MfcStringFormat, TextsComeOutAsFromTheRuntime)
{
    const wchar_t* const formats[] = {L"[%s]",     L"[%10s]", L"[%-10s]", L"[%.3s]", L"[%10.3s]",
                                      L"[%-5.0s]", L"[%ls]",  L"[%ws]",   L"[%lS]"};
    for (const wchar_t* format : formats)
    {
        for (const wchar_t* text : {L"", L"ab", L"abcdef", L"\u00C4\u20AC"})
        {
            wchar_t expected[64] = {};
            _snwprintf(expected, std::size(expected) - 1, format, text);
            EXPECT_EQ(Utf8(expected), Formatted(format, text)) << Utf8(format);
        }
    }
}

TEST(MfcStringFormat, NarrowTextsAndCharactersWiden)
{
    EXPECT_EQ("[ab]", Formatted(L"[%S]", "ab"));
    EXPECT_EQ("[ab]", Formatted(L"[%hs]", "ab"));
    EXPECT_EQ("[ab]", Formatted(L"[%hS]", "ab"));
    EXPECT_EQ("[  a]", Formatted(L"[%3.1S]", "ab"));
    EXPECT_EQ("[a][b]", Formatted(L"[%C][%hc]", 'a', 'b'));
    const char umlaut[] = {'\xE4', '\0'};
    if (GetACP() == 1252)
    {
        EXPECT_EQ("[\u00E4]", Formatted(L"[%S]", umlaut));
    }
    EXPECT_EQ("[]", Formatted(L"[%S]", ""));
}

TEST(MfcStringFormat, CharactersAreUnits)
{
    EXPECT_EQ("[\u20AC]", Formatted(L"[%c]", L'\u20AC'));
    EXPECT_EQ("[  x]", Formatted(L"[%3c]", L'x'));
    EXPECT_EQ("[x  ]", Formatted(L"[%-3lc]", L'x'));
    EXPECT_EQ(std::string("[\0]", 3), Formatted(L"[%c]", 0));
}

TEST(MfcStringFormat, NullTextPrintsAsNull)
{
    EXPECT_EQ("[(null)]", Formatted(L"[%s]", static_cast<LPCWSTR>(nullptr)));
    EXPECT_EQ("[(null)]", Formatted(L"[%S]", static_cast<LPCSTR>(nullptr)));
    EXPECT_EQ("[(nu]", Formatted(L"[%.3s]", static_cast<LPCWSTR>(nullptr)));
}

TEST(MfcStringFormat, PrecisionBoundsATextWithoutTerminator)
{
    const wchar_t letters[] = {L'a', L'b'};
    const wchar_t* const text = letters;
    EXPECT_EQ("[ab]", Formatted(L"[%.2s]", text));
}

TEST(MfcStringFormat, IntegersAreCutOrExtendedToTheSizeNamed)
{
    EXPECT_EQ("1", Formatted(L"%d", 0x100000001LL));
    EXPECT_EQ("4294967295", Formatted(L"%u", -1));
    EXPECT_EQ("-1", Formatted(L"%d", 0xFFFFFFFFU));
    EXPECT_EQ("-1", Formatted(L"%I64d", -1));
    EXPECT_EQ("4294967295", Formatted(L"%lld", 0xFFFFFFFFU));
    EXPECT_EQ("18446744073709551615", Formatted(L"%I64u", ULLONG_MAX));
    EXPECT_EQ("18446744073709551615", Formatted(L"%zu", SIZE_MAX));
    EXPECT_EQ("ffffffffffffffff", Formatted(L"%Ix", -1LL));
    EXPECT_EQ("ffffffff", Formatted(L"%I32x", -1LL));
    EXPECT_EQ("ffffffff", Formatted(L"%lx", -1LL));
    EXPECT_EQ("-1 65535", Formatted(L"%hd %hu", 0xFFFF, -1));
    EXPECT_EQ("-1 255", Formatted(L"%hhd %hhu", 0xFF, -1));
    EXPECT_EQ("200", Formatted(L"%d", Fruit::kPear));
    EXPECT_EQ("1", Formatted(L"%d", true));
}

TEST(MfcStringFormat, StarTakesAnArgument)
{
    EXPECT_EQ("[   7]", Formatted(L"[%*d]", 4, 7));
    EXPECT_EQ("[7   ]", Formatted(L"[%*d]", -4, 7));
    EXPECT_EQ("[007]", Formatted(L"[%.*d]", 3, 7));
    EXPECT_EQ("[7]", Formatted(L"[%.*d]", -3, 7));
    EXPECT_EQ("[  ab]", Formatted(L"[%*.*s]", 4, 2, L"abc"));
}

TEST(MfcStringFormat, MissingArgumentLeavesThePlaceholder)
{
    EXPECT_EQ("[%d]", Formatted(L"[%d]"));
    EXPECT_EQ("[1][%-5.2s]", Formatted(L"[%d][%-5.2s]", 1));
    EXPECT_EQ("[%*d]", Formatted(L"[%*d]"));
    EXPECT_EQ("[%*d]", Formatted(L"[%*d]", 3));
}

TEST(MfcStringFormat, ArgumentOfTheWrongKindLeavesThePlaceholderAndIsUsedUp)
{
    EXPECT_EQ("[%s][next]", Formatted(L"[%s][%s]", 1, L"next"));
    EXPECT_EQ("[%d][2]", Formatted(L"[%d][%d]", L"text", 2));
    EXPECT_EQ("[%s][%S]", Formatted(L"[%s][%S]", "narrow", L"wide"));
    EXPECT_EQ("[%c]", Formatted(L"[%c]", L"x"));
    EXPECT_EQ("[%hs]", Formatted(L"[%hs]", CString(L"wide")));
    EXPECT_EQ("[%*d][8]", Formatted(L"[%*d][%d]", L"width", 7, 8));
    EXPECT_EQ("[%.*s][8]", Formatted(L"[%.*s][%d]", L"precision", L"text", 8));
}

TEST(MfcStringFormat, FloatingPointAndPointerPlaceholdersStayAndUseUpAnArgument)
{
    EXPECT_EQ("[%.2f][2]", Formatted(L"[%.2f][%d]", 1, 2));
    for (const wchar_t type : std::wstring_view(L"eEfFgGaAp"))
    {
        const std::wstring format = std::wstring(L"%") + type + L"%d";
        EXPECT_EQ(Utf8(format.substr(0, 2)) + "2", Formatted(format.c_str(), 1, 2));
    }
}

TEST(MfcStringFormat, SurplusArgumentsAreIgnored)
{
    EXPECT_EQ("1", Formatted(L"%d", 1, L"two", 3));
}

TEST(MfcStringFormat, PercentBeforeAnythingElseIsDropped)
{
    EXPECT_EQ("100% of 5", Formatted(L"100%% of %d", 5));
    EXPECT_EQ("y5", Formatted(L"%y%d", 5));
    EXPECT_EQ("100", Formatted(L"100%"));
    EXPECT_EQ("100-5", Formatted(L"100%-5"));
    EXPECT_EQ("\u00E45", Formatted(L"%\u00E4%d", 5));
}

TEST(MfcStringFormat, NumberOfCharactersSoFarIsNeverWritten)
{
    EXPECT_EQ("n5", Formatted(L"%n%d", 5));
}

TEST(MfcStringFormat, WidthsAndPrecisionsAreBounded)
{
    EXPECT_EQ(65535U, Formatted(L"%99999999999999999999d", 1).length());
    EXPECT_EQ(65535U, Formatted(L"%.99999999999999999999d", 1).length());
    EXPECT_EQ(65535U, Formatted(L"%*d", INT_MAX, 1).length());
    EXPECT_EQ(65535U, Formatted(L"%*d", INT_MIN, 1).length());
}

TEST(MfcStringFormat, SingleSurrogatesPassThrough)
{
    const wchar_t lone[] = {0xD83D, L'\0'};
    CString text;
    text.Format(L"%s%c", lone, 0xDCE7);
    EXPECT_EQ(L"\U0001F4E7", std::wstring(text.GetString()));
}

} // namespace
