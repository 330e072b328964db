// What the HTTP client does when servers, networks and URLs fail.
#include "harness/ImportHook.h"
#include "support/HttpFixture.h"

#include <stdexcept>

namespace
{

using namespace orva::test;
using testing::ElementsAre;
using testing::IsEmpty;

class HttpFaults : public HttpFixture
{
protected:
    static void ExpectFailure(const Fetched& fetched, const std::string& reason)
    {
        EXPECT_EQ(fetched.text, L"");
        EXPECT_EQ(fetched.status, 4294967295u);
        EXPECT_EQ(fetched.date.tm_year, 0);
        EXPECT_EQ(fetched.lines, FailureLines(reason));
    }

    static void ExpectInternetError(const Fetched& fetched, DWORD error)
    {
        ASSERT_NE(InternetErrorText(error), "");
        ExpectFailure(fetched, "Caught CInternetException " + InternetErrorText(error));
    }

    // Returns the exception's text, and in `lines` the log up to it.
    std::string OutOfRange(CServerScript script, std::vector<std::string>& lines)
    {
        const CDebugOutput output;
        try
        {
            m_server.OnNext("/file", std::move(script));
            CHttpRequest::PerformTextRequest(m_server.Url("/file"), {}, kGet);
        }
        catch (const std::out_of_range& error)
        {
            lines = output.Lines();
            return error.what();
        }
        return "no error";
    }
};

HINTERNET WINAPI OpenNoSession(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD)
{
    SetLastError(ERROR_INTERNET_OUT_OF_HANDLES);
    return nullptr;
}

constexpr char kTooShort[] = "invalid vector<T> subscript";

} // namespace

TEST_F(HttpFaults, TheShortestFormWritesItsEntriesBeforeTheFailure)
{
    const CDebugOutput output;
    EXPECT_EQ(CHttpRequest::PerformTextRequest("x", {}, kGet), L"");
    EXPECT_THAT(output.Lines(),
                ElementsAre("CHttpRequest::PerformTextRequest", "CHttpRequest::PerformTextRequest",
                            "CHttpRequest::PerformTextRequest",
                            "CHttpRequest::PerformRequest() Caught exception Could not parse url",
                            "CHttpRequest::PerformTextRequest() response content lenght 0",
                            "CHttpRequest::PerformTextRequest() response httpStatus -1",
                            "CHttpRequest::PerformTextRequest() newContentLenght 0",
                            "CHttpRequest::PerformTextRequest() num_chars 0",
                            "CHttpRequest::PerformTextRequest() delete resp ",
                            "CHttpRequest::PerformTextRequest() deleted resp "));
}

TEST_F(HttpFaults, ASessionThatCannotBeOpenedReachesTheCaller)
{
    const CImportHook noSession(GetModuleHandleW(nullptr), "wininet.dll", "InternetOpenW", &OpenNoSession);
    const CDebugOutput output;
    DWORD error = ERROR_SUCCESS;
    try
    {
        CHttpRequest::PerformTextRequest(m_server.Url("/a"), {}, kGet);
    }
    catch (CInternetException* exception)
    {
        error = exception->m_dwError;
        exception->Delete();
    }
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_INTERNET_OUT_OF_HANDLES));
    EXPECT_THAT(output.Lines(),
                ElementsAre("CHttpRequest::PerformTextRequest", "CHttpRequest::PerformTextRequest",
                            "CHttpRequest::PerformTextRequest"));
    EXPECT_THAT(m_server.Requests(), IsEmpty());
}

TEST_F(HttpFaults, ARefusedConnectionFails)
{
    const CRefusingPort port;
    ExpectInternetError(FetchUrl("http://127.0.0.1:" + std::to_string(port.Port()) + "/"),
                        ERROR_INTERNET_CANNOT_CONNECT);
}

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

TEST_F(HttpFaults, AResetConnectionFails)
{
    try
    {
        ExpectInternetError(Fetch(CServerScript().Reset()), ERROR_INTERNET_CONNECTION_ABORTED);
    }
    catch (const std::out_of_range& error)
    {
        // On a loaded machine Wine now and then takes the reset for the orderly end of a response without a
        // date.
        EXPECT_STREQ(error.what(), kTooShort);
    }
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
    std::vector<std::string> lines;
    EXPECT_EQ(OutOfRange(CHttpReply(200, "{}").WithoutDate(), lines), kTooShort);
    EXPECT_THAT(lines, ElementsAre("CHttpRequest::PerformTextRequest", "CHttpRequest::PerformTextRequest",
                                   "CHttpRequest::PerformTextRequest"));
    EXPECT_EQ(OutOfRange(CHttpReply(404).WithoutDate(), lines), kTooShort);
}

TEST_F(HttpFaults, ADateOfFewerThanSevenPartsIsOutOfRange)
{
    std::vector<std::string> lines;
    EXPECT_EQ(OutOfRange(CHttpReply(200, "{}").Header("Date", "Sunday, 06-Nov-94 08:49:37 GMT"), lines),
              kTooShort);
    EXPECT_EQ(OutOfRange(CHttpReply(200, "{}").Header("Date", "now"), lines), kTooShort);
}

TEST_F(HttpFaults, AServerThatClosesWithoutAResponseHasNoDate)
{
    std::vector<std::string> lines;
    EXPECT_EQ(OutOfRange(CServerScript().Close(), lines), kTooShort);
    EXPECT_EQ(OutOfRange(CServerScript().Send("garbage\r\n\r\n").Close(), lines), kTooShort);
}

TEST_F(HttpFaults, AnExceptionLeavesNoConnectionOpen)
{
    std::vector<std::string> lines;
    const std::string head = CHttpReply(200).WithoutDate().ContentLength(1'000).Head();
    EXPECT_EQ(OutOfRange(CServerScript().Send(head).Stall(), lines), kTooShort);
    EXPECT_TRUE(m_server.WaitUntilIdle());
}

// WinINet decides whether a body is complete: whatever it delivers without an error is used.
TEST_F(HttpFaults, ABodyThatStopsHalfWayGivesWhatHasCome)
{
    const Fetched fetched = Fetch(CHttpReply(200, "{\"a\":1").ContentLength(1'000));
    EXPECT_EQ(fetched.text, L"{\"a\":1");
    EXPECT_EQ(fetched.status, 200u);
}

TEST_F(HttpFaults, AContentLengthThatIsTooSmallIsNoFailure)
{
    const Fetched fetched = Fetch(CHttpReply(200, "{\"a\":1}").ContentLength(3));
    EXPECT_EQ(fetched.text.substr(0, 3), L"{\"a");
    EXPECT_EQ(fetched.status, 200u);
}
