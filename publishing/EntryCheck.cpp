#include "publishing/EntryCheck.h"

#include "publishing/DescriptionCheck.h"
#include "publishing/LinkCheck.h"
#include "publishing/MemberReader.h"
#include "publishing/Names.h"
#include "support/EcdsaSignature.h"
#include "support/Version.h"

#include <limits>

namespace publishing
{
namespace
{

using json_spirit::wmObject;
using json_spirit::wmValue;

std::optional<int> ReadNumber(const wmObject& entry, const std::wstring& path, const wchar_t* name,
                              CFindings& findings)
{
    const wmValue* const value = FindMember(entry, path, name, json_spirit::int_type, findings);
    if (value == nullptr)
    {
        return std::nullopt;
    }
    const std::int64_t number = value->get_int64();
    if (value->is_uint64() || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max())
    {
        const std::wstring shown =
            value->is_uint64() ? std::to_wstring(value->get_uint64()) : std::to_wstring(number);
        findings.Error("beyond-32-bits", JoinPath(path, name),
                       L"is " + shown + L", beyond 32 bits: the add-in reads " +
                           std::to_wstring(value->get_int()));
    }
    return value->get_int();
}

std::optional<PublishedVersion> ReadVersion(const wmObject& entry, const std::wstring& path,
                                            CFindings& findings)
{
    const std::optional<int> major = ReadNumber(entry, path, L"majorVersion", findings);
    const std::optional<int> minor = ReadNumber(entry, path, L"minorVersion", findings);
    const std::optional<int> build = ReadNumber(entry, path, L"buildNumber", findings);
    if (!major || !minor || !build)
    {
        return std::nullopt;
    }
    return PublishedVersion{*major, *minor, *build};
}

// Without a version that users have only a warning: an older one is published to withdraw a newer one.
void CheckVersion(const PublishedVersion& published, const std::optional<PublishedVersion>& installed,
                  const std::wstring& path, CFindings& findings)
{
    const PublishedVersion old =
        installed.value_or(PublishedVersion{kVersionMajor, kVersionMinor, kVersionBuild});
    if (IsNewer(published, old))
    {
        return;
    }
    const std::wstring text =
        std::wstring(L"publishes ") + FormatVersion(published).GetString() + L", which is not newer than ";
    if (installed)
    {
        findings.Error("not-newer", path, text + L"the installed " + FormatVersion(old).GetString());
    }
    else
    {
        findings.Warning("not-newer", path, text + L"this build's " + FormatVersion(old).GetString());
    }
}

std::optional<std::wstring> ReadText(const wmObject& entry, const std::wstring& path, const wchar_t* name,
                                     CFindings& findings)
{
    const wmValue* const value = FindMember(entry, path, name, json_spirit::str_type, findings);
    return value != nullptr ? std::optional(value->get_str()) : std::nullopt;
}

// Absent if no installer can have it.
std::optional<std::wstring> ReadSignature(const wmObject& entry, const std::wstring& path,
                                          CFindings& findings)
{
    constexpr wchar_t kName[] = L"signature";
    std::optional<std::wstring> signature = ReadText(entry, path, kName, findings);
    EcdsaSignature decoded{};
    if (!signature || DecodeEcdsaSignature(*signature, decoded))
    {
        return signature;
    }
    if (signature->empty())
    {
        findings.Error("missing", JoinPath(path, kName), L"is empty");
    }
    else
    {
        findings.Error("signature-not-parsed", JoinPath(path, kName),
                       L"is not a signature (DER on the curve P-256, in base64)");
    }
    return std::nullopt;
}

} // namespace

CPublishedUpdate CheckMembers(const wmValue& root, const CDemands& demands, CFindings& findings)
{
    CPublishedUpdate update;
    if (!CheckType(root, {}, json_spirit::obj_type, findings))
    {
        return update;
    }
    const std::wstring path = kUpdateEntryName;
    CheckNames(root.get_obj(), {}, {path}, findings);
    const wmValue* const found = FindMember(root.get_obj(), {}, path, json_spirit::obj_type, findings);
    if (found == nullptr)
    {
        return update;
    }
    const wmObject& entry = found->get_obj();
    CheckNames(
        entry, path,
        {L"majorVersion", L"minorVersion", L"buildNumber", L"downloadLink", L"description", L"signature"},
        findings);
    update.version = ReadVersion(entry, path, findings);
    if (update.version)
    {
        CheckVersion(*update.version, demands.installed, path, findings);
    }
    update.link = ReadText(entry, path, L"downloadLink", findings);
    if (update.link)
    {
        // The add-in takes it up to its first zero unit.
        update.link = update.link->c_str();
        CheckLink(*update.link, JoinPath(path, L"downloadLink"), findings);
    }
    if (const wmValue* const texts = FindMember(entry, path, L"description", json_spirit::obj_type, findings))
    {
        CheckDescription(texts->get_obj(), JoinPath(path, L"description"), findings);
    }
    if (demands.isSigned || entry.contains(L"signature"))
    {
        update.signature = ReadSignature(entry, path, findings);
    }
    return update;
}

} // namespace publishing
