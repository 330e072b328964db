// The report for scripts.
#include "publishing/Report.h"
#include "publishing/Text.h"

#include <nlohmann/json.hpp>

namespace publishing
{
namespace
{

using Json = nlohmann::ordered_json;

// Changes when a script would have to.
constexpr int kFormat = 1;

Json VersionOrNull(const std::optional<PublishedVersion>& version)
{
    return version ? Json(Utf8(FormatVersion(*version).GetString())) : Json();
}

Json TextOrNull(const std::wstring& text)
{
    return text.empty() ? Json() : Json(Utf8(text));
}

Json Texts(const std::vector<std::wstring>& texts)
{
    Json list = Json::array();
    for (const std::wstring& text : texts)
    {
        list.push_back(Utf8(text));
    }
    return list;
}

Json Findings(const CFindings& findings, Severity severity)
{
    Json list = Json::array();
    for (const CFinding& finding : findings.All())
    {
        if (finding.severity == severity)
        {
            list.push_back(
                {{"code", finding.code}, {"path", Utf8(finding.path)}, {"text", Utf8(finding.text)}});
        }
    }
    return list;
}

Json Server(const CServerFacts& server)
{
    return {{"status", server.status},
            {"date", TextOrNull(server.date)},
            {"contentType", TextOrNull(server.contentType)},
            {"coding", TextOrNull(server.coding)},
            {"redirectedTo", TextOrNull(server.redirectedTo)},
            {"size", server.size}};
}

Json Installer(const CInstallerFacts& installer)
{
    return {{"source", Utf8(installer.source)},
            {"size", installer.size},
            {"bits", installer.bits},
            {"version", TextOrNull(installer.version)},
            {"signed", installer.isSigned ? Json(*installer.isSigned) : Json()}};
}

Json Offer(const CForecast& forecast)
{
    if (!forecast.offer)
    {
        return {};
    }
    return {{"version", Utf8(forecast.offer->version)}, {"text", Utf8(forecast.offer->text)}};
}

Json Forecast(const CUserForecast& one)
{
    const CForecast& forecast = one.forecast;
    Json json = {{"user", Utf8(one.user.name)},
                 {"language", one.user.language},
                 {"installed", Utf8(FormatVersion(one.installed).GetString())},
                 {"trigger", one.trigger == Trigger::Start ? "start" : "request"},
                 {"messages", Texts(forecast.messages)},
                 {"offer", Offer(forecast)}};
    json["afterInstall"] = Texts(forecast.afterInstall);
    json["downloads"] = forecast.isDownloaded;
    return json;
}

} // namespace

std::string JsonReport(const CCheckResult& result)
{
    Json report = {{"format", kFormat},
                   {"source", Utf8(result.source)},
                   {"version", VersionOrNull(result.version)},
                   {"errors", Findings(result.findings, Severity::Error)},
                   {"warnings", Findings(result.findings, Severity::Warning)},
                   {"server", result.server ? Server(*result.server) : Json()},
                   {"installer", result.installer ? Installer(*result.installer) : Json()}};
    report["users"] = Json::array();
    for (const CUserForecast& one : result.forecasts)
    {
        report["users"].push_back(Forecast(one));
    }
    constexpr int kIndent = 4;
    return report.dump(kIndent) + "\n";
}

} // namespace publishing
