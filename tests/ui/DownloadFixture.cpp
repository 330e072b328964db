#include "ui/DownloadFixture.h"

#include "harness/Files.h"

#include <algorithm>

namespace orva::test
{
namespace
{

constexpr size_t kFolderNameLength = 9;

// Set when the user has seen the dialog.
HANDLE g_seen = nullptr;

// In the place of Sleep: the dialog shows its last state until the user has seen it, instead of for a second.
void WINAPI SleepUntilSeen(DWORD milliseconds)
{
    constexpr DWORD kLastState = 1000;
    if (milliseconds != kLastState)
    {
        SleepEx(milliseconds, FALSE);
        return;
    }
    // Looking at the dialog sends messages to it.
    while (MsgWaitForMultipleObjects(1, &g_seen, FALSE, kPatience, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1)
    {
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

} // namespace

CDownloadTest::CDownloadTest() : m_sleep(GetModuleHandleW(nullptr), "KERNEL32.dll", "Sleep", &SleepUntilSeen)
{
}

void CDownloadTest::Serve(const CHttpReply& reply)
{
    m_server.On(kInstallerPath, CServerScript().WaitFor(m_seenGate).Send(reply.Bytes()));
}

void CDownloadTest::Download(const std::wstring& url, const CSignedUpdate* signedUpdate)
{
    g_seen = m_seenGate.OpenedEvent();
    m_user.Start();
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    StartDownloadDialog(CString(url.c_str()), m_owner, signedUpdate);
    m_seen = m_user.Finish();
}

CUserScript& CDownloadTest::OnDownloadDialog(std::function<void(HWND)> act)
{
    return m_user.OnDialogWith(kProgressBar, [this, act = std::move(act)](HWND dialog) {
        act(dialog);
        m_seenGate.Open();
    });
}

bool CDownloadTest::WaitForInstaller() const
{
    return CInstallerType::WaitForStart(m_temp.Path());
}

std::optional<std::string> CDownloadTest::FileBytes() const
{
    const std::vector<std::wstring> paths = ListFolder(m_temp.Path());
    return paths.size() < 2 ? std::nullopt : ReadFileBytes(m_temp.Path() + L"\\" + paths[1]);
}

std::vector<std::wstring> CDownloadTest::Left() const
{
    std::vector<std::wstring> left;
    for (std::wstring path : ListFolder(m_temp.Path()))
    {
        if (path.ends_with(kStartedMark))
        {
            continue;
        }
        if (path.starts_with(L"osc") && path.size() > kFolderNameLength)
        {
            path.replace(3, kFolderNameLength - 3, L"??????");
        }
        left.push_back(path);
    }
    return left;
}

} // namespace orva::test
