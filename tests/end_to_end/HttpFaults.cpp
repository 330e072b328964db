// Faults of the connection and of the reply, except its text.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/ServerFault.h"
#include "end_to_end/Texts.h"
#include "harness/Compression.h"

namespace orva::test
{

namespace
{

// How long a stalling server pauses, in milliseconds.
constexpr DWORD kStall = 700;

// The latest build's file, padded behind its entry beyond the limit.
std::string LongText()
{
    std::string text = g_latestInfo;
    text.pop_back();
    return text + R"(,"z":")" + std::string(300'000, 'z') + "\"}";
}

} // namespace

std::vector<CFault> HttpFaults()
{
    const std::string gzip = GzipBytes(g_latestInfo);
    const std::string half = CutOff(gzip, gzip.size() / 2);
    const std::string halfText = InflatedPart(half, kBodyLimit);
    const std::string cut = LongText().substr(0, kBodyLimit);
    const auto gzipReply = [](const std::string& body) {
        return CHttpReply(200, body).Header("Content-Encoding", "gzip");
    };
    // Cut behind the three numbers.
    const std::string halfBody = g_latestInfo.substr(0, 60);
    const Log halfLog = Unparsed(halfBody, Versions("1", "2", "0"));
    const std::string wholeHead = CHttpReply(200, g_latestInfo).Head();
    const Log longLog = Unparsed(cut, Versions("1", "2", "0"));
    return {
        // Wine reads the end of the connection as an empty head. Windows reports an error, as for a refused
        // connection; these fail as soon as Wine does the same.
        WithoutDate("ConnectionClosedAfterTheRequest", CServerScript().Close()),
        WithoutDate("HeadCutShort", CServerScript().Send("HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan").Close()),
        WithoutDate("GarbageInsteadOfAReply", CServerScript().Send("220 mail.example ESMTP\r\n").Close()),
        {"BodyThatStopsHalfWay",
         CServerScript().Send(wholeHead + halfBody).Close(),
         halfLog,
         {kConnectError},
         {kConnectError, kLatest}},
        ReadAsLatest("ChunkedBody", CHttpReply(200, g_latestInfo).Chunked(7)),
        ReadAsLatest("OneByteAtATime",
                     CServerScript().SendSlowly(CHttpReply(200, g_latestInfo).Bytes(), 1, 1)),
        ReadAsLatest("StallInTheHead", CServerScript()
                                           .Send(wholeHead.substr(0, 40))
                                           .Pause(kStall)
                                           .Send(wholeHead.substr(40) + g_latestInfo)),
        ReadAsLatest("StallInTheBody",
                     CServerScript().Send(wholeHead + halfBody).Pause(kStall).Send(g_latestInfo.substr(60))),
        WithoutDate("StallThenClosed", CServerScript().Pause(kStall).Close()),
        {"StallInTheBodyThenClosed",
         CServerScript().Send(wholeHead + halfBody).Pause(kStall).Close(),
         halfLog,
         {kConnectError},
         {kConnectError, kLatest}},
        Status(400, "Status400"),
        Status(403, "Status403"),
        Status(404, "Status404"),
        Status(500, "Status500"),
        Status(503, "Status503"),
        {"EmptyBody", Reply(""), EmptyTextLog(), {}, {kConnectError}},
        WithoutDate("NoDateHeader", CHttpReply(200, g_latestInfo).WithoutDate()),
        WithoutDate("DateHeaderCutShort", CHttpReply(200, g_latestInfo).Header("Date", "Thu, 20 Jan 2011")),
        WithoutDate("TheStatusDoesNotMatterWithoutADateHeader", CHttpReply(404).WithoutDate()),
        {"TextInUtf16",
         CHttpReply(200, g_latestInfo).Header("Content-Type", "text/plain; charset=utf-16"),
         Empty(RequestLog(
             {"response content lenght " + std::to_string(g_latestInfo.size()), "response httpStatus 200"},
             "")),
         {},
         {kConnectError}},
        ReadAsLatest("Gzip", gzipReply(gzip)),
        ReadAsLatest("GzipWithoutItsEnd", gzipReply(CutOff(gzip, 8))),
        {"GzipCutInTheMiddle",
         gzipReply(half),
         Unparsed(halfText, {"CheckJSONObject", "CheckJSONObject"}),
         {kConnectError},
         {kConnectError, kNotParsed},
         "value type is 6 not 4"},
        {"GzipThatIsNone", gzipReply(g_latestInfo), EmptyTextLog(), {}, {kConnectError}},
        {"GzipOfMoreThanTheLimit",
         gzipReply(GzipBytes(LongText())),
         longLog,
         {kConnectError},
         {kConnectError, kLatest}},
        {"BodyOfMoreThanTheLimit", Reply(LongText()), longLog, {kConnectError}, {kConnectError, kLatest}},
        // Wine counts only what comes after the first packet. Windows counts every byte, and so cuts this
        // text.
        ReadAsLatest("LengthShorterThanTheBody", CHttpReply(200, g_latestInfo).ContentLength(20)),
        ReadAsLatest("LengthLongerThanTheBody", CHttpReply(200, g_latestInfo).ContentLength(10'000)),
        Unreadable("HtmlPage", "<!DOCTYPE html><html><body>Maintenance</body></html>"),
    };
}

} // namespace orva::test
