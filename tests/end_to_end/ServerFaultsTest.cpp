// Every way in which the update server can fail or answer badly, at Outlook's start and on the user's
// request: what is shown and logged, and that Outlook goes on and a second check works.
#include "end_to_end/OutlookFixture.h"
#include "end_to_end/Texts.h"
#include "harness/Compression.h"

#include <functional>

namespace orva::test
{

namespace
{

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::ValuesIn;

using Texts = std::vector<std::wstring>;
using Log = std::vector<std::string>;

/// One fault: what the server does, and what comes of it. What is shown lists message boxes by their text,
/// the offer by its caption.
struct CFault
{
    const char* name;
    CServerScript script;
    Log log;
    Texts shownSilently;
    Texts shownExplicitly;
    /// The end of the log's last line "... Caught exception", if the check ends with one.
    const char* exception = nullptr;
};

void PrintTo(const CFault& fault, std::ostream* out)
{
    *out << fault.name;
}

/// The most that is read of a body, and the most that is inflated, in bytes.
constexpr size_t kBodyLimit = 256'000;

const std::string g_latest = UpdateInfo("1", "2", "0", kInstallerUrl);

Log Empty(Log log)
{
    return Joined(std::move(log), {"CheckForUpdate() inputData.length() == 0 "});
}

/// The lines of a text that is read up to its versions.
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

const Log g_offered = {"CheckJSONObject", "DetermineUpdateDescription"};

/// The log, with WinINet's own text for an error replaced. That text ends with a line end, which makes a line
/// of its own.
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

/// No WinINet text here: it is the system's own, and in its language.
const Log g_noReply = Empty(NoReplyLog("*"));

CServerScript Reply(const std::string& text)
{
    return CHttpReply(200, text);
}

/// A text that cannot be read as JSON at all.
CFault Unreadable(const char* name, const std::string& text)
{
    return {
        name, Reply(text), Unparsed(text, {"CheckJSONObject"}), {kConnectError}, {kConnectError, kNotParsed}};
}

CFault Status(int status, const char* name)
{
    return {name, CHttpReply(status, "<html>no</html>"), Empty(StatusLog(status)), {}, {kConnectError}};
}

/// Read as JSON, and then not of the types that the check takes.
CFault WrongType(const char* name, const std::string& text, const Log& then, const char* exception)
{
    return {name, Reply(text), Parsed(text, then), {}, {}, exception};
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
    return {name, Reply(text), Parsed(text, Joined(versions, g_offered)), {kOfferCaption}, {kOfferCaption}};
}

/// The latest build's file with so much behind its entry that it goes on beyond the limit.
std::string LongText()
{
    std::string text = g_latest;
    text.pop_back();
    return text + R"(,"z":")" + std::string(300'000, 'z') + "\"}";
}

std::vector<CFault> HttpFaults()
{
    const std::string gzip = GzipBytes(g_latest);
    const std::string half = CutOff(gzip, gzip.size() / 2);
    const std::string halfText = InflatedPart(half, kBodyLimit);
    const std::string cut = LongText().substr(0, kBodyLimit);
    const auto gzipReply = [](const std::string& body) {
        return CHttpReply(200, body).Header("Content-Encoding", "gzip");
    };
    const Log noDate = {"CheckForUpdate", std::string("CheckForUpdate() ") + kUpdateInfoUrl + " ",
                        "CHttpRequest::PerformTextRequest", "CHttpRequest::PerformTextRequest",
                        "CHttpRequest::PerformTextRequest"};
    // Cut behind the three numbers.
    const std::string halfBody = g_latest.substr(0, 60);
    const Log halfLog = Unparsed(halfBody, Versions("1", "2", "0"));
    const std::string wholeHead = CHttpReply(200, g_latest).Head();
    const Log longLog = Unparsed(cut, Versions("1", "2", "0"));
    return {
        // Wine takes the end of the connection for an empty head. Windows reports it as an error, so that
        // these two
        // are as a refused connection there; when Wine does the same, they fail here.
        {"ConnectionClosedAfterTheRequest",
         CServerScript().Close(),
         noDate,
         {},
         {},
         "invalid vector<T> subscript"},
        {"HeadCutShort",
         CServerScript().Send("HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan").Close(),
         noDate,
         {},
         {},
         "invalid vector<T> subscript"},
        {"GarbageInsteadOfAReply",
         CServerScript().Send("220 mail.example ESMTP\r\n").Close(),
         noDate,
         {},
         {},
         "invalid vector<T> subscript"},
        {"RedirectToItself",
         CHttpReply(301).Header("Location", kUpdateInfoUrl),
         g_noReply,
         {},
         {kConnectError}},
        {"BodyThatStopsHalfWay",
         CServerScript().Send(wholeHead + halfBody).Close(),
         halfLog,
         {kConnectError},
         {kConnectError, kLatest}},
        {"ChunkedBody",
         CHttpReply(200, g_latest).Chunked(7),
         Parsed(g_latest, Versions("1", "2", "0")),
         {},
         {kLatest}},
        {"OneByteAtATime",
         CServerScript().SendSlowly(CHttpReply(200, g_latest).Bytes(), 1, 1),
         Parsed(g_latest, Versions("1", "2", "0")),
         {},
         {kLatest}},
        Status(400, "Status400"),
        Status(403, "Status403"),
        Status(404, "Status404"),
        Status(500, "Status500"),
        Status(503, "Status503"),
        {"EmptyBody",
         Reply(""),
         Empty(RequestLog({"response content lenght 0", "response httpStatus 200", "newContentLenght 0",
                           "num_chars 1", "ret 1", "response "},
                          "")),
         {},
         {kConnectError}},
        {"NoDateHeader",
         CHttpReply(200, g_latest).WithoutDate(),
         noDate,
         {},
         {},
         "invalid vector<T> subscript"},
        {"DateHeaderCutShort",
         CHttpReply(200, g_latest).Header("Date", "Thu, 20 Jan 2011"),
         noDate,
         {},
         {},
         "invalid vector<T> subscript"},
        {"TheStatusDoesNotMatterWithoutADateHeader",
         CHttpReply(404).WithoutDate(),
         noDate,
         {},
         {},
         "invalid vector<T> subscript"},
        {"TextInUtf16",
         CHttpReply(200, g_latest).Header("Content-Type", "text/plain; charset=utf-16"),
         Empty(RequestLog(
             {"response content lenght " + std::to_string(g_latest.size()), "response httpStatus 200"}, "")),
         {},
         {kConnectError}},
        {"Gzip", gzipReply(gzip), Parsed(g_latest, Versions("1", "2", "0")), {}, {kLatest}},
        {"GzipWithoutItsEnd",
         gzipReply(CutOff(gzip, 8)),
         Parsed(g_latest, Versions("1", "2", "0")),
         {},
         {kLatest}},
        {"GzipCutInTheMiddle",
         gzipReply(half),
         Unparsed(halfText, {"CheckJSONObject", "CheckJSONObject"}),
         {kConnectError},
         {kConnectError},
         "value type is 6 not 4"},
        {"GzipThatIsNone",
         gzipReply(g_latest),
         Empty(RequestLog({"response content lenght 0", "response httpStatus 200", "newContentLenght 0",
                           "num_chars 1", "ret 1", "response "},
                          "")),
         {},
         {kConnectError}},
        {"GzipOfMoreThanTheLimit",
         gzipReply(GzipBytes(LongText())),
         longLog,
         {kConnectError},
         {kConnectError, kLatest}},
        {"BodyOfMoreThanTheLimit", Reply(LongText()), longLog, {kConnectError}, {kConnectError, kLatest}},
        // Wine counts only what comes after the first packet, Windows every byte; there this is cut.
        {"LengthShorterThanTheBody",
         CHttpReply(200, g_latest).ContentLength(20),
         Parsed(g_latest, Versions("1", "2", "0")),
         {},
         {kLatest}},
        {"LengthLongerThanTheBody",
         CHttpReply(200, g_latest).ContentLength(10'000),
         Parsed(g_latest, Versions("1", "2", "0")),
         {},
         {kLatest}},
        Unreadable("HtmlPage", "<!DOCTYPE html><html><body>Maintenance</body></html>"),
    };
}

std::vector<CFault> TextFaults()
{
    const std::string cut =
        R"({"x64":{"majorVersion":1,"minorVersion":3,"buildNumber":0,"downloadLink":"http://h/s.exe",)"
        R"("description":{"default":"New."}},)";
    const std::string deep(250'000, '[');
    const std::string entry = R"({"x64":{"majorVersion":)";
    const std::string latestEntry = R"({"x64":{"majorVersion":1,"minorVersion":2,"buildNumber":)";
    const std::string newerEntry = R"({"x64":{"majorVersion":1,"minorVersion":2,"buildNumber":1,)";
    const Log newer = Joined(Versions("1", "2", "1"), {"CheckJSONObject"});
    return {
        {"CutAfterTheEntry",
         Reply(cut),
         Unparsed(cut, Joined(Versions("1", "3", "0"), g_offered)),
         {kConnectError, kOfferCaption},
         {kConnectError, kOfferCaption}},
        Unreadable("OnlyBlanks", "   "),
        // The outermost array is in place before the depth is refused.
        {"A250000FoldArray",
         Reply(deep),
         Unparsed(deep, {"CheckJSONObject"}),
         {kConnectError},
         {kConnectError},
         "value type is 1 not 0"},
        NothingShown("RootIsNull", "null", {"CheckJSONObject"}),
        NothingShown("NoEntry", R"({"x86":{}})", {"CheckJSONObject", "CheckJSONObject"}),
        NothingShown("EntryIsNull", R"({"x64":null})", {"CheckJSONObject", "CheckJSONObject"}),
        NothingShown("EntryInCapitals", R"({"X64":{}})", {"CheckJSONObject", "CheckJSONObject"}),
        NothingShown("NewerWithoutALink", newerEntry + R"("description":{"default":"d"}}})", newer),
        NothingShown("NewerWithoutADescription", newerEntry + R"("downloadLink":"http://h/s"}})",
                     Joined(newer, {"DetermineUpdateDescription"})),
        NothingShown("NewerWithoutADescriptionForEnglish",
                     newerEntry + R"("downloadLink":"http://h/s","description":{"de":"neu"}}})",
                     Joined(newer, {"DetermineUpdateDescription"})),
        WrongType("RootIsAnArray", "[1]", {"CheckJSONObject"}, "value type is 1 not 0"),
        WrongType("RootIsAText", R"("x64")", {"CheckJSONObject"}, "value type is 2 not 0"),
        WrongType("EntryIsAText", R"({"x64":"1.3.0"})", {"CheckJSONObject", "CheckJSONObject"},
                  "value type is 2 not 0"),
        WrongType("MajorVersionIsAText", entry + R"("1","minorVersion":2,"buildNumber":0}})",
                  {"CheckJSONObject", "CheckJSONObject"}, "value type is 2 not 4"),
        WrongType("MajorVersionIsReal", entry + R"(1.0,"minorVersion":2,"buildNumber":0}})",
                  {"CheckJSONObject", "CheckJSONObject"}, "value type is 5 not 4"),
        WrongType("NoVersions", R"({"x64":{}})", {"CheckJSONObject", "CheckJSONObject"},
                  "value type is 6 not 4"),
        WrongType("BuildNumberIsNull", latestEntry + "null}}", {"CheckJSONObject", "CheckJSONObject"},
                  "value type is 6 not 4"),
        WrongType("DescriptionIsAText", newerEntry + R"("downloadLink":"http://h/s","description":"new"}})",
                  Joined(newer, {"DetermineUpdateDescription"}), "value type is 2 not 0"),
        WrongType("DescriptionTextIsANumber",
                  newerEntry + R"("downloadLink":"http://h/s","description":{"default":1}}})",
                  Joined(newer, {"DetermineUpdateDescription"}), "value type is 4 not 2"),
        NotNewer("MajorVersionAtTheLower32BitLimit", "-2147483648", "9", "9",
                 Versions("-2147483648", "9", "9")),
        NotNewer("MajorVersionBeyond32BitsIsTruncated", "4294967297", "2", "0", Versions("1", "2", "0")),
        NotNewer("MajorVersionAtTheUpper64BitLimit", "9223372036854775807", "9", "9",
                 Versions("-1", "9", "9")),
        NotNewer("MajorVersionAtTheLower64BitLimit", "-9223372036854775808", "9", "9",
                 Versions("0", "9", "9")),
        Newer("MajorVersionAtTheUpper32BitLimit", "2147483647", "0", "0", Versions("2147483647", "0", "0")),
        Newer("BuildNumberAtTheUpper32BitLimit", "1", "2", "2147483647", Versions("1", "2", "2147483647")),
    };
}

/// The server cannot be reached, or ends the connection without a word.
class ServerOutOfReachTest : public OutlookFixture
{
protected:
    void ExpectNoReply()
    {
        RunToTheEnd();
        EXPECT_THAT(Shown(), testing::IsEmpty());
        EXPECT_THAT(WithoutSystemTexts(StartCheckLog()), ElementsAreArray(g_noReply));

        m_user.AnswerBox(kConnectError);
        StartWithBackstage();
        CheckExplicitly();
        ExpectOutlookGoesOn();
        ASSERT_EQ(m_seen.size(), 1u);
        EXPECT_EQ(m_seen[0].caption, kProduct);
        EXPECT_EQ(m_seen[0].ownerCaption, L"Inbox - Stand-in Outlook");
        EXPECT_FALSE(m_seen[0].ownerEnabled);
    }
};

class ServerFaultsTest : public OutlookFixture, public testing::WithParamInterface<CFault>
{
protected:
    void Expect(const Texts& shown)
    {
        for (const std::wstring& text : shown)
        {
            if (text == kOfferCaption)
            {
                m_user.OnDialog(text, [](HWND dialog) { EXPECT_TRUE(ClickButton(dialog, kLaterButton)); });
            }
            else
            {
                m_user.AnswerBox(text);
            }
        }
    }

    /// The expected log of a check that `caller` has asked for.
    static Log ExpectedLog(const char* caller)
    {
        Log log = GetParam().log;
        if (GetParam().exception != nullptr)
        {
            log.push_back(std::string(caller) + "() Caught exception " + GetParam().exception);
        }
        return log;
    }

    /// The log, with WinINet's own text for an error replaced.

    /// A further check, after the fault, finds the latest version.
    void ExpectThatASecondCheckWorks()
    {
        m_user.Finish();
        m_server.On(kUpdateInfoPath, CHttpReply(200, g_latest));
        m_user.AnswerBox(kLatest);
        m_user.StartFor(m_outlook->Id());
        CheckExplicitly(2);
    }
};

std::string NameOf(const testing::TestParamInfo<CFault>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Http, ServerFaultsTest, ValuesIn(HttpFaults()), NameOf);
INSTANTIATE_TEST_SUITE_P(Text, ServerFaultsTest, ValuesIn(TextFaults()), NameOf);

} // namespace

TEST_F(ServerOutOfReachTest, ConnectionRefused)
{
    const CRefusingPort port;
    m_proxy.emplace(port.Port());
    ExpectNoReply();
}

TEST_F(ServerOutOfReachTest, ServerEnded)
{
    m_server.Refuse();
    ExpectNoReply();
}

TEST_F(ServerOutOfReachTest, NameNotFound)
{
    // Reserved for names that do not exist, whatever the network.
    m_proxy.emplace(L"no-such-server.invalid:80");
    ExpectNoReply();
}

TEST_F(ServerOutOfReachTest, ConnectionResetAfterTheRequest)
{
    // Whether WinINet meets the reset as an error or as the connection's end is a matter of luck under Wine.
    m_server.On(kUpdateInfoPath, CServerScript().Reset());
    RunToTheEnd();
    EXPECT_THAT(Shown(), testing::IsEmpty());
    EXPECT_THAT(WithoutSystemTexts(StartCheckLog()).back(),
                testing::AnyOf("CheckForUpdate() inputData.length() == 0 ",
                               "CConnect::OnConnection() Caught exception invalid vector<T> subscript"));
}

TEST_F(ServerOutOfReachTest, ConnectionClosedBeforeTheRequest)
{
    m_server.OnConnection(CServerScript());
    RunToTheEnd();
    EXPECT_THAT(Shown(), testing::IsEmpty());
    EXPECT_THAT(WithoutSystemTexts(StartCheckLog()).back(),
                testing::AnyOf("CheckForUpdate() inputData.length() == 0 ",
                               "CConnect::OnConnection() Caught exception invalid vector<T> subscript"));
}

TEST_F(ServerOutOfReachTest, GzipThatCannotBeDecodedIsReportedOnStandardOutput)
{
    m_server.On(kUpdateInfoPath,
                CHttpReply(200, CutOff(GzipBytes(g_latest), 8)).Header("Content-Encoding", "gzip"));
    RunToTheEnd();
    EXPECT_THAT(m_outlook->Output(), HasSubstr("Could not decode gzip content"));
}

TEST_P(ServerFaultsTest, AtOutlooksStart)
{
    m_server.On(kUpdateInfoPath, GetParam().script);
    Expect(GetParam().shownSilently);
    RunToTheEnd();
    EXPECT_THAT(Shown(), ElementsAreArray(GetParam().shownSilently));
    EXPECT_THAT(WithoutSystemTexts(StartCheckLog()), ElementsAreArray(ExpectedLog("CConnect::OnConnection")));
    EXPECT_THAT(TempFiles(), testing::IsEmpty());
}

TEST_P(ServerFaultsTest, OnTheUsersRequest)
{
    m_server.On(kUpdateInfoPath, GetParam().script);
    Expect(GetParam().shownExplicitly);
    StartWithBackstage();
    CheckExplicitly();
    const Log log = WithoutSystemTexts(ExplicitCheckLog());
    ExpectThatASecondCheckWorks();
    ExpectOutlookGoesOn();
    EXPECT_THAT(log, ElementsAreArray(ExpectedLog("CConnect::ButtonClicked")));
}

} // namespace orva::test
