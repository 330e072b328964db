// The JSON reader: its grammar, its errors, what stays in the target after one, and its bound on nesting.
#include "platform/JsonDump.h"

#include <gtest/gtest.h>

#include <exception>
#include <type_traits>
#include <vector>

namespace
{

using json_spirit::Error_position;
using json_spirit::wmValue;
using orva::test::ReadAndDump;
using orva::test::WidenAscii;

// A handler of standard exceptions does not take it.
static_assert(!std::is_base_of_v<std::exception, Error_position>);

struct Case
{
    std::string text;
    std::string expected;
};

void CheckReading(const std::vector<Case>& cases)
{
    for (const Case& c : cases)
    {
        EXPECT_EQ(ReadAndDump(WidenAscii(c.text)), c.expected) << c.text.substr(0, 100);
    }
}

std::string Repeated(int count, const std::string& part)
{
    std::string text;
    for (int i = 0; i < count; ++i)
    {
        text += part;
    }
    return text;
}

std::string Nested(int levels, const std::string& open, const std::string& inner, const std::string& close)
{
    return Repeated(levels, open) + inner + Repeated(levels, close);
}

TEST(JsonSpiritReader, TheRootMayBeAnyValue)
{
    CheckReading({
        {R"({"x64":{"majorVersion":1,"description":{"default":"new"}},"list":[1,[2,{}],"3"]})",
         "{'list':[1 [2 {}] '3'] 'x64':{'description':{'default':'new'} 'majorVersion':1}}"},
        {"[]", "[]"},
        {"\"text\"", "'text'"},
        {"\"\"", "''"},
        {"true", "true"},
        {"false", "false"},
        {"null", "null"},
        {"17", "17"},
        {"1.5", "1.5r"},
    });
}

TEST(JsonSpiritReader, SkipsWhiteSpaceBetweenTokens)
{
    CheckReading({
        {" \t\r\n\v\f{ \"a\" \n:\t1 , \"b\" : [ 1 , 2 ] } ", "{'a':1 'b':[1 2]}"},
        {"\"a  b\"", "'a  b'"},
        {"[1 2]", "[1] !not an array 1:4"},
        {"[t rue]", "[] !not an array 1:2"},
    });
}

TEST(JsonSpiritReader, IgnoresWhatFollowsTheFirstValue)
{
    CheckReading({
        {"{} x", "{}"},
        {"1 2", "1"},
        {"truely", "true"},
        {"\"a\"\"b\"", "'a'"},
        {"[]]", "[]"},
        {"1e", "1"},
        {"1.2.3", "1.2r"},
    });
}

TEST(JsonSpiritReader, TextThatStartsWithNoValueIsNotAValueAndLeavesTheTargetNull)
{
    CheckReading({
        {"", "null !not a value 1:1"},
        {"   ", "null !not a value 1:4"},
        {"\r\n\r\n  <html>", "null !not a value 3:3"},
        {"}", "null !not a value 1:1"},
        {"]", "null !not a value 1:1"},
        {"'a'", "null !not a value 1:1"},
        {"True", "null !not a value 1:1"},
        {"FALSE", "null !not a value 1:1"},
        {"Null", "null !not a value 1:1"},
        {"tru", "null !not a value 1:1"},
        {"// no comments\n1", "null !not a value 1:1"},
        {"/* no comments */ 1", "null !not a value 1:1"},
    });
    EXPECT_EQ(ReadAndDump(L"\xFEFF{}"), "null !not a value 1:1") << "a byte-order mark";
}

TEST(JsonSpiritReader, AnErrorBeforeTheFirstValueLeavesTheTargetAsItIs)
{
    wmValue value(7);
    EXPECT_THROW(json_spirit::read_or_throw(std::wstring(L"x"), value), Error_position);
    EXPECT_EQ(value.get_int(), 7);
}

TEST(JsonSpiritReader, ObjectsThatDoNotEndAreNotObjects)
{
    CheckReading({
        {"{", "{} !not an object 1:2"},
        {"{ ", "{} !not an object 1:3"},
        {"{\"a\":1", "{'a':1} !not an object 1:7"},
        {"{\"a\":1,}", "{'a':1} !not an object 1:7"},
        {"{\"a\":1]", "{'a':1} !not an object 1:7"},
        {"{\"a\":1 \"b\":2}", "{'a':1} !not an object 1:8"},
        {"{,}", "{} !not an object 1:2"},
        {"{a:1}", "{} !not an object 1:2"},
        {"{1:1}", "{} !not an object 1:2"},
        {"{\"a\":1,\"b", "{'a':1} !not an object 1:7"},
    });
}

TEST(JsonSpiritReader, MembersWithoutColonHaveNoColonInPair)
{
    CheckReading({
        {"{\"a\"", "{} !no colon in pair 1:5"},
        {"{\"a\" 1}", "{} !no colon in pair 1:6"},
        {"{\"a\":1,\"b\"}", "{'a':1} !no colon in pair 1:11"},
    });
}

TEST(JsonSpiritReader, MembersWithoutValueAreNotAValue)
{
    CheckReading({
        {"{\"a\":", "{} !not a value 1:6"},
        {"{\"a\": x}", "{} !not a value 1:7"},
        {"{\"a\":1,\"b\":}", "{'a':1} !not a value 1:12"},
        {"{\"a\":\"open}", "{} !not a value 1:6"},
    });
}

TEST(JsonSpiritReader, ArraysThatDoNotEndAreNotArrays)
{
    CheckReading({
        {"[", "[] !not an array 1:2"},
        {"[1", "[1] !not an array 1:3"},
        {"[1,]", "[1] !not an array 1:3"},
        {"[,1]", "[] !not an array 1:2"},
        {"[1}", "[1] !not an array 1:3"},
        {"[\"a", "[] !not an array 1:2"},
        {"[1 /* no comments */]", "[1] !not an array 1:4"},
    });
}

TEST(JsonSpiritReader, AfterAnErrorEverythingReadSoFarStaysInTheTarget)
{
    CheckReading({
        // Cut after a complete inner object.
        {R"({"x64":{"majorVersion":2},)", "{'x64':{'majorVersion':2}} !not an object 1:26"},
        // A nested object is in place from its own opening bracket on.
        {R"({"x64":{)", "{'x64':{}} !not an object 1:9"},
        {R"({"x64":{"majorVersion":2,"minor)", "{'x64':{'majorVersion':2}} !not an object 1:25"},
        {R"({"a":[1,{"b":2,"c":)", "{'a':[1 {'b':2}]} !not a value 1:20"},
        {R"([[1,2],[3,x]])", "[[1 2] [3]] !not an array 1:10"},
    });
}

TEST(JsonSpiritReader, ErrorPositionsCountLinesAndColumnsFromOne)
{
    CheckReading({
        {"{\n  \"a\": 1,\n  \"b\" 2\n}", "{'a':1} !no colon in pair 3:7"},
        {"[1,\r\n2,\r\n x]", "[1 2] !not an array 2:2"},
        {"\r\r x", "null !not a value 3:2"},
        {"\tx", "null !not a value 1:5"},
    });
}

TEST(JsonSpiritReader, ARepeatedNameKeepsTheLastValue)
{
    CheckReading({
        {R"({"a":{"b":1},"a":{"c":2}})", "{'a':{'c':2}}"},
        {R"({"a":{"b":1},"a":null})", "{'a':null}"},
        {R"({"a":1,"A":2})", "{'A':2 'a':1}"},
    });
}

TEST(JsonSpiritReader, StringsMayHoldRawControlCharactersAndWideOnes)
{
    CheckReading({
        {"\"a\r\n\tb\x01\"", "'a<0D><0A><09>b<01>'"},
        {std::string("\"a\0b\"", 5), "'a<00>b'"},
        {"{\"a\nb\":1}", "{'a<0A>b':1}"},
    });
    EXPECT_EQ(ReadAndDump(L"{\"\x20AC\":\"\x0416\xD83D\xDE00\"}"), "{'<20AC>':'<416><D83D><DE00>'}");
}

TEST(JsonSpiritReader, StringsEndAtTheFirstQuoteThatIsNotEscaped)
{
    CheckReading({
        {R"("a\"b")", R"('a"b')"},
        {R"("a\\")", R"('a\')"},
        {R"("a\\\"b")", R"('a\"b')"},
        {R"("a\")", "null !not a value 1:1"},
        {"\"a\\", "null !not a value 1:1"},
        {"\"", "null !not a value 1:1"},
    });
}

TEST(JsonSpiritReader, ResolvesEscapes)
{
    CheckReading({
        {R"("\t\b\f\n\r\\\/\"")", R"('<09><08><0C><0A><0D>\/"')"},
        {R"("\u0041\u007a\x42")", "'AzB'"},
        {R"("\u00e4\xE4\u00FF")", "'<E4><E4><FF>'"},
        {R"("\u20AC\uD83D\uDE00\uffff")", "'<20AC><D83D><DE00><FFFF>'"},
        {R"({"\u0061\t":1})", "{'a<09>':1}"},
    });
}

TEST(JsonSpiritReader, OtherEscapedCharactersAreDropped)
{
    CheckReading({
        {R"("a\qb\'c\0d")", "'abcd'"},
        {R"("\a\v\e\U0041")", "'0041'"},
        // Without all of its digits a "u" or "x" is such a character.
        {R"("\u12")", "'12'"},
        {R"("\u12G4!")", "'12G4!'"},
        {R"("\x4")", "'4'"},
        {R"("\xg1")", "'g1'"},
        {R"("\u")", "''"},
    });
}

TEST(JsonSpiritReader, NumbersWithADotOrAnExponentAreReals)
{
    CheckReading({
        {"1.0", "1r"},
        {".5", "0.5r"},
        {"5.", "5r"},
        {"1e3", "1000r"},
        {"1E3", "1000r"},
        {"1e+3", "1000r"},
        {"25e-2", "0.25r"},
        {"-1.25", "-1.25r"},
        {"+1.25", "1.25r"},
        {"-.5e1", "-5r"},
        {"007.5", "7.5r"},
    });
}

TEST(JsonSpiritReader, OtherNumbersAreIntegers)
{
    CheckReading({
        {"0", "0"},
        {"-0", "0"},
        {"-7", "-7"},
        {"+7", "7"},
        {"007", "7"},
        {"9223372036854775807", "9223372036854775807"},
        {"-9223372036854775808", "-9223372036854775808"},
        {"9223372036854775808", "9223372036854775808u"},
        {"18446744073709551615", "18446744073709551615u"},
    });
}

TEST(JsonSpiritReader, NumbersThatFitNothingAreNotAValue)
{
    CheckReading({
        {"18446744073709551616", "null !not a value 1:1"},
        {"-9223372036854775809", "null !not a value 1:1"},
        {"{\"a\":99999999999999999999}", "{} !not a value 1:6"},
        {"-", "null !not a value 1:1"},
        {"+", "null !not a value 1:1"},
        {".", "null !not a value 1:1"},
        {"- 1", "null !not a value 1:1"},
        {"--1", "null !not a value 1:1"},
        {"e5", "null !not a value 1:1"},
        {"NaN", "null !not a value 1:1"},
        {std::string(400, '9') + ".0", "null !not a value 1:1"},
    });
}

TEST(JsonSpiritReader, ReadsSixtyFourLevelsOfWhatIsOpenAtOnce)
{
    CheckReading({
        {Nested(64, "[", "", "]"), Nested(64, "[", "", "]")},
        {Nested(64, "{\"a\":", "1", "}"), Nested(64, "{'a':", "1", "}")},
        {Nested(32, "[{\"a\":", "1", "}]"), Nested(32, "[{'a':", "1", "}]")},
        {"[[]" + Repeated(1000, ",[[]]") + "]", "[[]" + Repeated(1000, " [[]]") + "]"},
    });
}

TEST(JsonSpiritReader, TheSixtyFifthLevelIsASyntaxErrorThatKeepsTheOthers)
{
    constexpr int kBrackets = 250'000;
    CheckReading({
        {Nested(65, "[", "", "]"), Nested(64, "[", "", "]") + " !nested too deeply 1:65"},
        {std::string(kBrackets, '['), Nested(64, "[", "", "]") + " !nested too deeply 1:65"},
        {Repeated(kBrackets, "{\"a\":"), Nested(63, "{'a':", "{}", "}") + " !nested too deeply 1:321"},
        {"{\"x64\":{\"majorVersion\":2},\"junk\":" + std::string(kBrackets, '['),
         "{'junk':" + Nested(63, "[", "", "]") + " 'x64':{'majorVersion':2}} !nested too deeply 1:97"},
    });
}

} // namespace
