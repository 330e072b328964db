// Failures and bad answers of the update server, one of each kind of outcome, at Outlook's start and on the
// user's request: what is shown and logged, and that Outlook goes on and a second check works. All the
// replies and files that have the same outcome are in the tests of the classes that read them.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Compression.h"
#include "harness/Text.h"

#include <wininet.h>

#include <optional>
#include <ostream>

namespace orva::test
{

namespace
{

using testing::AnyOf;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Values;
using testing::ValuesIn;

using Texts = std::vector<std::wstring>;
using Log = std::vector<std::string>;

// The exception's text that ends a check whose reply has no date.
constexpr char kNoDate[] = "invalid vector<T> subscript";

// What the server does, and the outcome.
struct CFault
{
    const char* name;
    // Absent: nobody listens.
    std::optional<CServerScript> script;
    Log log;
    Texts shownSilently;
    Texts shownExplicitly;
    // The end of the log's last line "... Caught exception", if the check ends with one.
    const char* exception = nullptr;
};

void PrintTo(const CFault& fault, std::ostream* out)
{
    *out << fault.name;
}

// The log up to the reply.
Log Requested()
{
    const std::string entry = "CHttpRequest::PerformTextRequest";
    return {"CheckForUpdate", std::string("CheckForUpdate() ") + kUpdateInfoUrl + " ", entry, entry, entry};
}

// The log of a request that has this result: the body's length, the status, the lines about the body, and the
// text.
Log Replied(size_t length, int status, const Log& body, const std::string& text)
{
    const std::string prefix = "CHttpRequest::PerformTextRequest() ";
    Log log = {prefix + "response content lenght " + std::to_string(length),
               prefix + "response httpStatus " + std::to_string(status)};
    for (const std::string& line : body)
    {
        log.push_back(prefix + line);
    }
    return Joined(std::move(log),
                  {prefix + "delete resp ", prefix + "deleted resp ",
                   "CheckForUpdate() TextRequest succeeded ", "CheckForUpdate() " + text + " "});
}

// The log of a check whose request has these lines and no text.
Log NoText(size_t length, int status, const Log& body)
{
    return Joined(Replied(length, status, body, ""), {"CheckForUpdate() inputData.length() == 0 "});
}

// The log of a check whose request fails with this error of WinINet's.
Log NoReply(DWORD error)
{
    wchar_t text[1024] = L"";
    FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS,
                   GetModuleHandleW(L"wininet.dll"), error, 0, text, 1024, nullptr);
    // The system's text ends with a line end, which makes a line of its own in the log.
    const Log lines = {"CHttpRequest::PerformRequest() Caught CInternetException " + CutOff(Utf8(text), 1),
                       "\r"};
    return Joined(Joined(Requested(), lines), NoText(0, -1, {"newContentLenght 0", "num_chars 0"}));
}

// The log of a check that reads this text and then writes these lines.
Log Parsed(const std::string& text, const Log& then)
{
    const std::string length = std::to_string(text.size());
    const std::string characters = std::to_string(text.size() + 1);
    const Log body = {"check for BOM ", "newContentLenght " + length, "num_chars " + characters,
                      "ret " + characters, "response " + text};
    return Joined(Joined(Requested(), Replied(text.size(), 200, body, text)),
                  Joined({"CheckForUpdate() parse json "}, then));
}

// The same for a text that is not wholly JSON.
Log Unparsed(const std::string& text, const Log& then)
{
    return Parsed(text, Joined({"CheckForUpdate() exception thrown while parsing json "}, then));
}

// The lines of reading a text up to its versions.
Log Versions(const std::string& minor, const std::string& build)
{
    return {"CheckJSONObject", "CheckJSONObject", "CheckForUpdate() majorVersion 1",
            "CheckForUpdate() minorVersion " + minor, "CheckForUpdate() buildNumber " + build};
}

CServerScript Reply(const std::string& text)
{
    return CHttpReply(200, text);
}

std::vector<CFault> Faults()
{
    const CHttpReply latest(200, g_latestInfo);
    const std::string html = "<!DOCTYPE html><html><body>Maintenance</body></html>";
    const std::string newer = NewerBuild("http://h/s.exe");
    // Cut behind the three numbers, and behind the entry.
    const std::string numbers = g_latestInfo.substr(0, g_latestInfo.find(",\"downloadLink\""));
    const std::string entry = CutOff(newer, 1);
    const std::string noDescription =
        R"({"x64":{"majorVersion":1,"minorVersion":2,"buildNumber":1,"downloadLink":"http://h/s.exe"}})";
    const std::string noEntry = R"({"x86":{}})";
    const std::string wrongType = R"({"x64":{"majorVersion":"1","minorVersion":2,"buildNumber":0}})";
    const std::string deep(250'000, '[');
    return {
        {"NobodyListens", std::nullopt, NoReply(ERROR_INTERNET_CANNOT_CONNECT), {}, {kConnectError}},
        // Wine reads the end of the connection as the end of the head. Windows reports an error, as for a
        // refused connection.
        {"HeadCutInItsDate",
         CServerScript().Send("HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan").Close(),
         Requested(),
         {},
         {kConnectError},
         kNoDate},
        {"Status404",
         CHttpReply(404, "<html>no</html>"),
         Joined(Requested(), NoText(0, 404, {"newContentLenght 0", "num_chars 0"})),
         {},
         {kConnectError}},
        {"EmptyBody",
         Reply(""),
         Joined(Requested(), NoText(0, 200, {"newContentLenght 0", "num_chars 1", "ret 1", "response "})),
         {},
         {kConnectError}},
        {"TextInUtf16",
         CHttpReply(latest).Header("Content-Type", "text/plain; charset=utf-16"),
         Joined(Requested(), NoText(g_latestInfo.size(), 200, {})),
         {},
         {kConnectError}},
        {"HtmlPage",
         Reply(html),
         Unparsed(html, {"CheckJSONObject"}),
         {kConnectError},
         {kConnectError, kNotParsed}},
        {"BodyCutBehindTheNumbers",
         CServerScript().Send(latest.Head() + numbers).Close(),
         Unparsed(numbers, Versions("2", "0")),
         {kConnectError},
         {kConnectError, kLatest}},
        {"FileWithoutItsLastBrace",
         Reply(entry),
         Unparsed(entry, Joined(Versions("3", "0"), {"CheckJSONObject", "DetermineUpdateDescription"})),
         {kConnectError, kOfferCaption},
         {kConnectError, kOfferCaption}},
        // The outermost array is in place before the depth is refused.
        {"A250000FoldArray",
         Reply(deep),
         Unparsed(deep, {"CheckJSONObject"}),
         {kConnectError},
         {kConnectError, kNotParsed},
         "value type is 1 not 0"},
        {"NoEntry",
         Reply(noEntry),
         Parsed(noEntry, {"CheckJSONObject", "CheckJSONObject"}),
         {},
         {kNotParsed}},
        {"NewerBuildWithoutADescription",
         Reply(noDescription),
         Parsed(noDescription, Joined(Versions("2", "1"), {"CheckJSONObject", "DetermineUpdateDescription"})),
         {},
         {kNotParsed}},
        {"NumberThatIsAText",
         Reply(wrongType),
         Parsed(wrongType, {"CheckJSONObject", "CheckJSONObject"}),
         {},
         {kNotParsed},
         "value type is 2 not 4"},
        {"GzipWithoutItsEnd",
         CHttpReply(200, CutOff(GzipBytes(g_latestInfo), 8)).Header("Content-Encoding", "gzip"),
         Parsed(g_latestInfo, Versions("2", "0")),
         {},
         {kLatest}},
    };
}

class ServerFaultsTest : public FaultFixture, public testing::WithParamInterface<CFault>
{
protected:
    // Runs the fault. If it raises an exception, the log ends with the line of `caller`, which caught it.
    void ExpectFault(CheckMode mode, const Texts& shown, const char* caller)
    {
        const CFault& fault = GetParam();
        if (fault.script)
        {
            m_server.On(kUpdateInfoPath, *fault.script);
        }
        else
        {
            m_proxy.emplace(m_nobody.Port());
        }
        for (const std::wstring& text : shown)
        {
            if (text == kOfferCaption)
            {
                ExpectOffer();
            }
            else
            {
                m_user.AnswerBox(text);
            }
        }
        RunFault(mode);
        Log log = fault.log;
        if (fault.exception != nullptr)
        {
            log.push_back(std::string(caller) + "() Caught exception " + fault.exception);
        }
        EXPECT_THAT(Observed().shown, ElementsAreArray(shown));
        EXPECT_THAT(Observed().log, ElementsAreArray(log));
        EXPECT_THAT(Observed().left, IsEmpty());
        for (const CSeenWindow& window : Observed().windows)
        {
            if (window.caption == kProduct)
            {
                EXPECT_EQ(window.ownerCaption, L"Inbox - Stand-in Outlook");
                EXPECT_FALSE(window.ownerEnabled);
            }
        }
    }

    const CRefusingPort m_nobody;
};

// The connection is reset.
class ServerResetTest : public FaultFixture, public testing::WithParamInterface<CheckMode>
{
};

class GzipReportTest : public OutlookFixture
{
};

std::string NameOf(const testing::TestParamInfo<CFault>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Kinds, ServerFaultsTest, ValuesIn(Faults()), NameOf);
INSTANTIATE_TEST_SUITE_P(Modes, ServerResetTest, Values(CheckMode::StartUp, CheckMode::Explicit), NameOfMode);

} // namespace

TEST_P(ServerFaultsTest, AtOutlooksStart)
{
    ExpectFault(CheckMode::StartUp, GetParam().shownSilently, "CConnect::OnConnection");
}

TEST_P(ServerFaultsTest, OnTheUsersRequest)
{
    ExpectFault(CheckMode::Explicit, GetParam().shownExplicitly, "CConnect::ButtonClicked");
}

TEST_P(ServerResetTest, IsAFailedRequestOrAReplyWithoutADate)
{
    m_server.On(kUpdateInfoPath, CServerScript().Reset());
    const bool isExplicit = GetParam() == CheckMode::Explicit;
    if (isExplicit)
    {
        m_user.AnswerBox(kConnectError);
    }
    RunFault(GetParam());
    EXPECT_EQ(Observed().shown, isExplicit ? Texts{kConnectError} : Texts());
    // The system reports a reset once. Where Wine's server has taken that report, WinINet reads the end of
    // the connection instead, as if the reply were complete. On Windows it is always the failure.
    const std::string caller = isExplicit ? "CConnect::ButtonClicked" : "CConnect::OnConnection";
    EXPECT_THAT(Observed().log,
                AnyOf(ElementsAreArray(NoReply(ERROR_INTERNET_CONNECTION_ABORTED)),
                      ElementsAreArray(Joined(Requested(), {caller + "() Caught exception " + kNoDate}))));
    EXPECT_THAT(Observed().left, IsEmpty());
}

TEST_F(GzipReportTest, GzipThatCannotBeDecodedIsReportedOnStandardOutput)
{
    m_server.On(kUpdateInfoPath,
                CHttpReply(200, CutOff(GzipBytes(g_latestInfo), 8)).Header("Content-Encoding", "gzip"));
    RunToTheEnd();
    EXPECT_THAT(m_outlook->Output(), HasSubstr("Could not decode gzip content"));
}

} // namespace orva::test
