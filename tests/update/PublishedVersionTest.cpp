// Which published versions are newer than the installed 1.2.0.
#include "update/PublishedVersion.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orva::test
{
namespace
{

constexpr int kMinimum = std::numeric_limits<int>::min();
constexpr int kMaximum = std::numeric_limits<int>::max();

struct CCase
{
    PublishedVersion published;
    bool newer;
};

void PrintTo(const CCase& testCase, std::ostream* stream)
{
    *stream << testCase.published.major << '.' << testCase.published.minor << '.' << testCase.published.build;
}

class PublishedVersionTest : public testing::TestWithParam<CCase>
{
};

TEST_P(PublishedVersionTest, ComparesInLexicographicOrder)
{
    EXPECT_EQ(IsNewerThanInstalled(GetParam().published), GetParam().newer);
}

INSTANTIATE_TEST_SUITE_P(Versions, PublishedVersionTest,
                         testing::Values(CCase{{1, 2, 0}, false}, CCase{{1, 2, 1}, true},
                                         CCase{{1, 3, 0}, true}, CCase{{2, 0, 0}, true},
                                         CCase{{1, 1, 99}, false}, CCase{{0, 9, 9}, false},
                                         CCase{{-1, 9, 9}, false}, CCase{{1, -1, 9}, false},
                                         CCase{{1, 2, -1}, false}, CCase{{2, -1, -1}, true},
                                         CCase{{1, 3, -1}, true}, CCase{{kMaximum, kMinimum, kMinimum}, true},
                                         CCase{{kMinimum, kMaximum, kMaximum}, false},
                                         CCase{{1, kMaximum, 0}, true}, CCase{{1, 2, kMaximum}, true}));

TEST(FormatVersionTest, JoinsTheNumbersWithDots)
{
    EXPECT_STREQ(FormatVersion({1, 3, 7}), L"1.3.7");
    EXPECT_STREQ(FormatVersion({10, -1, kMaximum}), L"10.-1.2147483647");
}

TEST(FormatVersionTest, InstalledVersionIsTheAddInsOwn)
{
    EXPECT_STREQ(FormatInstalledVersion(), L"1.2.0");
}

} // namespace
} // namespace orva::test
