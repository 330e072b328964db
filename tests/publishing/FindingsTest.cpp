// Every error and every warning that is found in a file, with the exact lines of the report, and the exit
// status that follows.
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/TempFolder.h"
#include "publishing/FindingRows.h"
#include "publishing/Report.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace orva::test
{
namespace
{

class FindingsTest : public testing::Test
{
protected:
    publishing::CCheckOptions Write(const CFindingRow& row) const
    {
        publishing::CCheckOptions options;
        options.source = m_folder.File(L"UpdateInfo.txt");
        WriteFileBytes(options.source, row.bytes);
        options.installed = row.installed;
        if (row.hasKey)
        {
            options.publicKey = BuiltFile(L"keys\\public.pem");
        }
        return options;
    }

    static CFindingRow RowOf(const std::string& name)
    {
        const std::vector<CFindingRow> rows = FindingRows();
        return *std::ranges::find_if(rows, [&](const CFindingRow& row) { return row.name == name; });
    }

    static DWORD ExitStatus(const publishing::CCheckOptions& options)
    {
        std::vector<std::wstring> arguments = {L"check", options.source};
        if (options.publicKey)
        {
            arguments.insert(arguments.end(), {L"--public-key", *options.publicKey});
        }
        if (options.installed)
        {
            arguments.insert(arguments.end(),
                             {L"--installed", FormatVersion(*options.installed).GetString()});
        }
        return RunProcess(BuiltFile(L"OrvaPublish.exe"), arguments).exitCode;
    }

    CTempFolder m_folder;
};

class FindingRowTest : public FindingsTest, public testing::WithParamInterface<CFindingRow>
{
};

TEST_P(FindingRowTest, IsReportedInTheseWords)
{
    const publishing::CCheckResult result = publishing::Check(Write(GetParam()));
    EXPECT_THAT(FindingsOf(result.findings, publishing::PlainReport(result)),
                testing::ElementsAreArray(GetParam().findings));
}

INSTANTIATE_TEST_SUITE_P(Rows, FindingRowTest, testing::ValuesIn(FindingRows()), NameOf);

TEST_F(FindingsTest, EveryKindHasARow)
{
    std::set<std::string> kinds;
    for (const CFindingRow& row : FindingRows())
    {
        for (const CExpectedFinding& finding : row.findings)
        {
            kinds.insert(finding.code);
        }
    }
    EXPECT_EQ(kinds.size(), 25u);
}

// That every row's severity is right is seen in its line.
TEST_F(FindingsTest, AnErrorMakesTheExitStatus1AndAWarningDoesNot)
{
    EXPECT_EQ(ExitStatus(Write(RowOf("NotNewer"))), 1u);
    EXPECT_EQ(ExitStatus(Write(RowOf("NotNewerThanThisBuild"))), 0u);
}

} // namespace
} // namespace orva::test
