// What the HTTP client does when servers, networks and URLs fail.
#include "support/HttpFixture.h"

#include <stdexcept>

namespace
{

using namespace orva::test;
using testing::ElementsAre;

constexpr char kTooShort[] = "invalid vector<T> subscript";
constexpr char kEntry[] = "CHttpRequest::PerformTextRequest";

class HttpFaults : public HttpFixture
{
protected:
    static void ExpectInternetError(const Fetched& fetched, DWORD error)
    {
        ASSERT_NE(InternetErrorText(error), "");
        EXPECT_EQ(fetched.text, L"");
        EXPECT_EQ(fetched.status, 4294967295u);
        EXPECT_EQ(fetched.date.tm_year, 0);
        EXPECT_EQ(fetched.lines, FailureLines("Caught CInternetException " + InternetErrorText(error)));
    }

    // The text of the exception that reaches the caller of the shortest form, which has logged only its
    // entries by then.
    std::string Exception(CServerScript script)
    {
        const CDebugOutput output;
        m_server.OnNext("/file", std::move(script));
        try
        {
            CHttpRequest::PerformTextRequest(m_server.Url("/file"), {}, kGet);
        }
        catch (const std::out_of_range& error)
        {
            EXPECT_THAT(output.Lines(), ElementsAre(kEntry, kEntry, kEntry));
            return error.what();
        }
        return "none";
    }
};

} // namespace

TEST_F(HttpFaults, AServerThatHasGoneDownFails)
{
    m_server.On("/a", CHttpReply(200, "{}"));
    const std::string url = m_server.Url("/a");
    EXPECT_EQ(FetchUrl(url).text, L"{}");
    m_server.Refuse();
    ExpectInternetError(FetchUrl(url), ERROR_INTERNET_CANNOT_CONNECT);
}

TEST_F(HttpFaults, AHostNameThatCannotBeResolvedFails)
{
    // No name server has to be asked for a name with an empty part.
    ExpectInternetError(FetchUrl("http://no..name/a"), ERROR_INTERNET_NAME_NOT_RESOLVED);
}

// WinINet on Windows ends such a request after a few redirections. Wine follows them without limit, so the
// server stops after 30. Its last reply is late, which must not end the request.
TEST_F(HttpFaults, RedirectionsHaveNoOtherBoundThanWinInets)
{
    constexpr size_t kRedirections = 30;
    for (size_t i = 0; i < kRedirections; ++i)
    {
        m_server.OnNext("/loop", CHttpReply(301).Header("Location", m_server.Url("/loop")));
    }
    m_server.On("/loop", CServerScript().Pause(100).Send(CHttpReply(200, "{}").Bytes()).Close());
    EXPECT_EQ(FetchUrl(m_server.Url("/loop")).text, L"{}");
    EXPECT_EQ(m_server.RequestsFor("/loop").size(), kRedirections + 1);
}

TEST_F(HttpFaults, ARedirectionToNowhereFails)
{
    const CRefusingPort port;
    ExpectInternetError(
        Fetch(CHttpReply(302).Header("Location", "http://127.0.0.1:" + std::to_string(port.Port()) + "/")),
        ERROR_INTERNET_CANNOT_CONNECT);
}

TEST_F(HttpFaults, AMissingDateIsOutOfRangeAndReachesTheCaller)
{
    EXPECT_EQ(Exception(CHttpReply(200, "{}").WithoutDate()), kTooShort);
    EXPECT_EQ(Exception(CHttpReply(404).WithoutDate()), kTooShort);
    EXPECT_EQ(Exception(CHttpReply(200, "{}").Header("Date", "now")), kTooShort);
    EXPECT_EQ(Exception(CServerScript().Send("garbage\r\n\r\n").Close()), kTooShort);
}

TEST_F(HttpFaults, AnExceptionLeavesNoConnectionOpen)
{
    const std::string head = CHttpReply(200).WithoutDate().ContentLength(1'000).Head();
    EXPECT_EQ(Exception(CServerScript().Send(head).Stall()), kTooShort);
    EXPECT_TRUE(m_server.WaitUntilIdle());
}
