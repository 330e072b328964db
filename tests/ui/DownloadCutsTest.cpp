// The reply with the installer, cut off at each of its bytes: nothing hangs, and a file that is left holds
// what has come.
#include "harness/Files.h"
#include "harness/Report.h"
#include "harness/Text.h"
#include "harness/Watchdog.h"
#include "ui/DownloadFixture.h"
#include "ui/StartDownloadDialog.h"

#include <algorithm>
#include <map>

namespace orva::test
{
namespace
{

// For every byte of a reply; each download shows its last state for a second.
constexpr DWORD kDeadline = 15 * 60'000;
// In the report behind the other faults of a download.
constexpr int kFirstNumber = 201;

class DownloadCutsTest : public CDownloadTest
{
protected:
    const CHttpReply m_reply{200, "0123456789"};
    const std::string m_bytes = m_reply.Bytes();

    struct COutcome
    {
        std::string shown;
        std::string left;
        bool isOwnerEnabled = false;
        auto operator<=>(const COutcome&) const = default;
    };

    // One download of the reply's first `offset` bytes.
    COutcome Cut(size_t offset)
    {
        NoteTestPart("cut after " + std::to_string(offset) + " bytes");
        CGate gate;
        m_server.On("/setup.bin", CServerScript().WaitFor(gate).Send(m_bytes.substr(0, offset)).Close());
        DownloadWhateverComes(m_server.WideUrl("/setup.bin"), gate, m_owner.Handle());

        COutcome outcome;
        for (const CSeenWindow& seen : m_seen)
        {
            const bool isProgress = !seen.Control(kTimeLabel).empty();
            outcome.shown += (outcome.shown.empty() ? "" : " / ") +
                             (isProgress ? "(progress of the download)" : Utf8(seen.text));
        }
        for (const std::wstring& path : ListFolder(m_temp.Path()))
        {
            const auto bytes = ReadFileBytes(m_temp.Path() + L"\\" + path);
            if (bytes)
            {
                const size_t head = m_reply.Head().size();
                const size_t body = offset > head ? offset - head : 0;
                EXPECT_EQ(*bytes, m_bytes.substr(head, body));
                outcome.left = bytes->empty() ? "the empty file" : "what has come";
            }
        }
        outcome.left = outcome.left.empty() ? "the empty folder" : outcome.left;
        outcome.isOwnerEnabled = IsWindowEnabled(m_owner.Handle()) != FALSE;
        EXPECT_TRUE(outcome.isOwnerEnabled);
        for (const std::wstring& path : ListFolder(m_temp.Path()))
        {
            RemovePath(m_temp.Path() + L"\\" + path);
        }
        return outcome;
    }

    COwnerWindow m_owner;
};

TEST_F(DownloadCutsTest, AReplyCutAtAnyByteEndsTheDownload)
{
    SetTestDeadline(kDeadline);
    EnableWindow(m_owner.Handle(), TRUE);
    std::map<COutcome, std::vector<size_t>> outcomes;
    const auto step = static_cast<size_t>(Repetitions(67, 1));
    for (size_t offset = 0; offset <= m_bytes.size() && !HasFailure(); offset += step)
    {
        outcomes[Cut(offset)].push_back(offset);
    }
    const COutcome again = Cut(m_bytes.size());
    EXPECT_EQ(again.left, "what has come");
    int number = kFirstNumber;
    for (const auto& [outcome, offsets] : outcomes)
    {
        AddReportRow("download-faults",
                     {std::to_string(number++) + " cut at " + std::to_string(offsets.size()) +
                          " of the bytes " + std::to_string(offsets.front()) + " to " +
                          std::to_string(offsets.back()) + " of " + std::to_string(m_bytes.size()) +
                          " (head: " + std::to_string(m_reply.Head().size()) + ")",
                      "dialog alone", outcome.shown, "", outcome.left, outcome.isOwnerEnabled ? "yes" : "no",
                      again.left == "what has come" ? "yes" : "no"});
    }
}

} // namespace
} // namespace orva::test
