// Tests of reading registration scripts: what each form means, and what is refused where.
#include "harness/Text.h"
#include "platform/atl/RegistrationScript.h"

#include <gtest/gtest.h>

namespace
{

using ATL::CRegistrationReplacements;
using ATL::CRegistrationScript;
using ATL::CRegistrationStep;
using ATL::kMaxRegistrationDepth;
using ATL::ParseRegistrationScript;
using ATL::RegistrationHive;
using orva::test::Utf8;

CRegistrationReplacements Replacements()
{
    CRegistrationReplacements replacements;
    replacements.Set(L"MODULE", L"C:\\O'Neill {x}\\a.dll");
    replacements.Set(L"APPID", L"{AEC5}");
    replacements.Set(L"BRACE", L"{");
    replacements.Set(L"EMPTY", L"");
    return replacements;
}

std::string Describe(const ATL::RegistrationData& data)
{
    if (const auto* string = std::get_if<std::wstring>(&data))
    {
        return "s:" + Utf8(*string);
    }
    if (const auto* number = std::get_if<std::uint32_t>(&data))
    {
        return "d:" + std::to_string(*number);
    }
    std::string text;
    if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&data))
    {
        for (const std::uint8_t byte : *bytes)
        {
            text += std::to_string(byte) + ".";
        }
        return "b:" + text;
    }
    for (const std::wstring& part : std::get<std::vector<std::wstring>>(data))
    {
        text += Utf8(part) + "|";
    }
    return "m:" + text;
}

// Writes a script's steps in one line, so that tables of tests can name them.
std::string Describe(const CRegistrationScript& script)
{
    if (script.error)
    {
        return std::to_string(script.errorOffset) + ": " + script.error;
    }
    std::string text;
    for (const CRegistrationStep& step : script.steps)
    {
        using Kind = CRegistrationStep::Kind;
        const std::string flags =
            std::string(step.forceRemove ? "force " : "") + (step.noRemove ? "keep " : "");
        switch (step.kind)
        {
        case Kind::EnterHive:
            text += "hive" + std::to_string(static_cast<int>(step.hive)) + "{";
            break;
        case Kind::EnterKey:
            text += flags + "[" + Utf8(step.name) + "]{";
            break;
        case Kind::Leave:
            text += "}";
            break;
        case Kind::DeleteKey:
            text += "delete[" + Utf8(step.name) + "] ";
            break;
        case Kind::SetValue:
            text += flags + "<" + Utf8(step.name) + ">=" + Describe(step.data) + " ";
            break;
        }
    }
    return text;
}

struct Row
{
    const char* name;
    std::wstring script;
    std::string expected;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.name;
}

std::string NameOf(const testing::TestParamInfo<Row>& info)
{
    return info.param.name;
}

class AtlRegistrationScript : public testing::TestWithParam<Row>
{
};

TEST_P(AtlRegistrationScript, GivesItsSteps)
{
    EXPECT_EQ(Describe(ParseRegistrationScript(GetParam().script, Replacements())), GetParam().expected);
}

const Row kWellFormed[] = {
    {"OnlyBlanks", L" \t\r\n", ""},
    {"LongNamesOfRootKeys",
     L"HKEY_CLASSES_ROOT { } HKEY_CURRENT_USER { } HKEY_LOCAL_MACHINE { } HKEY_USERS { } "
     L"HKEY_PERFORMANCE_DATA { } HKEY_DYN_DATA { } HKEY_CURRENT_CONFIG { }",
     "hive0{}hive1{}hive2{}hive3{}hive4{}hive5{}hive6{}"},
    {"ShortNamesOfRootKeys", L"HKCR { } HKCU { } HKLM { } HKU { } HKPD { } HKDD { } HKCC { }",
     "hive0{}hive1{}hive2{}hive3{}hive4{}hive5{}hive6{}"},
    {"CaseOfWordsDoesNotMatter", L"hkcu { forceremove 'a' noREMOVE 'b' VAL 'c' = S 'd' DELETE 'e' }",
     "hive1{force [a]{}keep [b]{}<c>=s:d delete[e] }"},
    {"KeyWithoutQuotes", L"HKCU { a.b-c }", "hive1{[a.b-c]{}}"},
    {"GuidWithoutQuotes", L"HKCU { ForceRemove {12-34} = s {56} { b } }",
     "hive1{force [{12-34}]{<>=s:{56} [b]{}}}"},
    {"DefaultValue", L"HKCU { 'k' = s 'text' }", "hive1{[k]{<>=s:text }}"},
    {"DefaultValueAndBlock", L"HKCU { 'k' = s 'text' { val 'v' = d '3' } }",
     "hive1{[k]{<>=s:text <v>=d:3 }}"},
    {"BraceRightAfterAQuotedName", L"HKCU { 'k'{ } }", "hive1{[k]{}}"},
    {"QuotedKeywordIsAName", L"HKCU { 'Delete' 'val' 'ForceRemove' '{' '=' }",
     "hive1{[Delete]{}[val]{}[ForceRemove]{}[{]{}[=]{}}"},
    {"BothModifiers", L"HKCU { ForceRemove NoRemove k }", "hive1{force keep [k]{}}"},
    {"ValueThatStays", L"HKCU { NoRemove val v = s x }", "hive1{keep <v>=s:x }"},
    {"ValueWithAnEmptyName", L"HKCU { k { val '' = s x } }", "hive1{[k]{<>=s:x }}"},
    {"DoubledApostrophe", L"HKCU { 'it''s' = s '''' }", "hive1{[it's]{<>=s:' }}"},
    {"EndsAtAZeroCharacter", std::wstring(L"HKCU { k }\0 }", 13), "hive1{[k]{}}"},
    {"DecimalDword", L"HKCU { val v = d '4294967295' }", "hive1{<v>=d:4294967295 }"},
    {"HexadecimalDword", L"HKCU { val v = d '0xFFffFFff' val w = d 0X1a val x = d &H10 }",
     "hive1{<v>=d:4294967295 <w>=d:26 <x>=d:16 }"},
    {"DwordWithLeadingZeros", L"HKCU { val v = d '00000000000000000007' }", "hive1{<v>=d:7 }"},
    {"Binary", L"HKCU { val v = b '00fF1A' }", "hive1{<v>=b:0.255.26. }"},
    {"MultiString", L"HKCU { val v = m 'one\\0two\\0' }", "hive1{<v>=m:one|two| }"},
    {"MultiStringDropsEmptyParts", L"HKCU { val v = m '\\0a\\0\\0b' }", "hive1{<v>=m:a|b| }"},
    {"MultiStringKeepsOtherBackslashes", L"HKCU { val v = m 'c:\\x\\0d:\\y' }", "hive1{<v>=m:c:\\x|d:\\y| }"},
    {"Replacement", L"HKCU { k = s '<%APPID%>' }", "hive1{[k]{<>=s:<{AEC5}> }}"},
    {"NameOfAReplacementInAnyCase", L"HKCU { k = s '%appId%' }", "hive1{[k]{<>=s:{AEC5} }}"},
    {"ReplacementAsAKey", L"HKCU { NoRemove %APPID% }", "hive1{keep [{AEC5}]{}}"},
    {"ReplacementBringsNoQuotes", L"HKCU { k = s '%MODULE%' l }",
     "hive1{[k]{<>=s:C:\\O'Neill {x}\\a.dll }[l]{}}"},
    {"ReplacementBringsNoBrace", L"HKCU { k %BRACE% }", "hive1{[k]{}[{]{}}"},
    {"ReplacementIsNotReadAgain", L"HKCU { k = s '%APPID%%%APPID%%' }", "hive1{[k]{<>=s:{AEC5}%APPID% }}"},
    {"DoubledPercentSign", L"HKCU { k = s '100%%' }", "hive1{[k]{<>=s:100% }}"},
    {"NonAsciiText", L"HKCU { 'ş' = s 'ñ' }", "hive1{[ş]{<>=s:ñ }}"},
    {"KeysInKeys", L"HKCU { 'k' { } 'a  b' { c { d } e } } HKCR { }",
     "hive1{[k]{}[a  b]{[c]{[d]{}}[e]{}}}hive0{}"},
    {"EmptyTexts", L"HKCU { k = s '' { val v = b '' val w = m '' val x = s '%EMPTY%' } }",
     "hive1{[k]{<>=s: <v>=b: <w>=m: <x>=s: }}"},
};
INSTANTIATE_TEST_SUITE_P(WellFormed, AtlRegistrationScript, testing::ValuesIn(kWellFormed), NameOf);

const Row kMalformed[] = {
    {"UnknownRootKey", L"HKXX { }", "0: a root key is expected here"},
    {"RootKeyWithoutBlock", L"HKCU", "4: an opening brace is expected after a root key"},
    {"RootKeyGluedToItsBrace", L"HKCU{ }", "0: a root key is expected here"},
    {"MissingClosingBrace", L"HKCU { a { }", "12: a closing brace is missing"},
    {"SurplusClosingBrace", L"HKCU { } }", "9: a root key is expected here"},
    {"OpeningBraceWithoutAKey", L"HKCU { { } }", "7: a key name is expected here"},
    {"TwoBlocksForOneKey", L"HKCU { a { } { } }", "13: a key name is expected here"},
    {"ModifierAtTheEnd", L"HKCU { NoRemove", "15: a key name is expected here"},
    {"EmptyKeyName", L"HKCU { ForceRemove '' }",
     "19: a key name must not be empty and must not hold a backslash"},
    {"EmptyReplacementAsAKey", L"HKCU { %EMPTY% }",
     "7: a key name must not be empty and must not hold a backslash"},
    {"KeyNameWithBackslash", L"HKCU { 'a\\b' }",
     "7: a key name must not be empty and must not hold a backslash"},
    {"UnknownType", L"HKCU { a = x 'y' }", "11: one of the types s, d, b and m is expected here"},
    {"QuotedType", L"HKCU { a = 's' 'y' }", "11: one of the types s, d, b and m is expected here"},
    {"MissingData", L"HKCU { a = s }", "13: the data of a value is expected here"},
    {"ValueWithoutAName", L"HKCU { val = s 'x' }", "11: a value name is expected here"},
    {"ValueWithoutData", L"HKCU { val 'a' 'b' }", "15: an equals sign is expected after a value name"},
    {"ValueWithABlock", L"HKCU { val 'a' = s 'x' { } }", "23: a key name is expected here"},
    {"ValueThatIsForced", L"HKCU { ForceRemove val 'a' = s 'x' }", "19: ForceRemove is for keys"},
    {"DeleteWithABlock", L"HKCU { Delete a { } }", "16: a key name is expected here"},
    {"DwordOfLetters", L"HKCU { a = d '12x' }", "13: this is no number of 32 bits"},
    {"DwordPrefixWithoutDigits", L"HKCU { a = d '0x' }", "13: this is no number of 32 bits"},
    {"DwordTooLarge", L"HKCU { a = d '4294967296' }", "13: this is no number of 32 bits"},
    {"HexadecimalDwordTooLarge", L"HKCU { a = d '0x100000000' }", "13: this is no number of 32 bits"},
    {"BinaryOfAnOddLength", L"HKCU { a = b '123' }", "13: binary data are pairs of hexadecimal digits"},
    {"BinaryOfLetters", L"HKCU { a = b '0g' }", "13: binary data are pairs of hexadecimal digits"},
    {"OpenText", L"HKCU { 'abc }", "7: a text lacks its closing apostrophe"},
    {"UnknownReplacement", L"HKCU { a = s 'x%NONE%' }", "15: there is no replacement of this name"},
    {"SinglePercentSign", L"HKCU { a = s '50%' }", "16: a percent sign lacks its partner"},
    {"PercentSignsAcrossWords", L"HKCU { %APP ID% }", "7: a percent sign lacks its partner"},
};
INSTANTIATE_TEST_SUITE_P(Malformed, AtlRegistrationScript, testing::ValuesIn(kMalformed), NameOf);

std::wstring NestedKeys(std::size_t depth)
{
    std::wstring script = L"HKCU { ";
    for (std::size_t i = 0; i < depth; ++i)
    {
        script += L"a { ";
    }
    for (std::size_t i = 0; i < depth; ++i)
    {
        script += L"} ";
    }
    return script + L"}";
}

TEST(AtlRegistrationScriptDepth, HasALimitAndNoOtherThatTheStackSets)
{
    const CRegistrationScript deep = ParseRegistrationScript(NestedKeys(kMaxRegistrationDepth), {});
    EXPECT_EQ(deep.error, nullptr);
    EXPECT_EQ(deep.steps.size(), 2 * (kMaxRegistrationDepth + 1));
    for (const std::size_t depth : {kMaxRegistrationDepth + 1, std::size_t{250'000}})
    {
        const CRegistrationScript tooDeep = ParseRegistrationScript(NestedKeys(depth), {});
        EXPECT_STREQ(tooDeep.error, "keys nest too deep");
        EXPECT_TRUE(tooDeep.steps.empty());
    }
}

TEST(AtlRegistrationScriptCut, IsAnErrorWithoutSteps)
{
    const std::wstring whole =
        L"HKCU { ForceRemove 'a' = s '%APPID%' { val 'b' = d '0x1f' NoRemove c } Delete d }";
    ASSERT_EQ(ParseRegistrationScript(whole, Replacements()).error, nullptr);
    for (std::size_t length = 1; length < whole.size(); ++length)
    {
        const CRegistrationScript script =
            ParseRegistrationScript(std::wstring_view(whole).substr(0, length), Replacements());
        EXPECT_NE(script.error, nullptr) << length;
        EXPECT_TRUE(script.steps.empty()) << length;
    }
}

TEST(AtlRegistrationReplacements, TheLaterTextOfANameCounts)
{
    CRegistrationReplacements replacements;
    replacements.Set(L"Name", L"one");
    replacements.Set(L"NAME", L"two");
    ASSERT_NE(replacements.Find(L"name"), nullptr);
    EXPECT_EQ(*replacements.Find(L"name"), L"two");
    replacements.Clear();
    EXPECT_EQ(replacements.Find(L"name"), nullptr);
}

} // namespace
