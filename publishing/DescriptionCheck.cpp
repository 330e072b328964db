#include "publishing/DescriptionCheck.h"

#include "publishing/DescriptionBox.h"
#include "publishing/MemberReader.h"
#include "publishing/Names.h"

namespace publishing
{
namespace
{

constexpr wchar_t kDefault[] = L"default";

void CheckText(const std::wstring& text, const std::wstring& path, bool isDefault, const CDescriptionBox& box,
               CFindings& findings)
{
    if (text.empty())
    {
        // Without a default text nobody but the readers of the others is offered anything.
        if (isDefault)
        {
            findings.Error("no-default", path,
                           L"is empty: users without a text of their own are not offered the update");
        }
        else
        {
            findings.Warning(
                "empty-text", path,
                L"is empty: its readers are not offered the update, and do not read \"default\" instead");
        }
        return;
    }
    if (text.starts_with(L"{\\rtf") || text.starts_with(L"{urtf"))
    {
        findings.Warning("rtf", path, L"begins like RTF: the box may show it as such");
    }
    if (const auto lines = box.LinesOf(text); lines.total > lines.visible)
    {
        findings.Warning("too-long-for-box", path,
                         L"has " + std::to_wstring(lines.total) + L" lines in its box, which shows " +
                             std::to_wstring(lines.visible) + L" without scrolling");
    }
}

} // namespace

void CheckDescription(const json_spirit::wmObject& texts, const std::wstring& path, CFindings& findings)
{
    CheckNames(texts, path, {L"de", L"es", L"tr", kDefault}, findings);
    const CDescriptionBox box;
    for (const wchar_t* const name : {L"de", L"es", L"tr", kDefault})
    {
        const bool isDefault = name == kDefault;
        const auto found = texts.find(name);
        // A text that is null counts as missing.
        if (found == texts.end() || found->second.is_null())
        {
            if (isDefault)
            {
                findings.Error("no-default", JoinPath(path, name),
                               L"is missing: users without a text of their own are not offered the update");
            }
            continue;
        }
        if (CheckType(found->second, JoinPath(path, name), json_spirit::str_type, findings))
        {
            CheckText(found->second.get_str().c_str(), JoinPath(path, name), isDefault, box, findings);
        }
    }
    if (!box.IsMeasured())
    {
        findings.Warning("not-measured", path, L"could not be measured: there is no display");
    }
}

} // namespace publishing
