// The update server's reply, cut off at each of its bytes.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"

#include <algorithm>

namespace orva::test
{

namespace
{

using testing::AnyOf;
using testing::IsEmpty;

constexpr char kTable[] = "server-faults";
// Number of the report's first row about cuts; each mode has ten rows.
constexpr int kFirstNumber = 201;
// Long enough for a check at every byte of a reply.
constexpr DWORD kDeadline = 15 * 60'000;

// An outcome and the offsets with this outcome.
struct CGroup
{
    CObservedFault observed;
    std::vector<size_t> offsets;
};

class ServerCutsTest : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
protected:
    // The reply offers a newer build, so that a cut that changed a number or a link would show.
    const CHttpReply m_reply{200, NewerBuild(kInstallerUrl)};
    const std::string m_bytes = m_reply.Bytes();

    // All offsets in the thorough run; otherwise a few in the head and a few in the body.
    std::vector<size_t> Offsets() const
    {
        const auto step = static_cast<size_t>(Repetitions(37, 1));
        std::vector<size_t> offsets;
        for (size_t offset = 0; offset < m_bytes.size(); offset += step)
        {
            offsets.push_back(offset);
        }
        return offsets;
    }

    // The first offset at which everything that an offer needs has been sent.
    size_t OfferFrom() const { return m_bytes.find("Better than ever.\"") + sizeof("Better than ever."); }

    void Cut(size_t offset)
    {
        NoteTestPart("cut after " + std::to_string(offset) + " bytes");
        DeleteLog();
        m_server.On(kUpdateInfoPath, CServerScript().Send(m_bytes.substr(0, offset)).Close());
        AnswerWhateverComes();
        RunBothChecks(GetParam());
        for (const std::wstring& text : Observed().shown)
        {
            EXPECT_THAT(text, AnyOf(kConnectError, kNotParsed, kLatest, kOfferCaption));
        }
        if (offset < OfferFrom())
        {
            EXPECT_THAT(Observed().shown, testing::Not(testing::Contains(kOfferCaption)));
        }
        EXPECT_THAT(Observed().left, IsEmpty());
        EXPECT_THAT(Observed().log, testing::Not(IsEmpty()));
    }

    void Note(size_t offset)
    {
        const auto group = std::find_if(m_groups.begin(), m_groups.end(), [&](const CGroup& known) {
            return known.observed.Cells() == Observed().Cells();
        });
        if (group == m_groups.end())
        {
            m_groups.push_back({Observed(), {offset}});
        }
        else
        {
            group->offsets.push_back(offset);
        }
    }

    void Report() const
    {
        int number = kFirstNumber + (GetParam() == CheckMode::StartUp ? 0 : 10);
        for (const CGroup& group : m_groups)
        {
            std::vector<std::string> row = group.observed.Cells();
            row.insert(row.begin(),
                       std::to_string(number++) + " cut at " + std::to_string(group.offsets.size()) +
                           " of the bytes " + std::to_string(group.offsets.front()) + " to " +
                           std::to_string(group.offsets.back()) + " of " + std::to_string(m_bytes.size()) +
                           " (head: " + std::to_string(m_reply.Head().size()) + ")");
            AddReportRow(kTable, row);
        }
    }

private:
    std::vector<CGroup> m_groups;
};

INSTANTIATE_TEST_SUITE_P(Modes, ServerCutsTest, testing::Values(CheckMode::StartUp, CheckMode::Explicit),
                         NameOfMode);

} // namespace

TEST_P(ServerCutsTest, AReplyCutAtAnyByteIsNoOfferAndNoHang)
{
    SetTestDeadline(kDeadline);
    for (const size_t offset : Offsets())
    {
        Cut(offset);
        Note(offset);
        if (HasFailure())
        {
            ADD_FAILURE() << "cut after " << offset << " bytes";
            break;
        }
    }
    Report();
}

} // namespace orva::test
