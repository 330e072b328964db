#include "publishing/InstallerCheck.h"

#include "publishing/Files.h"
#include "publishing/HttpExchange.h"
#include "publishing/LinkCheck.h"
#include "publishing/ProgramFile.h"
#include "publishing/Text.h"
#include "support/UpdateSignature.h"

#include <wininet.h>

#include <algorithm>

namespace publishing
{
namespace
{

constexpr wchar_t kPath[] = L"installer";

// As the add-in's download sends them.
constexpr wchar_t kHeaders[] =
    L"Accept-Encoding: identity, *;q=0\r\nUser-Agent: ORVA OSC Outlook Add-In\r\nAccept: */*\r\n";

void CheckVersion(const std::wstring& version, const CPublishedUpdate& update, CFindings& findings)
{
    if (version.empty())
    {
        findings.Error("installer-version", kPath, L"has no version resource");
        return;
    }
    const std::wstring published = update.version ? FormatVersion(*update.version).GetString() : L"";
    if (!published.empty() && version != published)
    {
        findings.Error("installer-version", kPath,
                       L"is version " + version + L", and " + published + L" is published");
    }
}

bool IsSigned(const std::wstring& path, const CUpdateKey& key, const CPublishedUpdate& update)
{
    const UniqueFile file = OpenForReading(path);
    const std::string version = Utf8(FormatVersion(*update.version).GetString()) + "\n";
    return file != nullptr && IsSignedBy(key, version, file.get(), *update.signature);
}

CInstallerFacts Check(const std::wstring& path, const std::string& bytes, const CPublishedUpdate& update,
                      const std::optional<CUpdateKey>& key, CFindings& findings)
{
    CInstallerFacts facts;
    facts.source = path;
    facts.size = bytes.size();
    facts.bits = ProgramBits(bytes);
    if (facts.bits == 0)
    {
        findings.Error("installer-not-program", kPath, L"is no whole program for 64-bit or 32-bit Windows");
    }
    else
    {
        facts.version = VersionResourceOf(path);
        CheckVersion(facts.version, update, findings);
    }
    if (key && update.version && update.signature)
    {
        facts.isSigned = IsSigned(path, *key, update);
        if (!*facts.isSigned)
        {
            findings.Error("signature", kPath, L"is not signed with the publisher's key for this version");
        }
    }
    return facts;
}

void CheckReply(const CHttpExchange& reply, CFindings& findings)
{
    if (!reply.redirectedTo.empty())
    {
        findings.Warning("redirect", kPath,
                         L"is at " + reply.redirectedTo + L", to which the server redirects");
    }
    if (!reply.length)
    {
        findings.Error("no-length", kPath,
                       L"comes without a Content-Length, so that a cut download is not noticed");
    }
    if (std::max<std::uint64_t>(reply.length.value_or(0), reply.body.size()) > kLargestFile)
    {
        findings.Error("too-long", kPath, L"has 2 GiB or more, beyond what the add-in downloads");
        return;
    }
    if (!reply.isReadToTheEnd || (reply.length && reply.body.size() < *reply.length))
    {
        findings.Error("cut", kPath,
                       L"ends after " + std::to_wstring(reply.body.size()) +
                           (reply.length ? L" of " + std::to_wstring(*reply.length) + L" bytes" : L" bytes"));
    }
}

} // namespace

CInstallerFacts CheckInstallerFile(const std::wstring& path, const CPublishedUpdate& update,
                                   const std::optional<CUpdateKey>& key, CFindings& findings)
{
    return Check(path, ReadWholeFile(path), update, key, findings);
}

std::optional<CInstallerFacts> CheckInstallerLink(const CPublishedUpdate& update,
                                                  const std::optional<CUpdateKey>& key,
                                                  const std::optional<std::wstring>& original,
                                                  CFindings& findings)
{
    if (!update.link || FateOf(*update.link) != LinkFate::Downloaded)
    {
        return std::nullopt;
    }
    const std::optional<CHttpExchange> reply = Get(*update.link, kHeaders);
    if (!reply)
    {
        findings.Error("installer-not-there", kPath,
                       L"cannot be downloaded: no server answers for " + *update.link);
        return std::nullopt;
    }
    if (IsHttps(reply->redirectedTo))
    {
        findings.Error(
            "redirect", kPath,
            L"is at " + reply->redirectedTo +
                L", to which the server redirects, and Windows does not follow from http to https");
        return std::nullopt;
    }
    if (reply->status != HTTP_STATUS_OK)
    {
        findings.Error("installer-not-there", kPath,
                       L"cannot be downloaded: the server answers with status " +
                           std::to_wstring(reply->status));
        return std::nullopt;
    }
    CheckReply(*reply, findings);
    if (original && ReadWholeFile(*original) != reply->body)
    {
        findings.Error("installer-differs", kPath, L"is another file than " + *original);
    }
    const CTemporaryFile file(reply->body);
    CInstallerFacts facts = Check(file.Path(), reply->body, update, key, findings);
    facts.source = *update.link;
    return facts;
}

} // namespace publishing
