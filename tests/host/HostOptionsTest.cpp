// The command line of the stand-in Outlook.
#include "host/HostOptions.h"

#include <gtest/gtest.h>

namespace
{

using namespace orva::host;

struct Parsed
{
    bool ok;
    HostOptions options;
    std::wstring error;
};

Parsed Parse(const std::vector<std::wstring>& arguments)
{
    Parsed parsed{};
    parsed.ok = ParseOptions(arguments, parsed.options, parsed.error);
    return parsed;
}

TEST(HostOptions, WithoutArgumentsIsVersion14AtStartup)
{
    const Parsed parsed = Parse({});
    EXPECT_TRUE(parsed.ok);
    EXPECT_EQ(parsed.options.version, L"14.0.4760.1000");
    EXPECT_EQ(parsed.options.mode, ConnectMode::Startup);
    EXPECT_FALSE(parsed.options.fastShutdown);
    EXPECT_EQ(parsed.options.traceFile, L"");
}

TEST(HostOptions, ShortVersionsBecomeFullOnes)
{
    EXPECT_EQ(Parse({L"--office", L"12"}).options.version, L"12.0.6423.1000");
    EXPECT_EQ(Parse({L"--office", L"14"}).options.version, L"14.0.4760.1000");
    EXPECT_EQ(Parse({L"--office", L"15"}).options.version, L"15.0.4420.1017");
}

TEST(HostOptions, AnyOtherVersionTextIsTakenAsItIs)
{
    EXPECT_EQ(Parse({L"--office", L"beta 3"}).options.version, L"beta 3");
}

TEST(HostOptions, ReadsEveryMode)
{
    EXPECT_EQ(Parse({L"--mode", L"after-startup"}).options.mode, ConnectMode::AfterStartup);
    EXPECT_EQ(Parse({L"--mode", L"startup"}).options.mode, ConnectMode::Startup);
    EXPECT_EQ(Parse({L"--mode", L"external"}).options.mode, ConnectMode::External);
    EXPECT_EQ(Parse({L"--mode", L"command-line"}).options.mode, ConnectMode::CommandLine);
}

TEST(HostOptions, ReadsEverySwitchByItself)
{
    EXPECT_TRUE(Parse({L"--no-explorer"}).options.noExplorer);
    EXPECT_TRUE(Parse({L"--fast-shutdown"}).options.fastShutdown);
    EXPECT_TRUE(Parse({L"--backstage"}).options.backstage);
    EXPECT_TRUE(Parse({L"--empty-menu-bar"}).options.emptyMenuBar);
    EXPECT_TRUE(Parse({L"--last-control-not-popup"}).options.lastControlNotPopup);
    EXPECT_TRUE(Parse({L"--quit-after-startup"}).options.quitAfterStartup);
    EXPECT_FALSE(Parse({L"--no-explorer"}).options.fastShutdown);
}

TEST(HostOptions, UnknownOptionIsRefusedByName)
{
    const Parsed parsed = Parse({L"--backstage", L"--colour"});
    EXPECT_FALSE(parsed.ok);
    EXPECT_EQ(parsed.error, L"unknown option: --colour");
}

TEST(HostOptions, OptionWithoutItsValueIsRefused)
{
    const Parsed parsed = Parse({L"--trace"});
    EXPECT_FALSE(parsed.ok);
    EXPECT_EQ(parsed.error, L"--trace needs a value");
}

TEST(HostOptions, UnknownModeIsRefused)
{
    const Parsed parsed = Parse({L"--mode", L"later"});
    EXPECT_FALSE(parsed.ok);
    EXPECT_EQ(parsed.error, L"--mode is one of startup, after-startup, external, command-line, not later");
}

TEST(HostOptions, MajorVersionIsTheLeadingInteger)
{
    EXPECT_EQ(MajorVersion(L"12.0.6423.1000"), 12);
    EXPECT_EQ(MajorVersion(L"15"), 15);
    EXPECT_EQ(MajorVersion(L"beta 3"), 0);
    EXPECT_EQ(MajorVersion(L""), 0);
}

} // namespace
