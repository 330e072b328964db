// Unusual and broken heads of the update server's reply.
#include "end_to_end/FaultFixture.h"
#include "end_to_end/ServerFault.h"
#include "end_to_end/Texts.h"
#include "harness/Compression.h"
#include "harness/Report.h"

#include <algorithm>

namespace orva::test
{

namespace
{

const std::string g_date = std::string("Date: ") + kReplyDate + "\r\n";

CHttpReply Latest()
{
    return CHttpReply(200, g_latestInfo);
}

// A reply with these head lines and the latest build's file as its body.
CServerScript Behind(const std::string& head)
{
    return CServerScript().Send(head + "\r\n" + g_latestInfo).Close();
}

CServerScript Chunks(const std::string& body)
{
    return CServerScript().Send("HTTP/1.1 200 OK\r\n" + g_date + "Transfer-Encoding: chunked\r\n\r\n" + body);
}

std::string WithBareLineEnds(std::string text)
{
    std::erase(text, '\r');
    return text;
}

CHttpReply ManyHeaders()
{
    CHttpReply reply = Latest();
    for (int i = 0; i < 1'000; ++i)
    {
        reply.AddHeader("X-" + std::to_string(i), "x");
    }
    return reply;
}

// A redirection that ends with this status.
CFault StatusOf(int status, const char* name, const char* target)
{
    return {name, CHttpReply(302).Header("Location", target), Empty(StatusLog(status)), {}, {kConnectError}};
}

std::vector<CFault> AllHeadFaults()
{
    const std::string ok = "HTTP/1.1 200 OK\r\n" + g_date;
    return {
        ReadAsLatest("NoLength", Latest().Without("Content-Length")),
        ReadAsLatest("NoContentType", Latest().Without("Content-Type")),
        ReadAsLatest("LengthThatIsNoNumber", Latest().Header("Content-Length", "many")),
        ReadAsLatest("NegativeLength", Latest().Header("Content-Length", "-1")),
        ReadAsLatest("LengthBeyond32Bits", Latest().Header("Content-Length", "99999999999999")),
        ReadAsLatest("TwoLengths", Latest().AddHeader("Content-Length", "5")),
        ReadAsLatest("TwoDates", Latest().AddHeader("Date", "Fri, 21 Jan 2011 14:03:07 GMT")),
        ReadAsLatest("HeaderWithoutAColon", Behind(ok + "nonsense\r\n")),
        ReadAsLatest("HeaderWithoutAName", Behind(ok + ": nonsense\r\n")),
        ReadAsLatest("HeaderOf20000Bytes", Latest().Header("X", std::string(20'000, 'x'))),
        ReadAsLatest("AThousandHeaders", ManyHeaders()),
        ReadAsLatest("LineEndsWithoutCarriageReturns",
                     CServerScript().Send(WithBareLineEnds(Latest().Head()) + g_latestInfo)),
        ReadAsLatest("OlderProtocol", Behind("HTTP/1.0 200 OK\r\n" + g_date)),
        ReadAsLatest("NewerProtocol", Behind("HTTP/2 200\r\n" + g_date)),
        ReadAsLatest("NoReasonInTheStatusLine", Behind("HTTP/1.1 200\r\n" + g_date)),
        {"StatusThatIsNoNumber",
         Behind("HTTP/1.1 OK OK\r\n" + g_date),
         Empty(StatusLog(0)),
         {},
         {kConnectError}},
        WithoutDate("BodyWithoutAHead", CServerScript().Send(g_latestInfo).Close()),
        WithoutDate("NoughtBytes", CServerScript().Send(std::string(2'000, '\0')).Close()),
        WithoutDate("EmptyDate", Latest().Header("Date", "")),
        ReadAsLatest("ContinueFirst",
                     CServerScript().Send("HTTP/1.1 100 Continue\r\n\r\n" + Latest().Bytes())),
        ReadAsLatest("CodingUnknown", Latest().Header("Content-Encoding", "br")),
        {"ChunkSizeThatIsNoNumber",
         Chunks("xyz\r\n" + g_latestInfo + "\r\n0\r\n\r\n"),
         EmptyTextLog(),
         {},
         {kConnectError}},
        ReadAsLatest("ChunkOf4GigabytesAnnounced", Chunks("ffffffff\r\n" + g_latestInfo)),
        ReadAsLatest("LastChunkMissing", CServerScript().Send(Latest().Chunked(7).Head() +
                                                              CutOff(Latest().Chunked(7).WireBody(), 5))),
        Status(206, "Status206"),
        Status(304, "Status304"),
        Status(401, "Status401"),
        Status(407, "Status407"),
        Status(999, "Status999"),
        Status(302, "RedirectWithoutATarget"),
        // Neither another scheme nor a file is followed.
        StatusOf(302, "RedirectToAFile", "file:///C:/windows/win.ini"),
        StatusOf(302, "RedirectToAnUnknownScheme", "orva:x"),
        // Read as a path, which the server does not have.
        StatusOf(404, "RedirectToNonsense", "http://["),
    };
}

} // namespace

std::vector<CFault> HeadFaults()
{
    std::vector<CFault> faults = AllHeadFaults();
    if (IsThorough())
    {
        const std::string bytes = Latest().Bytes();
        constexpr size_t kSlow = 8;
        faults.push_back(ReadAsLatest("TheLastEightBytesOneASecond",
                                      CServerScript()
                                          .Send(CutOff(bytes, kSlow))
                                          .SendSlowly(bytes.substr(bytes.size() - kSlow), 1, 1'000)));
    }
    const auto step = static_cast<size_t>(Repetitions(5, 1));
    std::vector<CFault> some;
    for (size_t i = 0; i < faults.size(); i += step)
    {
        some.push_back(std::move(faults[i]));
    }
    return some;
}

} // namespace orva::test
