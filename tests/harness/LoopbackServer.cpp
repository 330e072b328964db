// A scripted HTTP server on 127.0.0.1 inside the test process; it also plays the proxy of WinINet.
// Before anything that includes windows.h, which brings the old sockets otherwise.
#include <winsock2.h>

#include "harness/LoopbackServer.h"
#include "harness/Text.h"

#include <process.h>

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <stdexcept>

namespace orva::test
{

namespace
{

/// A request with a longer head than this is taken as it is.
constexpr size_t kMaxHead = 1 << 20;
/// How long a graceful close waits for the client's end, in milliseconds; longer than any client needs.
/// How long a wait relies on Wine to tell of news, which it misses now and then when many sockets are busy,
/// in milliseconds.
constexpr DWORD kLookAgain = 250;

constexpr DWORD kLinger = 2'000;

} // namespace

/// The server's state, its accepting thread and one thread a connection.
class CLoopbackServer::Impl
{
public:
    Impl() : m_stop(MakeEvent()), m_refuse(MakeEvent())
    {
        m_listener = static_cast<SOCKET>(BindLoopbackSocket(port));
        if (listen(m_listener, SOMAXCONN) != 0)
        {
            throw std::runtime_error("cannot listen");
        }
        m_accepting.reset(
            reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, AcceptEntry, this, 0, nullptr)));
    }

    ~Impl()
    {
        Refuse();
        SetEvent(m_stop.get());
        std::vector<UniqueHandle> threads;
        {
            const std::lock_guard lock(mutex);
            threads.swap(m_threads);
        }
        for (const UniqueHandle& thread : threads)
        {
            WaitForSingleObject(thread.get(), INFINITE);
        }
    }

    void Refuse()
    {
        SetEvent(m_refuse.get());
        WaitForSingleObject(m_accepting.get(), INFINITE);
    }

    unsigned short port = 0;
    mutable std::mutex mutex;
    std::map<std::string, CServerScript> scripts;
    std::map<std::string, std::deque<CServerScript>> nextScripts;
    CServerScript otherScript = CHttpReply(404, "not found");
    std::optional<CServerScript> connectionScript;
    std::deque<CServerScript> nextConnectionScripts;
    std::vector<CHttpRecord> requests;
    size_t connections = 0;
    size_t openConnections = 0;

private:
    struct Connection
    {
        Impl* server;
        SOCKET socket;
        size_t number;
        UniqueHandle event;
        std::optional<CServerScript> script;
        bool peerClosed = false;
        /// Received and not yet used.
        std::string pending;
    };

    static unsigned __stdcall AcceptEntry(void* self)
    {
        static_cast<Impl*>(self)->Accept();
        return 0;
    }

    static unsigned __stdcall ConnectionEntry(void* argument)
    {
        const std::unique_ptr<Connection> connection(static_cast<Connection*>(argument));
        Impl& server = *connection->server;
        server.Serve(*connection);
        closesocket(connection->socket);
        const std::lock_guard lock(server.mutex);
        --server.openConnections;
        return 0;
    }

    void Accept()
    {
        const UniqueHandle news(WSACreateEvent());
        WSAEventSelect(m_listener, news.get(), FD_ACCEPT);
        const HANDLE events[] = {m_refuse.get(), news.get()};
        while (WSAWaitForMultipleEvents(2, events, FALSE, kLookAgain, FALSE) != WSA_WAIT_EVENT_0)
        {
            WSAResetEvent(news.get());
            SOCKET socket;
            while ((socket = accept(m_listener, nullptr, nullptr)) != INVALID_SOCKET)
            {
                StartConnection(socket);
            }
        }
        closesocket(m_listener);
    }

    void StartConnection(SOCKET socket)
    {
        KeepSocketToThisProcess(socket);
        auto connection = std::make_unique<Connection>();
        connection->server = this;
        connection->socket = socket;
        connection->event.reset(WSACreateEvent());
        WSAEventSelect(socket, connection->event.get(), FD_READ | FD_WRITE | FD_CLOSE);
        const std::lock_guard lock(mutex);
        connection->number = connections++;
        ++openConnections;
        connection->script = connectionScript;
        if (!nextConnectionScripts.empty())
        {
            connection->script = std::move(nextConnectionScripts.front());
            nextConnectionScripts.pop_front();
        }
        m_threads.emplace_back(reinterpret_cast<HANDLE>(
            _beginthreadex(nullptr, 0, ConnectionEntry, connection.release(), 0, nullptr)));
    }

    void Serve(Connection& connection)
    {
        if (connection.script)
        {
            if (!Run(connection, *connection.script))
            {
                return;
            }
        }
        while (const std::optional<CHttpRecord> request = ReadRequest(connection))
        {
            CServerScript script;
            {
                const std::lock_guard lock(mutex);
                requests.push_back(*request);
                script = ScriptFor(request->path);
            }
            if (!Run(connection, script))
            {
                return;
            }
        }
    }

    CServerScript ScriptFor(const std::string& path)
    {
        if (const auto queue = nextScripts.find(path); queue != nextScripts.end() && !queue->second.empty())
        {
            CServerScript script = std::move(queue->second.front());
            queue->second.pop_front();
            return script;
        }
        const auto script = scripts.find(path);
        return script == scripts.end() ? otherScript : script->second;
    }

    /// Waits until the socket has news or the server stops. Says so without news now and then, too: callers
    /// ask the socket. False when the server stops or time is up.
    bool WaitForNews(const Connection& connection, DWORD timeout = INFINITE)
    {
        const HANDLE events[] = {m_stop.get(), connection.event.get()};
        const DWORD woken = WSAWaitForMultipleEvents(2, events, FALSE, std::min(timeout, kLookAgain), FALSE);
        return woken == WSA_WAIT_EVENT_0 + 1 || (woken == WSA_WAIT_TIMEOUT && timeout > kLookAgain);
    }

    /// Receives what there is. False once the connection has ended.
    bool Receive(Connection& connection)
    {
        char buffer[16'384];
        while (!connection.peerClosed)
        {
            WSAResetEvent(connection.event.get());
            const int count = recv(connection.socket, buffer, sizeof buffer, 0);
            if (count > 0)
            {
                connection.pending.append(buffer, static_cast<size_t>(count));
                return true;
            }
            if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK)
            {
                if (WaitForNews(connection))
                {
                    continue;
                }
                return false;
            }
            connection.peerClosed = true;
        }
        return false;
    }

    std::optional<CHttpRecord> ReadRequest(Connection& connection)
    {
        constexpr char kHeadEnd[] = "\r\n\r\n";
        size_t head;
        while ((head = connection.pending.find(kHeadEnd)) == std::string::npos &&
               connection.pending.size() < kMaxHead)
        {
            if (!Receive(connection))
            {
                return std::nullopt;
            }
        }
        head = std::min(head, connection.pending.size() - 4) + 4;
        CHttpRecord record = ParseRequestHead(connection.pending.substr(0, head));
        record.connection = connection.number;
        connection.pending.erase(0, head);
        const size_t length = AnnouncedLength(record);
        while (connection.pending.size() < length)
        {
            if (!Receive(connection))
            {
                break;
            }
        }
        record.body = connection.pending.substr(0, length);
        record.raw += record.body;
        connection.pending.erase(0, record.body.size());
        return record;
    }

    bool SendAll(Connection& connection, const std::string& bytes)
    {
        for (size_t sent = 0; sent < bytes.size();)
        {
            WSAResetEvent(connection.event.get());
            const int count =
                send(connection.socket, bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
            if (count > 0)
            {
                sent += static_cast<size_t>(count);
                continue;
            }
            if (WSAGetLastError() != WSAEWOULDBLOCK || !WaitForNews(connection))
            {
                return false;
            }
        }
        return true;
    }

    bool Send(Connection& connection, const CServerScript::Action& action)
    {
        if (action.chunk == 0)
        {
            return SendAll(connection, action.bytes);
        }
        for (size_t at = 0; at < action.bytes.size(); at += action.chunk)
        {
            if (!SendAll(connection, action.bytes.substr(at, action.chunk)) || IsStopping(action.pause))
            {
                return false;
            }
        }
        return true;
    }

    bool IsStopping(DWORD wait) { return WaitForSingleObject(m_stop.get(), wait) == WAIT_OBJECT_0; }

    void CloseGracefully(Connection& connection)
    {
        // A close with unread data would send a reset and could take the reply's end away from the client, so
        // the client's own end is awaited.
        shutdown(connection.socket, SD_SEND);
        const ULONGLONG end = GetTickCount64() + kLinger;
        char buffer[16'384];
        for (;;)
        {
            WSAResetEvent(connection.event.get());
            const int count = recv(connection.socket, buffer, sizeof buffer, 0);
            const ULONGLONG now = GetTickCount64();
            if (count == 0 || (count < 0 && WSAGetLastError() != WSAEWOULDBLOCK) || now >= end)
            {
                return;
            }
            if (count < 0 && !WaitForNews(connection, static_cast<DWORD>(end - now)))
            {
                return;
            }
        }
    }

    /// Runs the actions. True if the connection goes on with the next request.
    bool Run(Connection& connection, const CServerScript& script)
    {
        for (const CServerScript::Action& action : script.Actions())
        {
            switch (action.kind)
            {
            case CServerScript::Kind::Send:
                if (!Send(connection, action))
                {
                    return false;
                }
                break;
            case CServerScript::Kind::Wait: {
                SetEvent(action.gate->ReachedEvent());
                const HANDLE events[] = {m_stop.get(), action.gate->OpenedEvent()};
                if (WaitForMultipleObjects(2, events, FALSE, INFINITE) != WAIT_OBJECT_0 + 1)
                {
                    return false;
                }
                break;
            }
            case CServerScript::Kind::Pause:
                if (IsStopping(action.pause))
                {
                    return false;
                }
                break;
            case CServerScript::Kind::Stall:
                while (Receive(connection))
                {
                }
                return false;
            case CServerScript::Kind::Reset: {
                const linger hard = {1, 0};
                setsockopt(connection.socket, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard),
                           sizeof hard);
                return false;
            }
            case CServerScript::Kind::Close:
                CloseGracefully(connection);
                return false;
            case CServerScript::Kind::NextRequest:
                return true;
            }
        }
        CloseGracefully(connection);
        return false;
    }

    UniqueHandle m_stop;
    UniqueHandle m_refuse;
    SOCKET m_listener = INVALID_SOCKET;
    UniqueHandle m_accepting;
    std::vector<UniqueHandle> m_threads;
};

CLoopbackServer::CLoopbackServer() : m_impl(std::make_unique<Impl>()) {}

CLoopbackServer::~CLoopbackServer() = default;

unsigned short CLoopbackServer::Port() const
{
    return m_impl->port;
}

std::string CLoopbackServer::Url(const std::string& path) const
{
    return "http://127.0.0.1:" + std::to_string(Port()) + path;
}

std::wstring CLoopbackServer::WideUrl(const std::string& path) const
{
    return Wide(Url(path));
}

void CLoopbackServer::On(const std::string& path, CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->scripts[path] = std::move(script);
}

void CLoopbackServer::OnNext(const std::string& path, CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->nextScripts[path].push_back(std::move(script));
}

void CLoopbackServer::OnOther(CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->otherScript = std::move(script);
}

void CLoopbackServer::OnConnection(std::optional<CServerScript> script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->connectionScript = std::move(script);
}

void CLoopbackServer::OnNextConnection(CServerScript script)
{
    const std::lock_guard lock(m_impl->mutex);
    m_impl->nextConnectionScripts.push_back(std::move(script));
}

void CLoopbackServer::Refuse()
{
    m_impl->Refuse();
}

std::vector<CHttpRecord> CLoopbackServer::Requests() const
{
    const std::lock_guard lock(m_impl->mutex);
    return m_impl->requests;
}

std::vector<CHttpRecord> CLoopbackServer::RequestsFor(const std::string& path) const
{
    std::vector<CHttpRecord> requests = Requests();
    std::erase_if(requests, [&](const CHttpRecord& record) { return record.path != path; });
    return requests;
}

bool CLoopbackServer::WaitForRequests(size_t count, DWORD timeout) const
{
    return WaitUntil(
        [&] {
            const std::lock_guard lock(m_impl->mutex);
            return m_impl->requests.size() >= count;
        },
        timeout);
}

size_t CLoopbackServer::Connections() const
{
    const std::lock_guard lock(m_impl->mutex);
    return m_impl->connections;
}

bool CLoopbackServer::WaitForConnections(size_t count, DWORD timeout) const
{
    return WaitUntil([&] { return Connections() >= count; }, timeout);
}

bool CLoopbackServer::WaitUntilIdle(DWORD timeout) const
{
    return WaitUntil(
        [&] {
            const std::lock_guard lock(m_impl->mutex);
            return m_impl->openConnections == 0;
        },
        timeout);
}

} // namespace orva::test
