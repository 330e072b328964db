// Download links with hostile last segments: nothing is created outside the fresh folder.
#include "ui/HostileNames.h"

#include "harness/Report.h"
#include "harness/Text.h"
#include "ui/DownloadPaths.h"
#include "ui/FileName.h"
#include "ui/WatchedDownload.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::StartsWith;

class HostileNamesTest : public CWatchedDownload, public testing::WithParamInterface<CHostileName>
{
protected:
    void ExpectFate(const std::vector<std::wstring>& made) const
    {
        const bool isCreated = made.size() == 2;
        switch (GetParam().fate)
        {
        case NameFate::NoName:
            EXPECT_TRUE(made.empty());
            EXPECT_THAT(Shown(), ElementsAre(kUrlNotParsed));
            break;
        case NameFate::Refused:
            EXPECT_FALSE(isCreated);
            EXPECT_THAT(Shown(), ElementsAre(kInvalidName, kUpdateCanceled));
            EXPECT_TRUE(m_server.Requests().empty());
            break;
        case NameFate::RefusedBySystem:
            EXPECT_FALSE(isCreated);
            EXPECT_THAT(Shown(),
                        ElementsAre(StartsWith(L"File could not be created, error ID: "), kUpdateCanceled));
            EXPECT_TRUE(m_server.Requests().empty());
            break;
        case NameFate::Created:
            EXPECT_TRUE(isCreated);
            // The download dialog, and the shell's message that it cannot start such a file.
            EXPECT_EQ(m_seen.size(), 2u);
            break;
        case NameFate::CreatedOrConsole:
            EXPECT_EQ(m_seen.size(), 2u);
            break;
        case NameFate::CreatedOrRefused:
            EXPECT_TRUE(isCreated || Shown().back() == kUpdateCanceled);
            break;
        }
    }
};

// Refused names are quick; each download takes a second, so fewer of them run.
std::vector<CHostileName> NamesOfThisRun()
{
    std::vector<CHostileName> names;
    int created = 0;
    int refused = 0;
    for (CHostileName& name : HostileNames())
    {
        const bool isQuick = name.fate == NameFate::Refused || name.fate == NameFate::NoName ||
                             name.fate == NameFate::RefusedBySystem;
        const int count = isQuick ? refused++ : created++;
        if (count % (isQuick ? Repetitions(3, 1) : Repetitions(9, 1)) == 0)
        {
            names.push_back(std::move(name));
        }
    }
    return names;
}

std::string NumberOf(const testing::TestParamInfo<CHostileName>& info)
{
    return std::to_string(info.param.number);
}

INSTANTIATE_TEST_SUITE_P(Names, HostileNamesTest, testing::ValuesIn(NamesOfThisRun()), NumberOf);

TEST_P(HostileNamesTest, MakesNothingOutsideTheFreshFolder)
{
    const CSnapshot before = TakeSnapshot();
    Try(m_server.WideUrl("/") + GetParam().segment);
    const std::vector<std::wstring> made = Differences(before, TakeSnapshot());

    std::string madeText;
    if (!made.empty())
    {
        // The fresh folder comes first: a folder sorts before its contents.
        const std::wstring& folder = made[0];
        EXPECT_THAT(folder, StartsWith(L"osc"));
        EXPECT_EQ(folder.size(), 10u) << Utf8(folder);
        EXPECT_LE(made.size(), 2u);
        for (size_t i = 1; i < made.size(); ++i)
        {
            EXPECT_TRUE(made[i].starts_with(folder)) << Utf8(made[i]);
            const std::wstring name = made[i].substr(std::min(folder.size(), made[i].size()));
            EXPECT_EQ(name.find(L'\\'), std::wstring::npos) << Utf8(name);
            madeText += (madeText.empty() ? "file " : ", ") + Printable(name);
        }
    }
    ExpectFate(made);
    const bool isInside = !HasFailure();
    Report(GetParam().number, GetParam().kind, Printable(GetParam().segment),
           madeText.empty() ? "refused" : madeText, isInside);
}

TEST(HostileNameDecisionTest, RefusesExactlyTheNamesThatAreExpectedToBeRefused)
{
    for (const CHostileName& name : HostileNames())
    {
        const CString last = GetFileNameFromUrl((L"http://host/" + name.segment).c_str());
        const bool isRefused = name.fate == NameFate::NoName || name.fate == NameFate::Refused;
        EXPECT_EQ(IsPlainFileName(last.GetString()), !isRefused) << Printable(name.segment);
    }
    EXPECT_GE(HostileNames().size(), 40u);
}

} // namespace
} // namespace orva::test
