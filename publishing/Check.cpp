#include "publishing/Check.h"

#include "publishing/EntryCheck.h"
#include "publishing/Files.h"
#include "publishing/PublicKeyFile.h"
#include "publishing/SecondReading.h"
#include "publishing/UpdateText.h"
#include "support/UpdateKey.h"
#include "support/Version.h"

#include <utility>

namespace publishing
{
namespace
{

bool IsSame(const PublishedVersion& left, const PublishedVersion& right)
{
    return !IsNewer(left, right) && !IsNewer(right, left);
}

// Whether the add-ins start signed installers only: those of this build, or those that were asked for.
bool HaveKey(const CCheckOptions& options)
{
    return options.publicKey || kUpdateVerifier != nullptr;
}

// The add-in's own version of this build, and the one that was asked for.
std::vector<PublishedVersion> InstalledVersions(const std::optional<PublishedVersion>& asked)
{
    std::vector<PublishedVersion> versions = {{kVersionMajor, kVersionMinor, kVersionBuild}};
    if (asked && !IsSame(*asked, versions.front()))
    {
        versions.push_back(*asked);
    }
    return versions;
}

std::vector<CUserForecast> ForetellAll(const CUpdateText& text, const CCheckOptions& options)
{
    std::vector<CUserForecast> all;
    for (const PublishedVersion& version : InstalledVersions(options.installed))
    {
        for (const Trigger trigger : {Trigger::Start, Trigger::Request})
        {
            for (const CUser& user : AllUsers())
            {
                const CAddIn addIn{version, HaveKey(options)};
                all.push_back({user, version, trigger, Foretell(text, addIn, user.language, trigger)});
            }
        }
    }
    return all;
}

CUpdateText Read(const CCheckOptions& options, CCheckResult& result)
{
    if (IsUrl(options.source))
    {
        std::optional<CServedFile> served = FetchAndCheck(options.source, result.findings);
        if (!served)
        {
            return {};
        }
        result.server = served->facts;
        // An error page is no file.
        if (!served->text.empty() || !result.findings.HasErrors())
        {
            CheckBytes(served->bytes, served->text, result.findings);
        }
        return ReadAsTheAddIn(std::move(served->text));
    }
    const std::string bytes = ReadWholeFile(options.source);
    std::wstring text = DecodeAsTheAddIn(bytes);
    CheckBytes(bytes, text, result.findings);
    return ReadAsTheAddIn(std::move(text));
}

void CheckInstaller(const CPublishedUpdate& update, const CCheckOptions& options,
                    const std::optional<CUpdateKey>& key, CCheckResult& result)
{
    if (IsUrl(options.source))
    {
        result.installer = CheckInstallerLink(update, key, options.installer, result.findings);
    }
    else if (options.installer)
    {
        result.installer = CheckInstallerFile(*options.installer, update, key, result.findings);
    }
    else if (key && update.signature)
    {
        result.findings.Warning("signature-not-verified", std::wstring(kUpdateEntryName) + L".signature",
                                L"is not verified without --installer");
    }
}

} // namespace

CCheckResult Check(const CCheckOptions& options)
{
    CCheckResult result;
    result.source = options.source;
    std::optional<CUpdateKey> key;
    if (options.publicKey)
    {
        key = ReadPublicKey(*options.publicKey);
    }
    const CUpdateText text = Read(options, result);
    CPublishedUpdate update;
    if (!text.text.empty())
    {
        const bool isRead = CheckSyntax(text, result.findings);
        CheckBySecondReading(text.text, isRead, result.findings);
        if (isRead)
        {
            update = CheckMembers(text.root, {options.installed, HaveKey(options)}, result.findings);
        }
    }
    result.version = update.version;
    CheckInstaller(update, options, key, result);
    result.forecasts = ForetellAll(text, options);
    return result;
}

} // namespace publishing
