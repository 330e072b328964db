// Unusual, broken, slow and cut replies, over the system's WinINet: what the text forms read from them. Where
// WinINet decides, the outcome is Wine's; Windows may report an error instead.
#include "harness/Thorough.h"
#include "support/HttpFixture.h"

#include <ostream>
#include <stdexcept>

namespace orva::test
{

namespace
{

using testing::ValuesIn;

constexpr char kText[] = R"({"x64":{"majorVersion":1}})";
constexpr char kOk[] = "HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan 2011 14:03:07 GMT\r\n";
// The outcome of a reply without a date: the exception, and no status.
constexpr char kNoDate[] = "exception: invalid vector<T> subscript";
constexpr std::uint32_t kNoStatus = 12345;
// The status of a request that failed.
constexpr std::uint32_t kFailed = 4294967295;
// How long a stalling server pauses, in milliseconds.
constexpr DWORD kStall = 200;

const CHttpReply g_reply(200, kText);

// A server's behaviour and what is read of it.
struct CServed
{
    const char* name;
    CServerScript script;
    std::string text = kText;
    std::uint32_t status = 200;
};

void PrintTo(const CServed& served, std::ostream* out)
{
    *out << served.name;
}

std::string NameOf(const testing::TestParamInfo<CServed>& info)
{
    return info.param.name;
}

// A reply with these head lines and the text as its body.
CServerScript Behind(const std::string& head)
{
    return CServerScript().Send(head + "\r\n" + kText).Close();
}

CServerScript Chunks(const std::string& body)
{
    return CServerScript().Send(std::string(kOk) + "Transfer-Encoding: chunked\r\n\r\n" + body);
}

std::string WithBareLineEnds(std::string text)
{
    std::erase(text, '\r');
    return text;
}

CHttpReply ManyHeaders()
{
    CHttpReply reply = g_reply;
    for (int i = 0; i < 1'000; ++i)
    {
        reply.AddHeader("X-" + std::to_string(i), "x");
    }
    return reply;
}

// The reply, with this pause behind its first `size` bytes.
CServerScript WithPause(size_t size)
{
    const std::string bytes = g_reply.Bytes();
    return CServerScript().Send(bytes.substr(0, size)).Pause(kStall).Send(bytes.substr(size));
}

std::vector<CServed> ReadReplies()
{
    const std::string ok = kOk;
    const std::string chunked = CHttpReply(g_reply).Chunked(7).Bytes();
    std::vector<CServed> replies = {
        {"LengthThatIsNoNumber", CHttpReply(g_reply).Header("Content-Length", "many")},
        {"NegativeLength", CHttpReply(g_reply).Header("Content-Length", "-1")},
        {"LengthBeyond32Bits", CHttpReply(g_reply).Header("Content-Length", "99999999999999")},
        // Wine counts only what comes after the first packet. Windows counts every byte, and cuts the text.
        {"LengthShorterThanTheBody", CHttpReply(g_reply).ContentLength(20)},
        {"TwoLengths", CHttpReply(g_reply).AddHeader("Content-Length", "5")},
        {"TwoDates", CHttpReply(g_reply).AddHeader("Date", "Fri, 21 Jan 2011 14:03:07 GMT")},
        {"HeaderWithoutAColon", Behind(ok + "nonsense\r\n")},
        {"HeaderWithoutAName", Behind(ok + ": nonsense\r\n")},
        {"HeaderOf20000Bytes", CHttpReply(g_reply).Header("X", std::string(20'000, 'x'))},
        {"AThousandHeaders", ManyHeaders()},
        {"LineEndsWithoutCarriageReturns", CServerScript().Send(WithBareLineEnds(g_reply.Head()) + kText)},
        {"OlderProtocol", Behind("HTTP/1.0 200 OK\r\n" + ok.substr(ok.find("Date")))},
        {"NewerProtocol", Behind("HTTP/2 200\r\n" + ok.substr(ok.find("Date")))},
        {"NoReasonInTheStatusLine", Behind("HTTP/1.1 200\r\n" + ok.substr(ok.find("Date")))},
        {"ContinueFirst", CServerScript().Send("HTTP/1.1 100 Continue\r\n\r\n" + g_reply.Bytes())},
        {"ChunkOf4GigabytesAnnounced", Chunks("ffffffff\r\n" + std::string(kText))},
        {"LastChunkMissing", CServerScript().Send(chunked.substr(0, chunked.size() - 5))},
        {"OneByteAtATime", CServerScript().SendSlowly(g_reply.Bytes(), 1, 1)},
        {"StallInTheHead", WithPause(40)},
        {"StallInTheBody", WithPause(g_reply.Head().size() + 10)},
        {"ChunkSizeThatIsNoNumber", Chunks("xyz\r\n" + std::string(kText) + "\r\n0\r\n\r\n"), ""},
        {"StallInTheBodyThenClosed", CServerScript().Send(g_reply.Head() + "{\"x64\"").Pause(kStall).Close(),
         "{\"x64\""},
        {"StatusThatIsNoNumber", Behind("HTTP/1.1 OK OK\r\n" + ok.substr(ok.find("Date"))), "", 0},
        {"StallThenClosed", CServerScript().Pause(kStall).Close(), kNoDate, kNoStatus},
        {"BodyWithoutAHead", CServerScript().Send(kText).Close(), kNoDate, kNoStatus},
        {"NoughtBytes", CServerScript().Send(std::string(2'000, '\0')).Close(), kNoDate, kNoStatus},
        {"EmptyDate", CHttpReply(g_reply).Header("Date", ""), kNoDate, kNoStatus},
        {"Redirection", CHttpReply(302), "", 302},
        // Neither another scheme nor a file is followed.
        {"RedirectionToAFile", CHttpReply(302).Header("Location", "file:///C:/windows/win.ini"), "", 302},
        {"RedirectionToAnUnknownScheme", CHttpReply(302).Header("Location", "orva:x"), "", 302},
        {"RedirectionToNonsense", CHttpReply(302).Header("Location", "http://["), "", kFailed},
        {"NotModified", CHttpReply(304), "", 304},
        {"PasswordWanted", CHttpReply(401, kText), "", 401},
        {"Forbidden", CHttpReply(403, kText), "", 403},
        {"PasswordWantedByAProxy", CHttpReply(407, kText), "", 407},
        {"UnknownStatus", CHttpReply(999, kText), "", 999},
    };
    if (IsThorough())
    {
        const std::string bytes = g_reply.Bytes();
        const size_t first = bytes.size() - 8;
        replies.push_back(
            {"TheLastEightBytesOneASecond",
             CServerScript().Send(bytes.substr(0, first)).SendSlowly(bytes.substr(first), 1, 1'000)});
    }
    return replies;
}

class HttpRepliesTest : public HttpFixture
{
protected:
    // The text, or the exception's text with "exception: " before it.
    std::string Outcome(CServerScript script)
    {
        try
        {
            m_fetched = Fetch(std::move(script));
        }
        catch (const std::out_of_range& exception)
        {
            m_fetched = {};
            return std::string("exception: ") + exception.what();
        }
        return std::string(m_fetched.text.begin(), m_fetched.text.end());
    }

    Fetched m_fetched;
};

class HttpReadReplyTest : public HttpRepliesTest, public testing::WithParamInterface<CServed>
{
};

class HttpResetTest : public HttpRepliesTest, public testing::WithParamInterface<CServed>
{
};

std::vector<CServed> Resets()
{
    const std::string head = g_reply.Head();
    const std::string part = "{\"x64\"";
    return {
        {"BeforeTheRequest", CServerScript(), kNoDate},
        {"InTheHead", CServerScript().Send(head.substr(0, 30)).Reset(), kNoDate},
        {"AfterAStall", CServerScript().Pause(kStall).Reset(), kNoDate},
        {"InTheBody", CServerScript().Send(head + part).Reset(), part},
        {"InTheBodyAfterAStall", CServerScript().Send(head + part).Pause(kStall).Reset(), part},
    };
}

INSTANTIATE_TEST_SUITE_P(Replies, HttpReadReplyTest, ValuesIn(ReadReplies()), NameOf);
INSTANTIATE_TEST_SUITE_P(Places, HttpResetTest, ValuesIn(Resets()), NameOf);

} // namespace

TEST_P(HttpReadReplyTest, GivesItsTextAndStatus)
{
    EXPECT_EQ(Outcome(GetParam().script), GetParam().text);
    EXPECT_EQ(m_fetched.status, GetParam().status);
}

// The system reports a reset once. Where Wine's server has taken that report, WinINet reads the end of the
// connection instead.
TEST_P(HttpResetTest, IsAFailureOrTheEndOfTheReply)
{
    if (GetParam().script.Actions().empty())
    {
        // Closed with the request unread, which is a reset too.
        m_server.OnConnection(CServerScript());
    }
    const std::string outcome = Outcome(GetParam().script);
    if (m_fetched.status == kFailed)
    {
        EXPECT_EQ(outcome, "");
        // In the body it is the socket's own error.
        const std::string error = GetParam().text == kNoDate
                                      ? InternetErrorText(ERROR_INTERNET_CONNECTION_ABORTED)
                                      : "Connection reset by peer.\r\n";
        EXPECT_EQ(m_fetched.lines, FailureLines("Caught CInternetException " + error));
    }
    else
    {
        EXPECT_EQ(outcome, GetParam().text);
    }
}

// WinINet takes the header lines that have come whole, and the connection's end for the head's and the
// body's.
TEST_F(HttpRepliesTest, AReplyCutAtAnyByteGivesWhatHasCome)
{
    const std::string bytes = g_reply.Bytes();
    const size_t date = bytes.find("\r\n", bytes.find("Date:")) + 2;
    const size_t head = g_reply.Head().size();
    for (size_t size = 0; size <= bytes.size(); ++size)
    {
        SCOPED_TRACE(size);
        const std::string expected = size < date   ? kNoDate
                                     : size < head ? ""
                                                   : bytes.substr(head, size - head);
        ASSERT_EQ(Outcome(CServerScript().Send(bytes.substr(0, size)).Close()), expected);
        ASSERT_EQ(m_fetched.status, size < date ? kNoStatus : 200u);
    }
}

} // namespace orva::test
