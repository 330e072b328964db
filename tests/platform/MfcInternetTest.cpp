// The Internet classes against a server on loopback: what is sent, what comes back, how failures are thrown.
#include "harness/LoopbackServer.h"
#include "harness/ProxySetting.h"
#include "harness/Text.h"

#include <afxinet.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace
{

using orva::test::CHttpRecord;
using orva::test::CHttpReply;
using orva::test::CLoopbackServer;
using orva::test::CNoProxy;
using orva::test::CProxySetting;
using orva::test::CRefusingPort;
using orva::test::CServerScript;
using orva::test::Utf8;

constexpr DWORD kFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE;

struct CInternetFailure
{
    DWORD error;
    DWORD_PTR context;
};

// Runs `action`; the CInternetException* it threw, if any.
template <typename F> std::optional<CInternetFailure> FailureOf(F action)
{
    try
    {
        action();
    }
    catch (CInternetException* exception)
    {
        const CInternetFailure failure = {exception->m_dwError, exception->m_dwContext};
        exception->Delete();
        return failure;
    }
    return std::nullopt;
}

class MfcInternet : public testing::Test
{
protected:
    std::unique_ptr<CHttpFile> Open(int verb = CHttpConnection::HTTP_VERB_GET, LPCWSTR object = L"/x")
    {
        m_connection.reset(m_session.GetHttpConnection(L"127.0.0.1", m_server.Port()));
        return std::unique_ptr<CHttpFile>(
            m_connection->OpenRequest(verb, object, nullptr, 1, nullptr, nullptr, kFlags));
    }

    // The one request the server got.
    CHttpRecord Request()
    {
        if (!m_server.WaitForRequests(1))
        {
            return {};
        }
        return m_server.Requests().front();
    }

    static std::string ReadAll(CHttpFile& file)
    {
        std::string body;
        char buffer[64];
        while (const UINT read = file.Read(buffer, sizeof(buffer)))
        {
            body.append(buffer, read);
        }
        return body;
    }

    CNoProxy m_noProxy;
    CLoopbackServer m_server;
    CInternetSession m_session{L"test agent"};
    std::unique_ptr<CHttpConnection> m_connection;
};

TEST_F(MfcInternet, GetsABody)
{
    const std::string content(1000, 'b');
    m_server.On("/x", CHttpReply(200, content));
    const auto file = Open();
    EXPECT_TRUE(file->SendRequest());
    DWORD status = 0;
    EXPECT_TRUE(file->QueryInfoStatusCode(status));
    EXPECT_EQ(200U, status);
    EXPECT_EQ(content, ReadAll(*file));
    EXPECT_EQ("GET /x HTTP/1.1", Request().requestLine);
}

TEST_F(MfcInternet, SendsTheSessionsAgentAndNoAcceptHeaderWithoutAcceptTypes)
{
    m_server.On("/x", CHttpReply(200));
    Open()->SendRequest();
    EXPECT_EQ("test agent", Request().Header("User-Agent"));
    EXPECT_EQ(std::nullopt, Request().Header("Accept"));
    EXPECT_EQ("127.0.0.1:" + std::to_string(m_server.Port()), Request().Header("Host"));
    EXPECT_EQ(std::nullopt, Request().Header("Referer"));
}

TEST_F(MfcInternet, SessionWithoutAgentTakesTheApplicationsName)
{
    m_server.On("/x", CHttpReply(200));
    CInternetSession session;
    const std::unique_ptr<CHttpConnection> connection(
        session.GetHttpConnection(L"127.0.0.1", m_server.Port()));
    const std::unique_ptr<CHttpFile> file(connection->OpenRequest(CHttpConnection::HTTP_VERB_GET, L"/x"));
    file->SendRequest();
    EXPECT_EQ(Utf8(AfxGetAppName()), Request().Header("User-Agent"));
    EXPECT_EQ(1U, session.GetContext());
}

TEST_F(MfcInternet, VerbsAreNumberedFromPostToUnlink)
{
    const char* const verbs[] = {"POST", "GET", "HEAD", "PUT", "LINK", "DELETE", "UNLINK"};
    m_server.On("/x", CHttpReply(200));
    for (int number = 0; number < 7; ++number)
    {
        Open(number)->SendRequest();
        ASSERT_TRUE(m_server.WaitForRequests(static_cast<size_t>(number) + 1));
        EXPECT_EQ(verbs[number], m_server.Requests().back().method);
    }
}

TEST_F(MfcInternet, VerbOutOfRangeThrows)
{
    for (const int verb : {-1, 7})
    {
        const auto failure = FailureOf([&] { Open(verb); });
        ASSERT_TRUE(failure) << verb;
        EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, failure->error);
    }
}

TEST_F(MfcInternet, VerbRefererAndAcceptTypesAreSentAsGiven)
{
    m_server.On("/x", CHttpReply(200));
    m_connection.reset(m_session.GetHttpConnection(L"127.0.0.1", m_server.Port()));
    LPCWSTR types[] = {L"text/plain", L"image/png", nullptr};
    const std::unique_ptr<CHttpFile> file(
        m_connection->OpenRequest(L"FETCH", L"/x?a=b c", L"http://from.example/", 1, types, nullptr, kFlags));
    file->SendRequest();
    EXPECT_EQ("FETCH", Request().method);
    EXPECT_EQ("http://from.example/", Request().Header("Referer"));
    EXPECT_EQ("text/plain, image/png", Request().Header("Accept"));
}

TEST_F(MfcInternet, NoVerbIsGet)
{
    m_server.On("/x", CHttpReply(200));
    m_connection.reset(m_session.GetHttpConnection(L"127.0.0.1", m_server.Port()));
    const std::unique_ptr<CHttpFile> file(m_connection->OpenRequest(nullptr, L"/x"));
    file->SendRequest();
    EXPECT_EQ("GET", Request().method);
}

TEST_F(MfcInternet, AddsHeaders)
{
    m_server.On("/x", CHttpReply(200));
    const auto file = Open();
    EXPECT_TRUE(file->AddRequestHeaders(L"Accept-Encoding: gzip", HTTP_ADDREQ_FLAG_ADD_IF_NEW, -1));
    EXPECT_TRUE(file->AddRequestHeaders(L"X-One: 1\r\nX-Two: 2\r\n"));
    EXPECT_TRUE(file->AddRequestHeaders(L"X-Cut: yesno", HTTP_ADDREQ_FLAG_ADD, 10));
    file->SendRequest(L"X-Sent: 3", DWORD(-1));
    EXPECT_EQ("gzip", Request().Header("Accept-Encoding"));
    EXPECT_EQ("1", Request().Header("X-One"));
    EXPECT_EQ("2", Request().Header("X-Two"));
    EXPECT_EQ("yes", Request().Header("X-Cut"));
    EXPECT_EQ("3", Request().Header("X-Sent"));
}

TEST_F(MfcInternet, AddIfNewRefusesAHeaderThatIsThere)
{
    m_server.On("/x", CHttpReply(200));
    const auto file = Open();
    EXPECT_TRUE(file->AddRequestHeaders(L"X-One: 1"));
    SetLastError(0);
    EXPECT_FALSE(file->AddRequestHeaders(L"X-One: 2"));
    EXPECT_NE(0U, GetLastError()); // Windows and Wine give different numbers
    file->SendRequest();
    EXPECT_EQ("1", Request().Header("X-One"));
}

TEST_F(MfcInternet, SendsHeadersAndBodyBytes)
{
    m_server.On("/x", CHttpReply(200));
    wchar_t body[] = L"a=1&b";
    Open(CHttpConnection::HTTP_VERB_POST)
        ->SendRequest(L"Content-Type: application/x-www-form-urlencoded", DWORD(-1), body, 5);
    EXPECT_EQ(std::string("a\0=\0001", 5), Request().body);
    EXPECT_EQ("5", Request().Header("Content-Length"));
    EXPECT_EQ("application/x-www-form-urlencoded", Request().Header("Content-Type"));

    char narrow[] = "xyz";
    Open(CHttpConnection::HTTP_VERB_POST)->SendRequest(L"X-One: 1 and more", 8, narrow, 3);
    ASSERT_TRUE(m_server.WaitForRequests(2));
    EXPECT_EQ("xyz", m_server.Requests().back().body);
    EXPECT_EQ("1", m_server.Requests().back().Header("X-One"));
}

TEST_F(MfcInternet, QueriesResponseHeadersOfAnyLength)
{
    const std::string longType = "text/" + std::string(1000, 'y');
    m_server.On("/x", CHttpReply(200).Header("Content-Type", longType));
    const auto file = Open();
    file->SendRequest();
    CString text(L"before");
    EXPECT_TRUE(file->QueryInfo(HTTP_QUERY_CONTENT_TYPE, text));
    EXPECT_EQ(longType, Utf8(text.GetString()));
    EXPECT_TRUE(file->QueryInfo(HTTP_QUERY_DATE, text));
    EXPECT_EQ(orva::test::kReplyDate, Utf8(text.GetString()));
    EXPECT_EQ(static_cast<int>(std::string(orva::test::kReplyDate).length()), text.GetLength());
}

TEST_F(MfcInternet, MissingHeaderIsFalseAndAnEmptyText)
{
    m_server.On("/x", CHttpReply(200).WithoutDate());
    const auto file = Open();
    file->SendRequest();
    CString text(L"before");
    SetLastError(0);
    EXPECT_FALSE(file->QueryInfo(HTTP_QUERY_DATE, text));
    EXPECT_EQ(DWORD{ERROR_HTTP_HEADER_NOT_FOUND}, GetLastError());
    EXPECT_TRUE(text.IsEmpty());
}

TEST_F(MfcInternet, IndexWalksHeadersOfTheSameName)
{
    m_server.On("/x", CHttpReply(200).AddHeader("Set-Cookie", "a=1").AddHeader("Set-Cookie", "b=2"));
    const auto file = Open();
    file->SendRequest();
    DWORD index = 0;
    CString text;
    EXPECT_TRUE(file->QueryInfo(HTTP_QUERY_SET_COOKIE, text, &index));
    EXPECT_EQ("a=1", Utf8(text.GetString()));
    EXPECT_TRUE(file->QueryInfo(HTTP_QUERY_SET_COOKIE, text, &index));
    EXPECT_EQ("b=2", Utf8(text.GetString()));
    EXPECT_FALSE(file->QueryInfo(HTTP_QUERY_SET_COOKIE, text, &index));
}

TEST_F(MfcInternet, ErrorStatusIsNoFailure)
{
    m_server.On("/x", CHttpReply(404, "nothing here"));
    const auto file = Open();
    EXPECT_TRUE(file->SendRequest());
    DWORD status = 0;
    EXPECT_TRUE(file->QueryInfoStatusCode(status));
    EXPECT_EQ(404U, status);
}

TEST_F(MfcInternet, StatusThatCannotBeQueriedIsFalseAndUnchanged)
{
    const auto file = Open();
    file->Close();
    DWORD status = 77;
    EXPECT_FALSE(file->QueryInfoStatusCode(status));
    EXPECT_EQ(77U, status);
}

TEST_F(MfcInternet, RefusedConnectionThrows)
{
    const CRefusingPort port;
    m_connection.reset(m_session.GetHttpConnection(L"127.0.0.1", port.Port()));
    const std::unique_ptr<CHttpFile> file(m_connection->OpenRequest(CHttpConnection::HTTP_VERB_GET, L"/x",
                                                                    nullptr, 42, nullptr, nullptr, kFlags));
    const auto failure = FailureOf([&] { file->SendRequest(); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(DWORD{ERROR_INTERNET_CANNOT_CONNECT}, failure->error);
    EXPECT_EQ(42U, failure->context);
}

TEST_F(MfcInternet, ClosedHandlesThrow)
{
    const auto file = Open();
    file->Close();
    char byte = 0;
    EXPECT_TRUE(FailureOf([&] { file->Read(&byte, 1); }));
    EXPECT_TRUE(FailureOf([&] { file->SendRequest(); }));
    EXPECT_FALSE(file->AddRequestHeaders(L"X-One: 1"));
    CString text;
    EXPECT_FALSE(file->QueryInfo(HTTP_QUERY_DATE, text));
    m_connection->Close();
    EXPECT_TRUE(FailureOf([&] { m_connection->OpenRequest(CHttpConnection::HTTP_VERB_GET, L"/x"); }));
    CInternetSession session(L"", 42);
    session.Close();
    const auto failure = FailureOf([&] { session.GetHttpConnection(L"127.0.0.1", m_server.Port()); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(42U, failure->context);
}

TEST_F(MfcInternet, CloseMayBeRepeatedAndClearsTheHandles)
{
    const auto file = Open();
    for (int i = 0; i < 2; ++i)
    {
        file->Close();
        m_connection->Close();
        m_session.Close();
    }
    EXPECT_EQ(nullptr, file->m_hFile);
    EXPECT_EQ(nullptr, static_cast<HINTERNET>(*m_connection));
    EXPECT_EQ(nullptr, static_cast<HINTERNET>(m_session));
}

TEST_F(MfcInternet, DestructorsCloseTheHandles)
{
    const auto isOpen = [](HINTERNET handle) {
        DWORD type = 0;
        DWORD size = sizeof(type);
        return InternetQueryOptionW(handle, INTERNET_OPTION_HANDLE_TYPE, &type, &size) != FALSE;
    };
    auto file = Open();
    auto session = std::make_unique<CInternetSession>(L"");
    const HINTERNET handles[] = {*file, *m_connection, *session};
    for (const HINTERNET handle : handles)
    {
        EXPECT_TRUE(isOpen(handle));
    }
    file.reset();
    m_connection.reset();
    session.reset();
    for (const HINTERNET handle : handles)
    {
        EXPECT_FALSE(isOpen(handle));
    }
}

TEST_F(MfcInternet, DestructorsKeepTheLastError)
{
    auto file = Open();
    SetLastError(4711);
    file.reset();
    m_connection.reset();
    EXPECT_EQ(4711U, GetLastError());
}

TEST_F(MfcInternet, SessionUsesTheSystemsProxy)
{
    const CProxySetting proxy(m_server.Port());
    m_server.On("/x", CHttpReply(200, "through the proxy"));
    CInternetSession session(L"");
    const std::unique_ptr<CHttpConnection> connection(session.GetHttpConnection(L"www.orva.example", 80));
    const std::unique_ptr<CHttpFile> file(connection->OpenRequest(CHttpConnection::HTTP_VERB_GET, L"/x?",
                                                                  nullptr, 1, nullptr, nullptr, kFlags));
    file->SendRequest();
    EXPECT_EQ("through the proxy", ReadAll(*file));
    EXPECT_EQ("GET http://www.orva.example:80/x? HTTP/1.1", Request().requestLine);
    EXPECT_EQ("", Request().Header("User-Agent"));
}

TEST_F(MfcInternet, ReadMayReturnLessThanAskedFor)
{
    orva::test::CGate gate;
    CServerScript script;
    script.Send(CHttpReply(200, "abcdef").Head()).Send("abc").WaitFor(gate).Send("def");
    m_server.On("/x", script);
    const auto file = Open();
    file->SendRequest();
    char buffer[6] = {};
    const UINT first = file->Read(buffer, 3);
    EXPECT_EQ(3U, first);
    gate.Open();
    std::string rest = ReadAll(*file);
    EXPECT_EQ("abcdef", std::string(buffer, first) + rest);
}

} // namespace
