// The reply with the installer, cut off at the bytes of its head: what WinINet makes of that, and so the
// download. Cuts in the body are tested in tests/download.
#include "harness/Files.h"
#include "harness/Report.h"
#include "harness/Watchdog.h"
#include "ui/DownloadFixture.h"

#include <gmock/gmock.h>

namespace orva::test
{
namespace
{

using testing::ElementsAre;

// For every byte of a head; each download shows its last state for a second.
constexpr DWORD kDeadline = 15 * 60'000;

class DownloadCutsTest : public CDownloadTest
{
protected:
    const CHttpReply m_reply{200, "0123456789"};
    const std::string m_bytes = m_reply.Bytes();
    const size_t m_statusLineSize = m_bytes.find("\r\n") + 2;
    COwnerWindow m_owner;

    // What is left of a download of the reply's first `size` bytes; absent for no file.
    std::optional<std::string> Cut(size_t size)
    {
        NoteTestPart("cut after " + std::to_string(size) + " bytes");
        EnableWindow(m_owner.Handle(), TRUE);
        CGate gate;
        m_server.On(kInstallerPath, CServerScript().WaitFor(gate).Send(m_bytes.substr(0, size)).Close());
        DownloadWhateverComes(m_server.WideUrl(kInstallerPath), gate, m_owner.Handle());
        EXPECT_TRUE(IsWindowEnabled(m_owner.Handle()));

        std::optional<std::string> left;
        for (const std::wstring& path : ListFolder(m_temp.Path()))
        {
            if (path.ends_with(L"setup.orvatest"))
            {
                left = ReadFileBytes(m_temp.Path() + L"\\" + path);
                EXPECT_TRUE(WaitForInstaller());
            }
        }
        for (const std::wstring& path : ListFolder(m_temp.Path()))
        {
            RemovePath(m_temp.Path() + L"\\" + path);
        }
        return left;
    }

    std::vector<std::wstring> TextsOfBoxes() const
    {
        std::vector<std::wstring> texts;
        for (const CSeenWindow& seen : m_seen)
        {
            if (seen.caption == kProduct)
            {
                texts.push_back(seen.text);
            }
        }
        return texts;
    }
};

TEST_F(DownloadCutsTest, WithoutItsStatusLineAReplyIsAFailure)
{
    SetTestDeadline(kDeadline);
    const auto step = static_cast<size_t>(Repetitions(static_cast<int>(m_statusLineSize) - 1, 1));
    for (size_t size = 0; size < m_statusLineSize && !HasFailure(); size += step)
    {
        EXPECT_EQ(Cut(size), std::nullopt);
        EXPECT_THAT(TextsOfBoxes(), ElementsAre(kConnectError, kUpdateCanceled));
    }
}

// WinINet takes the headers that have come, and the connection's end for the body's.
TEST_F(DownloadCutsTest, WithItsStatusLineAReplyIsAFileWithWhatHasCome)
{
    SetTestDeadline(kDeadline);
    const size_t headSize = m_reply.Head().size();
    const auto step = static_cast<size_t>(Repetitions(static_cast<int>(headSize - m_statusLineSize), 1));
    for (size_t size = m_statusLineSize; size <= headSize && !HasFailure(); size += step)
    {
        EXPECT_EQ(Cut(size), "");
        EXPECT_THAT(TextsOfBoxes(), ElementsAre());
    }
    EXPECT_EQ(Cut(headSize + 5), "01234");
    EXPECT_EQ(Cut(m_bytes.size()), "0123456789");
}

} // namespace
} // namespace orva::test
