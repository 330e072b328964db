// The JSON value: accessors, their type errors, and copies.
#include "platform/JsonDump.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{

using namespace json_spirit;
using orva::test::Dump;

// They appear in the text of the type error.
static_assert(obj_type == 0 && array_type == 1 && str_type == 2 && bool_type == 3 && int_type == 4 &&
              real_type == 5 && null_type == 6);

wmValue Read(const std::wstring& text)
{
    wmValue value;
    read_or_throw(text, value);
    return value;
}

TEST(JsonSpiritValue, KnowsItsType)
{
    const struct
    {
        const wchar_t* text;
        Value_type type;
    } rows[] = {
        {L"{}", obj_type},     {L"[]", array_type},  {L"\"\"", str_type},
        {L"false", bool_type}, {L"0", int_type},     {L"18446744073709551615", int_type},
        {L"0.0", real_type},   {L"null", null_type},
    };
    for (const auto& [text, type] : rows)
    {
        EXPECT_EQ(Read(text).type(), type) << text;
        EXPECT_EQ(Read(text).is_null(), type == null_type) << text;
    }
    EXPECT_TRUE(wmValue().is_null());
}

TEST(JsonSpiritValue, AccessorsGiveTheValue)
{
    EXPECT_EQ(Read(L"{\"a\":1}").get_obj().at(L"a").get_int(), 1);
    EXPECT_EQ(Read(L"[1,2]").get_array().size(), 2U);
    EXPECT_EQ(Read(L"\"x\"").get_str(), L"x");
    EXPECT_TRUE(Read(L"true").get_bool());
    EXPECT_EQ(Read(L"-5000000000").get_int64(), -5000000000LL);
    EXPECT_EQ(Read(L"1.5").get_real(), 1.5);
}

TEST(JsonSpiritValue, GetIntCutsToTheLow32Bits)
{
    EXPECT_EQ(Read(L"-5").get_int(), -5);
    EXPECT_EQ(Read(L"2147483647").get_int(), 2147483647);
    EXPECT_EQ(Read(L"2147483648").get_int(), -2147483647 - 1);
    EXPECT_EQ(Read(L"4294967298").get_int(), 2);
    EXPECT_EQ(Read(L"-9223372036854775808").get_int(), 0);
    EXPECT_EQ(Read(L"18446744073709551615").get_int(), -1);
}

TEST(JsonSpiritValue, AWrongAccessorSaysFoundAndExpectedType)
{
    const struct
    {
        std::function<void()> access;
        const char* error;
    } rows[] = {
        {[] { Read(L"\"1\"").get_int(); }, "value type is 2 not 4"},
        {[] { Read(L"1.0").get_int(); }, "value type is 5 not 4"},
        {[] { Read(L"null").get_int(); }, "value type is 6 not 4"},
        {[] { Read(L"[]").get_obj(); }, "value type is 1 not 0"},
        {[] { Read(L"{}").get_array(); }, "value type is 0 not 1"},
        {[] { Read(L"1").get_str(); }, "value type is 4 not 2"},
        {[] { Read(L"0").get_bool(); }, "value type is 4 not 3"},
        {[] { Read(L"true").get_int64(); }, "value type is 3 not 4"},
        {[] { Read(L"1").get_real(); }, "value type is 4 not 5"},
    };
    for (const auto& [access, error] : rows)
    {
        std::string thrown = "nothing";
        try
        {
            access();
        }
        catch (const std::runtime_error& e)
        {
            thrown = e.what();
        }
        EXPECT_EQ(thrown, error);
    }
}

TEST(JsonSpiritValue, CopiesAreDeep)
{
    const wmValue original = Read(L"{\"a\":[1,{\"b\":2}]}");
    wmValue copy = original;
    copy.get_obj()[L"a"].get_array()[1].get_obj()[L"b"] = wmValue(3);
    copy.get_obj()[L"c"] = wmValue(L"new");

    EXPECT_EQ(Dump(original), "{'a':[1 {'b':2}]}");
    EXPECT_EQ(Dump(copy), "{'a':[1 {'b':3}] 'c':'new'}");
}

TEST(JsonSpiritValue, AValueCanTakeOneOfItsOwnMembers)
{
    wmValue value = Read(L"{\"a\":{\"b\":[1,2]}}");
    value = wmValue(value.get_obj()[L"a"]);
    EXPECT_EQ(Dump(value), "{'b':[1 2]}");
    value = value.get_obj()[L"b"];
    EXPECT_EQ(Dump(value), "[1 2]");
}

TEST(JsonSpiritValue, EqualityGoesByTypeAndContent)
{
    EXPECT_EQ(Read(L"{\"a\":[1,\"x\",null]}"), Read(L"{ \"a\" : [ 1, \"x\", null ] }"));
    EXPECT_FALSE(Read(L"{\"a\":[1]}") == Read(L"{\"a\":[2]}"));
    EXPECT_FALSE(Read(L"1") == Read(L"1.0"));
    EXPECT_FALSE(Read(L"null") == Read(L"false"));
}

} // namespace
