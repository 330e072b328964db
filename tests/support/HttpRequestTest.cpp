// What the HTTP client sends: request line, headers, body, agent, and over which kind of connection.
#include "support/HttpFixture.h"

#include <afxwin.h>

#include <oleauto.h>

namespace
{

using namespace orva::test;
using testing::ElementsAre;
using testing::IsEmpty;

class HttpRequest : public HttpFixture
{
protected:
    HttpRequest() { m_server.OnOther(CHttpReply(200, "{}")); }

    CHttpRecord Sent(const std::string& path, CHttpRequest::Parameters params, int verb)
    {
        CHttpRequest::PerformTextRequest(m_server.Url(path), std::move(params), verb);
        return m_server.Requests().back();
    }
};

} // namespace

// The order of the headers is WinINet's.
TEST_F(HttpRequest, TheUpdateChecksRequestIsThisByteForByte)
{
    EXPECT_EQ(Sent("/downloads/outlook/UpdateInfo.txt", {}, kGet).raw,
              "GET /downloads/outlook/UpdateInfo.txt? HTTP/1.1\r\n"
              "Accept-Encoding: gzip\r\n"
              "Host: 127.0.0.1:" +
                  std::to_string(m_server.Port()) +
                  "\r\n"
                  "User-Agent: \r\n"
                  "\r\n");
}

TEST_F(HttpRequest, AppendsParametersInTheOrderOfTheirKeysWithoutEncoding)
{
    EXPECT_EQ(Sent("/a", {{"b", "2"}, {"a", "1"}}, kGet).target, "/a?a=1&b=2");
    EXPECT_EQ(Sent("/a", {{"key", "x=y&z;/?:@+%41"}}, kGet).target, "/a?key=x=y&z;/?:@+%41");
    EXPECT_EQ(Sent("/a", {{"", ""}}, kGet).target, "/a?=");
}

TEST_F(HttpRequest, PostWidensItsBodyWithTheCodePage)
{
    const CHttpRecord sent = Sent("/a", {{"a", "\x80\xE4"}}, kPost);
    EXPECT_EQ(sent.body, std::string("a\0=\0", 4));
    // 80 is U+20AC in code page 1252.
    EXPECT_EQ(Sent("/a", {{"\x80", "\xE4"}}, kPost).body, std::string("\xAC\x20=", 3));
}

TEST_F(HttpRequest, PostWithoutParametersHasAnEmptyBody)
{
    const CHttpRecord sent = Sent("/a", {}, kPost);
    EXPECT_EQ(sent.requestLine, "POST /a? HTTP/1.1");
    EXPECT_EQ(sent.Header("Content-Length"), "0");
    EXPECT_EQ(sent.body, "");
}

TEST_F(HttpRequest, HttpsTakesOnlyTls)
{
    // Plain text is sent at once, which is no answer to a TLS handshake.
    m_server.OnConnection(CServerScript().Send(CHttpReply(200, "{}").Bytes()).Close());
    const std::string authority = "127.0.0.1:" + std::to_string(m_server.Port());
    EXPECT_EQ(FetchUrl("http://" + authority).text, L"{}");
    const Fetched fetched = FetchUrl("https://" + authority);
    EXPECT_EQ(fetched.text, L"");
    EXPECT_EQ(fetched.status, 4294967295u);
    ASSERT_EQ(fetched.lines.size(), 8u);
    EXPECT_THAT(fetched.lines[1],
                testing::StartsWith("CHttpRequest::PerformRequest() Caught CInternetException "));
}

TEST_F(HttpRequest, FollowsARedirection)
{
    m_server.On("/old", CHttpReply(302).Header("Location", m_server.Url("/new")));
    m_server.On("/new", CHttpReply(200, "{\"a\":1}"));
    EXPECT_EQ(FetchUrl(m_server.Url("/old")).text, L"{\"a\":1}");
}

TEST_F(HttpRequest, EveryCallAsksTheServerAgainAndLeavesNothingInTheCache)
{
    m_server.On("/a", CHttpReply(200, "{}")
                          .Header("Cache-Control", "max-age=3600")
                          .Header("Last-Modified", "Wed, 19 Jan 2011 14:03:07 GMT")
                          .KeepAlive());
    Sent("/a", {}, kGet);
    Sent("/a", {}, kGet);
    EXPECT_EQ(m_server.RequestsFor("/a").size(), 2u);
    const std::string url = m_server.Url("/a?");
    DWORD size = 0;
    EXPECT_FALSE(GetUrlCacheEntryInfoA(url.c_str(), nullptr, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(HttpRequest, TheAgentIsTheApplicationNameUntilATextOrBinaryRequestClearsIt)
{
    const LPCWSTR before = AfxGetModuleState()->m_lpszCurrentAppName;
    AfxGetModuleState()->m_lpszCurrentAppName = L"Application";
    CHttpRequest::PerformRequest(m_server.Url("/a"), {}, kGet);
    EXPECT_EQ(m_server.Requests().back().Header("User-Agent"), "Application");

    SAFEARRAY* bytes = nullptr;
    CHttpRequest::PerformBinaryRequest(m_server.Url("/a"), {}, kGet, bytes);
    SafeArrayDestroy(bytes);
    EXPECT_EQ(m_server.Requests().back().Header("User-Agent"), "");
    EXPECT_STREQ(AfxGetModuleState()->m_lpszCurrentAppName, L"");

    AfxGetModuleState()->m_lpszCurrentAppName = L"Application";
    EXPECT_EQ(Sent("/a", {}, kGet).Header("User-Agent"), "");
    EXPECT_STREQ(AfxGetModuleState()->m_lpszCurrentAppName, L"");

    CHttpRequest::PerformRequest(m_server.Url("/a"), {}, kGet);
    EXPECT_EQ(m_server.Requests().back().Header("User-Agent"), "");
    AfxGetModuleState()->m_lpszCurrentAppName = before;
}

TEST_F(HttpRequest, SetParameterStoresAndReplaces)
{
    CHttpRequest::Parameters params;
    CHttpRequest::SetParameter(params, "b", "1");
    CHttpRequest::SetParameter(params, "a", "2");
    CHttpRequest::SetParameter(params, "b", "3");
    EXPECT_THAT(params, ElementsAre(std::pair("a", "2"), std::pair("b", "3")));
}

TEST_F(HttpRequest, TheResponseHoldsBodyStatusTypeAndDate)
{
    m_server.On("/a",
                CHttpReply(201, std::string("a\0b", 3)).Header("Content-Type", "text/plain; charset=utf-8"));
    const CDebugOutput output;
    const auto response = CHttpRequest::PerformRequest(m_server.Url("/a"), {}, kGet);
    EXPECT_THAT(output.Lines(), IsEmpty());
    ASSERT_NE(response->m_data, nullptr);
    EXPECT_EQ(response->m_length, 3u);
    EXPECT_EQ(std::string(response->m_data.get(), 4), std::string("a\0b\0", 4));
    EXPECT_EQ(response->m_status, 201u);
    EXPECT_EQ(response->m_contentType, "text/plain; charset=utf-8");
    EXPECT_EQ(response->m_date.tm_year, 111);
    EXPECT_EQ(response->m_date.tm_sec, 7);
}

TEST_F(HttpRequest, TheResponseOfAnotherStatusHoldsStatusAndDateOnly)
{
    m_server.On("/a", CHttpReply(404, "not found"));
    const auto response = CHttpRequest::PerformRequest(m_server.Url("/a"), {}, kGet);
    EXPECT_EQ(response->m_data, nullptr);
    EXPECT_EQ(response->m_length, 0u);
    EXPECT_EQ(response->m_status, 404u);
    EXPECT_EQ(response->m_contentType, "");
    EXPECT_EQ(response->m_date.tm_year, 111);
}

TEST_F(HttpRequest, ABinaryRequestGivesTheBytesAndWritesNothing)
{
    const std::string body("\0\xFF"
                           "a",
                           3);
    m_server.On("/a", CHttpReply(200, body));
    const CDebugOutput output;
    SAFEARRAY* array = nullptr;
    ASSERT_EQ(CHttpRequest::PerformBinaryRequest(m_server.Url("/a"), {}, kGet, array), S_OK);
    EXPECT_THAT(output.Lines(), IsEmpty());

    LONG upper = -1;
    void* data = nullptr;
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
    ASSERT_EQ(upper, 2);
    ASSERT_EQ(SafeArrayAccessData(array, &data), S_OK);
    EXPECT_EQ(std::string(static_cast<const char*>(data), 3), body);
    SafeArrayUnaccessData(array);
    EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST_F(HttpRequest, ABinaryRequestWithoutABodyFails)
{
    m_server.On("/a", CHttpReply(404, "not found"));
    SAFEARRAY* array = nullptr;
    EXPECT_EQ(CHttpRequest::PerformBinaryRequest(m_server.Url("/a"), {}, kGet, array), E_FAIL);
    EXPECT_EQ(CHttpRequest::PerformBinaryRequest("no url", {}, kGet, array), E_FAIL);
    EXPECT_EQ(array, nullptr);
}
