// The JSON value: accessors, their type errors, and copies.
#include "platform/JsonDump.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace
{

using namespace json_spirit;
using orva::test::Dump;

wmValue Read(const std::wstring& text)
{
    wmValue value;
    read_or_throw(text, value);
    return value;
}

std::string ErrorOf(const std::function<void()>& access)
{
    try
    {
        access();
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(JsonSpiritValue, TypesAreNumberedInTheirOrder)
{
    EXPECT_EQ(static_cast<int>(Read(L"{}").type()), 0);
    EXPECT_EQ(static_cast<int>(Read(L"[]").type()), 1);
    EXPECT_EQ(static_cast<int>(Read(L"\"\"").type()), 2);
    EXPECT_EQ(static_cast<int>(Read(L"true").type()), 3);
    EXPECT_EQ(static_cast<int>(Read(L"1").type()), 4);
    EXPECT_EQ(static_cast<int>(Read(L"18446744073709551615").type()), 4);
    EXPECT_EQ(static_cast<int>(Read(L"1.0").type()), 5);
    EXPECT_EQ(static_cast<int>(Read(L"null").type()), 6);
    EXPECT_EQ(obj_type, 0);
    EXPECT_EQ(null_type, 6);
}

TEST(JsonSpiritValue, OnlyNullIsNull)
{
    EXPECT_TRUE(wmValue().is_null());
    EXPECT_TRUE(Read(L"null").is_null());
    for (const wchar_t* text : {L"{}", L"[]", L"\"\"", L"false", L"0", L"0.0"})
    {
        EXPECT_FALSE(Read(text).is_null()) << text;
    }
}

TEST(JsonSpiritValue, AccessorsGiveTheValue)
{
    EXPECT_EQ(Read(L"{\"a\":1}").get_obj().at(L"a").get_int(), 1);
    EXPECT_EQ(Read(L"[1,2]").get_array().size(), 2U);
    EXPECT_EQ(Read(L"\"x\"").get_str(), L"x");
    EXPECT_TRUE(Read(L"true").get_bool());
    EXPECT_EQ(Read(L"-5").get_int(), -5);
    EXPECT_EQ(Read(L"-5000000000").get_int64(), -5000000000LL);
    EXPECT_EQ(Read(L"1.5").get_real(), 1.5);
}

TEST(JsonSpiritValue, GetIntCutsToTheLow32Bits)
{
    EXPECT_EQ(Read(L"2147483647").get_int(), 2147483647);
    EXPECT_EQ(Read(L"2147483648").get_int(), -2147483647 - 1);
    EXPECT_EQ(Read(L"4294967296").get_int(), 0);
    EXPECT_EQ(Read(L"4294967298").get_int(), 2);
    EXPECT_EQ(Read(L"9223372036854775807").get_int(), -1);
    EXPECT_EQ(Read(L"-9223372036854775808").get_int(), 0);
    EXPECT_EQ(Read(L"18446744073709551615").get_int(), -1);
}

TEST(JsonSpiritValue, AWrongAccessorSaysFoundAndExpectedType)
{
    EXPECT_EQ(ErrorOf([] { Read(L"\"1\"").get_int(); }), "value type is 2 not 4");
    EXPECT_EQ(ErrorOf([] { Read(L"1.0").get_int(); }), "value type is 5 not 4");
    EXPECT_EQ(ErrorOf([] { Read(L"null").get_int(); }), "value type is 6 not 4");
    EXPECT_EQ(ErrorOf([] { Read(L"[]").get_obj(); }), "value type is 1 not 0");
    EXPECT_EQ(ErrorOf([] { Read(L"{}").get_array(); }), "value type is 0 not 1");
    EXPECT_EQ(ErrorOf([] { Read(L"1").get_str(); }), "value type is 4 not 2");
    EXPECT_EQ(ErrorOf([] { Read(L"0").get_bool(); }), "value type is 4 not 3");
    EXPECT_EQ(ErrorOf([] { Read(L"true").get_int64(); }), "value type is 3 not 4");
    EXPECT_EQ(ErrorOf([] { Read(L"1").get_real(); }), "value type is 4 not 5");
}

TEST(JsonSpiritValue, TheNarrowKindHasTheSameErrors)
{
    EXPECT_EQ(ErrorOf([] { wmValue(L"1").get_int(); }), "value type is 2 not 4");
    EXPECT_EQ(ErrorOf([] { wmValue().get_obj(); }), "value type is 6 not 0");
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
