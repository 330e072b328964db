// The answer to a member that the update file does not have.
#include "fixture/ProductFixture.h"
#include "update/UpdateCheck.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orva::test
{
namespace
{

TEST(CheckJSONObjectTest, OnlyNullIsMissing)
{
    using json_spirit::wmValue;
    EXPECT_TRUE(CheckJSONObject(wmValue(), nullptr, true));
    EXPECT_FALSE(CheckJSONObject(wmValue(json_spirit::wmObject()), nullptr, false));
    EXPECT_FALSE(CheckJSONObject(wmValue(std::wstring(L"text")), nullptr, false));
    EXPECT_FALSE(CheckJSONObject(wmValue(0), nullptr, false));
    EXPECT_FALSE(CheckJSONObject(wmValue(false), nullptr, false));
}

TEST(CheckJSONObjectTest, WritesItsEntry)
{
    const CLogMark log;
    CheckJSONObject(json_spirit::wmValue(), nullptr, true);
    EXPECT_EQ(log.Texts(), std::vector<std::string>{"CheckJSONObject"});
}

} // namespace
} // namespace orva::test
