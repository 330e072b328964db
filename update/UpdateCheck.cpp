#include "update/UpdateCheck.h"

#include "OrvaWebHost.h"
#include "res/resource.h"
#include "support/DebugLog.h"
#include "support/DisabledWindow.h"
#include "support/ExceptionGuard.h"
#include "support/HttpRequest.h"
#include "support/JsonUtilities.h"
#include "support/TextUtilities.h"
#include "support/UpdateKey.h"
#include "support/Version.h"
#include "ui/LocalizedResources.h"
#include "ui/StartDownloadDialog.h"
#include "update/PublishedVersion.h"
#include "update/UpdateAvailableDlg.h"
#include "update/UpdateDescription.h"

#include <afxinet.h>

#include <map>
#include <stdexcept>
#include <string>

namespace
{

constexpr char kFunction[] = "CheckForUpdate";
constexpr char kUpdateInfoUrl[] = "http://" ORVA_WEB_HOST "/downloads/outlook/UpdateInfo.txt";

void ShowString(HWND owner, UINT id)
{
    CLocalizedResources& resources = GetLocalizedResources();
    resources.ShowMessage(owner, resources.LoadString(id));
}

void ShowStringUnlessSilent(HWND owner, bool silent, UINT id)
{
    if (!silent)
    {
        ShowString(owner, id);
    }
}

std::wstring FetchUpdateInfo()
{
    LogMessage(kFunction, kUpdateInfoUrl);
    std::wstring text = CHttpRequest::PerformTextRequest(kUpdateInfoUrl, std::map<std::string, std::string>(),
                                                         CHttpConnection::HTTP_VERB_GET);
    // Written whatever the result was; readers of the log take the line as the end of the request.
    LogMessage(kFunction, "TextRequest succeeded");
    LogMessage(kFunction, WideToNarrow(text));
    return text;
}

// A broken file is reported in silent mode too, unlike an unreachable one. The check goes on with what was
// read before the error.
json_spirit::wmValue ParseUpdateInfo(const std::wstring& text, HWND owner)
{
    json_spirit::wmValue value;
    try
    {
        LogMessage(kFunction, "parse json");
        json_spirit::read_or_throw(text, value);
    }
    catch (...)
    {
        LogMessage(kFunction, "exception thrown while parsing json");
        ShowString(owner, IDS_CONNECT_ERROR);
    }
    return value;
}

// The entry's signature, of whatever type. An empty text is as good as none, so it looks like a missing
// member.
json_spirit::wmValue FindSignature(const json_spirit::wmObject& entry)
{
    const json_spirit::wmValue& signature = FindValue(entry, L"signature");
    return signature.type() == json_spirit::str_type && signature.get_str().empty() ? json_spirit::wmValue()
                                                                                    : signature;
}

// Shows the published build. True when the user wants it installed.
bool OfferUpdate(const CString& description, const PublishedVersion& published)
{
    CUpdateAvailableDlg dialog;
    dialog.SetDescription(description);
    dialog.SetVersions(FormatInstalledVersion(), FormatVersion(published));
    return dialog.DoModal() == IDOK;
}

} // namespace

bool CheckForUpdate(HWND owner, bool silent)
{
    LogEntry(kFunction);
    const std::wstring text = FetchUpdateInfo();
    if (text.empty())
    {
        LogMessage(kFunction, "inputData.length() == 0");
        ShowStringUnlessSilent(owner, silent, IDS_CONNECT_ERROR);
        return true;
    }
    const json_spirit::wmValue root = ParseUpdateInfo(text, owner);
    if (CheckJSONObject(root, owner, silent))
    {
        return true;
    }
    const json_spirit::wmValue entryValue = FindValue(root.get_obj(), kUpdateEntryName);
    if (CheckJSONObject(entryValue, owner, silent))
    {
        return true;
    }
    const json_spirit::wmObject& entry = entryValue.get_obj();
    const PublishedVersion published = ReadPublishedVersion(entry);
    if (!IsNewerThanInstalled(published))
    {
        return false;
    }
    const json_spirit::wmValue downloadLink = FindValue(entry, L"downloadLink");
    if (CheckJSONObject(downloadLink, owner, silent))
    {
        return true;
    }
    CSignedUpdate signedUpdate;
    if (kUpdateVerifier != nullptr)
    {
        // Nobody is offered what would not be started. Whether the signature fits shows only with the file.
        const json_spirit::wmValue signature = FindSignature(entry);
        if (CheckJSONObject(signature, owner, silent))
        {
            return true;
        }
        signedUpdate = {FormatVersion(published), signature.get_str()};
    }
    const CString description = DetermineUpdateDescription(entry);
    if (description.IsEmpty())
    {
        ShowStringUnlessSilent(owner, silent, IDS_UPDATE_INFO_NOT_PARSED);
        return true;
    }
    if (OfferUpdate(description, published))
    {
        StartDownloadDialog(CString(downloadLink.get_str().c_str()), owner, &signedUpdate);
    }
    return true;
}

void CheckForUpdateExplicit(HWND owner)
{
    LogEntry("CheckForUpdateExplicit");
    if (!CheckForUpdate(owner, false))
    {
        ShowString(owner, IDS_LATEST_INSTALLED);
    }
}

void CheckForUpdateOnClick(const char* function, HWND owner) noexcept
{
    const CDisabledWindow disabledOwner(owner);
    UINT message = IDS_CONNECT_ERROR;
    try
    {
        CheckForUpdateExplicit(owner);
        return;
    }
    catch (const std::runtime_error&)
    {
        // The accessors of the JSON values: a member has another type than expected.
        LogCaughtException(function);
        message = IDS_UPDATE_INFO_NOT_PARSED;
    }
    catch (...)
    {
        LogCaughtException(function);
    }
    RunGuarded(function, [&] { ShowString(owner, message); });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes a copy
bool CheckJSONObject(json_spirit::wmValue value, HWND owner, bool silent)
{
    LogEntry("CheckJSONObject");
    if (!value.is_null())
    {
        return false;
    }
    ShowStringUnlessSilent(owner, silent, IDS_UPDATE_INFO_NOT_PARSED);
    return true;
}
