#include "publishing/EntryCheck.h"

#include "publishing/DescriptionCheck.h"
#include "publishing/LinkCheck.h"
#include "publishing/MemberReader.h"
#include "publishing/Names.h"
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

void CheckVersion(const PublishedVersion& published, const PublishedVersion& installed,
                  const std::wstring& path, CFindings& findings)
{
    if (!IsNewer(published, installed))
    {
        findings.Error("not-newer", path,
                       std::wstring(L"publishes ") + FormatVersion(published).GetString() +
                           L", which is not newer than the installed " +
                           FormatVersion(installed).GetString());
    }
}

std::optional<std::wstring> ReadText(const wmObject& entry, const std::wstring& path, const wchar_t* name,
                                     CFindings& findings)
{
    const wmValue* const value = FindMember(entry, path, name, json_spirit::str_type, findings);
    return value != nullptr ? std::optional(value->get_str()) : std::nullopt;
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
    if (update.version && demands.installed)
    {
        CheckVersion(*update.version, *demands.installed, path, findings);
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
        update.signature = ReadText(entry, path, L"signature", findings);
        if (update.signature && update.signature->empty())
        {
            findings.Error("missing", JoinPath(path, L"signature"), L"is empty");
            update.signature.reset();
        }
    }
    return update;
}

} // namespace publishing
