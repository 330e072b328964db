#include "ui/StartDownloadDialog.h"

#include "support/DebugLog.h"
#include "support/DisabledWindow.h"
#include "ui/DownloadPaths.h"
#include "ui/LocalizedResources.h"
#include "ui/UpdateDownloadDlg.h"

#include <shellapi.h>

namespace
{

constexpr char kFunction[] = "StartDownloadDialog";

// Neither waits for the installer nor checks the result: a user who refuses the elevation knows why nothing
// happens.
void StartInstaller(const CString& path)
{
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof(info);
    info.lpVerb = L"runas";
    info.lpFile = path;
    info.lpParameters = L"";
    info.nShow = SW_SHOWNORMAL;
    ShellExecuteExW(&info);
}

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes a copy
void StartDownloadDialog(CString url, HWND owner)
{
    LogEntry(kFunction);
    CLocalizedResources& resources = GetLocalizedResources();

    const CString fileName = GetFileNameFromUrl(url);
    if (fileName.IsEmpty())
    {
        // Shown as loaded, with its placeholder: there is no file name to show.
        resources.ShowMessage(owner, resources.LoadString(IDS_URL_NOT_PARSED));
        return;
    }
    const CString folder = CreateTempDownloadDirectory();
    if (folder.IsEmpty())
    {
        resources.ShowMessage(owner, resources.LoadString(IDS_TEMP_DIR_NOT_CREATED));
        return;
    }
    const CString path = folder + fileName;
    WriteDebugLog(GetDebugLog(), kFunction, "target path", std::wstring(path.GetString()));

    CUpdateDownloadDlg dialog;
    dialog.m_url = url;
    dialog.m_filePath = path;
    INT_PTR result = IDCANCEL;
    {
        const CDisabledWindow disabledOwner(owner);
        result = dialog.DoModal();
    }
    if (result == IDOK)
    {
        StartInstaller(path);
    }
    else
    {
        resources.ShowMessage(owner, resources.LoadString(IDS_UPDATE_CANCELED));
    }
}
