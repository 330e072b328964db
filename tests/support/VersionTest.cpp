// The version's numbers and what depends on the architecture.
#include "support/Version.h"

#include <gtest/gtest.h>

TEST(Version, IsOneTwoZero)
{
    EXPECT_EQ(kVersionMajor, 1);
    EXPECT_EQ(kVersionMinor, 2);
    EXPECT_EQ(kVersionBuild, 0);
}

TEST(Version, WidthAndEntryNameAreThoseOfTheBuild)
{
#ifdef _WIN64
    EXPECT_EQ(kBuildBits, 64);
    EXPECT_STREQ(kUpdateEntryName, L"x64");
#else
    EXPECT_EQ(kBuildBits, 32);
    EXPECT_STREQ(kUpdateEntryName, L"x86");
#endif
}
