#include "end_to_end/ServerFault.h"

#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"

#include <ostream>

namespace orva::test
{

void PrintTo(const CFault& fault, std::ostream* out)
{
    *out << fault.name;
}

Log WithoutSystemTexts(const Log& log)
{
    const std::string caught = "CHttpRequest::PerformRequest() Caught CInternetException ";
    Log result;
    for (const std::string& line : log)
    {
        if (line.starts_with(caught))
        {
            result.push_back(caught + "*");
        }
        else if (line != "\r")
        {
            result.push_back(line);
        }
    }
    return result;
}

Log Empty(Log log)
{
    return Joined(std::move(log), {"CheckForUpdate() inputData.length() == 0 "});
}

Log Versions(const std::string& major, const std::string& minor, const std::string& build)
{
    return {"CheckJSONObject", "CheckJSONObject", "CheckForUpdate() majorVersion " + major,
            "CheckForUpdate() minorVersion " + minor, "CheckForUpdate() buildNumber " + build};
}

Log Parsed(const std::string& text, const Log& then)
{
    return Joined(Joined(TextLog(text), {"CheckForUpdate() parse json "}), then);
}

Log Unparsed(const std::string& text, const Log& then)
{
    return Joined(Joined(TextLog(text), {"CheckForUpdate() parse json ",
                                         "CheckForUpdate() exception thrown while parsing json "}),
                  then);
}

Log Offered()
{
    return {"CheckJSONObject", "DetermineUpdateDescription"};
}

CServerScript Reply(const std::string& text)
{
    return CHttpReply(200, text);
}

CFault Unreadable(const char* name, const std::string& text)
{
    return {
        name, Reply(text), Unparsed(text, {"CheckJSONObject"}), {kConnectError}, {kConnectError, kNotParsed}};
}

CFault Status(int status, const char* name)
{
    return {name, CHttpReply(status, "<html>no</html>"), Empty(StatusLog(status)), {}, {kConnectError}};
}

CFault WrongType(const char* name, const std::string& text, const Log& then, const char* exception)
{
    return {name, Reply(text), Parsed(text, then), {}, {kNotParsed}, exception};
}

CFault NothingShown(const char* name, const std::string& text, const Log& then)
{
    return {name, Reply(text), Parsed(text, then), {}, {kNotParsed}};
}

CFault NotNewer(const char* name, const std::string& major, const std::string& minor,
                const std::string& build, const Log& versions)
{
    const std::string text = UpdateInfo(major, minor, build, kInstallerUrl);
    return {name, Reply(text), Parsed(text, versions), {}, {kLatest}};
}

CFault Newer(const char* name, const std::string& major, const std::string& minor, const std::string& build,
             const Log& versions)
{
    const std::string text = UpdateInfo(major, minor, build, kInstallerUrl);
    return {name, Reply(text), Parsed(text, Joined(versions, Offered())), {kOfferCaption}, {kOfferCaption}};
}

Log EmptyTextLog()
{
    return Empty(RequestLog({"response content lenght 0", "response httpStatus 200", "newContentLenght 0",
                             "num_chars 1", "ret 1", "response "},
                            ""));
}

Log NoReply()
{
    return Empty(NoReplyLog("*"));
}

Log NoDate()
{
    return {"CheckForUpdate", std::string("CheckForUpdate() ") + kUpdateInfoUrl + " ",
            "CHttpRequest::PerformTextRequest", "CHttpRequest::PerformTextRequest",
            "CHttpRequest::PerformTextRequest"};
}

CFault ReadAsLatest(const char* name, CServerScript script)
{
    return {name, std::move(script), Parsed(g_latestInfo, Versions("1", "2", "0")), {}, {kLatest}};
}

CFault WithoutDate(const char* name, CServerScript script)
{
    return {name, std::move(script), NoDate(), {}, {kConnectError}, kNoDateError};
}

} // namespace orva::test
