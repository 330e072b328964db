// What the client of the update check asks of the Internet, call by call, and what it makes of failures.
#include "download/FakeWinInet.h"
#include "support/HttpFixture.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace orva::test
{
namespace
{

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using CLines = std::vector<std::string>;

constexpr char kUrl[] = "http://www.orva.example/downloads/outlook/UpdateInfo.txt";

const CLines kAllClosed{
    "InternetCloseHandle(request)",
    "InternetCloseHandle(connection)",
    "InternetCloseHandle(session)",
};

class HttpRequestCallsTest : public HttpFixture
{
protected:
    HttpRequestCallsTest()
    {
        m_winInet.headers = {
            {HTTP_QUERY_STATUS_CODE, L"200"},
            {HTTP_QUERY_DATE, L"Thu, 20 Jan 2011 14:03:07 GMT"},
            {HTTP_QUERY_CONTENT_TYPE, L"text/plain"},
        };
        m_winInet.body = {"{}"};
    }

    ~HttpRequestCallsTest() override { EXPECT_THAT(m_winInet.OpenHandles(), IsEmpty()); }

    CLines Lines(const CLines& functions) const { return m_gates.Lines(functions); }

    CCallGates m_gates;
    CFakeWinInet m_winInet{m_gates};
};

TEST_F(HttpRequestCallsTest, GetMakesTheseCallsInThisOrderAndSetsNoOptions)
{
    EXPECT_EQ(FetchUrl(kUrl).text, L"{}");
    CLines lines = Lines({"Internet", "HttpO", "HttpA", "HttpS"});
    EXPECT_THAT(
        lines,
        ElementsAre("InternetOpenW(\"\", 0, null, null, 0x0) = session",
                    "InternetConnectW(session, \"www.orva.example\", 80, null, null, 3, 0x0, context 0x1) = "
                    "connection",
                    "HttpOpenRequestW(connection, \"GET\", \"/downloads/outlook/UpdateInfo.txt?\", null, "
                    "null, null, 0xA4000800, context 0x1) = request",
                    "HttpAddRequestHeadersW(request, \"Accept-Encoding: gzip\", -1, 0x10000000)",
                    "HttpSendRequestW(request, null, 0, null, 0)", "InternetReadFile(request, 256000) = 2",
                    "InternetReadFile(request, 255998) = 0", "InternetCloseHandle(request)",
                    "InternetCloseHandle(connection)", "InternetCloseHandle(session)"));
}

// Each text is asked for twice, for its size and for itself; one that is not there once.
TEST_F(HttpRequestCallsTest, QueriesStatusDateContentEncodingAndContentType)
{
    FetchUrl(kUrl);
    EXPECT_THAT(Lines({"HttpQueryInfoW"}), ElementsAre("HttpQueryInfoW(request, 19, 0 bytes) = error 122",
                                                       "HttpQueryInfoW(request, 19, 8 bytes)",
                                                       "HttpQueryInfoW(request, 9, 0 bytes) = error 122",
                                                       "HttpQueryInfoW(request, 9, 60 bytes)",
                                                       "HttpQueryInfoW(request, 29, 0 bytes) = error 12150",
                                                       "HttpQueryInfoW(request, 1, 0 bytes) = error 122",
                                                       "HttpQueryInfoW(request, 1, 22 bytes)"));
}

TEST_F(HttpRequestCallsTest, HttpsIsSecureAtItsOwnPort)
{
    FetchUrl("https://www.orva.example/a");
    EXPECT_THAT(
        Lines({"InternetConnectW", "HttpOpenRequestW"}),
        ElementsAre("InternetConnectW(session, \"www.orva.example\", 443, null, null, 3, 0x0, context "
                    "0x1) = connection",
                    "HttpOpenRequestW(connection, \"GET\", \"/a?\", null, null, null, 0xA4800800, "
                    "context 0x1) = request"));
}

TEST_F(HttpRequestCallsTest, AnExplicitPortIsConnectedTo)
{
    FetchUrl("https://www.orva.example:8443/a");
    EXPECT_THAT(Lines({"InternetConnectW"}),
                ElementsAre("InternetConnectW(session, \"www.orva.example\", 8443, null, null, 3, 0x0, "
                            "context 0x1) = connection"));
}

TEST_F(HttpRequestCallsTest, PostSendsAsManyBytesAsTheTextHasCharacters)
{
    CHttpRequest::PerformTextRequest(kUrl, {{"b", "2"}, {"a", "1"}}, kPost);
    EXPECT_THAT(Lines({"HttpOpenRequestW", "HttpS"}),
                ElementsAre("HttpOpenRequestW(connection, \"POST\", "
                            "\"/downloads/outlook/UpdateInfo.txt?a=1&b=2\", null, null, null, 0xA4000800, "
                            "context 0x1) = request",
                            "HttpSendRequestW(request, \"Content-Type: application/x-www-form-urlencoded\", "
                            "47, {61 00 3D 00 31 00 26}, 7)"));
}

TEST_F(HttpRequestCallsTest, DeleteHasNoBody)
{
    CHttpRequest::PerformTextRequest(kUrl, {}, kDelete);
    EXPECT_THAT(Lines({"HttpOpenRequestW", "HttpS"}),
                ElementsAre("HttpOpenRequestW(connection, \"DELETE\", "
                            "\"/downloads/outlook/UpdateInfo.txt?\", null, null, null, 0xA4000800, context "
                            "0x1) = request",
                            "HttpSendRequestW(request, null, 0, null, 0)"));
}

TEST_F(HttpRequestCallsTest, OtherVerbsOpenARequestAndDoNotSendIt)
{
    for (const int verb : {2, 3, 4, 6})
    {
        EXPECT_THROW(CHttpRequest::PerformRequest(kUrl, {}, verb), std::out_of_range);
    }
    EXPECT_EQ(Lines({"HttpOpenRequestW"}).size(), 4U);
    EXPECT_THAT(Lines({"HttpS"}), IsEmpty());
}

TEST_F(HttpRequestCallsTest, ReadsNoMoreThan256000Bytes)
{
    m_winInet.body = {std::string(200'000, 'x'), std::string(100'000, 'y')};
    EXPECT_EQ(FetchUrl(kUrl).text, std::wstring(200'000, L'x') + std::wstring(56'000, L'y'));
    EXPECT_THAT(Lines({"InternetReadFile"}), ElementsAre("InternetReadFile(request, 256000) = 200000",
                                                         "InternetReadFile(request, 56000) = 56000"));
}

TEST_F(HttpRequestCallsTest, TheBodyOfAnotherStatusIsNotRead)
{
    m_winInet.headers[HTTP_QUERY_STATUS_CODE] = L"404";
    EXPECT_EQ(FetchUrl(kUrl).status, 404U);
    EXPECT_THAT(Lines({"InternetReadFile"}), IsEmpty());
    EXPECT_THAT(Lines({"InternetClose"}), ElementsAreArray(kAllClosed));
}

TEST_F(HttpRequestCallsTest, AMissingDateReachesTheCallerWithAllHandlesClosed)
{
    m_winInet.headers.erase(HTTP_QUERY_DATE);
    EXPECT_THROW(FetchUrl(kUrl), std::out_of_range);
    EXPECT_THAT(Lines({"InternetClose"}), ElementsAreArray(kAllClosed));
}

TEST_F(HttpRequestCallsTest, AUrlThatCannotBeCrackedOpensNoConnection)
{
    EXPECT_EQ(FetchUrl("no url").lines, FailureLines("Caught exception Could not parse url"));
    EXPECT_THAT(Lines({}), ElementsAre("InternetOpenW(\"\", 0, null, null, 0x0) = session",
                                       "InternetCloseHandle(session)"));
}

TEST_F(HttpRequestCallsTest, ASessionThatCannotBeOpenedReachesTheCaller)
{
    m_gates.Fail({"InternetOpenW", 1}, ERROR_INTERNET_OUT_OF_HANDLES);
    DWORD error = 0;
    try
    {
        CHttpRequest::PerformTextRequest(kUrl, {}, kGet);
    }
    catch (CInternetException* exception)
    {
        error = exception->m_dwError;
        exception->Delete();
    }
    EXPECT_EQ(error, DWORD{ERROR_INTERNET_OUT_OF_HANDLES});
    EXPECT_EQ(Lines({}).size(), 1U);
}

TEST_F(HttpRequestCallsTest, AHeaderThatCannotBeAddedDoesNotMatter)
{
    m_gates.Fail({"HttpAddRequestHeadersW", 1}, ERROR_HTTP_INVALID_HEADER);
    EXPECT_EQ(FetchUrl(kUrl).text, L"{}");
}

/// A call that fails, and how many of the handles have been opened by then.
struct FailingCall
{
    CallId call;
    size_t handles;
    bool isDateKnown;
};

void PrintTo(const FailingCall& failing, std::ostream* stream)
{
    *stream << failing.call.function << failing.call.number;
}

class HttpRequestFailingCallTest : public HttpRequestCallsTest,
                                   public testing::WithParamInterface<FailingCall>
{
};

TEST_P(HttpRequestFailingCallTest, IsLoggedAndGivesAnEmptyTextAndAllHandlesBack)
{
    m_gates.Fail(GetParam().call, ERROR_INTERNET_TIMEOUT);
    const Fetched fetched = FetchUrl(kUrl);
    EXPECT_EQ(fetched.text, L"");
    EXPECT_EQ(fetched.status, 4294967295U);
    EXPECT_EQ(fetched.date.tm_year, GetParam().isDateKnown ? 111 : 0);
    EXPECT_EQ(fetched.lines,
              FailureLines("Caught CInternetException " + InternetErrorText(ERROR_INTERNET_TIMEOUT)));
    EXPECT_THAT(Lines({"InternetClose"}),
                ElementsAreArray(kAllClosed.end() - static_cast<std::ptrdiff_t>(GetParam().handles),
                                 kAllClosed.end()));
}

INSTANTIATE_TEST_SUITE_P(Calls, HttpRequestFailingCallTest,
                         testing::Values(FailingCall{{"InternetConnectW", 1}, 1, false},
                                         FailingCall{{"HttpOpenRequestW", 1}, 2, false},
                                         FailingCall{{"HttpSendRequestW", 1}, 3, false},
                                         FailingCall{{"InternetReadFile", 1}, 3, true},
                                         FailingCall{{"InternetReadFile", 2}, 3, true}));

} // namespace
} // namespace orva::test
