#include "ui/StartDownloadDialog.h"

#include "support/DebugLog.h"
#include "support/DisabledWindow.h"
#include "support/TextUtilities.h"
#include "support/UpdateKey.h"
#include "ui/DownloadPaths.h"
#include "ui/LocalizedResources.h"
#include "ui/UpdateDownloadDlg.h"

#include <shellapi.h>

#include <memory>

namespace
{

constexpr char kFunction[] = "StartDownloadDialog";

struct FileCloser
{
    void operator()(HANDLE file) const noexcept { CloseHandle(file); }
};
using UniqueFile = std::unique_ptr<void, FileCloser>;

// Neither waits for the installer nor checks the result: a user who refuses the elevation knows why nothing
// happens.
void StartInstaller(const CString& path, ULONG mask)
{
    SHELLEXECUTEINFOW info{};
    info.cbSize = sizeof(info);
    info.fMask = mask;
    info.lpVerb = L"runas";
    info.lpFile = path;
    info.lpParameters = L"";
    info.nShow = SW_SHOWNORMAL;
    ShellExecuteExW(&info);
}

// Opens the file so that nobody can write, rename or delete it. Null, with a line in the log, unless it then
// is what the publisher has signed; `signedPath` is the path by which to start it.
UniqueFile HoldIfSigned(const CString& path, const CSignedUpdate* signedUpdate, std::wstring& signedPath)
{
    const HANDLE opened =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
    {
        const auto error = static_cast<std::int32_t>(GetLastError());
        WriteDebugLog(GetDebugLog(), kFunction, "signature not verified, error", error);
        return nullptr;
    }
    UniqueFile file(opened);
    const std::string version =
        signedUpdate != nullptr ? WideToNarrow(signedUpdate->version.GetString()) : std::string();
    if (signedUpdate != nullptr)
    {
        signedPath = kUpdateVerifier(version + "\n", opened, signedUpdate->signature);
    }
    if (signedPath.empty())
    {
        WriteDebugLog(GetDebugLog(), kFunction, "not signed by the publisher for version", version);
        return nullptr;
    }
    return file;
}

// False if there is nothing to start because the publisher has not signed it; the file is deleted then.
bool StartSignedInstaller(const CString& path, const CSignedUpdate* signedUpdate)
{
    {
        std::wstring signedPath;
        const UniqueFile held = HoldIfSigned(path, signedUpdate, signedPath);
        if (held != nullptr)
        {
            // The shell has to be done with the file before it is let go.
            StartInstaller(CString(signedPath.c_str()), SEE_MASK_NOASYNC);
            return true;
        }
    }
    DeleteFileW(path);
    return false;
}

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes a copy
void StartDownloadDialog(CString url, HWND owner, const CSignedUpdate* signedUpdate)
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
        if (kUpdateVerifier == nullptr)
        {
            StartInstaller(path, 0);
            return;
        }
        if (StartSignedInstaller(path, signedUpdate))
        {
            return;
        }
        resources.ShowMessage(owner, resources.LoadString(IDS_CONNECT_ERROR));
    }
    resources.ShowMessage(owner, resources.LoadString(IDS_UPDATE_CANCELED));
}
