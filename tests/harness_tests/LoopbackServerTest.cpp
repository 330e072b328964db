// The scripted server seen by real clients: plain sockets and WinINet.
#include "harness/LoopbackServer.h"

#include "harness/Compression.h"
#include "harness/ProxySetting.h"

#include <gmock/gmock.h>

#include <winsock2.h>
#include <windows.h>
#include <wininet.h>

#include <optional>

namespace orva::test
{

namespace
{

using testing::ElementsAre;

// A plain TCP client.
class CClient
{
public:
    explicit CClient(unsigned short port)
    {
        m_socket = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        isConnected = connect(m_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        const DWORD timeout = kPatience;
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&timeout),
                   sizeof timeout);
    }
    ~CClient() { closesocket(m_socket); }
    CClient(const CClient&) = delete;
    CClient& operator=(const CClient&) = delete;

    void Send(const std::string& bytes) { send(m_socket, bytes.data(), static_cast<int>(bytes.size()), 0); }

    // Everything until the server closes; `error` is 0 for a graceful close, otherwise the socket error.
    std::string ReadAll(int& error)
    {
        std::string bytes;
        char buffer[1'000];
        int count;
        while ((count = recv(m_socket, buffer, sizeof buffer, 0)) > 0)
        {
            bytes.append(buffer, static_cast<size_t>(count));
        }
        error = count == 0 ? 0 : WSAGetLastError();
        return bytes;
    }
    std::string ReadAll()
    {
        int error;
        return ReadAll(error);
    }
    std::string ReadExactly(size_t length)
    {
        std::string bytes(length, '\0');
        size_t have = 0;
        while (have < length)
        {
            const int count = recv(m_socket, bytes.data() + have, static_cast<int>(length - have), 0);
            if (count <= 0)
            {
                break;
            }
            have += static_cast<size_t>(count);
        }
        bytes.resize(have);
        return bytes;
    }

    bool isConnected = false;

private:
    SOCKET m_socket;
};

struct CFetched
{
    DWORD error = 0;
    DWORD status = 0;
    std::string body;
};

// Fetches with WinINet and the pre-configured access type, as the product does.
CFetched Fetch(const std::wstring& url)
{
    CFetched result;
    const HINTERNET session = InternetOpenW(L"", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    const HINTERNET request = InternetOpenUrlW(session, url.c_str(), nullptr, 0,
                                               INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE, 0);
    if (!request)
    {
        result.error = GetLastError();
    }
    else
    {
        DWORD size = sizeof result.status;
        HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &result.status, &size,
                       nullptr);
        char buffer[1'000];
        DWORD count = 0;
        while (InternetReadFile(request, buffer, sizeof buffer, &count) && count > 0)
        {
            result.body.append(buffer, count);
        }
        InternetCloseHandle(request);
    }
    InternetCloseHandle(session);
    return result;
}

} // namespace

TEST(LoopbackServerTest, RecordsARequestByteForByte)
{
    CLoopbackServer server;
    server.On("/form", CHttpReply(200, "thanks"));
    using namespace std::string_literals;
    const std::string sent =
        "POST /form?x=1&y HTTP/1.1\r\nHost: here\r\nX-Odd:  two blanks \r\ncontent-length: 3\r\n\r\na\0b"s;
    CClient client(server.Port());
    client.Send(sent);
    client.ReadAll();

    ASSERT_TRUE(server.WaitForRequests(1));
    const CHttpRecord record = server.Requests()[0];
    EXPECT_EQ(record.raw, sent);
    EXPECT_EQ(record.requestLine, "POST /form?x=1&y HTTP/1.1");
    EXPECT_EQ(record.method, "POST");
    EXPECT_EQ(record.target, "/form?x=1&y");
    EXPECT_EQ(record.version, "HTTP/1.1");
    EXPECT_EQ(record.authority, "");
    EXPECT_EQ(record.path, "/form");
    EXPECT_EQ(record.query, "x=1&y");
    EXPECT_EQ(record.Header("CONTENT-LENGTH"), "3");
    EXPECT_EQ(record.Header("x-odd"), "two blanks ");
    EXPECT_EQ(record.Header("absent"), std::nullopt);
    EXPECT_EQ(record.body, "a\0b"s);
}

TEST(LoopbackServerTest, MatchesTheAbsoluteFormByItsPath)
{
    CLoopbackServer server;
    server.On("/a/b.txt", CHttpReply(200, "found"));
    CClient client(server.Port());
    client.Send("GET http://www.example.com:80/a/b.txt? HTTP/1.1\r\n\r\n");
    EXPECT_THAT(client.ReadAll(), testing::EndsWith("\r\n\r\nfound"));
    const CHttpRecord record = server.Requests().at(0);
    EXPECT_EQ(record.authority, "www.example.com:80");
    EXPECT_EQ(record.path, "/a/b.txt");
    EXPECT_EQ(record.query, "");
}

TEST(LoopbackServerTest, BuildsAWellFormedReply)
{
    EXPECT_EQ(CHttpReply(200, "abc").Bytes(), "HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan 2011 14:03:07 GMT\r\n"
                                              "Content-Type: text/plain\r\nConnection: close\r\n"
                                              "Content-Length: 3\r\n\r\nabc");
}

TEST(LoopbackServerTest, LeavesOutAndReplacesHeaders)
{
    EXPECT_EQ(CHttpReply(404)
                  .WithoutDate()
                  .Header("content-type", "text/html")
                  .ContentLength(7)
                  .KeepAlive()
                  .Bytes(),
              "HTTP/1.1 404 Not Found\r\ncontent-type: text/html\r\nContent-Length: 7\r\n"
              "Connection: keep-alive\r\n\r\n");
    EXPECT_EQ(CHttpReply(200, "abc").Without("Content-Length").Head(),
              "HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan 2011 14:03:07 GMT\r\nContent-Type: text/plain\r\n"
              "Connection: close\r\n\r\n");
}

TEST(LoopbackServerTest, SendsChunks)
{
    EXPECT_EQ(CHttpReply(200, "abcde").Chunked(2).WireBody(), "2\r\nab\r\n2\r\ncd\r\n1\r\ne\r\n0\r\n\r\n");
    CLoopbackServer server;
    server.On("/", CHttpReply(200, "abcde").Chunked(2));
    const CNoProxy noProxy;
    EXPECT_EQ(Fetch(server.WideUrl("/")).body, "abcde");
}

TEST(LoopbackServerTest, AnswersUnknownPathsWith404)
{
    CLoopbackServer server;
    server.On("/known", CHttpReply(200));
    const CNoProxy noProxy;
    EXPECT_EQ(Fetch(server.WideUrl("/unknown")).status, 404u);
    server.OnOther(CHttpReply(503));
    EXPECT_EQ(Fetch(server.WideUrl("/unknown")).status, 503u);
    EXPECT_EQ(server.RequestsFor("/unknown").size(), 2u);
    EXPECT_EQ(server.RequestsFor("/known").size(), 0u);
}

TEST(LoopbackServerTest, GivesQueuedAnswersFirst)
{
    CLoopbackServer server;
    server.On("/x", CHttpReply(200, "always"));
    server.OnNext("/x", CHttpReply(200, "first"));
    server.OnNext("/x", CHttpReply(200, "second"));
    const CNoProxy noProxy;
    EXPECT_EQ(Fetch(server.WideUrl("/x")).body, "first");
    EXPECT_EQ(Fetch(server.WideUrl("/x")).body, "second");
    EXPECT_EQ(Fetch(server.WideUrl("/x")).body, "always");
}

TEST(LoopbackServerTest, KeepsAConnectionForTheNextRequest)
{
    CLoopbackServer server;
    const CHttpReply reply = CHttpReply(200, "r").KeepAlive();
    server.On("/", reply);
    CClient client(server.Port());
    for (int i = 0; i < 3; ++i)
    {
        client.Send("GET / HTTP/1.1\r\n\r\n");
        EXPECT_EQ(client.ReadExactly(reply.Bytes().size()), reply.Bytes());
    }
    EXPECT_EQ(server.Connections(), 1u);
    EXPECT_EQ(server.Requests().size(), 3u);
}

TEST(LoopbackServerTest, ServesConnectionsSideBySide)
{
    CLoopbackServer server;
    CGate gate;
    server.On("/slow", CServerScript().WaitFor(gate).Send("slow"));
    server.On("/fast", CServerScript().Send("fast"));
    CClient slow(server.Port());
    slow.Send("GET /slow HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(gate.WaitUntilReached());
    CClient fast(server.Port());
    fast.Send("GET /fast HTTP/1.1\r\n\r\n");
    EXPECT_EQ(fast.ReadAll(), "fast");
    gate.Open();
    EXPECT_EQ(slow.ReadAll(), "slow");
}

TEST(LoopbackServerTest, ResetsAConnection)
{
    CLoopbackServer server;
    server.On("/", CServerScript().Reset());
    CClient client(server.Port());
    client.Send("GET / HTTP/1.1\r\n\r\n");
    int error = 0;
    EXPECT_EQ(client.ReadAll(error), "");
    EXPECT_EQ(error, WSAECONNRESET);
}

TEST(LoopbackServerTest, ClosesAConnectionBeforeAnyRequest)
{
    CLoopbackServer server;
    server.OnNextConnection(CServerScript());
    int error = -1;
    {
        CClient client(server.Port());
        EXPECT_EQ(client.ReadAll(error), "");
        EXPECT_EQ(error, 0);
    }
    CClient second(server.Port());
    second.Send("GET / HTTP/1.1\r\n\r\n");
    EXPECT_THAT(second.ReadAll(), testing::StartsWith("HTTP/1.1 404"));
}

TEST(LoopbackServerTest, StallsUntilTheClientLeaves)
{
    CLoopbackServer server;
    server.On("/", CServerScript().Send("HTTP/1.1 2").Stall());
    {
        CClient client(server.Port());
        client.Send("GET / HTTP/1.1\r\n\r\n");
        EXPECT_EQ(client.ReadExactly(10), "HTTP/1.1 2");
        EXPECT_FALSE(server.WaitUntilIdle(0));
    }
    EXPECT_TRUE(server.WaitUntilIdle());
}

TEST(LoopbackServerTest, SendsSlowly)
{
    CLoopbackServer server;
    server.On("/", CServerScript().SendSlowly("abcdef", 2, 40));
    CClient client(server.Port());
    const ULONGLONG start = GetTickCount64();
    client.Send("GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.ReadAll(), "abcdef");
    EXPECT_GE(GetTickCount64() - start, 100u);
}

TEST(LoopbackServerTest, EndsWhileItsScriptsWait)
{
    CGate gate;
    std::optional<CLoopbackServer> server(std::in_place);
    server->On("/wait", CServerScript().WaitFor(gate));
    server->On("/pause", CServerScript().Pause(INFINITE));
    server->On("/stall", CServerScript().Stall());
    server->On("/slow", CServerScript().SendSlowly("abc", 1, 1'000'000));
    CClient a(server->Port()), b(server->Port()), c(server->Port()), d(server->Port()),
        silent(server->Port());
    a.Send("GET /wait HTTP/1.1\r\n\r\n");
    b.Send("GET /pause HTTP/1.1\r\n\r\n");
    c.Send("GET /stall HTTP/1.1\r\n\r\n");
    d.Send("GET /slow HTTP/1.1\r\n\r\n");
    ASSERT_TRUE(server->WaitForRequests(4));
    const ULONGLONG start = GetTickCount64();
    server.reset();
    EXPECT_LT(GetTickCount64() - start, 3'000u);
}

TEST(LoopbackServerTest, RefusesOnDemand)
{
    CLoopbackServer server;
    EXPECT_TRUE(CClient(server.Port()).isConnected);
    server.Refuse();
    EXPECT_FALSE(CClient(server.Port()).isConnected);
}

TEST(LoopbackServerTest, ARefusingPortRefuses)
{
    const CLoopbackServer sockets;
    const CRefusingPort port;
    EXPECT_FALSE(CClient(port.Port()).isConnected);
}

TEST(LoopbackServerTest, IsTheProxyOfEveryHost)
{
    CLoopbackServer first;
    CLoopbackServer second;
    first.On("/p", CHttpReply(200, "one"));
    second.On("/p", CHttpReply(200, "two"));
    {
        const CProxySetting proxy(first.Port());
        EXPECT_EQ(Fetch(L"http://nowhere.invalid/p?").body, "one");
    }
    {
        // A running process uses the new setting.
        const CProxySetting proxy(second.Port());
        EXPECT_EQ(Fetch(L"http://nowhere.invalid/p?").body, "two");
    }
    EXPECT_EQ(first.Requests().at(0).requestLine, "GET http://nowhere.invalid:80/p? HTTP/1.1");
    EXPECT_EQ(second.Requests().at(0).authority, "nowhere.invalid:80");
    const CNoProxy noProxy;
    EXPECT_EQ(Fetch(L"http://nowhere.invalid/p?").error,
              static_cast<DWORD>(ERROR_INTERNET_NAME_NOT_RESOLVED));
    EXPECT_EQ(first.Requests().size(), 1u);
}

TEST(CompressionTest, GzipAndZlibAndTheirCutFormsInflate)
{
    const std::string text(10'000, 'x');
    EXPECT_EQ(InflatedPart(GzipBytes(text), 20'000), text);
    EXPECT_EQ(GzipBytes(text).substr(0, 2), "\x1f\x8b");
    EXPECT_EQ(InflatedPart(ZlibBytes(text), 20'000), text);
    EXPECT_EQ(ZlibBytes(text).substr(0, 1), "\x78");
    EXPECT_EQ(InflatedPart(GzipBytes(text), 9'999), text.substr(1));
    EXPECT_LT(InflatedPart(CutOff(GzipBytes(text), 20), 20'000).size(), text.size());
    EXPECT_EQ(CutOff("ab", 3), "");
}

} // namespace orva::test
