// Member lookups in JSON objects.
#include "support/JsonUtilities.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

json_spirit::wmObject Read(const std::wstring& text)
{
    json_spirit::wmValue value;
    json_spirit::read_or_throw(text, value);
    return value.get_obj();
}

} // namespace

TEST(FindValue, GivesTheMemberItself)
{
    const json_spirit::wmObject object = Read(L"{\"a\":1,\"b\":{\"c\":\"x\"}}");
    EXPECT_EQ(FindValue(object, L"a").get_int(), 1);
    EXPECT_EQ(&FindValue(object, L"b"), &object.at(L"b"));
}

TEST(FindValue, AnAbsentNameGivesTheSharedNullValue)
{
    const json_spirit::wmObject object = Read(L"{\"a\":1}");
    EXPECT_TRUE(FindValue(object, L"b").is_null());
    EXPECT_TRUE(FindValue(json_spirit::wmObject(), L"a").is_null());
    EXPECT_EQ(&FindValue(object, L"b"), &FindValue(object, L"c"));
    EXPECT_EQ(object.size(), 1u);
}

TEST(FindValue, NamesAreExact)
{
    const json_spirit::wmObject object = Read(L"{\"x64\":1}");
    for (const wchar_t* name : {L"X64", L"x6", L"x644", L" x64", L""})
    {
        EXPECT_TRUE(FindValue(object, name).is_null()) << name;
    }
}

TEST(FindValue, AMemberThatIsNullLooksMissing)
{
    EXPECT_TRUE(FindValue(Read(L"{\"a\":null}"), L"a").is_null());
}

TEST(GetStringValue, GivesTheText)
{
    EXPECT_EQ(GetStringValue(Read(L"{\"a\":\"x\\u20AC\"}"), L"a"), L"x\x20AC");
    EXPECT_EQ(GetStringValue(Read(L"{\"a\":\"\"}"), L"a"), L"");
}

TEST(GetStringValue, IsEmptyForAMissingOrNullMember)
{
    EXPECT_EQ(GetStringValue(Read(L"{}"), L"a"), L"");
    EXPECT_EQ(GetStringValue(Read(L"{\"a\":null}"), L"a"), L"");
}

TEST(GetStringValue, AMemberOfAnotherTypeRaisesTheTypeError)
{
    try
    {
        GetStringValue(Read(L"{\"a\":1}"), L"a");
        FAIL() << "no error";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "value type is 4 not 2");
    }
}
