// The command line of OrvaPublish.exe: what it takes, what it refuses, and the exit status of either.
#include "publishing/CheckOptions.h"

#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/TempFolder.h"
#include "publishing/FindingRows.h"
#include "publishing/Text.h"

#include <gtest/gtest.h>

namespace orva::test
{
namespace
{

using Arguments = std::vector<std::wstring>;

std::string Raised(const Arguments& arguments)
{
    try
    {
        publishing::ParseOptions(arguments);
    }
    catch (const publishing::CUsageError& error)
    {
        return error.what();
    }
    return "(none)";
}

TEST(CheckOptionsTest, TakesTheSourceAndOptionsInAnyOrder)
{
    const auto options =
        publishing::ParseOptions({L"check", L"--json", L"--installed", L"10.0.2147483647", L"C:\\a b.txt",
                                  L"--installer", L"s.exe", L"--public-key", L"k.pem"});
    EXPECT_EQ(options.source, L"C:\\a b.txt");
    EXPECT_EQ(options.installer, L"s.exe");
    EXPECT_EQ(options.publicKey, L"k.pem");
    EXPECT_STREQ(FormatVersion(options.installed.value()), L"10.0.2147483647");
    EXPECT_TRUE(options.isJson);
    EXPECT_FALSE(options.isHelp);
    EXPECT_FALSE(publishing::ParseOptions({L"check", L"f"}).isJson);
    EXPECT_TRUE(publishing::ParseOptions({L"check", L"-h"}).isHelp);
    EXPECT_TRUE(publishing::ParseOptions({L"--help"}).isHelp);
}

TEST(CheckOptionsTest, SaysWhatIsWrong)
{
    EXPECT_EQ(Raised({}), "the command is missing");
    EXPECT_EQ(Raised({L"chekc", L"f"}), "there is no command \"chekc\"");
    EXPECT_EQ(Raised({L"check"}), "check needs a FILE or URL");
    EXPECT_EQ(Raised({L"check", L"--json"}), "check needs a FILE or URL");
    EXPECT_EQ(Raised({L"check", L"f", L"g"}), "check does not know the argument \"g\"");
    EXPECT_EQ(Raised({L"check", L"f", L"--jsno"}), "check does not know the argument \"--jsno\"");
    EXPECT_EQ(Raised({L"check", L""}), "check does not know the argument \"\"");
    EXPECT_EQ(Raised({L"check", L"f", L"--installer"}), "--installer has to be followed by a value");
    for (const wchar_t* const version : {L"1", L"1.2", L"1.2.3.4", L"1.2.x", L"01.2.3", L"1..2", L"-1.2.3",
                                         L"1.2.2147483648", L"1.2.99999999999999999999", L"1.2.3 "})
    {
        EXPECT_EQ(Raised({L"check", L"f", L"--installed", version}),
                  "--installed is followed by three numbers, X.Y.Z, not " + publishing::Utf8(version));
    }
}

TEST(CheckOptionsTest, AUrlIsTheOneThatAddInsAskFor)
{
    EXPECT_EQ(Raised({L"check", L"https://h/f"}),
              "add-ins ask by http only, so give the URL as they do: http://h/f");
}

TEST(CheckOptionsTest, AUrlIsToldFromAPath)
{
    EXPECT_TRUE(publishing::IsUrl(L"http://h/f"));
    EXPECT_TRUE(publishing::IsUrl(L"https://h/f"));
    EXPECT_FALSE(publishing::IsUrl(L"C:\\UpdateInfo.txt"));
    EXPECT_FALSE(publishing::IsUrl(L"folder/UpdateInfo.txt"));
}

class OrvaPublishTest : public testing::Test
{
protected:
    CProcessResult Run(const Arguments& arguments)
    {
        return RunProcess(BuiltFile(L"OrvaPublish.exe"), arguments);
    }

    CTempFolder m_folder;
};

TEST_F(OrvaPublishTest, HelpIsNoError)
{
    const CProcessResult help = Run({L"check", L"--help"});
    EXPECT_EQ(help.exitCode, 0u);
    EXPECT_EQ(help.output, publishing::Utf8(publishing::HelpText()));
}

TEST_F(OrvaPublishTest, WrongUsageAndWhatCannotBeReadGive2AndTheReason)
{
    const std::string hint = "\n\"OrvaPublish.exe --help\" says how to use it.\n";
    const CProcessResult usage = Run({L"check"});
    EXPECT_EQ(usage.exitCode, 2u);
    EXPECT_EQ(usage.output, "OrvaPublish: check needs a FILE or URL" + hint);

    const CProcessResult file = Run({L"check", L"missing.txt"});
    EXPECT_EQ(file.exitCode, 2u);
    EXPECT_EQ(file.output, "OrvaPublish: missing.txt cannot be read" + hint);

    const std::wstring good = m_folder.File(L"good.txt");
    WriteFileBytes(good, kGoodFile);
    EXPECT_EQ(Run({L"check", good, L"--installer", L"missing.exe"}).exitCode, 2u);
    EXPECT_EQ(Run({L"check", good, L"--public-key", good}).exitCode, 2u);
    EXPECT_EQ(Run({L"check", good}).exitCode, 0u);
}

} // namespace
} // namespace orva::test
