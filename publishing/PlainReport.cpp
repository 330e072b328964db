// The report for who reads it.
#include "publishing/Report.h"
#include "publishing/Text.h"

#include <algorithm>

namespace publishing
{
namespace
{

// Users with the same fate, and their fate in lines.
struct CGroup
{
    std::wstring users;
    std::wstring fate;

    bool operator==(const CGroup&) const = default;
};

using CGroups = std::vector<CGroup>;

std::wstring Message(const std::wstring& text)
{
    if (text.empty())
    {
        return L"an empty message";
    }
    std::wstring line = text;
    std::replace(line.begin(), line.end(), L'\n', L' ');
    return L"the message \"" + line + L"\"";
}

std::wstring Messages(const std::vector<std::wstring>& texts)
{
    std::wstring all;
    for (const std::wstring& text : texts)
    {
        all += (all.empty() ? L"" : L", then ") + Message(text);
    }
    return all;
}

// The text line by line, so that it is seen where it begins and ends.
std::wstring Block(const std::wstring& text)
{
    std::wstring block = L"      | ";
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool isCrOfCrLf = text[i] == L'\r' && i + 1 < text.size() && text[i + 1] == L'\n';
        if (text[i] == L'\n' || (text[i] == L'\r' && !isCrOfCrLf))
        {
            block += L"\n      | ";
        }
        else if (text[i] != L'\r')
        {
            block += text[i];
        }
    }
    return block + L"\n";
}

std::wstring Fate(const CForecast& forecast)
{
    if (forecast.messages.empty() && !forecast.offer)
    {
        return L"    sees nothing\n";
    }
    std::wstring fate;
    if (!forecast.messages.empty())
    {
        fate += L"    sees " + Messages(forecast.messages) + L"\n";
    }
    if (forecast.offer)
    {
        fate += L"    is offered " + forecast.offer->version + L" with this text:\n" +
                Block(forecast.offer->text);
        if (!forecast.afterInstall.empty())
        {
            fate += L"    after \"Install\" sees " + Messages(forecast.afterInstall) + L"\n";
        }
        else if (!forecast.isDownloaded)
        {
            fate += L"    after \"Install\" sees nothing more\n";
        }
    }
    return fate;
}

CGroups GroupByFate(const CCheckResult& result, const PublishedVersion& installed, Trigger trigger)
{
    CGroups groups;
    for (const CUserForecast& one : result.forecasts)
    {
        if (one.trigger != trigger || FormatVersion(one.installed) != FormatVersion(installed))
        {
            continue;
        }
        const std::wstring fate = Fate(one.forecast);
        const auto group = std::ranges::find(groups, fate, &CGroup::fate);
        if (group == groups.end())
        {
            groups.push_back({one.user.name, fate});
        }
        else
        {
            group->users += std::wstring(L", ") + one.user.name;
        }
    }
    return groups;
}

std::wstring Section(const PublishedVersion& installed, const wchar_t* when, const CGroups& groups)
{
    std::wstring section =
        std::wstring(L"From ") + FormatVersion(installed).GetString() + L", " + when + L":\n";
    for (const CGroup& group : groups)
    {
        section += L"  " + group.users + L":\n" + group.fate;
    }
    return section + L"\n";
}

std::wstring Forecasts(const CCheckResult& result)
{
    std::wstring text;
    for (const CUserForecast& first : result.forecasts)
    {
        // One section, or two, for each version.
        if (first.trigger != Trigger::Start || first.user.language != result.forecasts.front().user.language)
        {
            continue;
        }
        const CGroups atStart = GroupByFate(result, first.installed, Trigger::Start);
        const CGroups onRequest = GroupByFate(result, first.installed, Trigger::Request);
        if (atStart == onRequest)
        {
            text += Section(first.installed, L"when Outlook starts and on \"Update\"", atStart);
        }
        else
        {
            text += Section(first.installed, L"when Outlook starts", atStart);
            text += Section(first.installed, L"on \"Update\"", onRequest);
        }
    }
    return text;
}

std::wstring Size(std::uint64_t size)
{
    return std::to_wstring(size) + L" bytes";
}

std::wstring Server(const CServerFacts& server)
{
    std::wstring text = L"Server: status " + std::to_wstring(server.status);
    for (const std::wstring* const part : {&server.date, &server.contentType, &server.coding})
    {
        text += part->empty() ? std::wstring() : L"; " + *part;
    }
    return text + L"; " + Size(server.size) + L"\n";
}

std::wstring Installer(const CInstallerFacts& installer)
{
    std::wstring text = L"Installer: " + installer.source + L"; " + Size(installer.size);
    text += installer.bits != 0 ? L"; " + std::to_wstring(installer.bits) + L" bits" : std::wstring();
    text += installer.version.empty() ? std::wstring() : L"; version " + installer.version;
    if (installer.isSigned)
    {
        text += *installer.isSigned ? L"; signature valid" : L"; signature not valid";
    }
    return text + L"\n";
}

std::wstring Subject(const std::wstring& path)
{
    if (path.empty())
    {
        return {};
    }
    const bool isThing = path == L"server" || path == L"installer";
    return (isThing ? L"the " + path : path) + L" ";
}

std::wstring Count(std::ptrdiff_t count, const wchar_t* what)
{
    return (count == 0 ? std::wstring(L"no") : std::to_wstring(count)) + L" " + what +
           (count == 1 ? L"" : L"s");
}

} // namespace

std::string PlainReport(const CCheckResult& result)
{
    std::wstring text = result.source + L": ";
    text += result.version ? L"version " + std::wstring(FormatVersion(*result.version).GetString())
                           : std::wstring(L"no version that can be read");
    text += L"\n";
    text += result.server ? Server(*result.server) : std::wstring();
    text += result.installer ? Installer(*result.installer) : L"Installer: not checked\n";
    text += L"\n" + Forecasts(result);
    for (const CFinding& finding : result.findings.All())
    {
        text += (finding.severity == Severity::Error ? L"Error: " : L"Warning: ") + Subject(finding.path) +
                finding.text + L"\n";
    }
    return Utf8(text + Count(result.findings.Count(Severity::Error), L"error") + L", " +
                Count(result.findings.Count(Severity::Warning), L"warning") + L"\n");
}

} // namespace publishing
