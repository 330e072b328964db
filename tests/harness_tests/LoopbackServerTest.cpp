// The scripted server seen by a plain client: it sends what was asked, and records what it was asked.
#include "harness/LoopbackServer.h"

#include <gmock/gmock.h>

#include <winsock2.h>

#include <memory>
#include <optional>

namespace orva::test
{

namespace
{

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

    // Everything until the server closes, and how it ended: 0 for a graceful close, otherwise the socket
    // error.
    std::string ReadAll()
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

    bool HasBytes() const
    {
        u_long count = 0;
        ioctlsocket(m_socket, FIONREAD, &count);
        return count > 0;
    }

    bool isConnected = false;
    int error = -1;

private:
    SOCKET m_socket;
};

constexpr char kGet[] = "GET / HTTP/1.1\r\n\r\n";

} // namespace

TEST(LoopbackServerTest, RecordsTheRequest)
{
    using namespace std::string_literals;
    CLoopbackServer server;
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
    EXPECT_EQ(server.RequestsFor("/a/b.txt").size(), 1u);
    EXPECT_EQ(server.RequestsFor("/").size(), 0u);
}

struct CSent
{
    const char* name;
    CServerScript script;
    std::string bytes;
    int error = 0;
};

void PrintTo(const CSent& sent, std::ostream* out)
{
    *out << sent.name;
}

class LoopbackServerScriptTest : public testing::TestWithParam<CSent>
{
};

TEST_P(LoopbackServerScriptTest, SendsExactlyThis)
{
    CLoopbackServer server;
    server.On("/", GetParam().script);
    CClient client(server.Port());
    client.Send(kGet);
    EXPECT_EQ(client.ReadAll(), GetParam().bytes);
    EXPECT_EQ(client.error, GetParam().error);
}

const std::string g_head =
    "HTTP/1.1 200 OK\r\nDate: Thu, 20 Jan 2011 14:03:07 GMT\r\nContent-Type: text/plain\r\n"
    "Connection: close\r\n";

INSTANTIATE_TEST_SUITE_P(
    Scripts, LoopbackServerScriptTest,
    testing::Values(
        CSent{"Reply", CHttpReply(200, "abc"), g_head + "Content-Length: 3\r\n\r\nabc"},
        CSent{"OtherHeaders",
              CHttpReply(404)
                  .WithoutDate()
                  .Header("content-type", "text/html")
                  .AddHeader("X", "1")
                  .ContentLength(7),
              "HTTP/1.1 404 Not OK\r\nConnection: close\r\ncontent-type: text/html\r\nX: 1\r\n"
              "Content-Length: 7\r\n\r\n"},
        CSent{"NoLength", CHttpReply(200, "abc").Without("Content-Length"), g_head + "\r\nabc"},
        CSent{"Chunks", CHttpReply(200, "abcde").Chunked(2),
              g_head + "Transfer-Encoding: chunked\r\n\r\n2\r\nab\r\n2\r\ncd\r\n1\r\ne\r\n0\r\n\r\n"},
        CSent{"SentSlowly", CServerScript().SendSlowly("abcdef", 2, 5).Pause(5).Send("g"), "abcdefg"},
        CSent{"Closed", CServerScript().Send("ab").Close().Send("never"), "ab"},
        CSent{"Reset", CServerScript().Reset(), "", WSAECONNRESET}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(LoopbackServerTest, AnswersUnknownPathsWith404AndQueuedAnswersFirst)
{
    CLoopbackServer server;
    server.On("/", CServerScript().Send("always"));
    server.OnNext("/", CServerScript().Send("first"));
    server.OnNext("/", CServerScript().Send("second"));
    for (const char* const answer : {"first", "second", "always"})
    {
        CClient client(server.Port());
        client.Send(kGet);
        EXPECT_EQ(client.ReadAll(), answer);
    }
    CClient client(server.Port());
    client.Send("GET /unknown HTTP/1.1\r\n\r\n");
    EXPECT_THAT(client.ReadAll(), testing::StartsWith("HTTP/1.1 404 Not OK\r\n"));
}

TEST(LoopbackServerTest, AConnectionsScriptRunsBeforeAnyRequest)
{
    CLoopbackServer server;
    server.OnConnection(CServerScript().Send("at once"));
    EXPECT_EQ(CClient(server.Port()).ReadAll(), "at once");
    EXPECT_EQ(server.Requests().size(), 0u);
}

TEST(LoopbackServerTest, HoldsAConnectionAtAGateAndInAStallWhileItServesOthers)
{
    CLoopbackServer server;
    CGate gate;
    server.On("/held", CServerScript().WaitFor(gate).Send("held").Stall());
    server.On("/", CServerScript().Send("fast"));
    {
        CClient held(server.Port());
        held.Send("GET /held HTTP/1.1\r\n\r\n");
        ASSERT_TRUE(gate.WaitUntilReached());
        CClient fast(server.Port());
        fast.Send(kGet);
        EXPECT_EQ(fast.ReadAll(), "fast");
        EXPECT_FALSE(held.HasBytes());
        gate.Open();
        EXPECT_TRUE(WaitUntil([&] { return held.HasBytes(); }));
        EXPECT_FALSE(server.WaitUntilIdle(0));
    }
    EXPECT_TRUE(server.WaitUntilIdle());
}

TEST(LoopbackServerTest, EndsWhileItsScriptsWait)
{
    CGate gate;
    std::optional<CLoopbackServer> server(std::in_place);
    const std::pair<const char*, CServerScript> scripts[] = {
        {"/wait", CServerScript().WaitFor(gate)},
        {"/pause", CServerScript().Pause(INFINITE)},
        {"/stall", CServerScript().Stall()},
        {"/slow", CServerScript().SendSlowly("abc", 1, 1'000'000)}};
    std::vector<std::unique_ptr<CClient>> clients;
    for (const auto& [path, script] : scripts)
    {
        server->On(path, script);
        clients.push_back(std::make_unique<CClient>(server->Port()));
        clients.back()->Send(std::string("GET ") + path + " HTTP/1.1\r\n\r\n");
    }
    const CClient silent(server->Port());
    ASSERT_TRUE(server->WaitForRequests(std::size(scripts)));
    // Hangs here if one of them does not end.
    server.reset();
}

TEST(LoopbackServerTest, RefusesOnDemandAsARefusingPortDoes)
{
    CLoopbackServer server;
    EXPECT_TRUE(CClient(server.Port()).isConnected);
    server.Refuse();
    EXPECT_FALSE(CClient(server.Port()).isConnected);
    const CRefusingPort port;
    EXPECT_FALSE(CClient(port.Port()).isConnected);
}

} // namespace orva::test
