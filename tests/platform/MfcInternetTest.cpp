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
using orva::test::CRefusingPort;
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
    MfcInternet() { m_server.On("/x", CHttpReply(200)); }

    CHttpConnection& Connect()
    {
        m_connection.reset(m_session.GetHttpConnection(L"127.0.0.1", m_server.Port()));
        return *m_connection;
    }
    std::unique_ptr<CHttpFile> Open(int verb = CHttpConnection::HTTP_VERB_GET)
    {
        return std::unique_ptr<CHttpFile>(
            Connect().OpenRequest(verb, L"/x", nullptr, 1, nullptr, nullptr, kFlags));
    }

    // The last of `count` requests that the server got.
    CHttpRecord Request(size_t count = 1)
    {
        return m_server.WaitForRequests(count) ? m_server.Requests().back() : CHttpRecord();
    }

    CNoProxy m_noProxy;
    CLoopbackServer m_server;
    CInternetSession m_session{L"test agent"};
    std::unique_ptr<CHttpConnection> m_connection;
};

TEST_F(MfcInternet, VerbsAreNumberedFromPostToUnlink)
{
    size_t count = 0;
    for (const char* const verb : {"POST", "GET", "HEAD", "PUT", "LINK", "DELETE", "UNLINK"})
    {
        EXPECT_TRUE(Open(static_cast<int>(count))->SendRequest());
        EXPECT_EQ(verb, Request(++count).method);
    }
    for (const int verb : {-1, 7})
    {
        const auto failure = FailureOf([&] { Open(verb); });
        ASSERT_TRUE(failure) << verb;
        EXPECT_EQ(DWORD{ERROR_INVALID_PARAMETER}, failure->error);
    }
}

TEST_F(MfcInternet, VerbRefererAndAcceptTypesAreSentAsGivenAndNoVerbIsGet)
{
    LPCWSTR types[] = {L"text/plain", L"image/png", nullptr};
    std::unique_ptr<CHttpFile> file(
        Connect().OpenRequest(L"FETCH", L"/x?a=b c", L"http://from.example/", 1, types, nullptr, kFlags));
    file->SendRequest();
    EXPECT_EQ("FETCH", Request().method);
    EXPECT_EQ("http://from.example/", Request().Header("Referer"));
    EXPECT_EQ("text/plain, image/png", Request().Header("Accept"));
    LPCWSTR noVerb = nullptr;
    file.reset(Connect().OpenRequest(noVerb, L"/x"));
    file->SendRequest();
    EXPECT_EQ("GET", Request(2).method);
    EXPECT_EQ(std::nullopt, Request(2).Header("Referer"));
}

TEST_F(MfcInternet, AddsHeadersAndABody)
{
    const auto file = Open(CHttpConnection::HTTP_VERB_POST);
    EXPECT_TRUE(file->AddRequestHeaders(L"X-One: 1\r\nX-Two: 2\r\n"));
    EXPECT_TRUE(file->AddRequestHeaders(L"X-Cut: yesno", HTTP_ADDREQ_FLAG_ADD, 10));
    SetLastError(0);
    EXPECT_FALSE(file->AddRequestHeaders(L"X-One: 3")) << "by default only if it is new";
    EXPECT_NE(0U, GetLastError()); // Windows and Wine give different numbers
    wchar_t body[] = L"a=1&b";
    file->SendRequest(L"X-Sent: 4 and more", 9, body, 5);
    EXPECT_EQ("1", Request().Header("X-One"));
    EXPECT_EQ("2", Request().Header("X-Two"));
    EXPECT_EQ("yes", Request().Header("X-Cut"));
    EXPECT_EQ("4", Request().Header("X-Sent"));
    EXPECT_EQ("5", Request().Header("Content-Length"));
    EXPECT_EQ(std::string("a\0=\0001", 5), Request().body);
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

TEST_F(MfcInternet, RefusedConnectionThrowsWithTheRequestsContext)
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

TEST_F(MfcInternet, ClosedHandlesThrowOrGiveNothing)
{
    const auto file = Open();
    file->Close();
    DWORD status = 77;
    EXPECT_FALSE(file->QueryInfoStatusCode(status));
    EXPECT_EQ(77U, status);
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

TEST_F(MfcInternet, DestructorsCloseTheHandlesAndKeepTheLastError)
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
    SetLastError(4711);
    file.reset();
    m_connection.reset();
    session.reset();
    EXPECT_EQ(4711U, GetLastError());
    for (const HINTERNET handle : handles)
    {
        EXPECT_FALSE(isOpen(handle));
    }
}

} // namespace
