// The reply with the installer, cut off at each byte of its head and behind the first of its body: what
// WinINet makes of that, and so the download. Cuts at the other bytes of the body are tested in
// tests/download.
#include "harness/ImportHook.h"
#include "ui/DownloadFixture.h"

#include <shellapi.h>

#include <algorithm>

namespace orva::test
{
namespace
{

const CHttpReply& Reply()
{
    static const CHttpReply reply(200, "0123456789");
    return reply;
}

BOOL WINAPI StartNothing(SHELLEXECUTEINFOW*)
{
    return TRUE;
}

/// The number of bytes that come.
class DownloadCutsTest : public CDownloadTest, public testing::WithParamInterface<size_t>
{
    const CImportHook m_noInstaller{GetModuleHandleW(nullptr), "SHELL32.dll", "ShellExecuteExW",
                                    &StartNothing};
};

// WinINet takes the headers that have come, and the connection's end for the body's.
TEST_P(DownloadCutsTest, IsAFailureWithoutTheStatusLineAndWithItAFileWithWhatHasCome)
{
    const std::string bytes = Reply().Bytes();
    m_server.On(kInstallerPath,
                CServerScript().WaitFor(m_seenGate).Send(bytes.substr(0, GetParam())).Close());
    OnDownloadDialog();
    const bool isFailure = GetParam() < bytes.find("\r\n") + 2;
    if (isFailure)
    {
        m_user.AnswerBox(kConnectError).AnswerBox(kUpdateCanceled);
    }
    DownloadInstaller();
    ASSERT_EQ(Left(), isFailure ? kEmptyFolderLeft : kFileLeft);
    if (!isFailure)
    {
        const size_t head = std::min(GetParam(), Reply().Head().size());
        EXPECT_EQ(FileBytes(), bytes.substr(head, GetParam() - head));
    }
}

INSTANTIATE_TEST_SUITE_P(Bytes, DownloadCutsTest, testing::Range(size_t{0}, Reply().Head().size() + 2));

} // namespace
} // namespace orva::test
