// What the tests of the download share: a server, a private temporary folder, a user, and the dialog's
// controls.
#include "ui/DownloadFixture.h"

#include "harness/Files.h"
#include "ui/StartDownloadDialog.h"

namespace orva::test
{

void CDownloadTest::Download(const std::wstring& url, HWND owner)
{
    m_user.Start();
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    StartDownloadDialog(CString(url.c_str()), owner);
    m_seen = m_user.Finish();
}

CUserScript& CDownloadTest::OnDownloadDialog(std::function<void(HWND)> act)
{
    return m_user.OnDialogWith(kProgressBar, std::move(act));
}

std::vector<std::wstring> CDownloadTest::Left() const
{
    constexpr size_t kFolderNameLength = 9;
    std::vector<std::wstring> left;
    for (std::wstring path : ListFolder(m_temp.Path()))
    {
        if (path.starts_with(L"osc") && path.size() > kFolderNameLength)
        {
            path.replace(3, kFolderNameLength - 3, L"??????");
        }
        left.push_back(path);
    }
    return left;
}

} // namespace orva::test
