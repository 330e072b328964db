// Every error and every warning that is found in a file, with the exact lines of the report, and the exit
// status that follows.
#include "harness/Files.h"
#include "harness/ProcessRunner.h"
#include "harness/TempFolder.h"
#include "publishing/FindingRows.h"
#include "publishing/Report.h"

#include <gmock/gmock.h>

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

TEST_F(FindingsTest, EveryKindOfErrorMakesTheExitStatus1AndNoWarningDoes)
{
    std::set<std::string> kinds;
    for (const CFindingRow& row : FindingRows())
    {
        // Rows with two findings are left out: both would count.
        if (row.findings.size() == 1 && kinds.insert(row.findings[0].code).second)
        {
            const bool isError = row.findings[0].line.starts_with("Error: ");
            EXPECT_EQ(ExitStatus(Write(row)), isError ? 1u : 0u) << row.name;
        }
    }
    EXPECT_EQ(kinds.size(), 23u);
}

} // namespace
} // namespace orva::test
