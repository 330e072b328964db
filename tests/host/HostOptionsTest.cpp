// The command line of the stand-in Outlook.
#include "host/HostOptions.h"

#include <gtest/gtest.h>

namespace
{

using namespace orva::host;

using Arguments = std::vector<std::wstring>;

HostOptions Parse(const Arguments& arguments)
{
    HostOptions options;
    std::wstring error;
    EXPECT_TRUE(ParseOptions(arguments, options, error));
    EXPECT_EQ(error, L"");
    return options;
}

TEST(HostOptions, WithoutArgumentsIsVersion14AtStartup)
{
    const HostOptions options = Parse({});
    EXPECT_EQ(options.version, L"14.0.4760.1000");
    EXPECT_EQ(options.mode, ConnectMode::Startup);
    EXPECT_EQ(options.traceFile, L"");
}

TEST(HostOptions, ShortVersionsBecomeFullOnesAndAnyOtherTextIsTakenAsItIs)
{
    const std::pair<const wchar_t*, const wchar_t*> versions[] = {{L"12", L"12.0.6423.1000"},
                                                                  {L"14", L"14.0.4760.1000"},
                                                                  {L"15", L"15.0.4420.1017"},
                                                                  {L"beta 3", L"beta 3"}};
    for (const auto& [given, version] : versions)
    {
        EXPECT_EQ(Parse({L"--office", given}).version, version);
    }
}

TEST(HostOptions, ReadsEveryMode)
{
    const std::pair<const wchar_t*, ConnectMode> modes[] = {{L"after-startup", ConnectMode::AfterStartup},
                                                            {L"startup", ConnectMode::Startup},
                                                            {L"external", ConnectMode::External},
                                                            {L"command-line", ConnectMode::CommandLine}};
    for (const auto& [name, mode] : modes)
    {
        EXPECT_EQ(Parse({L"--mode", name}).mode, mode);
    }
}

TEST(HostOptions, ReadsEverySwitchByItself)
{
    constexpr std::pair<const wchar_t*, bool HostOptions::*> kSwitches[] = {
        {L"--no-explorer", &HostOptions::noExplorer},
        {L"--fast-shutdown", &HostOptions::fastShutdown},
        {L"--backstage", &HostOptions::backstage},
        {L"--empty-menu-bar", &HostOptions::emptyMenuBar},
        {L"--last-control-not-popup", &HostOptions::lastControlNotPopup},
        {L"--quit-after-startup", &HostOptions::quitAfterStartup}};
    for (const auto& [given, expected] : kSwitches)
    {
        const HostOptions options = Parse({given});
        for (const auto& [name, member] : kSwitches)
        {
            EXPECT_EQ(options.*member, member == expected);
        }
    }
}

TEST(HostOptions, RefusesWhatItDoesNotKnowAndSaysWhy)
{
    const std::pair<Arguments, const wchar_t*> refused[] = {
        {{L"--backstage", L"--colour"}, L"unknown option: --colour"},
        {{L"--trace"}, L"--trace needs a value"},
        {{L"--mode", L"later"},
         L"--mode is one of startup, after-startup, external, command-line, not later"}};
    for (const auto& [arguments, why] : refused)
    {
        HostOptions options;
        std::wstring error;
        EXPECT_FALSE(ParseOptions(arguments, options, error));
        EXPECT_EQ(error, why);
    }
}

TEST(HostOptions, MajorVersionIsTheLeadingIntegerAndNothingElse)
{
    const std::pair<const wchar_t*, int> versions[] = {{L"12.0.6423.1000", 12},
                                                       {L"15", 15},
                                                       {L"beta 3", 0},
                                                       {L"", 0},
                                                       {L" 14", 0},
                                                       {L"+14", 0},
                                                       {L"-14", 0}};
    for (const auto& [text, major] : versions)
    {
        EXPECT_EQ(MajorVersion(text), major) << testing::PrintToString(text);
    }
}

} // namespace
